#include "FileSystemUtils.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iostream>
#include <memory>

#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

namespace KvDeviceFootprint
{

namespace
{

/// The entries that scandir found, freed with this object.
class DirectoryEntries
{
public:
    DirectoryEntries(const std::string& folder, FileSystemUtils::EntrySelector selector,
                     FileSystemUtils::EntryComparison comparison)
        : m_entries(nullptr), m_count(scandir(folder.c_str(), &m_entries, selector, comparison))
    {
    }
    ~DirectoryEntries()
    {
        std::for_each(begin(), end(), std::free);
        std::free(m_entries);
    }
    DirectoryEntries(const DirectoryEntries&) = delete;
    DirectoryEntries& operator=(const DirectoryEntries&) = delete;

    bool Failed() const { return m_count < 0; }
    struct dirent** begin() const { return m_entries; }
    struct dirent** end() const { return m_entries + std::max(m_count, 0); }

private:
    struct dirent** m_entries;
    int m_count;
};

struct CloseDirectory
{
    void operator()(DIR* directory) const { closedir(directory); }
};

bool IsSelfOrParent(const char* name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

/// @return true if the path could be looked at.
bool GetModificationTime(std::string folder, const char* name, std::time_t& seconds)
{
    FileSystemUtils::AppendSeparator(folder, true);
    struct stat status = {};
    if (stat((folder + name).c_str(), &status) != 0) {
        return false;
    }
    seconds = status.st_mtime;
    return true;
}

bool RemoveFolder(const std::string& path, bool recursive)
{
    if (recursive && !FileSystemUtils::DeleteDirectoryContents(path, true)) {
        return false;
    }
    return rmdir(path.c_str()) == 0;
}

} // namespace

std::string FileSystemUtils::s_path = ".";
std::string FileSystemUtils::s_searchMask;

bool FileSystemUtils::CheckDirExists(const std::string& path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0;
}

bool FileSystemUtils::CheckFileExists(const std::string& path)
{
    return access(path.c_str(), F_OK) == 0;
}

bool FileSystemUtils::CreateDir(const std::string& path)
{
    return CheckDirExists(path) || mkdir(path.c_str(), S_IRWXU) == 0;
}

bool FileSystemUtils::DeleteDir(const std::string& path)
{
    return rmdir(path.c_str()) == 0;
}

bool FileSystemUtils::CreateEmptyFile(const std::string& path)
{
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        return false;
    }
    std::fclose(file);
    return true;
}

bool FileSystemUtils::DeleteFileAt(const std::string& path)
{
    return unlink(path.c_str()) == 0;
}

bool FileSystemUtils::IsRelativePath(const std::string& path)
{
    return path.empty() || path.front() != DFP_DIR_NATIVE_SEPERATOR_CHAR;
}

bool FileSystemUtils::ToAbsolutePath(const std::string& path, std::string& absolutePath)
{
    char buffer[PATH_MAX] = "";
    const bool found = realpath(path.c_str(), buffer) != nullptr;
    // On failure the buffer may hold the part of the path that could be resolved.
    absolutePath = found ? buffer : "";
    return found;
}

void FileSystemUtils::ConvertSeparators(std::string& path)
{
    std::replace(path.begin(), path.end(), DFP_DIR_NONSYSTEM_SEPERATOR_CHAR, DFP_DIR_NATIVE_SEPERATOR_CHAR);
}

void FileSystemUtils::AppendSeparator(std::string& path, bool convert)
{
    if (convert) {
        ConvertSeparators(path);
    }
    if (path.empty() || path.back() != DFP_DIR_NATIVE_SEPERATOR_CHAR) {
        path += DFP_DIR_NATIVE_SEPERATOR_CHAR;
    }
}

bool FileSystemUtils::CombinePaths(const std::string& first, const std::string& second, std::string& combined)
{
    // The caller's output may be one of the inputs.
    std::string path = first;
    ConvertSeparators(path);
    if (!second.empty()) {
        while (path.size() > 1 && path.back() == DFP_DIR_NATIVE_SEPERATOR_CHAR) {
            path.pop_back();
        }
        // A separator behind an empty first path would lead into the root folder.
        if (!path.empty()) {
            AppendSeparator(path, false);
        }
        path += second;
        ConvertSeparators(path);
    }
    combined = path;
    return true;
}

std::string FileSystemUtils::CombinePaths(const std::string& first, const std::string& second)
{
    std::string combined;
    return CombinePaths(first, second, combined) ? combined : std::string();
}

bool FileSystemUtils::GetDirectoryContent(const std::string& folder, const std::string& mask,
                                          std::vector<std::string>& names)
{
    return GetSortedDirectoryContentNonWin(folder, mask, SearchMaskMatcher, alphasort, names);
}

bool FileSystemUtils::GetSortedDirectoryContent(const std::string& folder, const std::string& mask,
                                                std::vector<std::string>& names)
{
    return GetSortedDirectoryContentNonWin(folder, mask, SearchMaskMatcher, FileAgeSort, names);
}

bool FileSystemUtils::GetSortedDirectoryContentNonWin(const std::string& folder, const std::string& mask,
                                                      EntrySelector selector, EntryComparison comparison,
                                                      std::vector<std::string>& names)
{
    // The names are emptied last: the folder or the mask may be one of them.
    s_path = folder;
    s_searchMask = mask;
    names.clear();
    const DirectoryEntries entries(s_path, selector, comparison);
    if (entries.Failed()) {
        return false;
    }
    for (const struct dirent* const entry : entries) {
        if (!IsSelfOrParent(entry->d_name)) {
            names.emplace_back(entry->d_name);
        }
    }
    return true;
}

bool FileSystemUtils::FindLatestInDir(const std::string& folder, const std::string& mask, std::string& latest)
{
    std::vector<std::string> names;
    const bool found = GetSortedDirectoryContent(folder, mask, names) && !names.empty();
    latest = found ? names.front() : std::string();
    return found;
}

bool FileSystemUtils::DeleteDirectoryContents(const std::string& folder, bool recursive)
{
    std::string folderPath = folder;
    AppendSeparator(folderPath, true);
    const std::unique_ptr<DIR, CloseDirectory> directory(opendir(folderPath.c_str()));
    if (!directory) {
        return true;
    }
    while (const struct dirent* const entry = readdir(directory.get())) {
        if (IsSelfOrParent(entry->d_name)) {
            continue;
        }
        const std::string path = folderPath + entry->d_name;
        std::cout << "Try to remove file " << path << " ...\n";
        // Only one bit is looked at, which sockets and block devices have too: those are taken for folders. A link to
        // a folder does not have it.
        const bool isFolder = (entry->d_type & DT_DIR) != 0;
        if (!(isFolder ? RemoveFolder(path, recursive) : DeleteFileAt(path))) {
            return false;
        }
        std::cout << "success!\n";
    }
    return true;
}

int FileSystemUtils::SearchMaskMatcher(const struct dirent* entry)
{
    return fnmatch(s_searchMask.c_str(), entry->d_name, 0) != FNM_NOMATCH ? 1 : 0;
}

int FileSystemUtils::FileAgeSort(const struct dirent** first, const struct dirent** second)
{
    std::time_t firstTime = 0;
    std::time_t secondTime = 0;
    if (!GetModificationTime(s_path, (*first)->d_name, firstTime) ||
        !GetModificationTime(s_path, (*second)->d_name, secondTime) || firstTime == secondTime) {
        return 0;
    }
    return std::difftime(firstTime, secondTime) > 0 ? -1 : 1;
}

} // namespace KvDeviceFootprint
