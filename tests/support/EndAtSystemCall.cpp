#include "EndAtSystemCall.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <sys/ptrace.h>
#include <sys/syscall.h>
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

/// The number of the system call before which a process has stopped; -1 behind one.
long CallAtStop(pid_t child)
{
    __ptrace_syscall_info info = {};
    if (ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info) <= 0) {
        ADD_FAILURE() << "this machine does not tell which system call a process is at";
    }
    return info.op == PTRACE_SYSCALL_INFO_ENTRY ? static_cast<long>(info.entry.nr) : -1;
}

bool IsForMemory(long call)
{
    switch (call) {
#ifdef SYS_mmap2
    case SYS_mmap2:
#endif
    case SYS_mmap:
    case SYS_munmap:
    case SYS_mremap:
    case SYS_mprotect:
    case SYS_madvise:
    case SYS_brk:
    case SYS_futex:
        return true;
    default:
        return false;
    }
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
    bool counts = true;
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
        if (WSTOPSIG(status) == SystemCallStop) {
            const long call = CallAtStop(child);
            counts = call < 0 ? counts : !IsForMemory(call);
            seen += counts ? 1 : 0;
        }
    }
    return Kill(child);
}

} // namespace NyxTest
