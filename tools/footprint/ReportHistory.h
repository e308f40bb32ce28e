#ifndef NYXCONFIG_REPORTHISTORY_H
#define NYXCONFIG_REPORTHISTORY_H

#include "DeviceFootprint.h"
#include "HistoryEntries.h"
#include "Redaction.h"
#include "ReportChanges.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace footprint
{

/// An entry of a history.
struct CReportEntry
{
    std::string file; ///< name without a folder
    std::string date;
    bool isLatest = false;
    EEntryState state = EEntryState::eIntact;
    std::string error;                     ///< why it can not be read
    std::optional<std::int64_t> hours;     ///< operating hours
    std::optional<CReportChanges> changes; ///< to the one before it that can be read
    bool isAfterDamage = false;            ///< whether the one before it is damaged: then a device writes a new one
};

/// The content of a history folder, as far as a report shows it.
struct CReportHistory
{
    std::vector<CReportEntry> entries; ///< the oldest first
    std::vector<std::string> remarks;  ///< what is wrong with the folder
    /// The latest entry, or the last one that could be read; null if none could.
    std::shared_ptr<KvDeviceFootprint::CDeviceFootprint> shown;
    std::size_t shownEntry = 0;
};

/// Reads all entries of a history folder, two at a time. No entries: not a history folder.
/// @throw std::filesystem::filesystem_error if the folder can not be read.
CReportHistory ReadReportHistory(const std::string& folder, CRedaction& redaction);

} // namespace footprint

#endif
