// Whole documents through writer and reader: what comes back, what damage does, how deep they may be.

#include "ApplicationElements.h"
#include "DeviceFootprint.h"
#include "ElementText.h"
#include "ErrorWord.h"
#include "Files.h"
#include "FootprintDump.h"
#include "ForeignLocale.h"
#include "Random.h"
#include "StreamCapture.h"
#include "TempFolder.h"
#include "XmlStreams.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace KvDeviceFootprint;
using NyxTest::AttributesOf;
using NyxTest::ChildrenOf;
using NyxTest::DumpElement;
using NyxTest::ErrorWord;
using NyxTest::Random;
using NyxTest::StreamCapture;
using NyxTest::TempFolder;

const std::string NoName;

class XmlRoundTrip : public testing::Test
{
protected:
    ErrorWord m_errors;
    StreamCapture m_output{std::cout};
};

std::string Written(CDeviceFootprintData& footprint, bool* written = nullptr)
{
    std::ostringstream text;
    COutStream stream(text);
    CXmlStreamWriter writer(stream, NoName);
    const bool result = footprint.WriteTo(writer);
    if (written != nullptr) {
        *written = result;
    }
    return text.str();
}

bool Loaded(CDeviceFootprint& footprint, const std::string& text)
{
    std::istringstream stream(text);
    return footprint.Load(stream, "in");
}

// Arbitrary trees

/// Text of all kinds, and of the kinds that could be taken for something else.
std::wstring ArbitraryText(Random& random)
{
    static const std::vector<std::wstring> pieces{L" sn=",
                                                  L" sn=\"",
                                                  L"\"",
                                                  L"\" name=\"x",
                                                  L"=",
                                                  L"<",
                                                  L">",
                                                  L"/>",
                                                  L"</Hardware>",
                                                  L"&",
                                                  L"&amp;",
                                                  L"&lt;",
                                                  L"&#",
                                                  L"&#10;",
                                                  L"&#x41;",
                                                  L";",
                                                  L"'",
                                                  L" ",
                                                  L"  ",
                                                  L"\t",
                                                  L"\n",
                                                  L"\r",
                                                  L"\r\n",
                                                  std::wstring(1, L'\0'),
                                                  L"\x1B",
                                                  L"\x7F",
                                                  L"\x80",
                                                  L"\xA0",
                                                  L"\xE4",
                                                  L"\x7FF",
                                                  L"\x800",
                                                  L"\x20AC",
                                                  L"\xFFFD",
                                                  L"\x1F600",
                                                  L"\x10FFFF",
                                                  std::wstring(1, static_cast<wchar_t>(0xD800)),
                                                  std::wstring(1, static_cast<wchar_t>(0xDFFF)),
                                                  std::wstring(1, static_cast<wchar_t>(0xFFFE)),
                                                  std::wstring(1, static_cast<wchar_t>(0xFFFF)),
                                                  std::wstring(1, static_cast<wchar_t>(0x110000)),
                                                  std::wstring(1, static_cast<wchar_t>(0x7FFFFFFF)),
                                                  std::wstring(1, static_cast<wchar_t>(-1)),
                                                  std::wstring(1, static_cast<wchar_t>(-28)),
                                                  std::wstring(1, static_cast<wchar_t>(-128)),
                                                  L"0",
                                                  L"a",
                                                  L"name",
                                                  L"12.34",
                                                  L"checksum=\""};
    std::wstring text;
    for (std::size_t count = 1 + random.Below(6); count > 0; --count) {
        text += random.OneIn(4) ? std::wstring(1, static_cast<wchar_t>(random.Bits())) : random.OneOf(pieces);
    }
    return text;
}

class ArbitraryTree
{
public:
    explicit ArbitraryTree(Random& random) : m_random(random) {}

    void Fill(CElementNode& element)
    {
        ++m_depth;
        for (CReadOnlyAttribute* attribute : AttributesOf(element)) {
            // A connected device with a checksum would have to carry the right one.
            if (attribute->GetNodeName() != "checksum" && !m_random.OneIn(3)) {
                attribute->Set(ArbitraryText(m_random));
            }
        }
        for (CElementNode* child : ChildrenOf(element)) {
            if (!m_random.OneIn(4)) {
                Fill(*child);
            }
        }
        FillLists<CHardware, CProgrammablePart, CProperty, CProduct, CSoftware, CService, CMaintenance,
                  CMaintenanceInfo, CMaintenanceTask, CTestInstruction, CConnectedDevice>(element);
        --m_depth;
    }

private:
    template<class... T>
    void FillLists(CElementNode& element)
    {
        (FillList<T>(element), ...);
    }
    template<class T>
    void FillList(CElementNode& element)
    {
        auto* list = dynamic_cast<CElementNodeList<T>*>(&element);
        if (list == nullptr || m_depth > 10) {
            return;
        }
        for (std::size_t count = m_random.Below(4); count > 0; --count) {
            T& entry = list->CreateEntry();
            Fill(entry);
        }
    }

