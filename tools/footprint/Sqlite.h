#ifndef NYXCONFIG_SQLITE_H
#define NYXCONFIG_SQLITE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace footprint
{

/// A failure of the database, in its words.
class CSqliteError : public std::runtime_error
{
public:
    CSqliteError(sqlite3* database, const std::string& what);

    bool IsBusy() const { return m_isBusy; }

private:
    bool m_isBusy;
};

/// A database in a file. Every failure throws CSqliteError.
class CSqlite
{
public:
    enum EAccess
    {
        eReadOnly,
        eReadWrite, ///< makes the file if there is none
    };

    CSqlite(const std::string& file, EAccess access);

    /// Runs statements that give nothing.
    void Run(const std::string& sql);
    /// The first value of the first row, as a number; 0 without a row.
    std::int64_t Number(const std::string& sql);
    sqlite3* Handle() const { return m_handle.get(); }

private:
    struct CClose
    {
        void operator()(sqlite3* handle) const;
    };
    std::unique_ptr<sqlite3, CClose> m_handle;
};

/// A prepared statement. Values are bound, never part of its text.
class CStatement
{
public:
    /// @param database must outlive the statement.
    CStatement(const CSqlite& database, const std::string& sql);

    /// Parameters count from 1.
    CStatement& Bind(int parameter, std::int64_t number);
    /// Text if it is UTF-8, a blob otherwise, as file names can be. The bytes must live until the statement has run.
    CStatement& Bind(int parameter, const std::string& text);
    CStatement& BindNull(int parameter);

    /// Goes to the next row; false if there is none, and then the statement can be run again.
    bool Step();
    /// Runs it to its end.
    void Run();
    /// Makes it ready to be run again.
    void Reset();

    int Columns() const;
    std::string ColumnName(int column) const;
    bool IsNull(int column) const;
    bool IsNumber(int column) const;
    std::int64_t Number(int column) const;
    /// Empty for null.
    std::string Text(int column) const;

private:
    struct CFinalize
    {
        void operator()(sqlite3_stmt* statement) const;
    };
    sqlite3* m_database;
    std::unique_ptr<sqlite3_stmt, CFinalize> m_statement;
};

} // namespace footprint

#endif
