#ifndef NYXCONFIG_REPORTBOARDS_H
#define NYXCONFIG_REPORTBOARDS_H

#include "BoardTree.h"
#include "Redaction.h"
#include "ReportHtml.h"

#include <cstddef>
#include <string>
#include <vector>

namespace footprint
{

/// The words in a box of the picture of boards.
struct CBoardBox
{
    std::string name;
    std::string number; ///< part number and serial number
    std::string remark; ///< what is wrong; empty if nothing is
    std::string link;   ///< where a click leads to, such as "#board-1"; may be empty
    bool isOutside = false;
    std::size_t parent = CBoardPlace::none;
    std::size_t level = 0;
};

/// The boxes of a tree of boards. @param rows prefix of the ids that the rows of the boards have in the page.
std::vector<CBoardBox> BoardBoxes(const std::vector<CBoardPlace>& tree, CRedaction& redaction, const std::string& rows);

/// Draws boards as boxes from the left to the right, each one beside the board that carries it.
/// @param device the words for what carries the outermost ones.
void WriteBoardPicture(CHtml& page, const std::vector<CBoardBox>& boxes, const CBoardBox& device);

/// The same as a graph for the program "dot".
std::string BoardGraph(const std::vector<CBoardBox>& boxes, const CBoardBox& device);

} // namespace footprint

#endif
