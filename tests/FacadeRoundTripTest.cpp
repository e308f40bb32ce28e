// What the facade writes, it reads and writes again: random items with a fixed seed, and the documents of data/golden.
// What gets lost on the way is spelt out here; nothing else may.

#include "CNyxConfig.h"
#include "ErrorJournal.h"
#include "ErrorWord.h"
#include "FacadeItems.h"
#include "FakeClock.h"
#include "Files.h"
#include "GoldenData.h"
#include "ItemDump.h"
#include "OwningConfig.h"
#include "Random.h"
#include "ReferenceMd5.h"
#include "StreamCapture.h"
#include "SystemItems.h"
#include "TempFolder.h"
#include "ThrownText.h"
#include "XmlText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <iterator>
#include <limits>
#include <list>
#include <string>
#include <utility>
#include <vector>

using namespace KvOrdo;
using namespace NyxTest;
using Json = nlohmann::json;

namespace
{

constexpr int treeCount = 100;
constexpr long greatestLong = std::numeric_limits<long>::max();
constexpr long smallestLong = std::numeric_limits<long>::min();

// ------------------------------------------------------------------------------------------------------ random items

/// Fills a facade with items at random: such as all checks accept, or also others. Boards have no negative numbers, as
/// those are numbered anew by each save.
class ItemMaker
{
public:
    ItemMaker(Random& random, bool valid) : m_random(random), m_valid(valid) {}

    void Fill(CNyxConfig& config)
    {
        config.setDeviceData(NewDevice());
        for (std::size_t count = m_random.Below(6); count > 0; --count) {
            config.addHwItem(m_random.OneIn(15) ? nullptr : NewBoard());
        }
        const std::size_t products = m_random.Below(4);
        for (std::size_t i = 0; i < products; ++i) {
            ProductItems(config).push_back(NewProduct(static_cast<long>(i)));
        }
        config.setSoftwareData(NewSoftwareData());
    }

private:
    std::wstring Text()
    {
        static const std::vector<std::wstring> pieces = {
            L"a", L"Z",  L"7", L" ", L"  ",    L"\t",     L"\n",     L"\r\n",   L"<",         L">",        L"/>",
            L"&", L"\"", L"'", L"=", L"&amp;", L";",      L"&#65;",  L"&#x41;", L" sn=",      L" name=\"", L",",
            L"[", L"]",  L".", L"-", L"\x7F",  L"\u00E9", L"\u20AC", L"\uFFFE", L"\U0001F600"};
        static const std::wstring strange = {L'\0', static_cast<wchar_t>(0xD800), static_cast<wchar_t>(-28)};
        std::wstring text;
        for (std::size_t count = m_random.Below(7); count > 0; --count) {
            text +=
                m_random.OneIn(20) ? std::wstring(1, strange[m_random.Below(strange.size())]) : m_random.OneOf(pieces);
        }
        return text;
    }
    std::wstring Required() { return (m_valid || !m_random.OneIn(4) ? L"x" : L"") + Text(); }
    std::wstring Digits(std::size_t count)
    {
        std::wstring text;
        for (; count > 0; --count) {
            text += static_cast<wchar_t>(L'0' + m_random.Below(10));
        }
        return text;
    }
    std::wstring Checked(const std::wstring& good)
    {
        if (!m_valid && m_random.OneIn(3)) {
            return Text();
        }
        return m_random.OneIn(3) ? std::wstring() : good;
    }
    std::wstring Index() { return Checked(Digits(2) + L"." + Digits(2)); }
    std::wstring Date() { return Checked(Digits(4) + L"-" + Digits(2) + L"-" + Digits(2)); }
    /// @param absent whether it may be -1.
    long Number(bool absent = true)
    {
        static const std::vector<long> special = {0,         1,         -2,        999999,       1000000,     99999999,
                                                  100000000, 123456789, -12345678, greatestLong, smallestLong};
        switch (m_random.Below(4)) {
        case 0:
            return absent ? -1 : 2;
        case 1:
            return m_random.OneOf(special);
        default:
            return static_cast<long>(m_random.Below(1000000));
        }
    }
    long Revision() { return static_cast<long>(m_random.Below(100)) + (!m_valid && m_random.OneIn(5) ? 95 : 0); }

