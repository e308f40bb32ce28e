#include "DfpErrorHandler.h"

#include <clocale>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "Files.h"
#include "ForeignLocale.h"
#include "TempFolder.h"
#include "VirtualSlot.h"

using namespace KvDeviceFootprint;

namespace
{

static_assert(eDfpErrorTypeInconsistentDfp == 0 && eDfpErrorTypeMemoryManagement == 1 && eDfpErrorTypeIO == 2 &&
                  eDfpErrorTypeCrypt == 3 && eDfpErrorTypeParser == 4 && eDfpErrorTypeAlgorithmic == 5 &&
                  eDfpErrorTypeInternal == 6 && eDfpErrorTypeDataValidation == 7 && eDfpErrorTypeAutoSkip == 8 &&
                  eDfpErrorTypeInfo == 9 && eDfpErrorTypeCount == 10 && eDfpErrorTypeUndefined > 10,
              "the values are part of the interface");
static_assert(std::has_virtual_destructor_v<CDfpError> && std::has_virtual_destructor_v<CDfpErrorList> &&
                  std::has_virtual_destructor_v<CDfpErrorContext> && std::has_virtual_destructor_v<CDfpErrorHandler>,
              "each class is destroyed through its base");
static_assert(std::is_same_v<decltype(CDfpError::m_count), std::int32_t>, "the count has 32 bits everywhere");

TDfpErrorType Type(int value)
{
    return static_cast<TDfpErrorType>(value);
}

const std::vector<int> noRecordTypes = {eDfpErrorTypeCount,
                                        eDfpErrorTypeUndefined,
                                        42,
                                        -1,
                                        std::numeric_limits<std::int32_t>::min(),
                                        std::numeric_limits<std::int32_t>::max()};

/// Every case starts without a handler and leaves none.
class DfpErrorHandlerTest : public testing::Test
{
protected:
    DfpErrorHandlerTest() { CDfpErrorHandler::Destroy(); }
    ~DfpErrorHandlerTest() override { CDfpErrorHandler::Destroy(); }

    static CDfpErrorHandler& Handler() { return *CDfpErrorHandler::Instance(); }
    static CDfpErrorContext& Global() { return *Handler().GetGlobalErrorContext(); }
};

class DfpErrorFileTest : public DfpErrorHandlerTest
{
protected:
    NyxTest::TempFolder m_folder;
};

/// Tells how often it was deleted and with what count.
class CWatchedError : public CDfpError
{
public:
    CWatchedError(TDfpErrorType type, const std::string& text, std::vector<std::int32_t>& deletedCounts)
        : CDfpError(type, text), m_deletedCounts(deletedCounts)
    {
    }
    ~CWatchedError() override { m_deletedCounts.push_back(m_count); }

private:
    std::vector<std::int32_t>& m_deletedCounts;
};

std::string TextOf(const CDfpError* error)
{
    std::string text = "former content";
    if (error == nullptr) {
        return "no record";
    }
    error->GetErrorText(text);
    return text;
}

std::string TypeText(int type)
{
    std::string text = "former content";
    CDfpErrorHandler::ErrorTypeToString(Type(type), text);
    return text;
}

/// Puts a record into a context that no walk over the stack comes upon while it is stored.
void StoreAside(CDfpErrorContext& context, TDfpErrorType type, const std::string& text)
{
    auto& handler = *CDfpErrorHandler::Instance();
    std::vector<CDfpErrorContext*> stack;
    while (handler.GetCurrentErrorContext() != nullptr) {
        stack.push_back(handler.GetCurrentErrorContext());
        handler.RemoveCurrentErrorContext(stack.back());
    }
    context.StoreError(type, text);
    for (auto entry = stack.rbegin(); entry != stack.rend(); ++entry) {
        handler.AddCurrentErrorContext(*entry);
    }
}

} // namespace

TEST_F(DfpErrorHandlerTest, DestructorIsTheOnlyVirtualOperation)
{
    EXPECT_EQ(NyxTest::SlotCount<CDfpError>(), NyxTest::DestructorSlots);
    EXPECT_EQ(NyxTest::SlotCount<CDfpErrorList>(), NyxTest::DestructorSlots);
    EXPECT_EQ(NyxTest::SlotCount<CDfpErrorContext>(), NyxTest::DestructorSlots);
    EXPECT_EQ(NyxTest::SlotCount<CDfpErrorHandler>(), NyxTest::DestructorSlots);
}

TEST_F(DfpErrorHandlerTest, TypeTextsFollowTheTable)
{
    const std::vector<std::string> texts = {"Inconsistent Product Definition",
                                            "Memory management error",
                                            "I/O error",
                                            "Cipher error",
                                            "Parser error",
                                            "Algorithmic error",
                                            "Internal error",
                                            "Content",
                                            "Automatic skip",
                                            ""};
    ASSERT_EQ(texts.size(), static_cast<std::size_t>(eDfpErrorTypeCount));
    for (std::size_t type = 0; type < texts.size(); ++type) {
        EXPECT_EQ(TypeText(static_cast<int>(type)), texts[type]) << type;
    }
}

TEST_F(DfpErrorHandlerTest, TypeTextOfAnythingElseIsUndefined)
{
    for (const int type : noRecordTypes) {
        EXPECT_EQ(TypeText(type), "Undefined error type") << type;
    }
}

TEST_F(DfpErrorHandlerTest, RecordStartsWithCountOne)
{
    const CDfpError error(eDfpErrorTypeCrypt, "bad key");
    EXPECT_EQ(error.m_type, eDfpErrorTypeCrypt);
    EXPECT_EQ(error.m_text, "bad key");
    EXPECT_EQ(error.m_count, 1);
}

