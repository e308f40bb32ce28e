#ifndef NYXCONFIG_FACADEITEMS_H
#define NYXCONFIG_FACADEITEMS_H

#include "CNyxConfig.h"

#include <list>

namespace NyxTest
{

/// The facade's products, which no operation of it gives out.
std::list<KvOrdo::CProductDescItem*>& ProductItems(KvOrdo::CNyxConfig& config);

/// Deletes what a facade holds, to the last nested item, and empties its product list; its board list goes on holding
/// dead pointers, so the facade can only be destroyed then. All items must be the library's own classes, each held in
/// one place. Lists may hold null pointers.
void DeleteItems(KvOrdo::CNyxConfig& config);

} // namespace NyxTest

#endif
