#include "HistoryEntries.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <tuple>

namespace footprint
{

namespace fs = std::filesystem;
using KvDeviceFootprint::CDeviceFootprint;

namespace
{

constexpr std::string_view prefix = "DeviceFootprint_";
constexpr std::string_view suffix = ".xml";

/// "yyyy-mm-ddThh-mm-ss", or the date alone in a name that somebody gave by hand
bool IsDate(const std::string& text)
{
    constexpr std::string_view form = "0000-00-00T00-00-00";
    constexpr std::size_t dateSize = form.find('T');
    return (text.size() == form.size() || text.size() == dateSize) &&
           std::equal(text.begin(), text.end(), form.begin(), [](char one, char pattern) {
               return pattern == '0' ? one >= '0' && one <= '9' : one == pattern;
           });
}

CHistoryName ParseName(const std::string& file)
{
    CHistoryName name;
    name.file = file;
    name.deviceId = file.substr(prefix.size(), file.size() - prefix.size() - suffix.size());
    const std::size_t end = name.deviceId.rfind('_');
    if (end != std::string::npos && IsDate(name.deviceId.substr(end + 1))) {
        name.date = name.deviceId.substr(end + 1);
        name.deviceId.erase(end);
    }
    return name;
}

} // namespace

EEntryState StateOf(KvDeviceFootprint::CDeviceFootprintData& document)
{
    if (document.m_checksum.IsEmpty()) {
        return EEntryState::eNoChecksum;
    }
    const KvDeviceFootprint::CReadOnlyAttribute checksum = document.m_checksum;
    const bool isRight = document.ValidateChecksum();
    document.m_checksum = checksum;
    return isRight ? EEntryState::eIntact : EEntryState::eWrongChecksum;
}

std::vector<CHistoryName> HistoryNames(const std::string& folder)
{
    std::vector<CHistoryName> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        const std::string file = entry.path().filename().string();
        const bool isEntry = file.size() > prefix.size() + suffix.size() &&
                             file.compare(0, prefix.size(), prefix) == 0 &&
                             file.compare(file.size() - suffix.size(), suffix.size(), suffix) == 0;
        std::error_code error;
        if (isEntry && entry.status(error).type() != fs::file_type::directory) {
            names.push_back(ParseName(file));
        }
    }
    std::sort(names.begin(), names.end(), [](const CHistoryName& left, const CHistoryName& right) {
        return std::tie(left.date, left.file) < std::tie(right.date, right.file);
    });
    return names;
}

CLatestName LatestName(const std::string& folder)
{
    CLatestName latest;
    std::ifstream file(fs::path(folder) / CDeviceFootprint::LatestHistoryEntryFileName, std::ios::binary);
    std::getline(file, latest.file);
    latest.isThere = !latest.file.empty();
    if (latest.isThere) {
        // As the library does it: the folder with the name behind it, whatever that is.
        std::error_code error;
        const bool isFile = fs::is_regular_file(folder + "/" + latest.file, error);
        latest.isDangling = !isFile;
    }
    return latest;
}

} // namespace footprint
