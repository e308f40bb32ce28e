#include "SameTree.h"

#include "DeviceFootprint.h"

#include <algorithm>
#include <list>
#include <vector>

using namespace KvDeviceFootprint;

namespace NyxFuzz
{

namespace
{

using Entries = std::vector<const CElementNode*>;

template<class T>
void AddEntriesOf(const CElementNode& element, Entries& entries)
{
    if (const auto* list = dynamic_cast<const CElementNodeList<T>*>(&element)) {
        for (const T& entry : *list) {
            entries.push_back(&entry);
        }
    }
}

template<class... T>
Entries EntriesOf(const CElementNode& element)
{
    Entries entries;
    (AddEntriesOf<T>(element, entries), ...);
    return entries;
}

/// The children of an element, or the entries of a list, that hold something.
Entries ContentOf(const CElementNode& element)
{
    Entries content = EntriesOf<CConnectedDevice, CHardware, CMaintenance, CMaintenanceInfo, CMaintenanceTask, CProduct,
                                CProgrammablePart, CProperty, CService, CSoftware, CTestInstruction>(element);
    std::list<CElementNode*> children;
    element.GetChildElements(children);
    content.insert(content.end(), children.begin(), children.end());
    content.erase(std::remove_if(content.begin(), content.end(), [](const CElementNode* e) { return e->IsEmpty(); }),
                  content.end());
    return content;
}

bool HasSameAttributes(const CElementNode& a, const CElementNode& b)
{
    std::list<CReadOnlyAttribute*> left;
    std::list<CReadOnlyAttribute*> right;
    a.GetAttributeNodes(left);
    b.GetAttributeNodes(right);
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const CReadOnlyAttribute* x, const CReadOnlyAttribute* y) { return x->IsEqual(*y, true); });
}

} // namespace

bool IsSameTree(const CElementNode& a, const CElementNode& b)
{
    const Entries left = ContentOf(a);
    const Entries right = ContentOf(b);
    return a.GetElementName() == b.GetElementName() && HasSameAttributes(a, b) &&
           std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const CElementNode* x, const CElementNode* y) { return IsSameTree(*x, *y); });
}

} // namespace NyxFuzz
