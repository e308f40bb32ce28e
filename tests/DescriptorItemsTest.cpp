// The descriptor items: every field with its start value, the texts that boards form, and who deletes what.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <climits>
#include <functional>
#include <iterator>
#include <list>
#include <locale>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "CBPartIdentificationDescItem.h"
#include "CBiosDescItem.h"
#include "CDevFpDescItem.h"
#include "CHardwareDataDescItem.h"
#include "CMaintenanceDataDescItem.h"
#include "CMaintenanceDescItem.h"
#include "COperatingSystemDescItem.h"
#include "CProductDescItem.h"
#include "CServiceDescItem.h"
#include "CTestInstructionDescItem.h"
#include "CompareHwBoardDescItemPointers.h"
#include "DeviceDataDescItem.h"
#include "HwBoardDescItem.h"
#include "HwProgrammablePartDescItem.h"
#include "IHardwareDescItem.h"
#include "IHwProgrammablePartModuleItem.h"
#include "IProgrammablePartDescItem.h"
#include "IPropertyDescItem.h"
#include "MaintenanceTaskDescItem.h"
#include "SoftwareDataDescItem.h"
#include "SoftwareDescItem.h"

namespace KvOrdo
{

/// What an application does with the two names that the library leaves to it.
class CBiosDescItem : public IBiosDescItem
{
public:
    std::wstring getName() const override { return L"bios"; }
    std::wstring getVersion() const override { return L"1.0"; }
    std::wstring getPartNumber() const override { return L"1234.5678.02"; }
    std::wstring getPartChangeIndex() const override { return L"01.02"; }
};

class COperatingSystemDescItem : public IOperatingSystemDescItem
{
public:
    std::wstring getName() const override { return L"system"; }
    std::wstring getVersion() const override { return L"2.0"; }
    std::wstring getPartNumber() const override { return L"8765.4321.01"; }
    std::wstring getPartChangeIndex() const override { return L"03.04"; }
};

} // namespace KvOrdo

