#ifndef NYXCONFIG_ENDATSYSTEMCALL_H
#define NYXCONFIG_ENDATSYSTEMCALL_H

#include <cstddef>
#include <functional>

namespace NyxTest
{

enum class ChildEnd
{
    Killed,   ///< at the stop that was asked for
    Finished, ///< the operation returned before that stop
    Failed    ///< neither; the test has failed
};

/**
 * Runs an operation in a copy of this process, which is killed at a system call. Each call has two stops: the odd one
 * before the kernel does it, the even one behind. Calls for memory do not count: how many there are differs from one
 * run to the next.
 *
 * @param stop number of the stop, from 1.
 */
ChildEnd RunUntilSystemCall(std::size_t stop, const std::function<void()>& operation);

} // namespace NyxTest

#endif
