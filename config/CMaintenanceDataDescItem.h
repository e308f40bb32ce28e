#ifndef NYXCONFIG_CMAINTENANCEDATADESCITEM_H
#define NYXCONFIG_CMAINTENANCEDATADESCITEM_H

#include <list>

#include "IMaintenanceDataDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// Operating data and maintenances. An item is not guarded: it belongs to one thread at a time.
class NYXCONFIG_EXPORT CMaintenanceDataDescItem : public IMaintenanceDataDescItemEx
{
public:
    CMaintenanceDataDescItem() = default;
    /// Deletes every maintenance of the list; null entries are allowed.
    virtual ~CMaintenanceDataDescItem();
    CMaintenanceDataDescItem(const CMaintenanceDataDescItem&) = delete;
    CMaintenanceDataDescItem& operator=(const CMaintenanceDataDescItem&) = delete;

    long getOperatingHours() const override { return m_operatingHours; }
    long getMakeAndBreakCycles() const override { return m_makeAndBreakCycles; }
    std::list<IMaintenanceDescItem*> getMaintenances() const override { return m_maintenances; }

    void setOperatingHours(long operatingHours) override { m_operatingHours = operatingHours; }
    void setMakeAndBreakCycles(long makeAndBreakCycles) override { m_makeAndBreakCycles = makeAndBreakCycles; }
    void setMaintenances(const std::list<IMaintenanceDescItem*>& maintenances) override
    {
        m_maintenances = maintenances;
    }

private:
    long m_operatingHours = -1;
    long m_makeAndBreakCycles = -1;
    std::list<IMaintenanceDescItem*> m_maintenances; ///< Owned: deleted by the destructor.
};

} // namespace KvOrdo

#endif