namespace
{

using namespace KvOrdo;

const std::wstring Text = L"a text longer than any buffer inside a string, with \u0141 and \U0001F600";

// ---- Fields ----

/// One field of an item with its start value and another value.
template<typename Item>
struct Field
{
    std::string name;
    std::function<void(Item&)> set;
    std::function<void(Item&)> reset;
    std::function<bool(const Item&)> isSet;
    std::function<bool(const Item&)> isAtStart;
};

template<typename Type>
struct Given
{
    using type = Type;
};

template<typename Item, typename Value, typename Parameter>
Field<Item> field(const std::string& name, Value (Item::*get)() const, void (Item::*set)(Parameter),
                  typename Given<Value>::type start, typename Given<Value>::type other)
{
    return {name, [=](Item& item) { (item.*set)(other); }, [=](Item& item) { (item.*set)(start); },
            [=](const Item& item) { return (item.*get)() == other; },
            [=](const Item& item) { return (item.*get)() == start; }};
}

/// A text, empty at start.
template<typename Item>
Field<Item> text(const std::string& name, std::wstring (Item::*get)() const, void (Item::*set)(const std::wstring&))
{
    return field(name, get, set, std::wstring(), Text);
}

/// A list of pointers, empty at start; it also takes null entries.
template<typename Item, typename Entry>
Field<Item> list(const std::string& name, std::list<Entry*> (Item::*get)() const,
                 void (Item::*set)(const std::list<Entry*>&), typename Given<Entry*>::type entry)
{
    return field(name, get, set, std::list<Entry*>(), std::list<Entry*>{entry, nullptr, entry});
}

/// Each field has its start value, takes another one, and taking it changes no other field.
template<typename Item>
void expectFields(const std::vector<Field<Item>>& fields)
{
    for (const Field<Item>& changed : fields) {
        Item item;
        EXPECT_TRUE(changed.isAtStart(item)) << changed.name;
        changed.set(item);
        EXPECT_TRUE(changed.isSet(item)) << changed.name;
        for (const Field<Item>& other : fields) {
            EXPECT_EQ(other.isAtStart(item), &other != &changed) << other.name << " after set of " << changed.name;
        }
        changed.reset(item);
        EXPECT_TRUE(changed.isAtStart(item)) << changed.name;
    }
}

#define TEXT(Item, Name) text<Item>("" #Name, &Item::get##Name, &Item::set##Name)
#define NUMBER(Item, Name, start) field<Item>("" #Name, &Item::get##Name, &Item::set##Name, start, 1234)
#define LIST(Item, Name, entry) list<Item>("" #Name, &Item::get##Name, &Item::set##Name, entry)
#define POINTER(Item, Name, other) field<Item>("" #Name, &Item::get##Name, &Item::set##Name, nullptr, other)

TEST(DescriptorItemFields, Service)
{
    using Item = CServiceDescItem;
    expectFields<Item>({TEXT(Item, ServiceDate), NUMBER(Item, ServiceCode, -1)});
}

TEST(DescriptorItemFields, TestInstruction)
{
    using Item = CTestInstructionDescItem;
    expectFields<Item>({TEXT(Item, Version), TEXT(Item, Name)});
}

TEST(DescriptorItemFields, MaintenanceTask)
{
    using Item = MaintenanceTaskDescItem;
    expectFields<Item>({TEXT(Item, Name), TEXT(Item, Done), TEXT(Item, Result)});
}

TEST(DescriptorItemFields, Maintenance)
{
    using Item = CMaintenanceDescItem;
    MaintenanceTaskDescItem task;
    expectFields<Item>({TEXT(Item, ResponsiblePerson), TEXT(Item, MaintenanceDate), TEXT(Item, GeneratedBy),
                        LIST(Item, MaintenanceTasks, &task)});
}

TEST(DescriptorItemFields, MaintenanceData)
{
    using Item = CMaintenanceDataDescItem;
    CMaintenanceDescItem maintenance;
    expectFields<Item>({NUMBER(Item, OperatingHours, -1), NUMBER(Item, MakeAndBreakCycles, -1),
                        LIST(Item, Maintenances, &maintenance)});
}

TEST(DescriptorItemFields, Product)
{
    using Item = CProductDescItem;
    expectFields<Item>({NUMBER(Item, Id, -1), TEXT(Item, PartNumber), TEXT(Item, PartChangeIndex), TEXT(Item, Type),
                        TEXT(Item, PartName)});
}

TEST(DescriptorItemFields, BPartIdentification)
{
    using Item = CBPartIdentificationDescItem;
    expectFields<Item>({TEXT(Item, Name), TEXT(Item, PartNumber), TEXT(Item, Sn), TEXT(Item, PartChangeIndex),
                        TEXT(Item, VendorName), TEXT(Item, AdditionalInfo)});
}

TEST(DescriptorItemFields, DeviceData)
{
    using Item = DeviceDataDescItem;
    CTestInstructionDescItem testInstruction;
    CMaintenanceDataDescItem maintenanceData;
    CServiceDescItem service;
    expectFields<Item>({TEXT(Item, DeviceId), TEXT(Item, PartChangeIndex), TEXT(Item, PartName),
                        TEXT(Item, ProductDate), TEXT(Item, Type), TEXT(Item, UpgradeType),
                        TEXT(Item, UpgradePartNumber), LIST(Item, TestInstructions, &testInstruction),
                        POINTER(Item, MaintenanceData, &maintenanceData), LIST(Item, Services, &service)});
}

TEST(DescriptorItemFields, Software)
{
    using Item = SoftwareDescItem;
    SoftwareDescItem inner;
    expectFields<Item>({TEXT(Item, Name), TEXT(Item, Version), TEXT(Item, Status), TEXT(Item, PartNumber),
                        TEXT(Item, PartChangeIndex), TEXT(Item, SerialNumber), TEXT(Item, VendorName),
                        LIST(Item, SoftwareItems, &inner)});
}

TEST(DescriptorItemFields, SoftwareData)
{
    using Item = SoftwareDataDescItem;
    CBiosDescItem bios;
    COperatingSystemDescItem system;
    SoftwareDescItem software;
    expectFields<Item>({POINTER(Item, BiosItem, &bios),
                        field<Item>("OperatingSystemItem", &Item::getOperationSystemItem, &Item::setOperatingSystemItem,
                                    nullptr, &system),
                        LIST(Item, SoftwareItems, &software)});
}

TEST(DescriptorItemFields, ProgrammablePart)
{
    using Item = HwProgrammablePartDescItem;
    IHwProgrammablePartModuleItem module;
    expectFields<Item>({TEXT(Item, Name), TEXT(Item, PartName), TEXT(Item, BootDirBoardName),
                        TEXT(Item, LoadFilePathCalc), NUMBER(Item, PartType, 0), TEXT(Item, LoadFilePathOpt),
                        TEXT(Item, LoadFileExtension), TEXT(Item, Version), TEXT(Item, PartNumber),
                        TEXT(Item, PartChangeIndex), LIST(Item, ModuleList, &module)});
}

TEST(DescriptorItemFields, Board)
{
    using Item = HwBoardDescItem;
    using SetText = void (Item::*)(const std::wstring&);
    HwProgrammablePartDescItem part;
    CMaintenanceDataDescItem maintenanceData;
    CServiceDescItem service;
    CBPartIdentificationDescItem identification;
    expectFields<Item>(
        {TEXT(Item, Name),
         field<Item>("Id", &Item::getId, &Item::setId, 0, 999),
         NUMBER(Item, SerialNumber, 0),
         NUMBER(Item, Type, 0),
         NUMBER(Item, MajorRevision, 0),
         NUMBER(Item, MinorRevision, 0),
         NUMBER(Item, HwCode, 0),
         NUMBER(Item, MainVersion, -1),
         TEXT(Item, SlotInfo),
         field<Item>("IsSimulation", &Item::getIsSimulation, &Item::setIsSimulation, false, true),
         LIST(Item, ProgrammableParts, &part),
         POINTER(Item, MaintenanceData, &maintenanceData),
         LIST(Item, Services, &service),
         NUMBER(Item, ProductId, 0),
         text<Item>("ProductDate", &Item::getProductDate, static_cast<SetText>(&Item::setProductDate)),
         NUMBER(Item, ReadCode, 0),
         text<Item>("TestInstruction", &Item::getTestInstruction, static_cast<SetText>(&Item::setTestInstruction)),
         TEXT(Item, PartName),
         NUMBER(Item, ParentId, 0),
         field<Item>("ExternConnected", &Item::getExternConnected, &Item::setExternConnected, false, true),
         POINTER(Item, BPartIdentification, &identification),
         NUMBER(Item, VariantOption, 0)});

    const Item board;
    EXPECT_EQ(board.getPath(), 0);
    EXPECT_EQ(board.getPartNumberVariantSize(), 0U);
}

TEST(DescriptorItemFields, NumbersKeepTheLimitsOfThirtyTwoBits)
{
    CMaintenanceDataDescItem item;
    for (const long value : {static_cast<long>(INT_MAX), static_cast<long>(INT_MIN), 0L}) {
        item.setOperatingHours(value);
        EXPECT_EQ(item.getOperatingHours(), value);
    }
}

TEST(DescriptorItemFields, TextsKeepANulCharacter)
{
    const std::wstring withNul(L"a\0b", 3);
    CProductDescItem item;
    item.setType(withNul);
    EXPECT_EQ(item.getType(), withNul);
}

TEST(DescriptorItemLists, GetterAndSetterCopyTheListOfPointers)
{
    CServiceDescItem first;
    CServiceDescItem second;
    HwBoardDescItem board;
    std::list<IServiceDescItem*> given{&first};
    board.setServices(given);

    given.push_back(&second);
    std::list<IServiceDescItem*> got = board.getServices();
    got.clear();
    EXPECT_EQ(board.getServices(), std::list<IServiceDescItem*>{&first});

    board.setServices({&second, &first});
    EXPECT_EQ(board.getServices(), (std::list<IServiceDescItem*>{&second, &first}));
}

TEST(DescriptorItemLists, AddSoftwareAppendsNullIncluded)
{
    SoftwareDescItem first;
    SoftwareDescItem second;
    SoftwareDataDescItem data;
    data.setSoftwareItems({&first});
    data.addSoftware(nullptr);
    data.addSoftware(&second);
    EXPECT_EQ(data.getSoftwareItems(), (std::list<ISoftwareDescItem*>{&first, nullptr, &second}));
}

TEST(DescriptorItemCasts, ImplementationIsFoundBehindItsInterface)
{
    HwBoardDescItem board;
    CBPartIdentificationDescItem identification;
    CServiceDescItem service;
    IHwBoardDescItem* boardInterface = &board;
    IBPartIdentificationDescItem* identificationInterface = &identification;
    IServiceDescItem* serviceInterface = &service;

    EXPECT_EQ(dynamic_cast<HwBoardDescItem*>(boardInterface), &board);
    EXPECT_EQ(dynamic_cast<IHwBoardDescItemEx*>(boardInterface), &board);
    EXPECT_EQ(dynamic_cast<CBPartIdentificationDescItem*>(identificationInterface), &identification);
    EXPECT_EQ(dynamic_cast<CServiceDescItem*>(serviceInterface), &service);
}

TEST(DescriptorItemNames, InterfacesWithoutOperationsAreEmptyAndDerived)
{
    static_assert(std::is_empty_v<CDevFpDescItem> && std::is_base_of_v<IDevFpDescItem, CDevFpDescItem>);
    static_assert(std::is_base_of_v<IDevFpDescItemEx, CDevFpDescItem>);
    static_assert(std::is_empty_v<CHardwareDataDescItem>);
    static_assert(std::is_base_of_v<IHardwareDataDescItem, IHardwareDataDescItemEx>);
    static_assert(std::is_base_of_v<IHardwareDataDescItemEx, CHardwareDataDescItem>);
    static_assert(std::is_empty_v<IHardwareDescItem> && std::is_empty_v<IProgrammablePartDescItem>);
    static_assert(std::is_empty_v<IPropertyDescItem> && std::is_empty_v<IHwProgrammablePartModuleItem>);

    class Module : public IHwProgrammablePartModuleItem
    {
    } module;
    HwProgrammablePartDescItem part;
    part.setModuleList({&module});
    EXPECT_EQ(part.getModuleList().front(), &module);
}

// ---- What a board forms from its fields ----

TEST(HwBoardName, EndsBeforeTheFirstBracket)
{
    const std::vector<std::pair<std::wstring, std::wstring>> rows = {
        {L"board[2,1]", L"board"}, {L"board", L"board"},   {L"[2]", L""},      {L"", L""},
        {L"a[b[c", L"a"},          {L"board]", L"board]"}, {L"a b [", L"a b "}};
    for (const auto& [stored, name] : rows) {
        HwBoardDescItem board;
        board.setName(stored);
        EXPECT_EQ(board.getName(), name);
    }
}

TEST(HwBoardId, SetsThePathInUnsignedArithmetic)
{
    const std::vector<std::pair<long, long>> rows = {{3007, 3},        {2003, 2},          {0, 0},
                                                     {999, 0},         {1000, 1},          {-1, 4294967},
                                                     {-1000, 4294966}, {INT_MAX, 2147483}, {INT_MIN, 2147483}};
    for (const auto& [id, path] : rows) {
        HwBoardDescItem board;
        board.setId(id);
        EXPECT_EQ(board.getId(), id);
        EXPECT_EQ(board.getPath(), path) << id;
    }
}

TEST(HwBoardProductDate, UnpacksSixteenBitsWithoutLeadingZeros)
{
    const std::vector<std::pair<unsigned short, std::wstring>> rows = {{0x3E67, L"2011-3-7"},   {0x0000, L"1980-0-0"},
                                                                       {0x0021, L"1980-1-1"},   {0x3F9F, L"2011-12-31"},
                                                                       {0xFFFF, L"2107-15-31"}, {0x8000, L"2044-0-0"}};
    for (const auto& [packed, date] : rows) {
        HwBoardDescItem board;
        board.setProductDate(packed);
        EXPECT_EQ(board.getProductDate(), date) << packed;
    }
}

TEST(HwBoardTestInstruction, SplitsANumberAtTheHundredsWithoutLeadingZeros)
{
    const std::vector<std::pair<unsigned short, std::wstring>> rows = {
        {123, L"1.23"}, {105, L"1.5"}, {0, L"0.0"}, {99, L"0.99"}, {100, L"1.0"}, {65535, L"655.35"}};
    for (const auto& [number, instruction] : rows) {
        HwBoardDescItem board;
        board.setTestInstruction(number);
        EXPECT_EQ(board.getTestInstruction(), instruction) << number;
    }
}

// ---- The table of part numbers and variants ----

struct Pair
{
    long partNumber;
    unsigned int variant;
    std::wstring text;
};

const std::vector<Pair> AcceptedPairs = {{12345678, 2, L"1234.5678.02"},
                                         {1234567, 2, L" 123.4567.02"},
                                         {10001, 0, L"   1.0001.00"},
                                         {120003, 10, L"  12.0003.10"},
                                         {99999999, 99, L"9999.9999.99"},
                                         {123456789, 1, L"12345.6789.01"},
                                         {INT_MAX, 5, L"214748.3647.05"},
                                         // Negative part numbers count as large ones; each group keeps its sign.
                                         {-1, 5, L"   0.-001.05"},
                                         {-12345678, 2, L"-1234.-5678.02"},
                                         {INT_MIN, 0, L"-214748.-3648.00"}};

TEST(PartNumberTable, FormsTheTextOfEachPair)
{
    for (const Pair& pair : AcceptedPairs) {
        HwBoardDescItem board;
        ASSERT_EQ(board.setPartNumberVariant(pair.partNumber, pair.variant), 0) << pair.partNumber;
        bool ok = false;
        EXPECT_EQ(board.getPartNumberVariant(0, &ok), pair.text);
        EXPECT_TRUE(ok);
        EXPECT_EQ(board.getPartNumber(0, nullptr), pair.partNumber);
        EXPECT_EQ(board.getVariant(0, nullptr), static_cast<long>(pair.variant));
    }
}

/// Digits grouped by threes with a mark between them, as some locales have it.
class GroupingMark : public std::numpunct<wchar_t>
{
protected:
    wchar_t do_thousands_sep() const override { return L'\''; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(PartNumberTable, TextsDoNotDependOnTheGlobalLocale)
{
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new GroupingMark));
    HwBoardDescItem board;
    board.setPartNumberVariant(L"123456789.02");
    board.setProductDate(0x3E67);
    std::locale::global(former);

