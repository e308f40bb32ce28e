#include "RunProgram.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace NyxTest
{

namespace
{

/// Becomes the program. All that allocates was done before the fork.
[[noreturn]] void Become(const std::vector<char*>& words, const std::vector<std::string>& environment)
{
    for (const std::string& setting : environment) {
        const std::size_t equals = setting.find('=');
        if (equals == std::string::npos) {
            unsetenv(setting.c_str());
        } else {
            putenv(const_cast<char*>(setting.c_str()));
        }
    }
    execv(words.front(), words.data());
    _exit(127);
}

std::vector<char*> Words(const std::string& program, const std::vector<std::string>& arguments)
{
    std::vector<char*> words = {const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    return words;
}

/// Reads once from a descriptor that has something. @return false at its end.
bool ReadSome(int descriptor, std::string& text)
{
    std::array<char, 65536> buffer{};
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return count > 0 || (count < 0 && errno == EINTR);
}

/// Reads two pipes to their ends, in the order in which they fill.
void ReadAll(int dataEnd, int messagesEnd, CRun& run)
{
    std::array<pollfd, 2> ends = {pollfd{dataEnd, POLLIN, 0}, pollfd{messagesEnd, POLLIN, 0}};
    while (ends[0].fd >= 0 || ends[1].fd >= 0) {
        if (poll(ends.data(), ends.size(), -1) < 0) {
            continue;
        }
        for (pollfd& end : ends) {
            if (end.fd >= 0 && end.revents != 0 && !ReadSome(end.fd, &end == ends.data() ? run.data : run.messages)) {
                close(end.fd);
                end.fd = -1;
            }
        }
    }
}

int StatusOf(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            ADD_FAILURE() << "no such child";
            return -1;
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

CRun RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                const std::vector<std::string>& environment)
{
    const std::vector<char*> words = Words(program, arguments);
    std::array<int, 2> data{};
    std::array<int, 2> messages{};
    if (pipe2(data.data(), O_CLOEXEC) != 0 || pipe2(messages.data(), O_CLOEXEC) != 0) {
        ADD_FAILURE() << "no pipe: " << std::strerror(errno);
        return {};
    }
    const pid_t child = fork();
    if (child == 0) {
        const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(nothing, STDIN_FILENO);
        dup2(data[1], STDOUT_FILENO);
        dup2(messages[1], STDERR_FILENO);
        Become(words, environment);
    }
    close(data[1]);
    close(messages[1]);
    CRun run;
    ReadAll(data[0], messages[0], run);
    run.status = StatusOf(child);
    return run;
}

CRun RunTool(const std::vector<std::string>& arguments, const std::vector<std::string>& environment)
{
    return RunProgram(ToolPath(), arguments, environment);
}

CRun RunToolOnTerminal(const std::vector<std::string>& arguments, const std::vector<std::string>& environment)
{
    const std::string program = ToolPath();
    const std::vector<char*> words = Words(program, arguments);
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        Become(words, environment);
    }
    CRun run;
    if (child < 0) {
        ADD_FAILURE() << "no terminal: " << std::strerror(errno);
        return run;
    }
    // At the program's end, reading fails with EIO.
    while (ReadSome(terminal, run.data)) {
    }
    close(terminal);
    run.status = StatusOf(child);
    return run;
}

std::string ToolPath()
{
    return FOOTPRINT_PROGRAM;
}

} // namespace NyxTest
