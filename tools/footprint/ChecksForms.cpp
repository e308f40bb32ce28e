#include "ChecksForms.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

namespace footprint
{

namespace
{

bool IsDigit(wchar_t character)
{
    return character >= L'0' && character <= L'9';
}

/// Whether the value is the pattern with a digit for each "d".
bool Matches(const std::wstring& value, const wchar_t* pattern)
{
    for (const wchar_t character : value) {
        if (*pattern == L'd' ? !IsDigit(character) : character != *pattern) {
            return false; // also at the end of the pattern
        }
        ++pattern;
    }
    return *pattern == L'\0';
}

/// The number that some digits make.
int NumberAt(const std::wstring& value, std::size_t begin, std::size_t length)
{
    int number = 0;
    for (const wchar_t digit : value.substr(begin, length)) {
        number = number * 10 + static_cast<int>(digit - L'0');
    }
    return number;
}

/// Whether a value that begins as yyyy-mm-dd does so with a day of the calendar.
bool IsDay(const std::wstring& value)
{
    const int year = NumberAt(value, 0, 4);
    const int month = NumberAt(value, 5, 2);
    const int day = NumberAt(value, 8, 2);
    const bool isLeapYear = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    const int days = month == 2                                              ? (isLeapYear ? 29 : 28)
                     : month == 4 || month == 6 || month == 9 || month == 11 ? 30
                                                                             : 31;
    return month >= 1 && month <= 12 && day >= 1 && day <= days;
}

bool IsDate(const std::wstring& value)
{
    return Matches(value, L"dddd-dd-dd") && IsDay(value);
}

bool IsTime(const std::wstring& value)
{
    return Matches(value, L"dddd-dd-ddTdd:dd:dd") && IsDay(value) && NumberAt(value, 11, 2) < 24 &&
           NumberAt(value, 14, 2) < 60 && NumberAt(value, 17, 2) < 60;
}

bool IsIndex(const std::wstring& value)
{
    return Matches(value, L"dd.dd");
}

bool IsPartNumber(const std::wstring& value)
{
    return Matches(value, L"dddd.dddd.dd");
}

/// Several part numbers can have blanks around them, which the facade takes away.
bool IsPartNumberList(const std::wstring& value)
{
    std::wstring list = value;
    if (list.find(L',') != std::wstring::npos) {
        list.erase(std::remove(list.begin(), list.end(), L' '), list.end());
    }
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(L',', begin), list.size());
        if (!IsPartNumber(list.substr(begin, end - begin))) {
            return false;
        }
        begin = end + 1;
    }
    return true;
}

bool IsCount(const std::wstring& value)
{
    return IsInteger(value) && value.front() != L'-';
}

bool IsBoolean(const std::wstring& value)
{
    return value == L"true" || value == L"false";
}

/// Part number, serial number, and at least one field more.
bool IsDeviceId(const std::wstring& value)
{
    const std::size_t first = value.find(L'-');
    const std::size_t second = first == std::wstring::npos ? first : value.find(L'-', first + 1);
    return second != std::wstring::npos && first > 0 && second > first + 1;
}

} // namespace

const CForm* FormOf(const std::string& element, const std::string& attribute)
{
    static const CForm date = {"date", "is no date of the form yyyy-mm-dd", IsDate};
    static const CForm time = {"time", "is no time of the form yyyy-mm-ddThh:mm:ss", IsTime};
    static const CForm index = {"part-change-index", "is no part change index of the form dd.dd", IsIndex};
    static const CForm number = {"part-number", "is no part number of the form dddd.dddd.dd", IsPartNumber};
    static const CForm numbers = {"part-number",
                                  "is no part number of the form dddd.dddd.dd, nor several with ',' "
                                  "between them",
                                  IsPartNumberList};
    static const CForm integer = {"integer", "is no decimal integer", IsInteger};
    static const CForm count = {"integer", "is no decimal integer that is not negative", IsCount};
    static const CForm boolean = {"boolean", "is neither 'true' nor 'false'", IsBoolean};
    static const CForm deviceId = {"device-id", "is no part number, serial number and more with '-' between them",
                                   IsDeviceId};
    // Of all elements that have the attribute, and of some.
    static const std::map<std::string, const CForm*> everywhere = {
        {"productDate", &date},     {"maintenanceDate", &date},   {"serviceDate", &date},
        {"creationDate", &time},    {"partChangeIndex", &index},  {"deviceId", &deviceId},
        {"serviceCode", &integer},  {"operatingHours", &integer}, {"makeAndBreakCycles", &integer},
        {"hardwareCode", &integer}, {"readCode", &integer},       {"productId", &integer},
        {"parentId", &count},       {"externConnected", &boolean}};
    // The second identification of a board is its maker's own, in whatever form he has.
    static const std::map<std::pair<std::string, std::string>, const CForm*> somewhere = {
        {{"Hardware", "partNumber"}, &numbers},
        {{"Hardware", "id"}, &integer},
        {{"Hardware", "sn"}, &integer},
        {{"ProgrammablePart", "partNumber"}, &number},
        {{"Product", "partNumber"}, &number},
        {{"Product", "id"}, &integer},
        {{"BPartIdentification", "partChangeIndex"}, nullptr}};
    const auto found = somewhere.find({element, attribute});
    if (found != somewhere.end()) {
        return found->second;
    }
    const auto common = everywhere.find(attribute);
    return common == everywhere.end() ? nullptr : common->second;
}

bool IsInteger(const std::wstring& value)
{
    const std::size_t digits = !value.empty() && value.front() == L'-' ? 1 : 0;
    return value.size() > digits &&
           std::all_of(value.begin() + static_cast<std::ptrdiff_t>(digits), value.end(), IsDigit);
}

std::wstring Number(const std::wstring& value)
{
    if (!IsInteger(value)) {
        return value;
    }
    const bool isNegative = value.front() == L'-';
    const std::size_t digits = std::min(value.find_first_not_of(L"-0"), value.size() - 1);
    const std::wstring number = value.substr(digits);
    return isNegative && number != L"0" ? L"-" + number : number;
}

std::wstring NameOfBoard(const std::wstring& value)
{
    const std::size_t bracket = value.find(L'[');
    if (bracket != std::wstring::npos && value.find(L',') == std::wstring::npos &&
        value.find(L']') == std::wstring::npos) {
        return {};
    }
    return value.substr(0, bracket);
}

} // namespace footprint
