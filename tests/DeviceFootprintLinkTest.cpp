#include "DeviceFootprintLink.h"
#include "ErrorWord.h"
#include "Files.h"
#include "LinkFile.h"
#include "TempFolder.h"
#include "VirtualSlot.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

/// Records the calls of the virtual operations and answers as it is told.
class RecordingLink : public DeviceFootprintLink
{
public:
    using DeviceFootprintLink::DeviceFootprintLink;

    bool writeInternal(const std::string& latest, const std::string& history) override
    {
        m_calls.push_back("write " + latest + " " + history);
        return m_writeResult;
    }
    bool readInternal(const std::string& file, std::string& latest, std::string& history) override
    {
        m_calls.push_back("read " + file);
        latest = m_latestOnFile;
        history = m_historyOnFile;
        return m_readResult;
    }

    std::vector<std::string> m_calls;
    bool m_writeResult = true;
    bool m_readResult = true;
    std::string m_latestOnFile;
    std::string m_historyOnFile;
};

using Calls = std::vector<std::string>;

} // namespace

TEST(DeviceFootprintLinkStatics, Values)
{
    EXPECT_EQ(DeviceFootprintLink::_rootElementName, "DeviceFootprintReference");
    EXPECT_EQ(DeviceFootprintLink::_latestDeviceFootprintPathElementName, "LatestDeviceFootprint");
    EXPECT_EQ(DeviceFootprintLink::_historyPathElementName, "DeviceFootprintHistoryFolder");
    EXPECT_EQ(DeviceFootprintLink::_pathAttributeName, "path");
    EXPECT_EQ(DeviceFootprintLink::_fileAttributeName, "fileName");
}

TEST(DeviceFootprintLinkAbi, OrderOfTheVirtualOperations)
{
    EXPECT_EQ(VirtualSlot(&DeviceFootprintLink::writeInternal), DestructorSlots);
    EXPECT_EQ(VirtualSlot(&DeviceFootprintLink::readInternal), DestructorSlots + 1);
    EXPECT_EQ(SlotCount<DeviceFootprintLink>(), DestructorSlots + 2);
    EXPECT_FALSE(IsVirtual(&DeviceFootprintLink::write));
    EXPECT_FALSE(IsVirtual(&DeviceFootprintLink::setLatestDeviceFootprintPath));
}

TEST(DeviceFootprintLinkConstruction, KnowsNothingAndReadsNothing)
{
    const TempFolder folder;
    WriteFile(folder / "link.xml", LinkFileText("/a/b.xml", "/h"));

    const DeviceFootprintLink empty;
    EXPECT_EQ(empty.getLatestDeviceFootprintPath(), "");
    EXPECT_EQ(empty.getDeviceFootprintHistoryFolder(), "");
    const DeviceFootprintLink link(folder / "link.xml");
    EXPECT_EQ(link.getLatestDeviceFootprintPath(), "");
    EXPECT_EQ(link.getDeviceFootprintHistoryFolder(), "");
}

TEST(DeviceFootprintLinkSetters, RefuseEmptyAndRelativePathsAndKeepTheFormerOne)
{
    const ErrorWord errorWord;
    DeviceFootprintLink link;
    EXPECT_TRUE(link.setLatestDeviceFootprintPath("/a/b.xml"));
    EXPECT_TRUE(link.setDeviceFootprintHistoryFolder("/h"));
    for (const char* refused : {"", "x/y.xml", "./x", "../x", "\\x", " /x"}) {
        EXPECT_FALSE(link.setLatestDeviceFootprintPath(refused)) << refused;
        EXPECT_FALSE(link.setDeviceFootprintHistoryFolder(refused)) << refused;
    }
    EXPECT_EQ(link.getLatestDeviceFootprintPath(), "/a/b.xml");
    EXPECT_EQ(link.getDeviceFootprintHistoryFolder(), "/h");
    EXPECT_TRUE(link.setLatestDeviceFootprintPath("/"));
    EXPECT_TRUE(link.setDeviceFootprintHistoryFolder("/h/../g/"));
    EXPECT_EQ(link.getLatestDeviceFootprintPath(), "/");
    EXPECT_EQ(link.getDeviceFootprintHistoryFolder(), "/h/../g/");
    EXPECT_EQ(errorWord.Text(), ErrorWord::Untouched());
}

