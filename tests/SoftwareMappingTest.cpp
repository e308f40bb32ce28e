// Software, BIOS and operating system through the facade: values, nesting, order of steps, messages, missing items,
// items that hold themselves.

#include "CNyxConfig.h"
#include "ErrorJournal.h"
#include "ErrorWord.h"
#include "FacadeMembers.h"
#include "Files.h"
#include "FootprintDump.h"
#include "GoldenData.h"
#include "ItemDump.h"
#include "OwningConfig.h"
#include "SmallStack.h"
#include "SystemItems.h"
#include "TempFolder.h"
#include "ThrownText.h"
#include "XmlStreams.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace KvOrdo;
using namespace NyxTest;
using KvDeviceFootprint::CAttribute;
using KvDeviceFootprint::CElementNode;
using KvDeviceFootprint::CSoftware;
using KvDeviceFootprint::CSoftwareData;
using KvDeviceFootprint::CSoftwareList;
using KvDeviceFootprint::CXmlStreamReader;
using Json = nlohmann::json;

namespace
{

const std::string throwingLine = NarrowLine("Throwing CNyxConfigException");
const std::string badIndexRead =
    "CNyxConfig::assertValidPartChangeIndex: <Software> partChangeIndex may only be empty or "
    "match pattern dd.dd";
const std::string badIndexWritten = "CNyxConfig::assertValidPartChangeIndex: software->partChangeIndex may only be "
                                    "empty or match pattern dd.dd";
const std::string noName = "CNyxConfig::assertNotEmpty: software->name may not be empty";
const std::string noBios = "CNyxConfig::fillSoftwareDataIntoFootprint(): BIOS item must be set";
const std::string noOperatingSystem = "CNyxConfig::fillSoftwareDataIntoFootprint(): operating system item must be set";
const std::string tooDeep = "CNyxConfig::fillCSoftwareFromDescItem(): software items are nested too deeply";

/// The levels of software that a file can hold: the root, SoftwareData, and a SoftwareList and a Software for each.
constexpr std::size_t greatestLevels = (CXmlStreamReader::MaxDepth - 2) / 2;

Json Attributes(const CElementNode& element)
{
    return DumpElement(element).at("attributes");
}

/// An element with all that a file can carry.
CSoftware FullSoftware()
{
    CSoftware software;
    software.m_name = L"firmware";
    software.m_version = L"v \u20AC";
    software.m_status = L"neither active nor inactive";
    software.m_partNumber = L"any number";
    software.m_partChangeIndex = L"01.02";
    software.m_sn = L"s 1";
    software.m_vendorName = L"vendor";
    software.m_wordSize = L"32";
    software.m_configuration = L"c";
    software.m_releaseState = L"r";
    software.m_architecture = L"a";
    software.m_properties.CreateEntry().m_name = L"p";
    return software;
}

/// Names with those of the nested ones: "a(b(c) d) e". A "-" stands for an entry without a name.
template<class List, class Name, class Nested>
std::wstring Outline(const List& list, const Name& name, const Nested& nested)
{
    std::wstring outline;
    for (const auto& entry : list) {
        const std::wstring text = name(entry);
        outline += outline.empty() ? L"" : L" ";
        outline += text.empty() ? L"-" : text;
        const std::wstring inner = Outline(nested(entry), name, nested);
        outline += inner.empty() ? L"" : L"(" + inner + L")";
    }
    return outline;
}

std::wstring Outline(const std::list<ISoftwareDescItem*>& items)
{
    return Outline(
        items, [](const ISoftwareDescItem* item) { return item == nullptr ? L"null" : item->getName(); },
        [](const ISoftwareDescItem* item) {
            return item == nullptr ? std::list<ISoftwareDescItem*>() : item->getSoftwareItems();
        });
}

std::wstring Outline(const CSoftwareList& list)
{
    return Outline(
        list, [](const CSoftware& software) { return software.m_name.GetValue(); },
        [](const CSoftware& software) -> const CSoftwareList& { return *software.m_pSoftwareList; });
}

SoftwareDescItem* NewSoftware(const std::wstring& name, const std::list<ISoftwareDescItem*>& nested = {})
{
    auto* item = new SoftwareDescItem;
    item->setName(name);
    item->setSoftwareItems(nested);
    return item;
}

/// Items of which each holds the next one.
class Chain
{
public:
    explicit Chain(std::size_t length)
    {
        for (std::size_t i = 0; i < length; ++i) {
            m_items.push_back(std::make_unique<SoftwareDescItem>());
            m_items.back()->setName(std::to_wstring(i + 1));
            if (i > 0) {
                m_items[i - 1]->setSoftwareItems({m_items[i].get()});
            }
        }
    }
    SoftwareDescItem& operator[](std::size_t index) { return *m_items[index]; }

private:
    std::vector<std::unique_ptr<SoftwareDescItem>> m_items;
};

class SoftwareMappingTest : public testing::Test
{
protected:
    CSoftwareData& Software() { return Document(m_config).m_softwareData; }
    std::list<ISoftwareDescItem*> Items() { return m_config.getSoftwareData()->getSoftwareItems(); }

