#ifndef NYXCONFIG_IHWPROGRAMMABLEPARTMODULEITEM_H
#define NYXCONFIG_IHWPROGRAMMABLEPARTMODULEITEM_H

#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * A module of a programmable part. It has no operations: the application derives its own modules from it, and the
 * library only hands the pointers on.
 */
class NYXCONFIG_EXPORT IHwProgrammablePartModuleItem
{
};

} // namespace KvOrdo

#endif
