#include "Comparators.h"
#include "DeviceFootprint.h"
#include "DfpErrorHandler.h"
#include "FillFootprint.h"
#include "Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <list>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

/// Calls visit(list) if the element is a list of one of the entry types T.
template<class... T>
struct ListTypes
{
    template<class Visitor>
    static bool Visit(CElementNode& element, Visitor&& visit)
    {
        return (VisitOne<T>(element, visit) || ...);
    }

private:
    template<class Entry, class Visitor>
    static bool VisitOne(CElementNode& element, Visitor& visit)
    {
        auto* list = dynamic_cast<CElementNodeList<Entry>*>(&element);
        if (list == nullptr) {
            return false;
        }
        visit(*list);
        return true;
    }
};

using AllLists = ListTypes<CTestInstruction, CMaintenance, CMaintenanceTask, CMaintenanceInfo, CProperty, CService,
                           CHardware, CProgrammablePart, CProduct, CSoftware, CConnectedDevice>;

using ElementVisitor = std::function<void(CElementNode&)>;

/// Visits an element and all below it, the entries of lists included.
void VisitElements(CElementNode& element, const ElementVisitor& visit)
{
    visit(element);
    if (AllLists::Visit(element, [&](auto& list) {
            for (auto& entry : list) {
                VisitElements(entry, visit);
            }
        })) {
        return;
    }
    std::list<CReadOnlyAttribute*> attributes;
    element.GetAttributeNodes(attributes);
    std::list<CElementNode*> children;
    element.GetChildElements(children);
    EXPECT_FALSE(attributes.empty() && children.empty()) << element.GetElementName() << " is a list of unknown entries";
    for (CElementNode* child : children) {
        VisitElements(*child, visit);
    }
}

template<class Visitor>
void VisitLists(CElementNode& root, Visitor&& visit)
{
    VisitElements(root, [&](CElementNode& element) { AllLists::Visit(element, visit); });
}

void VisitBoardLists(CElementNode& root, const std::function<void(CHardwareList&)>& visit)
{
    VisitElements(root, [&](CElementNode& element) {
        if (auto* boards = dynamic_cast<CHardwareList*>(&element)) {
            visit(*boards);
        }
    });
}

/// The records of the error handler while it lives.
class Reports
{
public:
    Reports() = default;
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;
    ~Reports() { m_context.CloseErrorContext(true); }

    int Count() const
    {
        const CDfpError* error = m_context.FindStoredError(eDfpErrorTypeCount);
        return error == nullptr ? 0 : error->m_count;
    }
    std::string FirstText() const
    {
        const CDfpError* error = m_context.FindStoredError(eDfpErrorTypeInconsistentDfp);
        return error == nullptr ? std::string() : error->m_text;
    }

private:
    CDfpErrorContext m_context;
};

class DefaultRules
{
public:
    DefaultRules() { CDefaultHistoryComparatorRulesFactory().CreateRules(m_rules); }
    const CComparatorRules& Get() const { return m_rules; }
    CComparatorRules& Get() { return m_rules; }

private:
    CComparatorRules m_rules;
};

bool Same(const CElementNode& lhs, const CElementNode& rhs)
{
    return lhs.Compare(rhs, DefaultRules().Get());
}

/// A footprint with every attribute set and two entries in every list. The boards of a list carry each other.
CDeviceFootprint FullFootprint()
{
    CDeviceFootprint footprint;
    FillFootprint(footprint, {2, 2, 2});
    footprint.m_checksum.Set(std::string("00"));
    long id = 100;
    VisitBoardLists(footprint, [&](CHardwareList& boards) {
        CHardware* former = &boards.back();
        for (CHardware& board : boards) {
            board.m_id = ++id;
            former->m_parentId = id;
            former = &board;
        }
    });
    return footprint;
}

/// What a change of one attribute does.
enum class Effect
{
    Nothing,
    Decides,
    DecidesUnlessEmptied, ///< A part number: without it the names are compared, and they are equal.
    DecidesIfEmptied      ///< The id of a board: its value does not count.
};

struct AttributeRow
{
    const char* element;
    const char* attribute;
    Effect effect;
};

