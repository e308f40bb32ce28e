#ifndef NYXCONFIG_REPORTPAGE_H
#define NYXCONFIG_REPORTPAGE_H

#include "DeviceFootprint.h"
#include "Redaction.h"
#include "ReportHistory.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace footprint
{

/// What a report is made of.
struct CReport
{
    std::string source; ///< name of the file or folder
    /// Null if no entry of a history can be read. Not changed: finding out whether a checksum is right takes it away
    /// for a moment.
    KvDeviceFootprint::CDeviceFootprintData* device = nullptr;
    EEntryState integrity = EEntryState::eIntact;
    const CReportHistory* history = nullptr; ///< null for a single file
    std::vector<std::string> remarks;        ///< what to look at, beside the content
};

/// Writes the page. It needs no network and no other file, and allows its own script and style only.
void WriteReport(std::ostream& output, const CReport& report, CRedaction& redaction);

} // namespace footprint

#endif