    Random& m_random;
    int m_depth = 0;
};

/// Deletes entries that hold nothing: a file has no place for them.
void DropEmptyEntries(nlohmann::json& element)
{
    for (const char* key : {"children", "entries"}) {
        if (!element.contains(key)) {
            continue;
        }
        nlohmann::json kept = nlohmann::json::array();
        for (nlohmann::json& child : element[key]) {
            DropEmptyEntries(child);
            const bool isEmpty = child.value("attributes", nlohmann::json::array()).empty() &&
                                 child.value("children", nlohmann::json::array()).empty() &&
                                 child.value("entries", nlohmann::json::array()).empty();
            if (!isEmpty) {
                kept.push_back(child);
            }
        }
        element[key] = kept;
    }
}

nlohmann::json Content(const CElementNode& element)
{
    nlohmann::json content = DumpElement(element);
    DropEmptyEntries(content);
    return content;
}

TEST_F(XmlRoundTrip, ArbitraryTreesComeBackAndGiveTheSameBytes)
{
    Random random;
    std::size_t bytes = 0;
    for (int round = 0; round < 60; ++round) {
        CDeviceFootprint original;
        ArbitraryTree(random).Fill(original);
        // A root without children is left open, and so would not load.
        original.m_deviceData.m_deviceId = L"1-2-3";
        const std::string text = Written(original);
        CDeviceFootprint loaded;
        loaded.m_formatVersion.Clear();
        ASSERT_TRUE(Loaded(loaded, text)) << "round " << round << "\n" << text;
        ASSERT_EQ(Content(loaded), Content(original)) << "round " << round << "\n" << text;
        ASSERT_EQ(Written(loaded), text) << "round " << round;
        EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }));
        EXPECT_EQ(NyxTest::ChecksumText(loaded), NyxTest::ChecksumText(original));
        bytes += text.size();
    }
    EXPECT_GT(bytes, 200000U);
    EXPECT_EQ(m_output.Text(), "");
}

TEST_F(XmlRoundTrip, AValueThatLooksLikeAnAttributeIsNone)
{
    for (const wchar_t* value : {L"foo sn=", L" sn=", L"a sn=\"x", L"a sn=&quot;x", L" partNumber= sn="}) {
        CDeviceFootprint original;
        CHardware& hardware = original.m_hardwareData.m_hardwareList.CreateEntry();
        hardware.m_productId = value;
        for (const bool withSerialNumber : {false, true}) {
            hardware.m_sn = withSerialNumber ? L"4711" : L"";
            CDeviceFootprint loaded;
            ASSERT_TRUE(Loaded(loaded, Written(original)));
            EXPECT_EQ(DumpElement(loaded), DumpElement(original)) << NarrowText(value);
        }
    }
}

TEST_F(XmlRoundTrip, EveryCharacterComesBack)
{
    CProperty original;
    CProperty loaded;
    for (unsigned value = 0; value < 0x11000; ++value) {
        const std::wstring text(1, static_cast<wchar_t>(value));
        original.m_name = text;
        ASSERT_TRUE(NyxTest::LoadText(loaded, NyxTest::SaveText(original) + "/>\n<End/>\n")) << value;
        ASSERT_EQ(loaded.m_name.GetValue(), text) << value;
    }
}

TEST_F(XmlRoundTrip, BytesDoNotDependOnTheLocale)
{
    Random random;
    CDeviceFootprint original;
    ArbitraryTree(random).Fill(original);
    original.m_deviceData.m_maintenanceData.m_operatingHours = 1234567L;
    original.m_deviceData.m_type = L"\x1F600 123456";
    const std::string text = Written(original);
    std::string checksum;
    EXPECT_TRUE(original.ComputeChecksum(checksum));

    const NyxTest::ForeignLocale locale;
    EXPECT_EQ(Written(original), text);
    CDeviceFootprint loaded;
    EXPECT_TRUE(Loaded(loaded, text));
    EXPECT_EQ(Written(loaded), text);
    std::string foreignChecksum;
    EXPECT_TRUE(loaded.ComputeChecksum(foreignChecksum));
    EXPECT_EQ(foreignChecksum, checksum);
    long hours = 0;
    EXPECT_TRUE(loaded.m_deviceData.m_maintenanceData.m_operatingHours.GetInteger(hours));
    EXPECT_EQ(hours, 1234567);
}

