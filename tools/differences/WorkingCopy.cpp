#include "WorkingCopy.h"

#include "ElementWalk.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <optional>
#include <unordered_map>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

using EKind = CDifference::EKind;

/// Gives an attribute all that another one of its class holds; empties it for null.
void Assign(CReadOnlyAttribute& target, const CReadOnlyAttribute* source)
{
    if (source == nullptr) {
        target.Clear();
        return;
    }
    auto* time = dynamic_cast<CTimeAttribute*>(&target);
    const auto* otherTime = dynamic_cast<const CTimeAttribute*>(source);
    if (time != nullptr && otherTime != nullptr) {
        *time = *otherTime;
    } else {
        target = *source;
    }
}

/// Whether two attributes differ in what a text of them does not show.
bool DifferHiddenly(const CReadOnlyAttribute& left, const CReadOnlyAttribute& right)
{
    const auto* leftTime = dynamic_cast<const CTimeAttribute*>(&left);
    const auto* rightTime = dynamic_cast<const CTimeAttribute*>(&right);
    return leftTime != nullptr && rightTime != nullptr && *leftTime != *rightTime;
}

/// A difference that concerns the parent of a board. Undone, the board hangs below its former parent, by the number
/// that this one has then.
class CParentUnit : public CUnit
{
public:
    void SetOldParent(const CHardware& parent, CBoardLinks& links)
    {
        m_oldParent = &parent;
        m_links = &links;
    }

protected:
    const CHardware* OldParent() const { return m_oldParent; }
    void Register()
    {
        if (m_links != nullptr && IsUndone()) {
            m_links->followers.insert(this);
        } else if (m_links != nullptr) {
            m_links->followers.erase(this);
        }
    }

private:
    const CHardware* m_oldParent = nullptr;
    CBoardLinks* m_links = nullptr;
};

class CAttributeUnit : public CParentUnit
{
public:
    CAttributeUnit(CReadOnlyAttribute& work, const CReadOnlyAttribute* old) : m_work(work), m_old(old), m_new(work)
    {
        if (const auto* time = dynamic_cast<const CTimeAttribute*>(&work)) {
            m_newTime.emplace(*time);
        }
    }

    /// For the number of a board.
    void SetChangesNumbers(bool& isChanged) { m_isChanged = &isChanged; }

    void Apply() override
    {
        Register();
        if (m_isChanged != nullptr) {
            *m_isChanged = true;
        }
        if (IsUndone()) {
            Assign(m_work, m_old);
            Follow();
        } else {
            Assign(m_work, m_newTime ? &*m_newTime : &m_new);
        }
    }

    void Follow() override
    {
        if (OldParent() != nullptr) {
            m_work = OldParent()->m_id.GetValue();
        }
    }

private:
    CReadOnlyAttribute& m_work;
    const CReadOnlyAttribute* m_old;
    CReadOnlyAttribute m_new;
    std::optional<CTimeAttribute> m_newTime;
    bool* m_isChanged = nullptr;
};

class CAddedUnit : public CUnit
{
public:
    CAddedUnit(CWorkingList& list, std::size_t slot) : m_list(list), m_slot(slot) {}
    void Apply() override { m_list.SetPresent(m_slot, !IsUndone()); }

private:
    CWorkingList& m_list;
    std::size_t m_slot;
};

class CRemovedUnit : public CParentUnit
{
public:
    CRemovedUnit(CWorkingList& list, std::size_t oldPlace) : m_list(list), m_oldPlace(oldPlace) {}

    void Apply() override
    {
        Register();
        m_list.SetRemovedPresent(m_oldPlace, IsUndone());
        if (IsUndone()) {
            Follow();
        }
    }

    void Follow() override
    {
        if (OldParent() != nullptr) {
            static_cast<CHardware&>(m_list.Restored(m_oldPlace)).m_parentId = OldParent()->m_id.GetValue();
        }
    }

private:
    CWorkingList& m_list;
    std::size_t m_oldPlace;
};

class COrderUnit : public CUnit
{
public:
    explicit COrderUnit(CWorkingList& list) : m_list(list) {}
    void Apply() override { m_list.SetOldOrder(IsUndone()); }

private:
    CWorkingList& m_list;
};

using TTexts = std::vector<std::vector<std::string>>;

