#include "Comparators.h"
#include "Random.h"
#include "VirtualSlot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

using Texts = std::vector<std::string>;

/// An element with any name and any children, which logs the calls of its Compare.
class Probe : public CElementNode
{
public:
    explicit Probe(std::string name, std::list<CElementNode*> children = {})
        : m_name(std::move(name)), m_children(std::move(children))
    {
    }

    const std::string& GetElementName() const override { return m_name; }
    void initAttributeNodes() override {}
    void GetChildElements(std::list<CElementNode*>& children) const override { children = m_children; }
    bool Compare(const CElementNode& other, const CComparatorRules& rules) const override
    {
        if (m_log != nullptr) {
            m_log->push_back(m_label + ">" + static_cast<const Probe&>(other).m_label);
        }
        return CElementNode::Compare(other, rules);
    }

    Probe& Logging(std::string label, Texts* log)
    {
        m_label = std::move(label);
        m_log = log;
        return *this;
    }

private:
    std::string m_name;
    std::list<CElementNode*> m_children;
    std::string m_label;
    Texts* m_log = nullptr;
};

/// A rule for elements of any name, made by hand.
class RuleByName : public CComparatorBase
{
public:
    using Decision = std::function<bool(const CElementNode&, const CElementNode&, const CComparatorRules&)>;

    RuleByName(std::string name, Decision decide) : m_name(std::move(name)), m_decide(std::move(decide)) {}

    const std::string& GetAssociatedNodeName() const override { return m_name; }
    bool operator()(const CElementNode& lhs, const CElementNode& rhs, const CComparatorRules& rules) const override
    {
        return m_decide(lhs, rhs, rules);
    }

private:
    std::string m_name;
    Decision m_decide;
};

CComparatorBase* Always(const std::string& name, bool answer)
{
    return new RuleByName(name, [answer](const auto&, const auto&, const auto&) { return answer; });
}

/// Says so when it is deleted.
class MortalRule : public RuleByName
{
public:
    MortalRule(const std::string& name, std::string label, Texts& deaths)
        : RuleByName(name, [](const auto&, const auto&, const auto&) { return true; }), m_label(std::move(label)),
          m_deaths(deaths)
    {
    }
    ~MortalRule() override { m_deaths.push_back(m_label); }

private:
    std::string m_label;
    Texts& m_deaths;
};

/// Logs the element that it is asked about and answers as it is told.
template<class T>
class LoggingRule : public CComparatorTyped<T>
{
public:
    explicit LoggingRule(Texts& log, bool answer = true) : m_log(log), m_answer(answer) {}
    bool CompareInternal(const T&, const T&) const override
    {
        m_log.push_back(T::s_ElementName);
        return m_answer;
    }

private:
    Texts& m_log;
    bool m_answer;
};

/// A list entry of one key. Copies, tests of identity and comparisons are counted.
class Entry : public CElementNode
{
public:
    using Pairs = std::vector<std::pair<const Entry*, const Entry*>>;
    static const std::string s_ElementName;
    static int s_copies;
    static Pairs s_identityTests;
    static Pairs s_comparisons;

    explicit Entry(int key = 0, bool same = true) : m_key(key), m_same(same) {}
    Entry(const Entry& other) : CElementNode(other), m_key(other.m_key), m_same(other.m_same) { ++s_copies; }

    const std::string& GetElementName() const override { return s_ElementName; }
    void initAttributeNodes() override {}
    void GetChildElements(std::list<CElementNode*>& children) const override { children.clear(); }
    bool IsSameEntity(const Entry& other) const
    {
        s_identityTests.emplace_back(this, &other);
        return m_key == other.m_key;
    }
    bool Compare(const CElementNode& other, const CComparatorRules& rules) const override
    {
        s_comparisons.emplace_back(this, dynamic_cast<const Entry*>(&other));
        return CElementNode::Compare(other, rules) && m_same;
    }

    int m_key;
    bool m_same;
};

const std::string Entry::s_ElementName = "Entry";
int Entry::s_copies = 0;
Entry::Pairs Entry::s_identityTests;
Entry::Pairs Entry::s_comparisons;

class EntryList : public CElementNodeList<Entry>
{
public:
    static const std::string s_ElementName;

    EntryList() = default;
    EntryList(std::initializer_list<int> keys)
    {
        for (const int key : keys) {
            emplace_back(key);
        }
    }
    const std::string& GetElementName() const override { return s_ElementName; }
    void initAttributeNodes() override {}

