// Device data between footprint and items: each operation's values, checks, messages and order of steps.

#include "CNyxConfig.h"
#include "ErrorJournal.h"
#include "ErrorWord.h"
#include "ExceptionsOn.h"
#include "FacadeItems.h"
#include "FacadeMembers.h"
#include "FacadeMessages.h"
#include "ThrownText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

using namespace KvOrdo;
using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

const std::string noServiceCodeRead = "CNyxConfig::fillServiceFromFootprint(): serviceCode must be set";
const std::string noServiceCodeWritten = "CNyxConfig::fillCServiceFromDescItem(): serviceCode must be set";
const std::string badDone =
    "CNyxConfig::fillMaintenanceTaskFromFootprint(): done is required and must be either true or false";
const std::string noInstructionNameRead = "CNyxConfig::fillDeviceDataFromFootprint(): <TestInstruction> may only be "
                                          "empty if only one TestInstruction exists";
const std::string noInstructionNameWritten = "CNyxConfig::fillDeviceDataIntoFootprint(): TestInstruction->name may "
                                             "only be empty if only one TestInstruction exists.";

class DeviceDataMappingTest : public testing::Test
{
protected:
    ~DeviceDataMappingTest() override { DeleteItems(m_config); }

    /// The device data that the facade reads and writes.
    CDeviceData& Device() { return Document(m_config).m_deviceData; }

    /// Sets what is required.
    void FillElement()
    {
        Device().m_deviceId = L"A-B-C";
        Device().m_type = L"T";
    }

    DeviceDataDescItem* NewItem()
    {
        auto* item = new DeviceDataDescItem;
        item->setDeviceId(L"A-B-C");
        item->setType(L"T");
        m_config.setDeviceData(item);
        return item;
    }

    CTestInstruction& AddInstruction(const std::wstring& name, const std::wstring& version)
    {
        CTestInstruction& instruction = Device().m_testInstructions.CreateEntry();
        instruction.m_name = name;
        instruction.m_version = version;
        return instruction;
    }

    ErrorWord m_errorWord;
    CNyxConfig m_config;
    ErrorJournal m_errors;
};

TEST_F(DeviceDataMappingTest, NullEntryOfAListGivesADefaultEntry)
{
    CMaintenanceDescItem maintenance;
    maintenance.setMaintenanceTasks({nullptr, nullptr});
    EXPECT_EQ(m_config.fillCMaintenanceFromDescItem(&maintenance, true).m_maintenanceTasks.size(), 2U);

    auto* data = new CMaintenanceDataDescItem;
    data->setMaintenances({nullptr});
    DeviceDataDescItem* item = NewItem();
    item->setMaintenanceData(data);
    item->setServices({nullptr, nullptr});
    item->setTestInstructions({nullptr});
    m_config.fillDeviceDataIntoFootprint(true);
    EXPECT_EQ(Device().m_maintenanceData.m_maintenances.size(), 1U);
    EXPECT_EQ(Device().m_serviceData.m_services.size(), 2U);
    EXPECT_EQ(Device().m_testInstructions.size(), 1U);
    EXPECT_TRUE(Device().m_serviceData.IsEmpty());
    EXPECT_EQ(m_errors.Take(), "");
}

// --- device data, read

