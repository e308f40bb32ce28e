#ifndef NYXCONFIG_IDEVFPDESCITEM_H
#define NYXCONFIG_IDEVFPDESCITEM_H

#include "nyxconfig_export.h"

namespace KvOrdo
{

/// A device footprint as a whole, to be read. It has no operations: the name is kept for applications.
class NYXCONFIG_EXPORT IDevFpDescItem
{
};

} // namespace KvOrdo

#endif
