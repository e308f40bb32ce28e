#include "Deciders.h"

#include "ElementWalk.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <map>
#include <numeric>
#include <set>
#include <typeinfo>

#include <cxxabi.h>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

using EKind = CDifference::EKind;
using EDecision = CDifference::EDecision;

/// Up to this number of differences, the ones that could stand for each other are looked for.
constexpr std::size_t fewUnits = 64;
/// How much may be asked in one search: the product of questions and differences.
constexpr std::size_t mostEffort = 4000000;
/// The same when looking whether entries of a list are needless: the product of questions and entries.
constexpr std::uint64_t mostEntryEffort = 2000000;

std::uint64_t EntryEffort(const CDifferentElement& list, std::size_t questions)
{
    return std::uint64_t{questions} * (list.list->NewCount() + 1);
}

std::string ClassName(const std::type_info& type)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                           &std::free);
    return status == 0 && name != nullptr ? name.get() : type.name();
}

} // namespace

/// Two lists of one class for questions about a few entries: so the time for an answer does not grow with the lists.
struct CDeciders::CSmallLists
{
    explicit CSmallLists(const CListClass& ofClass)
        : listClass(ofClass), now(ofClass.MakeEmpty()), old(ofClass.MakeEmpty())
    {
    }

    void Clear()
    {
        listClass.RemoveEntries(*now);
        listClass.RemoveEntries(*old);
    }

    const CListClass& listClass;
    std::unique_ptr<CElementNode> now;
    std::unique_ptr<CElementNode> old;
};

CDeciders::CDeciders(CWorkingCopy& copy, const CElementNode& oldRoot, const CComparatorRules& rules)
    : m_copy(copy), m_oldRoot(oldRoot), m_rules(rules)
{
}

void CDeciders::Find()
{
    // One round is enough, unless what was undone for one rule makes a difference to another one.
    while (!IsRootSame()) {
        const std::size_t before = m_decided;
        if (m_copy.Units() != 0) {
            ExplainElement(m_copy.Top());
        }
        if (m_decided > before) {
            continue;
        }
        // An element can have a comparison of its own, or a rule can look at what lies beside its element.
        Search(0, m_copy.Units(), [this] { return IsRootSame(); }, {nullptr, &m_oldRoot, m_copy.Top().path});
        if (!IsRootSame()) {
            FindUnequal();
            return;
        }
    }
}

bool CDeciders::IsRootSame()
{
    m_copy.Settle();
    return m_copy.Root().Compare(m_oldRoot, m_rules);
}

bool CDeciders::Ask(const TQuestion& question)
{
    m_copy.Settle();
    return question();
}

const CComparatorBase* CDeciders::RuleOf(const CElementNode& element) const
{
    return m_rules.Find(element.GetElementName());
}

/// Walks as CElementNode::Compare does, but goes on behind a difference.
void CDeciders::ExplainElement(const CDifferentElement& element)
{
    if (element.old == nullptr) {
        return; // an element without a counterpart is no difference
    }
    if (element.list != nullptr) {
        ExplainList(element);
        return;
    }
    for (const auto& child : element.below) {
        ExplainElement(*child);
    }
    const CComparatorBase* const rule = RuleOf(*element.work);
    if (rule == nullptr) {
        return;
    }
    const TQuestion question = [&] { return (*rule)(*element.work, *element.old, m_rules); };
    if (!Ask(question)) {
        Search(element.firstUnit, element.endUnit, question, {rule, element.old, element.path});
    }
}

void CDeciders::ExplainList(const CDifferentElement& element)
{
    const CComparatorBase* const rule = RuleOf(*element.work);
    if (rule == nullptr) {
        return;
    }
    const CReason reason{rule, element.old, element.path};
    const TQuestion question = [&] { return (*rule)(*element.work, *element.old, m_rules); };
    if (Ask(question)) {
        return;
    }
    std::vector<TUnits> found;
    if (element.list->Class().Type() == typeid(*element.work)) {
        AskAboutEntries(element, question, reason, found);
    }
    if (!Ask(question)) {
        Search(element.firstUnit, element.endUnit, question, reason);
    }
    if (EntryEffort(element, found.size()) <= mostEntryEffort && Ask(question)) {
        DropNeedless(found, question);
        JudgeInFullList(element, question, reason);
    }
}

