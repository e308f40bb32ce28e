#include "DeviceFootprint.h"
#include "DocumentTest.h"
#include "ElementText.h"
#include "ExceptionsOn.h"
#include "FillFootprint.h"
#include "ReferenceMd5.h"
#include "TempMount.h"
#include "WithoutRoot.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <sys/stat.h>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

namespace fs = std::filesystem;

using DeviceFootprintSaveTest = DocumentTest;
using DeviceFootprintFilesTest = DocumentTest;

const std::string linkError = "Failed to save device footprint link file.";
const std::string startName = "DeviceFootprint_1111.2222.33-100001-x_2015-03-01T08-05-59.xml";
const std::string noLinkId = "1111.2222.33-100001";

std::string PathInLink(const std::string& path)
{
    return "<LatestDeviceFootprint path=\"" + path + "\"/>";
}

// --- the name of a file ---------------------------------------------------------------------------------------------

TEST_F(DeviceFootprintSaveTest, TheFileNameIsMadeOfIdAndDate)
{
    std::string name = "former";
    m_footprint.GetFileNameForSave(true, name);
    EXPECT_EQ(name, startName);
    EXPECT_EQ(Text(m_footprint.m_creationDate), startText);

    m_clock.Advance(86400);
    m_footprint.GetFileNameForSave(false, name);
    EXPECT_EQ(name, startName);
    m_footprint.GetFileNameForSave(true, name);
    EXPECT_EQ(name, "DeviceFootprint_1111.2222.33-100001-x_2015-03-02T08-05-59.xml");

    // An empty date is made even if none was asked for.
    m_footprint.m_creationDate.Clear();
    m_footprint.GetFileNameForSave(false, name);
    EXPECT_EQ(name, "DeviceFootprint_1111.2222.33-100001-x_2015-03-02T08-05-59.xml");
    EXPECT_EQ(Text(m_footprint.m_creationDate), "2015-03-02T08:05:59");
    EXPECT_EQ(m_footprint.GetPureFilenameOfLastSave(), "");
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
}

TEST_F(DeviceFootprintSaveTest, TheFileNameTakesAnyDateText)
{
    const std::pair<const char*, const char*> rows[] = {
        {"2015-03-01T08:05:59Z", "2015-03-01T08-05-59Z"},
        {"abcdefghijklmnopqrst", "abcdefghijklm-op-rst"},
        {"abcdefghijklm", "abcdefghijklm"}, // an index behind the end is left alone
        {"abcdefghijklmn", "abcdefghijklm-"},
        {"abcdefghijklmnop", "abcdefghijklm-op"},
        {"abcdefghijklmnopq", "abcdefghijklm-op-"},
        {"x", "x"}};
    for (const auto& [date, text] : rows) {
        m_footprint.m_creationDate.Set(std::string(date));
        std::string name;
        m_footprint.GetFileNameForSave(false, name);
        EXPECT_EQ(name, std::string("DeviceFootprint_1111.2222.33-100001-x_") + text + ".xml");
        EXPECT_EQ(Text(m_footprint.m_creationDate), date);
    }
}

TEST_F(DeviceFootprintSaveTest, TheFileNameWithoutAnIdHasNone)
{
    m_footprint.m_deviceData.m_deviceId.Clear();
    std::string name;
    m_footprint.GetFileNameForSave(true, name);
    EXPECT_EQ(name, "DeviceFootprint__2015-03-01T08-05-59.xml");
    EXPECT_EQ(ErrorWord::Take(), "Can not access empty attribute \"deviceId\"!");

    const ExceptionsOn exceptionsOn;
    EXPECT_THROW(m_footprint.GetFileNameForSave(true, name), std::exception);
    EXPECT_EQ(ErrorWord::Take(), "Can not access empty attribute \"deviceId\"!");
}

