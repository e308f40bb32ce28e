#ifndef NYXCONFIG_CLOCALE_H
#define NYXCONFIG_CLOCALE_H

#include <clocale>

namespace KvDeviceFootprint
{

/// The "C" locale. Files mean the same whatever locale the application has set, so conversions name this one. Lives as
/// long as the process.
locale_t CLocale();

} // namespace KvDeviceFootprint

#endif
