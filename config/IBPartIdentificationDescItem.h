#ifndef NYXCONFIG_IBPARTIDENTIFICATIONDESCITEM_H
#define NYXCONFIG_IBPARTIDENTIFICATIONDESCITEM_H

#include <string>

#include "nyxconfig_export.h"

namespace KvOrdo
{

/// Identification of a bought part that stands in the place of a board, to be read.
class NYXCONFIG_EXPORT IBPartIdentificationDescItem
{
public:
    virtual ~IBPartIdentificationDescItem() = default;

    /// Name of the bought part.
    virtual std::wstring getName() const = 0;
    /// Vendor's part number.
    virtual std::wstring getPartNumber() const = 0;
    /// Serial number, as text.
    virtual std::wstring getSn() const = 0;
    /// Change index of the part, in the vendor's form: it is not checked.
    virtual std::wstring getPartChangeIndex() const = 0;
    /// Name of the vendor.
    virtual std::wstring getVendorName() const = 0;
    /// Free text.
    virtual std::wstring getAdditionalInfo() const = 0;
};

} // namespace KvOrdo

#endif