TEST_F(DeviceFootprintSaveTest, TheFileNameHasTheIdNarrowed)
{
    m_footprint.m_deviceData.m_deviceId = L"\u0141\u00e4-b-c";
    std::string name;
    m_footprint.GetFileNameForSave(true, name);
    EXPECT_EQ(name, "DeviceFootprint_A\xE4-b-c_2015-03-01T08-05-59.xml");
}

TEST_F(DeviceFootprintSaveTest, ATimeWithoutADateGivesAFileNameWithoutOne)
{
    // Only a time of 64 bits can be too great for a date.
    if constexpr (sizeof(std::time_t) > sizeof(std::int32_t)) {
        m_clock.Set(std::numeric_limits<std::time_t>::max());
        m_footprint.m_creationDate.Set(L"2001-01-01T00:00:00");
        std::string name;
        m_footprint.GetFileNameForSave(true, name);
        EXPECT_EQ(name, "DeviceFootprint_1111.2222.33-100001-x_.xml");
        EXPECT_TRUE(m_footprint.m_creationDate.IsEmpty());
        EXPECT_EQ(ErrorWord::Take(), "Can not access empty attribute \"creationDate\"!");

        EXPECT_TRUE(m_footprint.SaveInternal(m_folder.Path(), false));
        EXPECT_EQ(FolderEntries(m_folder.Path()), std::vector<std::string>{name});
    }
}

// --- saving into a folder -------------------------------------------------------------------------------------------

TEST_F(DeviceFootprintSaveTest, WritesTheDocumentAndRecordsItInTheLinkFile)
{
    FillFootprint(m_footprint);
    m_footprint.m_deviceData.m_deviceId = "1111.2222.33-100001-x";
    m_footprint.m_deviceData.m_type.Clear();
    ASSERT_TRUE(m_footprint.Save(m_folder.Path()));
    EXPECT_EQ(FolderEntries(m_folder.Path()), std::vector<std::string>{startName});
    EXPECT_EQ(m_footprint.GetPureFilenameOfLastSave(), startName);
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), m_folder / startName);
    EXPECT_EQ(ReadFile(m_folder / startName), xmlDeclaration + SaveText(m_footprint));
    EXPECT_NE(LinkText().find(PathInLink(m_folder / startName)), std::string::npos) << LinkText();
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());

    CDeviceFootprint loaded;
    ASSERT_TRUE(loaded.Load(m_folder / startName));
    EXPECT_TRUE(loaded.ValidateChecksum());
    EXPECT_EQ(SaveText(loaded), SaveText(m_footprint));
}

TEST_F(DeviceFootprintSaveTest, TheFolderMayEndInASeparator)
{
    ASSERT_TRUE(m_footprint.Save(m_folder.Path() + "/"));
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), m_folder / startName);
    EXPECT_EQ(FolderEntries(m_folder.Path()), std::vector<std::string>{startName});

    // A backslash counts as one, so the name follows it directly.
    ASSERT_TRUE(m_footprint.Save(m_folder / "sub\\"));
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), m_folder / "sub\\" + startName);
    EXPECT_TRUE(FileExists(m_folder / "sub\\" + startName));
}

TEST_F(DeviceFootprintSaveTest, AnEmptyFolderIsRefusedSilently)
{
    const ExceptionsOn exceptionsOn;
    EXPECT_FALSE(m_footprint.Save(""));
    EXPECT_FALSE(m_footprint.SaveInternal(std::string(), false));
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
    EXPECT_TRUE(m_footprint.m_creationDate.IsEmpty());
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), "");
}

