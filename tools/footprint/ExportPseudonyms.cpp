#include "ExportPseudonyms.h"

#include "Checksum.h"

#include <stdexcept>

#include <sys/random.h>

namespace footprint
{

CExportPseudonyms::CExportPseudonyms()
{
    if (getrandom(m_secret.data(), m_secret.size(), 0) != static_cast<ssize_t>(m_secret.size())) {
        throw std::runtime_error("this machine gives no random numbers");
    }
}

std::string CExportPseudonyms::Value(const std::string& attribute, const std::string& value) const
{
    if (attribute == "sn") {
        return "serial-" + Name(value);
    }
    if (attribute == "deviceId") {
        return "device-" + Name(value);
    }
    if (attribute == "responsiblePerson") {
        return "person-" + Name(value);
    }
    return value;
}

std::string CExportPseudonyms::Name(const std::string& value) const
{
    // The secret on both sides, so that nobody can lengthen a value whose name he knows.
    KvDeviceFootprint::CMD5Checksum digest;
    digest.init();
    digest.add(m_secret.data(), m_secret.size());
    digest.add(value);
    digest.add(m_secret.data(), m_secret.size());
    KvDeviceFootprint::CMD5ChecksumContainer result;
    digest.finalize(result);
    std::string name;
    result.toHex(name);
    return name.substr(0, 16);
}

} // namespace footprint
