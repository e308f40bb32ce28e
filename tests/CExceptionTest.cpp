// The exceptions of the facade, and how messages of both kinds reach a process's standard error.

#include "CException.h"
#include "CNyxConfig.h"
#include "CNyxConfigException.h"
#include "ErrorJournal.h"
#include "VirtualSlot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <exception>
#include <string>
#include <type_traits>

using namespace KvOrdo;
using namespace NyxTest;

namespace
{

TEST(CExceptionTest, ClassesStandApartFromTheStandardOnes)
{
    EXPECT_FALSE((std::is_base_of_v<std::exception, CException>));
    EXPECT_TRUE((std::is_base_of_v<CException, CNyxConfigException>));
    EXPECT_TRUE(std::has_virtual_destructor_v<CException>);
    EXPECT_EQ(SlotCount<CException>(), DestructorSlots);
    EXPECT_EQ(SlotCount<CNyxConfigException>(), DestructorSlots);
    EXPECT_EQ(sizeof(CException), sizeof(void*) + sizeof(std::string)) << "a text and nothing else";
    EXPECT_EQ(sizeof(CNyxConfigException), sizeof(CException)) << "adds nothing";
}

template<class Exception>
class CExceptionTextTest : public testing::Test
{
};
using ExceptionClasses = testing::Types<CException, CNyxConfigException>;
TYPED_TEST_SUITE(CExceptionTextTest, ExceptionClasses);

TYPED_TEST(CExceptionTextTest, NarrowTextIsCopied)
{
    const std::string text("a\0\xE4\n", 4);
    EXPECT_EQ(TypeParam(text).getMessage(), text);
    EXPECT_EQ(TypeParam(std::string()).getMessage(), "");
}

TYPED_TEST(CExceptionTextTest, WideTextKeepsTheLowByteOfEachCharacter)
{
    EXPECT_EQ(TypeParam(std::wstring(L"x\u0141y\u20AC\U0001F600z")).getMessage(), std::string("xAy\xAC\0z", 6));
    EXPECT_EQ(TypeParam(std::wstring()).getMessage(), "");
}

TYPED_TEST(CExceptionTextTest, CopyHasATextOfItsOwn)
{
    TypeParam first(std::string("first"));
    const TypeParam copy(first);
    first = TypeParam(std::string("second"));
    EXPECT_EQ(copy.getMessage(), "first");
    EXPECT_EQ(first.getMessage(), "second");
}

TEST(CExceptionTest, NarrowingReplacesTheTarget)
{
    std::string target = "former";
    EXPECT_TRUE(CException::toCharString(target, L"\u0141\u00E4" + std::wstring{static_cast<wchar_t>(-28), L'\0'}));
    EXPECT_EQ(target, std::string("A\xE4\xE4\0", 4));
    EXPECT_TRUE(CException::toCharString(target, L""));
    EXPECT_EQ(target, "");
}

TEST(CExceptionTest, WideMessageOfTheFacadeArrivesNarrowed)
{
    ErrorJournal errors;
    CNyxConfig config;
    try {
        config.assertNotEmpty(L"", L"\u0141", true);
        FAIL() << "nothing was thrown";
    } catch (const CException& exception) {
        EXPECT_EQ(exception.getMessage(), "CNyxConfig::assertNotEmpty: A may not be empty");
        EXPECT_NE(dynamic_cast<const CNyxConfigException*>(&exception), nullptr);
    }
    EXPECT_EQ(errors.Take(), WideLine("CNyxConfig::assertNotEmpty: \\{141} may not be empty") +
                                 NarrowLine("Throwing CNyxConfigException"));
}

// A process's standard error takes either narrow or wide text, whichever came first.
TEST(StandardErrorDeathTest, MessagesOfBothKindsArriveWhicheverComesFirst)
{
    const std::string narrowText = "CNyxConfig::parsePartNumber: HwBoardDescItem.variant must not be > 99";
    const std::string wideText = "CNyxConfig::assertNotEmpty: label may not be empty";
    const auto both = testing::AllOf(testing::HasSubstr(narrowText), testing::HasSubstr(wideText));
    EXPECT_EXIT(
        {
            CNyxConfig config;
            config.parsePartNumber(0, 100, false);
            config.assertNotEmpty(L"", L"label", false);
            config.parsePartNumber(0, 100, false);
            std::exit(0);
        },
        testing::ExitedWithCode(0), both);
    EXPECT_EXIT(
        {
            CNyxConfig config;
            config.assertNotEmpty(L"", L"label", false);
            config.parsePartNumber(0, 100, false);
            config.assertNotEmpty(L"", L"label", false);
            std::exit(0);
        },
        testing::ExitedWithCode(0), both);
}

} // namespace