TEST(DeviceFootprintLinkWrite, WithBothMembersEmptyLeavesTheFileAlone)
{
    const TempFolder folder;
    WriteFile(folder / "link.xml", "as it was");
    DeviceFootprintLink link(folder / "link.xml");
    EXPECT_FALSE(link.write());
    EXPECT_EQ(ReadFile(folder / "link.xml"), "as it was");

    RecordingLink recording(folder / "link.xml");
    EXPECT_FALSE(recording.write());
    EXPECT_EQ(recording.m_calls, Calls());
}

TEST(DeviceFootprintLinkWrite, NewFiles)
{
    const TempFolder folder;
    struct Case
    {
        const char* latest;
        const char* history;
    };
    for (const Case& c : {Case{"/a/b.xml", "/h"}, Case{"/a/b.xml", nullptr}, Case{nullptr, "/h"}}) {
        const std::string file = folder / "link.xml";
        DeviceFootprintLink link(file);
        EXPECT_EQ(link.setLatestDeviceFootprintPath(c.latest == nullptr ? "" : c.latest), c.latest != nullptr);
        EXPECT_EQ(link.setDeviceFootprintHistoryFolder(c.history == nullptr ? "" : c.history), c.history != nullptr);
        EXPECT_TRUE(link.write());
        EXPECT_EQ(ReadFile(file), LinkFileText(c.latest, c.history));
        std::remove(file.c_str());
    }
}

TEST(DeviceFootprintLinkWrite, KeepsFromTheFileWhatTheObjectDoesNotKnow)
{
    struct Case
    {
        const char* what;
        const char* latest;
        const char* history;
        std::string before;
        std::string after;
    };
    const std::vector<Case> cases = {
        {"history kept", "/new.xml", "", LinkFileText("/old.xml", "/h"), LinkFileText("/new.xml", "/h")},
        {"latest kept", "", "/new", LinkFileText("/old.xml", "/h"), LinkFileText("/old.xml", "/new")},
        {"file without history", "/new.xml", "", LinkFileText("/old.xml", nullptr), LinkFileText("/new.xml", nullptr)},
        {"nothing to keep", "/new.xml", "/new", LinkFileText("/old.xml", "/h"), LinkFileText("/new.xml", "/new")},
        {"file without either element", "/new.xml", "", "text\n", LinkFileText("/new.xml", nullptr)},
        {"longer file is cut", "/n", "/h", LinkFileText("/old.xml", "/h") + std::string(5000, 'x'),
         LinkFileText("/n", "/h")},
    };
    const TempFolder folder;
    const std::string file = folder / "link.xml";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        WriteFile(file, c.before);
        DeviceFootprintLink link(file);
        link.setLatestDeviceFootprintPath(c.latest);
        link.setDeviceFootprintHistoryFolder(c.history);
        EXPECT_TRUE(link.write());
        EXPECT_EQ(ReadFile(file), c.after);
        // What was kept does not enter the object.
        EXPECT_EQ(link.getLatestDeviceFootprintPath(), c.latest);
        EXPECT_EQ(link.getDeviceFootprintHistoryFolder(), c.history);
    }
}

TEST(DeviceFootprintLinkWrite, RelativePathKeptFromTheFileIsRefusedAndTheFileStays)
{
    const TempFolder folder;
    const std::string before = LinkFileText("/old.xml", "relative");
    WriteFile(folder / "link.xml", before);
    DeviceFootprintLink link(folder / "link.xml");
    ASSERT_TRUE(link.setLatestDeviceFootprintPath("/new.xml"));
    EXPECT_FALSE(link.write());
    EXPECT_EQ(ReadFile(folder / "link.xml"), before);
}

