#ifndef NYXCONFIG_LISTCLASSES_H
#define NYXCONFIG_LISTCLASSES_H

/**
 * @file
 * The classes of lists. An element does not tell of what class its entries are; who walks over elements of any class
 * has to know the list classes beforehand. Those of the library are known; an application adds its own:
 *
 *     footprint::AddListClass<CMyList>();
 *
 * Its entries must be copyable and assignable.
 */

#include "Comparators.h"
#include "DeviceFootprint.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <list>
#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

namespace footprint
{

/// Gives a copy what copying leaves out: connected devices that are held as text, at any depth.
void CopyTexts(KvDeviceFootprint::CElementNode& copy, const KvDeviceFootprint::CElementNode& original);

/// The same, and lets the entries of lists, at any depth, follow each other in memory as they do in their list: of
/// entries of one entity, a comparison takes the one first that comes first in memory. Without that, a copy need not
/// equal its original.
void CompleteCopy(KvDeviceFootprint::CElementNode& copy, const KvDeviceFootprint::CElementNode& original);

/// Rearranges one list. Its entries have slots, counted from 0 in their first order; a slot keeps its entry, and that
/// its address, whether it is in the list or not.
class CListEditor
{
public:
    virtual ~CListEditor() = default;

    virtual std::size_t Slots() const = 0;
    virtual KvDeviceFootprint::CElementNode& Entry(std::size_t slot) = 0;
    /// Adds a slot with a copy of an entry; it is not in the list yet.
    virtual std::size_t AddCopy(const KvDeviceFootprint::CElementNode& entry) = 0;
    /// Makes the list consist of these slots, in this order.
    virtual void Arrange(const std::vector<std::size_t>& slots) = 0;
    /// Moves the entry of a slot that is in the list to the end of another list of the class, and back.
    virtual void Lend(std::size_t slot, KvDeviceFootprint::CElementNode& borrower) = 0;
    virtual void TakeBack(std::size_t slot, KvDeviceFootprint::CElementNode& borrower) = 0;

protected:
    CListEditor() = default;
    CListEditor(const CListEditor&) = delete;
    CListEditor& operator=(const CListEditor&) = delete;
};

/// What can be done with the lists of one class.
class CListClass
{
public:
    virtual ~CListClass() = default;

    virtual bool IsClassOf(const KvDeviceFootprint::CElementNode& element) const = 0;
    virtual const std::type_info& Type() const = 0;
    virtual std::vector<const KvDeviceFootprint::CElementNode*>
    Entries(const KvDeviceFootprint::CElementNode& list) const = 0;

    /// Whether the entries can be told apart, by IsSameEntity.
    virtual bool HasIdentity() const = 0;
    virtual bool IsSameEntity(const KvDeviceFootprint::CElementNode& left,
                              const KvDeviceFootprint::CElementNode& right) const = 0;

    virtual std::unique_ptr<KvDeviceFootprint::CElementNode>
    CopyEntry(const KvDeviceFootprint::CElementNode& entry) const = 0;
    /// A list of just this class; null if it can not be made.
    virtual std::unique_ptr<KvDeviceFootprint::CElementNode> MakeEmpty() const = 0;
    virtual void Append(KvDeviceFootprint::CElementNode& list, const KvDeviceFootprint::CElementNode& entry) const = 0;
    virtual void RemoveEntries(KvDeviceFootprint::CElementNode& list) const = 0;
    virtual std::unique_ptr<CListEditor> Edit(KvDeviceFootprint::CElementNode& list) const = 0;
    /// The same with new entries: copies of these, which lie in memory in the order @p byAddress (positions in
    /// @p entries), since a comparison can go by that. The first @p inList of them are in the list.
    virtual std::unique_ptr<CListEditor> Rebuild(KvDeviceFootprint::CElementNode& list,
                                                 const std::vector<const KvDeviceFootprint::CElementNode*>& entries,
                                                 const std::vector<std::size_t>& byAddress,
                                                 std::size_t inList) const = 0;

protected:
    CListClass() = default;
    CListClass(const CListClass&) = delete;
    CListClass& operator=(const CListClass&) = delete;
};

/// The class of a list, or of the nearest known one from which it is derived; null for an element that is no list.
const CListClass* FindListClass(const KvDeviceFootprint::CElementNode& element);

/// Makes a class known. Safe in any thread; a class that is known already changes nothing.
void AddListClass(std::unique_ptr<CListClass> listClass);

/// The editor of lists with entries of T.
template<class T>
class CListEditorOf : public CListEditor
{
public:
    using TList = KvDeviceFootprint::CElementNodeList<T>;

    explicit CListEditorOf(TList& list) : m_list(list)
    {
        for (auto entry = list.begin(); entry != list.end(); ++entry) {
            m_slots.push_back(entry);
        }
    }

