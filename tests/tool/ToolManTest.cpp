#include "Commands.h"
#include "Files.h"
#include "RunProgram.h"
#include "TempFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace NyxTest;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

namespace
{

/// The program with all its commands, which manual, completion and documentation have to know.
class ToolManTest : public testing::Test
{
protected:
    ToolManTest() { footprint::AddCommands(*m_program, m_selected); }

    std::vector<const CLI::App*> Commands() const
    {
        return const_cast<const CLI::App&>(*m_program).get_subcommands([](const CLI::App* command) {
            return !command->get_group().empty();
        });
    }

    /// The options of the program or of a command, as a person types them.
    static std::vector<std::string> Options(const CLI::App& app)
    {
        std::vector<std::string> names;
        for (const CLI::Option* option : app.get_options()) {
            if (!option->get_group().empty()) {
                for (const std::string& name : option->get_snames()) {
                    names.push_back("-" + name);
                }
                for (const std::string& name : option->get_lnames()) {
                    names.push_back("--" + name);
                }
            }
        }
        return names;
    }

    footprint::TCommand m_selected;
    std::unique_ptr<CLI::App> m_program = footprint::MakeProgram();
};

/// What bash offers for the last of the words.
std::vector<std::string> Completions(const std::vector<std::string>& words)
{
    std::vector<std::string> arguments = {
        "-c",
        "set -eu; source \"$COMPLETION\"; [[ $(complete -p footprint) == *\" -F _footprint footprint\" ]]\n"
        "COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); COMP_LINE=\"$*\"; COMP_POINT=${#COMP_LINE}\n"
        "_footprint footprint \"${COMP_WORDS[COMP_CWORD]}\" \"${COMP_WORDS[COMP_CWORD - 1]}\"\n"
        "printf '%s\\n' \"${COMPREPLY[@]}\"",
        "bash"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    const CRun run = RunProgram("/bin/bash", arguments, {"COMPLETION=" FOOTPRINT_COMPLETION});
    EXPECT_EQ(run.status, 0) << testing::PrintToString(words);
    EXPECT_THAT(run.messages, IsEmpty()) << testing::PrintToString(words);
    std::vector<std::string> offers;
    std::istringstream lines(run.data);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty()) {
            offers.push_back(line);
        }
    }
    return offers;
}

/// The page's text as a person reads it, between the requests.
std::string Unescaped(const std::string& page)
{
    return std::regex_replace(std::regex_replace(page, std::regex(R"(\\-)"), "-"), std::regex(R"(\\&)"), "");
}

} // namespace

TEST_F(ToolManTest, ThePageHasAllThatHelpHas)
{
    const std::string page = Unescaped(RunTool({"man-page"}).data);
    for (const char* section : {"NAME", "SYNOPSIS", "OPTIONS", "COMMANDS", "\"EXIT STATUS\"", "ENVIRONMENT", "FILES"}) {
        EXPECT_THAT(page, HasSubstr(std::string("\n.SH ") + section + "\n"));
    }
    for (const CLI::App* command : Commands()) {
        const std::size_t begin = page.find("\n.SS " + command->get_name() + "\n");
        ASSERT_NE(begin, std::string::npos) << command->get_name();
        const std::size_t end = std::min(page.find("\n.SS ", begin + 1), page.find("\n.SH ", begin + 1));
        const std::string part = page.substr(begin, end - begin);
        EXPECT_THAT(part, HasSubstr(command->get_description()));
        EXPECT_THAT(part, HasSubstr("Examples:")) << command->get_name();
        for (const std::string& option : Options(*command)) {
            EXPECT_THAT(part, HasSubstr("\\fB" + option + "\\fR")) << command->get_name();
        }
        for (const CLI::Option* option : command->get_options()) {
            EXPECT_FALSE(option->get_description().empty()) << command->get_name() << " " << option->get_name();
            EXPECT_THAT(part, HasSubstr(option->get_description())) << command->get_name();
        }
        EXPECT_THAT(RunTool({command->get_name(), "--help"}).data, HasSubstr(command->get_description()));
    }
    for (const char* status : {"0", "1", "2"}) {
        EXPECT_THAT(page, HasSubstr(".TP\n\\fB" + std::string(status) + "\\fR\n"));
    }
}

