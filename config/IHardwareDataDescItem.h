#ifndef NYXCONFIG_IHARDWAREDATADESCITEM_H
#define NYXCONFIG_IHARDWAREDATADESCITEM_H

#include "nyxconfig_export.h"

namespace KvOrdo
{

/// The hardware data as a whole, to be read. It has no operations: the boards are reached through CNyxConfig.
class NYXCONFIG_EXPORT IHardwareDataDescItem
{
};

} // namespace KvOrdo

#endif
