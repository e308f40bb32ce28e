#include "Differences.h"

#include "DfpErrorHandler.h"
#include "ElementWalk.h"
#include "FillFootprint.h"
#include "GoldenData.h"
#include "Random.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;
using footprint::CDifference;
using footprint::CExplanation;
using footprint::Explain;
using footprint::Undo;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using EKind = CDifference::EKind;
using EDecision = CDifference::EDecision;

namespace
{

/// A rule for elements of T, by a function.
template<class T>
class CRule : public CComparatorTyped<T>
{
public:
    using TSame = std::function<bool(const T&, const T&)>;
    explicit CRule(TSame same) : m_same(std::move(same)) {}
    bool CompareInternal(const T& left, const T& right) const override { return m_same(left, right); }

private:
    TSame m_same;
};

/// A rule for any element, by its name.
class CAnyRule : public CComparatorBase
{
public:
    using TSame = std::function<bool(const CElementNode&, const CElementNode&, const CComparatorRules&)>;
    CAnyRule(std::string name, TSame same) : m_name(std::move(name)), m_same(std::move(same)) {}
    const std::string& GetAssociatedNodeName() const override { return m_name; }
    bool operator()(const CElementNode& left, const CElementNode& right, const CComparatorRules& rules) const override
    {
        return m_same(left, right, rules);
    }

private:
    std::string m_name;
    TSame m_same;
};

template<class T>
void AddRule(CComparatorRules& rules, typename CRule<T>::TSame same)
{
    rules.Add(std::make_unique<CRule<T>>(std::move(same)).release());
}

void AddAnyRule(CComparatorRules& rules, const std::string& name, CAnyRule::TSame same)
{
    rules.Add(std::make_unique<CAnyRule>(name, std::move(same)).release());
}

template<class Comparator>
void AddComparator(CComparatorRules& rules)
{
    rules.Add(std::make_unique<Comparator>().release());
}

std::size_t ChangedAttributes(const CElementNode& left, const CElementNode& right)
{
    std::size_t count = 0;
    for (const CReadOnlyAttribute* attribute : footprint::AttributesOf(left)) {
        count += attribute->GetValue() != right.GetAttributeValue(attribute->GetNodeName()) ? 1U : 0U;
    }
    return count;
}

long Number(const CReadOnlyAttribute& attribute)
{
    long number = 0;
    if (!attribute.IsEmpty()) {
        attribute.GetInteger(number);
    }
    return number;
}

/// Rules that weigh several fields against each other: any of, all of, by their count, by their sum.
class CWeighingRules : public CComparatorRulesFactory
{
public:
    void CreateRules(CComparatorRules& rules) const override
    {
        CDefaultHistoryComparatorRulesFactory().CreateRules(rules);
        AddRule<CMaintenanceData>(rules, [](const CMaintenanceData& left, const CMaintenanceData& right) {
            return left.m_operatingHours.IsEqual(right.m_operatingHours, true) ||
                   left.m_makeAndBreakCycles.IsEqual(right.m_makeAndBreakCycles, true);
        });
        AddRule<CDeviceData>(rules, [](const CDeviceData& left, const CDeviceData& right) {
            return ChangedAttributes(left, right) <= 2;
        });
        AddRule<CHardware>(rules, [](const CHardware& left, const CHardware& right) {
            return Number(left.m_hardwareCode) + Number(left.m_readCode) ==
                   Number(right.m_hardwareCode) + Number(right.m_readCode);
        });
        AddRule<CSoftware>(rules, [](const CSoftware& left, const CSoftware& right) {
            return left.m_status.GetValue() != right.m_status.GetValue() ||
                   left.m_version.GetValue() == right.m_version.GetValue();
        });
        // As many notes may change as stay.
        AddAnyRule(rules, CMaintenanceInfos::s_ElementName, [](const auto& left, const auto& right, const auto&) {
            const auto& notes = dynamic_cast<const CMaintenanceInfos&>(left);
            const auto& others = dynamic_cast<const CMaintenanceInfos&>(right);
            std::multiset<std::wstring> values;
            for (const CMaintenanceInfo& note : others) {
                values.insert(note.m_value.GetValue());
            }
            std::size_t changed = 0;
            for (const CMaintenanceInfo& note : notes) {
                const auto found = values.find(note.m_value.GetValue());
                if (found == values.end()) {
                    ++changed;
                } else {
                    values.erase(found);
                }
            }
            return changed * 2 <= notes.size() && values.size() * 2 <= others.size();
        });
    }
};

/// Rules that look far, at the order of entries, at lists without identity and at devices held as text.
class CWideRules : public CComparatorRulesFactory
{
public:
    void CreateRules(CComparatorRules& rules) const override
    {
        AddAnyRule(rules, CDeviceFootprint::s_ElementName, [](const auto& left, const auto& right, const auto&) {
            const auto& device = dynamic_cast<const CDeviceFootprintData&>(left);
            const auto& other = dynamic_cast<const CDeviceFootprintData&>(right);
            return device.m_softwareData.m_softwareList.size() == other.m_softwareData.m_softwareList.size() ||
                   device.m_deviceData.m_type.GetValue() == other.m_deviceData.m_type.GetValue();
        });
        AddAnyRule(rules, CHardwareData::s_ElementName, [](const auto& left, const auto& right, const auto&) {
            const auto hours = [](const CElementNode& element) {
                long sum = 0;
                for (const CHardware& board : dynamic_cast<const CHardwareData&>(element).m_hardwareList) {
                    sum += Number(board.m_maintenanceData.m_operatingHours);
                }
                return sum / 100;
            };
            return hours(left) == hours(right);
        });
        AddComparator<CListComparatorTyped<CSoftware, CSoftwareList>>(rules);
        AddAnyRule(rules, CProperties::s_ElementName, [](const auto& left, const auto& right, const auto&) {
            const auto& properties = dynamic_cast<const CProperties&>(left);
            const auto& others = dynamic_cast<const CProperties&>(right);
            return std::equal(properties.begin(), properties.end(), others.begin(), others.end(),
                              [](const CProperty& property, const CProperty& counterpart) {
                                  return property.m_value.GetValue() == counterpart.m_value.GetValue();
                              });
        });
        AddAnyRule(rules, CProductList::s_ElementName, [](const auto& left, const auto& right, const auto&) {
            const auto last = [](const CElementNode& list) {
                const auto& products = dynamic_cast<const CProductList&>(list);
                return products.empty() ? std::wstring() : products.back().m_partName.GetValue();
            };
            return last(left) == last(right);
        });
        AddAnyRule(rules, CConnectedDeviceList::s_ElementName, [](const auto& left, const auto& right, const auto&) {
            return dynamic_cast<const CConnectedDeviceList&>(left).m_connectedDeviceStrings ==
                   dynamic_cast<const CConnectedDeviceList&>(right).m_connectedDeviceStrings;
        });
        // In a quorum of boards, each by its own rule.
        AddAnyRule(rules, CHardwareList::s_ElementName,
                   [](const auto& left, const auto& right, const CComparatorRules& all) {
                       const auto& boards = dynamic_cast<const CHardwareList&>(left);
                       const auto& others = dynamic_cast<const CHardwareList&>(right);
                       std::size_t changed = 0;
                       for (const CHardware& board : boards) {
                           changed += std::none_of(others.begin(), others.end(),
                                                   [&](const CHardware& other) {
                                                       return board.IsSameEntity(other) && board.Compare(other, all);
                                                   })
                                          ? 1U
                                          : 0U;
                       }
                       std::set<std::wstring> serials;
                       for (const CHardware& board : boards) {
                           serials.insert(board.m_sn.GetValue());
                       }
                       for (const CHardware& other : others) {
                           changed += serials.count(other.m_sn.GetValue()) == 0 ? 1U : 0U;
                       }
                       return changed < 2;
                   });
        AddRule<CHardware>(rules, [](const CHardware& left, const CHardware& right) {
            return left.m_name.GetValue() == right.m_name.GetValue() ||
                   left.m_partName.GetValue() == right.m_partName.GetValue();
        });
    }
};

/// A document with values that are few, so that changes meet.
class CGenerator
{
public:
    explicit CGenerator(unsigned seed) : m_random(seed) {}

