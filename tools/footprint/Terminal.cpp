#include "Terminal.h"

#include <array>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>
#include <type_traits>

#include <locale.h>
#include <unistd.h>

namespace footprint
{

namespace
{

constexpr std::uint32_t noCharacter = 0xFFFFFFFF;

/// Takes the character at @p position, which moves behind it. noCharacter, and one byte on, if there is no UTF-8.
std::uint32_t NextCharacter(const std::string& text, std::size_t& position)
{
    const auto byteAt = [&text](std::size_t index) {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
    };
    const unsigned first = byteAt(position);
    const std::size_t begin = position++;
    if (first < 0x80) {
        return first;
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4) {
        return noCharacter;
    }
    std::uint32_t character = first & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index) {
        const unsigned byte = byteAt(begin + index);
        if ((byte & 0xC0U) != 0x80) {
            return noCharacter;
        }
        character = character << 6U | (byte & 0x3FU);
    }
    constexpr std::array<std::uint32_t, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
    if (character < smallest[length] || character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) {
        return noCharacter;
    }
    position = begin + length;
    return character;
}

struct CRange
{
    std::uint32_t first;
    std::uint32_t last;
};

/// What moves the cursor, changes the direction of writing, breaks lines, is not to be seen, or is no character.
constexpr std::array<CRange, 18> harmful = {{{0x00, 0x1F},
                                             {0x7F, 0x9F},
                                             {0xAD, 0xAD},
                                             {0x34F, 0x34F},
                                             {0x61C, 0x61C},
                                             {0x115F, 0x1160},
                                             {0x17B4, 0x17B5},
                                             {0x180B, 0x180F},
                                             {0x200B, 0x200F},
                                             {0x2028, 0x202E},
                                             {0x2060, 0x206F},
                                             {0x3164, 0x3164},
                                             {0xFE00, 0xFE0F},
                                             {0xFEFF, 0xFEFF},
                                             {0xFFA0, 0xFFA0},
                                             {0xFFF0, 0xFFFB},
                                             {0x1D173, 0x1D17A},
                                             {0xE0000, 0xE0FFF}}};

bool IsHarmful(std::uint32_t character)
{
    for (const CRange& range : harmful) {
        if (character >= range.first && character <= range.last) {
            return true;
        }
    }
    return (character & 0xFFFEU) == 0xFFFE;
}

std::string Escape(const char* format, std::uint32_t value)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), format, static_cast<unsigned>(value));
    return text.data();
}

/// A locale in which wcwidth() knows all characters, in this thread while it lives.
class CUtf8Locale
{
public:
    CUtf8Locale() : m_former(Get() == locale_t() ? locale_t() : uselocale(Get())) {}
    CUtf8Locale(const CUtf8Locale&) = delete;
    CUtf8Locale& operator=(const CUtf8Locale&) = delete;
    ~CUtf8Locale()
    {
        if (m_former != locale_t()) {
            uselocale(m_former);
        }
    }

private:
    struct CFree
    {
        void operator()(locale_t locale) const { freelocale(locale); }
    };

    static locale_t Get()
    {
        static const std::unique_ptr<std::remove_pointer_t<locale_t>, CFree> s_locale(
            newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t()));
        return s_locale.get();
    }

    locale_t m_former;
};

} // namespace

std::string Harmless(const std::string& text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t begin = position;
        const std::uint32_t character = NextCharacter(text, position);
        if (character == noCharacter) {
            result += Escape("\\x%02x", static_cast<unsigned char>(text[begin]));
        } else if (!IsHarmful(character)) {
            result.append(text, begin, position - begin);
        } else {
            result += Escape(character < 0x80 ? "\\x%02x" : character < 0x10000 ? "\\u%04x" : "\\U%08x", character);
        }
    }
    return result;
}

std::size_t DisplayWidth(const std::string& text)
{
    std::unique_ptr<CUtf8Locale> locale; // only texts beyond ASCII need it
    std::size_t width = 0;
    for (std::size_t position = 0; position < text.size();) {
        const std::uint32_t character = NextCharacter(text, position);
        if (character < 0x80 || character == noCharacter) {
            ++width;
            continue;
        }
        if (!locale) {
            locale = std::make_unique<CUtf8Locale>();
        }
        const int columns = wcwidth(static_cast<wchar_t>(character));
        width += columns < 0 ? 1 : static_cast<std::size_t>(columns);
    }
    return width;
}

bool ColourWanted(int descriptor)
{
    const char* const terminal = std::getenv("TERM");
    return std::getenv("NO_COLOR") == nullptr && isatty(descriptor) == 1 && terminal != nullptr &&
           std::strcmp(terminal, "dumb") != 0 && *terminal != '\0';
}

std::string Styled(const std::string& text, EStyle style, bool colour)
{
    if (!colour || style == EStyle::ePlain || text.empty()) {
        return text;
    }
    const char* begin = "\x1b[1m";
    switch (style) {
    case EStyle::eGood:
        begin = "\x1b[32m";
        break;
    case EStyle::eBad:
        begin = "\x1b[1;31m";
        break;
    case EStyle::eFaint:
        begin = "\x1b[2m";
        break;
    default:
        break;
    }
    return begin + text + "\x1b[0m";
}

} // namespace footprint
