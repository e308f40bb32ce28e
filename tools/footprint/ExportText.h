#ifndef NYXCONFIG_EXPORTTEXT_H
#define NYXCONFIG_EXPORTTEXT_H

#include "ExportWorkers.h"
#include "Json.h"

#include <cstdint>
#include <iosfwd>
#include <string>

namespace footprint
{

enum class EExportText
{
    eNdjson, ///< a JSON object on each line
    eCsv     ///< as in RFC 4180, with a line of names
};

/// "ndjson" or "csv": the end of the files' names, too.
std::string ExportTextName(EExportText form);

/// A record on its way into a text form.
class CExportRecord
{
public:
    virtual ~CExportRecord() = default;

    virtual void Null(const std::string& name) = 0;
    virtual void Number(const std::string& name, std::int64_t number) = 0;
    virtual void Text(const std::string& name, const std::string& text) = 0;
    /// Appends the record with its line end, and begins another one.
    virtual void AppendTo(std::string& lines) = 0;

protected:
    CExportRecord() = default;
    CExportRecord(const CExportRecord&) = default;
    CExportRecord& operator=(const CExportRecord&) = default;
};

/// Values as they are, in pure ASCII: everything else is escaped. What is not UTF-8 becomes U+FFFD.
class CJsonRecord : public CExportRecord
{
public:
    void Null(const std::string& name) override { m_json[name] = nullptr; }
    void Number(const std::string& name, std::int64_t number) override { m_json[name] = number; }
    void Text(const std::string& name, const std::string& text) override { m_json[name] = text; }
    void AppendTo(std::string& lines) override;

private:
    TJson m_json = TJson::object();
};

/**
 * Values that a spreadsheet does not take for formulas and that stay on one line: those that begin with = + - @ or '
 * get a ' in front, control characters become the pictures of themselves (a line feed U+240A). Numbers are as they
 * are, null is nothing between the commas.
 */
class CCsvRecord : public CExportRecord
{
public:
    void Null(const std::string& name) override;
    void Number(const std::string& name, std::int64_t number) override;
    void Text(const std::string& name, const std::string& text) override;
    void AppendTo(std::string& lines) override;

private:
    std::string& Next();

    std::string m_line;
    bool m_isFirst = true;
};

/// Writes each table of an export's database into a file of @p folder, "boards.csv" and so on, in several threads. A
/// file is replaced when the new one is complete.
/// @throw std::exception if that is not possible.
void WriteExportText(const std::string& database, const std::string& folder, EExportText form, std::size_t threads);

/// Whether the files are there that WriteExportText() makes.
bool HasExportText(const std::string& folder, EExportText form);

/// Writes the records of a file to a stream as they come, each with the name of its table.
/// @param path to show.
void WriteExportStream(const CExportAnswer& answer, std::int64_t file, const std::string& path, std::ostream& output);

} // namespace footprint

#endif
