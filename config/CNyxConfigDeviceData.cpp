#include "CNyxConfig.h"

#include "ErrorReport.h"
#include "ItemOwner.h"
#include "MappingHelpers.h"

#include <iostream>
#include <sstream>
#include <utility>

namespace KvOrdo
{

using namespace KvDeviceFootprint;

void CNyxConfig::fillDeviceDataFromFootprint(bool throwOnError)
{
    CDeviceData& deviceData = m_devFp.m_deviceData;
    const std::wstring& deviceId = TextOf(deviceData.m_deviceId);
    const std::wstring& partChangeIndex = TextOf(deviceData.m_partChangeIndex);
    const std::wstring& partName = TextOf(deviceData.m_partName);
    const std::wstring& productDate = TextOf(deviceData.m_productDate);
    const std::wstring& type = TextOf(deviceData.m_type);
    CheckNotEmpty(*this, deviceId, L"<DeviceData> deviceId", throwOnError);
    CheckPartChangeIndex(*this, partChangeIndex, L"<DeviceData> partChangeIndex", throwOnError);
    CheckDate(*this, productDate, L"<DeviceData> productDate", throwOnError);

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
    std::wstring deviceId = m_deviceData->getDeviceId();
    std::wstring partChangeIndex = m_deviceData->getPartChangeIndex();
    std::wstring type = m_deviceData->getType();
    std::wstring partName = m_deviceData->getPartName();
    std::wstring productDate = m_deviceData->getProductDate();
    CheckNotEmpty(*this, deviceId, L"deviceData->deviceId", throwOnError);
    CheckPartChangeIndex(*this, partChangeIndex, L"deviceData->partChangeIndex", throwOnError);
    CheckNotEmpty(*this, type, L"deviceData->type", throwOnError);
    CheckDate(*this, productDate, L"deviceData->date", throwOnError);

    CDeviceData& deviceData = m_devFp.m_deviceData;
    deviceData.m_deviceId = std::move(deviceId);
    deviceData.m_partChangeIndex = std::move(partChangeIndex);
    deviceData.m_type = std::move(type);
    deviceData.m_partName = std::move(partName);
    deviceData.m_productDate = std::move(productDate);
    deviceData.m_maintenanceData = fillCMaintenanceDataFromDescItem(m_deviceData->getMaintenanceData(), throwOnError);
    for (IServiceDescItem* service : m_deviceData->getServices()) {
        AppendMade(deviceData.m_serviceData.m_services,
                   [=] { return fillCServiceFromDescItem(service, throwOnError); });
    }
    for (ITestInstructionDescItem* instruction : m_deviceData->getTestInstructions()) {
        AppendMade(deviceData.m_testInstructions,
                   [=] { return fillCTestInstructionFromDescItem(instruction, throwOnError); });
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
    const std::wstring& serviceDate = TextOf(service.m_serviceDate);
    const long serviceCode = wStringToLong(TextOf(service.m_serviceCode), throwOnError);
    CItemOwner<CServiceDescItem> item(new CServiceDescItem);
    if (serviceCode == -1) {
        ReportError("CNyxConfig::fillServiceFromFootprint(): serviceCode must be set", throwOnError);
    } else {
        item->setServiceCode(serviceCode);
    }
    CheckDate(*this, serviceDate, L"<Service> serviceDate", throwOnError);
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
    std::wstring serviceDate = item->getServiceDate();
    CheckDate(*this, serviceDate, L"service->serviceDate", throwOnError);
    service.m_serviceDate = std::move(serviceDate);
    return service;
}

CTestInstructionDescItem* CNyxConfig::fillTestInstructionFromFootprint(CTestInstruction& instruction, bool throwOnError)
{
    const std::wstring& name = TextOf(instruction.m_name);
    const std::wstring& version = TextOf(instruction.m_version);
    CItemOwner<CTestInstructionDescItem> item(new CTestInstructionDescItem);
    item->setName(name);
    // The message says name, and the version is what is tested. An empty name passes here.
    CheckNotEmpty(*this, version, L"<TestInstruction> name", throwOnError);
    item->setVersion(version);
    return item.release();
}

CTestInstruction CNyxConfig::fillCTestInstructionFromDescItem(ITestInstructionDescItem* item, bool throwOnError)
{
    CTestInstruction instruction;
    if (item == nullptr) {
        return instruction;
    }
    std::wstring name = item->getName();
    std::wstring version = item->getVersion();
    instruction.m_name = std::move(name);
    CheckNotEmpty(*this, version, L"TestInstruction->version", throwOnError);
    instruction.m_version = std::move(version);
    return instruction;
}

MaintenanceTaskDescItem* CNyxConfig::fillMaintenanceTaskFromFootprint(CMaintenanceTask& task, bool throwOnError)
{
    const std::wstring& name = TextOf(task.m_name);
    const std::wstring& done = TextOf(task.m_done);
    const std::wstring& result = TextOf(task.m_result);
    CItemOwner<MaintenanceTaskDescItem> item(new MaintenanceTaskDescItem);
    CheckNotEmpty(*this, name, L"<MaintenanceTask> name", throwOnError);
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
    std::wstring name = item->getName();
    std::wstring done = item->getDone();
    std::wstring result = item->getResult();
    CheckNotEmpty(*this, name, L"maintenanceTask->name", throwOnError);
    task.m_name = std::move(name);
    // Not tested on this way: any text can be written, and all but "true" and "false" fail when they are read back.
    task.m_done = std::move(done);
    task.m_result = std::move(result);
    return task;
}

CMaintenanceDescItem* CNyxConfig::fillMaintenanceFromFootprint(CMaintenance& maintenance, bool throwOnError)
{
    const std::wstring& responsiblePerson = TextOf(maintenance.m_responsiblePerson);
    const std::wstring& maintenanceDate = TextOf(maintenance.m_maintenanceDate);
    const std::wstring& generatedBy = TextOf(maintenance.m_generatedBy);
    CItemOwner<CMaintenanceDescItem> item(new CMaintenanceDescItem);
    item->setResponsiblePerson(responsiblePerson);
    CheckDate(*this, maintenanceDate, L"<Maintenance> maintenanceDate", throwOnError);
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
    std::wstring responsiblePerson = item->getResponsiblePerson();
    std::wstring maintenanceDate = item->getMaintenanceDate();
    std::wstring generatedBy = item->getGeneratedBy();
    maintenance.m_responsiblePerson = std::move(responsiblePerson);
    CheckDate(*this, maintenanceDate, L"maintenance->maincenanceDate", throwOnError); // spelled so
    maintenance.m_maintenanceDate = std::move(maintenanceDate);
    maintenance.m_generatedBy = std::move(generatedBy);
    for (IMaintenanceTaskDescItem* task : item->getMaintenanceTasks()) {
        AppendMade(maintenance.m_maintenanceTasks,
                   [=] { return fillCMaintenanceTaskFromDescItem(task, throwOnError); });
    }
    return maintenance;
}

CMaintenanceDataDescItem* CNyxConfig::fillMaintenanceDataFromFootprint(CMaintenanceData& data, bool throwOnError)
{
    const long operatingHours = wStringToLong(TextOf(data.m_operatingHours), throwOnError);
    const long makeAndBreakCycles = wStringToLong(TextOf(data.m_makeAndBreakCycles), throwOnError);
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
        AppendMade(data.m_maintenances, [=] { return fillCMaintenanceFromDescItem(maintenance, throwOnError); });
    }
    return data;
}

} // namespace KvOrdo
