#include "XmlStreams.h"

#include "AttributeNode.h"
#include "Checksum.h"
#include "DeviceFootprint.h"
#include "ElementNode.h"
#include "FileStreams.h"
#include "TextSink.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <istream>
#include <iterator>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <typeinfo>

namespace KvDeviceFootprint
{

namespace
{

const char* const EncodingError = "UTF-8 encoding error";

bool IsNoUnicodeCharacter(std::uint32_t value)
{
    return (value >= 0xD800 && value <= 0xDFFF) || value > 0x10FFFF || value == 0xFFFE || value == 0xFFFF;
}

/// A character of a value takes at most so many in a file: "&#4294967295;".
constexpr std::size_t MaxEscapedLength = 13;

/// Whether a value's character stays as it is in a file: printable as by iswprint in the "C" locale, ASCII, no entity.
constexpr bool IsPlain(wchar_t character)
{
    if (character < 0x20 || character > 0x7E) {
        return false;
    }
    switch (character) {
    case L'&':
    case L'<':
    case L'>':
    case L'"':
    case L'\'':
        return false;
    default:
        return true;
    }
}

/// What the characters below 256 become in a file: themselves, an entity or a decimal reference, six characters at
/// most.
class EscapeTable
{
public:
    constexpr EscapeTable()
    {
        for (std::size_t i = 0; i < std::size(m_rows); ++i) {
            if (IsPlain(static_cast<wchar_t>(i))) {
                Append(i, static_cast<char>(i));
                m_isPlain[i] = 1;
                continue;
            }
            Append(i, '&');
            Append(i, '#');
            for (std::size_t unit = i < 10 ? 1 : i < 100 ? 10 : 100; unit != 0; unit /= 10) {
                Append(i, static_cast<char>('0' + i / unit % 10));
            }
            Append(i, ';');
        }
        SetEntity('&', "&amp;");
        SetEntity('<', "&lt;");
        SetEntity('>', "&gt;");
        SetEntity('"', "&quot;");
        SetEntity('\'', "&apos;");
    }

    static constexpr std::size_t Size = 256;

    /// 1 for a character that stays, 0 for others.
    constexpr unsigned IsPlainAt(std::uint32_t code) const { return m_isPlain[code]; }
    char* Put(char* to, std::uint32_t code) const
    {
        const Row& row = m_rows[code];
        std::memcpy(to, row.text, sizeof row.text); // of one size; what comes next goes over what is too much
        return to + row.length;
    }

private:
    struct Row
    {
        char text[8] = {};
        std::uint8_t length = 0;
    };

    constexpr void Append(std::size_t i, char character) { m_rows[i].text[m_rows[i].length++] = character; }
    constexpr void SetEntity(char character, const char* text)
    {
        const auto i = static_cast<std::size_t>(character);
        for (m_rows[i].length = 0; *text != '\0'; ++text) {
            Append(i, *text);
        }
    }

