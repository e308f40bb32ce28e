#include "ErrorReport.h"

#include "AttributeNode.h"
#include "CNyxConfigException.h"

#include <iostream>

namespace KvOrdo
{

void WriteError(const std::string& text)
{
    std::cerr << text << std::endl;
}

void WriteError(const std::wstring& text)
{
    if (std::wcerr << text << std::endl) {
        return;
    }
    // The C library ties standard error to the width that was written first, and the "C" locale takes ASCII only.
    std::wcerr.clear();
    WriteError(KvDeviceFootprint::NarrowText(text));
}

void ReportError(const std::string& text, bool throwOnError)
{
    WriteError(text);
    if (throwOnError) {
        throw CNyxConfigException(text);
    }
}

} // namespace KvOrdo
