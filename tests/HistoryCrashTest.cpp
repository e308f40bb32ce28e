#include "DeviceFootprintLink.h"
#include "EndAtSystemCall.h"
#include "HistoryStore.h"
#include "LinkFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <unistd.h>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

/// Paths with contents.
using FileSet = std::map<std::string, std::string>;

/// Whether a file holds a whole document with a right checksum.
bool IsWholeDocument(const std::string& path)
{
    try {
        CDeviceFootprint document;
        return document.Load(path) && !document.m_checksum.IsEmpty() && document.ValidateChecksum();
    } catch (const std::out_of_range&) {
        return false; // it breaks off at a line's end
    }
}

/// How often the end of the process left something half done.
struct TornFiles
{
    std::size_t kills = 0;
    std::size_t entries = 0;
    std::size_t copies = 0;
    std::size_t latest = 0;
    std::size_t links = 0;
};

/// Ends a process at every system call of a SaveAndWriteHistory and looks at what the next one makes of it.
class HistoryCrash : public HistoryStore
{
protected:
    /// The footprint is so large that no buffer takes it whole.
    HistoryCrash()
    {
        for (int i = 0; i < 1800; ++i) {
            CProperty& property = m_footprint.m_hardwareData.m_hardwareList.front().m_properties.CreateEntry();
            property.m_name = "property " + std::to_string(i);
            property.m_value = "a value of some length, to fill the line";
        }
    }

    /// The files of the test are restored to @p before, the process is ended at a stop, and @p check looks.
    template<class Check>
    void EndEverywhere(const FileSet& before, Check check)
    {
        const std::time_t now = m_now;
        for (std::size_t stop = 1;; ++stop) {
            SCOPED_TRACE("stop " + std::to_string(stop));
            Restore(before);
            m_clock.Set(m_now = now);
            const ChildEnd end = RunUntilSystemCall(stop, [this] {
                bool written = false;
                m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr);
            });
            ASSERT_NE(end, ChildEnd::Failed);
            const CDeviceFootprint former(m_footprint);
            check(end);
            m_footprint = former;
            if (HasFailure() || end == ChildEnd::Finished) {
                break;
            }
            ++m_torn.kills;
        }
        EXPECT_GT(m_torn.kills, 40U) << "stops of a whole save";
    }

    /// All files of the test as they stand.
    FileSet Files() const
    {
        FileSet files;
        for (const std::string& folder : {m_history, m_saves}) {
            for (const std::string& name : FolderEntries(folder)) {
                files[folder + "/" + name] = ReadFile(folder + "/" + name);
            }
        }
        if (FileExists(LinkFile())) {
            files[LinkFile()] = ReadFile(LinkFile());
        }
        return files;
    }

    void Restore(const FileSet& files) const
    {
        for (const auto& file : Files()) {
            unlink(file.first.c_str());
        }
        for (const auto& file : files) {
            WriteFile(file.first, file.second);
        }
    }

    /// No entry and no saved file of before is damaged; what .latest names, if anything, is whole.
    void ExpectNothingDamaged(const FileSet& before)
    {
        const std::string latest = m_history + "/.latest";
        for (const auto& file : before) {
            if (file.first != latest && file.first != LinkFile()) {
                EXPECT_EQ(ReadFile(file.first), file.second) << file.first;
            }
        }
        if (FileExists(latest)) {
            const std::string name = ReadFile(latest);
            m_torn.latest += name.empty() ? 1 : 0;
            EXPECT_TRUE(name.empty() || IsWholeDocument(m_history + "/" + name)) << name;
        }
        m_torn.entries += IsTorn(m_history) ? 1 : 0;
        m_torn.copies += IsTorn(m_saves) ? 1 : 0;
        m_torn.links += IsLinkTorn() ? 1 : 0;
    }

    bool IsTorn(const std::string& folder) const
    {
        const std::string path = folder + "/" + EntryName();
        return FileExists(path) && !IsWholeDocument(path);
    }

    bool IsLinkTorn() const
    {
        const std::string end = "</DeviceFootprintReference>\n";
        if (!FileExists(LinkFile())) {
            return false;
        }
        const std::string text = ReadFile(LinkFile());
        return text.size() < end.size() || text.compare(text.size() - end.size(), end.size(), end) != 0;
    }

    /// The next run succeeds and leaves a whole latest entry and a link file that names it. Half of the next runs come
    /// within the second of the one that was ended.
    void ExpectNextRunToMendTheHistory(const FileSet& before)
    {
        if (m_torn.kills / 2 % 2 == 0) {
            NextSecond();
        }
        bool written = false;
        ASSERT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr));
        const std::string name = ReadFile(m_history + "/.latest");
        ExpectLatestEntry(m_history, name);
        // Without a need the entry was whole, and with it the link, which is written before .latest.
        EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(m_history + "/" + name, written ? m_history + "/" : m_history));
        for (const auto& file : before) {
            if (file.first != m_history + "/.latest" && file.first != LinkFile()) {
                EXPECT_EQ(ReadFile(file.first), file.second) << file.first;
            }
        }
        written = true;
        EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr));
        EXPECT_FALSE(written);
    }

    /// Two entries and a saved file.
    FileSet MakeHistory()
    {
        WriteEntry();
        AddOperatingHour();
        WriteEntry();
        EXPECT_TRUE(m_footprint.Save(m_saves));
        NextSecond();
        const FileSet files = Files();
        EXPECT_EQ(files.size(), 5U);
        return files;
    }

    TornFiles m_torn;
};

} // namespace

