#ifndef NYXCONFIG_OWNINGCONFIG_H
#define NYXCONFIG_OWNINGCONFIG_H

#include "CNyxConfig.h"
#include "FacadeItems.h"

namespace NyxTest
{

/// A facade whose items are deleted with it, see DeleteItems().
class OwningConfig : public KvOrdo::CNyxConfig
{
public:
    OwningConfig() = default;
    OwningConfig(const OwningConfig&) = delete;
    OwningConfig& operator=(const OwningConfig&) = delete;
    ~OwningConfig() override { DeleteItems(*this); }
};

} // namespace NyxTest

#endif
