#ifndef NYXCONFIG_CBPARTIDENTIFICATIONDESCITEM_H
#define NYXCONFIG_CBPARTIDENTIFICATIONDESCITEM_H

#include <string>

#include "IBPartIdentificationDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// Identification of a bought part. An item is not guarded: it belongs to one thread at a time.
class NYXCONFIG_EXPORT CBPartIdentificationDescItem : public IBPartIdentificationDescItemEx
{
public:
    CBPartIdentificationDescItem() = default;
    ~CBPartIdentificationDescItem() override;
    CBPartIdentificationDescItem(const CBPartIdentificationDescItem&) = delete;
    CBPartIdentificationDescItem& operator=(const CBPartIdentificationDescItem&) = delete;

    std::wstring getName() const override { return m_name; }
    std::wstring getPartNumber() const override { return m_partNumber; }
    std::wstring getSn() const override { return m_sn; }
    std::wstring getPartChangeIndex() const override { return m_partChangeIndex; }
    std::wstring getVendorName() const override { return m_vendorName; }
    std::wstring getAdditionalInfo() const override { return m_additionalInfo; }

    void setName(const std::wstring& name) override { m_name = name; }
    void setPartNumber(const std::wstring& partNumber) override { m_partNumber = partNumber; }
    void setSn(const std::wstring& sn) override { m_sn = sn; }
    void setPartChangeIndex(const std::wstring& partChangeIndex) override { m_partChangeIndex = partChangeIndex; }
    void setVendorName(const std::wstring& vendorName) override { m_vendorName = vendorName; }
    void setAdditionalInfo(const std::wstring& additionalInfo) override { m_additionalInfo = additionalInfo; }

private:
    std::wstring m_name;
    std::wstring m_partNumber;
    std::wstring m_sn;
    std::wstring m_partChangeIndex;
    std::wstring m_vendorName;
    std::wstring m_additionalInfo;
};

} // namespace KvOrdo

#endif
