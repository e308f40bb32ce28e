#include "ItemOwner.h"

#include "CMaintenanceDataDescItem.h"
#include "CMaintenanceDescItem.h"
#include "SoftwareDescItem.h"

namespace KvOrdo
{

namespace
{

void DeleteTasks(const IMaintenanceDescItem& item)
{
    for (IMaintenanceTaskDescItem* task : item.getMaintenanceTasks()) {
        delete task;
    }
}

} // namespace

void CItemDeleter::operator()(CMaintenanceDescItem* item) const
{
    DeleteTasks(*item);
    delete item;
}

void CItemDeleter::operator()(CMaintenanceDataDescItem* item) const
{
    for (const IMaintenanceDescItem* maintenance : item->getMaintenances()) {
        DeleteTasks(*maintenance);
    }
    delete item;
}

void CItemDeleter::operator()(SoftwareDescItem* item) const
{
    for (ISoftwareDescItem* nested : item->getSoftwareItems()) {
        (*this)(static_cast<SoftwareDescItem*>(nested)); // a load makes no other kind
    }
    delete item;
}

} // namespace KvOrdo