TEST_F(DeviceFootprintSaveTest, TheDateIsThatOfTheSave)
{
    m_footprint.m_creationDate.Set(L"2001-01-01T00:00:00");
    ASSERT_TRUE(m_footprint.Save(m_folder.Path()));
    EXPECT_EQ(Text(m_footprint.m_creationDate), startText);

    // Twice within a second: the second save replaces the file of the first.
    m_footprint.m_generatedBy = "second";
    ASSERT_TRUE(m_footprint.Save(m_folder.Path()));
    EXPECT_EQ(FolderEntries(m_folder.Path()).size(), 1U);
    EXPECT_NE(ReadFile(m_folder / startName).find("generatedBy=\"second\""), std::string::npos);

    m_clock.Advance(1);
    ASSERT_TRUE(m_footprint.Save(m_folder.Path()));
    EXPECT_EQ(FolderEntries(m_folder.Path()).size(), 2U);
}

TEST_F(DeviceFootprintSaveTest, AFolderThatIsMissingIsReportedAndTheNamesAreSet)
{
    const std::string full = m_folder / "missing/" + startName;
    EXPECT_FALSE(m_footprint.Save(m_folder / "missing"));
    EXPECT_EQ(ErrorWord::Take(), "save file error, " + full);
    EXPECT_EQ(m_footprint.GetPureFilenameOfLastSave(), startName);
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), full);
    EXPECT_EQ(Text(m_footprint.m_creationDate), startText);
    EXPECT_TRUE(m_footprint.m_checksum.IsEmpty());
    EXPECT_TRUE(FolderEntries(linkBase).empty());
}

TEST_F(DeviceFootprintSaveTest, WithoutALinkNoneIsWritten)
{
    ASSERT_TRUE(m_footprint.SaveInternal(m_folder.Path(), false));
    EXPECT_EQ(ReadFile(m_folder / startName), xmlDeclaration + SaveText(m_footprint));
    EXPECT_TRUE(FolderEntries(linkBase).empty());
    m_footprint.m_deviceData.m_deviceId = noLinkId;
    EXPECT_TRUE(m_footprint.SaveInternal(m_folder.Path(), false));
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
}

TEST_F(DeviceFootprintSaveTest, AFailedLinkFailsTheSaveAndLeavesTheFile)
{
    // An id with too few fields, and a file in the place of the link folder.
    WriteFile(linkBase + "/5_6", "");
    for (const std::string& id : {noLinkId, std::string("5-6-7")}) {
        for (const bool exceptions : {false, true}) {
            m_clock.Advance(1);
            m_footprint.m_deviceData.m_deviceId = id;
            if (exceptions) {
                const ExceptionsOn exceptionsOn;
                EXPECT_THROW(m_footprint.Save(m_folder.Path()), std::exception);
                EXPECT_EQ(CountOpenFiles(), m_openFiles);
            } else {
                EXPECT_FALSE(m_footprint.Save(m_folder.Path()));
            }
            EXPECT_EQ(ErrorWord::Take(), linkError) << id;
            EXPECT_EQ(ReadFile(m_footprint.GetFullFilenameOfLastSave()), xmlDeclaration + SaveText(m_footprint)) << id;
            EXPECT_TRUE(m_footprint.ValidateChecksum());
        }
    }
    EXPECT_EQ(FolderEntries(m_folder.Path()).size(), 4U);
}

TEST_F(DeviceFootprintSaveTest, WithoutAnIdTheAttributeIsReportedBeforeTheLink)
{
    m_footprint.m_deviceData.m_deviceId.Clear();
    m_footprint.m_deviceData.m_type = "type";
    EXPECT_FALSE(m_footprint.Save(m_folder.Path()));
    EXPECT_EQ(ErrorWord::Take(), linkError);
    EXPECT_EQ(FolderEntries(m_folder.Path()), std::vector<std::string>{"DeviceFootprint__2015-03-01T08-05-59.xml"});

    m_clock.Advance(1);
    const ExceptionsOn exceptionsOn;
    EXPECT_THROW(m_footprint.Save(m_folder.Path()), std::exception);
    EXPECT_EQ(ErrorWord::Take(), "Can not access empty attribute \"deviceId\"!");
    EXPECT_EQ(FolderEntries(m_folder.Path()).size(), 1U); // it had not come to open a file
}