/// Whether a difference decides alone can depend on the other entries, as where two boards have one number.
void CDeciders::JudgeInFullList(const CDifferentElement& element, const TQuestion& question, const CReason& reason)
{
    TUnits units(element.endUnit - element.firstUnit);
    std::iota(units.begin(), units.end(), element.firstUnit);
    const TUnits decided = DecidedOf(units);
    TUnits ofRule;
    std::copy_if(decided.begin(), decided.end(), std::back_inserter(ofRule), [&](std::size_t unit) {
        const CDifference& difference = m_copy.Unit(unit).m_difference;
        return difference.rulePath == reason.path && difference.kind != EKind::eParent;
    });
    if (EntryEffort(element, ofRule.size()) > mostEntryEffort) {
        return;
    }
    const TUnits together = Together(units, ofRule, question);
    SetUndone(decided, true);
    for (const std::size_t unit : ofRule) {
        const bool isTogether = std::find(together.begin(), together.end(), unit) != together.end();
        m_copy.Unit(unit).m_difference.decision = isTogether ? EDecision::eTogether : EDecision::eAlone;
    }
}

/// Asks the rule of a list about its entries one by one.
void CDeciders::AskAboutEntries(const CDifferentElement& element, const TQuestion& question, const CReason& reason,
                                std::vector<TUnits>& found)
{
    CSmallLists lists(element.list->Class());
    if (!(*reason.rule)(*lists.now, *lists.old, m_rules)) {
        return; // a rule about the list as a whole
    }
    TUnits alone;
    const auto askAboutParents = [&](bool hidden) {
        for (const CChangedParent& changed : element.changedParents) {
            const CUnit& unit = m_copy.Unit(changed.unit);
            if (unit.m_isHidden == hidden && !unit.IsUndone() && ParentMatters(element, changed, reason, lists)) {
                alone.push_back(changed.unit);
            }
        }
    };
    const auto decide = [&] {
        for (const std::size_t unit : alone) {
            Decide(unit, EDecision::eAlone, reason);
            found.push_back({unit});
        }
        alone.clear();
    };
    // First, since a board that names itself as its parent finds it even if it is the only one in a list.
    askAboutParents(false);
    decide();
    for (const auto& entry : element.below) {
        found.push_back(AskAboutPair(element, *entry, reason, lists));
    }
    // While entries are lent, the list must stay as it is, so these are undone later.
    for (const CLoneEntry& entry : element.loneEntries) {
        if (!m_copy.Unit(entry.unit).IsUndone() && LoneEntryMatters(element, entry, reason, lists)) {
            alone.push_back(entry.unit);
        }
    }
    decide();
    if (std::any_of(element.changedParents.begin(), element.changedParents.end(),
                    [this](const CChangedParent& changed) { return m_copy.Unit(changed.unit).m_isHidden; }) &&
        !Ask(question) && !IsDueToNumbers(element, question)) {
        askAboutParents(true);
        decide();
    }
}

/// Whether it is only that boards have other numbers than before.
bool CDeciders::IsDueToNumbers(const CDifferentElement& element, const TQuestion& question)
{
    TUnits numbers;
    for (const auto& entry : element.below) {
        for (const std::size_t unit : Remaining(entry->firstUnit, entry->endUnit)) {
            const CDifference& difference = m_copy.Unit(unit).m_difference;
            if (difference.oldElement == entry->old && difference.attribute == "id") {
                numbers.push_back(unit);
            }
        }
    }
    SetUndone(numbers, true);
    const bool isSame = Ask(question);
    SetUndone(numbers, false);
    return isSame;
}