const AttributeRow AttributeTable[] = {
    {"DeviceFootprint", "formatVersion", Effect::Nothing},
    {"DeviceFootprint", "creationDate", Effect::Nothing},
    {"DeviceFootprint", "generatedBy", Effect::Nothing},
    {"DeviceFootprint", "checksum", Effect::Nothing},
    {"DeviceData", "deviceId", Effect::Decides},
    {"DeviceData", "partChangeIndex", Effect::Nothing},
    {"DeviceData", "type", Effect::Nothing},
    {"DeviceData", "partName", Effect::Nothing},
    {"DeviceData", "productDate", Effect::Decides},
    {"DeviceData", "upgradeType", Effect::Nothing},
    {"DeviceData", "upgradePartNumber", Effect::Decides},
    {"TestInstruction", "name", Effect::Nothing},
    {"TestInstruction", "version", Effect::Nothing},
    {"MaintenanceData", "operatingHours", Effect::Decides},
    {"MaintenanceData", "makeAndBreakCycles", Effect::Decides},
    {"Maintenance", "responsiblePerson", Effect::Decides},
    {"Maintenance", "maintenanceDate", Effect::Decides},
    {"Maintenance", "generatedBy", Effect::Nothing},
    {"MaintenanceTask", "name", Effect::Decides},
    {"MaintenanceTask", "done", Effect::Nothing},
    {"MaintenanceTask", "result", Effect::Nothing},
    {"MaintenanceInfo", "name", Effect::Decides},
    {"MaintenanceInfo", "value", Effect::Nothing},
    {"Property", "name", Effect::Nothing},
    {"Property", "value", Effect::Nothing},
    {"Service", "serviceCode", Effect::Decides},
    {"Service", "serviceDate", Effect::Nothing},
    {"Hardware", "id", Effect::DecidesIfEmptied},
    {"Hardware", "productId", Effect::Nothing},
    {"Hardware", "partNumber", Effect::Decides},
    {"Hardware", "sn", Effect::Decides},
    {"Hardware", "partChangeIndex", Effect::Nothing},
    {"Hardware", "hardwareCode", Effect::Nothing},
    {"Hardware", "productDate", Effect::Nothing},
    {"Hardware", "readCode", Effect::Nothing},
    {"Hardware", "testInstruction", Effect::Nothing},
    {"Hardware", "name", Effect::Nothing},
    {"Hardware", "partName", Effect::Nothing},
    {"Hardware", "parentId", Effect::Decides},
    {"Hardware", "externConnected", Effect::Nothing},
    {"Hardware", "connectorName", Effect::Decides},
    {"BPartIdentification", "name", Effect::Nothing},
    {"BPartIdentification", "partNumber", Effect::Nothing},
    {"BPartIdentification", "sn", Effect::Nothing},
    {"BPartIdentification", "partChangeIndex", Effect::Nothing},
    {"BPartIdentification", "vendorName", Effect::Nothing},
    {"BPartIdentification", "additionalInfo", Effect::Nothing},
    {"ProgrammablePart", "name", Effect::Nothing},
    {"ProgrammablePart", "version", Effect::Decides},
    {"ProgrammablePart", "partNumber", Effect::DecidesUnlessEmptied},
    {"ProgrammablePart", "partChangeIndex", Effect::Nothing},
    {"Product", "id", Effect::Nothing},
    {"Product", "partNumber", Effect::Decides},
    {"Product", "partChangeIndex", Effect::Nothing},
    {"Product", "type", Effect::Nothing},
    {"Product", "partName", Effect::Nothing},
    {"Bios", "name", Effect::Nothing},
    {"Bios", "version", Effect::Decides},
    {"Bios", "partNumber", Effect::DecidesUnlessEmptied},
    {"Bios", "partChangeIndex", Effect::Nothing},
    {"OperatingSystem", "name", Effect::Nothing},
    {"OperatingSystem", "version", Effect::Decides},
    {"OperatingSystem", "partNumber", Effect::DecidesUnlessEmptied},
    {"OperatingSystem", "partChangeIndex", Effect::Nothing},
    {"OperatingSystem", "imageName", Effect::Nothing},
    {"OperatingSystem", "imageVersion", Effect::Nothing},
    {"OperatingSystem", "windowsSuiteMask", Effect::Nothing},
    {"OperatingSystem", "windowsProductType", Effect::Nothing},
    {"OperatingSystem", "servicePackDescription", Effect::Nothing},
    {"OperatingSystem", "servicePackMajorVersion", Effect::Nothing},
    {"OperatingSystem", "servicePackMinorVersion", Effect::Nothing},
    {"OperatingSystem", "systemWordSize", Effect::Nothing},
    {"OperatingSystem", "systemLanguage", Effect::Nothing},
    {"OperatingSystem", "kernelRelease", Effect::Nothing},
    {"OperatingSystem", "kernvelVersion", Effect::Nothing},
    {"OperatingSystem", "buildVersion", Effect::Nothing},
    {"Software", "name", Effect::Nothing},
    {"Software", "version", Effect::Decides},
    {"Software", "status", Effect::Nothing},
    {"Software", "partNumber", Effect::DecidesUnlessEmptied},
    {"Software", "partChangeIndex", Effect::Nothing},
    {"Software", "sn", Effect::Nothing},
    {"Software", "vendorName", Effect::Nothing},
    {"Software", "wordSize", Effect::Nothing},
    {"Software", "configuration", Effect::Nothing},
    {"Software", "releaseState", Effect::Nothing},
    {"Software", "architecture", Effect::Nothing},
    {"ConnectedDevice", "formatVersion", Effect::Decides},
    {"ConnectedDevice", "creationDate", Effect::Nothing},
    {"ConnectedDevice", "generatedBy", Effect::Nothing},
    {"ConnectedDevice", "checksum", Effect::Nothing},
};

