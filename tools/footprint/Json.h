#ifndef NYXCONFIG_JSON_H
#define NYXCONFIG_JSON_H

#include "DeviceFootprint.h"
#include "Redaction.h"

#include <nlohmann/json.hpp>

#include <iosfwd>

namespace footprint
{

/// Keys stay in the order in which they were added.
using TJson = nlohmann::ordered_json;

/// An element with all that it holds, under the names that a file has: attributes are texts, children objects, lists
/// arrays. What is empty is left out, but for the entries of a list.
TJson ToJson(const KvDeviceFootprint::CElementNode& element, CRedaction& redaction);

/// Writes JSON and a line feed. Pure ASCII, so that neither a terminal nor a reader comes to harm; what is no UTF-8
/// becomes U+FFFD.
/// @param indent blanks for each level; -1 puts everything on one line.
void WriteJson(std::ostream& output, const TJson& json, int indent = 2);

} // namespace footprint

#endif
