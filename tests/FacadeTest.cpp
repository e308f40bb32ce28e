// The facade as a whole: items in and out, files, order of steps, messages, exceptions, ownership. The program takes
// the place of the property store.

#include "CNyxConfig.h"
#include "ErrorJournal.h"
#include "ErrorWord.h"
#include "ExceptionsOn.h"
#include "FacadeItems.h"
#include "FacadeMembers.h"
#include "FakeClock.h"
#include "Files.h"
#include "ForeignLocale.h"
#include "ItemDump.h"
#include "OwningConfig.h"
#include "ReferenceMd5.h"
#include "TempFolder.h"
#include "ThrownText.h"
#include "VelaProperties.h"
#include "VirtualSlot.h"
#include "XmlText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <list>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace KvOrdo;
using namespace NyxTest;
using KvDeviceFootprint::CDeviceFootprint;

namespace
{

int s_propertyValue = 0;
std::vector<std::string> s_propertyCalls;

} // namespace

int VelaProperties::getIntegerProperty(const QString& group, const QString& key, int defaultValue, int scope)
{
    s_propertyCalls.push_back(group.toStdString() + " " + key.toStdString() + " " + std::to_string(defaultValue) + " " +
                              std::to_string(scope));
    return s_propertyValue;
}

namespace
{

const std::string deviceId = "1101.2345.02-100123-ab";
const std::string goodDevice =
    "  <DeviceData deviceId=\"" + deviceId + "\" partChangeIndex=\"01.00\" type=\"TYPE-A\"/>\n";
const std::string oneBoard = "  <HardwareData>\n"
                             "    <HardwareList>\n"
                             "      <Hardware id=\"1001\" name=\"CPU\" hardwareCode=\"3\"/>\n"
                             "    </HardwareList>\n"
                             "  </HardwareData>\n";

const std::string throwing = "Throwing CNyxConfigException";
const std::string noDeviceIdRead = "CNyxConfig::assertNotEmpty: <DeviceData> deviceId may not be empty";
const std::string noDeviceIdWritten = "CNyxConfig::assertNotEmpty: deviceData->deviceId may not be empty";
const std::string sameBoardId = "CNyxConfig::fillHardwareDataFromFootprint: <Hardware> id muss eindeutig sein!";
const std::string noBios = "CNyxConfig::fillSoftwareDataIntoFootprint(): BIOS item must be set";
const std::string noOperatingSystem = "CNyxConfig::fillSoftwareDataIntoFootprint(): operating system item must be set";
const std::string bigRevision = "CNyxConfig::parsePartNumber: HwBoardDescItem.majorRevision must not be > 99";
const std::string noLink = "Failed to save device footprint link file.";

std::string DocumentText(const std::string& body)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<DeviceFootprint formatVersion=\"02.06\">\n" + body +
           "</DeviceFootprint>\n";
}

/// A saved text with its checksum filled in where the text has "*".
std::string WithChecksum(std::string text)
{
    const std::string mark = "checksum=\"*\"";
    text.replace(text.find(mark), mark.size(), "checksum=\"" + ReferenceMd5Hex(CanonicalText(ParseXml(text))) + "\"");
    return text;
}

/// The save of a device in the state in which FillMinimal() leaves it.
const std::string minimalSave =
    "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
    "<DeviceFootprint formatVersion=\"02.06\" creationDate=\"2015-03-01T08:05:59\" checksum=\"*\">\n" +
    goodDevice + "</DeviceFootprint>\n";

void FillMinimal(DeviceDataDescItem& device)
{
    device.setDeviceId(L"1101.2345.02-100123-ab");
    device.setPartChangeIndex(L"01.00");
    device.setType(L"TYPE-A");
}

const char* const fullSave =
    R"(<?xml version="1.0" encoding="utf-8" ?>
<DeviceFootprint formatVersion="02.06" creationDate="2015-03-01T08:05:59" checksum="*">
  <DeviceData deviceId="1101.2345.02-100123-ab" partChangeIndex="01.00" type="TYPE-A" partName="5 &lt; 7 &amp; &#8364;&#10;&#128512;" productDate="2014-12-31">
    <TestInstructionList>
      <TestInstruction name="first" version="1.02"/>
      <TestInstruction name="second" version="&quot;2&quot;"/>
    </TestInstructionList>
    <MaintenanceData operatingHours="1234567" makeAndBreakCycles="0">
      <Maintenances>
        <Maintenance responsiblePerson="A. M&#252;ller" maintenanceDate="2009-04-19" generatedBy="tool">
          <MaintenanceTasks>
            <MaintenanceTask name="clean" done="true" result="ok"/>
            <MaintenanceTask name="adjust" done="false"/>
          </MaintenanceTasks>
        </Maintenance>
        <Maintenance maintenanceDate="2020-11-26"/>
      </Maintenances>
    </MaintenanceData>
    <ServiceData>
      <Services>
        <Service serviceCode="2950" serviceDate="2022-02-12"/>
        <Service serviceCode="-2"/>
      </Services>
    </ServiceData>
  </DeviceData>
</DeviceFootprint>
)";

MaintenanceTaskDescItem* NewTask(const std::wstring& name, const std::wstring& done, const std::wstring& result)
{
    auto* task = new MaintenanceTaskDescItem;
    task->setName(name);
    task->setDone(done);
    task->setResult(result);
    return task;
}

