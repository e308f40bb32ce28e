#ifndef NYXCONFIG_WORKINGCOPY_H
#define NYXCONFIG_WORKINGCOPY_H

#include "Differences.h"
#include "ListClasses.h"
#include "Pairing.h"

#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace footprint
{

class CWorkingList;

/// A difference that can be undone in the working copy, and done again.
class CUnit
{
public:
    virtual ~CUnit() = default;

    bool IsUndone() const { return m_isUndone; }
    void SetUndone(bool undone)
    {
        if (undone != m_isUndone) {
            m_isUndone = undone;
            Apply();
        }
    }
    /// Brings the copy to what IsUndone() says.
    virtual void Apply() = 0;
    /// The same for what depends on the numbers of boards, after these have changed.
    virtual void Follow() {}

    CDifference m_difference;
    bool m_isHidden = false; ///< A consequence of others, or not to be seen: shown only if it decides.

protected:
    CUnit() = default;
    CUnit(const CUnit&) = delete;
    CUnit& operator=(const CUnit&) = delete;

private:
    bool m_isUndone = false;
};

/// An entry of a list that only one document has.
struct CLoneEntry
{
    std::size_t unit;
    bool isAdded;
    std::size_t place; ///< slot of an added one; of a removed one, its place in the old list
};

/// A board whose parent has changed.
struct CChangedParent
{
    std::size_t unit;      ///< the difference that moves it back
    std::size_t board;     ///< its slot
    std::size_t oldParent; ///< place in the old list; noPlace if there is none
    std::size_t newParent; ///< slot; noPlace if there is none
};

/// An element of the working copy that differs from its counterpart in the old document.
struct CDifferentElement
{
    KvDeviceFootprint::CElementNode* work = nullptr;
    const KvDeviceFootprint::CElementNode* old = nullptr;
    std::string path;
    std::size_t firstUnit = 0; ///< the differences in it and below it follow each other
    std::size_t endUnit = 0;
    std::vector<std::unique_ptr<CDifferentElement>> below; ///< children, or entries that are in both lists
    std::size_t slot = noPlace;                            ///< of an entry
    std::unique_ptr<CWorkingList> list;                    ///< of a list
    std::vector<CLoneEntry> loneEntries;                   ///< of a list
    std::vector<CChangedParent> changedParents;            ///< of a list of boards
};

/// A list of the working copy, with the entries that it has, had and can get back.
class CWorkingList
{
public:
    CWorkingList(const CListClass& listClass, TElements oldEntries, std::vector<std::size_t> partners,
                 std::unique_ptr<CListEditor> editor, std::size_t newCount, std::vector<CWorkingList*>& unsettled);

    const CListClass& Class() const { return m_class; }
    CListEditor& Editor() { return *m_editor; }
    const TElements& OldEntries() const { return m_oldEntries; }
    /// The slot of the entry that belongs to an old one; noPlace if it was removed.
    std::size_t Partner(std::size_t oldPlace) const { return m_partners[oldPlace]; }
    /// The place of the entry's partner in the old list; noPlace for an added one.
    std::size_t OldPlace(std::size_t slot) const { return m_oldPlaces[slot]; }
    std::size_t NewCount() const { return m_newCount; }

    /// Takes an entry out, or puts it in; an old one that was removed, by its place in the old list.
    void SetPresent(std::size_t slot, bool isPresent);
    void SetRemovedPresent(std::size_t oldPlace, bool isPresent);
    /// The copy of an old entry that was put in.
    KvDeviceFootprint::CElementNode& Restored(std::size_t oldPlace);
    void SetOldOrder(bool isOld);
    /// Puts the entries in order after such changes.
    void Settle();

private:
    void Change();
    std::vector<std::size_t> Sequence() const;

    const CListClass& m_class;
    TElements m_oldEntries;
    std::vector<std::size_t> m_partners;
    std::vector<std::size_t> m_oldPlaces;
    std::size_t m_newCount;
    std::unique_ptr<CListEditor> m_editor;
    std::vector<bool> m_isAbsent;                  ///< by slot
    std::map<std::size_t, std::size_t> m_restored; ///< place in the old list, slot: removed entries that came back
    std::map<std::size_t, std::size_t> m_slots;    ///< the same of all that ever came back
    bool m_hasOldOrder = false;
    bool m_isSettled = true;
    std::vector<CWorkingList*>& m_unsettled;
};

/// What follows the numbers of boards.
struct CBoardLinks
{
    std::set<CUnit*> followers; ///< those of what is undone
    bool isChanged = false;     ///< whether numbers have changed since
};

/// A copy of the new document in which differences to the old one can be undone and done again.
class CWorkingCopy
{
public:
    /// @param copy of @p newRoot. What copying changes is put right here.
    CWorkingCopy(const KvDeviceFootprint::CElementNode& oldRoot, const KvDeviceFootprint::CElementNode& newRoot,
                 std::unique_ptr<KvDeviceFootprint::CElementNode> copy);
    CWorkingCopy(const CWorkingCopy&) = delete;
    CWorkingCopy& operator=(const CWorkingCopy&) = delete;
    ~CWorkingCopy();

    KvDeviceFootprint::CElementNode& Root() { return *m_root; }
    std::unique_ptr<KvDeviceFootprint::CElementNode> Release() { return std::move(m_root); }
    const CDifferentElement& Top() const { return m_top; }

    std::size_t Units() const { return m_units.size(); }
    CUnit& Unit(std::size_t number) { return *m_units[number]; }

    /// Must be called before the copy is looked at after changes.
    void Settle();

private:
    friend class CAligner;

    std::unique_ptr<KvDeviceFootprint::CElementNode> m_root;
    CDifferentElement m_top;
    std::vector<std::unique_ptr<CUnit>> m_units;
    CBoardLinks m_links;
    std::vector<CWorkingList*> m_unsettled;
};

} // namespace footprint

#endif