/// The connected devices that a list holds as text, each either as it was or as it is.
struct CTextState
{
    CTextState(TTexts& workTexts, const TTexts& oldTexts)
        : work(workTexts), before(oldTexts), after(workTexts), isUndone(std::max(before.size(), after.size()), false)
    {
    }

    void Apply()
    {
        work.clear();
        for (std::size_t place = 0; place < isUndone.size(); ++place) {
            const TTexts& from = isUndone[place] ? before : after;
            if (place < from.size()) {
                work.push_back(from[place]);
            }
        }
    }

    TTexts& work;
    TTexts before;
    TTexts after;
    std::vector<bool> isUndone;
};

class CTextUnit : public CUnit
{
public:
    CTextUnit(std::shared_ptr<CTextState> state, std::size_t place) : m_state(std::move(state)), m_place(place) {}
    void Apply() override
    {
        m_state->isUndone[m_place] = IsUndone();
        m_state->Apply();
    }

private:
    std::shared_ptr<CTextState> m_state;
    std::size_t m_place;
};

std::string OneText(const TTexts& texts, std::size_t place)
{
    std::string text;
    if (place < texts.size()) {
        for (const std::string& line : texts[place]) {
            text += (text.empty() ? "" : "\n") + line;
        }
    }
    return text;
}

/// Numbers with ranges: "1-3, 7, 5".
std::string Ranges(const std::vector<std::size_t>& numbers)
{
    std::string text;
    for (std::size_t begin = 0; begin < numbers.size();) {
        std::size_t end = begin + 1;
        while (end < numbers.size() && numbers[end] == numbers[end - 1] + 1) {
            ++end;
        }
        text += (text.empty() ? "" : ", ") + std::to_string(numbers[begin]);
        if (end - begin > 1) {
            text += "-" + std::to_string(numbers[end - 1]);
        }
        begin = end;
    }
    return text;
}

std::vector<CElementNode*> ChildrenOf(const CElementNode& element)
{
    std::list<CElementNode*> children;
    element.GetChildElements(children);
    return {children.begin(), children.end()};
}

std::string NumberedName(const CElementNode& entry, std::size_t place)
{
    return "/" + entry.GetElementName() + "[" + std::to_string(place + 1) + "]";
}

/// An element in all three documents, with its paths.
struct CPlace
{
    CElementNode* work;
    const CElementNode* now; ///< in the new document
    const CElementNode* old; ///< null if there is none
    std::string path;
    std::string oldPath;
};

} // namespace

CWorkingList::CWorkingList(const CListClass& listClass, TElements oldEntries, std::vector<std::size_t> partners,
                           std::unique_ptr<CListEditor> editor, std::size_t newCount,
                           std::vector<CWorkingList*>& unsettled)
    : m_class(listClass), m_oldEntries(std::move(oldEntries)), m_partners(std::move(partners)),
      m_oldPlaces(newCount, noPlace), m_newCount(newCount), m_editor(std::move(editor)), m_isAbsent(newCount, false),
      m_unsettled(unsettled)
{
    std::size_t slot = newCount;
    for (std::size_t place = 0; place < m_partners.size(); ++place) {
        if (m_partners[place] != noPlace) {
            m_oldPlaces[m_partners[place]] = place;
        } else if (slot < m_editor->Slots()) {
            m_slots[place] = slot++;
        }
    }
}

void CWorkingList::SetPresent(std::size_t slot, bool isPresent)
{
    m_isAbsent[slot] = !isPresent;
    Change();
}

void CWorkingList::SetRemovedPresent(std::size_t oldPlace, bool isPresent)
{
    Change();
    if (!isPresent) {
        m_restored.erase(oldPlace);
        return;
    }
    auto slot = m_slots.find(oldPlace);
    if (slot == m_slots.end()) {
        slot = m_slots.emplace(oldPlace, m_editor->AddCopy(*m_oldEntries[oldPlace])).first;
    }
    m_restored[oldPlace] = slot->second;
}

CElementNode& CWorkingList::Restored(std::size_t oldPlace)
{
    return m_editor->Entry(m_slots.at(oldPlace));
}

void CWorkingList::SetOldOrder(bool isOld)
{
    m_hasOldOrder = isOld;
    Change();
}

void CWorkingList::Change()
{
    if (m_isSettled) {
        m_isSettled = false;
        m_unsettled.push_back(this);
    }
}

void CWorkingList::Settle()
{
    m_editor->Arrange(Sequence());
    m_isSettled = true;
}

