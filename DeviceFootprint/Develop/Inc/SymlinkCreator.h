#ifndef NYXCONFIG_SYMLINKCREATOR_H
#define NYXCONFIG_SYMLINKCREATOR_H

#include <string>

#include "nyxconfig_export.h"

namespace KvDeviceFootprint
{

/**
 * Makes a symbolic link.
 * @param linkPath where the link is made; nothing may be there yet.
 * @param target what the link holds; it need not exist.
 * @return true on success.
 */
NYXCONFIG_EXPORT bool createSymlinkLinux(const std::string& linkPath, const std::string& target);

/**
 * Removes a symbolic link, not what it leads to. A plain file of this name is removed too.
 * @return true on success.
 */
NYXCONFIG_EXPORT bool deleteSymlinkLinux(const std::string& linkPath);

/// Symbolic links on the system that the library is built for.
class NYXCONFIG_EXPORT SymlinkCreator
{
public:
    /// See createSymlinkLinux.
    static bool CreateSymlink(const std::string& linkPath, const std::string& target);
    /// See deleteSymlinkLinux.
    static bool DeleteSymlink(const std::string& linkPath);
};

} // namespace KvDeviceFootprint

#endif
