#ifndef NYXCONFIG_WITHOUTROOT_H
#define NYXCONFIG_WITHOUTROOT_H

#include <gtest/gtest.h>

#include <unistd.h>

namespace NyxTest
{

/// While it lives, a process of root has the rights of nobody, so that the modes of files count.
class WithoutRoot
{
public:
    WithoutRoot() : m_wasRoot(geteuid() == 0)
    {
        if (m_wasRoot) {
            EXPECT_EQ(seteuid(nobody), 0);
        }
    }
    WithoutRoot(const WithoutRoot&) = delete;
    WithoutRoot& operator=(const WithoutRoot&) = delete;
    ~WithoutRoot()
    {
        if (m_wasRoot) {
            EXPECT_EQ(seteuid(0), 0);
        }
    }

private:
    static constexpr uid_t nobody = 65534;

    bool m_wasRoot;
};

} // namespace NyxTest

#endif
