#ifndef NYXCONFIG_PLAINNUMBERS_H
#define NYXCONFIG_PLAINNUMBERS_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace KvDeviceFootprint
{

// Nearly all numbers of a footprint are a few plain digits. These read and write them without what the general
// conversions need (streams, locales, QString), which cost more than all else that a mapping does. Every other text
// goes to the general conversion.

inline bool IsDigit(wchar_t character)
{
    return character >= L'0' && character <= L'9';
}

/// Reads one to nine digits, which fit a long of 32 bits. False, with @p number left alone, for any other text.
inline bool ReadPlainNumber(const std::wstring& text, long& number)
{
    if (text.empty() || text.size() > 9 || !std::all_of(text.begin(), text.end(), IsDigit)) {
        return false;
    }
    number = 0;
    for (const wchar_t digit : text) {
        number = 10 * number + (digit - L'0');
    }
    return true;
}

/// A part of a number in text: so many of its last digits.
struct DigitGroup
{
    long value; ///< not negative
    std::size_t digits;
};

/// Groups of digits, filled up by zeros, with a point between them.
template<std::size_t Count>
std::wstring PointedNumber(const DigitGroup (&groups)[Count])
{
    std::array<wchar_t, 32> room = {};
    wchar_t* to = room.data();
    for (const DigitGroup& group : groups) {
        if (to != room.data()) {
            *to++ = L'.';
        }
        long rest = group.value;
        for (std::size_t i = group.digits; i-- > 0; rest /= 10) {
            to[i] = static_cast<wchar_t>(L'0' + rest % 10);
        }
        to += group.digits;
    }
    return std::wstring(room.data(), to);
}

} // namespace KvDeviceFootprint

#endif
