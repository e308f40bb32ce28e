#ifndef NYXCONFIG_TABLES_H
#define NYXCONFIG_TABLES_H

#include "Terminal.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace footprint
{

/// A cell of a table. Its text need not be harmless.
struct CCell
{
    CCell(const char* cellText) : text(cellText) {}
    CCell(std::string cellText, EStyle cellStyle = EStyle::ePlain) : text(std::move(cellText)), style(cellStyle) {}

    std::string text;
    EStyle style = EStyle::ePlain;
};

/// A table with aligned columns. Columns without content are left out; so is everything harmful to a terminal.
class CTable
{
public:
    struct CColumn
    {
        CColumn(const char* columnTitle) : title(columnTitle) {}
        CColumn(std::string columnTitle, bool columnIsNumber = false)
            : title(std::move(columnTitle)), isNumber(columnIsNumber)
        {
        }

        std::string title;
        bool isNumber = false; ///< aligned to the right
    };

    /// @param columns columns without any title make a table without a head.
    explicit CTable(std::vector<CColumn> columns) : m_columns(std::move(columns)) {}

    /// Missing cells are empty.
    void AddRow(std::vector<CCell> row);
    bool IsEmpty() const { return m_rows.empty(); }

    /// Writes the table, each line behind two blanks.
    void Write(std::ostream& output, bool colour) const;

private:
    std::vector<std::size_t> Widths() const;

    std::vector<CColumn> m_columns;
    std::vector<std::vector<CCell>> m_rows;
};

/// The lines in front of the entries of a tree, one entry after the other, parents first.
class CTreeLines
{
public:
    /// @param level 0 for a root, which has no lines. @param isLast whether it is the last one below its parent.
    std::string Next(std::size_t level, bool isLast);

private:
    std::vector<bool> m_isLast;
};

/// What an attribute is called in a table: "Part number" for "partNumber".
std::string Title(const std::string& attributeName);

} // namespace footprint

#endif
