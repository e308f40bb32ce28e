#include "ReportPlot.h"

#include "ReportValues.h"

#include <algorithm>
#include <cmath>

namespace footprint
{

namespace
{

constexpr double plotWidth = 900;
constexpr double plotHeight = 316;
constexpr double leftEdge = 76;
constexpr double rightEdge = plotWidth - 24;
constexpr double topEdge = 30;
constexpr double bottomEdge = plotHeight - 74;
/// Below the axis: the marks of events, in two rows, and then the words of the axis.
constexpr double eventsEdge = bottomEdge + 10;
constexpr double wordsEdge = bottomEdge + 48;
constexpr std::int64_t secondsOfDay = 86400;
/// With more points than this the line alone is drawn.
constexpr std::size_t mostDots = 400;

class CPlot
{
public:
    CPlot(CHtml& page, std::vector<CPlotPoint> points) : m_page(page), m_points(std::move(points))
    {
        std::stable_sort(m_points.begin(), m_points.end(),
                         [](const CPlotPoint& left, const CPlotPoint& right) { return left.seconds < right.seconds; });
        m_from = m_points.front().seconds;
        m_to = m_points.back().seconds;
        if (m_from == m_to) {
            m_from -= secondsOfDay;
            m_to += secondsOfDay;
        }
        const auto [least, most] =
            std::minmax_element(m_points.begin(), m_points.end(), [](const CPlotPoint& left, const CPlotPoint& right) {
                return left.value < right.value;
            });
        m_marks = NumberMarks(least->value, most->value);
    }

    void Write(const std::vector<CPlotEvent>& events, const std::string& title, const std::string& unit)
    {
        const CHtml::CScope frame(m_page, "div",
                                  {{"class", "picture"}, {"role", "region"}, {"tabindex", "0"}, {"aria-label", title}});
        const CHtml::CScope picture(m_page, "svg",
                                    {{"class", "plot"},
                                     {"viewBox", "0 0 " + Length(plotWidth) + " " + Length(plotHeight)},
                                     {"role", "img"},
                                     {"aria-label", Description(title, unit)}});
        WriteAxes(title + " (" + unit + ")");
        WriteLine();
        WriteEvents(events);
    }

private:
    double X(std::int64_t seconds) const
    {
        return leftEdge +
               (rightEdge - leftEdge) * static_cast<double>(seconds - m_from) / static_cast<double>(m_to - m_from);
    }
    double Y(double value) const
    {
        return bottomEdge - (bottomEdge - topEdge) * (value - m_marks.front()) / (m_marks.back() - m_marks.front());
    }

    std::string Description(const std::string& title, const std::string& unit) const
    {
        const auto number = [](double value) { return Grouped(std::to_string(static_cast<std::int64_t>(value))); };
        return title + " from " + DateText(m_points.front().seconds) + " (" + number(m_points.front().value) + " " +
               unit + ") to " + DateText(m_points.back().seconds) + " (" + number(m_points.back().value) + " " + unit +
               ")";
    }

    void WriteAxes(const std::string& title)
    {
        m_page.Element("text", {{"class", "axis-title"}, {"x", Length(leftEdge)}, {"y", "14"}}, title);
        for (const double mark : m_marks) {
            WriteRule("grid", leftEdge, Y(mark), rightEdge, Y(mark));
            m_page.Element(
                "text",
                {{"class", "mark"}, {"x", Length(leftEdge - 10)}, {"y", Length(Y(mark) + 4)}, {"text-anchor", "end"}},
                Grouped(std::to_string(static_cast<std::int64_t>(std::llround(mark)))));
        }
        for (const CTimeMark& mark : TimeMarks(m_from, m_to)) {
            WriteRule("tick", X(mark.seconds), bottomEdge, X(mark.seconds), bottomEdge + 6);
            m_page.Element("text",
                           {{"class", "mark"},
                            {"x", Length(X(mark.seconds))},
                            {"y", Length(wordsEdge)},
                            {"text-anchor", "middle"}},
                           mark.words);
        }
        WriteRule("axis", leftEdge, bottomEdge, rightEdge, bottomEdge);
        m_page.Element(
            "text",
            {{"class", "axis-title"}, {"x", Length(rightEdge)}, {"y", Length(plotHeight - 8)}, {"text-anchor", "end"}},
            "Time (UTC)");
    }

    void WriteRule(const char* kind, double x1, double y1, double x2, double y2)
    {
        m_page.Element(
            "line", {{"class", kind}, {"x1", Length(x1)}, {"y1", Length(y1)}, {"x2", Length(x2)}, {"y2", Length(y2)}},
            "");
    }

