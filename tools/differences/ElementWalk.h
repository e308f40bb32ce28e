#ifndef NYXCONFIG_ELEMENTWALK_H
#define NYXCONFIG_ELEMENTWALK_H

#include "DeviceFootprint.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace footprint
{

/// An element below another one: a child, or an entry of a list.
struct CStep
{
    const KvDeviceFootprint::CElementNode* element;
    std::size_t number; ///< place among the entries of its list, from 1; 0 for a child that is no entry

    /// "hardwareData", or "hardware[3]" for an entry.
    std::string Text() const;
};

/// The children of an element in file order; of a list, its entries.
std::vector<CStep> StepsBelow(const KvDeviceFootprint::CElementNode& element);

/// The attributes of an element in file order, absent ones included.
std::vector<const KvDeviceFootprint::CReadOnlyAttribute*> AttributesOf(const KvDeviceFootprint::CElementNode& element);

/// Called with an element and its path, such as "/deviceFootprint/hardwareData/hardwareList/hardware[3]".
using TElementVisitor = std::function<void(const KvDeviceFootprint::CElementNode& element, const std::string& path)>;

/// Visits an element and all that lies below it, each element before what it holds, in file order.
void Walk(const KvDeviceFootprint::CElementNode& root, const TElementVisitor& visitor);

/// A value in UTF-8. What is no Unicode character, as a file can have it by a reference, becomes U+FFFD.
std::string Utf8(const std::wstring& text);

} // namespace footprint

#endif