    /// The entries in ascending order of address.
    std::vector<Entry*> ByAddress()
    {
        std::vector<Entry*> entries;
        for (Entry& entry : *this) {
            entries.push_back(&entry);
        }
        std::sort(entries.begin(), entries.end(), std::less<>());
        return entries;
    }
};

const std::string EntryList::s_ElementName = "EntryList";

class OtherEntryList : public EntryList
{
};

using EntryListComparator = CListComparatorTyped<Entry, EntryList>;
using EntryPairs = Entry::Pairs;

class ListComparison : public testing::Test
{
protected:
    ListComparison()
    {
        Entry::s_copies = 0;
        Reset();
    }

    static void Reset()
    {
        Entry::s_identityTests.clear();
        Entry::s_comparisons.clear();
    }
    bool Compare(const CElementNode& lhs, const CElementNode& rhs) const { return m_comparator(lhs, rhs, m_rules); }

    EntryListComparator m_comparator;
    CComparatorRules m_rules;
};

template<class Class>
constexpr bool HasNoData = sizeof(Class) == sizeof(void*);

} // namespace

TEST(ComparatorsAbi, OrderOfTheVirtualOperations)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<CComparatorBase>);
    EXPECT_EQ(VirtualSlot(&CComparatorBase::GetAssociatedNodeName), DestructorSlots);
    EXPECT_EQ(VirtualSlot(&CComparatorBase::operator()), DestructorSlots + 1);
    EXPECT_EQ(SlotCount<RuleByName>(), DestructorSlots + 2);

    using Typed = CComparatorTyped<CProduct>;
    EXPECT_EQ(VirtualSlot(&Typed::GetAssociatedNodeName), DestructorSlots);
    EXPECT_EQ(VirtualSlot(&Typed::operator()), DestructorSlots + 1);
    EXPECT_EQ(VirtualSlot(&Typed::CompareInternal), DestructorSlots + 2);
    EXPECT_EQ(SlotCount<CComparatorDefault<CProduct>>(), DestructorSlots + 3);

    using List = CComparatorTyped<CElementNodeList<CProduct>>;
    EXPECT_EQ(VirtualSlot(&List::InvokeNodeComparison), DestructorSlots + 2);
    EXPECT_EQ(VirtualSlot(&List::CompareInternal), DestructorSlots + 3);
    EXPECT_FALSE(IsVirtual(&List::CreateLookup));
    EXPECT_EQ((SlotCount<CListComparatorTyped<CProduct, CProductList>>()), DestructorSlots + 4);

    EXPECT_TRUE(std::has_virtual_destructor_v<CComparatorRulesFactory>);
    EXPECT_EQ(VirtualSlot(&CComparatorRulesFactory::CreateRules), DestructorSlots);
    EXPECT_FALSE(std::is_polymorphic_v<CComparatorRules>);
}

TEST(ComparatorsClasses, TreeAndAbstractness)
{
    using List = CComparatorTyped<CElementNodeList<CProduct>>;
    using ConcreteList = CListComparatorTyped<CProduct, CProductList>;
    EXPECT_TRUE(std::is_abstract_v<CComparatorBase>);
    EXPECT_TRUE(std::is_abstract_v<CComparatorTyped<CProduct>>);
    EXPECT_TRUE(std::is_abstract_v<List>);
    EXPECT_TRUE(std::is_abstract_v<CComparatorRulesFactory>);
    EXPECT_FALSE(std::is_abstract_v<CComparatorDefault<CProduct>>);
    EXPECT_FALSE(std::is_abstract_v<ConcreteList>);
    EXPECT_TRUE((std::is_base_of_v<CComparatorBase, CComparatorTyped<CProduct>>));
    EXPECT_TRUE((std::is_base_of_v<CComparatorTyped<CProduct>, CComparatorDefault<CProduct>>));
    EXPECT_TRUE((std::is_base_of_v<CComparatorBase, List>));
    EXPECT_TRUE((std::is_base_of_v<List, ConcreteList>));
    EXPECT_TRUE(HasNoData<CComparatorDefault<CProduct>>);
    EXPECT_TRUE(HasNoData<ConcreteList>);
}

TEST(ComparatorsNames, AreThoseOfElementAndList)
{
    EXPECT_EQ(CComparatorDefault<CProduct>().GetAssociatedNodeName(), "Product");
    EXPECT_EQ(&CComparatorDefault<CProduct>().GetAssociatedNodeName(), &CProduct::s_ElementName);
    EXPECT_EQ((CListComparatorTyped<CProduct, CProductList>().GetAssociatedNodeName()), "ProductList");
    EXPECT_EQ(EntryListComparator().GetAssociatedNodeName(), "EntryList");
}

