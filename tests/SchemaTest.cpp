#include "DeviceFootprintLink.h"
#include "FillFootprint.h"
#include "HistoryStore.h"
#include "OwningConfig.h"
#include "Random.h"
#include "StreamCapture.h"
#include "SystemItems.h"
#include "XmlSchema.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <list>
#include <memory>
#include <string>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

const std::string FootprintSchema = "footprint.xsd";
const std::string LinkSchema = "footprint-link.xsd";

std::string TextOf(CDeviceFootprint& footprint)
{
    std::string text;
    EXPECT_TRUE(footprint.GetDeviceFootprintString(true, text)) << CDeviceFootprint::GetLastError();
    return text;
}

/// A random tree of any shape that the classes allow, in characters that XML 1.0 allows.
class RandomTree
{
public:
    explicit RandomTree(Random& random) : m_random(random) {}

    /// @param levels of connected devices and of software packages.
    void Fill(CDeviceFootprintData& footprint, std::size_t levels)
    {
        FillElement(footprint, levels);
        footprint.m_deviceData.m_deviceId.Set(Value()); // a root without children is never complete
    }

private:
    void FillElement(CElementNode& element, std::size_t levels)
    {
        std::list<CReadOnlyAttribute*> attributes;
        element.GetAttributeNodes(attributes);
        for (CReadOnlyAttribute* attribute : attributes) {
            if (attribute->GetNodeName() != "checksum" && m_random.OneIn(2)) {
                attribute->Set(Value());
            }
        }
        std::list<CElementNode*> children;
        element.GetChildElements(children);
        for (CElementNode* child : children) {
            FillChild(*child, levels);
        }
    }

    void FillChild(CElementNode& child, std::size_t levels)
    {
        if (FillList<CHardware>(child, levels) || FillList<CMaintenance>(child, levels) ||
            FillList<CMaintenanceInfo>(child, levels) || FillList<CMaintenanceTask>(child, levels) ||
            FillList<CProduct>(child, levels) || FillList<CProgrammablePart>(child, levels) ||
            FillList<CProperty>(child, levels) || FillList<CService>(child, levels) ||
            FillList<CTestInstruction>(child, levels)) {
            return;
        }
        if (auto* software = dynamic_cast<CSoftwareList*>(&child)) {
            if (levels > 0) {
                FillList<CSoftware>(*software, levels - 1);
            }
        } else if (auto* devices = dynamic_cast<CConnectedDeviceList*>(&child)) {
            if (levels > 0) {
                FillDevices(*devices, levels - 1);
            }
        } else {
            FillElement(child, levels);
        }
    }

    template<class T>
    bool FillList(CElementNode& element, std::size_t levels)
    {
        auto* list = dynamic_cast<CElementNodeList<T>*>(&element);
        if (list == nullptr) {
            return false;
        }
        for (std::size_t count = m_random.Below(4); count > 0; --count) {
            FillElement(list->CreateEntry(), levels);
        }
        return true;
    }

    /// Parsed devices with a checksum and without one, and devices as text.
    void FillDevices(CConnectedDeviceList& devices, std::size_t levels)
    {
        for (std::size_t count = m_random.Below(3); count > 0; --count) {
            CConnectedDevice& device = devices.CreateEntry();
            Fill(device, levels);
            std::string checksum;
            if (m_random.OneIn(2) && device.ComputeChecksum(checksum)) {
                device.m_checksum.Set(checksum);
            }
        }
        for (std::size_t count = m_random.Below(3); count > 0; --count) {
            CDeviceFootprint device;
            Fill(device, levels);
            EXPECT_TRUE(devices.AddConnectedDeviceFromString(TextOf(device)));
        }
    }

    std::wstring Value()
    {
        static const std::wstring characters = L" aZ09<>&\"';#=/\\\t\n\r~\u007f\u00e9\u20ac\U0001F600";
        std::wstring value = L"v";
        for (std::size_t count = m_random.Below(8); count > 0; --count) {
            value += characters[m_random.Below(characters.size())];
        }
        return value;
    }

    Random& m_random;
};

/// Writes files into one folder, to be checked together.
class SchemaTest : public HistoryStore
{
protected:
    std::string Write(const std::string& name, const std::string& text) const
    {
        WriteFile(m_folder / name, text);
        return m_folder / name;
    }

    std::string Save(const std::string& name, CDeviceFootprint& footprint) const
    {
        return Write(name, TextOf(footprint));
    }

    std::string SaveLink(const std::string& name, const std::string& latest, const std::string& history) const
    {
        DeviceFootprintLink link(m_folder / name);
        link.setLatestDeviceFootprintPath(latest);
        link.setDeviceFootprintHistoryFolder(history);
        EXPECT_TRUE(link.write()) << name;
        return m_folder / name;
    }
};

