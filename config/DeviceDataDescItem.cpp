#include "DeviceDataDescItem.h"

#include "CMaintenanceDataDescItem.h"
#include "CServiceDescItem.h"
#include "CTestInstructionDescItem.h"

namespace KvOrdo
{

namespace
{

/// Deletes an item through its implementation, as its interface has no virtual destructor; leaves any other alone.
template<typename Implementation, typename Interface>
void deleteItem(Interface* item)
{
    delete dynamic_cast<Implementation*>(item);
}

} // namespace

DeviceDataDescItem::~DeviceDataDescItem()
{
    deleteItem<CMaintenanceDataDescItem>(m_maintenanceData);
    for (IServiceDescItem* service : m_services) {
        deleteItem<CServiceDescItem>(service);
    }
    for (ITestInstructionDescItem* testInstruction : m_testInstructions) {
        deleteItem<CTestInstructionDescItem>(testInstruction);
    }
}

} // namespace KvOrdo
