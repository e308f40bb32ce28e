#ifndef NYXCONFIG_EXPORTWORKERS_H
#define NYXCONFIG_EXPORTWORKERS_H

#include "DeviceFootprint.h"
#include "ExportRows.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace footprint
{

/// A file to load.
struct CExportTask
{
    std::string path;
    std::uint64_t size = 0;
    std::int64_t modified = 0;  ///< when its content was changed, nanoseconds since 1970
    std::int64_t changed = 0;   ///< when anything of it was changed: no program can set that back
    std::int64_t formerKey = 0; ///< number of the file in the former export, 0 if it was not there
    bool retried = false;       ///< whether a process has ended over it before
};

/// What became of a file.
struct CExportAnswer
{
    CExportTask task;
    std::string error;                            ///< why it was not loaded; empty if it was
    std::array<CBytes, eExportTableCount> tables; ///< its rows, valid as long as the call that gets the answer
};

/// Loads a file as LoadFootprint() does.
using TExportLoader =
    std::function<bool(const std::string& file, KvDeviceFootprint::CDeviceFootprint& document, std::string& error)>;

/**
 * Loads files in processes of its own, for the library's error word belongs to a process, and a file that makes the
 * library crash or hang must not end the export. Such a file is tried a second time in a new process, in case that the
 * first one was ended by someone else; then it is given up. One that takes too long is given up at once.
 *
 * The memory that it takes depends on the number of processes and on the largest file.
 */
class CExportWorkers
{
public:
    struct CSettings
    {
        std::size_t processes = 1;
        std::chrono::milliseconds timeout{60000}; ///< for one file
        TExportLoader load;
        TPseudonym pseudonym;
    };

    explicit CExportWorkers(const CSettings& settings);
    CExportWorkers(const CExportWorkers&) = delete;
    CExportWorkers& operator=(const CExportWorkers&) = delete;
    /// Ends the processes.
    ~CExportWorkers();

    /// Gives the next file; false if there is none.
    using TNext = std::function<bool(CExportTask& task)>;
    using TStore = std::function<void(std::vector<CExportAnswer>& answers)>;

    /// Loads all files that @p next gives, some ahead of the answers. The answers come in no particular order.
    /// @throw std::system_error if no process can be started.
    void Run(const TNext& next, const TStore& store);

private:
    class CWorker;

    bool Take(const TNext& next, CExportTask& task);
    void Feed(const TNext& next);
    void Collect(int timeout, std::vector<CExportAnswer>& answers);
    void GiveUp(CWorker& worker, std::vector<CExportAnswer>& answers);

    CSettings m_settings;
    std::vector<CWorker> m_workers;
    std::deque<CExportTask> m_again; // files of processes that ended
    bool m_more = true;
};

} // namespace footprint

#endif