    Row m_rows[Size];
    std::uint8_t m_isPlain[Size] = {};
};

/// Writes the decimal reference of a character above those of the table.
char* PutReference(char* to, std::uint32_t code)
{
    char digits[10];
    char* const end = std::end(digits);
    char* begin = end;
    for (; code != 0; code /= 10) {
        *--begin = static_cast<char>('0' + code % 10);
    }
    *to++ = '&';
    *to++ = '#';
    to = std::copy(begin, end, to);
    *to++ = ';';
    return to;
}

/// Writes what a value becomes in a file.
/// @param to has room for MaxEscapedLength times its length.
/// @return behind the last character written.
char* PutEscaped(char* to, const wchar_t* text, std::size_t length)
{
    static constexpr EscapeTable table;
    const wchar_t* const end = text + length;
    for (;;) {
        // Two at once: for more, most values are too short.
        while (end - text >= 2) {
            const auto first = static_cast<std::uint32_t>(text[0]);
            const auto second = static_cast<std::uint32_t>(text[1]);
            if ((first | second) >= EscapeTable::Size || (table.IsPlainAt(first) & table.IsPlainAt(second)) == 0) {
                break;
            }
            to[0] = static_cast<char>(first);
            to[1] = static_cast<char>(second);
            to += 2;
            text += 2;
        }
        if (text == end) {
            break;
        }
        const auto code = static_cast<std::uint32_t>(*text++);
        to = code < EscapeTable::Size ? table.Put(to, code) : PutReference(to, code);
    }
    return to;
}

int DigitValue(wchar_t character)
{
    if (character >= L'0' && character <= L'9') {
        return static_cast<int>(character - L'0');
    }
    if (character >= L'a' && character <= L'f') {
        return static_cast<int>(character - L'a') + 10;
    }
    if (character >= L'A' && character <= L'F') {
        return static_cast<int>(character - L'A') + 10;
    }
    return std::numeric_limits<int>::max();
}

/// Reads the digits of a reference up to its ";", modulo 2^32.
/// @return behind the ";"; null if there is no digit, anything else among them, or no ";".
template<class Char>
const Char* ReadNumber(const Char* digit, const Char* end, int base, wchar_t& character)
{
    const Char* const begin = digit;
    std::uint32_t number = 0;
    for (; digit != end; ++digit) {
        const int value = DigitValue(static_cast<wchar_t>(*digit));
        if (value >= base) {
            break;
        }
        number = number * static_cast<std::uint32_t>(base) + static_cast<std::uint32_t>(value);
    }
    if (digit == begin || digit == end || *digit != Char(';')) {
        return nullptr;
    }
    character = static_cast<wchar_t>(number);
    return digit + 1;
}

/// Reads the reference whose "&" stands before @p text.
/// @return behind its ";"; null if it stands for no character, and the "&" is just that.
template<class Char>
const Char* ReadReference(const Char* text, const Char* end, wchar_t& character)
{
    if (text != end && *text == Char('#')) {
        ++text;
        return text != end && *text == Char('x') ? ReadNumber(text + 1, end, 16, character)
                                                 : ReadNumber(text, end, 10, character);
    }
    for (const XmlEntity& entity : s_XmlEntities) {
        const wchar_t* expected = entity.text + 1;
        const Char* cursor = text;
        while (*expected != L'\0' && cursor != end && static_cast<wchar_t>(*cursor) == *expected) {
            ++expected;
            ++cursor;
        }
        if (*expected == L'\0') {
            character = entity.character;
            return cursor;
        }
    }
    return nullptr;
}

/// Writes a value without its references. What replaces one is not looked at again.
/// @param to has room for as many characters; may be where the text begins.
/// @return behind the last character written.
template<class Char>
wchar_t* FromXML(const Char* text, const Char* end, wchar_t* to)
{
    while (text != end) {
        auto character = static_cast<wchar_t>(*text++);
        if (character == L'&') {
            const Char* const behind = ReadReference(text, end, character);
            text = behind != nullptr ? behind : text;
        }
        *to++ = character;
    }
    return to;
}

/// The bytes that a name as the writer gives it may hold.
struct NameTable
{
    NameTable()
    {
        isNameByte.fill(true);
        for (const char byte : {' ', '\t', '=', '"', '<', '>', '/'}) {
            isNameByte[static_cast<unsigned char>(byte)] = false;
        }
    }
    std::array<bool, 256> isNameByte = {};
};

const char* SkipName(const char* cursor, const char* end)
{
    static const NameTable table;
    while (cursor != end && table.isNameByte[static_cast<unsigned char>(*cursor)]) {
        ++cursor;
    }
    return cursor;
}

/// Skips blanks and tabs. Indentation is blanks, many of them.
const char* SkipBlanks(const char* cursor, const char* end)
{
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    constexpr std::uint64_t eightBlanks = 0x2020202020202020U;
    for (std::uint64_t bytes = 0; end - cursor >= 8; cursor += 8) {
        std::memcpy(&bytes, cursor, sizeof bytes);
        if (bytes != eightBlanks) {
            cursor += __builtin_ctzll(bytes ^ eightBlanks) / 8;
            break;
        }
    }
#endif
    while (cursor != end && (*cursor == ' ' || *cursor == '\t')) {
        ++cursor;
    }
    return cursor;
}

/// The first byte that is a quote, but for the bits that are set in Ignored.
template<unsigned char Ignored>
const char* FindQuoteBut(const char* cursor, const char* end)
{
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    constexpr std::size_t ones = std::numeric_limits<std::size_t>::max() / 0xFF;
    for (std::size_t word = 0; static_cast<std::size_t>(end - cursor) >= sizeof word; cursor += sizeof word) {
        std::memcpy(&word, cursor, sizeof word);
        word = (word & ~(ones * Ignored)) ^ (ones * '"'); // zero in each byte that is one
        // The highest bit of each byte that is zero, up to the first; those above it say nothing.
        word = (word - ones) & ~word & (ones * 0x80);
        if (word != 0) {
            return cursor + __builtin_ctzll(word) / 8;
        }
    }
#endif
    while (cursor != end && (*cursor & ~Ignored) != '"') {
        ++cursor;
    }
    return cursor;
}

const char* FindQuote(const char* cursor, const char* end)
{
    return FindQuoteBut<0>(cursor, end);
}

/// The same, and whether there is an "&" before the quote.
const char* FindQuote(const char* cursor, const char* end, bool& hasReference)
{
    // The two differ in one bit. Without it both are the quote, and one search finds which is first.
    constexpr unsigned char difference = '"' ^ '&';
    static_assert(('"' & difference) == 0 && (difference & (difference - 1)) == 0);
    cursor = FindQuoteBut<difference>(cursor, end);
    hasReference = cursor != end && *cursor == '&';
    return hasReference ? FindQuote(cursor, end) : cursor;
}

template<class Word>
bool IsSameWord(const char* lhs, const char* rhs)
{
    Word left = 0;
    Word right = 0;
    std::memcpy(&left, lhs, sizeof left);
    std::memcpy(&right, rhs, sizeof right);
    return left == right;
}

/// std::memcmp() tells more than is asked here, at the price of a call. The last words may overlap those before.
bool IsSame(const char* lhs, const char* rhs, std::size_t count)
{
    if (count >= 8) {
        for (std::size_t i = 0; i + 8 < count; i += 8) {
            if (!IsSameWord<std::uint64_t>(lhs + i, rhs + i)) {
                return false;
            }
        }
        return IsSameWord<std::uint64_t>(lhs + count - 8, rhs + count - 8);
    }
    if (count >= 4) {
        return IsSameWord<std::uint32_t>(lhs, rhs) && IsSameWord<std::uint32_t>(lhs + count - 4, rhs + count - 4);
    }
    return std::equal(lhs, lhs + count, rhs);
}

bool IsEqual(const char* begin, std::size_t length, const std::string& text)
{
    return length == text.size() && IsSame(begin, text.data(), length);
}

bool StartsWith(const char* begin, const char* end, const std::string& text)
{
    return static_cast<std::size_t>(end - begin) >= text.size() && IsSame(begin, text.data(), text.size());
}

} // namespace

const std::array<XmlEntity, 5> s_XmlEntities = {
    {{L"&amp;", L'&'}, {L"&lt;", L'<'}, {L"&gt;", L'>'}, {L"&quot;", L'"'}, {L"&apos;", L'\''}}};

CAbstractStream::~CAbstractStream() = default;

void CAbstractStream::WriteAttributeValue(const std::string& text)
{
    WriteNonEmptyString(text);
}

void CAbstractStream::WriteBeginToken()
{
    static const std::string token("<");
    WriteNonEmptyString(token);
}

void CAbstractStream::WriteEndToken()
{
    static const std::string token(">");
    WriteNonEmptyString(token);
}

void CAbstractStream::WriteBeginEndToken()
{
    static const std::string token("</");
    WriteNonEmptyString(token);
}

void CAbstractStream::WriteNoAddedEndToken()
{
    static const std::string token("/>");
    WriteNonEmptyString(token);
}

void CAbstractStream::WriteSpaces(std::size_t count)
{
    if (count > 0) {
        WriteNonEmptyString(std::string(count, ' '));
    }
}

COutStream::~COutStream() = default;

void COutStream::WriteNonEmptyString(const std::string& text)
{
    m_output->write(text.data(), static_cast<std::streamsize>(text.size()));
}

void COutStream::WriteNewLine()
{
    m_output->put('\n');
    m_output->flush();
}

void COutStream::WriteConnectedDeviceLine(const std::string& line, bool /*first*/)
{
    WriteNonEmptyString(line);
}

CXmlStreamReader::CXmlStreamReader(std::istream& input, const std::string& name)
    : m_input(&input), m_file(dynamic_cast<CReadBuffer*>(input.rdbuf())), m_name(&name)
{
}

CXmlStreamReader::~CXmlStreamReader() = default;

bool CXmlStreamReader::NextToken()
{
    m_isEndToken = false;
    m_hasNoChildren = false;
    m_attributesState = eNotTried;
    ++m_lineNumber;
    if (m_file != nullptr && m_file->TakeLine(m_begin, m_end)) {
        m_isAscii = m_file->IsAscii();
    } else if (!ReadLine()) {
        return false;
    }
    if (!m_isAscii && !ValidateToken()) {
        return false;
    }
    if (m_begin == m_end) {
        return true;
    }
    const char* const lineEnd = m_end;
    m_begin = SkipBlanks(m_begin, m_end);
    if (m_begin == m_end) {
        // A line of blanks has no first character to start the token from. The exception is a part of the interface.
        throw std::out_of_range("CXmlStreamReader::NextToken: blank line");
    }
    if (lineEnd[-1] == '\r') {
        --m_end;
    }
    // Lengths count bytes here. A token of two characters that could set a flag is all ASCII, so this is the same.
    if (m_end - m_begin > 2) {
        if (m_begin[0] == '<' && m_begin[1] == '/') {
            m_isEndToken = true;
        } else if (m_end[-2] == '/' && m_end[-1] == '>') {
            m_hasNoChildren = true;
        }
    }
    return true;
}

/// Makes the next line the token.
bool CXmlStreamReader::ReadLine()
{
    bool failed = false;
    bool read = false;
    m_begin = nullptr;
    m_end = nullptr;
    m_isAscii = false;
    if (m_file != nullptr) {
        const CReadBuffer::TLineResult result = m_file->ReadLine(m_line, m_begin, m_end);
        read = result == CReadBuffer::eLine;
        failed = result == CReadBuffer::eFailure;
        // A line in a piece of its own is made of two buffers' contents.
        m_isAscii = m_file->IsAscii() && m_begin != m_line.data();
    } else {
        m_line.clear();
        std::getline(*m_input, m_line);
        read = !m_input->fail();
        failed = !read && !m_input->eof();
        m_begin = m_line.data();
        m_end = m_begin + m_line.size();
    }
    if (!read) {
        m_begin = m_end;
    }
    return failed ? CDeviceFootprint::SetLastError("Error reading xml") : read;
}

/// Tests that the token is UTF-8. If it is not, it becomes empty.
bool CXmlStreamReader::ValidateToken()
{
    m_isAscii = IsAscii(m_begin, m_end);
    if (m_isAscii) {
        return true;
    }
    const char* cursor = m_begin;
    const char* const end = m_end;
    m_end = m_begin; // also if reporting throws
    wchar_t character = 0;
    while (cursor != end) {
        if (!GetCharFromUTF8(cursor, end, character)) {
            return false;
        }
    }
    m_end = end;
    return true;
}

bool CXmlStreamReader::MayHold(const std::string& name) const
{
    // Widening a name gives negative characters for its bytes above 127, and no decoded character is negative. The
    // bytes of the line, though, could be equal to them.
    return m_isAscii || IsAscii(name.data(), name.data() + name.size());
}

bool CXmlStreamReader::IsEndToken(const std::string& name) const
{
    return m_isEndToken && MayHold(name) && StartsWith(m_begin + 2, m_end, name);
}

bool CXmlStreamReader::IsElement(const std::string& name) const
{
    if (m_isEndToken) {
        return false;
    }
    if (m_begin == m_end) {
        throw std::out_of_range("CXmlStreamReader::IsElement: empty token");
    }
    return MayHold(name) && StartsWith(m_begin + 1, m_end, name);
}

std::string CXmlStreamReader::GetCurrentElement() const
{
    std::wstring token;
    GetStringFromUTF8(std::string(m_begin, m_end), token);
    return NarrowText(token);
}

bool CXmlStreamReader::GetAttribute(const std::string& name, std::wstring& value)
{
    value.clear();
    Span span = {nullptr, 0};
    if (MayHold(name) && FindAttribute(name, span)) {
        DecodeValue(span, std::memchr(span.begin, '&', span.length) != nullptr, value);
    }
    return true;
}

bool CXmlStreamReader::GetAttribute(CReadOnlyAttribute& attribute)
{
    return GetAttribute(attribute.GetNodeName(), attribute.m_value);
}

/// Skips the opening ` name="` of an attribute; null if there is another text, or the name is too long.
const char* CXmlStreamReader::SkipOpening(const char* cursor, const char* end, const CNodeName& name)
{
    const CNodeName::Entry& entry = *name.m_entry;
    const auto available = static_cast<std::size_t>(end - cursor);
    const std::size_t length = entry.openingLength;
    if (length == 0 || available < length) {
        return nullptr;
    }
    std::uint64_t first = 0;
    if (available < sizeof first) {
        return IsSame(cursor, entry.opening.data(), length) ? cursor + length : nullptr;
    }
    // Most of the names that are tried are others, and differ early.
    std::memcpy(&first, cursor, sizeof first);
    const bool begins = ((first ^ entry.firstBytes) & entry.firstMask) == 0;
    if (!begins || length <= sizeof first) {
        return begins ? cursor + length : nullptr;
    }
    std::uint64_t last = 0;
    std::memcpy(&last, cursor + length - sizeof last, sizeof last);
    return last == entry.lastBytes &&
                   (length <= 2 * sizeof first ||
                    IsSame(cursor + sizeof first, entry.opening.data() + sizeof first, length - 2 * sizeof first))
               ? cursor + length
               : nullptr;
}

bool CXmlStreamReader::GetAttributes(CElementNode& element, const CElementLayout& layout)
{
    // One walk over both. An attribute that stands out of order, twice or is unknown is found by none of the layout's.
    const char* cursor = nullptr;
    const char* end = nullptr;
    if (!FindAttributes(element.GetElementName(), cursor, end)) {
        return false;
    }
    auto row = layout.Attributes().begin();
    const auto lastRow = layout.Attributes().end();
    while (cursor != end) {
        const char* value = nullptr;
        for (; row != lastRow; ++row) {
            value = SkipOpening(cursor, end, row->name);
            if (value != nullptr) {
                break;
            }
            row->In(element).Clear();
        }
        if (value == nullptr) {
            return false;
        }
        bool hasReference = false;
        const char* const quote = FindQuote(value, end, hasReference);
        if (quote == end) {
            return false;
        }
        DecodeValue({value, static_cast<std::size_t>(quote - value)}, hasReference, row->In(element).m_value);
        cursor = quote + 1;
        ++row;
    }
    for (; row != lastRow; ++row) {
        row->In(element).Clear();
    }
    return true;
}

bool CXmlStreamReader::AreAttributesLocated()
{
    if (m_attributesState == eNotTried) {
        m_attributesState = LocateAttributes() ? eLocated : eOtherForm;
    }
    return m_attributesState == eLocated;
}

bool CXmlStreamReader::FindAttribute(const std::string& name, Span& value)
{
    if (!AreAttributesLocated()) {
        return FindByText(name, value);
    }
    const auto found = std::find_if(m_attributes.begin(), m_attributes.end(), [&name](const LocatedAttribute& located) {
        return IsEqual(located.name.begin, located.name.length, name);
    });
    if (found == m_attributes.end()) {
        return false;
    }
    value = found->value;
    return true;
}

/// Finds where the attributes of a start tag begin, behind the tag's name, and where they end. False if the token does
/// not begin as one.
/// @param expected what the name is nearly always; any other will do as well.
bool CXmlStreamReader::FindAttributes(const std::string& expected, const char*& begin, const char*& end) const
{
    end = m_end;
    if (m_hasNoChildren) {
        end -= 2;
    } else if (end != m_begin && end[-1] == '>') {
        --end;
    }
    if (m_begin == end || *m_begin != '<') {
        return false;
    }
    begin = m_begin + 1;
    if (StartsWith(begin, end, expected)) {
        begin += expected.size();
    }
    begin = SkipName(begin, end);
    return begin != m_begin + 1;
}

/// Splits a start tag in the writer's own form into its attributes. A plain search could find a name inside a value
/// that ends in ` name=`, and read wrong data back.
bool CXmlStreamReader::LocateAttributes()
{
    m_attributes.clear();
    const char* cursor = nullptr;
    const char* end = nullptr;
    if (!FindAttributes(std::string(), cursor, end)) {
        return false;
    }
    while (cursor != end) {
        if (*cursor != ' ') {
            return false;
        }
        const char* const begin = ++cursor;
        cursor = SkipName(cursor, end);
        if (cursor == begin || end - cursor < 2 || cursor[0] != '=' || cursor[1] != '"') {
            return false;
        }
        const char* const value = cursor + 2;
        const char* const quote = FindQuote(value, end);
        if (quote == end) {
            return false;
        }
        m_attributes.push_back(
            {{begin, static_cast<std::size_t>(cursor - begin)}, {value, static_cast<std::size_t>(quote - value)}});
        cursor = quote + 1;
    }
    return true;
}

bool CXmlStreamReader::FindByText(const std::string& name, Span& value) const
{
    const std::string wanted = " " + name + "=\"";
    const char* const found = std::search(m_begin, m_end, wanted.begin(), wanted.end());
    if (found == m_end) {
        return false;
    }
    value.begin = found + wanted.size();
    value.length = static_cast<std::size_t>(FindQuote(value.begin, m_end) - value.begin);
    return true;
}

void CXmlStreamReader::DecodeValue(const Span& span, bool hasReference, std::wstring& value) const
{
    const char* const end = span.begin + span.length;
    if (!m_isAscii) {
        value.clear();
        GetStringFromUTF8(std::string(span.begin, span.length), value);
        if (hasReference) {
            value.resize(static_cast<std::size_t>(FromXML(value.data(), value.data() + value.size(), value.data()) -
                                                  value.data()));
        }
    } else if (!hasReference) {
        // Made new: growing it would fill it first.
        value = std::wstring(span.begin, end);
    } else if (wchar_t room[256]; span.length <= std::size(room)) {
        value = std::wstring(std::begin(room), FromXML(span.begin, end, std::begin(room)));
    } else {
        value.resize(span.length);
        value.resize(static_cast<std::size_t>(FromXML(span.begin, end, value.data()) - value.data()));
        value.shrink_to_fit();
    }
}

bool CXmlStreamReader::SkipCurrentElement()
{
    // Counts instead of calling itself: a file may nest unknown elements to any depth.
    std::size_t open = 0;
    do {
        if (m_isEndToken) {
            open -= open > 0 ? 1U : 0U;
        } else if (!m_hasNoChildren) {
            ++open;
        }
        if (!NextToken()) {
            return false;
        }
    } while (open > 0);
    return true;
}

std::string CXmlStreamReader::GetCurrentPositionText() const
{
    return (m_name->empty() ? "" : *m_name + ", ") + "line " + std::to_string(m_lineNumber);
}

bool CXmlStreamReader::GetStringFromUTF8(const std::string& text, std::wstring& decoded) const
{
    const char* cursor = text.data();
    const char* const end = cursor + text.size();
    decoded.reserve(decoded.size() + text.size());
    while (cursor != end) {
        wchar_t character = 0;
        if (!GetCharFromUTF8(cursor, end, character)) {
            return false;
        }
        decoded += character;
    }
    return true;
}

bool CXmlStreamReader::GetCharFromUTF8(const char*& cursor, const char* end, wchar_t& character) const
{
    // The smallest value that needs a sequence of so many bytes.
    static const std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};

