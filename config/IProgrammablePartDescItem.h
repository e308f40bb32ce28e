#ifndef NYXCONFIG_IPROGRAMMABLEPARTDESCITEM_H
#define NYXCONFIG_IPROGRAMMABLEPARTDESCITEM_H

#include "nyxconfig_export.h"

namespace KvOrdo
{

/// Any programmable part. It has no operations: the parts of a board are described by IHwProgrammablePartDescItem.
class NYXCONFIG_EXPORT IProgrammablePartDescItem
{
};

} // namespace KvOrdo

#endif
