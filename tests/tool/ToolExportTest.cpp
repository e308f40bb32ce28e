#include "ExportRows.h"
#include "ExportRun.h"
#include "ExportTables.h"
#include "ExportText.h"
#include "Files.h"
#include "Json.h"
#include "Loading.h"
#include "RunProgram.h"
#include "Sqlite.h"
#include "TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace NyxTest;
using footprint::CExportOptions;
using footprint::CSqlite;
using footprint::CStatement;
using KvDeviceFootprint::CDeviceFootprint;
using KvDeviceFootprint::CHardware;
using testing::HasSubstr;
using testing::Not;

namespace fs = std::filesystem;

namespace
{

struct CExported
{
    int status;
    std::string data;
    std::string messages;
};

CExported Export(const CExportOptions& options)
{
    const footprint::CLibraryTalk talk;
    std::ostringstream data;
    std::ostringstream messages;
    const int status = footprint::RunExport(options, {data, messages});
    return {status, data.str(), messages.str()};
}

/// A footprint of a few boards, whatever @p change makes of it.
std::string Footprint(unsigned number, const std::function<void(CDeviceFootprint&)>& change = {})
{
    CDeviceFootprint footprint;
    footprint.m_creationDate = "2024-05-06T07:08:09";
    footprint.m_deviceData.m_deviceId = "1101.2345.02-" + std::to_string(100000 + number) + "-ab";
    for (long place = 0; place < 10; ++place) {
        CHardware& board = footprint.m_hardwareData.m_hardwareList.CreateEntry();
        board.m_id = 1001 + place;
        board.m_sn = 1000L * static_cast<long>(number) + place;
        board.m_partNumber = "1102.3456.02";
        if (place > 0) {
            board.m_parentId = 1000 + place;
        }
        board.m_programmableParts.CreateEntry().m_name = "FPGA";
    }
    if (change) {
        change(footprint);
    }
    std::string text;
    EXPECT_TRUE(footprint.GetDeviceFootprintString(false, text));
    return text;
}

std::string Name(unsigned number)
{
    return std::to_string(number) + ".xml";
}

/// Values of a query, with "|" between those of a row.
std::vector<std::string> Query(const std::string& database, const std::string& sql)
{
    CSqlite connection(database, CSqlite::eReadOnly);
    CStatement statement(connection, sql);
    std::vector<std::string> rows;
    while (statement.Step()) {
        std::string row;
        for (int column = 0; column < statement.Columns(); ++column) {
            row += (column == 0 ? "" : "|") + statement.Text(column);
        }
        rows.push_back(row);
    }
    return rows;
}

/// All rows of a database in an order of their own, with names in place of keys, as the numbers of the files depend on
/// the order in which they came.
std::vector<std::string> Content(const std::string& database)
{
    CSqlite connection(database, CSqlite::eReadOnly);
    std::map<std::int64_t, std::string> paths;
    std::vector<std::string> rows;
    CStatement files(connection, "SELECT file_key, path, error FROM files");
    while (files.Step()) {
        paths[files.Number(0)] = files.Text(1);
        rows.push_back(files.Text(1) + ": " + files.Text(2));
    }
    for (const footprint::CExportTable& table : footprint::ExportTables()) {
        CStatement statement(connection, "SELECT * FROM " + table.name);
        while (statement.Step()) {
            std::string row = table.name;
            for (int column = 0; column < statement.Columns(); ++column) {
                const footprint::EExportColumn kind = table.columns[static_cast<std::size_t>(column)].kind;
                const std::int64_t number = statement.Number(column);
                row += "|";
                if (kind == footprint::EExportColumn::eFile) {
                    row += paths.at(number);
                } else if (kind != footprint::EExportColumn::eText && !statement.IsNull(column) && number > 0xFFFFFF) {
                    row += paths.at(number >> footprint::exportKeyBits) + "#" + std::to_string(number & 0xFFFFFF);
                } else {
                    row += statement.Text(column);
                }
            }
            rows.push_back(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

class ToolExportTest : public testing::Test
{
protected:
    ToolExportTest()
    {
        fs::create_directories(m_fleet);
        m_options.paths = {m_fleet};
        m_options.output = m_folder / "fleet.sqlite";
        m_options.jobs = 2;
    }

    void Write(unsigned number, const std::function<void(CDeviceFootprint&)>& change = {}) const
    {
        WriteFile(m_fleet + "/" + Name(number), Footprint(number, change));
    }

    void WriteFleet(unsigned count) const
    {
        for (unsigned number = 0; number < count; ++number) {
            Write(number);
        }
    }

    std::vector<std::string> Ask(const std::string& sql) const { return Query(m_options.output, sql); }

    void ExpectSound() const
    {
        EXPECT_THAT(Ask("PRAGMA foreign_key_check"), testing::IsEmpty());
        EXPECT_THAT(Ask("PRAGMA integrity_check"), testing::ElementsAre("ok"));
    }

    TempFolder m_folder;
    std::string m_fleet = m_folder / "fleet";
    CExportOptions m_options;
};

/// The stream of a document without what differs from machine to machine.
std::vector<std::string> GoldenStream(const std::string& document)
{
    CExportOptions options;
    options.paths = {DataFile("golden/" + document + ".xml")};
    options.format = "ndjson";
    const CExported exported = Export(options);
    EXPECT_EQ(exported.status, footprint::eGood) << exported.messages;
    std::vector<std::string> lines;
    std::istringstream stream(exported.data);
    std::string line;
    while (std::getline(stream, line)) {
        footprint::TJson record = footprint::TJson::parse(line);
        if (record["table"] == "files") {
            record["path"] = fs::path(record["path"].get<std::string>()).filename().string();
            record.erase("modified");
            record.erase("changed");
        }
        lines.push_back(record.dump(-1, ' ', true));
    }
    return lines;
}

TEST_F(ToolExportTest, GoldenDocumentsGiveTheRecordsThatWereLookedThrough)
{
    for (const std::string document : {"board-tree", "connected-devices", "nested-software", "entities"}) {
        SCOPED_TRACE(document);
        std::istringstream expected(ReadFile(FOOTPRINT_TEST_DATA "/export/" + document + ".ndjson"));
        std::vector<std::string> lines;
        std::string line;
        while (std::getline(expected, line)) {
            lines.push_back(line);
        }
        EXPECT_EQ(GoldenStream(document), lines);
    }
}

TEST_F(ToolExportTest, EveryGoldenDocumentHasItsBoardsAndParts)
{
    const std::string golden = DataFile("golden");
    m_options.paths = {golden};
    EXPECT_EQ(Export(m_options).status, footprint::eGood);
    const footprint::CLibraryTalk talk;
    for (const std::string& document : GoldenDocuments(true)) {
        SCOPED_TRACE(document);
        CDeviceFootprint footprint;
        std::string error;
        ASSERT_TRUE(footprint::LoadFootprint(document, footprint, error)) << error;
        std::string serials = "id:";
        std::size_t parts = 0;
        for (const CHardware& board : footprint.m_hardwareData.m_hardwareList) {
            std::string serial;
            if (!board.m_sn.IsEmpty()) {
                board.m_sn.Get(serial);
            }
            serials += serial + ",";
            parts += board.m_programmableParts.size();
        }
        const std::string device = " JOIN devices USING (device_key) JOIN files USING (file_key)"
                                   " WHERE parent_device_key IS NULL AND path='" +
                                   document + "'";
        EXPECT_THAT(Ask("SELECT 'id:' || coalesce(group_concat(coalesce(s, '') || ',', ''), '') FROM (SELECT "
                        "boards.serial_number AS s FROM boards" +
                        device + " ORDER BY board_key)"),
                    testing::ElementsAre(serials));
        EXPECT_THAT(Ask("SELECT count(*) FROM programmable_parts" + device),
                    testing::ElementsAre(std::to_string(parts)));
    }
    ExpectSound();
}

TEST_F(ToolExportTest, DamagedFilesAreListedAndSkipped)
{
    WriteFleet(3);
    WriteFile(m_fleet + "/cut.xml", Footprint(4).substr(0, 700));
    WriteFile(m_fleet + "/empty.xml", "");
    WriteFile(m_fleet + "/blank.xml", "\n\n\n");
    fs::create_symlink("nowhere", m_fleet + "/broken.xml");
    ASSERT_EQ(mkfifo((m_fleet + "/pipe.xml").c_str(), 0600), 0);
    fs::create_directories(m_fleet + "/folder.xml");
    WriteFile(m_fleet + "/folder.xml/5.xml", Footprint(5));
    WriteFile(m_fleet + "/deviceFootprintLink.xml", "no footprint");
    WriteFile(m_fleet + "/notes.txt", "no footprint");
    for (int run = 0; run < 2; ++run) { // the second one has nothing to load, and the same to tell
        const CExported exported = Export(m_options);
        EXPECT_EQ(exported.status, footprint::eFindings);
        EXPECT_EQ(exported.data, "");
        for (const std::string name : {"cut", "empty", "blank", "broken", "pipe"}) {
            EXPECT_THAT(exported.messages, HasSubstr("/" + name + ".xml: "));
        }
        EXPECT_THAT(exported.messages, HasSubstr(run == 0 ? "9 files: 9 read, 0 unchanged, 0 dropped; 5 damaged"
                                                          : "9 files: 0 read, 9 unchanged, 0 dropped; 5 damaged"));
        EXPECT_THAT(Ask("SELECT count(*), count(error) FROM files"), testing::ElementsAre("9|5"));
        EXPECT_THAT(Ask("SELECT count(*) FROM damaged WHERE error = 'is empty'"), testing::ElementsAre("1"));
        EXPECT_THAT(Ask("SELECT count(*) FROM devices"), testing::ElementsAre("4"));
    }
    ExpectSound();
}

TEST_F(ToolExportTest, WrongChecksumsAreDamageIfAskedFor)
{
    WriteFleet(2);
    std::string text = Footprint(7);
    text.replace(text.find("1102.3456"), 4, "9999");
    WriteFile(m_fleet + "/7.xml", text);
    EXPECT_EQ(Export(m_options).status, footprint::eGood);
    m_options.verify = true;
    m_options.output = m_folder / "verified.sqlite";
    EXPECT_EQ(Export(m_options).status, footprint::eFindings);
    EXPECT_THAT(Ask("SELECT path, error FROM damaged"), testing::ElementsAre(m_fleet + "/7.xml|the checksum is wrong"));
}

TEST_F(ToolExportTest, WhatCanNotWorkChangesNothing)
{
    WriteFleet(1);
    const std::string file = m_fleet + "/0.xml";
    const std::string text = ReadFile(file);
    const std::string foreign = m_folder / "foreign.sqlite";
    CSqlite(foreign, CSqlite::eReadWrite).Run("CREATE TABLE notes(text)");
    const std::string bytes = ReadFile(foreign);
    const auto failure = [&](const std::string& path, const std::string& format, const std::string& output) {
        CExportOptions options = m_options;
        options.paths = {path};
        options.format = format;
        options.output = output;
        try {
            Export(options);
        } catch (const std::exception& exception) {
            return std::string(exception.what());
        }
        return std::string("no failure");
    };
    EXPECT_THAT(failure(m_fleet + "/missing", "sqlite", m_options.output), HasSubstr("no such file"));
    EXPECT_FALSE(fs::exists(m_options.output));
    EXPECT_THAT(failure(m_fleet, "sqlite", file), HasSubstr("not a database"));
    EXPECT_THAT(failure(m_fleet, "sqlite", foreign), HasSubstr("not one of an export"));
    EXPECT_THAT(failure(m_fleet, "sqlite", m_folder / "missing/fleet.sqlite"), HasSubstr("fleet.sqlite"));
    EXPECT_THAT(failure(m_fleet, "csv", file), HasSubstr("0.xml"));
    EXPECT_THAT(failure(m_fleet, "csv", ""), HasSubstr("-o OUT"));
    EXPECT_EQ(ReadFile(file), text);
    EXPECT_EQ(ReadFile(foreign), bytes);

    Export(m_options);
    CSqlite other(m_options.output, CSqlite::eReadWrite);
    other.Run("BEGIN EXCLUSIVE");
    EXPECT_THAT(failure(m_fleet, "sqlite", m_options.output), HasSubstr("in use"));
}

TEST_F(ToolExportTest, RerunLoadsOnlyWhatChanged)
{
    WriteFleet(20);
    EXPECT_THAT(Export(m_options).messages, HasSubstr("20 files: 20 read, 0 unchanged, 0 dropped; 0 damaged"));
    EXPECT_THAT(Export(m_options).messages, HasSubstr("20 files: 0 read, 20 unchanged, 0 dropped; 0 damaged"));
    const std::string bytes = ReadFile(m_options.output);
    Export(m_options);
    EXPECT_EQ(ReadFile(m_options.output), bytes);

    fs::remove(m_fleet + "/3.xml");
    Write(4, [](CDeviceFootprint& footprint) { footprint.m_hardwareData.m_hardwareList.clear(); });
    // Of the same size, and its time set back: it is seen all the same.
    const auto time = fs::last_write_time(m_fleet + "/5.xml");
    Write(5, [](CDeviceFootprint& footprint) { footprint.m_deviceData.m_deviceId = "1101.2345.02-999999-ab"; });
    fs::last_write_time(m_fleet + "/5.xml", time);
    Write(30);
    WriteFile(m_fleet + "/6.xml", "");
    EXPECT_THAT(Export(m_options).messages, HasSubstr("20 files: 4 read, 16 unchanged, 1 dropped; 1 damaged"));
    EXPECT_THAT(Ask("SELECT count(*) FROM boards"), testing::ElementsAre("180"));
    ExpectSound();

    CExportOptions fresh = m_options;
    fresh.output = m_folder / "fresh.sqlite";
    Export(fresh);
    EXPECT_EQ(Content(m_options.output), Content(fresh.output));
}

TEST_F(ToolExportTest, PathsAreExportedOnceHoweverTheyAreNamed)
{
    WriteFleet(3);
    fs::create_directory_symlink("..", m_fleet + "/circle");
    m_options.paths = {m_fleet + "/1.xml", m_fleet, m_fleet + "/./", m_fleet + "/2.xml", m_fleet + "/../fleet/0.xml"};
    EXPECT_THAT(Export(m_options).messages, HasSubstr("3 files: 3 read"));
    m_options.paths = {fs::relative(m_fleet).string()};
    EXPECT_THAT(Export(m_options).messages, HasSubstr("3 files: 0 read, 3 unchanged"));
}

/// Runs an export in a process of its own, which @p load may end.
int ExportElsewhere(CExportOptions options, const footprint::TExportLoader& load)
{
    options.load = load;
    options.commitInterval = std::chrono::milliseconds(0);
    const pid_t process = fork();
    if (process == 0) {
        _exit(Export(options).status);
    }
    int status = 0;
    waitpid(process, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

TEST_F(ToolExportTest, InterruptedExportsGoOn)
{
    WriteFleet(200);
    CExportOptions whole = m_options;
    whole.output = m_folder / "whole.sqlite";
    Export(whole);
    for (const int signal : {SIGKILL, SIGINT, SIGTERM}) {
        SCOPED_TRACE(signal);
        fs::remove(m_options.output);
        m_options.jobs = 1;
        int loaded = 0; // counts in the process that loads
        EXPECT_EQ(ExportElsewhere(m_options,
                                  [&](const auto& file, auto& document, auto& error) {
                                      if (++loaded == 120) {
                                          kill(getppid(), signal);
                                          pause();
                                      }
                                      return footprint::LoadFootprint(file, document, error);
                                  }),
                  signal);
        const CExported again = Export(m_options);
        std::istringstream words(again.messages);
        int files = 0;
        int read = 0;
        std::string word;
        words >> files >> word >> read;
        EXPECT_EQ(files, 200);
        EXPECT_LT(read, 195) << "nothing was kept of what had been loaded";
        EXPECT_GT(read, 79);
        EXPECT_EQ(Content(m_options.output), Content(whole.output));
        ExpectSound();
    }
}

TEST_F(ToolExportTest, ProcessesThatEndLoseNothing)
{
    WriteFleet(60);
    CExportOptions whole = m_options;
    whole.output = m_folder / "whole.sqlite";
    Export(whole);
    // The first process to reach the file is ended, as by somebody else.
    const std::string mark = m_folder / "ended";
    m_options.load = [&](const auto& file, auto& document, auto& error) {
        if (fs::path(file).filename() == "33.xml" && !fs::exists(mark)) {
            WriteFile(mark, "");
            raise(SIGKILL);
        }
        return footprint::LoadFootprint(file, document, error);
    };
    EXPECT_THAT(Export(m_options).messages, HasSubstr("60 files: 60 read, 0 unchanged, 0 dropped; 0 damaged"));
    EXPECT_TRUE(fs::exists(mark));
    EXPECT_EQ(Content(m_options.output), Content(whole.output));
}

TEST_F(ToolExportTest, FilesThatEndOrStopTheProcessAreListed)
{
    WriteFleet(60);
    m_options.timeout = std::chrono::milliseconds(500);
    m_options.load = [&](const auto& file, auto& document, auto& error) {
        const std::string name = fs::path(file).filename();
        if (name == "10.xml" || name == "11.xml") {
            raise(SIGKILL);
        }
        if (name == "20.xml") {
            pause();
        }
        if (name == "30.xml") {
            throw std::runtime_error("no reason");
        }
        return footprint::LoadFootprint(file, document, error);
    };
    const CExported exported = Export(m_options);
    EXPECT_EQ(exported.status, footprint::eFindings);
    EXPECT_THAT(Ask("SELECT substr(path, -6), error FROM damaged ORDER BY path"),
                testing::ElementsAre("10.xml|loading it ends the process: signal 9",
                                     "11.xml|loading it ends the process: signal 9", "20.xml|loading it takes too long",
                                     "30.xml|no reason"));
    EXPECT_THAT(Ask("SELECT count(*) FROM devices"), testing::ElementsAre("56"));
    ExpectSound();
}

/// Texts as nobody wants them.
const std::vector<std::wstring> hostileTexts = {L"'); DROP TABLE boards; --",
                                                L"=HYPERLINK(\"http://x\")",
                                                L"+1",
                                                L"-1",
                                                L"@SUM(A1)",
                                                L"'quoted",
                                                L"a\"b,c;d",
                                                L"two\nlines\r\tand\x1b[31mred",
                                                L"<script>alert(1)</script>",
                                                L"\u00e4\u20ac",
                                                std::wstring(1, wchar_t{0x1F600}) + L"\u202e",
                                                std::wstring(300, L'x'),
                                                std::wstring(70000, wchar_t{0x20AC})};

/// A text in UTF-8, as an attribute of any table gets it.
std::string InUtf8(const std::wstring& text)
{
    footprint::CExportRows rows;
    rows.Begin(footprint::eProducts);
    rows.Text(text);
    const footprint::CExportTable table{
        "", {{"key", footprint::EExportColumn::eOwnKey, ""}, {"text", footprint::EExportColumn::eText, ""}}};
    footprint::CExportRowReader reader(table);
    const footprint::CExportBuffer& bytes = rows.Tables()[footprint::eProducts];
    reader.Start({bytes.data(), bytes.size()});
    EXPECT_TRUE(reader.Next());
    std::string utf8(reader.Text(1).begin, reader.Text(1).size);
    EXPECT_FALSE(reader.Next());
    return utf8;
}

TEST_F(ToolExportTest, ValuesThatAreNoCharactersBecomeReplacements)
{
    EXPECT_EQ(InUtf8(std::wstring{L'a', wchar_t{0}, L'b'}), "a\xEF\xBF\xBD"
                                                            "b");
    for (const std::uint32_t value : {0xD800U, 0xDFFFU, 0x110000U, 0xFFFFFFE4U}) {
        EXPECT_EQ(InUtf8(std::wstring(1, static_cast<wchar_t>(value))), "\xEF\xBF\xBD") << value;
    }
    EXPECT_EQ(InUtf8(L"\u007f\u0080\u07ff\u0800\uffff"), "\x7f\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF");
    EXPECT_EQ(InUtf8({wchar_t{0x10000}, wchar_t{0x10FFFF}}), "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

class ToolExportHostileTest : public ToolExportTest
{
protected:
    ToolExportHostileTest()
    {
        Write(1, [](CDeviceFootprint& footprint) {
            for (const std::wstring& text : hostileTexts) {
                footprint.m_hardwareData.m_productList.CreateEntry().m_partName = text;
            }
        });
        for (const std::wstring& text : hostileTexts) {
            m_texts.push_back(InUtf8(text));
        }
    }

    std::vector<std::string> m_texts;
};

TEST_F(ToolExportHostileTest, DatabaseAndJsonHoldTheTextsAsTheyAre)
{
    Export(m_options);
    EXPECT_EQ(Ask("SELECT part_name FROM products ORDER BY product_key"), m_texts);
    EXPECT_THAT(Ask("SELECT count(*) FROM boards"), testing::ElementsAre("10"));

    m_options.format = "ndjson";
    m_options.output = m_folder / "json";
    Export(m_options);
    const std::string lines = ReadFile(m_options.output + "/products.ndjson");
    EXPECT_TRUE(std::all_of(lines.begin(), lines.end(), [](char character) {
        return character == '\n' || (character >= 0x20 && character < 0x7F);
    }));
    std::istringstream stream(lines);
    std::string line;
    std::vector<std::string> texts;
    while (std::getline(stream, line)) {
        texts.push_back(footprint::TJson::parse(line)["part_name"].get<std::string>());
    }
    EXPECT_EQ(texts, m_texts);
}

/// Reads CSV as RFC 4180 has it.
std::vector<std::vector<std::string>> ParseCsv(const std::string& text)
{
    std::vector<std::vector<std::string>> records(1, {""});
    bool isQuoted = false;
    for (std::size_t place = 0; place < text.size(); ++place) {
        const char character = text[place];
        std::string& field = records.back().back();
        if (isQuoted) {
            if (character != '"') {
                field += character;
            } else if (text[place + 1] == '"') {
                field += text[++place];
            } else {
                isQuoted = false;
            }
        } else if (character == '"') {
            isQuoted = true;
        } else if (character == ',') {
            records.back().emplace_back();
        } else if (character == '\n') {
            records.push_back({""});
        } else if (character != '\r') {
            field += character;
        }
    }
    records.pop_back();
    return records;
}

TEST_F(ToolExportHostileTest, CsvHoldsNoFormulasAndOneLineForEachRecord)
{
    m_options.format = "csv";
    m_options.output = m_folder / "csv";
    Export(m_options);
    const std::string text = ReadFile(m_options.output + "/products.csv");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), static_cast<std::ptrdiff_t>(m_texts.size() + 1));
    const std::vector<std::vector<std::string>> records = ParseCsv(text);
    ASSERT_EQ(records.size(), m_texts.size() + 1);
    const auto& names = records.front();
    const auto column = static_cast<std::size_t>(std::find(names.begin(), names.end(), "part_name") - names.begin());
    for (std::size_t index = 0; index < m_texts.size(); ++index) {
        ASSERT_EQ(records[index + 1].size(), names.size());
        std::string value = records[index + 1][column];
        EXPECT_THAT(std::string("=+-@"), Not(HasSubstr(value.substr(0, 1))));
        if (value[0] == '\'') {
            value.erase(0, 1); // how to get the value back
        }
        if (index == 7) {
            EXPECT_EQ(value, "two\u240alines\u240d\u2409and\u241b[31mred");
        } else {
            EXPECT_EQ(value, m_texts[index]);
        }
    }
}

TEST_F(ToolExportTest, HostileFileNamesStayNames)
{
    const std::string name = "a'b\"c\x1b[31m\n=1\xff.xml";
    WriteFile(m_fleet + "/" + name, Footprint(1));
    WriteFile(m_fleet + "/\x1b[2J.xml", "");
    const CExported exported = Export(m_options);
    EXPECT_THAT(exported.messages, Not(HasSubstr("\x1b")));
    EXPECT_THAT(Ask("SELECT path FROM files WHERE error IS NULL"), testing::ElementsAre(m_fleet + "/" + name));
    EXPECT_THAT(Export(m_options).messages, HasSubstr("2 files: 0 read, 2 unchanged"));
    for (const std::string format : {"csv", "ndjson"}) {
        m_options.format = format;
        m_options.output = m_folder / format;
        Export(m_options);
        EXPECT_THAT(ReadFile(m_options.output + "/files." + format), Not(HasSubstr("\x1b")));
    }
}

TEST_F(ToolExportTest, LongNamesDoNotStopIt)
{
    std::string folder = m_fleet;
    while (folder.size() < 3500) {
        folder += "/" + std::string(250, 'f');
    }
    fs::create_directories(folder);
    // Large enough for the process that loads to wait with its answers.
    const std::string footprint = Footprint(1, [](CDeviceFootprint& document) {
        document.m_hardwareData.m_hardwareList.CreateEntry().m_name = std::wstring(40000, L'n');
    });
    for (unsigned number = 0; number < 300; ++number) {
        WriteFile(folder + "/" + Name(number), footprint);
    }
    m_options.jobs = 1;
    EXPECT_THAT(Export(m_options).messages, HasSubstr("300 files: 300 read"));
    EXPECT_THAT(Export(m_options).messages, HasSubstr("300 files: 0 read, 300 unchanged"));
}

TEST_F(ToolExportTest, TextFormsAreRenewedOnlyWhenSomethingChanged)
{
    WriteFleet(5);
    for (const std::string format : {"csv", "ndjson"}) {
        SCOPED_TRACE(format);
        m_options.format = format;
        m_options.output = m_folder / "out";
        const std::string boards = m_options.output + "/boards." + format;
        const auto place = [&] {
            struct stat status = {};
            EXPECT_EQ(stat(boards.c_str(), &status), 0);
            return status.st_mtim.tv_nsec + 1000000000LL * status.st_mtim.tv_sec;
        };
        EXPECT_EQ(Export(m_options).status, footprint::eGood);
        const auto first = place();
        const std::string text = ReadFile(boards);
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), format == "csv" ? 51 : 50);
        Export(m_options);
        EXPECT_EQ(place(), first);

        Write(2, [](CDeviceFootprint& footprint) { footprint.m_hardwareData.m_hardwareList.clear(); });
        EXPECT_THAT(Export(m_options).messages, HasSubstr("5 files: 1 read, 4 unchanged"));
        const std::string changed = ReadFile(boards);
        EXPECT_EQ(std::count(changed.begin(), changed.end(), '\n'), format == "csv" ? 41 : 40);
        fs::remove(boards);
        Export(m_options);
        EXPECT_EQ(ReadFile(boards), changed);
        Write(2);
    }
    EXPECT_THAT(FolderEntries(m_options.output), Not(testing::Contains(HasSubstr(".new"))));
}

TEST_F(ToolExportTest, RedactedOutputKeepsEqualValuesEqualAndNothingElse)
{
    const auto person = [](CDeviceFootprint& footprint) {
        footprint.m_deviceData.m_maintenanceData.m_maintenances.CreateEntry().m_responsiblePerson = L"J. M\u00fcller";
        footprint.m_hardwareData.m_hardwareList.front().m_sn = "777777";
        footprint.m_hardwareData.m_hardwareList.front().m_bPartIdentification.m_sn = "777777";
    };
    Write(1, person);
    Write(2, person);
    WriteFile(m_fleet + "/777777.xml", "");
    m_options.redact = true;
    EXPECT_EQ(Export(m_options).status, footprint::eFindings);
    const std::string bytes = ReadFile(m_options.output);
    for (const std::string secret : {"777777", "100001", "M\u00fcller", "/fleet/"}) {
        EXPECT_THAT(bytes, Not(HasSubstr(secret)));
    }
    EXPECT_THAT(bytes, HasSubstr("1102.3456.02"));
    EXPECT_THAT(Ask("SELECT count(DISTINCT b_serial_number), count(b_serial_number), count(DISTINCT serial_number),"
                    " sum(serial_number = b_serial_number) FROM boards"),
                testing::ElementsAre("1|2|19|2"));
    EXPECT_THAT(Ask("SELECT count(*), count(DISTINCT responsible_person) FROM maintenances"),
                testing::ElementsAre("2|1"));
    const auto former = Ask("SELECT DISTINCT responsible_person FROM maintenances");
    EXPECT_THAT(Export(m_options).messages, HasSubstr("3 files: 3 read"));
    EXPECT_NE(Ask("SELECT DISTINCT responsible_person FROM maintenances"), former);
    EXPECT_THAT(FolderEntries(m_folder.Path()), testing::ElementsAre("fleet", "fleet.sqlite"));
}

TEST_F(ToolExportTest, ProgramWritesPureDataAndEndsWithItsStatus)
{
    WriteFleet(3);
    const CRun good = RunTool({"export", m_fleet, "--format", "ndjson"});
    EXPECT_EQ(good.status, 0);
    std::istringstream stream(good.data);
    std::string line;
    std::map<std::string, int> counts;
    while (std::getline(stream, line)) {
        ++counts[footprint::TJson::parse(line)["table"].get<std::string>()];
    }
    EXPECT_EQ(counts,
              (std::map<std::string, int>{{"files", 3}, {"devices", 3}, {"boards", 30}, {"programmable_parts", 30}}));
    EXPECT_EQ(good.messages, "3 files: 3 read, 0 unchanged, 0 dropped; 0 damaged\n");

    WriteFile(m_fleet + "/empty.xml", "");
    const CRun damaged = RunTool({"export", m_fleet, "-o", m_options.output});
    EXPECT_EQ(damaged.status, 1);
    EXPECT_EQ(damaged.data, "");
    EXPECT_THAT(damaged.messages, HasSubstr("empty.xml: is empty\n"));
    EXPECT_EQ(RunTool({"export", m_folder / "missing", "-o", m_options.output}).status, 2);
    EXPECT_EQ(RunTool({"export", m_fleet}).status, 2);
    EXPECT_EQ(RunTool({"export", m_fleet, "--format", "xml", "-o", m_options.output}).status, 2);
    EXPECT_THAT(RunToolOnTerminal({"export", m_fleet, "-o", m_folder / "new.sqlite"}).data, HasSubstr("of 4 files"));
}

TEST_F(ToolExportTest, LargeFilesAreLoaded)
{
    Write(1, [](CDeviceFootprint& footprint) {
        for (int place = 0; place < 100000; ++place) {
            CHardware& board = footprint.m_hardwareData.m_hardwareList.CreateEntry();
            board.m_partNumber = "1102.3456.02";
            board.m_sn = static_cast<long>(place);
            board.m_name = std::string(100, 'n');
        }
    });
    EXPECT_GT(fs::file_size(m_fleet + "/1.xml"), 16000000U);
    EXPECT_EQ(Export(m_options).status, footprint::eGood);
    EXPECT_THAT(Ask("SELECT count(*) FROM boards"), testing::ElementsAre("100010"));
    ExpectSound();
}

/// The most memory that the tool had, in kilobytes.
long PeakMemory(const std::vector<std::string>& arguments)
{
    const pid_t process = fork();
    if (process == 0) {
        // The sanitizers keep freed memory for a while.
        setenv("ASAN_OPTIONS", "quarantine_size_mb=1", 1);
        std::vector<std::string> words{ToolPath()};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> pointers;
        pointers.reserve(words.size() + 1);
        for (std::string& word : words) {
            pointers.push_back(word.data());
        }
        pointers.push_back(nullptr);
        execv(pointers[0], pointers.data());
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    wait4(process, &status, 0, &usage);
    EXPECT_EQ(status, 0);
    return usage.ru_maxrss;
}

TEST_F(ToolExportTest, MemoryDoesNotGrowWithTheFleet)
{
    const std::string few = m_folder / "few";
    fs::create_directories(few);
    for (unsigned number = 0; number < 3000; ++number) {
        // Enough rows for what the database keeps in memory to be full both times.
        const std::string text = Footprint(number, [](CDeviceFootprint& footprint) {
            for (int place = 0; place < 200; ++place) {
                footprint.m_hardwareData.m_productList.CreateEntry().m_partName = std::string(200, 'p');
            }
        });
        WriteFile((number < 300 ? few : m_fleet) + "/" + Name(number), text);
    }
    const long small = PeakMemory({"export", few, "-o", m_folder / "few.sqlite"});
    const long large = PeakMemory({"export", m_fleet, "-o", m_options.output});
    EXPECT_LT(large, small + small / 5) << "of 300 files: " << small << ", of 2700: " << large;
    EXPECT_LT(PeakMemory({"export", m_fleet, "-o", m_options.output}), small + small / 5);
}

} // namespace
