#include "DeviceFootprint.h"
#include "DocumentTest.h"
#include "ElementText.h"
#include "ExceptionsOn.h"
#include "FillFootprint.h"
#include "StreamCapture.h"
#include "VirtualSlot.h"
#include "WithoutRoot.h"

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <list>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include <sys/stat.h>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

using DeviceFootprintTest = DocumentTest;
using DeviceFootprintLoadTest = DocumentTest;
using DeviceFootprintErrorTest = DocumentTest;
using DeviceFootprintRelationshipTest = DocumentTest;

bool LoadFrom(CDeviceFootprint& footprint, const std::string& text)
{
    std::istringstream input(text);
    return footprint.Load(input);
}

// --- the class ------------------------------------------------------------------------------------------------------

TEST_F(DeviceFootprintTest, HasItsNamesAndDefaults)
{
    EXPECT_EQ(CDeviceFootprint::s_ElementName, "DeviceFootprint");
    EXPECT_EQ(CDeviceFootprint::DeviceFootprintLinkFileName, "deviceFootprintLink.xml");
    EXPECT_EQ(CDeviceFootprint::LatestHistoryEntryFileName, ".latest");
    EXPECT_EQ(CConnectedDevice::s_ElementName, "ConnectedDevice");

    const CDeviceFootprint footprint;
    EXPECT_EQ(footprint.GetElementName(), "DeviceFootprint");
    EXPECT_EQ(Text(footprint.m_formatVersion), "02.06");
    EXPECT_TRUE(footprint.m_creationDate.IsEmpty());
    EXPECT_TRUE(footprint.m_generatedBy.IsEmpty());
    EXPECT_TRUE(footprint.m_checksum.IsEmpty());
    EXPECT_TRUE(footprint.m_pConnectedDevices->IsEmpty());
    EXPECT_EQ(footprint.GetPureFilenameOfLastSave(), "");
    EXPECT_EQ(footprint.GetFullFilenameOfLastSave(), "");

    const CConnectedDevice device;
    EXPECT_EQ(device.GetElementName(), "ConnectedDevice");
    EXPECT_EQ(Text(device.m_formatVersion), "02.06");
}

TEST_F(DeviceFootprintTest, IsAnElementWithoutFurtherVirtualOperations)
{
    static_assert(std::is_abstract_v<CDeviceFootprintData>);
    static_assert(std::is_base_of_v<CElementNode, CDeviceFootprintData>);
    static_assert(std::is_base_of_v<CDeviceFootprintData, CDeviceFootprint>);
    static_assert(std::is_base_of_v<CDeviceFootprintData, CConnectedDevice>);
    EXPECT_EQ(SlotCount<CDeviceFootprintData>(), SlotCount<CElementNode>());
    EXPECT_EQ(SlotCount<CDeviceFootprint>(), SlotCount<CElementNode>());
    EXPECT_EQ(SlotCount<CConnectedDevice>(), SlotCount<CElementNode>());
    EXPECT_EQ(VirtualSlot(static_cast<int (CDeviceFootprint::*)(const CElementNode&) const>(
                  &CDeviceFootprint::GetRelationship)),
              VirtualSlot(&CElementNode::GetRelationship));
    EXPECT_FALSE(IsVirtual(&CDeviceFootprintData::IsSameEntity));
    EXPECT_FALSE(
        IsVirtual(static_cast<bool (CDeviceFootprint::*)(const CDeviceFootprint&)>(&CDeviceFootprint::CopyFrom)));
    EXPECT_FALSE(
        IsVirtual(static_cast<bool (CDeviceFootprint::*)(const CDeviceFootprint&)>(&CDeviceFootprint::InsertFrom)));
}

