#include "Comparators.h"
#include "DeviceFootprint.h"
#include "Files.h"
#include "GoldenData.h"
#include "RunProgram.h"
#include "TempFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

using namespace NyxTest;
using namespace KvDeviceFootprint;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{

const std::string before = FOOTPRINT_TEST_DATA "/diff/before.xml";
const std::string after = FOOTPRINT_TEST_DATA "/diff/after.xml";

/// What the tool must print; made by `footprint diff`, read by a person.
std::string Expected(const std::string& name)
{
    return ReadFile(FOOTPRINT_TEST_DATA "/diff/" + name);
}

std::string LastLine(const std::string& text)
{
    const std::size_t end = text.size() - (text.empty() ? 0 : 1);
    const std::size_t begin = text.rfind('\n', end == 0 ? 0 : end - 1);
    return text.substr(begin == std::string::npos ? 0 : begin + 1, end - (begin == std::string::npos ? 0 : begin + 1));
}

/// A footprint text with boards; each is given by what stands in its tag.
std::string Footprint(std::size_t boards, const std::function<std::string(std::size_t)>& board)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
                       "<DeviceFootprint formatVersion=\"02.06\" creationDate=\"2015-03-01T08:05:59\">\n"
                       "  <DeviceData deviceId=\"1111.2222.33-100001-x\"/>\n  <HardwareData>\n    <HardwareList>\n";
    for (std::size_t number = 1; number <= boards; ++number) {
        text += "      <Hardware partNumber=\"1234.5678.02\" " + board(number) + "/>\n";
    }
    return text + "    </HardwareList>\n  </HardwareData>\n</DeviceFootprint>\n";
}

std::string Attribute(const std::string& name, std::size_t value)
{
    return name + "=\"" + std::to_string(value) + "\" ";
}

class ToolDiffGoldenTest : public GoldenFixture
{
};

} // namespace

TEST(ToolDiffTest, Text)
{
    const CRun run = RunTool({"diff", before, after});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.data, Expected("text.txt"));
    EXPECT_THAT(run.messages, IsEmpty());
}

TEST(ToolDiffTest, Json)
{
    const CRun run = RunTool({"diff", "--json", before, after});
    EXPECT_EQ(run.status, 1);
    json data = json::parse(run.data);
    EXPECT_EQ(data["old"], before);
    EXPECT_EQ(data["new"], after);
    data.erase("old");
    data.erase("new");
    EXPECT_TRUE(SameJson(json::parse(Expected("data.json")), data));
}

TEST(ToolDiffTest, TheOtherWayRound)
{
    // Every difference is one from either side.
    const json forth = json::parse(RunTool({"diff", "--json", before, after}).data);
    const CRun run = RunTool({"diff", "--json", after, before});
    EXPECT_EQ(run.status, 1);
    const json back = json::parse(run.data);
    EXPECT_EQ(back["differences"].size(), forth["differences"].size());
    const auto deciding = [](const json& data) {
        return std::count_if(data["differences"].begin(), data["differences"].end(),
                             [](const json& difference) { return difference["decides"] == true; });
    };
    EXPECT_EQ(deciding(back), deciding(forth));
    EXPECT_EQ(back["oldIsDamaged"], true) << "the checksum of after.xml is wrong";
}

TEST(ToolDiffTest, NoDifferences)
{
    const CRun run = RunTool({"diff", before, before});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.data, "same: needs no new history entry (no differences)\n");
}

TEST(ToolDiffTest, ADamagedOldOneNeedsAnEntry)
{
    const CRun run = RunTool({"diff", after, after});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.data, "same: needs a new history entry, as the checksum of the old footprint is wrong "
                        "(no differences)\n");
}

TEST_P(ToolDiffGoldenTest, TheVerdictIsTheLibrarys)
{
    // Each document against each other one.
    CComparatorRules rules;
    CDefaultHistoryComparatorRulesFactory().CreateRules(rules);
    CDeviceFootprint document;
    ASSERT_TRUE(document.Load(Document()));
    for (const std::string& other : GoldenNames()) {
        CDeviceFootprint former;
        ASSERT_TRUE(former.Load(other + ".xml"));
        const bool isSame = document.CompareTo(former, rules);
        const CRun run = RunTool({"diff", other + ".xml", Document()});
        EXPECT_EQ(run.status, other == GetParam() && former.ValidateChecksum() ? 0 : 1) << other;
        EXPECT_THAT(LastLine(run.data), StartsWith(isSame ? "same: " : "differs: ")) << other;
        EXPECT_EQ(run.data.find("  ! ") == std::string::npos, isSame) << other;
    }
}

INSTANTIATE_TEST_SUITE_P(Golden, ToolDiffGoldenTest, testing::ValuesIn(GoldenNames()), GoldenTestName);

TEST(ToolDiffTest, RedactedHidesTheSameEverywhere)
{
    for (const char* form : {"--redact", "--json"}) {
        const CRun run = RunTool({"diff", form, "--redact", before, after});
        EXPECT_EQ(run.status, 1);
        for (const char* secret : {"Schmidt", "771203", "880417"}) {
            EXPECT_THAT(run.data, Not(HasSubstr(secret))) << form;
        }
        EXPECT_THAT(run.data, HasSubstr("person-1"));
    }
}

