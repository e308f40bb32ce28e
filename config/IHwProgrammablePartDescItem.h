#ifndef NYXCONFIG_IHWPROGRAMMABLEPARTDESCITEM_H
#define NYXCONFIG_IHWPROGRAMMABLEPARTDESCITEM_H

#include <list>
#include <string>

#include "IHwProgrammablePartModuleItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * One programmable part of a board, to be read.
 *
 * It has no virtual destructor: delete an item through a pointer to its implementation.
 */
class NYXCONFIG_EXPORT IHwProgrammablePartDescItem
{
public:
    /// Name of the part.
    virtual std::wstring getName() const = 0;
    /// Part name. Not part of a footprint.
    virtual std::wstring getPartName() const = 0;
    /// Name of the board's folder among the boot files. Not part of a footprint.
    virtual std::wstring getBootDirBoardName() const = 0;
    /// Path of the load file as calculated. Not part of a footprint.
    virtual std::wstring getLoadFilePathCalc() const = 0;
    /// Kind of the part, 0 at start. Not part of a footprint.
    virtual int getPartType() const = 0;
    /// Path of the optional load file. Not part of a footprint.
    virtual std::wstring getLoadFilePathOpt() const = 0;
    /// File name extension of the load file. Not part of a footprint.
    virtual std::wstring getLoadFileExtension() const = 0;
    /// Version of what is programmed into the part.
    virtual std::wstring getVersion() const = 0;
    /// Part number of what is programmed into the part.
    virtual std::wstring getPartNumber() const = 0;
    /// Part change index in the form dd.dd, or empty.
    virtual std::wstring getPartChangeIndex() const = 0;
    /**
     * The modules of the part, as a new list of the same pointers; the item does not own them. Not part of a footprint.
     */
    virtual std::list<IHwProgrammablePartModuleItem*> getModuleList() const = 0;
};

} // namespace KvOrdo

#endif
