#ifndef NYXTEST_SMALLSTACK_H
#define NYXTEST_SMALLSTACK_H

#include <cstddef>
#include <functional>

namespace NyxTest
{

constexpr std::size_t SmallStackSize = std::size_t{256} * 1024;

/// Runs a function to its end in a thread of its own with a stack of @p bytes. Test assertions work inside; an
/// exception that leaves the function fails the test.
void RunWithStack(std::size_t bytes, const std::function<void()>& function);

inline void RunWithSmallStack(const std::function<void()>& function)
{
    RunWithStack(SmallStackSize, function);
}

} // namespace NyxTest

#endif
