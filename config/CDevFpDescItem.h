#ifndef NYXCONFIG_CDEVFPDESCITEM_H
#define NYXCONFIG_CDEVFPDESCITEM_H

#include "IDevFpDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// Implementation of IDevFpDescItem, without content.
class NYXCONFIG_EXPORT CDevFpDescItem : public IDevFpDescItemEx
{
};

} // namespace KvOrdo

#endif
