#include "MaintenanceTaskDescItem.h"

namespace KvOrdo
{

MaintenanceTaskDescItem::~MaintenanceTaskDescItem() = default;

} // namespace KvOrdo
