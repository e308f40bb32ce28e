#ifndef NYXCONFIG_IHARDWAREDATADESCITEMEX_H
#define NYXCONFIG_IHARDWAREDATADESCITEMEX_H

#include "IHardwareDataDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// The setters of IHardwareDataDescItem, of which there are none.
class NYXCONFIG_EXPORT IHardwareDataDescItemEx : public IHardwareDataDescItem
{
};

} // namespace KvOrdo

#endif
