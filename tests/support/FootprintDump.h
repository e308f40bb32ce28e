#ifndef NYXCONFIG_FOOTPRINTDUMP_H
#define NYXCONFIG_FOOTPRINTDUMP_H

#include "ElementNode.h"

#include <nlohmann/json.hpp>

namespace NyxTest
{

/**
 * An element with all that it holds:
 *
 *     {"element": tag, "attributes": [[name, value], ...], "children": [element, ...]}
 *     {"element": tag, "entries": [element, ...]}                                         for a list
 *
 * Attributes that are not empty, in table order; children that hold something, in file order; all entries of a list.
 */
nlohmann::json DumpElement(const KvDeviceFootprint::CElementNode& element);

} // namespace NyxTest

#endif
