#ifndef NYXCONFIG_ELEMENTCLASSES_H
#define NYXCONFIG_ELEMENTCLASSES_H

#include "DeviceFootprint.h"

#include <gtest/gtest.h>

#include <string>

namespace NyxTest
{

/// All concrete element classes but the lists.
using PlainElementClasses = testing::Types<
    KvDeviceFootprint::CDeviceFootprint, KvDeviceFootprint::CConnectedDevice, KvDeviceFootprint::CDeviceData,
    KvDeviceFootprint::CTestInstruction, KvDeviceFootprint::CMaintenanceData, KvDeviceFootprint::CMaintenance,
    KvDeviceFootprint::CMaintenanceTask, KvDeviceFootprint::CMaintenanceInfo, KvDeviceFootprint::CServiceData,
    KvDeviceFootprint::CService, KvDeviceFootprint::CProperty, KvDeviceFootprint::CHardwareData,
    KvDeviceFootprint::CHardware, KvDeviceFootprint::CBPartIdentification, KvDeviceFootprint::CProgrammablePart,
    KvDeviceFootprint::CProduct, KvDeviceFootprint::CSoftwareData, KvDeviceFootprint::CBios,
    KvDeviceFootprint::COperatingSystem, KvDeviceFootprint::CSoftware>;

/// A list class with its entry class and both tags.
template<class ListClass, class EntryClass>
struct ListOf
{
    using List = ListClass;
    using Entry = EntryClass;
};

/// All list classes.
using ListElementClasses =
    testing::Types<ListOf<KvDeviceFootprint::CHardwareList, KvDeviceFootprint::CHardware>,
                   ListOf<KvDeviceFootprint::CProgrammableParts, KvDeviceFootprint::CProgrammablePart>,
                   ListOf<KvDeviceFootprint::CProperties, KvDeviceFootprint::CProperty>,
                   ListOf<KvDeviceFootprint::CProductList, KvDeviceFootprint::CProduct>,
                   ListOf<KvDeviceFootprint::CSoftwareList, KvDeviceFootprint::CSoftware>,
                   ListOf<KvDeviceFootprint::CServices, KvDeviceFootprint::CService>,
                   ListOf<KvDeviceFootprint::CMaintenances, KvDeviceFootprint::CMaintenance>,
                   ListOf<KvDeviceFootprint::CMaintenanceInfos, KvDeviceFootprint::CMaintenanceInfo>,
                   ListOf<KvDeviceFootprint::CMaintenanceTasks, KvDeviceFootprint::CMaintenanceTask>,
                   ListOf<KvDeviceFootprint::CTestInstructionList, KvDeviceFootprint::CTestInstruction>,
                   ListOf<KvDeviceFootprint::CConnectedDeviceList, KvDeviceFootprint::CConnectedDevice>>;

} // namespace NyxTest

#endif