    /// Up to two entries, null pointers among them if that is valid.
    template<class Interface, class Make>
    std::list<Interface*> Some(const Make& make, bool nullIsValid = true)
    {
        std::list<Interface*> items;
        for (std::size_t count = m_random.Below(3); count > 0; --count) {
            items.push_back((nullIsValid || !m_valid) && m_random.OneIn(8) ? nullptr : make());
        }
        return items;
    }

    DeviceDataDescItem* NewDevice()
    {
        static const std::vector<std::wstring> ids = {L"1101.2345.02-100123-ab", L"12-34-56", L"A-B-C"};
        auto* device = new DeviceDataDescItem;
        device->setDeviceId(m_random.OneOf(ids));
        device->setType(L"TYPE-R");
        device->setPartChangeIndex(Index());
        device->setPartName(Text());
        device->setProductDate(Date());
        device->setUpgradeType(Text());
        device->setUpgradePartNumber(Text());
        const auto newInstruction = [&] {
            auto* instruction = new CTestInstructionDescItem;
            instruction->setName(Required());
            instruction->setVersion(Required());
            return instruction;
        };
        device->setTestInstructions(Some<ITestInstructionDescItem>(newInstruction, false));
        device->setMaintenanceData(NewMaintenanceData());
        device->setServices(Services());
        return device;
    }
    std::list<IServiceDescItem*> Services()
    {
        return Some<IServiceDescItem>([&] {
            auto* service = new CServiceDescItem;
            service->setServiceCode(Number(!m_valid));
            service->setServiceDate(Date());
            return service;
        });
    }
    CMaintenanceDataDescItem* NewMaintenanceData()
    {
        if (m_random.OneIn(4)) {
            return nullptr;
        }
        auto* data = new CMaintenanceDataDescItem;
        data->setOperatingHours(Number());
        data->setMakeAndBreakCycles(Number());
        data->setMaintenances(Some<IMaintenanceDescItem>([&] {
            auto* maintenance = new CMaintenanceDescItem;
            maintenance->setResponsiblePerson(Text());
            maintenance->setMaintenanceDate(Date());
            maintenance->setGeneratedBy(Text());
            maintenance->setMaintenanceTasks(Some<IMaintenanceTaskDescItem>([&] { return NewTask(); }));
            return maintenance;
        }));
        return data;
    }
    MaintenanceTaskDescItem* NewTask()
    {
        auto* task = new MaintenanceTaskDescItem;
        task->setName(Required());
        task->setDone(!m_valid && m_random.OneIn(3) ? Text() : m_random.OneIn(2) ? L"true" : L"false");
        task->setResult(Text());
        return task;
    }
    HwBoardDescItem* NewBoard()
    {
        auto* board = new HwBoardDescItem;
        board->setId(static_cast<long>(m_random.Below(4) * 1000 + m_random.Below(20)));
        board->setName(Required());
        board->setSerialNumber(Number());
        board->setType(Number());
        board->setMajorRevision(Revision());
        board->setMinorRevision(Revision());
        board->setHwCode(Number());
        board->setMainVersion(Number());
        board->setSlotInfo(Text());
        board->setIsSimulation(m_random.OneIn(2));
        board->setProgrammableParts(Some<IHwProgrammablePartDescItem>([&] { return NewPart(); }));
        board->setMaintenanceData(NewMaintenanceData());
        board->setServices(Services());
        board->setProductId(Number());
        board->setProductDate(Text());
        board->setReadCode(Number());
        board->setTestInstruction(Text());
        board->setPartName(Text());
        board->setParentId(Number());
        board->setExternConnected(m_random.OneIn(2));
        board->setBPartIdentification(NewBPart());
        for (std::size_t count = m_random.Below(4); count > 0; --count) {
            const std::size_t range = m_valid ? 99990000 : 150000000;
            board->setPartNumberVariant(static_cast<long>(10000 + m_random.Below(range)),
                                        static_cast<unsigned int>(m_random.Below(100)));
        }
        board->setVariantOption(m_random.Bits());
        return board;
    }
    HwProgrammablePartDescItem* NewPart()
    {
        auto* part = new HwProgrammablePartDescItem;
        if (!m_random.OneIn(5)) {
            part->setName(Text());
            part->setVersion(Text());
            part->setPartNumber(Text());
            part->setPartChangeIndex(Index());
        }
        return part;
    }
    CBPartIdentificationDescItem* NewBPart()
    {
        if (m_random.OneIn(3)) {
            return nullptr;
        }
        auto* part = new CBPartIdentificationDescItem;
        part->setName(Text());
        part->setPartNumber(Text());
        part->setSn(Text());
        part->setPartChangeIndex(Text());
        part->setVendorName(Text());
        part->setAdditionalInfo(Text());
        return part;
    }
    CProductDescItem* NewProduct(long place)
    {
        auto* product = new CProductDescItem;
        product->setId(m_valid ? 1000 * place + static_cast<long>(m_random.Below(1000)) : Number());
        product->setPartNumber(Text());
        product->setPartChangeIndex(Index());
        product->setType(Text());
        product->setPartName(Text());
        return product;
    }
    SoftwareDataDescItem* NewSoftwareData()
    {
        auto* data = new SoftwareDataDescItem;
        data->setBiosItem(new BiosItem(Text(), Text(), Text(), Text()));
        data->setOperatingSystemItem(new OperatingSystemItem(Text(), Text(), Text(), Text()));
        data->setSoftwareItems(Some<ISoftwareDescItem>([&] { return NewSoftware(3); }));
        return data;
    }
    SoftwareDescItem* NewSoftware(std::size_t levels)
    {
        auto* software = new SoftwareDescItem;
        software->setName(Required());
        software->setVersion(Text());
        software->setStatus(Text());
        software->setPartNumber(Text());
        software->setPartChangeIndex(Index());
        software->setSerialNumber(Text());
        software->setVendorName(Text());
        if (levels > 0) {
            software->setSoftwareItems(Some<ISoftwareDescItem>([&] { return NewSoftware(levels - 1); }));
        }
        return software;
    }

