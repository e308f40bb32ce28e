#ifndef NYXCONFIG_ISERVICEDESCITEM_H
#define NYXCONFIG_ISERVICEDESCITEM_H

#include <string>

#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * One service done on the device or on a board, to be read.
 *
 * It has no virtual destructor: delete an item through a pointer to its implementation.
 */
class NYXCONFIG_EXPORT IServiceDescItem
{
public:
    /// Code of the service that was done, the key of the entry; -1 if it is not set.
    virtual long getServiceCode() const = 0;
    /// Day of the service in the form yyyy-mm-dd.
    virtual std::wstring getServiceDate() const = 0;
};

} // namespace KvOrdo

#endif
