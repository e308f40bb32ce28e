#include "ReportValues.h"

#include "Terminal.h"

#include <array>
#include <cstdio>

namespace footprint
{

namespace
{

constexpr std::int64_t secondsOfDay = 86400;

/// Days since 1970 of a day of the Gregorian calendar.
std::int64_t Days(std::int64_t year, unsigned month, unsigned day)
{
    year -= month <= 2 ? 1 : 0;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const auto yearOfEra = static_cast<unsigned>(year - era * 400);
    const unsigned dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + static_cast<std::int64_t>(dayOfEra) - 719468;
}

/// Whether a text has the form of a pattern in which "0" stands for any digit and "?" for ":" or "-".
bool HasForm(const std::string& text, const std::string& pattern)
{
    if (text.size() != pattern.size()) {
        return false;
    }
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char character = text[index];
        const bool fits = pattern[index] == '0'   ? character >= '0' && character <= '9'
                          : pattern[index] == '?' ? character == ':' || character == '-'
                                                  : character == pattern[index];
        if (!fits) {
            return false;
        }
    }
    return true;
}

unsigned Digits(const std::string& text, std::size_t begin, std::size_t count)
{
    unsigned number = 0;
    for (std::size_t index = begin; index < begin + count; ++index) {
        number = number * 10 + static_cast<unsigned>(text[index] - '0');
    }
    return number;
}

constexpr const char* dateForm = "0000-00-00";
constexpr const char* timeForm = "0000-00-00T00?00?00";

} // namespace

std::string Shortened(const std::string& text, std::size_t columns)
{
    // A column takes at least a byte.
    if (text.size() <= columns || (text.size() <= 16 * columns && DisplayWidth(text) <= columns)) {
        return text;
    }
    std::string result;
    std::size_t width = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        std::size_t end = begin + 1;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80) {
            ++end;
        }
        const std::string character = text.substr(begin, end - begin);
        width += DisplayWidth(character);
        if (width + 1 > columns || result.size() > 16 * columns) {
            break;
        }
        result += character;
        begin = end;
    }
    return result + "\xE2\x80\xA6"; // an ellipsis
}

std::optional<std::int64_t> WholeNumber(const std::string& text)
{
    const bool isNegative = !text.empty() && text[0] == '-';
    const std::size_t begin = isNegative ? 1 : 0;
    if (text.size() == begin || text.size() > begin + 15 ||
        text.find_first_not_of("0123456789", begin) != std::string::npos) {
        return std::nullopt;
    }
    const std::int64_t number = std::stoll(text.substr(begin));
    return isNegative ? -number : number;
}

std::string Grouped(const std::string& text)
{
    const std::optional<std::int64_t> number = WholeNumber(text);
    if (!number) {
        return text;
    }
    std::string digits = std::to_string(*number < 0 ? -*number : *number);
    for (std::size_t place = digits.size(); place > 3;) {
        place -= 3;
        digits.insert(place, "\xC2\xA0"); // a blank that breaks no line
    }
    return (*number < 0 ? "\xE2\x88\x92" : "") + digits;
}

std::optional<std::int64_t> Seconds(const std::string& date)
{
    const bool hasTime = HasForm(date, timeForm);
    if (!hasTime && !HasForm(date, dateForm)) {
        return std::nullopt;
    }
    const unsigned month = Digits(date, 5, 2);
    const unsigned day = Digits(date, 8, 2);
    const std::int64_t hour = hasTime ? Digits(date, 11, 2) : 0;
    const std::int64_t minute = hasTime ? Digits(date, 14, 2) : 0;
    const std::int64_t second = hasTime ? Digits(date, 17, 2) : 0;
    if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60) {
        return std::nullopt;
    }
    return Days(Digits(date, 0, 4), month, day) * secondsOfDay + hour * 3600 + minute * 60 + second;
}

std::string DateText(std::int64_t seconds)
{
    std::int64_t days = seconds / secondsOfDay;
    std::int64_t rest = seconds % secondsOfDay;
    if (rest < 0) {
        rest += secondsOfDay;
        --days;
    }
    // Of the months, the last one that begins no later; twelve of them are no longer than 366 days.
    std::int64_t month = days >= 0 ? (days / 366) * 12 : ((days - 365) / 365 - 1) * 12;
    while (SecondsOfMonth(month + 1) <= days * secondsOfDay) {
        ++month;
    }
    const std::int64_t day = days - SecondsOfMonth(month) / secondsOfDay + 1;
    const std::int64_t year = 1970 + (month >= 0 ? month : month - 11) / 12;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d", static_cast<int>(year),
                  static_cast<int>(month - (year - 1970) * 12 + 1), static_cast<int>(day),
                  static_cast<int>(rest / 3600), static_cast<int>(rest % 3600 / 60));
    return text.data();
}

std::int64_t SecondsOfMonth(std::int64_t month)
{
    const std::int64_t years = (month >= 0 ? month : month - 11) / 12;
    return Days(1970 + years, static_cast<unsigned>(month - years * 12) + 1, 1) * secondsOfDay;
}

std::string ReadableDate(const std::string& date)
{
    if (!HasForm(date, timeForm)) {
        return date;
    }
    std::string text = date;
    text[10] = ' ';
    text[13] = ':';
    text[16] = ':';
    return text;
}

} // namespace footprint