TEST_F(ToolManTest, TheFormatterHasNoComplaint)
{
    const std::string page = RunTool({"man-page"}).data;
    // Every line is a request that is used here, or text.
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_TRUE(std::regex_search(line, std::regex("^(\\.(TH|SH|SS|TP|PP|br|nf|fi)( |$)|[^.']|$)"))) << line;
        EXPECT_TRUE(std::regex_match(line, std::regex("([^\\\\]|\\\\(-|e|&|f[BIR]))*"))) << line;
    }
    const TempFolder folder;
    WriteFile(folder / "footprint.1", page);
    const CRun groff = RunProgram("/bin/sh",
                                  {"-c", "if command -v groff >/dev/null; then groff -man -ww -Tutf8 -z "
                                         "\"$PAGE\"; fi"},
                                  {"PAGE=" + folder / "footprint.1"});
    EXPECT_EQ(groff.status, 0);
    EXPECT_THAT(groff.messages, IsEmpty());
}

TEST_F(ToolManTest, BashCompletesCommandsAndOptionsAndNothingElse)
{
    std::vector<std::string> names;
    for (const CLI::App* command : Commands()) {
        names.push_back(command->get_name());
    }
    ASSERT_THAT(names, testing::Not(IsEmpty()));
    EXPECT_THAT(Completions({"footprint", ""}), UnorderedElementsAreArray(names));
    EXPECT_THAT(Completions({"footprint", "-"}), UnorderedElementsAreArray(Options(*m_program)));
    for (const CLI::App* command : Commands()) {
        const std::string& name = command->get_name();
        EXPECT_THAT(Completions({"footprint", name.substr(0, 3)}), testing::Contains(name));
        EXPECT_THAT(Completions({"footprint", name, "-"}), UnorderedElementsAreArray(Options(*command))) << name;
        EXPECT_THAT(Completions({"footprint", name, "device.xml", "-"}), UnorderedElementsAreArray(Options(*command)))
            << name;
        EXPECT_THAT(Completions({"footprint", name, ""}), IsEmpty()) << "bash offers files";
    }
    EXPECT_THAT(Completions({"footprint", "unheard-of", "-"}), IsEmpty());
    EXPECT_THAT(Completions({"footprint", "show", "--re"}), testing::ElementsAre("--redact"));
}

TEST_F(ToolManTest, BashCompletesTheValuesOfOptions)
{
    // The type of such an option reads "TEXT:{a,b}".
    const std::regex choice("[A-Z]*:\\{(.*)\\}");
    for (const CLI::App* command : Commands()) {
        for (const CLI::Option* option : command->get_options()) {
            std::smatch match;
            const std::string type = option->get_type_name();
            if (option->get_positional() || option->get_group().empty() || option->get_items_expected_max() == 0) {
                continue;
            }
            std::vector<std::string> values;
            if (std::regex_match(type, match, choice)) {
                std::istringstream list(match[1]);
                for (std::string value; std::getline(list, value, ',');) {
                    values.push_back(value);
                }
            }
            for (const std::string& name : option->get_snames()) {
                EXPECT_THAT(Completions({"footprint", command->get_name(), "-" + name, ""}),
                            UnorderedElementsAreArray(values))
                    << name;
            }
            for (const std::string& name : option->get_lnames()) {
                for (const std::vector<std::string>& rest :
                     std::vector<std::vector<std::string>>{{""}, {"="}, {"=", ""}}) {
                    std::vector<std::string> words = {"footprint", command->get_name(), "--" + name};
                    words.insert(words.end(), rest.begin(), rest.end());
                    EXPECT_THAT(Completions(words), UnorderedElementsAreArray(values)) << name;
                }
            }
        }
    }
}

TEST_F(ToolManTest, TheDocumentationKnowsEveryCommandAndOption)
{
    const std::string page = ReadFile(FOOTPRINT_PAGE);
    for (const CLI::App* command : Commands()) {
        EXPECT_THAT(page, HasSubstr("\n## footprint " + command->get_name() + "\n"));
        for (const std::string& option : Options(*command)) {
            if (option != "-h" && option != "--help") {
                EXPECT_THAT(page, HasSubstr("`" + option)) << command->get_name();
            }
        }
    }
}
