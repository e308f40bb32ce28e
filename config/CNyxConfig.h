#ifndef NYXCONFIG_CNYXCONFIG_H
#define NYXCONFIG_CNYXCONFIG_H

/**
 * @file
 * The facade: an application's way to read and write the device's footprint.
 *
 *     KvOrdo::DeviceDataDescItem device;
 *     device.setDeviceId(L"1101.2345.02-100123-ab");
 *     device.setPartChangeIndex(L"01.00");
 *     device.setType(L"TYPE-A");
 *     KvOrdo::CNyxConfig config;
 *     config.setDeviceData(&device);
 *     const std::string file = config.saveFile("/tmp", true);
 *
 * To read: loadFile(), then getDeviceData(), getHwBoardDescItems(), getSoftwareData(). To write: set the items, then
 * saveFile() or saveFileAs(). To change: load, change the items, save. Each save rebuilds the whole document from the
 * items, so a value that no item carries does not survive a load and a save.
 */

#include "CException.h"
#include "CNyxConfigException.h"
#include "DeviceFootprint.h"

#include "CBPartIdentificationDescItem.h"
#include "CMaintenanceDataDescItem.h"
#include "CMaintenanceDescItem.h"
#include "CProductDescItem.h"
#include "CServiceDescItem.h"
#include "CTestInstructionDescItem.h"
#include "CompareHwBoardDescItemPointers.h"
#include "DeviceDataDescItem.h"
#include "HwBoardDescItem.h"
#include "HwProgrammablePartDescItem.h"
#include "IBiosDescItem.h"
#include "IOperatingSystemDescItem.h"
#include "MaintenanceTaskDescItem.h"
#include "SoftwareDataDescItem.h"
#include "SoftwareDescItem.h"

#include <cstdint>
#include <list>
#include <string>

namespace KvOrdo
{

/**
 * The device's footprint in terms of descriptor items.
 *
 * Ownership is thin: the facade stores item pointers and never deletes an item. Items that a load made belong to the
 * application from then on; items that the application set must live until the last save. A second load forgets the
 * device and software data of the first and appends its boards and products to those of the first.
 *
 * throwOnError: with true, invalid data throws CNyxConfigException; with false, the same text goes to an error stream
 * and the operation goes on with the value as it stands, or without it where an operation says so. It changes nothing
 * for valid data. Wide messages go to std::wcerr, narrow ones to std::cerr. Failures of files are printed to std::cerr
 * in both modes.
 *
 * Besides CNyxConfigException, std::out_of_range leaves a load of a file with blank lines.
 *
 * A facade is used by one thread at a time; the document's last error is shared by all facades of the process.
 */
class NYXCONFIG_EXPORT CNyxConfig
{
public:
    CNyxConfig();
    CNyxConfig(const CNyxConfig&) = delete;
    CNyxConfig& operator=(const CNyxConfig&) = delete;
    /// Leaves all items alone.
    virtual ~CNyxConfig();

    /** @name Files */
    ///@{
    /// Loads a footprint and makes items of it. If the file can not be loaded, that is printed, and items are made of
    /// what the document holds then.
    void loadFile(const std::string& fileName, bool throwOnError);
    /// Writes the footprint into @p folder under a name of its own. @return the full name, also after a failure.
    std::string saveFile(const std::string& folder, bool throwOnError);
    /// Writes the footprint under exactly this name.
    void saveFileAs(const std::string& fileName, bool throwOnError);
    /// The footprint as XML text; empty if it can not be written.
    std::string getDevFp(bool throwOnError);
    /// Rebuilds the document from the items without saving it.
    void fillDeviceFootprint(bool throwOnError);
    ///@}

    /** @name Items */
    ///@{
    /// Null until a load or setDeviceData().
    DeviceDataDescItem* getDeviceData() { return m_deviceData; }
    /// @param deviceData not owned; may be null.
    void setDeviceData(DeviceDataDescItem* deviceData) { m_deviceData = deviceData; }
    /// Null until a load or setSoftwareData().
    SoftwareDataDescItem* getSoftwareData() { return m_softwareData; }
    /// @param softwareData not owned; may be null.
    void setSoftwareData(SoftwareDataDescItem* softwareData) { m_softwareData = softwareData; }
    /// The boards in load order or in the order of adding; after a save, in ascending order of their ids.
    std::list<HwBoardDescItem*> getHwBoardDescItems() { return m_hwDescItems; }
    /// Appends a board. A null pointer is announced on std::cerr and appended all the same; an item that is no
    /// HwBoardDescItem is announced and left out.
    /// @param item not owned.
    void addHwItem(IHwBoardDescItem* item);
    /// A list of exactly one element, getDeviceData(), null included.
    std::list<DeviceDataDescItem*> getDeviceDataDescItems();
    ///@}