TEST(ToolDiffTest, HostileTextComesOutHarmless)
{
    const TempFolder folder;
    const std::string hostile = "\x1b[2J\x07&#x1b;]0;t&#7;&#x202e;&#x9b;&lt;b&gt;";
    WriteFile(folder / "a.xml", Footprint(2, [&](std::size_t number) {
                  return Attribute("sn", number) + Attribute("id", number) + "name=\"" + hostile + "\"";
              }));
    const std::string name = folder / "b\x1b[2J.xml";
    WriteFile(name, Footprint(2, [&](std::size_t number) {
                  return Attribute("sn", number * 2) + Attribute("id", number) + "name=\"x" + hostile +
                         "\" connectorName=\"" + hostile + "\"";
              }));
    for (const char* form : {"--redact", "--json"}) {
        const CRun run = RunTool({"diff", form, folder / "a.xml", name});
        EXPECT_EQ(run.status, 1) << run.messages;
        EXPECT_TRUE(std::all_of(run.data.begin(), run.data.end(), [](char character) {
            return character == '\n' || static_cast<unsigned char>(character) >= 0x20;
        }));
        for (const char* harmful : {"\x7f", "\xc2\x9b", "\xe2\x80\xae"}) {
            EXPECT_THAT(run.data, Not(HasSubstr(harmful)));
        }
        EXPECT_THAT(run.data, HasSubstr("<b>"));
    }
}

TEST(ToolDiffTest, WhatCanNotBeCompared)
{
    const TempFolder folder;
    WriteFile(folder / "empty.xml", "");
    WriteFile(folder / "torn.xml", ReadFile(before).substr(0, 2000));
    WriteFile(folder / "other.xml", "<Other/>\n");
    for (const std::string& bad :
         {folder / "missing.xml", folder / "empty.xml", folder / "torn.xml", folder / "other.xml", folder.Path()}) {
        for (const std::vector<std::string>& words :
             std::vector<std::vector<std::string>>{{"diff", before, bad}, {"diff", "--json", bad, before}}) {
            const CRun run = RunTool(words);
            EXPECT_EQ(run.status, 2) << bad;
            EXPECT_THAT(run.data, IsEmpty());
            EXPECT_THAT(run.messages, StartsWith("footprint: " + bad + ": "));
        }
    }
    const CRun both = RunTool({"diff", folder / "missing.xml", folder / "empty.xml"});
    EXPECT_THAT(both.messages, HasSubstr("missing.xml"));
    EXPECT_THAT(both.messages, HasSubstr("empty.xml"));
    EXPECT_EQ(RunTool({"diff", before}).status, 2);
}

TEST(ToolDiffTest, ColourOnATerminalOnly)
{
    const std::vector<std::string> words = {"diff", before, after};
    EXPECT_THAT(RunToolOnTerminal(words, {"TERM=xterm", "NO_COLOR"}).data, HasSubstr("\x1b["));
    EXPECT_THAT(RunToolOnTerminal(words, {"TERM=xterm", "NO_COLOR=1"}).data, Not(HasSubstr("\x1b")));
    EXPECT_THAT(RunTool(words, {"TERM=xterm", "NO_COLOR"}).data, Not(HasSubstr("\x1b")));
}

TEST(ToolDiffTest, FilesOf16Megabytes)
{
    constexpr std::size_t count = 25000;
    const std::string text(550, 't');
    const TempFolder folder;
    const auto number = [](std::size_t board) { return board; };
    const auto write = [&](const std::string& name, const auto& id, const auto& serial, const auto& hours) {
        WriteFile(folder / name, Footprint(count, [&](std::size_t board) {
                      return Attribute("id", id(board)) + Attribute("sn", serial(board)) +
                             Attribute("parentId", id(board == 1 ? 1 : board / 2)) + Attribute("operatingHours", 0) +
                             Attribute("connectorName", hours(board)) + "partName=\"" + text + "\"";
                  }));
    };
    write("old.xml", number, number, number);
    write("few.xml", number, number, [](std::size_t board) { return board % 8000 == 0 ? 0 : board; });
    write("all.xml", number, number, [](std::size_t board) { return board + 1; });
    write(
        "numbers.xml", [](std::size_t board) { return board + 1000000; }, number, number);
    write(
        "boards.xml", number, [](std::size_t board) { return board + 1000000; }, number);
    ASSERT_GT(ReadFile(folder / "old.xml").size(), 16U * 1000 * 1000);
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"old.xml", "same: needs no new history entry (no differences)"},
        {"few.xml", "differs: needs a new history entry (3 differences, 3 of which decide)"},
        {"all.xml", "differs: needs a new history entry (25000 differences, 25000 of which decide)"},
        {"numbers.xml", "same: needs no new history entry (50000 differences, none of which decides)"},
        {"boards.xml", "differs: needs a new history entry (50000 differences, 50000 of which decide)"}};
    for (const auto& [name, verdict] : cases) {
        const auto begin = std::chrono::steady_clock::now();
        const CRun run = RunTool({"diff", folder / "old.xml", folder / name});
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
        EXPECT_EQ(LastLine(run.data), verdict) << name << run.messages;
        EXPECT_LT(seconds.count(), 60) << name << ": it takes a few seconds, unless something grows with the square";
        RecordProperty(name, std::to_string(seconds.count()));
    }
}