    EXPECT_EQ(board.getPartNumberVariant(0, nullptr), L"12345.6789.02");
    EXPECT_EQ(board.getProductDate(), L"2011-3-7");
}

TEST(PartNumberTable, RefusesSmallPartNumbersAndLargeVariants)
{
    const std::vector<std::pair<long, unsigned int>> rows = {
        {10000, 0}, {9999, 2}, {1, 2}, {0, 0}, {12345678, 100}, {10001, 100}, {-1, 100}, {12345678, UINT_MAX}};
    HwBoardDescItem board;
    for (const auto& [partNumber, variant] : rows) {
        EXPECT_EQ(board.setPartNumberVariant(partNumber, variant), -1) << partNumber << ' ' << variant;
    }
    EXPECT_EQ(board.getPartNumberVariantSize(), 0U);
}

TEST(PartNumberTable, IndexCountsUpAndTheSamePairIsFoundAgain)
{
    HwBoardDescItem board;
    EXPECT_EQ(board.setPartNumberVariant(12345678, 2), 0);
    EXPECT_EQ(board.setPartNumberVariant(12345678, 3), 1);
    EXPECT_EQ(board.setPartNumberVariant(12345679, 2), 2);
    EXPECT_EQ(board.setPartNumberVariant(12345678, 2), 0);
    EXPECT_EQ(board.setPartNumberVariant(12345678, 3), 1);
    EXPECT_EQ(board.setPartNumberVariant(12345679, 2), 2);
    EXPECT_EQ(board.getPartNumberVariantSize(), 3U);
}

TEST(PartNumberTable, IndexOutOfRangeGivesZeroAndFalse)
{
    HwBoardDescItem board;
    board.setPartNumberVariant(12345678, 2);
    board.setPartNumberVariant(12345678, 3);
    for (const unsigned int index : {2U, 5U, UINT_MAX}) {
        bool partNumberOk = true;
        bool variantOk = true;
        bool textOk = true;
        EXPECT_EQ(board.getPartNumber(index, &partNumberOk), 0);
        EXPECT_EQ(board.getVariant(index, &variantOk), 0);
        EXPECT_EQ(board.getPartNumberVariant(index, &textOk), L"");
        EXPECT_FALSE(partNumberOk || variantOk || textOk);
        EXPECT_EQ(board.getPartNumber(index, nullptr), 0);
        EXPECT_EQ(board.getVariant(index, nullptr), 0);
        EXPECT_EQ(board.getPartNumberVariant(index, nullptr), L"");
    }
    bool ok = false;
    EXPECT_EQ(board.getVariant(1, &ok), 3);
    EXPECT_TRUE(ok);
}

struct OneText
{
    std::wstring text;
    std::wstring entry; ///< Empty if the text is refused.
};

const std::vector<OneText> OneTexts = {{L"1234.5678.02", L"1234.5678.02"},
                                       {L"12345678.02", L"1234.5678.02"},
                                       {L"12345678.2", L"1234.5678.02"},
                                       {L"1.23456.78", L"  12.3456.78"},
                                       {L"0001.0001.00", L"   1.0001.00"},
                                       {L"2147483647.99", L"214748.3647.99"},
                                       {L"12345678", L""},
                                       {L"1.2.3.4", L""},
                                       {L"1234.5678.02.", L""},
                                       {L"", L""},
                                       {L".", L""},
                                       {L"..", L""},
                                       {L"1234.5678.", L""},
                                       {L".5678", L""},
                                       {L"..02", L""},
                                       {L"1234.5678.100", L""},
                                       {L"1234.5678.-1", L""},
                                       {L"1234.567x.02", L""},
                                       {L"1234.5678.0x2", L""},
                                       {L"1234,5678.02", L""},
                                       {L"12 34.5678.02", L""},
                                       {L"0x12345678.02", L""},
                                       {L"0000.9999.02", L""},
                                       {L"1.0000.02", L""},
                                       {L"2147483648.02", L""},
                                       {L"4294967296.02", L""},
                                       {L"12345678.4294967298", L""},
                                       {L"99999999999999999999.02", L""},
                                       {L"\u0141234.5678.02", L""}};

TEST(PartNumberTable, TakesApartOneText)
{
    for (const OneText& row : OneTexts) {
        HwBoardDescItem board;
        const bool accepted = !row.entry.empty();
        EXPECT_EQ(board.setPartNumberVariant(row.text), accepted ? 0 : -1) << testing::PrintToString(row.text);
        EXPECT_EQ(board.getPartNumberVariantSize(), accepted ? 1U : 0U) << testing::PrintToString(row.text);
        EXPECT_EQ(board.getPartNumberVariant(0, nullptr), row.entry);
    }
}

TEST(PartNumberTable, BothWaysToWriteOnePairGiveOneEntry)
{
    HwBoardDescItem board;
    EXPECT_EQ(board.setPartNumberVariant(L"1234.5678.02"), 0);
    EXPECT_EQ(board.setPartNumberVariant(L"12345678.02"), 0);
    EXPECT_EQ(board.getPartNumberVariantSize(), 1U);
}

struct TwoTexts
{
    std::wstring partNumber;
    std::wstring variant;
    int index;
};

TEST(PartNumberTable, TakesPartNumberAndVariantAsTexts)
{
    const std::vector<TwoTexts> rows = {
        {L"1234.5678", L"02", 0},   {L"12345678", L"2", 0},    {L"1.2.3.4.5.6.7.8", L"02", 0}, {L"1234.5678", L"", -1},
        {L"", L"02", -1},           {L"...", L"02", -1},       {L"1234.5678", L"x", -1},       {L"abcd.efgh", L"2", -1},
        {L"1234.5678", L"0.2", -1}, {L"1234.5678", L"100", -1}};
    for (const TwoTexts& row : rows) {
        HwBoardDescItem board;
        EXPECT_EQ(board.setPartNumberVariant(row.partNumber, row.variant), row.index)
            << testing::PrintToString(row.partNumber) << ' ' << testing::PrintToString(row.variant);
        EXPECT_EQ(board.getPartNumberVariant(0, nullptr), row.index == 0 ? L"1234.5678.02" : L"");
    }
}

using Table = HwBoardDescItem::CPartNumberVariant;

constexpr std::size_t TableCount = 4000;

/// Runs the task in two threads, once for each of many tables; the threads start on each table together.
std::vector<Table> inTwoThreads(const std::function<void(Table& table, std::size_t tableIndex, long thread)>& task)
{
    std::vector<Table> tables(TableCount);
    std::atomic<std::size_t> arrived{0};
    const auto body = [&](long thread) {
        for (std::size_t index = 0; index < tables.size(); ++index) {
            ++arrived;
            while (arrived < 2 * (index + 1)) {
                std::this_thread::yield();
            }
            task(tables[index], index, thread);
        }
    };
    std::thread first(body, 0);
    std::thread second(body, 1);
    first.join();
    second.join();
    return tables;
}

constexpr long PairsPerThread = 16;
constexpr long FirstPartNumber = 20000000;

TEST(PartNumberTableThreads, EachPairOfTwoThreadsGetsAnEntryOfItsOwn)
{
    std::vector<std::array<int, 2 * PairsPerThread>> indexes(TableCount);
    const std::vector<Table> tables = inTwoThreads([&](Table& table, std::size_t tableIndex, long thread) {
        for (long pair = thread; pair < 2 * PairsPerThread; pair += 2) {
            indexes[tableIndex][static_cast<std::size_t>(pair)] = table.addPNV(FirstPartNumber + pair, 7);
        }
    });

    for (std::size_t tableIndex = 0; tableIndex < tables.size(); ++tableIndex) {
        ASSERT_EQ(tables[tableIndex].getSize(), 2U * PairsPerThread);
        for (long pair = 0; pair < 2 * PairsPerThread; ++pair) {
            const auto index = static_cast<unsigned int>(indexes[tableIndex][static_cast<std::size_t>(pair)]);
            ASSERT_EQ(tables[tableIndex].getPartNumber(index, nullptr), FirstPartNumber + pair);
            ASSERT_EQ(tables[tableIndex].getText(index, nullptr).substr(0, 4), L"2000");
            ASSERT_EQ(tables[tableIndex].getVariant(index, nullptr), 7);
        }
    }
}

TEST(PartNumberTableThreads, OnePairAddedByTwoThreadsIsThereOnceOrTwice)
{
    const std::vector<Table> tables = inTwoThreads([](Table& table, std::size_t, long) {
        for (long pair = 0; pair < PairsPerThread; ++pair) {
            const int index = table.addPNV(FirstPartNumber + pair, 7);
            bool ok = false;
            EXPECT_EQ(table.getPartNumber(static_cast<unsigned int>(index), &ok), FirstPartNumber + pair);
            EXPECT_TRUE(ok);
        }
    });

    for (const Table& table : tables) {
        ASSERT_GE(table.getSize(), 1U * PairsPerThread);
        ASSERT_LE(table.getSize(), 2U * PairsPerThread);
    }
}

// ---- The order of boards ----

TEST(HwBoardOrder, AscendingUnsignedIdNullLastAndStable)
{
    const std::vector<long> ids = {3001, -1, 5, INT_MIN, 5, INT_MAX, 0};
    std::vector<std::unique_ptr<HwBoardDescItem>> boards;
    std::list<HwBoardDescItem*> list{nullptr};
    for (const long id : ids) {
        boards.push_back(std::make_unique<HwBoardDescItem>());
        boards.back()->setId(id);
        list.push_back(boards.back().get());
    }
    list.insert(std::next(list.begin(), 3), nullptr);

    list.sort(CompareHwBoardDescItemPointers());

    const auto at = [&](std::size_t index) { return boards[index].get(); };
    EXPECT_EQ(list, (std::list<HwBoardDescItem*>{at(6), at(2), at(4), at(0), at(5), at(3), at(1), nullptr, nullptr}));
}

TEST(HwBoardOrder, IsStrictForEqualIdsAndForNull)
{
    const CompareHwBoardDescItemPointers precedes;
    HwBoardDescItem first;
    HwBoardDescItem second;
    EXPECT_FALSE(precedes(&first, &second) || precedes(&second, &first));
    EXPECT_FALSE(precedes(nullptr, nullptr) || precedes(nullptr, &first));
    EXPECT_TRUE(precedes(&first, nullptr));
}

// ---- Who deletes what ----

/// An item that counts how often its destructor ran.
template<typename Base>
class Counted : public Base
{
public:
    explicit Counted(int& destroyed) : m_destroyed(destroyed) {}
    ~Counted() override { ++m_destroyed; }

private:
    int& m_destroyed;
};

/// An application's own implementation, whose interface has no virtual destructor.
class ForeignService final : public IServiceDescItem
{
public:
    long getServiceCode() const override { return 1; }
    std::wstring getServiceDate() const override { return Text; }
};

class ForeignTestInstruction final : public ITestInstructionDescItem
{
public:
    std::wstring getName() const override { return Text; }
    std::wstring getVersion() const override { return Text; }
};

class ForeignMaintenanceData final : public IMaintenanceDataDescItem
{
public:
    long getOperatingHours() const override { return 1; }
    long getMakeAndBreakCycles() const override { return 2; }
    std::list<IMaintenanceDescItem*> getMaintenances() const override { return {}; }
};

TEST(DescriptorItemOwnership, DeviceDataDeletesMaintenanceDataServicesAndTestInstructions)
{
    int maintenanceData = 0;
    int services = 0;
    int testInstructions = 0;
    {
        DeviceDataDescItem item;
        item.setMaintenanceData(new Counted<CMaintenanceDataDescItem>(maintenanceData));
        item.setServices({new Counted<CServiceDescItem>(services), nullptr, new Counted<CServiceDescItem>(services)});
        item.setTestInstructions({nullptr, new Counted<CTestInstructionDescItem>(testInstructions)});
    }
    EXPECT_EQ(maintenanceData, 1);
    EXPECT_EQ(services, 2);
    EXPECT_EQ(testInstructions, 1);
}

TEST(DescriptorItemOwnership, DeviceDataLeavesForeignImplementationsAlone)
{
    ForeignMaintenanceData maintenanceData;
    ForeignService service;
    ForeignTestInstruction testInstruction;
    int services = 0;
    {
        DeviceDataDescItem item;
        item.setMaintenanceData(&maintenanceData);
        item.setServices({&service, new Counted<CServiceDescItem>(services)});
        item.setTestInstructions({&testInstruction});
    }
    EXPECT_EQ(services, 1);
    EXPECT_EQ(service.getServiceDate(), Text);
    EXPECT_EQ(testInstruction.getVersion(), Text);
    EXPECT_EQ(maintenanceData.getMakeAndBreakCycles(), 2);
}

TEST(DescriptorItemOwnership, DeviceDataReleasesItsWholeTree)
{
    int maintenances = 0;
    {
        DeviceDataDescItem item;
        auto* data = new CMaintenanceDataDescItem;
        item.setMaintenanceData(data);
        data->setMaintenances({new Counted<CMaintenanceDescItem>(maintenances)});
    }
    EXPECT_EQ(maintenances, 1);
}

TEST(DescriptorItemOwnership, SettersDoNotDeleteWhatTheyReplace)
{
    int destroyed = 0;
    Counted<CMaintenanceDataDescItem> data(destroyed);
    Counted<CServiceDescItem> service(destroyed);
    DeviceDataDescItem item;
    item.setMaintenanceData(&data);
    item.setServices({&service});
    item.setMaintenanceData(nullptr);
    item.setServices({});
    EXPECT_EQ(destroyed, 0);
}

// The board frees storage without a destructor; nothing in it has allocated more.
TEST(DescriptorItemOwnership, BoardFreesPartsAndMaintenanceDataWithoutTheirDestructors)
{
    int parts = 0;
    int maintenanceData = 0;
    {
        HwBoardDescItem board;
        board.setProgrammableParts(
            {new Counted<HwProgrammablePartDescItem>(parts), nullptr, new Counted<HwProgrammablePartDescItem>(parts)});
        board.setMaintenanceData(new Counted<CMaintenanceDataDescItem>(maintenanceData));
    }
    EXPECT_EQ(parts, 0);
    EXPECT_EQ(maintenanceData, 0);
}

class OtherBase
{
public:
    virtual ~OtherBase() = default;

private:
    [[maybe_unused]] long m_content = 0;
};

class PartBehindAnotherBase : public OtherBase, public Counted<HwProgrammablePartDescItem>
{
    using Counted::Counted;
};

TEST(DescriptorItemOwnership, BoardFreesTheWholeStorageOfAPartBehindAnotherBase)
{
    int parts = 0;
    {
        HwBoardDescItem board;
        auto* part = new PartBehindAnotherBase(parts);
        IHwProgrammablePartDescItem* interface = part;
        board.setProgrammableParts({interface});
        EXPECT_NE(static_cast<void*>(interface), static_cast<void*>(part));
    }
    EXPECT_EQ(parts, 0);
}

TEST(DescriptorItemOwnership, BoardDeletesTheBoughtPartAndLeavesServicesAlone)
{
    int services = 0;
    int identifications = 0;
    Counted<CServiceDescItem> service(services);
    {
        HwBoardDescItem board;
        board.setServices({&service, nullptr});
        board.setBPartIdentification(new Counted<CBPartIdentificationDescItem>(identifications));
    }
    EXPECT_EQ(services, 0);
    EXPECT_EQ(identifications, 1);
}

TEST(DescriptorItemOwnership, PartsTakenOutOfABoardAreTheApplicationsAgain)
{
    int parts = 0;
    {
        HwBoardDescItem board;
        board.setProgrammableParts({new Counted<HwProgrammablePartDescItem>(parts)});
        for (IHwProgrammablePartDescItem* part : board.getProgrammableParts()) {
            auto* implementation = dynamic_cast<HwProgrammablePartDescItem*>(part);
            implementation->setName(Text);
            delete implementation;
        }
        board.setProgrammableParts({});
    }
    EXPECT_EQ(parts, 1);
}

/// Asks the board to which it belongs while it is deleted by it.
class AskingIdentification : public CBPartIdentificationDescItem
{
public:
    struct Answers
    {
        bool asked = false;
        long id = -2;
        long path = -2;
        long mainVersion = -2;
        std::wstring partName = Text;
        std::size_t pointers = 99;
        int index = 99;
        bool ok = true;
        long partNumber = -2;
        long variant = -2;
        std::wstring text = Text;
        unsigned int size = 99;
    };

