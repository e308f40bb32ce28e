#include "Commands.h"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>

namespace footprint
{

namespace
{

/// Text in the form in which a manual page has it.
std::string Roff(const std::string& text)
{
    std::string result;
    for (const char character : text) {
        if (character == '\\') {
            result += "\\e";
        } else if (character == '-') {
            result += "\\-";
        } else if ((character == '.' || character == '\'') && (result.empty() || result.back() == '\n')) {
            result += std::string("\\&") + character;
        } else {
            result += character;
        }
    }
    return result;
}

std::string Bold(const std::string& text)
{
    return "\\fB" + Roff(text) + "\\fR";
}

std::string Italic(const std::string& text)
{
    return "\\fI" + Roff(text) + "\\fR";
}

/// The kind of value that an option takes, empty for a flag: "FILE", or "a|b" for a choice, which CLI11 calls
/// "TEXT:{a,b}".
std::string ValueOf(const CLI::Option& option)
{
    if (option.get_items_expected_max() == 0) {
        return {};
    }
    std::string type = option.get_type_name();
    const std::size_t colon = type.find(':');
    if (colon != std::string::npos && type.find('{') == colon + 1) {
        type = type.substr(colon + 2, type.size() - colon - 3);
        std::replace(type.begin(), type.end(), ',', '|');
        return type;
    }
    return type.substr(0, colon);
}

bool IsShown(const CLI::Option& option)
{
    return !option.get_group().empty();
}

void WriteOption(std::ostream& page, const CLI::Option& option)
{
    page << ".TP\n";
    if (option.get_positional()) {
        page << Italic(option.get_name()) << "\n";
    } else {
        std::string names;
        for (const std::string& name : option.get_snames()) {
            names += (names.empty() ? "" : ", ") + Bold("-" + name);
        }
        for (const std::string& name : option.get_lnames()) {
            names += (names.empty() ? "" : ", ") + Bold("--" + name);
        }
        const std::string value = ValueOf(option);
        page << names << (value.empty() ? "" : " " + Italic(value)) << "\n";
    }
    page << Roff(option.get_description());
    if (!option.get_default_str().empty()) {
        page << " (" << Roff(option.get_default_str()) << " if it is not given)";
    }
    page << "\n";
}

/// All options of the program or of a command, its arguments first.
void WriteOptions(std::ostream& page, const CLI::App& app)
{
    for (const bool isArgument : {true, false}) {
        for (const CLI::Option* option : app.get_options()) {
            if (IsShown(*option) && option->get_positional() == isArgument) {
                WriteOption(page, *option);
            }
        }
    }
}

std::string UsageOf(const CLI::App& command)
{
    std::string usage = Bold("footprint " + command.get_name()) + " [" + Italic("OPTION") + "]...";
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_positional()) {
            const std::string more = option->get_items_expected_max() > 1 ? "..." : "";
            usage += " " + (option->get_required() ? Italic(option->get_name()) + more
                                                   : "[" + Italic(option->get_name()) + more + "]");
        }
    }
    return usage;
}

void WriteCommand(std::ostream& page, const CLI::App& command)
{
    page << ".SS " << Roff(command.get_name()) << "\n" << UsageOf(command) << "\n.PP\n";
    const std::string& description = command.get_description();
    page << Roff(description) << (!description.empty() && description.back() == '.' ? "\n" : ".\n");
    WriteOptions(page, command);
    if (!command.get_footer().empty()) {
        page << ".PP\n.nf\n" << Roff(command.get_footer()) << "\n.fi\n";
    }
}

std::string InCapitals(std::string text)
{
    for (char& character : text) {
        if (character >= 'a' && character <= 'z') {
            character = static_cast<char>(character - 'a' + 'A');
        }
    }
    return text;
}

void WritePage(std::ostream& page, const CLI::App& program)
{
    const auto commands =
        program.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
    page << ".TH FOOTPRINT 1 \"\" \"footprint " << NYXCONFIG_VERSION << "\" \"User Commands\"\n"
         << ".SH NAME\nfootprint \\- " << Roff(program.get_description()) << "\n"
         << ".SH SYNOPSIS\n";
    for (const CLI::App* command : commands) {
        page << UsageOf(*command) << "\n.br\n";
    }
    page << Bold("footprint") << " " << Bold("--help") << " | " << Bold("--version") << "\n.SH OPTIONS\n";
    WriteOptions(page, program);
    page << ".SH COMMANDS\n";
    for (const CLI::App* command : commands) {
        WriteCommand(page, *command);
    }
    for (const CTopic& topic : Topics()) {
        page << ".SH " << (topic.title.find(' ') == std::string::npos ? "" : "\"") << InCapitals(topic.title)
             << (topic.title.find(' ') == std::string::npos ? "" : "\"") << "\n";
        for (const auto& [term, meaning] : topic.meanings) {
            page << ".TP\n" << Bold(term) << "\n" << Roff(meaning) << "\n";
        }
    }
}

} // namespace

void AddManPage(CLI::App& program, TCommand& selected)
{
    CLI::App* const command = program.add_subcommand("man-page", "Write the manual page");
    command->group("");
    command->callback([&program, &selected]() {
        selected = [&program](const COutputs& outputs) {
            WritePage(outputs.data, program);
            return eGood;
        };
    });
}

} // namespace footprint
