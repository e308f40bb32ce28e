#ifndef NYXCONFIG_IMAINTENANCEDESCITEMEX_H
#define NYXCONFIG_IMAINTENANCEDESCITEMEX_H

#include <list>
#include <string>

#include "IMaintenanceDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// The setters of a maintenance: each stores what the getter of the same name returns.
class NYXCONFIG_EXPORT IMaintenanceDescItemEx : public IMaintenanceDescItem
{
public:
    virtual void setResponsiblePerson(const std::wstring& responsiblePerson) = 0;
    virtual void setMaintenanceDate(const std::wstring& maintenanceDate) = 0;
    virtual void setGeneratedBy(const std::wstring& generatedBy) = 0;
    virtual void setMaintenanceTasks(const std::list<IMaintenanceTaskDescItem*>& maintenanceTasks) = 0;
};

} // namespace KvOrdo

#endif
