#include "Tables.h"

#include <algorithm>
#include <ostream>
#include <unordered_map>

namespace footprint
{

namespace
{

/// A longer cell pushes the rest of its line to the right, but not the lines of all others.
constexpr std::size_t widestColumn = 60;
/// Deeper levels of a tree show their number.
constexpr std::size_t deepestLines = 20;

} // namespace

void CTable::AddRow(std::vector<CCell> row)
{
    for (CCell& cell : row) {
        cell.text = Harmless(cell.text);
    }
    row.resize(m_columns.size(), CCell(""));
    m_rows.push_back(std::move(row));
}

std::vector<std::size_t> CTable::Widths() const
{
    std::vector<std::size_t> widths(m_columns.size(), 0);
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        bool isUsed = false;
        std::size_t width = DisplayWidth(m_columns[column].title);
        for (const std::vector<CCell>& row : m_rows) {
            isUsed = isUsed || !row[column].text.empty();
            const std::size_t cellWidth = DisplayWidth(row[column].text);
            if (cellWidth <= widestColumn) {
                width = std::max(width, cellWidth);
            }
        }
        widths[column] = isUsed ? std::max<std::size_t>(width, 1) : 0;
    }
    return widths;
}

void CTable::Write(std::ostream& output, bool colour) const
{
    const std::vector<std::size_t> widths = Widths();
    const auto writeLine = [&](const auto& cellOf) {
        std::string line = "  ";
        std::string blanks;
        for (std::size_t column = 0; column < m_columns.size(); ++column) {
            if (widths[column] == 0) {
                continue;
            }
            const CCell cell = cellOf(column);
            const std::size_t width = DisplayWidth(cell.text);
            const std::string fill(width < widths[column] ? widths[column] - width : 0, ' ');
            if (!cell.text.empty()) {
                line += blanks + (m_columns[column].isNumber ? fill : "") + Styled(cell.text, cell.style, colour);
                blanks = m_columns[column].isNumber ? "" : fill;
            } else {
                blanks += fill;
            }
            blanks += "  "; // only in front of further text: no line ends in blanks
        }
        output << line << "\n";
    };
    const bool hasHead =
        std::any_of(m_columns.begin(), m_columns.end(), [](const CColumn& column) { return !column.title.empty(); });
    if (hasHead) {
        writeLine([this](std::size_t column) { return CCell(m_columns[column].title, EStyle::eFaint); });
    }
    for (const std::vector<CCell>& row : m_rows) {
        writeLine([&row](std::size_t column) { return row[column]; });
    }
}

std::string CTreeLines::Next(std::size_t level, bool isLast)
{
    m_isLast.resize(level + 1);
    m_isLast[level] = isLast;
    if (level == 0) {
        return {};
    }
    std::string lines;
    if (level > deepestLines) {
        lines = "(level " + std::to_string(level) + ") ";
    } else {
        for (std::size_t above = 1; above < level; ++above) {
            lines += m_isLast[above] ? "   " : "│  ";
        }
    }
    return lines + (isLast ? "└─ " : "├─ ");
}

std::string Title(const std::string& attributeName)
{
    static const std::unordered_map<std::string, std::string> s_titles = {{"sn", "Serial number"},
                                                                          {"partChangeIndex", "Index"},
                                                                          {"productDate", "Produced"},
                                                                          {"externConnected", "External"},
                                                                          {"connectorName", "Connector"},
                                                                          {"creationDate", "Created"},
                                                                          {"vendorName", "Vendor"},
                                                                          {"responsiblePerson", "Person"},
                                                                          {"maintenanceDate", "Date"},
                                                                          {"serviceDate", "Date"},
                                                                          {"serviceCode", "Code"},
                                                                          {"kernvelVersion", "Kernel version"},
                                                                          {"windowsSuiteMask", "Suite mask"},
                                                                          {"windowsProductType", "Product type"}};
    const auto known = s_titles.find(attributeName);
    if (known != s_titles.end()) {
        return known->second;
    }
    std::string title;
    for (const char character : attributeName) {
        const bool isCapital = character >= 'A' && character <= 'Z';
        if (title.empty() && character >= 'a' && character <= 'z') {
            title += static_cast<char>(character - 'a' + 'A');
        } else if (isCapital && !title.empty()) {
            title += ' ';
            title += static_cast<char>(character - 'A' + 'a');
        } else {
            title += character;
        }
    }
    return title;
}

} // namespace footprint