std::vector<std::size_t> CWorkingList::Sequence() const
{
    // The entries that stay, each followed by what goes along with it.
    std::vector<std::size_t> staying; // slots
    std::vector<std::vector<std::size_t>> added(1);
    std::vector<std::size_t> group(m_oldEntries.size(), 0); // of the entry at this old place, in `added`
    for (std::size_t slot = 0; slot < m_newCount; ++slot) {
        if (m_oldPlaces[slot] != noPlace) {
            staying.push_back(slot);
            added.emplace_back();
            group[m_oldPlaces[slot]] = added.size() - 1;
        } else if (!m_isAbsent[slot]) {
            added.back().push_back(slot);
        }
    }
    if (m_hasOldOrder) {
        std::sort(staying.begin(), staying.end(),
                  [this](std::size_t left, std::size_t right) { return m_oldPlaces[left] < m_oldPlaces[right]; });
    }
    // What comes back goes behind the nearest one of those before it.
    std::vector<std::vector<std::size_t>> restored(added.size());
    std::size_t before = 0;
    auto next = m_restored.begin();
    for (std::size_t place = 0; place < m_oldEntries.size() && next != m_restored.end(); ++place) {
        if (m_partners[place] != noPlace) {
            before = group[place];
        } else if (next->first == place) {
            restored[before].push_back(next->second);
            ++next;
        }
    }
    std::vector<std::size_t> sequence;
    const auto append = [&sequence](const std::vector<std::size_t>& slots) {
        sequence.insert(sequence.end(), slots.begin(), slots.end());
    };
    append(restored[0]);
    append(added[0]);
    for (const std::size_t slot : staying) {
        sequence.push_back(slot);
        append(restored[group[m_oldPlaces[slot]]]);
        append(added[group[m_oldPlaces[slot]]]);
    }
    return sequence;
}

/// Walks the three documents side by side and gathers the differences.
class CAligner
{
public:
    explicit CAligner(CWorkingCopy& copy) : m_copy(copy) {}

    /// @return null if there is no difference.
    std::unique_ptr<CDifferentElement> Align(const CPlace& place)
    {
        auto element = std::make_unique<CDifferentElement>();
        element->work = place.work;
        element->old = place.old;
        element->firstUnit = m_copy.m_units.size();
        AlignAttributes(place);
        const CListClass* const listClass = FindListClass(*place.work);
        if (listClass == nullptr) {
            AlignChildren(place, *element);
        } else if (place.old != nullptr && listClass == FindListClass(*place.old)) {
            AlignList(place, *listClass, *element);
        }
        element->endUnit = m_copy.m_units.size();
        if (element->endUnit == element->firstUnit) {
            return nullptr;
        }
        element->path = place.path;
        return element;
    }

private:
    CDifference Difference(EKind kind, const CPlace& place) const
    {
        CDifference difference;
        difference.kind = kind;
        difference.path = place.path;
        difference.oldPath = place.old == nullptr ? std::string() : place.oldPath;
        difference.newElement = place.now;
        difference.oldElement = place.old;
        return difference;
    }

    CUnit& Add(std::unique_ptr<CUnit> unit, CDifference difference)
    {
        difference.number = m_copy.m_units.size();
        unit->m_difference = std::move(difference);
        m_copy.m_units.push_back(std::move(unit));
        return *m_copy.m_units.back();
    }

    void AlignAttributes(const CPlace& place)
    {
        std::list<CReadOnlyAttribute*> work;
        std::list<CReadOnlyAttribute*> old;
        place.work->GetAttributeNodes(work);
        if (place.old != nullptr) {
            place.old->GetAttributeNodes(old);
        }
        const bool isSameSchema = work.size() == old.size();
        auto counterpart = old.begin();
        for (CReadOnlyAttribute* attribute : work) {
            const CReadOnlyAttribute* other = nullptr;
            if (isSameSchema) {
                other = *counterpart++;
            } else if (place.old != nullptr) {
                other = place.old->GetAttributeByName(attribute->GetNodeName());
            }
            AlignAttribute(place, *attribute, other);
        }
    }

