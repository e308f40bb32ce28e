#include "XmlStreams.h"

#include "AttributeNode.h"
#include "Checksum.h"
#include "DeviceFootprint.h"
#include "FileStreams.h"
#include "TextSink.h"

#include <algorithm>
#include <charconv>
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

/// IsPlain() for all that is ASCII.
struct PlainTable
{
    constexpr PlainTable()
    {
        for (std::size_t i = 0; i < std::size(isPlain); ++i) {
            isPlain[i] = IsPlain(static_cast<wchar_t>(i));
        }
    }
    bool isPlain[128] = {};
};

/// Writes what a value's character becomes in a file: itself, an entity or a decimal reference.
char* PutEscaped(char* to, wchar_t character)
{
    const auto put = [&to](const char* text) { return std::copy_n(text, std::strlen(text), to); };
    switch (character) {
    case L'&':
        return put("&amp;");
    case L'<':
        return put("&lt;");
    case L'>':
        return put("&gt;");
    case L'"':
        return put("&quot;");
    case L'\'':
        return put("&apos;");
    default:
        break;
    }
    if (IsPlain(character)) {
        *to = static_cast<char>(character);
        return to + 1;
    }
    to = put("&#");
    to = std::to_chars(to, to + 10, static_cast<std::uint32_t>(character)).ptr;
    *to = ';';
    return to + 1;
}

