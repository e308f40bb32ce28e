#include "ReportHistory.h"

#include "Loading.h"
#include "ReportValues.h"
#include "Terminal.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <utility>

namespace footprint
{

namespace fs = std::filesystem;
using KvDeviceFootprint::CDeviceFootprint;

namespace
{

constexpr const char* beginOfNames = "DeviceFootprint_";

/// The date in the name of an entry; the whole name if there is none.
std::string DateInName(const std::string& name)
{
    const std::size_t begin = name.rfind('_') + 1;
    const std::string date = name.substr(begin, name.size() - std::min(name.size(), begin + 4));
    return Seconds(date) ? date : name;
}

/// A file's name may be all that is known of a device whose footprint can not be read.
void LearnName(const std::string& name, CRedaction& redaction)
{
    const std::size_t begin = std::string(beginOfNames).size();
    const std::size_t end = name.rfind('_');
    if (name.rfind(beginOfNames, 0) == 0 && end != std::string::npos && end > begin) {
        redaction.DeviceId(name.substr(begin, end - begin));
    }
}

/// The names of the entries, in the order of their dates.
std::vector<std::string> EntryNames(const std::string& folder)
{
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind(beginOfNames, 0) == 0 && entry.path().extension() == ".xml" && !entry.is_directory()) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end(), [](const std::string& left, const std::string& right) {
        return std::make_pair(DateInName(left), left) < std::make_pair(DateInName(right), right);
    });
    return names;
}

std::string LatestName(const std::string& folder, const std::vector<std::string>& names,
                       std::vector<std::string>& remarks)
{
    std::ifstream file(fs::path(folder) / CDeviceFootprint::LatestHistoryEntryFileName, std::ios::binary);
    std::string name;
    std::getline(file, name);
    if (name.empty()) {
        remarks.emplace_back("No file \".latest\" says which entry is the latest; the youngest one is taken for it.");
        return names.back();
    }
    if (std::find(names.begin(), names.end(), name) == names.end()) {
        remarks.push_back("The file \".latest\" names no entry of this folder: \"" + Shortened(name, 200) +
                          "\". The youngest one is taken for the latest.");
        return names.back();
    }
    return name;
}

} // namespace

EIntegrity Integrity(KvDeviceFootprint::CDeviceFootprintData& document)
{
    if (document.m_checksum.IsEmpty()) {
        return EIntegrity::eNoChecksum;
    }
    return document.ValidateChecksum() ? EIntegrity::eIntact : EIntegrity::eWrongChecksum;
}

CReportHistory ReadReportHistory(const std::string& folder, CRedaction& redaction)
{
    CReportHistory history;
    const std::vector<std::string> names = EntryNames(folder);
    if (names.empty()) {
        return history;
    }
    const std::string latest = LatestName(folder, names, history.remarks);
    std::shared_ptr<CDeviceFootprint> former;
    std::set<std::wstring> devices;
    for (const std::string& name : names) {
        LearnName(name, redaction);
        CReportEntry entry;
        entry.file = name;
        entry.date = DateInName(name);
        entry.isLatest = name == latest;
        entry.isAfterDamage = !history.entries.empty() && history.entries.back().IsDamaged();
        const auto document = std::make_shared<CDeviceFootprint>();
        const std::string file = (fs::path(folder) / name).string();
        if (!LoadFootprint(file, *document, entry.error)) {
            const std::string beginning = Harmless(file) + ": ";
            if (entry.error.rfind(beginning, 0) == 0) {
                entry.error.erase(0, beginning.size());
            }
            entry.integrity = EIntegrity::eUnreadable;
            history.entries.push_back(std::move(entry));
            continue;
        }
        entry.integrity = Integrity(*document);
        redaction.Learn(*document);
        if (Seconds(redaction.Value(document->m_creationDate))) {
            entry.date = redaction.Value(document->m_creationDate);
        }
        entry.hours = WholeNumber(redaction.Value(document->m_deviceData.m_maintenanceData.m_operatingHours));
        if (former) {
            entry.changes = ChangesBetween(*former, *document, redaction);
        }
        devices.insert(document->m_deviceData.m_deviceId.GetValue());
        // A former latest entry is replaced by a later one, unless it is the one that ".latest" names.
        const bool isBetter = history.shown == nullptr || !history.entries[history.shownEntry].isLatest;
        history.entries.push_back(std::move(entry));
        if (isBetter) {
            history.shown = document;
            history.shownEntry = history.entries.size() - 1;
        }
        former = document;
    }
    if (devices.size() > 1) {
        history.remarks.push_back("The entries are of " + std::to_string(devices.size()) + " devices.");
    }
    return history;
}

} // namespace footprint
