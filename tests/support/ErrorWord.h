#ifndef NYXCONFIG_ERRORWORD_H
#define NYXCONFIG_ERRORWORD_H

#include "DeviceFootprint.h"

#include <string>

namespace NyxTest
{

/// Watches the process's error word: it starts as a text that no operation reports, with exceptions off, and is left
/// so.
class ErrorWord
{
public:
    ErrorWord() { Reset(); }
    ErrorWord(const ErrorWord&) = delete;
    ErrorWord& operator=(const ErrorWord&) = delete;
    ~ErrorWord() { Reset(); }

    static void Reset()
    {
        KvDeviceFootprint::CDeviceFootprint::DisableExceptions();
        KvDeviceFootprint::CDeviceFootprint::SetLastError(Untouched());
    }
    /// What was reported since construction or the last Take(); Untouched() if nothing was.
    static std::string Text() { return KvDeviceFootprint::CDeviceFootprint::GetLastError(); }
    static std::string Take()
    {
        std::string text = Text();
        Reset();
        return text;
    }
    static std::string Untouched() { return "(nothing reported)"; }
};

} // namespace NyxTest

#endif