std::vector<std::string> FilesIn(const std::string& folder, const std::string& extension)
{
    std::vector<std::string> files;
    for (const std::filesystem::directory_entry& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == extension) {
            files.push_back(entry.path().string());
        }
    }
    return files;
}

} // namespace

TEST_F(SchemaTest, GoldenInputsInTheDialectOfTheWriter)
{
    std::vector<std::string> files;
    for (const std::string& path : GoldenDocuments()) {
        const std::string name = std::filesystem::path(path).filename().string();
        if (name != "unknown-tags.xml") { // its tags are for the reader alone
            files.push_back(Write(name, WithoutForbiddenReferences(ReadFile(path))));
        }
    }
    ExpectValid(FootprintSchema, files);
}

TEST_F(SchemaTest, GoldenDocumentsSavedAgain)
{
    const StreamCapture output(std::cout);
    std::vector<std::string> files;
    for (const std::string& path : GoldenDocuments(true)) {
        CDeviceFootprint footprint;
        EXPECT_TRUE(footprint.Load(path)) << path;
        const std::string name = std::filesystem::path(path).filename().string();
        files.push_back(Write(name, WithoutForbiddenReferences(TextOf(footprint))));
    }
    ExpectValid(FootprintSchema, files);
}

TEST_F(SchemaTest, EveryAttributeAndElement)
{
    CDeviceFootprint footprint;
    FillFootprint(footprint, {3, 3, 2});
    ExpectValid(FootprintSchema, {Write("full.xml", WithoutForbiddenReferences(TextOf(footprint)))});
}

TEST_F(SchemaTest, RandomTrees)
{
    Random random;
    std::vector<std::string> files;
    for (int number = 0; number < 60; ++number) {
        CDeviceFootprint footprint;
        RandomTree(random).Fill(footprint, random.Below(4));
        const std::string name = "tree" + std::to_string(number);
        files.push_back(Save(name + ".xml", footprint));
        // Devices that were text are entries after a load.
        CDeviceFootprint loaded;
        EXPECT_TRUE(loaded.Load(files.back()));
        files.push_back(Save(name + "-again.xml", loaded));
    }
    SCOPED_TRACE("NYX_TEST_SEED=" + std::to_string(TestSeed()));
    ExpectValid(FootprintSchema, files);
}

TEST_F(SchemaTest, ConnectedDevicesAsText)
{
    CDeviceFootprint device;
    FillFootprint(device, {1, 1, 1});
    const std::string inner = WithoutForbiddenReferences(TextOf(device));
    const std::string old = "<?xml ?>\n<DeviceFootprint formatVersion=\"02.05\" generatedBy=\"g\">\n"
                            "  <DeviceData deviceId=\"1-2-3\"/>\n</DeviceFootprint>\n";
    std::vector<std::string> files;
    for (const std::vector<std::string>& texts :
         {std::vector<std::string>{inner}, {old}, {inner, inner}, {old, inner, old}}) {
        CDeviceFootprint footprint;
        for (const std::string& text : texts) {
            EXPECT_TRUE(footprint.m_pConnectedDevices->AddConnectedDeviceFromString(text));
        }
        files.push_back(Save("device" + std::to_string(files.size()) + ".xml", footprint));
    }
    ExpectValid(FootprintSchema, files);
}

TEST_F(SchemaTest, NestedSoftware)
{
    CDeviceFootprint footprint;
    CSoftwareList* list = &footprint.m_softwareData.m_softwareList;
    for (int level = 0; level < 60; ++level) {
        CSoftware& software = list->CreateEntry();
        software.m_name = L"level";
        list = software.m_pSoftwareList;
    }
    ExpectValid(FootprintSchema, {Save("software.xml", footprint)});
}

TEST_F(SchemaTest, SavesHistoryAndLinks)
{
    bool written = false;
    ASSERT_TRUE(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr));
    EXPECT_TRUE(written);
    NextSecond();
    AddOperatingHour();
    ASSERT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr));
    NextSecond();
    ASSERT_TRUE(m_footprint.Save(m_saves));
    const std::vector<std::string> files = FilesIn(m_folder.Path(), ".xml");
    EXPECT_EQ(files.size(), 4U);
    ExpectValid(FootprintSchema, files);
    ExpectValid(LinkSchema, {LinkFile()});
}