/// @return what decides now and did not before.
CDeciders::TUnits CDeciders::AskAboutPair(const CDifferentElement& element, const CDifferentElement& entry,
                                          const CReason& reason, CSmallLists& lists)
{
    CListEditor& editor = element.list->Editor();
    lists.listClass.Append(*lists.old, *entry.old);
    editor.Lend(entry.slot, *lists.now);
    const TQuestion question = [&] { return (*reason.rule)(*lists.now, *lists.old, m_rules); };
    const TUnits all = Remaining(entry.firstUnit, entry.endUnit);
    if (!Ask(question)) {
        SetUndone(all, true);
        const bool tells = Ask(question); // whether the rule takes equals for the same in such a list
        SetUndone(all, false);
        ExplainElement(entry);
        if (tells && !Ask(question)) {
            Search(entry.firstUnit, entry.endUnit, question, reason);
        } else if (tells) {
            // What the entry's own rules say need not matter to the rule of the list.
            std::map<std::string, TUnits> byRule;
            for (const std::size_t unit : DecidedOf(all)) {
                TUnits& units = byRule[m_copy.Unit(unit).m_difference.rulePath];
                units.insert(units.end(), unit);
            }
            std::vector<TUnits> groups;
            groups.reserve(byRule.size());
            for (auto& [path, units] : byRule) {
                groups.push_back(std::move(units));
            }
            DropNeedless(groups, question);
        }
    }
    m_copy.Settle();
    editor.TakeBack(entry.slot, *lists.now);
    lists.Clear();
    return DecidedOf(all);
}

/// Whether an entry that only one side has makes a difference in a list without others.
bool CDeciders::LoneEntryMatters(const CDifferentElement& element, const CLoneEntry& entry, const CReason& reason,
                                 CSmallLists& lists)
{
    CListEditor& editor = element.list->Editor();
    if (entry.isAdded) {
        editor.Lend(entry.place, *lists.now);
    } else {
        lists.listClass.Append(*lists.old, *element.list->OldEntries()[entry.place]);
    }
    const bool isSame = (*reason.rule)(*lists.now, *lists.old, m_rules);
    if (entry.isAdded) {
        editor.TakeBack(entry.place, *lists.now);
    }
    lists.Clear();
    return !isSame;
}

/// Whether the changed parent of a board makes a difference among just the boards that it is about.
bool CDeciders::ParentMatters(const CDifferentElement& element, const CChangedParent& changed, const CReason& reason,
                              CSmallLists& lists)
{
    const CWorkingList& list = *element.list;
    const std::size_t board = list.OldPlace(changed.board);
    const std::size_t newParent = changed.newParent == noPlace ? noPlace : list.OldPlace(changed.newParent);
    std::set<std::size_t> places = {board, changed.oldParent, newParent};
    places.erase(noPlace);
    places.erase(board);
    const auto boardAt = [&list](std::size_t place) -> const CHardware& {
        return static_cast<const CHardware&>(*list.OldEntries()[place]);
    };
    std::set<std::wstring> numbers = {boardAt(board).m_id.GetValue()};
    for (CElementNode* side : {lists.now.get(), lists.old.get()}) {
        lists.listClass.Append(*side, boardAt(board));
        for (const std::size_t place : places) {
            lists.listClass.Append(*side, boardAt(place));
            numbers.insert(boardAt(place).m_id.GetValue());
        }
    }
    bool matters = false;
    if ((*reason.rule)(*lists.now, *lists.old, m_rules)) {
        const auto editor = lists.listClass.Edit(*lists.now);
        auto& moved = static_cast<CHardware&>(editor->Entry(0));
        if (newParent != noPlace) {
            moved.m_parentId = boardAt(newParent).m_id.GetValue();
        } else if (changed.newParent == noPlace &&
                   static_cast<CHardware&>(element.list->Editor().Entry(changed.board)).m_parentId.IsEmpty()) {
            moved.m_parentId.Clear();
        } else {
            long unused = 1; // the number of a board that is not there
            while (numbers.count(std::to_wstring(unused)) != 0) {
                ++unused;
            }
            moved.m_parentId = unused;
        }
        matters = !(*reason.rule)(*lists.now, *lists.old, m_rules);
    }
    lists.Clear();
    return matters;
}

