#include "ExceptionsOn.h"
#include "HistoryStore.h"
#include "LinkFile.h"
#include "TempMount.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <typeinfo>
#include <unistd.h>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

/// While it lives, no file can be made longer than this.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &m_former), 0);
        const rlimit limit{bytes, m_former.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit()
    {
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &m_former), 0);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_former{};
    void (*m_handler)(int);
};

/// Runs an operation that must throw a plain std::exception.
void ExpectThrow(const std::function<void()>& operation)
{
    try {
        operation();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::exception& exception) {
        EXPECT_EQ(typeid(exception), typeid(std::exception)) << exception.what();
    }
}

} // namespace

using HistoryFailures = HistoryStore;

TEST_F(HistoryFailures, DeviceIdWithTooFewFields)
{
    for (const char* deviceId : {"1000.0001.02-1", "1000.0001.02", "x-"}) {
        SCOPED_TRACE(deviceId);
        m_footprint.m_deviceData.m_deviceId = deviceId;
        AddOperatingHour();
        const std::string name = EntryName();
        bool written = true;
        EXPECT_FALSE(m_footprint.WriteHistory(m_history, written, nullptr));
        EXPECT_FALSE(written);
        EXPECT_EQ(m_error.Take(), LinkFileFailed);
        ExpectLatestEntry(m_history, name);

        m_error.Reset();
        NextSecond();
        EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr)) << "the entry counts";
        EXPECT_FALSE(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr));
        EXPECT_EQ(m_error.Take(), SaveLinkFailed);
        EXPECT_TRUE(FileExists(m_saves + "/" + EntryName()));
        NextSecond();
    }
}

TEST_F(HistoryFailures, EmptyDeviceId)
{
    m_footprint.m_deviceData.m_deviceId = "";
    bool written = true;
    EXPECT_FALSE(m_footprint.WriteHistory(m_history, written, nullptr));
    EXPECT_FALSE(written);
    EXPECT_EQ(m_error.Text(), LinkFileFailed);
    ExpectLatestEntry(m_history, "DeviceFootprint__2015-03-01T08-05-59.xml");
}

TEST_F(HistoryFailures, LinkFileThatCanNotBeWritten)
{
    MakeLinkFail();
    const std::string name = EntryName();
    bool written = true;
    EXPECT_FALSE(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr));
    EXPECT_FALSE(written);
    EXPECT_EQ(m_error.Text(), LinkFileFailed);
    ExpectLatestEntry(m_history, name);
    EXPECT_EQ(FolderEntries(m_saves), Names()) << "no copy";
}

TEST_F(HistoryFailures, LatestThatCanNotBeWritten)
{
    EXPECT_EQ(mkdir((m_history + "/.latest").c_str(), 0700), 0);
    const std::string name = EntryName();
    bool written = true;
    EXPECT_FALSE(m_footprint.WriteHistory(m_history, written, nullptr));
    EXPECT_FALSE(written);
    EXPECT_EQ(m_error.Take(), LatestFailed);
    EXPECT_TRUE(FileExists(m_history + "/" + name));
    EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(m_history + "/" + name, m_history + "/"));

    MakeLinkFail();
    EXPECT_FALSE(m_footprint.SaveHistoryInternal(m_history));
    EXPECT_EQ(m_error.Take(), LatestFailed) << "of both failures, the second is seen";
}

