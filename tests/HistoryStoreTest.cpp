#include "HistoryStore.h"
#include "Comparators.h"
#include "LinkFile.h"
#include "StreamCapture.h"
#include "TempMount.h"
#include "WorkingFolder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

std::string RealPath(const std::string& path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
    EXPECT_NE(real, nullptr) << path;
    return real == nullptr ? std::string() : real.get();
}

} // namespace

using HistoryLinkFolder = HistoryStore;

TEST_F(HistoryLinkFolder, Name)
{
    struct Case
    {
        const char* type;
        const char* deviceId;
        const char* folder; ///< null if there is none
    };
    const std::vector<Case> cases = {
        {"A", "111-222-333", "A_111_222"},
        {"", "111-222-333", "111_222"},
        {"", "1-2-", "1_2"},
        {"", "1-2-3-4", "1_2"},
        {"", "--", "_"},
        {"A", "-2-", "A__2"},
        {"A", "111-222", nullptr},
        {"", "111-222", nullptr},
        {"A", "111", nullptr},
        {"A", "", nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.deviceId);
        CDeviceFootprint footprint;
        footprint.m_deviceData.m_type = c.type;
        footprint.m_deviceData.m_deviceId = c.deviceId;
        const bool found = c.folder != nullptr;
        const std::string folder = found ? LinkBase + c.folder : "as before";
        std::string path = "as before";
        EXPECT_EQ(footprint.GetDfpLinkFolder(path, false), found);
        EXPECT_EQ(path, folder);
        if (found) {
            EXPECT_FALSE(FileExists(folder)) << "nothing was to be made";
        }
        path = "as before";
        EXPECT_EQ(footprint.GetPathToDeviceFootprintLinkFile(path), found);
        EXPECT_EQ(path, found ? folder + "/deviceFootprintLink.xml" : folder);
        EXPECT_EQ(footprint.GetPathToDeviceFootprintLinkFile(path, false), found);
        EXPECT_EQ(FileExists(folder), false);
    }
    std::string base = "former";
    EXPECT_TRUE(m_footprint.GetDeviceFootprintLinkBasePath(base));
    EXPECT_EQ(base, LinkBase);
    EXPECT_EQ(m_error.Text(), ErrorWord::Untouched());
}

TEST_F(HistoryLinkFolder, IsMadeIfAsked)
{
    const std::string folder = LinkBase + "1000.0001.02_" + m_serialNumber;
    std::string path;
    EXPECT_TRUE(m_footprint.GetDfpLinkFolder(path, true));
    EXPECT_EQ(path, folder);
    EXPECT_TRUE(FileExists(folder));
    EXPECT_TRUE(m_footprint.GetDfpLinkFolder(path, true)) << "it may exist";
    EXPECT_EQ(rmdir(folder.c_str()), 0);
    EXPECT_TRUE(m_footprint.GetPathToDeviceFootprintLinkFile(path, true));
    EXPECT_EQ(path, folder + "/deviceFootprintLink.xml");
    EXPECT_TRUE(FileExists(folder));
    EXPECT_FALSE(FileExists(path));
}

namespace
{

/// The base folder's name while a test does what it likes there.
class BaseAside
{
public:
    BaseAside() { EXPECT_EQ(std::rename("/var/lib/devicefootprint", "/var/lib/devicefootprint.aside"), 0); }
    BaseAside(const BaseAside&) = delete;
    BaseAside& operator=(const BaseAside&) = delete;
    ~BaseAside()
    {
        EXPECT_EQ(std::system("rm -rf /var/lib/devicefootprint"), 0);
        EXPECT_EQ(std::rename("/var/lib/devicefootprint.aside", "/var/lib/devicefootprint"), 0);
    }
};

} // namespace

TEST_F(HistoryLinkFolder, MissingBaseFolderIsMade)
{
    const BaseAside aside;
    std::string path;
    EXPECT_TRUE(m_footprint.GetDfpLinkFolder(path, false));
    EXPECT_FALSE(FileExists(LinkBase));
    WriteEntry();
    EXPECT_TRUE(FileExists(LinkFile()));
}

