// Boards, programmable parts and products that the facade writes: values, conditions, order of steps, messages, new
// numbers. HardwareMappingTest.cpp has the other direction.

#include "CNyxConfig.h"
#include "GoldenData.h"
#include "HardwareMapping.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <iterator>
#include <limits>
#include <list>
#include <string>
#include <utility>
#include <vector>

using namespace KvOrdo;
using namespace NyxTest;
using KvDeviceFootprint::CAttribute;

namespace
{

const std::string sameProductId = "CNyxConfig::setHardwareData(): product->id must be unique";
const std::string noProductId = "CNyxConfig::fillCProductFromDescItem(): id must be set";
const std::string noBoardId = "CNyxConfig::fillCHardwareFromDescItem(): id must be set";
const std::string bigPartNumber = "CNyxConfig::parsePartNumber: HwBoardDescItem.partNumber must not be > 9999,9999";
const std::string noServiceCode = "CNyxConfig::fillCServiceFromDescItem(): serviceCode must be set";
const std::string badProductIndex = BadIndex("product->partChangeIndex");

class HardwareMappingWriteTest : public HardwareMappingFixture
{
};

// ------------------------------------------------------------------------------------------------- boards, written

HwProgrammablePartDescItem* NewPart(const std::wstring& name, const std::wstring& index = L"")
{
    auto* part = new HwProgrammablePartDescItem;
    part->setName(name);
    part->setPartChangeIndex(index);
    return part;
}

CServiceDescItem* NewService(long code)
{
    auto* service = new CServiceDescItem;
    service->setServiceCode(code);
    return service;
}

TEST_F(HardwareMappingWriteTest, WritesWhatWasReadOfABoard)
{
    CHardware board = FullBoard();
    CHardware expected = board;
    expected.m_name = L"CPU";
    expected.m_partNumber = L"1234.5678.02";
    expected.m_properties.clear();
    EXPECT_TRUE(SameJson(DumpElement(expected), DumpElement(Written(Read(board)))));
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingWriteTest, StartValuesOfABoardAreWritten)
{
    HwBoardDescItem& board = Add(0);
    for (const bool throwOnError : {false, true}) {
        EXPECT_TRUE(SameJson(Json::parse(R"([["id", "0"], ["productId", "0"], ["partNumber", "0000.0000.00"],
            ["sn", "0"], ["partChangeIndex", "00.00"], ["hardwareCode", "0"], ["readCode", "0"], ["parentId", "0"],
            ["externConnected", "false"]])"),
                             Attributes(Written(board, throwOnError))));
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingWriteTest, NullItemsGiveDefaultElements)
{
    EXPECT_TRUE(m_config.fillCHardwareFromDescItem(nullptr, true).IsEmpty());
    EXPECT_TRUE(m_config.fillCProductFromDescItem(nullptr, true).IsEmpty());
    EXPECT_TRUE(m_config.fillCProgrammablePartFromDescItem(nullptr, true).IsEmpty());
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingWriteTest, SomeFieldsOfABoardAreNotWritten)
{
    HwBoardDescItem& board = Add(2003, L"CPU");
    board.setPartNumberVariant(12345678, 2);
    const Json before = DumpElement(Written(board));
    board.setType(1);
    board.setMainVersion(2);
    board.setIsSimulation(true);
    board.setVariantOption(3);
    board.setName(L"CPU[2,1]");
    board.setPartNumberVariant(12345678, 3);
    EXPECT_EQ(DumpElement(Written(board)), before);
}

struct OptionalNumber
{
    const char* name;
    void (HwBoardDescItem::*setter)(long);
    CAttribute CHardware::*attribute;
    long greatestWritten;
};

TEST_F(HardwareMappingWriteTest, OptionalNumbersAreWrittenInTheirRange)
{
    const std::vector<OptionalNumber> fields = {
        {"productId", &HwBoardDescItem::setProductId, &CHardware::m_productId, 999999},
        {"readCode", &HwBoardDescItem::setReadCode, &CHardware::m_readCode, GreatestLong},
        {"parentId", &HwBoardDescItem::setParentId, &CHardware::m_parentId, GreatestLong},
    };
    const std::vector<long> numbers = {
        std::numeric_limits<long>::min(), -2, -1, 0, 1, 123456, 999999, 1000000, 1234567, GreatestLong};
    for (const OptionalNumber& field : fields) {
        for (const long number : numbers) {
            HwBoardDescItem& board = Add(1);
            (board.*field.setter)(number);
            const bool written = number >= 0 && number <= field.greatestWritten;
            EXPECT_EQ((Written(board).*field.attribute).GetValue(), written ? std::to_wstring(number) : L"")
                << field.name << " " << number;
        }
    }
    EXPECT_EQ(m_errors.Take(), "");
}

struct OptionalText
{
    void (HwBoardDescItem::*setter)(const std::wstring&);
    CAttribute CHardware::*attribute;
};

TEST_F(HardwareMappingWriteTest, OptionalTextsAreWrittenUnchecked)
{
    const std::vector<OptionalText> fields = {
        {&HwBoardDescItem::setProductDate, &CHardware::m_productDate},
        {&HwBoardDescItem::setTestInstruction, &CHardware::m_testInstruction},
        {&HwBoardDescItem::setPartName, &CHardware::m_partName},
        {&HwBoardDescItem::setSlotInfo, &CHardware::m_connectorName},
    };
    for (const OptionalText& field : fields) {
        for (const wchar_t* text : {L"2011-3-7", L"\u20AC <&>", L""}) {
            HwBoardDescItem& board = Add(1);
            (board.*field.setter)(text);
            EXPECT_EQ((Written(board).*field.attribute).GetValue(), text);
        }
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingWriteTest, ExternConnectedIsAlwaysWritten)
{
    HwBoardDescItem& board = Add(1);
    EXPECT_EQ(Written(board).m_externConnected.GetValue(), L"false");
    board.setExternConnected(true);
    EXPECT_EQ(Written(board).m_externConnected.GetValue(), L"true");
}

TEST_F(HardwareMappingWriteTest, LongSerialNumbersAreDividedByThousand)
{
    const std::vector<std::pair<long, long>> cases = {{0, 0},
                                                      {-5, -5},
                                                      {99999999, 99999999},
                                                      {100000000, 100000},
                                                      {123456789, 123456},
                                                      {GreatestLong, GreatestLong / 1000}};
    for (const auto& [number, written] : cases) {
        HwBoardDescItem& board = Add(1);
        board.setSerialNumber(number);
        EXPECT_EQ(Written(board).m_sn.GetValue(), std::to_wstring(written));
    }
}

struct BadNumber
{
    std::function<void(HwBoardDescItem&)> spoil;
    CAttribute CHardware::*attribute;
    std::string message;
};

TEST_F(HardwareMappingWriteTest, PartNumberAndRevisionsOutOfRangeAreLeftOut)
{
    const std::vector<BadNumber> cases = {
        {[](HwBoardDescItem& b) { b.setPartNumberVariant(100000000, 5); }, &CHardware::m_partNumber, bigPartNumber},
        {[](HwBoardDescItem& b) { b.setPartNumberVariant(-1, 5); }, &CHardware::m_partNumber,
         BadRevision("partNumber must not be < 0")},
        {[](HwBoardDescItem& b) { b.setMajorRevision(100); }, &CHardware::m_partChangeIndex,
         BadRevision("majorRevision must not be > 99")},
        {[](HwBoardDescItem& b) { b.setMajorRevision(-1); }, &CHardware::m_partChangeIndex,
         BadRevision("majorRevision must not be < 0")},
        {[](HwBoardDescItem& b) { b.setMinorRevision(100); }, &CHardware::m_partChangeIndex,
         BadRevision("minorRevision must not be > 99")},
        {[](HwBoardDescItem& b) { b.setMinorRevision(-1); }, &CHardware::m_partChangeIndex,
         BadRevision("minorRevision must not be < 0")},
    };
    for (const BadNumber& test : cases) {
        HwBoardDescItem& board = Add(1, L"board");
        CHardware expected = Written(board);
        (expected.*test.attribute).Clear();
        test.spoil(board);
        EXPECT_EQ(DumpElement(Written(board, false)), DumpElement(expected));
        EXPECT_EQ(m_errors.Take(), NarrowLine(test.message));
        EXPECT_EQ(ThrownText([&] { Written(board, true); }), test.message);
        EXPECT_EQ(m_errors.Take(), NarrowLine(test.message));
    }
}

TEST_F(HardwareMappingWriteTest, BoardWithoutIdIsWrittenWithoutItsRequiredAttributes)
{
    CHardware source = FullBoard();
    HwBoardDescItem& board = Read(source);
    const CHardware complete = Written(board);
    board.setId(-1);
    const CHardware written = Written(board, false);
    EXPECT_EQ(m_errors.Take(), NarrowLine(noBoardId));
    EXPECT_TRUE(SameJson(Json::parse(R"([["productId", "17"], ["productDate", "2011-3-7"], ["readCode", "5"],
        ["testInstruction", "1.5"], ["partName", "Processor \u20AC"], ["parentId", "2001"],
        ["externConnected", "true"]])"),
                         Attributes(written)));
    EXPECT_EQ(DumpElement(written).at("children"), DumpElement(complete).at("children"));

    EXPECT_EQ(ThrownText([&] { Written(board, true); }), noBoardId);
    EXPECT_EQ(m_errors.Take(), NarrowLine(noBoardId));
}

/// An application's own class of bought parts.
class ForeignBPart : public IBPartIdentificationDescItem
{
public:
    std::wstring getName() const override { return L"name"; }
    std::wstring getPartNumber() const override { return L"number"; }
    std::wstring getSn() const override { return L"sn"; }
    std::wstring getPartChangeIndex() const override { return L"index"; }
    std::wstring getVendorName() const override { return L"vendor"; }
    std::wstring getAdditionalInfo() const override { return L"info"; }
};

/// And one that derives from the library's.
class DerivedBPart : public CBPartIdentificationDescItem
{
};

TEST_F(HardwareMappingWriteTest, BPartIdentificationOfAForeignClassIsLeftOutSilently)
{
    HwBoardDescItem& board = Add(1);
    EXPECT_TRUE(Written(board).m_bPartIdentification.IsEmpty());
    ForeignBPart foreign;
    board.setBPartIdentification(&foreign);
    EXPECT_TRUE(Written(board, true).m_bPartIdentification.IsEmpty());
    DerivedBPart derived;
    derived.setVendorName(L"v");
    derived.setPartChangeIndex(L"no index");
    board.setBPartIdentification(&derived);
    EXPECT_EQ(Attributes(Written(board).m_bPartIdentification),
              Json::parse(R"([["partChangeIndex", "no index"], ["vendorName", "v"]])"));
    board.setBPartIdentification(nullptr);
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingWriteTest, NullEntriesOfNestedListsGiveDefaultEntries)
{
    HwBoardDescItem& board = Add(1);
    auto* maintenance = new CMaintenanceDescItem;
    maintenance->setMaintenanceTasks({nullptr});
    auto* data = new CMaintenanceDataDescItem;
    data->setMaintenances({nullptr, maintenance});
    board.setMaintenanceData(data);
    board.setProgrammableParts({nullptr, NewPart(L"fpga"), nullptr});
    board.setServices({nullptr, NewService(7)});
    CHardware written = Written(board);
    ASSERT_EQ(written.m_programmableParts.size(), 3U);
    EXPECT_TRUE(written.m_programmableParts.front().IsEmpty());
    EXPECT_EQ(std::next(written.m_programmableParts.begin())->m_name.GetValue(), L"fpga");
    ASSERT_EQ(written.m_serviceData.m_services.size(), 2U);
    EXPECT_TRUE(written.m_serviceData.m_services.front().IsEmpty());
    EXPECT_EQ(written.m_serviceData.m_services.back().m_serviceCode.GetValue(), L"7");
    ASSERT_EQ(written.m_maintenanceData.m_maintenances.size(), 2U);
    EXPECT_TRUE(written.m_maintenanceData.IsEmpty());
    EXPECT_EQ(written.m_maintenanceData.m_maintenances.back().m_maintenanceTasks.size(), 1U);
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingWriteTest, BoardIsWrittenInTheOrderOfTheSteps)
{
    HwBoardDescItem& board = Add(-1);
    board.setPartNumberVariant(100000000, 0);
    board.setMinorRevision(100);
    auto* part = NewPart(L"p", L"1.2");
    board.setProgrammableParts({part});
    auto* maintenance = new CMaintenanceDescItem;
    maintenance->setMaintenanceDate(L"d");
    auto* data = new CMaintenanceDataDescItem;
    data->setMaintenances({maintenance});
    board.setMaintenanceData(data);
    auto* service = NewService(-1);
    board.setServices({service});

    Written(board, false);
    EXPECT_EQ(m_errors.Take(), NarrowLine(bigPartNumber) + NarrowLine(BadRevision("minorRevision must not be > 99")) +
                                   NarrowLine(noBoardId) + WideLine(BadIndex("programmablePart->partChangeIndex")) +
                                   WideLine(BadDate("maintenance->maincenanceDate")) + NarrowLine(noServiceCode));
    HwBoardDescItem& other = Add(-1); // a table of part numbers never shrinks
    other.setMinorRevision(100);
    other.setProgrammableParts(board.getProgrammableParts());
    other.setMaintenanceData(data);
    other.setServices(board.getServices());
    EXPECT_EQ(ThrownText([&] { Written(board, true); }), bigPartNumber);
    board.setProgrammableParts({});
    board.setMaintenanceData(nullptr);
    board.setServices({});
    const std::vector<Defect<HwBoardDescItem>> defects = {
        {BadRevision("minorRevision must not be > 99"), [](HwBoardDescItem& b) { b.setMinorRevision(1); }},
        {noBoardId, [](HwBoardDescItem& b) { b.setId(1); }},
        {BadIndex("programmablePart->partChangeIndex"), [&](HwBoardDescItem&) { part->setPartChangeIndex(L""); }},
        {BadDate("maintenance->maincenanceDate"), [&](HwBoardDescItem&) { maintenance->setMaintenanceDate(L""); }},
        {noServiceCode, [&](HwBoardDescItem&) { service->setServiceCode(1); }},
    };
    ExpectDefectsInOrder(other, defects, [&] { Written(other, true); });
}

TEST_F(HardwareMappingWriteTest, WritesAProgrammablePart)
{
    HwProgrammablePartDescItem part;
    part.setName(L"fpga");
    part.setVersion(L"v1");
    part.setPartNumber(L"any number");
    part.setPartChangeIndex(L"01.02");
    part.setPartName(L"not written");
    part.setPartType(1);
    EXPECT_EQ(Attributes(m_config.fillCProgrammablePartFromDescItem(&part, true)),
              Json::parse(R"([["name", "fpga"], ["version", "v1"], ["partNumber", "any number"],
                              ["partChangeIndex", "01.02"]])"));
    EXPECT_EQ(m_errors.Take(), "");

    part.setPartChangeIndex(L"1.2");
    const std::string message = BadIndex("programmablePart->partChangeIndex");
    EXPECT_EQ(m_config.fillCProgrammablePartFromDescItem(&part, false).m_partChangeIndex.GetValue(), L"1.2");
    EXPECT_EQ(m_errors.Take(), WideLine(message));
    EXPECT_EQ(ThrownText([&] { m_config.fillCProgrammablePartFromDescItem(&part, true); }), message);
    EXPECT_EQ(m_errors.Take(), WideLine(message) + ThrowingLine);
}

// ----------------------------------------------------------------------------------------------- products, written

TEST_F(HardwareMappingWriteTest, WritesWhatWasReadOfAProduct)
{
    CProduct product = FullProduct();
    ProductItems(m_config).push_back(m_config.fillProductFromFootprint(product, true));
    EXPECT_EQ(DumpElement(m_config.fillCProductFromDescItem(ProductItems(m_config).back(), true)),
              DumpElement(product));
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingWriteTest, ProductWithoutIdIsWrittenEmpty)
{
    CProductDescItem& product = AddProduct(-1);
    product.setType(L"type");
    product.setPartChangeIndex(L"1.2");
    EXPECT_TRUE(m_config.fillCProductFromDescItem(&product, false).IsEmpty());
    EXPECT_EQ(m_errors.Take(), NarrowLine(noProductId)) << "the index is not looked at";
    EXPECT_EQ(ThrownText([&] { m_config.fillCProductFromDescItem(&product, true); }), noProductId);
    EXPECT_EQ(m_errors.Take(), NarrowLine(noProductId));
}

TEST_F(HardwareMappingWriteTest, ProductWithABadIndexIsWrittenAsItStands)
{
    CProductDescItem& product = AddProduct(-2);
    product.setType(L"type");
    product.setPartChangeIndex(L"1.2");
    EXPECT_EQ(Attributes(m_config.fillCProductFromDescItem(&product, false)),
              Json::parse(R"([["id", "-2"], ["partChangeIndex", "1.2"], ["type", "type"]])"));
    EXPECT_EQ(m_errors.Take(), WideLine(badProductIndex));
    EXPECT_EQ(ThrownText([&] { m_config.fillCProductFromDescItem(&product, true); }), badProductIndex);
    EXPECT_EQ(m_errors.Take(), WideLine(badProductIndex) + ThrowingLine);
}

TEST_F(HardwareMappingWriteTest, EachPairOfEqualProductIdsIsReportedOnTheWayOut)
{
    for (const Ids& test : IdCases) {
        for (const bool throwOnError : {false, true}) {
            OwningConfig config;
            for (const long id : test.ids) {
                ProductItems(config).push_back(new CProductDescItem);
                ProductItems(config).back()->setId(id);
            }
            const bool throws = throwOnError && test.pairs > 0;
            EXPECT_EQ(ThrownText([&] { config.fillHardwareDataIntoFootprint(throwOnError); }),
                      throws ? sameProductId : NothingThrown);
            EXPECT_EQ(m_errors.Take(), Repeated(NarrowLine(sameProductId), throws ? 1 : test.pairs));
            auto id = test.ids.begin();
            ASSERT_EQ(Document(config).m_hardwareData.m_productList.size(), test.ids.size());
            for (const CProduct& product : Document(config).m_hardwareData.m_productList) {
                EXPECT_EQ(product.m_id.GetValue(), std::to_wstring(*id++)) << "order of the list, numbers kept";
            }
        }
    }
}

TEST_F(HardwareMappingWriteTest, ProductsWithoutIdAreEqualToOneAnother)
{
    for (int i = 0; i < 3; ++i) {
        AddProduct(-1);
    }
    m_config.fillHardwareDataIntoFootprint(false);
    EXPECT_EQ(m_errors.Take(), Repeated(NarrowLine(noProductId), 3) + Repeated(NarrowLine(sameProductId), 3));
    EXPECT_EQ(Hardware().m_productList.size(), 3U);
}

// -------------------------------------------------------------------------------------------- all boards, written

std::vector<long> IdsOf(CNyxConfig& config)
{
    std::vector<long> ids;
    for (const HwBoardDescItem* board : config.getHwBoardDescItems()) {
        ids.push_back(board->getId());
    }
    return ids;
}

TEST_F(HardwareMappingWriteTest, BoardsAreSortedAndNumberedAnew)
{
    const std::vector<std::pair<std::vector<long>, std::vector<long>>> cases = {
        {{}, {}},
        {{0}, {1}},
        {{1}, {1}},
        {{0, 0, 0}, {1, 2, 3}},
        {{9, 5}, {1, 2}},
        {{2005, 2005, 2100, 3001}, {2001, 2002, 2003, 3001}},
        {{3001, 2100, 2005, 2005}, {2001, 2002, 2003, 3001}},
        {{1999, 2001}, {1001, 2001}},
        {{1000, 999}, {1, 1001}},
        {{7000, 5, 7999, 8000}, {1, 7001, 7002, 8001}},
        // The greatest numbers of the sort are negative; the division rounds towards 0.
        {{-1, 5, 9}, {1, 2, 3}},
        {{2001, -5}, {2001, 1}},
        {{-1500, 7, -2500}, {1, -1999, -1998}},
        {{-1400, -1500}, {-999, -999}},
        {{-2000, -2001}, {-1999, -1999}},
    };
    for (const auto& [given, expected] : cases) {
        OwningConfig config;
        for (const long id : given) {
            config.addHwItem(new HwBoardDescItem);
            config.getHwBoardDescItems().back()->setId(id);
        }
        config.fillHardwareDataIntoFootprint(true);
        EXPECT_EQ(IdsOf(config), expected) << testing::PrintToString(given);
        std::vector<long> written;
        for (const CHardware& board : Document(config).m_hardwareData.m_hardwareList) {
            written.push_back(std::stol(board.m_id.GetValue()));
        }
        EXPECT_EQ(written, expected);
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingWriteTest, BoardsOfOneIdKeepTheirOrderAndPathsFollowTheNewIds)
{
    Add(2005, L"c");
    Add(1, L"a");
    Add(2005, L"d");
    Add(2001, L"b");
    m_config.fillHardwareDataIntoFootprint(true);
    std::wstring names;
    std::vector<long> paths;
    for (const HwBoardDescItem* board : m_config.getHwBoardDescItems()) {
        names += board->getName();
        paths.push_back(board->getPath());
    }
    EXPECT_EQ(names, L"abcd");
    EXPECT_EQ(paths, (std::vector<long>{0, 2, 2, 2}));
    std::wstring written;
    for (const CHardware& board : Hardware().m_hardwareList) {
        written += board.m_name.GetValue();
    }
    EXPECT_EQ(written, L"abcd");
}

TEST_F(HardwareMappingWriteTest, MoreThan999BoardsOfOnePathStartOverBehindTheNextThousand)
{
    for (const long path : {0L, 1L, 2147482L}) {
        OwningConfig config;
        for (int i = 0; i < 1002; ++i) {
            config.addHwItem(new HwBoardDescItem);
            config.getHwBoardDescItems().back()->setId(path * 1000 + 500);
        }
        config.fillHardwareDataIntoFootprint(true);
        const std::vector<long> ids = IdsOf(config);
        ASSERT_EQ(ids.size(), 1002U);
        for (std::size_t i = 0; i < 1000; ++i) {
            ASSERT_EQ(ids[i], path * 1000 + 1 + static_cast<long>(i));
        }
        EXPECT_EQ(ids[1000], path * 1000 + 1);
        EXPECT_EQ(ids[1001], path * 1000 + 2);
    }
}

TEST_F(HardwareMappingWriteTest, NumbersBeyondTheRangeOfLongWrap)
{
    const long last = GreatestLong % 1000; // numbers of the last path
    for (long i = 0; i <= last; ++i) {
        Add(GreatestLong);
    }
    m_config.fillHardwareDataIntoFootprint(false);
    const std::vector<long> ids = IdsOf(m_config);
    EXPECT_EQ(ids.front(), GreatestLong - last + 1);
    EXPECT_EQ(ids[ids.size() - 2], GreatestLong);
    EXPECT_EQ(ids.back(), std::numeric_limits<long>::min());
}

TEST_F(HardwareMappingWriteTest, NullBoardsGoBehindAllOthersAndWriteNothing)
{
    m_config.addHwItem(nullptr);
    Add(2005, L"b");
    m_config.addHwItem(nullptr);
    Add(1, L"a");
    Add(-1, L"c");
    m_errors.Take();
    for (int run = 0; run < 2; ++run) {
        const std::string text = m_config.getDevFp(true);
        const std::list<HwBoardDescItem*> boards = m_config.getHwBoardDescItems();
        std::wstring names;
        for (const HwBoardDescItem* board : boards) {
            names += board == nullptr ? L"-" : board->getName();
        }
        EXPECT_EQ(names, run == 0 ? L"abc--" : L"acb--") << "the third has become 1";
        std::size_t written = 0;
        for (std::size_t at = text.find("<Hardware "); at != std::string::npos; at = text.find("<Hardware ", at + 1)) {
            ++written;
        }
        EXPECT_EQ(written, 3U);
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingWriteTest, SingleNullBoardWritesNothing)
{
    m_config.addHwItem(nullptr);
    m_errors.Take();
    EXPECT_THAT(m_config.getDevFp(true), testing::Not(testing::HasSubstr("Hardware")));
    EXPECT_TRUE(Hardware().IsEmpty());
    EXPECT_EQ(m_config.getHwBoardDescItems(), std::list<HwBoardDescItem*>{nullptr});
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingWriteTest, BoardsAreWrittenThenProductsThenTheirIdsAreChecked)
{
    Add(1).setMajorRevision(100);
    AddProduct(3).setPartChangeIndex(L"1.2");
    AddProduct(3);
    m_config.fillHardwareDataIntoFootprint(false);
    const std::string badRevision = BadRevision("majorRevision must not be > 99");
    EXPECT_EQ(m_errors.Take(), NarrowLine(badRevision) + WideLine(badProductIndex) + NarrowLine(sameProductId));
    const std::vector<Defect<CNyxConfig>> defects = {
        {badRevision, [](CNyxConfig& c) { c.getHwBoardDescItems().front()->setMajorRevision(1); }},
        {badProductIndex, [](CNyxConfig& c) { ProductItems(c).front()->setPartChangeIndex(L""); }},
        {sameProductId, [](CNyxConfig& c) { ProductItems(c).front()->setId(4); }},
    };
    ExpectDefectsInOrder<CNyxConfig>(m_config, defects, [&] { m_config.fillDeviceFootprint(true); });
    EXPECT_EQ(Hardware().m_productList.size(), 2U);
}

TEST_F(HardwareMappingWriteTest, FailedBoardLeavesThoseInFrontOfItInTheDocumentAndTheNewNumbers)
{
    Add(2500, L"b").setMajorRevision(100);
    Add(1500, L"a");
    AddProduct(1);
    EXPECT_NE(ThrownText([&] { m_config.fillDeviceFootprint(true); }), NothingThrown);
    ASSERT_EQ(Hardware().m_hardwareList.size(), 1U);
    EXPECT_EQ(Hardware().m_hardwareList.front().m_name.GetValue(), L"a");
    EXPECT_TRUE(Hardware().m_productList.empty());
    EXPECT_EQ(IdsOf(m_config), (std::vector<long>{1001, 2001}));
}

} // namespace
