#include "DeviceFootprint.h"
#include "ElementWalk.h"
#include "FakeClock.h"
#include "Files.h"
#include "Loading.h"
#include "ReportHtml.h"
#include "ReportPlot.h"
#include "ReportValues.h"
#include "RunProgram.h"
#include "TempFolder.h"
#include "Terminal.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace
{

std::size_t Count(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t place = text.find(part); place != std::string::npos; place = text.find(part, place + 1)) {
        ++count;
    }
    return count;
}

/// Says what is missing, and not what the page is.
testing::AssertionResult Has(const std::string& page, const std::vector<std::string>& texts)
{
    for (const std::string& text : texts) {
        if (page.find(text) == std::string::npos) {
            return testing::AssertionFailure() << "no " << text.substr(0, 200);
        }
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult Lacks(const std::string& page, const std::vector<std::string>& texts)
{
    for (const std::string& text : texts) {
        const std::size_t place = page.find(text);
        if (place != std::string::npos) {
            return testing::AssertionFailure()
                   << text << " in " << page.substr(place - std::min(place, place % 100), 200);
        }
    }
    return testing::AssertionSuccess();
}

/// The page without its style and script, which are no XML and of our own.
std::string Content(std::string page)
{
    for (const char* const tag : {"style", "script"}) {
        const std::size_t begin = page.find(std::string("<") + tag + ">") + std::string(tag).size() + 2;
        page.erase(begin, page.find(std::string("</") + tag + ">") - begin);
    }
    return page;
}

/// The page is well-formed even as XML, and asks for nothing from outside.
void ExpectSound(const std::string& page, const TempFolder& folder)
{
    const std::string content = Content(page);
    WriteFile(folder / "content.xml", content);
    const CRun check = RunProgram("/usr/bin/env", {"xmllint", "--nonet", "--huge", "--noout", folder / "content.xml"});
    EXPECT_EQ(check.status, 0) << check.messages.substr(0, 2000);
    unlink((folder / "content.xml").c_str());
    EXPECT_EQ(page.rfind("<!DOCTYPE html>\n<html lang=\"en\"><head>", 0), 0U);
    EXPECT_TRUE(Has(page, {"</html>\n", "content=\"default-src &#39;none&#39;; style-src &#39;sha256-"}));
    EXPECT_TRUE(Lacks(page, {"://", " src=", "url(", "@import", "<link", "<iframe", "<object", " style="}));
    EXPECT_EQ(Count(page, "<script"), 1U);
    EXPECT_EQ(Count(page, "href=\""), Count(page, "href=\"#"));
}

class ToolReport : public testing::Test
{
protected:
    /// Reports into a file that is gone afterwards. @return the page, or an empty text if there is none.
    std::string Report(const std::string& path, int status, const std::vector<std::string>& options = {})
    {
        const std::string file = m_folder / "page.html";
        std::vector<std::string> words = {"report", path, "-o", file};
        words.insert(words.end(), options.begin(), options.end());
        m_run = RunTool(words);
        EXPECT_EQ(m_run.status, status) << m_run.messages;
        EXPECT_THAT(m_run.data, IsEmpty());
        std::string page = FileExists(file) ? ReadFile(file) : "";
        unlink(file.c_str());
        EXPECT_EQ(page.empty(), status == 2);
        return page;
    }

    std::string Saved(CDeviceFootprint& footprint, const std::string& name = "device.xml")
    {
        EXPECT_TRUE(footprint.SaveAs(m_folder / name)) << CDeviceFootprint::GetLastError();
        return m_folder / name;
    }

    static CHardware& AddBoard(CDeviceFootprint& footprint, long id, long parent = 0)
    {
        CHardware& board = footprint.m_hardwareData.m_hardwareList.CreateEntry();
        board.m_id = id;
        board.m_name = "BOARD" + std::to_string(id);
        board.m_sn = 500000 + id;
        if (parent != 0) {
            board.m_parentId = parent;
        }
        return board;
    }

    /// A history of four entries a day apart, of 100, 101, 102 and 103 hours.
    std::string MakeHistory()
    {
        std::string folder = m_folder / "history";
        mkdir(folder.c_str(), 0700);
        FakeClock clock;
        CDeviceFootprint footprint;
        Identify(footprint);
        AddBoard(footprint, 1);
        for (long hours = 100; hours < 104; ++hours) {
            footprint.m_deviceData.m_maintenanceData.m_operatingHours = hours;
            bool written = false;
            EXPECT_TRUE(footprint.WriteHistory(folder, written, nullptr)) << CDeviceFootprint::GetLastError();
            EXPECT_TRUE(written);
            clock.Advance(86400);
        }
        return folder;
    }

    static void Identify(CDeviceFootprint& footprint)
    {
        footprint.m_deviceData.m_deviceId = "1101.2345.02-100123-ab";
        footprint.m_deviceData.m_type = "TYPE-A";
    }

    static std::string EntryName(int day)
    {
        return "DeviceFootprint_1101.2345.02-100123-ab_2015-03-0" + std::to_string(day) + "T08-05-59.xml";
    }

    TempFolder m_folder;
    CRun m_run;
};

} // namespace

TEST_F(ToolReport, ShowsEveryValueOfTheGoldenDocuments)
{
    for (const std::string& document : GoldenDocuments(true)) {
        SCOPED_TRACE(document);
        const std::string page = Report(document, 0);
        EXPECT_THAT(m_run.messages, IsEmpty());
        ExpectSound(page, m_folder);
        const footprint::CLibraryTalk talk;
        CDeviceFootprint footprint;
        footprint.Load(document);
        footprint::Walk(footprint, [&page](const CElementNode& element, const std::string& path) {
            for (const CReadOnlyAttribute* attribute : footprint::AttributesOf(element)) {
                // Shown as the label of the parent, as "yes", and as a mark.
                static const std::set<std::string> s_apart = {"parentId", "externConnected", "done"};
                const std::string& name = attribute->GetNodeName();
                std::string value = footprint::Utf8(attribute->GetValue());
                if (name == "creationDate") {
                    value = footprint::ReadableDate(value);
                } else if (path.find("/Hardware[") != std::string::npos &&
                           (name == "operatingHours" || name == "makeAndBreakCycles")) {
                    value = footprint::Grouped(value);
                }
                if (s_apart.count(attribute->GetNodeName()) == 0) {
                    EXPECT_TRUE(Has(page, {footprint::HtmlText(value)})) << path << " " << attribute->GetNodeName();
                }
            }
        });
        EXPECT_GE(Count(page, "class=\"box"), footprint.m_hardwareData.m_hardwareList.size());
    }
}

TEST_F(ToolReport, GivesTheSamePageEachTime)
{
    const std::string document = DataFile("golden/board-tree.xml");
    const std::string page = Report(document, 0);
    EXPECT_TRUE(page == Report(document, 0));
    const CRun run = RunTool({"report", document, "-o", "-"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.data == page);
    EXPECT_THAT(run.messages, IsEmpty());
}

TEST_F(ToolReport, FailsWithWordsAndWithoutAPage)
{
    WriteFile(m_folder / "empty.xml", "");
    WriteFile(m_folder / "text.xml", "no footprint\n");
    const std::string whole = ReadFile(DataFile("golden/board-tree.xml"));
    WriteFile(m_folder / "torn.xml", whole.substr(0, whole.size() / 2));
    mkdir((m_folder / "folder").c_str(), 0700);
    for (const char* const name : {"missing.xml", "empty.xml", "text.xml", "torn.xml", "folder"}) {
        SCOPED_TRACE(name);
        Report(m_folder / name, 2);
        EXPECT_THAT(m_run.messages, AllOf(StartsWith("footprint: "), HasSubstr(name), EndsWith("\n")));
    }
    EXPECT_THAT(FolderEntries(m_folder.Path()), ElementsAre("empty.xml", "folder", "text.xml", "torn.xml"));
    EXPECT_EQ(RunTool({"report", DataFile("golden/minimal.xml")}).status, 2);
    EXPECT_EQ(RunTool({"report"}).status, 2);
}

TEST_F(ToolReport, TellsOfAWrongChecksum)
{
    std::string text = ReadFile(DataFile("golden/minimal.xml"));
    text.replace(text.find("deviceId=\"") + 10, 1, "9");
    WriteFile(m_folder / "changed.xml", text);
    const std::string page = Report(m_folder / "changed.xml", 1);
    EXPECT_TRUE(Has(page, {"Checksum wrong"}));
    EXPECT_TRUE(Lacks(page, {"Checksum right"}));
    EXPECT_THAT(m_run.messages, HasSubstr("changed.xml: wrong checksum"));
}

TEST_F(ToolReport, TellsWhatWasLeftOut)
{
    const std::string page = Report(DataFile("golden/unknown-tags.xml"), 0);
    EXPECT_TRUE(Has(page, {"Not known and left out: "}));
}

TEST_F(ToolReport, DrawsEveryBoardOnceHoweverTheyAreTied)
{
    CDeviceFootprint footprint;
    Identify(footprint);
    AddBoard(footprint, 1);
    AddBoard(footprint, 2, 3); // a circle of two, with a board on it
    AddBoard(footprint, 3, 2);
    AddBoard(footprint, 4, 3);
    AddBoard(footprint, 5, 5);  // its own parent
    AddBoard(footprint, 6, 77); // whose parent is missing
    AddBoard(footprint, 1, 1);  // a second one of that id
    const std::string page = Report(Saved(footprint), 0);
    ExpectSound(page, m_folder);
    EXPECT_EQ(Count(page, "<rect "), 8U);
    EXPECT_EQ(Count(page, "class=\"branch"), 7U);
    for (std::size_t number = 1; number <= 7; ++number) {
        EXPECT_EQ(Count(page, "href=\"#board-" + std::to_string(number) + "\""), 1U);
        EXPECT_EQ(Count(page, "id=\"board-" + std::to_string(number) + "\""), 1U);
    }
    EXPECT_TRUE(Has(page, {"circle", "no board has the id 77", "a board before it has this id"}));
}

TEST_F(ToolReport, DrawsALongChain)
{
    CDeviceFootprint footprint;
    Identify(footprint);
    for (long id = 1; id <= 1000; ++id) {
        AddBoard(footprint, id, id - 1);
    }
    const std::string page = Report(Saved(footprint), 0);
    EXPECT_EQ(Count(page, "<rect "), 1001U);
    EXPECT_TRUE(Has(page, {"Picture of 1\xC2\xA0"
                           "000\xC2\xA0"
                           "boards"}));
}

TEST_F(ToolReport, StaysUsableForAFileOf16Megabytes)
{
    CDeviceFootprint footprint;
    Identify(footprint);
    for (long id = 1; id <= 30000; ++id) {
        CHardware& board = AddBoard(footprint, id, id > 10 ? id / 10 : 0);
        for (const char* const name : {"FPGA", "CPLD", "BOOT"}) {
            CProgrammablePart& part = board.m_programmableParts.CreateEntry();
            part.m_name = name;
            part.m_version = "4.17." + std::to_string(id);
        }
        board.m_maintenanceData.m_operatingHours = id;
        board.m_serviceData.m_services.CreateEntry().m_serviceCode = id;
    }
    footprint.m_deviceData.m_partName = std::string(1000000, 'n');
    const std::string file = Saved(footprint);
    EXPECT_GT(ReadFile(file).size(), 16000000U);
    const auto begin = std::chrono::steady_clock::now();
    const std::string page = Report(file, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
    EXPECT_LT(page.size(), 6000000U);
    EXPECT_TRUE(Has(page, {"The first 2\xC2\xA0"
                           "000 of 30\xC2\xA0"
                           "000 boards."}));
    EXPECT_TRUE(Has(page, {"rows are left out. The file has all of them."}));
    ExpectSound(page, m_folder);
}

TEST_F(ToolReport, TakesAHistoryInTheOrderOfItsEntries)
{
    const std::string page = Report(MakeHistory(), 0);
    ExpectSound(page, m_folder);
    EXPECT_THAT(m_run.messages, IsEmpty());
    EXPECT_EQ(Count(page, "<li class=\"entry\""), 4U);
    EXPECT_EQ(Count(page, "class=\"dot\""), 4U);
    EXPECT_EQ(Count(page, ">Latest<"), 1U);
    std::size_t former = page.size();
    for (int day = 1; day <= 4; ++day) { // the newest stands first
        const std::size_t place = page.find(EntryName(day));
        EXPECT_LT(place, former) << day;
        former = place;
    }
    EXPECT_LT(page.find(">Latest<"), former + (page.size() - former));
    EXPECT_TRUE(Has(page, {"Operating hours from 2015-03-01 08:05 (100 h) to 2015-03-04 08:05 (103 h)"}));
    EXPECT_TRUE(Has(page, {"<span class=\"figure\">103\xC2\xA0h</span>"}));
}

TEST_F(ToolReport, NamesWhatDecidedEachEntry)
{
    const std::string history = MakeHistory();
    CDeviceFootprint footprint;
    ASSERT_TRUE(footprint.Load(history + "/" + EntryName(4)));
    footprint.m_deviceData.m_maintenanceData.m_operatingHours = 104L;
    footprint.m_deviceData.m_partName = "named anew";
    AddBoard(footprint, 2, 1).m_partNumber = "1234.5678.02";
    CService& service = footprint.m_deviceData.m_serviceData.m_services.CreateEntry();
    service.m_serviceCode = 17L;
    service.m_serviceDate = "2015-03-04";
    FakeClock clock(FakeClock::Start + std::time_t{4} * 86400);
    bool written = false;
    ASSERT_TRUE(footprint.WriteHistory(history, written, nullptr) && written);
    ASSERT_TRUE(footprint.SaveAs(history + "/DeviceFootprint_x_2015-03-09.xml")); // the same again, by hand

    const std::string page = Report(history, 0);
    ExpectSound(page, m_folder);
    EXPECT_EQ(Count(page, "<li class=\"decides\"><bdi class=\"where\">Operating hours</bdi>"), 4U);
    EXPECT_TRUE(
        Has(page, {"<bdi class=\"former\">103</bdi> \xE2\x86\x92 <bdi class=\"present\">104</bdi>",
                   "<li class=\"decides\"><bdi class=\"where\">Board BOARD2 (2)</bdi> <span>added</span>",
                   "1234.5678.02, Serial number 500002</bdi>",
                   "<li class=\"decides\"><bdi class=\"where\">Service 17 of 2015-03-04</bdi>",
                   "<li class=\"aside\"><bdi class=\"where\">Part name</bdi>", ">CMaintenanceDataComparator<"}));
    EXPECT_EQ(Count(page, "By the default rules, nothing that decides has changed"), 1U);
    EXPECT_EQ(Count(page, "The first entry."), 1U);
    EXPECT_TRUE(Lacks(page, {"KvDeviceFootprint", "Checksum</bdi>"}));
    EXPECT_TRUE(Lacks(Report(history, 0, {"--redact"}), {"500002", "100123"}));
}

TEST_F(ToolReport, ShowsDamagedEntriesAsSuch)
{
    const std::string history = MakeHistory();
    std::string text = ReadFile(history + "/" + EntryName(2));
    text.replace(text.find("operatingHours=\"101\""), 20, "operatingHours=\"901\"");
    WriteFile(history + "/" + EntryName(2), text);
    text = ReadFile(history + "/" + EntryName(4));
    WriteFile(history + "/" + EntryName(4), text.substr(0, text.size() / 2));
    std::string page = Report(history, 1);
    ExpectSound(page, m_folder);
    EXPECT_EQ(Count(page, "<li class=\"entry bad\""), 2U);
    EXPECT_EQ(Count(page, "class=\"dot\""), 2U);
    EXPECT_EQ(Count(page, "class=\"dot bad\""), 1U);
    EXPECT_EQ(Count(page, "The entry before it is damaged"), 1U);
    EXPECT_TRUE(Has(page, {"2 of 4 entries are damaged.", "901\xC2\xA0h, checksum wrong",
                           "The latest entry can not be read; below is the last one that can.",
                           "<span class=\"figure\">102\xC2\xA0h</span>"}));
    EXPECT_THAT(m_run.messages, AllOf(HasSubstr(EntryName(2) + ": wrong checksum\n"), HasSubstr(EntryName(4) + ": ")));
    EXPECT_EQ(Count(m_run.messages, "\n"), 2U);

    for (int day = 1; day <= 4; ++day) {
        WriteFile(history + "/" + EntryName(day), "torn");
    }
    page = Report(history, 1);
    ExpectSound(page, m_folder);
    EXPECT_TRUE(Has(page, {"History without a readable entry"}));
    EXPECT_EQ(Count(page, "<li class=\"entry bad\""), 4U);
}

TEST_F(ToolReport, TellsOfAFileLatestThatIsMissingOrWrong)
{
    const std::string history = MakeHistory();
    EXPECT_EQ(ReadFile(history + "/.latest"), EntryName(4));
    WriteFile(history + "/.latest", EntryName(2)); // of a device whose clock was set back
    std::string page = Report(history, 0);
    EXPECT_TRUE(Has(page, {"<span class=\"figure\">101\xC2\xA0h</span>"}));
    EXPECT_TRUE(Lacks(page, {"To look at"}));
    WriteFile(history + "/.latest", "../secret<b>");
    page = Report(history, 0);
    EXPECT_TRUE(Has(page, {"&quot;../secret&lt;b&gt;&quot;. The youngest one is taken for the latest."}));
    EXPECT_TRUE(Has(page, {"<span class=\"figure\">103\xC2\xA0h</span>"}));
    unlink((history + "/.latest").c_str());
    EXPECT_TRUE(Has(Report(history, 0), {"No file &quot;.latest&quot; says which entry is the latest"}));
}

TEST_F(ToolReport, MakesHostileValuesHarmless)
{
    const std::wstring hostile = L"</title></script><script>alert(1)</script><!-- \"'& \x1b[31m \x202egnp\x2066 ]]> ";
    CDeviceFootprint footprint;
    Identify(footprint);
    AddBoard(footprint, 1).m_programmableParts.CreateEntry();
    footprint.m_softwareData.m_softwareList.CreateEntry();
    footprint.m_deviceData.m_serviceData.m_services.CreateEntry();
    footprint.m_deviceData.m_maintenanceData.m_maintenances.CreateEntry().m_maintenanceTasks.CreateEntry();
    footprint::Walk(footprint, [&hostile](const CElementNode& element, const std::string&) {
        for (const CReadOnlyAttribute* attribute : footprint::AttributesOf(element)) {
            if (attribute->GetNodeName() != "deviceId" && attribute->GetNodeName() != "formatVersion") {
                const_cast<CReadOnlyAttribute*>(attribute)->Set(hostile);
            }
        }
    });
    std::string text;
    ASSERT_TRUE(footprint.GetDeviceFootprintString(false, text));
    WriteFile(m_folder / "hostile.xml", text);
    const std::string page = Report(m_folder / "hostile.xml", 0);
    ExpectSound(page, m_folder);
    EXPECT_GT(Count(page, "&lt;/script&gt;&lt;script&gt;alert(1)"), 20U);
    EXPECT_GT(Count(page, "\\x1b[31m \\u202egnp\\u2066"), 20U);
    EXPECT_TRUE(Lacks(page, {"<script>alert", "<!--", "\x1b", "\xE2\x80\xAE", "\xE2\x81\xA6"}));
}

TEST_F(ToolReport, HidesWhatIsToBeRedacted)
{
    const std::string history = MakeHistory();
    const std::string page = Report(history, 0, {"--redact"});
    EXPECT_TRUE(Has(page, {"device-1", "serial-"}));
    EXPECT_TRUE(Lacks(page, {"100123", "500001"}));
    EXPECT_EQ(Count(page, "<p class=\"faint file\">DeviceFootprint_device-1_2015-03-0"), 4U);
    for (int day = 1; day <= 4; ++day) {
        WriteFile(history + "/" + EntryName(day), "torn");
    }
    EXPECT_TRUE(Lacks(Report(history, 1, {"--redact"}), {"100123"}));
    const std::string golden = Report(DataFile("golden/maintenance.xml"), 0, {"--redact"});
    EXPECT_TRUE(Has(golden, {"person-1"}));
    EXPECT_TRUE(Lacks(golden, {"A. Smith", "190010"}));
    EXPECT_TRUE(Has(Report(DataFile("golden/maintenance.xml"), 0), {"A. Smith", "190010"}));
}

TEST_F(ToolReport, ReplacesAPageAsAWhole)
{
    const std::string document = DataFile("golden/minimal.xml");
    const std::string file = m_folder / "page.html";
    WriteFile(file, "former");
    chmod(file.c_str(), 0640);
    EXPECT_EQ(RunTool({"report", m_folder / "missing.xml", "-o", file}).status, 2);
    EXPECT_EQ(ReadFile(file), "former");
    symlink("page.html", (m_folder / "link.html").c_str());
    EXPECT_EQ(RunTool({"report", document, "-o", m_folder / "link.html"}).status, 0);
    EXPECT_THAT(ReadFile(file), StartsWith("<!DOCTYPE"));
    struct stat status = {};
    lstat((m_folder / "link.html").c_str(), &status);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    lstat(file.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
    EXPECT_THAT(FolderEntries(m_folder.Path()), ElementsAre("link.html", "page.html"));

    for (const std::string& impossible : {m_folder.Path(), m_folder / "no/page.html", std::string("/dev/full")}) {
        const CRun run = RunTool({"report", document, "-o", impossible});
        EXPECT_EQ(run.status, 2);
        EXPECT_THAT(run.messages, HasSubstr("can not write " + impossible));
    }
    EXPECT_EQ(RunTool({"report", document, "-o", "/dev/null"}).status, 0);
}

TEST_F(ToolReport, NeverReplacesAFootprint)
{
    const std::string history = MakeHistory();
    const std::string entry = history + "/" + EntryName(1);
    const std::string before = ReadFile(entry);
    for (const std::string& source : {entry, history}) {
        const CRun run = RunTool({"report", source, "-o", entry});
        EXPECT_EQ(run.status, 2);
        EXPECT_THAT(run.messages, HasSubstr("the report needs another file"));
    }
    EXPECT_EQ(ReadFile(entry), before);
    EXPECT_EQ(RunTool({"report", history, "-o", history + "/.latest"}).status, 2);
    EXPECT_EQ(ReadFile(history + "/.latest"), EntryName(4));
}

TEST_F(ToolReport, WritesTheBoardsAsAGraph)
{
    CDeviceFootprint footprint;
    Identify(footprint);
    AddBoard(footprint, 1).m_externConnected.SetBool(true);
    AddBoard(footprint, 2, 1).m_name = L"a\"];x[label=\"b\\N &amp; <i>";
    const CRun run = RunTool({"report", Saved(footprint), "--board-tree", m_folder / "boards.dot"});
    EXPECT_EQ(run.status, 0) << run.messages;
    const std::string graph = ReadFile(m_folder / "boards.dot");
    EXPECT_THAT(graph, AllOf(StartsWith("digraph boards {\n"), EndsWith("}\n"), HasSubstr("  device -> board1;\n"),
                             HasSubstr("  board1 -> board2;\n"), HasSubstr("rounded,dashed"),
                             HasSubstr(R"([label="a\"];x[label=\"b\\N &amp;amp; <i> (2)\nSN 500002"])")));
}

TEST_F(ToolReport, LetsDotDrawOtherFormats)
{
    const std::string document = DataFile("golden/board-tree.xml");
    const std::string picture = m_folder / "boards;touch x.png";
    mkdir((m_folder / "bin").c_str(), 0700);
    CRun run = RunTool({"report", document, "--board-tree", picture}, {"PATH=" + (m_folder / "bin")});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.messages, "footprint: the program \"dot\" of Graphviz is not installed; it makes the picture\n");
    EXPECT_FALSE(FileExists(picture));

    const std::string program = m_folder / "bin/dot";
    const std::vector<std::string> path = {"PATH=" + (m_folder / "bin") + ":/usr/bin:/bin"};
    WriteFile(program, "#!/bin/sh\necho \"$@\" >\"$0.words\"\ncat >\"$0.graph\"\necho picture\n");
    chmod(program.c_str(), 0700);
    run = RunTool({"report", document, "--board-tree", picture}, path);
    EXPECT_EQ(run.status, 0) << run.messages;
    EXPECT_EQ(ReadFile(picture), "picture\n");
    EXPECT_EQ(ReadFile(program + ".words"), "-Tpng\n");
    EXPECT_THAT(ReadFile(program + ".graph"), StartsWith("digraph boards {"));

    WriteFile(program, "#!/bin/sh\necho half\nexit 1\n");
    run = RunTool({"report", document, "--board-tree", picture}, path);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.messages, "footprint: \"dot\" could not make the picture\n");
    EXPECT_EQ(ReadFile(picture), "picture\n");
    EXPECT_THAT(FolderEntries(m_folder.Path()), ElementsAre("bin", "boards;touch x.png"));

    run = RunTool({"report", document, "--board-tree", m_folder / "boards.gif"});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.messages, HasSubstr("must end in .svg, .png, .pdf or .dot"));
}

TEST(ReportValues, HaveTheFormForPeople)
{
    EXPECT_EQ(footprint::Grouped("1234567"), "1\xC2\xA0"
                                             "234\xC2\xA0"
                                             "567");
    EXPECT_EQ(footprint::Grouped("-123"), "\xE2\x88\x92"
                                          "123");
    EXPECT_EQ(footprint::Grouped("12h"), "12h");
    EXPECT_EQ(footprint::Grouped(""), "");
    EXPECT_EQ(footprint::WholeNumber("999999999999999"), 999999999999999);
    for (const char* const text : {"", "-", "+1", " 1", "1.0", "0x10", "1000000000000000"}) {
        EXPECT_FALSE(footprint::WholeNumber(text)) << text;
    }
    EXPECT_EQ(footprint::Shortened("abcdef", 6), "abcdef");
    EXPECT_EQ(footprint::Shortened("abcdefg", 6), "abcde\xE2\x80\xA6");
    EXPECT_EQ(footprint::Shortened("\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F", 3), "\xC3\xA4\xC3\xB6\xE2\x80\xA6");
    EXPECT_EQ(footprint::ReadableDate("2015-03-01T08-05-59"), "2015-03-01 08:05:59");
    EXPECT_EQ(footprint::ReadableDate("2015-03-01"), "2015-03-01");
    EXPECT_EQ(footprint::HtmlText("<a href='\"&'>\x01"), "&lt;a href=&#39;&quot;&amp;&#39;&gt;\\x01");
}

TEST(ReportValues, KnowTheCalendar)
{
    EXPECT_EQ(footprint::Seconds("1970-01-01"), 0);
    EXPECT_EQ(footprint::Seconds("2015-03-01T08:05:59"), FakeClock::Start);
    for (const char* const text : {"2015-13-01", "2015-00-01", "2015-01-32", "2015-01-01T24:00:00", "2015-1-1", "x",
                                   "2015-01-01T00:00:00Z", "-015-01-01"}) {
        EXPECT_FALSE(footprint::Seconds(text)) << text;
    }
    for (const char* const day : {"0000-01-01", "0001-12-31", "1969-12-31", "1970-01-31", "2000-02-29", "2015-12-31",
                                  "2024-02-29", "9999-12-31"}) {
        EXPECT_EQ(footprint::DateText(*footprint::Seconds(std::string(day) + "T23:59:07")),
                  day + std::string(" 23:59"));
    }
}

TEST(ReportPlot, MarksItsAxesEvenly)
{
    EXPECT_THAT(footprint::NumberMarks(12, 9120), ElementsAre(0, 2000, 4000, 6000, 8000, 10000));
    for (const auto& [from, to] : std::vector<std::pair<double, double>>{
             {5, 5}, {0, 0}, {-3, 4}, {99, 103}, {0, 1e15}, {-1e15, 1e15}, {123456, 123457}}) {
        const std::vector<double> marks = footprint::NumberMarks(from, to);
        EXPECT_LE(marks.front(), from);
        EXPECT_GE(marks.back(), to);
        EXPECT_THAT(marks, AllOf(SizeIs(testing::Ge(2U)), SizeIs(testing::Le(8U))));
    }
    const std::vector<std::string> days = {"0000-01-01", "1812-06-24", "1969-12-31", "1970-01-01",
                                           "2015-03-01", "2015-03-02", "2015-03-20", "2015-08-01",
                                           "2019-01-01", "2047-05-05", "9999-12-31"};
    for (const std::string& first : days) {
        for (const std::string& last : days) {
            const std::int64_t from = *footprint::Seconds(first);
            const std::int64_t to = *footprint::Seconds(last + "T12:34:56");
            if (from > to) {
                continue;
            }
            const std::vector<footprint::CTimeMark> marks = footprint::TimeMarks(from, to);
            EXPECT_THAT(marks, AllOf(Not(IsEmpty()), SizeIs(testing::Le(8U)))) << first << " " << last;
            for (const footprint::CTimeMark& mark : marks) {
                EXPECT_TRUE(from <= mark.seconds && mark.seconds <= to) << first << " " << last << " " << mark.words;
            }
        }
    }
}