TEST_F(HistoryLinkFolder, BaseFolderThatCanNotBeMade)
{
    using Guard = std::shared_ptr<void>;
    std::vector<std::function<Guard()>> situations = {[] {
        auto aside = std::make_shared<BaseAside>();
        WriteFile("/var/lib/devicefootprint", "a plain file");
        return Guard(aside);
    }};
    if (MountsAllowed()) {
        situations.emplace_back([] {
            const auto mount = std::make_shared<TempMount>("/var/lib", "size=16k");
            mount->MakeReadOnly();
            return Guard(mount);
        });
        situations.emplace_back([] { return Guard(std::make_shared<TempMount>("/var", "size=16k")); });
    }
    for (const auto& situation : situations) {
        const Guard guard = situation();
        std::string path = "as before";
        EXPECT_FALSE(m_footprint.GetDfpLinkFolder(path, true));
        EXPECT_EQ(path, "as before");
        EXPECT_FALSE(m_footprint.GetPathToDeviceFootprintLinkFile(path, true));
        EXPECT_TRUE(m_footprint.GetDfpLinkFolder(path, false)) << "without making it there is nothing to fail";

        bool written = true;
        m_error.Reset();
        EXPECT_FALSE(m_footprint.WriteHistory(m_history, written, nullptr));
        EXPECT_FALSE(written);
        EXPECT_EQ(m_error.Take(), LinkFileFailed);
        EXPECT_FALSE(m_footprint.Save(m_saves));
        EXPECT_EQ(m_error.Take(), SaveLinkFailed);
        AddOperatingHour();
        NextSecond();
    }
}

using HistoryLinks = HistoryStore;

TEST_F(HistoryLinks, NeedALastSave)
{
    EXPECT_FALSE(m_footprint.CreateLinkToLatestSavedDfpFile());
    EXPECT_FALSE(m_footprint.CreateLinkToHistoryFolder(m_history));
    EXPECT_FALSE(FileExists(LinkFile()));
    EXPECT_EQ(m_error.Text(), ErrorWord::Untouched());
}

TEST_F(HistoryLinks, LatestKeepsTheHistoryFolderOfTheFile)
{
    const std::string entry = WriteEntry();
    const std::string link = LinkFileText(m_history + "/" + entry, m_history + "/");
    EXPECT_EQ(ReadFile(LinkFile()), link);
    const std::string saved = EntryName();
    ASSERT_TRUE(m_footprint.Save(m_saves));
    EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(m_saves + "/" + saved, m_history + "/"));
    ASSERT_TRUE(m_footprint.SaveAs(m_saves + "/any.xml"));
    EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(m_saves + "/any.xml", m_history + "/"));
    EXPECT_TRUE(m_footprint.CreateLinkToHistoryFolder("/elsewhere"));
    EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(m_saves + "/any.xml", "/elsewhere"));
}

TEST_F(HistoryLinks, AbsolutePathsAreTakenAsTheyAre)
{
    const std::string odd = m_folder / "saves/../saves//";
    const std::string name = EntryName();
    ASSERT_TRUE(m_footprint.Save(odd));
    EXPECT_EQ(ReadFile(LinkFile()), LinkFileText((odd + name).c_str(), nullptr));
    EXPECT_EQ(unlink((m_saves + "/" + name).c_str()), 0);
    EXPECT_TRUE(m_footprint.CreateLinkToLatestSavedDfpFile()) << "nobody asks whether it exists";
    EXPECT_TRUE(m_footprint.CreateLinkToHistoryFolder("/nowhere/at all/"));
    EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(odd + name, "/nowhere/at all/"));
}

