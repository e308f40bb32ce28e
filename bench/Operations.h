#ifndef NYXCONFIG_OPERATIONS_H
#define NYXCONFIG_OPERATIONS_H

#include "Comparators.h"
#include "DeviceFootprint.h"

#include <string>

namespace bench
{

// The operations of the library that are measured. Each throws std::runtime_error where the library says no.

void Load(const std::string& file, KvDeviceFootprint::CDeviceFootprint& footprint);
/// Into a file of the document's own name, with its checksum. Writes no link file, as no peer does.
void Save(KvDeviceFootprint::CDeviceFootprint& footprint, const std::string& folder);
void Validate(KvDeviceFootprint::CDeviceFootprint& footprint);
void Compare(const KvDeviceFootprint::CDeviceFootprint& lhs, const KvDeviceFootprint::CDeviceFootprint& rhs,
             const KvDeviceFootprint::CComparatorRules& rules);

} // namespace bench

#endif
