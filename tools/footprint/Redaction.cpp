#include "Redaction.h"

#include "ElementWalk.h"

#include <unordered_set>

namespace footprint
{

namespace
{

/// Shorter ones stand in too many texts by chance.
constexpr std::size_t shortestWord = 4;
/// Longer ones are found where they are the whole text; looking for them elsewhere would take too long.
constexpr std::size_t longestWord = 100;

/// Fields with a form of their own, in which nothing of a person or a device stands. A number of operating hours that
/// happens to be a serial number is not one.
bool HasOwnForm(const std::string& attributeName)
{
    static const std::unordered_set<std::string> s_names = {
        "checksum",        "creationDate",      "formatVersion",      "hardwareCode", "id",
        "maintenanceDate", "operatingHours",    "makeAndBreakCycles", "parentId",     "partChangeIndex",
        "partNumber",      "productDate",       "productId",          "readCode",     "serviceCode",
        "serviceDate",     "upgradePartNumber", "externConnected",    "done"};
    return s_names.count(attributeName) != 0;
}

bool IsWordCharacter(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || byte >= 0x80;
}

/// Whether a word can begin or end at @p position: not between two characters of one word.
bool IsBoundary(const std::string& text, std::size_t position)
{
    return position == 0 || position == text.size() || !IsWordCharacter(text[position - 1]) ||
           !IsWordCharacter(text[position]);
}

} // namespace

void CRedaction::Learn(const KvDeviceFootprint::CElementNode& element)
{
    if (!m_on) {
        return;
    }
    for (const KvDeviceFootprint::CReadOnlyAttribute* attribute : AttributesOf(element)) {
        const std::string& name = attribute->GetNodeName();
        if (name == "sn" || name == "deviceId" || name == "responsiblePerson") {
            Value(*attribute);
        }
    }
    for (const CStep& step : StepsBelow(element)) {
        Learn(*step.element);
    }
}

std::string CRedaction::Value(const KvDeviceFootprint::CReadOnlyAttribute& attribute)
{
    return Value(attribute.GetNodeName(), Utf8(attribute.GetValue()));
}

std::string CRedaction::Value(const std::string& attributeName, const std::string& value)
{
    if (!m_on) {
        return value;
    }
    if (attributeName == "sn") {
        return SerialNumber(value);
    }
    if (attributeName == "deviceId") {
        return DeviceId(value);
    }
    if (attributeName == "responsiblePerson") {
        return Person(value);
    }
    return HasOwnForm(attributeName) ? value : Text(value);
}

std::string CRedaction::DeviceId(const std::string& value)
{
    std::string hidden = Hidden(m_devices, "device-", value);
    const std::size_t begin = value.find('-');
    const std::size_t end = begin == std::string::npos ? begin : value.find('-', begin + 1);
    if (end != std::string::npos) {
        SerialNumber(value.substr(begin + 1, end - begin - 1));
    }
    return hidden;
}

std::string CRedaction::Hidden(TNames& names, const char* prefix, const std::string& value)
{
    if (!m_on || value.empty()) {
        return value;
    }
    const auto [place, isNew] = names.try_emplace(value);
    if (isNew) {
        place->second = prefix + std::to_string(names.size());
        if (value.size() >= shortestWord && m_words.emplace(place->first, &place->second).second &&
            value.size() <= longestWord) {
            m_lengths.insert(value.size());
        }
    }
    return place->second;
}

std::string CRedaction::Text(const std::string& text) const
{
    if (!m_on || m_words.empty()) {
        return text;
    }
    const auto whole = m_words.find(text);
    if (whole != m_words.end()) {
        return *whole->second;
    }
    std::string result;
    for (std::size_t position = 0; position < text.size();) {
        const std::string* hidden = nullptr;
        std::size_t length = 1;
        // The longest first: a device id holds a serial number.
        for (auto candidate = m_lengths.rbegin();
             candidate != m_lengths.rend() && hidden == nullptr && IsBoundary(text, position); ++candidate) {
            if (*candidate <= text.size() - position && IsBoundary(text, position + *candidate)) {
                const auto found = m_words.find(std::string_view(text).substr(position, *candidate));
                if (found != m_words.end()) {
                    hidden = found->second;
                    length = *candidate;
                }
            }
        }
        if (hidden == nullptr) {
            result += text[position];
        } else {
            result += *hidden;
        }
        position += length;
    }
    return result;
}

} // namespace footprint