TEST_F(DfpErrorHandlerTest, RecordTextByTypeAndCount)
{
    const struct
    {
        int type;
        std::int32_t count;
        const char* text;
    } rows[] = {
        {eDfpErrorTypeParser, 1, "Parser error: words"},
        {eDfpErrorTypeParser, 0, "Parser error: words"},
        {eDfpErrorTypeParser, -5, "Parser error: words"},
        {eDfpErrorTypeParser, 2, "2 Parser error: words"},
        {eDfpErrorTypeParser, 3, "3 Parser error: words"},
        {eDfpErrorTypeIO, 2147483647, "2147483647 I/O error: words"},
        {eDfpErrorTypeInfo, 1, "words"},
        {eDfpErrorTypeInfo, 7, "words"},
        {42, 1, "Undefined error type: words"},
        {-1, 2, "2 Undefined error type: words"},
    };
    for (const auto& row : rows) {
        CDfpError error(Type(row.type), "words");
        error.m_count = row.count;
        EXPECT_EQ(TextOf(&error), row.text);
    }
}

TEST_F(DfpErrorHandlerTest, ListOwnsItsRecords)
{
    std::vector<std::int32_t> deleted;
    {
        CDfpErrorList list;
        EXPECT_EQ(list.Count(), 0U);
        list.Insert(new CWatchedError(eDfpErrorTypeIO, "first", deleted));
        list.Insert(nullptr);
        list.Insert(new CWatchedError(eDfpErrorTypeIO, "second", deleted));
        EXPECT_EQ(list.Count(), 3U);
        list.Clear();
        EXPECT_EQ(list.Count(), 0U);
        EXPECT_EQ(deleted.size(), 2U);
        list.Insert(new CWatchedError(eDfpErrorTypeIO, "third", deleted));
    }
    EXPECT_EQ(deleted.size(), 3U);
}

TEST_F(DfpErrorHandlerTest, FirstInstanceHasExactlyTheGlobalContext)
{
    CDfpErrorHandler* const handler = CDfpErrorHandler::Instance();
    ASSERT_NE(handler, nullptr);
    EXPECT_EQ(CDfpErrorHandler::Instance(), handler);
    ASSERT_NE(handler->GetGlobalErrorContext(), nullptr);
    EXPECT_EQ(handler->GetCurrentErrorContext(), handler->GetGlobalErrorContext());
    EXPECT_EQ(handler->GetParentContextOfCurrent(), nullptr);

    handler->AddError(eDfpErrorTypeParser, "line %d", 7);
    EXPECT_EQ(TextOf(handler->GetGlobalErrorContext()->FindStoredError(eDfpErrorTypeParser)), "Parser error: line 7");
}

TEST_F(DfpErrorHandlerTest, ContextConstructorMakesTheHandlerAndItsGlobalContext)
{
    const CDfpErrorContext context;
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &context);
    EXPECT_NE(Handler().GetGlobalErrorContext(), &context);
    EXPECT_EQ(Handler().GetParentContextOfCurrent(), Handler().GetGlobalErrorContext());
}

TEST_F(DfpErrorHandlerTest, DestroyForgetsEverythingAndMayBeRepeated)
{
    Handler().AddError(eDfpErrorTypeIO, "lost");
    CDfpErrorHandler::Destroy();
    CDfpErrorHandler::Destroy();
    EXPECT_EQ(Handler().FindStoredError(eDfpErrorTypeCount), nullptr);
    EXPECT_NE(Handler().GetGlobalErrorContext(), nullptr);
}

TEST_F(DfpErrorHandlerTest, DeletingTheHandlerDirectlyIsLikeDestroy)
{
    Handler().AddError(eDfpErrorTypeIO, "lost");
    delete CDfpErrorHandler::Instance();
    EXPECT_EQ(Handler().FindStoredError(eDfpErrorTypeCount), nullptr);
}

TEST_F(DfpErrorHandlerTest, SecondErrorOfATypeIsFoldedAndItsTextLost)
{
    Handler().AddError(eDfpErrorTypeParser, "first");
    Handler().AddError(eDfpErrorTypeParser, "second");
    EXPECT_EQ(TextOf(Handler().FindStoredError(eDfpErrorTypeParser)), "2 Parser error: first");
    Handler().AddError(eDfpErrorTypeParser, "third");
    EXPECT_EQ(TextOf(Handler().FindStoredError(eDfpErrorTypeParser)), "3 Parser error: first");

    Global().Clear(eDfpErrorTypeParser);
    EXPECT_FALSE(Global().ErrorsOccurred());
}

TEST_F(DfpErrorHandlerTest, SecondInfoIsLostToo)
{
    Handler().AddError(eDfpErrorTypeInfo, "first");
    Handler().AddError(eDfpErrorTypeInfo, "second");
    EXPECT_EQ(TextOf(Handler().FindStoredError(eDfpErrorTypeInfo)), "first");
    EXPECT_EQ(Handler().FindStoredError(eDfpErrorTypeInfo)->m_count, 2);
}

