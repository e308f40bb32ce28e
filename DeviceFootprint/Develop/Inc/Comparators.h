#ifndef NYXCONFIG_COMPARATORS_H
#define NYXCONFIG_COMPARATORS_H

/**
 * @file
 * Comparison of two element trees by rules. A rule set maps the name of an element to a comparator;
 * CElementNode::Compare walks the tree and lets the comparator of each element decide. What no comparator looks at may
 * differ. The answer is one bool: whether the trees are the same under the rules. The element on which Compare is
 * called is the left side throughout.
 *
 * Laws: a comparator is stateless, its answer depends on the two elements alone, and an element equals itself. Its
 * node name never changes.
 *
 * Comparison touches no shared state, the error handler apart; comparisons with rule sets of their own may run side by
 * side.
 *
 * A rule registered under the wrong name is a programming fault: it stops the process through std::abort, in every
 * build type, with a line on standard error.
 */

#include "DeviceFootprint.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

namespace KvDeviceFootprint
{

/// Stops the process with a line on standard error that names the violated precondition.
[[noreturn]] NYXCONFIG_EXPORT void ComparatorPreconditionFailed(const char* precondition);

/// Decides about one kind of element.
class NYXCONFIG_EXPORT CComparatorBase
{
public:
    virtual ~CComparatorBase();
    /// The name of the elements about which this comparator decides.
    virtual const std::string& GetAssociatedNodeName() const = 0;
    virtual bool operator()(const CElementNode& lhs, const CElementNode& rhs, const CComparatorRules& rules) const = 0;

protected:
    CComparatorBase() = default;
    CComparatorBase(const CComparatorBase&) = default;
    CComparatorBase& operator=(const CComparatorBase&) = default;
};

/// A set of rules: comparators by the name of the elements about which they decide. Owns the comparators. Must not be
/// changed during a comparison.
class NYXCONFIG_EXPORT CComparatorRules
{
public:
    CComparatorRules() = default;
    CComparatorRules(const CComparatorRules&) = delete;
    CComparatorRules& operator=(const CComparatorRules&) = delete;
    ~CComparatorRules();

    /// Enters a comparator under its node name; an earlier one of that name is deleted.
    /// @param comparator must not be null. Owned by the rule set from here on.
    void Add(const CComparatorBase* comparator);
    /// Deletes all comparators.
    void Clear();
    /// The comparator for elements of exactly this name, or null.
    const CComparatorBase* Find(const std::string& elementName) const;

private:
    using CRules = std::map<std::string, const CComparatorBase*>;

    friend class CElementNode;

    /// What Find() gives for the name of an element. All elements of the class @p layout must have that name.
    const CComparatorBase* FindForClass(const CElementLayout& layout, const CElementNode& element) const
    {
        const std::size_t number = layout.Number();
        const CRules::value_type* known =
            number < m_known.size() ? m_known[number].load(std::memory_order_relaxed) : nullptr;
        return known == nullptr ? Learn(number, element.GetElementName()) : known->second;
    }
    const CComparatorBase* Learn(std::size_t number, const std::string& elementName) const;
    void ForgetClasses();

    CRules m_comparators;
    // What was found for the classes, by the numbers of their layouts: null before the first search. Threads that
    // compare by one rule set find the same.
    mutable std::array<std::atomic<const CRules::value_type*>, 64> m_known{};
};

/// Fills a rule set.
class NYXCONFIG_EXPORT CComparatorRulesFactory
{
public:
    virtual ~CComparatorRulesFactory();
    /// Adds the factory's comparators to @p rules, which is not cleared first.
    virtual void CreateRules(CComparatorRules& rules) const = 0;

protected:
    CComparatorRulesFactory() = default;
    CComparatorRulesFactory(const CComparatorRulesFactory&) = default;
    CComparatorRulesFactory& operator=(const CComparatorRulesFactory&) = default;
};

/// Whether T can tell its entities apart, by a member IsSameEntity(const T&).
template<class T, class = void>
struct HasIdentity : std::false_type
{
};
template<class T>
struct HasIdentity<T, std::void_t<decltype(std::declval<const T&>().IsSameEntity(std::declval<const T&>()))>>
    : std::true_type
{
};

/// The frame of a comparator for one element class. Identity comes first: CompareInternal() only ever sees two elements
/// of one entity, and elements of different entities differ.
template<class T>
class CComparatorTyped : public CComparatorBase
{
public:
    const std::string& GetAssociatedNodeName() const override { return T::s_ElementName; }