    if (cursor == end) {
        return InvalidUTF8("");
    }
    const auto lead = static_cast<unsigned char>(*cursor);
    std::ptrdiff_t length = 0;
    std::uint32_t value = 0;
    if (lead < 0x80) {
        length = 1;
        value = lead;
    } else if ((lead & 0xE0) == 0xC0) {
        length = 2;
        value = lead & 0x1FU;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3;
        value = lead & 0x0FU;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4;
        value = lead & 0x07U;
    } else {
        return InvalidUTF8("lead is invalid");
    }
    for (std::ptrdiff_t i = 1; i < length; ++i) {
        if (cursor + i == end) {
            return InvalidUTF8("");
        }
        const auto following = static_cast<unsigned char>(cursor[i]);
        if ((following & 0xC0) != 0x80) {
            return InvalidUTF8("sequence incomplete");
        }
        value = (value << 6) | (following & 0x3FU);
    }
    if (IsNoUnicodeCharacter(value)) {
        return InvalidUTF8("no unicode character");
    }
    if (value < smallest[length]) {
        return InvalidUTF8("sequence is too long");
    }
    character = static_cast<wchar_t>(value);
    cursor += length;
    return true;
}

bool CXmlStreamReader::InvalidUTF8(const std::string& detail) const
{
    // A line number always stands in the position, so there is always something to separate.
    return CDeviceFootprint::SetLastError(GetCurrentPositionText() + ", " + EncodingError +
                                          (detail.empty() ? "" : ", " + detail));
}

