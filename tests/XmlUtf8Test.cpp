// UTF-8 exists at the border of a file only; what is let in and out there.

#include "DeviceFootprint.h"
#include "ErrorWord.h"
#include "XmlStreams.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace KvDeviceFootprint;
using NyxTest::ErrorWord;

const std::string NoName;

class XmlUtf8 : public testing::Test
{
protected:
    XmlUtf8() : m_reader(m_input, NoName), m_stream(m_output), m_writer(m_stream, NoName) {}

    ErrorWord m_errors;
    std::istringstream m_input;
    CXmlStreamReader m_reader;
    std::ostringstream m_output;
    COutStream m_stream;
    CXmlStreamWriter m_writer;
};

std::string Message(const std::string& position, const std::string& detail)
{
    return position + "UTF-8 encoding error" + (detail.empty() ? "" : ", ") + detail;
}

struct Decoded
{
    bool good = false;
    std::string detail;
    std::uint32_t value = 0;
    std::size_t length = 0;
};

/// One character by the steps, done slowly.
Decoded SlowDecode(const std::string& bytes)
{
    Decoded result;
    const auto fail = [&](const char* detail) {
        result.detail = detail;
        return result;
    };
    if (bytes.empty()) {
        return fail("");
    }
    const auto lead = static_cast<unsigned char>(bytes[0]);
    const struct
    {
        unsigned mask;
        unsigned pattern;
    } kinds[] = {{0x80, 0x00}, {0xE0, 0xC0}, {0xF0, 0xE0}, {0xF8, 0xF0}};
    std::size_t length = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        if ((lead & kinds[i].mask) == kinds[i].pattern) {
            length = i + 1;
            result.value = lead & ~kinds[i].mask;
        }
    }
    if (length == 0) {
        return fail("lead is invalid");
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (i >= bytes.size()) {
            return fail("");
        }
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if ((byte & 0xC0U) != 0x80) {
            return fail("sequence incomplete");
        }
        result.value = result.value * 64 + (byte & 0x3FU);
    }
    const std::uint32_t value = result.value;
    if ((value >= 0xD800 && value <= 0xDFFF) || value >= 0x110000 || value == 0xFFFE || value == 0xFFFF) {
        return fail("no unicode character");
    }
    const std::size_t needed = value < 0x80 ? 1 : value < 0x800 ? 2 : value <= 0xFFFF ? 3 : 4;
    if (needed < length) {
        return fail("sequence is too long");
    }
    result.good = true;
    result.length = length;
    return result;
}

std::string Hex(const std::string& bytes)
{
    std::string text;
    for (const char byte : bytes) {
        const char* const digits = "0123456789ABCDEF";
        text += digits[static_cast<unsigned char>(byte) / 16];
        text += digits[static_cast<unsigned char>(byte) % 16];
        text += ' ';
    }
    return text;
}

TEST_F(XmlUtf8, AllShortByteStringsDecodeByTheSteps)
{
    const std::vector<unsigned> interesting{0x00, 0x0A, 0x41, 0x7F, 0x80, 0x8D, 0x8F, 0x90, 0x9F, 0xA0,
                                            0xBE, 0xBF, 0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xED, 0xEF, 0xF0,
                                            0xF1, 0xF4, 0xF5, 0xF7, 0xF8, 0xFC, 0xFE, 0xFF};
    int checks = 0;
    const std::function<void(std::string)> check = [&](const std::string& bytes) {
        const Decoded expected = SlowDecode(bytes);
        const char* cursor = bytes.data();
        wchar_t character = L'?';
        const bool good = m_reader.GetCharFromUTF8(cursor, bytes.data() + bytes.size(), character);
        ASSERT_EQ(good, expected.good) << Hex(bytes);
        ASSERT_EQ(static_cast<std::size_t>(cursor - bytes.data()), expected.length) << Hex(bytes);
        if (good) {
            ASSERT_EQ(static_cast<std::uint32_t>(character), expected.value) << Hex(bytes);
        } else {
            ASSERT_EQ(m_errors.Text(), Message("line 0, ", expected.detail)) << Hex(bytes);
        }
        ++checks;
        if (bytes.size() < 4) {
            for (const unsigned byte : interesting) {
                check(bytes + static_cast<char>(byte));
                if (HasFatalFailure()) {
                    return;
                }
            }
        }
    };
    check("");
    EXPECT_GT(checks, 600000);
}