void ExpectOwnMembers(CDeviceFootprintData& data)
{
    static_assert(std::is_same_v<decltype(data.m_formatVersion), CAttribute>);
    static_assert(std::is_same_v<decltype(data.m_creationDate), CTimeAttribute>);
    static_assert(std::is_same_v<decltype(data.m_generatedBy), CAttribute>);
    static_assert(std::is_same_v<decltype(data.m_checksum), CReadOnlyAttribute>);
    std::list<CReadOnlyAttribute*> attributes = {nullptr};
    data.GetAttributeNodes(attributes);
    EXPECT_EQ(attributes, (std::list<CReadOnlyAttribute*>{&data.m_formatVersion, &data.m_creationDate,
                                                          &data.m_generatedBy, &data.m_checksum}));
    EXPECT_EQ(data.m_formatVersion.GetNodeName(), "formatVersion");
    EXPECT_EQ(data.m_creationDate.GetNodeName(), "creationDate");
    EXPECT_EQ(data.m_generatedBy.GetNodeName(), "generatedBy");
    EXPECT_EQ(data.m_checksum.GetNodeName(), "checksum");

    std::list<CElementNode*> children = {nullptr};
    data.GetChildElements(children);
    EXPECT_EQ(children, (std::list<CElementNode*>{&data.m_deviceData, &data.m_hardwareData, &data.m_softwareData,
                                                  data.m_pConnectedDevices.get()}));
}

TEST_F(DeviceFootprintTest, HasItsAttributesAndChildrenInOrder)
{
    ExpectOwnMembers(m_footprint);
    CConnectedDevice device;
    ExpectOwnMembers(device);
}

TEST_F(DeviceFootprintTest, ASavedFileReadsInTheOrderOfTheTables)
{
    m_footprint.m_generatedBy = "me";
    m_footprint.m_pConnectedDevices->CreateEntry().m_generatedBy = "device";
    m_footprint.m_softwareData.m_bios.m_name = "bios";
    m_footprint.m_hardwareData.m_productList.CreateEntry().m_id = 1L;
    std::string text;
    ASSERT_TRUE(m_footprint.GetDeviceFootprintString(true, text));
    EXPECT_EQ(text, xmlDeclaration + "<DeviceFootprint formatVersion=\"02.06\" creationDate=\"" + startText +
                        "\" generatedBy=\"me\" checksum=\"" + Text(m_footprint.m_checksum) +
                        "\">\n"
                        "  <DeviceData deviceId=\"1111.2222.33-100001-x\"/>\n"
                        "  <HardwareData>\n    <ProductList>\n      <Product id=\"1\"/>\n    </ProductList>\n"
                        "  </HardwareData>\n"
                        "  <SoftwareData>\n    <Bios name=\"bios\"/>\n  </SoftwareData>\n"
                        "  <ConnectedDeviceList>\n"
                        "    <ConnectedDevice formatVersion=\"02.06\" generatedBy=\"device\"/>\n"
                        "  </ConnectedDeviceList>\n"
                        "</DeviceFootprint>\n");
}

// --- copying --------------------------------------------------------------------------------------------------------

TEST_F(DeviceFootprintTest, ACopyHoldsAllButRawDevices)
{
    FillFootprint(m_footprint, {2, 2, 1});
    ASSERT_TRUE(m_footprint.Save(m_folder.Path()));
    const std::string text = SaveText(m_footprint);
    m_footprint.m_pConnectedDevices->m_connectedDeviceStrings = {{"<ConnectedDevice a=\"b\">", "</ConnectedDevice"}};

    CDeviceFootprint copy(m_footprint);
    CDeviceFootprint assigned;
    assigned.m_pConnectedDevices->CreateEntry().m_generatedBy = "gone";
    assigned.m_pConnectedDevices->m_connectedDeviceStrings = {{"gone"}};
    EXPECT_EQ(&(assigned = m_footprint), &assigned);
    for (CDeviceFootprint* footprint : {&copy, &assigned}) {
        ExpectOwnMembers(*footprint);
        EXPECT_NE(footprint->m_pConnectedDevices.get(), m_footprint.m_pConnectedDevices.get());
        EXPECT_TRUE(footprint->m_pConnectedDevices->m_connectedDeviceStrings.empty());
        EXPECT_EQ(SaveText(*footprint), text);
        EXPECT_EQ(footprint->GetFullFilenameOfLastSave(), m_footprint.GetFullFilenameOfLastSave());
        EXPECT_EQ(footprint->GetPureFilenameOfLastSave(), m_footprint.GetPureFilenameOfLastSave());
        EXPECT_TRUE(footprint->m_creationDate == m_footprint.m_creationDate); // the seconds
        footprint->Clear();
    }
    EXPECT_EQ(m_footprint.m_pConnectedDevices->m_connectedDeviceStrings.size(), 1U);
    m_footprint.m_pConnectedDevices->m_connectedDeviceStrings.clear();
    EXPECT_EQ(SaveText(m_footprint), text);
    ExpectOwnMembers(m_footprint);
}

