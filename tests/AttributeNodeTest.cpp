#include "AttributeNode.h"

#include "DeviceFootprint.h"
#include "ErrorWord.h"
#include "FakeClock.h"
#include "ForeignLocale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <ctime>
#include <exception>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace
{

using namespace KvDeviceFootprint;
using NyxTest::ErrorWord;
using NyxTest::FakeClock;
using NyxTest::ForeignLocale;

std::string EmptyMessage(const std::string& name)
{
    return "Can not access empty attribute \"" + name + "\"!";
}

CAttribute Attribute(const char* name, const std::wstring& value)
{
    CAttribute attribute(name);
    attribute.Set(value);
    return attribute;
}

class AttributeNode : public testing::Test
{
protected:
    ErrorWord m_errors;
};

TEST(NodeClasses, StandInTheirTree)
{
    EXPECT_TRUE(std::is_abstract_v<CNode>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CNode>);
    EXPECT_TRUE((std::is_base_of_v<CNode, CReadOnlyAttribute>));
    EXPECT_TRUE((std::is_base_of_v<CReadOnlyAttribute, CAttribute>));
    EXPECT_TRUE((std::is_base_of_v<CReadOnlyAttribute, CTimeAttribute>));
    EXPECT_FALSE((std::is_base_of_v<CAttribute, CTimeAttribute>));
    EXPECT_EQ(sizeof(wchar_t), 4U);
}

TEST_F(AttributeNode, StartsWithItsNameAndNoValue)
{
    const CReadOnlyAttribute readOnly("checksum");
    const CAttribute writable("sn");
    const CTimeAttribute time("creationDate");
    EXPECT_EQ(readOnly.GetNodeName(), "checksum");
    EXPECT_EQ(writable.GetNodeName(), "sn");
    EXPECT_EQ(time.GetNodeName(), "creationDate");
    for (const CReadOnlyAttribute* attribute : {&readOnly, static_cast<const CReadOnlyAttribute*>(&writable),
                                                static_cast<const CReadOnlyAttribute*>(&time)}) {
        EXPECT_TRUE(attribute->IsEmpty());
        EXPECT_EQ(attribute->GetValue(), L"");
    }
}

TEST_F(AttributeNode, NameOutlivesTheTextItWasMadeFrom)
{
    char text[] = "name";
    const CAttribute attribute(text);
    text[0] = 'X';
    EXPECT_EQ(attribute.GetNodeName(), "name");
}

TEST_F(AttributeNode, SetWideReplacesTheValue)
{
    CAttribute attribute("a");
    const std::wstring tricky(L"\0\n\x1F600\x80000000", 4);
    EXPECT_TRUE(attribute.Set(tricky));
    EXPECT_FALSE(attribute.IsEmpty());
    std::wstring value = L"before";
    EXPECT_TRUE(attribute.Get(value));
    EXPECT_EQ(value, tricky);
    EXPECT_TRUE(attribute.Set(std::wstring(L"b")));
    EXPECT_TRUE(attribute.Get(value));
    EXPECT_EQ(value, L"b");
    EXPECT_TRUE(attribute.Set(std::wstring()));
    EXPECT_TRUE(attribute.IsEmpty());
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(AttributeNode, SetNarrowSignExtendsEachByteAndGetNarrowGivesEachBack)
{
    CAttribute attribute("a");
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        EXPECT_TRUE(attribute.Set(text));
        std::wstring wide;
        EXPECT_TRUE(attribute.Get(wide));
        ASSERT_EQ(wide.size(), 1U) << byte;
        EXPECT_EQ(static_cast<long>(wide[0]), byte < 0x80 ? byte : byte - 256);
        std::string narrow;
        EXPECT_TRUE(attribute.Get(narrow));
        EXPECT_EQ(narrow, text) << byte;
    }
}

TEST_F(AttributeNode, ByteE4ComesBackFromTheNarrowGet)
{
    CAttribute attribute("a");
    attribute.Set(std::string("\xE4"));
    std::string value;
    EXPECT_TRUE(attribute.Get(value));
    EXPECT_EQ(value, "\xE4");
    EXPECT_EQ(attribute.GetValue(), std::wstring(1, static_cast<wchar_t>(-28)));
}

TEST_F(AttributeNode, GetNarrowKeepsTheLowEightBits)
{
    const CAttribute attribute = Attribute("a", L"\x141\x1F6E4\xE4z");
    std::string value;
    EXPECT_TRUE(attribute.Get(value));
    EXPECT_EQ(value, "\x41\xE4\xE4z");
}

TEST(TextConversion, GoesCharacterByCharacter)
{
    EXPECT_EQ(ToSingleChar(L'\x1F600'), '\0');
    EXPECT_EQ(ToSingleChar(L'\x1F6FF'), '\xFF');
    EXPECT_EQ(ToSingleChar(static_cast<wchar_t>(-28)), '\xE4');
    EXPECT_EQ(NarrowText(L"\x141z"), "Az");
    EXPECT_EQ(WidenText("z\x80"), (std::wstring{L'z', static_cast<wchar_t>(-128)}));
    EXPECT_EQ(NarrowText(L""), "");
    EXPECT_EQ(WidenText(""), L"");
}

TEST_F(AttributeNode, SetBoolStoresTheWord)
{
    CAttribute attribute("a");
    EXPECT_TRUE(attribute.SetBool(true));
    EXPECT_EQ(attribute.GetValue(), L"true");
    EXPECT_TRUE(attribute.SetBool(false));
    EXPECT_EQ(attribute.GetValue(), L"false");
}

TEST_F(AttributeNode, SetIntegerPrintsPlainDecimal)
{
    CAttribute attribute("a");
    for (const long number : {0L, 1L, -1L, 42L, 1234567L, 2147483647L, -2147483647L - 1, LONG_MAX, LONG_MIN}) {
        EXPECT_TRUE(attribute.SetInteger(number));
        EXPECT_EQ(attribute.GetValue(), std::to_wstring(number));
        long back = 7;
        EXPECT_TRUE(attribute.GetInteger(back));
        EXPECT_EQ(back, number);
    }
}

TEST_F(AttributeNode, ConversionsDoNotDependOnTheLocale)
{
    const ForeignLocale locale;
    CAttribute attribute("a");
    attribute.SetInteger(-1234567);
    EXPECT_EQ(attribute.GetValue(), L"-1234567");
    long number = 0;
    EXPECT_TRUE(attribute.GetInteger(number));
    EXPECT_EQ(number, -1234567);
    attribute.Set(std::wstring(L"1.234"));
    EXPECT_TRUE(attribute.GetInteger(number));
    EXPECT_EQ(number, 1);
    attribute.SetBool(true);
    EXPECT_EQ(attribute.GetValue(), L"true");
    const FakeClock clock(0);
    CTimeAttribute time("t");
    time.SetCreationDateToCurrent();
    EXPECT_EQ(time.GetValue(), L"1970-01-01T00:00:00");
}

TEST_F(AttributeNode, AssignmentFromTextAndNumber)
{
    CAttribute attribute("a");
    EXPECT_EQ(&(attribute = std::wstring(L"wide")), &attribute);
    EXPECT_EQ(attribute.GetValue(), L"wide");
    EXPECT_EQ(&(attribute = std::string("na\xE4")), &attribute);
    EXPECT_EQ(attribute.GetValue(), (std::wstring{L'n', L'a', static_cast<wchar_t>(-28)}));
    EXPECT_EQ(&(attribute = "c\xE4"), &attribute);
    EXPECT_EQ(attribute.GetValue(), (std::wstring{L'c', static_cast<wchar_t>(-28)}));
    EXPECT_EQ(&(attribute = L"wide c"), &attribute);
    EXPECT_EQ(attribute.GetValue(), L"wide c");
    EXPECT_EQ(&(attribute = -17L), &attribute);
    EXPECT_EQ(attribute.GetValue(), L"-17");
    EXPECT_EQ(attribute.GetNodeName(), "a");
}

TEST_F(AttributeNode, AssignmentFromNullPointersEmpties)
{
    CAttribute attribute = Attribute("a", L"x");
    attribute = static_cast<const char*>(nullptr);
    EXPECT_TRUE(attribute.IsEmpty());
    attribute = L"x";
    attribute = static_cast<const wchar_t*>(nullptr);
    EXPECT_TRUE(attribute.IsEmpty());
}

TEST_F(AttributeNode, AssignmentFromAnAttributeCopiesNameAndValue)
{
    CAttribute target = Attribute("target", L"old");
    const CAttribute source = Attribute("source", L"new");
    EXPECT_EQ(&(target = source), &target);
    EXPECT_EQ(target.GetNodeName(), "source");
    EXPECT_EQ(target.GetValue(), L"new");
    EXPECT_EQ(source.GetValue(), L"new");
    target = CAttribute("third");
    EXPECT_EQ(target.GetNodeName(), "third");
    EXPECT_TRUE(target.IsEmpty());
    const CAttribute& self = target;
    target = L"kept";
    target = self;
    EXPECT_EQ(target.GetValue(), L"kept");
}

TEST_F(AttributeNode, CopiesAreIndependent)
{
    CAttribute source = Attribute("a", L"one");
    CAttribute copy(source);
    source = L"two";
    EXPECT_EQ(copy.GetNodeName(), "a");
    EXPECT_EQ(copy.GetValue(), L"one");
    copy.Clear();
    EXPECT_EQ(source.GetValue(), L"two");
}

TEST_F(AttributeNode, ClearEmptiesTheValueOnly)
{
    CAttribute attribute = Attribute("a", L"x");
    attribute.Clear();
    EXPECT_TRUE(attribute.IsEmpty());
    EXPECT_EQ(attribute.GetNodeName(), "a");
}

TEST_F(AttributeNode, ReadingAnEmptyOneIsReportedAndLeavesTheOutputAlone)
{
    const CAttribute attribute("partNumber");
    std::wstring wide = L"before";
    EXPECT_FALSE(attribute.Get(wide));
    EXPECT_EQ(m_errors.Take(), EmptyMessage("partNumber"));
    EXPECT_EQ(wide, L"before");
    std::string narrow = "before";
    EXPECT_FALSE(attribute.Get(narrow));
    EXPECT_EQ(m_errors.Take(), EmptyMessage("partNumber"));
    EXPECT_EQ(narrow, "before");
    for (bool flag : {true, false}) {
        const bool before = flag;
        EXPECT_FALSE(attribute.GetBool(flag));
        EXPECT_EQ(m_errors.Take(), EmptyMessage("partNumber"));
        EXPECT_EQ(flag, before);
    }
    long number = 77;
    EXPECT_FALSE(attribute.GetInteger(number));
    EXPECT_EQ(m_errors.Take(), EmptyMessage("partNumber"));
    EXPECT_EQ(number, 77);
    EXPECT_FALSE(attribute.EmptyGetError());
    EXPECT_EQ(m_errors.Take(), EmptyMessage("partNumber"));
}

TEST_F(AttributeNode, EmptyGetErrorReportsEvenWithAValue)
{
    EXPECT_FALSE(Attribute("a", L"x").EmptyGetError());
    EXPECT_EQ(m_errors.Text(), EmptyMessage("a"));
}

TEST_F(AttributeNode, GetBoolKnowsTheTwoWordsInExactCase)
{
    bool flag = false;
    EXPECT_TRUE(Attribute("a", L"true").GetBool(flag));
    EXPECT_TRUE(flag);
    EXPECT_TRUE(Attribute("a", L"false").GetBool(flag));
    EXPECT_FALSE(flag);
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(AttributeNode, GetBoolReportsAnythingElse)
{
    for (const wchar_t* text :
         {L"TRUE", L"True", L"FALSE", L"1", L"0", L"true ", L" true", L"truefalse", L"tru", L"x"}) {
        for (const bool before : {true, false}) {
            bool flag = before;
            const CAttribute attribute = Attribute("a", text);
            EXPECT_FALSE(attribute.GetBool(flag)) << NarrowText(text);
            EXPECT_EQ(m_errors.Take(), "invalid boolean attribute") << NarrowText(text);
            EXPECT_EQ(flag, before) << NarrowText(text);
            EXPECT_EQ(attribute.GetValue(), text);
        }
    }
    bool flag = true;
    // The low eight bits of each character spell the word.
    EXPECT_FALSE(Attribute("a", L"\x174\x172\x175\x165").GetBool(flag));
    EXPECT_EQ(m_errors.Text(), "invalid boolean attribute");
}

TEST_F(AttributeNode, GetIntegerReadsTheNumberAtTheStart)
{
    const struct
    {
        const wchar_t* text;
        long number;
    } rows[] = {
        {L"0", 0},
        {L"42", 42},
        {L"-42", -42},
        {L"+42", 42},
        {L"042", 42},
        {L"0x1F", 0},
        {L"12abc", 12},
        {L"abc", 0},
        {L"-", 0},
        {L"- 1", 0},
        {L" 5", 5},
        {L"\t\n\v\f\r 5", 5},
        {L"1 2", 1},
        {L"1,234", 1},
        {L"1.9", 1},
        {L"99999999999999999999999", LONG_MAX},
        {L"-99999999999999999999999", LONG_MIN},
        {L"\x661", 0},
        {L"\xA0"
         L"5",
         0},
        {L"\x2003"
         L"5",
         0},
        {L"--5", 0},
        {L"5-", 5},
    };
    for (const auto& row : rows) {
        long number = 77;
        EXPECT_TRUE(Attribute("a", row.text).GetInteger(number)) << NarrowText(row.text);
        EXPECT_EQ(number, row.number) << NarrowText(row.text);
    }
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(AttributeNode, GetIntegerStopsAtAZeroCharacter)
{
    long number = 77;
    EXPECT_TRUE(Attribute("a", std::wstring(L"1\0"
                                            L"2",
                                            3))
                    .GetInteger(number));
    EXPECT_EQ(number, 1);
}

TEST_F(AttributeNode, ReportsThrowWhileExceptionsAreEnabled)
{
    const CAttribute empty("a");
    const CAttribute word = Attribute("b", L"x");
    std::wstring wide = L"before";
    bool flag = true;
    CDeviceFootprint::EnableExceptions(true);
    try {
        empty.Get(wide);
        ADD_FAILURE() << "no exception";
    } catch (const std::exception& exception) {
        EXPECT_EQ(typeid(exception), typeid(std::exception));
    }
    EXPECT_EQ(wide, L"before");
    EXPECT_EQ(ErrorWord::Text(), EmptyMessage("a"));
    EXPECT_THROW(word.GetBool(flag), std::exception);
    EXPECT_TRUE(flag);
    EXPECT_EQ(ErrorWord::Text(), "invalid boolean attribute");
    CDeviceFootprint::EnableExceptions(false);
    EXPECT_FALSE(empty.EmptyGetError());
}

TEST_F(AttributeNode, IsEqualFollowsItsSteps)
{
    const struct
    {
        const char* otherName;
        const wchar_t* value;
        const wchar_t* otherValue;
        bool withoutEmpties;
        bool withEmpties;
    } rows[] = {
        {"a", L"x", L"x", true, true},    {"a", L"x", L"y", false, false}, {"a", L"x", L"xx", false, false},
        {"a", L"", L"", false, true},     {"a", L"", L"x", false, false},  {"a", L"x", L"", false, false},
        {"ab", L"x", L"x", false, false}, {"b", L"x", L"x", false, false}, {"A", L"x", L"x", false, false},
        {"b", L"", L"", false, false},    {"", L"x", L"x", false, false},
    };
    for (const auto& row : rows) {
        const CAttribute attribute = Attribute("a", row.value);
        const CAttribute other = Attribute(row.otherName, row.otherValue);
        const std::string trace =
            std::string(row.otherName) + " " + NarrowText(row.value) + "/" + NarrowText(row.otherValue);
        EXPECT_EQ(attribute.IsEqual(other, false), row.withoutEmpties) << trace;
        EXPECT_EQ(attribute.IsEqual(other, true), row.withEmpties) << trace;
        EXPECT_EQ(other.IsEqual(attribute, false), row.withoutEmpties) << trace;
        EXPECT_EQ(other.IsEqual(attribute, true), row.withEmpties) << trace;
    }
}

TEST_F(AttributeNode, IsEqualComparesAllCharacters)
{
    EXPECT_FALSE(Attribute("a", std::wstring(L"x\0y", 3)).IsEqual(Attribute("a", std::wstring(L"x\0z", 3)), true));
    EXPECT_FALSE(Attribute("a", L"\x1F600").IsEqual(Attribute("a", L"\xF600"), true));
}

TEST_F(AttributeNode, TheSameObjectIsEqualEvenWhileEmpty)
{
    const CAttribute empty("a");
    EXPECT_TRUE(empty.IsEqual(empty, false));
    EXPECT_TRUE(empty.IsEqual(empty, true));
}

TEST_F(AttributeNode, SorterComparesNamesAsUnsignedBytesPrefixFirst)
{
    const char* const names[] = {"",   "A", "Z",    "_",    "a",    "a b",   "aa",
                                 "ab", "b", "\x7F", "\x80", "\xE4", "\xE4z", "\xFF"};
    std::vector<CAttribute> attributes;
    for (const char* name : names) {
        attributes.emplace_back(name);
    }
    const CNodeSorter before;
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        for (std::size_t j = 0; j < attributes.size(); ++j) {
            EXPECT_EQ(before(&attributes[i], &attributes[j]), i < j) << names[i] << " / " << names[j];
        }
    }
}

TEST_F(AttributeNode, SorterTakesElementsToo)
{
    const CBios bios;
    const CSoftware software;
    EXPECT_TRUE(CNodeSorter()(&bios, &software));
    EXPECT_FALSE(CNodeSorter()(&software, &bios));
    EXPECT_FALSE(CNodeSorter()(&bios, &bios));
}

TEST_F(AttributeNode, CreationDateIsUtcWithoutAZone)
{
    const struct
    {
        std::time_t seconds;
        const wchar_t* text;
    } rows[] = {
        {0, L"1970-01-01T00:00:00"},          {1425197159, L"2015-03-01T08:05:59"},
        {951782400, L"2000-02-29T00:00:00"},  {1735689599, L"2024-12-31T23:59:59"},
        {-1, L"1969-12-31T23:59:59"},         {2147483647, L"2038-01-19T03:14:07"},
        {1000000000, L"2001-09-09T01:46:40"},
    };
    FakeClock clock(0);
    CTimeAttribute attribute("creationDate");
    for (const auto& row : rows) {
        clock.Set(row.seconds);
        attribute.SetCreationDateToCurrent();
        EXPECT_EQ(attribute.GetValue(), row.text) << row.seconds;
    }
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(AttributeNode, CreationDateIsEmptyIfTheTimeHasNone)
{
    FakeClock clock(1000);
    CTimeAttribute attribute("creationDate");
    CTimeAttribute same("creationDate");
    attribute.SetCreationDateToCurrent();
    clock.Set(5000);
    same.SetCreationDateToCurrent();
    clock.FailBreakdown();
    attribute.SetCreationDateToCurrent();
    EXPECT_TRUE(attribute.IsEmpty());
    // The seconds are those of the clock all the same.
    EXPECT_TRUE(attribute == same);
}

CTimeAttribute TimeAt(FakeClock& clock, std::time_t seconds)
{
    clock.Set(seconds);
    CTimeAttribute attribute("creationDate");
    attribute.SetCreationDateToCurrent();
    return attribute;
}

TEST_F(AttributeNode, TimesCompareBySeconds)
{
    FakeClock clock(0);
    const CTimeAttribute early = TimeAt(clock, 1000);
    const CTimeAttribute late = TimeAt(clock, 1001);
    const CTimeAttribute never("creationDate");
    EXPECT_TRUE(early == early);
    EXPECT_FALSE(early == late);
    EXPECT_FALSE(early != early);
    EXPECT_TRUE(early != late);
    EXPECT_TRUE(early < late);
    EXPECT_FALSE(late < early);
    EXPECT_FALSE(early < early);
    EXPECT_TRUE(never < early);
    EXPECT_TRUE(never == TimeAt(clock, 0));
}

TEST_F(AttributeNode, TimesCompareByADifferenceThatWraps)
{
    FakeClock clock(0);
    const CTimeAttribute past = TimeAt(clock, -2000000000);
    const CTimeAttribute future = TimeAt(clock, 2000000000);
    EXPECT_FALSE(past < future);
    EXPECT_TRUE(future < past);
    const CTimeAttribute zero = TimeAt(clock, 0);
    EXPECT_TRUE(past < zero);
    EXPECT_TRUE(zero < future);
}

TEST_F(AttributeNode, TimesDoNotCompareTexts)
{
    FakeClock clock(0);
    CTimeAttribute changed = TimeAt(clock, 1000);
    const CTimeAttribute whole = TimeAt(clock, 1000);
    changed = L"2030-01-01T00:00:00";
    EXPECT_TRUE(changed == whole);
    EXPECT_FALSE(changed != whole);
    EXPECT_FALSE(changed < whole);
    CTimeAttribute renamed("other");
    CTimeAttribute fresh("creationDate");
    EXPECT_TRUE(renamed == fresh);
}

TEST_F(AttributeNode, CopyAndAssignmentOfATimeCarryTheSeconds)
{
    FakeClock clock(0);
    const CTimeAttribute source = TimeAt(clock, 1000);
    const CTimeAttribute copy(source);
    EXPECT_TRUE(copy == source);
    EXPECT_EQ(copy.GetValue(), source.GetValue());
    CTimeAttribute assigned("other");
    assigned = source;
    EXPECT_TRUE(assigned == source);
    EXPECT_EQ(assigned.GetValue(), source.GetValue());
    EXPECT_EQ(assigned.GetNodeName(), "creationDate");
}

TEST_F(AttributeNode, OnlyTheClockSetsTheSeconds)
{
    FakeClock clock(0);
    CTimeAttribute attribute("creationDate");
    const CTimeAttribute never("creationDate");
    attribute.Set(std::wstring(L"2015-03-01T08:05:59"));
    EXPECT_TRUE(attribute == never);
    attribute = L"2015-03-01T08:05:59";
    EXPECT_TRUE(attribute == never);
    const CTimeAttribute other = TimeAt(clock, 1000);
    CReadOnlyAttribute& base = attribute;
    base = other;
    EXPECT_EQ(attribute.GetValue(), other.GetValue());
    EXPECT_TRUE(attribute == never);
}

} // namespace
