#ifndef NYXCONFIG_CHARDWAREDATADESCITEM_H
#define NYXCONFIG_CHARDWAREDATADESCITEM_H

#include "IHardwareDataDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// Implementation of IHardwareDataDescItem, without content.
class NYXCONFIG_EXPORT CHardwareDataDescItem : public IHardwareDataDescItemEx
{
};

} // namespace KvOrdo

#endif