bool CXmlStreamReader::EnterElement()
{
    if (m_depth == MaxDepth) {
        return CDeviceFootprint::SetLastError(GetCurrentPositionText() + ", elements are nested too deeply");
    }
    ++m_depth;
    return true;
}

namespace
{

/// The sink behind a stream on which nobody looks while it is written to, or null.
CTextSink* SinkBehind(const std::ostream& output)
{
    auto* buffer = dynamic_cast<CGatherBuffer*>(output.rdbuf());
    return buffer == nullptr ? nullptr : &buffer->Sink();
}

} // namespace

CXmlStreamWriter::CXmlStreamWriter(CAbstractStream& output, const std::string& name)
    : m_output(&output), m_sink(nullptr), m_name(&name),
      m_isForChecksum(dynamic_cast<CChecksumStream*>(&output) != nullptr)
{
    if (typeid(output) == typeid(COutStream)) {
        m_sink = SinkBehind(*static_cast<COutStream&>(output).m_output);
    }
}

CXmlStreamWriter::CXmlStreamWriter(CAbstractStream& output, const std::string& name, CTextSink& sink)
    : m_output(&output), m_sink(&sink), m_name(&name), m_isForChecksum(true)
{
}

CXmlStreamWriter::~CXmlStreamWriter() = default;

