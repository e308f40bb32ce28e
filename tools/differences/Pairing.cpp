#include "Pairing.h"

#include "ElementWalk.h"

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>
#include <optional>
#include <string>
#include <unordered_map>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

/// The attributes of an element and of the children that are part of it.
void CollectAttributes(const CElementNode& element, std::vector<CReadOnlyAttribute*>& attributes)
{
    std::list<CReadOnlyAttribute*> own;
    element.GetAttributeNodes(own);
    attributes.insert(attributes.end(), own.begin(), own.end());
    std::list<CElementNode*> children;
    element.GetChildElements(children);
    for (const CElementNode* child : children) {
        CollectAttributes(*child, attributes);
    }
}

std::vector<CReadOnlyAttribute*> CollectAttributes(const CElementNode& element)
{
    std::vector<CReadOnlyAttribute*> attributes;
    CollectAttributes(element, attributes);
    return attributes;
}

void AppendToKey(std::wstring& key, const std::wstring& value)
{
    key += std::to_wstring(value.size()) + L":" + value;
}

/**
 * The attributes by which entries of a list are told apart, found by asking: with any of them changed, a copy is
 * another entity. They only serve to find partners quickly; whether two entries are one entity, the entries say.
 */
class CIdentity
{
public:
    CIdentity(const CListClass& listClass, const CElementNode& sample)
    {
        const auto make = [&] {
            auto copy = listClass.CopyEntry(sample);
            for (CReadOnlyAttribute* attribute : CollectAttributes(*copy)) {
                if (attribute->IsEmpty()) {
                    attribute->Set(std::wstring(L"1"));
                }
            }
            return copy;
        };
        const auto first = make();
        const std::size_t count = CollectAttributes(*first).size();
        for (std::size_t index = 0; index < count; ++index) {
            const auto second = make();
            CReadOnlyAttribute& attribute = *CollectAttributes(*second)[index];
            attribute.Set(attribute.GetValue() + L"1");
            if (listClass.IsSameEntity(*first, *second)) {
                continue;
            }
            m_keys.push_back(index);
            attribute.Clear();
            if (listClass.IsSameEntity(*first, *second)) {
                m_mayNotBeEmpty.push_back(index);
            }
        }
    }

    bool IsKnown() const { return !m_keys.empty(); }

    /// What entries of one entity have in common; nothing if the attributes do not tell.
    std::optional<std::wstring> KeyOf(const CElementNode& entry) const
    {
        const std::vector<CReadOnlyAttribute*> attributes = CollectAttributes(entry);
        if (std::any_of(m_mayNotBeEmpty.begin(), m_mayNotBeEmpty.end(),
                        [&](std::size_t index) { return attributes[index]->IsEmpty(); })) {
            return std::nullopt;
        }
        std::wstring key;
        for (const std::size_t index : m_keys) {
            AppendToKey(key, attributes[index]->GetValue());
        }
        return key;
    }

private:
    std::vector<std::size_t> m_keys;
    std::vector<std::size_t> m_mayNotBeEmpty;
};

/// Gives each entry of the old list, one after the other, the first free one of its entity.
class CPairer
{
public:
    CPairer(const CListClass& listClass, const TElements& oldEntries, const TElements& newEntries)
        : m_class(listClass), m_old(oldEntries), m_new(newEntries), m_order(ByAddress(newEntries)),
          m_isTaken(newEntries.size(), false)
    {
    }

    std::vector<std::size_t> Pair()
    {
        std::vector<std::size_t> partners;
        partners.reserve(m_old.size());
        for (const CElementNode* entry : m_old) {
            partners.push_back(Take(*entry));
        }
        return partners;
    }

private:
    std::size_t Take(const CElementNode& entry)
    {
        while (m_free < m_order.size() && m_isTaken[m_free]) {
            ++m_free;
        }
        if (m_free == m_order.size()) {
            return noPlace;
        }
        std::size_t rank = m_free; // the first one, while entries come in the same order
        if (!IsPartner(entry, rank)) {
            PrepareIndex();
            rank = m_isIndexed ? FindByKey(entry) : FindByAsking(entry);
        }
        if (rank == noPlace) {
            return noPlace;
        }
        m_isTaken[rank] = true;
        return m_order[rank];
    }

