#ifndef NYXCONFIG_ERRORJOURNAL_H
#define NYXCONFIG_ERRORJOURNAL_H

#include <cstdint>
#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <type_traits>

namespace NyxTest
{

/**
 * Takes what is written to the narrow and the wide error stream, in the order of writing, while it lives.
 *
 * The text has "[narrow]" or "[wide]" in front of each line and wherever a line goes on in the other stream. Characters
 * beyond printable ASCII stand as "\{141}", with their number in hexadecimal.
 */
class ErrorJournal
{
public:
    ErrorJournal()
        : m_narrow(*this, "[narrow]"), m_wide(*this, "[wide]"), m_formerNarrow(std::cerr.rdbuf(&m_narrow)),
          m_formerWide(std::wcerr.rdbuf(&m_wide))
    {
    }
    ErrorJournal(const ErrorJournal&) = delete;
    ErrorJournal& operator=(const ErrorJournal&) = delete;
    ~ErrorJournal()
    {
        std::cerr.rdbuf(m_formerNarrow);
        std::wcerr.rdbuf(m_formerWide);
    }

    /// What was written since construction or the last Take().
    std::string Take()
    {
        std::string text;
        text.swap(m_text);
        m_lastMark = nullptr;
        return text;
    }

private:
    template<class Char>
    class Buffer : public std::basic_streambuf<Char>
    {
    public:
        using Traits = std::char_traits<Char>;

        Buffer(ErrorJournal& journal, const char* mark) : m_journal(journal), m_mark(mark) {}

    protected:
        typename Traits::int_type overflow(typename Traits::int_type character) override
        {
            if (!Traits::eq_int_type(character, Traits::eof())) {
                using Unsigned = std::make_unsigned_t<Char>;
                m_journal.Append(m_mark, static_cast<Unsigned>(Traits::to_char_type(character)));
            }
            return Traits::not_eof(character);
        }

    private:
        ErrorJournal& m_journal;
        const char* m_mark;
    };

    void Append(const char* mark, std::uint32_t character)
    {
        if (m_lastMark != mark || (!m_text.empty() && m_text.back() == '\n')) {
            m_text += mark;
            m_lastMark = mark;
        }
        if (character == '\n' || (character >= ' ' && character < 0x7F)) {
            m_text += static_cast<char>(character);
            return;
        }
        std::ostringstream number;
        number << "\\{" << std::hex << character << "}";
        m_text += number.str();
    }

    std::string m_text;
    const char* m_lastMark = nullptr;
    Buffer<char> m_narrow;
    Buffer<wchar_t> m_wide;
    std::streambuf* m_formerNarrow;
    std::wstreambuf* m_formerWide;
};

/// A line of the journal.
inline std::string NarrowLine(const std::string& text)
{
    return "[narrow]" + text + "\n";
}

inline std::string WideLine(const std::string& text)
{
    return "[wide]" + text + "\n";
}

} // namespace NyxTest

#endif