    std::unique_ptr<CDeviceFootprint> Make()
    {
        auto document = std::make_unique<CDeviceFootprint>();
        FillFootprint(*document, {1 + m_random.Below(4), m_random.Below(3), m_random.Below(2)});
        document->m_checksum.Clear();
        std::vector<CElementNode*> elements = ElementsOf(*document);
        for (CElementNode* element : elements) {
            for (CReadOnlyAttribute* attribute : AttributesOf(*element)) {
                const bool isKey = dynamic_cast<CHardware*>(element) != nullptr && attribute->GetNodeName() == "sn";
                if (!isKey || m_random.OneIn(6)) {
                    attribute->Set(Value());
                }
            }
        }
        for (CHardwareList* boards : ListsOf<CHardwareList>(*document)) {
            long id = 0;
            for (CHardware& board : *boards) {
                board.m_id = ++id;
                board.m_parentId = static_cast<long>(m_random.Below(boards->size() + 2));
            }
        }
        for (std::size_t count = m_random.Below(3); count-- > 0;) {
            AddText(*document);
        }
        return document;
    }

    void Change(CDeviceFootprint& document)
    {
        std::vector<CElementNode*> elements = ElementsOf(document);
        CElementNode& element = *m_random.OneOf(elements);
        switch (m_random.Below(6)) {
        case 0: {
            const auto boards = ListsOf<CHardwareList>(document);
            ChangeBoards(*m_random.OneOf(boards));
            break;
        }
        case 1:
            ChangeTexts(document);
            break;
        case 2:
        case 3: {
            const auto lists = ElementsWithList(elements);
            ChangeList(*m_random.OneOf(lists));
            break;
        }
        default: {
            const auto attributes = AttributesOf(element);
            if (!attributes.empty()) {
                m_random.OneOf(attributes)->Set(m_random.OneIn(5) ? std::wstring() : Value());
            }
        }
        }
    }

