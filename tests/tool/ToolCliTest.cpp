#include "Commands.h"
#include "Files.h"
#include "LargeFootprint.h"
#include "Loading.h"
#include "Redaction.h"
#include "RunProgram.h"
#include "Tables.h"
#include "TempFolder.h"
#include "Terminal.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <sys/stat.h>

using namespace NyxTest;
using namespace footprint;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{

const std::string minimal = DataFile("golden/minimal.xml");
const std::string boardTree = DataFile("golden/board-tree.xml");

/// Runs a line of the shell in which $TOOL is the tool.
CRun RunShell(const std::string& line)
{
    return RunProgram("/bin/sh", {"-c", line}, {"TOOL=" + ToolPath(), "FILE=" + boardTree});
}

} // namespace

TEST(ToolCliTest, HelpAndVersionAreData)
{
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"--help"}, {"-h"}, {"--version"}, {"show", "--help"}, {"link", "-h"}, {"man-page"}}) {
        const CRun run = RunTool(words);
        EXPECT_EQ(run.status, eGood) << words.front();
        EXPECT_THAT(run.data, Not(IsEmpty())) << words.front();
        EXPECT_THAT(run.messages, IsEmpty()) << words.front();
    }
    EXPECT_THAT(RunTool({"--version"}).data, testing::MatchesRegex("footprint [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    EXPECT_THAT(RunTool({"--help"}).data, Not(HasSubstr("man-page"))) << "it is hidden";
}

TEST(ToolCliTest, WrongUsageIsAFailure)
{
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{},
                                               {"unheard-of"},
                                               {"--unheard-of"},
                                               {"show"},
                                               {"show", minimal, minimal},
                                               {"show", "--unheard-of", minimal},
                                               {"link", "x"},
                                               {"show", "--json=maybe", minimal}}) {
        const CRun run = RunTool(words);
        EXPECT_EQ(run.status, eFailed) << testing::PrintToString(words);
        EXPECT_THAT(run.data, IsEmpty()) << testing::PrintToString(words);
        EXPECT_THAT(run.messages, StartsWith("footprint: ")) << testing::PrintToString(words);
    }
}

TEST(ToolCliTest, WordsOfTheCommandLineAreHarmlessInMessages)
{
    const CRun run = RunTool({"show", minimal, "\x1b[2J\xe2\x80\xae"});
    EXPECT_EQ(run.status, eFailed);
    EXPECT_THAT(run.messages, HasSubstr("\\x1b[2J\\u202e"));
}

TEST(ToolCliTest, StandardOutputThatTakesNothingIsAFailure)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"\"$TOOL\" show \"$FILE\" >/dev/full", "No space left on device"},
        {"\"$TOOL\" --help >/dev/full", "No space left on device"},
        {"\"$TOOL\" show \"$FILE\" >&-", "Bad file descriptor"}};
    for (const auto& [line, words] : cases) {
        const CRun run = RunShell(line);
        EXPECT_EQ(run.messages, "footprint: can not write to standard output: " + words + "\n") << line;
        EXPECT_EQ(run.status, eFailed) << line;
        EXPECT_THAT(run.data, IsEmpty()) << line;
    }
}

TEST(ToolCliTest, AReaderWhoGoesIsAFailure)
{
    const TempFolder folder;
    WriteFile(folder / "large.xml", LargeFootprint(5000)); // shown, it is more than a pipe takes
    const CRun run = RunShell("{ \"$TOOL\" show " + folder / "large.xml" + "; echo $? >&2; } | true");
    EXPECT_EQ(run.messages, "footprint: can not write to standard output: Broken pipe\n2\n");
}

TEST(ToolCliTest, WorksWithoutStandardInputAndError)
{
    const CRun run = RunShell("\"$TOOL\" show \"$FILE\" <&- 2>&-");
    EXPECT_EQ(run.status, eGood);
    EXPECT_EQ(run.data, RunShell("\"$TOOL\" show \"$FILE\"").data);
}