    void AlignAttribute(const CPlace& place, CReadOnlyAttribute& attribute, const CReadOnlyAttribute* old)
    {
        static const std::wstring s_absent;
        const std::wstring& oldValue = old == nullptr ? s_absent : old->GetValue();
        const bool isVisible = attribute.GetValue() != oldValue || (old != nullptr && !old->IsEqual(attribute, true));
        if (!isVisible && (old == nullptr || !DifferHiddenly(attribute, *old))) {
            return;
        }
        CDifference difference = Difference(EKind::eChanged, place);
        difference.attribute = attribute.GetNodeName();
        difference.oldValue = Utf8(oldValue);
        difference.newValue = Utf8(attribute.GetValue());
        auto unit = std::make_unique<CAttributeUnit>(attribute, old);
        const auto* board = dynamic_cast<const CHardware*>(place.work);
        if (board != nullptr && &board->m_id == &attribute) {
            unit->SetChangesNumbers(m_copy.m_links.isChanged);
        }
        unit->m_isHidden = !isVisible;
        Add(std::move(unit), std::move(difference));
    }

    void AlignChildren(const CPlace& place, CDifferentElement& element)
    {
        const std::vector<CElementNode*> work = ChildrenOf(*place.work);
        const std::vector<CElementNode*> now = ChildrenOf(*place.now);
        const std::vector<CElementNode*> old =
            place.old == nullptr ? std::vector<CElementNode*>() : ChildrenOf(*place.old);
        for (std::size_t index = 0; index < work.size(); ++index) {
            const std::string& name = work[index]->GetElementName();
            const CElementNode* counterpart = nullptr;
            if (index < old.size() && old[index]->GetElementName() == name) {
                counterpart = old[index];
            } else if (place.old != nullptr) {
                counterpart = place.old->GetChildElementByName(name);
            }
            auto child =
                Align({work[index], now[index], counterpart, place.path + "/" + name, place.oldPath + "/" + name});
            if (child != nullptr) {
                element.below.push_back(std::move(child));
            }
        }
    }

    void AlignList(const CPlace& place, const CListClass& listClass, CDifferentElement& element)
    {
        const TElements now = listClass.Entries(*place.now);
        TElements old = listClass.Entries(*place.old);
        std::vector<std::size_t> partners = PairEntries(listClass, old, now);
        std::unique_ptr<CListEditor> editor = MakeEditor(*place.work, listClass, now, old, partners);
        const std::size_t newCount = now.size();
        element.list = std::make_unique<CWorkingList>(listClass, std::move(old), std::move(partners), std::move(editor),
                                                      newCount, m_copy.m_unsettled);
        CWorkingList& list = *element.list;
        const std::size_t first = m_copy.m_units.size();
        for (std::size_t slot = 0; slot < newCount; ++slot) {
            AlignEntry(place, *now[slot], slot, element);
        }
        for (std::size_t oldPlace = 0; oldPlace < list.OldEntries().size(); ++oldPlace) {
            if (list.Partner(oldPlace) == noPlace) {
                const CElementNode& entry = *list.OldEntries()[oldPlace];
                CDifference difference;
                difference.kind = EKind::eRemoved;
                difference.path = difference.oldPath = place.oldPath + NumberedName(entry, oldPlace);
                difference.oldElement = &entry;
                element.loneEntries.push_back({m_copy.m_units.size(), false, oldPlace});
                Add(std::make_unique<CRemovedUnit>(list, oldPlace), std::move(difference));
            }
        }
        AlignOrder(place, list);
        AlignTexts(place);
        if (dynamic_cast<const CElementNodeList<CHardware>*>(place.work) != nullptr) {
            AlignParents(place, element, now);
        }
        if (m_copy.m_units.size() == first) {
            element.list.reset();
        }
    }

    /// An editor for a list whose entries lie in memory in the order in which those of the new document do.
    static std::unique_ptr<CListEditor> MakeEditor(CElementNode& work, const CListClass& listClass,
                                                   const TElements& now, const TElements& old,
                                                   const std::vector<std::size_t>& partners)
    {
        if (!listClass.HasIdentity()) {
            return listClass.Edit(work);
        }
        std::vector<std::size_t> byAddress = ByAddress(now);
        const bool isKept = byAddress == ByAddress(listClass.Entries(work));
        TElements entries = now;
        for (std::size_t oldPlace = 0; oldPlace < old.size(); ++oldPlace) {
            if (partners[oldPlace] == noPlace) {
                // Behind all others: had it found a partner, that would be one behind theirs.
                byAddress.push_back(entries.size());
                entries.push_back(old[oldPlace]);
            }
        }
        if (isKept && entries.size() == now.size()) {
            return listClass.Edit(work);
        }
        return listClass.Rebuild(work, entries, byAddress, now.size());
    }

