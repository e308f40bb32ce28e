#ifndef NYXCONFIG_MAINTENANCEELEMENTS_H
#define NYXCONFIG_MAINTENANCEELEMENTS_H

#include "ElementNodeList.h"
#include "ElementTable.h"
#include "SharedElements.h"

/**
 * @file
 * The service life of the device and of each board; both hold one MaintenanceData of the same form:
 *
 *     MaintenanceData
 *       Maintenances          of Maintenance
 *         MaintenanceTasks    of MaintenanceTask
 *       MaintenanceInfos      of MaintenanceInfo
 *         Properties          (SharedElements.h)
 */

namespace KvDeviceFootprint
{

/// A task of a maintenance.
class NYXCONFIG_EXPORT CMaintenanceTask : public CElement<CMaintenanceTask>
{
    DFP_ELEMENT(CMaintenanceTask, "MaintenanceTask")

public:
    DFP_ATTRIBUTE(name);   ///< Name of the task. Identity key.
    DFP_ATTRIBUTE(done);   ///< "true" or "false".
    DFP_ATTRIBUTE(result); ///< Result of the task.
    DFP_ELEMENT_END

public:
    /// Equal `name`.
    bool IsSameEntity(const CMaintenanceTask& other) const;
};

class NYXCONFIG_EXPORT CMaintenanceTasks : public CElementNodeList<CMaintenanceTask>
{
    DFP_LIST(CMaintenanceTasks, "MaintenanceTasks")
};

/// A maintenance that was done.
class NYXCONFIG_EXPORT CMaintenance : public CElement<CMaintenance>
{
    DFP_ELEMENT(CMaintenance, "Maintenance")

public:
    DFP_ATTRIBUTE(responsiblePerson); ///< Who did the maintenance. Identity key.
    DFP_ATTRIBUTE(maintenanceDate);   ///< Date, yyyy-mm-dd. Identity key.
    DFP_ATTRIBUTE(generatedBy);       ///< What generated the record.

    DFP_CHILD(CMaintenanceTasks, maintenanceTasks);
    DFP_ELEMENT_END

public:
    /// Equal `responsiblePerson` and equal `maintenanceDate`; the tasks do not count.
    bool IsSameEntity(const CMaintenance& other) const;
};

class NYXCONFIG_EXPORT CMaintenances : public CElementNodeList<CMaintenance>
{
    DFP_LIST(CMaintenances, "Maintenances")
};

/// A free name and value with properties.
class NYXCONFIG_EXPORT CMaintenanceInfo : public CElement<CMaintenanceInfo>
{
    DFP_ELEMENT(CMaintenanceInfo, "MaintenanceInfo")

public:
    DFP_ATTRIBUTE(name);  ///< Name of the entry. Identity key.
    DFP_ATTRIBUTE(value); ///< Value of the entry.

    DFP_CHILD(CProperties, properties);
    DFP_ELEMENT_END

public:
    /// Equal `name`.
    bool IsSameEntity(const CMaintenanceInfo& other) const;
};

/// Unlike the other lists, this one knows its name also before the library's static names are initialised:
/// GetElementName() returns a text of its own, which equals s_ElementName and must go on doing so.
class NYXCONFIG_EXPORT CMaintenanceInfos : public CElementNodeList<CMaintenanceInfo>
{
    DFP_LIST(CMaintenanceInfos, "MaintenanceInfos")
};

/// Running counters and records.
class NYXCONFIG_EXPORT CMaintenanceData : public CElement<CMaintenanceData>
{
    DFP_ELEMENT(CMaintenanceData, "MaintenanceData")

public:
    DFP_ATTRIBUTE(operatingHours);     ///< Operating hours, integer.
    DFP_ATTRIBUTE(makeAndBreakCycles); ///< Number of make and break cycles, integer.

    DFP_CHILD(CMaintenances, maintenances);
    DFP_CHILD(CMaintenanceInfos, maintenanceInfos);
    DFP_ELEMENT_END
};

} // namespace KvDeviceFootprint

#endif
