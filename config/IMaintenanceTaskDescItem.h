#ifndef NYXCONFIG_IMAINTENANCETASKDESCITEM_H
#define NYXCONFIG_IMAINTENANCETASKDESCITEM_H

#include <string>

#include "nyxconfig_export.h"

namespace KvOrdo
{

/// One task of a maintenance, to be read.
class NYXCONFIG_EXPORT IMaintenanceTaskDescItem
{
public:
    virtual ~IMaintenanceTaskDescItem() = default;

    /// Name of the task; a footprint does not take an empty one.
    virtual std::wstring getName() const = 0;
    /// Whether the task was done, as the text "true" or "false".
    virtual std::wstring getDone() const = 0;
    /// Result of the task, free text.
    virtual std::wstring getResult() const = 0;
};

} // namespace KvOrdo

#endif
