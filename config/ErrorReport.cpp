#include "ErrorReport.h"

#include "AttributeNode.h"
#include "CNyxConfigException.h"

#include <iostream>

namespace KvOrdo
{

// The C library ties standard error to the width that was written first, and the "C" locale takes ASCII only. A text
// that one stream can not take goes to the other.

void WriteError(const std::string& text)
{
    if (!(std::cerr << text << std::endl)) {
        std::cerr.clear();
        std::wcerr << KvDeviceFootprint::WidenText(text) << std::endl;
    }
}

void WriteError(const std::wstring& text)
{
    if (!(std::wcerr << text << std::endl)) {
        std::wcerr.clear();
        std::cerr << KvDeviceFootprint::NarrowText(text) << std::endl;
    }
}

void ReportError(const std::string& text, bool throwOnError)
{
    WriteError(text);
    if (throwOnError) {
        throw CNyxConfigException(text);
    }
}

} // namespace KvOrdo
