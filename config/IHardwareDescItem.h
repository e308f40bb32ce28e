#ifndef NYXCONFIG_IHARDWAREDESCITEM_H
#define NYXCONFIG_IHARDWAREDESCITEM_H

#include "nyxconfig_export.h"

namespace KvOrdo
{

/// Any piece of hardware. It has no operations: boards are described by IHwBoardDescItem.
class NYXCONFIG_EXPORT IHardwareDescItem
{
};

} // namespace KvOrdo

#endif