TEST_F(HistoryFailures, FoldersThatCanNotBeWrittenTo)
{
    WriteFile(m_folder / "plain", "");
    Names folders = {m_folder / "plain", m_folder / "plain/below", m_folder / "missing"};
    std::unique_ptr<TempMount> mount;
    if (MountsAllowed()) {
        EXPECT_EQ(mkdir((m_folder / "readonly").c_str(), 0700), 0);
        mount = std::make_unique<TempMount>(m_folder / "readonly", "size=64k");
        mount->MakeReadOnly();
        folders.push_back(m_folder / "readonly");
    }
    for (const std::string& folder : folders) {
        SCOPED_TRACE(folder);
        const std::string full = folder + "/" + EntryName();
        bool written = true;
        EXPECT_FALSE(m_footprint.WriteHistory(folder, written, nullptr));
        EXPECT_FALSE(written);
        EXPECT_EQ(m_error.Take(), "save file error, " + full);
        EXPECT_EQ(m_footprint.GetFullFilenameOfLastSave(), full);
        written = true;
        EXPECT_FALSE(m_footprint.SaveAndWriteHistory(m_saves, folder, written, nullptr));
        EXPECT_FALSE(written);
        EXPECT_EQ(m_error.Take(), "save file error, " + full);
        EXPECT_EQ(FolderEntries(m_saves), Names());
        EXPECT_FALSE(FileExists(LinkFile()));
    }
    WriteEntry();
    const std::string link = ReadFile(LinkFile());
    for (const std::string& folder : folders) {
        bool written = true;
        EXPECT_FALSE(m_footprint.SaveAndWriteHistory(folder, m_history, written, nullptr));
        EXPECT_FALSE(written);
        EXPECT_EQ(m_error.Take(), "save file error, " + folder + "/" + EntryName());
        EXPECT_EQ(ReadFile(LinkFile()), link);
    }
}

TEST_F(HistoryFailures, ReadOnlyHistoryCanStillBeCompared)
{
    if (!MountsAllowed()) {
        // Without a read-only folder, the nearest thing: files that nobody wants to write.
        WriteEntry();
        ExpectUnchanged();
        return;
    }
    TempMount mount(m_history, "size=64k");
    WriteEntry();
    mount.MakeReadOnly();
    ExpectUnchanged();
    bool written = true;
    EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr));
    EXPECT_FALSE(written);
    EXPECT_TRUE(FileExists(m_saves + "/" + EntryName()));
}

TEST_F(HistoryFailures, FileSizeLimitIsNotNoticedAndTheNextRunMendsIt)
{
    const std::string first = WriteEntry();
    const std::string firstContent = ReadFile(m_history + "/" + first);
    const std::size_t insideATag = firstContent.find("<Hardware ") + 4;
    for (const rlim_t limit : {rlim_t{0}, rlim_t{100}, static_cast<rlim_t>(insideATag)}) {
        SCOPED_TRACE(limit);
        AddOperatingHour();
        const std::string torn = EntryName();
        bool written = false;
        {
            const FileSizeLimit limited(limit);
            EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr));
        }
        EXPECT_TRUE(written);
        EXPECT_EQ(m_error.Text(), ErrorWord::Untouched());
        EXPECT_LE(ReadFile(m_history + "/" + torn).size(), limit);
        EXPECT_EQ(ReadFile(m_saves + "/" + torn), ReadFile(m_history + "/" + torn));
        EXPECT_EQ(ReadFile(m_history + "/.latest"), limit == 0 ? "" : torn);
        EXPECT_TRUE(NeedsEntry());
        NextSecond();
        const std::string mended = WriteEntry();
        ExpectLatestEntry(m_history, mended);
        EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(m_history + "/" + mended, m_history + "/"));
        EXPECT_EQ(ReadFile(m_history + "/" + first), firstContent);
    }
}

TEST_F(HistoryFailures, FullDiskIsNotNoticedAndTheNextRunMendsIt)
{
    std::unique_ptr<TempMount> mount;
    rlim_t limit = RLIM_INFINITY;
    if (MountsAllowed()) {
        mount = std::make_unique<TempMount>(m_history, "size=32k");
    } else {
        limit = 0; // the nearest thing
    }
    const std::string first = WriteEntry();
    const std::string firstContent = ReadFile(m_history + "/" + first);
    AddOperatingHour();
    const std::string torn = EntryName();
    bool written = false;
    if (mount != nullptr) {
        // Takes what room there is; that the last bytes do not fit any more is the purpose.
        std::FILE* ballast = std::fopen((m_history + "/ballast").c_str(), "wb");
        ASSERT_NE(ballast, nullptr);
        const std::string block(65536, 'x');
        EXPECT_LT(std::fwrite(block.data(), 1, block.size(), ballast), block.size());
        std::fclose(ballast);
    }
    {
        const FileSizeLimit limited(limit);
        EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr));
    }
    EXPECT_TRUE(written);
    EXPECT_EQ(m_error.Text(), ErrorWord::Untouched());
    EXPECT_EQ(ReadFile(m_history + "/" + torn), "");
    EXPECT_EQ(ReadFile(m_saves + "/" + torn), "");
    // The room of its former content is free for the new one.
    EXPECT_EQ(ReadFile(m_history + "/.latest"), mount != nullptr ? torn : "");
    EXPECT_EQ(ReadFile(m_history + "/" + first), firstContent);

    unlink((m_history + "/ballast").c_str());
    NextSecond();
    ExpectLatestEntry(m_history, WriteEntry());
    EXPECT_EQ(ReadFile(m_history + "/" + first), firstContent);
}

