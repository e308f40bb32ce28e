#include "JsonText.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace NyxTest
{

namespace
{

bool IsCharacter(std::uint32_t unit)
{
    return unit < 0xD800 || (unit > 0xDFFF && unit <= 0x10FFFF);
}

void AppendUtf8(std::string& text, std::uint32_t character)
{
    const auto append = [&text](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
    const auto appendRest = [&append, character](int shift) {
        for (; shift >= 0; shift -= 6) {
            append(0x80 | (character >> shift & 0x3F));
        }
    };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | character >> 6);
        appendRest(0);
    } else if (character < 0x10000) {
        append(0xE0 | character >> 12);
        appendRest(6);
    } else {
        append(0xF0 | character >> 18);
        appendRest(12);
    }
}

nlohmann::json JsonUnits(const std::vector<std::uint32_t>& units)
{
    if (!std::all_of(units.begin(), units.end(), IsCharacter)) {
        return {{"w", units}};
    }
    std::string text;
    for (const std::uint32_t unit : units) {
        AppendUtf8(text, unit);
    }
    return text;
}

} // namespace

nlohmann::json JsonText(const std::wstring& text)
{
    std::vector<std::uint32_t> units;
    for (const wchar_t unit : text) {
        units.push_back(static_cast<std::uint32_t>(unit));
    }
    return JsonUnits(units);
}

nlohmann::json JsonText(const std::string& text)
{
    std::vector<std::uint32_t> units;
    for (const char unit : text) {
        units.push_back(static_cast<unsigned char>(unit));
    }
    return JsonUnits(units);
}

} // namespace NyxTest
