#include "CProductDescItem.h"

namespace KvOrdo
{

CProductDescItem::~CProductDescItem() = default;

} // namespace KvOrdo
