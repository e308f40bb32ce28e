#include "XmlStreams.h"

#include "AttributeNode.h"
#include "DeviceFootprint.h"
#include "ErrorWord.h"
#include "ForeignLocale.h"
#include "SmallStack.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using namespace KvDeviceFootprint;
using NyxTest::ErrorWord;
using NyxTest::ForeignLocale;

const std::string NoName;

/// A reader with the text that it reads.
class TextReader
{
public:
    explicit TextReader(const std::string& text, const std::string& name = NoName)
        : m_text(text), m_reader(m_text, name)
    {
    }
    CXmlStreamReader* operator->() { return &m_reader; }
    CXmlStreamReader& operator*() { return m_reader; }

private:
    std::istringstream m_text;
    CXmlStreamReader m_reader;
};

class XmlReader : public testing::Test
{
protected:
    ErrorWord m_errors;
};

TEST_F(XmlReader, ReadsNothingAtConstruction)
{
    std::istringstream text("<A/>\n");
    const std::string name = "file";
    const CXmlStreamReader reader(text, name);
    EXPECT_EQ(text.tellg(), 0);
    EXPECT_FALSE(reader.IsEndToken());
    EXPECT_FALSE(reader.ElementHasNoChilds());
    EXPECT_EQ(reader.GetCurrentElement(), "");
    EXPECT_EQ(reader.GetCurrentPositionText(), "file, line 0");
    EXPECT_TRUE(std::has_virtual_destructor_v<CXmlStreamReader>);
}

TEST_F(XmlReader, PositionIsTheNameAndTheLine)
{
    std::string name = "a file";
    std::istringstream text("<A>\n");
    CXmlStreamReader reader(text, name);
    reader.NextToken();
    EXPECT_EQ(reader.GetCurrentPositionText(), "a file, line 1");
    reader.NextToken();
    EXPECT_EQ(reader.GetCurrentPositionText(), "a file, line 2") << "a call that fails counts";
    name = "renamed";
    EXPECT_EQ(reader.GetCurrentPositionText(), "renamed, line 2") << "the name is not copied";
    name.clear();
    EXPECT_EQ(reader.GetCurrentPositionText(), "line 2");
}

TEST_F(XmlReader, LineNumberDoesNotDependOnTheLocale)
{
    const ForeignLocale locale;
    TextReader reader("");
    for (int i = 0; i < 12345; ++i) {
        reader->NextToken();
    }
    EXPECT_EQ(reader->GetCurrentPositionText(), "line 12345");
}

// NextToken

struct Token
{
    const char* line;
    const char* token;
    bool isEnd;
    bool hasNoChildren;
};

const Token Tokens[] = {
    {"<A>", "<A>", false, false},
    {"<A/>", "<A/>", false, true},
    {"</A>", "</A>", true, false},
    {"</A/>", "</A/>", true, false},
    {"</>", "</>", true, false},
    {"</A", "</A", true, false},
    {"</", "</", false, false},
    {"/>", "/>", false, false},
    {"x/>", "x/>", false, true},
    {"//>", "//>", false, true},
    {"<", "<", false, false},
    {"<A/> ", "<A/> ", false, false},
    {"<A/>\t", "<A/>\t", false, false},
    {"<A / >", "<A / >", false, false},
    {"text", "text", false, false},
    {"<?xml version=\"1.0\" encoding=\"utf-8\" ?>", "<?xml version=\"1.0\" encoding=\"utf-8\" ?>", false, false},
    {"<!-- comment -->", "<!-- comment -->", false, false},
    {"<A/><B>", "<A/><B>", false, false},
    {"", "", false, false},
    {"  \t <A/>", "<A/>", false, true},
    {"\t</A>", "</A>", true, false},
    {" </", "</", false, false},
    {" a b ", "a b ", false, false},
    {"\v<A/>", "\v<A/>", false, true},
    {"\r", "", false, false},
    {" \t\r", "", false, false},
    {"<A/>\r", "<A/>", false, true},
    {"</A>\r", "</A>", true, false},
    {"</A>\r\r", "</A>\r", true, false},
    {"<A/>\r\r", "<A/>\r", false, false},
    {"</\r", "</", false, false},
    {"/>\r", "/>", false, false},
    {"<A>\rmore", "<A>\rmore", false, false},
};

