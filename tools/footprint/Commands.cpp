#include "Commands.h"

#include "Terminal.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <sstream>

namespace footprint
{

namespace
{

/// Words of the command line, which can be file names of a device, line by line.
void WriteHarmless(std::ostream& output, const std::string& text)
{
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        output << Harmless(line) << "\n";
    }
}

/// In the list of commands, the first sentence about each is enough.
class CHelp : public CLI::Formatter
{
public:
    std::string make_subcommand(const CLI::App* command) const override
    {
        std::string description = command->get_description();
        const std::size_t end = std::min(description.find(". "), description.find(".\n"));
        if (end != std::string::npos) {
            description.resize(end);
        } else if (!description.empty() && description.back() == '.') {
            description.pop_back();
        }
        std::ostringstream line;
        CLI::detail::format_help(line, command->get_name(), description, get_column_width());
        return line.str();
    }
};

ExitStatus Run(const std::vector<std::string>& words, const COutputs& outputs)
{
    TCommand selected;
    const std::unique_ptr<CLI::App> program = MakeProgram();
    AddCommands(*program, selected);
    try {
        // CLI11 takes the words from the end.
        program->parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::ParseError& end) {
        std::ostringstream complaint;
        const int status = program->exit(end, outputs.data, complaint);
        WriteHarmless(outputs.messages, complaint.str());
        return status == 0 ? eGood : eFailed;
    }
    return selected ? selected(outputs) : eFailed;
}

} // namespace

void AddCommands(CLI::App& program, TCommand& selected)
{
    AddShow(program, selected);
    AddVerify(program, selected);
    AddDiff(program, selected);
    AddHistory(program, selected);
    AddLink(program, selected);
    AddReport(program, selected);
    AddExport(program, selected);
    AddManPage(program, selected);
    for (CLI::App* command : program.get_subcommands([](CLI::App* all) { return !all->get_group().empty(); })) {
        command->group("Commands");
        for (CLI::Option* option : command->get_options([](const CLI::Option* all) { return all->get_positional(); })) {
            option->type_name(""); // the name of an argument says enough
        }
    }
    // Behind the commands, which would inherit it.
    std::string footer;
    for (const CTopic& topic : Topics()) {
        footer += topic.title + ":\n";
        for (const auto& [term, meaning] : topic.meanings) {
            std::ostringstream line;
            CLI::detail::format_help(line, term, meaning, 30);
            footer += line.str();
        }
        footer += "\n";
    }
    program.footer(footer + "'footprint COMMAND --help' explains a command.");
}

const std::vector<CTopic>& Topics()
{
    static const std::vector<CTopic> s_topics = {
        {"Exit status",
         {{"0", "done, nothing found"},
          {"1", "done, and there is something to look at: a finding, a difference, a file that was skipped"},
          {"2", "could not work: wrong usage, a file that is missing or can not be read or written"}}},
        {"Environment",
         {{"NO_COLOR", "if it is there, nothing is coloured; without it, tables on a terminal are"},
          {"TERM", "a terminal that is called \"dumb\" gets no colours either"}}},
        {"Files", {{"/var/lib/devicefootprint/", "the link files of this machine, one folder for each device"}}}};
    return s_topics;
}

std::unique_ptr<CLI::App> MakeProgram()
{
    auto program = std::make_unique<CLI::App>(
        "Tells what instruments are and what they consist of, from their device footprints", "footprint");
    program->set_version_flag("--version", std::string("footprint ") + NYXCONFIG_VERSION, "Print the version and exit");
    program->set_help_flag("-h,--help", "Print this help and exit");
    program->require_subcommand(1);
    program->failure_message([](const CLI::App* app, const CLI::Error& error) {
        const bool lacksCommand = error.get_name() == "RequiredError" && app->get_subcommands().empty();
        std::string words = error.what();
        if (lacksCommand) {
            const std::vector<std::string> rest = app->remaining();
            words = rest.empty() ? "a command is required" : "there is no command '" + rest.front() + "'";
        }
        return "footprint: " + words + "\nTry 'footprint --help'.\n";
    });
    const auto formatter = std::make_shared<CHelp>();
    program->formatter(formatter);
    formatter->label("Positionals", "Arguments");
    formatter->label("SUBCOMMAND", "COMMAND");
    formatter->label("REQUIRED", "");
    return program;
}

std::string Examples(const std::vector<CExample>& examples)
{
    std::string footer = "Examples:";
    std::size_t width = 0;
    for (const CExample& example : examples) {
        width = std::max(width, example.line.size());
    }
    for (const CExample& example : examples) {
        footer += "\n  " + example.line + std::string(width - example.line.size() + 3, ' ') + example.words;
    }
    return footer;
}

ExitStatus RunCommandLine(const std::vector<std::string>& words, const COutputs& outputs)
{
    try {
        return Run(words, outputs);
    } catch (const std::exception& exception) {
        outputs.messages << "footprint: " << Harmless(exception.what()) << "\n";
    } catch (...) {
        outputs.messages << "footprint: failed for an unknown reason\n";
    }
    return eFailed;
}

} // namespace footprint
