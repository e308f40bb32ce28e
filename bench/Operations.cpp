#include "Operations.h"

#include "Files.h"

namespace bench
{

using namespace KvDeviceFootprint;

namespace
{

void Expect(bool done)
{
    if (!done) {
        Fail("nyxconfig: " + CDeviceFootprint::GetLastError());
    }
}

} // namespace

void Load(const std::string& file, CDeviceFootprint& footprint)
{
    Expect(footprint.Load(file));
}

void Save(CDeviceFootprint& footprint, const std::string& folder)
{
    Expect(footprint.SaveInternal(folder, false));
}

void Validate(CDeviceFootprint& footprint)
{
    if (!footprint.ValidateChecksum()) { // which gives no words
        Fail("nyxconfig: wrong checksum");
    }
}

void Compare(const CDeviceFootprint& lhs, const CDeviceFootprint& rhs, const CComparatorRules& rules)
{
    if (!lhs.CompareTo(rhs, rules)) {
        Fail("nyxconfig: the same footprints differ");
    }
}

} // namespace bench
