#ifndef NYXCONFIG_COMPAREHWBOARDDESCITEMPOINTERS_H
#define NYXCONFIG_COMPAREHWBOARDDESCITEMPOINTERS_H

#include "IHwBoardDescItem.h"

namespace KvOrdo
{

/**
 * The order of the boards in a footprint: ascending id, the id taken as unsigned, so that negative ids come last.
 *
 * The id is the only key: a stable sort keeps boards of one id in their order. A null pointer comes behind every board
 * and is equal to another null pointer.
 */
struct CompareHwBoardDescItemPointers
{
    /// Whether a precedes b.
    bool operator()(const IHwBoardDescItem* a, const IHwBoardDescItem* b) const
    {
        if (a == nullptr || b == nullptr) {
            return a != nullptr && b == nullptr;
        }
        return static_cast<unsigned long>(a->getId()) < static_cast<unsigned long>(b->getId());
    }
};

} // namespace KvOrdo

#endif