/// Whether the number of entries decides.
const std::map<std::string, bool> ListTable = {
    {"TestInstructionList", false}, {"Properties", false},  {"Maintenances", true},        {"MaintenanceTasks", true},
    {"MaintenanceInfos", true},     {"Services", true},     {"HardwareList", true},        {"ProgrammableParts", true},
    {"ProductList", true},          {"SoftwareList", true}, {"ConnectedDeviceList", true},
};

std::string RowName(const std::string& element, const std::string& attribute)
{
    return element + "." + attribute;
}

struct Place
{
    std::string name;
    CReadOnlyAttribute* attribute;
};

std::vector<Place> AllAttributes(CElementNode& root)
{
    std::vector<Place> places;
    VisitElements(root, [&](CElementNode& element) {
        std::list<CReadOnlyAttribute*> attributes;
        element.GetAttributeNodes(attributes);
        for (CReadOnlyAttribute* attribute : attributes) {
            places.push_back({RowName(element.GetElementName(), attribute->GetNodeName()), attribute});
        }
    });
    return places;
}

std::map<std::string, Effect> EffectsByName()
{
    std::map<std::string, Effect> effects;
    for (const AttributeRow& row : AttributeTable) {
        EXPECT_TRUE(effects.emplace(RowName(row.element, row.attribute), row.effect).second) << row.attribute;
    }
    return effects;
}

/// Gives every board that names @p before as its parent the parent @p after.
void RenumberParents(CElementNode& root, const std::wstring& before, const std::wstring& after)
{
    VisitBoardLists(root, [&](CHardwareList& boards) {
        for (CHardware& board : boards) {
            if (board.m_parentId.GetValue() == before) {
                board.m_parentId = after;
            }
        }
    });
}

/// Another value of the attribute. A board's id takes those along that name it, so that its value alone has changed.
void ChangeValue(CDeviceFootprint& root, const Place& place, const std::wstring& value)
{
    const std::wstring former = place.attribute->GetValue();
    place.attribute->Set(value);
    if (place.name == "Hardware.id") {
        RenumberParents(root, former, value);
    }
}

void ExpectSame(const CDeviceFootprint& lhs, const CDeviceFootprint& rhs, bool same, const std::string& what)
{
    const DefaultRules rules;
    const Reports reports;
    EXPECT_EQ(lhs.CompareTo(rhs, rules.Get()), same) << what;
    EXPECT_EQ(rhs.CompareTo(lhs, rules.Get()), same) << what << ", the other way round";
    if (what.rfind("Hardware.parentId", 0) != 0) {
        EXPECT_EQ(reports.Count(), 0) << what;
    }
}

template<class T>
void Shuffle(std::list<T>& list, Random& random)
{
    std::list<T> shuffled;
    while (!list.empty()) {
        const auto taken = std::next(list.begin(), static_cast<std::ptrdiff_t>(random.Below(list.size())));
        const bool front = random.OneIn(2);
        shuffled.splice(front ? shuffled.begin() : shuffled.end(), list, taken);
    }
    list.swap(shuffled);
}

} // namespace

TEST(HistoryRulesSchema, TheTableNamesEveryAttributeAndList)
{
    CDeviceFootprint footprint = FullFootprint();
    std::set<std::string> found;
    for (const Place& place : AllAttributes(footprint)) {
        found.insert(place.name);
        EXPECT_FALSE(place.attribute->IsEmpty()) << place.name;
    }
    std::set<std::string> expected;
    for (const auto& row : EffectsByName()) {
        expected.insert(row.first);
    }
    EXPECT_EQ(found, expected);

    std::set<std::string> foundLists;
    std::set<std::string> expectedLists;
    VisitLists(footprint, [&](auto& list) { foundLists.insert(list.GetElementName()); });
    for (const auto& row : ListTable) {
        expectedLists.insert(row.first);
    }
    EXPECT_EQ(foundLists, expectedLists);
}

TEST(HistoryRulesAttributes, EachDecidesAsTheTableSays)
{
    const std::map<std::string, Effect> effects = EffectsByName();
    const CDeviceFootprint before = FullFootprint();
    CDeviceFootprint after(before);
    ExpectSame(before, after, true, "unchanged");
    for (const Place& place : AllAttributes(after)) {
        const auto row = effects.find(place.name);
        ASSERT_NE(row, effects.end()) << place.name;
        const Effect effect = row->second;
        const std::wstring former = place.attribute->GetValue();
        const bool isNumber = place.name == "Hardware.id" || place.name == "Hardware.parentId";

        ChangeValue(after, place, isNumber ? std::wstring(L"7777") : former + L"x");
        ExpectSame(before, after, effect == Effect::Nothing || effect == Effect::DecidesIfEmptied,
                   place.name + " changed");
        ChangeValue(after, place, former);

        place.attribute->Clear();
        ExpectSame(before, after, effect == Effect::Nothing || effect == Effect::DecidesUnlessEmptied,
                   place.name + " emptied");
        place.attribute->Set(former);
    }
    ExpectSame(before, after, true, "changed back");
}