bool CXmlStreamWriter::WriteFirstLine()
{
    static const std::string firstLine("<?xml version=\"1.0\" encoding=\"utf-8\" ?>");
    if (m_sink == nullptr) {
        m_output->WriteNonEmptyString(firstLine);
        m_output->WriteNewLine();
    } else if (!m_isForChecksum) {
        m_sink->Put(firstLine);
        m_sink->Put("\n", 1);
    }
    return true;
}

void CXmlStreamWriter::CloseStartTag()
{
    if (m_sink != nullptr) {
        m_sink->Advance(PutClose(m_sink->Reserve(ClosePieceSize)));
        return;
    }
    const bool isEmpty = m_isEmptyClosePending;
    m_isEmptyClosePending = false;
    if (isEmpty) {
        m_output->WriteNoAddedEndToken();
    } else {
        m_output->WriteEndToken();
    }
    m_output->WriteNewLine();
}

/// Writes the ">" or "/>" and line end that the tag before still lacks.
char* CXmlStreamWriter::PutClose(char* to)
{
    // Of one size; what comes next goes over what is too much.
    std::memcpy(to, m_isEmptyClosePending ? "/>\n" : ">\n\0", ClosePieceSize);
    to += m_isEmptyClosePending ? 3 : 2;
    m_isEmptyClosePending = false;
    return to;
}

