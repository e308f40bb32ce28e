#ifndef NYXCONFIG_DIFFERENCES_H
#define NYXCONFIG_DIFFERENCES_H

/**
 * @file
 * What is different between two footprints, and which of the differences decide that a comparison by a rule set finds
 * them different - so that, for instance, a device writes a new entry into its history.
 *
 *     const footprint::CExplanation explanation = footprint::Explain(former, present, CMyRulesFactory());
 *     for (const footprint::CDifference& difference : explanation.differences) {
 *         if (difference.Decides()) {
 *             std::cout << difference.path << " " << difference.attribute << ": " << difference.ruleClass << "\n";
 *         }
 *     }
 *
 * The reasons come from the rule set itself. Nothing here knows what a rule looks at: a copy of the new footprint is
 * made more and more like the old one, difference by difference, and the rules are asked again and again. So the rules
 * of an application are explained as well, whatever they look at, also those that weigh several fields against each
 * other. They have to keep the laws of Comparators.h.
 *
 * An application's own lists must be made known first, see ListClasses.h.
 *
 * The library's error handler hears nothing of the comparisons here. As it serves one thread at a time, so do these
 * functions; but for that, they touch no shared state.
 */

#include "Comparators.h"
#include "DeviceFootprint.h"
#include "ListClasses.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace footprint
{

/// One difference between two footprints.
struct CDifference
{
    enum class EKind
    {
        eChanged, ///< an attribute has another value
        eAdded,   ///< an entry of a list, or a device held as text, is in the new footprint only
        eRemoved, ///< the same for the old one
        eOrder,   ///< entries that both footprints have follow each other in another order
        eParent,  ///< a board hangs below another board, though the number of its parent is the same
        eUnequal  ///< none that could be seen: the rule does not even take a copy of the old element for the same
    };

    enum class EDecision
    {
        eNone,    ///< the rules do not mind it
        eAlone,   ///< decides, whatever else the rule looks at
        eTogether ///< decides together with others of the same rule; one of them may not be enough for it
    };

    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    bool Decides() const { return decision != EDecision::eNone; }

    EKind kind = EKind::eChanged;
    std::string path;      ///< of the element in the new footprint; in the old one, if it is only there
    std::string oldPath;   ///< of the element in the old footprint; empty if it is not there
    std::string attribute; ///< name of the attribute; empty for a difference of the whole element

    /** @name Old and new value, in UTF-8
     *  Of an attribute: empty if it is absent. Of an order: the places that the entries had before, by ranges. Of a
     *  device held as text: the text. Otherwise empty. */
    ///@{
    std::string oldValue;
    std::string newValue;
    ///@}

    /** @name The elements, in the caller's documents; null if there is none */
    ///@{
    const KvDeviceFootprint::CElementNode* oldElement = nullptr;
    const KvDeviceFootprint::CElementNode* newElement = nullptr;
    ///@}

    /** @name Whether and why it decides */
    ///@{
    EDecision decision = EDecision::eNone;
    std::string ruleElement; ///< name of the elements about which the deciding rule decides; empty without a rule: then
                             ///< the class of an element compares on its own
    std::string ruleClass;   ///< class of its comparator
    std::string rulePath;    ///< path of the element at which it decides
    ///@}

    /// What Undo() knows it by; the same for the same two documents. none for one that can not be undone.
    std::size_t number = none;
};

/// The differences of two footprints, and what a rule set thinks of them.
struct CExplanation
{
    bool isSame = true; ///< the library's own verdict
    /// All differences, in the order of the new footprint; removed entries come behind those that stayed. At least one
    /// of them decides exactly if the verdict is "not the same".
    std::vector<CDifference> differences;
};

/** @name Two footprints
 *  The new one is the left side of the comparison, as when the library compares with the latest entry of a history.
 *  Both must stay as they are while the explanation is used: it points into them. */
///@{

CExplanation Explain(const KvDeviceFootprint::CDeviceFootprint& oldDocument,
                     const KvDeviceFootprint::CDeviceFootprint& newDocument,
                     const KvDeviceFootprint::CComparatorRules& rules);

/// @param factory of the rules; the default history rules if there is none.
CExplanation Explain(const KvDeviceFootprint::CDeviceFootprint& oldDocument,
                     const KvDeviceFootprint::CDeviceFootprint& newDocument,
                     const KvDeviceFootprint::CComparatorRulesFactory& factory =
                         KvDeviceFootprint::CDefaultHistoryComparatorRulesFactory());

/**
 * A copy of the new footprint in which some of its differences to the old one are undone. With all that decide, the
 * rules find it the same as the old one - unless there is a difference of the kind eUnequal, which nothing undoes.
 *
 * @param undone differences from an explanation of the same two documents.
 */
std::unique_ptr<KvDeviceFootprint::CDeviceFootprint> Undo(const KvDeviceFootprint::CDeviceFootprint& oldDocument,
                                                          const KvDeviceFootprint::CDeviceFootprint& newDocument,
                                                          const std::vector<CDifference>& undone);
///@}

/** @name Elements of any class
 *  The same for two elements of one class of which only a copy can be made. */
///@{

using TMakeCopy =
    std::function<std::unique_ptr<KvDeviceFootprint::CElementNode>(const KvDeviceFootprint::CElementNode&)>;

CExplanation ExplainElements(const KvDeviceFootprint::CElementNode& oldElement,
                             const KvDeviceFootprint::CElementNode& newElement,
                             const KvDeviceFootprint::CComparatorRules& rules, const TMakeCopy& makeCopy);

std::unique_ptr<KvDeviceFootprint::CElementNode> UndoElements(const KvDeviceFootprint::CElementNode& oldElement,
                                                              const KvDeviceFootprint::CElementNode& newElement,
                                                              const std::vector<CDifference>& undone,
                                                              const TMakeCopy& makeCopy);

/// The copy of an element of class T.
template<class T>
std::unique_ptr<KvDeviceFootprint::CElementNode> MakeCopy(const KvDeviceFootprint::CElementNode& element)
{
    return std::make_unique<T>(dynamic_cast<const T&>(element));
}
///@}

} // namespace footprint

#endif
