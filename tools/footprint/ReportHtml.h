#ifndef NYXCONFIG_REPORTHTML_H
#define NYXCONFIG_REPORTHTML_H

#include <cstddef>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace footprint
{

/// Text made harmless for HTML: nothing in it is markup, and what Harmless() escapes is to be seen.
std::string HtmlText(const std::string& text);

/// Writes HTML, and SVG in it. Values get into the page through Text() and attributes alone, which escape them.
class CHtml
{
public:
    using TAttributes = std::vector<std::pair<const char*, std::string>>;

    /// An element that is open while it lives.
    class CScope
    {
    public:
        CScope(CHtml& page, const char* tag, const TAttributes& attributes = {}) : m_page(page)
        {
            m_page.Begin(tag, attributes);
        }
        CScope(const CScope&) = delete;
        CScope& operator=(const CScope&) = delete;
        ~CScope() { m_page.End(); }

    private:
        CHtml& m_page;
    };

    explicit CHtml(std::ostream& output) : m_output(output) {}

    void Begin(const char* tag, const TAttributes& attributes = {});
    /// Ends the element that began last.
    void End();
    void Text(const std::string& text);
    /// An element with nothing but text in it.
    void Element(const char* tag, const TAttributes& attributes, const std::string& text);
    void Element(const char* tag, const std::string& text) { Element(tag, {}, text); }
    /// An element that never holds anything.
    void Void(const char* tag, const TAttributes& attributes);
    /// What is HTML, style or script of our own.
    void Verbatim(const char* text);

private:
    void WriteTag(const char* tag, const TAttributes& attributes, const char* end);
    void EndTag(const char* tag);

    std::ostream& m_output;
    std::vector<const char*> m_open;
};

/// How many rows a page still takes. A file of any size gives a page that a browser can show.
struct CRowBudget
{
    static constexpr std::size_t rowsOfTable = 2000;

    std::size_t rows = 20000; ///< left for the page
    std::size_t leftOut = 0;  ///< rows that found no place
};

/// A cell of a table: its lines.
struct CHtmlCell
{
    CHtmlCell(std::string text = {}, const char* cellClass = "") : kind(cellClass)
    {
        if (!text.empty()) {
            lines.push_back(std::move(text));
        }
    }
    CHtmlCell(const char* text) : CHtmlCell(std::string(text)) {}
    explicit CHtmlCell(std::vector<std::string> cellLines) : lines(std::move(cellLines)) {}

    std::vector<std::string> lines;
    std::string kind; ///< its class in the style sheet
};

/// A table that the page's script lets people sort. Columns without content are left out, long tables are folded.
class CHtmlTable
{
public:
    struct CColumn
    {
        CColumn(std::string columnTitle, bool columnIsNumber = false)
            : title(std::move(columnTitle)), isNumber(columnIsNumber)
        {
        }
        CColumn(const char* columnTitle) : title(columnTitle) {}

        std::string title;
        bool isNumber = false; ///< aligned to the right
    };

    /// @param label what the table shows, such as "Boards".
    CHtmlTable(std::string label, std::vector<CColumn> columns)
        : m_label(std::move(label)), m_columns(std::move(columns))
    {
    }

    bool IsEmpty() const { return m_rows.empty(); }
    std::size_t Size() const { return m_rows.size(); }
    /// Missing cells are empty.
    void AddRow(std::vector<CHtmlCell> cells, std::string id = {});
    /// @param withCaption whether its label is to be seen; where it is the title of a section, once is enough.
    void Write(CHtml& page, CRowBudget& budget, bool withCaption = true) const;

private:
    struct CRow
    {
        std::vector<CHtmlCell> cells;
        std::string id;
    };

    std::vector<bool> UsedColumns() const;
    void WriteRow(CHtml& page, const CRow& row, const std::vector<bool>& used) const;

    std::string m_label;
    std::vector<CColumn> m_columns;
    std::vector<CRow> m_rows;
};

} // namespace footprint

#endif
