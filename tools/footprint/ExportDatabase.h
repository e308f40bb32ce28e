#ifndef NYXCONFIG_EXPORTDATABASE_H
#define NYXCONFIG_EXPORTDATABASE_H

#include "ExportIncoming.h"
#include "ExportTables.h"
#include "ExportWorkers.h"
#include "Sqlite.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace footprint
{

/**
 * The database that an export makes or brings up to date.
 *
 * What was stored is committed every second, and a file with all its rows at once: after an interruption the
 * database holds whole files, and the next export goes on with the others. While it is open, nobody else can use it.
 */
class CExportDatabase
{
public:
    /// How safe against a failure of the machine. A program that ends at any time never does harm.
    enum class ESafety
    {
        eDurable,
        eDisposable ///< nobody will miss the file
    };

    /// @throw std::runtime_error if the file is not an export's database, or of another form, or in use.
    explicit CExportDatabase(const std::string& file, ESafety safety = ESafety::eDurable);
    CExportDatabase(const CExportDatabase&) = delete;
    CExportDatabase& operator=(const CExportDatabase&) = delete;
    ~CExportDatabase();

    /// What the database knows of a file.
    struct CKnown
    {
        std::int64_t key;
        bool isUnchanged;  ///< size and time are those of the file as it was read
        std::string error; ///< why it was not loaded; empty if it was
    };
    std::optional<CKnown> Find(const CExportTask& task);
    /// Notes that the file is still there. False if that is known, also because it was stored just now.
    bool Keep(std::int64_t key);

    /// Stores what has become of files, in place of what was stored of them before.
    void Store(const std::vector<CExportAnswer>& answers);

    /// Ends the export: with @p dropOthers, drops the files that were neither kept nor stored.
    /// @return how many were dropped.
    std::uint64_t Finish(bool dropOthers);

    /** @name Text forms of the tables, such as "csv"
     *  The database remembers which of them show its present content. */
    ///@{
    bool IsWritten(const std::string& form);
    /// @return a token for EndWriting().
    std::int64_t BeginWriting(const std::string& form);
    /// Has no effect if the content was changed since then.
    void EndWriting(const std::string& form, std::int64_t token);
    ///@}

    /// After how long what was stored is committed: what an interruption can cost.
    std::chrono::milliseconds m_commitInterval{1000};
    /// What to store in place of a file's path.
    std::function<std::string(const std::string& path)> m_shownPath;

private:
    void Prepare();
    void Create();
    void Change();
    void Commit();
    void DropRows(std::int64_t file);
    std::int64_t StoreFile(const CExportAnswer& answer);

    CSqlite m_database;
    std::vector<std::unique_ptr<CIncomingTable>> m_incoming;
    std::unique_ptr<CStatement> m_find;
    std::unique_ptr<CStatement> m_keep;
    std::unique_ptr<CStatement> m_insertFile;
    std::unique_ptr<CStatement> m_updateFile;
    std::vector<CStatement> m_insertRows;
    std::vector<CStatement> m_dropRows;
    std::int64_t m_lastFormerKey = 0;
    std::int64_t m_lastKey = 0;
    bool m_isChanging = false;
    std::chrono::steady_clock::time_point m_begun;
};

} // namespace footprint

#endif
