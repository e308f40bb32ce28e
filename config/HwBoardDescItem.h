#ifndef NYXCONFIG_HWBOARDDESCITEM_H
#define NYXCONFIG_HWBOARDDESCITEM_H

#include <list>
#include <memory>
#include <string>
#include <vector>

#include "IHwBoardDescItemEx.h"
#include "nyxconfig_export.h"

class QMutex;

namespace KvOrdo
{

/**
 * A hardware board.
 *
 * An item is not guarded, apart from its table of part numbers: it belongs to one thread at a time.
 */
class NYXCONFIG_EXPORT HwBoardDescItem : public IHwBoardDescItemEx
{
public:
    /**
     * The table of part number and variant pairs with their texts.
     *
     * Entries are only ever added. Several threads may use one table at a time.
     */
    class NYXCONFIG_EXPORT CPartNumberVariant
    {
    public:
        CPartNumberVariant();
        virtual ~CPartNumberVariant();
        CPartNumberVariant(const CPartNumberVariant&) = delete;
        CPartNumberVariant& operator=(const CPartNumberVariant&) = delete;

        /**
         * Returns the index of the pair, which is added behind the last entry if the table does not hold it.
         *
         * Looking and adding are two steps: threads that add one pair at the same time may add it twice.
         */
        int addPNV(long partNumber, unsigned int variant);

        /// @name Reading an entry
        /// *ok, if ok is not null, tells whether the index is in range. If not, the result is 0 or empty.
        /// @{
        long getPartNumber(unsigned int index, bool* ok) const;
        long getVariant(unsigned int index, bool* ok) const;
        std::wstring getText(unsigned int index, bool* ok) const;
        /// @}

        /// Number of entries.
        unsigned int getSize() const;

    private:
        int find(long partNumber, unsigned int variant) const;
        struct Entry
        {
            long partNumber;
            unsigned int variant;
            std::wstring text;
        };
        template<typename Value>
        Value entry(Value Entry::*column, unsigned int index, bool* ok) const;

        std::vector<Entry> m_entries;
        std::unique_ptr<QMutex> m_mutex; ///< Recursive; held while the entries are read or appended to.
    };

    HwBoardDescItem();
    /**
     * Sets every field to its start value and then releases what the board owns; null entries are allowed.
     *
     * The identification of a bought part is deleted. Of the programmable parts and of the maintenance data only the
     * storage is freed and no destructor runs, since their interfaces have no virtual one: what their texts and lists
     * have allocated stays so. An application that wants it back takes them out of the board and deletes them through
     * their implementation first. Services stay with whoever holds them.
     */
    ~HwBoardDescItem() override;
    HwBoardDescItem(const HwBoardDescItem&) = delete;
    HwBoardDescItem& operator=(const HwBoardDescItem&) = delete;

    std::wstring getName() const override { return m_fields.name.substr(0, m_fields.name.find(L'[')); }
    long getId() const override { return m_fields.id; }
    long getPath() const override { return m_fields.path; }
    long getSerialNumber() const override { return m_fields.serialNumber; }
    long getType() const override { return m_fields.type; }
    long getMajorRevision() const override { return m_fields.majorRevision; }
    long getMinorRevision() const override { return m_fields.minorRevision; }
    long getHwCode() const override { return m_fields.hwCode; }
    long getMainVersion() const override { return m_fields.mainVersion; }
    std::wstring getSlotInfo() const override { return m_fields.slotInfo; }
    bool getIsSimulation() const override { return m_fields.isSimulation; }
    std::list<IHwProgrammablePartDescItem*> getProgrammableParts() const override { return m_fields.programmableParts; }
    IMaintenanceDataDescItem* getMaintenanceData() const override { return m_fields.maintenanceData; }
    std::list<IServiceDescItem*> getServices() const override { return m_fields.services; }
    long getProductId() const override { return m_fields.productId; }
    std::wstring getProductDate() const override { return m_fields.productDate; }
    long getReadCode() const override { return m_fields.readCode; }
    std::wstring getTestInstruction() const override { return m_fields.testInstruction; }
    std::wstring getPartName() const override { return m_fields.partName; }
    long getParentId() const override { return m_fields.parentId; }
    bool getExternConnected() const override { return m_fields.externConnected; }
    IBPartIdentificationDescItem* getBPartIdentification() const override { return m_fields.bPartIdentification; }
    long getPartNumber(unsigned int index, bool* ok) const override;
    long getVariant(unsigned int index, bool* ok) const override;
    std::wstring getPartNumberVariant(unsigned int index, bool* ok) const override;
    unsigned int getPartNumberVariantSize() const override;
    unsigned int getVariantOption() const override { return m_fields.variantOption; }