TEST_F(HistoryLinks, RelativePathsAreResolvedAndMustExist)
{
    const WorkingFolder inside(m_folder.Path());
    EXPECT_EQ(symlink("history", "link"), 0);
    const std::string root = RealPath(".");
    const std::string name = EntryName();
    ASSERT_TRUE(m_footprint.Save("saves"));
    EXPECT_EQ(ReadFile(LinkFile()), LinkFileText((root + "/saves/" + name).c_str(), nullptr));
    for (const char* folder : {"link", "./history", "history/", "saves/../link/."}) {
        EXPECT_TRUE(m_footprint.CreateLinkToHistoryFolder(folder));
        EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(root + "/saves/" + name, root + "/history")) << folder;
    }
    EXPECT_FALSE(m_footprint.CreateLinkToHistoryFolder("missing"));
    EXPECT_FALSE(m_footprint.CreateLinkToHistoryFolder(""));
    EXPECT_EQ(unlink(("saves/" + name).c_str()), 0);
    EXPECT_FALSE(m_footprint.CreateLinkToLatestSavedDfpFile());
    EXPECT_FALSE(m_footprint.CreateLinkToHistoryFolder(m_history));
    EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(root + "/saves/" + name, root + "/history"));
}

using HistoryWrite = HistoryStore;

TEST_F(HistoryWrite, FirstSaveWritesEntryLatestAndLink)
{
    bool written = false;
    const std::string name = EntryName();
    EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr));
    EXPECT_TRUE(written);
    EXPECT_EQ(FolderEntries(m_history), Names({".latest", name}));
    ExpectLatestEntry(m_history, name);
    EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(m_history + "/" + name, m_history + "/"));
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), m_history + "/" + name);
    EXPECT_EQ(m_footprint.GetPureFilenameOfLastSave(), name);
    EXPECT_EQ(m_footprint.m_creationDate.GetValue(), L"2015-03-01T08:05:59");
    EXPECT_EQ(m_error.Text(), "load file error, " + m_history + "/.latest") << "a success does not clear the text";
}

TEST_F(HistoryWrite, UnchangedFootprintWritesNothing)
{
    const std::string name = WriteEntry();
    const std::string entry = ReadFile(m_history + "/" + name);
    const std::string link = ReadFile(LinkFile());
    ExpectUnchanged();
    m_footprint.m_creationDate = "2001-01-01T00:00:00";
    m_footprint.m_generatedBy = "somebody";
    m_footprint.m_checksum.Set(std::string("0123"));
    ExpectUnchanged();
    EXPECT_EQ(m_footprint.m_creationDate.GetValue(), L"2001-01-01T00:00:00") << "no save, no new date";
    EXPECT_EQ(ReadFile(m_history + "/" + name), entry);
    EXPECT_EQ(ReadFile(LinkFile()), link);
    EXPECT_EQ(m_error.Text(), ErrorWord::Untouched());
}

TEST_F(HistoryWrite, ALoadedEntryIsUnchangedToo)
{
    const std::string name = WriteEntry();
    CDeviceFootprint loaded;
    ASSERT_TRUE(loaded.Load(m_history + "/" + name));
    bool written = true;
    EXPECT_TRUE(loaded.WriteHistory(m_history, written, nullptr));
    EXPECT_FALSE(written);
}

TEST_F(HistoryWrite, EachChangeAddsAnEntryAndLeavesTheOthers)
{
    Names names;
    std::vector<std::string> contents;
    for (int save = 0; save < 4; ++save) {
        names.push_back(WriteEntry());
        contents.push_back(ReadFile(m_history + "/" + names.back()));
        ExpectLatestEntry(m_history, names.back());
        ExpectUnchanged();
        AddOperatingHour();
        EXPECT_TRUE(NeedsEntry());
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(ReadFile(m_history + "/" + names[i]), contents[i]);
    }
    EXPECT_EQ(FolderEntries(m_history).size(), names.size() + 1);
}

TEST_F(HistoryWrite, ABoardWithoutAnIdMakesAnEntryEachTime)
{
    m_footprint.m_hardwareData.m_hardwareList.front().m_id = "";
    WriteEntry();
    WriteEntry();
    EXPECT_EQ(FolderEntries(m_history).size(), 3U);
}

