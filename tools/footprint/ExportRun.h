#ifndef NYXCONFIG_EXPORTRUN_H
#define NYXCONFIG_EXPORTRUN_H

#include "Commands.h"
#include "ExportWorkers.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace footprint
{

/// What an export is to do.
struct CExportOptions
{
    std::vector<std::string> paths;
    std::string format = "sqlite"; ///< or "ndjson" or "csv"
    std::string output;            ///< a file for sqlite, otherwise a folder; empty: NDJSON to standard output
    std::size_t jobs = 0;          ///< processes that load files; 0: one for each core
    std::chrono::milliseconds timeout{60000};       ///< for one file
    std::chrono::milliseconds commitInterval{1000}; ///< what an interruption can cost
    bool redact = false;
    bool verify = false; ///< takes a file with a wrong checksum for damaged
    TExportLoader load;  ///< empty: LoadFootprint()
};

/// Exports the footprints below the paths.
/// @throw std::exception if that is not possible.
ExitStatus RunExport(const CExportOptions& options, const COutputs& outputs);

} // namespace footprint

#endif