    /** @name Values
     *  Text forms: date yyyy-mm-dd, part change index dd.dd, part number dddd.dddd.dd. Only the shape is tested. The
     * number -1 stands for an absent one. */
    ///@{
    /// Empty or of the form yyyy-mm-dd.
    bool validateDate(const std::wstring& value);
    /// Empty or of the form dd.dd.
    bool validatePartChangeIndex(const std::wstring& value);
    /// @param name what the value is, for the message.
    void assertValidDate(const std::wstring& value, const std::wstring& name, bool throwOnError);
    void assertValidPartChangeIndex(const std::wstring& value, const std::wstring& name, bool throwOnError);
    void assertNotEmpty(const std::wstring& value, const std::wstring& name, bool throwOnError);
    /// @param partNumber 0 to 99999999. @param variant 0 to 99. @return empty if one is out of range.
    std::wstring parsePartNumber(long partNumber, long variant, bool throwOnError);
    /// @param majorRevision 0 to 99. @param minorRevision 0 to 99. @return empty if one is out of range.
    std::wstring parsePartChangeIndex(long majorRevision, long minorRevision, bool throwOnError);
    /// -1 for an empty text; for one that is not a number in full, an exception or, silently, -1.
    long wStringToLong(const std::wstring& text, bool throwOnError);
    std::wstring intToWstring(long value);
    std::wstring boolToWstring(bool value);
    /// Empty for an absent attribute, which also becomes the document's last error.
    std::wstring getCAttributeStrValue(KvDeviceFootprint::CAttribute& attribute, bool throwOnError);
    /// -1 for an absent attribute, which also becomes the document's last error.
    long getCAttributeLongValue(KvDeviceFootprint::CAttribute& attribute, bool throwOnError);
    /// Splits "name[variant,option]" and its shorter forms. False if a number is none; that output is left alone, and
    /// so are the name and the variant of a text with "[" and no "]".
    bool extractNamePathAndVariantOption(const std::wstring& namePath, std::wstring& name, unsigned int& variant,
                                         unsigned int& option) const;
    ///@}

    /** @name Device data
     *  FromFootprint makes new items, owned by the caller; FromDescItem makes an element, a default one for a null
     * item. */
    ///@{
    void fillDeviceDataFromFootprint(bool throwOnError);
    void fillDeviceDataIntoFootprint(bool throwOnError);
    CServiceDescItem* fillServiceFromFootprint(KvDeviceFootprint::CService& service, bool throwOnError);
    KvDeviceFootprint::CService fillCServiceFromDescItem(IServiceDescItem* item, bool throwOnError);
    CTestInstructionDescItem* fillTestInstructionFromFootprint(KvDeviceFootprint::CTestInstruction& instruction,
                                                               bool throwOnError);
    KvDeviceFootprint::CTestInstruction fillCTestInstructionFromDescItem(ITestInstructionDescItem* item,
                                                                         bool throwOnError);
    MaintenanceTaskDescItem* fillMaintenanceTaskFromFootprint(KvDeviceFootprint::CMaintenanceTask& task,
                                                              bool throwOnError);
    KvDeviceFootprint::CMaintenanceTask fillCMaintenanceTaskFromDescItem(IMaintenanceTaskDescItem* item,
                                                                         bool throwOnError);
    CMaintenanceDescItem* fillMaintenanceFromFootprint(KvDeviceFootprint::CMaintenance& maintenance, bool throwOnError);
    KvDeviceFootprint::CMaintenance fillCMaintenanceFromDescItem(IMaintenanceDescItem* item, bool throwOnError);
    /// Null if there are neither counters nor records.
    CMaintenanceDataDescItem* fillMaintenanceDataFromFootprint(KvDeviceFootprint::CMaintenanceData& data,
                                                               bool throwOnError);
    KvDeviceFootprint::CMaintenanceData fillCMaintenanceDataFromDescItem(IMaintenanceDataDescItem* item,
                                                                         bool throwOnError);
    ///@}

    /** @name Hardware data */
    ///@{
    void fillHardwareDataFromFootprint(bool throwOnError);
    /// @param index place of the board, from 0. @param count number of boards; both only serve messages.
    HwBoardDescItem* fillHwBoardFromFootprint(KvDeviceFootprint::CHardware& hardware, int index, int count,
                                              bool throwOnError);
    CProductDescItem* fillProductFromFootprint(KvDeviceFootprint::CProduct& product, bool throwOnError);
    /// Sorts the boards by id and numbers them anew: the boards of path p get p * 1000 + 1 and so on.
    void fillHardwareDataIntoFootprint(bool throwOnError);
    KvDeviceFootprint::CHardware fillCHardwareFromDescItem(IHwBoardDescItem* item, bool throwOnError);
    KvDeviceFootprint::CProduct fillCProductFromDescItem(IProductDescItem* item, bool throwOnError);
    KvDeviceFootprint::CProgrammablePart fillCProgrammablePartFromDescItem(IHwProgrammablePartDescItem* item,
                                                                           bool throwOnError);
    ///@}

    /** @name Software data
     *  BIOS and operating system are written and not read: before a save, the application sets its items for them on
     * the software data that a load made. */
    ///@{
    void fillSoftwareDataFromFootprint(bool throwOnError);
    std::list<ISoftwareDescItem*> fillSoftwareListFromFootprint(KvDeviceFootprint::CSoftwareList& software,
                                                                bool throwOnError);
    void fillSoftwareDataIntoFootprint(bool throwOnError);
    KvDeviceFootprint::CSoftware fillCSoftwareFromDescItem(ISoftwareDescItem* item, bool throwOnError);
    ///@}

private:
    struct SoftwarePath;

    void printLastError() const;
    long revisionNumber(const std::wstring& part);
    long serialNumber(const std::wstring& text, int count, int index, bool throwOnError);
    void addPartNumbers(std::wstring text, HwBoardDescItem& board);
    void fillCSoftware(KvDeviceFootprint::CSoftware& software, ISoftwareDescItem* item, const SoftwarePath* path,
                       bool throwOnError);

    std::list<HwBoardDescItem*> m_hwDescItems;
    std::list<CProductDescItem*> m_productDescItems;
    DeviceDataDescItem* m_deviceData = nullptr;
    SoftwareDataDescItem* m_softwareData = nullptr;
    KvDeviceFootprint::CDeviceFootprint m_devFp;
    std::int32_t m_testKeyDependency = 1;
    int m_conversionError = 0; // what errno would hold between the conversions of one load
};

} // namespace KvOrdo

#endif
