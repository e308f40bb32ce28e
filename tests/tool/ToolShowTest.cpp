#include "BoardTree.h"
#include "ElementWalk.h"
#include "Files.h"
#include "FillFootprint.h"
#include "GoldenData.h"
#include "LargeFootprint.h"
#include "Loading.h"
#include "RunProgram.h"
#include "TempFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <map>
#include <set>
#include <string>
#include <vector>

using namespace NyxTest;
using namespace KvDeviceFootprint;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace
{

/// What the tool must print; made by `footprint show`, read by a person.
std::string Expected(const std::string& name)
{
    return ReadFile(FOOTPRINT_TEST_DATA "/show/" + name);
}

/// A text of the golden data, in UTF-8.
std::string TextOf(const json& text)
{
    if (text.is_string()) {
        return text;
    }
    std::wstring wide;
    for (const json& unit : text["w"]) {
        wide.push_back(static_cast<wchar_t>(unit.get<std::uint32_t>()));
    }
    return footprint::Utf8(wide);
}

/// The form of `footprint show --json`, from a tree of the golden data, which another program made.
json Converted(const json& element)
{
    if (element.contains("entries")) {
        json list = json::array();
        for (const json& entry : element["entries"]) {
            list.push_back(Converted(entry));
        }
        return list;
    }
    json object = json::object();
    for (const json& attribute : element["attributes"]) {
        object[attribute[0].get<std::string>()] = TextOf(attribute[1]);
    }
    for (const json& child : element["children"]) {
        object[child["element"].get<std::string>()] = Converted(child);
    }
    return object;
}

/// Calls @p visit with the name and the text of each attribute.
void ForEachAttribute(const json& tree, const std::function<void(const std::string&, const std::string&)>& visit)
{
    for (const auto& [name, value] : tree.items()) {
        if (value.is_string()) {
            visit(name, value);
        } else if (value.is_structured()) {
            ForEachAttribute(value, visit);
        }
    }
}

/// "name(level)" of each board, and its remark.
std::vector<std::string> TreeOf(const std::vector<std::array<const char*, 3>>& boards)
{
    CHardwareList list;
    for (const auto& [name, id, parentId] : boards) {
        CHardware& board = list.CreateEntry();
        board.m_name = name;
        board.m_id = id;
        board.m_parentId = parentId;
    }
    std::vector<std::string> tree;
    for (const footprint::CBoardPlace& place : footprint::BoardTree(list)) {
        tree.push_back(footprint::Utf8(place.board->m_name.GetValue()) + "(" + std::to_string(place.level) + ")" +
                       (place.remark.empty() ? "" : " " + place.remark));
    }
    return tree;
}

class ToolShowGoldenTest : public GoldenFixture
{
};

} // namespace

TEST_P(ToolShowGoldenTest, Text)
{
    const CRun run = RunTool({"show", Document()});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.data, Expected(GetParam() + ".txt"));
    EXPECT_EQ(run.messages.empty(), GetParam() != "unknown-tags") << run.messages;
}

TEST_P(ToolShowGoldenTest, Json)
{
    const CRun run = RunTool({"show", "--json", Document()});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.data, Expected(GetParam() + ".json"));
    const json data = json::parse(run.data);
    EXPECT_EQ(data["file"], Document());
    EXPECT_TRUE(SameJson(Converted(ExpectedJson(GetParam() + ".load.json")["tree"]), data["DeviceFootprint"]));
}

