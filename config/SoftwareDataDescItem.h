#ifndef NYXCONFIG_SOFTWAREDATADESCITEM_H
#define NYXCONFIG_SOFTWAREDATADESCITEM_H

#include <list>

#include "ISoftwareDataDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// The software data. An item is not guarded: it belongs to one thread at a time.
class NYXCONFIG_EXPORT SoftwareDataDescItem : public ISoftwareDataDescItemEx
{
public:
    SoftwareDataDescItem() = default;
    /// Deletes the BIOS and the operating system, if set, and leaves the software items to whoever holds them.
    ~SoftwareDataDescItem() override;
    SoftwareDataDescItem(const SoftwareDataDescItem&) = delete;
    SoftwareDataDescItem& operator=(const SoftwareDataDescItem&) = delete;

    IBiosDescItem* getBiosItem() const override { return m_biosItem; }
    IOperatingSystemDescItem* getOperationSystemItem() const override { return m_operatingSystemItem; }
    std::list<ISoftwareDescItem*> getSoftwareItems() const override { return m_softwareItems; }

    void setBiosItem(IBiosDescItem* biosItem) override { m_biosItem = biosItem; }
    void setOperatingSystemItem(IOperatingSystemDescItem* operatingSystemItem) override
    {
        m_operatingSystemItem = operatingSystemItem;
    }
    void setSoftwareItems(const std::list<ISoftwareDescItem*>& softwareItems) override
    {
        m_softwareItems = softwareItems;
    }

    /// Appends one entry, null included, to the software of the top level. It is stored, not owned.
    virtual void addSoftware(ISoftwareDescItem* softwareItem) { m_softwareItems.push_back(softwareItem); }

private:
    IBiosDescItem* m_biosItem = nullptr;                       ///< Owned; null at start.
    IOperatingSystemDescItem* m_operatingSystemItem = nullptr; ///< Owned; null at start.
    std::list<ISoftwareDescItem*> m_softwareItems;             ///< Not owned.
};

} // namespace KvOrdo

#endif
