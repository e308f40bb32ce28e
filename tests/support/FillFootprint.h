#ifndef NYXCONFIG_FILLFOOTPRINT_H
#define NYXCONFIG_FILLFOOTPRINT_H

#include "DeviceFootprint.h"

#include <cstddef>

namespace NyxTest
{

/// How much FillFootprint() puts in.
struct FillAmount
{
    std::size_t entries = 2;        ///< Entries of each list.
    std::size_t softwareLevels = 2; ///< Levels of software packages.
    std::size_t deviceLevels = 0;   ///< Levels of connected devices.
};

/**
 * Sets every attribute that is empty, but for checksums, and fills the lists. The values are different from one
 * another: attribute name, "-", running number, "-v", the numbers counting from 1 in the order of a file; behind each
 * fifth of them follow characters that a file escapes. Connected devices have a right checksum.
 */
void FillFootprint(KvDeviceFootprint::CDeviceFootprintData& footprint, const FillAmount& amount = {});

} // namespace NyxTest

#endif
