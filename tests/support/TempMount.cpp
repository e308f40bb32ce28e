#include "TempMount.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/mount.h>

namespace NyxTest
{

bool MountsAllowed()
{
    static const bool allowed = [] {
        if (std::getenv("NYX_PRIVATE_LINK_BASE") == nullptr) {
            return false;
        }
        const TempFolder folder;
        if (mount("tmpfs", folder.Path().c_str(), "tmpfs", 0, "size=4k") != 0) {
            return false;
        }
        return umount(folder.Path().c_str()) == 0;
    }();
    return allowed;
}

TempMount::TempMount(const std::string& folder, const std::string& options) : m_folder(folder)
{
    EXPECT_EQ(mount("tmpfs", folder.c_str(), "tmpfs", 0, options.c_str()), 0) << folder << ": " << std::strerror(errno);
}

TempMount::~TempMount()
{
    EXPECT_EQ(umount2(m_folder.c_str(), MNT_DETACH), 0) << m_folder << ": " << std::strerror(errno);
}

void TempMount::MakeReadOnly()
{
    EXPECT_EQ(mount(nullptr, m_folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0)
        << m_folder << ": " << std::strerror(errno);
}

} // namespace NyxTest