TEST_F(SchemaTest, SavesOfTheFacade)
{
    const StreamCapture narrow(std::cerr);
    const WideStreamCapture wide(std::wcerr);
    const StreamCapture output(std::cout);
    std::vector<std::string> files;
    for (const std::string& path : GoldenDocuments()) {
        OwningConfig config;
        config.loadFile(path, false);
        ASSERT_NE(config.getSoftwareData(), nullptr);
        config.getSoftwareData()->setBiosItem(new BiosItem(L"bios", L"1", L"", L"01.00"));
        config.getSoftwareData()->setOperatingSystemItem(new OperatingSystemItem(L"os", L"2", L"", L"02.00"));
        const std::string name = m_folder / std::filesystem::path(path).filename().string();
        config.saveFileAs(name, false);
        WriteFile(name, WithoutForbiddenReferences(ReadFile(name)));
        files.push_back(name);
    }
    ExpectValid(FootprintSchema, files);
}

TEST_F(SchemaTest, LinksInAllForms)
{
    ExpectValid(LinkSchema, {SaveLink("latest.xml", "/a/b.xml", ""), SaveLink("history.xml", "", "/a"),
                             SaveLink("both.xml", "/a <&>\"'\t\n/b.xml", "/")});
}

// --- what is refused ------------------------------------------------------------------------------------------------

struct RefusedText
{
    const char* name;
    const char* content; ///< Of the root.
};

/// The schemas tell footprints from what no writer writes.
class SchemaRefusal : public testing::TestWithParam<RefusedText>
{
};

TEST_P(SchemaRefusal, FootprintIsNotValid)
{
    const TempFolder folder;
    const std::string path = folder / "footprint.xml";
    WriteFile(path, "<DeviceFootprint" + std::string(GetParam().content) + "</DeviceFootprint>");
    const SchemaVerdict verdict = CheckSchema(FootprintSchema, {path});
    EXPECT_TRUE(verdict.wellFormed) << verdict.report;
    EXPECT_FALSE(verdict.valid);
}

INSTANTIATE_TEST_SUITE_P(
    Schema, SchemaRefusal,
    testing::Values(RefusedText{"UnknownAttribute", " serial=\"1\">"}, RefusedText{"EmptyAttribute", " checksum=\"\">"},
                    RefusedText{"ChecksumInUpperCase", " checksum=\"D41D8CD98F00B204E9800998ECF8427E\">"},
                    RefusedText{"UnknownElement", "><Extra/>"}, RefusedText{"Text", ">text"},
                    RefusedText{"OtherOrder", "><HardwareData/><DeviceData/>"},
                    RefusedText{"ElementTwice", "><DeviceData/><DeviceData/>"},
                    RefusedText{"EmptyList", "><HardwareData><HardwareList/></HardwareData>"},
                    RefusedText{"EntryOfAnotherList",
                                "><HardwareData><HardwareList><Product/></HardwareList></HardwareData>"},
                    RefusedText{"ElementAtAnotherPlace", "><Hardware/>"}),
    [](const testing::TestParamInfo<RefusedText>& row) { return row.param.name; });

TEST_F(SchemaTest, RefusesOtherRoots)
{
    const std::string link = SaveLink("link.xml", "/a/b.xml", "/a");
    EXPECT_FALSE(CheckSchema(FootprintSchema, {link}).valid);
    EXPECT_FALSE(CheckSchema(LinkSchema, {Save("footprint.xml", m_footprint)}).valid);
    EXPECT_FALSE(CheckSchema(FootprintSchema, {Write("device.xml", "<ConnectedDevice/>")}).valid);
}

TEST_F(SchemaTest, RefusesRelativePathInLink)
{
    std::string text = ReadFile(SaveLink("link.xml", "/a/b.xml", "/a"));
    text.replace(text.find("/a/b.xml"), 1, "");
    const SchemaVerdict verdict = CheckSchema(LinkSchema, {Write("relative.xml", text)});
    EXPECT_TRUE(verdict.wellFormed) << verdict.report;
    EXPECT_FALSE(verdict.valid);
}

// --- what is not XML ------------------------------------------------------------------------------------------------

TEST_F(SchemaTest, CharactersThatXmlForbidsMakeAFileIllFormed)
{
    for (const wchar_t character : {L'\x1', static_cast<wchar_t>(-28)}) {
        m_footprint.m_deviceData.m_type.Set(std::wstring(1, character));
        const SchemaVerdict verdict = CheckSchema(FootprintSchema, {Save("character.xml", m_footprint)});
        EXPECT_TRUE(verdict.ran);
        EXPECT_FALSE(verdict.wellFormed) << static_cast<long>(character);
    }
}

TEST_F(SchemaTest, RootWithoutChildrenIsIllFormed)
{
    CDeviceFootprint footprint;
    const SchemaVerdict verdict = CheckSchema(FootprintSchema, {Save("root.xml", footprint)});
    EXPECT_TRUE(verdict.ran);
    EXPECT_FALSE(verdict.wellFormed);
}