TEST(ToolCliTest, ColourOnATerminalOnly)
{
    const std::vector<std::string> words = {"show", minimal};
    const std::string escape = "\x1b[";
    EXPECT_THAT(RunToolOnTerminal(words, {"NO_COLOR", "TERM=xterm"}).data, HasSubstr(escape));
    EXPECT_THAT(RunToolOnTerminal(words, {"NO_COLOR=1", "TERM=xterm"}).data, Not(HasSubstr(escape)));
    EXPECT_THAT(RunToolOnTerminal(words, {"NO_COLOR=", "TERM=xterm"}).data, Not(HasSubstr(escape)));
    EXPECT_THAT(RunToolOnTerminal(words, {"NO_COLOR", "TERM=dumb"}).data, Not(HasSubstr(escape)));
    EXPECT_THAT(RunToolOnTerminal(words, {"NO_COLOR", "TERM"}).data, Not(HasSubstr(escape)));
    EXPECT_THAT(RunTool(words, {"NO_COLOR", "TERM=xterm"}).data, Not(HasSubstr(escape)));
    // JSON is for programs, wherever it goes.
    EXPECT_THAT(RunToolOnTerminal({"show", "--json", minimal}, {"NO_COLOR", "TERM=xterm"}).data,
                Not(HasSubstr(escape)));
    EXPECT_EQ(RunToolOnTerminal(words).status, eGood);
}

TEST(ToolCliTest, WhatACommandThrowsIsAMessage)
{
    std::ostringstream data;
    std::ostringstream messages;
    // A footprint's name that the command line can not hold as such, but the function can.
    EXPECT_EQ(RunCommandLine({"show", std::string(100000, 'x')}, {data, messages}), eFailed);
    EXPECT_THAT(messages.str(), HasSubstr("File name too long"));
    EXPECT_THAT(data.str(), IsEmpty());
}

TEST(ToolHarmlessTest, MakesEscapesOfWhatIsNotPlainText)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", ""},
        {"plain text, \\x1b too", "plain text, \\x1b too"},
        {"M\xc3\xbcller \xe2\x82\xac \xf0\x9f\x98\x80", "M\xc3\xbcller \xe2\x82\xac \xf0\x9f\x98\x80"},
        {"a\x1b[31mb", "a\\x1b[31mb"},
        {"a\nb\tc\rd\x7f", "a\\x0ab\\x09c\\x0dd\\x7f"},
        {std::string("a\0b", 3), "a\\x00b"},
        {"\xc2\x9b"
         "31m\xc2\x85",
         "\\u009b31m\\u0085"},
        {"\xe2\x80\xae\xe2\x81\xa6\xe2\x80\xa8\xe2\x80\x8b\xef\xbb\xbf", "\\u202e\\u2066\\u2028\\u200b\\ufeff"},
        {"\xf3\xa0\x81\x81", "\\U000e0041"},
        {"\xe4\xf6", "\\xe4\\xf6"},
        {"\xc3", "\\xc3"},
        {"\xc0\xaf", "\\xc0\\xaf"},
        {"\xe0\x80\xaf", "\\xe0\\x80\\xaf"},
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},
        {"\xe2\x82z", "\\xe2\\x82z"},
        {"\xef\xbf\xbf", "\\uffff"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(Harmless(text), expected);
    }
}

TEST(ToolTablesTest, WidthIsThatOfTheDisplay)
{
    EXPECT_EQ(DisplayWidth("abc"), 3U);
    EXPECT_EQ(DisplayWidth("M\xc3\xbcller"), 6U);
    EXPECT_EQ(DisplayWidth("\xe6\x9d\xbf"), 2U) << "a wide character";
    EXPECT_EQ(DisplayWidth("e\xcc\x81"), 1U) << "a combining accent";
    EXPECT_EQ(DisplayWidth("│"), 1U);
}

