#include "HwProgrammablePartDescItem.h"

namespace KvOrdo
{

HwProgrammablePartDescItem::~HwProgrammablePartDescItem() = default;

} // namespace KvOrdo