    CListEditorOf(TList& list, const std::vector<const KvDeviceFootprint::CElementNode*>& entries,
                  const std::vector<std::size_t>& byAddress, std::size_t inList)
        : m_list(list), m_slots(entries.size())
    {
        m_list.clear();
        m_pool.resize(entries.size());
        std::vector<TPlace> places;
        for (auto entry = m_pool.begin(); entry != m_pool.end(); ++entry) {
            places.push_back(entry);
        }
        std::sort(places.begin(), places.end(),
                  [](TPlace left, TPlace right) { return std::less<>()(&*left, &*right); });
        for (std::size_t rank = 0; rank < places.size(); ++rank) {
            const std::size_t slot = byAddress[rank];
            m_slots[slot] = places[rank];
            Copy(*places[rank], *entries[slot]);
        }
        for (std::size_t slot = 0; slot < inList; ++slot) {
            m_list.splice(m_list.end(), m_pool, m_slots[slot]);
        }
    }

    std::size_t Slots() const override { return m_slots.size(); }
    KvDeviceFootprint::CElementNode& Entry(std::size_t slot) override { return *m_slots[slot]; }

    std::size_t AddCopy(const KvDeviceFootprint::CElementNode& entry) override
    {
        m_pool.push_back(static_cast<const T&>(entry));
        CompleteCopy(m_pool.back(), entry);
        m_slots.push_back(std::prev(m_pool.end()));
        return m_slots.size() - 1;
    }

    void Arrange(const std::vector<std::size_t>& slots) override
    {
        m_pool.splice(m_pool.end(), m_list);
        for (const std::size_t slot : slots) {
            m_list.splice(m_list.end(), m_pool, m_slots[slot]);
        }
    }

    void Lend(std::size_t slot, KvDeviceFootprint::CElementNode& borrower) override
    {
        auto& to = dynamic_cast<TList&>(borrower);
        m_next = std::next(m_slots[slot]);
        to.splice(to.end(), m_list, m_slots[slot]);
    }

    void TakeBack(std::size_t slot, KvDeviceFootprint::CElementNode& borrower) override
    {
        m_list.splice(m_next, dynamic_cast<TList&>(borrower), m_slots[slot]);
    }

private:
    using TPlace = typename std::list<T>::iterator;

    static void Copy(T& copy, const KvDeviceFootprint::CElementNode& entry)
    {
        copy = static_cast<const T&>(entry);
        CompleteCopy(copy, entry);
    }

    TList& m_list;
    std::list<T> m_pool; ///< What is not in the list.
    std::vector<TPlace> m_slots;
    TPlace m_next;
};

/// A list class L, or all with entries of T if L is CElementNodeList<T>.
template<class L>
class CListClassOf : public CListClass
{
public:
    using T = typename L::value_type;
    using TList = KvDeviceFootprint::CElementNodeList<T>;

    bool IsClassOf(const KvDeviceFootprint::CElementNode& element) const override
    {
        return dynamic_cast<const L*>(&element) != nullptr;
    }
    const std::type_info& Type() const override { return typeid(L); }

    std::vector<const KvDeviceFootprint::CElementNode*>
    Entries(const KvDeviceFootprint::CElementNode& list) const override
    {
        std::vector<const KvDeviceFootprint::CElementNode*> entries;
        for (const T& entry : dynamic_cast<const TList&>(list)) {
            entries.push_back(&entry);
        }
        return entries;
    }

    bool HasIdentity() const override { return KvDeviceFootprint::HasIdentity<T>::value; }
    bool IsSameEntity(const KvDeviceFootprint::CElementNode& left,
                      const KvDeviceFootprint::CElementNode& right) const override
    {
        if constexpr (KvDeviceFootprint::HasIdentity<T>::value) {
            return static_cast<const T&>(left).IsSameEntity(static_cast<const T&>(right));
        } else {
            return &left == &right;
        }
    }

    std::unique_ptr<KvDeviceFootprint::CElementNode>
    CopyEntry(const KvDeviceFootprint::CElementNode& entry) const override
    {
        auto copy = std::make_unique<T>(static_cast<const T&>(entry));
        CompleteCopy(*copy, entry);
        return copy;
    }

    std::unique_ptr<KvDeviceFootprint::CElementNode> MakeEmpty() const override
    {
        if constexpr (std::is_same_v<L, TList>) {
            return nullptr;
        } else {
            return std::make_unique<L>();
        }
    }

    void Append(KvDeviceFootprint::CElementNode& list, const KvDeviceFootprint::CElementNode& entry) const override
    {
        auto& entries = dynamic_cast<TList&>(list);
        entries.push_back(static_cast<const T&>(entry));
        CompleteCopy(entries.back(), entry);
    }
    void RemoveEntries(KvDeviceFootprint::CElementNode& list) const override { dynamic_cast<TList&>(list).clear(); }

    std::unique_ptr<CListEditor> Edit(KvDeviceFootprint::CElementNode& list) const override
    {
        return std::make_unique<CListEditorOf<T>>(dynamic_cast<TList&>(list));
    }
    std::unique_ptr<CListEditor> Rebuild(KvDeviceFootprint::CElementNode& list,
                                         const std::vector<const KvDeviceFootprint::CElementNode*>& entries,
                                         const std::vector<std::size_t>& byAddress, std::size_t inList) const override
    {
        return std::make_unique<CListEditorOf<T>>(dynamic_cast<TList&>(list), entries, byAddress, inList);
    }
};

/// Makes the class of an application's own list known.
template<class L>
void AddListClass()
{
    AddListClass(std::make_unique<CListClassOf<L>>());
}

} // namespace footprint

#endif