TEST_F(XmlReader, NextTokenTakesOneLine)
{
    for (const Token& row : Tokens) {
        for (const char* end : {"\n", "", "\n<B/>\n"}) {
            if (*row.line == '\0' && *end == '\0') {
                continue; // no line at all
            }
            TextReader reader(std::string(row.line) + end);
            EXPECT_TRUE(reader->NextToken()) << row.line;
            EXPECT_EQ(reader->GetCurrentElement(), row.token) << row.line;
            EXPECT_EQ(reader->IsEndToken(), row.isEnd) << row.line;
            EXPECT_EQ(reader->ElementHasNoChilds(), row.hasNoChildren) << row.line;
        }
    }
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(XmlReader, NextTokenClearsWhatTheLastOneSet)
{
    TextReader reader("</A>\n<B/>\n<C>\n</D>\n\n</E>\n\xFF\n<F/>\n");
    for (const Token& row : {Token{nullptr, "</A>", true, false},
                             {nullptr, "<B/>", false, true},
                             {nullptr, "<C>", false, false},
                             {nullptr, "</D>", true, false},
                             {nullptr, "", false, false},
                             {nullptr, "</E>", true, false},
                             {nullptr, "", false, false},
                             {nullptr, "<F/>", false, true},
                             {nullptr, "", false, false}}) {
        reader->NextToken();
        EXPECT_EQ(reader->GetCurrentElement(), row.token);
        EXPECT_EQ(reader->IsEndToken(), row.isEnd) << row.token;
        EXPECT_EQ(reader->ElementHasNoChilds(), row.hasNoChildren) << row.token;
    }
}

TEST_F(XmlReader, CrLfGivesTheTokensOfLf)
{
    const std::string lines[] = {"<A x=\"1\">", "  <B y=\"2\"/>", "</A>"};
    std::string unixText;
    std::string dosText;
    for (const std::string& line : lines) {
        unixText += line + "\n";
        dosText += line + "\r\n";
    }
    TextReader unixReader(unixText);
    TextReader dosReader(dosText);
    while (unixReader->NextToken()) {
        EXPECT_TRUE(dosReader->NextToken());
        EXPECT_EQ(dosReader->GetCurrentElement(), unixReader->GetCurrentElement());
        EXPECT_EQ(dosReader->IsEndToken(), unixReader->IsEndToken());
        EXPECT_EQ(dosReader->ElementHasNoChilds(), unixReader->ElementHasNoChilds());
    }
    EXPECT_FALSE(dosReader->NextToken());
}

TEST_F(XmlReader, EndOfTextIsFalseWithoutAReport)
{
    for (const char* text : {"", "<A>", "<A>\n"}) {
        TextReader reader(text);
        while (reader->NextToken()) {
        }
        EXPECT_FALSE(reader->NextToken()) << text;
        EXPECT_EQ(reader->GetCurrentElement(), "") << text;
    }
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(XmlReader, ALineOfBlanksAndTabsThrows)
{
    for (const char* text : {" ", "\t", "  \t ", " \n", "\t\n<A>\n"}) {
        TextReader reader(text);
        EXPECT_THROW(reader->NextToken(), std::out_of_range) << text;
    }
    TextReader reader(" \n<A>\n");
    EXPECT_THROW(reader->NextToken(), std::out_of_range);
    EXPECT_TRUE(reader->NextToken());
    EXPECT_EQ(reader->GetCurrentElement(), "<A>");
    EXPECT_EQ(reader->GetCurrentPositionText(), "line 2");
}

TEST_F(XmlReader, ZeroBytesAreOrdinaryCharacters)
{
    TextReader reader(std::string("<A\0B/>\n\0\n", 9));
    EXPECT_TRUE(reader->NextToken());
    EXPECT_EQ(reader->GetCurrentElement(), std::string("<A\0B/>", 6));
    EXPECT_TRUE(reader->ElementHasNoChilds());
    EXPECT_TRUE(reader->NextToken());
    EXPECT_EQ(reader->GetCurrentElement(), std::string(1, '\0'));
}

TEST_F(XmlReader, LongLinesAreOrdinaryLines)
{
    const std::string value(3000000, 'v');
    NyxTest::RunWithSmallStack([&] {
        TextReader reader("<A x=\"" + value + "\" y=\"1\"/>\n</A>\n");
        ASSERT_TRUE(reader->NextToken());
        EXPECT_TRUE(reader->ElementHasNoChilds());
        std::wstring text;
        reader->GetAttribute("x", text);
        EXPECT_EQ(text.size(), value.size());
        reader->GetAttribute("y", text);
        EXPECT_EQ(text, L"1");
        EXPECT_TRUE(reader->NextToken());
        EXPECT_TRUE(reader->IsEndToken("A"));
    });
}

/// Gives its text and then fails like a broken disk.
class BrokenBuffer : public std::streambuf
{
public:
    explicit BrokenBuffer(std::string text) : m_text(std::move(text))
    {
        setg(m_text.data(), m_text.data(), m_text.data() + m_text.size());
    }

protected:
    int_type underflow() override { throw std::runtime_error("broken"); }

private:
    std::string m_text;
};

TEST_F(XmlReader, AFailingStreamIsReported)
{
    BrokenBuffer buffer("<A>\n<B");
    std::istream stream(&buffer);
    CXmlStreamReader reader(stream, NoName);
    EXPECT_TRUE(reader.NextToken());
    EXPECT_FALSE(reader.NextToken());
    EXPECT_EQ(m_errors.Take(), "Error reading xml");
    EXPECT_EQ(reader.GetCurrentElement(), "");
    EXPECT_FALSE(reader.NextToken());
    EXPECT_EQ(m_errors.Take(), "Error reading xml");
}

TEST_F(XmlReader, AStreamThatHasFailedBeforeIsReported)
{
    std::istringstream text("<A>\n");
    text.setstate(std::ios::failbit);
    CXmlStreamReader reader(text, NoName);
    EXPECT_FALSE(reader.NextToken());
    EXPECT_EQ(m_errors.Take(), "Error reading xml");
    CDeviceFootprint::EnableExceptions(true);
    EXPECT_THROW(reader.NextToken(), std::exception);
    CDeviceFootprint::DisableExceptions();
    text.clear();
    EXPECT_TRUE(reader.NextToken());
    EXPECT_EQ(reader.GetCurrentPositionText(), "line 3");
}

TEST_F(XmlReader, AFolderOpenedAsAFileIsReported)
{
    std::ifstream folder("/");
    ASSERT_TRUE(folder.is_open());
    CXmlStreamReader reader(folder, NoName);
    EXPECT_FALSE(reader.NextToken());
    EXPECT_EQ(m_errors.Text(), "Error reading xml");
}

// Tags

TEST_F(XmlReader, IsElementComparesAPrefixBehindTheFirstCharacter)
{
    const struct
    {
        const char* line;
        const char* name;
        bool isElement;
    } rows[] = {
        {"<HardwareList>", "Hardware", true},
        {"<HardwareList>", "HardwareList", true},
        {"<HardwareList>", "HardwareList>", true},
        {"<HardwareList>", "HardwareList>x", false},
        {"<HardwareList>", "", true},
        {"<HardwareList>", "hardware", false},
        {"<HardwareList>", "ardware", false},
        {"xHardware", "Hardware", true},
        {"<A", "A", true},
        {"<A", "AB", false},
        {"<", "", true},
        {"<", "A", false},
        {"</A>", "A", false},
        {"</A>", "/A", false},
        {"</A>", "", false},
        {"</", "/", true},
        {"/>", ">", true},
        {"< A>", "A", false},
        {"  <A>", "A", true},
        {"<?xml version=\"1.0\" encoding=\"utf-8\" ?>", "?xml", true},
        {"<?xml version=\"1.0\" encoding=\"utf-8\" ?>", "DeviceFootprint", false},
    };
    for (const auto& row : rows) {
        TextReader reader(std::string(row.line) + "\n");
        ASSERT_TRUE(reader->NextToken());
        EXPECT_EQ(reader->IsElement(row.name), row.isElement) << row.line << " " << row.name;
    }
}

TEST_F(XmlReader, IsElementOnAnEmptyTokenThrows)
{
    TextReader reader("\n\r\n");
    EXPECT_THROW(reader->IsElement("A"), std::out_of_range) << "before the first token";
    for (int i = 0; i < 3; ++i) {
        reader->NextToken();
        EXPECT_THROW(reader->IsElement("A"), std::out_of_range) << i;
        EXPECT_THROW(reader->IsElement(""), std::out_of_range) << i;
    }
}

TEST_F(XmlReader, IsEndTokenComparesAPrefixBehindTheSlash)
{
    const struct
    {
        const char* line;
        const char* name;
        bool isEnd;
    } rows[] = {
        {"</HardwareList>", "Hardware", true},
        {"</HardwareList>", "HardwareList", true},
        {"</HardwareList>", "", true},
        {"</HardwareList>", "List", false},
        {"</A>", "A>", true},
        {"</A>", "A>x", false},
        {"</A>", "a", false},
        {"<A>", "A", false},
        {"<//A>", "A", false},
        {"</", "", false},
        {"<A/>", "", false},
        {"", "", false},
    };
    for (const auto& row : rows) {
        TextReader reader(std::string(row.line) + "\n");
        ASSERT_TRUE(reader->NextToken());
        EXPECT_EQ(reader->IsEndToken(row.name), row.isEnd) << row.line << " " << row.name;
    }
}

TEST_F(XmlReader, NamesAreWidenedAndSoNeverMatchNonAsciiTags)
{
    TextReader reader("<\xC3\xA4 \xC3\xA4=\"1\" z=\"2\">\n</\xC3\xA4>\n");
    ASSERT_TRUE(reader->NextToken());
    EXPECT_FALSE(reader->IsElement("\xC3\xA4"));
    EXPECT_FALSE(reader->IsElement("\xE4"));
    EXPECT_EQ(reader->GetCurrentElement(), "<\xE4 \xE4=\"1\" z=\"2\">");
    std::wstring value = L"before";
    EXPECT_TRUE(reader->GetAttribute("\xC3\xA4", value));
    EXPECT_EQ(value, L"");
    EXPECT_TRUE(reader->GetAttribute("\xE4", value));
    EXPECT_EQ(value, L"");
    EXPECT_TRUE(reader->GetAttribute("z", value));
    EXPECT_EQ(value, L"2");
    ASSERT_TRUE(reader->NextToken());
    EXPECT_FALSE(reader->IsEndToken("\xC3\xA4"));
    EXPECT_FALSE(reader->IsEndToken("\xE4"));
    EXPECT_TRUE(reader->IsEndToken(""));
}

TEST_F(XmlReader, CurrentElementKeepsTheLowEightBits)
{
    TextReader reader("<\xC5\x81\xF0\x9F\x98\x81\xE2\x82\xAC>\n");
    ASSERT_TRUE(reader->NextToken());
    EXPECT_EQ(reader->GetCurrentElement(), "<A\x01\xAC>");
}

// Attributes

std::wstring AttributeOf(const std::string& line, const std::string& name)
{
    TextReader reader(line + "\n");
    EXPECT_TRUE(reader->NextToken()) << line;
    std::wstring value = L"before";
    EXPECT_TRUE(reader->GetAttribute(name, value)) << line;
    return value;
}

TEST_F(XmlReader, GetAttributeFindsBlankNameAndQuote)
{
    const struct
    {
        const char* line;
        const char* name;
        const wchar_t* value;
    } rows[] = {
        {"<A sn=\"1\"/>", "sn", L"1"},
        {"<A sn=\"1\">", "sn", L"1"},
        {"<A sn=\"1\"", "sn", L"1"},
        {"<A x=\"0\" sn=\"1\" y=\"2\"/>", "sn", L"1"},
        {"<A sn=\"\"/>", "sn", L""},
        {"<A/>", "sn", L""},
        {"<A xsn=\"1\"/>", "sn", L""},
        {"<A snx=\"1\"/>", "sn", L""},
        {"<A SN=\"1\"/>", "sn", L""},
        {"<A\tsn=\"1\"/>", "sn", L""},
        {"<A \tsn=\"1\"/>", "sn", L""},
        {"<A  sn=\"1\"/>", "sn", L"1"},
        {"<A sn =\"1\"/>", "sn", L""},
        {"<A sn= \"1\"/>", "sn", L""},
        {"<A sn='1'/>", "sn", L""},
        {"<A sn=\"1\" sn=\"2\"/>", "sn", L"1"},
        {"<A sn=\"no end/>", "sn", L"no end/>"},
        {"<A sn=\"", "sn", L""},
        {"<A sn=", "sn", L""},
        {"<A x=\"1\"sn=\"2\"/>", "sn", L""},
        {"<A x='1' sn=\"2\"/>", "sn", L"2"},
        {"<A sn=\"1\" />", "sn", L"1"},
        {"</A sn=\"1\">", "sn", L"1"},
        {"text sn=\"1\" text", "sn", L"1"},
        {"<A sn=\" 1  2 \"/>", "sn", L" 1  2 "},
        {"<A sn=\"a<b>c\"/>", "sn", L"a<b>c"},
        {"<A sn=\"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\"/>", "sn", L"\xE4\x20AC\x1F600"},
        {"<?xml version=\"1.0\" encoding=\"utf-8\" ?>", "encoding", L"utf-8"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(AttributeOf(row.line, row.name), row.value) << row.line;
    }
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(XmlReader, GetAttributeIsNotMisledByAValueInTheWritersForm)
{
    const struct
    {
        const char* line;
        const wchar_t* value;
    } rows[] = {
        {"<A name=\"foo sn=\"/>", L""},
        {"<A name=\"foo sn=\">", L""},
        {"<A name=\"foo sn=\"", L""},
        {"<A name=\"foo sn=\" sn=\"1\"/>", L"1"},
        {"<A name=\" sn=\" x=\" sn=\" sn=\"1\"/>", L"1"},
        {"<A name=\"foo sn=\" x=\"2\"/>", L""},
        {"  <A name=\"foo sn=\" sn=\"1\"/>\r", L"1"},
        {"<A name=\"\xC3\xA4 sn=\" sn=\"1\"/>", L"1"},
        {"<A  name=\"foo sn=\"  sn=\"1\"/>", L"  sn="},
        {"<A name=\"foo sn=\" />", L" />"},
        {"<A name=\"foo sn=\"x>", L"x>"},
        {"<A name=\"foo sn=\"?>", L"?>"},
        {"</A name=\"foo sn=\">", L">"},
        {"A name=\"foo sn=\"/>", L"/>"},
        {"<A na\tme=\"foo sn=\"/>", L"/>"},
        {"<A na<me=\"foo sn=\"/>", L"/>"},
        {"<A na>me=\"foo sn=\"/>", L"/>"},
        {"<A na/me=\"foo sn=\"/>", L"/>"},
        {"<A na=me=\"foo sn=\"/>", L"/>"},
        {"<A=A name=\"foo sn=\"/>", L"/>"},
        {"<A x='1' name=\"foo sn=\"/>", L"/>"},
        {"<A sn=\"1\" x name=\"foo sn=\"/>", L"1"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(AttributeOf(row.line, "sn"), row.value) << row.line;
    }
}

TEST_F(XmlReader, GetAttributeIntoAnAttributeGoesByItsName)
{
    TextReader reader("<A sn=\"1\" name=\"n\"/>\n<A/>\n");
    CAttribute attribute("name");
    attribute = L"before";
    reader->NextToken();
    EXPECT_TRUE(reader->GetAttribute(attribute));
    EXPECT_EQ(attribute.GetValue(), L"n");
    reader->NextToken();
    EXPECT_TRUE(reader->GetAttribute(attribute));
    EXPECT_TRUE(attribute.IsEmpty());
}

TEST_F(XmlReader, GetAttributeOfAnEmptyTokenIsEmpty)
{
    TextReader reader("\n");
    std::wstring value = L"before";
    EXPECT_TRUE(reader->GetAttribute("a", value));
    EXPECT_EQ(value, L"");
    reader->NextToken();
    value = L"before";
    EXPECT_TRUE(reader->GetAttribute("a", value));
    EXPECT_EQ(value, L"");
}

TEST_F(XmlReader, GetAttributeDecodesReferences)
{
    const std::wstring minus28(1, static_cast<wchar_t>(-28));
    const struct
    {
        const char* text;
        std::wstring value;
    } rows[] = {
        {"&amp;&lt;&gt;&quot;&apos;", L"&<>\"'"},
        {"&amp;lt;", L"&lt;"},
        {"&amp;amp;", L"&amp;"},
        {"&amp;#65;", L"&#65;"},
        {"&AMP;", L"&AMP;"},
        {"&amp", L"&amp"},
        {"&", L"&"},
        {"&;", L"&;"},
        {"&&amp;", L"&&"},
        {"&x&lt;", L"&x<"},
        {"&unknown;", L"&unknown;"},
        {"&#65;", L"A"},
        {"&#065;", L"A"},
        {"&#x41;", L"A"},
        {"&#x1f600;&#x1F600;&#128512;", L"\x1F600\x1F600\x1F600"},
        {"&#X41;", L"&#X41;"},
        {"&#;", L"&#;"},
        {"&#x;", L"&#x;"},
        {"&#6A;", L"&#6A;"},
        {"&#x4G;", L"&#x4G;"},
        {"&# 65;", L"&# 65;"},
        {"&#+65;", L"&#+65;"},
        {"&#-1;", L"&#-1;"},
        {"&#4294967268;", minus28},
        {"&#xFFFFFFE4;", minus28},
        {"&#4294967361;", L"A"},
        {"&#x100000041;", L"A"},
        {"&#99999999999999999999999999999999;", std::wstring(1, static_cast<wchar_t>(std::uint32_t{0xFFFFFFFFU}))},
        {"&#0;", std::wstring(1, L'\0')},
        {"&#xD800;", std::wstring(1, static_cast<wchar_t>(0xD800))},
        {"&#10;", L"\n"},
        {"&#x0000000000000000000000041;", L"A"},
        {"a;b&lt;c;", L"a;b<c;"},
        {"&lt", L"&lt"},
        {"&\xC3\xA4;", L"&\xE4;"},
        {"&#\xD9\xA1;", L"&#\x661;"},
        {"&#x\xEF\xBC\xA1;", L"&#x\xFF21;"},
        {"\xC3\xA4&lt;\xE2\x82\xAC", L"\xE4<\x20AC"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(AttributeOf("<A a=\"" + std::string(row.text) + "\"/>", "a"), row.value) << row.text;
        EXPECT_EQ(AttributeOf("text a=\"" + std::string(row.text) + "\" /> ", "a"), row.value) << row.text;
    }
}

TEST_F(XmlReader, GetAttributeReadsDecimalNumbersModulo2To32)
{
    std::uint32_t expected = 0;
    std::string digits;
    for (const char digit : std::string("31415926535897932384626433832795")) {
        digits += digit;
        expected = expected * 10 + static_cast<std::uint32_t>(digit - '0');
        const std::wstring value = AttributeOf("<A a=\"&#" + digits + ";\"/>", "a");
        ASSERT_EQ(value.size(), 1U);
        EXPECT_EQ(static_cast<std::uint32_t>(value[0]), expected) << digits;
    }
}

// All small values against the steps, done slowly

std::optional<wchar_t> SlowNumber(const std::wstring& digits, const std::wstring& alphabet, std::uint32_t base)
{
    std::uint32_t number = 0;
    for (wchar_t digit : digits) {
        const wchar_t lower = digit >= L'A' && digit <= L'F' ? static_cast<wchar_t>(digit - L'A' + L'a') : digit;
        const std::size_t index = alphabet.find(lower);
        if (index == std::wstring::npos) {
            return std::nullopt;
        }
        number = number * base + static_cast<std::uint32_t>(index);
    }
    return static_cast<wchar_t>(number);
}

std::optional<wchar_t> SlowReference(const std::wstring& reference)
{
    const std::pair<const wchar_t*, wchar_t> entities[] = {
        {L"&amp;", L'&'}, {L"&lt;", L'<'}, {L"&gt;", L'>'}, {L"&quot;", L'"'}, {L"&apos;", L'\''}};
    for (const auto& entity : entities) {
        if (reference == entity.first) {
            return entity.second;
        }
    }
    if (reference.size() >= 5 && reference.compare(0, 3, L"&#x") == 0) {
        if (auto number = SlowNumber(reference.substr(3, reference.size() - 4), L"0123456789abcdef", 16)) {
            return number;
        }
    }
    if (reference.size() >= 4 && reference.compare(0, 2, L"&#") == 0) {
        return SlowNumber(reference.substr(2, reference.size() - 3), L"0123456789", 10);
    }
    return std::nullopt;
}

std::wstring SlowDecode(std::wstring text)
{
    std::size_t start = 0;
    while (true) {
        const std::size_t ampersand = text.find(L'&', start);
        if (ampersand == std::wstring::npos) {
            return text;
        }
        const std::size_t semicolon = text.find(L';', ampersand);
        if (semicolon != std::wstring::npos) {
            if (auto character = SlowReference(text.substr(ampersand, semicolon - ampersand + 1))) {
                text.replace(ampersand, semicolon - ampersand + 1, 1, *character);
            }
        }
        start = ampersand + 1;
    }
}

/// The attributes of a tag in the writer's own form; nothing for any other line.
std::optional<std::vector<std::pair<std::wstring, std::wstring>>> SlowSplit(const std::wstring& token)
{
    const auto takeName = [&](std::size_t& position) {
        const std::size_t begin = position;
        position = std::min(token.find_first_of(L" \t=\"</>", position), token.size());
        return token.substr(begin, position - begin);
    };
    std::size_t position = 1;
    if (token.empty() || token[0] != L'<' || takeName(position).empty()) {
        return std::nullopt;
    }
    std::vector<std::pair<std::wstring, std::wstring>> attributes;
    while (position < token.size() && token[position] == L' ') {
        ++position;
        const std::wstring name = takeName(position);
        if (name.empty() || token.compare(position, 2, L"=\"") != 0) {
            return std::nullopt;
        }
        position += 2;
        const std::size_t quote = token.find(L'"', position);
        if (quote == std::wstring::npos) {
            return std::nullopt;
        }
        attributes.emplace_back(name, token.substr(position, quote - position));
        position = quote + 1;
    }
    const std::wstring rest = token.substr(position);
    if (rest.empty() || rest == L">" || rest == L"/>") {
        return attributes;
    }
    return std::nullopt;
}

std::wstring SlowAttribute(const std::wstring& token, const std::wstring& name)
{
    if (const auto attributes = SlowSplit(token)) {
        for (const auto& attribute : *attributes) {
            if (attribute.first == name) {
                return SlowDecode(attribute.second);
            }
        }
        return {};
    }
    const std::wstring wanted = L" " + name + L"=\"";
    const std::size_t found = token.find(wanted);
    if (found == std::wstring::npos) {
        return {};
    }
    const std::size_t begin = found + wanted.size();
    return SlowDecode(token.substr(begin, token.find(L'"', begin) - begin));
}

/// Calls visit(text) with every sequence of up to @p length of the pieces.
void ForAllSequences(const std::vector<std::string>& pieces, std::size_t length,
                     const std::function<void(const std::string&)>& visit, const std::string& text = "")
{
    visit(text);
    if (length > 0) {
        for (const std::string& piece : pieces) {
            ForAllSequences(pieces, length - 1, visit, text + piece);
        }
    }
}

class AttributeChecker
{
public:
    void Check(const std::string& line, const char* name = "a")
    {
        ++m_checks;
        std::istringstream text(line + "\n");
        CXmlStreamReader reader(text, NoName);
        ASSERT_TRUE(reader.NextToken()) << line;
        std::wstring value = L"before";
        ASSERT_TRUE(reader.GetAttribute(name, value)) << line;
        ASSERT_EQ(value, SlowAttribute(WidenText(line), WidenText(name))) << line << " asked for " << name;
    }
    int m_checks = 0;
};

TEST_F(XmlReader, AllShortValuesDecodeByTheSteps)
{
    const std::vector<std::string> alphabet{"&", "#", "x", "a", "1", ";", "\"", "<", " "};
    AttributeChecker checker;
    for (const char* prefix : {"", "&#", "&#x", "&#1", "&lt", "&amp;#"}) {
        ForAllSequences(alphabet, *prefix == '\0' ? 5 : 4, [&](const std::string& value) {
            if (!HasFatalFailure()) {
                checker.Check("<T a=\"" + (prefix + value) + "\"/>");
                checker.Check("<T b=\"1\" a=\"" + (prefix + value) + "\" c=\"2\">");
                checker.Check("<T b='1' a=\"" + (prefix + value) + "\" />");
            }
        });
    }
    EXPECT_GT(checker.m_checks, 290000);
}

TEST_F(XmlReader, AllShortTagsAreSearchedByTheSteps)
{
    const std::vector<std::string> pieces{" ", " a=\"", " b=\"", "\"", "a", "=", "/", ">", "\t", "<"};
    AttributeChecker checker;
    for (const char* begin : {"<T", "<T b=\" a=\"", "T"}) {
        ForAllSequences(pieces, 4, [&](const std::string& middle) {
            for (const char* end : {"", ">", "/>"}) {
                if (!HasFatalFailure()) {
                    checker.Check(begin + middle + end);
                }
            }
        });
    }
    EXPECT_GT(checker.m_checks, 90000);
}

TEST_F(XmlReader, AttributesAreFoundInAnyOrderOfAsking)
{
    const std::vector<std::string> names{"a", "ab", "b", "sn", "name", "partNumber", "x"};
    std::string line = "<T";
    for (const std::string& name : names) {
        line += " " + name + "=\"v-" + name + "\"";
    }
    line += "/>";
    for (const std::string& first : names) {
        for (const std::string& second : names) {
            TextReader reader(line + "\n");
            reader->NextToken();
            std::wstring value;
            for (const std::string& name : {first, second, std::string("missing"), first}) {
                reader->GetAttribute(name, value);
                EXPECT_EQ(value, name == "missing" ? L"" : L"v-" + WidenText(name)) << first << " " << second;
            }
        }
    }
}

// Skipping

TEST_F(XmlReader, SkipCurrentElementGoesBehindTheElement)
{
    const struct
    {
        const char* text;
        bool result;
        const char* next;
    } rows[] = {
        {"<A/>\n<B>\n", true, "<B>"},
        {"</A>\n<B>\n", true, "<B>"},
        {"<A>\n</A>\n<B>\n", true, "<B>"},
        {"<A>\n</Z>\n<B>\n", true, "<B>"},
        {"<A>\n<C/>\n<C>\n<D/>\n</C>\n</A>\n<B>\n", true, "<B>"},
        {"<A>\ntext\n</text>\n</A>\n<B>\n", true, "<B>"},
        {"<A>\n\n</A>\n</B>\n<C/>\n", true, "<C/>"},
        {"/>\n</A>\n<B>\n", true, "<B>"},
        {"<A/>\n", false, ""},
        {"<A>\n", false, ""},
        {"<A>\n</A>\n", false, ""},
        {"<A>\n<C>\n</C>\n", false, ""},
        {"<A>\n<C/>\n", false, ""},
    };
    for (const auto& row : rows) {
        TextReader reader(row.text);
        reader->NextToken();
        EXPECT_EQ(reader->SkipCurrentElement(), row.result) << row.text;
        EXPECT_EQ(reader->GetCurrentElement(), row.next) << row.text;
    }
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

/// The steps as they are told, with their recursion.
bool SlowSkip(CXmlStreamReader& reader)
{
    if (!reader.IsEndToken() && !reader.ElementHasNoChilds()) {
        if (!reader.NextToken()) {
            return false;
        }
        while (!reader.IsEndToken()) {
            if (!SlowSkip(reader)) {
                return false;
            }
        }
    }
    return reader.NextToken();
}

TEST_F(XmlReader, SkipCurrentElementOfAllShortTexts)
{
    int checks = 0;
    ForAllSequences({"<A>\n", "</A>\n", "<A/>\n", "\n", "\xFF\n"}, 7, [&](const std::string& text) {
        ++checks;
        TextReader reader(text);
        TextReader slow(text);
        reader->NextToken();
        slow->NextToken();
        ASSERT_EQ(reader->SkipCurrentElement(), SlowSkip(*slow)) << text;
        ASSERT_EQ(reader->GetCurrentElement(), slow->GetCurrentElement()) << text;
        ASSERT_EQ(reader->GetCurrentPositionText(), slow->GetCurrentPositionText()) << text;
    });
    EXPECT_GT(checks, 90000);
}

TEST_F(XmlReader, SkipCurrentElementNeedsNoStack)
{
    const int depth = 100000;
    std::string text;
    for (int i = 0; i < depth; ++i) {
        text += "<U>\n";
    }
    for (int i = 0; i < depth; ++i) {
        text += "</U>\n";
    }
    NyxTest::RunWithSmallStack([&] {
        TextReader reader(text + "<Next/>\n");
        ASSERT_TRUE(reader->NextToken());
        EXPECT_TRUE(reader->SkipCurrentElement());
        EXPECT_EQ(reader->GetCurrentElement(), "<Next/>");
        TextReader broken(text.substr(0, text.size() / 2));
        ASSERT_TRUE(broken->NextToken());
        EXPECT_FALSE(broken->SkipCurrentElement());
    });
}

TEST_F(XmlReader, SkipCurrentElementEndsWithABadLine)
{
    TextReader reader("<A>\n<B>\n\xFF\n</B>\n</A>\n<C/>\n");
    reader->NextToken();
    EXPECT_FALSE(reader->SkipCurrentElement());
    EXPECT_EQ(m_errors.Text(), "line 3, UTF-8 encoding error, lead is invalid");
    TextReader blanks("<A>\n \n</A>\n");
    blanks->NextToken();
    EXPECT_THROW(blanks->SkipCurrentElement(), std::out_of_range);
}

} // namespace