TEST(HistoryRulesAttributes, AllWithoutEffectTogetherHaveNone)
{
    const std::map<std::string, Effect> effects = EffectsByName();
    const CDeviceFootprint before = FullFootprint();
    CDeviceFootprint after(before);
    int number = 0;
    for (const Place& place : AllAttributes(after)) {
        if (effects.at(place.name) == Effect::Nothing) {
            place.attribute->SetInteger(++number);
        }
    }
    VisitLists(after, [&](auto& list) {
        if (!ListTable.at(list.GetElementName())) {
            list.CElementNode::Clear();
            list.clear();
        }
    });
    ExpectSame(before, after, true, "all");
}

TEST(HistoryRulesLists, EachDecidesByItsNumberOfEntriesAsTheTableSays)
{
    const CDeviceFootprint before = FullFootprint();
    CDeviceFootprint after(before);
    std::set<std::string> seen;
    VisitLists(after, [&](auto& list) {
        using Entry = typename std::decay_t<decltype(list)>::value_type;
        const std::string name = list.GetElementName();
        const bool same = !ListTable.at(name);
        if (list.empty()) {
            return; // behind the last level of a list that nests
        }
        seen.insert(name);
        std::list<Entry>& entries = list;

        list.CreateEntry();
        ExpectSame(before, after, same, name + " with an empty entry more");
        list.back() = list.front();
        ExpectSame(before, after, same, name + " with an entry twice");
        list.pop_back();

        std::list<Entry> removed;
        removed.splice(removed.end(), entries, entries.begin());
        ExpectSame(before, after, same, name + " with an entry less");
        removed.splice(removed.end(), entries, entries.begin());
        ExpectSame(before, after, same, name + " without entries");

        entries.splice(entries.end(), removed);
        ExpectSame(before, after, true, name + " with its entries again");
        entries.reverse();
        ExpectSame(before, after, true, name + " in another order");
    });
    EXPECT_EQ(seen.size(), ListTable.size());
}

TEST(HistoryRulesLists, AReplacedEntryIsADifference)
{
    // An entry of another identity in the place of one, so that the numbers agree.
    const CDeviceFootprint before = FullFootprint();
    CDeviceFootprint after(before);
    VisitLists(after, [&](auto& list) {
        if (list.empty()) {
            return;
        }
        const auto former = list.back();
        list.back() = list.front();
        ExpectSame(before, after, !ListTable.at(list.GetElementName()), list.GetElementName());
        list.back() = former;
    });
}

TEST(HistoryRulesDocument, EmptyOnesAreEqual)
{
    EXPECT_TRUE(Same(CDeviceFootprint(), CDeviceFootprint()));
    EXPECT_FALSE(Same(CDeviceFootprint(), FullFootprint()));
}

TEST(HistoryRulesDocument, ConnectedDevicesHeldAsTextTakeNoPart)
{
    CDeviceFootprint device;
    device.m_deviceData.m_deviceId = "9-9-9";
    std::string text;
    ASSERT_TRUE(device.GetDeviceFootprintString(true, text));
    const CDeviceFootprint before = FullFootprint();
    CDeviceFootprint after(before);
    ASSERT_TRUE(after.m_pConnectedDevices->AddConnectedDeviceFromString(text));
    ExpectSame(before, after, true, "text");
}

TEST(HistoryRulesDocument, VersionCountsInSoftwareOfAnyDepthAndStatusDoesNot)
{
    CDeviceFootprint before;
    CSoftwareList* list = &before.m_softwareData.m_softwareList;
    for (int depth = 0; depth < 8; ++depth) {
        CSoftware& software = list->CreateEntry();
        software.m_name = "package";
        software.m_version = "1.0";
        software.m_status = CSoftware::Active;
        list = software.m_pSoftwareList.get();
    }
    CDeviceFootprint after(before);
    list = &after.m_softwareData.m_softwareList;
    for (int depth = 0; depth < 8; ++depth) {
        CSoftware& software = list->front();
        software.m_status = CSoftware::Inactive;
        ExpectSame(before, after, true, "status at depth " + std::to_string(depth));
        software.m_version = "1.1";
        ExpectSame(before, after, false, "version at depth " + std::to_string(depth));
        software.m_version = "1.0";
        list = software.m_pSoftwareList.get();
    }
}

template<class Element>
class HistoryRulesPartNumberOrName : public testing::Test
{
};

using NumberedElements = testing::Types<CProgrammablePart, CBios, COperatingSystem, CSoftware>;
TYPED_TEST_SUITE(HistoryRulesPartNumberOrName, NumberedElements, );

