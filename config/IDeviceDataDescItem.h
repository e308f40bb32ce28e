#ifndef NYXCONFIG_IDEVICEDATADESCITEM_H
#define NYXCONFIG_IDEVICEDATADESCITEM_H

#include <list>
#include <string>

#include "IMaintenanceDataDescItem.h"
#include "IServiceDescItem.h"
#include "ITestInstructionDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// What the device is: identity, production, test instructions, maintenance and services, to be read.
class NYXCONFIG_EXPORT IDeviceDataDescItem
{
public:
    virtual ~IDeviceDataDescItem() = default;

    /// Identity of the device, part of the name of its footprint file; a footprint does not take an empty one.
    virtual std::wstring getDeviceId() const = 0;
    /// Part change index in the form dd.dd, or empty.
    virtual std::wstring getPartChangeIndex() const = 0;
    /// Type of the device; a footprint can not be written without it.
    virtual std::wstring getType() const = 0;
    /// Part name of the device.
    virtual std::wstring getPartName() const = 0;
    /// Day of production in the form yyyy-mm-dd, or empty.
    virtual std::wstring getProductDate() const = 0;
    /// Type after an upgrade. Carried for the application: neither read from a footprint nor written to it.
    virtual std::wstring getUpgradeType() const = 0;
    /// Part number of an upgrade. Carried for the application: neither read from a footprint nor written to it.
    virtual std::wstring getUpgradePartNumber() const = 0;
    /// The device's maintenance data, or null if there is none; the item owns it.
    virtual IMaintenanceDataDescItem* getMaintenanceData() const = 0;
    /// The services in their order, as a new list of the same pointers; the item owns them.
    virtual std::list<IServiceDescItem*> getServices() const = 0;
    /// The test instructions in their order, as a new list of the same pointers; the item owns them.
    virtual std::list<ITestInstructionDescItem*> getTestInstructions() const = 0;
};

} // namespace KvOrdo

#endif
