#include "ExportText.h"

#include "ExportTables.h"
#include "Sqlite.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <future>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <csv.h>
#include <fcntl.h>
#include <unistd.h>

namespace footprint
{

namespace
{

/// A file that is written anew.
class COutputFile
{
public:
    explicit COutputFile(const std::string& name)
        : m_name(name), m_descriptor(open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666))
    {
        if (m_descriptor < 0) {
            Throw();
        }
    }
    COutputFile(const COutputFile&) = delete;
    COutputFile& operator=(const COutputFile&) = delete;
    ~COutputFile()
    {
        if (m_descriptor >= 0) {
            close(m_descriptor);
        }
    }

    void Write(const std::string& text)
    {
        std::size_t done = 0;
        while (done < text.size()) {
            const ssize_t count = write(m_descriptor, text.data() + done, text.size() - done);
            if (count < 0 && errno != EINTR) {
                Throw();
            }
            done += count < 0 ? 0 : static_cast<std::size_t>(count);
        }
    }

    void Sync()
    {
        if (fsync(m_descriptor) != 0) {
            Throw();
        }
    }

private:
    [[noreturn]] void Throw() const { throw std::system_error(errno, std::generic_category(), m_name); }

    std::string m_name;
    int m_descriptor;
};

std::unique_ptr<CExportRecord> MakeRecord(EExportText form)
{
    if (form == EExportText::eCsv) {
        return std::make_unique<CCsvRecord>();
    }
    return std::make_unique<CJsonRecord>();
}

std::vector<std::string> TableNames()
{
    std::vector<std::string> names{"files"};
    for (const CExportTable& table : ExportTables()) {
        names.push_back(table.name);
    }
    return names;
}

std::string FileName(const std::string& folder, const std::string& table, EExportText form)
{
    return folder + "/" + table + "." + ExportTextName(form);
}

void WriteTable(CSqlite& database, const std::string& table, const std::string& fileName, EExportText form)
{
    constexpr std::size_t enough = 1 << 20;
    COutputFile file(fileName);
    const std::unique_ptr<CExportRecord> record = MakeRecord(form);
    // The names are those of the program, never of a footprint. The first column is the key.
    CStatement rows(database, "SELECT * FROM " + table + " ORDER BY 1");
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(rows.Columns()));
    for (int column = 0; column < rows.Columns(); ++column) {
        names.push_back(rows.ColumnName(column));
    }
    std::string lines;
    if (form == EExportText::eCsv) {
        for (const std::string& name : names) {
            record->Text(name, name);
        }
        record->AppendTo(lines);
    }
    while (rows.Step()) {
        for (int column = 0; column < rows.Columns(); ++column) {
            const std::string& name = names[static_cast<std::size_t>(column)];
            if (rows.IsNull(column)) {
                record->Null(name);
            } else if (rows.IsNumber(column)) {
                record->Number(name, rows.Number(column));
            } else {
                record->Text(name, rows.Text(column));
            }
        }
        record->AppendTo(lines);
        if (lines.size() > enough) {
            file.Write(lines);
            lines.clear();
        }
    }
    file.Write(lines);
    file.Sync();
}

} // namespace

std::string ExportTextName(EExportText form)
{
    return form == EExportText::eCsv ? "csv" : "ndjson";
}

void CJsonRecord::AppendTo(std::string& lines)
{
    lines += m_json.dump(-1, ' ', true, TJson::error_handler_t::replace);
    lines += '\n';
    m_json = TJson::object();
}

std::string& CCsvRecord::Next()
{
    if (!m_isFirst) {
        m_line += ',';
    }
    m_isFirst = false;
    return m_line;
}

void CCsvRecord::Null(const std::string& /*name*/)
{
    Next();
}

void CCsvRecord::Number(const std::string& /*name*/, std::int64_t number)
{
    Next() += std::to_string(number);
}

void CCsvRecord::Text(const std::string& /*name*/, const std::string& text)
{
    constexpr const char* formulas = "=+-@'";
    std::string harmless;
    if (text.find_first_of(formulas) == 0) {
        harmless += '\'';
    }
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || byte == 0x7F) {
            // U+2400 and following, in UTF-8; that of DEL is U+2421.
            harmless += "\xE2\x90";
            harmless += static_cast<char>(byte == 0x7F ? 0xA1 : 0x80 + byte);
        } else {
            harmless += character;
        }
    }
    std::string quoted(csv_write(nullptr, 0, harmless.data(), harmless.size()), '\0');
    csv_write(quoted.data(), quoted.size(), harmless.data(), harmless.size());
    Next() += quoted;
}

void CCsvRecord::AppendTo(std::string& lines)
{
    lines += m_line;
    lines += "\r\n";
    m_line.clear();
    m_isFirst = true;
}

void WriteExportText(const std::string& database, const std::string& folder, EExportText form, std::size_t threads)
{
    const std::vector<std::string> tables = TableNames();
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        CSqlite connection(database, CSqlite::eReadOnly);
        for (std::size_t index = next++; index < tables.size(); index = next++) {
            WriteTable(connection, tables[index], FileName(folder, tables[index], form) + ".new", form);
        }
    };
    std::vector<std::future<void>> workers;
    for (std::size_t thread = 0; thread < threads; ++thread) {
        workers.push_back(std::async(std::launch::async, work));
    }
    for (std::future<void>& worker : workers) {
        worker.get();
    }
    for (const std::string& table : tables) {
        const std::string name = FileName(folder, table, form);
        std::filesystem::rename(name + ".new", name);
    }
}

bool HasExportText(const std::string& folder, EExportText form)
{
    for (const std::string& table : TableNames()) {
        if (!std::filesystem::exists(FileName(folder, table, form))) {
            return false;
        }
    }
    return true;
}

void WriteExportStream(const CExportAnswer& answer, std::int64_t file, const std::string& path, std::ostream& output)
{
    std::string lines;
    CJsonRecord record;
    record.Text("table", "files");
    record.Number("file_key", file);
    record.Text("path", path);
    record.Number("size", static_cast<std::int64_t>(answer.task.size));
    record.Number("modified", answer.task.modified);
    record.Number("changed", answer.task.changed);
    if (answer.error.empty()) {
        record.Null("error");
    } else {
        record.Text("error", answer.error);
    }
    record.AppendTo(lines);
    for (std::size_t number = 0; number < eExportTableCount; ++number) {
        const CExportTable& table = ExportTables()[number];
        CExportRowReader reader(table);
        reader.Start(answer.tables[number]);
        while (reader.Next()) {
            record.Text("table", table.name);
            for (std::size_t column = 0; column < table.columns.size(); ++column) {
                const CExportColumn& meant = table.columns[column];
                if (meant.kind == EExportColumn::eText) {
                    const CBytes text = reader.Text(column);
                    if (text.begin == nullptr) {
                        record.Null(meant.name);
                    } else {
                        record.Text(meant.name, std::string(text.begin, text.size));
                    }
                } else if (meant.kind == EExportColumn::eFile) {
                    record.Number(meant.name, file);
                } else if (meant.kind == EExportColumn::eNumber) {
                    record.Number(meant.name, reader.Number(column));
                } else if (reader.Number(column) == 0) {
                    record.Null(meant.name);
                } else {
                    record.Number(meant.name, ExportKey(file, reader.Number(column)));
                }
            }
            record.AppendTo(lines);
        }
    }
    output << lines;
}

} // namespace footprint
