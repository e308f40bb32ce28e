#ifndef NYXCONFIG_MAINTENANCETASKDESCITEM_H
#define NYXCONFIG_MAINTENANCETASKDESCITEM_H

#include <string>

#include "IMaintenanceTaskDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// A maintenance task. An item is not guarded: it belongs to one thread at a time.
class NYXCONFIG_EXPORT MaintenanceTaskDescItem : public IMaintenanceTaskDescItemEx
{
public:
    MaintenanceTaskDescItem() = default;
    ~MaintenanceTaskDescItem() override;
    MaintenanceTaskDescItem(const MaintenanceTaskDescItem&) = delete;
    MaintenanceTaskDescItem& operator=(const MaintenanceTaskDescItem&) = delete;

    std::wstring getName() const override { return m_name; }
    std::wstring getDone() const override { return m_done; }
    std::wstring getResult() const override { return m_result; }

    void setName(const std::wstring& name) override { m_name = name; }
    void setDone(const std::wstring& done) override { m_done = done; }
    void setResult(const std::wstring& result) override { m_result = result; }

private:
    std::wstring m_name;
    std::wstring m_done;
    std::wstring m_result;
};

} // namespace KvOrdo

#endif
