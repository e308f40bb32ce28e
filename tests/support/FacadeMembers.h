#ifndef NYXCONFIG_FACADEMEMBERS_H
#define NYXCONFIG_FACADEMEMBERS_H

#include "CNyxConfig.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace NyxTest
{

/// The facade's document, which no operation of it gives out.
KvDeviceFootprint::CDeviceFootprint& Document(KvOrdo::CNyxConfig& config);

/// Which reading of a board the facade has chosen.
std::int32_t TestKeyDependency(KvOrdo::CNyxConfig& config);

/// Where the facade's data members lie in it: boards, products, device data, software data, document, reading.
std::vector<std::size_t> MemberOffsets(KvOrdo::CNyxConfig& config);

} // namespace NyxTest

#endif
