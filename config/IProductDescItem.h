#ifndef NYXCONFIG_IPRODUCTDESCITEM_H
#define NYXCONFIG_IPRODUCTDESCITEM_H

#include <string>

#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * One product of the hardware data, to be read.
 *
 * It has no virtual destructor: delete an item through a pointer to its implementation.
 */
class NYXCONFIG_EXPORT IProductDescItem
{
public:
    /// Number of the product, unique in a footprint; -1 if it is not set.
    virtual long getId() const = 0;
    /// Part number of the product.
    virtual std::wstring getPartNumber() const = 0;
    /// Part change index in the form dd.dd, or empty.
    virtual std::wstring getPartChangeIndex() const = 0;
    /// Type of the product.
    virtual std::wstring getType() const = 0;
    /// Part name of the product.
    virtual std::wstring getPartName() const = 0;
};

} // namespace KvOrdo

#endif
