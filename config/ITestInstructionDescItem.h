#ifndef NYXCONFIG_ITESTINSTRUCTIONDESCITEM_H
#define NYXCONFIG_ITESTINSTRUCTIONDESCITEM_H

#include <string>

#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * One test instruction by which the device was tested, to be read.
 *
 * It has no virtual destructor: delete an item through a pointer to its implementation.
 */
class NYXCONFIG_EXPORT ITestInstructionDescItem
{
public:
    /// Name of the instruction; may be empty only if the device has no other instruction.
    virtual std::wstring getName() const = 0;
    /// Version of the instruction; a footprint does not take an empty one.
    virtual std::wstring getVersion() const = 0;
};

} // namespace KvOrdo

#endif