    Random m_random;

private:
    std::wstring Value() { return std::to_wstring(1 + m_random.Below(4)); }

    static std::vector<CReadOnlyAttribute*> AttributesOf(const CElementNode& element)
    {
        std::list<CReadOnlyAttribute*> attributes;
        element.GetAttributeNodes(attributes);
        return {attributes.begin(), attributes.end()};
    }

    static std::vector<CElementNode*> ElementsOf(CDeviceFootprint& document)
    {
        std::vector<CElementNode*> elements;
        footprint::Walk(document, [&elements](const CElementNode& element, const std::string& /*path*/) {
            elements.push_back(const_cast<CElementNode*>(&element));
        });
        return elements;
    }

    static std::vector<CElementNode*> ElementsWithList(const std::vector<CElementNode*>& elements)
    {
        std::vector<CElementNode*> lists;
        for (CElementNode* element : elements) {
            if (footprint::FindListClass(*element) != nullptr) {
                lists.push_back(element);
            }
        }
        return lists;
    }

    template<class L>
    static std::vector<L*> ListsOf(CDeviceFootprint& document)
    {
        std::vector<L*> lists;
        for (CElementNode* element : ElementsOf(document)) {
            if (auto* list = dynamic_cast<L*>(element)) {
                lists.push_back(list);
            }
        }
        return lists;
    }

    void ChangeList(CElementNode& element)
    {
        ChangeListOf<CHardwareList, CProgrammableParts, CProductList, CSoftwareList, CMaintenances, CMaintenanceTasks,
                     CMaintenanceInfos, CServices, CProperties, CTestInstructionList, CConnectedDeviceList>(element);
    }

    template<class... L>
    void ChangeListOf(CElementNode& element)
    {
        (ChangeIfList<L>(element), ...);
    }

    /// Entries come, go, come twice and change places.
    template<class L>
    void ChangeIfList(CElementNode& element)
    {
        auto* list = dynamic_cast<L*>(&element);
        if (list == nullptr) {
            return;
        }
        auto place = list->begin();
        std::advance(place, static_cast<std::ptrdiff_t>(m_random.Below(list->size() + 1)));
        switch (m_random.Below(4)) {
        case 0: {
            typename L::value_type entry;
            for (CReadOnlyAttribute* attribute : AttributesOf(entry)) {
                attribute->Set(Value());
            }
            list->insert(place, std::move(entry));
            break;
        }
        case 1:
            if (place != list->end()) {
                list->erase(place);
            }
            break;
        case 2:
            if (place != list->end()) {
                const typename L::value_type copy = *place;
                list->push_back(copy);
            }
            break;
        default:
            if (place != list->end()) {
                list->splice(list->begin(), *list, place);
            }
        }
    }

    void ChangeBoards(CHardwareList& boards)
    {
        if (boards.empty()) {
            return;
        }
        auto board = boards.begin();
        std::advance(board, static_cast<std::ptrdiff_t>(m_random.Below(boards.size())));
        switch (m_random.Below(4)) {
        case 0:
            board->m_parentId = static_cast<long>(m_random.Below(boards.size() + 2));
            break;
        case 1:
            board->m_id = static_cast<long>(1 + m_random.Below(boards.size() + 2));
            break;
        case 2:
            for (CHardware& each : boards) { // other numbers, the same tree
                each.m_id = Number(each.m_id) + 10;
                if (!each.m_parentId.IsEmpty()) {
                    each.m_parentId = Number(each.m_parentId) + 10;
                }
            }
            break;
        default:
            std::swap(board->m_id, boards.front().m_id);
        }
    }

    void AddText(CDeviceFootprint& document)
    {
        document.m_pConnectedDevices->m_connectedDeviceStrings.push_back(
            {"<ConnectedDevice a=\"" + std::to_string(m_random.Below(3)) + "\">", "</ConnectedDevice"});
    }

