// Boards, programmable parts and products that the facade reads: values, order of steps, messages, part number tables,
// ids. HardwareMappingWriteTest.cpp has the other direction.

#include "HardwareMapping.h"
#include "CNyxConfig.h"
#include "Files.h"
#include "GoldenData.h"
#include "ItemDump.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <iterator>
#include <list>
#include <string>
#include <utility>
#include <vector>

using namespace KvOrdo;
using namespace NyxTest;
using KvDeviceFootprint::CAttribute;

namespace
{

constexpr bool longHas64Bits = sizeof(long) == 8;

const std::string sameBoardId = "CNyxConfig::fillHardwareDataFromFootprint: <Hardware> id muss eindeutig sein!";
const std::string sameProductId = "CNyxConfig::fillHardwareDataFromFootprint: <Product> id muss eindeutig sein!";
const std::string noProductId = "CNyxConfig::fillProductFromFootprint: <Product> id is required";
const std::string noServiceCode = "CNyxConfig::fillServiceFromFootprint(): serviceCode must be set";

/// What is read of FullBoard().
const char* const FullBoardItem = R"({
    "name": "CPU", "id": 2003, "path": 2, "serialNumber": 654321, "type": 0, "majorRevision": 7, "minorRevision": 12,
    "hwCode": 42, "mainVersion": -1, "slotInfo": "X7", "isSimulation": false,
    "programmableParts": [
        {"name": "fpga", "version": "v1", "partNumber": "p1", "partChangeIndex": "01.02"},
        {"name": "flash", "version": "", "partNumber": "", "partChangeIndex": ""}],
    "maintenanceData": {"operatingHours": 100, "makeAndBreakCycles": -1, "maintenances": [
        {"responsiblePerson": "", "maintenanceDate": "2015-03-01", "generatedBy": "", "maintenanceTasks": [
            {"name": "clean", "done": "true", "result": ""}]}]},
    "services": [{"serviceDate": "2014-01-02", "serviceCode": 7}, {"serviceDate": "2014-01-02", "serviceCode": 8}],
    "productId": 17, "productDate": "2011-3-7", "readCode": 5, "testInstruction": "1.5",
    "partName": "Processor \u20AC", "parentId": 2001, "externConnected": true,
    "bPartIdentification": {"name": "b name", "partNumber": "b number", "sn": "b sn", "partChangeIndex": "b index",
                            "vendorName": "b vendor", "additionalInfo": "b info"},
    "partNumberVariant": [{"partNumber": 12345678, "variant": 2, "text": "1234.5678.02"},
                          {"partNumber": 12345678, "variant": 3, "text": "1234.5678.03"}],
    "variantOption": 1})";

/// What is read of a board with an id and a name alone.
const char* const BareBoardItem = R"({
    "name": "board", "id": 1, "path": 0, "serialNumber": 0, "type": 0, "majorRevision": 0, "minorRevision": 0,
    "hwCode": -1, "mainVersion": -1, "slotInfo": "", "isSimulation": false, "programmableParts": [],
    "maintenanceData": null, "services": [], "productId": 0, "productDate": "", "readCode": 0, "testInstruction": "",
    "partName": "", "parentId": 0, "externConnected": false,
    "bPartIdentification": {"name": "", "partNumber": "", "sn": "", "partChangeIndex": "", "vendorName": "",
                            "additionalInfo": ""},
    "partNumberVariant": [], "variantOption": 0})";

class HardwareMappingTest : public HardwareMappingFixture
{
protected:
    Json LastBoard() { return DumpItems(m_config).at("hwBoards").back(); }
};

// ---------------------------------------------------------------------------------------------------- boards, read

TEST_F(HardwareMappingTest, ReadsEveryFieldOfABoardAndLeavesTheElement)
{
    CHardware board = FullBoard();
    const Json before = DumpElement(board);
    Read(board, true);
    EXPECT_TRUE(SameJson(Json::parse(FullBoardItem), LastBoard()));
    EXPECT_EQ(DumpElement(board), before);
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingTest, AbsentAttributesLeaveTheStartValuesButForTheHardwareCode)
{
    CHardware board = Board(L"1");
    for (const bool throwOnError : {false, true}) {
        Read(board, throwOnError);
        EXPECT_TRUE(SameJson(Json::parse(BareBoardItem), LastBoard()));
        EXPECT_EQ(m_errors.Take(), "");
    }
}

