#include "SymlinkCreator.h"

#include <unistd.h>

namespace KvDeviceFootprint
{

bool createSymlinkLinux(const std::string& linkPath, const std::string& target)
{
    return symlink(target.c_str(), linkPath.c_str()) == 0;
}

bool deleteSymlinkLinux(const std::string& linkPath)
{
    return unlink(linkPath.c_str()) == 0;
}

bool SymlinkCreator::CreateSymlink(const std::string& linkPath, const std::string& target)
{
    return createSymlinkLinux(linkPath, target);
}

bool SymlinkCreator::DeleteSymlink(const std::string& linkPath)
{
    return deleteSymlinkLinux(linkPath);
}

} // namespace KvDeviceFootprint
