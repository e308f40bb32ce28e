#ifndef NYXCONFIG_COMMANDS_H
#define NYXCONFIG_COMMANDS_H

#include <CLI/CLI.hpp>

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace footprint
{

/// What every command ends with.
enum ExitStatus : int
{
    eGood = 0,     ///< done, nothing found
    eFindings = 1, ///< done, and there is something to look at: a finding, a difference, a file that was skipped
    eFailed = 2    ///< could not work: wrong usage, a file that is missing or can not be read
};

/// What a command writes to: data, and beside it words for people.
struct COutputs
{
    std::ostream& data;     ///< standard output
    std::ostream& messages; ///< standard error
    bool colour = false;    ///< whether data may be coloured: it goes to a terminal and nobody forbids it
    bool progress = false;  ///< whether messages go to a terminal, where a progress bar makes sense
};

/// The command that the command line asks for; set by its callback, run once the whole line is read.
using TCommand = std::function<ExitStatus(const COutputs& outputs)>;

/** @name Each adds one command to the program
 *  @param selected receives the command when the line asks for it; must outlive @p program. */
///@{
void AddShow(CLI::App& program, TCommand& selected);
void AddVerify(CLI::App& program, TCommand& selected);
void AddDiff(CLI::App& program, TCommand& selected);
void AddHistory(CLI::App& program, TCommand& selected);
void AddLink(CLI::App& program, TCommand& selected);
void AddReport(CLI::App& program, TCommand& selected);
void AddExport(CLI::App& program, TCommand& selected);
/// Hidden: writes the manual page, of all commands that @p program has then.
void AddManPage(CLI::App& program, TCommand& selected);
///@}

/// All commands, with the texts that --help, the man page and the completion are made from.
void AddCommands(CLI::App& program, TCommand& selected);

/// A line to type, and what it does.
struct CExample
{
    std::string line;
    std::string words;
};

/// The footer of a command: its examples, for --help and the man page.
std::string Examples(const std::vector<CExample>& examples);

/// What the manual and --help tell beside the commands: a section with terms and their meanings.
struct CTopic
{
    std::string title;
    std::vector<std::pair<std::string, std::string>> meanings;
};
const std::vector<CTopic>& Topics();

/// An empty program that has the name, the options and the words of ours; AddCommands() adds the rest.
std::unique_ptr<CLI::App> MakeProgram();

/// Runs the program by the words of its command line, the program's name left out. Never throws; what a command throws
/// becomes a message.
ExitStatus RunCommandLine(const std::vector<std::string>& words, const COutputs& outputs);

} // namespace footprint

#endif