    void setName(const std::wstring& name) override { m_fields.name = name; }
    void setId(long id) override;
    void setSerialNumber(long serialNumber) override { m_fields.serialNumber = serialNumber; }
    void setType(long type) override { m_fields.type = type; }
    void setMajorRevision(long majorRevision) override { m_fields.majorRevision = majorRevision; }
    void setMinorRevision(long minorRevision) override { m_fields.minorRevision = minorRevision; }
    void setHwCode(long hwCode) override { m_fields.hwCode = hwCode; }
    void setMainVersion(long mainVersion) override { m_fields.mainVersion = mainVersion; }
    void setSlotInfo(const std::wstring& slotInfo) override { m_fields.slotInfo = slotInfo; }
    void setIsSimulation(bool isSimulation) override { m_fields.isSimulation = isSimulation; }
    void setProgrammableParts(const std::list<IHwProgrammablePartDescItem*>& parts) override
    {
        m_fields.programmableParts = parts;
    }
    void setMaintenanceData(IMaintenanceDataDescItem* data) override { m_fields.maintenanceData = data; }
    void setServices(const std::list<IServiceDescItem*>& services) override { m_fields.services = services; }
    void setProductId(long productId) override { m_fields.productId = productId; }
    void setProductDate(unsigned short productDate) override;
    void setProductDate(const std::wstring& productDate) override { m_fields.productDate = productDate; }
    void setReadCode(long readCode) override { m_fields.readCode = readCode; }
    void setTestInstruction(unsigned short testInstruction) override;
    void setTestInstruction(const std::wstring& instruction) override { m_fields.testInstruction = instruction; }
    void setPartName(const std::wstring& partName) override { m_fields.partName = partName; }
    void setParentId(long parentId) override { m_fields.parentId = parentId; }
    void setExternConnected(bool externConnected) override { m_fields.externConnected = externConnected; }
    void setBPartIdentification(IBPartIdentificationDescItem* part) override { m_fields.bPartIdentification = part; }
    int setPartNumberVariant(long partNumber, unsigned int variant) override;
    int setPartNumberVariant(const std::wstring& partNumber, const std::wstring& variant) override;
    int setPartNumberVariant(const std::wstring& text) override;
    void setVariantOption(unsigned int variantOption) override { m_fields.variantOption = variantOption; }

private:
    /// All fields with their start values, in one place so that the destructor resets them in one step.
    struct Fields
    {
        std::wstring name;
        long id = 0;
        long path = 0;
        long serialNumber = 0;
        long type = 0;
        long majorRevision = 0;
        long minorRevision = 0;
        long hwCode = 0;
        long mainVersion = -1;
        std::wstring slotInfo;
        bool isSimulation = false;
        std::list<IHwProgrammablePartDescItem*> programmableParts; ///< Storage owned.
        IMaintenanceDataDescItem* maintenanceData = nullptr;       ///< Storage owned.
        std::list<IServiceDescItem*> services;                     ///< Not owned.
        long productId = 0;
        std::wstring productDate;
        long readCode = 0;
        std::wstring testInstruction;
        std::wstring partName;
        long parentId = 0;
        bool externConnected = false;
        IBPartIdentificationDescItem* bPartIdentification = nullptr; ///< Owned.
        std::unique_ptr<CPartNumberVariant> partNumberVariant;       ///< Made by the board's constructor.
        unsigned int variantOption = 0;
    };

    Fields m_fields;
};

} // namespace KvOrdo

#endif