    void ChangeTexts(CDeviceFootprint& document)
    {
        auto& texts = document.m_pConnectedDevices->m_connectedDeviceStrings;
        if (texts.empty() || m_random.OneIn(2)) {
            AddText(document);
        } else {
            texts.erase(texts.begin());
        }
    }
};

std::string TextOf(const CDeviceFootprint& document)
{
    std::string text;
    footprint::Walk(document, [&text](const CElementNode& element, const std::string& path) {
        text += path;
        for (const CReadOnlyAttribute* attribute : footprint::AttributesOf(element)) {
            text += " " + attribute->GetNodeName() + "=" + footprint::Utf8(attribute->GetValue());
        }
        if (const auto* devices = dynamic_cast<const CConnectedDeviceList*>(&element)) {
            for (const auto& lines : devices->m_connectedDeviceStrings) {
                for (const std::string& line : lines) {
                    text += "|" + line;
                }
            }
        }
        text += "\n";
    });
    return text;
}

std::vector<CDifference> Deciding(const CExplanation& explanation)
{
    std::vector<CDifference> deciding;
    for (const CDifference& difference : explanation.differences) {
        if (difference.Decides()) {
            deciding.push_back(difference);
        }
    }
    return deciding;
}

/// "path attribute: old -> new" of a difference.
std::string Words(const CDifference& difference)
{
    return difference.path + (difference.attribute.empty() ? "" : " " + difference.attribute) + ": " +
           difference.oldValue + " -> " + difference.newValue;
}

/// The names of the attributes of deciding differences, or the paths.
std::vector<std::string> DecidingNames(const CExplanation& explanation)
{
    std::vector<std::string> names;
    for (const CDifference& difference : Deciding(explanation)) {
        names.push_back(difference.attribute.empty() ? difference.path : difference.attribute);
    }
    return names;
}

/// Whether the rules mind a difference if it is the only one.
bool DecidesAlone(const CExplanation& explanation, const CDifference& difference, const CDeviceFootprint& oldDocument,
                  const CDeviceFootprint& newDocument, const CComparatorRules& rules)
{
    std::vector<CDifference> others;
    for (const CDifference& other : explanation.differences) {
        if (other.number != difference.number) {
            others.push_back(other);
        }
    }
    return !Undo(oldDocument, newDocument, others)->CompareTo(oldDocument, rules);
}

struct CRuleSet
{
    std::string name;
    std::function<std::unique_ptr<CComparatorRulesFactory>()> make;
};

const std::vector<CRuleSet> ruleSets = {
    {"Default", [] { return std::make_unique<CDefaultHistoryComparatorRulesFactory>(); }},
    {"Weighing", [] { return std::make_unique<CWeighingRules>(); }},
    {"Wide", [] { return std::make_unique<CWideRules>(); }},
};

class DifferencesPropertyTest : public testing::TestWithParam<CRuleSet>
{
};

// The sanitizers look for faults of memory, which as many rounds of another build need not repeat.
#if defined(__SANITIZE_ADDRESS__)
constexpr unsigned rounds = 100;
#else
constexpr unsigned rounds = 300;
#endif

} // namespace

TEST_P(DifferencesPropertyTest, WhatDecidesIsNamedAndUndone)
{
    CComparatorRules rules;
    GetParam().make()->CreateRules(rules);
    unsigned same = 0;
    unsigned different = 0;
    for (unsigned round = 0; round < rounds; ++round) {
        CGenerator generator(TestSeed() + round);
        const auto oldDocument = generator.Make();
        const auto newDocument = std::make_unique<CDeviceFootprint>(*oldDocument);
        newDocument->m_pConnectedDevices->m_connectedDeviceStrings =
            oldDocument->m_pConnectedDevices->m_connectedDeviceStrings;
        const std::size_t changes = 1 + generator.m_random.Below(round % 4 == 0 ? 40 : 5);
        for (std::size_t change = 0; change < changes; ++change) {
            generator.Change(*newDocument);
        }
        const std::string before = TextOf(*newDocument);
        const bool isSame = newDocument->CompareTo(*oldDocument, rules);
        ++(isSame ? same : different);

        const CExplanation explanation = Explain(*oldDocument, *newDocument, rules);
        SCOPED_TRACE("round " + std::to_string(round));
        ASSERT_EQ(TextOf(*newDocument), before) << "both documents stay as they are";
        ASSERT_EQ(explanation.isSame, isSame);
        const std::vector<CDifference> deciding = Deciding(explanation);
        ASSERT_EQ(deciding.empty(), isSame);
        for (const CDifference& difference : deciding) {
            ASSERT_NE(difference.kind, EKind::eUnequal) << Words(difference);
            ASSERT_FALSE(difference.ruleClass.empty());
        }
        const auto undone = Undo(*oldDocument, *newDocument, deciding);
        ASSERT_TRUE(undone->CompareTo(*oldDocument, rules));
        if (GetParam().name == "Default" && deciding.size() <= 12) {
            for (const CDifference& difference : deciding) {
                // A changed parent is the effect of other differences.
                if (difference.kind != EKind::eParent) {
                    ASSERT_EQ(DecidesAlone(explanation, difference, *oldDocument, *newDocument, rules),
                              difference.decision == EDecision::eAlone)
                        << Words(difference);
                }
            }
        }
        const auto equal = Undo(*oldDocument, *newDocument, explanation.differences);
        ASSERT_EQ(TextOf(*equal), TextOf(*oldDocument)) << "all differences were named";
        ASSERT_EQ(TextOf(*Undo(*oldDocument, *newDocument, {})), before);
    }
    EXPECT_GT(same, rounds / 15);
    EXPECT_GT(different, rounds / 3);
}

