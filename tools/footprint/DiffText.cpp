#include "DiffText.h"

#include "BoardTree.h"
#include "ElementWalk.h"
#include "Terminal.h"

#include <algorithm>
#include <ostream>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

using EKind = CDifference::EKind;
using EDecision = CDifference::EDecision;

std::string Quoted(const std::string& text)
{
    return "\"" + text + "\"";
}

const char* NameOfKind(EKind kind)
{
    switch (kind) {
    case EKind::eAdded:
        return "added";
    case EKind::eRemoved:
        return "removed";
    case EKind::eOrder:
        return "order";
    case EKind::eParent:
        return "parent";
    case EKind::eUnequal:
        return "unequal";
    default:
        return "changed";
    }
}

std::string RuleText(const CDifference& difference)
{
    const std::string rule = difference.ruleElement.empty()
                                 ? "the comparison of " + ShortClass(difference.ruleClass)
                                 : "rule " + difference.ruleElement + ", " + ShortClass(difference.ruleClass);
    return (difference.decision == EDecision::eTogether ? "decides together with others: " : "decides: ") + rule;
}

} // namespace

std::string ShortClass(const std::string& ruleClass)
{
    static const std::string s_namespace = "KvDeviceFootprint::";
    std::string name = ruleClass;
    for (std::size_t place = name.find(s_namespace); place != std::string::npos; place = name.find(s_namespace)) {
        name.erase(place, s_namespace.size());
    }
    return name;
}

CDiffText::CDiffText(const CDeviceFootprint& oldDocument, const CDeviceFootprint& newDocument,
                     const CExplanation& explanation, CRedaction& redaction)
    : m_explanation(explanation), m_redaction(redaction)
{
    if (!explanation.differences.empty()) {
        m_oldEntries = EntriesOf(oldDocument);
        m_newEntries = EntriesOf(newDocument);
    }
    m_deciding = static_cast<std::size_t>(std::count_if(explanation.differences.begin(), explanation.differences.end(),
                                                        [](const CDifference& one) { return one.Decides(); }));
}

CDiffText::TEntries CDiffText::EntriesOf(const CElementNode& root)
{
    TEntries entries;
    Walk(root, [&entries](const CElementNode& element, const std::string& path) {
        if (path.back() == ']') {
            entries.emplace(path, &element);
        }
    });
    return entries;
}

std::string CDiffText::NameOf(const CElementNode& entry, std::size_t number) const
{
    if (const auto* board = dynamic_cast<const CHardware*>(&entry)) {
        return m_redaction.Text(BoardLabel(*board, number));
    }
    if (const auto* device = dynamic_cast<const CConnectedDevice*>(&entry)) {
        return m_redaction.Value(device->m_deviceData.m_deviceId);
    }
    for (const char* name : {"name", "partName", "maintenanceDate", "serviceCode", "partNumber"}) {
        const CReadOnlyAttribute* const attribute = entry.GetAttributeByName(name);
        if (attribute != nullptr && !attribute->IsEmpty()) {
            return m_redaction.Value(*attribute);
        }
    }
    return {};
}

/// What people call the entries in a path.
std::string CDiffText::NamesOnTheWay(const CDifference& difference) const
{
    const bool isOld = difference.newElement == nullptr;
    const std::string& path = isOld ? difference.oldPath : difference.path;
    const TEntries& entries = isOld ? m_oldEntries : m_newEntries;
    std::string names;
    for (std::size_t end = path.find(']'); end != std::string::npos; end = path.find(']', end + 1)) {
        const auto entry = entries.find(path.substr(0, end + 1));
        if (entry != entries.end()) {
            const std::size_t begin = path.rfind('[', end) + 1;
            const std::string name = NameOf(*entry->second, std::stoul(path.substr(begin, end - begin)));
            if (!name.empty()) {
                names += (names.empty() ? "" : ", ") + name;
            }
        }
    }
    return names;
}

std::string CDiffText::Value(const CDifference& difference, const std::string& value) const
{
    return difference.attribute.empty() ? m_redaction.Text(value) : m_redaction.Value(difference.attribute, value);
}

std::string CDiffText::AttributesOnOneLine(const CElementNode& entry) const
{
    std::string line;
    for (const CReadOnlyAttribute* attribute : AttributesOf(entry)) {
        if (!attribute->IsEmpty()) {
            line += (line.empty() ? "" : ", ") + attribute->GetNodeName() + " " + Quoted(m_redaction.Value(*attribute));
        }
    }
    return line;
}

