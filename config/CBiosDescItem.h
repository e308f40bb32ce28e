#ifndef NYXCONFIG_CBIOSDESCITEM_H
#define NYXCONFIG_CBIOSDESCITEM_H

#include "IBiosDescItem.h"

namespace KvOrdo
{

/**
 * The application's implementation of IBiosDescItem. Only the name is declared here: the library has no such class, and
 * an application that uses the name defines it.
 */
class CBiosDescItem;

} // namespace KvOrdo

#endif
