#ifndef NYXCONFIG_SOFTWAREDESCITEM_H
#define NYXCONFIG_SOFTWAREDESCITEM_H

#include <list>
#include <string>

#include "ISoftwareDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// A piece of software, a node of the software tree. An item is not guarded: it belongs to one thread at a time.
class NYXCONFIG_EXPORT SoftwareDescItem : public ISoftwareDescItemEx
{
public:
    SoftwareDescItem() = default;
    /// Frees the list and leaves the inner software items to whoever holds them.
    virtual ~SoftwareDescItem();
    SoftwareDescItem(const SoftwareDescItem&) = delete;
    SoftwareDescItem& operator=(const SoftwareDescItem&) = delete;

    std::wstring getName() const override { return m_name; }
    std::wstring getVersion() const override { return m_version; }
    std::wstring getStatus() const override { return m_status; }
    std::wstring getPartNumber() const override { return m_partNumber; }
    std::wstring getPartChangeIndex() const override { return m_partChangeIndex; }
    std::wstring getSerialNumber() const override { return m_serialNumber; }
    std::wstring getVendorName() const override { return m_vendorName; }
    std::list<ISoftwareDescItem*> getSoftwareItems() const override { return m_softwareItems; }

    void setName(const std::wstring& name) override { m_name = name; }
    void setVersion(const std::wstring& version) override { m_version = version; }
    void setStatus(const std::wstring& status) override { m_status = status; }
    void setPartNumber(const std::wstring& partNumber) override { m_partNumber = partNumber; }
    void setPartChangeIndex(const std::wstring& partChangeIndex) override { m_partChangeIndex = partChangeIndex; }
    void setSerialNumber(const std::wstring& serialNumber) override { m_serialNumber = serialNumber; }
    void setVendorName(const std::wstring& vendorName) override { m_vendorName = vendorName; }
    void setSoftwareItems(const std::list<ISoftwareDescItem*>& softwareItems) override
    {
        m_softwareItems = softwareItems;
    }

private:
    std::wstring m_name;
    std::wstring m_version;
    std::wstring m_status;
    std::wstring m_partNumber;
    std::wstring m_partChangeIndex;
    std::wstring m_serialNumber;
    std::wstring m_vendorName;
    std::list<ISoftwareDescItem*> m_softwareItems; ///< Not owned.
};

} // namespace KvOrdo

#endif
