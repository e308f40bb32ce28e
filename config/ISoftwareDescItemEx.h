#ifndef NYXCONFIG_ISOFTWAREDESCITEMEX_H
#define NYXCONFIG_ISOFTWAREDESCITEMEX_H

#include <list>
#include <string>

#include "ISoftwareDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// The setters of a piece of software: each stores what the getter of the same name returns.
class NYXCONFIG_EXPORT ISoftwareDescItemEx : public ISoftwareDescItem
{
public:
    virtual void setName(const std::wstring& name) = 0;
    virtual void setVersion(const std::wstring& version) = 0;
    virtual void setStatus(const std::wstring& status) = 0;
    virtual void setPartNumber(const std::wstring& partNumber) = 0;
    virtual void setPartChangeIndex(const std::wstring& partChangeIndex) = 0;
    virtual void setSerialNumber(const std::wstring& serialNumber) = 0;
    virtual void setVendorName(const std::wstring& vendorName) = 0;
    virtual void setSoftwareItems(const std::list<ISoftwareDescItem*>& softwareItems) = 0;
};

} // namespace KvOrdo

#endif