CMaintenanceDataDescItem* NewMaintenanceData()
{
    auto* first = new CMaintenanceDescItem;
    first->setResponsiblePerson(L"A. M\u00FCller");
    first->setMaintenanceDate(L"2009-04-19");
    first->setGeneratedBy(L"tool");
    first->setMaintenanceTasks({NewTask(L"clean", L"true", L"ok"), NewTask(L"adjust", L"false", L"")});
    auto* second = new CMaintenanceDescItem;
    second->setMaintenanceDate(L"2020-11-26");
    auto* data = new CMaintenanceDataDescItem;
    data->setOperatingHours(1234567);
    data->setMakeAndBreakCycles(0);
    data->setMaintenances({first, second});
    return data;
}

CServiceDescItem* NewService(long code, const std::wstring& date)
{
    auto* service = new CServiceDescItem;
    service->setServiceCode(code);
    service->setServiceDate(date);
    return service;
}

CTestInstructionDescItem* NewTestInstruction(const std::wstring& name, const std::wstring& version)
{
    auto* instruction = new CTestInstructionDescItem;
    instruction->setName(name);
    instruction->setVersion(version);
    return instruction;
}

/// A device with everything that a footprint keeps of it; fullSave is its save.
DeviceDataDescItem* NewFullDevice()
{
    auto* device = new DeviceDataDescItem;
    FillMinimal(*device);
    device->setPartName(L"5 < 7 & \u20AC\n\U0001F600");
    device->setProductDate(L"2014-12-31");
    device->setTestInstructions({NewTestInstruction(L"first", L"1.02"), NewTestInstruction(L"second", L"\"2\"")});
    device->setMaintenanceData(NewMaintenanceData());
    device->setServices({NewService(2950, L"2022-02-12"), NewService(-2, L"")});
    return device;
}

/// An item that counts the items of its kind that were deleted.
template<class Item>
class Counted : public Item
{
public:
    explicit Counted(int& deleted) : m_deleted(deleted) {}
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() override { ++m_deleted; }

private:
    int& m_deleted;
};

/// Deletes the software data that a load has made: without BIOS and operating system it can not be saved.
void DropSoftware(CNyxConfig& config)
{
    OwningConfig owner;
    owner.setSoftwareData(config.getSoftwareData());
    config.setSoftwareData(nullptr);
}

class FacadeTest : public testing::Test
{
protected:
    std::string WriteDocument(const std::string& body, const std::string& name = "in.xml")
    {
        WriteFile(m_folder / name, DocumentText(body));
        return m_folder / name;
    }
    std::string SaveName() const { return m_folder / ("DeviceFootprint_" + deviceId + "_2015-03-01T08-05-59.xml"); }
    std::string MissingFile() const { return m_folder / "missing.xml"; }
    std::string LoadError() const { return NarrowLine("load file error, " + MissingFile()); }

    ErrorWord m_errorWord;
    TempFolder m_folder;
    FakeClock m_clock;
    OwningConfig m_config;
    ErrorJournal m_errors;
};

// --- the class and its state

TEST_F(FacadeTest, OnlyTheDestructorIsVirtual)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<CNyxConfig>);
    EXPECT_EQ(SlotCount<CNyxConfig>(), DestructorSlots);
}

TEST_F(FacadeTest, MembersLieInTheirOrderBehindTheTablePointer)
{
    const std::vector<std::size_t> offsets = MemberOffsets(m_config);
    EXPECT_EQ(offsets.front(), sizeof(void*)) << "nothing stands in front of the boards but the class's own table";
    for (std::size_t i = 1; i < offsets.size(); ++i) {
        EXPECT_LT(offsets[i - 1], offsets[i]) << i;
    }
}

