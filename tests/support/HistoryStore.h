#ifndef NYXCONFIG_HISTORYSTORE_H
#define NYXCONFIG_HISTORYSTORE_H

#include "DeviceFootprint.h"
#include "ErrorWord.h"
#include "FakeClock.h"
#include "Files.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace NyxTest
{

using Names = std::vector<std::string>;

/// The folder of all link folders.
inline const std::string LinkBase = "/var/lib/devicefootprint/";
inline const std::string LinkFileFailed = "Failed to write device footprint link file.";
inline const std::string LatestFailed = "Failed to write .latest file for device footprint history.";
inline const std::string SaveLinkFailed = "Failed to save device footprint link file.";

/// A footprint with a history folder and a save folder of its own, at a standing clock.
class HistoryStore : public testing::Test
{
protected:
    HistoryStore()
    {
        mkdir(LinkBase.c_str(), 0700);
        EXPECT_EQ(mkdir(m_history.c_str(), 0700), 0);
        EXPECT_EQ(mkdir(m_saves.c_str(), 0700), 0);
        // A link folder of its own for each test.
        static int serialNumber = 1000;
        m_serialNumber = std::to_string(++serialNumber);
        m_footprint.m_deviceData.m_deviceId = "1000.0001.02-" + m_serialNumber + "-xx";
        m_footprint.m_deviceData.m_maintenanceData.m_operatingHours = 100L;
        for (long id = 1; id <= 2; ++id) {
            KvDeviceFootprint::CHardware& board = m_footprint.m_hardwareData.m_hardwareList.CreateEntry();
            board.m_id = id;
            board.m_sn = id;
            board.m_programmableParts.CreateEntry().m_name = "boot";
        }
    }

    std::string LinkFile() const { return LinkBase + "1000.0001.02_" + m_serialNumber + "/deviceFootprintLink.xml"; }
    /// The name that a save of this moment gives.
    std::string EntryName() const
    {
        char date[32] = "";
        std::strftime(date, sizeof(date), "%Y-%m-%dT%H-%M-%S", std::gmtime(&m_now));
        std::string id;
        if (!m_footprint.m_deviceData.m_deviceId.IsEmpty()) {
            m_footprint.m_deviceData.m_deviceId.Get(id);
        }
        return "DeviceFootprint_" + id + "_" + date + ".xml";
    }
    void NextSecond() { m_clock.Set(++m_now); }
    void AddOperatingHour()
    {
        long hours = 0;
        KvDeviceFootprint::CAttribute& attribute = m_footprint.m_deviceData.m_maintenanceData.m_operatingHours;
        attribute.GetInteger(hours);
        attribute = hours + 1;
    }
    /// An entry in the history, by the usual way; the next save is a second later.
    std::string WriteEntry()
    {
        bool written = false;
        const std::string name = EntryName();
        EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr));
        EXPECT_TRUE(written);
        NextSecond();
        m_error.Reset();
        return name;
    }
    void SetLatest(const std::string& text) const { WriteFile(m_history + "/.latest", text); }
    /// A plain file takes the place of the link folder.
    void MakeLinkFail() const
    {
        const std::string folder = LinkBase + "1000.0001.02_" + m_serialNumber;
        unlink(LinkFile().c_str());
        rmdir(folder.c_str());
        WriteFile(folder, "");
    }
    bool NeedsEntry() const { return m_footprint.CheckNeedNewHistoryEntry(m_history, nullptr); }
    /// WriteHistory must write nothing.
    void ExpectUnchanged()
    {
        const Names before = FolderEntries(m_history);
        bool written = true;
        EXPECT_TRUE(m_footprint.WriteHistory(m_history, written, nullptr));
        EXPECT_FALSE(written);
        EXPECT_EQ(FolderEntries(m_history), before);
    }
    /// The history holds this entry, complete, as its latest.
    void ExpectLatestEntry(const std::string& folder, const std::string& name) const
    {
        EXPECT_EQ(ReadFile(folder + "/.latest"), name);
        KvDeviceFootprint::CDeviceFootprint entry;
        EXPECT_TRUE(entry.Load(folder + "/" + name));
        EXPECT_FALSE(entry.m_checksum.IsEmpty());
        EXPECT_TRUE(entry.ValidateChecksum());
        EXPECT_FALSE(m_footprint.CheckNeedNewHistoryEntry(folder, nullptr));
    }

    std::time_t m_now = 1425197159; // 2015-03-01T08:05:59
    FakeClock m_clock{m_now};
    ErrorWord m_error;
    TempFolder m_folder;
    std::string m_history = m_folder / "history";
    std::string m_saves = m_folder / "saves";
    std::string m_serialNumber;
    KvDeviceFootprint::CDeviceFootprint m_footprint;
};

} // namespace NyxTest

#endif
