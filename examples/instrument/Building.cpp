#include "Building.h"

#include <list>
#include <memory>

using namespace KvOrdo;

namespace
{

IMaintenanceDataDescItem* MakeMaintenanceData(long operatingHours, const std::wstring& person)
{
    auto* task = new MaintenanceTaskDescItem;
    task->setName(L"clean fan");
    task->setDone(L"true");
    task->setResult(L"ok");
    auto* maintenance = new CMaintenanceDescItem;
    maintenance->setResponsiblePerson(person);
    maintenance->setMaintenanceDate(L"2015-02-27");
    maintenance->setGeneratedBy(L"service");
    maintenance->setMaintenanceTasks({task});
    auto* data = new CMaintenanceDataDescItem;
    data->setOperatingHours(operatingHours);
    data->setMakeAndBreakCycles(1200);
    data->setMaintenances({maintenance});
    return data;
}

IServiceDescItem* MakeService(long code, const std::wstring& date)
{
    auto* service = new CServiceDescItem;
    service->setServiceCode(code);
    service->setServiceDate(date);
    return service;
}

DeviceDataDescItem* MakeDevice()
{
    auto* instruction = new CTestInstructionDescItem;
    instruction->setName(L"final test");
    instruction->setVersion(L"02.01");
    auto* device = new DeviceDataDescItem;
    device->setDeviceId(L"1101.2345.02-100123-ab");
    device->setPartChangeIndex(L"01.00");
    device->setType(L"TYPE-A");
    device->setPartName(L"Signal analyser");
    device->setProductDate(L"2015-01-12");
    device->setMaintenanceData(MakeMaintenanceData(100, L"C. M\u00fcller"));
    device->setServices({MakeService(170, L"2015-02-11")});
    device->setTestInstructions({instruction});
    return device;
}

HwBoardDescItem* MakeBoard(long id, long parentId, const std::wstring& name, const std::wstring& partNumber,
                           long serialNumber)
{
    auto* board = new HwBoardDescItem;
    board->setId(id);
    board->setParentId(parentId);
    board->setName(name);
    board->setPartNumberVariant(partNumber);
    board->setSerialNumber(serialNumber);
    board->setMajorRevision(2);
    board->setMinorRevision(1);
    board->setHwCode(7);
    board->setSlotInfo(L"X" + std::to_wstring(id % 1000));
    board->setPartName(name + L" board");
    board->setProductDate(std::wstring(L"2014-12-01"));
    return board;
}

HwBoardDescItem* MakeFullBoard()
{
    auto* part = new HwProgrammablePartDescItem;
    part->setName(L"FPGA");
    part->setVersion(L"4.25.83");
    part->setPartNumber(L"7117.5322.55");
    part->setPartChangeIndex(L"08.05");
    auto* identification = new CBPartIdentificationDescItem;
    identification->setName(L"module");
    identification->setPartNumber(L"0600.9499.03");
    identification->setSn(L"B5920");
    identification->setPartChangeIndex(L"08.04");
    identification->setVendorName(L"Vendor");
    identification->setAdditionalInfo(L"bought in");
    HwBoardDescItem* board = MakeBoard(1002, 1001, L"Converter", L"2222.3333.04", 100456);
    board->setProgrammableParts({part});
    board->setBPartIdentification(identification);
    board->setMaintenanceData(MakeMaintenanceData(95, L"B. Jones"));
    board->setServices({MakeService(171, L"2015-02-12")});
    board->setTestInstruction(std::wstring(L"1.14"));
    board->setReadCode(223);
    board->setProductId(152865);
    return board;
}

SoftwareDescItem* MakeSoftware(const std::wstring& name, const std::wstring& version)
{
    auto* software = new SoftwareDescItem;
    software->setName(name);
    software->setVersion(version);
    software->setStatus(L"active");
    software->setVendorName(L"in-house");
    return software;
}

void FreeSoftware(const std::list<ISoftwareDescItem*>& items)
{
    for (ISoftwareDescItem* item : items) {
        FreeSoftware(item->getSoftwareItems());
        delete dynamic_cast<SoftwareDescItem*>(item);
    }
}

void FreeTasks(const IMaintenanceDataDescItem* data)
{
    if (data == nullptr) {
        return;
    }
    for (const IMaintenanceDescItem* maintenance : data->getMaintenances()) {
        for (IMaintenanceTaskDescItem* task : maintenance->getMaintenanceTasks()) {
            delete task;
        }
    }
}

void FreeBoard(HwBoardDescItem* board)
{
    for (IHwProgrammablePartDescItem* part : board->getProgrammableParts()) {
        delete dynamic_cast<HwProgrammablePartDescItem*>(part);
    }
    board->setProgrammableParts({});
    for (IServiceDescItem* service : board->getServices()) {
        delete dynamic_cast<CServiceDescItem*>(service);
    }
    FreeTasks(board->getMaintenanceData());
    delete dynamic_cast<CMaintenanceDataDescItem*>(board->getMaintenanceData());
    board->setMaintenanceData(nullptr);
    delete board;
}

} // namespace

void SetPrograms(SoftwareDataDescItem& software)
{
    if (software.getBiosItem() == nullptr) {
        software.setBiosItem(new Bios(L"bios", L"3.12.32", L"3197.6212.25", L"02.01"));
    }
    if (software.getOperationSystemItem() == nullptr) {
        software.setOperatingSystemItem(new OperatingSystem(L"os", L"5.3.70", L"0918.6542.29", L"04.09"));
    }
}

void BuildInstrument(CNyxConfig& config)
{
    config.setDeviceData(MakeDevice());
    config.addHwItem(MakeBoard(1001, -1, L"Mainboard", L"1234.5678.02", 100455));
    config.addHwItem(MakeFullBoard());
    config.addHwItem(MakeBoard(1003, 1001, L"Synthesizer", L"2033.4907.11", 100457));
    config.addHwItem(MakeBoard(1004, 1003, L"Reference", L"2033.4908.11", 100458));
    SoftwareDescItem* firmware = MakeSoftware(L"firmware", L"1.29.31");
    firmware->setSoftwareItems({MakeSoftware(L"calibration", L"2.18.7"), MakeSoftware(L"remote control", L"1.1.35")});
    auto* software = new SoftwareDataDescItem;
    software->setSoftwareItems({firmware});
    SetPrograms(*software);
    config.setSoftwareData(software);
}

void FreeItems(CNyxConfig& config)
{
    if (config.getDeviceData() != nullptr) {
        FreeTasks(config.getDeviceData()->getMaintenanceData());
        delete config.getDeviceData();
        config.setDeviceData(nullptr);
    }
    for (HwBoardDescItem* board : config.getHwBoardDescItems()) {
        FreeBoard(board);
    }
    if (config.getSoftwareData() != nullptr) {
        FreeSoftware(config.getSoftwareData()->getSoftwareItems());
        delete config.getSoftwareData();
        config.setSoftwareData(nullptr);
    }
}
