#ifndef NYXCONFIG_ISOFTWAREDATADESCITEM_H
#define NYXCONFIG_ISOFTWAREDATADESCITEM_H

#include <list>

#include "IBiosDescItem.h"
#include "IOperatingSystemDescItem.h"
#include "ISoftwareDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// The software of the device: BIOS, operating system and a tree of further software, to be read.
class NYXCONFIG_EXPORT ISoftwareDataDescItem
{
public:
    virtual ~ISoftwareDataDescItem() = default;

    /// The BIOS, or null; the item owns it. Reading a footprint leaves it null.
    virtual IBiosDescItem* getBiosItem() const = 0;
    /**
     * The operating system, or null; the item owns it. Reading a footprint leaves it null. The getter is spelled
     * "Operation", the setter "Operating".
     */
    virtual IOperatingSystemDescItem* getOperationSystemItem() const = 0;
    /// The software of the top level in its order, as a new list of the same pointers; the item does not own them.
    virtual std::list<ISoftwareDescItem*> getSoftwareItems() const = 0;
};

} // namespace KvOrdo

#endif
