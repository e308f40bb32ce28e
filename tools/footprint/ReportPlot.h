#ifndef NYXCONFIG_REPORTPLOT_H
#define NYXCONFIG_REPORTPLOT_H

#include "ReportHtml.h"

#include <cstdint>
#include <string>
#include <vector>

namespace footprint
{

/// A number at a time.
struct CPlotPoint
{
    std::int64_t seconds; ///< since 1970
    double value;
    std::string words;  ///< what it is, for those who point at it
    bool isBad = false; ///< not to be trusted: shown, but no part of the line
};

/// Something that happened at a time, shown below the line.
struct CPlotEvent
{
    std::int64_t seconds = 0;
    std::string words;
    bool isService = false; ///< a service; otherwise a maintenance
};

/// A line of points in the order of their times, with axes, as a picture in the page. Nothing without points; events
/// out of the time of the points are left out.
void WritePlot(CHtml& page, std::vector<CPlotPoint> points, const std::vector<CPlotEvent>& events,
               const std::string& title, const std::string& unit);

/// Marks for an axis of numbers: even ones, the first not above @p from and the last not below @p to.
std::vector<double> NumberMarks(double from, double to);

/// A mark of the axis of time.
struct CTimeMark
{
    std::int64_t seconds;
    std::string words;
};

/// Marks within a span: years, months, days or hours, whatever gives a few.
std::vector<CTimeMark> TimeMarks(std::int64_t from, std::int64_t to);

/// A coordinate or length of a picture, with one digit behind the point in any locale.
std::string Length(double value);

} // namespace footprint

#endif
