#include "EndAtSystemCall.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace NyxTest
{

namespace
{

constexpr int TracingForbidden = 77;
constexpr int OperationThrew = 78;
constexpr int SystemCallStop = SIGTRAP | 0x80; // by PTRACE_O_TRACESYSGOOD

[[noreturn]] void RunChild(const std::function<void()>& operation)
{
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
        _exit(TracingForbidden);
    }
    raise(SIGSTOP);
    try {
        operation();
    } catch (const std::exception&) {
        _exit(OperationThrew);
    }
    _exit(0);
}

ChildEnd Ended(int status)
{
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
        return ChildEnd::Finished;
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == TracingForbidden) {
        ADD_FAILURE() << "this machine forbids ptrace, by which the process is stopped at its system calls";
    } else {
        ADD_FAILURE() << "the child process ended with the wait status " << status;
    }
    return ChildEnd::Failed;
}

bool WaitFor(pid_t child, int& status)
{
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            ADD_FAILURE() << "waitpid: " << std::strerror(errno);
            return false;
        }
    }
    return true;
}

ChildEnd Kill(pid_t child)
{
    int status = 0;
    kill(child, SIGKILL);
    WaitFor(child, status);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL ? ChildEnd::Killed : Ended(status);
}

} // namespace

ChildEnd RunUntilSystemCall(std::size_t stop, const std::function<void()>& operation)
{
    const pid_t child = fork();
    if (child < 0) {
        ADD_FAILURE() << "fork: " << std::strerror(errno);
        return ChildEnd::Failed;
    }
    if (child == 0) {
        RunChild(operation);
    }
    int status = 0;
    if (!WaitFor(child, status)) {
        return ChildEnd::Failed;
    }
    if (!WIFSTOPPED(status)) {
        return Ended(status);
    }
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    // The first stop is the end of the call that raised the signal.
    for (std::size_t seen = 0; seen <= stop;) {
        const long signal = WIFSTOPPED(status) && WSTOPSIG(status) != SystemCallStop && WSTOPSIG(status) != SIGSTOP
                                ? WSTOPSIG(status)
                                : 0;
        if (ptrace(PTRACE_SYSCALL, child, nullptr, signal) != 0 || !WaitFor(child, status)) {
            return Kill(child);
        }
        if (!WIFSTOPPED(status)) {
            return Ended(status);
        }
        seen += WSTOPSIG(status) == SystemCallStop ? 1 : 0;
    }
    return Kill(child);
}

} // namespace NyxTest