TEST_F(DeviceDataMappingTest, DeviceIsRead)
{
    for (const bool throwOnError : {false, true}) {
        Document(m_config) = CDeviceFootprint();
        CDeviceData& device = Device();
        device.m_deviceId = L"A-B-C";
        device.m_partChangeIndex = L"01.02";
        device.m_type = L"T";
        device.m_partName = L"N";
        device.m_productDate = L"2014-12-31";
        device.m_upgradeType = L"U";
        device.m_upgradePartNumber = L"P";
        device.m_maintenanceData.m_operatingHours = 12L;
        device.m_serviceData.m_services.CreateEntry().m_serviceCode = 1L;
        device.m_serviceData.m_services.CreateEntry().m_serviceCode = 2L;
        AddInstruction(L"first", L"1");
        AddInstruction(L"second", L"2");

        m_config.fillDeviceDataFromFootprint(throwOnError);
        const DeviceDataDescItem* item = m_config.getDeviceData();
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->getDeviceId(), L"A-B-C");
        EXPECT_EQ(item->getPartChangeIndex(), L"01.02");
        EXPECT_EQ(item->getType(), L"T");
        EXPECT_EQ(item->getPartName(), L"N");
        EXPECT_EQ(item->getProductDate(), L"2014-12-31");
        EXPECT_EQ(item->getUpgradeType(), L"") << "not read";
        EXPECT_EQ(item->getUpgradePartNumber(), L"") << "not read";
        ASSERT_NE(item->getMaintenanceData(), nullptr);
        EXPECT_EQ(item->getMaintenanceData()->getOperatingHours(), 12);
        ASSERT_EQ(item->getServices().size(), 2U);
        EXPECT_EQ(item->getServices().front()->getServiceCode(), 1);
        EXPECT_EQ(item->getServices().back()->getServiceCode(), 2);
        ASSERT_EQ(item->getTestInstructions().size(), 2U);
        EXPECT_EQ(item->getTestInstructions().front()->getName(), L"first");
        EXPECT_EQ(item->getTestInstructions().back()->getName(), L"second");
        delete item;
        m_config.setDeviceData(nullptr);
        EXPECT_EQ(Device().m_upgradeType.GetValue(), L"U") << "the document stays as it is";
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(DeviceDataMappingTest, DeviceWithEveryFaultIsReadInTheOrderOfTheSteps)
{
    Device().m_partChangeIndex = L"1.2";
    Device().m_productDate = L"today";
    Device().m_maintenanceData.m_maintenances.CreateEntry().m_maintenanceDate = L"x";
    Device().m_serviceData.m_services.CreateEntry().m_serviceDate = L"x";
    AddInstruction(L"n", L"");
    AddInstruction(L"", L"");
    AddInstruction(L"", L"1");
    m_config.fillDeviceDataFromFootprint(false);
    EXPECT_EQ(m_errors.Take(),
              WideLine(EmptyText("<DeviceData> deviceId")) + WideLine(BadIndex("<DeviceData> partChangeIndex")) +
                  WideLine(BadDate("<DeviceData> productDate")) + WideLine(BadDate("<Maintenance> maintenanceDate")) +
                  NarrowLine(noServiceCodeRead) + WideLine(BadDate("<Service> serviceDate")) +
                  WideLine(EmptyText("<TestInstruction> name")) + WideLine(EmptyText("<TestInstruction> name")) +
                  NarrowLine(noInstructionNameRead) + NarrowLine(noInstructionNameRead));
    const DeviceDataDescItem* item = m_config.getDeviceData();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->getDeviceId(), L"");
    EXPECT_EQ(item->getPartChangeIndex(), L"1.2");
    EXPECT_EQ(item->getProductDate(), L"today");
    EXPECT_EQ(item->getMaintenanceData()->getMaintenances().front()->getMaintenanceDate(), L"x");
    EXPECT_EQ(item->getServices().front()->getServiceDate(), L"x");
    EXPECT_EQ(item->getTestInstructions().size(), 3U);
}

/// A fault that ends a throwing read, in the order in which a read comes to them.
struct Fault
{
    const char* name;
    void (*make)(CDeviceData&);
    void (*mend)(CDeviceData&);
    std::string message;
    bool isAnnounced; // by the assertions only
    bool isWide;
};

