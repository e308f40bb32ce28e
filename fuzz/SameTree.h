#ifndef NYXCONFIG_SAMETREE_H
#define NYXCONFIG_SAMETREE_H

#include "ElementNode.h"

namespace NyxFuzz
{

/// Whether two elements of one class hold the same, but for list entries that hold nothing: a save leaves those out.
bool IsSameTree(const KvDeviceFootprint::CElementNode& a, const KvDeviceFootprint::CElementNode& b);

} // namespace NyxFuzz

#endif
