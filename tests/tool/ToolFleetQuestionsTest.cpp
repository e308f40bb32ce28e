// Runs the questions of docs/fleet.md on the fleet in tests/tool/data/export/fleet and compares the answers with those
// on the page.

#include "ExportRun.h"
#include "Files.h"
#include "Loading.h"
#include "Sqlite.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

using namespace NyxTest;

namespace
{

struct CQuestion
{
    std::string sql;
    std::string answer;
};

/// The blocks of a page: each one of SQL with the text that follows.
std::vector<CQuestion> Questions(const std::string& page)
{
    std::vector<CQuestion> questions;
    std::string* block = nullptr;
    std::istringstream lines(page);
    std::string line;
    while (std::getline(lines, line)) {
        if (line == "```sql") {
            questions.emplace_back();
            block = &questions.back().sql;
        } else if (line == "```text" && !questions.empty()) {
            block = &questions.back().answer;
        } else if (line == "```") {
            block = nullptr;
        } else if (block != nullptr) {
            *block += line + "\n";
        }
    }
    return questions;
}

std::string Answer(const footprint::CSqlite& database, const std::string& sql)
{
    footprint::CStatement statement(database, sql);
    std::string answer;
    while (statement.Step()) {
        for (int column = 0; column < statement.Columns(); ++column) {
            answer += (column == 0 ? "" : "|") + statement.Text(column);
        }
        answer += "\n";
    }
    return answer;
}

TEST(ToolFleetQuestionsTest, PageGivesTheAnswersOfTheDatabase)
{
    const TempFolder folder;
    const footprint::CLibraryTalk talk;
    footprint::CExportOptions options;
    options.paths = {FOOTPRINT_TEST_DATA "/export/fleet"};
    options.output = folder / "fleet.sqlite";
    std::ostringstream data;
    std::ostringstream messages;
    ASSERT_EQ(footprint::RunExport(options, {data, messages}), footprint::eFindings) << messages.str();
    const std::vector<CQuestion> questions = Questions(ReadFile(DataFile("../../docs/fleet.md")));
    EXPECT_EQ(questions.size(), 10U);
    const footprint::CSqlite database(options.output, footprint::CSqlite::eReadOnly);
    for (const CQuestion& question : questions) {
        EXPECT_EQ(Answer(database, question.sql), question.answer) << question.sql;
    }
}

} // namespace