TEST_F(DfpErrorHandlerTest, FoldingReachesEveryContextOfTheStack)
{
    Handler().AddError(eDfpErrorTypeIO, "in the global context");
    CDfpErrorContext middle;
    Handler().AddError(eDfpErrorTypeCrypt, "in the middle");
    CDfpErrorContext top;
    Handler().AddError(eDfpErrorTypeIO, "lost");
    Handler().AddError(eDfpErrorTypeCrypt, "lost");
    EXPECT_FALSE(top.ErrorsOccurred());
    EXPECT_EQ(TextOf(Global().FindStoredError(eDfpErrorTypeIO)), "2 I/O error: in the global context");
    EXPECT_EQ(TextOf(middle.FindStoredError(eDfpErrorTypeCrypt)), "2 Cipher error: in the middle");

    // Upward too: what the top context holds is counted there, whoever stores.
    Handler().AddError(eDfpErrorTypeParser, "at the top");
    Global().StoreError(eDfpErrorTypeParser, "lost");
    EXPECT_EQ(TextOf(top.FindStoredError(eDfpErrorTypeParser)), "2 Parser error: at the top");
    EXPECT_EQ(Global().FindStoredError(eDfpErrorTypeParser), nullptr);
}

TEST_F(DfpErrorHandlerTest, FoldingAddsTheWholeCount)
{
    Handler().AddError(eDfpErrorTypeIO, "kept");
    auto error = std::make_unique<CDfpError>(eDfpErrorTypeIO, "folded");
    error->m_count = 5;
    EXPECT_FALSE(Global().StoreError(error.get()));
    EXPECT_EQ(Global().FindStoredError(eDfpErrorTypeIO)->m_count, 6);
}

TEST_F(DfpErrorHandlerTest, CountStaysAtItsGreatestValue)
{
    Handler().AddError(eDfpErrorTypeIO, "often");
    Global().FindStoredError(eDfpErrorTypeIO)->m_count = std::numeric_limits<std::int32_t>::max() - 1;
    Handler().AddError(eDfpErrorTypeIO, "once more");
    Handler().AddError(eDfpErrorTypeIO, "once more");
    EXPECT_EQ(TextOf(Global().FindStoredError(eDfpErrorTypeIO)), "2147483647 I/O error: often");
}

TEST_F(DfpErrorHandlerTest, StoreErrorOwnsTheRecordOnlyIfItSaysSo)
{
    std::vector<std::int32_t> deleted;
    CDfpErrorContext context;
    EXPECT_FALSE(context.StoreError(nullptr));
    EXPECT_TRUE(context.StoreError(new CWatchedError(eDfpErrorTypeIO, "stored", deleted)));
    {
        CWatchedError folded(eDfpErrorTypeIO, "folded", deleted);
        EXPECT_FALSE(context.StoreError(&folded));
    }
    EXPECT_EQ(deleted, (std::vector<std::int32_t>{1}));
    context.Clear(eDfpErrorTypeIO);
    EXPECT_EQ(deleted, (std::vector<std::int32_t>{1, 2}));
}

TEST_F(DfpErrorHandlerTest, StoreErrorRefusesWhatIsNoRecordType)
{
    for (const int type : noRecordTypes) {
        CDfpError error(Type(type), "refused");
        EXPECT_FALSE(Global().StoreError(&error)) << type;
        Global().StoreError(Type(type), "refused");
        Handler().AddError(Type(type), "refused");
        EXPECT_FALSE(Global().ErrorsOccurred()) << type;
    }
}

TEST_F(DfpErrorHandlerTest, StoreErrorAcceptsEveryRecordType)
{
    for (int type = 0; type < eDfpErrorTypeCount; ++type) {
        Global().StoreError(Type(type), "text");
        ASSERT_NE(Global().FindStoredError(Type(type)), nullptr) << type;
        EXPECT_EQ(Global().FindStoredError(Type(type))->m_type, Type(type));
    }
}

TEST_F(DfpErrorHandlerTest, SkipDropsWithoutCountingFurtherDown)
{
    Handler().AddError(eDfpErrorTypeIO, "below");
    CDfpErrorContext top;
    top.Skip(eDfpErrorTypeIO);
    Handler().AddError(eDfpErrorTypeIO, "dropped");
    EXPECT_FALSE(top.ErrorsOccurred());
    EXPECT_EQ(Global().FindStoredError(eDfpErrorTypeIO)->m_count, 1);
}

TEST_F(DfpErrorHandlerTest, SkipCountsOnlyInTheStoringContext)
{
    Handler().AddError(eDfpErrorTypeIO, "below");
    Global().Skip(eDfpErrorTypeIO);
    Global().Skip(eDfpErrorTypeCrypt);
    const CDfpErrorContext top;
    Handler().AddError(eDfpErrorTypeIO, "folded");
    Handler().AddError(eDfpErrorTypeCrypt, "stored");
    EXPECT_EQ(Global().FindStoredError(eDfpErrorTypeIO)->m_count, 2);
    EXPECT_NE(top.FindStoredError(eDfpErrorTypeCrypt), nullptr);
}

TEST_F(DfpErrorHandlerTest, SkipFlagsAreSetClearedAndResetOneByOne)
{
    CDfpErrorContext context;
    for (int type = 0; type < eDfpErrorTypeCount; ++type) {
        EXPECT_FALSE(context.Skips(Type(type))) << type;
        context.Skip(Type(type));
        for (int other = 0; other < eDfpErrorTypeCount; ++other) {
            EXPECT_EQ(context.Skips(Type(other)), other == type);
        }
        context.DontSkip(Type(type));
        EXPECT_FALSE(context.Skips(Type(type))) << type;
    }
    context.Skip(eDfpErrorTypeInconsistentDfp);
    context.Skip(eDfpErrorTypeInfo);
    context.ClearSkipList();
    EXPECT_FALSE(context.Skips(eDfpErrorTypeInconsistentDfp));
    EXPECT_FALSE(context.Skips(eDfpErrorTypeInfo));
}

