#ifndef NYXCONFIG_DECIDERS_H
#define NYXCONFIG_DECIDERS_H

#include "WorkingCopy.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace footprint
{

/// Finds out by asking which differences decide.
class CDeciders
{
public:
    /// @param copy with nothing undone.
    CDeciders(CWorkingCopy& copy, const KvDeviceFootprint::CElementNode& oldRoot,
              const KvDeviceFootprint::CComparatorRules& rules);

    /// Marks the differences that decide, and leaves them undone.
    void Find();

    /// What decides without being a difference.
    const std::vector<CDifference>& Unequal() const { return m_unequal; }

private:
    /// Whether something is the same by the rules, in the present state of the copy.
    using TQuestion = std::function<bool()>;
    using TUnits = std::vector<std::size_t>;

    /// Who decides: a rule at an element.
    struct CReason
    {
        const KvDeviceFootprint::CComparatorBase* rule; ///< null if the element compares on its own
        const KvDeviceFootprint::CElementNode* element;
        std::string path;
    };

    struct CSmallLists;

    bool IsRootSame();
    bool Ask(const TQuestion& question);
    const KvDeviceFootprint::CComparatorBase* RuleOf(const KvDeviceFootprint::CElementNode& element) const;

    void ExplainElement(const CDifferentElement& element);
    void ExplainList(const CDifferentElement& element);
    void AskAboutEntries(const CDifferentElement& element, const TQuestion& question, const CReason& reason,
                         std::vector<TUnits>& found);
    void JudgeInFullList(const CDifferentElement& element, const TQuestion& question, const CReason& reason);
    bool IsDueToNumbers(const CDifferentElement& element, const TQuestion& question);
    TUnits AskAboutPair(const CDifferentElement& element, const CDifferentElement& entry, const CReason& reason,
                        CSmallLists& lists);
    bool LoneEntryMatters(const CDifferentElement& element, const CLoneEntry& entry, const CReason& reason,
                          CSmallLists& lists);
    bool ParentMatters(const CDifferentElement& element, const CChangedParent& changed, const CReason& reason,
                       CSmallLists& lists);

    void Search(std::size_t begin, std::size_t end, const TQuestion& question, const CReason& reason);
    TUnits SmallestSet(const TUnits& units, const TQuestion& question);
    std::size_t EndOfPrefix(const TUnits& units, std::size_t limit, const TQuestion& question);
    void Shrink(TUnits& chosen, const TQuestion& question);
    void MarkChosen(const TUnits& units, const TUnits& chosen, const TQuestion& question, const CReason& reason);
    TUnits Together(const TUnits& units, const TUnits& some, const TQuestion& question);
    TUnits Alternatives(const TUnits& units, const TUnits& chosen, const TQuestion& question);
    void DropNeedless(std::vector<TUnits>& groups, const TQuestion& question);

    void SetUndone(const TUnits& units, bool undone);
    TUnits Remaining(std::size_t begin, std::size_t end);
    TUnits DecidedOf(const TUnits& units);
    void Decide(std::size_t unit, CDifference::EDecision decision, const CReason& reason);
    void Forget(std::size_t unit);

    void FindUnequal();
    bool FindUnequalBelow(KvDeviceFootprint::CElementNode& work, const KvDeviceFootprint::CElementNode& old,
                          const std::string& path);
    bool FindUnequalEntries(KvDeviceFootprint::CElementNode& work, const KvDeviceFootprint::CElementNode& old,
                            const CReason& reason);
    void AddUnequal(const KvDeviceFootprint::CElementNode& old, const std::string& path, const CReason& reason);

    CWorkingCopy& m_copy;
    const KvDeviceFootprint::CElementNode& m_oldRoot;
    const KvDeviceFootprint::CComparatorRules& m_rules;
    std::size_t m_decided = 0;
    std::vector<CDifference> m_unequal;
};

} // namespace footprint

#endif