TEST(ToolTablesTest, AlignsWhatItShowsAndLeavesOutEmptyColumns)
{
    CTable table({"Name", "Empty", CTable::CColumn("Hours", true), "End"});
    table.AddRow({"M\xc3\xbcller", "", "7", "x"});
    table.AddRow({"\xe6\x9d\xbf", "", "12345678", ""});
    table.AddRow({"a\nb"});
    std::ostringstream output;
    table.Write(output, false);
    EXPECT_EQ(output.str(), "  Name       Hours  End\n"
                            "  M\xc3\xbcller         7  x\n"
                            "  \xe6\x9d\xbf      12345678\n"
                            "  a\\x0ab\n");
}

TEST(ToolTablesTest, ALongCellDoesNotWidenTheOtherLines)
{
    CTable table({"", ""});
    table.AddRow({std::string(10000, 'x'), "y"});
    table.AddRow({"a", "b"});
    std::ostringstream output;
    table.Write(output, false);
    EXPECT_EQ(output.str(), "  " + std::string(10000, 'x') + "  y\n  a  b\n");
}

TEST(ToolTablesTest, TreeLines)
{
    CTreeLines lines;
    EXPECT_EQ(lines.Next(0, false), "");
    EXPECT_EQ(lines.Next(1, false), "├─ ");
    EXPECT_EQ(lines.Next(2, true), "│  └─ ");
    EXPECT_EQ(lines.Next(1, true), "└─ ");
    EXPECT_EQ(lines.Next(2, false), "   ├─ ");
    EXPECT_EQ(lines.Next(50000, true), "(level 50000) └─ ");
}

TEST(ToolLoadingTest, EveryFailureHasWordsWithTheFile)
{
    const TempFolder folder;
    WriteFile(folder / "empty.xml", "");
    WriteFile(folder / "text.xml", "hello\n");
    WriteFile(folder / "half.xml", ReadFile(boardTree).substr(0, 5000));
    WriteFile(folder / "blank.xml", "<DeviceFootprint>\n\n\n  <DeviceData deviceId=\"a\"/>\n</DeviceFootprint>\n");
    WriteFile(folder / "other.xml", "<?xml version=\"1.0\" ?>\n<Other a=\"b\">\n</Other>\n");
    WriteFile(folder / "root.xml", "<?xml version=\"1.0\" ?>\n<DeviceFootprint>\n</DeviceFootprint>\n");
    WriteFile(folder / "end.xml", "<DeviceFootprint a=\"b\">\n  <DeviceData deviceId=\"a\">\n  </Wrong>\n");
    std::filesystem::create_symlink("nowhere", folder / "link.xml");
    const std::vector<std::pair<std::string, std::string>> cases = {{"empty.xml", "is empty"},
                                                                    {"text.xml", "no footprint in it"},
                                                                    {"half.xml", "damaged"},
                                                                    {"blank.xml", "damaged: blank lines"},
                                                                    {"other.xml", "no footprint in it"},
                                                                    {"root.xml", "no footprint in it"},
                                                                    {"end.xml", "damaged"},
                                                                    {"link.xml", "No such file or directory"},
                                                                    {"missing.xml", "No such file"},
                                                                    {"", "is a folder"}};
    for (const auto& [name, words] : cases) {
        KvDeviceFootprint::CDeviceFootprint document;
        std::string error;
        EXPECT_FALSE(LoadFootprint(folder / name, document, error)) << name;
        EXPECT_THAT(error, StartsWith((folder / name) + ": " + words)) << name;
        const CRun run = RunTool({"show", folder / name});
        EXPECT_EQ(run.status, eFailed) << name;
        EXPECT_THAT(run.data, IsEmpty()) << name;
        EXPECT_EQ(run.messages, "footprint: " + error + "\n") << name;
    }
}

