#include "FacadeItems.h"

using namespace KvOrdo;

namespace NyxTest
{

namespace
{

using ProductList = std::list<CProductDescItem*>;

// Access checks do not apply to the arguments of an explicit instantiation, so it can hand out a private member.
ProductList& Products(CNyxConfig& config);

template<ProductList CNyxConfig::*Member>
struct ProductAccess
{
    friend ProductList& Products(CNyxConfig& config) { return config.*Member; }
};

template struct ProductAccess<&CNyxConfig::m_productDescItems>;

/// Not every interface has a virtual destructor, so items are deleted as what they are.
template<class Item, class Interface>
void DeleteAs(const std::list<Interface*>& items)
{
    for (Interface* item : items) {
        delete static_cast<Item*>(item);
    }
}

void DeleteTasks(const IMaintenanceDataDescItem* data)
{
    if (data == nullptr) {
        return;
    }
    for (const IMaintenanceDescItem* maintenance : data->getMaintenances()) {
        if (maintenance != nullptr) {
            DeleteAs<MaintenanceTaskDescItem>(maintenance->getMaintenanceTasks());
        }
    }
}

void DeleteDevice(DeviceDataDescItem* device)
{
    if (device != nullptr) {
        DeleteTasks(device->getMaintenanceData());
        delete device;
    }
}

void DeleteBoard(HwBoardDescItem* board)
{
    if (board == nullptr) {
        return;
    }
    DeleteTasks(board->getMaintenanceData());
    delete static_cast<CMaintenanceDataDescItem*>(board->getMaintenanceData());
    board->setMaintenanceData(nullptr);
    DeleteAs<HwProgrammablePartDescItem>(board->getProgrammableParts());
    board->setProgrammableParts({});
    DeleteAs<CServiceDescItem>(board->getServices());
    delete board;
}

void DeleteSoftware(const std::list<ISoftwareDescItem*>& items)
{
    for (const ISoftwareDescItem* item : items) {
        if (item != nullptr) {
            DeleteSoftware(item->getSoftwareItems());
        }
    }
    DeleteAs<SoftwareDescItem>(items);
}

} // namespace

ProductList& ProductItems(CNyxConfig& config)
{
    return Products(config);
}

void DeleteItems(CNyxConfig& config)
{
    DeleteDevice(config.getDeviceData());
    config.setDeviceData(nullptr);
    for (HwBoardDescItem* board : config.getHwBoardDescItems()) {
        DeleteBoard(board);
    }
    DeleteAs<CProductDescItem>(ProductItems(config));
    ProductItems(config).clear();
    if (config.getSoftwareData() != nullptr) {
        DeleteSoftware(config.getSoftwareData()->getSoftwareItems());
        delete config.getSoftwareData();
        config.setSoftwareData(nullptr);
    }
}

} // namespace NyxTest
