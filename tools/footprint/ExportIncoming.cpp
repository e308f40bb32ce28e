#include "ExportIncoming.h"

#include <exception>
#include <memory>
#include <new>

#include <sqlite3.h>

namespace footprint
{

namespace
{

// The forms of these classes are SQLite's: it sees the base alone.

struct CTable : sqlite3_vtab
{
    explicit CTable(CIncomingTable& source) : sqlite3_vtab(), incoming(&source) {}
    CIncomingTable* incoming;
};

struct CCursor : sqlite3_vtab_cursor
{
    explicit CCursor(CIncomingTable& source) : sqlite3_vtab_cursor(), incoming(&source), reader(source.Table()) {}

    /// Goes to the next row, of the same file or of one behind it.
    void Next()
    {
        ++row;
        isFirst = false;
        while (!reader.Next()) {
            isFirst = true;
            ++file;
            if (file >= incoming->m_files.size()) {
                return;
            }
            reader.Start(incoming->m_files[file].rows);
        }
    }

    CIncomingTable* incoming;
    CExportRowReader reader;
    std::size_t file = 0;
    std::int64_t row = 0;
    bool isFirst = true; ///< of its file
};

/// SQLite's part never sees an exception.
template<class Action>
int Guarded(sqlite3_vtab* table, Action action)
{
    try {
        action();
        return SQLITE_OK;
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    } catch (const std::exception& exception) {
        table->zErrMsg = sqlite3_mprintf("%s", exception.what());
        return SQLITE_ERROR;
    }
}

int Connect(sqlite3* database, void* context, int /*count*/, const char* const* /*arguments*/, sqlite3_vtab** result,
            char** /*error*/)
{
    try {
        auto& incoming = *static_cast<CIncomingTable*>(context);
        std::string declaration;
        for (const CExportColumn& column : incoming.Table().columns) {
            declaration += (declaration.empty() ? "CREATE TABLE x(" : ", ") + column.name;
        }
        const int status = sqlite3_declare_vtab(database, (declaration + ")").c_str());
        if (status == SQLITE_OK) {
            *result = std::make_unique<CTable>(incoming).release(); // Disconnect() takes it back
        }
        return status;
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    }
}

int Disconnect(sqlite3_vtab* table)
{
    const std::unique_ptr<CTable> taken(static_cast<CTable*>(table));
    return SQLITE_OK;
}

int BestIndex(sqlite3_vtab* /*table*/, sqlite3_index_info* /*info*/)
{
    return SQLITE_OK;
}

int Open(sqlite3_vtab* table, sqlite3_vtab_cursor** result)
{
    return Guarded(table, [&] {
        *result = std::make_unique<CCursor>(*static_cast<CTable*>(table)->incoming).release(); // for Close()
    });
}

int Close(sqlite3_vtab_cursor* cursor)
{
    const std::unique_ptr<CCursor> taken(static_cast<CCursor*>(cursor));
    return SQLITE_OK;
}

int Filter(sqlite3_vtab_cursor* cursor, int /*number*/, const char* /*name*/, int /*count*/, sqlite3_value** /*values*/)
{
    auto& self = *static_cast<CCursor*>(cursor);
    return Guarded(cursor->pVtab, [&] {
        self.file = 0;
        self.row = 0;
        self.reader.Start(self.incoming->m_files.empty() ? CBytes{} : self.incoming->m_files.front().rows);
        self.Next();
        self.isFirst = true;
    });
}

int Next(sqlite3_vtab_cursor* cursor)
{
    return Guarded(cursor->pVtab, [&] { static_cast<CCursor*>(cursor)->Next(); });
}

int Eof(sqlite3_vtab_cursor* cursor)
{
    const auto& self = *static_cast<CCursor*>(cursor);
    return self.file >= self.incoming->m_files.size() ? 1 : 0;
}

int Column(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int number)
{
    const auto& self = *static_cast<CCursor*>(cursor);
    const auto column = static_cast<std::size_t>(number);
    const EExportColumn kind = self.reader.Kind(column);
    if (kind == EExportColumn::eText) {
        const CBytes text = self.reader.Text(column);
        if (text.begin != nullptr) {
            // The bytes outlive the statement, which copies them into the row that it stores.
            sqlite3_result_text(context, text.begin, static_cast<int>(text.size), SQLITE_STATIC);
        }
        return SQLITE_OK;
    }
    const CIncomingRows& rows = self.incoming->m_files[self.file];
    if (kind == EExportColumn::eFile) {
        sqlite3_result_int64(context, rows.file);
        return SQLITE_OK;
    }
    const std::uint32_t value = self.reader.Number(column);
    if (kind == EExportColumn::eNumber) {
        sqlite3_result_int64(context, value);
    } else if (kind == EExportColumn::eOwnKey) {
        self.incoming->m_lastKey = ExportKey(rows.file, value);
        // Where the next number is the right one, the database need not look for the place of the row.
        if (self.isFirst || !rows.isNew) {
            sqlite3_result_int64(context, self.incoming->m_lastKey);
        }
    } else if (value != 0) {
        sqlite3_result_int64(context, ExportKey(rows.file, value));
    }
    return SQLITE_OK;
}

int RowId(sqlite3_vtab_cursor* cursor, sqlite3_int64* result)
{
    *result = static_cast<CCursor*>(cursor)->row;
    return SQLITE_OK;
}

const sqlite3_module& Module()
{
    static const sqlite3_module module = [] {
        sqlite3_module made{};
        made.xConnect = Connect; // without xCreate it is there from the start and nobody can make another one
        made.xDisconnect = Disconnect;
        made.xBestIndex = BestIndex;
        made.xOpen = Open;
        made.xClose = Close;
        made.xFilter = Filter;
        made.xNext = Next;
        made.xEof = Eof;
        made.xColumn = Column;
        made.xRowid = RowId;
        return made;
    }();
    return module;
}

} // namespace

CIncomingTable::CIncomingTable(const CSqlite& database, const CExportTable& table) : m_table(&table)
{
    if (sqlite3_create_module(database.Handle(), Name(table).c_str(), &Module(), this) != SQLITE_OK) {
        throw CSqliteError(database.Handle(), Name(table));
    }
}

} // namespace footprint