TEST_F(DfpErrorHandlerTest, SkipOfNoRecordTypeHasNoEffect)
{
    CDfpErrorContext context;
    for (const int type : noRecordTypes) {
        context.Skip(Type(type));
        EXPECT_TRUE(context.Skips(Type(type))) << type;
        context.DontSkip(Type(type));
        EXPECT_TRUE(context.Skips(Type(type))) << type;
    }
    for (int type = 0; type < eDfpErrorTypeCount; ++type) {
        EXPECT_FALSE(context.Skips(Type(type))) << type;
    }
}

TEST_F(DfpErrorHandlerTest, ContextFindsTheFirstRecordOfATypeOrOfAny)
{
    EXPECT_EQ(Global().FindStoredError(eDfpErrorTypeCount), nullptr);
    EXPECT_EQ(Global().GetFirstStoredError(eDfpErrorTypeCount), nullptr);
    EXPECT_FALSE(Global().ErrorsOccurred());
    Global().StoreError(eDfpErrorTypeParser, "first");
    Global().StoreError(eDfpErrorTypeIO, "second");
    EXPECT_TRUE(Global().ErrorsOccurred());
    for (auto find : {&CDfpErrorContext::FindStoredError, &CDfpErrorContext::GetFirstStoredError}) {
        EXPECT_EQ(TextOf((Global().*find)(eDfpErrorTypeCount)), "Parser error: first");
        EXPECT_EQ(TextOf((Global().*find)(eDfpErrorTypeIO)), "I/O error: second");
        EXPECT_EQ((Global().*find)(eDfpErrorTypeCrypt), nullptr);
        EXPECT_EQ((Global().*find)(Type(-1)), nullptr);
    }
}

TEST_F(DfpErrorHandlerTest, ContextClearsOneTypeAndKeepsTheOrderOfTheRest)
{
    Global().StoreError(eDfpErrorTypeParser, "first");
    Global().StoreError(eDfpErrorTypeIO, "second");
    Global().StoreError(eDfpErrorTypeCrypt, "third");
    // A second record of the type, as it comes about by a change from outside.
    Global().FindStoredError(eDfpErrorTypeCrypt)->m_type = eDfpErrorTypeParser;
    Global().StoreError(eDfpErrorTypeInternal, "fourth");
    Global().Clear(Type(42));
    Global().Clear(eDfpErrorTypeParser);
    EXPECT_EQ(Global().FindStoredError(eDfpErrorTypeParser), nullptr);
    EXPECT_EQ(TextOf(Global().FindStoredError(eDfpErrorTypeCount)), "I/O error: second");
    EXPECT_EQ(TextOf(Global().FindStoredError(eDfpErrorTypeInternal)), "Internal error: fourth");
    Global().Clear(eDfpErrorTypeCount);
    EXPECT_FALSE(Global().ErrorsOccurred());
}

TEST_F(DfpErrorHandlerTest, ContextWithTextHoldsAnInfo)
{
    const CDfpErrorContext context("Loading %s, %d lines", "a file", 12);
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &context);
    EXPECT_EQ(context.FindStoredError(eDfpErrorTypeCount)->m_type, eDfpErrorTypeInfo);
    EXPECT_EQ(TextOf(context.FindStoredError(eDfpErrorTypeInfo)), "Loading a file, 12 lines");
}

TEST_F(DfpErrorHandlerTest, ContextWithEmptyTextHoldsNothing)
{
    const char* const noFormat = nullptr;
    const CDfpErrorContext context("%s", "");
    EXPECT_FALSE(context.ErrorsOccurred());
    const CDfpErrorContext withoutFormat(noFormat);
    EXPECT_FALSE(withoutFormat.ErrorsOccurred());
}

TEST_F(DfpErrorHandlerTest, ContextWithTextIsFoldedIntoAnEarlierInfo)
{
    const CDfpErrorContext outer("outer");
    const CDfpErrorContext inner("inner");
    EXPECT_FALSE(inner.ErrorsOccurred());
    EXPECT_EQ(outer.FindStoredError(eDfpErrorTypeInfo)->m_count, 2);
}

TEST_F(DfpErrorHandlerTest, AddErrorFormatsCTextsAndTakesReadyTextsAsTheyAre)
{
    const std::string ready = "100%d and %s";
    Handler().AddError(eDfpErrorTypeIO, ready);
    EXPECT_EQ(TextOf(Handler().FindStoredError(eDfpErrorTypeIO)), "I/O error: 100%d and %s");
    Handler().AddError(eDfpErrorTypeCrypt, "100%% and %s", "more");
    EXPECT_EQ(TextOf(Handler().FindStoredError(eDfpErrorTypeCrypt)), "Cipher error: 100% and more");
    Handler().AddError(eDfpErrorTypeParser, "plain 100%%");
    EXPECT_EQ(TextOf(Handler().FindStoredError(eDfpErrorTypeParser)), "Parser error: plain 100%");
}

TEST_F(DfpErrorHandlerTest, AddErrorTakesTextsOfAnyLength)
{
    const std::string text(100000, 'x');
    Handler().AddError(eDfpErrorTypeIO, "%s", text.c_str());
    EXPECT_EQ(Handler().FindStoredError(eDfpErrorTypeIO)->m_text, text);
    const char* const noFormat = nullptr;
    Handler().AddError(eDfpErrorTypeCrypt, noFormat);
    EXPECT_EQ(TextOf(Handler().FindStoredError(eDfpErrorTypeCrypt)), "Cipher error: ");
}

