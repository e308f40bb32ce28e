#ifndef NYXCONFIG_CHECKS_H
#define NYXCONFIG_CHECKS_H

#include "ChecksFindings.h"
#include "DeviceFootprint.h"
#include "LineMap.h"

#include <string>

namespace footprint
{

/**
 * Checks what a footprint says: the checksum of each device on its own, the forms of values, ids that are there once,
 * parents that are there, and what the facade requires when it reads a footprint or writes one.
 *
 * @param lines where the elements of @p document stand.
 */
void CheckFootprint(const KvDeviceFootprint::CDeviceFootprint& document, const CLineMap& lines, CFindings& findings);

/// The checksum that the content of a device has, whatever the checksums of devices that are connected to it say of
/// themselves.
std::string ChecksumOf(const KvDeviceFootprint::CDeviceFootprintData& device);

} // namespace footprint

#endif
