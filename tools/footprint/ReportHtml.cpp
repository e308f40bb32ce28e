#include "ReportHtml.h"

#include "ReportValues.h"
#include "Terminal.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string_view>

namespace footprint
{

namespace
{

/// Longer tables are folded.
constexpr std::size_t longTable = 200;

/// Longer texts in a cell get several lines.
constexpr std::size_t longText = 36;

/// Elements within a line of text; a line feed behind them would be a blank.
bool IsInline(std::string_view tag)
{
    static constexpr std::array<std::string_view, 12> tags = {"a",     "b",      "bdi",  "code", "em",    "span",
                                                              "small", "strong", "time", "text", "title", "tspan"};
    return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

} // namespace

std::string HtmlText(const std::string& text)
{
    std::string result;
    const std::string harmless = Harmless(text);
    result.reserve(harmless.size());
    for (const char character : harmless) {
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            result += character;
        }
    }
    return result;
}

void CHtml::WriteTag(const char* tag, const TAttributes& attributes, const char* end)
{
    m_output << "<" << tag;
    for (const auto& [name, value] : attributes) {
        m_output << " " << name << "=\"" << HtmlText(value) << "\"";
    }
    m_output << end;
}

void CHtml::EndTag(const char* tag)
{
    m_output << "</" << tag << ">" << (IsInline(tag) ? "" : "\n");
}

void CHtml::Begin(const char* tag, const TAttributes& attributes)
{
    WriteTag(tag, attributes, ">");
    m_open.push_back(tag);
}

void CHtml::End()
{
    EndTag(m_open.back());
    m_open.pop_back();
}

void CHtml::Text(const std::string& text)
{
    m_output << HtmlText(text);
}

void CHtml::Element(const char* tag, const TAttributes& attributes, const std::string& text)
{
    WriteTag(tag, attributes, ">");
    Text(text);
    EndTag(tag);
}

void CHtml::Void(const char* tag, const TAttributes& attributes)
{
    WriteTag(tag, attributes, "/>\n");
}

void CHtml::Verbatim(const char* text)
{
    m_output << text;
}

void CHtmlTable::AddRow(std::vector<CHtmlCell> cells, std::string id)
{
    cells.resize(m_columns.size());
    m_rows.push_back({std::move(cells), std::move(id)});
}

std::vector<bool> CHtmlTable::UsedColumns() const
{
    std::vector<bool> used(m_columns.size(), false);
    for (const CRow& row : m_rows) {
        for (std::size_t column = 0; column < m_columns.size(); ++column) {
            used[column] = used[column] || !row.cells[column].lines.empty();
        }
    }
    used[0] = true; // names the row
    return used;
}

void CHtmlTable::WriteRow(CHtml& page, const CRow& row, const std::vector<bool>& used) const
{
    const CHtml::CScope line(page, "tr", row.id.empty() ? CHtml::TAttributes{} : CHtml::TAttributes{{"id", row.id}});
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        if (!used[column]) {
            continue;
        }
        const CHtmlCell& cell = row.cells[column];
        CHtml::TAttributes attributes;
        if (column == 0) {
            attributes.emplace_back("scope", "row");
        }
        std::string kind = m_columns[column].isNumber ? "number" : cell.kind;
        for (const std::string& text : cell.lines) {
            if (text.size() > longText) { // by bytes: it need not be exact
                kind += kind.empty() ? "words" : " words";
                break;
            }
        }
        if (!kind.empty()) {
            attributes.emplace_back("class", kind);
        }
        const char* const tag = column == 0 ? "th" : "td";
        if (cell.lines.size() < 2) {
            page.Element(tag, attributes, cell.lines.empty() ? "" : cell.lines.front());
            continue;
        }
        const CHtml::CScope lines(page, tag, attributes);
        for (const std::string& text : cell.lines) {
            page.Element("div", text);
        }
    }
}

void CHtmlTable::Write(CHtml& page, CRowBudget& budget, bool withCaption) const
{
    if (IsEmpty()) {
        return;
    }
    const std::size_t shown = std::min({m_rows.size(), budget.rows, CRowBudget::rowsOfTable});
    budget.rows -= shown;
    budget.leftOut += m_rows.size() - shown;
    const bool isFolded = m_rows.size() > longTable;
    if (isFolded) {
        page.Begin("details", {{"class", "long"}});
        page.Element("summary", m_label + ": " + Grouped(std::to_string(m_rows.size())) + " rows");
    }
    if (shown < m_rows.size()) {
        page.Element("p", {{"class", "cut"}},
                     "The first " + Grouped(std::to_string(shown)) + " of " + Grouped(std::to_string(m_rows.size())) +
                         " rows.");
    }
    {
        const std::vector<bool> used = UsedColumns();
        const CHtml::CScope frame(page, "div",
                                  {{"class", "wide"}, {"role", "region"}, {"tabindex", "0"}, {"aria-label", m_label}});
        const CHtml::CScope table(page, "table", {{"class", "sortable"}});
        page.Element("caption", withCaption ? CHtml::TAttributes{} : CHtml::TAttributes{{"class", "unseen"}}, m_label);
        {
            const CHtml::CScope head(page, "thead");
            const CHtml::CScope row(page, "tr");
            for (std::size_t column = 0; column < m_columns.size(); ++column) {
                if (used[column]) {
                    page.Element("th",
                                 m_columns[column].isNumber ? CHtml::TAttributes{{"scope", "col"}, {"class", "number"}}
                                                            : CHtml::TAttributes{{"scope", "col"}},
                                 m_columns[column].title);
                }
            }
        }
        const CHtml::CScope body(page, "tbody");
        for (std::size_t row = 0; row < shown; ++row) {
            WriteRow(page, m_rows[row], used);
        }
    }
    if (isFolded) {
        page.End();
    }
}

} // namespace footprint
