#ifndef NYXCONFIG_CMAINTENANCEDESCITEM_H
#define NYXCONFIG_CMAINTENANCEDESCITEM_H

#include <list>
#include <string>

#include "IMaintenanceDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// A maintenance record. An item is not guarded: it belongs to one thread at a time.
class NYXCONFIG_EXPORT CMaintenanceDescItem : public IMaintenanceDescItemEx
{
public:
    CMaintenanceDescItem() = default;
    /// Frees the list and leaves the tasks to whoever holds them.
    ~CMaintenanceDescItem() override;
    CMaintenanceDescItem(const CMaintenanceDescItem&) = delete;
    CMaintenanceDescItem& operator=(const CMaintenanceDescItem&) = delete;

    std::wstring getResponsiblePerson() const override { return m_responsiblePerson; }
    std::wstring getMaintenanceDate() const override { return m_maintenanceDate; }
    std::wstring getGeneratedBy() const override { return m_generatedBy; }
    std::list<IMaintenanceTaskDescItem*> getMaintenanceTasks() const override { return m_maintenanceTasks; }

    void setResponsiblePerson(const std::wstring& responsiblePerson) override
    {
        m_responsiblePerson = responsiblePerson;
    }
    void setMaintenanceDate(const std::wstring& maintenanceDate) override { m_maintenanceDate = maintenanceDate; }
    void setGeneratedBy(const std::wstring& generatedBy) override { m_generatedBy = generatedBy; }
    void setMaintenanceTasks(const std::list<IMaintenanceTaskDescItem*>& maintenanceTasks) override
    {
        m_maintenanceTasks = maintenanceTasks;
    }

private:
    std::wstring m_responsiblePerson;
    std::wstring m_maintenanceDate;
    std::wstring m_generatedBy;
    std::list<IMaintenanceTaskDescItem*> m_maintenanceTasks; ///< Not owned.
};

} // namespace KvOrdo

#endif