INSTANTIATE_TEST_SUITE_P(RuleSets, DifferencesPropertyTest, testing::ValuesIn(ruleSets),
                         [](const auto& ruleSet) { return ruleSet.param.name; });

namespace
{

/// Two documents that are alike at first, with three boards: 1 carries 2, 2 carries 3.
class DifferencesTest : public testing::Test
{
protected:
    DifferencesTest()
    {
        for (CDeviceFootprint* document : {&m_old, &m_new}) {
            document->m_deviceData.m_deviceId = "1111.2222.33-100001-x";
            document->m_deviceData.m_maintenanceData.m_operatingHours = 100L;
            for (long number = 1; number <= 3; ++number) {
                CHardware& board = document->m_hardwareData.m_hardwareList.CreateEntry();
                board.m_id = number;
                board.m_sn = 1000 + number;
                board.m_partNumber = "1234.5678.02";
                if (number > 1) {
                    board.m_parentId = number - 1;
                }
            }
        }
    }

    CHardware& Board(std::size_t place)
    {
        return *std::next(m_new.m_hardwareData.m_hardwareList.begin(), static_cast<std::ptrdiff_t>(place));
    }

    /// All differences in words, those that decide with a "!" in front.
    std::vector<std::string> All(const CComparatorRulesFactory& factory = CDefaultHistoryComparatorRulesFactory())
    {
        std::vector<std::string> words;
        for (const CDifference& difference : Explain(m_old, m_new, factory).differences) {
            words.push_back((difference.Decides() ? "!" : "") + Words(difference));
        }
        return words;
    }

    CDeviceFootprint m_old;
    CDeviceFootprint m_new;
    const std::string m_boards = "/DeviceFootprint/HardwareData/HardwareList";
};

/// Rules made by a function.
class CRulesBy : public CComparatorRulesFactory
{
public:
    explicit CRulesBy(std::function<void(CComparatorRules&)> create) : m_create(std::move(create)) {}
    void CreateRules(CComparatorRules& rules) const override { m_create(rules); }

private:
    std::function<void(CComparatorRules&)> m_create;
};

} // namespace

TEST_F(DifferencesTest, EqualDocumentsHaveNone)
{
    const CExplanation explanation = Explain(m_old, m_new);
    EXPECT_TRUE(explanation.isSame);
    EXPECT_THAT(explanation.differences, IsEmpty());
    EXPECT_TRUE(Explain(m_old, m_old).isSame);
}

TEST_F(DifferencesTest, TheRuleIsNamed)
{
    m_new.m_deviceData.m_maintenanceData.m_operatingHours = 101L;
    m_new.m_deviceData.m_partName = "Other";
    const CExplanation explanation = Explain(m_old, m_new);
    EXPECT_FALSE(explanation.isSame);
    ASSERT_EQ(explanation.differences.size(), 2U);
    EXPECT_FALSE(explanation.differences[0].Decides());
    EXPECT_EQ(Words(explanation.differences[0]), "/DeviceFootprint/DeviceData partName:  -> Other");
    const CDifference& hours = explanation.differences[1];
    EXPECT_EQ(Words(hours), "/DeviceFootprint/DeviceData/MaintenanceData operatingHours: 100 -> 101");
    EXPECT_EQ(hours.decision, EDecision::eAlone);
    EXPECT_EQ(hours.ruleElement, "MaintenanceData");
    EXPECT_EQ(hours.ruleClass, "KvDeviceFootprint::CMaintenanceDataComparator");
    EXPECT_EQ(hours.rulePath, "/DeviceFootprint/DeviceData/MaintenanceData");
    EXPECT_EQ(hours.newElement, &m_new.m_deviceData.m_maintenanceData);
    EXPECT_EQ(hours.oldElement, &m_old.m_deviceData.m_maintenanceData);
}

TEST_F(DifferencesTest, IdentityOfAnElementThatIsNoEntry)
{
    m_old.m_softwareData.m_bios.m_partNumber = "1";
    m_new.m_softwareData.m_bios.m_partNumber = "2";
    m_new.m_softwareData.m_bios.m_partChangeIndex = "2";
    EXPECT_THAT(All(), ElementsAre("!/DeviceFootprint/SoftwareData/Bios partNumber: 1 -> 2",
                                   "/DeviceFootprint/SoftwareData/Bios partChangeIndex:  -> 2"));
}

