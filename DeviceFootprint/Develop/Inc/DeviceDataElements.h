#ifndef NYXCONFIG_DEVICEDATAELEMENTS_H
#define NYXCONFIG_DEVICEDATAELEMENTS_H

#include "ElementNodeList.h"
#include "ElementTable.h"
#include "MaintenanceElements.h"
#include "SharedElements.h"

/**
 * @file
 * The identity of the instrument as a whole:
 *
 *     DeviceData
 *       TestInstructionList   of TestInstruction
 *       MaintenanceData       (MaintenanceElements.h)
 *       ServiceData           (SharedElements.h)
 */

namespace KvDeviceFootprint
{

/// A test instruction by which the device was tested. Has no identity: two entries of one name both stay.
class NYXCONFIG_EXPORT CTestInstruction : public CElement<CTestInstruction>
{
    DFP_ELEMENT(CTestInstruction, "TestInstruction")

public:
    DFP_ATTRIBUTE(name);    ///< Name.
    DFP_ATTRIBUTE(version); ///< Version.
    DFP_ELEMENT_END
};

class NYXCONFIG_EXPORT CTestInstructionList : public CElementNodeList<CTestInstruction>
{
    DFP_LIST(CTestInstructionList, "TestInstructionList")
};

/// The device. Its number fields name the device's files and folders.
class NYXCONFIG_EXPORT CDeviceData : public CElement<CDeviceData>
{
    DFP_ELEMENT(CDeviceData, "DeviceData")

public:
    DFP_ATTRIBUTE(deviceId);          ///< Fields joined by "-": part number, serial number, at least one more.
    DFP_ATTRIBUTE(partChangeIndex);   ///< Part change index, dd.dd.
    DFP_ATTRIBUTE(type);              ///< Device type.
    DFP_ATTRIBUTE(partName);          ///< Part name of the device.
    DFP_ATTRIBUTE(productDate);       ///< Production date, yyyy-mm-dd.
    DFP_ATTRIBUTE(upgradeType);       ///< Upgrade type.
    DFP_ATTRIBUTE(upgradePartNumber); ///< Upgrade part number.

    DFP_CHILD(CTestInstructionList, testInstructions);
    DFP_CHILD(CMaintenanceData, maintenanceData);
    DFP_CHILD(CServiceData, serviceData);
    DFP_ELEMENT_END

public:
    /// The text of `deviceId` before its first "-", perhaps empty. False, with @p partNumber left alone and nothing
    /// reported, if there is no "-".
    bool GetPartNumber(std::string& partNumber) const;
    /// The text of `deviceId` between its first and its second "-", perhaps empty. False as above if there is none.
    bool GetSerialNumber(std::string& serialNumber) const;
};

} // namespace KvDeviceFootprint

#endif