TEST(DeviceFootprintLinkWrite, CallsTheVirtualOperations)
{
    struct Case
    {
        const char* what;
        const char* latest;
        const char* history;
        bool readResult;
        const char* latestOnFile;
        const char* historyOnFile;
        Calls calls;
    };
    const std::vector<Case> cases = {
        {"both known: not read", "/l", "/h", true, "/fl", "/fh", {"write /l /h"}},
        {"latest known", "/l", "", true, "/fl", "/fh", {"read file", "write /l /fh"}},
        {"history known", "", "/h", true, "/fl", "/fh", {"read file", "write /fl /h"}},
        {"nothing on file", "/l", "", true, "", "", {"read file", "write /l "}},
        {"failed read counts for nothing", "/l", "", false, "/fl", "/fh", {"read file", "write /l "}},
    };
    for (const Case& c : cases) {
        for (const bool result : {true, false}) {
            SCOPED_TRACE(c.what);
            RecordingLink link("file");
            link.setLatestDeviceFootprintPath(c.latest);
            link.setDeviceFootprintHistoryFolder(c.history);
            link.m_readResult = c.readResult;
            link.m_latestOnFile = c.latestOnFile;
            link.m_historyOnFile = c.historyOnFile;
            link.m_writeResult = result;
            EXPECT_EQ(link.write(), result);
            EXPECT_EQ(link.m_calls, c.calls);
        }
    }
}

TEST(DeviceFootprintLinkWrite, FileThatCanNotBeOpenedFailsWithoutAWord)
{
    const TempFolder folder;
    const ErrorWord errorWord;
    WriteFile(folder / "plain", "");
    for (const std::string& file : {folder / "missing/link.xml", folder / "plain/link.xml", std::string()}) {
        DeviceFootprintLink link(file);
        ASSERT_TRUE(link.setLatestDeviceFootprintPath("/l"));
        EXPECT_FALSE(link.write()) << file;
    }
    DeviceFootprintLink link(folder.Path());
    EXPECT_FALSE(link.writeInternal("/l", "/h"));
    EXPECT_EQ(errorWord.Text(), ErrorWord::Untouched());
}

TEST(DeviceFootprintLinkWriteInternal, RefusesRelativePathsBeforeItTouchesTheFile)
{
    const TempFolder folder;
    WriteFile(folder / "link.xml", "as it was");
    DeviceFootprintLink link(folder / "link.xml");
    EXPECT_FALSE(link.writeInternal("x.xml", ""));
    EXPECT_FALSE(link.writeInternal("x.xml", "/h"));
    EXPECT_FALSE(link.writeInternal("/x.xml", "h"));
    EXPECT_FALSE(link.writeInternal("", "h"));
    EXPECT_EQ(ReadFile(folder / "link.xml"), "as it was");
}

TEST(DeviceFootprintLinkWriteInternal, UsesItsArgumentsAndNotTheMembers)
{
    const TempFolder folder;
    DeviceFootprintLink link(folder / "link.xml");
    ASSERT_TRUE(link.setLatestDeviceFootprintPath("/member"));
    EXPECT_TRUE(link.writeInternal("/argument", ""));
    EXPECT_EQ(ReadFile(folder / "link.xml"), LinkFileText("/argument", nullptr));
    EXPECT_TRUE(link.writeInternal("", ""));
    EXPECT_EQ(ReadFile(folder / "link.xml"), LinkFileText(nullptr, nullptr));
}

TEST(DeviceFootprintLinkWriteInternal, FaultsWhileWritingAreNotNoticed)
{
    DeviceFootprintLink link("/dev/full");
    EXPECT_TRUE(link.writeInternal("/l", "/h"));
}

TEST(DeviceFootprintLinkPaths, AreBytesAndComeBackUnchanged)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"/plain path/x", "/plain path/x"},
        {"/a&b<c>\"d\"'e'", "/a&amp;b&lt;c&gt;&quot;d&quot;&apos;e&apos;"},
        {"/Verst\xE4rker", "/Verst&#4294967268;rker"},
        {"/\xC3\xA4", "/&#4294967235;&#4294967204;"},
        {"/\x80\xFF\x7F\x01\n", "/&#4294967168;&#4294967295;&#127;&#1;&#10;"},
        {"/x path=", "/x path="},
        {"/&amp;", "/&amp;amp;"},
    };
    const TempFolder folder;
    for (const auto& c : cases) {
        DeviceFootprintLink link(folder / "link.xml");
        EXPECT_TRUE(link.writeInternal(c.first, c.first));
        EXPECT_EQ(ReadFile(folder / "link.xml"), LinkFileText(c.second.c_str(), c.second.c_str()));
        std::string latest;
        std::string history;
        EXPECT_TRUE(link.readInternal(folder / "link.xml", latest, history));
        EXPECT_EQ(latest, c.first);
        EXPECT_EQ(history, c.first);
    }
}

