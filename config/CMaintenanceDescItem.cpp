#include "CMaintenanceDescItem.h"

namespace KvOrdo
{

CMaintenanceDescItem::~CMaintenanceDescItem() = default;

} // namespace KvOrdo
