#ifndef NYXCONFIG_IMAINTENANCEDATADESCITEM_H
#define NYXCONFIG_IMAINTENANCEDATADESCITEM_H

#include <list>

#include "IMaintenanceDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * Operating data and maintenances of the device or of a board, to be read.
 *
 * It has no virtual destructor: delete an item through a pointer to its implementation.
 */
class NYXCONFIG_EXPORT IMaintenanceDataDescItem
{
public:
    /// Operating hours; -1 if not known.
    virtual long getOperatingHours() const = 0;
    /// Number of make and break cycles; -1 if not known.
    virtual long getMakeAndBreakCycles() const = 0;
    /// The maintenances in their order, as a new list of the same pointers; the item owns them.
    virtual std::list<IMaintenanceDescItem*> getMaintenances() const = 0;
};

} // namespace KvOrdo

#endif
