#ifndef NYXCONFIG_IDEVFPDESCITEMEX_H
#define NYXCONFIG_IDEVFPDESCITEMEX_H

#include "IDevFpDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// The setters of IDevFpDescItem, of which there are none.
class NYXCONFIG_EXPORT IDevFpDescItemEx : public IDevFpDescItem
{
};

} // namespace KvOrdo

#endif
