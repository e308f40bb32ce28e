#include "Checks.h"
#include "DeviceFootprint.h"
#include "ElementWalk.h"
#include "Files.h"
#include "FillFootprint.h"
#include "GoldenData.h"
#include "LineMap.h"
#include "Loading.h"
#include "OwningConfig.h"
#include "Random.h"
#include "RunProgram.h"
#include "StreamCapture.h"
#include "TempFolder.h"
#include "XmlStreams.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace NyxTest;
using namespace KvDeviceFootprint;
using nlohmann::json;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{

const std::string dataFolder = FOOTPRINT_TEST_DATA "/verify/";
const std::string root = "/DeviceFootprint";
const std::string device = root + "/DeviceData";
const std::string boards = root + "/HardwareData/HardwareList";
const std::string products = root + "/HardwareData/ProductList";
const std::string connected = root + "/ConnectedDeviceList/ConnectedDevice[1]";

/// A footprint in which nothing is wrong, with elements of all kinds and without checksums.
std::string Sound()
{
    return ReadFile(dataFolder + "sound.xml");
}

/// Replaces the first place of a text, which must be there.
std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    const std::size_t place = text.find(from);
    if (place == std::string::npos) {
        ADD_FAILURE() << from << " is not there";
        return text;
    }
    return text.replace(place, from.size(), to);
}

std::size_t LineAt(const std::string& text, std::size_t place)
{
    return 1 +
           static_cast<std::size_t>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n'));
}

std::size_t LineOf(const std::string& text, const std::string& part)
{
    return LineAt(text, text.find(part));
}

/// The first line in which two texts differ.
std::size_t FirstChangedLine(const std::string& before, const std::string& after)
{
    const auto places = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    return LineAt(after, static_cast<std::size_t>(places.second - after.begin()));
}

