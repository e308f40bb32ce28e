#ifndef NYXCONFIG_REPORTVALUES_H
#define NYXCONFIG_REPORTVALUES_H

#include <cstdint>
#include <optional>
#include <string>

namespace footprint
{

/// A text of bounded length: a longer one is cut, and says so. UTF-8 stays UTF-8.
/// @param columns how many columns of fixed width it may take.
std::string Shortened(const std::string& text, std::size_t columns);

/// The number that a whole text is, without blanks; nothing for other texts and for numbers of more than 15 digits.
std::optional<std::int64_t> WholeNumber(const std::string& text);

/// A number with its digits in groups of three: "12 345". Other texts stay as they are.
std::string Grouped(const std::string& text);

/// Seconds since 1970 of "yyyy-mm-ddThh:mm:ss", of the same with "-" for ":", or of the date alone; nothing for what is
/// no such date.
std::optional<std::int64_t> Seconds(const std::string& date);

/// A date of those seconds, "yyyy-mm-dd hh:mm".
std::string DateText(std::int64_t seconds);

/// The first day of a month that is counted from January 1970.
std::int64_t SecondsOfMonth(std::int64_t month);

/// A creation date for people: "2015-03-01 08:05:59". Other texts stay as they are.
std::string ReadableDate(const std::string& date);

} // namespace footprint

#endif