TEST_F(DfpErrorHandlerTest, AddErrorReplacesATextThatCanNotBeFormattedInAnyLocale)
{
    // The wide character has no place in the "C" locale, whatever the process has set.
    const std::string former = std::setlocale(LC_ALL, nullptr);
    const TDfpErrorType types[] = {eDfpErrorTypeIO, eDfpErrorTypeCrypt};
    const char* const locales[] = {"C", "C.UTF-8"};
    for (std::size_t i = 0; i < std::size(types); ++i) {
        std::setlocale(LC_ALL, locales[i]);
        Handler().AddError(types[i], "%ls", L"\u00e4");
        EXPECT_EQ(Handler().FindStoredError(types[i])->m_text, "<Error text to long>") << locales[i];
    }
    std::setlocale(LC_ALL, former.c_str());
}

TEST_F(DfpErrorHandlerTest, NumbersReadTheSameInAnyLocale)
{
    const NyxTest::ForeignLocale foreign;
    Handler().AddError(eDfpErrorTypeIO, "%d parts, %.1f mm", 1234567, 0.5);
    Global().FindStoredError(eDfpErrorTypeIO)->m_count = 12345;
    EXPECT_EQ(TextOf(Handler().FindStoredError(eDfpErrorTypeIO)), "12345 I/O error: 1234567 parts, 0.5 mm");
}

TEST_F(DfpErrorHandlerTest, AddErrorWithoutCurrentContextGoesNowhere)
{
    Handler().AddCurrentErrorContext(nullptr);
    EXPECT_EQ(Handler().GetCurrentErrorContext(), nullptr);
    Handler().AddError(eDfpErrorTypeIO, "%s", "lost");
    Handler().AddError(eDfpErrorTypeIO, std::string("lost"));
    Handler().RemoveCurrentErrorContext(nullptr);
    ASSERT_NE(Handler().GetCurrentErrorContext(), nullptr);
    EXPECT_FALSE(Global().ErrorsOccurred());
}

TEST_F(DfpErrorHandlerTest, OnlyTheCurrentContextIsRemoved)
{
    CDfpErrorContext outer;
    CDfpErrorContext inner;
    Handler().RemoveCurrentErrorContext(&outer);
    Handler().RemoveCurrentErrorContext(nullptr);
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &inner);
    EXPECT_EQ(Handler().GetParentContextOfCurrent(), &outer);
    Handler().RemoveCurrentErrorContext(&inner);
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &outer);
    Handler().AddCurrentErrorContext(&inner);
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &inner);
}

TEST_F(DfpErrorHandlerTest, WalksPassOverNullContexts)
{
    Handler().AddCurrentErrorContext(nullptr);
    CDfpErrorContext top;
    EXPECT_EQ(Handler().GetParentContextOfCurrent(), nullptr);
    Handler().AddError(eDfpErrorTypeIO, "first");
    Handler().AddError(eDfpErrorTypeIO, "second");
    EXPECT_EQ(Handler().FindStoredError(eDfpErrorTypeIO)->m_count, 2);
    // Without a parent the records are deleted.
    EXPECT_FALSE(top.CloseErrorContext());
    EXPECT_FALSE(top.ErrorsOccurred());
    EXPECT_FALSE(Global().ErrorsOccurred());
}

TEST_F(DfpErrorHandlerTest, HandlerFindsFromTheGlobalContextUpward)
{
    const CDfpErrorContext top;
    EXPECT_EQ(Handler().FindStoredError(eDfpErrorTypeCount), nullptr);
    Handler().AddError(eDfpErrorTypeIO, "in the top context");
    EXPECT_EQ(TextOf(Handler().FindStoredError(eDfpErrorTypeCount)), "I/O error: in the top context");
    Global().StoreError(eDfpErrorTypeCrypt, "in the global context");
    EXPECT_EQ(TextOf(Handler().FindStoredError(eDfpErrorTypeCount)), "Cipher error: in the global context");
    EXPECT_EQ(TextOf(Handler().FindStoredError(eDfpErrorTypeIO)), "I/O error: in the top context");
    EXPECT_EQ(Handler().FindStoredError(eDfpErrorTypeParser), nullptr);
}

TEST_F(DfpErrorHandlerTest, FirstGlobalErrorLooksOnlyIntoTheGlobalContext)
{
    const CDfpErrorContext top;
    Handler().AddError(eDfpErrorTypeIO, "in the top context");
    std::string text = "former content";
    Handler().GetFirstGlobalError(text, eDfpErrorTypeIO);
    EXPECT_EQ(text, "");
    Global().StoreError(eDfpErrorTypeCrypt, "in the global context");
    Handler().GetFirstGlobalError(text, eDfpErrorTypeCrypt);
    EXPECT_EQ(text, "Cipher error: in the global context");
    Handler().GetFirstGlobalError(text, eDfpErrorTypeCount);
    EXPECT_EQ(text, "Cipher error: in the global context");
    Handler().GetFirstGlobalError(text, eDfpErrorTypeParser);
    EXPECT_EQ(text, "");
    Handler().Clear();
    text = "former content";
    Handler().GetFirstGlobalError(text, eDfpErrorTypeCount);
    EXPECT_EQ(text, "");
}

TEST_F(DfpErrorHandlerTest, ClearGlobalErrorContextTouchesNoOther)
{
    Handler().AddError(eDfpErrorTypeIO, "global");
    const CDfpErrorContext top;
    Handler().AddError(eDfpErrorTypeCrypt, "top");
    Handler().ClearGlobalErrorContext();
    EXPECT_FALSE(Global().ErrorsOccurred());
    EXPECT_TRUE(top.ErrorsOccurred());
    Handler().Clear();
    Handler().ClearGlobalErrorContext();
    EXPECT_EQ(Handler().GetGlobalErrorContext(), nullptr);
}

