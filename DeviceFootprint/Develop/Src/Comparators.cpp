#include "Comparators.h"

#include "AttributeEquality.h"
#include "DfpErrorHandler.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <vector>

namespace KvDeviceFootprint
{

namespace
{

/// A board's number in 32 bits on every machine.
int BoardNumber(const CReadOnlyAttribute& attribute)
{
    long number = 0;
    attribute.GetInteger(number);
    number = std::max(number, static_cast<long>(std::numeric_limits<int>::min()));
    return static_cast<int>(std::min(number, static_cast<long>(std::numeric_limits<int>::max())));
}

void ReportUnresolvedParent(int parentId)
{
    // The letter behind the number belongs to the message.
    CDfpErrorHandler::Instance()->AddError(
        eDfpErrorTypeInconsistentDfp, "Inconsistent Hardware found. ParentID \"%dx\" could not be resolved", parentId);
}

/// From the number of a board to the index of the pair in which it stands.
class CBoardIndex
{
public:
    explicit CBoardIndex(std::size_t count) { m_boards.reserve(count); }

    void Add(int number, unsigned pair) { m_boards.push_back({number, pair}); }
    /// Ends the adding. Of two boards with one number the earlier one is found.
    void Sort()
    {
        if (!std::is_sorted(m_boards.begin(), m_boards.end(), IsBelow)) {
            std::stable_sort(m_boards.begin(), m_boards.end(), IsBelow);
        }
    }
    /// The index of the pair, or null.
    const unsigned* Find(int number) const
    {
        const auto found = std::lower_bound(m_boards.begin(), m_boards.end(), Board{number, 0}, IsBelow);
        return found == m_boards.end() || found->number != number ? nullptr : &found->pair;
    }

private:
    struct Board
    {
        int number;
        unsigned pair;
    };
    static bool IsBelow(const Board& lhs, const Board& rhs) { return lhs.number < rhs.number; }

