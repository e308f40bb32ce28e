#include "Sqlite.h"

#include <cstring>

#include <sqlite3.h>

namespace footprint
{

namespace
{

/// Whether bytes are UTF-8 in its shortest form.
bool IsUtf8(const std::string& text)
{
    for (std::size_t place = 0; place < text.size();) {
        const auto first = static_cast<unsigned char>(text[place]);
        const std::size_t length = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
        if (length == 0 || first > 0xF4 || length > text.size() - place) {
            return false;
        }
        std::uint32_t character = length == 1 ? first : first & (0xFFU >> (length + 1));
        for (std::size_t next = 1; next < length; ++next) {
            const auto byte = static_cast<unsigned char>(text[place + next]);
            if ((byte & 0xC0U) != 0x80U) {
                return false;
            }
            character = (character << 6) | (byte & 0x3FU);
        }
        const bool isTooLong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
        if (isTooLong || character > 0x10FFFF || (character >= 0xD800 && character < 0xE000)) {
            return false;
        }
        place += length;
    }
    return true;
}

} // namespace

CSqliteError::CSqliteError(sqlite3* database, const std::string& what)
    : std::runtime_error(what + ": " + sqlite3_errmsg(database)),
      m_isBusy(sqlite3_errcode(database) == SQLITE_BUSY || sqlite3_errcode(database) == SQLITE_LOCKED)
{
}

void CSqlite::CClose::operator()(sqlite3* handle) const
{
    sqlite3_close_v2(handle);
}

CSqlite::CSqlite(const std::string& file, EAccess access)
{
    sqlite3* handle = nullptr;
    const int flags =
        SQLITE_OPEN_NOMUTEX | (access == eReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    const int result = sqlite3_open_v2(file.c_str(), &handle, flags, nullptr);
    m_handle.reset(handle);
    if (result != SQLITE_OK) {
        throw CSqliteError(handle, file);
    }
    // What a hostile file could make a database do is not wanted here.
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
}

void CSqlite::Run(const std::string& sql)
{
    if (sqlite3_exec(Handle(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw CSqliteError(Handle(), sqlite3_db_filename(Handle(), "main"));
    }
}

std::int64_t CSqlite::Number(const std::string& sql)
{
    CStatement statement(*this, sql);
    return statement.Step() ? statement.Number(0) : 0;
}

void CStatement::CFinalize::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

CStatement::CStatement(const CSqlite& database, const std::string& sql) : m_database(database.Handle())
{
    sqlite3_stmt* statement = nullptr;
    const int result = sqlite3_prepare_v3(m_database, sql.c_str(), static_cast<int>(sql.size()),
                                          SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    m_statement.reset(statement);
    if (result != SQLITE_OK) {
        throw CSqliteError(m_database, sqlite3_db_filename(m_database, "main"));
    }
}

CStatement& CStatement::Bind(int parameter, std::int64_t number)
{
    sqlite3_bind_int64(m_statement.get(), parameter, number);
    return *this;
}

CStatement& CStatement::Bind(int parameter, const std::string& text)
{
    if (IsUtf8(text)) {
        sqlite3_bind_text64(m_statement.get(), parameter, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
    } else {
        sqlite3_bind_blob64(m_statement.get(), parameter, text.data(), text.size(), SQLITE_STATIC);
    }
    return *this;
}

CStatement& CStatement::BindNull(int parameter)
{
    sqlite3_bind_null(m_statement.get(), parameter);
    return *this;
}

bool CStatement::Step()
{
    const int result = sqlite3_step(m_statement.get());
    if (result == SQLITE_ROW) {
        return true;
    }
    if (result != SQLITE_DONE) {
        const CSqliteError error(m_database, sqlite3_db_filename(m_database, "main"));
        Reset();
        throw error;
    }
    Reset();
    return false;
}

void CStatement::Run()
{
    while (Step()) {
    }
}

void CStatement::Reset()
{
    sqlite3_reset(m_statement.get());
}

int CStatement::Columns() const
{
    return sqlite3_column_count(m_statement.get());
}

std::string CStatement::ColumnName(int column) const
{
    return sqlite3_column_name(m_statement.get(), column);
}

bool CStatement::IsNull(int column) const
{
    return sqlite3_column_type(m_statement.get(), column) == SQLITE_NULL;
}

bool CStatement::IsNumber(int column) const
{
    return sqlite3_column_type(m_statement.get(), column) == SQLITE_INTEGER;
}

std::int64_t CStatement::Number(int column) const
{
    return sqlite3_column_int64(m_statement.get(), column);
}

std::string CStatement::Text(int column) const
{
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(m_statement.get(), column));
    return bytes == nullptr
               ? std::string()
               : std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(m_statement.get(), column)));
}

} // namespace footprint