    bool IsPartner(const CElementNode& entry, std::size_t rank) const
    {
        return !m_isTaken[rank] && m_class.IsSameEntity(entry, *m_new[m_order[rank]]);
    }

    std::size_t FindByAsking(const CElementNode& entry) const
    {
        for (std::size_t rank = m_free; rank < m_order.size(); ++rank) {
            if (IsPartner(entry, rank)) {
                return rank;
            }
        }
        return noPlace;
    }

    std::size_t FindByKey(const CElementNode& entry)
    {
        const auto found = m_ranks.find(*m_identity->KeyOf(entry));
        if (found == m_ranks.end()) {
            return noPlace;
        }
        CRanks& ranks = found->second;
        while (ranks.free < ranks.ranks.size() && m_isTaken[ranks.ranks[ranks.free]]) {
            ++ranks.free;
        }
        for (std::size_t place = ranks.free; place < ranks.ranks.size(); ++place) {
            if (IsPartner(entry, ranks.ranks[place])) {
                return ranks.ranks[place];
            }
        }
        return noPlace;
    }

    void PrepareIndex()
    {
        constexpr std::size_t worthWhile = 32;
        if (m_isPrepared || m_old.size() < worthWhile || m_new.size() < worthWhile) {
            return;
        }
        m_isPrepared = true;
        m_identity.emplace(m_class, *m_old.front());
        if (!m_identity->IsKnown()) {
            return;
        }
        for (const CElementNode* entry : m_old) {
            if (!m_identity->KeyOf(*entry)) {
                return;
            }
        }
        for (std::size_t rank = 0; rank < m_order.size(); ++rank) {
            const std::optional<std::wstring> key = m_identity->KeyOf(*m_new[m_order[rank]]);
            if (!key) {
                return;
            }
            m_ranks[*key].ranks.push_back(rank);
        }
        m_isIndexed = true;
    }

    struct CRanks
    {
        std::vector<std::size_t> ranks;
        std::size_t free = 0;
    };

    const CListClass& m_class;
    const TElements& m_old;
    const TElements& m_new;
    std::vector<std::size_t> m_order;
    std::vector<bool> m_isTaken; ///< by rank
    std::size_t m_free = 0;
    bool m_isPrepared = false;
    bool m_isIndexed = false;
    std::optional<CIdentity> m_identity;
    std::unordered_map<std::wstring, CRanks> m_ranks;
};

/// All attributes of an entry, or the first one only.
std::wstring ValuesOf(const CElementNode& entry, bool all)
{
    std::wstring values;
    for (const CReadOnlyAttribute* attribute : AttributesOf(entry)) {
        AppendToKey(values, attribute->GetValue());
        if (!all) {
            break;
        }
    }
    return values;
}

std::vector<std::size_t> PairByValues(const TElements& oldEntries, const TElements& newEntries)
{
    std::vector<std::size_t> partners(oldEntries.size(), noPlace);
    std::vector<bool> isTaken(newEntries.size(), false);
    for (const bool all : {true, false}) {
        std::map<std::wstring, std::vector<std::size_t>> free; // the first of them last
        for (std::size_t place = newEntries.size(); place-- > 0;) {
            if (!isTaken[place]) {
                free[ValuesOf(*newEntries[place], all)].push_back(place);
            }
        }
        for (std::size_t place = 0; place < oldEntries.size(); ++place) {
            if (partners[place] != noPlace) {
                continue;
            }
            const auto found = free.find(ValuesOf(*oldEntries[place], all));
            if (found != free.end() && !found->second.empty()) {
                partners[place] = found->second.back();
                isTaken[found->second.back()] = true;
                found->second.pop_back();
            }
        }
    }
    return partners;
}

} // namespace

std::vector<std::size_t> ByAddress(const TElements& elements)
{
    std::vector<std::size_t> order(elements.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&elements](std::size_t left, std::size_t right) {
        return std::less<>()(elements[left], elements[right]);
    });
    return order;
}

std::vector<std::size_t> PairEntries(const CListClass& listClass, const TElements& oldEntries,
                                     const TElements& newEntries)
{
    if (listClass.HasIdentity()) {
        return CPairer(listClass, oldEntries, newEntries).Pair();
    }
    return PairByValues(oldEntries, newEntries);
}

} // namespace footprint
