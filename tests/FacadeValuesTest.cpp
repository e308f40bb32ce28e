// The facade's value operations: text forms, numbers, attributes, names with variant and option.

#include "CNyxConfig.h"
#include "ErrorJournal.h"
#include "ErrorWord.h"
#include "ExceptionsOn.h"
#include "ForeignLocale.h"
#include "ThrownText.h"

#include <gtest/gtest.h>

#include <QString>

#include <cstddef>
#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

using namespace KvOrdo;
using namespace NyxTest;
using KvDeviceFootprint::CAttribute;

namespace
{

constexpr long longMax = std::numeric_limits<long>::max();
constexpr long longMin = std::numeric_limits<long>::min();
const std::string throwing = "Throwing CNyxConfigException";

class FacadeValuesTest : public testing::Test
{
protected:
    ErrorWord m_errorWord;
    CNyxConfig m_config;
    ErrorJournal m_errors;
};

// --- text forms

/// A form of text: "0" stands for any digit, any other character for itself.
struct TextForm
{
    const char* name;
    std::wstring pattern;
    bool (CNyxConfig::*validate)(const std::wstring&);
};

void PrintTo(const TextForm& form, std::ostream* stream)
{
    *stream << form.name;
}

class TextFormTest : public FacadeValuesTest, public testing::WithParamInterface<TextForm>
{
protected:
    bool IsValid(const std::wstring& value) { return (m_config.*GetParam().validate)(value); }
};

TEST_P(TextFormTest, TakesEveryDigitAtEveryPlaceOfADigit)
{
    for (std::size_t place = 0; place < GetParam().pattern.size(); ++place) {
        for (wchar_t digit = L'0'; digit <= L'9'; ++digit) {
            std::wstring value = GetParam().pattern;
            if (value[place] == L'0') {
                value[place] = digit;
                EXPECT_TRUE(IsValid(value)) << place << " " << static_cast<char>(digit);
            }
        }
    }
}

TEST_P(TextFormTest, TakesNoOtherCharacterAtAnyPlace)
{
    const std::wstring others = L"/:-. aA,+\t\n\u0660\u00B2\uFF10\u2013\U0001D7CE" + std::wstring(1, L'\0') +
                                static_cast<wchar_t>(0x130) + static_cast<wchar_t>(0x12D);
    for (std::size_t place = 0; place < GetParam().pattern.size(); ++place) {
        for (const wchar_t other : others + L"5") {
            std::wstring value = GetParam().pattern;
            const bool isDigitPlace = value[place] == L'0';
            if (other == value[place] || (isDigitPlace && other == L'5')) {
                continue;
            }
            value[place] = other;
            EXPECT_FALSE(IsValid(value)) << place << " " << static_cast<unsigned long>(other);
        }
    }
}

TEST_P(TextFormTest, TakesNoOtherLengthButEmpty)
{
    const std::wstring& pattern = GetParam().pattern;
    EXPECT_TRUE(IsValid(L""));
    for (std::size_t length = 1; length < pattern.size(); ++length) {
        EXPECT_FALSE(IsValid(pattern.substr(0, length))) << length;
    }
    EXPECT_FALSE(IsValid(pattern + L"0"));
    EXPECT_FALSE(IsValid(pattern + L" "));
    EXPECT_FALSE(IsValid(pattern + std::wstring(1, L'\0')));
    EXPECT_FALSE(IsValid(L" " + pattern));
    EXPECT_FALSE(IsValid(pattern + pattern));
    EXPECT_EQ(m_errors.Take(), "") << "a test says nothing";
}

INSTANTIATE_TEST_SUITE_P(Facade, TextFormTest,
                         testing::Values(TextForm{"date", L"0000-00-00", &CNyxConfig::validateDate},
                                         TextForm{"partChangeIndex", L"00.00", &CNyxConfig::validatePartChangeIndex}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(FacadeValuesTest, OnlyTheShapeOfADateCounts)
{
    EXPECT_TRUE(m_config.validateDate(L"2024-02-29"));
    EXPECT_TRUE(m_config.validateDate(L"2024-13-45"));
    EXPECT_TRUE(m_config.validateDate(L"9999-99-99"));
    EXPECT_FALSE(m_config.validateDate(L"2024-1-01"));
    EXPECT_FALSE(m_config.validateDate(L"2024/01/01"));
    EXPECT_FALSE(m_config.validateDate(L"24-01-01"));
}

TEST_F(FacadeValuesTest, OnlyTheShapeOfAPartChangeIndexCounts)
{
    EXPECT_TRUE(m_config.validatePartChangeIndex(L"99.99"));
    EXPECT_FALSE(m_config.validatePartChangeIndex(L"1.2"));
    EXPECT_FALSE(m_config.validatePartChangeIndex(L"01,02"));
}

// --- assertions

struct Assertion
{
    const char* name;
    void (CNyxConfig::*check)(const std::wstring&, const std::wstring&, bool);
    std::string prefix, suffix;
    std::vector<std::wstring> good, bad;
};

void PrintTo(const Assertion& assertion, std::ostream* stream)
{
    *stream << assertion.name;
}

class AssertionTest : public FacadeValuesTest, public testing::WithParamInterface<Assertion>
{
protected:
    void Check(const std::wstring& value, const std::wstring& label, bool throwOnError)
    {
        (m_config.*GetParam().check)(value, label, throwOnError);
    }
    std::string Message(const std::string& label) const { return GetParam().prefix + label + GetParam().suffix; }
};

TEST_P(AssertionTest, SaysNothingToAGoodValue)
{
    for (const std::wstring& value : GetParam().good) {
        for (const bool throwOnError : {false, true}) {
            EXPECT_EQ(ThrownText([&] { Check(value, L"label", throwOnError); }), NothingThrown);
            EXPECT_EQ(m_errors.Take(), "");
        }
    }
}

TEST_P(AssertionTest, WritesWideAndGoesOn)
{
    for (const std::wstring& value : GetParam().bad) {
        EXPECT_EQ(ThrownText([&] { Check(value, L"<Service> serviceDate", false); }), NothingThrown);
        EXPECT_EQ(m_errors.Take(), WideLine(Message("<Service> serviceDate")));
    }
}

TEST_P(AssertionTest, WritesWideThenNarrowThenThrows)
{
    for (const std::wstring& value : GetParam().bad) {
        EXPECT_EQ(ThrownText([&] { Check(value, L"service->serviceDate", true); }), Message("service->serviceDate"));
        EXPECT_EQ(m_errors.Take(), WideLine(Message("service->serviceDate")) + NarrowLine(throwing));
    }
}

TEST_P(AssertionTest, LabelStaysWideOnTheStreamAndIsNarrowedInTheException)
{
    const std::wstring label = L"\u0141\u20AC";
    EXPECT_EQ(ThrownText([&] { Check(GetParam().bad.front(), label, true); }), Message("A\xAC"));
    EXPECT_EQ(m_errors.Take(), WideLine(Message("\\{141}\\{20ac}")) + NarrowLine(throwing));
    EXPECT_EQ(ThrownText([&] { Check(GetParam().bad.front(), L"", true); }), Message(""));
}

INSTANTIATE_TEST_SUITE_P(Facade, AssertionTest,
                         testing::Values(Assertion{"date",
                                                   &CNyxConfig::assertValidDate,
                                                   "CNyxConfig::assertValidDate: ",
                                                   " may only be empty or match pattern yyyy-mm-dd",
                                                   {L"", L"2024-01-31", L"9999-99-99"},
                                                   {L"2024-1-01", L"x", L" "}},
                                         Assertion{"partChangeIndex",
                                                   &CNyxConfig::assertValidPartChangeIndex,
                                                   "CNyxConfig::assertValidPartChangeIndex: ",
                                                   " may only be empty or match pattern dd.dd",
                                                   {L"", L"01.02", L"99.99"},
                                                   {L"1.02", L"ab.cd", L" "}},
                                         Assertion{"notEmpty",
                                                   &CNyxConfig::assertNotEmpty,
                                                   "CNyxConfig::assertNotEmpty: ",
                                                   " may not be empty",
                                                   {L"x", L" ", std::wstring(1, L'\0')},
                                                   {L""}}),
                         [](const auto& test) { return std::string(test.param.name); });

// --- numbers to text

using PairToText = std::wstring (CNyxConfig::*)(long, long, bool);
constexpr PairToText partNumber = &CNyxConfig::parsePartNumber;
constexpr PairToText changeIndex = &CNyxConfig::parsePartChangeIndex;

struct PairText
{
    PairToText operation;
    long first, second;
    std::wstring text;
};

TEST_F(FacadeValuesTest, PairsOfNumbersInRangeGiveTheText)
{
    const PairText rows[] = {
        {partNumber, 12345678, 2, L"1234.5678.02"},
        {partNumber, 99999999, 99, L"9999.9999.99"},
        {partNumber, 0, 0, L"0000.0000.00"},
        {partNumber, 9999, 10, L"0000.9999.10"},
        {partNumber, 10000, 9, L"0001.0000.09"},
        {partNumber, 1234567, 0, L"0123.4567.00"},
        {changeIndex, 1, 2, L"01.02"},
        {changeIndex, 0, 0, L"00.00"},
        {changeIndex, 99, 99, L"99.99"},
        {changeIndex, 10, 9, L"10.09"},
    };
    for (const PairText& row : rows) {
        for (const bool throwOnError : {false, true}) {
            EXPECT_EQ((m_config.*row.operation)(row.first, row.second, throwOnError), row.text);
        }
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(FacadeValuesTest, PairsOfNumbersOutOfRangeAreToldInTheOrderOfTheTests)
{
    const struct
    {
        PairToText operation;
        long first, second;
        const char* words;
    } rows[] = {
        {partNumber, 100000000, 0, "partNumber must not be > 9999,9999"},
        {partNumber, longMax, 100, "partNumber must not be > 9999,9999"},
        {partNumber, 100000000, -1, "partNumber must not be > 9999,9999"},
        {partNumber, -1, 0, "partNumber must not be < 0"},
        {partNumber, longMin, 100, "partNumber must not be < 0"},
        {partNumber, -1, -1, "partNumber must not be < 0"},
        {partNumber, 99999999, 100, "variant must not be > 99"},
        {partNumber, 0, longMax, "variant must not be > 99"},
        {partNumber, 0, -1, "variant must not be < 0"},
        {partNumber, 12345678, longMin, "variant must not be < 0"},
        {changeIndex, 100, 0, "majorRevision must not be > 99"},
        {changeIndex, longMax, -1, "majorRevision must not be > 99"},
        {changeIndex, -1, 0, "majorRevision must not be < 0"},
        {changeIndex, longMin, 100, "majorRevision must not be < 0"},
        {changeIndex, 99, 100, "minorRevision must not be > 99"},
        {changeIndex, 0, longMax, "minorRevision must not be > 99"},
        {changeIndex, 0, -1, "minorRevision must not be < 0"},
        {changeIndex, 1, longMin, "minorRevision must not be < 0"},
    };
    for (const auto& row : rows) {
        // Both operations speak in the name of the first.
        const std::string message = std::string("CNyxConfig::parsePartNumber: HwBoardDescItem.") + row.words;
        EXPECT_EQ((m_config.*row.operation)(row.first, row.second, false), L"");
        EXPECT_EQ(m_errors.Take(), NarrowLine(message));
        EXPECT_EQ(ThrownText([&] { (m_config.*row.operation)(row.first, row.second, true); }), message);
        EXPECT_EQ(m_errors.Take(), NarrowLine(message)) << "the throw is not announced";
    }
}

TEST_F(FacadeValuesTest, WholeNumberToText)
{
    EXPECT_EQ(m_config.intToWstring(0), L"0");
    EXPECT_EQ(m_config.intToWstring(-1), L"-1");
    EXPECT_EQ(m_config.intToWstring(1234567), L"1234567");
    EXPECT_EQ(m_config.intToWstring(longMax), std::to_wstring(longMax));
    EXPECT_EQ(m_config.intToWstring(longMin), std::to_wstring(longMin));
}

TEST_F(FacadeValuesTest, BoolToText)
{
    EXPECT_EQ(m_config.boolToWstring(true), L"true");
    EXPECT_EQ(m_config.boolToWstring(false), L"false");
}

// --- text to number

TEST_F(FacadeValuesTest, TextThatIsANumberInFull)
{
    const struct
    {
        std::wstring text;
        long number;
    } rows[] = {
        {L"12", 12},
        {L"-3", -3},
        {L"+7", 7},
        {L"0", 0},
        {L"-0", 0},
        {L"-1", -1},
        {L"010", 10},
        {L"0009", 9},
        {L" 12", 12},
        {L"\t\n\v\f\r -12", -12},
        {std::wstring(1000, L'0') + L"5", 5},
        {std::to_wstring(longMax), longMax},
        {std::to_wstring(longMin), longMin},
    };
    for (const auto& row : rows) {
        for (const bool throwOnError : {false, true}) {
            EXPECT_EQ(m_config.wStringToLong(row.text, throwOnError), row.number) << row.number;
        }
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(FacadeValuesTest, EmptyTextIsAnAbsentNumber)
{
    EXPECT_EQ(m_config.wStringToLong(L"", true), -1);
    EXPECT_EQ(m_config.wStringToLong(L"", false), -1);
    EXPECT_EQ(m_errors.Take(), "");
}

/// The text that is one greater in amount than the number.
std::wstring Beyond(long number)
{
    std::wstring digits = std::to_wstring(number);
    ++digits.back(); // the bounds end in 7 and 8
    return digits;
}

TEST_F(FacadeValuesTest, TextThatIsNoNumberInFull)
{
    const struct
    {
        std::wstring text;
        std::string shown;    // as the journal has it
        std::string narrowed; // as the exception has it
    } rows[] = {
        {L"x", "x", "x"},
        {L"12a", "12a", "12a"},
        {L"12 ", "12 ", "12 "},
        {L" ", " ", " "},
        {L"-", "-", "-"},
        {L"+", "+", "+"},
        {L"- 3", "- 3", "- 3"},
        {L"--3", "--3", "--3"},
        {L"+-3", "+-3", "+-3"},
        {L"0x10", "0x10", "0x10"},
        {L"1.5", "1.5", "1.5"},
        {L"1.234", "1.234", "1.234"}, // a number where "." groups digits
        {L"1,234", "1,234", "1,234"},
        {L"1e3", "1e3", "1e3"},
        {L"12\n", "12\n[wide]", "12\n"},
        {L"\u0661", "\\{661}", "a"},
        {L"\u3000"
         L"1",
         "\\{3000}1", std::string("\0", 1) + "1"},
        {std::wstring(L"12\0", 3), "12\\{0}", std::string("12\0", 3)},
        {Beyond(longMax), QString::fromStdWString(Beyond(longMax)).toStdString(),
         QString::fromStdWString(Beyond(longMax)).toStdString()},
        {Beyond(longMin), QString::fromStdWString(Beyond(longMin)).toStdString(),
         QString::fromStdWString(Beyond(longMin)).toStdString()},
        {std::wstring(40, L'9'), std::string(40, '9'), std::string(40, '9')},
    };
    const std::string before = "CNyxConfig::wStringToLong(): could not convert ";
    for (const auto& row : rows) {
        EXPECT_EQ(m_config.wStringToLong(row.text, false), -1) << row.shown;
        EXPECT_EQ(m_errors.Take(), "") << "silent: " << row.shown;
        EXPECT_EQ(ThrownText([&] { m_config.wStringToLong(row.text, true); }), before + row.narrowed + " to long");
        EXPECT_EQ(m_errors.Take(), WideLine(before + row.shown + " to long")) << "the throw is not announced";
    }
}

// --- attributes

TEST_F(FacadeValuesTest, AttributeWithAValue)
{
    CAttribute attribute("x");
    for (const bool throwOnError : {false, true}) {
        attribute = L"\u20AC 12";
        EXPECT_EQ(m_config.getCAttributeStrValue(attribute, throwOnError), L"\u20AC 12");
        attribute = L"-12";
        EXPECT_EQ(m_config.getCAttributeLongValue(attribute, throwOnError), -12);
        EXPECT_EQ(attribute.GetValue(), L"-12");
    }
    EXPECT_EQ(m_errors.Take(), "");
    EXPECT_EQ(m_errorWord.Text(), ErrorWord::Untouched());
}

TEST_F(FacadeValuesTest, AbsentAttributeIsEmptyAndTheDocumentsLastError)
{
    CAttribute attribute("x");
    const std::string words = "Can not access empty attribute \"x\"!";
    for (const bool throwOnError : {false, true}) {
        EXPECT_EQ(m_config.getCAttributeStrValue(attribute, throwOnError), L"");
        EXPECT_EQ(m_errorWord.Take(), words);
        EXPECT_EQ(m_config.getCAttributeLongValue(attribute, throwOnError), -1);
        EXPECT_EQ(m_errorWord.Take(), words);
    }
    EXPECT_EQ(m_errors.Take(), "");
}

TEST_F(FacadeValuesTest, AbsentAttributeThrowsWithTheDocumentsExceptions)
{
    CAttribute attribute("x");
    const ExceptionsOn exceptionsOn;
    for (const bool throwOnError : {false, true}) {
        EXPECT_EQ(ThrownText([&] { m_config.getCAttributeStrValue(attribute, throwOnError); }), PlainException);
        EXPECT_EQ(ThrownText([&] { m_config.getCAttributeLongValue(attribute, throwOnError); }), PlainException);
    }
    EXPECT_EQ(m_errorWord.Text(), "Can not access empty attribute \"x\"!");
    attribute = L"7";
    EXPECT_EQ(m_config.getCAttributeLongValue(attribute, true), 7);
}

TEST_F(FacadeValuesTest, MalformedNumberInAnAttribute)
{
    CAttribute attribute("x");
    attribute = L"12h";
    EXPECT_EQ(m_config.getCAttributeLongValue(attribute, false), -1);
    EXPECT_EQ(m_errors.Take(), "");
    const std::string message = "CNyxConfig::wStringToLong(): could not convert 12h to long";
    EXPECT_EQ(ThrownText([&] { m_config.getCAttributeLongValue(attribute, true); }), message);
    EXPECT_EQ(m_errors.Take(), WideLine(message));
    EXPECT_EQ(m_config.getCAttributeStrValue(attribute, true), L"12h");
    EXPECT_EQ(m_errorWord.Text(), ErrorWord::Untouched());
}

// --- locale

TEST_F(FacadeValuesTest, LocaleOfTheProcessDoesNotMatter)
{
    CNyxConfig& config = m_config;
    const ForeignLocale foreign;
    EXPECT_EQ(config.wStringToLong(L"1234567", true), 1234567);
    EXPECT_EQ(config.wStringToLong(L"1.234", false), -1);
    EXPECT_EQ(config.wStringToLong(L"1,234", false), -1);
    EXPECT_EQ(config.wStringToLong(L"\u3000"
                                   L"1",
                                   false),
              -1);
    EXPECT_EQ(config.intToWstring(-1234567), L"-1234567");
    EXPECT_EQ(config.boolToWstring(true), L"true");
    EXPECT_EQ(config.boolToWstring(false), L"false");
    EXPECT_EQ(config.parsePartNumber(12345678, 2, true), L"1234.5678.02");
    EXPECT_EQ(config.parsePartChangeIndex(1, 2, true), L"01.02");
    EXPECT_TRUE(config.validateDate(L"2024-01-01"));
    EXPECT_FALSE(config.validateDate(L"202\u0664-01-01"));
    EXPECT_EQ(ThrownText([&] { config.wStringToLong(L"1.234.567", true); }),
              "CNyxConfig::wStringToLong(): could not convert 1.234.567 to long");
    std::wstring name;
    unsigned int variant = 0;
    unsigned int option = 0;
    EXPECT_FALSE(config.extractNamePathAndVariantOption(L"a[1.234]", name, variant, option));
    EXPECT_TRUE(config.extractNamePathAndVariantOption(L"a[1234,4567]", name, variant, option));
    EXPECT_EQ(variant, 1234U);
    EXPECT_EQ(option, 4567U);
}

// --- names with variant and option

const std::wstring unsetName = L"(unset)";
constexpr unsigned int unset = 4711;

/// What an operation made of outputs that were unset.
struct NameParts
{
    bool result = true;
    std::wstring name = unsetName;
    unsigned int variant = unset, option = unset;

    bool operator==(const NameParts& other) const
    {
        return result == other.result && name == other.name && variant == other.variant && option == other.option;
    }
};

std::ostream& operator<<(std::ostream& stream, const NameParts& parts)
{
    return stream << std::boolalpha << parts.result << " \"" << QString::fromStdWString(parts.name).toStdString()
                  << "\" " << parts.variant << " " << parts.option;
}

NameParts Extract(const CNyxConfig& config, const std::wstring& text)
{
    NameParts parts;
    parts.result = config.extractNamePathAndVariantOption(text, parts.name, parts.variant, parts.option);
    return parts;
}

TEST_F(FacadeValuesTest, NamesWithVariantAndOption)
{
    const struct
    {
        std::wstring text;
        NameParts parts;
    } rows[] = {
        {L"abc", {true, L"abc", 0, 0}},
        {L"", {true, L"", 0, 0}},
        {L"abc[]", {true, L"abc", 0, 0}},
        {L"abc[3]", {true, L"abc", 3, 0}},
        {L"abc[3", {true, unsetName, unset, 0}},
        {L"abc[", {true, unsetName, unset, 0}},
        {L"abc[3,", {false, L"abc", 3, unset}},
        {L"abc[3,4", {true, L"abc", 3, 4}}, // the option reaches to the end
        {L"abc[,4", {true, L"abc", 0, 4}},
        {L"abc[3,]", {true, L"abc", 3, 0}},
        {L"abc[3,4]", {true, L"abc", 3, 4}},
        {L"abc[3,4]x", {true, L"abc", 3, 4}},
        {L"abc[3]x", {true, L"abc", 3, 0}},
        {L"abc[,]", {true, L"abc", 0, 0}},
        {L"abc[,4]", {true, L"abc", 0, 4}},
        {L"abc[x]", {false, L"abc", unset, 0}},
        {L"abc[x,]", {false, L"abc", unset, 0}},
        {L"abc[x,4]", {false, L"abc", unset, unset}},
        {L"abc[3,x]", {false, L"abc", 3, unset}},
        {L"abc[,x]", {false, L"abc", 0, unset}},
        {L"abc[-3]", {false, L"abc", unset, 0}},
        {L"abc[3,-4]", {false, L"abc", 3, unset}},
        {L"abc[0x3]", {false, L"abc", unset, 0}},
        {L"abc[3.0]", {false, L"abc", unset, 0}},
        {L"abc[010]", {true, L"abc", 10, 0}},
        {L"abc[4294967295,4294967295]", {true, L"abc", 4294967295U, 4294967295U}},
        {L"abc[4294967296]", {false, L"abc", unset, 0}},
        {L"abc[3,4294967296]", {false, L"abc", 3, unset}},
        {L"abc[3][4]", {true, L"abc", 3, 0}},
        {L"abc[3,4,5]", {false, L"abc", 3, unset}},
        {L"[3,4]", {true, L"", 3, 4}},
        {L"\u20AC \U0001F600[3]", {true, L"\u20AC \U0001F600", 3, 0}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Extract(m_config, row.text), row.parts) << QString::fromStdWString(row.text).toStdString();
    }
    EXPECT_EQ(m_errors.Take(), "");
    EXPECT_EQ(m_errorWord.Text(), ErrorWord::Untouched());
}

/// Blanks and signs count as they do for QString::toUInt.
TEST_F(FacadeValuesTest, NumbersInNamesConvertAsQtDoes)
{
    for (const wchar_t* text : {L" 3", L"3 ", L"+3", L"\t3\n", L"3 4", L"- 3", L"-0", L"+", L" ", L"3\u00A0", L"\u0663",
                                L"00000000000000000003", L"1e1", L"1_0", L"0b1"}) {
        bool isNumber = false;
        const unsigned int number = QString::fromStdWString(text).toUInt(&isNumber);
        const std::wstring brackets = std::wstring(L"a[") + text;
        const NameParts variant = {isNumber, L"a", isNumber ? number : unset, 0};
        EXPECT_EQ(Extract(m_config, brackets + L"]"), variant) << QString::fromStdWString(text).toStdString();
        const NameParts option = {isNumber, L"a", 5, isNumber ? number : unset};
        EXPECT_EQ(Extract(m_config, std::wstring(L"a[5,") + text + L"]"), option)
            << QString::fromStdWString(text).toStdString();
    }
}

/// The rules once more, slowly: text by text and in the order in which they apply.
class SlowExtraction
{
public:
    explicit SlowExtraction(const std::wstring& text)
        : m_text(text), m_open(text.find(L'[')), m_close(text.find(L']')), m_comma(text.find(L','))
    {
    }

    NameParts Run()
    {
        if (m_comma != std::wstring::npos) {
            WithComma();
        } else {
            WithoutComma();
        }
        return m_parts;
    }

private:
    void WithComma()
    {
        m_parts.name = m_text.substr(0, m_open);
        const bool commaFollowsOpen = m_comma == m_open + 1;
        const bool closeFollowsComma = m_close == m_comma + 1;
        if (!commaFollowsOpen && closeFollowsComma) {
            Convert(Between(m_open, m_comma), m_parts.variant);
            m_parts.option = 0;
        } else if (!commaFollowsOpen) {
            if (Convert(Between(m_open, m_comma), m_parts.variant)) {
                Convert(Between(m_comma, m_close), m_parts.option);
            }
        } else if (closeFollowsComma) {
            m_parts.variant = 0;
            m_parts.option = 0;
        } else {
            Convert(Between(m_comma, m_close), m_parts.option);
            m_parts.variant = 0;
        }
    }

    void WithoutComma()
    {
        m_parts.option = 0;
        if (m_open == std::wstring::npos) {
            m_parts.name = m_text;
            m_parts.variant = 0;
        } else if (m_close == m_open + 1) {
            m_parts.name = m_text.substr(0, m_open);
            m_parts.variant = 0;
        } else if (m_close != std::wstring::npos) {
            m_parts.name = m_text.substr(0, m_open);
            Convert(Between(m_open, m_close), m_parts.variant);
        }
    }

    /// What stands between two places; to the end of the text if there is no second one behind the first.
    std::wstring Between(std::size_t first, std::size_t second) const
    {
        return m_text.substr(first + 1, second - first - 1);
    }

    bool Convert(const std::wstring& text, unsigned int& output)
    {
        bool isNumber = false;
        const unsigned int number = QString::fromStdWString(text).toUInt(&isNumber, 10);
        if (isNumber) {
            output = number;
        } else {
            m_parts.result = false;
        }
        return isNumber;
    }

    const std::wstring m_text;
    const std::size_t m_open, m_close, m_comma;
    NameParts m_parts;
};

TEST_F(FacadeValuesTest, EveryShortTextIsTakenApartByTheRules)
{
    const std::wstring alphabet = L"a3[],";
    std::vector<std::wstring> texts = {L""};
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < texts.size() && wrong < 20; ++i) {
        const std::wstring text = texts[i];
        const NameParts expected = SlowExtraction(text).Run();
        NameParts actual;
        EXPECT_NO_THROW(actual = Extract(m_config, text)) << QString::fromStdWString(text).toStdString();
        EXPECT_EQ(actual, expected) << QString::fromStdWString(text).toStdString();
        wrong += actual == expected ? 0 : 1;
        for (const wchar_t character : text.size() < 7 ? alphabet : std::wstring()) {
            texts.push_back(text + character);
        }
    }
    EXPECT_EQ(texts.size(), 97656U) << "all texts of up to seven characters";
}

} // namespace
