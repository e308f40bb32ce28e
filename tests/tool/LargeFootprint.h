#ifndef NYXCONFIG_LARGEFOOTPRINT_H
#define NYXCONFIG_LARGEFOOTPRINT_H

#include <cstddef>
#include <string>

namespace NyxTest
{

/// The text of a footprint with so many boards in a tree of threes, "BOARD-1" to "BOARD-count", about 170 bytes each.
/// It has no checksum.
inline std::string LargeFootprint(std::size_t count)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
                       "<DeviceFootprint formatVersion=\"02.06\" creationDate=\"2015-03-01T08:05:59\">\n"
                       "  <DeviceData deviceId=\"1111.2222.33-100001-x\"/>\n  <HardwareData>\n    <HardwareList>\n";
    for (std::size_t number = 1; number <= count; ++number) {
        const std::string id = std::to_string(number);
        text += "      <Hardware id=\"" + id + "\" partNumber=\"1234.5678.02\" sn=\"" +
                std::to_string(100000 + number) + "\" name=\"BOARD-" + id + "\" parentId=\"" +
                std::to_string(number / 3) + "\">\n" + "        <MaintenanceData operatingHours=\"" + id +
                "\"/>\n      </Hardware>\n";
    }
    return text + "    </HardwareList>\n  </HardwareData>\n</DeviceFootprint>\n";
}

} // namespace NyxTest

#endif
