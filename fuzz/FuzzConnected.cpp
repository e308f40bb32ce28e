// Adds any bytes as a connected device, twice, and saves the document that holds it.

#include "DeviceFootprint.h"
#include "FuzzSupport.h"

#include <sstream>
#include <stdexcept>

using namespace KvDeviceFootprint;

namespace
{

/// Whether the text was added; if not, the list must be as it was.
bool Add(CConnectedDeviceList& devices, const std::string& text)
{
    const auto former = devices.m_connectedDeviceStrings;
    bool added = false;
    try {
        added = devices.AddConnectedDeviceFromString(text);
    } catch (const std::out_of_range&) { // blank lines
        return false;
    }
    NyxFuzz::Require(devices.m_connectedDeviceStrings.size() == former.size() + (added ? 1 : 0), "one text, or none");
    NyxFuzz::Require(added || devices.m_connectedDeviceStrings == former, "a failure leaves the list as it was");
    return added;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    NyxFuzz::Silence();
    CDeviceFootprint parent;
    parent.m_deviceData.m_deviceId = "1101.2345.02-100123-ab";
    const std::string text = NyxFuzz::TextOf(data, size);
    const bool added = Add(*parent.m_pConnectedDevices, text);
    NyxFuzz::Require(Add(*parent.m_pConnectedDevices, text) == added, "adding again gives the same");

    std::string saved;
    NyxFuzz::Require(parent.GetDeviceFootprintString(false, saved), "the document is saved");
    std::istringstream input(saved);
    try {
        CDeviceFootprint().Load(input, "saved");
    } catch (const std::out_of_range&) { // blank lines in the text
    }
    return 0;
}
