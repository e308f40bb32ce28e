#include "DeviceFootprint.h"
#include "DocumentTest.h"
#include "Files.h"
#include "LinkFile.h"
#include "RunProgram.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

using namespace NyxTest;
using namespace KvDeviceFootprint;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace
{

class ToolLinkTest : public DocumentTest
{
protected:
    /// Puts a link file of its own making into the base folder.
    static void Link(const std::string& device, const std::string& text)
    {
        std::filesystem::create_directory(linkBase + "/" + device);
        WriteFile(linkBase + "/" + device + "/deviceFootprintLink.xml", text);
    }
};

} // namespace

TEST_F(ToolLinkTest, NoLinksIsNoFailure)
{
    const CRun run = RunTool({"link"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.data, IsEmpty());
    EXPECT_THAT(run.messages, HasSubstr("there are no link files in " + linkBase + "/"));
    EXPECT_EQ(json::parse(RunTool({"link", "--json"}).data),
              json({{"folder", linkBase + "/"}, {"devices", json::array()}}));
}

TEST_F(ToolLinkTest, WhatTheLibraryWrote)
{
    std::filesystem::create_directory(m_folder / "history");
    bool isWritten = false;
    m_footprint.m_deviceData.m_type = "TYPE-A";
    ASSERT_TRUE(m_footprint.SaveAndWriteHistory(m_folder.Path(), m_folder / "history", isWritten, nullptr));
    const CRun run = RunTool({"link"});
    EXPECT_EQ(run.status, 0) << run.data;
    const std::string footprint = m_footprint.GetFullFilenameOfLastSave();
    EXPECT_THAT(run.data, testing::StartsWith("TYPE-A_1111.2222.33_100001\n  Footprint  there  "));
    EXPECT_THAT(run.data, HasSubstr("\n  History    there  " + m_folder / "history\n"));
    EXPECT_THAT(run.messages, IsEmpty());

    const json device = json::parse(RunTool({"link", "--json"}).data)["devices"][0];
    EXPECT_EQ(device["folder"], "TYPE-A_1111.2222.33_100001");
    EXPECT_EQ(device["linkFile"], linkBase + "/TYPE-A_1111.2222.33_100001/deviceFootprintLink.xml");
    EXPECT_EQ(device["trouble"], nullptr);
    EXPECT_EQ(ReadFile(device["footprint"]["path"]), ReadFile(footprint));
    EXPECT_EQ(device["footprint"]["exists"], true);
    EXPECT_EQ(device["history"], json({{"path", m_folder / "history"}, {"exists", true}}));
}

TEST_F(ToolLinkTest, WhatIsMissingOrDamagedIsAFinding)
{
    const std::string there = File("there.xml", "x");
    const std::vector<std::pair<std::string, std::string>> cases = {
        {LinkFileText(there, m_folder / "nowhere"), "History    missing  "},
        {LinkFileText(m_folder / "nowhere.xml", m_folder.Path()), "Footprint  missing  "},
        {LinkFileText(m_folder.Path(), there), "Footprint  missing  "}, // each is the other
        {LinkFileText(nullptr, m_folder.Path().c_str()), "Footprint  not named\n"},
        {"", "Link file  can not be read, or is no link file\n"},
        {"no link", "Link file  can not be read, or is no link file\n"}};
    for (const auto& [text, words] : cases) {
        Link("device_1", text);
        const CRun run = RunTool({"link"});
        EXPECT_EQ(run.status, 1) << text;
        EXPECT_THAT(run.data, HasSubstr(words)) << text;
        EXPECT_EQ(RunTool({"link", "--json"}).status, 1) << text;
    }
    Link("device_1", LinkFileText(there.c_str(), nullptr));
    const CRun withoutHistory = RunTool({"link"});
    EXPECT_EQ(withoutHistory.status, 0) << "not every device keeps a history";
    EXPECT_THAT(withoutHistory.data, HasSubstr("History    not named\n"));

    std::filesystem::create_directory(linkBase + "/empty");
    EXPECT_THAT(RunTool({"link"}).data, HasSubstr("\n\nempty\n  Link file  missing\n"));
}

TEST_F(ToolLinkTest, HostileNamesComeOutHarmless)
{
    Link("evil\x1b[2J\n_1", LinkFileText("/x\x1b[2J\xe2\x80\xae.xml", "/y\xe4"));
    const CRun run = RunTool({"link"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.data, HasSubstr("evil\\x1b[2J\\x0a_1\n"));
    EXPECT_THAT(run.data, Not(HasSubstr("\x1b")));
    EXPECT_EQ(json::parse(RunTool({"link", "--json"}).data)["devices"][0]["folder"], "evil\x1b[2J\n_1");
}

TEST_F(ToolLinkTest, RedactedNamesStillBelongTogether)
{
    m_footprint.m_deviceData.m_type = "TYPE-A";
    ASSERT_TRUE(m_footprint.Save(m_folder.Path()));
    Link("TYPE-B_1111.2222.33_7", LinkFileText("/data/DeviceFootprint_1111.2222.33-100001-x_2015.xml", "/100001"));
    const CRun run = RunTool({"link", "--redact"});
    EXPECT_THAT(run.data, HasSubstr("TYPE-A_1111.2222.33_serial-1\n"));
    EXPECT_THAT(run.data, HasSubstr("/DeviceFootprint_device-1_2015"));
    EXPECT_THAT(run.data, HasSubstr("TYPE-B_1111.2222.33_serial-2\n"));
    EXPECT_THAT(run.data, HasSubstr("/data/DeviceFootprint_device-1_2015.xml"));
    EXPECT_THAT(run.data, HasSubstr("/serial-1\n"));
    EXPECT_THAT(run.data, Not(HasSubstr("100001")));
    EXPECT_THAT(RunTool({"link", "--redact", "--json"}).data, Not(HasSubstr("100001")));
}
