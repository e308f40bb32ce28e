#ifndef NYXCONFIG_EXCEPTIONSON_H
#define NYXCONFIG_EXCEPTIONSON_H

#include "DeviceFootprint.h"

namespace NyxTest
{

/// While it lives, a reported failure throws.
class ExceptionsOn
{
public:
    ExceptionsOn() { KvDeviceFootprint::CDeviceFootprint::EnableExceptions(true); }
    ExceptionsOn(const ExceptionsOn&) = delete;
    ExceptionsOn& operator=(const ExceptionsOn&) = delete;
    ~ExceptionsOn() { KvDeviceFootprint::CDeviceFootprint::DisableExceptions(); }
};

} // namespace NyxTest

#endif
