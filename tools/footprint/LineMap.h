#ifndef NYXCONFIG_LINEMAP_H
#define NYXCONFIG_LINEMAP_H

#include "ChecksFindings.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace footprint
{

/// Where an element begins in a file, and what lies below it.
struct CLineNode
{
    std::size_t line = 0;         ///< of its start tag, the last one if there are several; 0 if there is none
    std::vector<CLineNode> below; ///< as StepsBelow() of the loaded element, without those at the end that are missing
};

/// The lines of a file's elements.
struct CLineMap
{
    CLineNode root;
    bool isWhole = false; ///< whether the library loads the file
    CFinding stop;        ///< if it does not: why, as far as the lines tell
};

/**
 * Reads a footprint file again in the steps of a load, with the library's own reader, and keeps the lines.
 *
 * @param input the file, from its beginning.
 * @param findings get what a load passes over or changes, so that a save loses it: tags and attributes that are not
 *        known, come twice or have another form, and values that are written in another way.
 */
CLineMap MapLines(std::istream& input, CFindings& findings);

} // namespace footprint

#endif
