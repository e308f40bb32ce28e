// Reads any bytes as a link file. Absolute paths that it gives are written and read back.

#include "DeviceFootprintLink.h"
#include "FuzzSupport.h"

#include <stdexcept>

using namespace KvDeviceFootprint;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    NyxFuzz::Silence();
    const NyxFuzz::MemoryFile file(NyxFuzz::TextOf(data, size));
    std::string latest;
    std::string history;
    try {
        DeviceFootprintLink().readInternal(file.Path(), latest, history);
    } catch (const std::out_of_range&) { // blank lines
        return 0;
    }
    const NyxFuzz::MemoryFile copy;
    if (!DeviceFootprintLink(copy.Path()).writeInternal(latest, history)) {
        return 0; // a relative path
    }
    std::string latestAgain;
    std::string historyAgain;
    NyxFuzz::Require(DeviceFootprintLink().readInternal(copy.Path(), latestAgain, historyAgain), "a link file is read");
    NyxFuzz::Require(latest == latestAgain && history == historyAgain, "the paths come back");
    return 0;
}