/// Writes what the tag before still lacks, if there is one, then indentation, "<" or "</", and name.
void CXmlStreamWriter::WriteTag(bool closesTag, bool isEndTag, const std::string& name)
{
    const std::size_t indentation = m_openCount * IndentationStep;
    if (m_sink != nullptr) {
        constexpr std::size_t blanks = 8;
        char* to = m_sink->Reserve(ClosePieceSize + indentation + blanks + 2 + name.size());
        if (closesTag) {
            to = PutClose(to);
        }
        for (std::size_t i = 0; i < indentation; i += blanks) {
            std::memcpy(to + i, "        ", blanks);
        }
        to += indentation;
        *to++ = '<';
        *to = '/';
        to += isEndTag ? 1 : 0;
        m_sink->Advance(std::copy(name.begin(), name.end(), to));
        return;
    }
    if (closesTag) {
        CloseStartTag();
    }
    m_output->WriteSpaces(indentation);
    if (isEndTag) {
        m_output->WriteBeginEndToken();
    } else {
        m_output->WriteBeginToken();
    }
    m_output->WriteNonEmptyString(name);
}

bool CXmlStreamWriter::BeginElement(const std::string& name)
{
    if (WritesValuesOnly()) {
        ++m_openCount;
        return true;
    }
    WriteTag(m_openCount > 0, false, name);
    if (m_openCount == m_openElements.size()) {
        m_openElements.emplace_back();
    }
    m_openElements[m_openCount++] = name;
    m_isStartTagOpen = true;
    return true;
}

