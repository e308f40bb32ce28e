#ifndef NYXCONFIG_LINKFILE_H
#define NYXCONFIG_LINKFILE_H

#include <string>

namespace NyxTest
{

/// The bytes of a link file. The paths stand in it as given; a null one stands for an element without the attribute.
inline std::string LinkFileText(const char* latest, const char* history)
{
    const auto element = [](const char* name, const char* path) {
        const std::string attribute = path == nullptr ? std::string() : " path=\"" + std::string(path) + "\"";
        return "  <" + std::string(name) + attribute + "/>\n";
    };
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<DeviceFootprintReference>\n" +
           element("LatestDeviceFootprint", latest) + element("DeviceFootprintHistoryFolder", history) +
           "</DeviceFootprintReference>\n";
}

inline std::string LinkFileText(const std::string& latest, const std::string& history)
{
    return LinkFileText(latest.c_str(), history.c_str());
}

} // namespace NyxTest

#endif
