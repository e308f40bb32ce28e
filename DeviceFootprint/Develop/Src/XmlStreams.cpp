#include "XmlStreams.h"

#include "AttributeNode.h"
#include "Checksum.h"
#include "DeviceFootprint.h"

#include <algorithm>
#include <cstring>
#include <istream>
#include <limits>
#include <ostream>
#include <stdexcept>

namespace KvDeviceFootprint
{

namespace
{

const char* const EncodingError = "UTF-8 encoding error";

bool IsNoUnicodeCharacter(std::uint32_t value)
{
    return (value >= 0xD800 && value <= 0xDFFF) || value > 0x10FFFF || value == 0xFFFE || value == 0xFFFF;
}

/// As iswprint in the "C" locale.
bool IsPrintableAscii(wchar_t character)
{
    return character >= 0x20 && character <= 0x7E;
}

bool IsAscii(const std::string& text)
{
    return std::none_of(text.begin(), text.end(), [](char byte) { return static_cast<signed char>(byte) < 0; });
}

/// What a value's character becomes in a file: an entity, a decimal reference or itself.
void AppendEscaped(std::string& text, wchar_t character)
{
    switch (character) {
    case L'&':
        text += "&amp;";
        return;
    case L'<':
        text += "&lt;";
        return;
    case L'>':
        text += "&gt;";
        return;
    case L'"':
        text += "&quot;";
        return;
    case L'\'':
        text += "&apos;";
        return;
    default:
        break;
    }
    if (IsPrintableAscii(character)) {
        text += static_cast<char>(character);
    } else {
        text += "&#";
        text += std::to_string(static_cast<std::uint32_t>(character));
        text += ';';
    }
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
bool ReadNumber(const wchar_t* begin, const wchar_t* end, int base, wchar_t& character)
{
    if (begin >= end) {
        return false;
    }
    std::uint32_t number = 0;
    for (const wchar_t* digit = begin; digit != end; ++digit) {
        const int value = DigitValue(*digit);
        if (value >= base) {
            return false;
        }
        number = number * static_cast<std::uint32_t>(base) + static_cast<std::uint32_t>(value);
    }
    character = static_cast<wchar_t>(number);
    return true;
}

/// The character for which the reference from "&" to ";" stands. False if it stands for none and stays as it is.
bool ResolveReference(const wchar_t* begin, const wchar_t* end, wchar_t& character)
{
    const auto length = static_cast<std::size_t>(end - begin);
    for (const XmlEntity& entity : s_XmlEntities) {
        if (std::wcslen(entity.text) == length && std::equal(begin, end, entity.text)) {
            character = entity.character;
            return true;
        }
    }
    if (length < 4 || begin[1] != L'#') {
        return false;
    }
    return begin[2] == L'x' ? ReadNumber(begin + 3, end - 1, 16, character)
                            : ReadNumber(begin + 2, end - 1, 10, character);
}

/// Replaces the references in a value, in place. What replaces one is not looked at again.
void FromXML(std::wstring& text)
{
    std::size_t reference = text.find(L'&');
    std::size_t end = reference;
    std::size_t read = 0;
    std::size_t write = 0;
    while (reference != std::wstring::npos) {
        if (end <= reference) {
            end = text.find(L';', reference);
        }
        if (end == std::wstring::npos) {
            break;
        }
        wchar_t* const data = &text[0];
        std::copy(data + read, data + reference, data + write);
        write += reference - read;
        wchar_t character = L'&';
        read = ResolveReference(data + reference, data + end + 1, character) ? end + 1 : reference + 1;
        text[write++] = character;
        reference = text.find(L'&', read);
    }
    text.erase(write, read - write);
}

/// Whether a name as the writer gives it may hold this byte.
bool IsNameByte(char byte)
{
    switch (byte) {
    case ' ':
    case '\t':
    case '=':
    case '"':
    case '<':
    case '>':
    case '/':
        return false;
    default:
        return true;
    }
}

/// A cheap key of a name: names with different keys differ.
std::uint64_t NameKey(const char* name, std::size_t length)
{
    const unsigned mixed = static_cast<unsigned>(length) * 7U + static_cast<unsigned char>(name[0]) * 5U +
                           static_cast<unsigned char>(name[length - 1]) +
                           static_cast<unsigned char>(name[length / 2]) * 3U;
    return std::uint64_t{1} << (mixed & 63U);
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

CXmlStreamReader::CXmlStreamReader(std::istream& input, const std::string& name) : m_input(&input), m_name(&name) {}

CXmlStreamReader::~CXmlStreamReader() = default;

bool CXmlStreamReader::NextToken()
{
    m_isEndToken = false;
    m_hasNoChildren = false;
    m_tokenBegin = 0;
    m_tokenEnd = 0;
    m_attributesState = eNotTried;
    ++m_lineNumber;
    if (!ReadLine() || !ValidateLine()) {
        return false;
    }
    if (m_line.empty()) {
        return true;
    }
    const std::size_t begin = m_line.find_first_not_of(" \t");
    if (begin == std::string::npos) {
        // A line of blanks has no first character to start the token from. The exception is a part of the interface.
        throw std::out_of_range("CXmlStreamReader::NextToken: blank line");
    }
    m_tokenBegin = begin;
    m_tokenEnd = m_line.size();
    if (m_line.back() == '\r') {
        --m_tokenEnd;
    }
    // Lengths count bytes here. A token of two characters that could set a flag is all ASCII, so this is the same.
    if (m_tokenEnd - m_tokenBegin > 2) {
        if (m_line.compare(m_tokenBegin, 2, "</") == 0) {
            m_isEndToken = true;
        } else if (m_line.compare(m_tokenEnd - 2, 2, "/>") == 0) {
            m_hasNoChildren = true;
        }
    }
    return true;
}

bool CXmlStreamReader::ReadLine()
{
    m_line.clear();
    std::getline(*m_input, m_line);
    if (!m_input->fail()) {
        return true;
    }
    m_line.clear();
    if (m_input->eof()) {
        return false;
    }
    return CDeviceFootprint::SetLastError("Error reading xml");
}

bool CXmlStreamReader::ValidateLine()
{
    m_isAscii = IsAscii(m_line);
    if (m_isAscii) {
        return true;
    }
    const char* cursor = m_line.data();
    const char* const end = cursor + m_line.size();
    wchar_t character = 0;
    while (cursor != end) {
        if (!GetCharFromUTF8(cursor, end, character)) {
            return false;
        }
    }
    return true;
}

bool CXmlStreamReader::MayHold(const std::string& name) const
{
    // Widening a name gives negative characters for its bytes above 127, and no decoded character is negative. The
    // bytes of the line, though, could be equal to them.
    return m_isAscii || IsAscii(name);
}

bool CXmlStreamReader::IsEndToken(const std::string& name) const
{
    if (!m_isEndToken || !MayHold(name)) {
        return false;
    }
    const std::size_t length = std::min(name.size(), m_tokenEnd - m_tokenBegin - 2);
    return m_line.compare(m_tokenBegin + 2, length, name) == 0;
}

bool CXmlStreamReader::IsElement(const std::string& name) const
{
    if (m_isEndToken) {
        return false;
    }
    if (m_tokenBegin == m_tokenEnd) {
        throw std::out_of_range("CXmlStreamReader::IsElement: empty token");
    }
    if (!MayHold(name)) {
        return false;
    }
    const std::size_t length = std::min(name.size(), m_tokenEnd - m_tokenBegin - 1);
    return m_line.compare(m_tokenBegin + 1, length, name) == 0;
}

std::string CXmlStreamReader::GetCurrentElement() const
{
    std::wstring token;
    GetStringFromUTF8(m_line.substr(m_tokenBegin, m_tokenEnd - m_tokenBegin), token);
    return NarrowText(token);
}

bool CXmlStreamReader::GetAttribute(const std::string& name, std::wstring& value)
{
    value.clear();
    Span span = {0, 0};
    if (MayHold(name) && FindAttribute(name, span)) {
        DecodeValue(span, value);
    }
    return true;
}

bool CXmlStreamReader::GetAttribute(CReadOnlyAttribute& attribute)
{
    return GetAttribute(attribute.GetNodeName(), attribute.m_value);
}

bool CXmlStreamReader::FindAttribute(const std::string& name, Span& value)
{
    if (m_attributesState == eNotTried) {
        m_attributesState = LocateAttributes() ? eLocated : eOtherForm;
    }
    if (m_attributesState == eOtherForm) {
        return FindByText(name, value);
    }
    if (name.empty() || (m_attributeKeys & NameKey(name.data(), name.size())) == 0) {
        return false;
    }
    const auto matches = [&](const LocatedAttribute& attribute) {
        return attribute.name.length == name.size() &&
               std::memcmp(m_line.data() + attribute.name.begin, name.data(), name.size()) == 0;
    };
    // Elements ask in the order in which they write, so mostly the next one is it. Where two names may be equal, the
    // first one counts, and the search starts over.
    if (m_keysCollide || m_nextAttribute >= m_attributes.size() || !matches(m_attributes[m_nextAttribute])) {
        const auto found = std::find_if(m_attributes.begin(), m_attributes.end(), matches);
        if (found == m_attributes.end()) {
            return false;
        }
        m_nextAttribute = static_cast<std::size_t>(found - m_attributes.begin());
    }
    value = m_attributes[m_nextAttribute].value;
    ++m_nextAttribute;
    return true;
}

/// Splits a start tag in the writer's own form into its attributes. A plain search could find a name inside a value
/// that ends in ` name=`, and read wrong data back.
bool CXmlStreamReader::LocateAttributes()
{
    m_attributes.clear();
    m_attributeKeys = 0;
    m_keysCollide = false;
    m_nextAttribute = 0;
    const char* const line = m_line.data();
    std::size_t end = m_tokenEnd;
    if (m_hasNoChildren) {
        end -= 2;
    } else if (end > m_tokenBegin && line[end - 1] == '>') {
        --end;
    }
    std::size_t position = m_tokenBegin;
    const auto skipName = [&] {
        const std::size_t begin = position;
        while (position < end && IsNameByte(line[position])) {
            ++position;
        }
        return position > begin;
    };
    if (position >= end || line[position] != '<') {
        return false;
    }
    ++position;
    if (!skipName()) {
        return false;
    }
    while (position < end) {
        if (line[position] != ' ') {
            return false;
        }
        ++position;
        LocatedAttribute attribute = {{position, 0}, {0, 0}};
        if (!skipName() || end - position < 2 || line[position] != '=' || line[position + 1] != '"') {
            return false;
        }
        attribute.name.length = position - attribute.name.begin;
        position += 2;
        const void* const quote = std::memchr(line + position, '"', end - position);
        if (quote == nullptr) {
            return false;
        }
        attribute.value.begin = position;
        attribute.value.length = static_cast<std::size_t>(static_cast<const char*>(quote) - (line + position));
        position += attribute.value.length + 1;
        const std::uint64_t key = NameKey(line + attribute.name.begin, attribute.name.length);
        m_keysCollide = m_keysCollide || (m_attributeKeys & key) != 0;
        m_attributeKeys |= key;
        m_attributes.push_back(attribute);
    }
    return true;
}

bool CXmlStreamReader::FindByText(const std::string& name, Span& value) const
{
    const std::string wanted = " " + name + "=\"";
    const auto token = m_line.begin() + static_cast<std::ptrdiff_t>(m_tokenBegin);
    const auto tokenEnd = m_line.begin() + static_cast<std::ptrdiff_t>(m_tokenEnd);
    const auto found = std::search(token, tokenEnd, wanted.begin(), wanted.end());
    if (found == tokenEnd) {
        return false;
    }
    const auto begin = found + static_cast<std::ptrdiff_t>(wanted.size());
    value.begin = static_cast<std::size_t>(begin - m_line.begin());
    value.length = static_cast<std::size_t>(std::find(begin, tokenEnd, '"') - begin);
    return true;
}

void CXmlStreamReader::DecodeValue(const Span& span, std::wstring& value) const
{
    const char* const begin = m_line.data() + span.begin;
    if (m_isAscii) {
        value.resize(span.length);
        for (std::size_t i = 0; i < span.length; ++i) {
            value[i] = static_cast<wchar_t>(begin[i]);
        }
    } else {
        GetStringFromUTF8(std::string(begin, span.length), value);
    }
    if (std::memchr(begin, '&', span.length) != nullptr) {
        FromXML(value);
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

CXmlStreamWriter::CXmlStreamWriter(CAbstractStream& output, const std::string& name)
    : m_output(&output), m_name(&name), m_isForChecksum(dynamic_cast<CChecksumStream*>(&output) != nullptr)
{
}

CXmlStreamWriter::~CXmlStreamWriter() = default;

bool CXmlStreamWriter::WriteFirstLine()
{
    static const std::string firstLine("<?xml version=\"1.0\" encoding=\"utf-8\" ?>");
    m_output->WriteNonEmptyString(firstLine);
    m_output->WriteNewLine();
    return true;
}

void CXmlStreamWriter::CloseStartTag()
{
    if (m_isEmptyClosePending) {
        m_output->WriteNoAddedEndToken();
        m_isEmptyClosePending = false;
    } else {
        m_output->WriteEndToken();
    }
    m_output->WriteNewLine();
}

bool CXmlStreamWriter::BeginElement(const std::string& name)
{
    if (!m_openElements.empty()) {
        CloseStartTag();
    }
    m_output->WriteSpaces(m_openElements.size() * IndentationStep);
    m_output->WriteBeginToken();
    m_output->WriteNonEmptyString(name);
    m_openElements.push_back(name);
    m_isStartTagOpen = true;
    return true;
}

bool CXmlStreamWriter::EndElement()
{
    if (m_openElements.empty()) {
        return true;
    }
    if (m_isStartTagOpen) {
        m_openElements.pop_back();
        m_isStartTagOpen = false;
        m_isEmptyClosePending = true;
        return true;
    }
    CloseStartTag();
    const std::string name = std::move(m_openElements.back());
    m_openElements.pop_back();
    m_output->WriteSpaces(m_openElements.size() * IndentationStep);
    m_output->WriteBeginEndToken();
    m_output->WriteNonEmptyString(name);
    if (m_openElements.empty()) {
        m_output->WriteEndToken();
        m_output->WriteNewLine();
    }
    return true;
}

bool CXmlStreamWriter::SetAttribute(const std::string& name, const std::wstring& value)
{
    if (value.empty()) {
        return true;
    }
    static const std::string blank(" ");
    m_attributeText.assign(name);
    m_attributeText += "=\"";
    for (const wchar_t character : value) {
        // Escaping leaves nothing but printable ASCII, which is its own UTF-8 form.
        AppendEscaped(m_attributeText, character);
    }
    m_attributeText += '"';
    m_output->WriteNonEmptyString(blank);
    m_output->WriteAttributeValue(m_attributeText);
    return true;
}

bool CXmlStreamWriter::SetAttribute(const CReadOnlyAttribute& attribute)
{
    return SetAttribute(attribute.GetNodeName(), attribute.GetValue());
}

bool CXmlStreamWriter::AddListEntry(const std::string& line, bool first, bool last)
{
    if (m_openElements.size() < 2) {
        return false;
    }
    if (first) {
        m_output->WriteEndToken();
        m_output->WriteNewLine();
    }
    m_output->WriteSpaces(m_openElements.size() * IndentationStep);
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
    if (m_openElements.size() < CXmlStreamReader::MaxDepth) {
        return false;
    }
    CDeviceFootprint::SetLastError(GetCurrentPositionText() + "elements are nested too deeply");
    return true;
}

} // namespace KvDeviceFootprint
