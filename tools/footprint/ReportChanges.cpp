#include "ReportChanges.h"

#include "BoardTree.h"
#include "Differences.h"
#include "ElementWalk.h"
#include "ReportValues.h"
#include "Tables.h"

#include <algorithm>
#include <array>
#include <map>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

/// What people call elements. Those that only hold others together, and the device itself, have no name.
const std::map<std::string, const char*> elementWords = {{"BPartIdentification", "B part identification"},
                                                         {"Bios", "BIOS"},
                                                         {"ConnectedDevice", "Connected device"},
                                                         {"Hardware", "Board"},
                                                         {"Maintenance", "Maintenance"},
                                                         {"MaintenanceInfo", "Maintenance information"},
                                                         {"MaintenanceTask", "Task"},
                                                         {"OperatingSystem", "Operating system"},
                                                         {"Product", "Product"},
                                                         {"ProgrammablePart", "Programmable part"},
                                                         {"Property", "Property"},
                                                         {"Service", "Service"},
                                                         {"Software", "Software"},
                                                         {"TestInstruction", "Test instruction"}};

/// What an entry of a list is known by.
std::string NameOf(const CStep& step, CRedaction& redaction)
{
    if (step.number == 0) {
        return {};
    }
    if (const auto* board = dynamic_cast<const CHardware*>(step.element)) {
        return redaction.Text(BoardLabel(*board, step.number));
    }
    if (const auto* device = dynamic_cast<const CConnectedDevice*>(step.element)) {
        return redaction.Value(device->m_deviceData.m_deviceId);
    }
    if (const auto* service = dynamic_cast<const CService*>(step.element)) {
        const std::string date = redaction.Value(service->m_serviceDate);
        return redaction.Value(service->m_serviceCode) + (date.empty() ? "" : " of ") + date;
    }
    for (const char* const name : {"name", "maintenanceDate", "partName", "partNumber"}) {
        for (const CReadOnlyAttribute* attribute : AttributesOf(*step.element)) {
            if (attribute->GetNodeName() == name && !attribute->IsEmpty()) {
                return redaction.Value(*attribute);
            }
        }
    }
    return std::to_string(step.number);
}

/// The way to an element in words: "Board CTRL (1001), Programmable part FPGA". Empty for the device itself.
std::string WayTo(const CElementNode& root, const std::string& path, CRedaction& redaction)
{
    std::string words;
    const CElementNode* element = &root;
    std::size_t begin = path.find('/', 1);
    while (element != nullptr && begin != std::string::npos) {
        const std::size_t end = path.find('/', begin + 1);
        const std::string text = path.substr(begin + 1, end == std::string::npos ? end : end - begin - 1);
        begin = end;
        const std::vector<CStep> steps = StepsBelow(*element);
        const auto step =
            std::find_if(steps.begin(), steps.end(), [&text](const CStep& below) { return below.Text() == text; });
        element = step == steps.end() ? nullptr : step->element;
        const auto kind = elementWords.find(text.substr(0, text.find('[')));
        if (element != nullptr && kind != elementWords.end()) {
            const std::string name = NameOf(*step, redaction);
            words += (words.empty() ? "" : ", ") + std::string(kind->second) + (name.empty() ? "" : " ") + name;
        }
    }
    return words;
}

const char* Happened(CDifference::EKind kind)
{
    switch (kind) {
    case CDifference::EKind::eChanged:
        return "";
    case CDifference::EKind::eAdded:
        return "added";
    case CDifference::EKind::eRemoved:
        return "removed";
    case CDifference::EKind::eOrder:
        return "in another order";
    case CDifference::EKind::eParent:
        return "carried by another board";
    default:
        return "not comparable";
    }
}

/// What tells a board from another one of its name.
std::string Details(const CElementNode* element, CRedaction& redaction)
{
    const auto* board = dynamic_cast<const CHardware*>(element);
    if (board == nullptr) {
        return {};
    }
    std::string details;
    for (const CReadOnlyAttribute* attribute :
         std::array<const CReadOnlyAttribute*, 3>{&board->m_partNumber, &board->m_sn, &board->m_partChangeIndex}) {
        if (!attribute->IsEmpty()) {
            details +=
                (details.empty() ? "" : ", ") + Title(attribute->GetNodeName()) + " " + redaction.Value(*attribute);
        }
    }
    return details;
}

/// The rule behind a difference: its class, and what it is for where one class serves several.
std::string RuleOf(const CDifference& difference)
{
    std::string rule = difference.ruleClass;
    const std::size_t arguments = rule.find('<');
    rule = rule.substr(0, arguments);
    const std::size_t scope = rule.rfind("::");
    rule = scope == std::string::npos ? rule : rule.substr(scope + 2);
    if (arguments != std::string::npos || rule.empty()) {
        rule += (rule.empty() ? "" : " of ") + difference.ruleElement;
    }
    rule = rule.empty() ? "decides" : rule;
    return difference.decision == CDifference::EDecision::eTogether ? rule + ", together with others" : rule;
}

/// What every save changes.
bool IsOfEverySave(const CDifference& difference)
{
    return !difference.Decides() && difference.path.find('/', 1) == std::string::npos &&
           (difference.attribute == "checksum" || difference.attribute == "creationDate");
}

} // namespace

CReportChanges ChangesBetween(const CDeviceFootprint& former, const CDeviceFootprint& present, CRedaction& redaction)
{
    const CExplanation explanation = Explain(former, present);
    std::vector<const CDifference*> differences;
    for (const CDifference& difference : explanation.differences) {
        if (!IsOfEverySave(difference)) {
            differences.push_back(&difference);
        }
    }
    std::stable_partition(differences.begin(), differences.end(),
                          [](const CDifference* difference) { return difference->Decides(); });
    CReportChanges result;
    result.isDecided = !explanation.isSame;
    for (const CDifference* difference : differences) {
        if (result.changes.size() == CReportChanges::most) {
            result.leftOut = differences.size() - result.changes.size();
            break;
        }
        CReportChange change;
        const bool isGone = difference->newElement == nullptr;
        change.where = WayTo(isGone ? static_cast<const CElementNode&>(former) : present, difference->path, redaction);
        if (!difference->attribute.empty()) {
            change.where += (change.where.empty() ? "" : ": ") + Title(difference->attribute);
            change.former = redaction.Value(difference->attribute, difference->oldValue);
            change.present = redaction.Value(difference->attribute, difference->newValue);
        }
        if (change.where.empty()) {
            const std::size_t slash = difference->path.rfind('/');
            change.where = Title(difference->path.substr(slash == std::string::npos ? 0 : slash + 1));
        }
        change.happened = Happened(difference->kind);
        if (difference->kind == CDifference::EKind::eAdded || difference->kind == CDifference::EKind::eRemoved) {
            change.details = Details(isGone ? difference->oldElement : difference->newElement, redaction);
        }
        if (difference->Decides()) {
            change.rule = RuleOf(*difference);
        }
        result.changes.push_back(std::move(change));
    }
    return result;
}

} // namespace footprint