TEST_F(DeviceDataMappingTest, ThrowingReadEndsAtTheFirstFault)
{
    const std::vector<Fault> faults = {
        {"deviceId", [](CDeviceData& d) { d.m_deviceId.Clear(); }, [](CDeviceData& d) { d.m_deviceId = L"A"; },
         EmptyText("<DeviceData> deviceId"), true, true},
        {"partChangeIndex", [](CDeviceData& d) { d.m_partChangeIndex = L"x"; },
         [](CDeviceData& d) { d.m_partChangeIndex.Clear(); }, BadIndex("<DeviceData> partChangeIndex"), true, true},
        {"productDate", [](CDeviceData& d) { d.m_productDate = L"x"; }, [](CDeviceData& d) { d.m_productDate.Clear(); },
         BadDate("<DeviceData> productDate"), true, true},
        {"operatingHours", [](CDeviceData& d) { d.m_maintenanceData.m_operatingHours = L"1h"; },
         [](CDeviceData& d) { d.m_maintenanceData.m_operatingHours = L"1"; }, BadNumber("1h"), false, true},
        {"makeAndBreakCycles", [](CDeviceData& d) { d.m_maintenanceData.m_makeAndBreakCycles = L"y"; },
         [](CDeviceData& d) { d.m_maintenanceData.m_makeAndBreakCycles = L"1"; }, BadNumber("y"), false, true},
        {"maintenanceDate", [](CDeviceData& d) { d.m_maintenanceData.m_maintenances.back().m_maintenanceDate = L"x"; },
         [](CDeviceData& d) { d.m_maintenanceData.m_maintenances.back().m_maintenanceDate.Clear(); },
         BadDate("<Maintenance> maintenanceDate"), true, true},
        {"taskName",
         [](CDeviceData& d) { d.m_maintenanceData.m_maintenances.back().m_maintenanceTasks.back().m_name.Clear(); },
         [](CDeviceData& d) { d.m_maintenanceData.m_maintenances.back().m_maintenanceTasks.back().m_name = L"n"; },
         EmptyText("<MaintenanceTask> name"), true, true},
        {"taskDone",
         [](CDeviceData& d) { d.m_maintenanceData.m_maintenances.back().m_maintenanceTasks.back().m_done = L"maybe"; },
         [](CDeviceData& d) { d.m_maintenanceData.m_maintenances.back().m_maintenanceTasks.back().m_done = L"true"; },
         badDone, false, false},
        {"serviceCode", [](CDeviceData& d) { d.m_serviceData.m_services.back().m_serviceCode = L"z"; },
         [](CDeviceData& d) { d.m_serviceData.m_services.back().m_serviceCode = L"1"; }, BadNumber("z"), false, true},
        {"serviceCodeAbsent", [](CDeviceData& d) { d.m_serviceData.m_services.back().m_serviceCode.Clear(); },
         [](CDeviceData& d) { d.m_serviceData.m_services.back().m_serviceCode = L"1"; }, noServiceCodeRead, false,
         false},
        {"serviceDate", [](CDeviceData& d) { d.m_serviceData.m_services.back().m_serviceDate = L"x"; },
         [](CDeviceData& d) { d.m_serviceData.m_services.back().m_serviceDate.Clear(); },
         BadDate("<Service> serviceDate"), true, true},
        {"instructionVersion", [](CDeviceData& d) { d.m_testInstructions.back().m_version.Clear(); },
         [](CDeviceData& d) { d.m_testInstructions.back().m_version = L"1"; }, EmptyText("<TestInstruction> name"),
         true, true},
        {"instructionName", [](CDeviceData& d) { d.m_testInstructions.back().m_name.Clear(); },
         [](CDeviceData& d) { d.m_testInstructions.back().m_name = L"n"; }, noInstructionNameRead, false, false},
    };
    // Two entries of each list, the first good: its item is under construction when the second fails.
    FillElement();
    for (const wchar_t* name : {L"first", L"second"}) {
        CMaintenance& maintenance = Device().m_maintenanceData.m_maintenances.CreateEntry();
        for (const wchar_t* taskName : {L"first", L"second"}) {
            CMaintenanceTask& entry = maintenance.m_maintenanceTasks.CreateEntry();
            entry.m_name = taskName;
            entry.m_done = L"false";
        }
        Device().m_serviceData.m_services.CreateEntry().m_serviceCode = 1L;
        AddInstruction(name, L"1");
    }
    for (const Fault& fault : faults) {
        fault.make(Device());
        EXPECT_EQ(ThrownText([&] { m_config.fillDeviceDataFromFootprint(true); }), fault.message) << fault.name;
        const std::string line = fault.isWide ? WideLine(fault.message) : NarrowLine(fault.message);
        EXPECT_EQ(m_errors.Take(), fault.isAnnounced ? Announced(fault.message) : line) << fault.name;
        EXPECT_EQ(m_config.getDeviceData(), nullptr) << fault.name;
        fault.mend(Device());
    }
    m_config.fillDeviceDataFromFootprint(true);
    EXPECT_NE(m_config.getDeviceData(), nullptr);
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(DeviceDataMappingTest, OnlyTheFirstOfSeveralTestInstructionsMayBeNameless)
{
    const struct
    {
        std::vector<std::wstring> names;
        std::size_t reports;
    } rows[] = {
        {{L""}, 0}, {{L"", L"n"}, 0}, {{L"n", L""}, 1}, {{L"", L""}, 1}, {{L"", L"", L"n", L""}, 2}, {{L"n", L"m"}, 0},
    };
    for (const auto& row : rows) {
        Device().m_testInstructions.clear();
        FillElement();
        for (const std::wstring& name : row.names) {
            AddInstruction(name, L"1");
        }
        m_config.fillDeviceDataFromFootprint(false);
        std::string expected;
        for (std::size_t i = 0; i < row.reports; ++i) {
            expected += NarrowLine(noInstructionNameRead);
        }
        EXPECT_EQ(m_errors.Take(), expected);
        EXPECT_EQ(m_config.getDeviceData()->getTestInstructions().size(), row.names.size());
        delete m_config.getDeviceData();
        m_config.setDeviceData(nullptr);

        const std::string thrown = ThrownText([&] { m_config.fillDeviceDataFromFootprint(true); });
        EXPECT_EQ(thrown, row.reports == 0 ? NothingThrown : noInstructionNameRead);
        EXPECT_EQ(m_errors.Take(), row.reports == 0 ? "" : NarrowLine(noInstructionNameRead));
        delete m_config.getDeviceData();
        m_config.setDeviceData(nullptr);
    }
}

TEST_F(DeviceDataMappingTest, DeviceWithoutMaintenanceDataHasNone)
{
    FillElement();
    m_config.fillDeviceDataFromFootprint(true);
    EXPECT_EQ(m_config.getDeviceData()->getMaintenanceData(), nullptr);
    EXPECT_TRUE(m_config.getDeviceData()->getServices().empty());
    EXPECT_TRUE(m_config.getDeviceData()->getTestInstructions().empty());
    Document(m_config) = CDeviceFootprint();
    m_config.fillDeviceDataIntoFootprint(true);
    EXPECT_TRUE(Device().m_maintenanceData.IsEmpty());
    EXPECT_TRUE(Device().m_maintenanceData.m_maintenances.empty());
}

TEST_F(DeviceDataMappingTest, AttributesAreReadInTheirOrder)
{
    // With the document's exceptions, the first absent attribute ends a read and is named.
    CMaintenanceTask task;
    CMaintenance maintenance;
    CMaintenanceData data;
    CService service;
    CTestInstruction instruction;
    const struct
    {
        std::function<void()> read;
        std::vector<CAttribute*> attributes; // in the order of reading
    } rows[] = {
        {[&] { m_config.fillDeviceDataFromFootprint(false); },
         {&Device().m_deviceId, &Device().m_partChangeIndex, &Device().m_partName, &Device().m_productDate,
          &Device().m_type, &Device().m_maintenanceData.m_operatingHours,
          &Device().m_maintenanceData.m_makeAndBreakCycles}},
        {[&] { delete m_config.fillServiceFromFootprint(service, false); },
         {&service.m_serviceDate, &service.m_serviceCode}},
        {[&] { delete m_config.fillTestInstructionFromFootprint(instruction, false); },
         {&instruction.m_name, &instruction.m_version}},
        {[&] { delete m_config.fillMaintenanceTaskFromFootprint(task, false); },
         {&task.m_name, &task.m_done, &task.m_result}},
        {[&] { delete m_config.fillMaintenanceFromFootprint(maintenance, false); },
         {&maintenance.m_responsiblePerson, &maintenance.m_maintenanceDate, &maintenance.m_generatedBy}},
        {[&] { delete m_config.fillMaintenanceDataFromFootprint(data, false); },
         {&data.m_operatingHours, &data.m_makeAndBreakCycles}},
    };
    const ExceptionsOn exceptionsOn;
    for (const auto& row : rows) {
        for (CAttribute* attribute : row.attributes) {
            EXPECT_EQ(ThrownText(row.read), PlainException);
            EXPECT_EQ(CDeviceFootprint::GetLastError(),
                      "Can not access empty attribute \"" + attribute->GetNodeName() + "\"!");
            *attribute = L"1";
        }
        EXPECT_EQ(ThrownText(row.read), NothingThrown);
    }
}

// --- device data, written

TEST_F(DeviceDataMappingTest, NoDeviceDataLeavesTheElementAsItIs)
{
    m_config.fillDeviceDataIntoFootprint(true);
    EXPECT_TRUE(Device().IsEmpty());
    m_config.fillDeviceFootprint(true);
    EXPECT_TRUE(Device().IsEmpty());
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(DeviceDataMappingTest, DeviceIsWritten)
{
    for (const bool throwOnError : {false, true}) {
        DeviceDataDescItem* item = NewItem();
        item->setPartChangeIndex(L"01.02");
        item->setPartName(L"N");
        item->setProductDate(L"2014-12-31");
        item->setUpgradeType(L"U");
        item->setUpgradePartNumber(L"P");
        auto* data = new CMaintenanceDataDescItem;
        data->setOperatingHours(12);
        item->setMaintenanceData(data);
        auto* service = new CServiceDescItem;
        service->setServiceCode(1);
        auto* secondService = new CServiceDescItem;
        secondService->setServiceCode(2);
        item->setServices({service, secondService});
        auto* instruction = new CTestInstructionDescItem;
        instruction->setVersion(L"1");
        item->setTestInstructions({instruction});

        Document(m_config) = CDeviceFootprint();
        m_config.fillDeviceDataIntoFootprint(throwOnError);
        const CDeviceData& device = Device();
        EXPECT_EQ(device.m_deviceId.GetValue(), L"A-B-C");
        EXPECT_EQ(device.m_partChangeIndex.GetValue(), L"01.02");
        EXPECT_EQ(device.m_type.GetValue(), L"T");
        EXPECT_EQ(device.m_partName.GetValue(), L"N");
        EXPECT_EQ(device.m_productDate.GetValue(), L"2014-12-31");
        EXPECT_TRUE(device.m_upgradeType.IsEmpty()) << "not written";
        EXPECT_TRUE(device.m_upgradePartNumber.IsEmpty()) << "not written";
        EXPECT_EQ(device.m_maintenanceData.m_operatingHours.GetValue(), L"12");
        ASSERT_EQ(device.m_serviceData.m_services.size(), 2U);
        EXPECT_EQ(device.m_serviceData.m_services.front().m_serviceCode.GetValue(), L"1");
        EXPECT_EQ(device.m_serviceData.m_services.back().m_serviceCode.GetValue(), L"2");
        ASSERT_EQ(device.m_testInstructions.size(), 1U);
        EXPECT_EQ(device.m_testInstructions.front().m_version.GetValue(), L"1");
        delete item;
        m_config.setDeviceData(nullptr);
    }
    EXPECT_EQ(m_errors.Take(), "");
}

const std::string addressLine = R"(\[narrow\]0x[0-9a-f]+)"
                                "\n"; // of the stream object, which is written for its text

/// Gives a device test instructions of these names.
void SetInstructions(DeviceDataDescItem& item, const std::vector<std::wstring>& names)
{
    std::list<ITestInstructionDescItem*> instructions;
    for (const std::wstring& name : names) {
        auto* instruction = new CTestInstructionDescItem;
        instruction->setName(name);
        instruction->setVersion(L"1");
        instructions.push_back(instruction);
    }
    item.setTestInstructions(instructions);
}

TEST_F(DeviceDataMappingTest, NamelessTestInstructionIsToldByAnAddressOnWriting)
{
    DeviceDataDescItem* item = NewItem();
    SetInstructions(*item, {L"", L"", L"n", L""});
    m_config.fillDeviceDataIntoFootprint(false);
    EXPECT_THAT(m_errors.Take(), testing::MatchesRegex("(" + addressLine + "){2}"));
    EXPECT_EQ(Device().m_testInstructions.size(), 4U);

    Document(m_config) = CDeviceFootprint();
    EXPECT_EQ(ThrownText([&] { m_config.fillDeviceDataIntoFootprint(true); }), noInstructionNameWritten);
    EXPECT_THAT(m_errors.Take(), testing::MatchesRegex(addressLine + R"(\[narrow\]Throwing CNyxConfigException)"
                                                                     "\n"));
    EXPECT_EQ(Device().m_testInstructions.size(), 2U) << "the entry is appended before the test";
}

TEST_F(DeviceDataMappingTest, FirstTestInstructionMayBeNamelessOnWriting)
{
    DeviceDataDescItem* item = NewItem();
    SetInstructions(*item, {L"", L"n"});
    m_config.fillDeviceDataIntoFootprint(true);
    EXPECT_EQ(m_errors.Take(), "");
    EXPECT_EQ(Device().m_testInstructions.size(), 2U);
}

TEST_F(DeviceDataMappingTest, DeviceWithEveryFaultIsWrittenInTheOrderOfTheSteps)
{
    auto* item = new DeviceDataDescItem;
    m_config.setDeviceData(item);
    item->setPartChangeIndex(L"1.2");
    item->setProductDate(L"today");
    auto* data = new CMaintenanceDataDescItem;
    auto* maintenance = new CMaintenanceDescItem;
    maintenance->setMaintenanceDate(L"x");
    data->setMaintenances({maintenance});
    item->setMaintenanceData(data);
    item->setServices({new CServiceDescItem});
    item->setTestInstructions({new CTestInstructionDescItem, new CTestInstructionDescItem});
    m_config.fillDeviceDataIntoFootprint(false);
    const std::string noVersion = WideLine(EmptyText("TestInstruction->version"));
    const std::string journal = m_errors.Take();
    const std::string expected =
        WideLine(EmptyText("deviceData->deviceId")) + WideLine(BadIndex("deviceData->partChangeIndex")) +
        WideLine(EmptyText("deviceData->type")) + WideLine(BadDate("deviceData->date")) +
        WideLine(BadDate("maintenance->maincenanceDate")) + NarrowLine(noServiceCodeWritten) + noVersion + noVersion;
    EXPECT_EQ(journal.substr(0, expected.size()), expected);
    EXPECT_THAT(journal.substr(expected.size()), testing::MatchesRegex(addressLine));
    EXPECT_EQ(Device().m_partChangeIndex.GetValue(), L"1.2");
    EXPECT_EQ(Device().m_productDate.GetValue(), L"today");
    EXPECT_EQ(Device().m_maintenanceData.m_maintenances.front().m_maintenanceDate.GetValue(), L"x");
    EXPECT_EQ(Device().m_serviceData.m_services.size(), 1U);
    EXPECT_EQ(Device().m_testInstructions.size(), 2U);
}

TEST_F(DeviceDataMappingTest, ThrowingWriteEndsAtTheFirstFaultAndWritesNothingBeforeTheChecks)
{
    DeviceDataDescItem* item = NewItem();
    item->setDeviceId(L"");
    item->setPartChangeIndex(L"x");
    item->setType(L"");
    item->setProductDate(L"x");
    const auto thrown = [&] { return ThrownText([&] { m_config.fillDeviceDataIntoFootprint(true); }); };
    const auto expectFault = [&](const std::string& message) {
        EXPECT_EQ(thrown(), message);
        EXPECT_EQ(m_errors.Take(), Announced(message));
        EXPECT_TRUE(Device().IsEmpty());
    };
    expectFault(EmptyText("deviceData->deviceId"));
    item->setDeviceId(L"A");
    expectFault(BadIndex("deviceData->partChangeIndex"));
    item->setPartChangeIndex(L"");
    expectFault(EmptyText("deviceData->type"));
    item->setType(L"T");
    expectFault(BadDate("deviceData->date"));
    item->setProductDate(L"");

    auto* data = new CMaintenanceDataDescItem;
    data->setOperatingHours(1);
    item->setMaintenanceData(data);
    auto* good = new CServiceDescItem;
    good->setServiceCode(1);
    item->setServices({good, new CServiceDescItem});
    item->setTestInstructions({new CTestInstructionDescItem});
    EXPECT_EQ(thrown(), noServiceCodeWritten);
    EXPECT_EQ(m_errors.Take(), NarrowLine(noServiceCodeWritten));
    EXPECT_EQ(Device().m_type.GetValue(), L"T");
    EXPECT_EQ(Device().m_maintenanceData.m_operatingHours.GetValue(), L"1");
    EXPECT_EQ(Device().m_serviceData.m_services.size(), 1U);
    EXPECT_TRUE(Device().m_testInstructions.empty());
}

/// A device that records the order in which it is asked.
class RecordingDevice : public DeviceDataDescItem
{
public:
    std::wstring getDeviceId() const override { return Record("deviceId", L"A-B-C"); }
    std::wstring getPartChangeIndex() const override { return Record("partChangeIndex", L"01.02"); }
    std::wstring getType() const override { return Record("type", L"T"); }
    std::wstring getPartName() const override { return Record("partName", L"N"); }
    std::wstring getProductDate() const override { return Record("productDate", L"2014-12-31"); }
    std::wstring getUpgradeType() const override { return Record("upgradeType", L"U"); }
    std::wstring getUpgradePartNumber() const override { return Record("upgradePartNumber", L"P"); }
    IMaintenanceDataDescItem* getMaintenanceData() const override
    {
        Record("maintenanceData", L"");
        return nullptr;
    }
    std::list<IServiceDescItem*> getServices() const override
    {
        Record("services", L"");
        return {};
    }
    std::list<ITestInstructionDescItem*> getTestInstructions() const override
    {
        Record("testInstructions", L"");
        return {};
    }

    std::vector<std::string> TakeCalls() const
    {
        std::vector<std::string> calls;
        calls.swap(m_calls);
        return calls;
    }

private:
    std::wstring Record(const std::string& call, const std::wstring& value) const
    {
        m_calls.push_back(call);
        return value;
    }
    mutable std::vector<std::string> m_calls;
};

TEST_F(DeviceDataMappingTest, DeviceIsAskedOnceForEachValueInOrder)
{
    const auto device = std::make_unique<RecordingDevice>();
    m_config.setDeviceData(device.get());
    m_config.fillDeviceDataIntoFootprint(true);
    EXPECT_EQ(device->TakeCalls(),
              (std::vector<std::string>{"deviceId", "partChangeIndex", "type", "partName", "productDate",
                                        "maintenanceData", "services", "testInstructions"}));
    m_config.setDeviceData(nullptr);
}

// --- there and back

TEST_F(DeviceDataMappingTest, DeviceWithoutATypeIsReadAndNotWritten)
{
    Device().m_deviceId = L"A-B-C";
    m_config.fillDeviceDataFromFootprint(true);
    EXPECT_EQ(m_config.getDeviceData()->getType(), L"");
    EXPECT_EQ(m_errors.Take(), "");
    EXPECT_EQ(ThrownText([&] { m_config.getDevFp(true); }),
              "CNyxConfig::assertNotEmpty: deviceData->type may not be empty");
}

TEST_F(DeviceDataMappingTest, OperatingHoursThatAreNoNumberAreDropped)
{
    FillElement();
    Device().m_maintenanceData.m_operatingHours = L"12h";
    Device().m_maintenanceData.m_makeAndBreakCycles = 3L;
    m_config.fillDeviceDataFromFootprint(false);
    EXPECT_EQ(m_config.getDeviceData()->getMaintenanceData()->getOperatingHours(), -1);
    EXPECT_THAT(m_config.getDevFp(true), testing::HasSubstr("    <MaintenanceData makeAndBreakCycles=\"3\"/>\n"));
    EXPECT_EQ(m_errors.Take(), "");
}

} // namespace
