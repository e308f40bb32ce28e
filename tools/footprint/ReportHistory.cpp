#include "ReportHistory.h"

#include "Loading.h"
#include "ReportValues.h"
#include "Terminal.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

namespace footprint
{

namespace fs = std::filesystem;
using KvDeviceFootprint::CDeviceFootprint;

namespace
{

/// The name of the latest entry, or of the youngest one.
std::string LatestEntry(const std::string& folder, const std::vector<CHistoryName>& names,
                        std::vector<std::string>& remarks)
{
    const CLatestName latest = LatestName(folder);
    if (!latest.isThere) {
        remarks.emplace_back("No file \".latest\" says which entry is the latest; the youngest one is taken for it.");
        return names.back().file;
    }
    if (std::none_of(names.begin(), names.end(), [&](const auto& name) { return name.file == latest.file; })) {
        remarks.push_back("The file \".latest\" names no entry of this folder: \"" + Shortened(latest.file, 200) +
                          "\". The youngest one is taken for the latest.");
        return names.back().file;
    }
    return latest.file;
}

} // namespace

CReportHistory ReadReportHistory(const std::string& folder, CRedaction& redaction)
{
    CReportHistory history;
    const std::vector<CHistoryName> names = HistoryNames(folder);
    if (names.empty()) {
        return history;
    }
    const std::string latest = LatestEntry(folder, names, history.remarks);
    std::shared_ptr<CDeviceFootprint> former;
    std::set<std::wstring> devices;
    for (const CHistoryName& name : names) {
        redaction.DeviceId(name.deviceId); // all that is known of a device whose footprint can not be read
        CReportEntry entry;
        entry.file = name.file;
        entry.date = name.date.empty() ? name.file : name.date;
        entry.isLatest = name.file == latest;
        entry.isAfterDamage = !history.entries.empty() && IsDamaged(history.entries.back().state);
        const auto document = std::make_shared<CDeviceFootprint>();
        const std::string file = (fs::path(folder) / name.file).string();
        if (!LoadFootprint(file, *document, entry.error)) {
            const std::string beginning = Harmless(file) + ": ";
            if (entry.error.rfind(beginning, 0) == 0) {
                entry.error.erase(0, beginning.size());
            }
            entry.state = EEntryState::eUnreadable;
            history.entries.push_back(std::move(entry));
            continue;
        }
        entry.state = StateOf(*document);
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
