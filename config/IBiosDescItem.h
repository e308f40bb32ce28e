#ifndef NYXCONFIG_IBIOSDESCITEM_H
#define NYXCONFIG_IBIOSDESCITEM_H

#include <string>

#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * What a footprint records of the BIOS. The application implements it and hands it to SoftwareDataDescItem, which owns
 * it; the library only reads it.
 */
class NYXCONFIG_EXPORT IBiosDescItem
{
public:
    virtual ~IBiosDescItem() = default;

    /// Name.
    virtual std::wstring getName() const = 0;
    /// Version.
    virtual std::wstring getVersion() const = 0;
    /// Part number.
    virtual std::wstring getPartNumber() const = 0;
    /// Part change index in the form dd.dd, or empty.
    virtual std::wstring getPartChangeIndex() const = 0;
};

} // namespace KvOrdo

#endif