    bool operator()(const CElementNode& lhs, const CElementNode& rhs, const CComparatorRules& /*rules*/) const override
    {
        const T* left = Cast(lhs);
        if (left == nullptr) {
            ComparatorPreconditionFailed("the left element has the comparator's class");
        }
        const T* right = Cast(rhs);
        if (right == nullptr) {
            ComparatorPreconditionFailed("the right element has the comparator's class");
        }
        if constexpr (HasIdentity<T>::value) {
            if (!left->IsSameEntity(*right)) {
                return false;
            }
        }
        return CompareInternal(*left, *right);
    }

    /// Whether the elements' own attributes are the same. The children are compared by the walk.
    virtual bool CompareInternal(const T& lhs, const T& rhs) const = 0;

private:
    /// The element as a T, or null.
    static const T* Cast(const CElementNode& element)
    {
        // Nearly always it is just a T, which is quick to see.
        return &typeid(element) == &typeid(T) ? static_cast<const T*>(&element) : dynamic_cast<const T*>(&element);
    }
};

/// The comparator of a list: pairs the entries of both sides by identity, whatever their order, and compares the pairs.
template<class T>
class CComparatorTyped<CElementNodeList<T>> : public CComparatorBase
{
public:
    /// An entry of the left side with its partner on the right one, in the order of the left entries' addresses.
    using CLookup = std::map<const T*, const T*>;

    bool operator()(const CElementNode& lhs, const CElementNode& rhs, const CComparatorRules& rules) const override
    {
        const auto* left = dynamic_cast<const CElementNodeList<T>*>(&lhs);
        if (left == nullptr) {
            ComparatorPreconditionFailed("the left element is a list of the comparator's entries");
        }
        const auto* right = dynamic_cast<const CElementNodeList<T>*>(&rhs);
        if (right == nullptr) {
            ComparatorPreconditionFailed("the right element is a list of the comparator's entries");
        }
        return CompareInternal(*left, *right, rules);
    }

    /// Compares each pair by CElementNode::Compare; the first difference ends it.
    virtual bool InvokeNodeComparison(const CLookup& lookup, const CComparatorRules& rules) const
    {
        for (const auto& pair : lookup) {
            if (!pair.first->Compare(*pair.second, rules)) {
                return false;
            }
        }
        return true;
    }

    virtual bool CompareInternal(const CElementNodeList<T>& lhs, const CElementNodeList<T>& rhs,
                                 const CComparatorRules& rules) const
    {
        CLookup lookup;
        return CreateLookup(lhs, rhs, lookup) && InvokeNodeComparison(lookup, rules);
    }

    /// Pairs the entries; false if the numbers differ or an entry finds no partner. Each entry of the right side takes
    /// the first free one of its entity, in ascending order of address; the pairing does not go back. Quadratic by
    /// design.
    bool CreateLookup(const CElementNodeList<T>& lhs, const CElementNodeList<T>& rhs, CLookup& lookup) const
    {
        CPairing pairing;
        const bool isComplete = pairing.Make(lhs, rhs);
        for (const auto& pair : pairing) {
            if (pair.second != nullptr) {
                lookup.emplace_hint(lookup.end(), pair);
            }
        }
        return isComplete;
    }

protected:
    /// What a lookup holds, without the memory that a map takes.
    class CPairing
    {
    public:
        using TPair = std::pair<const T*, const T*>;

        CPairing() = default;
        CPairing(const CPairing&) = delete;
        CPairing& operator=(const CPairing&) = delete;
        ~CPairing() = default;

        /// See CreateLookup(). Those that found no partner have null there.
        bool Make(const CElementNodeList<T>& lhs, const CElementNodeList<T>& rhs)
        {
            if (lhs.size() != rhs.size()) {
                return false;
            }
            m_many.resize(lhs.size() > m_few.size() ? lhs.size() : 0);
            m_begin = m_many.empty() ? m_few.data() : m_many.data();
            m_end =
                std::transform(lhs.begin(), lhs.end(), m_begin, [](const T& entry) { return TPair(&entry, nullptr); });
            const auto isBelow = [](const TPair& left, const TPair& right) {
                return std::less<>()(left.first, right.first);
            };
            // Entries of one load mostly lie in memory as they follow each other.
            if (!std::is_sorted(m_begin, m_end, isBelow)) {
                std::sort(m_begin, m_end, isBelow);
            }
            TPair* free = m_begin;
            for (const T& entry : rhs) {
                while (free->second != nullptr) { // there are as many candidates as entries
                    ++free;
                }
                TPair* const candidate = std::find_if(free, m_end, [&entry](const TPair& pair) {
                    return pair.second == nullptr && entry.IsSameEntity(*pair.first);
                });
                if (candidate == m_end) {
                    return false;
                }
                candidate->second = &entry;
            }
            return true;
        }

