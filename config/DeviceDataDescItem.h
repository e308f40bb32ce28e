#ifndef NYXCONFIG_DEVICEDATADESCITEM_H
#define NYXCONFIG_DEVICEDATADESCITEM_H

#include <list>
#include <string>

#include "IDeviceDataDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * The device data.
 *
 * An item is not guarded: it belongs to one thread at a time.
 */
class NYXCONFIG_EXPORT DeviceDataDescItem : public IDeviceDataDescItemEx
{
public:
    DeviceDataDescItem() = default;
    /**
     * Deletes the maintenance data, the services and the test instructions; null is allowed everywhere.
     * Only this library's implementations and classes derived from them can be deleted, as the interfaces have no
     * virtual destructor: another implementation stays with whoever made it.
     */
    ~DeviceDataDescItem() override;
    DeviceDataDescItem(const DeviceDataDescItem&) = delete;
    DeviceDataDescItem& operator=(const DeviceDataDescItem&) = delete;

    std::wstring getDeviceId() const override { return m_deviceId; }
    std::wstring getPartChangeIndex() const override { return m_partChangeIndex; }
    std::wstring getType() const override { return m_type; }
    std::wstring getPartName() const override { return m_partName; }
    std::wstring getProductDate() const override { return m_productDate; }
    std::wstring getUpgradeType() const override { return m_upgradeType; }
    std::wstring getUpgradePartNumber() const override { return m_upgradePartNumber; }
    IMaintenanceDataDescItem* getMaintenanceData() const override { return m_maintenanceData; }
    std::list<IServiceDescItem*> getServices() const override { return m_services; }
    std::list<ITestInstructionDescItem*> getTestInstructions() const override { return m_testInstructions; }

    void setDeviceId(const std::wstring& deviceId) override { m_deviceId = deviceId; }
    void setPartChangeIndex(const std::wstring& partChangeIndex) override { m_partChangeIndex = partChangeIndex; }
    void setType(const std::wstring& type) override { m_type = type; }
    void setPartName(const std::wstring& partName) override { m_partName = partName; }
    void setProductDate(const std::wstring& productDate) override { m_productDate = productDate; }
    void setUpgradeType(const std::wstring& upgradeType) override { m_upgradeType = upgradeType; }
    void setUpgradePartNumber(const std::wstring& upgradePartNumber) override
    {
        m_upgradePartNumber = upgradePartNumber;
    }
    void setMaintenanceData(IMaintenanceDataDescItem* maintenanceData) override { m_maintenanceData = maintenanceData; }
    void setServices(const std::list<IServiceDescItem*>& services) override { m_services = services; }
    void setTestInstructions(const std::list<ITestInstructionDescItem*>& testInstructions) override
    {
        m_testInstructions = testInstructions;
    }

private:
    std::wstring m_deviceId;
    std::wstring m_partChangeIndex;
    std::wstring m_partName;
    std::wstring m_productDate;
    std::wstring m_type;
    std::wstring m_upgradeType;
    std::wstring m_upgradePartNumber;
    std::list<ITestInstructionDescItem*> m_testInstructions; ///< Owned.
    IMaintenanceDataDescItem* m_maintenanceData = nullptr;   ///< Owned; null at start.
    std::list<IServiceDescItem*> m_services;                 ///< Owned.
};

} // namespace KvOrdo

#endif
