#ifndef NYXCONFIG_WORKINGFOLDER_H
#define NYXCONFIG_WORKINGFOLDER_H

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <unistd.h>

namespace NyxTest
{

/// The process's working folder while it lives.
class WorkingFolder
{
public:
    explicit WorkingFolder(const std::string& folder)
    {
        char former[PATH_MAX] = "";
        EXPECT_NE(getcwd(former, sizeof(former)), nullptr);
        m_former = former;
        EXPECT_EQ(chdir(folder.c_str()), 0) << folder;
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;
    ~WorkingFolder() { EXPECT_EQ(chdir(m_former.c_str()), 0) << m_former; }

private:
    std::string m_former;
};

} // namespace NyxTest

#endif