TEST_F(DeviceFootprintTest, ACopyOfAConnectedDeviceHoldsAllButRawDevices)
{
    CConnectedDevice device;
    device.m_generatedBy = "x";
    device.m_pConnectedDevices->CreateEntry().m_generatedBy = "y";
    const std::string text = SaveText(device);
    device.m_pConnectedDevices->m_connectedDeviceStrings = {{"<ConnectedDevice>", "</ConnectedDevice"}};
    CConnectedDevice copy(device);
    CConnectedDevice assigned;
    assigned = device;
    for (CConnectedDevice* other : {&copy, &assigned}) {
        ExpectOwnMembers(*other);
        EXPECT_EQ(SaveText(*other), text);
    }
    CConnectedDeviceList list;
    list.m_connectedDeviceStrings = {{"gone"}};
    list = *device.m_pConnectedDevices;
    EXPECT_EQ(list.size(), 1U);
    EXPECT_TRUE(list.m_connectedDeviceStrings.empty());
    EXPECT_TRUE(CConnectedDeviceList(*device.m_pConnectedDevices).m_connectedDeviceStrings.empty());
}

TEST_F(DeviceFootprintTest, AnAssignmentToItselfChangesNothing)
{
    m_footprint.m_pConnectedDevices->CreateEntry().m_generatedBy = "x";
    m_footprint.m_pConnectedDevices->m_connectedDeviceStrings = {{"<ConnectedDevice>", "</ConnectedDevice"}};
    const CConnectedDeviceList* list = m_footprint.m_pConnectedDevices;
    const CDeviceFootprint& itself = m_footprint;
    m_footprint = itself;
    ExpectOwnMembers(m_footprint);
    EXPECT_EQ(m_footprint.m_pConnectedDevices.get(), list);
    EXPECT_EQ(list->size(), 1U);
    EXPECT_EQ(list->m_connectedDeviceStrings.size(), 1U);
    EXPECT_EQ(Text(m_footprint.m_deviceData.m_deviceId), "1111.2222.33-100001-x");
}

TEST_F(DeviceFootprintTest, CanTakeTheContentOfADeviceInsideIt)
{
    CConnectedDevice device;
    device.m_generatedBy = "outer";
    CConnectedDevice& inner = device.m_pConnectedDevices->CreateEntry();
    FillFootprint(inner);
    const std::string text = SaveText(inner);
    device = device.m_pConnectedDevices->front();
    EXPECT_EQ(SaveText(device), text);
    ExpectOwnMembers(device);
}

// --- identity and relationship --------------------------------------------------------------------------------------

TEST_F(DeviceFootprintRelationshipTest, TheSameEntityHasTheSameFormatAndId)
{
    const struct
    {
        const char* format;
        const char* deviceId;
        const char* otherFormat;
        const char* otherDeviceId;
        bool same;
    } rows[] = {{"02.06", "a", "02.06", "a", true},
                {"02.06", "a", "02.06", "b", false},
                {"02.06", "a", "02.05", "a", false},
                {"", "", "", "", true},
                {"", "a", "", "a", true},
                {"02.06", "", "02.06", "", true},
                {"02.06", "a", "", "a", false},
                {"02.06", "a", "02.06", "", false}};
    for (const auto& row : rows) {
        CDeviceFootprint left;
        CConnectedDevice right;
        left.m_generatedBy = "does not count";
        left.m_formatVersion = row.format;
        left.m_deviceData.m_deviceId = row.deviceId;
        right.m_formatVersion = row.otherFormat;
        right.m_deviceData.m_deviceId = row.otherDeviceId;
        EXPECT_EQ(left.IsSameEntity(right), row.same) << row.format << row.deviceId;
        EXPECT_EQ(right.IsSameEntity(left), row.same);
        EXPECT_EQ(left.GetRelationship(right), row.same ? CElementNode::eSameAge : CElementNode::eUnrelated);
    }
}

