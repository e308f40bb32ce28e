#include "DeviceFootprint.h"
#include "Files.h"
#include "GoldenData.h"
#include "RunProgram.h"
#include "TempFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

using namespace NyxTest;
using namespace KvDeviceFootprint;
using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{

const std::string golden = FOOTPRINT_TEST_DATA "/history/folder";

/// What the tool must print; made by `footprint history`, read by a person.
std::string Expected(const std::string& name)
{
    return ReadFile(FOOTPRINT_TEST_DATA "/history/" + name);
}

/// A history folder made by hand, as the clock decides about what the library writes.
class ToolHistoryTest : public testing::Test
{
protected:
    ToolHistoryTest() { m_document.m_deviceData.m_deviceId = "1111.2222.33-100001-x"; }

    /// Adds the document as it is; returns the entry's name.
    std::string Add(const std::string& date)
    {
        m_document.m_creationDate = date;
        std::string text;
        EXPECT_TRUE(m_document.GetDeviceFootprintString(false, text));
        std::string name = Name(date);
        WriteFile(m_folder / name, text);
        WriteFile(m_folder / ".latest", name);
        return name;
    }

    static std::string Name(std::string date)
    {
        std::replace(date.begin(), date.end(), ':', '-');
        return "DeviceFootprint_1111.2222.33-100001-x_" + date + ".xml";
    }

    CRun Run(const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> words = {"history", m_folder.Path()};
        words.insert(words.end(), options.begin(), options.end());
        return RunTool(words);
    }

    json Data() const { return json::parse(Run({"--json"}).data); }

    CDeviceFootprint m_document;
    TempFolder m_folder;
};

} // namespace

TEST_F(ToolHistoryTest, Text)
{
    const CRun run = RunTool({"history", golden});
    EXPECT_EQ(run.status, 1) << "two entries are damaged";
    EXPECT_EQ(run.data, Expected("text.txt"));
    EXPECT_THAT(run.messages, IsEmpty());
}

TEST_F(ToolHistoryTest, Json)
{
    const CRun run = RunTool({"history", "--json", golden});
    EXPECT_EQ(run.status, 1);
    json data = json::parse(run.data);
    EXPECT_EQ(data["folder"], golden);
    data.erase("folder");
    EXPECT_TRUE(SameJson(json::parse(Expected("data.json")), data));
}

TEST_F(ToolHistoryTest, RedactedHidesTheSameEverywhere)
{
    for (const char* form : {"--redact", "--json"}) {
        const CRun run = RunTool({"history", form, "--redact", golden});
        EXPECT_EQ(run.status, 1);
        for (const char* secret : {"100123", "Schmidt", "330021", "200456"}) {
            EXPECT_THAT(run.data, Not(HasSubstr(secret))) << form;
        }
        EXPECT_THAT(run.data, HasSubstr("DeviceFootprint_device-1_2020-09-14T14-20-05.xml"));
    }
}

TEST_F(ToolHistoryTest, StepByStep)
{
    // Written in another order than that of the dates.
    m_document.m_deviceData.m_maintenanceData.m_operatingHours = 3L;
    Add("2020-01-03T00:00:00");
    m_document.m_deviceData.m_maintenanceData.m_operatingHours = 1L;
    Add("2020-01-01T00:00:00");
    m_document.m_deviceData.m_partName = "Other";
    Add("2020-01-02T00:00:00");
    WriteFile(m_folder / ".latest", Name("2020-01-03T00:00:00"));
    WriteFile(m_folder / "notes.txt", "no entry");
    EXPECT_EQ(Run().status, 0);
    EXPECT_THAT(Run().data, EndsWith("3 entries, none damaged\n"));
    const json data = Data();
    ASSERT_EQ(data["entries"].size(), 3U);
    for (std::size_t index = 0; index < 3; ++index) {
        const json& entry = data["entries"][index];
        const std::string date = "2020-01-0" + std::to_string(index + 1) + "T00-00-00";
        EXPECT_EQ(entry["date"], date);
        EXPECT_EQ(entry["state"], "intact");
        EXPECT_EQ(entry["isLatest"], index == 2);
    }
    EXPECT_EQ(data["entries"][0]["comparedWith"], nullptr);
    EXPECT_EQ(data["entries"][1]["comparedWith"], Name("2020-01-01T00:00:00"));
    EXPECT_EQ(data["entries"][1]["verdict"], "same");
    EXPECT_EQ(data["entries"][1]["differences"], 3) << "part name, date, checksum";
    EXPECT_THAT(data["entries"][1]["deciding"], IsEmpty());
    EXPECT_EQ(data["entries"][2]["verdict"], "differs");
    ASSERT_EQ(data["entries"][2]["deciding"].size(), 1U);
    EXPECT_EQ(data["entries"][2]["deciding"][0]["attribute"], "operatingHours");
    EXPECT_EQ(data["entries"][2]["deciding"][0]["rule"]["element"], "MaintenanceData");
}