TEST_P(ToolShowGoldenTest, RedactedHidesTheSameEverywhere)
{
    const json plain = json::parse(RunTool({"show", "--json", Document()}).data);
    const CRun run = RunTool({"show", "--json", "--redact", Document()});
    EXPECT_EQ(run.status, 0);
    const json redacted = json::parse(run.data);
    std::vector<std::array<std::string, 2>> before;
    std::vector<std::array<std::string, 2>> after;
    ForEachAttribute(plain, [&before](const auto& name, const auto& value) { before.push_back({name, value}); });
    ForEachAttribute(redacted, [&after](const auto& name, const auto& value) { after.push_back({name, value}); });
    ASSERT_EQ(before.size(), after.size());
    const std::set<std::string> secretNames = {"sn", "deviceId", "responsiblePerson"};
    std::map<std::string, std::string> hidden;
    std::map<std::string, std::string> revealed;
    const std::string text = RunTool({"show", "--redact", Document()}).data;
    for (std::size_t index = 0; index < before.size(); ++index) {
        const auto& [name, value] = before[index];
        ASSERT_EQ(name, after[index][0]);
        if (secretNames.count(name) == 0) {
            continue;
        }
        const std::string& shown = after[index][1];
        EXPECT_NE(value, shown);
        EXPECT_EQ(hidden.emplace(value, shown).first->second, shown) << "equal stays equal";
        EXPECT_EQ(revealed.emplace(shown, value).first->second, value) << "different stays different";
        EXPECT_THAT(text, HasSubstr(shown));
        if (value.size() > 4) {
            EXPECT_THAT(run.data, Not(HasSubstr(value)));
            EXPECT_THAT(text, Not(HasSubstr(value)));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Golden, ToolShowGoldenTest, testing::ValuesIn(GoldenNames()), GoldenTestName);

TEST(ToolShowTest, EveryAttributeIsInTheTables)
{
    const TempFolder folder;
    CDeviceFootprint document;
    FillFootprint(document, {2, 2, 2});
    std::string file;
    ASSERT_TRUE(document.GetDeviceFootprintString(false, file));
    WriteFile(folder / "full.xml", file);
    const CRun text = RunTool({"show", folder / "full.xml"});
    const CRun data = RunTool({"show", "--json", folder / "full.xml"});
    EXPECT_EQ(text.status, 0);
    int count = 0;
    ForEachAttribute(json::parse(data.data), [&](const std::string& name, const std::string& value) {
        // Each value has a number of its own. Behind it can stand what a file escapes.
        const std::size_t end = value.find("-v");
        // The tree shows parents by its lines.
        if (end != std::string::npos && name != "parentId") {
            ++count;
            EXPECT_THAT(text.data, HasSubstr(value.substr(0, end + 2)));
        }
    });
    EXPECT_GT(count, 300);
}

TEST(ToolShowTest, HostileTextComesOutHarmless)
{
    const TempFolder folder;
    CDeviceFootprint document;
    FillFootprint(document, {2, 2, 1});
    const std::wstring hostile = L"\x1b[2J\x1b]0;title\a\n\r\t\b\x7f\x9b\x202e\x2066\x200b\x2028<b>'\"--";
    footprint::Walk(document, [&hostile](const CElementNode& element, const std::string& /*path*/) {
        for (const CReadOnlyAttribute* attribute : footprint::AttributesOf(element)) {
            if (attribute->GetNodeName() != "checksum") {
                auto* const changed = const_cast<CReadOnlyAttribute*>(attribute);
                changed->Set(changed->GetValue() + hostile);
            }
        }
    });
    for (CConnectedDevice& device : *document.m_pConnectedDevices) {
        device.m_checksum.Clear(); // it is not right any more
    }
    document.m_deviceData.m_deviceId = L"1111.2222.33-100001-x\x1b[2J\n";
    std::string file;
    ASSERT_TRUE(document.GetDeviceFootprintString(false, file));
    const std::string name = folder / "hostile\x1b[2J.xml";
    WriteFile(name, file);
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{"show", name}, {"show", "--json", name}, {"show", "--redact", name}}) {
        const CRun run = RunTool(words);
        EXPECT_EQ(run.status, 0) << run.messages;
        EXPECT_TRUE(std::all_of(run.data.begin(), run.data.end(), [](char character) {
            return character == '\n' || static_cast<unsigned char>(character) >= 0x20;
        }));
        for (const char* harmful :
             {"\x7f", "\xc2\x9b", "\xe2\x80\xae", "\xe2\x81\xa6", "\xe2\x80\x8b", "\xe2\x80\xa8"}) {
            EXPECT_THAT(run.data, Not(HasSubstr(harmful)));
        }
        EXPECT_THAT(run.data, HasSubstr("<b>'"));
    }
}

TEST(ToolShowTest, HostileTagsComeOutHarmless)
{
    const TempFolder folder;
    WriteFile(folder / "tags.xml", "<DeviceFootprint formatVersion=\"02.06\">\n  <Ev\x1b[2Jil\x07/>\n"
                                   "  <DeviceData deviceId=\"a\"/>\n</DeviceFootprint>\n");
    const CRun run = RunTool({"show", folder / "tags.xml"});
    EXPECT_EQ(run.status, 0) << run.messages;
    EXPECT_THAT(run.messages, HasSubstr("Ev\\x1b[2Jil\\x07"));
    EXPECT_THAT(run.messages, Not(HasSubstr("\x1b")));
}

