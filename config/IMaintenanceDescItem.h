#ifndef NYXCONFIG_IMAINTENANCEDESCITEM_H
#define NYXCONFIG_IMAINTENANCEDESCITEM_H

#include <list>
#include <string>

#include "IMaintenanceTaskDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// One maintenance of the device or of a board, to be read.
class NYXCONFIG_EXPORT IMaintenanceDescItem
{
public:
    virtual ~IMaintenanceDescItem() = default;

    /// Who did the maintenance; together with the date the key of the entry.
    virtual std::wstring getResponsiblePerson() const = 0;
    /// Day of the maintenance in the form yyyy-mm-dd, or empty.
    virtual std::wstring getMaintenanceDate() const = 0;
    /// What made the record.
    virtual std::wstring getGeneratedBy() const = 0;
    /// The tasks in their order, as a new list of the same pointers; the item does not own them.
    virtual std::list<IMaintenanceTaskDescItem*> getMaintenanceTasks() const = 0;
};

} // namespace KvOrdo

#endif
