#include "CBPartIdentificationDescItem.h"

namespace KvOrdo
{

CBPartIdentificationDescItem::~CBPartIdentificationDescItem() = default;

} // namespace KvOrdo