    AskingIdentification(HwBoardDescItem& board, Answers& answers) : m_board(board), m_answers(answers) {}
    ~AskingIdentification() override
    {
        m_answers.asked = true;
        m_answers.id = m_board.getId();
        m_answers.path = m_board.getPath();
        m_answers.mainVersion = m_board.getMainVersion();
        m_answers.partName = m_board.getPartName();
        m_answers.pointers = m_board.getProgrammableParts().size() + m_board.getServices().size() +
                             (m_board.getMaintenanceData() != nullptr ? 1 : 0) +
                             (m_board.getBPartIdentification() != nullptr ? 1 : 0);
        m_answers.index = m_board.setPartNumberVariant(12345678, 2);
        m_answers.partNumber = m_board.getPartNumber(0, &m_answers.ok);
        m_answers.variant = m_board.getVariant(0, &m_answers.ok);
        m_answers.text = m_board.getPartNumberVariant(0, &m_answers.ok);
        m_answers.size = m_board.getPartNumberVariantSize();
    }

private:
    HwBoardDescItem& m_board;
    Answers& m_answers;
};

TEST(DescriptorItemOwnership, BoardIsResetBeforeItDeletesAndHasNoTableThen)
{
    AskingIdentification::Answers answers;
    CServiceDescItem service;
    int parts = 0;
    {
        HwBoardDescItem board;
        board.setId(3007);
        board.setMainVersion(5);
        board.setPartName(Text);
        board.setServices({&service});
        board.setProgrammableParts({new Counted<HwProgrammablePartDescItem>(parts)});
        board.setPartNumberVariant(12345678, 2);
        board.setBPartIdentification(new AskingIdentification(board, answers));
    }
    EXPECT_TRUE(answers.asked);
    EXPECT_EQ(answers.id, 0);
    EXPECT_EQ(answers.path, 0);
    EXPECT_EQ(answers.mainVersion, -1);
    EXPECT_EQ(answers.partName, L"");
    EXPECT_EQ(answers.pointers, 0U);
    EXPECT_EQ(answers.index, -1);
    EXPECT_TRUE(answers.ok) << "without a table ok is left alone";
    EXPECT_EQ(answers.partNumber, 0);
    EXPECT_EQ(answers.variant, 0);
    EXPECT_EQ(answers.text, L"");
    EXPECT_EQ(answers.size, 0U);
}

TEST(DescriptorItemOwnership, SoftwareDataDeletesBiosAndOperatingSystemOnly)
{
    int bios = 0;
    int system = 0;
    int software = 0;
    Counted<SoftwareDescItem> item(software);
    {
        SoftwareDataDescItem data;
        data.setBiosItem(new Counted<CBiosDescItem>(bios));
        data.setOperatingSystemItem(new Counted<COperatingSystemDescItem>(system));
        data.setSoftwareItems({&item, nullptr});
    }
    EXPECT_EQ(bios, 1);
    EXPECT_EQ(system, 1);
    EXPECT_EQ(software, 0);
}

TEST(DescriptorItemOwnership, SoftwareLeavesInnerSoftwareAlone)
{
    int destroyed = 0;
    Counted<SoftwareDescItem> inner(destroyed);
    {
        SoftwareDescItem outer;
        outer.setSoftwareItems({&inner, nullptr});
    }
    EXPECT_EQ(destroyed, 0);
}

TEST(DescriptorItemOwnership, MaintenanceDataDeletesMaintenances)
{
    int destroyed = 0;
    {
        CMaintenanceDataDescItem data;
        data.setMaintenances(
            {new Counted<CMaintenanceDescItem>(destroyed), nullptr, new Counted<CMaintenanceDescItem>(destroyed)});
    }
    EXPECT_EQ(destroyed, 2);
}

TEST(DescriptorItemOwnership, MaintenanceLeavesTasksAlone)
{
    int destroyed = 0;
    Counted<MaintenanceTaskDescItem> task(destroyed);
    {
        CMaintenanceDescItem maintenance;
        maintenance.setMaintenanceTasks({&task, nullptr});
    }
    EXPECT_EQ(destroyed, 0);
}

template<typename Interface, typename Implementation>
void expectDeletedThroughInterface()
{
    int destroyed = 0;
    Interface* item = new Counted<Implementation>(destroyed);
    delete item;
    EXPECT_EQ(destroyed, 1);
}

TEST(DescriptorItemOwnership, InterfacesWithAVirtualDestructorDeleteTheImplementation)
{
    expectDeletedThroughInterface<IDeviceDataDescItem, DeviceDataDescItem>();
    expectDeletedThroughInterface<IHwBoardDescItem, HwBoardDescItem>();
    expectDeletedThroughInterface<IBPartIdentificationDescItem, CBPartIdentificationDescItem>();
    expectDeletedThroughInterface<IMaintenanceTaskDescItem, MaintenanceTaskDescItem>();
    expectDeletedThroughInterface<IMaintenanceDescItem, CMaintenanceDescItem>();
    expectDeletedThroughInterface<ISoftwareDataDescItem, SoftwareDataDescItem>();
    expectDeletedThroughInterface<CProductDescItem, CProductDescItem>();
}

} // namespace
