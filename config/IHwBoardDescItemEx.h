#ifndef NYXCONFIG_IHWBOARDDESCITEMEX_H
#define NYXCONFIG_IHWBOARDDESCITEMEX_H

#include <list>
#include <string>

#include "IHwBoardDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * The setters of a board.
 *
 * A setter stores what the getter of the same name returns, unless told otherwise. setProgrammableParts(),
 * setMaintenanceData() and setBPartIdentification() take ownership; none deletes what it replaces.
 */
class NYXCONFIG_EXPORT IHwBoardDescItemEx : public IHwBoardDescItem
{
public:
    /// Stores the name unchanged, "name[variant,option]" included.
    virtual void setName(const std::wstring& name) = 0;
    /// Sets the id and with it the path, which has no setter of its own.
    virtual void setId(long id) = 0;
    virtual void setSerialNumber(long serialNumber) = 0;
    virtual void setType(long type) = 0;
    virtual void setMajorRevision(long majorRevision) = 0;
    virtual void setMinorRevision(long minorRevision) = 0;
    virtual void setHwCode(long hwCode) = 0;
    virtual void setMainVersion(long mainVersion) = 0;
    virtual void setSlotInfo(const std::wstring& slotInfo) = 0;
    virtual void setIsSimulation(bool isSimulation) = 0;
    virtual void setProgrammableParts(const std::list<IHwProgrammablePartDescItem*>& programmableParts) = 0;
    virtual void setMaintenanceData(IMaintenanceDataDescItem* maintenanceData) = 0;
    virtual void setServices(const std::list<IServiceDescItem*>& services) = 0;
    virtual void setProductId(long productId) = 0;
    /**
     * Sets the product date from its packed form.
     *
     * The top seven bits hold the year less 1980, the next four the month and the low five the day. The text has no
     * leading zeros, so 0x3E67 gives "2011-3-7".
     */
    virtual void setProductDate(unsigned short productDate) = 0;
    virtual void setProductDate(const std::wstring& productDate) = 0;
    virtual void setReadCode(long readCode) = 0;
    /// Sets the test instruction to value / 100, ".", value % 100 without leading zeros: 123 gives "1.23", 105 "1.5".
    virtual void setTestInstruction(unsigned short testInstruction) = 0;
    virtual void setTestInstruction(const std::wstring& testInstruction) = 0;
    virtual void setPartName(const std::wstring& partName) = 0;
    virtual void setParentId(long parentId) = 0;
    virtual void setExternConnected(bool externConnected) = 0;
    virtual void setBPartIdentification(IBPartIdentificationDescItem* bPartIdentification) = 0;

    /// @name Adding to the table of part numbers and variants
    /// Each returns the index of the entry, which is the earlier one if the table holds the pair already, or -1.
    /// @{

    /// Refuses a variant above 99 and a part number that, taken as unsigned, is at most 10000.
    virtual int setPartNumberVariant(long partNumber, unsigned int variant) = 0;
    /// Takes two decimal numbers as text; every "." of the part number is left out. Refuses what is not a number.
    virtual int setPartNumberVariant(const std::wstring& partNumber, const std::wstring& variant) = 0;
    /// Takes "1234.5678.02" or "12345678.02". Refuses a text with another number of ".".
    virtual int setPartNumberVariant(const std::wstring& text) = 0;
    /// @}

    virtual void setVariantOption(unsigned int variantOption) = 0;
};

} // namespace KvOrdo

#endif