    void WriteLine()
    {
        std::string line;
        double first = 0;
        double last = 0;
        for (const CPlotPoint& point : m_points) {
            if (!point.isBad) {
                last = X(point.seconds);
                first = line.empty() ? last : first;
                line += (line.empty() ? "M" : "L") + Length(last) + "," + Length(Y(point.value));
            }
        }
        if (!line.empty()) {
            m_page.Element("path",
                           {{"class", "area"},
                            {"d", line + "L" + Length(last) + "," + Length(bottomEdge) + "L" + Length(first) + "," +
                                      Length(bottomEdge) + "Z"}},
                           "");
            m_page.Element("path", {{"class", "line"}, {"d", line}}, "");
        }
        for (const CPlotPoint& point : m_points) {
            if (m_points.size() <= mostDots || point.isBad) {
                const CHtml::CScope dot(m_page, "circle",
                                        {{"class", point.isBad ? "dot bad" : "dot"},
                                         {"cx", Length(X(point.seconds))},
                                         {"cy", Length(Y(point.value))},
                                         {"r", "4.5"}});
                m_page.Element("title", point.words);
            }
        }
    }

    void WriteEvents(const std::vector<CPlotEvent>& events)
    {
        bool isService = false;
        bool isMaintenance = false;
        for (const CPlotEvent& event : events) {
            if (event.seconds < m_from || event.seconds > m_to) {
                continue;
            }
            (event.isService ? isService : isMaintenance) = true;
            const CHtml::CScope mark(m_page, "path",
                                     {{"class", EventClass(event.isService)},
                                      {"d", Triangle(X(event.seconds), eventsEdge + (event.isService ? 12 : 0))}});
            m_page.Element("title", event.words);
        }
        double x = leftEdge;
        for (const bool kind : {false, true}) {
            if (kind ? isService : isMaintenance) {
                m_page.Element("path", {{"class", EventClass(kind)}, {"d", Triangle(x + 5, plotHeight - 18)}}, "");
                m_page.Element("text", {{"class", "mark"}, {"x", Length(x + 16)}, {"y", Length(plotHeight - 8)}},
                               kind ? "Service" : "Maintenance");
                x += 120;
            }
        }
    }

    static const char* EventClass(bool isService) { return isService ? "event service" : "event maintenance"; }
    static std::string Triangle(double x, double y) { return "M" + Length(x) + "," + Length(y) + "l5,9h-10Z"; }

    CHtml& m_page;
    std::vector<CPlotPoint> m_points;
    std::int64_t m_from = 0;
    std::int64_t m_to = 0;
    std::vector<double> m_marks;
};

constexpr std::size_t mostMarks = 7;

} // namespace

std::string Length(double value)
{
    const std::int64_t tenths = std::llround(value * 10);
    const std::int64_t size = tenths < 0 ? -tenths : tenths;
    std::string text = (tenths < 0 ? "-" : "") + std::to_string(size / 10);
    return size % 10 == 0 ? text : text + "." + std::to_string(size % 10);
}

std::vector<double> NumberMarks(double from, double to)
{
    if (to - from < 1) {
        to = from + 1;
    }
    double step = 1;
    for (int round = 0; (std::ceil(to / step) - std::floor(from / step)) > 6; ++round) {
        step *= round % 3 == 1 ? 2.5 : 2; // 1, 2, 5, 10
    }
    std::vector<double> marks;
    const double first = std::floor(from / step);
    const auto count = static_cast<std::size_t>(std::ceil(to / step) - first);
    for (std::size_t mark = 0; mark <= count; ++mark) {
        marks.push_back((first + static_cast<double>(mark)) * step);
    }
    return marks;
}

std::vector<CTimeMark> TimeMarks(std::int64_t from, std::int64_t to)
{
    std::vector<CTimeMark> marks;
    for (const std::int64_t step : {1, 5, 15, 60, 180, 360, 720, 1440, 2880, 10080, 20160}) {
        const std::int64_t seconds = step * 60;
        if ((to - from) / seconds >= static_cast<std::int64_t>(mostMarks)) {
            continue;
        }
        const std::int64_t rest = (from % seconds + seconds) % seconds;
        for (std::int64_t mark = rest == 0 ? from : from - rest + seconds; mark <= to; mark += seconds) {
            const std::string text = DateText(mark);
            marks.push_back({mark, step % 1440 == 0 ? text.substr(0, 10) : text});
        }
        return marks;
    }
    for (const std::int64_t step : {1, 2, 3, 6, 12, 24, 60, 120, 600, 1200, 6000, 12000, 24000}) {
        marks.clear();
        constexpr std::int64_t aboutAMonth = 30 * secondsOfDay;
        // Some months too early: a month is longer than that.
        const std::int64_t month = from / aboutAMonth;
        std::int64_t first = ((month - (month > 0 ? month / 60 : 0) - 2) / step - 1) * step;
        while (SecondsOfMonth(first) < from) {
            first += step;
        }
        for (; SecondsOfMonth(first) <= to && marks.size() <= mostMarks; first += step) {
            const std::int64_t seconds = SecondsOfMonth(first);
            marks.push_back({seconds, DateText(seconds).substr(0, step % 12 == 0 ? 4 : 7)});
        }
        if (marks.size() <= mostMarks) {
            break;
        }
    }
    return marks;
}

void WritePlot(CHtml& page, std::vector<CPlotPoint> points, const std::vector<CPlotEvent>& events,
               const std::string& title, const std::string& unit)
{
    if (!points.empty()) {
        CPlot(page, std::move(points)).Write(events, title, unit);
    }
}

} // namespace footprint
