#ifndef NYXCONFIG_IDEVICEDATADESCITEMEX_H
#define NYXCONFIG_IDEVICEDATADESCITEMEX_H

#include <list>
#include <string>

#include "IDeviceDataDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * The setters of the device data: each stores what the getter of the same name returns.
 *
 * The setters of pointers and lists take ownership of what they are given and do not delete what they replace.
 */
class NYXCONFIG_EXPORT IDeviceDataDescItemEx : public IDeviceDataDescItem
{
public:
    virtual void setDeviceId(const std::wstring& deviceId) = 0;
    virtual void setPartChangeIndex(const std::wstring& partChangeIndex) = 0;
    virtual void setType(const std::wstring& type) = 0;
    virtual void setPartName(const std::wstring& partName) = 0;
    virtual void setProductDate(const std::wstring& productDate) = 0;
    virtual void setUpgradeType(const std::wstring& upgradeType) = 0;
    virtual void setUpgradePartNumber(const std::wstring& upgradePartNumber) = 0;
    virtual void setMaintenanceData(IMaintenanceDataDescItem* maintenanceData) = 0;
    virtual void setServices(const std::list<IServiceDescItem*>& services) = 0;
    virtual void setTestInstructions(const std::list<ITestInstructionDescItem*>& testInstructions) = 0;
};

} // namespace KvOrdo

#endif
