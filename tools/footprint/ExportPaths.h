#ifndef NYXCONFIG_EXPORTPATHS_H
#define NYXCONFIG_EXPORTPATHS_H

#include "ExportWorkers.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace footprint
{

/// Finds the footprint files below paths, one after the other: as FootprintFiles() does, but without holding their
/// names. The files come in the order in which the folders give them.
class CExportPaths
{
public:
    /// @throw std::filesystem::filesystem_error if a path is missing.
    explicit CExportPaths(const std::vector<std::string>& paths);

    /// Goes to the next file, or to a place that can not be read.
    /// @param task its absolute path, size and time.
    /// @param error why it can not be read; empty if it can.
    /// @return false if there is none.
    bool Next(CExportTask& task, std::string& error);

    /// Whether a folder could not be read, so that nobody knows what is in it.
    bool IsIncomplete() const { return m_isIncomplete; }

    /// How many files there are, without a look at each.
    static std::uint64_t Count(const std::vector<std::string>& paths);

private:
    bool NextPath(std::filesystem::path& path, std::error_code& error);
    void Enter(const std::filesystem::path& folder, std::error_code& error);

    std::vector<std::filesystem::path> m_paths;
    std::size_t m_next = 0;
    std::vector<std::filesystem::directory_iterator> m_folders; // those that are open, each in the one before
    bool m_isIncomplete = false;
};

} // namespace footprint

#endif