TEST_F(HistoryWrite, TwoEntriesOfOneSecondAreOneFile)
{
    bool written = false;
    EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr));
    AddOperatingHour();
    EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr));
    EXPECT_TRUE(written);
    EXPECT_EQ(FolderEntries(m_history), Names({".latest", EntryName()}));
    ExpectLatestEntry(m_history, EntryName());
}

TEST_F(HistoryWrite, LatestNamesTheEntryEvenIfTheClockGoesOn)
{
    m_clock.AdvanceAtEachCall(1);
    bool written = false;
    EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr));
    EXPECT_EQ(FolderEntries(m_history), Names({".latest", EntryName()}));
    ExpectLatestEntry(m_history, EntryName());
}

TEST_F(HistoryWrite, FolderForms)
{
    EXPECT_EQ(symlink("history", (m_folder / "link").c_str()), 0);
    struct Case
    {
        std::string folder;
        std::string prefix;
    };
    const std::vector<Case> cases = {
        {m_history, m_history + "/"},
        {m_history + "/", m_history + "/"},
        {m_history + "//", m_history + "//"},
        {m_folder / "link", m_folder / "link/"},
        {m_folder / "saves/../history/.", m_folder / "saves/../history/./"},
        {m_folder / "other\\", m_folder / "other\\"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.folder);
        const std::string name = EntryName();
        bool written = false;
        EXPECT_TRUE(m_footprint.WriteHistory(c.folder, written, nullptr));
        EXPECT_TRUE(written);
        EXPECT_TRUE(FileExists(c.prefix + name));
        EXPECT_EQ(ReadFile(c.prefix + ".latest"), name);
        EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), c.prefix + name);
        EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(c.prefix + name, c.prefix));
        EXPECT_TRUE(m_footprint.WriteHistory(c.folder, written, nullptr));
        EXPECT_FALSE(written);

        // The other operation hands the folder on as it is.
        AddOperatingHour();
        NextSecond();
        EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_saves, c.folder, written, nullptr));
        EXPECT_TRUE(written);
        EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(c.prefix + EntryName(), c.folder));
        AddOperatingHour();
        NextSecond();
    }
}

TEST_F(HistoryWrite, RelativeFolder)
{
    const WorkingFolder inside(m_folder.Path());
    const std::string root = RealPath(".");
    for (const char* folder : {"history", "./history/"}) {
        const std::string name = EntryName();
        bool written = false;
        EXPECT_TRUE(m_footprint.WriteHistory(folder, written, nullptr));
        EXPECT_TRUE(written);
        ExpectLatestEntry("history", name);
        EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(root + "/history/" + name, root + "/history"));
        EXPECT_TRUE(m_footprint.WriteHistory(folder, written, nullptr));
        EXPECT_FALSE(written);
        AddOperatingHour();
        NextSecond();
    }
}

TEST_F(HistoryWrite, EmptyFolderIsTheWorkingFolderForReadingAndNoneForWriting)
{
    WriteEntry();
    const WorkingFolder inside(m_history);
    bool written = true;
    EXPECT_TRUE(m_footprint.WriteHistory("", written, nullptr));
    EXPECT_FALSE(written);
    EXPECT_EQ(m_error.Text(), ErrorWord::Untouched());

    AddOperatingHour();
    written = true;
    const Names before = FolderEntries(m_history);
    EXPECT_FALSE(m_footprint.WriteHistory("", written, nullptr));
    EXPECT_FALSE(written);
    EXPECT_FALSE(m_footprint.SaveHistoryInternal(""));
    EXPECT_EQ(FolderEntries(m_history), before);
    EXPECT_EQ(m_error.Text(), ErrorWord::Untouched());
}

using HistoryCheck = HistoryStore;

