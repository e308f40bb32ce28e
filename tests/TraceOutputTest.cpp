// The test hooks and the trace output, seen from the platform: this program takes the place of libvelautil and
// libvelatrace and records what they are asked.

#include "TraceOutput.h"
#include "CHwTestUtilities.h"
#include "CNyxConfig.h"
#include "Debug.h"
#include "VelaProperties.h"

#include <gtest/gtest.h>

#include <QString>

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace
{

struct PropertyCall
{
    std::string operation, group, key;
    int scope = 0;
    bool hasPlainDefault = false; // 0, or an empty text with a null pointer for the answer whether it was found
};

struct ActiveCall
{
    int module = 0, level = 0, channel = 0;
};

struct PrintCall
{
    int module = 0, channel = 0;
    QString text;
    int level = 0, number = 0;
    const char* pointer = nullptr;
    int lastNumber = 0;
};

/// What the platform answers, and what it was asked.
struct Platform
{
    int integerProperty = 0;
    QString stringProperty;
    bool isPropertySet = true;
    bool isTraceActive = true;
    std::vector<PropertyCall> propertyCalls;
    std::vector<ActiveCall> activeCalls;
    std::vector<PrintCall> printCalls;
};

Platform& platform()
{
    static Platform thePlatform;
    return thePlatform;
}

/// The lines written so far, as Latin-1.
std::vector<std::string> tracedLines()
{
    std::vector<std::string> lines;
    for (const PrintCall& call : platform().printCalls) {
        lines.push_back(call.text.toLatin1().toStdString());
    }
    return lines;
}

using Lines = std::vector<std::string>;

} // namespace

int VelaProperties::getIntegerProperty(const QString& group, const QString& key, int defaultValue, int scope)
{
    platform().propertyCalls.push_back(
        {"getIntegerProperty", group.toStdString(), key.toStdString(), scope, defaultValue == 0});
    return platform().isPropertySet ? platform().integerProperty : defaultValue;
}

QString VelaProperties::getStringProperty(const QString& group, const QString& key, const QString& defaultValue,
                                          int scope, bool* found)
{
    platform().propertyCalls.push_back({"getStringProperty", group.toStdString(), key.toStdString(), scope,
                                        defaultValue.isEmpty() && found == nullptr});
    return platform().isPropertySet ? platform().stringProperty : defaultValue;
}