TEST_F(XmlUtf8, ShortLinesAreTakenOrRefusedByTheSteps)
{
    const std::vector<unsigned> interesting{0x41, 0x80, 0xA0, 0xBF, 0xC0, 0xC2, 0xE0,
                                            0xED, 0xEF, 0xF0, 0xF4, 0xF8, 0xFF};
    std::string line;
    const std::function<void(std::size_t)> check = [&](std::size_t length) {
        std::size_t position = 0;
        Decoded decoded;
        std::string narrow;
        while (position < line.size()) {
            decoded = SlowDecode(line.substr(position));
            if (!decoded.good) {
                break;
            }
            narrow += static_cast<char>(static_cast<unsigned char>(decoded.value));
            position += decoded.length;
        }
        const bool good = position == line.size();
        std::istringstream text("<x " + line + "/>\n");
        // The tag's end can follow as the next byte of a sequence, so it belongs to what is decoded.
        CXmlStreamReader reader(text, NoName);
        ErrorWord::Reset();
        const bool read = reader.NextToken();
        if (good) {
            ASSERT_TRUE(read) << Hex(line);
            ASSERT_EQ(reader.GetCurrentElement(), "<x " + narrow + "/>") << Hex(line);
        } else {
            const std::string detail = SlowDecode(line.substr(position) + "/>").detail;
            ASSERT_FALSE(read) << Hex(line);
            ASSERT_EQ(ErrorWord::Text(), Message("line 1, ", detail)) << Hex(line);
            ASSERT_EQ(reader.GetCurrentElement(), "");
            ASSERT_FALSE(reader.ElementHasNoChilds());
        }
        for (std::size_t i = 0; length > 0 && i < interesting.size() && !HasFatalFailure(); ++i) {
            line += static_cast<char>(interesting[i]);
            check(length - 1);
            line.pop_back();
        }
    };
    check(4);
}

TEST_F(XmlUtf8, FailuresNameThePosition)
{
    const struct
    {
        const char* bytes;
        const char* detail;
    } rows[] = {
        {"\x80", "lead is invalid"},
        {"\xFF", "lead is invalid"},
        {"\xF8\x88\x80\x80\x80", "lead is invalid"},
        {"\xC3", ""},
        {"\xE2\x82", ""},
        {"\xF0\x9F\x98", ""},
        {"\xC3(", "sequence incomplete"},
        {"\xE2(", "sequence incomplete"},
        {"\xF0\x9F\x98(", "sequence incomplete"},
        {"\xED\xA0\x80", "no unicode character"},
        {"\xEF\xBF\xBE", "no unicode character"},
        {"\xEF\xBF\xBF", "no unicode character"},
        {"\xF4\x90\x80\x80", "no unicode character"},
        {"\xC0\x80", "sequence is too long"},
        {"\xC1\xBF", "sequence is too long"},
        {"\xE0\x9F\xBF", "sequence is too long"},
        {"\xF0\x8F\xBF\xBD", "sequence is too long"},
        {"\xF0\x8D\xA0\x80", "no unicode character"},
    };
    const std::string name = "the file";
    for (const auto& row : rows) {
        std::istringstream text("<A>\nab" + std::string(row.bytes));
        CXmlStreamReader reader(text, name);
        EXPECT_TRUE(reader.NextToken());
        EXPECT_FALSE(reader.NextToken()) << Hex(row.bytes);
        EXPECT_EQ(m_errors.Take(), Message("the file, line 2, ", row.detail)) << Hex(row.bytes);
        EXPECT_EQ(reader.GetCurrentElement(), "");
    }
}

TEST_F(XmlUtf8, AReaderGoesOnBehindABadLine)
{
    std::istringstream text("\xFF\n<A/>\n");
    CXmlStreamReader reader(text, NoName);
    EXPECT_FALSE(reader.NextToken());
    EXPECT_FALSE(reader.IsEndToken());
    EXPECT_TRUE(reader.NextToken());
    EXPECT_EQ(reader.GetCurrentElement(), "<A/>");
    EXPECT_TRUE(reader.ElementHasNoChilds());
}

TEST_F(XmlUtf8, ABadLineOfBlanksIsReportedBeforeItIsTrimmed)
{
    std::istringstream text("  \xFF\n");
    CXmlStreamReader reader(text, NoName);
    EXPECT_FALSE(reader.NextToken());
    EXPECT_EQ(m_errors.Text(), Message("line 1, ", "lead is invalid"));
}

