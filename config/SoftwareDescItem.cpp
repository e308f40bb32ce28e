#include "SoftwareDescItem.h"

namespace KvOrdo
{

SoftwareDescItem::~SoftwareDescItem() = default;

} // namespace KvOrdo