class HistoryExceptions : public HistoryStore
{
protected:
    /// The operation throws, with this text in the error word, and leaves no file open.
    void ExpectThrowWith(const std::string& text, const std::function<void()>& operation)
    {
        const std::size_t openFiles = CountOpenFiles();
        m_error.Reset();
        {
            const ExceptionsOn exceptions;
            ExpectThrow(operation);
        }
        EXPECT_EQ(m_error.Text(), text);
        EXPECT_EQ(CountOpenFiles(), openFiles);
    }
    std::function<void()> Writing()
    {
        return [this] { m_footprint.WriteHistory(m_history, m_written, nullptr); };
    }
    std::function<void()> SavingAndWriting()
    {
        return [this] { m_footprint.SaveAndWriteHistory(m_saves, m_history, m_written, nullptr); };
    }

    bool m_written = false;
};

TEST_F(HistoryExceptions, MissingLatestThrowsOutOfTheCheckAndNothingIsWritten)
{
    const std::string text = "load file error, " + m_history + "/.latest";
    ExpectThrowWith(text, [this] { m_footprint.CheckNeedNewHistoryEntry(m_history, nullptr); });
    ExpectThrowWith(text, Writing());
    ExpectThrowWith(text, SavingAndWriting());
    EXPECT_EQ(FolderEntries(m_history), Names());
    EXPECT_EQ(FolderEntries(m_saves), Names());
}

TEST_F(HistoryExceptions, SuccessThrowsNothing)
{
    WriteEntry();
    const ExceptionsOn exceptions;
    ExpectUnchanged();
    AddOperatingHour();
    bool written = false;
    EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr));
    EXPECT_TRUE(written);
    EXPECT_TRUE(m_footprint.SaveAndWriteHistory(m_saves, m_history, written, nullptr));
    EXPECT_FALSE(written);
    EXPECT_EQ(m_error.Text(), ErrorWord::Untouched());
}

TEST_F(HistoryExceptions, EmptyLatestAndMissingEntry)
{
    SetLatest("");
    ExpectThrowWith("read file error, " + m_history + "/.latest", Writing());
    SetLatest("missing.xml");
    ExpectThrowWith("load file error, " + m_history + "/missing.xml", Writing());
}

TEST_F(HistoryExceptions, EntryThatCanNotBeWritten)
{
    WriteEntry();
    AddOperatingHour();
    EXPECT_EQ(mkdir((m_history + "/" + EntryName()).c_str(), 0700), 0);
    ExpectThrowWith("save file error, " + m_history + "/" + EntryName(), Writing());
}

TEST_F(HistoryExceptions, LinkFailureThrowsWhenBothFilesWereTried)
{
    WriteEntry();
    MakeLinkFail();
    AddOperatingHour();
    const std::string name = EntryName();
    ExpectThrowWith(LinkFileFailed, Writing());
    ExpectLatestEntry(m_history, name);

    NextSecond();
    ExpectThrowWith(SaveLinkFailed, SavingAndWriting());
    EXPECT_TRUE(FileExists(m_saves + "/" + EntryName())) << "the file stays";
}

TEST_F(HistoryExceptions, LatestFailureThrowsWithTheWordsOfTheFile)
{
    // The writing of the small file throws before the history can put its own words.
    EXPECT_EQ(mkdir((m_history + "/.latest").c_str(), 0700), 0);
    const std::string text = "save file error, " + m_history + "/.latest";
    const auto saving = [this] { m_footprint.SaveHistoryInternal(m_history); };
    ExpectThrowWith(text, saving);
    EXPECT_EQ(ReadFile(LinkFile()), LinkFileText(m_history + "/" + EntryName(), m_history));
    MakeLinkFail();
    ExpectThrowWith(text, saving);
}