/// Marks those of a range of differences that make a rule say "different", and undoes them.
void CDeciders::Search(std::size_t begin, std::size_t end, const TQuestion& question, const CReason& reason)
{
    const TUnits units = Remaining(begin, end);
    SetUndone(units, true);
    const bool isExplicable = Ask(question);
    SetUndone(units, false);
    if (!isExplicable) {
        return;
    }
    TUnits chosen = SmallestSet(units, question);
    if (chosen.size() > 1) {
        // Which set is found depends on the order. A cause tends to stand before or behind all its effects.
        SetUndone(chosen, false);
        TUnits other = SmallestSet(TUnits(units.rbegin(), units.rend()), question);
        if (chosen.size() <= other.size()) {
            SetUndone(other, false);
            SetUndone(chosen, true);
        } else {
            chosen = std::move(other);
        }
    }
    MarkChosen(units, chosen, question, reason);
}

/// A set of differences with which undone a rule says "same", and none of which could be left out; first what stands
/// far behind. They are undone then. Undoing all must make the rule say "same".
CDeciders::TUnits CDeciders::SmallestSet(const TUnits& units, const TQuestion& question)
{
    TUnits chosen;
    std::size_t limit = units.size();
    std::size_t effort = 0;
    while (!Ask(question)) {
        effort += (limit + 1) * 8;
        if (effort > mostEffort && chosen.size() > 8) {
            const TUnits rest(units.begin(), units.begin() + static_cast<std::ptrdiff_t>(limit));
            SetUndone(rest, true);
            chosen.insert(chosen.end(), rest.begin(), rest.end());
            return chosen;
        }
        const std::size_t last = EndOfPrefix(units, limit, question) - 1;
        SetUndone({units[last]}, true);
        chosen.push_back(units[last]);
        limit = last;
    }
    if (chosen.size() <= fewUnits) {
        Shrink(chosen, question);
    }
    return chosen;
}

/// How many of the first differences to undo so that a rule says "same", while with one less it says "different".
/// Nothing of them is undone afterwards.
std::size_t CDeciders::EndOfPrefix(const TUnits& units, std::size_t limit, const TQuestion& question)
{
    std::size_t undone = 0;
    const auto isSame = [&](std::size_t count) {
        for (; undone < count; ++undone) {
            m_copy.Unit(units[undone]).SetUndone(true);
        }
        for (; undone > count; --undone) {
            m_copy.Unit(units[undone - 1]).SetUndone(false);
        }
        return Ask(question);
    };
    std::size_t different = 0;
    std::size_t same = std::min<std::size_t>(1, limit);
    for (; same < limit && !isSame(same); same = std::min(limit, same * 2)) {
        different = same;
    }
    while (same - different > 1) {
        const std::size_t middle = different + (same - different) / 2;
        (isSame(middle) ? same : different) = middle;
    }
    for (; undone > 0; --undone) {
        m_copy.Unit(units[undone - 1]).SetUndone(false);
    }
    return same;
}

void CDeciders::Shrink(TUnits& chosen, const TQuestion& question)
{
    for (auto unit = chosen.begin(); unit != chosen.end();) {
        SetUndone({*unit}, false);
        if (Ask(question)) {
            unit = chosen.erase(unit);
        } else {
            SetUndone({*unit}, true);
            ++unit;
        }
    }
}

