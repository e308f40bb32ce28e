#include "CServiceDescItem.h"

namespace KvOrdo
{

CServiceDescItem::~CServiceDescItem() = default;

} // namespace KvOrdo
