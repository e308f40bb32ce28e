#include "ReportBoards.h"

#include "ElementWalk.h"
#include "ReportPlot.h"
#include "ReportValues.h"
#include "Terminal.h"

#include <algorithm>
#include <sstream>

namespace footprint
{

namespace
{

constexpr double boxWidth = 190;
constexpr double boxHeight = 44;
constexpr double columnWidth = boxWidth + 34;
constexpr double rowHeight = boxHeight + 12;
constexpr double margin = 2;
constexpr std::size_t nameColumns = 22;
constexpr std::size_t numberColumns = 27;

/// Draws one picture.
class CPicture
{
public:
    CPicture(CHtml& page, const std::vector<CBoardBox>& boxes) : m_page(page), m_boxes(boxes) { Arrange(); }

    void Write(const CBoardBox& device)
    {
        std::size_t levels = 0;
        for (const CBoardBox& box : m_boxes) {
            levels = std::max(levels, box.level + 1);
        }
        const double width = margin * 2 + columnWidth * static_cast<double>(levels) + boxWidth;
        const double height = margin * 2 + rowHeight * m_height - (rowHeight - boxHeight);
        const CHtml::CScope frame(
            m_page, "div",
            {{"class", "picture"}, {"role", "region"}, {"tabindex", "0"}, {"aria-label", "Picture of the boards"}});
        const CHtml::CScope picture(m_page, "svg",
                                    {{"class", "boards"},
                                     {"width", Length(width)},
                                     {"height", Length(height)},
                                     {"viewBox", "0 0 " + Length(width) + " " + Length(height)},
                                     {"role", "group"},
                                     {"aria-label", "The boards, each beside the one that carries it"}});
        // The lines first, so that the boxes cover their ends.
        for (std::size_t index = 0; index < m_boxes.size(); ++index) {
            const std::size_t parent = m_boxes[index].parent;
            WriteLine(parent == CBoardPlace::none ? 0 : Column(parent),
                      parent == CBoardPlace::none ? m_top : m_rows[parent], Column(index), m_rows[index],
                      m_boxes[index].remark.empty());
        }
        WriteBox(device, 0, m_top, "box device");
        for (std::size_t index = 0; index < m_boxes.size(); ++index) {
            const CBoardBox& box = m_boxes[index];
            WriteBox(box, Column(index), m_rows[index],
                     !box.remark.empty() ? "box bad" : (box.isOutside ? "box outside" : "box"));
        }
    }

private:
    static double Left(double column) { return margin + columnWidth * column; }
    static double Middle(double row) { return margin + rowHeight * row + boxHeight / 2; }
    double Column(std::size_t index) const { return static_cast<double>(m_boxes[index].level) + 1; }

    /// Each box without any to its right takes a row; others stand in the middle of those to their right.
    void Arrange()
    {
        std::vector<double> first(m_boxes.size(), -1);
        std::vector<double> last(m_boxes.size(), -1);
        m_rows.assign(m_boxes.size(), 0);
        std::vector<bool> carries(m_boxes.size(), false);
        for (const CBoardBox& box : m_boxes) {
            if (box.parent != CBoardPlace::none) {
                carries[box.parent] = true;
            }
        }
        for (std::size_t index = 0; index < m_boxes.size(); ++index) {
            if (!carries[index]) {
                m_rows[index] = m_height;
                m_height += 1;
            }
        }
        double firstRoot = -1;
        double lastRoot = 0;
        // Parents come before what they carry.
        for (std::size_t index = m_boxes.size(); index-- > 0;) {
            if (carries[index]) {
                m_rows[index] = (first[index] + last[index]) / 2;
            }
            const std::size_t parent = m_boxes[index].parent;
            double& top = parent == CBoardPlace::none ? firstRoot : first[parent];
            double& bottom = parent == CBoardPlace::none ? lastRoot : last[parent];
            bottom = top < 0 ? m_rows[index] : bottom;
            top = m_rows[index];
        }
        m_top = std::max(0.0, (firstRoot + lastRoot) / 2);
        m_height = std::max(1.0, m_height);
    }

    void WriteLine(double fromColumn, double fromRow, double toColumn, double toRow, bool isGood)
    {
        const double begin = Left(fromColumn) + boxWidth;
        const double end = Left(toColumn);
        const double middle = (begin + end) / 2;
        m_page.Element("path",
                       {{"class", isGood ? "branch" : "branch bad"},
                        {"d", "M" + Length(begin) + "," + Length(Middle(fromRow)) + "C" + Length(middle) + "," +
                                  Length(Middle(fromRow)) + " " + Length(middle) + "," + Length(Middle(toRow)) + " " +
                                  Length(end) + "," + Length(Middle(toRow))}},
                       "");
    }

