#ifndef NYXCONFIG_IMAINTENANCETASKDESCITEMEX_H
#define NYXCONFIG_IMAINTENANCETASKDESCITEMEX_H

#include <string>

#include "IMaintenanceTaskDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// The setters of a maintenance task: each stores what the getter of the same name returns.
class NYXCONFIG_EXPORT IMaintenanceTaskDescItemEx : public IMaintenanceTaskDescItem
{
public:
    virtual void setName(const std::wstring& name) = 0;
    virtual void setDone(const std::wstring& done) = 0;
    virtual void setResult(const std::wstring& result) = 0;
};

} // namespace KvOrdo

#endif