TEST_F(HardwareMappingTest, AbsentHardwareCodeIsSavedAsMinusOne)
{
    CHardware board = Board(L"1");
    EXPECT_EQ(Written(Read(board)).m_hardwareCode.GetValue(), L"-1");
}

struct TextField
{
    const char* name;
    std::function<void(CHardware&)> spoil;
    std::string message; // for the board of index 0 of 3
    std::string further; // what only a reading that goes on reports besides
};

TEST_F(HardwareMappingTest, LabelsNameTheCountAndThenTheIndex)
{
    const std::vector<TextField> fields = {
        {"no id", [](CHardware& board) { board.m_id.Clear(); }, NotEmpty("<Hardware 3 of 0> id"), ""},
        {"no name", [](CHardware& board) { board.m_name.Clear(); }, NotEmpty("<Hardware 3 of 0> name"), ""},
        {"variant alone", [](CHardware& board) { board.m_name = L"[3]"; }, NotEmpty("<Hardware 3 of 0> name"), ""},
        {"open bracket", [](CHardware& board) { board.m_name = L"abc[3"; }, NotEmpty("<Hardware 3 of 0> name"), ""},
        {"index", [](CHardware& board) { board.m_partChangeIndex = L"ab.cd"; },
         BadIndex("<Hardware 3 of 0> partChangeIndex"), NotConverted("ab", "ab") + NotConverted("cd", "cd")},
    };
    for (const TextField& field : fields) {
        CHardware board = Board(L"1");
        field.spoil(board);
        m_config.addHwItem(m_config.fillHwBoardFromFootprint(board, 0, 3, false));
        EXPECT_EQ(m_errors.Take(), WideLine(field.message) + field.further) << field.name;
        EXPECT_EQ(ThrownText([&] { m_config.fillHwBoardFromFootprint(board, 0, 3, true); }), field.message);
        EXPECT_EQ(m_errors.Take(), WideLine(field.message) + ThrowingLine) << field.name;
    }
}

TEST_F(HardwareMappingTest, BoardsAreCountedFromZeroInLabels)
{
    for (const wchar_t* id : {L"1", L"", L"3", L"4"}) {
        Hardware().m_hardwareList.push_back(Board(id));
    }
    m_config.fillHardwareDataFromFootprint(false);
    EXPECT_EQ(m_errors.Take(), WideLine(NotEmpty("<Hardware 4 of 1> id")));
    ASSERT_EQ(m_config.getHwBoardDescItems().size(), 4U);
}

struct NumberField
{
    const char* name;
    CAttribute CHardware::*attribute;
    long (HwBoardDescItem::*getter)() const;
    long absent; // what -1 and no number read as
};

TEST_F(HardwareMappingTest, NumbersAreReadInFull)
{
    const std::vector<NumberField> fields = {
        {"id", &CHardware::m_id, &HwBoardDescItem::getId, -1},
        {"hardwareCode", &CHardware::m_hardwareCode, &HwBoardDescItem::getHwCode, -1},
        {"productId", &CHardware::m_productId, &HwBoardDescItem::getProductId, 0},
        {"readCode", &CHardware::m_readCode, &HwBoardDescItem::getReadCode, 0},
        {"parentId", &CHardware::m_parentId, &HwBoardDescItem::getParentId, 0},
    };
    const std::vector<std::pair<const wchar_t*, long>> numbers = {
        {L"12", 12}, {L"-3", -3}, {L"+7", 7}, {L" 8", 8}, {L"007", 7}, {L"2147483647", 2147483647}};
    for (const NumberField& field : fields) {
        SCOPED_TRACE(field.name);
        CHardware board = Board(L"1");
        for (const auto& [text, number] : numbers) {
            board.*field.attribute = text;
            EXPECT_EQ((Read(board, true).*field.getter)(), number);
        }
        board.*field.attribute = L"-1";
        EXPECT_EQ((Read(board, true).*field.getter)(), field.absent);
        for (const std::string text : {"x", "12a", "12 ", "1.0", "99999999999999999999"}) {
            board.*field.attribute = text;
            EXPECT_EQ((Read(board).*field.getter)(), field.absent) << text;
            EXPECT_EQ(m_errors.Take(), "") << text;
            EXPECT_EQ(ThrownText([&] { Read(board, true); }), NoNumber(text));
            EXPECT_EQ(m_errors.Take(), WideLine(NoNumber(text)));
        }
        board.*field.attribute = L"3000000000";
        EXPECT_EQ((Read(board).*field.getter)(), longHas64Bits ? static_cast<long>(3000000000LL) : field.absent);
    }
}