/// Marks a found set, which is undone, and what could stand for parts of it.
void CDeciders::MarkChosen(const TUnits& units, const TUnits& chosen, const TQuestion& question, const CReason& reason)
{
    // Where there are very many, it is not worth while to tell them apart.
    const bool isClear = chosen.size() <= fewUnits;
    TUnits together = isClear ? Together(units, chosen, question) : chosen;
    TUnits alternatives;
    if (units.size() <= fewUnits && !together.empty()) {
        SetUndone(chosen, true);
        alternatives = Alternatives(units, together, question);
        SetUndone(alternatives, true);
        if (!Ask(question)) {
            alternatives.clear();
        }
        const TUnits others = Together(units, alternatives, question);
        together.insert(together.end(), others.begin(), others.end());
    }
    SetUndone(units, false);
    const std::set<std::size_t> isTogether(together.begin(), together.end());
    for (const TUnits& marked : {chosen, alternatives}) {
        for (const std::size_t unit : marked) {
            Decide(unit, isTogether.count(unit) != 0 ? EDecision::eTogether : EDecision::eAlone, reason);
        }
    }
}

/// Those of some differences that do not decide while they are the only ones. Nothing is undone afterwards.
CDeciders::TUnits CDeciders::Together(const TUnits& units, const TUnits& some, const TQuestion& question)
{
    const auto isEffect = [this](std::size_t unit) { return m_copy.Unit(unit).m_difference.kind == EKind::eParent; };
    SetUndone(units, true);
    for (const std::size_t unit : units) {
        if (isEffect(unit)) {
            SetUndone({unit}, false); // a changed parent is the effect of others, and could make up for them
        }
    }
    TUnits together;
    for (const std::size_t unit : some) {
        if (!isEffect(unit)) {
            SetUndone({unit}, false);
            if (Ask(question)) {
                together.push_back(unit);
            }
            SetUndone({unit}, true);
        }
    }
    SetUndone(units, false);
    return together;
}

/// Those that could be undone in place of one of the chosen ones.
CDeciders::TUnits CDeciders::Alternatives(const TUnits& units, const TUnits& chosen, const TQuestion& question)
{
    TUnits alternatives;
    for (const std::size_t unit : units) {
        if (m_copy.Unit(unit).IsUndone() || m_copy.Unit(unit).m_isHidden) {
            continue;
        }
        SetUndone({unit}, true);
        const bool canStandFor = std::any_of(chosen.begin(), chosen.end(), [&](std::size_t other) {
            SetUndone({other}, false);
            const bool isSame = Ask(question);
            SetUndone({other}, true);
            return isSame;
        });
        SetUndone({unit}, false);
        if (canStandFor) {
            alternatives.push_back(unit);
        }
    }
    return alternatives;
}

/// Takes marks back from groups without which a rule says "same" as well. It must say so now.
void CDeciders::DropNeedless(std::vector<TUnits>& groups, const TQuestion& question)
{
    for (const TUnits& group : groups) {
        if (group.empty()) {
            continue;
        }
        SetUndone(group, false);
        if (Ask(question)) {
            std::for_each(group.begin(), group.end(), [this](std::size_t unit) { Forget(unit); });
        } else {
            SetUndone(group, true);
        }
    }
}

void CDeciders::SetUndone(const TUnits& units, bool undone)
{
    for (const std::size_t unit : units) {
        m_copy.Unit(unit).SetUndone(undone);
    }
}

CDeciders::TUnits CDeciders::Remaining(std::size_t begin, std::size_t end)
{
    TUnits units;
    for (std::size_t unit = begin; unit < end; ++unit) {
        if (!m_copy.Unit(unit).m_difference.Decides()) {
            units.push_back(unit);
        }
    }
    return units;
}

CDeciders::TUnits CDeciders::DecidedOf(const TUnits& units)
{
    TUnits decided;
    std::copy_if(units.begin(), units.end(), std::back_inserter(decided),
                 [this](std::size_t unit) { return m_copy.Unit(unit).m_difference.Decides(); });
    return decided;
}

