#include "FootprintDump.h"

#include "DeviceFootprint.h"
#include "JsonText.h"

#include <list>

using namespace KvDeviceFootprint;

namespace NyxTest
{

namespace
{

using Json = nlohmann::json;

/// Dumps the element if it is a list with entries of type T.
template<class T>
bool DumpList(const CElementNode& element, Json& dump)
{
    const auto* list = dynamic_cast<const CElementNodeList<T>*>(&element);
    if (list == nullptr) {
        return false;
    }
    dump["entries"] = Json::array();
    for (const T& entry : *list) {
        dump["entries"].push_back(DumpElement(entry));
    }
    return true;
}

template<class... T>
bool DumpAsListOf(const CElementNode& element, Json& dump)
{
    return (DumpList<T>(element, dump) || ...);
}

bool DumpAnyList(const CElementNode& element, Json& dump)
{
    return DumpAsListOf<CConnectedDevice, CHardware, CMaintenance, CMaintenanceInfo, CMaintenanceTask, CProduct,
                        CProgrammablePart, CProperty, CService, CSoftware, CTestInstruction>(element, dump);
}

} // namespace

Json DumpElement(const CElementNode& element)
{
    Json dump = {{"element", element.GetElementName()}};
    if (DumpAnyList(element, dump)) {
        return dump;
    }
    dump["attributes"] = Json::array();
    std::list<CReadOnlyAttribute*> attributes;
    element.GetAttributeNodes(attributes);
    for (const CReadOnlyAttribute* attribute : attributes) {
        if (!attribute->IsEmpty()) {
            dump["attributes"].push_back({JsonText(attribute->GetNodeName()), JsonText(attribute->GetValue())});
        }
    }
    dump["children"] = Json::array();
    std::list<CElementNode*> children;
    element.GetChildElements(children);
    for (const CElementNode* child : children) {
        if (!child->IsEmpty()) {
            dump["children"].push_back(DumpElement(*child));
        }
    }
    return dump;
}

} // namespace NyxTest
