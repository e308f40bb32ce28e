#include "CNyxConfig.h"

#include "ErrorReport.h"
#include "PlainNumbers.h"

#include <QString>

#include <algorithm>
#include <cstddef>
#include <locale>
#include <sstream>

namespace KvOrdo
{

using namespace KvDeviceFootprint;

namespace
{

/// Whether the text has the shape of the pattern, in which 'd' stands for an ASCII digit and all else for itself.
template<std::size_t Size>
bool HasShape(const std::wstring& text, const wchar_t (&pattern)[Size])
{
    return text.size() == Size - 1 &&
           std::equal(text.begin(), text.end(), pattern, [](wchar_t character, wchar_t expected) {
               return expected == L'd' ? IsDigit(character) : character == expected;
           });
}

void ReportInvalid(const std::wstring& text, bool throwOnError)
{
    WriteError(text);
    if (throwOnError) {
        WriteError(std::string("Throwing CNyxConfigException"));
        throw CNyxConfigException(text);
    }
}

/// A bound of a number and the message for a number beyond it.
struct NumberCheck
{
    bool failed;
    const char* message;
};

/// Reports the first check that failed.
template<std::size_t Count>
bool PassChecks(const NumberCheck (&checks)[Count], bool throwOnError)
{
    for (const NumberCheck& check : checks) {
        if (check.failed) {
            ReportError(check.message, throwOnError);
            return false;
        }
    }
    return true;
}

bool ToUnsigned(const std::wstring& text, unsigned int& number)
{
    long plain = 0;
    if (ReadPlainNumber(text, plain)) {
        number = static_cast<unsigned int>(plain);
        return true;
    }
    bool ok = false;
    const unsigned int value = QString::fromStdWString(text).toUInt(&ok, 10);
    if (ok) {
        number = value;
    }
    return ok;
}

} // namespace

bool CNyxConfig::validateDate(const std::wstring& value)
{
    return value.empty() || HasShape(value, L"dddd-dd-dd");
}

bool CNyxConfig::validatePartChangeIndex(const std::wstring& value)
{
    return value.empty() || HasShape(value, L"dd.dd");
}

void CNyxConfig::assertValidDate(const std::wstring& value, const std::wstring& name, bool throwOnError)
{
    if (!validateDate(value)) {
        ReportInvalid(L"CNyxConfig::assertValidDate: " + name + L" may only be empty or match pattern yyyy-mm-dd",
                      throwOnError);
    }
}

void CNyxConfig::assertValidPartChangeIndex(const std::wstring& value, const std::wstring& name, bool throwOnError)
{
    if (!validatePartChangeIndex(value)) {
        ReportInvalid(L"CNyxConfig::assertValidPartChangeIndex: " + name + L" may only be empty or match pattern dd.dd",
                      throwOnError);
    }
}

void CNyxConfig::assertNotEmpty(const std::wstring& value, const std::wstring& name, bool throwOnError)
{
    if (value.empty()) {
        ReportInvalid(L"CNyxConfig::assertNotEmpty: " + name + L" may not be empty", throwOnError);
    }
}

std::wstring CNyxConfig::parsePartNumber(long partNumber, long variant, bool throwOnError)
{
    const NumberCheck checks[] = {
        // The bound has a comma, though the text form has a point; messages stay as they are.
        {partNumber > 99999999, "CNyxConfig::parsePartNumber: HwBoardDescItem.partNumber must not be > 9999,9999"},
        {partNumber < 0, "CNyxConfig::parsePartNumber: HwBoardDescItem.partNumber must not be < 0"},
        {variant > 99, "CNyxConfig::parsePartNumber: HwBoardDescItem.variant must not be > 99"},
        {variant < 0, "CNyxConfig::parsePartNumber: HwBoardDescItem.variant must not be < 0"},
    };
    if (!PassChecks(checks, throwOnError)) {
        return {};
    }
    return PointedNumber({{partNumber / 10000, 4}, {partNumber % 10000, 4}, {variant, 2}});
}

std::wstring CNyxConfig::parsePartChangeIndex(long majorRevision, long minorRevision, bool throwOnError)
{
    // The messages name the operation above, not this one; they stay as they are.
    const NumberCheck checks[] = {
        {majorRevision > 99, "CNyxConfig::parsePartNumber: HwBoardDescItem.majorRevision must not be > 99"},
        {majorRevision < 0, "CNyxConfig::parsePartNumber: HwBoardDescItem.majorRevision must not be < 0"},
        {minorRevision > 99, "CNyxConfig::parsePartNumber: HwBoardDescItem.minorRevision must not be > 99"},
        {minorRevision < 0, "CNyxConfig::parsePartNumber: HwBoardDescItem.minorRevision must not be < 0"},
    };
    if (!PassChecks(checks, throwOnError)) {
        return {};
    }
    return PointedNumber({{majorRevision, 2}, {minorRevision, 2}});
}

long CNyxConfig::wStringToLong(const std::wstring& text, bool throwOnError)
{
    if (text.empty()) {
        return -1;
    }
    long number = 0;
    if (ReadPlainNumber(text, number)) {
        return number;
    }
    std::wistringstream stream(text);
    stream.imbue(std::locale::classic());
    stream >> number;
    if (!stream.fail() && stream.eof()) {
        return number;
    }
    if (throwOnError) {
        const std::wstring message = L"CNyxConfig::wStringToLong(): could not convert " + text + L" to long";
        WriteError(message);
        throw CNyxConfigException(message);
    }
    return -1;
}

std::wstring CNyxConfig::intToWstring(long value)
{
    return std::to_wstring(value);
}

std::wstring CNyxConfig::boolToWstring(bool value)
{
    return value ? L"true" : L"false";
}

std::wstring CNyxConfig::getCAttributeStrValue(KvDeviceFootprint::CAttribute& attribute, bool /*throwOnError*/)
{
    std::wstring value;
    attribute.Get(value);
    return value;
}

long CNyxConfig::getCAttributeLongValue(KvDeviceFootprint::CAttribute& attribute, bool throwOnError)
{
    return wStringToLong(getCAttributeStrValue(attribute, throwOnError), throwOnError);
}

bool CNyxConfig::extractNamePathAndVariantOption(const std::wstring& namePath, std::wstring& name,
                                                 unsigned int& variant, unsigned int& option) const
{
    const std::size_t open = namePath.find(L'[');
    const std::size_t close = namePath.find(L']');
    const std::size_t comma = namePath.find(L',');
    // A mark that is missing is the index before the first one; a text up to a missing mark reaches to the end.
    const auto between = [&namePath](std::size_t left, std::size_t right) {
        return namePath.substr(left + 1, right - left - 1);
    };
    if (comma != std::wstring::npos) {
        name = namePath.substr(0, open);
        const bool hasVariant = comma != open + 1;
        const bool hasOption = close != comma + 1;
        if (hasVariant && !ToUnsigned(between(open, comma), variant)) {
            // Without an option the option is known to be 0 all the same.
            option = hasOption ? option : 0;
            return false;
        }
        variant = hasVariant ? variant : 0;
        if (!hasOption) {
            option = 0;
            return true;
        }
        return ToUnsigned(between(comma, close), option);
    }
    option = 0;
    if (open == std::wstring::npos) {
        name = namePath;
        variant = 0;
        return true;
    }
    if (close == open + 1) {
        name = namePath.substr(0, open);
        variant = 0;
        return true;
    }
    if (close == std::wstring::npos) {
        return true;
    }
    name = namePath.substr(0, open);
    return ToUnsigned(between(open, close), variant);
}

} // namespace KvOrdo
