#ifndef NYXCONFIG_ATTRIBUTEEQUALITY_H
#define NYXCONFIG_ATTRIBUTEEQUALITY_H

#include "AttributeNode.h"

namespace KvDeviceFootprint
{

/// Equality as identity tests and comparators mean it: equal values, two empty ones included.
inline bool AreEqual(const CReadOnlyAttribute& lhs, const CReadOnlyAttribute& rhs)
{
    return lhs.IsEqual(rhs, true);
}

} // namespace KvDeviceFootprint

#endif