    Random& m_random;
    bool m_valid;
};

// -------------------------------------------------------------------------------------------------- what is lost:
// items

/// A serial number as a file has it and six characters of it are read.
long ReadSerialNumber(long number)
{
    return std::stol(std::to_string(number > 99999999 ? number / 1000 : number).substr(0, 6));
}

/// Whether nothing is written of an item, which is so for null pointers and for items whose fields are all empty.
bool IsEmptyItem(const Json& item)
{
    return item.is_null() ||
           std::all_of(item.begin(), item.end(), [](const Json& field) { return field.empty() || field == ""; });
}

void DropEmpty(Json& items)
{
    Json kept = Json::array();
    std::copy_if(items.begin(), items.end(), std::back_inserter(kept),
                 [](const Json& item) { return !IsEmptyItem(item); });
    items = kept;
}

void LoseOfMaintenance(Json& data)
{
    if (data.is_null()) {
        return;
    }
    for (Json& maintenance : data["maintenances"]) {
        if (!maintenance.is_null()) {
            DropEmpty(maintenance["maintenanceTasks"]);
        }
    }
    DropEmpty(data["maintenances"]);
    if (data["operatingHours"] == -1 && data["makeAndBreakCycles"] == -1 && data["maintenances"].empty()) {
        data = nullptr;
    }
}

void LoseOfBoard(Json& board)
{
    for (const auto& [field, start] : std::vector<std::pair<const char*, Json>>{
             {"type", 0}, {"mainVersion", -1}, {"isSimulation", false}, {"variantOption", 0}}) {
        board[field] = start;
    }
    for (const char* optional : {"productId", "readCode", "parentId"}) {
        const long number = board[optional];
        if (number < 0 || (std::string("productId") == optional && number > 999999)) {
            board[optional] = 0;
        }
    }
    board["serialNumber"] = ReadSerialNumber(board["serialNumber"]);
    if (!board["partNumberVariant"].empty()) {
        board["partNumberVariant"] = Json::array({board["partNumberVariant"].front()});
    }
    if (board["bPartIdentification"].is_null()) {
        board["bPartIdentification"] = {{"name", ""},       {"partNumber", ""},    {"sn", ""}, {"partChangeIndex", ""},
                                        {"vendorName", ""}, {"additionalInfo", ""}};
    }
    DropEmpty(board["programmableParts"]);
    DropEmpty(board["services"]);
    LoseOfMaintenance(board["maintenanceData"]);
}

void LoseOfSoftware(Json& items)
{
    DropEmpty(items);
    for (Json& item : items) {
        LoseOfSoftware(item["softwareItems"]);
    }
}

/// What a load gives of items that a save has written; all of them are valid.
Json AfterLoad(Json items)
{
    Json& device = items["deviceData"];
    device["upgradeType"] = "";
    device["upgradePartNumber"] = "";
    DropEmpty(device["testInstructions"]);
    DropEmpty(device["services"]);
    LoseOfMaintenance(device["maintenanceData"]);
    DropEmpty(items["hwBoards"]);
    for (Json& board : items["hwBoards"]) {
        LoseOfBoard(board);
    }
    items["softwareData"]["biosItem"] = nullptr;
    items["softwareData"]["operatingSystemItem"] = nullptr;
    LoseOfSoftware(items["softwareData"]["softwareItems"]);
    return items;
}

// -------------------------------------------------------------------------------------------- what is lost: documents

/// Sets an attribute of a board, at its place if the board does not have it.
void SetAttribute(XmlElement& board, const std::string& name, const std::string& value)
{
    static const std::vector<std::string> order = {
        "id",       "productId",       "partNumber", "sn",       "partChangeIndex", "hardwareCode",    "productDate",
        "readCode", "testInstruction", "name",       "partName", "parentId",        "externConnected", "connectorName"};
    const auto rank = [](const std::string& attribute) { return std::find(order.begin(), order.end(), attribute); };
    const auto place = std::find_if(board.attributes.begin(), board.attributes.end(),
                                    [&](const auto& attribute) { return rank(attribute.first) >= rank(name); });
    if (place != board.attributes.end() && place->first == name) {
        place->second = value;
    } else {
        board.attributes.insert(place, {name, value});
    }
}

/// What another save writes of a saved document: a serial number has at most six characters, and a number that is
/// absent comes back as the start value of its field.
XmlElement AfterLoadAndSave(XmlElement root)
{
    root.ForEach([](XmlElement& element) {
        if (element.name != "Hardware") {
            return;
        }
        SetAttribute(element, "sn", element.Attribute("sn").substr(0, 6));
        for (const auto& [name, start] :
             std::vector<std::pair<const char*, const char*>>{{"productId", "0"},
                                                              {"readCode", "0"},
                                                              {"parentId", "0"},
                                                              {"partNumber", "0000.0000.00"},
                                                              {"partChangeIndex", "00.00"}}) {
            if (element.Attribute(name).empty()) {
                SetAttribute(element, name, start);
            }
        }
    });
    return root;
}

/// The document with the two attributes set that differ from save to save.
std::string WithoutDate(XmlElement root)
{
    for (auto& [name, value] : root.attributes) {
        if (name == "creationDate" || name == "checksum") {
            value = "*";
        }
    }
    return ToXmlText(root);
}

class FacadeRoundTripTest : public testing::Test
{
protected:
    /// Saves under a time of its own and gives the document back.
    XmlElement Save(CNyxConfig& config, bool throwOnError)
    {
        m_clock.Advance(61);
        m_file = m_folder / ("saved" + std::to_string(++m_saves) + ".xml");
        EXPECT_EQ(ThrownText([&] { config.saveFileAs(m_file, throwOnError); }), NothingThrown);
        const std::string text = ReadFile(m_file);
        XmlElement root = ParseXml(text);
        EXPECT_EQ(ToXmlText(root), text) << "the text is taken apart without loss";
        EXPECT_EQ(root.Attribute("checksum"), ReferenceMd5Hex(CanonicalText(root)));
        return root;
    }
    /// Loads what was saved last and sets the BIOS and the operating system, which a load does not give.
    void Load(CNyxConfig& config, const SoftwareDataDescItem& system, bool throwOnError)
    {
        EXPECT_EQ(ThrownText([&] { config.loadFile(m_file, throwOnError); }), NothingThrown);
        SetSystem(*config.getSoftwareData(), *system.getBiosItem(), *system.getOperationSystemItem());
    }
    static void SetSystem(SoftwareDataDescItem& data, const IBiosDescItem& bios,
                          const IOperatingSystemDescItem& operatingSystem)
    {
        data.setBiosItem(
            new BiosItem(bios.getName(), bios.getVersion(), bios.getPartNumber(), bios.getPartChangeIndex()));
        data.setOperatingSystemItem(new OperatingSystemItem(operatingSystem.getName(), operatingSystem.getVersion(),
                                                            operatingSystem.getPartNumber(),
                                                            operatingSystem.getPartChangeIndex()));
    }
    /// Saves, loads and saves twice over.
    void ExpectRoundTrip(CNyxConfig& config, bool throwOnError)
    {
        const XmlElement first = Save(config, throwOnError);
        OwningConfig loaded;
        Load(loaded, *config.getSoftwareData(), throwOnError);
        const XmlElement second = Save(loaded, throwOnError);
        EXPECT_EQ(WithoutDate(second), WithoutDate(AfterLoadAndSave(first)));
        EXPECT_NE(second.Attribute("creationDate"), first.Attribute("creationDate"));
        OwningConfig again;
        Load(again, *config.getSoftwareData(), throwOnError);
        EXPECT_EQ(WithoutDate(Save(again, throwOnError)), WithoutDate(second)) << "nothing is lost twice";
    }