    void AlignEntry(const CPlace& place, const CElementNode& now, std::size_t slot, CDifferentElement& element)
    {
        CWorkingList& list = *element.list;
        const std::string name = NumberedName(now, slot);
        const std::size_t oldPlace = list.OldPlace(slot);
        if (oldPlace == noPlace) {
            element.loneEntries.push_back({m_copy.m_units.size(), true, slot});
            Add(std::make_unique<CAddedUnit>(list, slot),
                Difference(EKind::eAdded, {nullptr, &now, nullptr, place.path + name, ""}));
            return;
        }
        const CElementNode& old = *list.OldEntries()[oldPlace];
        auto entry = Align(
            {&list.Editor().Entry(slot), &now, &old, place.path + name, place.oldPath + NumberedName(old, oldPlace)});
        if (entry != nullptr) {
            entry->slot = slot;
            element.below.push_back(std::move(entry));
        }
    }

    void AlignOrder(const CPlace& place, CWorkingList& list)
    {
        std::vector<std::size_t> numbers;
        for (std::size_t slot = 0; slot < list.NewCount(); ++slot) {
            if (list.OldPlace(slot) != noPlace) {
                numbers.push_back(list.OldPlace(slot) + 1);
            }
        }
        if (std::is_sorted(numbers.begin(), numbers.end())) {
            return;
        }
        CDifference difference = Difference(EKind::eOrder, place);
        difference.newValue = Ranges(numbers);
        std::sort(numbers.begin(), numbers.end());
        difference.oldValue = Ranges(numbers);
        Add(std::make_unique<COrderUnit>(list), std::move(difference));
    }

    void AlignTexts(const CPlace& place)
    {
        auto* work = dynamic_cast<CConnectedDeviceList*>(place.work);
        const auto* old = dynamic_cast<const CConnectedDeviceList*>(place.old);
        if (work == nullptr || old == nullptr) {
            return;
        }
        const auto state = std::make_shared<CTextState>(work->m_connectedDeviceStrings, old->m_connectedDeviceStrings);
        for (std::size_t index = 0; index < state->isUndone.size(); ++index) {
            const bool isOld = index < state->before.size();
            const bool isNew = index < state->after.size();
            if (isOld && isNew && state->before[index] == state->after[index]) {
                continue;
            }
            CDifference difference =
                Difference(isOld && isNew ? EKind::eChanged : (isNew ? EKind::eAdded : EKind::eRemoved), place);
            difference.path += "/text[" + std::to_string(index + 1) + "]";
            difference.oldPath += "/text[" + std::to_string(index + 1) + "]";
            difference.oldValue = OneText(state->before, index);
            difference.newValue = OneText(state->after, index);
            Add(std::make_unique<CTextUnit>(state, index), std::move(difference));
        }
    }

    /// A board's number as boards are compared by it.
    static int Number(const CReadOnlyAttribute& attribute)
    {
        long number = 0;
        if (!attribute.IsEmpty()) {
            attribute.GetInteger(number);
        }
        number = std::max(number, static_cast<long>(std::numeric_limits<int>::min()));
        return static_cast<int>(std::min(number, static_cast<long>(std::numeric_limits<int>::max())));
    }

    static const CHardware& Board(const CElementNode& entry) { return static_cast<const CHardware&>(entry); }

    using TNumbers = std::unordered_map<int, std::size_t>;

    /// The place of the board that another one names as its parent.
    static std::size_t Parent(const CHardware& board, const TNumbers& numbers)
    {
        if (board.m_parentId.IsEmpty()) {
            return noPlace;
        }
        const auto found = numbers.find(Number(board.m_parentId));
        return found == numbers.end() ? noPlace : found->second;
    }