TEST_F(DeviceFootprintSaveTest, AFailedChecksumLeavesAnEmptiedFile)
{
    CConnectedDevice& device = m_footprint.m_pConnectedDevices->CreateEntry();
    device.m_generatedBy = "somebody else";
    device.m_checksum.Set(std::string(32, '0'));
    m_footprint.m_checksum.Set(L"former");
    WriteFile(m_folder / startName, "former content");

    EXPECT_FALSE(m_footprint.Save(m_folder.Path()));
    EXPECT_EQ(ReadFile(m_folder / startName), "");
    EXPECT_TRUE(m_footprint.m_checksum.IsEmpty());
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), m_folder / startName);
    EXPECT_EQ(Text(m_footprint.m_creationDate), startText);

    WriteFile(m_folder / "a.xml", "former content");
    EXPECT_FALSE(m_footprint.SaveAs(m_folder / "a.xml"));
    EXPECT_EQ(ReadFile(m_folder / "a.xml"), "");

    std::string text = "former";
    EXPECT_FALSE(m_footprint.GetDeviceFootprintString(false, text));
    EXPECT_EQ(text, "");

    std::ostringstream output;
    EXPECT_FALSE(m_footprint.SaveInternal(output, "name", false));
    EXPECT_EQ(output.str(), "");
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
    EXPECT_TRUE(FolderEntries(linkBase).empty());
}

// --- saving under a name --------------------------------------------------------------------------------------------

TEST_F(DeviceFootprintSaveTest, SaveAsTakesAnyName)
{
    m_footprint.m_creationDate.Set(L"2001-01-01T00:00:00");
    const std::string path = m_folder / "any name";
    ASSERT_TRUE(m_footprint.SaveAs(path));
    EXPECT_EQ(Text(m_footprint.m_creationDate), startText);
    EXPECT_EQ(m_footprint.GetPureFilenameOfLastSave(), "any name");
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), path);
    EXPECT_EQ(ReadFile(path), xmlDeclaration + SaveText(m_footprint));
    EXPECT_NE(LinkText().find(PathInLink(path)), std::string::npos);

    // A longer former content is gone.
    WriteFile(path, std::string(100000, 'x'));
    ASSERT_TRUE(m_footprint.SaveAs(path));
    EXPECT_EQ(ReadFile(path), xmlDeclaration + SaveText(m_footprint));
}

TEST_F(DeviceFootprintSaveTest, SaveAsWithABareNameLeavesThePathEmpty)
{
    const WorkingFolder working(m_folder.Path());
    ASSERT_TRUE(m_footprint.SaveAs(m_folder / "first.xml"));
    ASSERT_TRUE(m_footprint.SaveAs("bare.xml"));
    EXPECT_EQ(m_footprint.GetPureFilenameOfLastSave(), "bare.xml");
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), "bare.xml");
    EXPECT_TRUE(FileExists(m_folder / "bare.xml"));
    // The link file has it in full.
    EXPECT_NE(LinkText().find(PathInLink(m_folder / "bare.xml")), std::string::npos) << LinkText();
}

TEST_F(DeviceFootprintSaveTest, SaveAsTakesABackslashForASeparatorToo)
{
    const WorkingFolder working(m_folder.Path());
    ASSERT_TRUE(m_footprint.SaveAs("sub\\f.xml"));
    EXPECT_EQ(m_footprint.GetPureFilenameOfLastSave(), "f.xml");
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), "sub\\f.xml");
    EXPECT_TRUE(FileExists(m_folder / "sub\\f.xml"));

    fs::create_directory(m_folder / "a\\b");
    ASSERT_TRUE(m_footprint.SaveAs("a\\b/c.xml"));
    EXPECT_EQ(m_footprint.GetPureFilenameOfLastSave(), "c.xml");
}