TEST_F(XmlRoundTrip, ARootWithoutChildrenIsNotClosedAndLoadsAsFalseWithItsAttributes)
{
    CDeviceFootprint original;
    original.m_generatedBy = L"someone";
    EXPECT_EQ(Written(original), "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
                                 "<DeviceFootprint formatVersion=\"02.06\" generatedBy=\"someone\"");
    CDeviceFootprint loaded;
    EXPECT_FALSE(Loaded(loaded, Written(original)));
    EXPECT_EQ(loaded.m_generatedBy.GetValue(), L"someone");
    CDeviceFootprint oneTag;
    EXPECT_FALSE(Loaded(oneTag, "<DeviceFootprint generatedBy=\"x\"/>"));
    EXPECT_FALSE(Loaded(oneTag, "<DeviceFootprint generatedBy=\"y\"/>\n"));
    EXPECT_EQ(oneTag.m_generatedBy.GetValue(), L"y");
    EXPECT_TRUE(Loaded(oneTag, "<DeviceFootprint generatedBy=\"z\"/>\n<more/>\n"));
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

// Lines of a document

std::string Document(const std::string& inside)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<DeviceFootprint formatVersion=\"1\">\n" + inside +
           "</DeviceFootprint>\n";
}

const char* const DeviceDataLine = "  <DeviceData deviceId=\"1-2-3\"/>\n";

TEST_F(XmlRoundTrip, ASecondRootLoadsIfALineStandsBetween)
{
    const std::string first = Document(DeviceDataLine);
    const std::string second = "<DeviceFootprint formatVersion=\"2\">\n</DeviceFootprint>\n";
    CDeviceFootprint footprint;
    EXPECT_TRUE(Loaded(footprint, first + second));
    EXPECT_EQ(footprint.m_formatVersion.GetValue(), L"1");
    EXPECT_TRUE(Loaded(footprint, first + "<any>\n" + second));
    EXPECT_EQ(footprint.m_formatVersion.GetValue(), L"2");
    EXPECT_TRUE(Loaded(footprint, first + "\n" + second)) << "a blank line serves";
    EXPECT_EQ(footprint.m_formatVersion.GetValue(), L"2");
}

