#ifndef NYXCONFIG_BOARDTREE_H
#define NYXCONFIG_BOARDTREE_H

#include "DeviceFootprint.h"

#include <cstddef>
#include <string>
#include <vector>

namespace footprint
{

/// A board at its place in the tree that the `parentId` of the boards make.
struct CBoardPlace
{
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    const KvDeviceFootprint::CHardware* board = nullptr;
    std::size_t number = 0;    ///< Place in the list of the file, from 1.
    std::size_t parent = none; ///< Index of its parent's place; none for a root.
    std::size_t level = 0;     ///< 0 for a root.
    bool isLast = true;        ///< Whether it is the last one below its parent.
    std::string remark;        ///< What is wrong with its `id` or `parentId`; empty if nothing is.
};

/**
 * All boards of a list, each once, parents before what they carry, otherwise in the order of the file.
 *
 * A board is a root if it has no `parentId`, or "0" and no board has that `id`. What does not fit is a root with a
 * remark: a board whose parent is missing, and the first one of a circle. Where several boards have one `id`, the first
 * of them is the parent.
 */
std::vector<CBoardPlace> BoardTree(const KvDeviceFootprint::CHardwareList& boards);

/// What a person calls a board: its name and id, or whatever else it has; @p number as in CBoardPlace. UTF-8.
std::string BoardLabel(const KvDeviceFootprint::CHardware& board, std::size_t number);

} // namespace footprint

#endif