TEST_F(DeviceFootprintSaveTest, SaveAsReportsAFileThatCanNotBeOpened)
{
    const std::string readOnly = File("readonly.xml", "former content");
    chmod(readOnly.c_str(), 0444);
    chmod(m_folder.Path().c_str(), 0755);
    const WithoutRoot withoutRoot;
    for (const std::string& path :
         {m_folder / "missing/f.xml", m_folder.Path(), m_folder.Path() + "/", readOnly, std::string()}) {
        m_footprint.m_creationDate.Set(L"2001-01-01T00:00:00");
        EXPECT_FALSE(m_footprint.SaveAs(path));
        EXPECT_EQ(ErrorWord::Take(), "save file error, " + path);
        EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), path);
        EXPECT_EQ(Text(m_footprint.m_creationDate), "2001-01-01T00:00:00") << "is set after the file was opened";
    }
    EXPECT_EQ(ReadFile(readOnly), "former content");
}

TEST_F(DeviceFootprintSaveTest, SaveAsWithoutAnIdFailsForItsLinkOnly)
{
    m_footprint.m_deviceData.m_deviceId.Clear();
    EXPECT_FALSE(m_footprint.SaveAs(m_folder / "f.xml"));
    EXPECT_EQ(ErrorWord::Take(), linkError);
    EXPECT_EQ(ReadFile(m_folder / "f.xml"), xmlDeclaration + SaveText(m_footprint));
    const ExceptionsOn exceptionsOn;
    EXPECT_THROW(m_footprint.SaveAs(m_folder / "g.xml"), std::exception);
    EXPECT_EQ(ErrorWord::Take(), linkError);
    EXPECT_EQ(ReadFile(m_folder / "g.xml"), xmlDeclaration + SaveText(m_footprint));
    EXPECT_EQ(CountOpenFiles(), m_openFiles);
}

TEST_F(DeviceFootprintSaveTest, AFullDiskIsNotNoticed)
{
    FillFootprint(m_footprint);
    m_footprint.m_deviceData.m_deviceId = "1111.2222.33-100001-x";
    m_footprint.m_deviceData.m_type.Clear();
    EXPECT_TRUE(m_footprint.SaveAs("/dev/full"));
    EXPECT_NE(LinkText().find(PathInLink("/dev/full")), std::string::npos);
    EXPECT_TRUE(m_footprint.WriteContentToFile("/dev/full", std::string(100000, 'x')));
    if (MountsAllowed()) {
        fs::create_directory(m_folder / "small");
        const TempMount small(m_folder / "small", "size=4k");
        EXPECT_TRUE(m_footprint.SaveAs(m_folder / "small/f.xml"));
        const std::string whole = xmlDeclaration + SaveText(m_footprint);
        const std::string written = ReadFile(m_folder / "small/f.xml");
        EXPECT_LT(written.size(), whole.size());
        EXPECT_EQ(written, whole.substr(0, written.size()));
    }
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
}

// --- saving to a stream or a text -----------------------------------------------------------------------------------

TEST_F(DeviceFootprintSaveTest, AStreamGetsTheDocument)
{
    std::ostringstream output;
    EXPECT_TRUE(m_footprint.SaveInternal(output, "name", false));
    EXPECT_EQ(output.str(), xmlDeclaration + SaveText(m_footprint));
    EXPECT_FALSE(m_footprint.m_checksum.IsEmpty());
    EXPECT_TRUE(m_footprint.m_creationDate.IsEmpty());
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), "");
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
}

TEST_F(DeviceFootprintSaveTest, AStreamWithALinkNeedsAnEarlierSave)
{
    std::ostringstream output;
    EXPECT_FALSE(m_footprint.SaveInternal(output, "name", true));
    EXPECT_EQ(ErrorWord::Take(), linkError);
    EXPECT_EQ(output.str(), xmlDeclaration + SaveText(m_footprint));

    ASSERT_TRUE(m_footprint.SaveAs(m_folder / "f.xml"));
    fs::remove_all(linkBase + "/1111.2222.33_100001");
    EXPECT_TRUE(m_footprint.SaveInternal(output, "name", true));
    EXPECT_NE(LinkText().find(PathInLink(m_folder / "f.xml")), std::string::npos);
}

