#ifndef NYXCONFIG_IBPARTIDENTIFICATIONDESCITEMEX_H
#define NYXCONFIG_IBPARTIDENTIFICATIONDESCITEMEX_H

#include <string>

#include "IBPartIdentificationDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// The setters of a bought part: each stores what the getter of the same name returns.
class NYXCONFIG_EXPORT IBPartIdentificationDescItemEx : public IBPartIdentificationDescItem
{
public:
    virtual void setName(const std::wstring& name) = 0;
    virtual void setPartNumber(const std::wstring& partNumber) = 0;
    virtual void setSn(const std::wstring& sn) = 0;
    virtual void setPartChangeIndex(const std::wstring& partChangeIndex) = 0;
    virtual void setVendorName(const std::wstring& vendorName) = 0;
    virtual void setAdditionalInfo(const std::wstring& additionalInfo) = 0;
};

} // namespace KvOrdo

#endif