TEST_F(DeviceFootprintRelationshipTest, TheSecondsTellOldFromNew)
{
    CDeviceFootprint older;
    older.m_creationDate.SetCreationDateToCurrent();
    CDeviceFootprint same;
    same.m_creationDate.SetCreationDateToCurrent();
    m_clock.Advance(1);
    CDeviceFootprint newer;
    newer.m_creationDate.SetCreationDateToCurrent();
    same.m_creationDate.Set(L"2099-01-01T00:00:00"); // the text does not count

    EXPECT_EQ(older.GetRelationship(newer), 0);
    EXPECT_EQ(newer.GetRelationship(older), 1);
    EXPECT_EQ(older.GetRelationship(same), 2);
    EXPECT_EQ(older.GetRelationship(older), 2);

    older.m_deviceData.m_deviceId = "other";
    EXPECT_EQ(older.GetRelationship(newer), -1);
    EXPECT_EQ(newer.GetRelationship(older), -1);
    EXPECT_EQ(older.GetRelationship(same), -1);
}

TEST_F(DeviceFootprintRelationshipTest, LoadedDocumentsAreOfTheSameAge)
{
    CDeviceFootprint first;
    CDeviceFootprint second;
    for (CDeviceFootprint* footprint : {&first, &second}) {
        const std::string year = footprint == &first ? "2001" : "2017";
        ASSERT_TRUE(LoadFrom(*footprint, "<DeviceFootprint formatVersion=\"02.06\" creationDate=\"" + year +
                                             "-01-01T00:00:00\">\n<DeviceData deviceId=\"a\"/>\n</DeviceFootprint>\n"));
    }
    EXPECT_EQ(first.GetRelationship(second), 2);
    EXPECT_EQ(second.GetRelationship(first), 2);

    // A load leaves the seconds as they were: this one counts as newer, whatever it loaded.
    CDeviceFootprint third;
    third.m_creationDate.SetCreationDateToCurrent();
    ASSERT_TRUE(LoadFrom(third, "<DeviceFootprint formatVersion=\"02.06\" creationDate=\"1999-01-01T00:00:00\">\n"
                                "<DeviceData deviceId=\"a\"/>\n</DeviceFootprint>\n"));
    EXPECT_EQ(third.GetRelationship(first), 1);
    EXPECT_EQ(first.GetRelationship(third), 0);
}

TEST_F(DeviceFootprintRelationshipTest, AnElementOfAnotherKindIsUnrelated)
{
    EXPECT_EQ(m_footprint.GetRelationship(CBios()), CElementNode::eUnrelated);
}

TEST_F(DeviceFootprintRelationshipTest, AMergeOfDeviceListsFollowsIt)
{
    // An older entry is replaced, a newer one stays, an unrelated one is added.
    CConnectedDeviceList target;
    CConnectedDeviceList source;
    const auto add = [this](CConnectedDeviceList& list, const char* id, const char* by, std::time_t age) {
        CConnectedDevice& device = list.CreateEntry();
        m_clock.Set(FakeClock::Start - age);
        device.m_creationDate.SetCreationDateToCurrent();
        device.m_deviceData.m_deviceId = id;
        device.m_generatedBy = by;
    };
    add(target, "a", "target", 10);
    target.back().m_deviceData.m_type = "lost";
    add(target, "b", "target", 10);
    add(target, "c", "target", 10);
    target.back().m_deviceData.m_type = "kept";
    add(source, "a", "source", 5);
    add(source, "b", "source", 15);
    add(source, "c", "source", 10);
    add(source, "d", "source", 10);
    ASSERT_TRUE(target.CopyFrom(source));
    std::string result;
    for (const CConnectedDevice& device : target) {
        result += Text(device.m_deviceData.m_deviceId) + ":" + Text(device.m_generatedBy) + ":" +
                  Text(device.m_deviceData.m_type) + " ";
    }
    EXPECT_EQ(result, "a:source: b:target: c:source:kept d:source: ");
}

// --- loading --------------------------------------------------------------------------------------------------------

const std::string rootBegin = "<DeviceFootprint formatVersion=\"02.05\" generatedBy=\"1\">\n";
const std::string rootEnd = "</DeviceFootprint>\n";

enum class Outcome
{
    eTrue,
    eFalse,
    eOutOfRange
};

Outcome LoadOutcome(CDeviceFootprint& footprint, const std::string& text)
{
    try {
        return LoadFrom(footprint, text) ? Outcome::eTrue : Outcome::eFalse;
    } catch (const std::out_of_range&) {
        return Outcome::eOutOfRange;
    }
}

