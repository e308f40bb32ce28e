#ifndef NYXCONFIG_REDACTION_H
#define NYXCONFIG_REDACTION_H

#include "DeviceFootprint.h"

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

namespace footprint
{

/**
 * Hides serial numbers, device ids and persons. Each gets a name such as "serial-1", the same one wherever it stands
 * and in whatever document: what was equal stays equal, and what was different stays different. One object serves a
 * whole run.
 *
 * What is to be hidden is the content of the fields for it (`sn`, `deviceId`, `responsiblePerson`); the serial number
 * in a device id is one too, so boards, device ids and the folders named after them still tell that they belong
 * together. Learn() gathers it. Other texts are searched for what was learned, such as a file's name.
 */
class CRedaction
{
public:
    /// A redaction that is off gives everything back as it is.
    explicit CRedaction(bool on) : m_on(on) {}
    CRedaction(const CRedaction&) = delete;
    CRedaction& operator=(const CRedaction&) = delete;
    ~CRedaction() = default;

    bool IsOn() const { return m_on; }

    /// Gathers what is to be hidden in an element and all below it, in the order in which it stands there.
    void Learn(const KvDeviceFootprint::CElementNode& element);

    /// The value of an attribute as it may be shown, in UTF-8.
    std::string Value(const KvDeviceFootprint::CReadOnlyAttribute& attribute);
    /// The same for a value that is known by its attribute's name.
    std::string Value(const std::string& attributeName, const std::string& value);

    std::string SerialNumber(const std::string& value) { return Hidden(m_serials, "serial-", value); }
    std::string DeviceId(const std::string& value);
    std::string Person(const std::string& value) { return Hidden(m_persons, "person-", value); }
    /// Any other text: whatever was learned until now is hidden where it stands as a word of its own.
    std::string Text(const std::string& text) const;

private:
    using TNames = std::unordered_map<std::string, std::string>;

    std::string Hidden(TNames& names, const char* prefix, const std::string& value);

    bool m_on;
    TNames m_serials;
    TNames m_devices;
    TNames m_persons;
    /// Of all three, what is long enough to be searched for, and its names; both stand in the tables above.
    std::unordered_map<std::string_view, const std::string*> m_words;
    std::set<std::size_t> m_lengths; ///< Of those that can be part of a longer text.
};

} // namespace footprint

#endif