TEST(ToolShowTest, AWrongChecksumIsSaid)
{
    const TempFolder folder;
    std::string text = ReadFile(DataFile("golden/connected-devices.xml"));
    text.replace(text.find("operatingHours=\"11490\""), 22, "operatingHours=\"11491\"");
    WriteFile(folder / "changed.xml", text);
    const CRun run = RunTool({"show", folder / "changed.xml"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.data, HasSubstr("changed: the checksum is wrong"));
    EXPECT_THAT(run.data, HasSubstr("intact: the checksum is right")) << "that of the second connected device";
    const json data = json::parse(RunTool({"show", "--json", folder / "changed.xml"}).data);
    EXPECT_EQ(data["checksumIsRight"], false);
    EXPECT_EQ(data["DeviceFootprint"]["checksum"], "5024fe37b931e409994c673b5f65face") << "as it stands in the file";
}

TEST(ToolBoardTreeTest, EachBoardOnceWhateverItsIdsSay)
{
    using testing::ElementsAre;
    EXPECT_THAT(TreeOf({}), IsEmpty());
    EXPECT_THAT(TreeOf({{"c", "3", "2"}, {"a", "1", ""}, {"b", "2", "1"}, {"d", "4", "1"}}),
                ElementsAre("a(0)", "b(1)", "c(2)", "d(1)"));
    EXPECT_THAT(TreeOf({{"a", "1", "0"}, {"b", "2", "1"}}), ElementsAre("a(0)", "b(1)")) << "0 stands for none";
    EXPECT_THAT(TreeOf({{"a", "0", ""}, {"b", "2", "0"}}), ElementsAre("a(0)", "b(1)")) << "unless a board has it";
    EXPECT_THAT(TreeOf({{"a", "1", "9"}}), ElementsAre("a(0) no board has the id 9 of its parent"));
    EXPECT_THAT(TreeOf({{"a", "1", ""}, {"b", "1", ""}, {"c", "2", "1"}}),
                ElementsAre("a(0)", "c(1)", "b(0) a board before it has this id"));
    EXPECT_THAT(TreeOf({{"a", "1", "1"}}), ElementsAre("a(0) its parents make a circle"));
    EXPECT_THAT(TreeOf({{"x", "9", "3"}, {"a", "1", "3"}, {"b", "2", "1"}, {"c", "3", "2"}, {"d", "", ""}}),
                ElementsAre("d(0)", "a(0) its parents make a circle", "b(1)", "c(2)", "x(3)"));
    EXPECT_THAT(TreeOf({{"a", "", ""}, {"b", "", ""}}), ElementsAre("a(0)", "b(0)")) << "no id is no duplicate";
}

TEST(ToolBoardTreeTest, ALongChainAndManyCircles)
{
    constexpr long count = 20000;
    CHardwareList chain;
    CHardwareList circles;
    for (long id = 1; id <= count; ++id) {
        CHardware& link = chain.CreateEntry();
        link.m_id = id;
        link.m_parentId = id + 1; // the file begins at the leaf
        CHardware& own = circles.CreateEntry();
        own.m_id = id;
        own.m_parentId = id;
    }
    const auto tree = footprint::BoardTree(chain);
    ASSERT_EQ(tree.size(), static_cast<std::size_t>(count));
    EXPECT_EQ(tree.back().level, static_cast<std::size_t>(count - 1));
    EXPECT_EQ(footprint::BoardTree(circles).size(), static_cast<std::size_t>(count));
}

TEST(ToolShowTest, AFileOf16Megabytes)
{
    const TempFolder folder;
    constexpr std::size_t count = 100000;
    const std::string text = LargeFootprint(count);
    ASSERT_GE(text.size(), 16U * 1024 * 1024);
    WriteFile(folder / "large.xml", text);
    for (const std::vector<std::string>& options :
         std::vector<std::vector<std::string>>{{}, {"--json"}, {"--redact"}, {"--json", "--redact"}}) {
        std::vector<std::string> words = {"show", folder / "large.xml"};
        words.insert(words.end(), options.begin(), options.end());
        const auto begin = std::chrono::steady_clock::now();
        const CRun run = RunTool(words);
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
        EXPECT_EQ(run.status, 0) << run.messages;
        EXPECT_THAT(run.data, HasSubstr("BOARD-" + std::to_string(count)));
        EXPECT_LT(seconds.count(), 60) << "it takes a few seconds, unless something grows with the square";
        RecordProperty("seconds" + (options.empty() ? std::string() : options.back()), std::to_string(seconds.count()));
    }
}