TEST_F(DeviceFootprintLoadTest, RootsAreLoadedAsTheyCome)
{
    const std::string second = "<DeviceFootprint generatedBy=\"2\">\n" + rootEnd;
    const std::string broken = "<DeviceFootprint generatedBy=\"2\">\n</Wrong>\n";
    const struct
    {
        const char* what;
        std::string text;
        Outcome outcome;
        const char* generatedBy;
    } rows[] = {
        {"nothing", "", Outcome::eFalse, ""},
        {"no root", xmlDeclaration + "<Other>\n</Other>\n", Outcome::eFalse, ""},
        {"a root", rootBegin + rootEnd, Outcome::eTrue, "1"},
        {"no line feed at the end", rootBegin + "</DeviceFootprint>", Outcome::eTrue, "1"},
        {"text around it", "text\n" + xmlDeclaration + "more\n" + rootBegin + rootEnd + "text\nmore", Outcome::eTrue,
         "1"},
        {"a longer tag", "<DeviceFootprints generatedBy=\"1\">\n</DeviceFootprints>\n", Outcome::eTrue, "1"},
        {"a shorter tag", "<Device generatedBy=\"1\">\n</Device>\n", Outcome::eFalse, ""},
        {"the root of a connected device", "<ConnectedDevice generatedBy=\"1\">\n</ConnectedDevice>\n", Outcome::eFalse,
         ""},
        {"a root inside another element", "<Outer>\n" + rootBegin + rootEnd + "</Outer>\n", Outcome::eTrue, "1"},
        {"a second root behind a line", rootBegin + rootEnd + "line\n" + second, Outcome::eTrue, "2"},
        {"a second root directly behind", rootBegin + rootEnd + second, Outcome::eTrue, "1"},
        {"a third root, directly behind two", rootBegin + rootEnd + second + second, Outcome::eTrue, "2"},
        {"a broken second root", rootBegin + rootEnd + "line\n" + broken + "line\n" + rootBegin + rootEnd,
         Outcome::eFalse, "2"},
        {"a wrong end tag", rootBegin + "</Wrong>\n", Outcome::eFalse, "1"},
        {"a broken first root", broken + "line\n" + rootBegin + rootEnd, Outcome::eFalse, "2"},
        {"an end behind the root's tag", rootBegin, Outcome::eFalse, "1"},
        {"an end behind a start tag", rootBegin + "<DeviceData deviceId=\"a\">\n", Outcome::eFalse, "1"},
        {"an end behind an end tag", rootBegin + "<HardwareData>\n</HardwareData>\n", Outcome::eOutOfRange, "1"},
        {"a root in one tag on the last line", "<DeviceFootprint generatedBy=\"1\"/>\n", Outcome::eFalse, "1"},
        {"a root in one tag before another line", "<DeviceFootprint generatedBy=\"1\"/>\nline", Outcome::eTrue, "1"},
        {"a root as it is saved without children", xmlDeclaration + "<DeviceFootprint generatedBy=\"1\"",
         Outcome::eFalse, "1"},
        {"a blank line before the root", "\n" + rootBegin + rootEnd, Outcome::eOutOfRange, ""},
        {"a blank line inside", rootBegin + "\n" + rootEnd, Outcome::eOutOfRange, "1"},
        {"a blank line behind", rootBegin + rootEnd + "\n", Outcome::eTrue, "1"},
        {"two blank lines behind", rootBegin + rootEnd + "\n\n", Outcome::eOutOfRange, "1"},
        {"a blank line later", rootBegin + rootEnd + "line\n\n", Outcome::eOutOfRange, "1"},
        {"a line of blanks behind", rootBegin + rootEnd + " \t\n", Outcome::eOutOfRange, "1"},
    };
    for (const auto& row : rows) {
        CDeviceFootprint footprint;
        footprint.m_formatVersion.Clear();
        EXPECT_EQ(LoadOutcome(footprint, row.text), row.outcome) << row.what;
        EXPECT_EQ(Text(footprint.m_generatedBy), row.generatedBy) << row.what;
        EXPECT_EQ(ErrorWord::Take(), ErrorWord::Untouched()) << row.what;
    }
}

