#ifndef NYXCONFIG_ISOFTWAREDATADESCITEMEX_H
#define NYXCONFIG_ISOFTWAREDATADESCITEMEX_H

#include <list>

#include "ISoftwareDataDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * The setters of the software data: each stores what the getter of the same name returns.
 *
 * setBiosItem() and setOperatingSystemItem() take ownership and do not delete what they replace.
 */
class NYXCONFIG_EXPORT ISoftwareDataDescItemEx : public ISoftwareDataDescItem
{
public:
    virtual void setBiosItem(IBiosDescItem* biosItem) = 0;
    virtual void setOperatingSystemItem(IOperatingSystemDescItem* operatingSystemItem) = 0;
    virtual void setSoftwareItems(const std::list<ISoftwareDescItem*>& softwareItems) = 0;
};

} // namespace KvOrdo

#endif