TEST_F(DeviceFootprintSaveTest, ATextIsTheContentOfAFile)
{
    FillFootprint(m_footprint);
    std::string text = "former";
    ASSERT_TRUE(m_footprint.GetDeviceFootprintString(true, text));
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), "");
    EXPECT_TRUE(FolderEntries(linkBase).empty());
    ASSERT_TRUE(m_footprint.SaveInternal(m_folder.Path(), false));
    EXPECT_EQ(ReadFile(m_footprint.GetFullFilenameOfLastSave()), text);
}

TEST_F(DeviceFootprintSaveTest, ATextHasADateIfItHadOneOrOneIsAskedFor)
{
    CDeviceFootprint fresh;
    std::string text;
    ASSERT_TRUE(fresh.GetDeviceFootprintString(false, text));
    // A root without children is left without its end.
    EXPECT_EQ(text, xmlDeclaration + "<DeviceFootprint formatVersion=\"02.06\" checksum=\"" +
                        ReferenceMd5Hex("formatVersion=\"02.06\"") + "\"");
    ASSERT_TRUE(fresh.GetDeviceFootprintString(true, text));
    EXPECT_EQ(text, xmlDeclaration + "<DeviceFootprint formatVersion=\"02.06\" creationDate=\"" + startText +
                        "\" checksum=\"" +
                        ReferenceMd5Hex("creationDate=\"" + startText + "\"formatVersion=\"02.06\"") + "\"");
    m_clock.Advance(5);
    std::string again;
    ASSERT_TRUE(fresh.GetDeviceFootprintString(false, again));
    EXPECT_EQ(again, text);
}

TEST_F(DeviceFootprintSaveTest, AnEmptyDocumentIsTheHeaderAlone)
{
    CDeviceFootprint empty;
    empty.m_formatVersion.Clear();
    std::string text;
    ASSERT_TRUE(empty.GetDeviceFootprintString(false, text));
    // Its checksum makes it not empty: that of no bytes.
    EXPECT_EQ(text, xmlDeclaration + "<DeviceFootprint checksum=\"d41d8cd98f00b204e9800998ecf8427e\"");
}

// --- small files ----------------------------------------------------------------------------------------------------

TEST_F(DeviceFootprintFilesTest, WriteContentToFileReplacesTheContent)
{
    const CDeviceFootprint& footprint = m_footprint;
    const std::string path = File("f", "a longer former content");
    const std::string content("a\0b\r\nc", 6);
    EXPECT_TRUE(footprint.WriteContentToFile(path, content));
    EXPECT_EQ(ReadFile(path), content); // no line end is added
    EXPECT_TRUE(footprint.WriteContentToFile(path, ""));
    EXPECT_EQ(ReadFile(path), "");
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
    for (const std::string& bad : {m_folder / "missing/f", m_folder.Path(), std::string()}) {
        EXPECT_FALSE(footprint.WriteContentToFile(bad, "x"));
        EXPECT_EQ(ErrorWord::Take(), "save file error, " + bad);
    }
}

TEST_F(DeviceFootprintFilesTest, GetFirstLineOfFileReadsUpToTheLineFeed)
{
    const CDeviceFootprint& footprint = m_footprint;
    const std::pair<std::string, std::string> rows[] = {{"one\ntwo\n", "one"},
                                                        {"one", "one"},
                                                        {"\ntwo", ""},
                                                        {"\n", ""},
                                                        {"one\r\n", "one\r"},
                                                        {" one ", " one "},
                                                        {std::string("a\0b\n", 4), std::string("a\0b", 3)}};
    for (const auto& [content, expected] : rows) {
        std::string line = "former";
        EXPECT_TRUE(footprint.GetFirstLineOfFile(File("f", content), line)) << content;
        EXPECT_EQ(line, expected);
    }
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
}