TEST_F(DfpErrorHandlerTest, AfterClearErrorsGoNowhereUntilThereIsAGlobalContext)
{
    CDfpErrorHandler& handler = Handler();
    handler.AddError(eDfpErrorTypeIO, "lost");
    handler.Clear();
    EXPECT_EQ(CDfpErrorHandler::Instance(), &handler);
    EXPECT_EQ(handler.GetGlobalErrorContext(), nullptr);
    EXPECT_EQ(handler.GetCurrentErrorContext(), nullptr);
    EXPECT_EQ(handler.GetParentContextOfCurrent(), nullptr);
    handler.AddError(eDfpErrorTypeIO, "%s", "lost");
    handler.AddError(eDfpErrorTypeIO, std::string("lost"));
    handler.Clear();
    handler.AddGlobalErrorContext();
    ASSERT_NE(handler.GetGlobalErrorContext(), nullptr);
    EXPECT_FALSE(handler.GetGlobalErrorContext()->ErrorsOccurred());
    handler.AddGlobalErrorContext();
    EXPECT_EQ(handler.GetParentContextOfCurrent(), nullptr);
    handler.AddError(eDfpErrorTypeIO, "found");
    EXPECT_EQ(TextOf(handler.FindStoredError(eDfpErrorTypeIO)), "I/O error: found");
}

TEST_F(DfpErrorHandlerTest, AfterClearANewContextIsTheGlobalOne)
{
    Handler().Clear();
    const CDfpErrorContext context;
    EXPECT_EQ(Handler().GetGlobalErrorContext(), &context);
}

TEST_F(DfpErrorHandlerTest, ClosingTellsWhetherThereWereErrors)
{
    CDfpErrorContext without;
    EXPECT_TRUE(without.CloseErrorContext());
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &Global());
    EXPECT_FALSE(without.CloseErrorContext());

    CDfpErrorContext with;
    Handler().AddError(eDfpErrorTypeIO, "one");
    EXPECT_FALSE(with.CloseErrorContext());
    EXPECT_FALSE(with.ErrorsOccurred());
}

TEST_F(DfpErrorHandlerTest, ClosingWithAChoice)
{
    const struct
    {
        bool discard;
        bool withError;
        bool result;
    } rows[] = {{false, false, true}, {false, true, false}, {true, false, true}, {true, true, true}};
    for (const auto& row : rows) {
        CDfpErrorContext context;
        if (row.withError) {
            Handler().AddError(eDfpErrorTypeIO, "one");
        }
        EXPECT_EQ(context.CloseErrorContext(row.discard), row.result) << row.discard << row.withError;
        EXPECT_FALSE(context.ErrorsOccurred());
        EXPECT_EQ(Handler().GetCurrentErrorContext(), &Global());
        // Closed: the result is the argument.
        EXPECT_TRUE(context.CloseErrorContext(true));
        EXPECT_FALSE(context.CloseErrorContext(false));
    }
}

TEST_F(DfpErrorHandlerTest, ClosingDiscardsWithoutRaisingACount)
{
    CDfpErrorContext context;
    StoreAside(context, eDfpErrorTypeIO, "discarded");
    StoreAside(Global(), eDfpErrorTypeIO, "kept");
    EXPECT_TRUE(context.CloseErrorContext(true));
    EXPECT_EQ(Global().FindStoredError(eDfpErrorTypeIO)->m_count, 1);
}

TEST_F(DfpErrorHandlerTest, ClosingOutOfOrderIsRefused)
{
    CDfpErrorContext lower;
    lower.StoreError(eDfpErrorTypeIO, "kept");
    CDfpErrorContext upper;
    EXPECT_FALSE(lower.CloseErrorContext());
    EXPECT_FALSE(lower.CloseErrorContext(false));
    EXPECT_TRUE(lower.CloseErrorContext(true));
    EXPECT_TRUE(lower.ErrorsOccurred());
    EXPECT_EQ(Handler().GetParentContextOfCurrent(), &lower);
    // It is still open.
    EXPECT_TRUE(upper.CloseErrorContext());
    EXPECT_FALSE(lower.CloseErrorContext());
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &Global());
}

TEST_F(DfpErrorHandlerTest, ClosingTheGlobalContextDeletesItsRecords)
{
    CDfpErrorContext& global = Global();
    Handler().AddError(eDfpErrorTypeIO, "one");
    EXPECT_FALSE(global.CloseErrorContext());
    EXPECT_FALSE(global.ErrorsOccurred());
    EXPECT_EQ(Handler().GetGlobalErrorContext(), nullptr);
    Handler().AddGlobalErrorContext();
    EXPECT_NE(Handler().GetGlobalErrorContext(), nullptr);
}

TEST_F(DfpErrorHandlerTest, DestructorClosesTheContext)
{
    StoreAside(Global(), eDfpErrorTypeIO, "kept");
    {
        CDfpErrorContext context;
        StoreAside(context, eDfpErrorTypeIO, "moved");
    }
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &Global());
    EXPECT_EQ(TextOf(Global().FindStoredError(eDfpErrorTypeIO)), "2 I/O error: kept");
}

TEST_F(DfpErrorHandlerTest, MovedRecordsReachTheParentOnlyAsARaisedCount)
{
    std::vector<std::int32_t> deleted;
    CDfpErrorContext context;
    ASSERT_TRUE(context.StoreError(new CWatchedError(eDfpErrorTypeParser, "meets itself", deleted)));
    StoreAside(context, eDfpErrorTypeIO, "moved");
    StoreAside(Global(), eDfpErrorTypeIO, "kept");
    EXPECT_FALSE(context.CloseErrorContext());
    EXPECT_EQ(TextOf(Global().FindStoredError(eDfpErrorTypeIO)), "2 I/O error: kept");
    EXPECT_EQ(Global().FindStoredError(eDfpErrorTypeParser), nullptr);
    EXPECT_FALSE(context.ErrorsOccurred());
    // Doubled at the meeting, then deleted.
    EXPECT_EQ(deleted, (std::vector<std::int32_t>{2}));
}