    std::vector<Board> m_boards;
};

/// Whether the parents of the two boards of a pair are the two boards of a pair.
bool HaveSameParent(const CHardware& lhs, const CHardware& rhs, const CBoardIndex& lhsIndex,
                    const CBoardIndex& rhsIndex)
{
    if (lhs.m_parentId.IsEmpty() || rhs.m_parentId.IsEmpty()) {
        return lhs.m_parentId.IsEmpty() && rhs.m_parentId.IsEmpty();
    }
    const int lhsParentId = BoardNumber(lhs.m_parentId);
    const int rhsParentId = BoardNumber(rhs.m_parentId);
    const unsigned* lhsParent = lhsIndex.Find(lhsParentId);
    const unsigned* rhsParent = rhsIndex.Find(rhsParentId);
    const bool lhsFound = lhsParent != nullptr;
    const bool rhsFound = rhsParent != nullptr;
    if (lhsFound && rhsFound) {
        return *lhsParent == *rhsParent;
    }
    if (!lhsFound) {
        ReportUnresolvedParent(lhsParentId);
    }
    if (!rhsFound) {
        ReportUnresolvedParent(rhsParentId);
    }
    // Broken in the same way on both sides is no difference.
    return lhsFound == rhsFound;
}

template<class Comparator>
void AddRule(CComparatorRules& rules)
{
    rules.Add(std::make_unique<Comparator>().release()); // the rule set owns it
}

} // namespace

void ComparatorPreconditionFailed(const char* precondition)
{
    std::fprintf(stderr, "nyxconfig: comparison stopped, violated precondition: %s\n", precondition);
    std::abort();
}

CComparatorBase::~CComparatorBase() = default;

CComparatorRulesFactory::~CComparatorRulesFactory() = default;

CComparatorRules::~CComparatorRules()
{
    Clear();
}

void CComparatorRules::Add(const CComparatorBase* comparator)
{
    if (comparator == nullptr) {
        ComparatorPreconditionFailed("the added comparator is not null");
    }
    std::unique_ptr<const CComparatorBase> owned(comparator);
    const CComparatorBase*& place = m_comparators[comparator->GetAssociatedNodeName()];
    if (place != comparator) {
        delete place;
    }
    place = owned.release();
    ForgetClasses();
}

void CComparatorRules::Clear()
{
    for (const auto& rule : m_comparators) {
        delete rule.second;
    }
    m_comparators.clear();
    ForgetClasses();
}

const CComparatorBase* CComparatorRules::Find(const std::string& elementName) const
{
    const auto rule = m_comparators.find(elementName);
    return rule == m_comparators.end() ? nullptr : rule->second;
}

/// Find() for the class with a number, which is kept for the next time.
const CComparatorBase* CComparatorRules::Learn(std::size_t number, const std::string& elementName) const
{
    static const CRules::value_type none("", nullptr);
    const auto found = m_comparators.find(elementName);
    const CRules::value_type& rule = found == m_comparators.end() ? none : *found;
    if (number < m_known.size()) {
        m_known[number].store(&rule, std::memory_order_relaxed);
    }
    return rule.second;
}

void CComparatorRules::ForgetClasses()
{
    for (auto& known : m_known) {
        known.store(nullptr, std::memory_order_relaxed);
    }
}

bool CDeviceDataComparator::CompareInternal(const CDeviceData& lhs, const CDeviceData& rhs) const
{
    return AreEqual(lhs.m_deviceId, rhs.m_deviceId) && AreEqual(lhs.m_productDate, rhs.m_productDate) &&
           AreEqual(lhs.m_upgradePartNumber, rhs.m_upgradePartNumber);
}

bool CMaintenanceDataComparator::CompareInternal(const CMaintenanceData& lhs, const CMaintenanceData& rhs) const
{
    return AreEqual(lhs.m_operatingHours, rhs.m_operatingHours) &&
           AreEqual(lhs.m_makeAndBreakCycles, rhs.m_makeAndBreakCycles);
}

bool CHardwareComparator::CompareInternal(const CHardware& lhs, const CHardware& rhs) const
{
    return AreEqual(lhs.m_connectorName, rhs.m_connectorName);
}

bool CHardwareListComparator::CompareInternal(const CElementNodeList<CHardware>& lhs,
                                              const CElementNodeList<CHardware>& rhs,
                                              const CComparatorRules& rules) const
{
    CPairing pairing;
    if (!pairing.Make(lhs, rhs)) {
        return false;
    }
    CBoardIndex lhsIndex(pairing.size());
    CBoardIndex rhsIndex(pairing.size());
    unsigned index = 0;
    for (const auto& pair : pairing) {
        if (pair.first->m_id.IsEmpty() || pair.second->m_id.IsEmpty()) {
            return false;
        }
        lhsIndex.Add(BoardNumber(pair.first->m_id), index);
        rhsIndex.Add(BoardNumber(pair.second->m_id), index);
        if (!pair.first->Compare(*pair.second, rules)) {
            return false;
        }
        ++index;
    }
    lhsIndex.Sort();
    rhsIndex.Sort();
    return std::all_of(pairing.begin(), pairing.end(),
                       [&](const auto& pair) { return HaveSameParent(*pair.first, *pair.second, lhsIndex, rhsIndex); });
}

bool CProgrammablePartComparator::CompareInternal(const CProgrammablePart& lhs, const CProgrammablePart& rhs) const
{
    return AreEqual(lhs.m_version, rhs.m_version);
}

bool CBiosComparator::CompareInternal(const CBios& lhs, const CBios& rhs) const
{
    return AreEqual(lhs.m_version, rhs.m_version);
}

bool COperatingSystemComparator::CompareInternal(const COperatingSystem& lhs, const COperatingSystem& rhs) const
{
    return AreEqual(lhs.m_version, rhs.m_version);
}

bool CSoftwareComparator::CompareInternal(const CSoftware& lhs, const CSoftware& rhs) const
{
    return AreEqual(lhs.m_version, rhs.m_version);
}

CDefaultHistoryComparatorRulesFactory::~CDefaultHistoryComparatorRulesFactory() = default;

void CDefaultHistoryComparatorRulesFactory::CreateRules(CComparatorRules& rules) const
{
    AddRule<CListComparatorTyped<CConnectedDevice, CConnectedDeviceList>>(rules);
    AddRule<CBiosComparator>(rules);
    AddRule<COperatingSystemComparator>(rules);
    AddRule<CSoftwareComparator>(rules);
    AddRule<CListComparatorTyped<CSoftware, CSoftwareList>>(rules);
    AddRule<CDeviceDataComparator>(rules);
    AddRule<CMaintenanceDataComparator>(rules);
    AddRule<CListComparatorTyped<CMaintenance, CMaintenances>>(rules);
    AddRule<CListComparatorTyped<CMaintenanceTask, CMaintenanceTasks>>(rules);
    AddRule<CListComparatorTyped<CMaintenanceInfo, CMaintenanceInfos>>(rules);
    AddRule<CHardwareComparator>(rules);
    AddRule<CHardwareListComparator>(rules);
    AddRule<CProgrammablePartComparator>(rules);
    AddRule<CListComparatorTyped<CProgrammablePart, CProgrammableParts>>(rules);
    AddRule<CComparatorDefault<CService>>(rules);
    AddRule<CListComparatorTyped<CService, CServices>>(rules);
    AddRule<CComparatorDefault<CProduct>>(rules);
    AddRule<CListComparatorTyped<CProduct, CProductList>>(rules);
}

} // namespace KvDeviceFootprint
