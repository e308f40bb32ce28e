#ifndef NYXCONFIG_RUNPROGRAM_H
#define NYXCONFIG_RUNPROGRAM_H

#include <string>
#include <vector>

namespace NyxTest
{

/// What a program did.
struct CRun
{
    int status = -1;      ///< Exit status; 128 and the signal's number if a signal ended it.
    std::string data;     ///< What it wrote to standard output; on a terminal, everything.
    std::string messages; ///< What it wrote to standard error.
};

/// Runs a program to its end, with an empty standard input.
/// @param environment "NAME=value", beside the test's own; "NAME" alone takes one away.
CRun RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                const std::vector<std::string>& environment = {});

/// Runs the command-line tool.
CRun RunTool(const std::vector<std::string>& arguments, const std::vector<std::string>& environment = {});

/// Runs the tool on a terminal of its own, where standard output and standard error are one.
CRun RunToolOnTerminal(const std::vector<std::string>& arguments, const std::vector<std::string>& environment = {});

/// The tool's path.
std::string ToolPath();

} // namespace NyxTest

#endif
