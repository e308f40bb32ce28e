#ifndef NYXCONFIG_IMAINTENANCEDATADESCITEMEX_H
#define NYXCONFIG_IMAINTENANCEDATADESCITEMEX_H

#include <list>

#include "IMaintenanceDataDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * The setters of the maintenance data: each stores what the getter of the same name returns.
 *
 * setMaintenances() replaces the list and does not delete the earlier entries.
 */
class NYXCONFIG_EXPORT IMaintenanceDataDescItemEx : public IMaintenanceDataDescItem
{
public:
    virtual void setOperatingHours(long operatingHours) = 0;
    virtual void setMakeAndBreakCycles(long makeAndBreakCycles) = 0;
    virtual void setMaintenances(const std::list<IMaintenanceDescItem*>& maintenances) = 0;
};

} // namespace KvOrdo

#endif