        std::size_t size() const { return static_cast<std::size_t>(m_end - m_begin); }
        const TPair* begin() const { return m_begin; }
        const TPair* end() const { return m_end; }

    private:
        std::array<TPair, 4> m_few; // most lists are short
        std::vector<TPair> m_many;
        TPair* m_begin = nullptr;
        TPair* m_end = nullptr;
    };
};

/// The comparator of the concrete list class L with entries of T.
template<class T, class L>
class CListComparatorTyped : public CComparatorTyped<CElementNodeList<T>>
{
public:
    const std::string& GetAssociatedNodeName() const override { return L::s_ElementName; }

    bool operator()(const CElementNode& lhs, const CElementNode& rhs, const CComparatorRules& rules) const override
    {
        // Nearly always both are just an L, which is quicker to see than that they are lists of T.
        if (&typeid(lhs) != &typeid(L) || &typeid(rhs) != &typeid(L)) {
            return CComparatorTyped<CElementNodeList<T>>::operator()(lhs, rhs, rules);
        }
        const auto& left = static_cast<const L&>(lhs);
        const auto& right = static_cast<const L&>(rhs);
        if (&typeid(*this) != &typeid(CListComparatorTyped)) {
            return this->CompareInternal(left, right, rules);
        }
        // No derived class has its own way to compare entries here, so nobody needs a lookup.
        if (left.empty() && right.empty()) {
            return true;
        }
        typename CComparatorTyped<CElementNodeList<T>>::CPairing pairing;
        return pairing.Make(left, right) && std::all_of(pairing.begin(), pairing.end(), [&rules](const auto& pair) {
                   return pair.first->Compare(*pair.second, rules);
               });
    }
};

/// A rule that asks for nothing but the same entity.
template<class T>
class CComparatorDefault : public CComparatorTyped<T>
{
public:
    bool CompareInternal(const T& /*lhs*/, const T& /*rhs*/) const override { return true; }
};

/** @name The default history rules
 *  Which differences make a new history entry. The identity tests are those of the element classes. Attributes are
 * equal if their values are, two empty ones included. */
///@{

/// `deviceId`, `productDate`, `upgradePartNumber`.
class NYXCONFIG_EXPORT CDeviceDataComparator : public CComparatorTyped<CDeviceData>
{
public:
    bool CompareInternal(const CDeviceData& lhs, const CDeviceData& rhs) const override;
};

/// `operatingHours`, `makeAndBreakCycles`.
class NYXCONFIG_EXPORT CMaintenanceDataComparator : public CComparatorTyped<CMaintenanceData>
{
public:
    bool CompareInternal(const CMaintenanceData& lhs, const CMaintenanceData& rhs) const override;
};

/// `connectorName`.
class NYXCONFIG_EXPORT CHardwareComparator : public CComparatorTyped<CHardware>
{
public:
    bool CompareInternal(const CHardware& lhs, const CHardware& rhs) const override;
};

/// Beside the paired boards, compares the tree that `parentId` makes of them, while the numbers themselves may differ.
/// A parent that resolves on one side only is a difference, and each that does not resolve is recorded by
/// CDfpErrorHandler.
class NYXCONFIG_EXPORT CHardwareListComparator : public CListComparatorTyped<CHardware, CHardwareList>
{
public:
    bool CompareInternal(const CElementNodeList<CHardware>& lhs, const CElementNodeList<CHardware>& rhs,
                         const CComparatorRules& rules) const override;
};

/// `version`.
class NYXCONFIG_EXPORT CProgrammablePartComparator : public CComparatorTyped<CProgrammablePart>
{
public:
    bool CompareInternal(const CProgrammablePart& lhs, const CProgrammablePart& rhs) const override;
};

/// `version`.
class NYXCONFIG_EXPORT CBiosComparator : public CComparatorTyped<CBios>
{
public:
    bool CompareInternal(const CBios& lhs, const CBios& rhs) const override;
};

/// `version`.
class NYXCONFIG_EXPORT COperatingSystemComparator : public CComparatorTyped<COperatingSystem>
{
public:
    bool CompareInternal(const COperatingSystem& lhs, const COperatingSystem& rhs) const override;
};

/// `version`.
class NYXCONFIG_EXPORT CSoftwareComparator : public CComparatorTyped<CSoftware>
{
public:
    bool CompareInternal(const CSoftware& lhs, const CSoftware& rhs) const override;
};

/// Makes the default history rules. Stateless.
class NYXCONFIG_EXPORT CDefaultHistoryComparatorRulesFactory : public CComparatorRulesFactory
{
public:
    ~CDefaultHistoryComparatorRulesFactory() override;
    void CreateRules(CComparatorRules& rules) const override;
};
///@}

} // namespace KvDeviceFootprint

#endif