TEST_F(DeviceFootprintLoadTest, FilesOfBothKindsOfLineEndsAreTheSame)
{
    FillFootprint(m_footprint);
    std::string text;
    ASSERT_TRUE(m_footprint.GetDeviceFootprintString(true, text));
    std::string carriageReturns;
    for (const char character : text) {
        carriageReturns += character == '\n' ? "\r\n" : std::string(1, character);
    }
    for (const std::string& content : {text, carriageReturns}) {
        CDeviceFootprint loaded;
        ASSERT_TRUE(loaded.Load(File("f.xml", content)));
        EXPECT_EQ(SaveText(loaded), SaveText(m_footprint));
    }
}

TEST_F(DeviceFootprintLoadTest, ReplacesAttributesButKeepsWhatTheFileDoesNotMention)
{
    m_footprint.m_generatedBy = "me";
    m_footprint.m_checksum.Set(L"abc");
    m_footprint.m_softwareData.m_bios.m_name = "kept";
    ASSERT_TRUE(LoadFrom(m_footprint, "<DeviceFootprint>\n<DeviceData type=\"t\"/>\n</DeviceFootprint>\n"));
    EXPECT_TRUE(m_footprint.m_formatVersion.IsEmpty());
    EXPECT_TRUE(m_footprint.m_generatedBy.IsEmpty());
    EXPECT_TRUE(m_footprint.m_checksum.IsEmpty());
    EXPECT_TRUE(m_footprint.m_deviceData.m_deviceId.IsEmpty());
    EXPECT_EQ(Text(m_footprint.m_deviceData.m_type), "t");
    EXPECT_EQ(Text(m_footprint.m_softwareData.m_bios.m_name), "kept");
}

TEST_F(DeviceFootprintLoadTest, AppendsToLists)
{
    const std::string text = rootBegin + "<HardwareData>\n<HardwareList>\n<Hardware id=\"1\"/>\n</HardwareList>\n" +
                             "</HardwareData>\n" + rootEnd;
    ASSERT_TRUE(LoadFrom(m_footprint, text));
    ASSERT_TRUE(LoadFrom(m_footprint, text));
    EXPECT_EQ(m_footprint.m_hardwareData.m_hardwareList.size(), 2U);
}

TEST_F(DeviceFootprintLoadTest, DoesNotTestTheChecksum)
{
    const std::string path =
        File("f.xml", "<DeviceFootprint checksum=\"00000000000000000000000000000000\">\n" + rootEnd);
    ASSERT_TRUE(m_footprint.Load(path));
    EXPECT_EQ(Text(m_footprint.m_checksum), std::string(32, '0'));
    EXPECT_FALSE(m_footprint.ValidateChecksum());
}

TEST_F(DeviceFootprintLoadTest, AFailedReadIsReportedButDoesNotUndoACompleteRoot)
{
    const struct
    {
        std::string text;
        bool result;
    } rows[] = {{"", false}, {rootBegin, false}, {rootBegin + rootEnd, true}, {rootBegin + rootEnd + "line\n", true}};
    for (const auto& row : rows) {
        BrokenBuffer buffer(row.text);
        std::istream input(&buffer);
        EXPECT_EQ(m_footprint.Load(input, "f.xml"), row.result) << row.text;
        EXPECT_EQ(ErrorWord::Take(), "Error reading xml") << row.text;
    }
}

TEST_F(DeviceFootprintLoadTest, MessagesNameTheStreamAsTheCallerDoes)
{
    const std::string text = rootBegin + "\xFF\n" + rootEnd;
    const std::string words = "line 2, UTF-8 encoding error, lead is invalid";
    {
        std::istringstream input(text);
        EXPECT_FALSE(m_footprint.Load(input));
        EXPECT_EQ(ErrorWord::Take(), words);
    }
    {
        std::istringstream input(text);
        EXPECT_FALSE(m_footprint.Load(input, "the name"));
        EXPECT_EQ(ErrorWord::Take(), "the name, " + words);
    }
    const std::string path = File("f.xml", text);
    EXPECT_FALSE(m_footprint.Load(path));
    EXPECT_EQ(ErrorWord::Take(), path + ", " + words);
}

