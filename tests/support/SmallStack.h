#ifndef NYXCONFIG_SMALLSTACK_H
#define NYXCONFIG_SMALLSTACK_H

#include <cstddef>
#include <functional>

namespace NyxTest
{

#if defined(__SANITIZE_ADDRESS__)
#define NYX_TEST_STACK_FACTOR 4
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define NYX_TEST_STACK_FACTOR 4
#endif
#endif
#ifndef NYX_TEST_STACK_FACTOR
#define NYX_TEST_STACK_FACTOR 1
#endif

/// 256 KiB; more with the address sanitizer, which makes each frame several times as large.
constexpr std::size_t SmallStackSize = std::size_t{NYX_TEST_STACK_FACTOR} * 256 * 1024;

/// Runs a function to its end in a thread of its own with a stack of @p bytes. Test assertions work inside; an
/// exception that leaves the function fails the test.
void RunWithStack(std::size_t bytes, const std::function<void()>& function);

inline void RunWithSmallStack(const std::function<void()>& function)
{
    RunWithStack(SmallStackSize, function);
}

} // namespace NyxTest

#endif