namespace KvOrdo
{

bool Debug::isActive(moduleId module, int level, int channel)
{
    platform().activeCalls.push_back({module, level, channel});
    return platform().isTraceActive;
}

void Debug::println(moduleId module, int channel, const QString& text, int level, int number, const char* pointer,
                    int lastNumber)
{
    platform().printCalls.push_back({module, channel, text, level, number, pointer, lastNumber});
}

namespace
{

class TestHooks : public testing::Test
{
protected:
    TestHooks() { platform() = Platform(); }
};

using TraceOutput = TestHooks;

using ServerPolicy = DebugServerOutpPolicy<moduleId(2), 3, 1, 1024>;

void expectOnePropertyCall(const std::string& operation)
{
    ASSERT_EQ(platform().propertyCalls.size(), 1U);
    const PropertyCall& call = platform().propertyCalls.front();
    EXPECT_EQ(call.operation, operation);
    EXPECT_EQ(call.group, "Group/Sub");
    EXPECT_EQ(call.key, "Key");
    EXPECT_EQ(call.scope, 2);
    EXPECT_TRUE(call.hasPlainDefault);
}

TEST_F(TestHooks, integerPropertyIsAskedWithDefaultZeroAndScopeTwo)
{
    platform().integerProperty = 42;
    EXPECT_EQ(CHwTestUtilities::initTestOutput("Group/Sub", "Key", "caller"), 42);
    expectOnePropertyCall("getIntegerProperty");
}

TEST_F(TestHooks, stringPropertyIsAskedWithEmptyDefaultScopeTwoAndNullFound)
{
    platform().stringProperty = "value";
    EXPECT_EQ(CHwTestUtilities::initTestString("Group/Sub", "Key", "caller"), QString("value"));
    expectOnePropertyCall("getStringProperty");
}

TEST_F(TestHooks, integerPropertyIsTracedOnlyIfItIsOneAndTheCallerHasAName)
{
    struct Row
    {
        int value;
        const char* caller;
        Lines lines;
    };
    const Row rows[] = {
        {1, "Unit::operation", {"Unit::operation(): Trace-O/Ps for [Group/Sub/Key] activated."}},
        {1, "", {}},
        {0, "Unit::operation", {}},
        {2, "Unit::operation", {}},
        {-1, "Unit::operation", {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.value << " asked by '" << row.caller << "'");
        platform() = Platform();
        platform().integerProperty = row.value;
        EXPECT_EQ(CHwTestUtilities::initTestOutput("Group/Sub", "Key", row.caller), row.value);
        EXPECT_EQ(tracedLines(), row.lines);
        EXPECT_EQ(platform().activeCalls.size(), row.lines.size());
    }
}

TEST_F(TestHooks, stringPropertyIsTracedOnlyIfItHasTextAndTheCallerHasAName)
{
    struct Row
    {
        const char* value;
        const char* caller;
        Lines lines;
    };
    const Row rows[] = {
        {"some text", "Unit::operation", {"Unit::operation(): Test string for [Group/Sub/Key] found."}},
        {"some text", "", {}},
        {"", "Unit::operation", {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "'" << row.value << "' asked by '" << row.caller << "'");
        platform() = Platform();
        platform().stringProperty = row.value;
        EXPECT_EQ(CHwTestUtilities::initTestString("Group/Sub", "Key", row.caller), QString(row.value));
        EXPECT_EQ(tracedLines(), row.lines);
        EXPECT_EQ(platform().activeCalls.size(), row.lines.size());
    }
}

TEST_F(TestHooks, absentPropertyGivesTheDefaultAndIsNotTraced)
{
    platform().isPropertySet = false;
    platform().integerProperty = 1;
    platform().stringProperty = "value";
    EXPECT_EQ(CHwTestUtilities::initTestOutput("Group/Sub", "Key", "caller"), 0);
    EXPECT_TRUE(CHwTestUtilities::initTestString("Group/Sub", "Key", "caller").isEmpty());
    EXPECT_EQ(tracedLines(), Lines());
}

TEST_F(TestHooks, switchedOffTraceIsAskedOnceAndGetsNothing)
{
    platform().isTraceActive = false;
    platform().integerProperty = 1;
    EXPECT_EQ(CHwTestUtilities::initTestOutput("Group/Sub", "Key", "caller"), 1);
    EXPECT_EQ(platform().activeCalls.size(), 1U);
    EXPECT_TRUE(platform().printCalls.empty());
}

TEST_F(TestHooks, traceIsAskedAndWrittenWithTheNumbersOfThisLibrary)
{
    platform().integerProperty = 1;
    CHwTestUtilities::initTestOutput("G", "K", "c");

    ASSERT_EQ(platform().activeCalls.size(), 1U);
    const ActiveCall& active = platform().activeCalls.front();
    EXPECT_EQ(active.module, 2);
    EXPECT_EQ(active.level, 3);
    EXPECT_EQ(active.channel, 1);

    ASSERT_EQ(platform().printCalls.size(), 1U);
    const PrintCall& print = platform().printCalls.front();
    EXPECT_EQ(print.module, 2);
    EXPECT_EQ(print.channel, 1);
    EXPECT_EQ(print.text, QString("c(): Trace-O/Ps for [G/K] activated."));
    EXPECT_EQ(print.level, 3);
    EXPECT_EQ(print.number, 0);
    EXPECT_EQ(print.pointer, nullptr);
    EXPECT_EQ(print.lastNumber, -1);
}

TEST_F(TestHooks, constructorOfTheFacadeAsksOnePropertyAndTracesNothing)
{
    for (const int value : {0, 1, 2}) {
        SCOPED_TRACE(value);
        platform() = Platform();
        platform().integerProperty = value;
        const CNyxConfig config;
        ASSERT_EQ(platform().propertyCalls.size(), 1U);
        const PropertyCall& call = platform().propertyCalls.front();
        EXPECT_EQ(call.operation, "getIntegerProperty");
        EXPECT_EQ(call.group, "TestFeatures/Generic");
        EXPECT_EQ(call.key, "TestKeyDependency");
        EXPECT_EQ(call.scope, 2);
        EXPECT_TRUE(call.hasPlainDefault);
        EXPECT_TRUE(platform().activeCalls.empty());
        EXPECT_TRUE(platform().printCalls.empty());
    }
}

TEST_F(TestHooks, percentSignsInNamesReadNoArguments)
{
    struct Row
    {
        const char* name;
        const char* traced;
    };
    const Row rows[] = {
        {"%", "%"},       {"100%", "100%"},   {"%d", "%d"},         {"%s", "%s"},        {"%n", "%n"}, {"%m", "%m"},
        {"%1$s", "%1$s"}, {"%*.*f", "%*.*f"}, {"%9999d", "%9999d"}, {"%5%", "%5%"},      {"%%", "%"},  {"%%%", "%%"},
        {"%%%%", "%%"},   {"%%d", "%d"},      {"%%%d", "%%d"},      {"a%%b%c", "a%b%c"},
    };
    platform().integerProperty = 1;
    platform().stringProperty = "value";
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        platform().printCalls.clear();
        CHwTestUtilities::initTestOutput("G", "K", row.name);
        CHwTestUtilities::initTestOutput(row.name, "K", "c");
        CHwTestUtilities::initTestOutput("G", row.name, "c");
        CHwTestUtilities::initTestString(row.name, row.name, row.name);
        Lines expected = {"@(): Trace-O/Ps for [G/K] activated.", "c(): Trace-O/Ps for [@/K] activated.",
                          "c(): Trace-O/Ps for [G/@] activated.", "@(): Test string for [@/@] found."};
        for (std::string& line : expected) {
            line = QString::fromStdString(line).replace("@", row.traced).toStdString();
        }
        EXPECT_EQ(tracedLines(), expected);
    }
}

TEST_F(TestHooks, namesAreTracedAsLatin1)
{
    const ushort characters[] = {0x47, 0xE4, 0xFF, 0x141, 0x20AC, 0};
    platform().integerProperty = 1;
    CHwTestUtilities::initTestOutput("G", "K", QString::fromUtf16(characters));
    EXPECT_EQ(tracedLines(), Lines({"G\xE4\xFF?\?(): Trace-O/Ps for [G/K] activated."}));
}

TEST_F(TestHooks, textEndsAtAZeroCharacterInAName)
{
    platform().integerProperty = 1;
    CHwTestUtilities::initTestOutput("G", "K", QString("ab") + QChar(0) + QString("cd"));
    EXPECT_EQ(tracedLines(), Lines({"ab"}));
}

TEST_F(TestHooks, longNameIsCutAtTheBuffer)
{
    const std::string tail = "(): Trace-O/Ps for [G/K] activated.";
    platform().integerProperty = 1;
    for (const std::size_t size : {1023 - tail.size(), 1024 - tail.size(), std::size_t(1024), std::size_t(100000)}) {
        SCOPED_TRACE(size);
        const std::string caller(size, 'c');
        platform().printCalls.clear();
        CHwTestUtilities::initTestOutput("G", "K", QString::fromStdString(caller));
        EXPECT_EQ(tracedLines(), Lines({(caller + tail).substr(0, 1023)}));
    }
}

TEST_F(TraceOutput, enabledPolicyFormatsTheArguments)
{
    nyxPrintf<OutpEnabledPolicy, ServerPolicy>("%d %s %% %c", 12, "text", 'x');
    EXPECT_EQ(tracedLines(), Lines({"12 text % x"}));
}

TEST_F(TraceOutput, disabledPolicyDoesNotEvenAsk)
{
    nyxPrintf<OutpDisabledPolicy, ServerPolicy>("%d", 12);
    EXPECT_TRUE(platform().activeCalls.empty());
    EXPECT_TRUE(platform().printCalls.empty());
}

TEST_F(TraceOutput, switchedOffTraceFormatsNothing)
{
    for (const bool isTraceActive : {false, true}) {
        SCOPED_TRACE(isTraceActive);
        platform() = Platform();
        platform().isTraceActive = isTraceActive;
        int formatted = -1;
        nyxPrintf<OutpEnabledPolicy, ServerPolicy>("abc%n", &formatted);
        EXPECT_EQ(formatted, isTraceActive ? 3 : -1);
        EXPECT_EQ(platform().activeCalls.size(), 1U);
        EXPECT_EQ(platform().printCalls.size(), isTraceActive ? 1U : 0U);
    }
}

TEST_F(TraceOutput, textIsCutBelowTheBufferSize)
{
    for (const std::size_t size : {1022U, 1023U, 1024U, 1025U, 5000U}) {
        SCOPED_TRACE(size);
        const std::string text(size, 't');
        platform().printCalls.clear();
        nyxPrintf<OutpEnabledPolicy, ServerPolicy>("%s", text.c_str());
        EXPECT_EQ(tracedLines(), Lines({text.substr(0, 1023)}));
    }
}

TEST_F(TraceOutput, policyArgumentsReachThePlatform)
{
    nyxPrintf<OutpEnabledPolicy, DebugServerOutpPolicy<moduleId(5), 7, 4, 8>>("%s", "123456789");
    ASSERT_EQ(platform().activeCalls.size(), 1U);
    EXPECT_EQ(platform().activeCalls.front().module, 5);
    EXPECT_EQ(platform().activeCalls.front().level, 7);
    EXPECT_EQ(platform().activeCalls.front().channel, 4);
    ASSERT_EQ(platform().printCalls.size(), 1U);
    EXPECT_EQ(platform().printCalls.front().module, 5);
    EXPECT_EQ(platform().printCalls.front().level, 7);
    EXPECT_EQ(platform().printCalls.front().channel, 4);
    EXPECT_EQ(tracedLines(), Lines({"1234567"}));
}

TEST_F(TraceOutput, bufferIsReadAsLatin1)
{
    nyxPrintf<OutpEnabledPolicy, ServerPolicy>("%s", "\xE4\xC3\xA4");
    ASSERT_EQ(platform().printCalls.size(), 1U);
    const ushort expected[] = {0xE4, 0xC3, 0xA4, 0};
    EXPECT_EQ(platform().printCalls.front().text, QString::fromUtf16(expected));
}

TEST_F(TraceOutput, textThatCanNotBeFormattedGivesAnEmptyLine)
{
    const wchar_t noCharacter[] = {L'a', static_cast<wchar_t>(0x7FFFFFFF), 0};
    nyxPrintf<OutpEnabledPolicy, ServerPolicy>("before %ls", noCharacter);
    EXPECT_EQ(tracedLines(), Lines({""}));
}

struct RecordingPolicy
{
    static std::string& line()
    {
        static std::string theLine;
        return theLine;
    }
    static void print(const char* format, va_list arguments)
    {
        char buffer[64];
        std::vsnprintf(buffer, sizeof buffer, format, arguments);
        line() = std::string(format) + " = " + buffer;
    }
};

TEST_F(TraceOutput, anotherOutputPolicyTakesFormatAndArguments)
{
    nyxPrintf<OutpEnabledPolicy, RecordingPolicy>("%d/%d", 1, 2);
    EXPECT_EQ(RecordingPolicy::line(), "%d/%d = 1/2");
    EXPECT_TRUE(platform().activeCalls.empty());
}

} // namespace

} // namespace KvOrdo