TEST_F(DfpErrorHandlerTest, MovedRecordsReachAnyOuterContext)
{
    StoreAside(Global(), eDfpErrorTypeIO, "kept");
    const CDfpErrorContext parent;
    CDfpErrorContext child;
    StoreAside(child, eDfpErrorTypeIO, "moved");
    EXPECT_FALSE(child.CloseErrorContext());
    EXPECT_FALSE(parent.ErrorsOccurred());
    EXPECT_EQ(Global().FindStoredError(eDfpErrorTypeIO)->m_count, 2);
}

TEST_F(DfpErrorHandlerTest, MovingPassesOverSlotsAlreadyEmptied)
{
    std::vector<std::int32_t> deleted;
    CDfpErrorContext context;
    for (const auto type : {eDfpErrorTypeIO, eDfpErrorTypeCrypt, eDfpErrorTypeParser}) {
        ASSERT_TRUE(context.StoreError(new CWatchedError(type, "unknown outside", deleted)));
    }
    EXPECT_FALSE(context.CloseErrorContext());
    EXPECT_EQ(deleted, (std::vector<std::int32_t>{2, 2, 2}));
    EXPECT_FALSE(Global().ErrorsOccurred());
}

TEST_F(DfpErrorHandlerTest, MovingDropsWhatTheParentSkipsAndWhatIsNoRecordType)
{
    std::vector<std::int32_t> deleted;
    CDfpErrorContext context;
    ASSERT_TRUE(context.StoreError(new CWatchedError(eDfpErrorTypeCrypt, "changed", deleted)));
    ASSERT_TRUE(context.StoreError(new CWatchedError(eDfpErrorTypeParser, "changed", deleted)));
    ASSERT_TRUE(context.StoreError(new CWatchedError(eDfpErrorTypeIO, "skipped", deleted)));
    StoreAside(Global(), eDfpErrorTypeIO, "kept");
    Global().Skip(eDfpErrorTypeIO);
    context.FindStoredError(eDfpErrorTypeCrypt)->m_type = eDfpErrorTypeCount;
    context.FindStoredError(eDfpErrorTypeParser)->m_type = Type(-1);
    EXPECT_FALSE(context.CloseErrorContext());
    EXPECT_EQ(deleted, (std::vector<std::int32_t>{1, 1, 1}));
    EXPECT_EQ(Global().FindStoredError(eDfpErrorTypeIO)->m_count, 1);
    EXPECT_EQ(Global().FindStoredError(eDfpErrorTypeCount)->m_type, eDfpErrorTypeIO);
}

TEST_F(DfpErrorHandlerTest, MovingFromAContextOffTheStackTakesTheRecordsOver)
{
    CDfpErrorContext aside;
    Handler().RemoveCurrentErrorContext(&aside);
    aside.StoreError(eDfpErrorTypeIO, "first");
    aside.StoreError(eDfpErrorTypeCrypt, "second");
    Global().StoreError(eDfpErrorTypeCrypt, "kept");
    Global().MoveErrors(aside);
    EXPECT_FALSE(aside.ErrorsOccurred());
    EXPECT_EQ(TextOf(Global().FindStoredError(eDfpErrorTypeIO)), "I/O error: first");
    EXPECT_EQ(TextOf(Global().FindStoredError(eDfpErrorTypeCrypt)), "2 Cipher error: kept");
}

TEST_F(DfpErrorHandlerTest, MovingIntoItselfDeletesEverything)
{
    std::vector<std::int32_t> deleted;
    CDfpErrorContext context;
    for (const bool onStack : {true, false}) {
        if (!onStack) {
            Handler().RemoveCurrentErrorContext(&context);
        }
        for (const auto type : {eDfpErrorTypeIO, eDfpErrorTypeCrypt}) {
            ASSERT_TRUE(context.StoreError(new CWatchedError(type, "text", deleted)));
        }
        context.MoveErrors(context);
        EXPECT_FALSE(context.ErrorsOccurred());
    }
    EXPECT_EQ(deleted.size(), 4U);
}

TEST_F(DfpErrorHandlerTest, ContextDestroyedOutOfOrderLeavesNoEntry)
{
    auto lower = std::make_unique<CDfpErrorContext>();
    lower->StoreError(eDfpErrorTypeIO, "lost");
    CDfpErrorContext upper;
    lower.reset();
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &upper);
    EXPECT_EQ(Handler().GetParentContextOfCurrent(), &Global());
    Handler().AddError(eDfpErrorTypeIO, "found");
    EXPECT_EQ(TextOf(Handler().FindStoredError(eDfpErrorTypeIO)), "I/O error: found");
    EXPECT_FALSE(upper.CloseErrorContext());
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &Global());
}

TEST_F(DfpErrorHandlerTest, ContextPutOnTheStackTwiceLeavesNoEntry)
{
    {
        CDfpErrorContext context;
        Handler().AddCurrentErrorContext(&context);
        Handler().AddError(eDfpErrorTypeIO, "one");
        EXPECT_FALSE(context.CloseErrorContext());
        EXPECT_EQ(Handler().GetCurrentErrorContext(), &context);
    }
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &Global());
}

