#include "Differences.h"

#include "Deciders.h"
#include "DfpErrorHandler.h"
#include "WorkingCopy.h"

#include <utility>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

/// Comparisons record boards whose parent is missing. Here many are made only to ask something.
class CSilence
{
public:
    CSilence()
    {
        for (int type = 0; type < eDfpErrorTypeCount; ++type) {
            m_context.Skip(static_cast<TDfpErrorType>(type));
        }
    }
    CSilence(const CSilence&) = delete;
    CSilence& operator=(const CSilence&) = delete;
    ~CSilence() { m_context.CloseErrorContext(true); }

private:
    CDfpErrorContext m_context;
};

} // namespace

CExplanation ExplainElements(const CElementNode& oldElement, const CElementNode& newElement,
                             const CComparatorRules& rules, const TMakeCopy& makeCopy)
{
    CExplanation explanation;
    if (&oldElement == &newElement) {
        return explanation;
    }
    const CSilence silence;
    explanation.isSame = newElement.Compare(oldElement, rules);
    CWorkingCopy copy(oldElement, newElement, makeCopy(newElement));
    CDeciders deciders(copy, oldElement, rules);
    if (!explanation.isSame) {
        deciders.Find();
    }
    for (std::size_t number = 0; number < copy.Units(); ++number) {
        CUnit& unit = copy.Unit(number);
        if (!unit.m_isHidden || unit.m_difference.Decides()) {
            explanation.differences.push_back(std::move(unit.m_difference));
        }
    }
    const std::vector<CDifference>& unequal = deciders.Unequal();
    explanation.differences.insert(explanation.differences.end(), unequal.begin(), unequal.end());
    return explanation;
}

std::unique_ptr<CElementNode> UndoElements(const CElementNode& oldElement, const CElementNode& newElement,
                                           const std::vector<CDifference>& undone, const TMakeCopy& makeCopy)
{
    const CSilence silence;
    CWorkingCopy copy(oldElement, newElement, makeCopy(newElement));
    for (const CDifference& difference : undone) {
        if (difference.number < copy.Units()) {
            copy.Unit(difference.number).SetUndone(true);
        }
    }
    copy.Settle();
    return copy.Release();
}

CExplanation Explain(const CDeviceFootprint& oldDocument, const CDeviceFootprint& newDocument,
                     const CComparatorRules& rules)
{
    return ExplainElements(oldDocument, newDocument, rules, MakeCopy<CDeviceFootprint>);
}

CExplanation Explain(const CDeviceFootprint& oldDocument, const CDeviceFootprint& newDocument,
                     const CComparatorRulesFactory& factory)
{
    CComparatorRules rules;
    factory.CreateRules(rules);
    return Explain(oldDocument, newDocument, rules);
}

std::unique_ptr<CDeviceFootprint> Undo(const CDeviceFootprint& oldDocument, const CDeviceFootprint& newDocument,
                                       const std::vector<CDifference>& undone)
{
    std::unique_ptr<CElementNode> copy = UndoElements(oldDocument, newDocument, undone, MakeCopy<CDeviceFootprint>);
    return std::unique_ptr<CDeviceFootprint>(static_cast<CDeviceFootprint*>(copy.release()));
}

} // namespace footprint