TEST_F(DifferencesTest, EntriesArePairedByIdentity)
{
    Board(0).m_name = "renamed";
    Board(2).m_sn = 2000L;
    m_new.m_hardwareData.m_hardwareList.reverse();
    EXPECT_THAT(All(), ElementsAre("!" + m_boards + "/Hardware[1]:  -> ", m_boards + "/Hardware[3] name:  -> renamed",
                                   "!" + m_boards + "/Hardware[3]:  -> ", m_boards + ": 1-2 -> 2, 1"));
}

TEST_F(DifferencesTest, EntriesOfOneEntity)
{
    for (CDeviceFootprint* document : {&m_old, &m_new}) {
        CSoftwareList& packages = document->m_softwareData.m_softwareList;
        for (int i = 0; i < 3; ++i) {
            packages.CreateEntry().m_name = "twin";
        }
        // Of several partners the one at the lowest address is taken, which here is to be the first.
        packages.sort([](const CSoftware& lhs, const CSoftware& rhs) { return std::less<>()(&lhs, &rhs); });
        long version = 0;
        for (CSoftware& package : packages) {
            package.m_version = ++version;
        }
    }
    const std::string list = "/DeviceFootprint/SoftwareData/SoftwareList";
    EXPECT_THAT(All(), IsEmpty());
    m_new.m_softwareData.m_softwareList.pop_back();
    EXPECT_THAT(All(), ElementsAre("!" + list + "/Software[3]:  -> "));
    m_new.m_softwareData.m_softwareList.back().m_version = "4";
    EXPECT_THAT(All(), ElementsAre("!" + list + "/Software[2] version: 2 -> 4", "!" + list + "/Software[3]:  -> "));
    CComparatorRules rules;
    CDefaultHistoryComparatorRulesFactory().CreateRules(rules);
    EXPECT_TRUE(Undo(m_old, m_new, Deciding(Explain(m_old, m_new)))->CompareTo(m_old, rules));
}

TEST_F(DifferencesTest, OtherNumbersDoNotDecide)
{
    for (CHardware& board : m_new.m_hardwareData.m_hardwareList) {
        board.m_id = Number(board.m_id) + 6;
        if (!board.m_parentId.IsEmpty()) {
            board.m_parentId = Number(board.m_parentId) + 6;
        }
    }
    const CExplanation same = Explain(m_old, m_new);
    EXPECT_TRUE(same.isSame);
    EXPECT_EQ(same.differences.size(), 5U);
    Board(2).m_parentId = 7L; // below the first one
    const CExplanation moved = Explain(m_old, m_new);
    ASSERT_EQ(Deciding(moved).size(), 1U);
    EXPECT_EQ(Words(Deciding(moved)[0]), m_boards + "/Hardware[3] parentId: 2 -> 7");
    EXPECT_EQ(Deciding(moved)[0].ruleElement, "HardwareList");
    EXPECT_EQ(Undo(m_old, m_new, Deciding(moved))->m_hardwareData.m_hardwareList.back().m_parentId.GetValue(), L"8")
        << "undone, it is the former parent by its number of now";
}

TEST_F(DifferencesTest, AParentThatResolvesOnOneSide)
{
    Board(2).m_parentId = 9L;
    EXPECT_THAT(All(), ElementsAre("!" + m_boards + "/Hardware[3] parentId: 2 -> 9"));
    Board(2).m_parentId = 2L;
    Board(1).m_id = 9L; // the cause, not its effect on the third board
    EXPECT_THAT(All(), ElementsAre("!" + m_boards + "/Hardware[2] id: 2 -> 9"));
    Board(1).m_id.Clear();
    EXPECT_THAT(All(), ElementsAre("!" + m_boards + "/Hardware[2] id: 2 -> "));
}

TEST_F(DifferencesTest, AnotherParentOfTheSameNumber)
{
    // The first two boards change their numbers, and all that hangs below them but the third one follows.
    for (CDeviceFootprint* document : {&m_old, &m_new}) {
        for (long number = 4; number <= 6; ++number) {
            CHardware& board = document->m_hardwareData.m_hardwareList.CreateEntry();
            board.m_id = number;
            board.m_sn = 1000 + number;
            board.m_parentId = document == &m_old ? 2L : 1L;
        }
    }
    Board(0).m_id = 2L;
    Board(1).m_id = 1L;
    Board(1).m_parentId = 2L;
    const CExplanation explanation = Explain(m_old, m_new);
    ASSERT_EQ(Deciding(explanation).size(), 1U);
    EXPECT_EQ(Deciding(explanation)[0].kind, EKind::eParent);
    EXPECT_EQ(Words(Deciding(explanation)[0]), m_boards + "/Hardware[3] parentId: 2 -> 2");
}