TEST_F(XmlUtf8, InvalidUtf8OfTheReader)
{
    EXPECT_FALSE(m_reader.InvalidUTF8("detail"));
    EXPECT_EQ(m_errors.Take(), "line 0, UTF-8 encoding error, detail");
    EXPECT_FALSE(m_reader.InvalidUTF8(""));
    EXPECT_EQ(m_errors.Take(), "line 0, UTF-8 encoding error");
    const std::string name = "n";
    EXPECT_FALSE(CXmlStreamReader(m_input, name).InvalidUTF8("d"));
    EXPECT_EQ(m_errors.Take(), "n, line 0, UTF-8 encoding error, d");
    CDeviceFootprint::EnableExceptions(true);
    EXPECT_THROW(m_reader.InvalidUTF8("d"), std::exception);
}

TEST_F(XmlUtf8, InvalidUtf8OfTheWriterHasTwoCommas)
{
    EXPECT_FALSE(m_writer.InvalidUTF8("detail"));
    EXPECT_EQ(m_errors.Take(), "UTF-8 encoding error, detail");
    EXPECT_FALSE(m_writer.InvalidUTF8(""));
    EXPECT_EQ(m_errors.Take(), "UTF-8 encoding error");
    const std::string name = "n";
    const CXmlStreamWriter writer(m_stream, name);
    EXPECT_EQ(writer.GetCurrentPositionText(), "n, ");
    EXPECT_FALSE(writer.InvalidUTF8("d"));
    EXPECT_EQ(m_errors.Take(), "n, , UTF-8 encoding error, d");
    EXPECT_FALSE(writer.InvalidUTF8(""));
    EXPECT_EQ(m_errors.Take(), "n, , UTF-8 encoding error");
    CDeviceFootprint::EnableExceptions(true);
    EXPECT_THROW(writer.InvalidUTF8("d"), std::exception);
}

TEST_F(XmlUtf8, DecodingAppendsUpToTheFirstFailure)
{
    std::wstring text = L"kept";
    EXPECT_TRUE(m_reader.GetStringFromUTF8("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", text));
    EXPECT_EQ(text, L"kepta\xE4\x20AC\x1F600");
    EXPECT_TRUE(m_reader.GetStringFromUTF8("", text));
    EXPECT_EQ(text.size(), 8U);
    text = L"kept";
    EXPECT_FALSE(m_reader.GetStringFromUTF8("ab\xFFz", text));
    EXPECT_EQ(text, L"keptab");
    EXPECT_EQ(m_errors.Text(), Message("line 0, ", "lead is invalid"));
}

bool IsEncodable(std::uint32_t value)
{
    return !(value >= 0xD800 && value <= 0xDFFF) && value <= 0x10FFFF && value != 0xFFFE && value != 0xFFFF;
}

TEST_F(XmlUtf8, EveryCharacterGoesThereAndBack)
{
    std::string bytes;
    std::wstring back;
    for (std::uint32_t value = 0; value <= 0x110100; ++value) {
        const std::wstring text(1, static_cast<wchar_t>(value));
        bytes.clear();
        back.clear();
        if (!IsEncodable(value)) {
            ASSERT_FALSE(m_writer.GetUTF8FromString(text, bytes)) << value;
            ASSERT_EQ(bytes, "");
            continue;
        }
        ASSERT_TRUE(m_writer.GetUTF8FromString(text, bytes)) << value;
        ASSERT_EQ(bytes.size(), value < 0x80 ? 1U : value < 0x800 ? 2U : value < 0x10000 ? 3U : 4U) << value;
        ASSERT_TRUE(m_reader.GetStringFromUTF8(bytes, back)) << value;
        ASSERT_EQ(back, text) << value;
    }
    EXPECT_EQ(m_errors.Text(), Message("", "no unicode character"));
}

TEST_F(XmlUtf8, EncodingAppendsUpToTheFirstFailure)
{
    const std::uint32_t bad[] = {0xD800, 0xDBFF,   0xDC00,     0xDFFF,     0xFFFE,
                                 0xFFFF, 0x110000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFE4};
    for (const std::uint32_t value : bad) {
        std::string bytes = "kept";
        EXPECT_FALSE(m_writer.GetUTF8FromString(L"a\xE4" + std::wstring(1, static_cast<wchar_t>(value)) + L"z", bytes));
        EXPECT_EQ(bytes, "kepta\xC3\xA4");
        EXPECT_EQ(m_errors.Take(), Message("", "no unicode character")) << value;
    }
    std::string bytes = "kept";
    EXPECT_TRUE(m_writer.GetUTF8FromString(L"", bytes));
    EXPECT_EQ(bytes, "kept");
    EXPECT_TRUE(m_writer.GetUTF8FromString(std::wstring(1, L'\0'), bytes));
    EXPECT_EQ(bytes, std::string("kept\0", 5));
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

} // namespace
