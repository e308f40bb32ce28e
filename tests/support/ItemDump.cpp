#include "ItemDump.h"

#include "FacadeItems.h"
#include "JsonText.h"

#include <list>

using namespace KvOrdo;

namespace NyxTest
{

namespace
{

using Json = nlohmann::json;

/// Each Dump() takes a reference; DumpPointer() and DumpEach() add the pointer and the list around it. They are members
/// so that the templates see all of them.
struct ItemDumper
{
    template<class Item>
    static Json DumpPointer(const Item* item)
    {
        return item == nullptr ? Json() : Dump(*item);
    }

    template<class Item>
    static Json DumpEach(const std::list<Item*>& items)
    {
        Json dump = Json::array();
        for (const Item* item : items) {
            dump.push_back(DumpPointer(item));
        }
        return dump;
    }

    static Json Dump(const IServiceDescItem& item)
    {
        return {{"serviceDate", JsonText(item.getServiceDate())}, {"serviceCode", item.getServiceCode()}};
    }

    static Json Dump(const ITestInstructionDescItem& item)
    {
        return {{"version", JsonText(item.getVersion())}, {"name", JsonText(item.getName())}};
    }

    static Json Dump(const IMaintenanceTaskDescItem& item)
    {
        return {{"name", JsonText(item.getName())},
                {"done", JsonText(item.getDone())},
                {"result", JsonText(item.getResult())}};
    }

    static Json Dump(const IMaintenanceDescItem& item)
    {
        return {{"responsiblePerson", JsonText(item.getResponsiblePerson())},
                {"maintenanceDate", JsonText(item.getMaintenanceDate())},
                {"generatedBy", JsonText(item.getGeneratedBy())},
                {"maintenanceTasks", DumpEach(item.getMaintenanceTasks())}};
    }

    static Json Dump(const IMaintenanceDataDescItem& item)
    {
        return {{"operatingHours", item.getOperatingHours()},
                {"makeAndBreakCycles", item.getMakeAndBreakCycles()},
                {"maintenances", DumpEach(item.getMaintenances())}};
    }

    static Json Dump(const DeviceDataDescItem& item)
    {
        return {{"deviceId", JsonText(item.getDeviceId())},
                {"partChangeIndex", JsonText(item.getPartChangeIndex())},
                {"partName", JsonText(item.getPartName())},
                {"productDate", JsonText(item.getProductDate())},
                {"type", JsonText(item.getType())},
                {"upgradeType", JsonText(item.getUpgradeType())},
                {"upgradePartNumber", JsonText(item.getUpgradePartNumber())},
                {"testInstructions", DumpEach(item.getTestInstructions())},
                {"maintenanceData", DumpPointer(item.getMaintenanceData())},
                {"services", DumpEach(item.getServices())}};
    }

    static Json Dump(const IHwProgrammablePartDescItem& item)
    {
        return {{"name", JsonText(item.getName())},
                {"version", JsonText(item.getVersion())},
                {"partNumber", JsonText(item.getPartNumber())},
                {"partChangeIndex", JsonText(item.getPartChangeIndex())}};
    }

    static Json Dump(const IBPartIdentificationDescItem& item)
    {
        return {{"name", JsonText(item.getName())},
                {"partNumber", JsonText(item.getPartNumber())},
                {"sn", JsonText(item.getSn())},
                {"partChangeIndex", JsonText(item.getPartChangeIndex())},
                {"vendorName", JsonText(item.getVendorName())},
                {"additionalInfo", JsonText(item.getAdditionalInfo())}};
    }

    static Json DumpPartNumbers(const HwBoardDescItem& item)
    {
        Json dump = Json::array();
        for (unsigned int index = 0; index < item.getPartNumberVariantSize(); ++index) {
            dump.push_back({{"partNumber", item.getPartNumber(index, nullptr)},
                            {"variant", item.getVariant(index, nullptr)},
                            {"text", JsonText(item.getPartNumberVariant(index, nullptr))}});
        }
        return dump;
    }

    static Json Dump(const HwBoardDescItem& item)
    {
        return {{"name", JsonText(item.getName())},
                {"id", item.getId()},
                {"path", item.getPath()},
                {"serialNumber", item.getSerialNumber()},
                {"type", item.getType()},
                {"majorRevision", item.getMajorRevision()},
                {"minorRevision", item.getMinorRevision()},
                {"hwCode", item.getHwCode()},
                {"mainVersion", item.getMainVersion()},
                {"slotInfo", JsonText(item.getSlotInfo())},
                {"isSimulation", item.getIsSimulation()},
                {"programmableParts", DumpEach(item.getProgrammableParts())},
                {"maintenanceData", DumpPointer(item.getMaintenanceData())},
                {"services", DumpEach(item.getServices())},
                {"productId", item.getProductId()},
                {"productDate", JsonText(item.getProductDate())},
                {"readCode", item.getReadCode()},
                {"testInstruction", JsonText(item.getTestInstruction())},
                {"partName", JsonText(item.getPartName())},
                {"parentId", item.getParentId()},
                {"externConnected", item.getExternConnected()},
                {"bPartIdentification", DumpPointer(item.getBPartIdentification())},
                {"partNumberVariant", DumpPartNumbers(item)},
                {"variantOption", item.getVariantOption()}};
    }

    static Json Dump(const CProductDescItem& item)
    {
        return {{"id", item.getId()},
                {"partNumber", JsonText(item.getPartNumber())},
                {"partChangeIndex", JsonText(item.getPartChangeIndex())},
                {"type", JsonText(item.getType())},
                {"partName", JsonText(item.getPartName())}};
    }

    static Json Dump(const ISoftwareDescItem& item)
    {
        return {{"name", JsonText(item.getName())},
                {"version", JsonText(item.getVersion())},
                {"status", JsonText(item.getStatus())},
                {"partNumber", JsonText(item.getPartNumber())},
                {"partChangeIndex", JsonText(item.getPartChangeIndex())},
                {"serialNumber", JsonText(item.getSerialNumber())},
                {"vendorName", JsonText(item.getVendorName())},
                {"softwareItems", DumpEach(item.getSoftwareItems())}};
    }

    /// A BIOS or an operating system.
    template<class Item>
    static Json DumpSystemPart(const Item* item)
    {
        if (item == nullptr) {
            return nullptr;
        }
        return {{"name", JsonText(item->getName())},
                {"version", JsonText(item->getVersion())},
                {"partNumber", JsonText(item->getPartNumber())},
                {"partChangeIndex", JsonText(item->getPartChangeIndex())}};
    }

    static Json Dump(const SoftwareDataDescItem& item)
    {
        return {{"biosItem", DumpSystemPart(item.getBiosItem())},
                {"operatingSystemItem", DumpSystemPart(item.getOperationSystemItem())},
                {"softwareItems", DumpEach(item.getSoftwareItems())}};
    }
};

} // namespace

Json DumpItems(CNyxConfig& config)
{
    return {{"deviceData", ItemDumper::DumpPointer(config.getDeviceData())},
            {"hwBoards", ItemDumper::DumpEach(config.getHwBoardDescItems())},
            {"products", ItemDumper::DumpEach(ProductItems(config))},
            {"softwareData", ItemDumper::DumpPointer(config.getSoftwareData())}};
}

} // namespace NyxTest