    ErrorWord m_errorWord;
    TempFolder m_folder;
    FakeClock m_clock;
    std::string m_file;
    int m_saves = 0;
    ErrorJournal m_errors;
};

TEST_F(FacadeRoundTripTest, ValidItemsComeBackButForWhatIsLost)
{
    Random random;
    for (int i = 0; i < treeCount && !HasFailure(); ++i) {
        SCOPED_TRACE("seed " + std::to_string(TestSeed()) + ", tree " + std::to_string(i));
        OwningConfig config;
        ItemMaker(random, true).Fill(config);
        m_errors.Take(); // null boards are announced
        Save(config, true);
        OwningConfig loaded;
        Load(loaded, *config.getSoftwareData(), true);
        Json items = DumpItems(loaded);
        Json& software = items["softwareData"];
        EXPECT_FALSE(software["biosItem"].is_null());
        software["biosItem"] = software["operatingSystemItem"] = nullptr;
        EXPECT_TRUE(SameJson(AfterLoad(DumpItems(config)), items));
        EXPECT_EQ(m_errors.Take(), "");
    }
}

TEST_F(FacadeRoundTripTest, ValidItemsAreSavedAgainAsTheyWere)
{
    Random random(TestSeed() + 1);
    for (int i = 0; i < treeCount && !HasFailure(); ++i) {
        SCOPED_TRACE("seed " + std::to_string(TestSeed()) + ", tree " + std::to_string(i));
        OwningConfig config;
        ItemMaker(random, true).Fill(config);
        m_errors.Take();
        ExpectRoundTrip(config, true);
        EXPECT_EQ(m_errors.Take(), "");
    }
}

TEST_F(FacadeRoundTripTest, AnyItemsAreSavedAgainAsTheyWere)
{
    Random random(TestSeed() + 2);
    for (int i = 0; i < treeCount && !HasFailure(); ++i) {
        SCOPED_TRACE("seed " + std::to_string(TestSeed()) + ", tree " + std::to_string(i));
        OwningConfig config;
        ItemMaker(random, false).Fill(config);
        ExpectRoundTrip(config, false);
    }
}

TEST_F(FacadeRoundTripTest, ModeDoesNotMatterForValidItems)
{
    Random random(TestSeed() + 3);
    for (int i = 0; i < treeCount && !HasFailure(); ++i) {
        SCOPED_TRACE("seed " + std::to_string(TestSeed()) + ", tree " + std::to_string(i));
        OwningConfig config;
        ItemMaker(random, true).Fill(config);
        EXPECT_EQ(WithoutDate(Save(config, true)), WithoutDate(Save(config, false)));
        OwningConfig throwing;
        OwningConfig reporting;
        Load(throwing, *config.getSoftwareData(), true);
        Load(reporting, *config.getSoftwareData(), false);
        EXPECT_EQ(DumpItems(throwing), DumpItems(reporting));
    }
}

TEST_F(FacadeRoundTripTest, LoadedDocumentsAreSavedAgainAsTheyWere)
{
    const StreamCapture output(std::cout); // unknown tags are announced
    for (const std::string& document : GoldenDocuments(true)) {
        SCOPED_TRACE(document);
        OwningConfig config;
        config.loadFile(document, false);
        SetSystem(*config.getSoftwareData(), BiosItem(L"bios", L"1", L"2", L"3"),
                  OperatingSystemItem(L"os", L"4", L"5", L"6"));
        ExpectRoundTrip(config, false);
    }
}

} // namespace