TEST_F(FacadeTest, FreshFacadeHoldsNothing)
{
    EXPECT_EQ(m_config.getDeviceData(), nullptr);
    EXPECT_EQ(m_config.getSoftwareData(), nullptr);
    EXPECT_TRUE(m_config.getHwBoardDescItems().empty());
    EXPECT_TRUE(ProductItems(m_config).empty());
    EXPECT_EQ(m_config.getDeviceDataDescItems(), std::list<DeviceDataDescItem*>{nullptr});
    EXPECT_TRUE(Document(m_config).m_deviceData.IsEmpty());
    EXPECT_EQ(Document(m_config).m_formatVersion.GetValue(), L"02.06");
    EXPECT_EQ(Document(m_config).GetFullFilenameOfLastSave(), "");
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(FacadeTest, ConstructorAsksOnePropertyAndDoesNotCareForIt)
{
    for (const int value : {0, 1, 2, -5}) {
        OwningConfig owner;
        s_propertyValue = value;
        s_propertyCalls.clear();
        OwningConfig config;
        EXPECT_EQ(TestKeyDependency(config), 1) << value;
        config.loadFile(WriteDocument(goodDevice + oneBoard), true);
        owner.setSoftwareData(config.getSoftwareData());
        config.setSoftwareData(nullptr);
        config.getDevFp(true);
        EXPECT_EQ(s_propertyCalls, std::vector<std::string>{"TestFeatures/Generic TestKeyDependency 0 2"}) << value;
    }
    s_propertyValue = 0;
}

TEST_F(FacadeTest, SetItemsAreGivenBackAsTheyAre)
{
    DeviceDataDescItem device;
    SoftwareDataDescItem software;
    m_config.setDeviceData(&device);
    m_config.setSoftwareData(&software);
    EXPECT_EQ(m_config.getDeviceData(), &device);
    EXPECT_EQ(m_config.getSoftwareData(), &software);
    EXPECT_EQ(m_config.getDeviceDataDescItems(), std::list<DeviceDataDescItem*>{&device});

    m_config.setDeviceData(nullptr);
    m_config.setSoftwareData(nullptr);
    EXPECT_EQ(m_config.getDeviceData(), nullptr);
    EXPECT_EQ(m_config.getSoftwareData(), nullptr);
    EXPECT_EQ(m_config.getDeviceDataDescItems(), std::list<DeviceDataDescItem*>{nullptr});
}

TEST_F(FacadeTest, BoardsKeepTheOrderOfAddingAndTheListIsACopy)
{
    HwBoardDescItem first;
    HwBoardDescItem second;
    CNyxConfig config;
    config.addHwItem(&second);
    config.addHwItem(&first);
    config.addHwItem(&second);
    const std::list<HwBoardDescItem*> expected = {&second, &first, &second};
    std::list<HwBoardDescItem*> boards = config.getHwBoardDescItems();
    EXPECT_EQ(boards, expected);
    boards.clear();
    EXPECT_EQ(config.getHwBoardDescItems(), expected);
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(FacadeTest, AddingNullIsAnnouncedTwiceAndTheNullStays)
{
    HwBoardDescItem board;
    CNyxConfig config;
    config.addHwItem(&board);
    config.addHwItem(nullptr);
    EXPECT_EQ(m_errors.Take(), NarrowLine("Attention: adding NULL to m_hwDescItems") +
                                   NarrowLine("Attention: added NULL to m_hwDescItems"));
    config.addHwItem(&board);
    EXPECT_EQ(m_errors.Take(), "");
    EXPECT_EQ(config.getHwBoardDescItems(), (std::list<HwBoardDescItem*>{&board, nullptr, &board}));
}

/// A board that is none of the library's.
class ForeignBoard : public IHwBoardDescItem
{
public:
    std::wstring getName() const override { return {}; }
    long getId() const override { return {}; }
    long getPath() const override { return {}; }
    long getSerialNumber() const override { return {}; }
    long getType() const override { return {}; }
    long getMajorRevision() const override { return {}; }
    long getMinorRevision() const override { return {}; }
    long getHwCode() const override { return {}; }
    long getMainVersion() const override { return {}; }
    std::wstring getSlotInfo() const override { return {}; }
    bool getIsSimulation() const override { return {}; }
    std::list<IHwProgrammablePartDescItem*> getProgrammableParts() const override { return {}; }
    IMaintenanceDataDescItem* getMaintenanceData() const override { return {}; }
    std::list<IServiceDescItem*> getServices() const override { return {}; }
    long getProductId() const override { return {}; }
    std::wstring getProductDate() const override { return {}; }
    long getReadCode() const override { return {}; }
    std::wstring getTestInstruction() const override { return {}; }
    std::wstring getPartName() const override { return {}; }
    long getParentId() const override { return {}; }
    bool getExternConnected() const override { return {}; }
    IBPartIdentificationDescItem* getBPartIdentification() const override { return {}; }
    long getPartNumber(unsigned int /*index*/, bool* /*ok*/) const override { return {}; }
    long getVariant(unsigned int /*index*/, bool* /*ok*/) const override { return {}; }
    std::wstring getPartNumberVariant(unsigned int /*index*/, bool* /*ok*/) const override { return {}; }
    unsigned int getPartNumberVariantSize() const override { return {}; }
    unsigned int getVariantOption() const override { return {}; }
};

TEST_F(FacadeTest, AddingAForeignBoardIsAnnouncedAndLeavesItOut)
{
    ForeignBoard board;
    CNyxConfig config;
    config.addHwItem(&board);
    EXPECT_THAT(m_errors.Take(), testing::StartsWith("[narrow]"));
    EXPECT_TRUE(config.getHwBoardDescItems().empty());
}

// --- ownership

TEST_F(FacadeTest, NoOperationDeletesAnItemThatWasSet)
{
    int deleted = 0;
    Counted<DeviceDataDescItem> device(deleted);
    Counted<HwBoardDescItem> board(deleted);
    Counted<SoftwareDataDescItem> software(deleted);
    FillMinimal(device);
    {
        OwningConfig owner; // of what the load makes
        CNyxConfig config;
        config.setDeviceData(&device);
        config.setSoftwareData(&software);
        config.addHwItem(&board);
        config.fillDeviceFootprint(false);
        config.getDevFp(false);
        config.saveFile(m_folder.Path(), false);
        config.saveFileAs(m_folder / "as.xml", false);
        config.loadFile(WriteDocument(goodDevice), false);
        owner.setDeviceData(config.getDeviceData());
        owner.setSoftwareData(config.getSoftwareData());
        EXPECT_NE(config.getDeviceData(), &device);
        EXPECT_NE(config.getSoftwareData(), &software);
        // The load also finds the board that the saves have put into the document.
        const std::list<HwBoardDescItem*> boards = config.getHwBoardDescItems();
        ASSERT_EQ(boards.size(), 2U);
        EXPECT_EQ(boards.front(), &board);
        owner.addHwItem(boards.back());
        EXPECT_EQ(deleted, 0);
    }
    EXPECT_EQ(deleted, 0) << "the destructor leaves items alone";
}

TEST_F(FacadeTest, SecondLoadForgetsTheItemsOfTheFirstAndDoesNotDeleteThem)
{
    m_config.loadFile(WriteDocument(goodDevice), true);
    OwningConfig owner;
    owner.setDeviceData(m_config.getDeviceData());
    owner.setSoftwareData(m_config.getSoftwareData());
    m_config.loadFile(WriteDocument("  <DeviceData deviceId=\"B\"/>\n"), true);
    EXPECT_NE(m_config.getDeviceData(), owner.getDeviceData());
    EXPECT_NE(m_config.getSoftwareData(), owner.getSoftwareData());
    EXPECT_EQ(m_config.getDeviceData()->getDeviceId(), L"B");
    EXPECT_EQ(owner.getDeviceData()->getDeviceId(), L"1101.2345.02-100123-ab");
    EXPECT_TRUE(owner.getSoftwareData()->getSoftwareItems().empty());
}

// --- load

TEST_F(FacadeTest, LoadOfAMissingFileSaysSoAndFillsFromTheDefaultDocument)
{
    m_config.loadFile(MissingFile(), false);
    EXPECT_EQ(m_errors.Take(), LoadError() + WideLine(noDeviceIdRead));
    ASSERT_NE(m_config.getDeviceData(), nullptr);
    EXPECT_EQ(m_config.getDeviceData()->getDeviceId(), L"");
    EXPECT_EQ(m_config.getDeviceData()->getMaintenanceData(), nullptr);
    EXPECT_TRUE(m_config.getHwBoardDescItems().empty());
    ASSERT_NE(m_config.getSoftwareData(), nullptr) << "the third step runs too";
    EXPECT_TRUE(m_config.getSoftwareData()->getSoftwareItems().empty());
}

TEST_F(FacadeTest, ThrowingLoadOfAMissingFileThrowsForTheFirstMissingAttribute)
{
    EXPECT_EQ(ThrownText([&] { m_config.loadFile(MissingFile(), true); }), noDeviceIdRead);
    EXPECT_EQ(m_errors.Take(), LoadError() + WideLine(noDeviceIdRead) + NarrowLine(throwing));
    EXPECT_EQ(m_config.getDeviceData(), nullptr);
    EXPECT_EQ(m_config.getSoftwareData(), nullptr);
}

TEST_F(FacadeTest, FailedLoadFillsFromWhatTheDocumentHeldBefore)
{
    m_config.loadFile(WriteDocument(goodDevice + oneBoard), true);
    OwningConfig owner;
    owner.setDeviceData(m_config.getDeviceData());
    owner.setSoftwareData(m_config.getSoftwareData());
    EXPECT_EQ(m_errors.Take(), "");
    m_config.loadFile(MissingFile(), false);
    EXPECT_EQ(m_errors.Take(), LoadError() + NarrowLine(sameBoardId));
    EXPECT_NE(m_config.getDeviceData(), owner.getDeviceData());
    EXPECT_EQ(m_config.getDeviceData()->getDeviceId(), L"1101.2345.02-100123-ab");
    EXPECT_EQ(m_config.getHwBoardDescItems().size(), 2U);
}

struct BrokenFile
{
    const char* name;
    std::string text;
    std::string words; // "%" stands for the file's name
};

class BrokenFileTest : public FacadeTest, public testing::WithParamInterface<BrokenFile>
{
};

TEST_P(BrokenFileTest, IsToldWithTheLastErrorAndGivesTheItemsReadSoFar)
{
    const std::string fileName = m_folder / "broken.xml";
    WriteFile(fileName, GetParam().text);
    std::string words = GetParam().words;
    if (words.compare(0, 1, "%") == 0) {
        words.replace(0, 1, fileName);
    }
    m_config.loadFile(fileName, true);
    EXPECT_EQ(m_errors.Take(), NarrowLine(words));
    ASSERT_NE(m_config.getDeviceData(), nullptr);
    EXPECT_EQ(m_config.getDeviceData()->getDeviceId(), L"1101.2345.02-100123-ab");
    EXPECT_NE(m_config.getSoftwareData(), nullptr);
}

const std::string rootTag = "<DeviceFootprint formatVersion=\"02.06\">\n";

INSTANTIATE_TEST_SUITE_P(
    Facade, BrokenFileTest,
    testing::Values(BrokenFile{"badUtf8", rootTag + goodDevice + "  <X y=\"\xFF\"/>\n</DeviceFootprint>\n",
                               "%, line 3, UTF-8 encoding error, lead is invalid"},
                    // No text of its own: the last error is shown, however old it is.
                    BrokenFile{"wrongEndTag", rootTag + goodDevice + "</Wrong>\n", ErrorWord::Untouched()},
                    BrokenFile{"cutOffInside", rootTag + goodDevice + "  <HardwareData>\n", ErrorWord::Untouched()}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(FacadeTest, LoadWithoutARootShowsTheLastErrorHoweverOld)
{
    CDeviceFootprint::SetLastError("words of an earlier failure");
    WriteFile(m_folder / "noRoot.xml", "<Other>\n</Other>\n");
    m_config.loadFile(m_folder / "noRoot.xml", false);
    EXPECT_EQ(m_errors.Take(), NarrowLine("words of an earlier failure") + WideLine(noDeviceIdRead));
}

TEST_F(FacadeTest, BlankLineLeavesTheLoadBeforeAnyItemIsMade)
{
    WriteFile(m_folder / "blank.xml", DocumentText(goodDevice + " \t\n"));
    EXPECT_THROW(m_config.loadFile(m_folder / "blank.xml", false), std::out_of_range);
    EXPECT_EQ(m_config.getDeviceData(), nullptr);
    EXPECT_EQ(m_config.getSoftwareData(), nullptr);
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(FacadeTest, LoadFillsDeviceThenHardwareThenSoftware)
{
    const std::string fileName = WriteDocument("  <DeviceData partChangeIndex=\"1\"/>\n"
                                               "  <HardwareData>\n"
                                               "    <HardwareList>\n"
                                               "      <Hardware name=\"CPU\"/>\n"
                                               "    </HardwareList>\n"
                                               "  </HardwareData>\n"
                                               "  <SoftwareData>\n"
                                               "    <SoftwareList>\n"
                                               "      <Software name=\"s\" partChangeIndex=\"1.2\"/>\n"
                                               "    </SoftwareList>\n"
                                               "  </SoftwareData>\n");
    m_config.loadFile(fileName, false);
    const std::string badIndex = " partChangeIndex may only be empty or match pattern dd.dd";
    EXPECT_EQ(m_errors.Take(), WideLine(noDeviceIdRead) +
                                   WideLine("CNyxConfig::assertValidPartChangeIndex: <DeviceData>" + badIndex) +
                                   WideLine("CNyxConfig::assertNotEmpty: <Hardware 1 of 0> id may not be empty") +
                                   WideLine("CNyxConfig::assertValidPartChangeIndex: <Software>" + badIndex));
    EXPECT_EQ(m_config.getHwBoardDescItems().size(), 1U);
    EXPECT_EQ(m_config.getSoftwareData()->getSoftwareItems().size(), 1U);
}

TEST_F(FacadeTest, ExceptionFromALoadLeavesWhatWasFilledBefore)
{
    const std::string fileName = WriteDocument(goodDevice + "  <HardwareData>\n"
                                                            "    <HardwareList>\n"
                                                            "      <Hardware id=\"1001\" name=\"CPU\"/>\n"
                                                            "      <Hardware name=\"second\"/>\n"
                                                            "      <Hardware id=\"1003\" name=\"third\"/>\n"
                                                            "    </HardwareList>\n"
                                                            "  </HardwareData>\n");
    const std::string message = "CNyxConfig::assertNotEmpty: <Hardware 3 of 1> id may not be empty";
    EXPECT_EQ(ThrownText([&] { m_config.loadFile(fileName, true); }), message);
    EXPECT_EQ(m_errors.Take(), WideLine(message) + NarrowLine(throwing));
    ASSERT_NE(m_config.getDeviceData(), nullptr);
    EXPECT_EQ(m_config.getDeviceData()->getType(), L"TYPE-A");
    ASSERT_EQ(m_config.getHwBoardDescItems().size(), 1U);
    EXPECT_EQ(m_config.getHwBoardDescItems().front()->getId(), 1001);
    EXPECT_EQ(m_config.getSoftwareData(), nullptr);
}

TEST_F(FacadeTest, ExceptionFromTheDeviceDataLeavesTheFormerItems)
{
    DeviceDataDescItem device;
    SoftwareDataDescItem software;
    CNyxConfig config;
    config.setDeviceData(&device);
    config.setSoftwareData(&software);
    EXPECT_EQ(ThrownText([&] { config.loadFile(WriteDocument("  <DeviceData type=\"T\"/>\n"), true); }),
              noDeviceIdRead);
    EXPECT_EQ(config.getDeviceData(), &device);
    EXPECT_EQ(config.getSoftwareData(), &software);
}

TEST_F(FacadeTest, SecondLoadAppendsBoardsAndReportsEachPairOfEqualIds)
{
    const std::string fileName = WriteDocument(goodDevice + oneBoard);
    m_config.loadFile(fileName, true);
    OwningConfig owner;
    owner.setDeviceData(m_config.getDeviceData());
    owner.setSoftwareData(m_config.getSoftwareData());
    HwBoardDescItem* first = m_config.getHwBoardDescItems().front();
    m_config.loadFile(fileName, false);
    // The document's own list grows as well: the second load finds two boards in it.
    const std::list<HwBoardDescItem*> boards = m_config.getHwBoardDescItems();
    EXPECT_EQ(boards.size(), 3U);
    EXPECT_EQ(boards.front(), first);
    EXPECT_EQ(m_errors.Take(), NarrowLine(sameBoardId) + NarrowLine(sameBoardId) + NarrowLine(sameBoardId));
}

TEST_F(FacadeTest, SecondThrowingLoadThrowsAtTheFirstPairOfEqualIds)
{
    const std::string fileName = WriteDocument(goodDevice + oneBoard);
    m_config.loadFile(fileName, true);
    OwningConfig owner;
    owner.setDeviceData(m_config.getDeviceData());
    EXPECT_EQ(ThrownText([&] { m_config.loadFile(fileName, true); }), sameBoardId);
    EXPECT_EQ(m_errors.Take(), NarrowLine(sameBoardId));
    EXPECT_NE(m_config.getDeviceData(), owner.getDeviceData()) << "device data was filled before";
    EXPECT_EQ(m_config.getHwBoardDescItems().size(), 3U) << "all boards were appended before the check";
}

// --- save

TEST_F(FacadeTest, SaveWritesTheDeviceByteForByte)
{
    m_config.setDeviceData(NewFullDevice());
    for (const std::string& folder : {m_folder.Path(), m_folder.Path() + "/"}) {
        EXPECT_EQ(m_config.saveFile(folder, true), SaveName());
        EXPECT_EQ(ReadFile(SaveName()), WithChecksum(fullSave));
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(FacadeTest, AllWaysOutGiveTheSameText)
{
    DeviceDataDescItem device;
    FillMinimal(device);
    CNyxConfig config;
    config.setDeviceData(&device);
    const std::string expected = WithChecksum(minimalSave);
    EXPECT_EQ(config.getDevFp(true), expected);
    EXPECT_EQ(ReadFile(config.saveFile(m_folder.Path(), true)), expected);
    config.saveFileAs(m_folder / "any name", true);
    EXPECT_EQ(ReadFile(m_folder / "any name"), expected);
    EXPECT_EQ(config.getDevFp(false), expected) << "valid data does not care for the mode";
    EXPECT_EQ(m_errors.Take(), "");
    EXPECT_EQ(m_errorWord.Text(), ErrorWord::Untouched());
}

TEST_F(FacadeTest, EmptyFacadeWritesABareRoot)
{
    const std::string date = "creationDate=\"2015-03-01T08:05:59\"";
    const std::string format = "formatVersion=\"02.06\"";
    EXPECT_EQ(m_config.getDevFp(true), "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<DeviceFootprint " + format + " " +
                                           date + " checksum=\"" + ReferenceMd5Hex(date + format) + "\"");
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(FacadeTest, EachWayOutRenewsTheCreationDate)
{
    DeviceDataDescItem device;
    FillMinimal(device);
    CNyxConfig config;
    config.setDeviceData(&device);
    config.saveFile(m_folder.Path(), true);
    m_clock.Set(FakeClock::Start + 60);
    EXPECT_EQ(ParseXml(config.getDevFp(true)).Attribute("creationDate"), "2015-03-01T08:06:59");
    m_clock.Set(FakeClock::Start + 120);
    config.saveFileAs(m_folder / "as.xml", true);
    EXPECT_EQ(ParseXml(ReadFile(m_folder / "as.xml")).Attribute("creationDate"), "2015-03-01T08:07:59");
    m_clock.Set(FakeClock::Start + 180);
    const std::string name = config.saveFile(m_folder.Path(), true);
    EXPECT_EQ(name, m_folder / ("DeviceFootprint_" + deviceId + "_2015-03-01T08-08-59.xml"));
    EXPECT_EQ(ParseXml(ReadFile(name)).Attribute("creationDate"), "2015-03-01T08:08:59");
}

TEST_F(FacadeTest, SavesRecordTheFileInTheLinkFileAndTextDoesNot)
{
    const std::string linkFile = "/var/lib/devicefootprint/TYPE-F_9.8_7/deviceFootprintLink.xml";
    DeviceDataDescItem device;
    FillMinimal(device);
    device.setDeviceId(L"9.8-7-c");
    device.setType(L"TYPE-F");
    CNyxConfig config;
    config.setDeviceData(&device);
    config.getDevFp(true);
    config.fillDeviceFootprint(true);
    EXPECT_FALSE(FileExists(linkFile));
    config.saveFileAs(m_folder / "as.xml", true);
    EXPECT_THAT(ReadFile(linkFile), testing::HasSubstr(m_folder / "as.xml"));
    const std::string name = config.saveFile(m_folder.Path(), true);
    EXPECT_THAT(ReadFile(linkFile), testing::HasSubstr(name));
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(FacadeTest, EachSaveBuildsTheDocumentAnew)
{
    m_config.loadFile(DataFile("golden/connected-devices.xml"), false);
    DropSoftware(m_config);
    for (HwBoardDescItem* board : m_config.getHwBoardDescItems()) {
        board->setProductId(-1);
    }
    const std::string once = m_config.getDevFp(false);
    EXPECT_EQ(m_config.getDevFp(false), once) << "lists do not grow";
    const XmlElement root = ParseXml(once);
    EXPECT_EQ(root.Attribute("generatedBy"), "");
    EXPECT_THAT(once, testing::Not(testing::HasSubstr("ConnectedDevice"))) << "no item carries them";
}

TEST_F(FacadeTest, FillReplacesTheWholeDocumentWithItsLastSave)
{
    m_config.loadFile(
        WriteDocument("  <DeviceData deviceId=\"A\" type=\"T\" upgradeType=\"U\" upgradePartNumber=\"N\">\n"
                      "    <MaintenanceData>\n"
                      "      <MaintenanceInfos>\n"
                      "        <MaintenanceInfo name=\"n\" value=\"v\"/>\n"
                      "      </MaintenanceInfos>\n"
                      "    </MaintenanceData>\n"
                      "  </DeviceData>\n"),
        true);
    DropSoftware(m_config);
    m_config.saveFile(m_folder / "missing folder", true);
    EXPECT_NE(Document(m_config).GetFullFilenameOfLastSave(), "");
    Document(m_config).m_generatedBy = L"application";
    m_config.fillDeviceFootprint(true);
    CDeviceFootprint& document = Document(m_config);
    EXPECT_EQ(document.GetFullFilenameOfLastSave(), "");
    EXPECT_EQ(document.GetPureFilenameOfLastSave(), "");
    EXPECT_TRUE(document.m_generatedBy.IsEmpty());
    EXPECT_TRUE(document.m_creationDate.IsEmpty());
    EXPECT_TRUE(document.m_checksum.IsEmpty());
    EXPECT_EQ(document.m_formatVersion.GetValue(), L"02.06");
    EXPECT_EQ(document.m_deviceData.m_deviceId.GetValue(), L"A");
    EXPECT_TRUE(document.m_deviceData.m_upgradeType.IsEmpty());
    EXPECT_TRUE(document.m_deviceData.m_upgradePartNumber.IsEmpty());
    EXPECT_TRUE(document.m_deviceData.m_maintenanceData.IsEmpty());
}

TEST_F(FacadeTest, SaveIntoAMissingFolderIsToldAndStillNamesTheFile)
{
    DeviceDataDescItem device;
    FillMinimal(device);
    CNyxConfig config;
    config.setDeviceData(&device);
    const std::string name = m_folder / ("none/DeviceFootprint_" + deviceId + "_2015-03-01T08-05-59.xml");
    for (const bool throwOnError : {false, true}) {
        EXPECT_EQ(config.saveFile(m_folder / "none", throwOnError), name);
        EXPECT_EQ(m_errors.Take(), NarrowLine("save file error, " + name));
        config.saveFileAs(m_folder / "none/as.xml", throwOnError);
        EXPECT_EQ(m_errors.Take(), NarrowLine("save file error, " + (m_folder / "none/as.xml")));
    }
}

TEST_F(FacadeTest, SaveIntoNoFolderShowsTheLastErrorAndTheNameOfTheFreshDocument)
{
    DeviceDataDescItem device;
    FillMinimal(device);
    CNyxConfig config;
    config.setDeviceData(&device);
    EXPECT_EQ(config.saveFile(m_folder.Path(), true), SaveName());
    CDeviceFootprint::SetLastError("words of an earlier failure");
    EXPECT_EQ(config.saveFile("", true), "") << "the earlier save is forgotten";
    EXPECT_EQ(m_errors.Take(), NarrowLine("words of an earlier failure"));
}

TEST_F(FacadeTest, SaveWithoutALinkIsToldAndTheFileStays)
{
    DeviceDataDescItem device;
    FillMinimal(device);
    device.setDeviceId(L"A");
    CNyxConfig config;
    config.setDeviceData(&device);
    const std::string name = config.saveFile(m_folder.Path(), true);
    EXPECT_EQ(name, m_folder / "DeviceFootprint_A_2015-03-01T08-05-59.xml");
    EXPECT_EQ(m_errors.Take(), NarrowLine(noLink));
    config.saveFileAs(m_folder / "as.xml", true);
    EXPECT_EQ(m_errors.Take(), NarrowLine(noLink));
    EXPECT_EQ(ReadFile(name), ReadFile(m_folder / "as.xml"));
    EXPECT_EQ(ParseXml(ReadFile(name)).children.at(0).Attribute("deviceId"), "A");
}

TEST_F(FacadeTest, SaveFillsDeviceThenHardwareThenSoftware)
{
    DeviceDataDescItem device;
    FillMinimal(device);
    device.setDeviceId(L"");
    HwBoardDescItem board;
    board.setId(1001);
    board.setMajorRevision(100);
    SoftwareDataDescItem software;
    CNyxConfig config;
    config.setDeviceData(&device);
    config.addHwItem(&board);
    config.setSoftwareData(&software);

    config.fillDeviceFootprint(false);
    EXPECT_EQ(m_errors.Take(), WideLine(noDeviceIdWritten) + NarrowLine(bigRevision) + NarrowLine(noBios) +
                                   NarrowLine(noOperatingSystem));
    EXPECT_EQ(ThrownText([&] { config.fillDeviceFootprint(true); }), noDeviceIdWritten);
    device.setDeviceId(L"A-B-C");
    EXPECT_EQ(ThrownText([&] { config.fillDeviceFootprint(true); }), bigRevision);
    board.setMajorRevision(1);
    EXPECT_EQ(ThrownText([&] { config.fillDeviceFootprint(true); }), noBios);
    EXPECT_EQ(m_errors.Take(),
              WideLine(noDeviceIdWritten) + NarrowLine(throwing) + NarrowLine(bigRevision) + NarrowLine(noBios));
}

TEST_F(FacadeTest, ExceptionFromAFillLeavesWhatWasFilledBefore)
{
    DeviceDataDescItem device;
    FillMinimal(device);
    HwBoardDescItem good;
    good.setId(1001);
    HwBoardDescItem bad;
    bad.setId(1002);
    bad.setMajorRevision(100);
    SoftwareDataDescItem software;
    CNyxConfig config;
    config.addHwItem(&bad);
    config.addHwItem(&good);
    config.setDeviceData(&device);
    config.setSoftwareData(&software);
    EXPECT_EQ(ThrownText([&] { config.fillDeviceFootprint(true); }), bigRevision);
    CDeviceFootprint& document = Document(config);
    EXPECT_EQ(document.m_deviceData.m_type.GetValue(), L"TYPE-A");
    EXPECT_EQ(document.m_hardwareData.m_hardwareList.size(), 1U);
    EXPECT_TRUE(document.m_softwareData.IsEmpty());

    device.setDeviceId(L"");
    EXPECT_EQ(ThrownText([&] { config.fillDeviceFootprint(true); }), noDeviceIdWritten);
    EXPECT_TRUE(Document(config).m_deviceData.IsEmpty()) << "the earlier content went before the first step";
    EXPECT_TRUE(Document(config).m_hardwareData.IsEmpty());
}

TEST_F(FacadeTest, ExceptionsPassThroughAndNothingIsSaved)
{
    DeviceDataDescItem device; // without an id
    CNyxConfig config;
    config.setDeviceData(&device);
    WriteFile(m_folder / "as.xml", "former content");
    const std::vector<std::function<void()>> operations = {
        [&] { config.saveFile(m_folder.Path(), true); },
        [&] { config.saveFileAs(m_folder / "as.xml", true); },
        [&] { config.saveFileAs(m_folder / "other.xml", true); },
        [&] { config.getDevFp(true); },
        [&] { config.fillDeviceFootprint(true); },
    };
    for (const auto& operation : operations) {
        EXPECT_EQ(ThrownText(operation), noDeviceIdWritten);
        EXPECT_EQ(m_errors.Take(), WideLine(noDeviceIdWritten) + NarrowLine(throwing));
    }
    EXPECT_EQ(FolderEntries(m_folder.Path()), std::vector<std::string>{"as.xml"});
    EXPECT_EQ(ReadFile(m_folder / "as.xml"), "former content");
}

// --- through a file

TEST_F(FacadeTest, DeviceComesBackThroughAFile)
{
    m_config.setDeviceData(NewFullDevice());
    const std::string name = m_config.saveFile(m_folder.Path(), true);
    OwningConfig loaded;
    loaded.loadFile(name, true);
    EXPECT_EQ(DumpItems(loaded).at("deviceData"), DumpItems(m_config).at("deviceData"));
    EXPECT_EQ(loaded.getDeviceData()->getPartName(), L"5 < 7 & \u20AC\n\U0001F600");
    DropSoftware(loaded);
    EXPECT_EQ(loaded.getDevFp(true), WithChecksum(fullSave));
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(FacadeTest, LocaleOfTheProcessDoesNotMatter)
{
    const auto run = [](const std::string& file) {
        OwningConfig config;
        config.loadFile(file, false);
        DropSoftware(config);
        config.saveFileAs(file + ".saved", false);
        return DumpItems(config).dump();
    };
    m_config.setDeviceData(NewFullDevice());
    auto* board = new HwBoardDescItem;
    board->setId(1234001);
    board->setSerialNumber(654321);
    board->setHwCode(5000);
    board->setReadCode(1234567);
    m_config.addHwItem(board);
    m_config.saveFileAs(m_folder / "in.xml", false);
    const std::string items = run(m_folder / "in.xml");
    const std::string saved = ReadFile(m_folder / "in.xml.saved");
    EXPECT_THAT(saved, testing::HasSubstr("operatingHours=\"1234567\""));
    m_errors.Take();
    const ForeignLocale foreign;
    EXPECT_EQ(run(m_folder / "in.xml"), items);
    EXPECT_EQ(ReadFile(m_folder / "in.xml.saved"), saved);
}

// --- the document's exception switch

TEST_F(FacadeTest, DocumentsExceptionsPassThroughALoad)
{
    const ExceptionsOn exceptionsOn;
    EXPECT_EQ(ThrownText([&] { m_config.loadFile(MissingFile(), false); }), PlainException);
    EXPECT_EQ(m_errorWord.Text(), "load file error, " + MissingFile());
    EXPECT_EQ(m_config.getDeviceData(), nullptr);
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(FacadeTest, DocumentsExceptionsPassThroughTheReadingOfAbsentAttributes)
{
    const std::string fileName = WriteDocument(goodDevice); // has no partName
    const ExceptionsOn exceptionsOn;
    EXPECT_EQ(ThrownText([&] { m_config.loadFile(fileName, false); }), PlainException);
    EXPECT_EQ(m_errorWord.Text(), "Can not access empty attribute \"partName\"!");
    EXPECT_EQ(m_config.getDeviceData(), nullptr);
}

TEST_F(FacadeTest, DocumentsExceptionsPassThroughASave)
{
    DeviceDataDescItem device;
    FillMinimal(device);
    CNyxConfig config;
    config.setDeviceData(&device);
    const ExceptionsOn exceptionsOn;
    EXPECT_EQ(ThrownText([&] { config.saveFileAs(m_folder / "none/as.xml", false); }), PlainException);
    EXPECT_EQ(m_errorWord.Text(), "save file error, " + (m_folder / "none/as.xml"));
    EXPECT_EQ(m_errors.Take(), "");
    EXPECT_EQ(ThrownText([&] { config.saveFileAs(m_folder / "as.xml", false); }), NothingThrown);
    EXPECT_EQ(ReadFile(m_folder / "as.xml"), WithChecksum(minimalSave));
}

} // namespace