TEST_F(ToolHistoryTest, DatesInNamesThatWereGivenByHand)
{
    Add("2020-01-03T00:00:00");
    Add("2020-01-01T00:00:00");
    const std::string text = ReadFile(m_folder / Name("2020-01-01T00:00:00"));
    WriteFile(m_folder / "DeviceFootprint_x_2020-01-02.xml", text);
    WriteFile(m_folder / "DeviceFootprint_before_all.xml", text);
    const json data = Data();
    ASSERT_EQ(data["entries"].size(), 4U);
    EXPECT_EQ(data["entries"][0]["date"], nullptr);
    EXPECT_EQ(data["entries"][1]["date"], "2020-01-01T00-00-00");
    EXPECT_EQ(data["entries"][2]["date"], "2020-01-02");
    EXPECT_EQ(data["entries"][3]["date"], "2020-01-03T00-00-00");
}

TEST_F(ToolHistoryTest, WhatTheLibraryWrites)
{
    std::filesystem::create_directory(m_folder / "history");
    bool isWritten = false;
    ASSERT_TRUE(m_document.SaveAndWriteHistory(m_folder.Path(), m_folder / "history", isWritten, nullptr));
    ASSERT_TRUE(isWritten);
    const CRun run = RunTool({"history", m_folder / "history"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.data, m_document.GetPureFilenameOfLastSave() + "  intact  (latest)\n  the first entry\n"
                                                                 "1 entry, none damaged\n");
}

TEST_F(ToolHistoryTest, TheLatestOneIsNotThere)
{
    Add("2020-01-01T00:00:00");
    WriteFile(m_folder / ".latest", "DeviceFootprint_gone\x1b[2J.xml");
    const CRun run = Run();
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.data, EndsWith("; .latest names a file that is not there: DeviceFootprint_gone\\x1b[2J.xml\n"));
    EXPECT_EQ(Data()["latestIsThere"], false);
    std::filesystem::remove(m_folder / ".latest");
    EXPECT_EQ(Run().status, 1);
    EXPECT_THAT(Run().data, EndsWith("; no file .latest names the latest one\n"));
    EXPECT_EQ(Data()["latest"], nullptr);
    WriteFile(m_folder / ".latest", "");
    EXPECT_EQ(Run().status, 1);
}

TEST_F(ToolHistoryTest, DamagedEntries)
{
    const std::string first = Add("2020-01-01T00:00:00");
    Add("2020-01-02T00:00:00");
    const std::string third = Add("2020-01-03T00:00:00");
    WriteFile(m_folder / Name("2020-01-02T00:00:00"), "");
    std::string text = ReadFile(m_folder / third);
    text.replace(text.find("100001"), 6, "100002");
    WriteFile(m_folder / third, text);
    EXPECT_EQ(Run().status, 1);
    const json entries = Data()["entries"];
    EXPECT_EQ(entries[1]["state"], "unreadable");
    EXPECT_EQ(entries[1]["error"], "is empty");
    EXPECT_EQ(entries[2]["state"], "wrongChecksum");
    EXPECT_EQ(entries[2]["comparedWith"], first);
    EXPECT_EQ(entries[2]["entryBeforeIsDamaged"], true);
    EXPECT_THAT(Run().data, HasSubstr("3 entries, 2 damaged"));
    EXPECT_THAT(Run().data, HasSubstr("  unreadable: is empty\n"));
}

TEST_F(ToolHistoryTest, WhatIsNoHistory)
{
    const TempFolder empty;
    WriteFile(m_folder / "file.xml", "");
    for (const std::string& bad : {m_folder / "missing", m_folder / "file.xml", empty.Path()}) {
        const CRun run = RunTool({"history", bad});
        EXPECT_EQ(run.status, 2) << bad;
        EXPECT_THAT(run.data, IsEmpty());
        EXPECT_THAT(run.messages, StartsWith("footprint: " + bad + ": "));
    }
}

TEST_F(ToolHistoryTest, HostileTextComesOutHarmless)
{
    Add("2020-01-01T00:00:00");
    m_document.m_deviceData.m_productDate = L"\x1b[2J\a\x202e\x9b";
    Add("2020-01-02T00:00:00");
    WriteFile(m_folder / "DeviceFootprint_\x1b[2J_2020-01-03T00-00-00.xml", "<\x1b[2J>");
    for (const char* form : {"--redact", "--json"}) {
        const CRun run = Run({form});
        EXPECT_EQ(run.status, 1);
        for (const std::string& text : {run.data, run.messages}) {
            EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char character) {
                return character == '\n' || static_cast<unsigned char>(character) >= 0x20;
            }));
            EXPECT_THAT(text, Not(HasSubstr("\xe2\x80\xae")));
            EXPECT_THAT(text, Not(HasSubstr("\xc2\x9b")));
        }
    }
}