TEST_F(HardwareMappingTest, ExternConnectedIsTakenOnlyIfItIsABoolean)
{
    const std::vector<std::pair<const wchar_t*, bool>> texts = {{L"true", true},  {L"false", false}, {L"", false},
                                                                {L"TRUE", false}, {L"1", false},     {L"true ", false}};
    for (const auto& [text, expected] : texts) {
        CHardware board = Board(L"1");
        board.m_externConnected = text;
        for (const bool throwOnError : {false, true}) {
            EXPECT_EQ(Read(board, throwOnError).getExternConnected(), expected) << testing::PrintToString(text);
        }
    }
    EXPECT_EQ(m_errors.Take(), "");
}

struct SerialNumber
{
    const wchar_t* text;
    long number;
    bool good;
};

TEST_F(HardwareMappingTest, SerialNumberIsReadFromItsFirstSixCharacters)
{
    const std::vector<SerialNumber> cases = {{L"", 0, true},
                                             {L"7", 7, true},
                                             {L"123456", 123456, true},
                                             {L"123456789", 123456, true},
                                             {L"123456x", 123456, true},
                                             {L"-1234567", -12345, true},
                                             {L" 1234567", 12345, true},
                                             {L"+7", 7, true},
                                             {L"-5", -5, true},
                                             {L"000012", 12, true},
                                             {L"12a", 12, false},
                                             {L"abc", 0, false},
                                             {L"12345 7", 12345, false},
                                             {L"0x1F", 0, false},
                                             {L"1234.5", 1234, false},
                                             {L" ", 0, false}};
    const std::string message = "<Hardware 1 of 0> sn has invalid Syntax";
    // The address of the message is written in place of its text.
    const auto address = testing::ContainsRegex("^\\[wide\\]0x[0-9a-f]+\n$");
    for (const SerialNumber& test : cases) {
        CHardware board = Board(L"1");
        board.m_sn = test.text;
        const std::string name = testing::PrintToString(test.text);
        EXPECT_EQ(Read(board).getSerialNumber(), test.number) << name;
        if (test.good) {
            EXPECT_EQ(m_errors.Take(), "") << name;
            EXPECT_EQ(Read(board, true).getSerialNumber(), test.number) << name;
            EXPECT_EQ(m_errors.Take(), "") << name;
        } else {
            EXPECT_THAT(m_errors.Take(), address) << name;
            EXPECT_EQ(ThrownText([&] { Read(board, true); }), message) << name;
            EXPECT_THAT(m_errors.Take(), address) << name;
        }
    }
}

struct Revision
{
    const wchar_t* text;
    long major;
    long minor;
    bool good;
    std::string further; // messages behind the one of the check
};