bool CXmlStreamWriter::EndElement()
{
    if (m_openCount == 0) {
        return true;
    }
    --m_openCount;
    if (WritesValuesOnly()) {
        return true;
    }
    if (m_isStartTagOpen) {
        m_isStartTagOpen = false;
        m_isEmptyClosePending = true;
        return true;
    }
    WriteTag(true, true, m_openElements[m_openCount]);
    if (m_openCount == 0) {
        CloseStartTag();
    }
    return true;
}

bool CXmlStreamWriter::SetAttribute(const std::string& name, const std::wstring& value)
{
    if (value.empty()) {
        return true;
    }
    // Escaping leaves nothing but printable ASCII, which is its own UTF-8 form.
    if (m_sink != nullptr) {
        PutAttribute(name, value);
        return true;
    }
    static const std::string blank(" ");
    m_attributeText.assign(name);
    m_attributeText += "=\"";
    char escaped[MaxEscapedLength];
    for (const wchar_t character : value) {
        m_attributeText.append(escaped, PutEscaped(escaped, &character, 1));
    }
    m_attributeText += '"';
    m_output->WriteNonEmptyString(blank);
    m_output->WriteAttributeValue(m_attributeText);
    return true;
}

namespace
{

/// So many characters of a value are escaped at once, into room for as many of the longest form.
constexpr std::size_t ValuePiece = 256;

std::size_t RoomForValue(const std::wstring& value)
{
    return std::min(ValuePiece, value.size()) * MaxEscapedLength + 1;
}

} // namespace

void CXmlStreamWriter::PutAttribute(const std::string& name, const std::wstring& value)
{
    char* to = m_sink->Reserve(name.size() + 3 + RoomForValue(value));
    if (!m_isForChecksum) {
        *to++ = ' '; // layout; the checksum does not see it
    }
    to = std::copy(name.begin(), name.end(), to);
    *to++ = '=';
    *to++ = '"';
    PutValue(to, value);
}

void CXmlStreamWriter::PutAttribute(const CNodeName& name, const std::wstring& value)
{
    const CNodeName::Entry& entry = *name.m_entry;
    if (entry.openingLength == 0) {
        PutAttribute(entry.text, value);
        return;
    }
    char* const to = m_sink->Reserve(entry.opening.size() + RoomForValue(value));
    // A fixed length: the value goes over what is too much. The blank is layout, which the checksum does not see.
    const std::size_t blank = m_isForChecksum ? 1 : 0;
    std::memcpy(to, entry.opening.data() + blank, entry.opening.size() - 1);
    PutValue(to + entry.openingLength - blank, value);
}