TEST_F(DeviceFootprintLoadTest, AFileThatCanNotBeOpenedIsReported)
{
    const std::string unreadable = File("unreadable.xml", rootBegin + rootEnd);
    chmod(unreadable.c_str(), 0);
    chmod(m_folder.Path().c_str(), 0755);
    {
        const WithoutRoot withoutRoot;
        for (const std::string& path : {m_folder / "missing.xml", m_folder / "missing" + "/f.xml",
                                        unreadable + "/below", unreadable, std::string()}) {
            EXPECT_FALSE(m_footprint.Load(path));
            EXPECT_EQ(ErrorWord::Take(), "load file error, " + path);
        }
    }
    EXPECT_EQ(Text(m_footprint.m_deviceData.m_deviceId), "1111.2222.33-100001-x");
}

TEST_F(DeviceFootprintLoadTest, AFolderCanBeOpenedButNotRead)
{
    EXPECT_FALSE(m_footprint.Load(m_folder.Path()));
    EXPECT_EQ(ErrorWord::Text(), "Error reading xml");
}

TEST_F(DeviceFootprintLoadTest, ClosesItsFileWhenAnExceptionLeaves)
{
    const std::string blank = File("blank.xml", rootBegin + "\n" + rootEnd);
    EXPECT_THROW(m_footprint.Load(blank), std::out_of_range);
    const std::string badUtf8 = File("bad.xml", rootBegin + "\xFF\n" + rootEnd);
    const ExceptionsOn exceptionsOn;
    EXPECT_THROW(m_footprint.Load(badUtf8), std::exception);
    EXPECT_EQ(CountOpenFiles(), m_openFiles);
}

TEST_F(DeviceFootprintLoadTest, AnnouncesUnknownTagsOnStandardOutput)
{
    const StreamCapture output(std::cout);
    ASSERT_TRUE(LoadFrom(m_footprint, rootBegin + "  <Unknown>\n  </Unknown>\n" + rootEnd));
    EXPECT_EQ(output.Text(), "Found invalid tag: <Unknown>\n");
}

// --- merging --------------------------------------------------------------------------------------------------------

TEST_F(DeviceFootprintTest, MergingWithItselfDoesNothing)
{
    FillFootprint(m_footprint);
    const std::string text = SaveText(m_footprint);
    EXPECT_TRUE(m_footprint.CopyFrom(m_footprint));
    EXPECT_TRUE(m_footprint.InsertFrom(m_footprint));
    EXPECT_EQ(SaveText(m_footprint), text);
}

TEST_F(DeviceFootprintTest, CopyFromMergesAndInsertFromAppends)
{
    CDeviceFootprint source;
    source.m_generatedBy = "source";
    source.m_formatVersion.Clear();
    source.m_hardwareData.m_hardwareList.CreateEntry().m_id = 1L;
    m_footprint.m_hardwareData.m_hardwareList.CreateEntry().m_id = 1L;
    EXPECT_TRUE(m_footprint.CopyFrom(source));
    EXPECT_EQ(Text(m_footprint.m_generatedBy), "source");
    EXPECT_EQ(Text(m_footprint.m_formatVersion), "02.06"); // an empty value erases nothing
    EXPECT_EQ(m_footprint.m_hardwareData.m_hardwareList.size(), 1U);
    EXPECT_TRUE(m_footprint.InsertFrom(source));
    EXPECT_EQ(m_footprint.m_hardwareData.m_hardwareList.size(), 2U);
    EXPECT_EQ(Text(m_footprint.m_deviceData.m_deviceId), "1111.2222.33-100001-x");
}

TEST_F(DeviceFootprintTest, MergingLeavesTheSeconds)
{
    CDeviceFootprint source;
    source.m_creationDate.SetCreationDateToCurrent();
    CDeviceFootprint copied;
    CDeviceFootprint inserted;
    ASSERT_TRUE(copied.CopyFrom(source));
    ASSERT_TRUE(inserted.InsertFrom(source));
    for (const CDeviceFootprint* target : {&copied, &inserted}) {
        EXPECT_EQ(Text(target->m_creationDate), startText);
        EXPECT_TRUE(target->m_creationDate == CDeviceFootprint().m_creationDate);
    }
}

// --- the error word -------------------------------------------------------------------------------------------------

TEST_F(DeviceFootprintErrorTest, SetLastErrorStoresAndGivesFalse)
{
    EXPECT_FALSE(CDeviceFootprint::SetLastError("some words"));
    std::string text = CDeviceFootprint::GetLastError();
    EXPECT_EQ(text, "some words");
    text = "changed"; // was a copy
    EXPECT_EQ(CDeviceFootprint::GetLastError(), "some words");
    EXPECT_FALSE(CDeviceFootprint::SetLastError(""));
    EXPECT_EQ(CDeviceFootprint::GetLastError(), "");
}