TEST_F(DifferencesTest, ABoardWithoutNumberIsNeverTheSame)
{
    m_old.m_hardwareData.m_hardwareList.back().m_id.Clear();
    Board(2).m_id.Clear();
    const CExplanation explanation = Explain(m_old, m_new);
    EXPECT_FALSE(explanation.isSame);
    ASSERT_EQ(explanation.differences.size(), 1U);
    EXPECT_EQ(explanation.differences[0].kind, EKind::eUnequal);
    EXPECT_EQ(explanation.differences[0].path, m_boards + "/Hardware[3]");
    EXPECT_EQ(explanation.differences[0].ruleElement, "HardwareList");
    EXPECT_EQ(explanation.differences[0].number, CDifference::none);
}

TEST_F(DifferencesTest, AnyOfTwo)
{
    const CRulesBy rules([](CComparatorRules& set) {
        AddRule<CMaintenanceData>(set, [](const CMaintenanceData& left, const CMaintenanceData& right) {
            return left.m_operatingHours.IsEqual(right.m_operatingHours, true) ||
                   left.m_makeAndBreakCycles.IsEqual(right.m_makeAndBreakCycles, true);
        });
    });
    m_new.m_deviceData.m_maintenanceData.m_operatingHours = 101L;
    EXPECT_THAT(DecidingNames(Explain(m_old, m_new, rules)), IsEmpty());
    m_new.m_deviceData.m_maintenanceData.m_makeAndBreakCycles = 1L;
    const CExplanation explanation = Explain(m_old, m_new, rules);
    EXPECT_THAT(DecidingNames(explanation), ElementsAre("operatingHours", "makeAndBreakCycles"));
    for (const CDifference& difference : explanation.differences) {
        EXPECT_EQ(difference.decision, EDecision::eTogether);
    }
}

TEST_F(DifferencesTest, ByTheirCount)
{
    const CRulesBy rules([](CComparatorRules& set) {
        AddRule<CDeviceData>(
            set, [](const CDeviceData& left, const CDeviceData& right) { return ChangedAttributes(left, right) <= 2; });
        // Two boards may come or go.
        AddAnyRule(set, CHardwareList::s_ElementName, [](const auto& left, const auto& right, const auto&) {
            const auto count = [](const CElementNode& list) {
                return static_cast<int>(dynamic_cast<const CHardwareList&>(list).size());
            };
            return std::abs(count(left) - count(right)) <= 2;
        });
    });
    m_new.m_deviceData.m_type = "a";
    m_new.m_deviceData.m_partName = "b";
    m_new.m_hardwareData.m_hardwareList.CreateEntry().m_sn = 1L;
    m_new.m_hardwareData.m_hardwareList.CreateEntry().m_sn = 2L;
    EXPECT_THAT(DecidingNames(Explain(m_old, m_new, rules)), IsEmpty());
    m_new.m_deviceData.m_productDate = "c";
    EXPECT_THAT(DecidingNames(Explain(m_old, m_new, rules)), UnorderedElementsAre("type", "partName", "productDate"));
    m_new.m_deviceData.m_productDate.Clear();
    m_new.m_hardwareData.m_hardwareList.CreateEntry().m_sn = 3L;
    EXPECT_THAT(DecidingNames(Explain(m_old, m_new, rules)),
                ElementsAre(m_boards + "/Hardware[4]", m_boards + "/Hardware[5]", m_boards + "/Hardware[6]"));
}

TEST_F(DifferencesTest, ARuleOfAListThatMindsOneBoardOnly)
{
    const CRulesBy rules([](CComparatorRules& set) {
        AddRule<CHardware>(
            set, [](const CHardware& left, const CHardware& right) { return left.m_name.IsEqual(right.m_name, true); });
        AddAnyRule(set, CHardwareList::s_ElementName,
                   [](const auto& left, const auto& right, const CComparatorRules& all) {
                       const auto& boards = dynamic_cast<const CHardwareList&>(left);
                       const auto& others = dynamic_cast<const CHardwareList&>(right);
                       return boards.empty() || others.empty() || boards.back().Compare(others.back(), all);
                   });
    });
    for (std::size_t place = 0; place < 3; ++place) {
        Board(place).m_name = "other";
    }
    EXPECT_THAT(All(rules),
                ElementsAre(m_boards + "/Hardware[1] name:  -> other", m_boards + "/Hardware[2] name:  -> other",
                            "!" + m_boards + "/Hardware[3] name:  -> other"));
}