TEST_F(DeviceFootprintFilesTest, GetFirstLineOfFileReportsWhatItCanNotRead)
{
    const std::pair<std::string, std::string> rows[] = {{m_folder / "missing", "load file error, "},
                                                        {"", "load file error, "},
                                                        {File("empty", ""), "read file error, "},
                                                        {m_folder.Path(), "read file error, "}};
    for (const auto& [path, words] : rows) {
        std::string line = "former";
        EXPECT_FALSE(m_footprint.GetFirstLineOfFile(path, line)) << path;
        EXPECT_EQ(line, "");
        EXPECT_EQ(ErrorWord::Take(), words + path);
        const ExceptionsOn exceptionsOn;
        line = "former";
        EXPECT_THROW(m_footprint.GetFirstLineOfFile(path, line), std::exception);
        EXPECT_EQ(line, "");
    }
    EXPECT_EQ(CountOpenFiles(), m_openFiles);
}

TEST_F(DeviceFootprintFilesTest, TheLatestFileHoldsAName)
{
    const CDeviceFootprint& footprint = m_footprint;
    for (const std::string& folder : {m_folder.Path(), m_folder.Path() + "/"}) {
        EXPECT_TRUE(footprint.WriteFileNameToFile(folder, "name.xml"));
        EXPECT_EQ(ReadFile(m_folder / ".latest"), "name.xml");
        std::string full = "former";
        EXPECT_TRUE(footprint.GetFileNameFromFile(folder, full));
        EXPECT_EQ(full, m_folder / "name.xml");
    }
    EXPECT_TRUE(footprint.WriteFileNameToFile(m_folder / "sub\\", "other.xml"));
    EXPECT_EQ(ReadFile(m_folder / "sub\\.latest"), "other.xml");
    std::string full;
    EXPECT_TRUE(footprint.GetFileNameFromFile(m_folder / "sub\\", full));
    EXPECT_EQ(full, m_folder / "sub\\other.xml");

    const WorkingFolder working(m_folder.Path());
    EXPECT_TRUE(footprint.GetFileNameFromFile("", full));
    EXPECT_EQ(full, "name.xml");
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
}

TEST_F(DeviceFootprintFilesTest, ALatestFileThatCanNotBeUsedIsReported)
{
    const std::string missing = m_folder / "missing";
    EXPECT_FALSE(m_footprint.WriteFileNameToFile(missing, "name.xml"));
    EXPECT_EQ(ErrorWord::Take(), "save file error, " + missing + "/.latest");
    std::string full = "former";
    EXPECT_FALSE(m_footprint.GetFileNameFromFile(missing + "/", full));
    EXPECT_EQ(full, "");
    EXPECT_EQ(ErrorWord::Take(), "load file error, " + missing + "/.latest");
    full = "former";
    EXPECT_FALSE(m_footprint.GetFileNameFromFile(fs::path(File(".latest", "")).parent_path().string(), full));
    EXPECT_EQ(full, "");
    EXPECT_EQ(ErrorWord::Take(), "read file error, " + (m_folder / ".latest"));
}

TEST_F(DeviceFootprintFilesTest, ApplySeparatorEndsAPath)
{
    const std::pair<const char*, const char*> rows[] = {{"", ""},    {"a", "a/"},   {"a/", "a/"},     {"a\\", "a\\"},
                                                        {"/", "/"},  {"\\", "\\"},  {"a//", "a//"},   {"a\\b", "a\\b/"},
                                                        {" ", " /"}, {"a.", "a./"}, {"/a/b", "/a/b/"}};
    for (const auto& [path, expected] : rows) {
        std::string result = path;
        ApplySeparator(result);
        EXPECT_EQ(result, expected);
    }
}

} // namespace
