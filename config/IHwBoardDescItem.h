#ifndef NYXCONFIG_IHWBOARDDESCITEM_H
#define NYXCONFIG_IHWBOARDDESCITEM_H

#include <list>
#include <string>

#include "IBPartIdentificationDescItem.h"
#include "IHwProgrammablePartDescItem.h"
#include "IMaintenanceDataDescItem.h"
#include "IServiceDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * One hardware board of the device, to be read.
 *
 * What a footprint does not hold (type, main version, simulation mark, path, variant option) lives only in the running
 * system: it is carried for the application and lost in a save.
 */
class NYXCONFIG_EXPORT IHwBoardDescItem
{
public:
    virtual ~IHwBoardDescItem() = default;

    /// Name of the board: what was set up to the first "[", behind which variant and option may stand.
    virtual std::wstring getName() const = 0;
    /// Number of the board, unique in the device: path * 1000 and a running number from 1. A save renumbers the boards.
    virtual long getId() const = 0;
    /// The path on which the board lies: id / 1000, the id taken as an unsigned number of 32 bits.
    virtual long getPath() const = 0;
    /// Serial number; 0 if not known.
    virtual long getSerialNumber() const = 0;
    /// Type of the board. Not part of a footprint.
    virtual long getType() const = 0;
    /// The first two digits of the part change index, 0 to 99.
    virtual long getMajorRevision() const = 0;
    /// The last two digits of the part change index, 0 to 99.
    virtual long getMinorRevision() const = 0;
    /// Hardware code; -1 if a footprint without one was read.
    virtual long getHwCode() const = 0;
    /// Main version; -1 if not known. Not part of a footprint.
    virtual long getMainVersion() const = 0;
    /// The connector or slot in which the board sits.
    virtual std::wstring getSlotInfo() const = 0;
    /// Whether the board is only simulated. Not part of a footprint.
    virtual bool getIsSimulation() const = 0;
    /// The programmable parts in their order, as a new list of the same pointers; the board owns them.
    virtual std::list<IHwProgrammablePartDescItem*> getProgrammableParts() const = 0;
    /// The board's maintenance data, or null if there is none; the board owns it.
    virtual IMaintenanceDataDescItem* getMaintenanceData() const = 0;
    /// The services in their order, as a new list of the same pointers; the board does not own them.
    virtual std::list<IServiceDescItem*> getServices() const = 0;
    /// Product to which the board belongs; written if it is not negative and has at most six digits.
    virtual long getProductId() const = 0;
    /// Day of production; the form yyyy-mm-dd is not checked.
    virtual std::wstring getProductDate() const = 0;
    /// Read code; written if it is not negative.
    virtual long getReadCode() const = 0;
    /// Test instruction of the board; written if it is not empty.
    virtual std::wstring getTestInstruction() const = 0;
    /// Part name; written if it is not empty.
    virtual std::wstring getPartName() const = 0;
    /// Id of the board that carries this one; written if it is not negative.
    virtual long getParentId() const = 0;
    /// Whether the board is connected from outside.
    virtual bool getExternConnected() const = 0;
    /// Identification of a bought part in the place of the board, or null; the board owns it.
    virtual IBPartIdentificationDescItem* getBPartIdentification() const = 0;

    /// @name The table of part numbers and variants
    /// The footprint takes the entry with index 0; further entries are alternatives. An index in range sets *ok to
    /// true. An index out of range sets *ok to false and gives 0 or an empty text. Null is allowed for ok.
    /// @{

    /// Part number as the number of its eight digits, 12345678 for "1234.5678".
    virtual long getPartNumber(unsigned int index, bool* ok) const = 0;
    /// Variant, 0 to 99.
    virtual long getVariant(unsigned int index, bool* ok) const = 0;
    /// Both as text, "1234.5678.02"; the first group is padded with blanks to four characters.
    virtual std::wstring getPartNumberVariant(unsigned int index, bool* ok) const = 0;
    /// Number of entries.
    virtual unsigned int getPartNumberVariantSize() const = 0;
    /// @}

    /// The option that stood behind the name when the board was read. Not written to a footprint.
    virtual unsigned int getVariantOption() const = 0;
};

} // namespace KvOrdo

#endif
