// Services, test instructions and maintenances between footprint and items, one by one.

#include "CNyxConfig.h"
#include "ErrorJournal.h"
#include "ErrorWord.h"
#include "FacadeMessages.h"
#include "ThrownText.h"

#include <gtest/gtest.h>

#include <cstddef>
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

template<class Item>
using Owner = std::unique_ptr<Item>;

class RecordMappingTest : public testing::Test
{
protected:
    ErrorWord m_errorWord;
    CNyxConfig m_config;
    ErrorJournal m_errors;
};

// --- services

TEST_F(RecordMappingTest, ServiceIsRead)
{
    CService element;
    for (const bool throwOnError : {false, true}) {
        for (const long code : {0L, 17L, -2L}) {
            element.m_serviceCode = code;
            element.m_serviceDate = L"2022-02-12";
            const Owner<CServiceDescItem> item(m_config.fillServiceFromFootprint(element, throwOnError));
            EXPECT_EQ(item->getServiceCode(), code);
            EXPECT_EQ(item->getServiceDate(), L"2022-02-12");
        }
    }
    element.m_serviceDate.Clear();
    const Owner<CServiceDescItem> undated(m_config.fillServiceFromFootprint(element, true));
    EXPECT_EQ(undated->getServiceDate(), L"");
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(RecordMappingTest, ServiceWithoutACodeOnReading)
{
    for (const wchar_t* code : {L"", L"-1", L"x"}) {
        CService element;
        element.m_serviceCode = code;
        element.m_serviceDate = L"bad";
        const Owner<CServiceDescItem> item(m_config.fillServiceFromFootprint(element, false));
        EXPECT_EQ(m_errors.Take(), NarrowLine(noServiceCodeRead) + WideLine(BadDate("<Service> serviceDate")));
        EXPECT_EQ(item->getServiceCode(), -1);
        EXPECT_EQ(item->getServiceDate(), L"bad");
    }
    CService element;
    EXPECT_EQ(ThrownText([&] { m_config.fillServiceFromFootprint(element, true); }), noServiceCodeRead);
    EXPECT_EQ(m_errors.Take(), NarrowLine(noServiceCodeRead));
    element.m_serviceCode = L"x";
    EXPECT_EQ(ThrownText([&] { m_config.fillServiceFromFootprint(element, true); }), BadNumber("x"));
    EXPECT_EQ(m_errors.Take(), WideLine(BadNumber("x")));
}

TEST_F(RecordMappingTest, ServiceWithABadDateOnReading)
{
    CService element;
    element.m_serviceCode = 5L;
    element.m_serviceDate = L"bad";
    const std::string message = BadDate("<Service> serviceDate");
    EXPECT_EQ(ThrownText([&] { m_config.fillServiceFromFootprint(element, true); }), message);
    EXPECT_EQ(m_errors.Take(), Announced(message));
}

TEST_F(RecordMappingTest, ServiceIsWritten)
{
    CServiceDescItem item;
    for (const bool throwOnError : {false, true}) {
        item.setServiceCode(-2);
        item.setServiceDate(L"2022-02-12");
        const CService element = m_config.fillCServiceFromDescItem(&item, throwOnError);
        EXPECT_EQ(element.m_serviceCode.GetValue(), L"-2");
        EXPECT_EQ(element.m_serviceDate.GetValue(), L"2022-02-12");
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(RecordMappingTest, ServiceWithoutACodeOnWriting)
{
    class Service : public CServiceDescItem
    {
    public:
        std::wstring getServiceDate() const override
        {
            ADD_FAILURE() << "the date is not asked for without a code";
            return {};
        }
    };
    Service item;
    EXPECT_TRUE(m_config.fillCServiceFromDescItem(&item, false).IsEmpty());
    EXPECT_EQ(m_errors.Take(), NarrowLine(noServiceCodeWritten));
    EXPECT_EQ(ThrownText([&] { m_config.fillCServiceFromDescItem(&item, true); }), noServiceCodeWritten);
    EXPECT_EQ(m_errors.Take(), NarrowLine(noServiceCodeWritten));
}

TEST_F(RecordMappingTest, ServiceWithABadDateOnWriting)
{
    CServiceDescItem item;
    item.setServiceCode(5);
    item.setServiceDate(L"bad");
    const std::string message = BadDate("service->serviceDate");
    const CService element = m_config.fillCServiceFromDescItem(&item, false);
    EXPECT_EQ(element.m_serviceCode.GetValue(), L"5");
    EXPECT_EQ(element.m_serviceDate.GetValue(), L"bad");
    EXPECT_EQ(m_errors.Take(), WideLine(message));
    EXPECT_EQ(ThrownText([&] { m_config.fillCServiceFromDescItem(&item, true); }), message);
    EXPECT_EQ(m_errors.Take(), Announced(message));
}

// --- test instructions

TEST_F(RecordMappingTest, TestInstructionBothWays)
{
    for (const bool throwOnError : {false, true}) {
        for (const wchar_t* name : {L"n", L""}) {
            CTestInstruction element;
            element.m_name = name;
            element.m_version = L"1.02";
            const Owner<CTestInstructionDescItem> item(
                m_config.fillTestInstructionFromFootprint(element, throwOnError));
            EXPECT_EQ(item->getName(), name);
            EXPECT_EQ(item->getVersion(), L"1.02");
            const CTestInstruction written = m_config.fillCTestInstructionFromDescItem(item.get(), throwOnError);
            EXPECT_EQ(written.m_name.GetValue(), name);
            EXPECT_EQ(written.m_version.GetValue(), L"1.02");
        }
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(RecordMappingTest, TestInstructionWithoutAVersionIsToldUnderItsNameOnReading)
{
    CTestInstruction element;
    element.m_name = L"n";
    const std::string message = EmptyText("<TestInstruction> name");
    const Owner<CTestInstructionDescItem> item(m_config.fillTestInstructionFromFootprint(element, false));
    EXPECT_EQ(item->getName(), L"n");
    EXPECT_EQ(item->getVersion(), L"");
    EXPECT_EQ(m_errors.Take(), WideLine(message));
    EXPECT_EQ(ThrownText([&] { m_config.fillTestInstructionFromFootprint(element, true); }), message);
    EXPECT_EQ(m_errors.Take(), Announced(message));
}

TEST_F(RecordMappingTest, TestInstructionWithoutAVersionOnWriting)
{
    CTestInstructionDescItem item;
    item.setName(L"n");
    const std::string message = EmptyText("TestInstruction->version");
    const CTestInstruction element = m_config.fillCTestInstructionFromDescItem(&item, false);
    EXPECT_EQ(element.m_name.GetValue(), L"n");
    EXPECT_TRUE(element.m_version.IsEmpty());
    EXPECT_EQ(m_errors.Take(), WideLine(message));
    EXPECT_EQ(ThrownText([&] { m_config.fillCTestInstructionFromDescItem(&item, true); }), message);
    EXPECT_EQ(m_errors.Take(), Announced(message));
}

// --- tasks

TEST_F(RecordMappingTest, MaintenanceTaskBothWays)
{
    for (const bool throwOnError : {false, true}) {
        for (const wchar_t* done : {L"true", L"false"}) {
            CMaintenanceTask element;
            element.m_name = L"n";
            element.m_done = done;
            element.m_result = L"r";
            const Owner<MaintenanceTaskDescItem> item(m_config.fillMaintenanceTaskFromFootprint(element, throwOnError));
            EXPECT_EQ(item->getName(), L"n");
            EXPECT_EQ(item->getDone(), done);
            EXPECT_EQ(item->getResult(), L"r");
            const CMaintenanceTask written = m_config.fillCMaintenanceTaskFromDescItem(item.get(), throwOnError);
            EXPECT_EQ(written.m_name.GetValue(), L"n");
            EXPECT_EQ(written.m_done.GetValue(), done);
            EXPECT_EQ(written.m_result.GetValue(), L"r");
        }
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(RecordMappingTest, MaintenanceTaskIsReadWithAnyTextForDoneButToldOff)
{
    for (const wchar_t* done : {L"", L"maybe", L"TRUE", L"True", L"true ", L"truefalse", L"1"}) {
        CMaintenanceTask element;
        element.m_name = L"n";
        element.m_done = done;
        element.m_result = L"r";
        const Owner<MaintenanceTaskDescItem> item(m_config.fillMaintenanceTaskFromFootprint(element, false));
        EXPECT_EQ(item->getDone(), done);
        EXPECT_EQ(item->getResult(), L"r");
        EXPECT_EQ(m_errors.Take(), NarrowLine(badDone));
        EXPECT_EQ(ThrownText([&] { m_config.fillMaintenanceTaskFromFootprint(element, true); }), badDone);
        EXPECT_EQ(m_errors.Take(), NarrowLine(badDone)) << "the throw is not announced";
    }
}

TEST_F(RecordMappingTest, MaintenanceTaskWithoutANameOnReading)
{
    CMaintenanceTask element;
    const std::string message = EmptyText("<MaintenanceTask> name");
    const Owner<MaintenanceTaskDescItem> item(m_config.fillMaintenanceTaskFromFootprint(element, false));
    EXPECT_EQ(m_errors.Take(), WideLine(message) + NarrowLine(badDone)) << "the name is tested first";
    EXPECT_EQ(item->getName(), L"");
    EXPECT_EQ(ThrownText([&] { m_config.fillMaintenanceTaskFromFootprint(element, true); }), message);
    EXPECT_EQ(m_errors.Take(), Announced(message));
}

TEST_F(RecordMappingTest, MaintenanceTaskIsWrittenWithAnyTextForDone)
{
    MaintenanceTaskDescItem item;
    item.setName(L"n");
    for (const wchar_t* done : {L"maybe", L"", L"truefalse"}) {
        item.setDone(done);
        const CMaintenanceTask element = m_config.fillCMaintenanceTaskFromDescItem(&item, true);
        EXPECT_EQ(element.m_done.GetValue(), done);
        EXPECT_EQ(m_errors.Take(), "");
    }
}

TEST_F(RecordMappingTest, MaintenanceTaskWithoutANameOnWriting)
{
    MaintenanceTaskDescItem item;
    item.setDone(L"true");
    item.setResult(L"r");
    const std::string message = EmptyText("maintenanceTask->name");
    const CMaintenanceTask element = m_config.fillCMaintenanceTaskFromDescItem(&item, false);
    EXPECT_TRUE(element.m_name.IsEmpty());
    EXPECT_EQ(element.m_done.GetValue(), L"true");
    EXPECT_EQ(element.m_result.GetValue(), L"r");
    EXPECT_EQ(m_errors.Take(), WideLine(message));
    EXPECT_EQ(ThrownText([&] { m_config.fillCMaintenanceTaskFromDescItem(&item, true); }), message);
    EXPECT_EQ(m_errors.Take(), Announced(message));
}

// --- maintenances

CMaintenance MaintenanceElement(const std::wstring& date, const std::vector<std::wstring>& tasks)
{
    CMaintenance element;
    element.m_responsiblePerson = L"p";
    element.m_maintenanceDate = date;
    element.m_generatedBy = L"g";
    for (const std::wstring& name : tasks) {
        CMaintenanceTask& task = element.m_maintenanceTasks.CreateEntry();
        task.m_name = name;
        task.m_done = L"true";
    }
    return element;
}

/// Deletes a maintenance with its tasks, which it leaves alone.
struct MaintenanceDeleter
{
    void operator()(CMaintenanceDescItem* item) const
    {
        for (IMaintenanceTaskDescItem* task : item->getMaintenanceTasks()) {
            delete task;
        }
        delete item;
    }
};
using MaintenanceOwner = std::unique_ptr<CMaintenanceDescItem, MaintenanceDeleter>;

TEST_F(RecordMappingTest, MaintenanceBothWays)
{
    for (const bool throwOnError : {false, true}) {
        CMaintenance element = MaintenanceElement(L"2009-04-19", {L"first", L"second"});
        const MaintenanceOwner item(m_config.fillMaintenanceFromFootprint(element, throwOnError));
        EXPECT_EQ(item->getResponsiblePerson(), L"p");
        EXPECT_EQ(item->getMaintenanceDate(), L"2009-04-19");
        EXPECT_EQ(item->getGeneratedBy(), L"g");
        ASSERT_EQ(item->getMaintenanceTasks().size(), 2U);
        EXPECT_EQ(item->getMaintenanceTasks().front()->getName(), L"first");
        EXPECT_EQ(item->getMaintenanceTasks().back()->getName(), L"second");

        const CMaintenance written = m_config.fillCMaintenanceFromDescItem(item.get(), throwOnError);
        EXPECT_EQ(written.m_responsiblePerson.GetValue(), L"p");
        EXPECT_EQ(written.m_maintenanceDate.GetValue(), L"2009-04-19");
        EXPECT_EQ(written.m_generatedBy.GetValue(), L"g");
        ASSERT_EQ(written.m_maintenanceTasks.size(), 2U);
        EXPECT_EQ(written.m_maintenanceTasks.front().m_name.GetValue(), L"first");
        EXPECT_EQ(written.m_maintenanceTasks.back().m_name.GetValue(), L"second");
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(RecordMappingTest, MaintenanceWithABadDateOnReading)
{
    CMaintenance element = MaintenanceElement(L"bad", {L"", L"n"});
    const std::string message = BadDate("<Maintenance> maintenanceDate");
    const MaintenanceOwner item(m_config.fillMaintenanceFromFootprint(element, false));
    EXPECT_EQ(m_errors.Take(), WideLine(message) + WideLine(EmptyText("<MaintenanceTask> name")));
    EXPECT_EQ(item->getMaintenanceDate(), L"bad");
    EXPECT_EQ(item->getMaintenanceTasks().size(), 2U);
    EXPECT_EQ(ThrownText([&] { m_config.fillMaintenanceFromFootprint(element, true); }), message);
    EXPECT_EQ(m_errors.Take(), Announced(message));
}

TEST_F(RecordMappingTest, MaintenanceWithABadDateOnWriting)
{
    CMaintenanceDescItem item;
    MaintenanceTaskDescItem task; // without a name
    item.setResponsiblePerson(L"p");
    item.setMaintenanceDate(L"bad");
    item.setGeneratedBy(L"g");
    item.setMaintenanceTasks({&task});
    const std::string message = BadDate("maintenance->maincenanceDate");
    const CMaintenance element = m_config.fillCMaintenanceFromDescItem(&item, false);
    EXPECT_EQ(m_errors.Take(), WideLine(message) + WideLine(EmptyText("maintenanceTask->name")));
    EXPECT_EQ(element.m_responsiblePerson.GetValue(), L"p");
    EXPECT_EQ(element.m_maintenanceDate.GetValue(), L"bad");
    EXPECT_EQ(element.m_generatedBy.GetValue(), L"g");
    EXPECT_EQ(element.m_maintenanceTasks.size(), 1U);
    EXPECT_EQ(ThrownText([&] { m_config.fillCMaintenanceFromDescItem(&item, true); }), message);
    EXPECT_EQ(m_errors.Take(), Announced(message));
}

// --- maintenance data

TEST_F(RecordMappingTest, MaintenanceDataIsReadUnlessThereIsNone)
{
    const struct
    {
        std::wstring hours, cycles;
        std::size_t maintenances;
        bool isThere;
        long expectedHours, expectedCycles;
    } rows[] = {
        {L"", L"", 0, false, -1, -1}, {L"-1", L"-1", 0, false, -1, -1}, {L"1200", L"", 0, true, 1200, -1},
        {L"", L"0", 0, true, -1, 0},  {L"-2", L"", 0, true, -2, -1},    {L"1200", L"17", 0, true, 1200, 17},
        {L"", L"", 1, true, -1, -1},  {L"-1", L"", 2, true, -1, -1},    {L"0", L"0", 2, true, 0, 0},
    };
    for (const auto& row : rows) {
        for (const bool throwOnError : {false, true}) {
            CMaintenanceData element;
            element.m_operatingHours = row.hours;
            element.m_makeAndBreakCycles = row.cycles;
            for (std::size_t i = 0; i < row.maintenances; ++i) {
                element.m_maintenances.CreateEntry().m_generatedBy = static_cast<long>(i);
            }
            const Owner<CMaintenanceDataDescItem> item(
                m_config.fillMaintenanceDataFromFootprint(element, throwOnError));
            ASSERT_EQ(item != nullptr, row.isThere);
            if (row.isThere) {
                EXPECT_EQ(item->getOperatingHours(), row.expectedHours);
                EXPECT_EQ(item->getMakeAndBreakCycles(), row.expectedCycles);
                ASSERT_EQ(item->getMaintenances().size(), row.maintenances);
            }
            if (row.maintenances == 2) {
                EXPECT_EQ(item->getMaintenances().front()->getGeneratedBy(), L"0");
                EXPECT_EQ(item->getMaintenances().back()->getGeneratedBy(), L"1");
            }
        }
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(RecordMappingTest, MaintenanceInfosAreNotRead)
{
    CMaintenanceData element;
    element.m_maintenanceInfos.CreateEntry().m_name = L"n";
    EXPECT_EQ(m_config.fillMaintenanceDataFromFootprint(element, true), nullptr);
}

TEST_F(RecordMappingTest, MaintenanceDataWithATextThatIsNoNumber)
{
    CMaintenanceData element;
    element.m_operatingHours = L"12h";
    EXPECT_EQ(m_config.fillMaintenanceDataFromFootprint(element, false), nullptr);
    EXPECT_EQ(m_errors.Take(), "");
    EXPECT_EQ(ThrownText([&] { m_config.fillMaintenanceDataFromFootprint(element, true); }), BadNumber("12h"));
    EXPECT_EQ(m_errors.Take(), WideLine(BadNumber("12h")));
    element.m_makeAndBreakCycles = L"x";
    EXPECT_EQ(ThrownText([&] { m_config.fillMaintenanceDataFromFootprint(element, true); }), BadNumber("12h"))
        << "operating hours are read first";
    element.m_operatingHours = L"12";
    const Owner<CMaintenanceDataDescItem> item(m_config.fillMaintenanceDataFromFootprint(element, false));
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->getMakeAndBreakCycles(), -1);
}

TEST_F(RecordMappingTest, MaintenanceDataIsWrittenWithoutAbsentNumbers)
{
    const struct
    {
        long hours, cycles;
        std::wstring writtenHours, writtenCycles;
    } rows[] = {
        {-1, -1, L"", L""}, {0, -1, L"0", L""}, {-1, 0, L"", L"0"}, {-2, 1200, L"-2", L"1200"}, {17, -2, L"17", L"-2"},
    };
    for (const auto& row : rows) {
        CMaintenanceDataDescItem item;
        item.setOperatingHours(row.hours);
        item.setMakeAndBreakCycles(row.cycles);
        const CMaintenanceData element = m_config.fillCMaintenanceDataFromDescItem(&item, true);
        EXPECT_EQ(element.m_operatingHours.GetValue(), row.writtenHours);
        EXPECT_EQ(element.m_makeAndBreakCycles.GetValue(), row.writtenCycles);
        EXPECT_TRUE(element.m_maintenances.empty());
    }
    CMaintenanceDataDescItem item;
    for (const wchar_t* person : {L"first", L"second"}) {
        auto* maintenance = new CMaintenanceDescItem;
        maintenance->setResponsiblePerson(person);
        std::list<IMaintenanceDescItem*> maintenances = item.getMaintenances();
        maintenances.push_back(maintenance);
        item.setMaintenances(maintenances);
    }
    const CMaintenanceData element = m_config.fillCMaintenanceDataFromDescItem(&item, true);
    ASSERT_EQ(element.m_maintenances.size(), 2U);
    EXPECT_EQ(element.m_maintenances.front().m_responsiblePerson.GetValue(), L"first");
    EXPECT_EQ(element.m_maintenances.back().m_responsiblePerson.GetValue(), L"second");
    EXPECT_EQ(m_errors.Take(), "");
}

// --- null items

TEST_F(RecordMappingTest, NullItemGivesADefaultElement)
{
    for (const bool throwOnError : {false, true}) {
        EXPECT_TRUE(m_config.fillCServiceFromDescItem(nullptr, throwOnError).IsEmpty());
        EXPECT_TRUE(m_config.fillCTestInstructionFromDescItem(nullptr, throwOnError).IsEmpty());
        EXPECT_TRUE(m_config.fillCMaintenanceTaskFromDescItem(nullptr, throwOnError).IsEmpty());
        EXPECT_TRUE(m_config.fillCMaintenanceFromDescItem(nullptr, throwOnError).IsEmpty());
        EXPECT_TRUE(m_config.fillCMaintenanceDataFromDescItem(nullptr, throwOnError).IsEmpty());
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(RecordMappingTest, AnyTextForDoneIsWrittenAndNotReadBack)
{
    MaintenanceTaskDescItem item;
    item.setName(L"n");
    item.setDone(L"maybe");
    CMaintenanceTask element = m_config.fillCMaintenanceTaskFromDescItem(&item, true);
    EXPECT_EQ(ThrownText([&] { m_config.fillMaintenanceTaskFromFootprint(element, true); }), badDone);
}

} // namespace
