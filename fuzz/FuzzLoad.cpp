// Loads any bytes. What loads is saved, and the saved text must load as the same tree and save as the same bytes.

#include "DeviceFootprint.h"
#include "FuzzSupport.h"
#include "SameTree.h"

#include <sstream>
#include <stdexcept>

using namespace KvDeviceFootprint;

namespace
{

bool HasContent(const CDeviceFootprint& footprint)
{
    std::list<CElementNode*> children;
    footprint.GetChildElements(children);
    for (const CElementNode* child : children) {
        if (!child->IsEmpty()) {
            return true;
        }
    }
    return false;
}

void CheckSave(CDeviceFootprint& footprint)
{
    std::string saved;
    if (!footprint.GetDeviceFootprintString(false, saved)) {
        return; // a connected device's checksum is wrong
    }
    std::istringstream input(saved);
    CDeviceFootprint again;
    // A root that holds nothing is written without its end, and so does not load.
    NyxFuzz::Require(again.Load(input) == HasContent(footprint), "a saved document loads");
    NyxFuzz::Require(NyxFuzz::IsSameTree(footprint, again), "the loaded tree is the saved one");
    NyxFuzz::Require(again.ValidateChecksum(), "the saved checksum is right");
    std::string savedAgain;
    NyxFuzz::Require(again.GetDeviceFootprintString(false, savedAgain), "the loaded tree is saved");
    NyxFuzz::Require(saved == savedAgain, "the saved bytes are the same");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    NyxFuzz::Silence();
    std::istringstream input(NyxFuzz::TextOf(data, size));
    CDeviceFootprint footprint;
    bool loaded = false;
    try {
        loaded = footprint.Load(input, "input");
    } catch (const std::out_of_range&) { // blank lines
    }
    if (loaded) {
        CheckSave(footprint);
    }
    return 0;
}
