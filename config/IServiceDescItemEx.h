#ifndef NYXCONFIG_ISERVICEDESCITEMEX_H
#define NYXCONFIG_ISERVICEDESCITEMEX_H

#include <string>

#include "IServiceDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// The setters of a service: each stores what the getter of the same name returns.
class NYXCONFIG_EXPORT IServiceDescItemEx : public IServiceDescItem
{
public:
    virtual void setServiceCode(long serviceCode) = 0;
    virtual void setServiceDate(const std::wstring& serviceDate) = 0;
};

} // namespace KvOrdo

#endif
