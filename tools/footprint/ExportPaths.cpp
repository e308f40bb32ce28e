#include "ExportPaths.h"

#include "DeviceFootprint.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <sys/stat.h>

namespace footprint
{

namespace fs = std::filesystem;

namespace
{

bool IsFootprintName(const fs::path& path)
{
    return path.extension() == ".xml" &&
           path.filename() != KvDeviceFootprint::CDeviceFootprint::DeviceFootprintLinkFileName;
}

std::int64_t Nanoseconds(const timespec& time)
{
    return std::int64_t{time.tv_sec} * 1000000000 + time.tv_nsec;
}

/// Whether a path is another one or lies below it.
bool IsBelow(const fs::path& path, const fs::path& other)
{
    return std::mismatch(other.begin(), other.end(), path.begin(), path.end()).first == other.end();
}

} // namespace

CExportPaths::CExportPaths(const std::vector<std::string>& paths)
{
    for (const std::string& path : paths) {
        if (!fs::exists(path)) {
            throw fs::filesystem_error("no such file or folder", path,
                                       std::make_error_code(std::errc::no_such_file_or_directory));
        }
        fs::path absolute = fs::absolute(path).lexically_normal();
        if (!absolute.has_filename()) {
            absolute = absolute.parent_path();
        }
        // What is named twice is exported once.
        const auto covers = [&](const fs::path& other) { return IsBelow(absolute, other); };
        if (std::none_of(m_paths.begin(), m_paths.end(), covers)) {
            const auto isCovered = [&](const fs::path& other) { return IsBelow(other, absolute); };
            m_paths.erase(std::remove_if(m_paths.begin(), m_paths.end(), isCovered), m_paths.end());
            m_paths.push_back(absolute);
        }
    }
}

bool CExportPaths::Next(CExportTask& task, std::string& error)
{
    fs::path path;
    std::error_code failure;
    if (!NextPath(path, failure)) {
        return false;
    }
    task = {};
    task.path = path.native();
    struct stat status = {};
    if (!failure && stat(path.c_str(), &status) != 0) {
        failure.assign(errno, std::generic_category());
    }
    error = failure ? failure.message() : "";
    if (!failure && !S_ISREG(status.st_mode)) {
        error = "not a regular file";
    }
    task.size = static_cast<std::uint64_t>(status.st_size);
    task.modified = Nanoseconds(status.st_mtim);
    task.changed = Nanoseconds(status.st_ctim);
    return true;
}

bool CExportPaths::NextPath(fs::path& path, std::error_code& error)
{
    for (;;) {
        bool isGiven = false;
        if (m_folders.empty()) {
            if (m_next == m_paths.size()) {
                return false;
            }
            path = m_paths[m_next++];
            isGiven = true;
        } else if (m_folders.back() == fs::directory_iterator()) {
            m_folders.pop_back();
            continue;
        } else {
            path = m_folders.back()->path();
        }
        std::error_code ignored;
        // Links to folders are not followed, for they can lead in a circle; one that was named is meant.
        const bool isFolder = isGiven ? fs::is_directory(path, ignored)
                                      : m_folders.back()->symlink_status(ignored).type() == fs::file_type::directory;
        const bool isFile = isGiven || (IsFootprintName(path) && !m_folders.back()->is_directory(ignored));
        if (!isGiven) {
            m_folders.back().increment(error);
            if (error) {
                m_isIncomplete = true;
                path = path.parent_path();
                m_folders.pop_back();
                return true;
            }
        }
        if (isFolder) {
            Enter(path, error);
            if (error) {
                return true;
            }
        } else if (isFile) {
            return true;
        }
    }
}

void CExportPaths::Enter(const fs::path& folder, std::error_code& error)
{
    fs::directory_iterator iterator(folder, error);
    if (error) {
        m_isIncomplete = true;
        return;
    }
    m_folders.push_back(std::move(iterator));
}

std::uint64_t CExportPaths::Count(const std::vector<std::string>& paths)
{
    CExportPaths files(paths);
    fs::path path;
    std::error_code error;
    std::uint64_t count = 0;
    while (files.NextPath(path, error)) {
        error.clear();
        ++count;
    }
    return count;
}

} // namespace footprint