TEST(ToolLoadingTest, UnknownTagsAreHeardAndNotPrinted)
{
    const CLibraryTalk talk;
    KvDeviceFootprint::CDeviceFootprint document;
    std::string error;
    std::vector<std::string> tags;
    EXPECT_TRUE(LoadFootprint(DataFile("golden/unknown-tags.xml"), document, error, &tags)) << error;
    EXPECT_THAT(tags, Not(IsEmpty()));
    for (const std::string& tag : tags) {
        EXPECT_THAT(tag, Not(HasSubstr("invalid tag")));
        EXPECT_THAT(tag, Not(HasSubstr("\n")));
    }
    const CRun run = RunTool({"show", "--json", DataFile("golden/unknown-tags.xml")});
    EXPECT_THAT(run.data, Not(HasSubstr("invalid tag")));
    EXPECT_EQ(std::count(run.messages.begin(), run.messages.end(), '\n'), static_cast<std::ptrdiff_t>(tags.size()));
}

TEST(ToolLoadingTest, FilesOfAFolder)
{
    const TempFolder folder;
    std::filesystem::create_directories(folder / "b/deep.xml");
    for (const char* name : {"z.xml", "a.xml", "b/deep.xml/c.xml", "notes.txt", ".latest", "deviceFootprintLink.xml"}) {
        WriteFile(folder / name, "x");
    }
    std::filesystem::create_symlink("nowhere", folder / "link.xml");
    std::filesystem::create_directory_symlink("..", folder / "b/circle");
    ASSERT_EQ(mkfifo((folder / "pipe.xml").c_str(), 0600), 0);
    EXPECT_THAT(FootprintFiles(folder.Path()),
                ElementsAre(folder / "a.xml", folder / "b/deep.xml/c.xml", folder / "link.xml", folder / "z.xml"));
    EXPECT_THAT(FootprintFiles(folder / "notes.txt"), ElementsAre(folder / "notes.txt"));
    EXPECT_THROW(FootprintFiles(folder / "missing"), std::filesystem::filesystem_error);
}

TEST(ToolRedactionTest, EqualStaysEqualAndDifferentDifferent)
{
    CRedaction redaction(true);
    EXPECT_EQ(redaction.SerialNumber("100123"), "serial-1");
    EXPECT_EQ(redaction.SerialNumber("7"), "serial-2");
    EXPECT_EQ(redaction.DeviceId("1101.2345.02-100123-ab"), "device-1");
    EXPECT_EQ(redaction.DeviceId("1101.2345.02-100124-ab"), "device-2");
    EXPECT_EQ(redaction.Person("C. M\xc3\xbcller"), "person-1");
    EXPECT_EQ(redaction.SerialNumber("100123"), "serial-1");
    EXPECT_EQ(redaction.SerialNumber("100124"), "serial-3") << "from the device id";
    EXPECT_EQ(redaction.SerialNumber(""), "") << "nothing is no secret";

    EXPECT_EQ(redaction.Text("DeviceFootprint_1101.2345.02-100123-ab_2015.xml"), "DeviceFootprint_device-1_2015.xml");
    EXPECT_EQ(redaction.Text("TYPE-A_1101.2345.02_100124/7"), "TYPE-A_1101.2345.02_serial-3/7");
    EXPECT_EQ(redaction.Text("seen by C. M\xc3\xbcller."), "seen by person-1.");
    EXPECT_EQ(redaction.Text("9100123 100123a"), "9100123 100123a") << "part of another word";
    EXPECT_EQ(redaction.Value("operatingHours", "100123"), "100123");
    EXPECT_EQ(redaction.Value("generatedBy", "tool"), "tool");
    EXPECT_EQ(redaction.Value("additionalInfo", "was 100123"), "was serial-1");
}

TEST(ToolRedactionTest, OffChangesNothing)
{
    CRedaction redaction(false);
    EXPECT_EQ(redaction.Value("sn", "100123"), "100123");
    EXPECT_EQ(redaction.DeviceId("1101.2345.02-100123-ab"), "1101.2345.02-100123-ab");
    EXPECT_EQ(redaction.Text("100123"), "100123");
}