void CDeciders::Decide(std::size_t unit, EDecision decision, const CReason& reason)
{
    CUnit& decider = m_copy.Unit(unit);
    decider.SetUndone(true);
    CDifference& difference = decider.m_difference;
    difference.decision = decision;
    difference.ruleElement = reason.rule == nullptr ? std::string() : reason.rule->GetAssociatedNodeName();
    difference.ruleClass = ClassName(reason.rule == nullptr ? typeid(*reason.element) : typeid(*reason.rule));
    difference.rulePath = reason.path;
    ++m_decided;
}

void CDeciders::Forget(std::size_t unit)
{
    CDifference& difference = m_copy.Unit(unit).m_difference;
    difference.decision = EDecision::eNone;
    difference.ruleElement.clear();
    difference.ruleClass.clear();
    difference.rulePath.clear();
    --m_decided;
}

/// Looks for rules that do not take a copy of the old document for the same, as for boards without a number.
void CDeciders::FindUnequal()
{
    const TUnits units = Remaining(0, m_copy.Units());
    SetUndone(units, true);
    m_copy.Settle();
    const std::string path = "/" + m_oldRoot.GetElementName();
    if (!FindUnequalBelow(m_copy.Root(), m_oldRoot, path)) {
        AddUnequal(m_oldRoot, path, {nullptr, &m_oldRoot, path});
    }
    SetUndone(units, false);
    m_copy.Settle();
}

bool CDeciders::FindUnequalBelow(CElementNode& work, const CElementNode& old, const std::string& path)
{
    const CComparatorBase* const rule = RuleOf(work);
    const CReason reason{rule, &old, path};
    const bool isSame = rule == nullptr || (*rule)(work, old, m_rules);
    if (FindListClass(work) != nullptr) {
        if (!isSame && !FindUnequalEntries(work, old, reason)) {
            AddUnequal(old, path, reason);
        }
        return !isSame;
    }
    bool isFound = false;
    std::list<CElementNode*> children;
    work.GetChildElements(children);
    for (CElementNode* child : children) {
        const CElementNode* const counterpart = old.GetChildElementByName(child->GetElementName());
        if (counterpart != nullptr) {
            isFound = FindUnequalBelow(*child, *counterpart, path + "/" + child->GetElementName()) || isFound;
        }
    }
    if (!isSame && !isFound) {
        AddUnequal(old, path, reason);
    }
    return isFound || !isSame;
}

bool CDeciders::FindUnequalEntries(CElementNode& work, const CElementNode& old, const CReason& reason)
{
    const CListClass& listClass = *FindListClass(work);
    if (listClass.Type() != typeid(work)) {
        return false;
    }
    CSmallLists lists(listClass);
    if (!(*reason.rule)(*lists.now, *lists.old, m_rules)) {
        return false;
    }
    bool isFound = false;
    std::size_t number = 0;
    for (const CElementNode* entry : listClass.Entries(old)) {
        listClass.Append(*lists.now, *entry);
        listClass.Append(*lists.old, *entry);
        if (!(*reason.rule)(*lists.now, *lists.old, m_rules)) {
            isFound = true;
            const std::string path =
                reason.path + "/" + entry->GetElementName() + "[" + std::to_string(number + 1) + "]";
            const auto copy = listClass.CopyEntry(*entry);
            if (!FindUnequalBelow(*copy, *entry, path)) {
                AddUnequal(*entry, path, reason);
            }
        }
        lists.Clear();
        ++number;
    }
    return isFound;
}

void CDeciders::AddUnequal(const CElementNode& old, const std::string& path, const CReason& reason)
{
    CDifference difference;
    difference.kind = EKind::eUnequal;
    difference.path = difference.oldPath = path;
    difference.oldElement = &old;
    difference.decision = EDecision::eAlone;
    difference.ruleElement = reason.rule == nullptr ? std::string() : reason.rule->GetAssociatedNodeName();
    difference.ruleClass = ClassName(reason.rule == nullptr ? typeid(*reason.element) : typeid(*reason.rule));
    difference.rulePath = reason.path;
    m_unequal.push_back(std::move(difference));
}

} // namespace footprint