TEST(DeviceFootprintLinkReadInternal, FindsTheElementsWhereverTheyStand)
{
    struct Case
    {
        const char* what;
        std::string text;
        bool found;
        const char* latest;
        const char* history;
    };
    // What is not found leaves the texts "l" and "h".
    const std::vector<Case> cases = {
        {"as written", LinkFileText("/l.xml", "/hist"), true, "/l.xml", "/hist"},
        {"empty file", "", false, "l", "h"},
        {"neither element", "<DeviceFootprintReference>\n</DeviceFootprintReference>\n", false, "l", "h"},
        {"no root, no first line", "<LatestDeviceFootprint path=\"/x\"/>", true, "/x", "h"},
        {"another root", "<A>\n<B>\n<DeviceFootprintHistoryFolder path=\"/x\"/>\n</B>\n</A>\n", true, "l", "/x"},
        {"only one has a path", LinkFileText(nullptr, "/hist"), true, "", "/hist"},
        {"an element without a path counts as found", "<LatestDeviceFootprint/>\n", true, "", "h"},
        {"the later one counts",
         "<LatestDeviceFootprint path=\"/1\"/>\n<DeviceFootprintHistoryFolder path=\"/3\"/>\n"
         "<LatestDeviceFootprint path=\"/2\"/>\n<DeviceFootprintHistoryFolder path=\"/4\"/>\n",
         true, "/2", "/4"},
        {"a later one without a path too", "<LatestDeviceFootprint path=\"/1\"/>\n<LatestDeviceFootprint/>\n", true, "",
         "h"},
        {"relative paths are given as they are", LinkFileText("x", "y"), true, "x", "y"},
        {"end tags are no elements", "</LatestDeviceFootprint path=\"/x\">\n", false, "l", "h"},
        {"names are compared as far as they go", "<LatestDeviceFootprints path=\"/x\"/>\n", true, "/x", "h"},
        {"names in another case", "<latestDeviceFootprint path=\"/x\"/>\n", false, "l", "h"},
        {"other attribute", "<LatestDeviceFootprint fileName=\"/x\"/>\n", true, "", "h"},
        {"start tag with content", "<LatestDeviceFootprint path=\"/x\">\n", true, "/x", "h"},
        {"lines end in CR LF", "<LatestDeviceFootprint path=\"/x\"/>\r\n", true, "/x", "h"},
        {"broken off in the value", "<LatestDeviceFootprint path=\"/x", true, "/x", "h"},
        {"bad text ends it; what was found before stays",
         "<LatestDeviceFootprint path=\"/x\"/>\n\xFF\n<DeviceFootprintHistoryFolder path=\"/y\"/>\n", true, "/x", "h"},
        {"bad text in front of all", "\xFF\n<LatestDeviceFootprint path=\"/x\"/>\n", false, "l", "h"},
        {"only the low byte of a character counts", "<LatestDeviceFootprint path=\"/\xC4\x81\"/>\n", true, "/\x01",
         "h"},
    };
    const TempFolder folder;
    const ErrorWord errorWord;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        WriteFile(folder / "link.xml", c.text);
        DeviceFootprintLink link;
        std::string latest = "l";
        std::string history = "h";
        EXPECT_EQ(link.readInternal(folder / "link.xml", latest, history), c.found);
        EXPECT_EQ(latest, c.latest);
        EXPECT_EQ(history, c.history);
    }
}

TEST(DeviceFootprintLinkReadInternal, FilesThatCanNotBeRead)
{
    const TempFolder folder;
    DeviceFootprintLink link;
    std::string latest = "l";
    std::string history = "h";
    EXPECT_FALSE(link.readInternal(folder / "missing", latest, history));
    EXPECT_FALSE(link.readInternal("", latest, history));
    EXPECT_EQ(latest, "l");
    EXPECT_EQ(history, "h");
}

TEST(DeviceFootprintLinkReadInternal, ChangesNoMember)
{
    const TempFolder folder;
    WriteFile(folder / "link.xml", LinkFileText("/l.xml", "/h"));
    DeviceFootprintLink link;
    std::string latest;
    std::string history;
    EXPECT_TRUE(link.readInternal(folder / "link.xml", latest, history));
    EXPECT_EQ(link.getLatestDeviceFootprintPath(), "");
    EXPECT_EQ(link.getDeviceFootprintHistoryFolder(), "");
}

