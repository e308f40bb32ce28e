#include "Json.h"

#include "ElementWalk.h"

#include <ostream>

namespace footprint
{

TJson ToJson(const KvDeviceFootprint::CElementNode& element, CRedaction& redaction)
{
    TJson json = TJson::object();
    for (const KvDeviceFootprint::CReadOnlyAttribute* attribute : AttributesOf(element)) {
        if (!attribute->IsEmpty()) {
            json[attribute->GetNodeName()] = redaction.Value(*attribute);
        }
    }
    for (const CStep& step : StepsBelow(element)) {
        if (step.number != 0) {
            if (step.number == 1) {
                json = TJson::array();
            }
            json.push_back(ToJson(*step.element, redaction));
        } else if (!step.element->IsEmpty()) {
            json[step.element->GetElementName()] = ToJson(*step.element, redaction);
        }
    }
    return json;
}

void WriteJson(std::ostream& output, const TJson& json, int indent)
{
    output << json.dump(indent, ' ', true, TJson::error_handler_t::replace) << "\n";
}

} // namespace footprint
