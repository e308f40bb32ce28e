#ifndef NYXCONFIG_COPERATINGSYSTEMDESCITEM_H
#define NYXCONFIG_COPERATINGSYSTEMDESCITEM_H

#include "IOperatingSystemDescItem.h"

namespace KvOrdo
{

/**
 * The application's implementation of IOperatingSystemDescItem. Only the name is declared here: the library has no such
 * class, and an application that uses the name defines it.
 */
class COperatingSystemDescItem;

} // namespace KvOrdo

#endif
