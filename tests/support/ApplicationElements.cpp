#include "ApplicationElements.h"

#include <functional>

namespace NyxTest
{

using namespace KvDeviceFootprint;

const std::string CLeaf::s_ElementName("Leaf");

DFP_DEFINE_ELEMENT(CBranch)
DFP_DEFINE_ELEMENT(CBranchSorted)

std::list<CReadOnlyAttribute*> AttributesOf(const CElementNode& element)
{
    std::list<CReadOnlyAttribute*> attributes;
    element.GetAttributeNodes(attributes);
    return attributes;
}

std::list<CElementNode*> ChildrenOf(const CElementNode& element)
{
    std::list<CElementNode*> children;
    element.GetChildElements(children);
    return children;
}

void Fill(CElementNode& element, const std::wstring& prefix)
{
    int number = 0;
    const std::function<void(CElementNode&)> fill = [&](CElementNode& node) {
        for (CReadOnlyAttribute* attribute : AttributesOf(node)) {
            attribute->Set(prefix + std::to_wstring(++number));
        }
        for (CElementNode* child : ChildrenOf(node)) {
            fill(*child);
        }
    };
    fill(element);
}

} // namespace NyxTest