TYPED_TEST(HistoryRulesPartNumberOrName, Identity)
{
    struct Case
    {
        const char* lhsNumber;
        const char* lhsName;
        const char* rhsNumber;
        const char* rhsName;
        bool same;
    };
    const std::vector<Case> cases = {
        {"1", "n", "1", "n", true}, {"1", "n", "1", "m", true}, {"1", "n", "2", "n", false}, {"1", "n", "", "n", true},
        {"", "n", "1", "n", true},  {"1", "n", "", "m", false}, {"", "n", "1", "m", false},  {"", "n", "", "n", true},
        {"", "n", "", "m", false},  {"", "", "", "", true},     {"1", "", "", "", true},     {"1", "n", "", "", false},
    };
    for (const Case& c : cases) {
        TypeParam lhs;
        TypeParam rhs;
        lhs.m_partNumber = c.lhsNumber;
        lhs.m_name = c.lhsName;
        rhs.m_partNumber = c.rhsNumber;
        rhs.m_name = c.rhsName;
        lhs.m_version = "1";
        rhs.m_version = "1";
        const std::string what =
            std::string(c.lhsNumber) + " " + c.lhsName + " against " + c.rhsNumber + " " + c.rhsName;
        EXPECT_EQ(Same(lhs, rhs), c.same) << what;
        rhs.m_version = "2";
        EXPECT_FALSE(Same(lhs, rhs)) << what;
    }
}

namespace
{

struct Board
{
    const char* id;
    const char* parentId;
    const char* connector = "";
};

using Boards = std::vector<Board>;

/// A list of boards with the serial numbers 1, 2 and so on, which lie in memory in the order given.
void FillByAddress(CHardwareList& list, const Boards& boards)
{
    std::vector<CHardware*> entries;
    for (std::size_t i = 0; i < boards.size(); ++i) {
        entries.push_back(&list.CreateEntry());
    }
    std::sort(entries.begin(), entries.end(), std::less<>());
    for (std::size_t i = 0; i < boards.size(); ++i) {
        entries[i]->m_partNumber = "1000.0001.02";
        entries[i]->m_sn = static_cast<long>(i) + 1;
        entries[i]->m_id = boards[i].id;
        entries[i]->m_parentId = boards[i].parentId;
        entries[i]->m_connectorName = boards[i].connector;
    }
}

struct BoardCase
{
    const char* what;
    Boards lhs;
    Boards rhs;
    bool same;
    int reports = 0;
    const char* firstNumber = "";
};

std::string ReportOf(const std::string& number)
{
    return number.empty() ? number : "Inconsistent Hardware found. ParentID \"" + number + "x\" could not be resolved";
}

/// The rule for boards, which also counts its calls.
class CountingHardwareRule : public CHardwareComparator
{
public:
    explicit CountingHardwareRule(int& calls) : m_calls(calls) {}
    bool operator()(const CElementNode& lhs, const CElementNode& rhs, const CComparatorRules& rules) const override
    {
        ++m_calls;
        return CHardwareComparator::operator()(lhs, rhs, rules);
    }

private:
    int& m_calls;
};

} // namespace