    /// Software data that the facade owns, with BIOS and operating system.
    SoftwareDataDescItem& SetData(const std::list<ISoftwareDescItem*>& items = {})
    {
        auto* data = new SoftwareDataDescItem;
        data->setBiosItem(new BiosItem(L"bios", L"1", L"2", L"3"));
        data->setOperatingSystemItem(new OperatingSystemItem(L"os", L"4", L"5", L"6"));
        data->setSoftwareItems(items);
        m_config.setSoftwareData(data);
        return *data;
    }
    void SetDevice()
    {
        auto* device = new DeviceDataDescItem;
        device->setDeviceId(L"1101.2345.02-100123-ab");
        device->setType(L"TYPE-A");
        m_config.setDeviceData(device);
    }

    ErrorWord m_errorWord;
    TempFolder m_folder;
    OwningConfig m_config;
    ErrorJournal m_errors;
};

// ------------------------------------------------------------------------------------------------------------ read

TEST_F(SoftwareMappingTest, FootprintWithoutSoftwareGivesAnItemWithNothingInIt)
{
    const Json expected = {{"biosItem", nullptr}, {"operatingSystemItem", nullptr}, {"softwareItems", Json::array()}};
    m_config.fillSoftwareDataFromFootprint(true);
    EXPECT_EQ(DumpItems(m_config).at("softwareData"), expected);
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(SoftwareMappingTest, ReadsTheFieldsOfSoftwareAndNeitherBiosNorOperatingSystem)
{
    Software().m_bios.m_name = L"bios";
    Software().m_operatingSystem.m_name = L"os";
    Software().m_softwareList.push_back(FullSoftware());
    const Json before = DumpElement(Software());
    m_config.fillSoftwareDataFromFootprint(true);
    EXPECT_TRUE(SameJson(Json::parse(R"({"biosItem": null, "operatingSystemItem": null, "softwareItems": [
        {"name": "firmware", "version": "v \u20AC", "status": "neither active nor inactive",
         "partNumber": "any number", "partChangeIndex": "01.02", "serialNumber": "s 1", "vendorName": "vendor",
         "softwareItems": []}]})"),
                         DumpItems(m_config).at("softwareData")));
    EXPECT_EQ(DumpElement(Software()), before);
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(SoftwareMappingTest, SoftwareWithoutAnyAttributeIsRead)
{
    Software().m_softwareList.CreateEntry();
    m_config.fillSoftwareDataFromFootprint(true);
    ASSERT_EQ(Items().size(), 1U);
    EXPECT_EQ(Items().front()->getName(), L"");
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(SoftwareMappingTest, NestedSoftwareIsReadLevelByLevelInOrder)
{
    const auto add = [](CSoftwareList& list, const wchar_t* name) -> CSoftwareList& {
        CSoftware& software = list.CreateEntry();
        software.m_name = name;
        return *software.m_pSoftwareList;
    };
    CSoftwareList& a = add(Software().m_softwareList, L"a");
    CSoftwareList& b = add(a, L"b");
    add(b, L"c");
    add(b, L"d");
    add(a, L"e");
    add(Software().m_softwareList, L"f");
    m_config.fillSoftwareDataFromFootprint(true);
    EXPECT_EQ(Outline(Items()), L"a(b(c d) e) f");
}

TEST_F(SoftwareMappingTest, NestedListIsReadUnlessItHasNoEntries)
{
    Software().m_softwareList.CreateEntry().m_name = L"a";
    Software().m_softwareList.CreateEntry().m_name = L"b";
    Software().m_softwareList.back().m_pSoftwareList->CreateEntry(); // an entry without content
    m_config.fillSoftwareDataFromFootprint(true);
    EXPECT_TRUE(Items().front()->getSoftwareItems().empty());
    EXPECT_EQ(Items().back()->getSoftwareItems().size(), 1U);
}

TEST_F(SoftwareMappingTest, ListIsReadByItself)
{
    CSoftwareList list;
    list.push_back(FullSoftware());
    list.push_back(FullSoftware());
    list.back().m_name = L"second";
    const std::list<ISoftwareDescItem*> items = m_config.fillSoftwareListFromFootprint(list, true);
    EXPECT_EQ(Outline(items), L"firmware second");
    EXPECT_EQ(m_config.getSoftwareData(), nullptr);
    SetData(items); // to be deleted with it
}

TEST_F(SoftwareMappingTest, BadIndexIsReportedPerSoftwareAndReadAsItStands)
{
    for (const wchar_t* index : {L"1.2", L"01.02", L"", L"0102", L"ab.cd"}) {
        CSoftware& software = Software().m_softwareList.CreateEntry();
        software.m_partChangeIndex = index;
        software.m_vendorName = L"v";
        software.m_pSoftwareList->CreateEntry().m_partChangeIndex = index;
    }
    m_config.fillSoftwareDataFromFootprint(false);
    EXPECT_EQ(m_errors.Take(), WideLine(badIndexRead) + WideLine(badIndexRead) + WideLine(badIndexRead) +
                                   WideLine(badIndexRead) + WideLine(badIndexRead) + WideLine(badIndexRead));
    ASSERT_EQ(Items().size(), 5U);
    EXPECT_EQ(Items().front()->getPartChangeIndex(), L"1.2");
    EXPECT_EQ(Items().front()->getVendorName(), L"v");
    EXPECT_EQ(Items().back()->getSoftwareItems().front()->getPartChangeIndex(), L"ab.cd");
}

TEST_F(SoftwareMappingTest, FailureOnAnyLevelLeavesANewItemWithNothingInIt)
{
    CSoftwareList& list = Software().m_softwareList;
    list.CreateEntry().m_pSoftwareList->CreateEntry();
    list.CreateEntry().m_pSoftwareList->CreateEntry().m_pSoftwareList->CreateEntry();
    list.CreateEntry();
    CSoftware& second = list.front().m_pSoftwareList->CreateEntry();
    CSoftware& deepest = second.m_pSoftwareList->CreateEntry();
    for (CSoftware* bad : {&list.front(), &second, &deepest, &list.back()}) {
        bad->m_partChangeIndex = L"1.2";
        OwningConfig former;
        former.setSoftwareData(&SetData());
        EXPECT_EQ(ThrownText([&] { m_config.fillSoftwareDataFromFootprint(true); }), badIndexRead);
        EXPECT_EQ(m_errors.Take(), WideLine(badIndexRead) + throwingLine);
        EXPECT_NE(m_config.getSoftwareData(), former.getSoftwareData());
        ASSERT_NE(m_config.getSoftwareData(), nullptr);
        EXPECT_TRUE(Items().empty());
        EXPECT_EQ(m_config.getSoftwareData()->getBiosItem(), nullptr);
        EXPECT_NE(former.getSoftwareData()->getBiosItem(), nullptr) << "the former item is forgotten, not deleted";
        bad->m_partChangeIndex.Clear();
        delete m_config.getSoftwareData();
        m_config.setSoftwareData(nullptr);
    }
}

// --------------------------------------------------------------------------------------------------- written, data

TEST_F(SoftwareMappingTest, WithoutSoftwareDataNothingIsWritten)
{
    SetDevice();
    m_config.fillSoftwareDataIntoFootprint(true);
    EXPECT_TRUE(Software().IsEmpty());
    EXPECT_THAT(ReadFile(m_config.saveFile(m_folder.Path(), true)),
                testing::Not(testing::AnyOf(testing::HasSubstr("Software"), testing::HasSubstr("Bios"))));
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(SoftwareMappingTest, BiosAndOperatingSystemAreWrittenUnchecked)
{
    const SoftwareDataDescItem& data = SetData();
    m_config.fillSoftwareDataIntoFootprint(true);
    EXPECT_TRUE(SameJson(Json::parse(R"({"element": "SoftwareData", "attributes": [], "children": [
        {"element": "Bios", "children": [],
         "attributes": [["name", "bios"], ["version", "1"], ["partNumber", "2"], ["partChangeIndex", "3"]]},
        {"element": "OperatingSystem", "children": [],
         "attributes": [["name", "os"], ["version", "4"], ["partNumber", "5"], ["partChangeIndex", "6"]]}]})"),
                         DumpElement(Software())));
    EXPECT_EQ(m_errors.Take(), "");
    const std::vector<std::string> order = {"name", "partChangeIndex", "partNumber", "version"};
    EXPECT_EQ(static_cast<BiosItem*>(data.getBiosItem())->Asked(), order);
    EXPECT_EQ(static_cast<OperatingSystemItem*>(data.getOperationSystemItem())->Asked(), order);
}

TEST_F(SoftwareMappingTest, FurtherFieldsOfTheOperatingSystemAreLeftAlone)
{
    Software().m_operatingSystem.m_kernelRelease = L"6.1";
    Software().m_operatingSystem.m_version = L"replaced";
    SetData();
    m_config.fillSoftwareDataIntoFootprint(true);
    EXPECT_EQ(Attributes(Software().m_operatingSystem),
              Json::parse(R"([["name", "os"], ["version", "4"], ["partNumber", "5"], ["partChangeIndex", "6"],
                              ["kernelRelease", "6.1"]])"));
}

TEST_F(SoftwareMappingTest, MissingBiosIsReportedAndStaysEmpty)
{
    SoftwareDataDescItem& data = SetData({NewSoftware(L"a")});
    delete data.getBiosItem();
    data.setBiosItem(nullptr);
    m_config.fillSoftwareDataIntoFootprint(false);
    EXPECT_EQ(m_errors.Take(), NarrowLine(noBios));
    EXPECT_TRUE(Software().m_bios.IsEmpty());
    EXPECT_EQ(Software().m_operatingSystem.m_name.GetValue(), L"os");
    EXPECT_EQ(Outline(Software().m_softwareList), L"a");

    EXPECT_EQ(ThrownText([&] { m_config.fillDeviceFootprint(true); }), noBios);
    EXPECT_THAT(m_errors.Take(), testing::StartsWith(NarrowLine(noBios)));
    EXPECT_TRUE(Software().IsEmpty());
}

TEST_F(SoftwareMappingTest, MissingOperatingSystemIsReportedAndStaysEmpty)
{
    SoftwareDataDescItem& data = SetData({NewSoftware(L"a")});
    delete data.getOperationSystemItem();
    data.setOperatingSystemItem(nullptr);
    m_config.fillSoftwareDataIntoFootprint(false);
    EXPECT_EQ(m_errors.Take(), NarrowLine(noOperatingSystem));
    EXPECT_TRUE(Software().m_operatingSystem.IsEmpty());
    EXPECT_EQ(Outline(Software().m_softwareList), L"a");

    EXPECT_EQ(ThrownText([&] { m_config.fillDeviceFootprint(true); }), noOperatingSystem);
    EXPECT_EQ(Software().m_bios.m_name.GetValue(), L"bios") << "was written before";
    EXPECT_TRUE(Software().m_softwareList.empty());
}

TEST_F(SoftwareMappingTest, LoadedDataNeedsBothItemsBeforeASave)
{
    Software().m_bios.m_name = L"in the file";
    Software().m_softwareList.push_back(FullSoftware());
    m_config.fillSoftwareDataFromFootprint(true);
    m_config.fillDeviceFootprint(false);
    EXPECT_EQ(m_errors.Take(), NarrowLine(noBios) + NarrowLine(noOperatingSystem));
    EXPECT_TRUE(Software().m_bios.IsEmpty());
    EXPECT_EQ(Outline(Software().m_softwareList), L"firmware");

    m_config.getSoftwareData()->setBiosItem(new BiosItem(L"b", L"", L"", L""));
    m_config.getSoftwareData()->setOperatingSystemItem(new OperatingSystemItem(L"o", L"", L"", L""));
    EXPECT_EQ(ThrownText([&] { m_config.fillDeviceFootprint(true); }), NothingThrown);
    EXPECT_EQ(Attributes(Software().m_bios), Json::parse(R"([["name", "b"]])"));
    EXPECT_EQ(m_errors.Take(), "");
}

// ------------------------------------------------------------------------------------------------ written, software

TEST_F(SoftwareMappingTest, WritesWhatWasReadAndLosesTheRest)
{
    CSoftware expected = FullSoftware();
    Software().m_softwareList.push_back(expected);
    m_config.fillSoftwareDataFromFootprint(true);
    for (CAttribute CSoftware::*lost : {&CSoftware::m_wordSize, &CSoftware::m_configuration, &CSoftware::m_releaseState,
                                        &CSoftware::m_architecture}) {
        (expected.*lost).Clear();
    }
    expected.m_properties.clear();
    EXPECT_TRUE(
        SameJson(DumpElement(expected), DumpElement(m_config.fillCSoftwareFromDescItem(Items().front(), true))));
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(SoftwareMappingTest, NullSoftwareGivesADefaultElement)
{
    EXPECT_TRUE(m_config.fillCSoftwareFromDescItem(nullptr, true).IsEmpty());
    SetData({nullptr, NewSoftware(L"a", {nullptr, NewSoftware(L"b")})});
    m_config.fillSoftwareDataIntoFootprint(true);
    EXPECT_EQ(Outline(Software().m_softwareList), L"- a(- b)");
    EXPECT_EQ(Software().m_softwareList.size(), 2U);
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(SoftwareMappingTest, NestedSoftwareIsWrittenInOrder)
{
    SetData({NewSoftware(L"a", {NewSoftware(L"b", {NewSoftware(L"c"), NewSoftware(L"d")}), NewSoftware(L"e")}),
             NewSoftware(L"f")});
    m_config.fillSoftwareDataIntoFootprint(true);
    EXPECT_EQ(Outline(Software().m_softwareList), L"a(b(c d) e) f");
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(SoftwareMappingTest, NameIsNeededOnTheWayOutOnly)
{
    Software().m_softwareList.CreateEntry().m_version = L"1";
    m_config.fillSoftwareDataFromFootprint(true);
    EXPECT_EQ(m_errors.Take(), "");
    EXPECT_EQ(Attributes(m_config.fillCSoftwareFromDescItem(Items().front(), false)),
              Json::parse(R"([["version", "1"]])"));
    EXPECT_EQ(m_errors.Take(), WideLine(noName));
    m_config.getSoftwareData()->setBiosItem(new BiosItem(L"", L"", L"", L""));
    m_config.getSoftwareData()->setOperatingSystemItem(new OperatingSystemItem(L"", L"", L"", L""));
    SetDevice();
    EXPECT_EQ(ThrownText([&] { m_config.saveFile(m_folder.Path(), true); }), noName);
    EXPECT_EQ(m_errors.Take(), WideLine(noName) + throwingLine);
    EXPECT_TRUE(FolderEntries(m_folder.Path()).empty());
}

TEST_F(SoftwareMappingTest, BadIndexIsReportedAndWrittenAsItStands)
{
    SoftwareDescItem software;
    software.setName(L"a");
    for (const wchar_t* index : {L"1.2", L"0102", L"01.0a"}) {
        software.setPartChangeIndex(index);
        EXPECT_EQ(m_config.fillCSoftwareFromDescItem(&software, false).m_partChangeIndex.GetValue(), index);
        EXPECT_EQ(m_errors.Take(), WideLine(badIndexWritten));
        EXPECT_EQ(ThrownText([&] { m_config.fillCSoftwareFromDescItem(&software, true); }), badIndexWritten);
        EXPECT_EQ(m_errors.Take(), WideLine(badIndexWritten) + throwingLine);
    }
}

TEST_F(SoftwareMappingTest, NameIsCheckedThenTheIndexThenWhatIsNested)
{
    auto* inner = NewSoftware(L"");
    auto* outer = NewSoftware(L"", {inner});
    inner->setPartChangeIndex(L"1");
    outer->setPartChangeIndex(L"2");
    auto* next = NewSoftware(L"");
    SetData({outer, next});
    m_config.fillSoftwareDataIntoFootprint(false);
    EXPECT_EQ(m_errors.Take(), WideLine(noName) + WideLine(badIndexWritten) + WideLine(noName) +
                                   WideLine(badIndexWritten) + WideLine(noName));

    const std::vector<std::pair<std::string, std::function<void()>>> defects = {
        {noName, [&] { outer->setName(L"o"); }}, {badIndexWritten, [&] { outer->setPartChangeIndex(L""); }},
        {noName, [&] { inner->setName(L"i"); }}, {badIndexWritten, [&] { inner->setPartChangeIndex(L""); }},
        {noName, [&] { next->setName(L"n"); }},
    };
    for (const auto& [message, repair] : defects) {
        EXPECT_EQ(ThrownText([&] { m_config.fillDeviceFootprint(true); }), message);
        repair();
    }
    EXPECT_EQ(ThrownText([&] { m_config.fillDeviceFootprint(true); }), NothingThrown);
    EXPECT_EQ(Outline(Software().m_softwareList), L"o(i) n");
}

TEST_F(SoftwareMappingTest, FailedSoftwareLeavesThatInFrontOfItInTheDocument)
{
    SetData({NewSoftware(L"a"), NewSoftware(L"b", {NewSoftware(L"")}), NewSoftware(L"c")});
    EXPECT_EQ(ThrownText([&] { m_config.fillSoftwareDataIntoFootprint(true); }), noName);
    EXPECT_EQ(Outline(Software().m_softwareList), L"a");
    EXPECT_EQ(Software().m_bios.m_name.GetValue(), L"bios");
}

/// An application's own software class.
class ForeignSoftware : public ISoftwareDescItem
{
public:
    explicit ForeignSoftware(std::list<ISoftwareDescItem*> nested = {}) : m_nested(std::move(nested)) {}
    virtual ~ForeignSoftware() = default;
    std::wstring getName() const override { return L"foreign"; }
    std::wstring getVersion() const override { return L"1"; }
    std::wstring getStatus() const override { return L"2"; }
    std::wstring getPartNumber() const override { return L"3"; }
    std::wstring getPartChangeIndex() const override { return L"04.05"; }
    std::wstring getSerialNumber() const override { return L"6"; }
    std::wstring getVendorName() const override { return L"7"; }
    std::list<ISoftwareDescItem*> getSoftwareItems() const override { return m_nested; }

private:
    std::list<ISoftwareDescItem*> m_nested;
};

TEST_F(SoftwareMappingTest, SoftwareOfAForeignClassIsWritten)
{
    ForeignSoftware inner;
    ForeignSoftware outer({&inner, &inner});
    const CSoftware software = m_config.fillCSoftwareFromDescItem(&outer, true);
    EXPECT_EQ(Attributes(software),
              Json::parse(R"([["name", "foreign"], ["version", "1"], ["status", "2"], ["partNumber", "3"],
                              ["partChangeIndex", "04.05"], ["sn", "6"], ["vendorName", "7"]])"));
    EXPECT_EQ(Outline(*software.m_pSoftwareList), L"foreign foreign") << "one item may stand in two places";
    EXPECT_EQ(m_errors.Take(), "");
}

// ------------------------------------------------------------------------------------------------- depth and cycles

TEST_F(SoftwareMappingTest, AsManyLevelsAsAFileCanHoldGoThroughIt)
{
    Chain chain(greatestLevels);
    SoftwareDataDescItem data;
    BiosItem bios(L"b", L"", L"", L"");
    OperatingSystemItem operatingSystem(L"o", L"", L"", L"");
    data.setBiosItem(&bios);
    data.setOperatingSystemItem(&operatingSystem);
    data.setSoftwareItems({&chain[0]});
    DeviceDataDescItem device;
    device.setDeviceId(L"1101.2345.02-100123-ab");
    device.setType(L"TYPE-A");
    CNyxConfig config;
    config.setDeviceData(&device);
    config.setSoftwareData(&data);
    RunWithSmallStack([&] { config.saveFileAs(m_folder / "deep.xml", true); });
    EXPECT_EQ(m_errors.Take(), "");
    RunWithSmallStack([&] { m_config.loadFile(m_folder / "deep.xml", true); });
    EXPECT_EQ(m_errors.Take(), "");
    EXPECT_EQ(Outline(Items()), Outline(data.getSoftwareItems()));
    data.setBiosItem(nullptr);
    data.setOperatingSystemItem(nullptr);
}

TEST_F(SoftwareMappingTest, LevelsBeyondThatAreReportedAndLeftOut)
{
    for (const std::size_t levels : {greatestLevels + 1, greatestLevels + 2, std::size_t{100000}}) {
        Chain chain(levels);
        Chain expected(greatestLevels);
        OwningConfig config;
        auto* data = new SoftwareDataDescItem;
        data->setBiosItem(new BiosItem(L"b", L"", L"", L""));
        data->setOperatingSystemItem(new OperatingSystemItem(L"o", L"", L"", L""));
        data->setSoftwareItems({&chain[0]});
        config.setSoftwareData(data);
        std::string text;
        RunWithSmallStack([&] { text = config.getDevFp(false); });
        EXPECT_EQ(m_errors.Take(), NarrowLine(tooDeep)) << levels;
        EXPECT_THAT(text, testing::HasSubstr("name=\"" + std::to_string(greatestLevels) + "\""));
        EXPECT_THAT(text, testing::Not(testing::HasSubstr("name=\"" + std::to_string(greatestLevels + 1) + "\"")));
        RunWithSmallStack([&] { EXPECT_EQ(ThrownText([&] { config.getDevFp(true); }), tooDeep) << levels; });
        EXPECT_THAT(m_errors.Take(), testing::StartsWith(NarrowLine(tooDeep))) << levels;
        data->setSoftwareItems({});
    }
}

struct Cycle
{
    const char* name;
    std::vector<std::vector<std::size_t>> nested; // of each item, the indices of those it holds
    std::wstring outline;                         // of item 0
    std::size_t messages;
};

TEST_F(SoftwareMappingTest, ItemThatHoldsItselfIsReportedAndLeftEmpty)
{
    const std::vector<Cycle> cycles = {
        {"itself", {{0}}, L"0(-)", 1},
        {"itself twice", {{0, 0}}, L"0(- -)", 2},
        {"each other", {{1}, {0}}, L"0(1(-))", 1},
        {"between others", {{1, 0, 2}, {}, {}}, L"0(1 - 2)", 1},
        {"further down", {{1}, {2, 3}, {1}, {}}, L"0(1(2(-) 3))", 1},
    };
    for (const Cycle& cycle : cycles) {
        std::vector<std::unique_ptr<SoftwareDescItem>> items;
        for (std::size_t i = 0; i < cycle.nested.size(); ++i) {
            items.push_back(std::make_unique<SoftwareDescItem>());
            items.back()->setName(std::to_wstring(i));
        }
        for (std::size_t i = 0; i < items.size(); ++i) {
            std::list<ISoftwareDescItem*> nested;
            for (const std::size_t index : cycle.nested[i]) {
                nested.push_back(items[index].get());
            }
            items[i]->setSoftwareItems(nested);
        }
        CSoftwareList written;
        written.push_back(m_config.fillCSoftwareFromDescItem(items[0].get(), false));
        std::string lines;
        for (std::size_t i = 0; i < cycle.messages; ++i) {
            lines += NarrowLine(tooDeep);
        }
        EXPECT_EQ(m_errors.Take(), lines) << cycle.name;
        EXPECT_EQ(Outline(written), cycle.outline) << cycle.name;
        EXPECT_EQ(ThrownText([&] { m_config.fillCSoftwareFromDescItem(items[0].get(), true); }), tooDeep);
        EXPECT_THAT(m_errors.Take(), testing::StartsWith(NarrowLine(tooDeep))) << cycle.name;
    }
}

} // namespace
