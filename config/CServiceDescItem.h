#ifndef NYXCONFIG_CSERVICEDESCITEM_H
#define NYXCONFIG_CSERVICEDESCITEM_H

#include <string>

#include "IServiceDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// A service record. An item is not guarded: it belongs to one thread at a time.
class NYXCONFIG_EXPORT CServiceDescItem : public IServiceDescItemEx
{
public:
    CServiceDescItem() = default;
    virtual ~CServiceDescItem();
    CServiceDescItem(const CServiceDescItem&) = delete;
    CServiceDescItem& operator=(const CServiceDescItem&) = delete;

    long getServiceCode() const override { return m_serviceCode; }
    std::wstring getServiceDate() const override { return m_serviceDate; }

    void setServiceCode(long serviceCode) override { m_serviceCode = serviceCode; }
    void setServiceDate(const std::wstring& serviceDate) override { m_serviceDate = serviceDate; }

private:
    std::wstring m_serviceDate;
    long m_serviceCode = -1;
};

} // namespace KvOrdo

#endif