/// Writes value and quote to @p to, where there is RoomForValue(), and makes room for the rest of a long one.
inline void CXmlStreamWriter::PutValue(char* to, const std::wstring& value)
{
    std::size_t length = std::min(ValuePiece, value.size());
    to = PutEscaped(to, value.data(), length);
    if (length < value.size()) {
        m_sink->Advance(to);
        to = PutRest(value, length);
    }
    *to++ = '"';
    m_sink->Advance(to);
    if (m_isForChecksum) {
        // Often: a digest is a chain of steps that wait for each other, and meanwhile the processor works on what
        // follows.
        m_sink->DrainBlocks();
    }
}

/// Writes a value from its character @p begin on and gives where to go on, with room for a quote.
char* CXmlStreamWriter::PutRest(const std::wstring& value, std::size_t begin)
{
    char* to = nullptr;
    while (begin < value.size()) {
        const std::size_t length = std::min(ValuePiece, value.size() - begin);
        to = PutEscaped(m_sink->Reserve(length * MaxEscapedLength + 1), value.data() + begin, length);
        m_sink->Advance(to);
        begin += length;
    }
    return to;
}

bool CXmlStreamWriter::SetAttribute(const CReadOnlyAttribute& attribute)
{
    if (attribute.IsEmpty()) {
        return true;
    }
    const std::string& name = attribute.GetNodeName(); // virtual: an attribute class may have a name of its own
    if (m_sink != nullptr && &name == &attribute.m_name.Text()) {
        PutAttribute(attribute.m_name, attribute.m_value);
        return true;
    }
    return SetAttribute(name, attribute.m_value);
}

bool CXmlStreamWriter::SetAttributes(const CElementNode& element, const CElementLayout& layout)
{
    // The texts of a large document lie far apart in memory: all are asked for before the first is needed.
    for (const CElementLayout::Attribute& row : layout.Attributes()) {
        __builtin_prefetch(row.In(element).m_value.data());
    }
    for (const CElementLayout::Attribute& row : m_isForChecksum ? layout.SortedAttributes() : layout.Attributes()) {
        const CReadOnlyAttribute& attribute = row.In(element);
        if (attribute.IsEmpty()) {
            continue;
        }
        if (m_sink != nullptr) {
            PutAttribute(attribute.m_name, attribute.m_value);
        } else if (!SetAttribute(attribute)) {
            return false;
        }
    }
    return true;
}

bool CXmlStreamWriter::AddListEntry(const std::string& line, bool first, bool last)
{
    if (m_openCount < 2) {
        return false;
    }
    if (m_sink != nullptr) {
        m_sink->Drain(); // what the stream gets now comes behind it
    }
    if (first) {
        m_output->WriteEndToken();
        m_output->WriteNewLine();
    }
    m_output->WriteSpaces(m_openCount * IndentationStep);
    m_output->WriteConnectedDeviceLine(line, first);
    if (last) {
        // No line end: what follows closes this line with ">".
        m_isStartTagOpen = false;
    } else {
        m_output->WriteNewLine();
    }
    return true;
}

std::string CXmlStreamWriter::GetCurrentPositionText() const
{
    return m_name->empty() ? "" : *m_name + ", ";
}

bool CXmlStreamWriter::GetUTF8FromString(const std::wstring& text, std::string& encoded) const
{
    for (const wchar_t character : text) {
        const auto value = static_cast<std::uint32_t>(character);
        if (IsNoUnicodeCharacter(value)) {
            return InvalidUTF8("no unicode character");
        }
        const auto following = [value](unsigned shift) {
            return static_cast<char>(0x80U | ((value >> shift) & 0x3FU));
        };
        if (value < 0x80) {
            encoded += static_cast<char>(value);
        } else if (value < 0x800) {
            encoded += static_cast<char>(0xC0U | (value >> 6));
            encoded += following(0);
        } else if (value < 0x10000) {
            encoded += static_cast<char>(0xE0U | (value >> 12));
            encoded += following(6);
            encoded += following(0);
        } else {
            encoded += static_cast<char>(0xF0U | (value >> 18));
            encoded += following(12);
            encoded += following(6);
            encoded += following(0);
        }
    }
    return true;
}

bool CXmlStreamWriter::InvalidUTF8(const std::string& detail) const
{
    // The position text already ends in a comma; the two commas in a row are the form that readers of the message know.
    const std::string position = GetCurrentPositionText();
    return CDeviceFootprint::SetLastError(position + (position.empty() ? "" : ", ") + EncodingError +
                                          (detail.empty() ? "" : ", " + detail));
}

bool CXmlStreamWriter::IsTooDeep() const
{
    if (m_openCount < CXmlStreamReader::MaxDepth) {
        return false;
    }
    CDeviceFootprint::SetLastError(GetCurrentPositionText() + "elements are nested too deeply");
    return true;
}

} // namespace KvDeviceFootprint