TEST(ComparatorRules, AreFoundByTheirExactName)
{
    CComparatorRules rules;
    EXPECT_EQ(rules.Find("Product"), nullptr);
    const CComparatorBase* product = new CComparatorDefault<CProduct>;
    const CComparatorBase* service = new CComparatorDefault<CService>;
    rules.Add(product);
    rules.Add(service);
    EXPECT_EQ(rules.Find("Product"), product);
    EXPECT_EQ(rules.Find("Service"), service);
    for (const char* name : {"product", "PRODUCT", "Produc", "ProductList", "Product ", ""}) {
        EXPECT_EQ(rules.Find(name), nullptr) << name;
    }
}

TEST(ComparatorRules, SecondRuleForANameDeletesTheFirst)
{
    Texts deaths;
    CComparatorRules rules;
    rules.Add(new MortalRule("A", "first", deaths));
    rules.Add(new MortalRule("B", "other", deaths));
    EXPECT_EQ(deaths, Texts());
    const auto* second = new MortalRule("A", "second", deaths);
    rules.Add(second);
    EXPECT_EQ(deaths, Texts({"first"}));
    EXPECT_EQ(rules.Find("A"), second);
}

TEST(ComparatorRules, ClearDeletesInTheOrderOfTheNamesAndTheSetCanBeFilledAgain)
{
    Texts deaths;
    CComparatorRules rules;
    for (const char* name : {"b", "B", "a", "Ba"}) {
        rules.Add(new MortalRule(name, name, deaths));
    }
    rules.Clear();
    EXPECT_EQ(deaths, Texts({"B", "Ba", "a", "b"}));
    EXPECT_EQ(rules.Find("B"), nullptr);
    rules.Clear();
    EXPECT_EQ(deaths.size(), 4U);
    const CComparatorBase* again = Always("B", true);
    rules.Add(again);
    EXPECT_EQ(rules.Find("B"), again);
}

TEST(ComparatorRules, ChangesCountFromTheNextComparisonOn)
{
    const CDeviceFootprint lhs;
    const CDeviceFootprint rhs;
    Texts log;
    CComparatorRules rules;
    EXPECT_TRUE(lhs.Compare(rhs, rules));

    rules.Add(std::make_unique<LoggingRule<CBios>>(log, false).release());
    EXPECT_FALSE(lhs.Compare(rhs, rules)) << "a rule where there was none";
    rules.Add(std::make_unique<LoggingRule<CBios>>(log).release());
    EXPECT_TRUE(lhs.Compare(rhs, rules)) << "another rule for the element";
    EXPECT_EQ(log, (Texts{"Bios", "Bios"}));

    rules.Add(std::make_unique<RuleByName>("ProductList", [&](const auto&, const auto&, const auto&) {
                  log.emplace_back("ProductList");
                  return false;
              }).release());
    EXPECT_FALSE(lhs.Compare(rhs, rules)) << "a rule for a list that had none";

    log.clear();
    rules.Clear();
    EXPECT_TRUE(lhs.Compare(rhs, rules));
    EXPECT_EQ(log, Texts());
}

TEST(ComparatorRules, DestructorDeletesAsClearDoes)
{
    Texts deaths;
    {
        CComparatorRules rules;
        rules.Add(new MortalRule("b", "b", deaths));
        rules.Add(new MortalRule("a", "a", deaths));
    }
    EXPECT_EQ(deaths, Texts({"a", "b"}));
}

TEST(ComparatorsWalk, DifferentNamesDifferWithoutALookAtRulesOrChildren)
{
    Texts log;
    Probe childA("Child");
    Probe childB("Child");
    const Probe lhs("A", {&childA.Logging("l", &log)});
    const Probe rhs("B", {&childB.Logging("r", &log)});
    CComparatorRules rules;
    rules.Add(Always("A", true));
    rules.Add(Always("B", true));
    EXPECT_FALSE(lhs.Compare(rhs, rules));
    EXPECT_FALSE(CDeviceFootprint().Compare(CConnectedDevice(), rules));
    EXPECT_EQ(log, Texts());
}

TEST(ComparatorsWalk, WithoutARuleAnElementEqualsAnyOfItsTag)
{
    CProduct lhs;
    CProduct rhs;
    rhs.m_partNumber = "1";
    rhs.m_partName = "x";
    EXPECT_TRUE(lhs.Compare(rhs, CComparatorRules()));
    EXPECT_TRUE(rhs.Compare(lhs, CComparatorRules()));

    CProductList empty;
    CProductList full;
    full.push_back(rhs);
    CComparatorRules rules;
    rules.Add(Always("Product", false));
    EXPECT_TRUE(empty.Compare(full, rules));
    EXPECT_TRUE(full.Compare(empty, rules));
    EXPECT_TRUE(full.Compare(full, rules));
}

