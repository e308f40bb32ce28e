#ifndef NYXCONFIG_CHECKSLINK_H
#define NYXCONFIG_CHECKSLINK_H

#include "ChecksFindings.h"

#include <iosfwd>

namespace footprint
{

/// Checks the form of a link file: its two elements, each once, with absolute paths. Whether there is something at
/// these paths is another question.
/// @param input the file, from its beginning.
void CheckLinkFile(std::istream& input, CFindings& findings);

} // namespace footprint

#endif
