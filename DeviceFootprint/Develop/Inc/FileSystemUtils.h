#ifndef NYXCONFIG_FILESYSTEMUTILS_H
#define NYXCONFIG_FILESYSTEMUTILS_H

#include <string>
#include <vector>

#include <dirent.h>

#include "nyxconfig_export.h"

namespace KvDeviceFootprint
{

/// Separates the parts of a path on this system.
constexpr char DFP_DIR_NATIVE_SEPERATOR_CHAR = '/';
/// Separates the parts of a path on other systems; converted on the way in.
constexpr char DFP_DIR_NONSYSTEM_SEPERATOR_CHAR = '\\';

/**
 * Paths, folders and listings. A bool result means success; no operation sets an error text or throws on a failure of
 * the file system.
 *
 * The listings pass their folder and mask to the callbacks through statics: only one may run at a time in the process,
 * and none may be started from within a callback. All other operations may run on any thread.
 */
class NYXCONFIG_EXPORT FileSystemUtils
{
public:
    /// Callback of scandir: not 0 lets the entry pass.
    using EntrySelector = int (*)(const struct dirent* entry);
    /// Callback of scandir: below 0, 0 or above 0 if the first entry is to stand before, beside or behind the second.
    using EntryComparison = int (*)(const struct dirent** first, const struct dirent** second);

    FileSystemUtils() = delete;

    /// @return true if there is anything of this name, a plain file included.
    static bool CheckDirExists(const std::string& path);
    /// @return true if there is anything of this name.
    static bool CheckFileExists(const std::string& path);

    /**
     * Makes a folder that only its owner may use; its parent must exist.
     * @return true also if there is anything of this name already, a plain file included.
     */
    static bool CreateDir(const std::string& path);
    /// Removes an empty folder.
    static bool DeleteDir(const std::string& path);

    /// Makes an empty file; an existing one is emptied.
    static bool CreateEmptyFile(const std::string& path);
    /// Removes a file or a link.
    static bool DeleteFileAt(const std::string& path);

    /// @return true if the path does not begin with "/", as an empty one.
    static bool IsRelativePath(const std::string& path);

    /**
     * The absolute path free of links, "." and "..".
     * @param path must exist.
     * @param absolutePath receives the path; emptied on failure.
     */
    static bool ToAbsolutePath(const std::string& path, std::string& absolutePath);

    /// Makes each backslash a "/".
    static void ConvertSeparators(std::string& path);

    /**
     * Makes the path end in "/"; an empty path becomes "/".
     * @param convert true converts the separators first; with false a closing backslash does not count as one.
     */
    static void AppendSeparator(std::string& path, bool convert);

    /**
     * Joins two paths with one separator between them, all separators converted. Closing separators of the first are
     * cut, leading ones of the second stay.
     * @param first if empty, the second alone is the result.
     * @param second if empty, the first is the result, closing separators and all.
     * @param combined receives the path.
     * @return always true.
     */
    static bool CombinePaths(const std::string& first, const std::string& second, std::string& combined);
    /// The same as a value.
    static std::string CombinePaths(const std::string& first, const std::string& second);

    /**
     * Lists a folder in the order of alphasort, which is that of the process's locale.
     * @param folder must exist.
     * @param mask shell pattern; its wildcards match a leading dot too. An empty one matches nothing.
     * @param names receives the pure names without "." and ".."; empty on failure.
     * @return false if the folder can not be read.
     */
    static bool GetDirectoryContent(const std::string& folder, const std::string& mask,
                                    std::vector<std::string>& names);
    /// The same with the newest first, see FileAgeSort.
    static bool GetSortedDirectoryContent(const std::string& folder, const std::string& mask,
                                          std::vector<std::string>& names);
    /**
     * The same with any selection and order.
     * @param mask for SearchMaskMatcher, if that is the selector.
     * @param selector null lets all entries pass.
     * @param comparison null leaves the order open.
     */
    static bool GetSortedDirectoryContentNonWin(const std::string& folder, const std::string& mask,
                                                EntrySelector selector, EntryComparison comparison,
                                                std::vector<std::string>& names);

    /**
     * The newest entry of a folder.
     * @param latest receives its pure name; emptied on failure.
     * @return false if the folder can not be read or nothing in it matches.
     */
    static bool FindLatestInDir(const std::string& folder, const std::string& mask, std::string& latest);

    /**
     * Removes what is in a folder, not the folder itself, and says so on the standard output. Stops at the first entry
     * that can not be removed. Sockets and block devices are taken for folders and can not be removed.
     * @param recursive true removes subfolders with their content, false only empty ones.
     * @return true also if the folder can not be opened, as a missing one.
     */
    static bool DeleteDirectoryContents(const std::string& folder, bool recursive);

    /// Selector: passes the names that match the mask of the listing under way, or all if the mask is malformed.
    static int SearchMaskMatcher(const struct dirent* entry);
    /**
     * Comparison by time of modification in whole seconds, the newer entry first; entries of the same second, or of
     * which one can not be looked at, count as equal. Names are taken to be in the folder of the listing under way.
     */
    static int FileAgeSort(const struct dirent** first, const struct dirent** second);

private:
    static std::string s_path;       ///< Folder of the listing under way, "." before the first.
    static std::string s_searchMask; ///< Mask of the listing under way.
};

} // namespace KvDeviceFootprint

#endif
