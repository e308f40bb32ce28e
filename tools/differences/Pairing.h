#ifndef NYXCONFIG_PAIRING_H
#define NYXCONFIG_PAIRING_H

#include "ListClasses.h"

#include <cstddef>
#include <vector>

namespace footprint
{

constexpr std::size_t noPlace = static_cast<std::size_t>(-1);

using TElements = std::vector<const KvDeviceFootprint::CElementNode*>;

/// The positions of elements in ascending order of their addresses.
std::vector<std::size_t> ByAddress(const TElements& elements);

/**
 * The entry of the new list that belongs to each entry of the old one, by its position; noPlace if there is none.
 *
 * Entries with an identity are paired as the library does it (CComparatorTyped::CreateLookup), but going on where it
 * gives up. Entries without one are paired if all their attributes are equal, and what is left if the first attribute
 * is, which is their name.
 */
std::vector<std::size_t> PairEntries(const CListClass& listClass, const TElements& oldEntries,
                                     const TElements& newEntries);

} // namespace footprint

#endif