std::string CDiffText::Happened(const CDifference& difference) const
{
    const auto shown = [&](const std::string& value) {
        return value.empty() ? std::string("none") : Quoted(Value(difference, value));
    };
    const std::string prefix = difference.attribute.empty() ? "" : difference.attribute + ": ";
    switch (difference.kind) {
    case EKind::eAdded:
    case EKind::eRemoved: {
        const bool isAdded = difference.kind == EKind::eAdded;
        const CElementNode* const entry = isAdded ? difference.newElement : difference.oldElement;
        const std::string& text = isAdded ? difference.newValue : difference.oldValue;
        const std::string details =
            !text.empty() ? shown(text) : (entry == nullptr ? std::string() : AttributesOnOneLine(*entry));
        return std::string(isAdded ? "added" : "removed") + (details.empty() ? "" : ": ") + details;
    }
    case EKind::eOrder:
        return "order of the entries: " + difference.oldValue + " -> " + difference.newValue;
    case EKind::eParent:
        return prefix + shown(difference.newValue) + ", but that is another board now";
    case EKind::eUnequal:
        return "equal, but the rule takes it for different even from a copy of itself";
    default:
        return prefix + shown(difference.oldValue) + " -> " + shown(difference.newValue);
    }
}

void CDiffText::Write(std::ostream& output, bool colour, std::size_t indent, bool onlyDeciding) const
{
    const std::string margin(indent, ' ');
    const std::string* path = nullptr;
    for (const CDifference& difference : m_explanation.differences) {
        if (onlyDeciding && !difference.Decides()) {
            continue;
        }
        const std::string& place = difference.newElement == nullptr ? difference.oldPath : difference.path;
        if (path == nullptr || *path != place) {
            path = &place;
            const std::string names = NamesOnTheWay(difference);
            output << margin << Styled(Harmless(place), EStyle::eHeading, colour)
                   << (names.empty() ? "" : "  (" + Harmless(names) + ")") << "\n";
        }
        const std::string words = Harmless(Happened(difference));
        if (difference.Decides()) {
            output << margin << "  ! " << Styled(words, EStyle::eBad, colour) << "  [" << Harmless(RuleText(difference))
                   << "]\n";
        } else {
            output << margin << "    " << words << "\n";
        }
    }
}

TJson CDiffText::JsonOf(const CDifference& difference) const
{
    const auto value = [&](const std::string& text, const CElementNode* entry, bool isThere) {
        if (!difference.attribute.empty() || !text.empty()) {
            return text.empty() ? TJson() : TJson(Value(difference, text));
        }
        return isThere && entry != nullptr ? ToJson(*entry, m_redaction) : TJson();
    };
    TJson json;
    json["kind"] = NameOfKind(difference.kind);
    json["path"] = difference.newElement == nullptr ? TJson() : TJson(difference.path);
    json["oldPath"] = difference.oldElement == nullptr ? TJson() : TJson(difference.oldPath);
    json["names"] = NamesOnTheWay(difference);
    json["attribute"] = difference.attribute.empty() ? TJson() : TJson(difference.attribute);
    json["old"] = value(difference.oldValue, difference.oldElement, difference.kind == EKind::eRemoved);
    json["new"] = value(difference.newValue, difference.newElement, difference.kind == EKind::eAdded);
    json["decides"] = difference.Decides();
    if (difference.Decides()) {
        json["rule"] = {{"element", difference.ruleElement.empty() ? TJson() : TJson(difference.ruleElement)},
                        {"class", difference.ruleClass},
                        {"path", difference.rulePath},
                        {"alone", difference.decision == EDecision::eAlone}};
    }
    return json;
}

TJson CDiffText::Json(bool onlyDeciding) const
{
    TJson json = TJson::array();
    for (const CDifference& difference : m_explanation.differences) {
        if (!onlyDeciding || difference.Decides()) {
            json.push_back(JsonOf(difference));
        }
    }
    return json;
}

std::string CDiffText::Summary() const
{
    if (Count() == 0) {
        return "no differences";
    }
    const std::string all = std::to_string(Count()) + (Count() == 1 ? " difference" : " differences");
    if (m_deciding == 0) {
        return all + (Count() == 1 ? ", which does not decide" : ", none of which decides");
    }
    if (Count() == 1) {
        return all + ", which decides";
    }
    return all + ", " + std::to_string(m_deciding) + " of which " + (m_deciding == 1 ? "decides" : "decide");
}

} // namespace footprint