TEST(HistoryRulesBoards, TreeNumbersAndReports)
{
    const std::vector<BoardCase> cases = {
        {"no boards", {}, {}, true},
        {"unchanged", {{"1", ""}, {"2", "1"}}, {{"1", ""}, {"2", "1"}}, true},
        {"renumbered", {{"1", ""}, {"2", "1"}, {"3", "2"}}, {{"30", ""}, {"10", "30"}, {"20", "10"}}, true},
        {"numbers exchanged", {{"1", ""}, {"2", "1"}}, {{"2", ""}, {"1", "2"}}, true},
        {"parent behind its board", {{"2", "1"}, {"1", ""}}, {{"5", "9"}, {"9", ""}}, true},
        {"moved", {{"1", ""}, {"2", ""}, {"3", "1"}}, {{"1", ""}, {"2", ""}, {"3", "2"}}, false},
        {"ids exchanged, parent not", {{"1", ""}, {"2", ""}, {"3", "1"}}, {{"2", ""}, {"1", ""}, {"3", "1"}}, false},
        {"parent on the left only", {{"1", ""}, {"2", "1"}}, {{"1", ""}, {"2", ""}}, false},
        {"parent on the right only", {{"1", ""}, {"2", ""}}, {{"1", ""}, {"2", "1"}}, false},
        {"dangling parent on the left only", {{"1", ""}, {"2", "7"}}, {{"1", ""}, {"2", ""}}, false},
        {"resolves on the right only", {{"1", ""}, {"2", "7"}}, {{"1", ""}, {"2", "1"}}, false, 1, "7"},
        {"resolves on the left only", {{"1", ""}, {"2", "1"}}, {{"1", ""}, {"2", "8"}}, false, 1, "8"},
        {"resolves nowhere", {{"1", ""}, {"2", "7"}}, {{"1", ""}, {"2", "8"}}, true, 2, "7"},
        {"two resolve nowhere", {{"1", "5"}, {"2", "7"}}, {{"1", "6"}, {"2", "8"}}, true, 4, "5"},
        {"resolves nowhere, then moved",
         {{"1", "7"}, {"2", ""}, {"3", "1"}},
         {{"1", "8"}, {"2", ""}, {"3", "2"}},
         false,
         2,
         "7"},
        {"moved, then resolves nowhere",
         {{"1", ""}, {"2", ""}, {"3", "1"}, {"4", "7"}},
         {{"1", ""}, {"2", ""}, {"3", "2"}, {"4", "7"}},
         false},
        {"resolves nowhere, then on the left only", {{"1", "7"}, {"2", "1"}}, {{"1", "8"}, {"2", "9"}}, false, 3, "7"},
        {"resolves on one side, then nowhere",
         {{"1", ""}, {"2", "6"}, {"3", "7"}},
         {{"1", ""}, {"2", "1"}, {"3", "7"}},
         false,
         1,
         "6"},
        {"no id on the left", {{"", ""}}, {{"1", ""}}, false},
        {"no id on the right", {{"1", ""}}, {{"", ""}}, false},
        {"no id on either side", {{"", ""}}, {{"", ""}}, false},
        {"no id, and a dangling parent", {{"1", "7"}, {"", ""}}, {{"1", "7"}, {"", ""}}, false},
        {"another connector", {{"1", "", "X1"}}, {{"1", "", "X2"}}, false},
        {"a board differs behind a dangling parent",
         {{"1", "7"}, {"2", "", "X1"}},
         {{"1", "8"}, {"2", "", "X2"}},
         false},
        {"text reads as 0", {{"abc", ""}, {"2", "xyz"}}, {{"5", ""}, {"6", "5"}}, true},
        {"text reads as 0 and resolves nowhere", {{"1", "abc"}}, {{"1", "7"}}, true, 2, "0"},
        {"the number at the start counts", {{"12abc", ""}, {"2", " 12"}}, {{"5", ""}, {"6", "5"}}, true},
        {"leading zeros", {{"7", ""}, {"2", "007"}}, {{"+5", ""}, {"6", "5"}}, true},
        {"negative", {{"1", "-3"}}, {{"1", "-4"}}, true, 2, "-3"},
        {"greatest", {{"1", "2147483647"}}, {{"1", "7"}}, true, 2, "2147483647"},
        {"beyond the greatest", {{"1", "99999999999"}}, {{"1", "7"}}, true, 2, "2147483647"},
        {"beyond the least", {{"1", "-99999999999"}}, {{"1", "7"}}, true, 2, "-2147483648"},
        {"its own parent", {{"1", "1"}}, {{"4", "4"}}, true},
        {"its own parent on one side", {{"1", "1"}, {"2", ""}}, {{"1", "2"}, {"2", ""}}, false},
        {"a circle", {{"1", "2"}, {"2", "1"}}, {{"3", "4"}, {"4", "3"}}, true},
        {"the first of one id counts on the left",
         {{"1", ""}, {"1", ""}, {"3", "1"}},
         {{"1", ""}, {"2", ""}, {"3", "1"}},
         true},
        {"not the second", {{"1", ""}, {"1", ""}, {"3", "1"}}, {{"1", ""}, {"2", ""}, {"3", "2"}}, false},
        {"the first of one id counts on the right",
         {{"1", ""}, {"2", ""}, {"3", "1"}},
         {{"9", ""}, {"9", ""}, {"3", "9"}},
         true},
        {"not the second on the right", {{"1", ""}, {"2", ""}, {"3", "2"}}, {{"9", ""}, {"9", ""}, {"3", "9"}}, false},
        {"one id twice, as numbers", {{"1", ""}, {"01", ""}, {"3", "1"}}, {{"1", ""}, {"2", ""}, {"3", "1"}}, true},
        {"another number of boards", {{"1", "7"}}, {{"1", "7"}, {"2", ""}}, false},
    };
    for (const BoardCase& c : cases) {
        SCOPED_TRACE(c.what);
        CHardwareList lhs;
        CHardwareList rhs;
        FillByAddress(lhs, c.lhs);
        FillByAddress(rhs, c.rhs);
        for (int turn = 0; turn < 2; ++turn) {
            const Reports reports;
            EXPECT_EQ(Same(lhs, rhs), c.same);
            EXPECT_EQ(reports.Count(), c.reports);
            EXPECT_EQ(reports.FirstText(), ReportOf(c.firstNumber));
            // The order in the lists does not count.
            lhs.reverse();
            rhs.reverse();
        }
    }
}

TEST(HistoryRulesBoards, IdsAreLookedAtBeforeTheBoardIsCompared)
{
    struct Case
    {
        Boards lhs;
        Boards rhs;
        int calls;
    };
    const std::vector<Case> cases = {
        {{{"", ""}, {"2", ""}}, {{"1", ""}, {"2", ""}}, 0},
        {{{"1", ""}, {"2", ""}, {"3", ""}}, {{"1", ""}, {"", ""}, {"3", ""}}, 1},
        {{{"1", "", "X1"}, {"2", ""}}, {{"1", "", "X2"}, {"2", ""}}, 1},
        {{{"1", ""}, {"2", "1"}}, {{"1", ""}, {"2", ""}}, 2},
        {{{"1", ""}, {"2", "1"}}, {{"1", ""}}, 0},
        {{}, {}, 0},
    };
    for (const Case& c : cases) {
        CHardwareList lhs;
        CHardwareList rhs;
        FillByAddress(lhs, c.lhs);
        FillByAddress(rhs, c.rhs);
        DefaultRules rules;
        int calls = 0;
        rules.Get().Add(new CountingHardwareRule(calls));
        EXPECT_EQ(lhs.Compare(rhs, rules.Get()), c.lhs.empty());
        EXPECT_EQ(calls, c.calls);
    }
}

