#ifndef NYXCONFIG_IPROPERTYDESCITEM_H
#define NYXCONFIG_IPROPERTYDESCITEM_H

#include "nyxconfig_export.h"

namespace KvOrdo
{

/// A property. It has no operations: the name is kept for applications.
class NYXCONFIG_EXPORT IPropertyDescItem
{
};

} // namespace KvOrdo

#endif
