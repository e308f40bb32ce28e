#ifndef NYXCONFIG_REPORTCHANGES_H
#define NYXCONFIG_REPORTCHANGES_H

#include "DeviceFootprint.h"
#include "Redaction.h"

#include <cstddef>
#include <string>
#include <vector>

namespace footprint
{

/// A difference of an entry to the one before it, in words.
struct CReportChange
{
    std::string where;    ///< what has changed, such as "Board CTRL (1001): Serial number"
    std::string happened; ///< what has happened to it, such as "added"; empty for a value that has changed
    std::string details;  ///< more about what was added or removed; may be empty
    std::string former;   ///< the value before; empty if there was none
    std::string present;  ///< the value now; empty if there is none
    std::string rule;     ///< the rule that makes it decide; empty if it does not
};

/// What is different between two entries of a history.
struct CReportChanges
{
    /// More are counted only.
    static constexpr std::size_t most = 40;

    std::vector<CReportChange> changes; ///< those that decide first
    std::size_t leftOut = 0;
    bool isDecided = false; ///< whether the default rules ask for a new entry
};

/// Compares two footprints by the default rules. What differs always, date and checksum, is not counted.
CReportChanges ChangesBetween(const KvDeviceFootprint::CDeviceFootprint& former,
                              const KvDeviceFootprint::CDeviceFootprint& present, CRedaction& redaction);

} // namespace footprint

#endif
