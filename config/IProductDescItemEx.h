#ifndef NYXCONFIG_IPRODUCTDESCITEMEX_H
#define NYXCONFIG_IPRODUCTDESCITEMEX_H

#include <string>

#include "IProductDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// The setters of a product: each stores what the getter of the same name returns.
class NYXCONFIG_EXPORT IProductDescItemEx : public IProductDescItem
{
public:
    virtual void setId(long id) = 0;
    virtual void setPartNumber(const std::wstring& partNumber) = 0;
    virtual void setPartChangeIndex(const std::wstring& partChangeIndex) = 0;
    virtual void setType(const std::wstring& type) = 0;
    virtual void setPartName(const std::wstring& partName) = 0;
};

} // namespace KvOrdo

#endif