TEST_F(DfpErrorHandlerTest, ClosedContextPutBackLeavesNoEntry)
{
    {
        CDfpErrorContext context;
        EXPECT_TRUE(context.CloseErrorContext());
        Handler().AddCurrentErrorContext(&context);
        // Closed once and for all, on top or not.
        EXPECT_FALSE(context.CloseErrorContext());
        EXPECT_FALSE(context.CloseErrorContext(false));
        EXPECT_TRUE(context.CloseErrorContext(true));
        EXPECT_EQ(Handler().GetCurrentErrorContext(), &context);
    }
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &Global());
}

TEST_F(DfpErrorHandlerTest, ClearClosesTheContextsOfTheCaller)
{
    StoreAside(Global(), eDfpErrorTypeIO, "one");
    CDfpErrorContext outer;
    CDfpErrorContext inner;
    Handler().AddCurrentErrorContext(nullptr);
    Handler().AddCurrentErrorContext(&outer);
    Handler().AddCurrentErrorContext(&inner);
    inner.StoreError(eDfpErrorTypeCrypt, "two");
    Handler().Clear();
    EXPECT_EQ(Handler().GetCurrentErrorContext(), nullptr);
    EXPECT_FALSE(inner.ErrorsOccurred());
    for (CDfpErrorContext* const context : {&inner, &outer}) {
        EXPECT_TRUE(context->CloseErrorContext(true));
        EXPECT_FALSE(context->CloseErrorContext());
    }
    Handler().AddGlobalErrorContext();
    EXPECT_FALSE(outer.CloseErrorContext());
    EXPECT_NE(Handler().GetCurrentErrorContext(), nullptr);
}

TEST_F(DfpErrorHandlerTest, ContextOutlivesTheHandler)
{
    auto onStack = std::make_unique<CDfpErrorContext>();
    auto offStack = std::make_unique<CDfpErrorContext>();
    Handler().RemoveCurrentErrorContext(offStack.get());
    onStack->StoreError(eDfpErrorTypeIO, "one");
    offStack->StoreError(eDfpErrorTypeCrypt, "two");
    CDfpErrorHandler::Destroy();
    EXPECT_FALSE(onStack->CloseErrorContext());
    EXPECT_TRUE(offStack->CloseErrorContext(true));
    EXPECT_FALSE(onStack->ErrorsOccurred());
    EXPECT_TRUE(offStack->ErrorsOccurred());
    onStack.reset();
    // A walk over the stack makes a new handler.
    offStack->StoreError(eDfpErrorTypeParser, "three");
    EXPECT_EQ(TextOf(offStack->FindStoredError(eDfpErrorTypeParser)), "Parser error: three");
    offStack.reset();
    EXPECT_EQ(Handler().GetCurrentErrorContext(), &Global());
}

TEST_F(DfpErrorHandlerTest, DeletedGlobalContextIsForgotten)
{
    delete Handler().GetGlobalErrorContext();
    EXPECT_EQ(Handler().GetGlobalErrorContext(), nullptr);
    Handler().AddGlobalErrorContext();
    EXPECT_NE(Handler().GetGlobalErrorContext(), nullptr);
}

TEST_F(DfpErrorHandlerTest, GlobalContextTakenOffTheStackLivesUntilDestroy)
{
    CDfpErrorContext& global = Global();
    Handler().RemoveCurrentErrorContext(&global);
    Handler().Clear();
    global.StoreError(eDfpErrorTypeIO, "kept");
    EXPECT_TRUE(global.ErrorsOccurred());
    Handler().AddGlobalErrorContext();
    EXPECT_NE(Handler().GetGlobalErrorContext(), &global);
}

TEST_F(DfpErrorFileTest, AppendingNothingTouchesNoFile)
{
    EXPECT_TRUE(Global().AppendToFile(m_folder / "log"));
    EXPECT_FALSE(NyxTest::FileExists(m_folder / "log"));
    EXPECT_TRUE(Global().AppendToFile(m_folder / "missing/log"));
}

TEST_F(DfpErrorFileTest, AppendingWritesALinePerRecordAndReturnsFalse)
{
    Handler().AddError(eDfpErrorTypeParser, "line %d", 3);
    EXPECT_FALSE(Global().AppendToFile(m_folder / "log"));
    EXPECT_EQ(NyxTest::ReadFile(m_folder / "log"), "> Parser error: line 3\n");

    Handler().AddError(eDfpErrorTypeParser, "lost");
    Handler().AddError(eDfpErrorTypeInfo, "100%% done");
    EXPECT_FALSE(Global().AppendToFile(m_folder / "log"));
    EXPECT_EQ(NyxTest::ReadFile(m_folder / "log"), "> Parser error: line 3\n> 2 Parser error: line 3\n> 100% done\n");
}

TEST_F(DfpErrorFileTest, AppendingToWhatCanNotBeWrittenReturnsFalseAndClosesTheFile)
{
    Handler().AddError(eDfpErrorTypeParser, "words");
    // Longer than any buffer of the stream, so that the full device is met on writing.
    Handler().AddError(eDfpErrorTypeIO, std::string(100000, 'x'));
    const std::size_t openFiles = NyxTest::CountOpenFiles();
    EXPECT_FALSE(Global().AppendToFile(m_folder / "missing/log"));
    EXPECT_FALSE(Global().AppendToFile(m_folder.Path()));
    EXPECT_FALSE(Global().AppendToFile("/dev/full"));
    EXPECT_FALSE(Global().AppendToFile(m_folder / "log"));
    EXPECT_EQ(NyxTest::CountOpenFiles(), openFiles);
    EXPECT_FALSE(NyxTest::FileExists(m_folder / "missing"));
}
