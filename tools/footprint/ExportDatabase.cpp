#include "ExportDatabase.h"

#include <stdexcept>

#include <sqlite3.h>

namespace footprint
{

namespace
{

/// In the head of the file: "fleet" on a telephone's keys, and the form of the tables.
constexpr std::int64_t applicationId = 35338;
constexpr std::int64_t tablesForm = 1;

/// Few, for an index on a large table takes as long as its rows. Made once, at the end of the first export.
constexpr const char* indices = "CREATE INDEX IF NOT EXISTS devices_by_id ON devices(device_id);"
                                "CREATE INDEX IF NOT EXISTS devices_by_file ON devices(file_key);";

std::string Declaration(const CExportTable& table)
{
    std::string text;
    for (const CExportColumn& column : table.columns) {
        text += (text.empty() ? "CREATE TABLE " + table.name + "(" : ", ") + column.name;
        text += column.kind == EExportColumn::eText ? " TEXT" : " INTEGER";
        if (column.kind == EExportColumn::eOwnKey) {
            text += " PRIMARY KEY";
        }
        if (!column.references.empty()) {
            text += " REFERENCES " + column.references;
        }
    }
    return text + ");";
}

} // namespace

CExportDatabase::CExportDatabase(const std::string& file, ESafety safety) : m_database(file, CSqlite::eReadWrite)
{
    try {
        m_database.Run("PRAGMA locking_mode=EXCLUSIVE");
        // A database of somebody else is left as it is.
        const bool isNew = m_database.Number("SELECT count(*) FROM sqlite_master") == 0;
        if (!isNew && m_database.Number("PRAGMA application_id") != applicationId) {
            throw std::runtime_error(file + ": a database, but not one of an export");
        }
        if (!isNew && m_database.Number("PRAGMA user_version") != tablesForm) {
            throw std::runtime_error(file +
                                     ": made by another version of this program; delete it or take another name");
        }
        m_database.Run("PRAGMA page_size=16384;"
                       "PRAGMA cache_size=-8192;"
                       "PRAGMA temp_store=FILE;"
                       "PRAGMA foreign_keys=OFF;");
        m_database.Run(safety == ESafety::eDurable ? "PRAGMA journal_mode=DELETE; PRAGMA synchronous=NORMAL;"
                                                   : "PRAGMA journal_mode=MEMORY; PRAGMA synchronous=OFF;");
        m_database.Run("BEGIN IMMEDIATE");
        if (isNew) {
            Create();
        }
        m_database.Run("COMMIT");
    } catch (const CSqliteError& error) {
        if (error.IsBusy()) {
            throw std::runtime_error(file + ": in use by another program");
        }
        throw;
    }
    Prepare();
}

CExportDatabase::~CExportDatabase() = default;

void CExportDatabase::Create()
{
    std::string sql = "PRAGMA application_id=" + std::to_string(applicationId) + ";" +
                      "PRAGMA user_version=" + std::to_string(tablesForm) + ";" +
                      "CREATE TABLE files(file_key INTEGER PRIMARY KEY, path TEXT NOT NULL UNIQUE, size INTEGER,"
                      " modified INTEGER, changed INTEGER, error TEXT);"
                      "CREATE VIEW damaged AS SELECT file_key, path, error FROM files WHERE error IS NOT NULL;"
                      "CREATE VIEW latest_devices AS SELECT * FROM (SELECT *, row_number() OVER (PARTITION BY"
                      " coalesce(device_id, device_key) ORDER BY creation_date DESC, device_key DESC) AS place"
                      " FROM devices) WHERE place = 1;"
                      "CREATE TABLE written(form TEXT PRIMARY KEY, token INTEGER, done INTEGER) WITHOUT ROWID;";
    for (const CExportTable& table : ExportTables()) {
        sql += Declaration(table);
    }
    m_database.Run(sql);
}

void CExportDatabase::Prepare()
{
    m_database.Run("CREATE TEMP TABLE kept(file_key INTEGER PRIMARY KEY)");
    m_find = std::make_unique<CStatement>(m_database,
                                          "SELECT file_key, size, modified, changed, error FROM files WHERE path=?");
    m_keep = std::make_unique<CStatement>(m_database, "INSERT OR IGNORE INTO temp.kept VALUES(?)");
    m_insertFile = std::make_unique<CStatement>(m_database, "INSERT INTO files VALUES(?,?,?,?,?,?)");
    m_updateFile = std::make_unique<CStatement>(
        m_database, "UPDATE files SET size=?, modified=?, changed=?, error=? WHERE file_key=?");
    for (const CExportTable& table : ExportTables()) {
        m_incoming.push_back(std::make_unique<CIncomingTable>(m_database, table));
        // Whatever goes wrong ends the export, and with it the transaction. Knowing that, SQLite keeps no copy of the
        // pages to undo just this statement, which would be more to write than the rows themselves.
        m_insertRows.emplace_back(m_database, "INSERT OR ROLLBACK INTO " + table.name + " SELECT * FROM " +
                                                  CIncomingTable::Name(table));
        m_dropRows.emplace_back(m_database, "DELETE FROM " + table.name + " WHERE " + table.columns.front().name +
                                                " BETWEEN ? AND ?");
    }
    m_lastKey = m_lastFormerKey = m_database.Number("SELECT max(file_key) FROM files");
}

std::optional<CExportDatabase::CKnown> CExportDatabase::Find(const CExportTask& task)
{
    if (!m_find->Bind(1, m_shownPath ? m_shownPath(task.path) : task.path).Step()) {
        return std::nullopt;
    }
    CKnown known{m_find->Number(0),
                 m_find->Number(1) == static_cast<std::int64_t>(task.size) && m_find->Number(2) == task.modified &&
                     m_find->Number(3) == task.changed,
                 m_find->Text(4)};
    m_find->Reset();
    return known;
}

bool CExportDatabase::Keep(std::int64_t key)
{
    if (key > m_lastFormerKey) {
        return false;
    }
    m_keep->Bind(1, key).Run();
    return sqlite3_changes(m_database.Handle()) != 0;
}

void CExportDatabase::Store(const std::vector<CExportAnswer>& answers)
{
    Change();
    for (const std::unique_ptr<CIncomingTable>& incoming : m_incoming) {
        incoming->m_files.clear();
    }
    for (const CExportAnswer& answer : answers) {
        const std::int64_t file = StoreFile(answer);
        for (std::size_t table = 0; table < eExportTableCount; ++table) {
            if (answer.tables[table].size != 0) {
                m_incoming[table]->m_files.push_back({file, answer.task.formerKey == 0, answer.tables[table]});
            }
        }
    }
    for (std::size_t table = 0; table < eExportTableCount; ++table) {
        if (!m_incoming[table]->m_files.empty()) {
            m_insertRows[table].Run();
            if (sqlite3_last_insert_rowid(m_database.Handle()) != m_incoming[table]->m_lastKey) {
                throw std::runtime_error("the database has counted " + ExportTables()[table].name + " in another way");
            }
        }
    }
    if (std::chrono::steady_clock::now() - m_begun > m_commitInterval) {
        Commit();
    }
}

std::int64_t CExportDatabase::StoreFile(const CExportAnswer& answer)
{
    const CExportTask& task = answer.task;
    const auto size = static_cast<std::int64_t>(task.size);
    CStatement& statement = task.formerKey == 0 ? *m_insertFile : *m_updateFile;
    const int first = task.formerKey == 0 ? 3 : 1;
    statement.Bind(first, size).Bind(first + 1, task.modified).Bind(first + 2, task.changed);
    if (answer.error.empty()) {
        statement.BindNull(first + 3);
    } else {
        statement.Bind(first + 3, answer.error);
    }
    if (task.formerKey != 0) {
        DropRows(task.formerKey);
        statement.Bind(5, task.formerKey).Run();
        Keep(task.formerKey);
        return task.formerKey;
    }
    const std::string path = m_shownPath ? m_shownPath(task.path) : task.path;
    statement.Bind(1, ++m_lastKey).Bind(2, path).Run();
    return m_lastKey;
}

void CExportDatabase::DropRows(std::int64_t file)
{
    for (CStatement& statement : m_dropRows) {
        statement.Bind(1, ExportKey(file, 0)).Bind(2, ExportKey(file, lastExportRow)).Run();
    }
}

std::uint64_t CExportDatabase::Finish(bool dropOthers)
{
    std::uint64_t dropped = 0;
    if (dropOthers) {
        CStatement others(m_database, "SELECT file_key FROM files WHERE file_key <= ?"
                                      " AND file_key NOT IN (SELECT file_key FROM temp.kept)");
        CStatement drop(m_database, "DELETE FROM files WHERE file_key=?");
        others.Bind(1, m_lastFormerKey);
        std::vector<std::int64_t> keys;
        // Some at a time: however many there are, they take no memory.
        do {
            keys.clear();
            while (keys.size() < 1000 && others.Step()) {
                keys.push_back(others.Number(0));
            }
            others.Reset();
            for (const std::int64_t key : keys) {
                Change();
                DropRows(key);
                drop.Bind(1, key).Run();
            }
            dropped += keys.size();
        } while (!keys.empty());
    }
    if (m_isChanging) {
        Commit();
    }
    m_database.Run(indices);
    return dropped;
}

void CExportDatabase::Change()
{
    if (!m_isChanging) {
        m_database.Run("BEGIN IMMEDIATE; DELETE FROM written");
        m_isChanging = true;
        m_begun = std::chrono::steady_clock::now();
    }
}

void CExportDatabase::Commit()
{
    m_database.Run("COMMIT");
    m_isChanging = false;
}

bool CExportDatabase::IsWritten(const std::string& form)
{
    CStatement statement(m_database, "SELECT 1 FROM written WHERE form=? AND done");
    return statement.Bind(1, form).Step();
}

std::int64_t CExportDatabase::BeginWriting(const std::string& form)
{
    const std::int64_t token = m_database.Number("SELECT random()");
    CStatement(m_database, "INSERT OR REPLACE INTO written VALUES(?, ?, 0)").Bind(1, form).Bind(2, token).Run();
    return token;
}

void CExportDatabase::EndWriting(const std::string& form, std::int64_t token)
{
    CStatement(m_database, "UPDATE written SET done=1 WHERE form=? AND token=?").Bind(1, form).Bind(2, token).Run();
}

} // namespace footprint