TEST_F(HistoryCrash, FirstEntry)
{
    const FileSet nothing;
    EndEverywhere(nothing, [&](ChildEnd) {
        ExpectNothingDamaged(nothing);
        ExpectNextRunToMendTheHistory(nothing);
        std::filesystem::remove_all(LinkBase + "1000.0001.02_" + m_serialNumber);
    });
    EXPECT_GT(m_torn.entries, 0U);
    EXPECT_GT(m_torn.latest, 0U);
    EXPECT_GT(m_torn.links, 0U);
    EXPECT_GT(m_torn.copies, 0U);
}

TEST_F(HistoryCrash, AnotherEntry)
{
    const FileSet before = MakeHistory();
    AddOperatingHour();
    std::size_t tornCopiesThatStay = 0;
    EndEverywhere(before, [&](ChildEnd end) {
        ExpectNothingDamaged(before);
        const std::string copy = m_saves + "/" + EntryName();
        const bool copyIsTorn = IsTorn(m_saves);
        ExpectNextRunToMendTheHistory(before);
        if (copyIsTorn) {
            // The history has the entry, so nobody needs to copy it again.
            EXPECT_FALSE(IsWholeDocument(copy));
            ++tornCopiesThatStay;
        }
        if (end == ChildEnd::Finished) {
            EXPECT_EQ(FolderEntries(m_history).size(), 4U);
            EXPECT_EQ(FolderEntries(m_saves).size(), 2U);
        }
    });
    EXPECT_GT(m_torn.entries, 0U);
    EXPECT_GT(m_torn.latest, 0U);
    EXPECT_GT(m_torn.links, 0U);
    EXPECT_GT(tornCopiesThatStay, 0U);
}

TEST_F(HistoryCrash, UnchangedFootprint)
{
    const FileSet before = MakeHistory();
    const std::string latest = before.at(m_history + "/.latest");
    std::size_t lostFolders = 0;
    EndEverywhere(before, [&](ChildEnd) {
        ExpectNothingDamaged(before);
        EXPECT_EQ(ReadFile(m_history + "/.latest"), latest);
        const bool wasTorn = IsLinkTorn();
        NextSecond();
        bool written = true;
        EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr));
        EXPECT_FALSE(written);
        EXPECT_EQ(IsLinkTorn(), wasTorn) << "without a need for an entry the link stays as it is";

        // The next save makes the link whole, but what the torn one had lost is not known to it.
        EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr));
        EXPECT_FALSE(written);
        const std::string saved = m_saves + "/" + EntryName();
        const std::string whole = LinkFileText(saved, m_history + "/");
        if (wasTorn && ReadFile(LinkFile()) != whole) {
            EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(saved.c_str(), nullptr));
            ++lostFolders;
        } else {
            EXPECT_EQ(ReadFile(LinkFile()), whole);
        }

        // The next entry makes up for that.
        AddOperatingHour();
        NextSecond();
        EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr));
        EXPECT_TRUE(written);
        ExpectLatestEntry(m_history, EntryName());
        EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(m_history + "/" + EntryName(), m_history + "/"));
    });
    EXPECT_EQ(m_torn.entries, 0U);
    EXPECT_EQ(m_torn.latest, 0U);
    EXPECT_GT(m_torn.copies, 0U);
    EXPECT_GT(m_torn.links, 0U);
    EXPECT_GT(lostFolders, 0U);
}
