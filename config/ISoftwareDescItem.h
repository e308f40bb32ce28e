#ifndef NYXCONFIG_ISOFTWAREDESCITEM_H
#define NYXCONFIG_ISOFTWAREDESCITEM_H

#include <list>
#include <string>

#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * One piece of software with the software that it consists of, to be read.
 *
 * It has no virtual destructor: delete an item through a pointer to its implementation.
 */
class NYXCONFIG_EXPORT ISoftwareDescItem
{
public:
    /// Name of the software; a footprint can not be written without it.
    virtual std::wstring getName() const = 0;
    /// Version of the software.
    virtual std::wstring getVersion() const = 0;
    /// Status of the software.
    virtual std::wstring getStatus() const = 0;
    /// Part number of the software.
    virtual std::wstring getPartNumber() const = 0;
    /// Part change index in the form dd.dd, or empty.
    virtual std::wstring getPartChangeIndex() const = 0;
    /// Serial number as text, the attribute "sn" of a footprint.
    virtual std::wstring getSerialNumber() const = 0;
    /// Name of the vendor.
    virtual std::wstring getVendorName() const = 0;
    /// The software inside this one in its order, as a new list of the same pointers; the item does not own them.
    virtual std::list<ISoftwareDescItem*> getSoftwareItems() const = 0;
};

} // namespace KvOrdo

#endif