TEST_F(HistoryCheck, StatesOfTheLatestEntry)
{
    const std::string name = WriteEntry();
    const std::string entry = ReadFile(m_history + "/" + name);
    const auto with = [&](const std::string& from, const std::string& to) {
        std::string text = entry;
        const std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return text.replace(at, from.size(), to);
    };
    const std::string checksum = entry.substr(entry.find(" checksum=\""), 44);
    const std::string noText = ErrorWord::Untouched();
    struct Case
    {
        const char* what;
        std::string latest;
        std::string content;
        bool needed;
        std::string text;
    };
    const std::vector<Case> cases = {
        {"as written", name, entry, false, noText},
        {"a line end behind the name", name + "\n", entry, false, noText},
        {"more lines", name + "\nother.xml\n", entry, false, noText},
        {"a carriage return belongs to the name", name + "\r\n", entry, true,
         "load file error, " + m_history + "/" + name + "\r"},
        {"empty .latest", "", entry, true, "read file error, " + m_history + "/.latest"},
        {"an empty first line names the folder", "\n" + name, entry, true, "Error reading xml"},
        {"names a missing file", "missing.xml", entry, true, "load file error, " + m_history + "/missing.xml"},
        {"names a file elsewhere", "../history/" + name, entry, false, noText},
        {"empty entry", name, "", true, noText},
        {"no document", name, "text\n", true, noText},
        {"value changed by hand", name, with("operatingHours=\"100\"", "operatingHours=\"101\""), true, noText},
        {"value without effect changed by hand", name, with("formatVersion=\"02.06\"", "formatVersion=\"02.05\""), true,
         noText},
        {"checksum changed", name, with(checksum.substr(11, 2), checksum.substr(11, 2) == "00" ? "01" : "00"), true,
         noText},
        {"a checksum not given is no wrong one", name, with(checksum, ""), false, noText},
        {"order of attributes changed", name, with(checksum + ">", ">").insert(entry.find(" formatVersion"), checksum),
         false, noText},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        SetLatest(c.latest);
        WriteFile(m_history + "/" + name, c.content);
        m_error.Reset();
        EXPECT_EQ(NeedsEntry(), c.needed);
        EXPECT_EQ(m_error.Text(), c.text);

        bool written = !c.needed;
        const std::string next = EntryName();
        EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr));
        EXPECT_EQ(written, c.needed);
        EXPECT_EQ(ReadFile(m_history + "/" + name), c.content) << "the old entry stays";
        if (c.needed) {
            ExpectLatestEntry(m_history, next);
        }
        NextSecond();
    }
}

TEST_F(HistoryCheck, MissingLatest)
{
    const std::string name = WriteEntry();
    EXPECT_EQ(unlink((m_history + "/.latest").c_str()), 0);
    EXPECT_TRUE(NeedsEntry());
    EXPECT_EQ(m_error.Take(), "load file error, " + m_history + "/.latest");
    EXPECT_TRUE(m_footprint.CheckNeedNewHistoryEntry(m_folder / "missing", nullptr));
    EXPECT_EQ(m_error.Take(), "load file error, " + m_folder / "missing/.latest");
    const std::string next = WriteEntry();
    EXPECT_EQ(FolderEntries(m_history), Names({".latest", name, next}));
}

TEST_F(HistoryCheck, ALatestEntryThatBreaksOffForcesANewOne)
{
    const std::string name = WriteEntry();
    const std::string entry = ReadFile(m_history + "/" + name);
    const std::string tail = "</DeviceFootprint>\n";
    ASSERT_EQ(entry.substr(entry.size() - tail.size()), tail);
    int thrown = 0;
    const StreamCapture announcements(std::cout);
    for (std::size_t length = 0; length <= entry.size(); ++length) {
        WriteFile(m_history + "/" + name, entry.substr(0, length));
        // The last end tag counts without its ">" as well.
        const bool complete = length >= entry.size() - 2;
        try {
            EXPECT_EQ(NeedsEntry(), !complete) << length;
        } catch (const std::out_of_range&) {
            ++thrown;
            const std::string lastLine = entry.substr(0, length).substr(entry.rfind('\n', length - 1) + 1);
            const std::size_t begin = lastLine.find_first_not_of(' ');
            EXPECT_TRUE(begin == std::string::npos || lastLine.compare(begin, 2, "</") == 0)
                << "only in a blank line or behind an end tag: " << lastLine;
            EXPECT_FALSE(complete) << length;
        }
    }
    EXPECT_GT(thrown, 0);
}

