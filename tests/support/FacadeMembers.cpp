#include "FacadeMembers.h"

using KvDeviceFootprint::CDeviceFootprint;
using KvOrdo::CNyxConfig;

namespace NyxTest
{

namespace
{

CDeviceFootprint& DocumentMember(CNyxConfig& config);
std::int32_t& TestKeyDependencyMember(CNyxConfig& config);
std::vector<const void*> Addresses(CNyxConfig& config);

// Access checks do not apply to the arguments of an explicit instantiation, so it can hand out private members.
template<auto DocumentPointer, auto TestKeyDependencyPointer, auto... Members>
struct MemberAccess
{
    friend CDeviceFootprint& DocumentMember(CNyxConfig& config) { return config.*DocumentPointer; }
    friend std::int32_t& TestKeyDependencyMember(CNyxConfig& config) { return config.*TestKeyDependencyPointer; }
    friend std::vector<const void*> Addresses(CNyxConfig& config) { return {&(config.*Members)...}; }
};

template struct MemberAccess<&CNyxConfig::m_devFp, &CNyxConfig::m_testKeyDependency, &CNyxConfig::m_hwDescItems,
                             &CNyxConfig::m_productDescItems, &CNyxConfig::m_deviceData, &CNyxConfig::m_softwareData,
                             &CNyxConfig::m_devFp, &CNyxConfig::m_testKeyDependency>;

} // namespace

CDeviceFootprint& Document(CNyxConfig& config)
{
    return DocumentMember(config);
}

std::int32_t TestKeyDependency(CNyxConfig& config)
{
    return TestKeyDependencyMember(config);
}

std::vector<std::size_t> MemberOffsets(CNyxConfig& config)
{
    std::vector<std::size_t> offsets;
    for (const void* address : Addresses(config)) {
        offsets.push_back(
            static_cast<std::size_t>(static_cast<const char*>(address) - reinterpret_cast<const char*>(&config)));
    }
    return offsets;
}

} // namespace NyxTest