TEST_F(DeviceFootprintErrorTest, NothingClearsTheLastError)
{
    EXPECT_FALSE(m_footprint.Load(m_folder / "missing"));
    const std::string text = CDeviceFootprint::GetLastError();
    ASSERT_TRUE(m_footprint.Save(m_folder.Path()));
    ASSERT_TRUE(CDeviceFootprint().Load(m_footprint.GetFullFilenameOfLastSave()));
    EXPECT_EQ(CDeviceFootprint::GetLastError(), text);
}

TEST_F(DeviceFootprintErrorTest, TheSwitchMakesItThrowAPlainException)
{
    for (int round = 0; round < 2; ++round) {
        CDeviceFootprint::EnableExceptions(true);
        try {
            CDeviceFootprint::SetLastError("thrown");
            ADD_FAILURE() << "nothing was thrown";
        } catch (const std::exception& exception) {
            EXPECT_EQ(typeid(exception), typeid(std::exception));
        }
        EXPECT_EQ(CDeviceFootprint::GetLastError(), "thrown");
        round == 0 ? CDeviceFootprint::DisableExceptions() : CDeviceFootprint::EnableExceptions(false);
        EXPECT_FALSE(CDeviceFootprint::SetLastError("not thrown"));
    }
}

TEST_F(DeviceFootprintErrorTest, EveryErrorPathHonoursTheSwitch)
{
    const std::string empty = File("empty", "");
    const std::string bad = File("bad", rootBegin + "\xC0\x80\n" + rootEnd);
    const struct
    {
        std::string words;
        std::function<bool(CDeviceFootprint&)> action;
    } rows[] = {
        {"load file error, " + (m_folder / "no"), [&](auto& f) { return f.Load(m_folder / "no"); }},
        {bad + ", line 2, UTF-8 encoding error, sequence is too long", [&](auto& f) { return f.Load(bad); }},
        {"Error reading xml",
         [&](auto& f) {
             BrokenBuffer buffer(rootBegin);
             std::istream input(&buffer);
             return f.Load(input);
         }},
        {"save file error, " + (m_folder / "no/") + "DeviceFootprint_1111.2222.33-100001-x_2015-03-01T08-05-59.xml",
         [&](auto& f) { return f.Save(m_folder / "no"); }},
        {"save file error, " + (m_folder / "no/f"), [&](auto& f) { return f.SaveAs(m_folder / "no/f"); }},
        {"save file error, " + (m_folder / "no/f"),
         [&](auto& f) { return f.WriteContentToFile(m_folder / "no/f", "x"); }},
        {"save file error, " + (m_folder / "no/.latest"),
         [&](auto& f) { return f.WriteFileNameToFile(m_folder / "no", "x"); }},
        {"read file error, " + empty,
         [&](auto& f) {
             std::string line;
             return f.GetFirstLineOfFile(empty, line);
         }},
        {"load file error, " + (m_folder / "no/.latest"),
         [&](auto& f) {
             std::string name;
             return f.GetFileNameFromFile(m_folder / "no", name);
         }},
        {"Failed to save device footprint link file.",
         [&](auto& f) {
             std::ostringstream output;
             return f.SaveInternal(output, "", true);
         }},
        {"Can not access empty attribute \"generatedBy\"!",
         [](auto& f) {
             std::string value;
             return f.m_generatedBy.Get(value);
         }},
        {"invalid boolean attribute",
         [](auto& f) {
             bool value = false;
             return f.m_formatVersion.GetBool(value);
         }},
    };
    for (const auto& row : rows) {
        CDeviceFootprint footprint(m_footprint);
        EXPECT_FALSE(row.action(footprint)) << row.words;
        EXPECT_EQ(ErrorWord::Take(), row.words);
        {
            const ExceptionsOn exceptionsOn;
            EXPECT_THROW(row.action(footprint), std::exception) << row.words;
        }
        EXPECT_EQ(ErrorWord::Take(), row.words);
        EXPECT_EQ(CountOpenFiles(), m_openFiles) << row.words;
    }
}

} // namespace