    void WriteBox(const CBoardBox& box, double column, double row, const char* kind)
    {
        const double left = Left(column);
        const double top = Middle(row) - boxHeight / 2;
        const CHtml::CScope link(m_page, box.link.empty() ? "g" : "a",
                                 box.link.empty() ? CHtml::TAttributes{{"class", kind}}
                                                  : CHtml::TAttributes{{"class", kind}, {"href", box.link}});
        m_page.Element("title", box.name + (box.number.empty() ? "" : ", " + box.number) +
                                    (box.isOutside ? ", connected outside" : "") +
                                    (box.remark.empty() ? "" : ": " + box.remark));
        m_page.Element("rect",
                       {{"x", Length(left)},
                        {"y", Length(top)},
                        {"width", Length(boxWidth)},
                        {"height", Length(boxHeight)},
                        {"rx", "7"}},
                       "");
        m_page.Element("text", {{"class", "name"}, {"x", Length(left + 12)}, {"y", Length(top + 18.5)}},
                       Shortened((box.remark.empty() ? "" : "\xE2\x9A\xA0 ") + Harmless(box.name), nameColumns));
        m_page.Element("text", {{"class", "number"}, {"x", Length(left + 12)}, {"y", Length(top + 35)}},
                       Shortened(Harmless(box.number), numberColumns));
    }

    CHtml& m_page;
    const std::vector<CBoardBox>& m_boxes;
    std::vector<double> m_rows;
    double m_top = 0;    ///< row of the device
    double m_height = 0; ///< number of rows
};

/// A text between double quotes, for dot: no escape sequence and no character entity of its own.
std::string DotText(const std::vector<std::string>& lines)
{
    std::string result = "\"";
    for (const std::string& line : lines) {
        if (line.empty()) {
            continue;
        }
        result += result.size() > 1 ? "\\n" : "";
        for (const char character : Shortened(Harmless(line), 60)) {
            if (character == '&') {
                result += "&amp;";
            } else {
                result += character == '"' || character == '\\' ? "\\" : "";
                result += character;
            }
        }
    }
    return result + "\"";
}

} // namespace

std::vector<CBoardBox> BoardBoxes(const std::vector<CBoardPlace>& tree, CRedaction& redaction, const std::string& rows)
{
    std::vector<CBoardBox> boxes;
    boxes.reserve(tree.size());
    for (const CBoardPlace& place : tree) {
        CBoardBox box;
        box.name = redaction.Text(BoardLabel(*place.board, place.number));
        box.number = redaction.Value(place.board->m_partNumber);
        if (!place.board->m_sn.IsEmpty()) {
            box.number += (box.number.empty() ? "SN " : " \xC2\xB7 ") + redaction.Value(place.board->m_sn);
        }
        box.remark = redaction.Text(place.remark);
        box.link = rows.empty() ? "" : "#" + rows + std::to_string(place.number);
        box.isOutside = place.board->m_externConnected.GetValue() == L"true";
        box.parent = place.parent;
        box.level = place.level;
        boxes.push_back(std::move(box));
    }
    return boxes;
}

void WriteBoardPicture(CHtml& page, const std::vector<CBoardBox>& boxes, const CBoardBox& device)
{
    CPicture(page, boxes).Write(device);
}

std::string BoardGraph(const std::vector<CBoardBox>& boxes, const CBoardBox& device)
{
    const std::string graph = "digraph boards {\n"
                              "  rankdir=LR;\n"
                              "  node [shape=box, style=rounded, fontname=\"sans-serif\", fontsize=11];\n"
                              "  edge [arrowhead=none];\n"
                              "  device [label=" +
                              DotText({device.name, device.number}) + ", style=\"rounded,bold\"];\n";
    std::ostringstream nodes;
    for (std::size_t index = 0; index < boxes.size(); ++index) {
        const CBoardBox& box = boxes[index];
        nodes << "  board" << index + 1 << " [label=" << DotText({box.name, box.number, box.remark})
              << (box.remark.empty() ? "" : ", color=red") << (box.isOutside ? ", style=\"rounded,dashed\"" : "")
              << "];\n";
        if (box.parent == CBoardPlace::none) {
            nodes << "  device";
        } else {
            nodes << "  board" << box.parent + 1;
        }
        nodes << " -> board" << index + 1 << ";\n";
    }
    return graph + nodes.str() + "}\n";
}

} // namespace footprint
