#include "CNyxConfig.h"

#include "ErrorReport.h"
#include "ItemOwner.h"

#include <iostream>
#include <sstream>

namespace KvOrdo
{

using namespace KvDeviceFootprint;

void CNyxConfig::fillDeviceDataFromFootprint(bool throwOnError)
{
    CDeviceData& deviceData = m_devFp.m_deviceData;
    const std::wstring deviceId = getCAttributeStrValue(deviceData.m_deviceId, throwOnError);
    const std::wstring partChangeIndex = getCAttributeStrValue(deviceData.m_partChangeIndex, throwOnError);
    const std::wstring partName = getCAttributeStrValue(deviceData.m_partName, throwOnError);
    const std::wstring productDate = getCAttributeStrValue(deviceData.m_productDate, throwOnError);
    const std::wstring type = getCAttributeStrValue(deviceData.m_type, throwOnError);
    assertNotEmpty(deviceId, L"<DeviceData> deviceId", throwOnError);
    assertValidPartChangeIndex(partChangeIndex, L"<DeviceData> partChangeIndex", throwOnError);
    assertValidDate(productDate, L"<DeviceData> productDate", throwOnError);

    // upgradeType and upgradePartNumber are not read: the item carries them for the application alone.
    CItemOwner<DeviceDataDescItem> item(new DeviceDataDescItem);
    item->setDeviceId(deviceId);
    item->setPartChangeIndex(partChangeIndex);
    item->setPartName(partName);
    item->setProductDate(productDate);
    item->setType(type);

    CItemOwner<CMaintenanceDataDescItem> maintenanceData(
        fillMaintenanceDataFromFootprint(deviceData.m_maintenanceData, throwOnError));
    CItemOwners<CServiceDescItem> services;
    for (CService& service : deviceData.m_serviceData.m_services) {
        services.emplace_back(fillServiceFromFootprint(service, throwOnError));
    }
    CItemOwners<CTestInstructionDescItem> testInstructions;
    for (CTestInstruction& instruction : deviceData.m_testInstructions) {
        testInstructions.emplace_back(fillTestInstructionFromFootprint(instruction, throwOnError));
        // The first one is never tested, even if more follow.
        if (testInstructions.size() > 1 && testInstructions.back()->getName().empty()) {
            ReportError("CNyxConfig::fillDeviceDataFromFootprint(): <TestInstruction> may only be empty if only one "
                        "TestInstruction exists",
                        throwOnError);
        }
    }
    item->setMaintenanceData(maintenanceData.release());
    item->setServices(Release<IServiceDescItem>(services));
    item->setTestInstructions(Release<ITestInstructionDescItem>(testInstructions));
    m_deviceData = item.release();
}

void CNyxConfig::fillDeviceDataIntoFootprint(bool throwOnError)
{
    if (m_deviceData == nullptr) {
        return;
    }
    const std::wstring deviceId = m_deviceData->getDeviceId();
    const std::wstring partChangeIndex = m_deviceData->getPartChangeIndex();
    const std::wstring type = m_deviceData->getType();
    const std::wstring partName = m_deviceData->getPartName();
    const std::wstring productDate = m_deviceData->getProductDate();
    assertNotEmpty(deviceId, L"deviceData->deviceId", throwOnError);
    assertValidPartChangeIndex(partChangeIndex, L"deviceData->partChangeIndex", throwOnError);
    assertNotEmpty(type, L"deviceData->type", throwOnError);
    assertValidDate(productDate, L"deviceData->date", throwOnError);

    CDeviceData& deviceData = m_devFp.m_deviceData;
    deviceData.m_deviceId = deviceId;
    deviceData.m_partChangeIndex = partChangeIndex;
    deviceData.m_type = type;
    deviceData.m_partName = partName;
    deviceData.m_productDate = productDate;
    deviceData.m_maintenanceData = fillCMaintenanceDataFromDescItem(m_deviceData->getMaintenanceData(), throwOnError);
    for (IServiceDescItem* service : m_deviceData->getServices()) {
        deviceData.m_serviceData.m_services.push_back(fillCServiceFromDescItem(service, throwOnError));
    }
    for (ITestInstructionDescItem* instruction : m_deviceData->getTestInstructions()) {
        deviceData.m_testInstructions.push_back(fillCTestInstructionFromDescItem(instruction, throwOnError));
        if (deviceData.m_testInstructions.size() < 2 || !deviceData.m_testInstructions.back().m_name.IsEmpty()) {
            continue;
        }
        std::ostringstream message;
        message << "CNyxConfig::fillDeviceDataIntoFootprint(): TestInstruction->name may only be empty if only one "
                   "TestInstruction exists.";
        // The stream's address is what has always been printed here, not its text; readers of the output know it so.
        std::cerr << static_cast<const void*>(&message) << std::endl;
        if (throwOnError) {
            WriteError(std::string("Throwing CNyxConfigException"));
            throw CNyxConfigException(message.str());
        }
    }
}

CServiceDescItem* CNyxConfig::fillServiceFromFootprint(CService& service, bool throwOnError)
{
    const std::wstring serviceDate = getCAttributeStrValue(service.m_serviceDate, throwOnError);
    const long serviceCode = getCAttributeLongValue(service.m_serviceCode, throwOnError);
    CItemOwner<CServiceDescItem> item(new CServiceDescItem);
    if (serviceCode == -1) {
        ReportError("CNyxConfig::fillServiceFromFootprint(): serviceCode must be set", throwOnError);
    } else {
        item->setServiceCode(serviceCode);
    }
    assertValidDate(serviceDate, L"<Service> serviceDate", throwOnError);
    item->setServiceDate(serviceDate);
    return item.release();
}

CService CNyxConfig::fillCServiceFromDescItem(IServiceDescItem* item, bool throwOnError)
{
    CService service;
    if (item == nullptr) {
        return service;
    }
    const long serviceCode = item->getServiceCode();
    if (serviceCode == -1) {
        ReportError("CNyxConfig::fillCServiceFromDescItem(): serviceCode must be set", throwOnError);
        return service;
    }
    service.m_serviceCode = serviceCode;
    const std::wstring serviceDate = item->getServiceDate();
    assertValidDate(serviceDate, L"service->serviceDate", throwOnError);
    service.m_serviceDate = serviceDate;
    return service;
}

CTestInstructionDescItem* CNyxConfig::fillTestInstructionFromFootprint(CTestInstruction& instruction, bool throwOnError)
{
    const std::wstring name = getCAttributeStrValue(instruction.m_name, throwOnError);
    const std::wstring version = getCAttributeStrValue(instruction.m_version, throwOnError);
    CItemOwner<CTestInstructionDescItem> item(new CTestInstructionDescItem);
    item->setName(name);
    // The message says name, and the version is what is tested. An empty name passes here.
    assertNotEmpty(version, L"<TestInstruction> name", throwOnError);
    item->setVersion(version);
    return item.release();
}

CTestInstruction CNyxConfig::fillCTestInstructionFromDescItem(ITestInstructionDescItem* item, bool throwOnError)
{
    CTestInstruction instruction;
    if (item == nullptr) {
        return instruction;
    }
    const std::wstring name = item->getName();
    const std::wstring version = item->getVersion();
    instruction.m_name = name;
    assertNotEmpty(version, L"TestInstruction->version", throwOnError);
    instruction.m_version = version;
    return instruction;
}

MaintenanceTaskDescItem* CNyxConfig::fillMaintenanceTaskFromFootprint(CMaintenanceTask& task, bool throwOnError)
{
    const std::wstring name = getCAttributeStrValue(task.m_name, throwOnError);
    const std::wstring done = getCAttributeStrValue(task.m_done, throwOnError);
    const std::wstring result = getCAttributeStrValue(task.m_result, throwOnError);
    CItemOwner<MaintenanceTaskDescItem> item(new MaintenanceTaskDescItem);
    assertNotEmpty(name, L"<MaintenanceTask> name", throwOnError);
    item->setName(name);
    if (done != L"true" && done != L"false") {
        ReportError("CNyxConfig::fillMaintenanceTaskFromFootprint(): done is required and must be either true or false",
                    throwOnError);
    }
    item->setDone(done);
    item->setResult(result);
    return item.release();
}

CMaintenanceTask CNyxConfig::fillCMaintenanceTaskFromDescItem(IMaintenanceTaskDescItem* item, bool throwOnError)
{
    CMaintenanceTask task;
    if (item == nullptr) {
        return task;
    }
    const std::wstring name = item->getName();
    const std::wstring done = item->getDone();
    const std::wstring result = item->getResult();
    assertNotEmpty(name, L"maintenanceTask->name", throwOnError);
    task.m_name = name;
    // Not tested on this way: any text can be written, and all but "true" and "false" fail when they are read back.
    task.m_done = done;
    task.m_result = result;
    return task;
}

CMaintenanceDescItem* CNyxConfig::fillMaintenanceFromFootprint(CMaintenance& maintenance, bool throwOnError)
{
    const std::wstring responsiblePerson = getCAttributeStrValue(maintenance.m_responsiblePerson, throwOnError);
    const std::wstring maintenanceDate = getCAttributeStrValue(maintenance.m_maintenanceDate, throwOnError);
    const std::wstring generatedBy = getCAttributeStrValue(maintenance.m_generatedBy, throwOnError);
    CItemOwner<CMaintenanceDescItem> item(new CMaintenanceDescItem);
    item->setResponsiblePerson(responsiblePerson);
    assertValidDate(maintenanceDate, L"<Maintenance> maintenanceDate", throwOnError);
    item->setMaintenanceDate(maintenanceDate);
    item->setGeneratedBy(generatedBy);
    CItemOwners<MaintenanceTaskDescItem> tasks;
    for (CMaintenanceTask& task : maintenance.m_maintenanceTasks) {
        tasks.emplace_back(fillMaintenanceTaskFromFootprint(task, throwOnError));
    }
    item->setMaintenanceTasks(Release<IMaintenanceTaskDescItem>(tasks));
    return item.release();
}

CMaintenance CNyxConfig::fillCMaintenanceFromDescItem(IMaintenanceDescItem* item, bool throwOnError)
{
    CMaintenance maintenance;
    if (item == nullptr) {
        return maintenance;
    }
    const std::wstring responsiblePerson = item->getResponsiblePerson();
    const std::wstring maintenanceDate = item->getMaintenanceDate();
    const std::wstring generatedBy = item->getGeneratedBy();
    maintenance.m_responsiblePerson = responsiblePerson;
    assertValidDate(maintenanceDate, L"maintenance->maincenanceDate", throwOnError); // spelled so
    maintenance.m_maintenanceDate = maintenanceDate;
    maintenance.m_generatedBy = generatedBy;
    for (IMaintenanceTaskDescItem* task : item->getMaintenanceTasks()) {
        maintenance.m_maintenanceTasks.push_back(fillCMaintenanceTaskFromDescItem(task, throwOnError));
    }
    return maintenance;
}

CMaintenanceDataDescItem* CNyxConfig::fillMaintenanceDataFromFootprint(CMaintenanceData& data, bool throwOnError)
{
    const long operatingHours = getCAttributeLongValue(data.m_operatingHours, throwOnError);
    const long makeAndBreakCycles = getCAttributeLongValue(data.m_makeAndBreakCycles, throwOnError);
    CItemOwner<CMaintenanceDataDescItem> item(new CMaintenanceDataDescItem);
    if (makeAndBreakCycles != -1) {
        item->setMakeAndBreakCycles(makeAndBreakCycles);
    }
    if (operatingHours != -1) {
        item->setOperatingHours(operatingHours);
    }
    CItemOwners<CMaintenanceDescItem> maintenances;
    for (CMaintenance& maintenance : data.m_maintenances) {
        maintenances.emplace_back(fillMaintenanceFromFootprint(maintenance, throwOnError));
    }
    if (maintenances.empty() && operatingHours == -1 && makeAndBreakCycles == -1) {
        return nullptr;
    }
    item->setMaintenances(Release<IMaintenanceDescItem>(maintenances));
    return item.release();
}

CMaintenanceData CNyxConfig::fillCMaintenanceDataFromDescItem(IMaintenanceDataDescItem* item, bool throwOnError)
{
    CMaintenanceData data;
    if (item == nullptr) {
        return data;
    }
    const long operatingHours = item->getOperatingHours();
    const long makeAndBreakCycles = item->getMakeAndBreakCycles();
    if (operatingHours != -1) {
        data.m_operatingHours = operatingHours;
    }
    if (makeAndBreakCycles != -1) {
        data.m_makeAndBreakCycles = makeAndBreakCycles;
    }
    // MaintenanceInfos are mapped in neither direction.
    for (IMaintenanceDescItem* maintenance : item->getMaintenances()) {
        data.m_maintenances.push_back(fillCMaintenanceFromDescItem(maintenance, throwOnError));
    }
    return data;
}

} // namespace KvOrdo