/// The same for a whole text; @p to has room for MaxEscapedLength times its length.
char* PutEscaped(char* to, const wchar_t* text, std::size_t length)
{
    static constexpr PlainTable table;
    for (const wchar_t* const end = text + length; text != end; ++text) {
        if (static_cast<std::uint32_t>(*text) < std::size(table.isPlain) &&
            table.isPlain[static_cast<std::size_t>(*text)]) {
            *to++ = static_cast<char>(*text);
        } else {
            to = PutEscaped(to, *text);
        }
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

/// Reads the digits of a reference, modulo 2^32. False if there is none or anything else among them.
template<class Char>
bool ReadNumber(const Char* begin, const Char* end, int base, wchar_t& character)
{
    if (begin >= end) {
        return false;
    }
    std::uint32_t number = 0;
    for (const Char* digit = begin; digit != end; ++digit) {
        const int value = DigitValue(static_cast<wchar_t>(*digit));
        if (value >= base) {
            return false;
        }
        number = number * static_cast<std::uint32_t>(base) + static_cast<std::uint32_t>(value);
    }
    character = static_cast<wchar_t>(number);
    return true;
}

/// The character for which the reference from "&" to ";" stands. False if it stands for none and stays as it is.
template<class Char>
bool ResolveReference(const Char* begin, const Char* end, wchar_t& character)
{
    const auto length = static_cast<std::size_t>(end - begin);
    if (length >= 4 && begin[1] == Char('#')) {
        return begin[2] == Char('x') ? ReadNumber(begin + 3, end - 1, 16, character)
                                     : ReadNumber(begin + 2, end - 1, 10, character);
    }
    for (const XmlEntity& entity : s_XmlEntities) {
        // No entity begins another one, so a text that agrees up to the length of this one is this one.
        std::size_t same = 0;
        while (same < length && static_cast<wchar_t>(begin[same]) == entity.text[same]) {
            ++same;
        }
        if (same == length && entity.text[same] == L'\0') {
            character = entity.character;
            return true;
        }
    }
    return false;
}

/// Writes a value without its references. What replaces one is not looked at again.
/// @param to has room for as many characters; may be where the text begins.
/// @return behind the last character written.
template<class Char>
wchar_t* FromXML(const Char* text, const Char* end, wchar_t* to)
{
    const Char* semicolon = text;
    for (;;) {
        while (text != end && *text != Char('&')) {
            *to++ = static_cast<wchar_t>(*text++);
        }
        if (semicolon <= text) {
            semicolon = std::find(text, end, Char(';'));
        }
        if (semicolon == end) {
            break; // no reference ends any more
        }
        wchar_t character = L'&';
        text = ResolveReference(text, semicolon + 1, character) ? semicolon + 1 : text + 1;
        *to++ = character;
    }
    return std::transform(text, end, to, [](Char character) { return static_cast<wchar_t>(character); });
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
    constexpr std::uint64_t eightBlanks = 0x2020202020202020U;
    for (std::uint64_t bytes = eightBlanks; end - cursor >= 8; cursor += 8) {
        std::memcpy(&bytes, cursor, sizeof bytes);
        if (bytes != eightBlanks) {
            break;
        }
    }
    while (cursor != end && (*cursor == ' ' || *cursor == '\t')) {
        ++cursor;
    }
    return cursor;
}

const char* FindQuote(const char* cursor, const char* end)
{
    // Values are short: a loop beats a call.
    while (cursor != end && *cursor != '"') {
        ++cursor;
    }
    return cursor;
}

/// A machine word with the highest bit of each byte set that equals the one looked for, up to the first such byte;
/// those above it say nothing.
template<unsigned char Byte>
std::size_t MarkBytes(std::size_t word)
{
    constexpr std::size_t ones = std::numeric_limits<std::size_t>::max() / 0xFF;
    word ^= ones * Byte; // zero where it is equal
    return (word - ones) & ~word & (ones * 0x80);
}

/// The same, and whether there is an "&" before the quote.
const char* FindQuote(const char* cursor, const char* end, bool& hasReference)
{
    bool found = false;
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    for (std::size_t word = 0; static_cast<std::size_t>(end - cursor) >= sizeof word; cursor += sizeof word) {
        std::memcpy(&word, cursor, sizeof word);
        const std::size_t quotes = MarkBytes<'"'>(word);
        const std::size_t references = MarkBytes<'&'>(word);
        if (quotes != 0) {
            const std::size_t before = (quotes & (~quotes + 1)) - 1;
            hasReference = found || (references & before) != 0;
            return cursor + __builtin_ctzll(quotes) / 8;
        }
        found |= references != 0;
    }
#endif
    for (; cursor != end && *cursor != '"'; ++cursor) {
        found |= *cursor == '&';
    }
    hasReference = found;
    return cursor;
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
    if (!ReadLine() || !ValidateToken()) {
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
    m_isAscii = m_isAscii || IsAscii(m_begin, m_end);
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
    const std::size_t length = entry.openingLength;
    return length != 0 && static_cast<std::size_t>(end - cursor) >= length &&
                   IsSame(cursor, entry.opening.data(), length)
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
    std::size_t next = 0;
    while (cursor != end) {
        CReadOnlyAttribute* attribute = nullptr;
        const char* value = nullptr;
        for (; attribute == nullptr && next < layout.AttributeCount(); ++next) {
            attribute = layout.AttributeAt(element, next);
            value = SkipOpening(cursor, end, attribute->m_name);
            if (value == nullptr) {
                attribute->m_value.clear();
                attribute = nullptr;
            }
        }
        if (attribute == nullptr) {
            return false;
        }
        bool hasReference = false;
        const char* const quote = FindQuote(value, end, hasReference);
        if (quote == end) {
            return false;
        }
        DecodeValue({value, static_cast<std::size_t>(quote - value)}, hasReference, attribute->m_value);
        cursor = quote + 1;
    }
    for (; next < layout.AttributeCount(); ++next) {
        layout.AttributeAt(element, next)->m_value.clear();
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
        value.assign(std::begin(room), FromXML(span.begin, end, std::begin(room)));
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
    const bool isEmpty = m_isEmptyClosePending;
    m_isEmptyClosePending = false;
    if (m_sink == nullptr) {
        if (isEmpty) {
            m_output->WriteNoAddedEndToken();
        } else {
            m_output->WriteEndToken();
        }
        m_output->WriteNewLine();
    } else {
        m_sink->Put(isEmpty ? "/>\n" : ">\n", isEmpty ? 3 : 2);
    }
}

/// Writes indentation, "<" or "</", and name.
void CXmlStreamWriter::WriteTag(const char* opening, std::size_t openingLength, const std::string& name)
{
    const std::size_t indentation = m_openCount * IndentationStep;
    if (m_sink == nullptr) {
        m_output->WriteSpaces(indentation);
        if (openingLength == 1) {
            m_output->WriteBeginToken();
        } else {
            m_output->WriteBeginEndToken();
        }
        m_output->WriteNonEmptyString(name);
    } else {
        char* to = m_sink->Reserve(indentation + openingLength + name.size());
        to = std::fill_n(to, indentation, ' ');
        to = std::copy_n(opening, openingLength, to);
        m_sink->Advance(std::copy(name.begin(), name.end(), to));
    }
}

bool CXmlStreamWriter::BeginElement(const std::string& name)
{
    if (WritesValuesOnly()) {
        ++m_openCount;
        return true;
    }
    if (m_openCount > 0) {
        CloseStartTag();
    }
    WriteTag("<", 1, name);
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
    if (WritesValuesOnly()) {
        --m_openCount;
        return true;
    }
    if (m_isStartTagOpen) {
        --m_openCount;
        m_isStartTagOpen = false;
        m_isEmptyClosePending = true;
        return true;
    }
    CloseStartTag();
    --m_openCount;
    WriteTag("</", 2, m_openElements[m_openCount]);
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
        m_attributeText.append(escaped, PutEscaped(escaped, character));
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
    char* to = m_sink->Reserve(entry.opening.size() + RoomForValue(value));
    // A fixed length: the value goes over what is too much. The blank is layout, which the checksum does not see.
    if (m_isForChecksum) {
        std::memcpy(to, entry.opening.data() + 1, entry.opening.size() - 1);
        PutValue(to + entry.openingLength - 1, value);
    } else {
        std::memcpy(to, entry.opening.data(), entry.opening.size());
        PutValue(to + entry.openingLength, value);
    }
}

/// Writes value and quote to @p to, where there is RoomForValue(), and makes room for the rest of a long one.
void CXmlStreamWriter::PutValue(char* to, const std::wstring& value)
{
    std::size_t length = std::min(ValuePiece, value.size());
    to = PutEscaped(to, value.data(), length);
    for (std::size_t begin = length; begin < value.size(); begin += length) {
        m_sink->Advance(to);
        length = std::min(ValuePiece, value.size() - begin);
        to = PutEscaped(m_sink->Reserve(length * MaxEscapedLength + 1), value.data() + begin, length);
    }
    *to++ = '"';
    m_sink->Advance(to);
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