TEST_F(HistoryCheck, ABlankLineInTheLatestEntryThrowsUntilLatestIsGone)
{
    const std::string name = WriteEntry();
    const std::string entry = ReadFile(m_history + "/" + name);
    WriteFile(m_history + "/" + name, entry.substr(0, entry.find("<Hardware ")));
    bool written = false;
    EXPECT_THROW(m_footprint.WriteHistory(m_history, written, nullptr), std::out_of_range);
    EXPECT_THROW(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr), std::out_of_range);
    EXPECT_EQ(FolderEntries(m_history), Names({".latest", name}));
    EXPECT_EQ(FolderEntries(m_saves), Names());
    EXPECT_EQ(unlink((m_history + "/.latest").c_str()), 0);
    ExpectLatestEntry(m_history, WriteEntry());
}

TEST_F(HistoryCheck, ComparesThisDocumentWithTheEntryByItsVirtualOperation)
{
    class Recording : public CDeviceFootprint
    {
    public:
        explicit Recording(const CDeviceFootprint& other) : CDeviceFootprint(other) {}
        bool Compare(const CElementNode& other, const CComparatorRules& rules) const override
        {
            m_otherDate = static_cast<const CDeviceFootprint&>(other).m_creationDate.GetValue();
            m_hasDefaultRules = rules.Find("HardwareList") != nullptr;
            return m_answer;
        }
        bool m_answer = true;
        mutable std::wstring m_otherDate;
        mutable bool m_hasDefaultRules = false;
    };
    WriteEntry();
    AddOperatingHour();
    Recording recording(m_footprint);
    recording.m_creationDate = "2001-01-01T00:00:00";
    EXPECT_FALSE(recording.CheckNeedNewHistoryEntry(m_history, nullptr));
    EXPECT_EQ(recording.m_otherDate, L"2015-03-01T08:05:59");
    EXPECT_TRUE(recording.m_hasDefaultRules);
    recording.m_answer = false;
    EXPECT_TRUE(recording.CheckNeedNewHistoryEntry(m_history, nullptr));
}

namespace
{

/// Decides by the attribute `generatedBy` of the document alone.
class GeneratedByRule : public CComparatorTyped<CDeviceFootprint>
{
public:
    explicit GeneratedByRule(int& living) : m_living(living) { ++m_living; }
    ~GeneratedByRule() override { --m_living; }
    bool CompareInternal(const CDeviceFootprint& lhs, const CDeviceFootprint& rhs) const override
    {
        return lhs.m_generatedBy.IsEqual(rhs.m_generatedBy, true);
    }

private:
    int& m_living;
};

class GeneratedByFactory : public CComparatorRulesFactory
{
public:
    void CreateRules(CComparatorRules& rules) const override
    {
        ++m_calls;
        for (const char* name : {"DeviceFootprint", "DeviceData", "HardwareList", "Software"}) {
            EXPECT_EQ(rules.Find(name), nullptr) << "the set is empty at first";
        }
        rules.Add(new GeneratedByRule(m_living));
    }
    mutable int m_calls = 0;
    mutable int m_living = 0;
};

} // namespace

TEST_F(HistoryCheck, RulesOfTheCallersFactory)
{
    const GeneratedByFactory factory;
    EXPECT_TRUE(m_footprint.CheckNeedNewHistoryEntry(m_history, &factory));
    EXPECT_EQ(factory.m_calls, 0) << "without a latest entry there is nothing to compare";
    WriteEntry();
    AddOperatingHour();
    bool written = true;
    EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, &factory));
    EXPECT_FALSE(written);
    EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, &factory));
    EXPECT_FALSE(written);
    m_footprint.m_generatedBy = "somebody";
    EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, &factory));
    EXPECT_TRUE(written);
    EXPECT_EQ(factory.m_calls, 3);
    EXPECT_EQ(factory.m_living, 0) << "the rules are freed";
}