TEST(HistoryRulesBoards, WithoutARuleForBoardsTheTreeStillCounts)
{
    CComparatorRules rules;
    rules.Add(new CHardwareListComparator);
    CHardwareList lhs;
    CHardwareList rhs;
    FillByAddress(lhs, {{"1", "", "X1"}, {"2", "1"}});
    FillByAddress(rhs, {{"1", "", "X2"}, {"2", "1"}});
    EXPECT_TRUE(lhs.Compare(rhs, rules));
    rhs.back().m_parentId = "";
    rhs.front().m_parentId = "";
    EXPECT_FALSE(lhs.Compare(rhs, rules));
}

TEST(HistoryRulesBoards, ReportsGoToTheCurrentContextAndNowhereWithoutOne)
{
    CHardwareList lhs;
    CHardwareList rhs;
    FillByAddress(lhs, {{"1", "7"}});
    FillByAddress(rhs, {{"1", "8"}});
    const auto globalText = [] {
        std::string text;
        CDfpErrorHandler::Instance()->GetFirstGlobalError(text, eDfpErrorTypeCount);
        return text;
    };

    CDfpErrorHandler::Destroy();
    EXPECT_TRUE(Same(lhs, rhs));
    EXPECT_NE(globalText().find(ReportOf("7")), std::string::npos) << globalText();
    CDfpErrorHandler::Instance()->ClearGlobalErrorContext();
    {
        const Reports reports;
        EXPECT_TRUE(Same(lhs, rhs));
        EXPECT_EQ(reports.Count(), 2);
    }
    EXPECT_EQ(globalText(), "");

    CDfpErrorHandler::Instance()->Clear();
    EXPECT_TRUE(Same(lhs, rhs));
    const Reports later;
    EXPECT_EQ(later.Count(), 0);
    CDfpErrorHandler::Destroy();
}

namespace
{

/// The number of the board that carries the board, counted in the list, or the number of boards if there is none.
using Tree = std::vector<std::size_t>;

/// Gives the boards random numbers, and parents after the tree.
void NumberBoards(CHardwareList& boards, const Tree& tree, Random& random)
{
    std::set<long> taken;
    std::vector<long> ids;
    while (ids.size() < boards.size()) {
        const long id = static_cast<long>(random.Below(100000));
        if (taken.insert(id).second) {
            ids.push_back(id);
        }
    }
    std::size_t index = 0;
    for (CHardware& board : boards) {
        board.m_id = ids[index];
        board.m_parentId = L"";
        if (tree[index] < ids.size()) {
            board.m_parentId = ids[tree[index]];
        }
        ++index;
    }
}

/// Moves one board of a list to another parent, or to none.
void MoveOneBoard(CHardwareList& boards, Random& random)
{
    auto moved = std::next(boards.begin(), static_cast<std::ptrdiff_t>(random.Below(boards.size())));
    std::vector<std::wstring> places = {L""};
    for (const CHardware& board : boards) {
        places.push_back(board.m_id.GetValue());
    }
    places.erase(std::remove(places.begin(), places.end(), moved->m_parentId.GetValue()), places.end());
    moved->m_parentId = random.OneOf(places);
}

} // namespace

TEST(HistoryRulesProperty, ShufflingAndRenumberingNeverMattersAndMovingABoardAlwaysDoes)
{
    Random random;
    for (int run = 0; run < 60; ++run) {
        SCOPED_TRACE("run " + std::to_string(run) + ", seed " + std::to_string(TestSeed()));
        CDeviceFootprint before;
        FillFootprint(before, {1 + random.Below(4), 1 + random.Below(2), random.Below(2)});
        CHardwareList& boards = before.m_hardwareData.m_hardwareList;
        for (std::size_t more = random.Below(15); more > 0; --more) {
            boards.push_back(boards.front());
            boards.back().m_sn = static_cast<long>(more);
        }
        CDeviceFootprint after(before);
        std::vector<Tree> trees;
        VisitBoardLists(before, [&](CHardwareList& list) {
            Tree tree;
            for (std::size_t i = 0; i < list.size(); ++i) {
                const bool isRoot = random.OneIn(4);
                tree.push_back(isRoot ? list.size() : random.Below(i + 1) == i ? list.size() : random.Below(i));
            }
            NumberBoards(list, tree, random);
            trees.push_back(tree);
        });
        std::size_t number = 0;
        VisitBoardLists(after, [&](CHardwareList& list) { NumberBoards(list, trees.at(number++), random); });
        VisitLists(after, [&](auto& list) { Shuffle(list, random); });
        ExpectSame(before, after, true, "shuffled and renumbered");

        VisitBoardLists(after, [&](CHardwareList& list) {
            std::vector<std::wstring> parents;
            for (const CHardware& board : list) {
                parents.push_back(board.m_parentId.GetValue());
            }
            MoveOneBoard(list, random);
            ExpectSame(before, after, false, "moved");
            auto parent = parents.begin();
            for (CHardware& board : list) {
                board.m_parentId = *parent++;
            }
            ExpectSame(before, after, true, "moved back");
        });
    }
}