TEST_F(HardwareMappingTest, PartChangeIndexIsReadAsTwoNumbers)
{
    const std::string tooBig = "99999999999999999999";
    const std::vector<Revision> cases = {
        {L"", 0, 0, true, ""},
        {L"07.12", 7, 12, true, ""},
        {L"99.99", 99, 99, true, ""},
        {L"1.2", 1, 2, false, ""},
        {L".5", 0, 5, false, ""},
        {L"5.", 5, 0, false, ""},
        {L"-1.-2", -1, -2, false, ""},
        {L"ab.cd", 0, 0, false, NotConverted("ab", "ab") + NotConverted("cd", "cd")},
        {L"1a.2b", 1, 2, false, NotConverted("1a", "a") + NotConverted("2b", "b")},
        {L"1234", 1234, 1234, false, ""},
        {L"x", 0, 0, false, NotConverted("x", "x") + NotConverted("x", "x")},
        {L"1.2.3", 1, 2, false, NotConverted("2.3", ".3")},
        {L"1 . 2", 1, 2, false, NotConverted("1 ", " ")},
        {L"01.02 ", 1, 2, false, NotConverted("02 ", " ")},
        {L"1.99999999999999999999", 1, GreatestLong, false, NotConverted(tooBig, "")},
    };
    for (const Revision& test : cases) {
        const std::string name = testing::PrintToString(test.text);
        OwningConfig config; // an overflow is remembered
        CHardware board = Board(L"1");
        board.m_partChangeIndex = test.text;
        const std::string message = BadIndex("<Hardware 1 of 0> partChangeIndex");
        HwBoardDescItem* item = config.fillHwBoardFromFootprint(board, 0, 1, false);
        config.addHwItem(item);
        EXPECT_EQ(item->getMajorRevision(), test.major) << name;
        EXPECT_EQ(item->getMinorRevision(), test.minor) << name;
        EXPECT_EQ(m_errors.Take(), (test.good ? "" : WideLine(message)) + test.further) << name;
        if (!test.good) {
            EXPECT_EQ(ThrownText([&] { config.fillHwBoardFromFootprint(board, 0, 1, true); }), message) << name;
            EXPECT_EQ(m_errors.Take(), WideLine(message) + ThrowingLine) << name;
        }
    }
}

TEST_F(HardwareMappingTest, RevisionBeyondItsRangeIsReportedByTheNextSave)
{
    CHardware board = Board(L"1");
    board.m_partChangeIndex = L"1234";
    HwBoardDescItem& item = Read(board);
    m_errors.Take();
    EXPECT_TRUE(Written(item, false).m_partChangeIndex.IsEmpty());
    EXPECT_EQ(m_errors.Take(), NarrowLine(BadRevision("majorRevision must not be > 99")));
}

TEST_F(HardwareMappingTest, OverflowOfARevisionIsReportedAgainUntilASerialNumberIsRead)
{
    std::string document = "<DeviceFootprint formatVersion=\"02.06\">\n  <DeviceData deviceId=\"A\"/>\n"
                           "  <HardwareData>\n    <HardwareList>\n";
    const std::vector<std::string> boards = {
        "partChangeIndex=\"01.02\"",          "partChangeIndex=\"99999999999999999999.01\"",
        "partChangeIndex=\"03.04\"",          "hardwareCode=\"1\"",
        "sn=\"5\" partChangeIndex=\"05.06\"", "partChangeIndex=\"07.08\"",
        "partChangeIndex=\"3000000000.09\"",  "sn=\"x\" partChangeIndex=\"10.11\""};
    for (std::size_t i = 0; i < boards.size(); ++i) {
        document += "      <Hardware id=\"" + std::to_string(i) + "\" " + boards[i] + " name=\"b\"/>\n";
    }
    document += "    </HardwareList>\n  </HardwareData>\n</DeviceFootprint>\n";
    WriteFile(m_folder / "in.xml", document);
    const std::string expected =
        WideLine(BadIndex("<Hardware 8 of 1> partChangeIndex")) + NotConverted("99999999999999999999", "") +
        NotConverted("01", "") + NotConverted("03", "") + NotConverted("04", "") + NotConverted("", "") +
        NotConverted("", "") + WideLine(BadIndex("<Hardware 8 of 6> partChangeIndex")) +
        (longHas64Bits ? "" : NotConverted("3000000000", "") + NotConverted("09", "")) + "[wide]0x";
    // Neither an earlier load nor what else the process did counts.
    for (int run = 0; run < 2; ++run) {
        OwningConfig config;
        errno = ERANGE;
        config.loadFile(m_folder / "in.xml", false);
        EXPECT_EQ(m_errors.Take().substr(0, expected.size()), expected);
        const std::list<HwBoardDescItem*> items = config.getHwBoardDescItems();
        ASSERT_EQ(items.size(), boards.size());
        EXPECT_EQ((*std::next(items.begin(), 1))->getMajorRevision(), GreatestLong);
        EXPECT_EQ((*std::next(items.begin(), 2))->getMajorRevision(), 3);
        EXPECT_EQ((*std::next(items.begin(), 7))->getMinorRevision(), 11);
    }
}