using HistorySaveAndWrite = HistoryStore;

TEST_F(HistorySaveAndWrite, NewEntryIsCopiedIntoTheSaveFolder)
{
    for (const std::string& folder : {m_saves, m_saves + "/"}) {
        const std::string name = EntryName();
        bool written = false;
        EXPECT_TRUE(m_footprint.SaveAndWriteHistory(folder, m_history, written, nullptr));
        EXPECT_TRUE(written);
        ExpectLatestEntry(m_history, name);
        EXPECT_EQ(ReadFile(m_saves + "/" + name), ReadFile(m_history + "/" + name));
        EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), m_history + "/" + name) << "not the copy";
        EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(m_history + "/" + name, m_history));
        AddOperatingHour();
        NextSecond();
    }
    EXPECT_EQ(FolderEntries(m_saves).size(), 2U);
}

TEST_F(HistorySaveAndWrite, UnchangedFootprintIsSavedUnderANewName)
{
    const std::string entry = WriteEntry();
    const std::string saved = EntryName();
    bool written = true;
    EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr));
    EXPECT_FALSE(written);
    EXPECT_EQ(FolderEntries(m_history), Names({".latest", entry}));
    EXPECT_EQ(FolderEntries(m_saves), Names({saved}));
    EXPECT_EQ(ReadFile(m_history + "/.latest"), entry);
    EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(m_saves + "/" + saved, m_history + "/"));
    EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), m_saves + "/" + saved);
    EXPECT_EQ(m_error.Text(), ErrorWord::Untouched());
}

TEST_F(HistorySaveAndWrite, EmptySaveFolderIsTheWorkingFolderForTheCopyAndNoneForASave)
{
    const WorkingFolder inside(m_saves);
    const std::string name = EntryName();
    bool written = false;
    EXPECT_TRUE(m_footprint.SaveAndWriteHistory("", m_history, written, nullptr));
    EXPECT_TRUE(written);
    EXPECT_EQ(ReadFile(m_saves + "/" + name), ReadFile(m_history + "/" + name));

    NextSecond();
    m_error.Reset();
    written = true;
    EXPECT_FALSE(m_footprint.SaveAndWriteHistory("", m_history, written, nullptr));
    EXPECT_FALSE(written);
    EXPECT_EQ(m_error.Text(), ErrorWord::Untouched());
    EXPECT_EQ(FolderEntries(m_saves), Names({name}));
}

TEST_F(HistorySaveAndWrite, BackslashIsASeparator)
{
    const std::string name = EntryName();
    bool written = false;
    EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_folder / "copy\\", m_history, written, nullptr));
    EXPECT_EQ(ReadFile(m_folder / "copy\\" + name), ReadFile(m_history + "/" + name));
}

TEST_F(HistorySaveAndWrite, CopyThatCanNotBeMadeFailsButTheEntryStands)
{
    const std::string name = EntryName();
    bool written = false;
    EXPECT_FALSE(m_footprint.SaveAndWriteHistory(m_folder / "missing", m_history, written, nullptr));
    EXPECT_TRUE(written);
    EXPECT_EQ(m_error.Text(), "load file error, " + m_history + "/.latest") << "a failed copy has no words";
    ExpectLatestEntry(m_history, name);
    EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(m_history + "/" + name, m_history));
}

TEST_F(HistorySaveAndWrite, CopyReplacesALongerFile)
{
    WriteFile(m_saves + "/" + EntryName(), std::string(100000, 'x'));
    bool written = false;
    EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr));
    EXPECT_EQ(ReadFile(m_saves + "/" + EntryName()), ReadFile(m_history + "/" + EntryName()));
}

TEST_F(HistorySaveAndWrite, SameFolderForBothKeepsTheEntryWhole)
{
    const std::string name = EntryName();
    bool written = false;
    EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_history, m_history, written, nullptr));
    EXPECT_TRUE(written);
    ExpectLatestEntry(m_history, name);
    EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_history, m_history, written, nullptr));
    EXPECT_FALSE(written) << "the entry can be read";
}