TEST_F(XmlRoundTrip, BlankLines)
{
    const std::string root = Document(DeviceDataLine);
    CDeviceFootprint footprint;
    EXPECT_TRUE(Loaded(footprint, root + "\n")) << "one directly behind the root";
    EXPECT_THROW(Loaded(footprint, root + "\n\n"), std::out_of_range);
    EXPECT_THROW(Loaded(footprint, root + " \n"), std::out_of_range);
    EXPECT_THROW(Loaded(footprint, "\n" + root), std::out_of_range);
    EXPECT_THROW(Loaded(footprint, "\t\n" + root), std::out_of_range);
    EXPECT_THROW(Loaded(footprint, Document("\n")), std::out_of_range);
    EXPECT_THROW(Loaded(footprint, Document("  <HardwareData>\n\n  </HardwareData>\n")), std::out_of_range);
    EXPECT_THROW(Loaded(footprint, Document("  <ProductList>\n \n  </ProductList>\n")), std::out_of_range);
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(XmlRoundTrip, EachMalformedLineHasItsResult)
{
    const struct
    {
        const char* inside;
        bool loaded;
        const char* error;
        const char* announced;
    } rows[] = {
        {"", true, "", ""},
        {"  <Unknown/>\n", true, "", "Found invalid tag: <Unknown/>\n"},
        {"  <!-- a comment -->\n  </x>\n", true, "", "Found invalid tag: <!-- a comment -->\n"},
        {"  text\n  </text>\n", true, "", "Found invalid tag: text\n"},
        {"  <Unknown>\n", false, "", "Found invalid tag: <Unknown>\n"},
        {"  <DeviceData\n", false, "", ""},
        {"  <DeviceData\n  deviceId=\"1\"/>\n  </DeviceData>\n", true, "", "Found invalid tag: deviceId=\"1\"/>\n"},
        {"  <DeviceData/><SoftwareData/>\n", true, "", ""},
        {"  <DeviceData/> \n", false, "", ""},
        {"  </DeviceData>\n", false, "", ""},
        {"  <DeviceData>\n  </SoftwareData>\n", false, "", ""},
        {"  </\n  </x>\n", true, "", "Found invalid tag: </\n"},
        {"  />\n  </x>\n", true, "", "Found invalid tag: />\n"},
        {"  <\xFF/>\n", false, "in, line 3, UTF-8 encoding error, lead is invalid", ""},
        {"  <DeviceData type=\"\xC3\"/>\n", false, "in, line 3, UTF-8 encoding error, sequence incomplete", ""},
        {"  <DeviceData type=\"\xED\xA0\x80\"/>\n", false, "in, line 3, UTF-8 encoding error, no unicode character",
         ""},
        {"  <DeviceData type=\"\xC0\x80\"/>\n", false, "in, line 3, UTF-8 encoding error, sequence is too long", ""},
        {"  <Unknown>\n\xE2\x82\n  </Unknown>\n", false, "in, line 4, UTF-8 encoding error",
         "Found invalid tag: <Unknown>\n"},
        {"  <DeviceData type=\"open/>\n", true, "", ""},
        {"  <DeviceData type='1'/>\n", true, "", ""},
    };
    for (const auto& row : rows) {
        CDeviceFootprint footprint;
        EXPECT_EQ(Loaded(footprint, Document(row.inside)), row.loaded) << row.inside;
        EXPECT_EQ(m_errors.Take(), *row.error == '\0' ? ErrorWord::Untouched() : row.error) << row.inside;
        EXPECT_EQ(m_output.Take(), row.announced) << row.inside;
    }
}

TEST_F(XmlRoundTrip, WithoutARootALoadIsFalseWithoutAText)
{
    CDeviceFootprint footprint;
    for (const char* text : {"", "<Other/>\n", "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n", "some text"}) {
        EXPECT_FALSE(Loaded(footprint, text)) << text;
    }
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

// Damage

/// What a load of damaged text may do: true, false, or the exception for a blank line.
void ExpectDefinedLoad(const std::string& text)
{
    CDeviceFootprint footprint;
    try {
        if (Loaded(footprint, text)) {
            Written(footprint);
        }
    } catch (const std::out_of_range&) {
        SUCCEED();
    }
}

TEST_F(XmlRoundTrip, GoldenDocumentsBrokenOffAtEveryByte)
{
    for (const std::string& path : NyxTest::GoldenDocuments()) {
        const std::string text = NyxTest::ReadFile(path);
        // The long documents have few lines of a kind that the short ones do not have.
        const std::size_t step = text.size() < 6000 ? 1 : 7;
        for (std::size_t size = 0; size < text.size(); size += step) {
            ExpectDefinedLoad(text.substr(0, size));
        }
        m_output.Take();
    }
}

TEST_F(XmlRoundTrip, GoldenDocumentsWithDamagedBytes)
{
    Random random;
    for (const std::string& path : NyxTest::GoldenDocuments()) {
        const std::string text = NyxTest::ReadFile(path);
        for (int round = 0; round < 300; ++round) {
            std::string damaged = text;
            for (std::size_t count = 1 + random.Below(4); count > 0; --count) {
                const std::size_t position = random.Below(damaged.size());
                switch (random.Below(4)) {
                case 0:
                    damaged[position] = static_cast<char>(random.Bits());
                    break;
                case 1:
                    damaged.erase(position, 1 + random.Below(40));
                    break;
                case 2:
                    damaged.insert(position, 1, "\n\"<>/&; \t\xFF"[random.Below(10)]);
                    break;
                default:
                    damaged.insert(position, damaged.substr(random.Below(damaged.size()), random.Below(80)));
                    break;
                }
            }
            ExpectDefinedLoad(damaged);
        }
        m_output.Take();
    }
}

// Files

TEST_F(XmlRoundTrip, FilesThatCanNotBeOpenedOrRead)
{
    const TempFolder folder;
    const std::size_t openFiles = NyxTest::CountOpenFiles();
    CDeviceFootprint footprint;
    EXPECT_FALSE(footprint.Load(folder / "missing.xml"));
    EXPECT_EQ(m_errors.Take(), "load file error, " + (folder / "missing.xml"));
    EXPECT_FALSE(footprint.Load(""));
    EXPECT_EQ(m_errors.Take(), "load file error, ");
    EXPECT_FALSE(footprint.Load(folder / "missing/file.xml"));
    EXPECT_EQ(m_errors.Take(), "load file error, " + (folder / "missing/file.xml"));
    EXPECT_FALSE(footprint.Load(folder.Path()));
    EXPECT_EQ(m_errors.Take(), "Error reading xml") << "a folder opens, but can not be read";
    EXPECT_EQ(NyxTest::CountOpenFiles(), openFiles);
}

TEST_F(XmlRoundTrip, EveryLoadAndSaveClosesItsFile)
{
    const TempFolder folder;
    const std::string good = folder / "good.xml";
    const struct
    {
        const char* name;
        std::string text;
        const char* error;
        bool loaded;
    } rows[] = {
        {"good.xml", Document(DeviceDataLine), "", true},
        {"empty.xml", "", "", false},
        {"broken.xml", Document("  <DeviceData>\n"), "", false},
        {"utf8.xml", Document("\xFF\n"), ", line 3, UTF-8 encoding error, lead is invalid", false},
    };
    const std::size_t openFiles = NyxTest::CountOpenFiles();
    for (const auto& row : rows) {
        const std::string path = folder / row.name;
        NyxTest::WriteFile(path, row.text);
        CDeviceFootprint footprint;
        EXPECT_EQ(footprint.Load(path), row.loaded) << row.name;
        EXPECT_EQ(m_errors.Take(), *row.error == '\0' ? ErrorWord::Untouched() : path + row.error);
        EXPECT_EQ(NyxTest::CountOpenFiles(), openFiles) << row.name;
    }
    NyxTest::WriteFile(folder / "blank.xml", Document("\n"));
    CDeviceFootprint footprint;
    EXPECT_THROW(footprint.Load(folder / "blank.xml"), std::out_of_range);
    EXPECT_EQ(NyxTest::CountOpenFiles(), openFiles);
    CDeviceFootprint::EnableExceptions(true);
    EXPECT_THROW(footprint.Load(folder / "utf8.xml"), std::exception);
    EXPECT_EQ(NyxTest::CountOpenFiles(), openFiles);
    EXPECT_THROW(footprint.Load(folder / "missing.xml"), std::exception);
    CDeviceFootprint::DisableExceptions();
    EXPECT_TRUE(footprint.Load(folder / "good.xml"));
    footprint.SaveAs(folder / "saved.xml");
    footprint.Save(folder.Path());
    EXPECT_FALSE(footprint.SaveAs(folder / "missing/saved.xml"));
    EXPECT_EQ(m_errors.Take(), "save file error, " + (folder / "missing/saved.xml"));
    EXPECT_EQ(NyxTest::CountOpenFiles(), openFiles);
}

TEST_F(XmlRoundTrip, FilesWithAndWithoutALastLineFeed)
{
    const TempFolder folder;
    for (const char* end : {"", "\n", "\r\n"}) {
        std::string text = Document(DeviceDataLine);
        text.pop_back();
        NyxTest::WriteFile(folder / "f.xml", text + end);
        CDeviceFootprint footprint;
        EXPECT_TRUE(footprint.Load(folder / "f.xml"));
        EXPECT_EQ(footprint.m_deviceData.m_deviceId.GetValue(), L"1-2-3");
    }
}

TEST_F(XmlRoundTrip, AFileAndAStreamGiveTheSame)
{
    const TempFolder folder;
    for (const std::string& path : NyxTest::GoldenDocuments(true)) {
        const std::string text = NyxTest::ReadFile(path);
        CDeviceFootprint fromFile;
        CDeviceFootprint fromText;
        EXPECT_EQ(fromFile.Load(path), Loaded(fromText, text)) << path;
        EXPECT_EQ(Written(fromFile), Written(fromText)) << path;
    }
    // Lines longer than any buffer, and buffers that end anywhere in a line.
    for (const std::size_t length : {1000U, 4094U, 4095U, 4096U, 8191U, 8192U, 65535U, 65536U, 131072U, 1000000U}) {
        std::string inside;
        for (const std::size_t size : {length, std::size_t{3}, length + 1, std::size_t{1}}) {
            inside += "  <DeviceData type=\"" + std::string(size, 'x') + "\xE2\x82\xAC&lt;\" partName=\"p\"/>\n";
        }
        NyxTest::WriteFile(folder / "long.xml", Document(inside));
        CDeviceFootprint footprint;
        EXPECT_TRUE(footprint.Load(folder / "long.xml")) << length;
        EXPECT_EQ(footprint.m_deviceData.m_type.GetValue(), L"x\x20AC<");
        EXPECT_EQ(footprint.m_deviceData.m_partName.GetValue(), L"p");
    }
}

TEST_F(XmlRoundTrip, FilesHoldZeroBytes)
{
    const TempFolder folder;
    NyxTest::WriteFile(folder / "f.xml", Document(std::string("  <DeviceData type=\"a\0b\"/>\n", 27)));
    CDeviceFootprint footprint;
    EXPECT_TRUE(footprint.Load(folder / "f.xml"));
    EXPECT_EQ(footprint.m_deviceData.m_type.GetValue(), std::wstring(L"a\0b", 3));
}

} // namespace