TEST(HistoryRulesClasses, TreeAndData)
{
    EXPECT_TRUE((std::is_base_of_v<CComparatorTyped<CDeviceData>, CDeviceDataComparator>));
    EXPECT_TRUE((std::is_base_of_v<CComparatorTyped<CMaintenanceData>, CMaintenanceDataComparator>));
    EXPECT_TRUE((std::is_base_of_v<CComparatorTyped<CHardware>, CHardwareComparator>));
    EXPECT_TRUE((std::is_base_of_v<CListComparatorTyped<CHardware, CHardwareList>, CHardwareListComparator>));
    EXPECT_TRUE((std::is_base_of_v<CComparatorTyped<CProgrammablePart>, CProgrammablePartComparator>));
    EXPECT_TRUE((std::is_base_of_v<CComparatorTyped<CBios>, CBiosComparator>));
    EXPECT_TRUE((std::is_base_of_v<CComparatorTyped<COperatingSystem>, COperatingSystemComparator>));
    EXPECT_TRUE((std::is_base_of_v<CComparatorTyped<CSoftware>, CSoftwareComparator>));
    EXPECT_TRUE((std::is_base_of_v<CComparatorRulesFactory, CDefaultHistoryComparatorRulesFactory>));
    for (const std::size_t size :
         {sizeof(CDeviceDataComparator), sizeof(CMaintenanceDataComparator), sizeof(CHardwareComparator),
          sizeof(CHardwareListComparator), sizeof(CProgrammablePartComparator), sizeof(CBiosComparator),
          sizeof(COperatingSystemComparator), sizeof(CSoftwareComparator),
          sizeof(CDefaultHistoryComparatorRulesFactory)}) {
        EXPECT_EQ(size, sizeof(void*));
    }
}

TEST(HistoryRulesFactory, MakesTheseRulesAndNoOthers)
{
    const std::vector<std::pair<const char*, const std::type_info*>> expected = {
        {"ConnectedDeviceList", &typeid(CListComparatorTyped<CConnectedDevice, CConnectedDeviceList>)},
        {"Bios", &typeid(CBiosComparator)},
        {"OperatingSystem", &typeid(COperatingSystemComparator)},
        {"Software", &typeid(CSoftwareComparator)},
        {"SoftwareList", &typeid(CListComparatorTyped<CSoftware, CSoftwareList>)},
        {"DeviceData", &typeid(CDeviceDataComparator)},
        {"MaintenanceData", &typeid(CMaintenanceDataComparator)},
        {"Maintenances", &typeid(CListComparatorTyped<CMaintenance, CMaintenances>)},
        {"MaintenanceTasks", &typeid(CListComparatorTyped<CMaintenanceTask, CMaintenanceTasks>)},
        {"MaintenanceInfos", &typeid(CListComparatorTyped<CMaintenanceInfo, CMaintenanceInfos>)},
        {"Hardware", &typeid(CHardwareComparator)},
        {"HardwareList", &typeid(CHardwareListComparator)},
        {"ProgrammablePart", &typeid(CProgrammablePartComparator)},
        {"ProgrammableParts", &typeid(CListComparatorTyped<CProgrammablePart, CProgrammableParts>)},
        {"Service", &typeid(CComparatorDefault<CService>)},
        {"Services", &typeid(CListComparatorTyped<CService, CServices>)},
        {"Product", &typeid(CComparatorDefault<CProduct>)},
        {"ProductList", &typeid(CListComparatorTyped<CProduct, CProductList>)},
    };
    const DefaultRules rules;
    std::set<std::string> named;
    for (const auto& row : expected) {
        const CComparatorBase* rule = rules.Get().Find(row.first);
        ASSERT_NE(rule, nullptr) << row.first;
        EXPECT_EQ(typeid(*rule), *row.second) << row.first;
        EXPECT_EQ(rule->GetAssociatedNodeName(), row.first);
        named.insert(row.first);
    }
    CDeviceFootprint footprint = FullFootprint();
    std::set<std::string> without;
    VisitElements(footprint, [&](CElementNode& element) {
        const std::string& name = element.GetElementName();
        EXPECT_EQ(rules.Get().Find(name) != nullptr, named.count(name) == 1) << name;
        if (named.count(name) == 0) {
            without.insert(name);
        }
    });
    EXPECT_EQ(without,
              std::set<std::string>({"DeviceFootprint", "ConnectedDevice", "TestInstructionList", "TestInstruction",
                                     "Maintenance", "MaintenanceTask", "MaintenanceInfo", "ServiceData", "HardwareData",
                                     "BPartIdentification", "Properties", "Property", "SoftwareData"}));
}