std::vector<std::string> Lines(const std::string& text)
{
    std::istringstream input(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(input, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// "12: /path [rule]" of each line that the tool wrote about a file.
std::vector<std::string> Places(const std::string& data, const std::string& file)
{
    std::vector<std::string> places;
    for (const std::string& line : Lines(data)) {
        EXPECT_THAT(line, StartsWith(file + ":"));
        const std::size_t path = line.find(": /", file.size());
        const std::size_t text = line.find(": ", path + 2);
        const std::size_t rule = line.rfind(" [");
        EXPECT_LT(text, rule) << line;
        places.push_back(line.substr(file.size() + 1, text - file.size() - 1) + line.substr(rule));
    }
    return places;
}

class ToolVerifyTest : public testing::Test
{
protected:
    std::string File(const std::string& content, const std::string& name = "device.xml") const
    {
        WriteFile(m_folder / name, content);
        return m_folder / name;
    }

    /// What the tool finds in a text.
    std::vector<std::string> Found(const std::string& content) const
    {
        const std::string file = File(content);
        const CRun run = RunTool({"verify", file});
        const std::vector<std::string> places = Places(run.data, file);
        EXPECT_EQ(run.status, places.empty() ? 0 : 1) << run.messages;
        return places;
    }

    TempFolder m_folder;
};

class ToolVerifyGoldenTest : public GoldenFixture
{
};

/// A change that breaks one rule, in the first line that it changes.
struct CBreach
{
    const char* rule;
    std::string from;
    std::string to;
    std::string path;
};

const std::vector<CBreach>& Breaches()
{
    const std::string board = boards + "/Hardware[1]";
    const std::string board2 = boards + "/Hardware[2]";
    const std::string board3 = boards + "/Hardware[3]";
    const std::string maintenance = device + "/MaintenanceData/Maintenances/Maintenance[1]";
    const std::string task = maintenance + "/MaintenanceTasks/MaintenanceTask[1]";
    const std::string service = device + "/ServiceData/Services/Service[1]";
    const std::string part = board + "/ProgrammableParts/ProgrammablePart[1]";
    const std::string inner = root + "/SoftwareData/SoftwareList/Software[1]/SoftwareList/Software[1]";
    static const std::vector<CBreach> s_breaches = {
        {"time", "2024-02-29T23:59:59", "2023-02-29T23:59:59", root + "/@creationDate"},
        {"time", "2024-02-29T23:59:59", "2024-02-29T24:00:00", root + "/@creationDate"},
        {"time", "2024-02-29T23:59:59", "2024-02-29T23:60:00", root + "/@creationDate"},
        {"time", "2024-02-29T23:59:59", "2024-02-29T23:59:60", root + "/@creationDate"},
        {"time", "2024-02-29T23:59:59", "2024-02-29T23:59:59Z", root + "/@creationDate"},
        {"time", "2024-02-29T23:59:59", "2024-02-29", root + "/@creationDate"},
        {"time", "2015-03-01T08:05:59", "2015-03-01 08:05:59", connected + "/@creationDate"},
        {"date", "2000-02-29", "1900-02-29", device + "/@productDate"},
        {"date", "2000-02-29", "2000-02-30", device + "/@productDate"},
        {"date", "2000-02-29", "2000-00-29", device + "/@productDate"},
        {"date", "2000-02-29", "2000-04-31", device + "/@productDate"},
        {"date", "2000-02-29", "2000-2-29", device + "/@productDate"},
        {"date", "2023-12-31", "2023-13-31", maintenance + "/@maintenanceDate"},
        {"date", "2022-02-12", "2022-02-12 ", service + "/@serviceDate"},
        {"part-change-index", "partChangeIndex=\"02.01\"", "partChangeIndex=\"2.1\"", board + "/@partChangeIndex"},
        {"part-change-index", "name=\"os\" partChangeIndex=\"01.00\"", "name=\"os\" partChangeIndex=\"01.0a\"",
         root + "/SoftwareData/OperatingSystem/@partChangeIndex"},
        {"part-number", "1234.5678.02", "12345678.02", board + "/@partNumber"},
        {"part-number", "1234.5678.04, 1234.5678.05", "1234.5678.04,,1234.5678.05", board2 + "/@partNumber"},
        {"part-number", "1234.5678.04, 1234.5678.05", "1234.5678.04 ", board2 + "/@partNumber"},
        {"part-number", "1234.5678.03", "1234.5678.03,1234.5678.04", part + "/@partNumber"},
        {"part-number", "1234.5678.06", "1234.5678.6", products + "/Product[1]/@partNumber"},
        {"device-id", "1101.2345.02-100123-ab", "1101.2345.02-100123", device + "/@deviceId"},
        {"device-id", "1101.2345.02-100123-ab", "-100123-ab", device + "/@deviceId"},
        {"device-id", "1101.2345.02-100123-ab", "1101.2345.02--ab", device + "/@deviceId"},
        {"device-id", "1101.2345.03-7-x", "x", connected + "/DeviceData/@deviceId"},
        {"integer", "operatingHours=\"12\"", "operatingHours=\"12h\"", device + "/MaintenanceData/@operatingHours"},
        {"integer", "makeAndBreakCycles=\"-3\"", "makeAndBreakCycles=\"-\"",
         device + "/MaintenanceData/@makeAndBreakCycles"},
        {"integer", "serviceCode=\"17\"", "serviceCode=\"0x17\"", service + "/@serviceCode"},
        {"integer", "sn=\"123456\"", "sn=\"12a\"", board + "/@sn"},
        {"integer", "hardwareCode=\"-1\"", "hardwareCode=\" 1\"", board + "/@hardwareCode"},
        {"integer", "productId=\"12\"", "productId=\"1.2\"", board + "/@productId"},
        {"integer", "readCode=\"7\"", "readCode=\"+7\"", board + "/@readCode"},
        {"integer", "parentId=\"0\"", "parentId=\"-0\"", board + "/@parentId"},
        {"integer", "id=\"1003\"", "id=\"x\"", board3 + "/@id"},
        {"integer", "Product id=\"2\"", "Product id=\"two\"", products + "/Product[2]/@id"},
        {"boolean", "externConnected=\"false\"", "externConnected=\"no\"", board + "/@externConnected"},
        {"boolean", "done=\"true\"", "done=\"True\"", task + "/@done"},
        {"unique-id", "id=\"1003\"", "id=\"01001\"", board3 + "/@id"},
        {"unique-id", "Product id=\"2\"", "Product id=\"1\"", products + "/Product[2]/@id"},
        {"parent", "parentId=\"1002\"", "parentId=\"1004\"", board3 + "/@parentId"},
        {"parent", "parentId=\"1002\"", "parentId=\"1003\"", board3 + "/@parentId"},
        {"parent", "parentId=\"0\"", "parentId=\"1003\"", board + "/@parentId"},
        {"parent", "parentId=\"1001\"", "parentId=\"1003\"", board2 + "/@parentId"},
        {"required", "deviceId=\"1101.2345.02-100123-ab\" ", "", device + "/@deviceId"},
        {"required", "type=\"TYPE-B\"", "type=\"\"", connected + "/DeviceData/@type"},
        {"required", "name=\"second\" ", "", device + "/TestInstructionList/TestInstruction[2]/@name"},
        {"required", "TestInstruction version=\"1.0\"", "TestInstruction name=\"first\"",
         device + "/TestInstructionList/TestInstruction[1]/@version"},
        {"required", "serviceCode=\"17\" ", "", service + "/@serviceCode"},
        {"required", "serviceCode=\"17\"", "serviceCode=\"-01\"", service + "/@serviceCode"},
        {"required", "name=\"clean\" ", "", task + "/@name"},
        {"required", "done=\"true\" ", "", task + "/@done"},
        {"required", "id=\"1003\" ", "", board3 + "/@id"},
        {"required", "name=\"RF\" ", "", board3 + "/@name"},
        {"required", "name=\"RF\"", "name=\"[2]\"", board3 + "/@name"},
        {"required", "name=\"RF\"", "name=\"RF[2\"", board3 + "/@name"},
        {"required", "Product id=\"2\"", "Product partName=\"x\"", products + "/Product[2]/@id"},
        {"required", "Product id=\"2\"", "Product id=\"-1\"", products + "/Product[2]/@id"},
        {"required", "name=\"inner\" ", "", inner + "/@name"},
        {"unknown-tag", "    <HardwareList>\n", "    <Other>\n      <A/>\n    </Other>\n    <HardwareList>\n",
         root + "/HardwareData"},
        {"unknown-tag", "      <Hardware id=\"1002\"", "      <Other a=\"1\"/>\n      <Hardware id=\"1002\"", boards},
        {"unknown-tag", "  <SoftwareData>\n", "  <!-- words -->\n  </end>\n  <SoftwareData>\n", root},
        {"unknown-attribute", "id=\"1003\"", "id=\"1003\" weight=\"1\"", board3},
        {"unknown-attribute", "<ProductList>", "<ProductList id=\"1\">", products},
        {"repeated-attribute", "id=\"1003\"", "id=\"1003\" id=\"1004\"", board3 + "/@id"},
        {"repeated-element", "  <HardwareData>\n", "  <DeviceData deviceId=\"1-2-3\" type=\"x\"/>\n  <HardwareData>\n",
         device},
        {"tag-name", "<Hardware id=\"1003\"", "<Hardware2 id=\"1003\"", board3},
        {"tag-name", "<Hardware id=\"1003\"", "-Hardware id=\"1003\"", board3},
        {"tag-form", "name=\"RF\"", "name=\"RF\" rest", board3},
        {"tag-form", "name=\"RF\"", "name=\"RF\" a=b", board3},
        {"tag-form", "      <Software name=\"outer\" partChangeIndex=\"01.00\">",
         "      <Software name=\"outer\" partChangeIndex=\"01.00\"", root + "/SoftwareData/SoftwareList/Software[1]"},
        {"value-form", "name=\"RF\"", "name=\"R&x46;F\"", board3 + "/@name"},
        {"value-form", "name=\"RF\"", "name=\"R&#x46;\"", board3 + "/@name"},
        {"value-form", "name=\"RF\"", "name=\"R\xc3\xa9\"", board3 + "/@name"},
        {"value-form", "name=\"RF\"", "name=\"R>\"", board3 + "/@name"},
        {"value-form", "generatedBy=\"bench\"", "generatedBy='bench'", root + "/@generatedBy"},
        {"value-form", " generatedBy=\"bench\"", "\tgeneratedBy=\"bench\"", root + "/@generatedBy"},
        {"outside-root", "<DeviceFootprint ", "<Other/>\n<DeviceFootprint ", "/"},
        {"outside-root", "</DeviceFootprint>\n", "</DeviceFootprint>\nwords\n", "/"},
    };
    return s_breaches;
}

/// What the facade says when it reads a file.
std::string FacadeWords(const std::string& file)
{
    const StreamCapture data(std::cout);
    const StreamCapture narrow(std::cerr);
    const WideStreamCapture wide(std::wcerr);
    OwningConfig config;
    config.loadFile(file, false);
    return narrow.Text() + NarrowText(wide.Text());
}

/// Calls @p visit with each element of a document that stands in its file, and its line there.
void ForEachLine(const CElementNode& element, const footprint::CLineNode& node,
                 const std::function<void(const CElementNode&, std::size_t)>& visit)
{
    if (node.line != 0) {
        visit(element, node.line);
    } else {
        EXPECT_TRUE(element.IsEmpty()) << element.GetElementName();
    }
    std::size_t index = 0;
    const std::vector<footprint::CStep> steps = footprint::StepsBelow(element);
    EXPECT_LE(node.below.size(), steps.size());
    for (const footprint::CStep& step : steps) {
        const footprint::CLineNode nowhere;
        ForEachLine(*step.element, index < node.below.size() ? node.below[index] : nowhere, visit);
        ++index;
    }
}

/// Whether a line of a file holds an element's attributes, read by the library.
void ExpectSameAttributes(const CElementNode& element, const std::string& line)
{
    const std::string name;
    std::istringstream input(line + "\n");
    CXmlStreamReader reader(input, name);
    ASSERT_TRUE(reader.NextToken());
    EXPECT_TRUE(reader.IsElement(element.GetElementName())) << line;
    for (const CReadOnlyAttribute* attribute : footprint::AttributesOf(element)) {
        std::wstring value;
        reader.GetAttribute(attribute->GetNodeName(), value);
        EXPECT_TRUE(value == attribute->GetValue()) << line;
    }
}

/// Changes one place of a text in one of many ways.
std::string Damaged(const std::string& text, Random& random)
{
    std::vector<std::string> lines = Lines(text);
    lines.resize(std::max<std::size_t>(lines.size(), 1));
    const std::size_t at = random.Below(lines.size());
    std::string& line = lines[at];
    const auto place = lines.begin() + static_cast<std::ptrdiff_t>(at);
    const std::string other = lines[random.Below(lines.size())];
    switch (random.Below(9)) {
    case 0:
        lines.erase(place);
        break;
    case 1:
        lines.insert(place, other);
        break;
    case 2:
        lines.insert(place, random.OneOf<std::string>({"", "  ", "\t", "\r", "<!-- x -->", "</x>", "<x/>", "x"}));
        break;
    case 3:
        lines.resize(at + 1);
        break;
    case 4:
        line = line.substr(0, random.Below(line.size() + 1));
        break;
    case 5:
        line.insert(random.Below(line.size() + 1), random.OneOf<std::string>({"\xff", "&", "\"", "/>", " ", "'", "="}));
        break;
    case 6:
        line.resize(std::max<std::size_t>(line.size(), 1));
        line[random.Below(line.size())] = static_cast<char>(random.Below(256));
        break;
    case 7:
        std::swap(line, lines[random.Below(lines.size())]);
        break;
    default:
        line += random.OneOf<std::string>({"\r", " ", "<x/>", "\t"});
    }
    std::string joined;
    for (const std::string& each : lines) {
        joined += each + "\n";
    }
    return random.OneIn(5) && !joined.empty() ? joined.substr(0, joined.size() - 1) : joined;
}

} // namespace

TEST_P(ToolVerifyGoldenTest, Findings)
{
    const CRun run = RunTool({"verify", Document()});
    EXPECT_EQ(run.data, ReadFile(dataFolder + GetParam() + ".txt"));
    EXPECT_EQ(run.status, run.data.empty() ? 0 : 1);
    const std::size_t count = Lines(run.data).size();
    EXPECT_EQ(run.messages, "footprint: 1 file checked, " + std::string(count == 0 ? "0" : "1") + " with findings, " +
                                std::to_string(count) + " findings\n");
}

TEST_P(ToolVerifyGoldenTest, JsonSaysTheSame)
{
    const CRun run = RunTool({"verify", "--json", Document()});
    const json data = json::parse(run.data);
    ASSERT_EQ(data["files"].size(), 1U);
    const json& file = data["files"][0];
    EXPECT_EQ(file["file"], Document());
    std::string text;
    for (const json& finding : file["findings"]) {
        text += Document() + ":" + std::to_string(finding["line"].get<int>()) + ": " +
                finding["path"].get<std::string>() + ": " + finding["text"].get<std::string>() + " [" +
                finding["rule"].get<std::string>() + "]\n";
    }
    EXPECT_EQ(text, ReadFile(dataFolder + GetParam() + ".txt"));
    EXPECT_EQ(file["count"], file["findings"].size());
    EXPECT_EQ(data["notChecked"], json::array());
    EXPECT_EQ(run.status, text.empty() ? 0 : 1);
}

TEST_P(ToolVerifyGoldenTest, WhatTheFacadeRefusesIsFound)
{
    if (!ExpectedJson(GetParam() + ".facade.json")["throw1"]["exception"].is_null()) {
        EXPECT_EQ(RunTool({"verify", Document()}).status, 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Documents, ToolVerifyGoldenTest, testing::ValuesIn(GoldenNames()), GoldenTestName);

TEST_F(ToolVerifyTest, EachRuleIsBrokenAlone)
{
    const std::string sound = Sound();
    EXPECT_THAT(Found(sound), IsEmpty());
    for (const CBreach& breach : Breaches()) {
        const std::string broken = Replaced(sound, breach.from, breach.to);
        const std::string line = std::to_string(FirstChangedLine(sound, broken));
        EXPECT_THAT(Found(broken), ElementsAre(line + ": " + breach.path + " [" + breach.rule + "]"))
            << breach.from << " -> " << breach.to;
    }
}

TEST_F(ToolVerifyTest, WhatTheFacadeComplainsAboutIsFound)
{
    const std::string sound = Sound();
    EXPECT_EQ(FacadeWords(File(sound)), "");
    std::size_t complaints = 0;
    for (const CBreach& breach : Breaches()) {
        if (!FacadeWords(File(Replaced(sound, breach.from, breach.to))).empty()) {
            ++complaints;
        }
    }
    EXPECT_GT(complaints, 20U) << "each of them is found in the test above";
}

TEST_F(ToolVerifyTest, WhatIsNotAFinding)
{
    for (const auto& [from, to] : std::vector<std::pair<std::string, std::string>>{
             {"formatVersion=\"02.06\" creationDate", "creationDate"},
             {"sn=\"123456\"", "sn=\"99999999999999999999\""},
             {"parentId=\"0\" ", ""},
             {"id=\"1003\"", "id=\"01003\""},
             {"name=\"RF\" parentId=\"1002\"/>", "parentId=\"01002\" name=\"RF\" sn=\"\" />"},
             {"      <Hardware id=\"1003\"", "\t<Hardware id=\"1003\""},
             {"    <ProductList>\n", "    <ProductList>\r\n"},
             {"<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n", ""},
             {"</DeviceFootprint>\n", "</DeviceFootprint>"},
             {"</DeviceFootprint>\n", "</DeviceFootprint>\n\n"}}) {
        EXPECT_THAT(Found(Replaced(Sound(), from, to)), IsEmpty()) << from << " -> " << to;
    }
}

TEST_F(ToolVerifyTest, WhatIsMissingIsFoundWhereItShouldBe)
{
    std::string text = Sound();
    const std::size_t begin = text.find("  <DeviceData");
    const std::size_t end = text.find("  <HardwareData>");
    text.erase(begin, end - begin);
    EXPECT_THAT(Found(text),
                ElementsAre("2: " + device + "/@deviceId [required]", "2: " + device + "/@type [required]"));
}

TEST_F(ToolVerifyTest, ListsThatComeTwiceCountOn)
{
    const std::string text =
        Replaced(Sound(), "    <ProductList>\n",
                 "    <HardwareList>\n      <Hardware id=\"1004\" sn=\"x\" name=\"a\"/>\n    </HardwareList>\n"
                 "    <ProductList>\n");
    EXPECT_THAT(Found(text),
                ElementsAre(std::to_string(LineOf(text, "sn=\"x\"")) + ": " + boards + "/Hardware[4]/@sn [integer]"));
}

TEST_F(ToolVerifyTest, EachLevelHasItsOwnChecksum)
{
    const std::string text = ReadFile(DataFile("golden/connected-devices.xml"));
    EXPECT_THAT(Found(text), IsEmpty());
    const std::string first = connected;
    const std::string nested = first + "/ConnectedDeviceList/ConnectedDevice[1]";
    const std::string second = root + "/ConnectedDeviceList/ConnectedDevice[2]";
    struct CCase
    {
        std::string id; ///< of the device whose content is changed
        std::string path;
    };
    std::string all = text;
    for (const CCase& each : std::vector<CCase>{{"1252.0745.50-188283-bZ", root},
                                                {"1914.5616.53-121039-Xc", first},
                                                {"1489.9517.88-160874-Zb", nested},
                                                {"1109.3722.35-107933-aX", second}}) {
        const std::string changed = Replaced(text, each.id, each.id + "x");
        all = Replaced(all, each.id, each.id + "x");
        const std::size_t line = LineOf(changed, each.id) - 1;
        EXPECT_THAT(Found(changed), ElementsAre(std::to_string(line) + ": " + each.path + "/@checksum [checksum]"));
    }
    EXPECT_EQ(Found(all).size(), 4U);
    const CRun run = RunTool({"verify", File(Replaced(text, "checksum=\"5024fe37", "checksum=\"5024FE37"))});
    EXPECT_THAT(run.data, HasSubstr("'5024FE37b931e409994c673b5f65face', but the content has "
                                    "'5024fe37b931e409994c673b5f65face' [checksum]\n"));
}

TEST_F(ToolVerifyTest, ChecksumsAreThoseOfTheLibrary)
{
    Random random;
    for (std::size_t round = 0; round < 20; ++round) {
        CDeviceFootprint document;
        FillFootprint(document, {1 + random.Below(3), 1 + random.Below(3), round % 4});
        if (random.OneIn(2) && !document.m_pConnectedDevices->empty()) {
            document.m_pConnectedDevices->front().m_checksum.Clear(); // enters with all that it holds
        }
        const std::string ours = footprint::ChecksumOf(document);
        std::string checksum;
        ASSERT_TRUE(document.ComputeChecksum(checksum));
        EXPECT_EQ(ours, checksum);
    }
}

TEST_F(ToolVerifyTest, DamageIsFoundWhereItIs)
{
    const std::string sound = Sound();
    const std::string board = boards + "/Hardware[1]";
    const std::size_t lines = Lines(sound).size();
    struct CCase
    {
        std::string text;
        std::size_t line;
        std::string path;
        std::string words;
    };
    const std::size_t parts = sound.find("        <ProgrammableParts>");
    const std::size_t behind = sound.find("        </ProgrammableParts>");
    const std::vector<CCase> cases = {
        {"", 1, "/", "the file is empty"},
        {"\n", 1, "/", "the line is blank"},
        {"words", 1, "/", "there is no <DeviceFootprint> in the file"},
        {std::string("\0\0\0", 3), 1, "/", "there is no <DeviceFootprint> in the file"},
        {"<DeviceFootprint>\n</DeviceFootprint>\n", 1, "/", "no footprint in it"},
        {"<DeviceFootprint generatedBy=\"a\"/>", 1, "/", "the file ends here; a root that is one tag needs a line"},
        {sound.substr(0, parts), LineAt(sound, parts) - 1, board, "the file ends here, before the end tag of line"},
        {sound.substr(0, behind), LineAt(sound, behind) - 1, board + "/ProgrammableParts", "the file ends here"},
        {Replaced(sound, "        </ProgrammableParts>\n", ""), LineAt(sound, behind), board + "/ProgrammableParts",
         "'</Hardware>' stands where the end tag of line " + std::to_string(LineAt(sound, parts)) + " must be"},
        {Replaced(sound, "        <ProgrammableParts>\n", "        <ProgrammableParts>\n\n"), LineAt(sound, parts) + 1,
         board + "/ProgrammableParts", "the line is blank"},
        {Replaced(sound, "        <ProgrammableParts>\n", "  \t\n        <ProgrammableParts>\n"), LineAt(sound, parts),
         board, "the line is blank"},
        {Replaced(sound, "FPGA", "FP\xff"), LineAt(sound, parts) + 1, board + "/ProgrammableParts",
         "UTF-8 encoding error, lead is invalid"},
        {Replaced(sound, "</DeviceFootprint>\n", ""), lines - 1, root,
         "the file ends here, before the end tag of line 2"},
        {Replaced(sound, "</DeviceFootprint>\n", "</DeviceFootprint>\n\n\n"), lines + 2, "/", "the line is blank"}};
    for (const CCase& each : cases) {
        const std::string file = File(each.text);
        const CRun run = RunTool({"verify", file});
        EXPECT_EQ(run.status, 1);
        EXPECT_THAT(run.data, StartsWith(file + ":" + std::to_string(each.line) + ": " + each.path + ": "));
        EXPECT_THAT(run.data, HasSubstr(": " + each.words));
        EXPECT_THAT(run.data, EndsWith(" [load]\n"));
        EXPECT_EQ(Lines(run.data).size(), 1U) << run.data;
    }
    std::string deep = "<DeviceFootprint>\n<SoftwareData>\n";
    for (std::size_t level = 0; level < 200; ++level) {
        deep += "<SoftwareList>\n<Software name=\"a\">\n";
    }
    EXPECT_EQ(Found(deep).size(), 1U);
    EXPECT_THAT(Found(deep).front(), StartsWith("257: /DeviceFootprint/SoftwareData/SoftwareList/Software[1]/"));
}

TEST_F(ToolVerifyTest, TheLinesAreThoseOfTheLoad)
{
    Random random;
    std::vector<std::string> texts = {Sound(), ReadFile(DataFile("full-footprint.xml"))};
    for (const std::string& document : GoldenDocuments()) {
        texts.push_back(ReadFile(document));
    }
    const footprint::CLibraryTalk talk;
    std::size_t loaded = 0;
    for (std::size_t round = 0; round < 3000 && !HasFailure(); ++round) {
        std::string text = texts[round % texts.size()];
        for (std::size_t times = round < texts.size() ? 0 : 1 + random.Below(3); times > 0; --times) {
            text = Damaged(text, random);
        }
        SCOPED_TRACE(text);
        bool isWhole = false;
        CDeviceFootprint document;
        try {
            std::istringstream input(text);
            isWhole = document.Load(input);
        } catch (const std::out_of_range&) {
        }
        std::istringstream input(text);
        footprint::CFindings findings;
        const footprint::CLineMap map = footprint::MapLines(input, findings);
        EXPECT_EQ(map.isWhole, isWhole) << map.stop.text;
        if (isWhole) {
            ++loaded;
            const std::vector<std::string> lines = Lines(text);
            ForEachLine(document, map.root, [&lines](const CElementNode& element, std::size_t line) {
                ASSERT_LE(line, lines.size());
                ExpectSameAttributes(element, lines[line - 1]);
            });
            footprint::CheckFootprint(document, map, findings);
        } else {
            EXPECT_FALSE(map.stop.text.empty());
            EXPECT_LE(map.stop.line, std::max<std::size_t>(Lines(text).size(), 1));
        }
    }
    EXPECT_GT(loaded, 300U);
}

TEST_F(ToolVerifyTest, NothingFoundMeansSavedAsItWas)
{
    // Of all that a file says, nothing is lost by a load and a save if there is no finding.
    Random random;
    const footprint::CLibraryTalk talk;
    std::size_t unfound = 0;
    for (std::size_t round = 0; round < 1500; ++round) {
        const std::string text = Damaged(Sound(), random);
        std::istringstream input(text);
        footprint::CFindings findings;
        if (!footprint::MapLines(input, findings).isWhole || !findings.IsEmpty()) {
            continue;
        }
        CDeviceFootprint document;
        std::istringstream again(text);
        ASSERT_TRUE(document.Load(again));
        std::string saved;
        ASSERT_TRUE(document.GetDeviceFootprintString(false, saved));
        // Each value of the file is in the saved text, in the file's bytes.
        for (std::size_t quote = text.find("=\"", text.find('\n')); quote != std::string::npos;
             quote = text.find("=\"", quote + 2)) {
            const std::string value = text.substr(quote, text.find('"', quote + 2) + 1 - quote);
            if (value != "=\"\"") {
                EXPECT_THAT(saved, HasSubstr(value)) << text;
            }
        }
        ++unfound;
    }
    EXPECT_GT(unfound, 50U);
}

TEST_F(ToolVerifyTest, AFolderIsSearchedInOrder)
{
    std::filesystem::create_directories(m_folder / "b/c");
    const std::string bad = Replaced(Sound(), "id=\"1003\" ", "");
    File(bad, "b/c/2.xml");
    File(bad, "a.xml");
    File(Sound(), "b/1.xml");
    File("no footprint", "b/readme.txt");
    const CRun run = RunTool({"verify", m_folder.Path()});
    EXPECT_EQ(run.status, 1);
    const std::vector<std::string> lines = Lines(run.data);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_THAT(lines[0], StartsWith(m_folder / "a.xml:"));
    EXPECT_THAT(lines[1], StartsWith(m_folder / "b/c/2.xml:"));
    EXPECT_EQ(run.messages, "footprint: 3 files checked, 2 with findings, 2 findings\n");

    const json data = json::parse(RunTool({"verify", "--json", m_folder / "b", m_folder / "a.xml"}).data);
    ASSERT_EQ(data["files"].size(), 3U);
    EXPECT_EQ(data["files"][0], json({{"file", m_folder / "b/1.xml"}, {"findings", json::array()}, {"count", 0}}));
    EXPECT_EQ(data["files"][2]["file"], m_folder / "a.xml");
}

TEST_F(ToolVerifyTest, WhatCanNotBeCheckedIsAFailure)
{
    std::filesystem::create_directory(m_folder / "empty");
    std::filesystem::create_symlink("circle.xml", m_folder / "circle.xml");
    const std::string bad = File(Replaced(Sound(), "id=\"1003\" ", ""));
    for (const auto& [path, words] : std::vector<std::pair<std::string, std::string>>{
             {m_folder / "missing.xml", "No such file or directory"},
             {m_folder / "empty", "there is no *.xml file below"},
             {m_folder / "circle.xml", "Too many levels of symbolic links"},
             {"/dev/null", "is no file that can be read twice"}}) {
        const CRun alone = RunTool({"verify", path});
        EXPECT_EQ(alone.status, 2) << path;
        EXPECT_THAT(alone.data, IsEmpty());
        EXPECT_THAT(alone.messages, StartsWith("footprint: " + path + ": " + words + "\n"));

        const CRun run = RunTool({"verify", path, bad});
        EXPECT_EQ(run.status, 2) << path;
        EXPECT_EQ(Places(run.data, bad).size(), 1U) << "the others are checked nevertheless";

        const CRun asJson = RunTool({"verify", "--json", path});
        EXPECT_EQ(asJson.status, 2) << path;
        EXPECT_EQ(json::parse(asJson.data)["notChecked"], json::array({{{"path", path}, {"text", words}}}));
    }
    EXPECT_EQ(RunTool({"verify"}).status, 2);
    EXPECT_EQ(RunTool({"verify", "--json", "--quiet", bad}).status, 2);
}

TEST_F(ToolVerifyTest, QuietlyTheExitStatusTells)
{
    for (const auto& [text, status] :
         std::vector<std::pair<std::string, int>>{{Sound(), 0}, {"", 1}, {Replaced(Sound(), "id=\"1003\" ", ""), 1}}) {
        const CRun run = RunTool({"verify", "--quiet", File(text)});
        EXPECT_EQ(run.status, status);
        EXPECT_EQ(run.data + run.messages, "");
    }
    EXPECT_THAT(RunTool({"verify", "-q", m_folder / "missing"}).messages, HasSubstr("No such file"));
}

TEST_F(ToolVerifyTest, LinkFilesHaveTheirOwnForm)
{
    const std::string link = "/DeviceFootprintReference";
    const std::string sound = "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<DeviceFootprintReference>\n"
                              "  <LatestDeviceFootprint path=\"/data/a.xml\"/>\n"
                              "  <DeviceFootprintHistoryFolder path=\"/data\"/>\n</DeviceFootprintReference>\n";
    struct CCase
    {
        std::string from;
        std::string to;
        std::vector<std::string> places;
    };
    for (const CCase& each : std::vector<CCase>{
             {"x", "x", {}},
             {" path=\"/data\"", "", {}},
             {"\"/data\"", "\"data\"", {"4: " + link + "/DeviceFootprintHistoryFolder/@path [absolute-path]"}},
             {"  <LatestDeviceFootprint path=\"/data/a.xml\"/>\n",
              "",
              {"2: " + link + "/LatestDeviceFootprint [required]"}},
             {"  <DeviceFootprintHistoryFolder",
              "  <Other/>\n  <DeviceFootprintHistoryFolder",
              {"4: " + link + " [unknown-tag]"}},
             {"</DeviceFootprintReference>\n",
              "<LatestDeviceFootprint/>\n</DeviceFootprintReference>\n",
              {"5: " + link + "/LatestDeviceFootprint [repeated-element]"}},
             {"</DeviceFootprintReference>\n", "", {"4: / [load]"}},
             {"  <Latest", "\n  <Latest", {"3: / [load]"}},
             {"  <Latest", " \n  <Latest", {"3: / [load]"}},
             {"a.xml", "\xff.xml", {"3: / [load]"}}}) {
        const std::string file = File(Replaced(sound, each.from, each.to), "deviceFootprintLink.xml");
        const CRun run = RunTool({"verify", m_folder.Path()});
        EXPECT_EQ(run.status, each.places.empty() ? 0 : 1) << run.data;
        EXPECT_EQ(Places(run.data, file), each.places) << each.to;
    }
}

TEST_F(ToolVerifyTest, HostileTextComesOutHarmless)
{
    const std::string evil = "\xe2\x80\xae<script>\x1b[2J&#27;[2J&#10;x: /fake: ok [fake]&#4294967268;";
    std::string text = Replaced(Sound(), "id=\"1003\"", "id=\"" + evil + "\"");
    text = Replaced(text, "    <ProductList>\n", "    <\x1b[2J>\n    </\x1b>\n    <ProductList \x1b=\"1\">\n");
    const std::string file = File(text, "evil\x1b[2J\n\xff.xml");
    const CRun run = RunTool({"verify", file});
    EXPECT_EQ(run.status, 1);
    for (const std::string& output : {run.data, run.messages, RunTool({"verify", "--json", file}).data}) {
        EXPECT_THAT(output, Not(HasSubstr("\x1b")));
        EXPECT_THAT(output, Not(HasSubstr("\xe2\x80\xae")));
        EXPECT_THAT(output, Not(HasSubstr("\nx: ")));
    }
    for (const std::string& line : Lines(run.data)) {
        EXPECT_THAT(line, HasSubstr("/evil\\x1b[2J\\x0a\\xff.xml:"));
    }
    const json findings = json::parse(RunTool({"verify", "--json", file}).data)["files"][0]["findings"];
    EXPECT_EQ(findings.size(), Lines(run.data).size());
    EXPECT_EQ(findings.size(), 4U);
    EXPECT_EQ(RunTool({"verify", m_folder / "missing\x1b[2J"}).messages.find('\x1b'), std::string::npos);
}

TEST_F(ToolVerifyTest, ALargeFileIsCheckedInTime)
{
    // A long chain of boards, each on the one before.
    const std::string end = "    </HardwareList>\n    <ProductList>";
    std::string entries;
    std::string parent = "1003";
    for (std::size_t id = 2001; entries.size() < std::size_t{16} << 20; ++id) {
        entries += "      <Hardware id=\"" + std::to_string(id) +
                   "\" partNumber=\"1234.5678.02\" sn=\"1\" name=\"IF\" parentId=\"" + parent +
                   "\" partChangeIndex=\"01.00\" productDate=\"2020-01-01\"/>\n";
        parent = std::to_string(id);
    }
    const std::string text = Replaced(Replaced(Sound(), end, entries + end), "partChangeIndex=\"02.01\"", "");
    const std::string last = "      <Hardware id=\"1\" name=\"IF\" parentId=\"0" + parent + "x\"/>\n";
    const std::string file = File(Replaced(text, end, last + end));
    const auto start = std::chrono::steady_clock::now();
    const CRun run = RunTool({"verify", file});
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    const std::string place = std::to_string(LineOf(text, end)) + ": " + boards + "/Hardware[";
    EXPECT_THAT(Places(run.data, file), ElementsAre(AllOf(StartsWith(place), EndsWith("]/@parentId [parent]")),
                                                    AllOf(StartsWith(place), EndsWith("]/@parentId [integer]"))));
    EXPECT_LT(seconds.count(), 60);
    RecordProperty("milliseconds", static_cast<int>(seconds.count() * 1000));

    std::string flood;
    for (std::size_t count = 0; count < 100000; ++count) {
        flood += "<x/>\n";
    }
    const std::string flooded = File(Replaced(Sound(), "    <ProductList>\n", flood + "    <ProductList>\n"));
    const CRun limited = RunTool({"verify", flooded});
    EXPECT_EQ(Lines(limited.data).size(), footprint::CFindings::mostOfARule);
    EXPECT_THAT(limited.messages, HasSubstr(": 99000 more findings are not listed\n"));
    EXPECT_THAT(limited.messages, HasSubstr("1 with findings, 100000 findings\n"));
    EXPECT_EQ(json::parse(RunTool({"verify", "--json", flooded}).data)["files"][0]["count"], 100000);
}
