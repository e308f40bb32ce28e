#include "CMaintenanceDataDescItem.h"

namespace KvOrdo
{

CMaintenanceDataDescItem::~CMaintenanceDataDescItem()
{
    for (IMaintenanceDescItem* maintenance : m_maintenances) {
        delete maintenance;
    }
}

} // namespace KvOrdo