TEST(DeviceFootprintLinkCreateFromFile, FillsTheLinkWithWhatIsAbsolute)
{
    struct Case
    {
        const char* what;
        std::string text;
        bool result;
        const char* latest;
        const char* history;
    };
    // The link knows "/l" and "/h" before.
    const std::vector<Case> cases = {
        {"both", LinkFileText("/l.xml", "/hist"), true, "/l.xml", "/hist"},
        {"relative latest", LinkFileText("l.xml", "/hist"), true, "/l", "/hist"},
        {"relative history", LinkFileText("/l.xml", "hist"), true, "/l.xml", "/h"},
        {"both relative", LinkFileText("l.xml", "hist"), true, "/l", "/h"},
        {"without paths", LinkFileText(nullptr, nullptr), true, "/l", "/h"},
        {"neither element", "<DeviceFootprintReference/>\n", false, "/l", "/h"},
    };
    const TempFolder folder;
    const ErrorWord errorWord;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        WriteFile(folder / "source.xml", c.text);
        DeviceFootprintLink link(folder / "own.xml");
        ASSERT_TRUE(link.setLatestDeviceFootprintPath("/l"));
        ASSERT_TRUE(link.setDeviceFootprintHistoryFolder("/h"));
        EXPECT_EQ(DeviceFootprintLink::CreateFromFile(folder / "source.xml", link), c.result);
        EXPECT_EQ(link.getLatestDeviceFootprintPath(), c.latest);
        EXPECT_EQ(link.getDeviceFootprintHistoryFolder(), c.history);

        // The link's own file is the one that was read, unless the read failed.
        ASSERT_TRUE(link.write());
        EXPECT_EQ(ReadFile(folder / (c.result ? "source.xml" : "own.xml")), LinkFileText(c.latest, c.history));
        EXPECT_EQ(FileExists(folder / "own.xml"), !c.result);
        std::remove((folder / "own.xml").c_str());
    }
    EXPECT_EQ(errorWord.Text(), ErrorWord::Untouched());
}

TEST(DeviceFootprintLinkCreateFromFile, RelativePathLeavesAFreshMemberEmpty)
{
    const TempFolder folder;
    WriteFile(folder / "link.xml", LinkFileText("x/y.xml", "/hist"));
    DeviceFootprintLink link;
    EXPECT_TRUE(DeviceFootprintLink::CreateFromFile(folder / "link.xml", link));
    EXPECT_EQ(link.getLatestDeviceFootprintPath(), "");
    EXPECT_EQ(link.getDeviceFootprintHistoryFolder(), "/hist");
}

TEST(DeviceFootprintLinkCreateFromFile, ReadsThroughTheLinksOwnVirtualOperation)
{
    RecordingLink link("own");
    link.m_latestOnFile = "/l";
    link.m_historyOnFile = "h";
    EXPECT_TRUE(DeviceFootprintLink::CreateFromFile("somewhere", link));
    EXPECT_EQ(link.m_calls, Calls({"read somewhere"}));
    EXPECT_EQ(link.getLatestDeviceFootprintPath(), "/l");
    EXPECT_EQ(link.getDeviceFootprintHistoryFolder(), "");

    RecordingLink failing("own");
    failing.m_readResult = false;
    failing.m_latestOnFile = "/l";
    EXPECT_FALSE(DeviceFootprintLink::CreateFromFile("missing", failing));
    EXPECT_EQ(failing.getLatestDeviceFootprintPath(), "");
}

TEST(DeviceFootprintLinkFiles, AreClosed)
{
    const TempFolder folder;
    const std::size_t before = CountOpenFiles();
    for (const std::string& text : {LinkFileText("/l", "/h"), std::string("\xFF\n"), std::string()}) {
        WriteFile(folder / "link.xml", text);
        DeviceFootprintLink link;
        DeviceFootprintLink::CreateFromFile(folder / "link.xml", link);
        link.setLatestDeviceFootprintPath("/new");
        link.write();
    }
    EXPECT_EQ(CountOpenFiles(), before);
}
