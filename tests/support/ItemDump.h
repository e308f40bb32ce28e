#ifndef NYXCONFIG_ITEMDUMP_H
#define NYXCONFIG_ITEMDUMP_H

#include "CNyxConfig.h"

#include <nlohmann/json.hpp>

namespace NyxTest
{

/// All items that a facade holds: {"deviceData", "hwBoards", "products", "softwareData"}. Fields go by their names in
/// the item classes; what is null there is null here. The item-only fields of programmable parts are left out.
nlohmann::json DumpItems(KvOrdo::CNyxConfig& config);

} // namespace NyxTest

#endif