    void AlignParents(const CPlace& place, CDifferentElement& element, const TElements& now)
    {
        CWorkingList& list = *element.list;
        const TElements& old = list.OldEntries();
        TNumbers newNumbers;
        TNumbers oldNumbers;
        for (const std::size_t slot : ByAddress(now)) {
            if (!Board(*now[slot]).m_id.IsEmpty()) {
                newNumbers.emplace(Number(Board(*now[slot]).m_id), slot);
            }
            const std::size_t oldPlace = list.OldPlace(slot);
            if (oldPlace != noPlace && !Board(*old[oldPlace]).m_id.IsEmpty()) {
                oldNumbers.emplace(Number(Board(*old[oldPlace]).m_id), oldPlace);
            }
        }
        for (std::size_t oldPlace = 0; oldPlace < old.size(); ++oldPlace) {
            if (list.Partner(oldPlace) == noPlace && !Board(*old[oldPlace]).m_id.IsEmpty()) {
                oldNumbers.emplace(Number(Board(*old[oldPlace]).m_id), oldPlace);
            }
        }
        for (const CLoneEntry& lone : element.loneEntries) {
            const std::size_t parent = lone.isAdded ? noPlace : Parent(Board(*old[lone.place]), oldNumbers);
            if (parent != noPlace && list.Partner(parent) != noPlace) {
                SetOldParent(lone.unit, list, list.Partner(parent));
            }
        }
        std::map<const CElementNode*, std::size_t> units;
        for (std::size_t number = element.firstUnit; number < m_copy.m_units.size(); ++number) {
            const CDifference& difference = m_copy.m_units[number]->m_difference;
            if (difference.attribute == "parentId") {
                units[difference.newElement] = number;
            }
        }
        for (std::size_t slot = 0; slot < now.size(); ++slot) {
            const std::size_t oldPlace = list.OldPlace(slot);
            if (oldPlace == noPlace) {
                continue;
            }
            const std::size_t oldParent = Parent(Board(*old[oldPlace]), oldNumbers);
            const std::size_t newParent = Parent(Board(*now[slot]), newNumbers);
            const std::size_t keptParent = oldParent == noPlace ? noPlace : list.Partner(oldParent);
            if (oldParent == noPlace ? newParent == noPlace : keptParent == newParent && keptParent != noPlace) {
                continue;
            }
            const auto unit = units.find(now[slot]);
            if (unit == units.end() && keptParent == noPlace) {
                continue; // the effect of a board that came, went or got another number
            }
            const std::size_t number =
                unit != units.end() ? unit->second : AddParent(place, *now[slot], slot, oldPlace, list);
            if (keptParent != noPlace) {
                SetOldParent(number, list, keptParent);
            }
            element.changedParents.push_back({number, slot, oldParent, newParent});
        }
    }

    void SetOldParent(std::size_t unit, CWorkingList& list, std::size_t parent)
    {
        static_cast<CParentUnit&>(*m_copy.m_units[unit])
            .SetOldParent(Board(list.Editor().Entry(parent)), m_copy.m_links);
    }

    std::size_t AddParent(const CPlace& place, const CElementNode& now, std::size_t slot, std::size_t oldPlace,
                          CWorkingList& list)
    {
        const CHardware& old = Board(*list.OldEntries()[oldPlace]);
        CDifference difference = Difference(EKind::eParent, {nullptr, &now, &old, place.path + NumberedName(now, slot),
                                                             place.oldPath + NumberedName(old, oldPlace)});
        difference.attribute = old.m_parentId.GetNodeName();
        difference.oldValue = Utf8(old.m_parentId.GetValue());
        difference.newValue = Utf8(Board(now).m_parentId.GetValue());
        auto& work = static_cast<CHardware&>(list.Editor().Entry(slot));
        CUnit& unit = Add(std::make_unique<CAttributeUnit>(work.m_parentId, &old.m_parentId), std::move(difference));
        unit.m_isHidden = true;
        return unit.m_difference.number;
    }

    CWorkingCopy& m_copy;
};

CWorkingCopy::CWorkingCopy(const CElementNode& oldRoot, const CElementNode& newRoot, std::unique_ptr<CElementNode> copy)
    : m_root(std::move(copy))
{
    CopyTexts(*m_root, newRoot);
    const std::string path = "/" + newRoot.GetElementName();
    const auto top = CAligner(*this).Align({m_root.get(), &newRoot, &oldRoot, path, "/" + oldRoot.GetElementName()});
    if (top != nullptr) {
        m_top = std::move(*top);
    } else {
        m_top.work = m_root.get();
        m_top.old = &oldRoot;
        m_top.path = path;
    }
}

CWorkingCopy::~CWorkingCopy() = default;

void CWorkingCopy::Settle()
{
    for (CWorkingList* list : m_unsettled) {
        list->Settle();
    }
    m_unsettled.clear();
    if (m_links.isChanged) {
        m_links.isChanged = false;
        for (CUnit* follower : m_links.followers) {
            follower->Follow();
        }
    }
}

} // namespace footprint