TEST_F(HardwareMappingTest, EachLoadStartsWithoutAnOverflow)
{
    const std::string head = "<DeviceFootprint formatVersion=\"02.06\">\n  <DeviceData deviceId=\"A\"/>\n"
                             "  <HardwareData>\n    <HardwareList>\n      <Hardware id=\"";
    const std::string tail = "\" name=\"b\"/>\n    </HardwareList>\n  </HardwareData>\n</DeviceFootprint>\n";
    WriteFile(m_folder / "overflow.xml", head + "1\" partChangeIndex=\"01.99999999999999999999" + tail);
    WriteFile(m_folder / "good.xml", head + "2\" partChangeIndex=\"01.02" + tail);
    m_config.loadFile(m_folder / "overflow.xml", false);
    OwningConfig owner;
    owner.setDeviceData(m_config.getDeviceData());
    owner.setSoftwareData(m_config.getSoftwareData());
    Document(m_config).m_hardwareData.m_hardwareList.clear();
    EXPECT_NE(m_errors.Take(), "");
    m_config.loadFile(m_folder / "good.xml", false);
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingTest, PartNumbersAreTakenApartIntoTheTable)
{
    using Texts = std::vector<std::wstring>;
    const std::vector<std::pair<const wchar_t*, Texts>> cases = {
        {L"", {}},
        {L"1234.5678.02", {L"1234.5678.02"}},
        {L"1234.5678.02,1234.5678.03", {L"1234.5678.02", L"1234.5678.03"}},
        {L"1234.5678.02, 1234.5678.03 ,0002.0001.00", {L"1234.5678.02", L"1234.5678.03", L"   2.0001.00"}},
        {L" 12 34.567 8. 02 ", {L"1234.5678.02"}},
        {L"12345678.02", {L"1234.5678.02"}},
        {L"1234.5678.02,12345678.02,1234.5678.2", {L"1234.5678.02"}},
        {L"1234.5678.02,", {L"1234.5678.02"}},
        {L",,", {}},
        {L",1234.5678.02", {L"1234.5678.02"}},
        {L"1234.5678.02,bad,1.2.3.4,1234.5678.03", {L"1234.5678.02", L"1234.5678.03"}},
        {L"12345678", {}},
        {L"1234.5678,02", {}},
        {L"1234.5678.100", {}},
        {L"0001.0000.05", {}},
        {L"0001.0001.05", {L"   1.0001.05"}},
        {L"0000.0000.00", {}},
    };
    for (const auto& [text, expected] : cases) {
        CHardware board = Board(L"1");
        board.m_partNumber = text;
        HwBoardDescItem& item = Read(board, true);
        Texts texts;
        for (unsigned int i = 0; i < item.getPartNumberVariantSize(); ++i) {
            texts.push_back(item.getPartNumberVariant(i, nullptr));
        }
        EXPECT_EQ(texts, expected) << testing::PrintToString(text);
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingTest, PartNumberIsSavedAsTheFirstOfTheTable)
{
    const std::vector<std::pair<const wchar_t*, const wchar_t*>> cases = {
        {L"1234.5678.02,1234.5678.03", L"1234.5678.02"},
        {L"", L"0000.0000.00"},
        {L"bad", L"0000.0000.00"},
        {L"12.3456.7", L"0012.3456.07"},
    };
    for (const auto& [text, expected] : cases) {
        CHardware board = Board(L"1");
        board.m_partNumber = text;
        EXPECT_EQ(Written(Read(board)).m_partNumber.GetValue(), expected) << testing::PrintToString(text);
    }
}

struct BoardName
{
    const wchar_t* text;
    const wchar_t* name;
    unsigned int option;
};

TEST_F(HardwareMappingTest, NameLosesItsVariantAndGivesTheOption)
{
    const std::vector<BoardName> cases = {{L"board", L"board", 0},      {L"board[2,1]", L"board", 1},
                                          {L"board[2]", L"board", 0},   {L"board[]", L"board", 0},
                                          {L"board[,4]", L"board", 4},  {L"board[3,]", L"board", 0},
                                          {L"board[2,x]", L"board", 0}, {L"board[x,5]", L"board", 0},
                                          {L"board[x]", L"board", 0},   {L"board[2,1", L"board", 1}};
    for (const BoardName& test : cases) {
        CHardware board = Board(L"1", test.text);
        HwBoardDescItem& item = Read(board, true);
        const std::string name = testing::PrintToString(test.text);
        EXPECT_EQ(item.getName(), test.name) << name;
        EXPECT_EQ(item.getVariantOption(), test.option) << name;
        EXPECT_EQ(item.getPartNumberVariantSize(), 0U) << name;
        EXPECT_EQ(Written(item).m_name.GetValue(), test.name) << name;
    }
}

TEST_F(HardwareMappingTest, BoardIsReadInTheOrderOfTheSteps)
{
    CHardware board;
    board.m_sn = L"x";
    board.m_partChangeIndex = L"1";
    board.m_hardwareCode = L"hc";
    board.m_programmableParts.CreateEntry().m_partChangeIndex = L"1.2";
    board.m_serviceData.m_services.CreateEntry().m_serviceDate = L"d";
    board.m_maintenanceData.m_operatingHours = L"oh";
    board.m_productId = L"pi";
    board.m_readCode = L"rc";
    board.m_parentId = L"pa";
    const std::vector<Defect<CHardware>> defects = {
        {NotEmpty("<Hardware 1 of 0> id"), [](CHardware& b) { b.m_id = L"i"; }},
        {NoNumber("i"), [](CHardware& b) { b.m_id = L"1"; }},
        {NotEmpty("<Hardware 1 of 0> name"), [](CHardware& b) { b.m_name = L"n"; }},
        {"<Hardware 1 of 0> sn has invalid Syntax", [](CHardware& b) { b.m_sn = L"1"; }},
        {BadIndex("<Hardware 1 of 0> partChangeIndex"), [](CHardware& b) { b.m_partChangeIndex = L"01.02"; }},
        {NoNumber("hc"), [](CHardware& b) { b.m_hardwareCode = L"1"; }},
        {BadIndex("<ProgrammablePart> partChangeIndex"),
         [](CHardware& b) { b.m_programmableParts.front().m_partChangeIndex.Clear(); }},
        {noServiceCode, [](CHardware& b) { b.m_serviceData.m_services.front().m_serviceCode = 1L; }},
        {BadDate("<Service> serviceDate"),
         [](CHardware& b) { b.m_serviceData.m_services.front().m_serviceDate.Clear(); }},
        {NoNumber("oh"), [](CHardware& b) { b.m_maintenanceData.m_operatingHours.Clear(); }},
        {NoNumber("pi"), [](CHardware& b) { b.m_productId.Clear(); }},
        {NoNumber("rc"), [](CHardware& b) { b.m_readCode.Clear(); }},
        {NoNumber("pa"), [](CHardware& b) { b.m_parentId.Clear(); }},
    };
    CHardware broken = board;
    ExpectDefectsInOrder(broken, defects, [&] { Read(broken, true); });

    m_errors.Take();
    Read(board, false);
    const std::string messages = m_errors.Take();
    const std::string first = WideLine(defects[0].thrown) + WideLine(defects[2].thrown) + "[wide]0x";
    const std::string last = WideLine(defects[4].thrown) + WideLine(defects[6].thrown) + NarrowLine(noServiceCode) +
                             WideLine(defects[8].thrown);
    EXPECT_THAT(messages, testing::StartsWith(first));
    EXPECT_THAT(messages, testing::EndsWith("\n" + last));
}

TEST_F(HardwareMappingTest, ProgrammablePartWithABadIndexIsReadAsItStands)
{
    CHardware board = Board(L"1");
    for (const wchar_t* index : {L"1.2", L"01.02", L"0102"}) {
        board.m_programmableParts.CreateEntry().m_partChangeIndex = index;
    }
    HwBoardDescItem& item = Read(board);
    EXPECT_EQ(m_errors.Take(), Repeated(WideLine(BadIndex("<ProgrammablePart> partChangeIndex")), 2));
    std::vector<std::wstring> indices;
    for (const IHwProgrammablePartDescItem* part : item.getProgrammableParts()) {
        indices.push_back(part->getPartChangeIndex());
    }
    EXPECT_EQ(indices, (std::vector<std::wstring>{L"1.2", L"01.02", L"0102"}));
    EXPECT_EQ(ThrownText([&] { Read(board, true); }), BadIndex("<ProgrammablePart> partChangeIndex"));
    EXPECT_EQ(m_errors.Take(), WideLine(BadIndex("<ProgrammablePart> partChangeIndex")) + ThrowingLine);
}

// -------------------------------------------------------------------------------------------- ids and products, read

TEST_F(HardwareMappingTest, EachPairOfEqualBoardIdsIsReported)
{
    for (const Ids& test : IdCases) {
        for (const bool throwOnError : {false, true}) {
            OwningConfig config;
            for (const long id : test.ids) {
                Document(config).m_hardwareData.m_hardwareList.push_back(Board(std::to_wstring(id)));
            }
            Document(config).m_hardwareData.m_productList.CreateEntry().m_id = 1L;
            const bool throws = throwOnError && test.pairs > 0;
            EXPECT_EQ(ThrownText([&] { config.fillHardwareDataFromFootprint(throwOnError); }),
                      throws ? sameBoardId : NothingThrown);
            EXPECT_EQ(m_errors.Take(), Repeated(NarrowLine(sameBoardId), throws ? 1 : test.pairs));
            EXPECT_EQ(config.getHwBoardDescItems().size(), test.ids.size());
            EXPECT_EQ(ProductItems(config).size(), throws ? 0U : 1U) << "products come behind the check";
        }
    }
}

TEST_F(HardwareMappingTest, EachPairOfEqualProductIdsIsReported)
{
    for (const Ids& test : IdCases) {
        for (const bool throwOnError : {false, true}) {
            OwningConfig config;
            for (const long id : test.ids) {
                Document(config).m_hardwareData.m_productList.CreateEntry().m_id = id;
            }
            const bool throws = throwOnError && test.pairs > 0;
            EXPECT_EQ(ThrownText([&] { config.fillHardwareDataFromFootprint(throwOnError); }),
                      throws ? sameProductId : NothingThrown);
            EXPECT_EQ(m_errors.Take(), Repeated(NarrowLine(sameProductId), throws ? 1 : test.pairs));
            ASSERT_EQ(ProductItems(config).size(), test.ids.size());
            auto id = test.ids.begin();
            for (const CProductDescItem* product : ProductItems(config)) {
                EXPECT_EQ(product->getId(), *id++) << "order of the file";
            }
        }
    }
}

TEST_F(HardwareMappingTest, BoardsAndProductsHeldBeforeTakePartInTheChecks)
{
    Add(5);
    m_config.addHwItem(nullptr);
    AddProduct(6);
    m_errors.Take();
    Hardware().m_hardwareList.push_back(Board(L"5"));
    Hardware().m_hardwareList.push_back(Board(L"7"));
    Hardware().m_productList.CreateEntry().m_id = 6L;
    m_config.fillHardwareDataFromFootprint(false);
    EXPECT_EQ(m_errors.Take(), NarrowLine(sameBoardId) + NarrowLine(sameProductId));
    EXPECT_EQ(m_config.getHwBoardDescItems().size(), 4U);
    EXPECT_EQ(ProductItems(m_config).size(), 2U);
}

TEST_F(HardwareMappingTest, BoardsReadBeforeAFailureStay)
{
    for (const wchar_t* index : {L"01.02", L"1.2", L"03.04"}) {
        Hardware().m_hardwareList.push_back(FullBoard());
        Hardware().m_hardwareList.back().m_id = std::to_wstring(Hardware().m_hardwareList.size());
        Hardware().m_hardwareList.back().m_programmableParts.back().m_partChangeIndex = index;
    }
    EXPECT_EQ(ThrownText([&] { m_config.fillHardwareDataFromFootprint(true); }),
              BadIndex("<ProgrammablePart> partChangeIndex"));
    ASSERT_EQ(m_config.getHwBoardDescItems().size(), 1U);
    EXPECT_EQ(m_config.getHwBoardDescItems().front()->getId(), 1);
}

TEST_F(HardwareMappingTest, ProductsReadBeforeAFailureStay)
{
    for (const wchar_t* id : {L"1", L"", L"3"}) {
        Hardware().m_productList.CreateEntry().m_id = id;
    }
    EXPECT_EQ(ThrownText([&] { m_config.fillHardwareDataFromFootprint(true); }), noProductId);
    EXPECT_EQ(m_errors.Take(), NarrowLine(noProductId + "!"));
    ASSERT_EQ(ProductItems(m_config).size(), 1U);

    ProductItems(m_config).front()->setId(-8);
    m_config.fillHardwareDataFromFootprint(false);
    EXPECT_EQ(m_errors.Take(), NarrowLine(noProductId + "!"));
    EXPECT_EQ(ProductItems(m_config).size(), 4U);
}

TEST_F(HardwareMappingTest, ReadsEveryFieldOfAProduct)
{
    CProduct product = FullProduct();
    ProductItems(m_config).push_back(m_config.fillProductFromFootprint(product, true));
    EXPECT_EQ(DumpItems(m_config).at("products"), Json::parse(R"([{"id": 12, "partNumber": "any number",
        "partChangeIndex": "01.02", "type": "type \u20AC", "partName": "name"}])"));
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(HardwareMappingTest, ProductNeedsAnId)
{
    for (const std::string id : {"", "-1", "x"}) {
        CProduct product = FullProduct();
        product.m_id = id;
        ProductItems(m_config).push_back(m_config.fillProductFromFootprint(product, false));
        EXPECT_EQ(ProductItems(m_config).back()->getId(), -1) << id;
        EXPECT_EQ(ProductItems(m_config).back()->getPartName(), L"name") << id;
        EXPECT_EQ(m_errors.Take(), NarrowLine(noProductId + "!")) << id;
        EXPECT_EQ(ThrownText([&] { m_config.fillProductFromFootprint(product, true); }),
                  id == "x" ? NoNumber("x") : noProductId);
        EXPECT_EQ(m_errors.Take(), id == "x" ? WideLine(NoNumber("x")) : NarrowLine(noProductId + "!")) << id;
    }
}

TEST_F(HardwareMappingTest, ProductsIndexIsCheckedBehindTheId)
{
    CProduct product = FullProduct();
    product.m_id.Clear();
    product.m_partChangeIndex = L"1";
    ProductItems(m_config).push_back(m_config.fillProductFromFootprint(product, false));
    EXPECT_EQ(ProductItems(m_config).back()->getPartChangeIndex(), L"1");
    EXPECT_EQ(m_errors.Take(), NarrowLine(noProductId + "!") + WideLine(BadIndex("<Product> partChangeIndex")));
    const std::vector<Defect<CProduct>> defects = {
        {noProductId, [](CProduct& p) { p.m_id = L"1"; }},
        {BadIndex("<Product> partChangeIndex"), [](CProduct& p) { p.m_partChangeIndex = L"01.02"; }},
    };
    ExpectDefectsInOrder(product, defects,
                         [&] { ProductItems(m_config).push_back(m_config.fillProductFromFootprint(product, true)); });
}

} // namespace