TEST(ComparatorsWalk, TheRuleGetsBothElementsAndTheRules)
{
    const Probe lhs("A");
    const Probe rhs("A");
    CComparatorRules rules;
    bool answer = true;
    int calls = 0;
    rules.Add(
        new RuleByName("A", [&](const CElementNode& left, const CElementNode& right, const CComparatorRules& given) {
            ++calls;
            return answer && &left == &lhs && &right == &rhs && &given == &rules;
        }));
    EXPECT_TRUE(lhs.Compare(rhs, rules));
    answer = false;
    EXPECT_FALSE(lhs.Compare(rhs, rules));
    EXPECT_EQ(calls, 2);
}

TEST(ComparatorsWalk, GoesToTheChildrenInOrderAndEndsAtTheFirstDifference)
{
    struct Case
    {
        const char* what;
        Texts unequal;
        bool equal;
        Texts log;
    };
    const std::vector<Case> cases = {
        {"all equal", {}, true, {"a>a", "a1>a1", "a2>a2", "b>b", "c>c"}},
        {"root differs", {"Root"}, false, {}},
        {"inner element differs", {"a"}, false, {"a>a"}},
        {"grandchild differs", {"a1"}, false, {"a>a", "a1>a1"}},
        {"middle child differs", {"b"}, false, {"a>a", "a1>a1", "a2>a2", "b>b"}},
        {"last child differs", {"c"}, false, {"a>a", "a1>a1", "a2>a2", "b>b", "c>c"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Texts log;
        std::list<Probe> nodes;
        const auto makeNode = [&](const char* name, std::list<CElementNode*> children = {}) {
            nodes.emplace_back(name, std::move(children));
            return &nodes.back().Logging(name, &log);
        };
        const auto makeTree = [&] {
            auto* a = makeNode("a", {makeNode("a1"), makeNode("a2")});
            nodes.emplace_back("Root", std::list<CElementNode*>{a, makeNode("b"), makeNode("c")});
            return &nodes.back();
        };
        const Probe* lhs = makeTree();
        const Probe* rhs = makeTree();
        CComparatorRules rules;
        for (const std::string& name : c.unequal) {
            rules.Add(Always(name, false));
        }
        rules.Add(Always("a2", true));
        EXPECT_EQ(lhs->Compare(*rhs, rules), c.equal);
        EXPECT_EQ(log, c.log);
    }
}

TEST(ComparatorsWalk, MissingCounterpartsAreNoDifference)
{
    CComparatorRules rules;
    rules.Add(Always("a", false));
    Probe a("a");
    Probe b("b");
    const Probe withA("Root", {&a});
    const Probe withB("Root", {&b});
    const Probe without("Root");
    EXPECT_TRUE(withA.Compare(without, rules));
    EXPECT_TRUE(without.Compare(withA, rules));
    EXPECT_TRUE(withA.Compare(withB, rules));
    EXPECT_FALSE(withA.Compare(withA, rules));
}

TEST(ComparatorsWalk, EveryChildMeetsTheFirstOfItsNameOnTheOtherSide)
{
    Texts log;
    std::list<Probe> nodes;
    const auto makeNode = [&](const char* name, const char* label) {
        nodes.emplace_back(name);
        return &nodes.back().Logging(label, &log);
    };
    const Probe lhs("Root", {makeNode("a", "a1"), makeNode("b", "b"), makeNode("a", "a2"), makeNode("c", "c")});
    const Probe rhs("Root", {makeNode("x", "x"), makeNode("b", "B"), makeNode("a", "A1"), makeNode("a", "A2")});
    EXPECT_TRUE(lhs.Compare(rhs, CComparatorRules()));
    EXPECT_EQ(log, Texts({"a1>A1", "b>B", "a2>A1"}));
}

TEST(ComparatorsWalk, DocumentOrderSeenByApplicationDefinedRules)
{
    CDeviceFootprint lhs;
    lhs.m_hardwareData.m_hardwareList.CreateEntry().m_programmableParts.CreateEntry();
    lhs.m_softwareData.m_softwareList.CreateEntry().m_pSoftwareList->CreateEntry();
    lhs.m_pConnectedDevices->CreateEntry();
    const CDeviceFootprint rhs(lhs);

    Texts log;
    CComparatorRules rules;
    rules.Add(new LoggingRule<CDeviceFootprint>(log));
    rules.Add(new LoggingRule<CDeviceData>(log));
    rules.Add(new LoggingRule<CMaintenanceData>(log));
    rules.Add(new LoggingRule<CServiceData>(log));
    rules.Add(new LoggingRule<CHardwareData>(log));
    rules.Add(new LoggingRule<CHardware>(log));
    rules.Add(new LoggingRule<CBPartIdentification>(log));
    rules.Add(new LoggingRule<CProgrammablePart>(log));
    rules.Add(new LoggingRule<CSoftwareData>(log));
    rules.Add(new LoggingRule<CBios>(log));
    rules.Add(new LoggingRule<COperatingSystem>(log));
    rules.Add(new LoggingRule<CSoftware>(log));
    const Texts outside = {"DeviceFootprint", "DeviceData", "MaintenanceData", "ServiceData", "HardwareData",
                           "SoftwareData",    "Bios",       "OperatingSystem"};
    EXPECT_TRUE(lhs.Compare(rhs, rules));
    EXPECT_EQ(log, outside) << "entries are reached only through a rule for their list";

    log.clear();
    rules.Add(new CListComparatorTyped<CHardware, CHardwareList>);
    rules.Add(new CListComparatorTyped<CSoftware, CSoftwareList>);
    EXPECT_TRUE(lhs.Compare(rhs, rules));
    EXPECT_EQ(log, Texts({"DeviceFootprint", "DeviceData", "MaintenanceData", "ServiceData", "HardwareData", "Hardware",
                          "BPartIdentification", "MaintenanceData", "ServiceData", "SoftwareData", "Bios",
                          "OperatingSystem", "Software", "Software"}));

    log.clear();
    rules.Add(new LoggingRule<CBPartIdentification>(log, false));
    EXPECT_FALSE(lhs.Compare(rhs, rules));
    EXPECT_EQ(log, Texts({"DeviceFootprint", "DeviceData", "MaintenanceData", "ServiceData", "HardwareData", "Hardware",
                          "BPartIdentification"}));
}

TEST(ComparatorsDocument, CompareToItselfIsTrueWhateverTheRulesSay)
{
    const CDeviceFootprint lhs;
    const CDeviceFootprint rhs;
    CComparatorRules rules;
    EXPECT_TRUE(lhs.CompareTo(rhs, rules));
    rules.Add(Always("DeviceFootprint", false));
    EXPECT_TRUE(lhs.CompareTo(lhs, rules));
    EXPECT_FALSE(lhs.CompareTo(rhs, rules));
    EXPECT_FALSE(lhs.Compare(lhs, rules));
    rules.Clear();
    EXPECT_TRUE(lhs.CompareTo(rhs, rules)) << "no rule remains";
}

TEST(ComparatorsTyped, IdentityComesBeforeEverything)
{
    CProduct a;
    CProduct b;
    a.m_partNumber = "1";
    b.m_partNumber = "1";
    b.m_partName = "other";
    CProduct c(b);
    c.m_partNumber = "2";
    const CComparatorRules rules;
    for (const bool answer : {true, false}) {
        Texts log;
        const LoggingRule<CProduct> rule(log, answer);
        EXPECT_EQ(rule(a, b, rules), answer);
        EXPECT_EQ(log, Texts({"Product"}));
        EXPECT_FALSE(rule(a, c, rules));
        EXPECT_EQ(log, Texts({"Product"})) << "CompareInternal sees elements of one entity only";
    }
}

TEST(ComparatorsTyped, ElementsWithoutAnIdentityGoStraightToTheComparison)
{
    Texts log;
    const CComparatorRules rules;
    CDeviceData deviceA;
    CDeviceData deviceB;
    deviceB.m_deviceId = "1-2-3";
    EXPECT_TRUE(LoggingRule<CDeviceData>(log)(deviceA, deviceB, rules));
    CMaintenanceData dataA;
    CMaintenanceData dataB;
    dataB.m_operatingHours = 7L;
    EXPECT_TRUE(LoggingRule<CMaintenanceData>(log)(dataA, dataB, rules));
    EXPECT_EQ(log, Texts({"DeviceData", "MaintenanceData"}));
}

TEST(ComparatorsTyped, TheDefaultRuleLooksAtTheIdentityAlone)
{
    CService lhs;
    CService rhs;
    rhs.m_serviceDate = "2020-01-01";
    const CComparatorDefault<CService> rule;
    EXPECT_TRUE(rule(lhs, rhs, CComparatorRules()));
    rhs.m_serviceCode = "1";
    EXPECT_FALSE(rule(lhs, rhs, CComparatorRules()));
    lhs.m_serviceCode = "1";
    EXPECT_TRUE(rule(lhs, rhs, CComparatorRules()));
}

TEST(ComparatorsTyped, AcceptsDerivedElements)
{
    class SpecialProduct : public CProduct
    {
    };
    EXPECT_TRUE(CComparatorDefault<CProduct>()(SpecialProduct(), CProduct(), CComparatorRules()));
}

TEST_F(ListComparison, TwoEmptyListsAreEqual)
{
    EXPECT_TRUE(Compare(EntryList(), EntryList()));
    EXPECT_TRUE(m_comparator.InvokeNodeComparison({}, m_rules));
}

TEST_F(ListComparison, AnotherNumberOfEntriesIsADifferenceBeforeAnyEntryIsLookedAt)
{
    EXPECT_FALSE(Compare(EntryList{1, 2}, EntryList{1, 2, 3}));
    EXPECT_FALSE(Compare(EntryList{1, 2, 3}, EntryList{1, 2}));
    EXPECT_FALSE(Compare(EntryList{}, EntryList{1}));
    EXPECT_FALSE(Compare(EntryList{1}, EntryList{}));
    EXPECT_EQ(Entry::s_identityTests.size(), 0U);
    EXPECT_EQ(Entry::s_comparisons.size(), 0U);
}

TEST_F(ListComparison, PairsEveryEntryOnce)
{
    constexpr int A = 1;
    constexpr int B = 2;
    struct Case
    {
        EntryList lhs;
        EntryList rhs;
        bool equal;
        std::size_t comparisons;
    };
    std::list<Case> cases;
    cases.push_back({{A, A}, {A, A}, true, 2});
    cases.push_back({{A, A}, {A, B}, false, 0});
    cases.push_back({{A, B}, {A, A}, false, 0});
    cases.push_back({{A, B}, {B, A}, true, 2});
    cases.push_back({{A, B, A}, {B, A, A}, true, 3});
    cases.push_back({{A, B, A}, {B, B, A}, false, 0});
    for (const Case& c : cases) {
        Reset();
        EXPECT_EQ(Compare(c.lhs, c.rhs), c.equal);
        EXPECT_EQ(Entry::s_comparisons.size(), c.comparisons);
    }
}

TEST_F(ListComparison, StaysEqualAfterAnyShuffle)
{
    Random random;
    for (int run = 0; run < 200; ++run) {
        EntryList lhs;
        std::vector<int> keys;
        for (std::size_t i = random.Below(12); i > 0; --i) {
            keys.push_back(static_cast<int>(random.Below(6)));
            lhs.emplace_back(keys.back());
        }
        EntryList rhs;
        while (!keys.empty()) {
            const auto taken = keys.begin() + static_cast<std::ptrdiff_t>(random.Below(keys.size()));
            rhs.emplace_back(*taken);
            keys.erase(taken);
        }
        EXPECT_TRUE(Compare(lhs, rhs)) << "run " << run << ", seed " << TestSeed();
        if (!rhs.empty()) {
            rhs.back().m_key = -1;
            EXPECT_FALSE(Compare(lhs, rhs)) << "run " << run << ", seed " << TestSeed();
        }
    }
    EXPECT_EQ(Entry::s_copies, 0) << "elements are never copied";
}

TEST_F(ListComparison, TriesCandidatesInAscendingOrderOfAddress)
{
    EntryList lhs{0, 0, 0};
    const std::vector<Entry*> byAddress = lhs.ByAddress();
    for (int i = 0; i < 3; ++i) {
        byAddress[static_cast<std::size_t>(i)]->m_key = i;
    }
    EntryList rhs{2, 1, 0};
    const Entry& r2 = rhs.front();
    const Entry& r1 = *std::next(rhs.begin());
    const Entry& r0 = rhs.back();
    // The order in the list does not matter, that in memory does.
    for (int turn = 0; turn < 2; ++turn) {
        Reset();
        EntryListComparator::CLookup lookup;
        EXPECT_TRUE(m_comparator.CreateLookup(lhs, rhs, lookup));
        EXPECT_EQ(Entry::s_identityTests, EntryPairs({{&r2, byAddress[0]},
                                                      {&r2, byAddress[1]},
                                                      {&r2, byAddress[2]},
                                                      {&r1, byAddress[0]},
                                                      {&r1, byAddress[1]},
                                                      {&r0, byAddress[0]}}));
        EXPECT_EQ(lookup,
                  (EntryListComparator::CLookup{{byAddress[0], &r0}, {byAddress[1], &r1}, {byAddress[2], &r2}}));
        lhs.reverse();
    }
}

TEST_F(ListComparison, PairsFoundBeforeAFailureStayInTheLookup)
{
    const EntryList lhs{1, 2};
    const EntryList rhs{1, 3};
    EntryListComparator::CLookup lookup;
    EXPECT_FALSE(m_comparator.CreateLookup(lhs, rhs, lookup));
    EXPECT_EQ(lookup, (EntryListComparator::CLookup{{&lhs.front(), &rhs.front()}}));
}

TEST_F(ListComparison, ComparesThePairsInOrderOfTheLeftAddressAndEndsAtTheFirstDifference)
{
    EntryList lhs{0, 0, 0};
    const std::vector<Entry*> byAddress = lhs.ByAddress();
    for (int i = 0; i < 3; ++i) {
        byAddress[static_cast<std::size_t>(i)]->m_key = i;
    }
    lhs.reverse();
    EntryList rhs{1, 2, 0};
    const Entry* const r0 = &rhs.back();
    const Entry* const r1 = &rhs.front();
    const Entry* const r2 = &*std::next(rhs.begin());
    const EntryPairs all = {{byAddress[0], r0}, {byAddress[1], r1}, {byAddress[2], r2}};
    EXPECT_TRUE(Compare(lhs, rhs));
    EXPECT_EQ(Entry::s_comparisons, all);
    for (std::size_t unequal = 0; unequal < 3; ++unequal) {
        Reset();
        byAddress[unequal]->m_same = false;
        EXPECT_FALSE(Compare(lhs, rhs));
        EXPECT_EQ(Entry::s_comparisons,
                  EntryPairs(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(unequal) + 1));
        byAddress[unequal]->m_same = true;
    }
}

TEST_F(ListComparison, PairedEntriesStillDifferByTheirOwnRuleAndAnyBelow)
{
    CMaintenances lhs;
    CMaintenance& record = lhs.CreateEntry();
    record.m_maintenanceTasks.CreateEntry().m_name = "task";
    const CMaintenances rhs(lhs);
    const CListComparatorTyped<CMaintenance, CMaintenances> comparator;
    EXPECT_TRUE(comparator(lhs, rhs, m_rules));
    m_rules.Add(Always("MaintenanceTask", false));
    EXPECT_TRUE(comparator(lhs, rhs, m_rules)) << "nothing leads to the tasks";
    m_rules.Add(new CListComparatorTyped<CMaintenanceTask, CMaintenanceTasks>);
    EXPECT_FALSE(comparator(lhs, rhs, m_rules));
    m_rules.Clear();
    m_rules.Add(Always("Maintenance", false));
    EXPECT_FALSE(comparator(lhs, rhs, m_rules));
}

TEST_F(ListComparison, VirtualOperationsCanBeReplaced)
{
    class OwnInvoke : public EntryListComparator
    {
    public:
        bool InvokeNodeComparison(const CLookup& lookup, const CComparatorRules&) const override
        {
            return lookup.size() == 1;
        }
    };
    class OwnCompare : public EntryListComparator
    {
    public:
        bool CompareInternal(const CElementNodeList<Entry>& lhs, const CElementNodeList<Entry>& rhs,
                             const CComparatorRules&) const override
        {
            return lhs.size() != rhs.size();
        }
    };
    EXPECT_TRUE(OwnInvoke()(EntryList{1}, EntryList{1}, m_rules));
    EXPECT_FALSE(OwnInvoke()(EntryList{1, 2}, EntryList{1, 2}, m_rules));
    EXPECT_FALSE(OwnInvoke()(EntryList{1}, EntryList{2}, m_rules));
    EXPECT_EQ(Entry::s_comparisons.size(), 0U);
    EXPECT_TRUE(OwnCompare()(EntryList{1}, EntryList{}, m_rules));
    EXPECT_FALSE(OwnCompare()(EntryList{1}, EntryList{1}, m_rules));
}

TEST_F(ListComparison, AnyListOfTheEntriesPasses)
{
    EXPECT_TRUE(Compare(OtherEntryList(), EntryList()));
    EXPECT_TRUE(Compare(EntryList(), OtherEntryList()));
}

TEST(ListPairing, IsGreedyAndDependsOnTheAddressesWhereIdentityIsNotTransitive)
{
    // One part has a number, the other only the name. An entry with the name alone fits both, one with the number alone
    // fits only the first.
    CProgrammableParts lhs;
    lhs.CreateEntry();
    lhs.CreateEntry();
    CProgrammablePart* low = &lhs.front();
    CProgrammablePart* high = &lhs.back();
    if (std::less<>()(high, low)) {
        std::swap(low, high);
    }
    const auto fill = [](CProgrammablePart& part, const char* name, const char* number) {
        part.m_name = name;
        part.m_partNumber = number;
    };
    CProgrammableParts greedyFirst;
    fill(greedyFirst.CreateEntry(), "boot", "");
    fill(greedyFirst.CreateEntry(), "other", "1000.0001.02");
    CProgrammableParts greedyLast;
    fill(greedyLast.CreateEntry(), "other", "1000.0001.02");
    fill(greedyLast.CreateEntry(), "boot", "");

    const CListComparatorTyped<CProgrammablePart, CProgrammableParts> comparator;
    const CComparatorRules rules;
    for (const bool numberIsLow : {true, false}) {
        fill(*low, "boot", numberIsLow ? "1000.0001.02" : "");
        fill(*high, "boot", numberIsLow ? "" : "1000.0001.02");
        for (int turn = 0; turn < 2; ++turn) {
            EXPECT_EQ(comparator(lhs, greedyFirst, rules), !numberIsLow)
                << "the entry without a number takes the candidate at the lower address";
            EXPECT_TRUE(comparator(lhs, greedyLast, rules));
            lhs.reverse();
        }
    }
}

TEST(ComparatorsRulesFactory, AddsToWhatTheSetHolds)
{
    CComparatorRules rules;
    const CComparatorBase* other = Always("Property", false);
    Texts deaths;
    rules.Add(other);
    rules.Add(new MortalRule("Product", "replaced", deaths));
    const CDefaultHistoryComparatorRulesFactory factory;
    factory.CreateRules(rules);
    EXPECT_EQ(rules.Find("Property"), other);
    EXPECT_NE(rules.Find("Service"), nullptr);
    EXPECT_EQ(deaths, Texts({"replaced"}));
}

using ComparatorsDeathTest = testing::Test;

TEST_F(ComparatorsDeathTest, ElementOfAnotherClass)
{
    const CComparatorDefault<CProduct> rule;
    const CComparatorRules rules;
    const auto aborted = testing::KilledBySignal(SIGABRT);
    EXPECT_EXIT(rule(CService(), CProduct(), rules), aborted, "left element");
    EXPECT_EXIT(rule(CProduct(), CService(), rules), aborted, "right element");
    EXPECT_EXIT(rule(CService(), CService(), rules), aborted, "left element");
    EXPECT_TRUE(rule(CProduct(), CProduct(), rules));
}

TEST_F(ComparatorsDeathTest, ListOfOtherEntries)
{
    const CListComparatorTyped<CProduct, CProductList> rule;
    const CComparatorRules rules;
    const auto aborted = testing::KilledBySignal(SIGABRT);
    EXPECT_EXIT(rule(CServices(), CProductList(), rules), aborted, "left element");
    EXPECT_EXIT(rule(CProductList(), CServices(), rules), aborted, "right element");
    EXPECT_EXIT(rule(CServices(), CServices(), rules), aborted, "left element");
    EXPECT_EXIT(rule(CProduct(), CProductList(), rules), aborted, "left element");
    EXPECT_TRUE(rule(CProductList(), CProductList(), rules));
}

TEST_F(ComparatorsDeathTest, WrongNameReachedByTheWalk)
{
    CComparatorRules rules;
    rules.Add(new CComparatorDefault<CProduct>);
    const Probe impostor("Product");
    EXPECT_EXIT(impostor.Compare(CProduct(), rules), testing::KilledBySignal(SIGABRT), "left element");
    EXPECT_EXIT(CProduct().Compare(impostor, rules), testing::KilledBySignal(SIGABRT), "right element");
}

TEST_F(ComparatorsDeathTest, NullRule)
{
    CComparatorRules rules;
    EXPECT_EXIT(rules.Add(nullptr), testing::KilledBySignal(SIGABRT), "");
}

TEST_F(ComparatorsDeathTest, ExceptionsOfTheErrorWordDoNotReplaceTheStop)
{
    const auto stopWithExceptions = [] {
        CDeviceFootprint::EnableExceptions(true);
        CComparatorRules().Add(nullptr);
    };
    EXPECT_EXIT(stopWithExceptions(), testing::KilledBySignal(SIGABRT), "");
}
