// The documents of data/golden: load, tree, save and checksum. What the facade makes of them: GoldenFacadeTest.

#include "GoldenData.h"

#include "DeviceFootprint.h"
#include "Files.h"
#include "FootprintDump.h"
#include "JsonText.h"
#include "StreamCapture.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;
using Json = nlohmann::json;

namespace
{

Json LoadResult(CDeviceFootprint& footprint, const std::string& fileName)
{
    try {
        return footprint.Load(fileName);
    } catch (const std::out_of_range&) {
        return "out_of_range";
    }
}

Json LoadAndDump(const std::string& fileName)
{
    const StreamCapture output(std::cout);
    CDeviceFootprint footprint;
    Json dump;
    dump["result"] = LoadResult(footprint, fileName);
    dump["lastError"] = JsonText(CDeviceFootprint::GetLastError());
    dump["stdout"] = JsonText(output.Text());
    dump["tree"] = DumpElement(footprint);
    return dump;
}

void LoadSilently(const std::string& fileName, CDeviceFootprint& footprint)
{
    const StreamCapture output(std::cout);
    LoadResult(footprint, fileName);
}

std::string SavedText(CDeviceFootprint& footprint)
{
    std::string text;
    EXPECT_TRUE(footprint.GetDeviceFootprintString(false, text)) << CDeviceFootprint::GetLastError();
    return text;
}

/// The value of the root's checksum in a dumped tree, empty if there is none.
Json ChecksumOf(const Json& tree)
{
    for (const Json& attribute : tree.at("attributes")) {
        if (attribute.at(0) == "checksum") {
            return attribute.at(1);
        }
    }
    return "";
}

class GoldenTest : public GoldenFixture
{
};

TEST_P(GoldenTest, LoadGivesTheTree)
{
    EXPECT_TRUE(SameJson(ExpectedJson(GetParam() + ".load.json"), LoadAndDump(Document())));
}

TEST_P(GoldenTest, LoadFromAStreamGivesTheSameTree)
{
    const StreamCapture output(std::cout);
    std::istringstream input(ReadFile(Document()));
    CDeviceFootprint footprint;
    EXPECT_EQ(ExpectedJson(GetParam() + ".load.json").at("result"), footprint.Load(input, Document()));
    EXPECT_TRUE(SameJson(ExpectedJson(GetParam() + ".load.json").at("tree"), DumpElement(footprint)));
}

TEST_P(GoldenTest, SaveGivesTheBytes)
{
    CDeviceFootprint footprint;
    LoadSilently(Document(), footprint);
    EXPECT_EQ(ReadFile(GetParam() + ".resave.xml"), SavedText(footprint));
}

TEST_P(GoldenTest, SavedDocumentLoadsAndSavesTheSame)
{
    const std::string saved = GetParam() + ".resave.xml";
    const Json result = LoadAndDump(saved);
    EXPECT_EQ(true, result.at("result"));
    EXPECT_EQ("", result.at("stdout")) << "a save writes no tag that a load does not know";

    CDeviceFootprint footprint;
    LoadSilently(saved, footprint);
    EXPECT_EQ(ReadFile(saved), SavedText(footprint));
}

// The saved document carries the computed checksum, so it tells whether the one in the document is right.
TEST_P(GoldenTest, ChecksumIsTheComputedOne)
{
    const Json loaded = ExpectedJson(GetParam() + ".load.json").at("tree");
    const Json computed = ChecksumOf(LoadAndDump(GetParam() + ".resave.xml").at("tree"));
    CDeviceFootprint footprint;
    LoadSilently(Document(), footprint);

    const bool isRight = ChecksumOf(loaded) == "" || ChecksumOf(loaded) == computed;
    EXPECT_EQ(isRight, footprint.ValidateChecksum());
    EXPECT_TRUE(SameJson(loaded, DumpElement(footprint))) << "validating leaves the document as it is";

    std::string checksum;
    ASSERT_TRUE(footprint.ComputeChecksum(checksum));
    EXPECT_EQ(computed, checksum);
}

TEST_P(GoldenTest, ChangeBreaksTheChecksum)
{
    CDeviceFootprint footprint;
    LoadSilently(Document(), footprint);
    ASSERT_FALSE(footprint.m_checksum.IsEmpty());
    footprint.m_deviceData.m_partName = footprint.m_deviceData.m_partName.GetValue() + L"x";
    EXPECT_FALSE(footprint.ValidateChecksum());
}

INSTANTIATE_TEST_SUITE_P(Documents, GoldenTest, testing::ValuesIn(GoldenNames()), GoldenTestName);

TEST(GoldenFolderTest, HoldsDocumentsWithAllTheirResultsAndNothingElse)
{
    ASSERT_FALSE(GoldenNames().empty());
    std::set<std::string> expected = {"README.md"};
    for (const std::string& name : GoldenNames()) {
        for (const char* kind : {".xml", ".load.json", ".resave.xml", ".facade.json"}) {
            expected.insert(name + kind);
        }
    }
    const std::vector<std::string> entries = FolderEntries(GoldenFolder());
    EXPECT_EQ(expected, std::set<std::string>(entries.begin(), entries.end()));
}

} // namespace