TEST_F(DifferencesTest, DevicesHeldAsText)
{
    m_old.m_pConnectedDevices->m_connectedDeviceStrings = {{"<a>", "</a"}};
    m_new.m_pConnectedDevices->m_connectedDeviceStrings = {{"<b>", "</b"}, {"<c/"}};
    const std::string list = "/DeviceFootprint/ConnectedDeviceList";
    EXPECT_THAT(All(), ElementsAre(list + "/text[1]: <a>\n</a -> <b>\n</b", list + "/text[2]:  -> <c/"))
        << "the default rules do not look at them";
    EXPECT_THAT(All(CWideRules()),
                ElementsAre("!" + list + "/text[1]: <a>\n</a -> <b>\n</b", "!" + list + "/text[2]:  -> <c/"));
}

TEST_F(DifferencesTest, TheErrorHandlerHearsNothing)
{
    Board(2).m_parentId = 9L;
    CDfpErrorContext context;
    EXPECT_FALSE(Explain(m_old, m_new).isSame);
    EXPECT_FALSE(context.ErrorsOccurred());
}

/// What an application has of its own: a rack with slots.
namespace OwnElements
{

class CSlot : public CElement<CSlot>
{
    DFP_ELEMENT(CSlot, "Slot")

public:
    DFP_ATTRIBUTE(position);
    DFP_ATTRIBUTE(card);
    DFP_ATTRIBUTE(label);
    DFP_ELEMENT_END

public:
    bool IsSameEntity(const CSlot& other) const { return m_position.IsEqual(other.m_position, true); }
};

class CSlots : public CElementNodeList<CSlot>
{
    DFP_LIST(CSlots, "Slots")
};

class CRack : public CElement<CRack>
{
    DFP_ELEMENT(CRack, "Rack")

public:
    DFP_ATTRIBUTE(room);
    DFP_CHILD(CSlots, slots);
    DFP_ELEMENT_END
};

DFP_DEFINE_ELEMENT(CSlot)
DFP_DEFINE_LIST(CSlots)
DFP_DEFINE_ELEMENT(CRack)

/// Minds the card in a slot.
class CSlotRule : public CComparatorTyped<CSlot>
{
public:
    bool CompareInternal(const CSlot& left, const CSlot& right) const override
    {
        return left.m_card.IsEqual(right.m_card, true);
    }
};

} // namespace OwnElements

using namespace OwnElements;

TEST(DifferencesOfOwnElementsTest, AreExplainedToo)
{
    footprint::AddListClass<CSlots>();
    CRack former;
    CRack present;
    former.m_room = "1";
    present.m_room = "2";
    for (CRack* rack : {&former, &present}) {
        for (long position = 1; position <= 3; ++position) {
            CSlot& slot = rack->m_slots.CreateEntry();
            slot.m_position = position;
            slot.m_card = "card";
        }
    }
    present.m_slots.front().m_card = "other";
    present.m_slots.front().m_label = "front";
    present.m_slots.pop_back();
    CComparatorRules rules;
    AddComparator<CSlotRule>(rules);
    AddComparator<CListComparatorTyped<CSlot, CSlots>>(rules);
    const CExplanation explanation = footprint::ExplainElements(former, present, rules, footprint::MakeCopy<CRack>);
    EXPECT_FALSE(explanation.isSame);
    std::vector<std::string> words;
    for (const CDifference& difference : explanation.differences) {
        words.push_back((difference.Decides() ? "!" : "") + Words(difference));
    }
    EXPECT_THAT(words, ElementsAre("/Rack room: 1 -> 2", "!/Rack/Slots/Slot[1] card: card -> other",
                                   "/Rack/Slots/Slot[1] label:  -> front", "!/Rack/Slots/Slot[3]:  -> "));
    const auto undone = footprint::UndoElements(former, present, Deciding(explanation), footprint::MakeCopy<CRack>);
    EXPECT_TRUE(undone->Compare(former, rules));
    EXPECT_FALSE(present.Compare(former, rules));
}

TEST(DifferencesOfOwnElementsTest, AnElementThatComparesOnItsOwn)
{
    class CStubbornRack : public CRack
    {
    public:
        bool Compare(const CElementNode& other, const CComparatorRules& /*rules*/) const override
        {
            return m_room.GetValue() == other.GetAttributeValue("room");
        }
    };
    CStubbornRack former;
    CStubbornRack present;
    present.m_room = "2";
    present.m_slots.CreateEntry();
    const CExplanation explanation =
        footprint::ExplainElements(former, present, CComparatorRules(), footprint::MakeCopy<CStubbornRack>);
    EXPECT_THAT(DecidingNames(explanation), ElementsAre("room"));
    EXPECT_THAT(Deciding(explanation).front().ruleElement, IsEmpty());
    EXPECT_THAT(Deciding(explanation).front().ruleClass, testing::HasSubstr("CStubbornRack"));
}
