// The stand-ins for the firmware's libraries: properties in an INI file, trace on standard error or the system log.

#include "Debug.h"
#include "VelaProperties.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QString>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <dlfcn.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

namespace
{

using KvOrdo::Debug;

const char* const group = "TestFeatures/Generic";
const char* const key = "TestKeyDependency";

void setVariable(const char* name, const char* value)
{
    if (value == nullptr) {
        ::unsetenv(name);
    } else {
        ::setenv(name, value, 1);
    }
}

void writeFile(const std::filesystem::path& file, const std::string& content)
{
    std::ofstream stream(file, std::ios::binary);
    stream << content;
    ASSERT_TRUE(stream.flush().good()) << file;
}

/// Runs `action` in a process of its own, for the trace switch is read once. Returns what it wrote to standard error.
std::string errorOutputOfChild(const std::function<void()>& action)
{
    int ends[2];
    if (::pipe(ends) != 0) {
        ADD_FAILURE() << "no pipe";
        return std::string();
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(ends[1], STDERR_FILENO);
        ::close(ends[0]);
        ::close(ends[1]);
        action();
        ::_exit(testing::Test::HasFailure() ? 1 : 0);
    }
    ::close(ends[1]);
    std::string output;
    char buffer[4096];
    ssize_t size = 0;
    while ((size = ::read(ends[0], buffer, sizeof buffer)) > 0) {
        output.append(buffer, static_cast<std::size_t>(size));
    }
    ::close(ends[0]);
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "the child failed:\n" << output;
    return output;
}

/// The same with the trace switch set; null takes the variable away.
std::string errorOutputOfChild(const char* traceVariable, const std::function<void()>& action)
{
    return errorOutputOfChild([&] {
        setVariable("NYXCONFIG_TRACE", traceVariable);
        action();
    });
}

void printLine(const QString& text)
{
    Debug::println(moduleIdConfiguration, 1, text, 3, 0, nullptr, -1);
}

class PropertiesStandIn : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string name = (std::filesystem::temp_directory_path() / "nyxconfig-platform-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        m_folder = name;
        m_file = m_folder / "properties.ini";
        setVariable("NYXCONFIG_PROPERTIES", m_file.c_str());
    }

    void TearDown() override
    {
        setVariable("NYXCONFIG_PROPERTIES", nullptr);
        std::filesystem::remove_all(m_folder);
    }

    std::filesystem::path m_folder;
    std::filesystem::path m_file;
};

TEST_F(PropertiesStandIn, integerOfTheSectionThatTheGroupNames)
{
    writeFile(m_file, "[TestFeatures]\nGeneric\\TestKeyDependency=1\nOther=5\n\n[Plain]\nNumber=-7\n");
    EXPECT_EQ(VelaProperties::getIntegerProperty(group, key, 0, 2), 1);
    EXPECT_EQ(VelaProperties::getIntegerProperty("TestFeatures", "Other", 0, 2), 5);
    EXPECT_EQ(VelaProperties::getIntegerProperty("Plain", "Number", 0, 2), -7);
}

TEST_F(PropertiesStandIn, fileWrittenWithQSettingsIsRead)
{
    const ushort greek[] = {0x3B1, 0x3B2, 0};
    {
        QSettings settings(QString::fromStdString(m_file.string()), QSettings::IniFormat);
        settings.beginGroup(group);
        settings.setValue(key, 17);
        settings.setValue("Text", "a, b; \"c\" = d\\e");
        settings.setValue("Greek", QString::fromUtf16(greek));
    }
    EXPECT_EQ(VelaProperties::getIntegerProperty(group, key, 0, 2), 17);
    EXPECT_EQ(VelaProperties::getStringProperty(group, "Text", QString(), 2, nullptr), QString("a, b; \"c\" = d\\e"));
    EXPECT_EQ(VelaProperties::getStringProperty(group, "Greek", QString(), 2, nullptr), QString::fromUtf16(greek));
}

TEST_F(PropertiesStandIn, valueThatIsNoNumberGivesTheDefault)
{
    struct Row
    {
        const char* value;
        int expected;
    };
    const Row rows[] = {
        {"0", 0},
        {"+3", 3},
        {" 4 ", 4},
        {"\"5\"", 5},
        {"2147483647", std::numeric_limits<int>::max()},
        {"-2147483648", std::numeric_limits<int>::min()},
        {"2147483648", -99},
        {"-2147483649", -99},
        {"", -99},
        {"one", -99},
        {"1.5", -99},
        {"1x", -99},
        {"0x10", -99},
        {"1, 2", -99},
        {"true", -99},
    };
    std::string content = "[Numbers]\n";
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        content += "n" + std::to_string(i) + "=" + rows[i].value + "\n";
    }
    writeFile(m_file, content);
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(rows[i].value);
        const QString name = QString("n%1").arg(i);
        EXPECT_EQ(VelaProperties::getIntegerProperty("Numbers", name, -99, 2), rows[i].expected);
    }
}

TEST_F(PropertiesStandIn, textAndWhetherItWasFound)
{
    writeFile(m_file, "[Texts]\nplain=some text\nquoted=\"a, b\"\nunquoted=a,b\nempty=\nnumber=12\n"
                      "utf8=\xC3\xA4\xE2\x82\xAC\n");
    const ushort utf8[] = {0xE4, 0x20AC, 0};
    struct Row
    {
        const char* key;
        QString expected;
        bool isFound;
    };
    const Row rows[] = {
        {"plain", "some text", true}, {"quoted", "a, b", true}, {"unquoted", "a, b", true},
        {"empty", "", true},          {"number", "12", true},   {"utf8", QString::fromUtf16(utf8), true},
        {"absent", "default", false}, {"", "default", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.key);
        bool found = !row.isFound;
        EXPECT_EQ(VelaProperties::getStringProperty("Texts", row.key, "default", 2, &found), row.expected);
        EXPECT_EQ(found, row.isFound);
        EXPECT_EQ(VelaProperties::getStringProperty("Texts", row.key, "default", 2, nullptr), row.expected);
    }
}

TEST_F(PropertiesStandIn, absentGroupOrKeyGivesTheDefaultInSilence)
{
    writeFile(m_file, "[TestFeatures]\nGeneric\\TestKeyDependency=1\n");
    const std::string output = errorOutputOfChild([] {
        EXPECT_EQ(VelaProperties::getIntegerProperty(group, "Absent", 6, 2), 6);
        EXPECT_EQ(VelaProperties::getIntegerProperty("Absent", key, 6, 2), 6);
        EXPECT_EQ(VelaProperties::getIntegerProperty("", key, 6, 2), 6);
        EXPECT_EQ(VelaProperties::getIntegerProperty(group, "", 6, 2), 6);
        EXPECT_EQ(VelaProperties::getIntegerProperty("", "", 6, 2), 6);
    });
    EXPECT_EQ(output, "");
}

TEST_F(PropertiesStandIn, scopeMakesNoDifference)
{
    writeFile(m_file, "[TestFeatures]\nGeneric\\TestKeyDependency=1\n");
    for (const int scope : {-1, 0, 1, 2, 3}) {
        EXPECT_EQ(VelaProperties::getIntegerProperty(group, key, 0, scope), 1) << scope;
        EXPECT_EQ(VelaProperties::getStringProperty(group, key, "", scope, nullptr), QString("1")) << scope;
    }
}

TEST_F(PropertiesStandIn, fileThatCanNotBeReadGivesTheDefaultsAndIsNotMade)
{
    writeFile(m_folder / "file", "");
    const std::filesystem::path paths[] = {m_file, m_folder / "absent" / "properties.ini", m_folder,
                                           m_folder / "file" / "properties.ini"};
    for (const std::filesystem::path& path : paths) {
        SCOPED_TRACE(path);
        setVariable("NYXCONFIG_PROPERTIES", path.c_str());
        bool found = true;
        EXPECT_EQ(VelaProperties::getIntegerProperty(group, key, 8, 2), 8);
        EXPECT_EQ(VelaProperties::getStringProperty(group, key, "default", 2, &found), QString("default"));
        EXPECT_FALSE(found);
    }
    EXPECT_FALSE(std::filesystem::exists(m_file));
    EXPECT_FALSE(std::filesystem::exists(m_folder / "absent"));
}

TEST_F(PropertiesStandIn, fileWithoutReadPermissionGivesTheDefault)
{
    writeFile(m_file, "[TestFeatures]\nGeneric\\TestKeyDependency=1\n");
    std::filesystem::permissions(m_file, std::filesystem::perms::none);
    const bool mayReadAll = ::access(m_file.c_str(), R_OK) == 0; // root may
    EXPECT_EQ(VelaProperties::getIntegerProperty(group, key, 8, 2), mayReadAll ? 1 : 8);
}

TEST_F(PropertiesStandIn, brokenLinesDoNotHideTheOthers)
{
    writeFile(m_file, "no section\n=\n[unclosed\n\xFF\xFE\n[TestFeatures]\nno equals sign\n"
                      "Generic\\TestKeyDependency=1\n");
    EXPECT_EQ(VelaProperties::getIntegerProperty(group, key, 0, 2), 1);
}

TEST_F(PropertiesStandIn, changedRemovedAndNewFileIsSeenAtTheNextCall)
{
    writeFile(m_file, "[TestFeatures]\nGeneric\\TestKeyDependency=1\n");
    EXPECT_EQ(VelaProperties::getIntegerProperty(group, key, 0, 2), 1);
    writeFile(m_file, "[TestFeatures]\nGeneric\\TestKeyDependency=22\n");
    EXPECT_EQ(VelaProperties::getIntegerProperty(group, key, 0, 2), 22);
    std::filesystem::remove(m_file);
    EXPECT_EQ(VelaProperties::getIntegerProperty(group, key, 0, 2), 0);
    writeFile(m_file, "[TestFeatures]\nGeneric\\TestKeyDependency=333\n");
    EXPECT_EQ(VelaProperties::getIntegerProperty(group, key, 0, 2), 333);

    // The same size again: then the time of the change tells it.
    const std::filesystem::file_time_type before = std::filesystem::last_write_time(m_file);
    writeFile(m_file, "[TestFeatures]\nGeneric\\TestKeyDependency=444\n");
    std::filesystem::last_write_time(m_file, before + std::chrono::seconds(2));
    EXPECT_EQ(VelaProperties::getIntegerProperty(group, key, 0, 2), 444);
}

TEST_F(PropertiesStandIn, environmentVariableIsReadAtEachCall)
{
    const std::filesystem::path other = m_folder / "other \xC3\xA4.ini";
    writeFile(m_file, "[G]\nk=1\n");
    writeFile(other, "[G]\nk=2\n");
    EXPECT_EQ(VelaProperties::getIntegerProperty("G", "k", 0, 2), 1);
    setVariable("NYXCONFIG_PROPERTIES", other.c_str());
    EXPECT_EQ(VelaProperties::getIntegerProperty("G", "k", 0, 2), 2);
}

/// Puts an empty folder in the place of /etc, for this process alone. False where the system does not allow it.
bool hideSystemConfiguration()
{
    const bool isSeparate = ::unshare(CLONE_NEWNS) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0;
    return isSeparate && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("tmpfs", "/etc", "tmpfs", 0, nullptr) == 0;
}

TEST_F(PropertiesStandIn, defaultFileIsReadIfTheVariableIsUnsetOrEmpty)
{
    for (const char* variable : {static_cast<const char*>(nullptr), ""}) {
        SCOPED_TRACE(variable == nullptr ? "unset" : "empty");
        errorOutputOfChild([&] {
            setVariable("NYXCONFIG_PROPERTIES", variable);
            int expected = -1;
            if (hideSystemConfiguration()) {
                std::filesystem::create_directory("/etc/nyxconfig");
                writeFile("/etc/nyxconfig/properties.ini", "[G]\nkeyOfThisTest=77\n");
                expected = 77;
            }
            EXPECT_EQ(VelaProperties::getIntegerProperty("G", "keyOfThisTest", -1, 2), expected);
        });
    }
}

TEST_F(PropertiesStandIn, manyThreadsReadAtOnce)
{
    writeFile(m_file, "[TestFeatures]\nGeneric\\TestKeyDependency=1\n");
    std::vector<int> sums(4, 0);
    std::vector<std::thread> threads;
    threads.reserve(sums.size());
    for (int& sum : sums) {
        threads.emplace_back([&sum] {
            for (int i = 0; i < 200; ++i) {
                sum += VelaProperties::getIntegerProperty(group, key, 0, 2);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(sums, std::vector<int>(4, 200));
}

TEST(TraceStandIn, offUnlessTheVariableNamesASink)
{
    for (const char* variable : {static_cast<const char*>(nullptr), ""}) {
        SCOPED_TRACE(variable == nullptr ? "unset" : "empty");
        const std::string output = errorOutputOfChild(variable, [] {
            EXPECT_FALSE(Debug::isActive(moduleIdConfiguration, 3, 1));
            printLine("text");
        });
        EXPECT_EQ(output, "");
    }
}

TEST(TraceStandIn, unknownSinkIsOffWithOneWarning)
{
    for (const char* variable : {"STDERR", "file", "1"}) {
        const std::string output = errorOutputOfChild(variable, [] {
            EXPECT_FALSE(Debug::isActive(moduleIdConfiguration, 3, 1));
            EXPECT_FALSE(Debug::isActive(moduleIdConfiguration, 3, 1));
            printLine("text");
        });
        EXPECT_EQ(output, std::string("NYXCONFIG_TRACE: unknown value \"") + variable +
                              "\", trace stays off; use stderr or syslog\n");
    }
}

TEST(TraceStandIn, standardErrorGetsModuleLevelAndText)
{
    const std::string output = errorOutputOfChild("stderr", [] {
        EXPECT_TRUE(Debug::isActive(moduleIdConfiguration, 3, 1));
        EXPECT_TRUE(Debug::isActive(moduleId(7), 0, 0));
        printLine("first");
        Debug::println(moduleId(7), 0, "second %s %n", -4, 11, "ignored", 12);
        printLine("");
    });
    EXPECT_EQ(output, "[trace module 2 level 3] first\n[trace module 7 level -4] second %s %n\n"
                      "[trace module 2 level 3] \n");
}

TEST(TraceStandIn, textIsWrittenAsUtf8)
{
    const ushort text[] = {0xE4, 0x141, 0x20AC, 0xD83D, 0xDE00, 0};
    const std::string output = errorOutputOfChild("stderr", [&] { printLine(QString::fromUtf16(text)); });
    EXPECT_EQ(output, "[trace module 2 level 3] \xC3\xA4\xC5\x81\xE2\x82\xAC\xF0\x9F\x98\x80\n");
}

TEST(TraceStandIn, lineEndsInTheTextBecomeBlanks)
{
    const std::string output = errorOutputOfChild("stderr", [] { printLine("a\nb\r\nc\td"); });
    EXPECT_EQ(output, "[trace module 2 level 3] a b  c\td\n");
}

TEST(TraceStandIn, switchIsReadOnce)
{
    const std::string output = errorOutputOfChild("stderr", [] {
        EXPECT_TRUE(Debug::isActive(moduleIdConfiguration, 3, 1));
        setVariable("NYXCONFIG_TRACE", nullptr);
        EXPECT_TRUE(Debug::isActive(moduleIdConfiguration, 3, 1));
        printLine("still on");
    });
    EXPECT_EQ(output, "[trace module 2 level 3] still on\n");
}

TEST(TraceStandIn, closedStandardErrorIsHarmlessAndErrnoIsKept)
{
    errorOutputOfChild("stderr", [] {
        ::close(STDERR_FILENO);
        errno = EXDEV;
        printLine("nowhere");
        EXPECT_EQ(errno, EXDEV);
        EXPECT_TRUE(Debug::isActive(moduleIdConfiguration, 3, 1));
        EXPECT_EQ(errno, EXDEV);
    });
}

TEST(TraceStandIn, linesOfManyThreadsStayWhole)
{
    const std::size_t threadCount = 6, lineCount = 50, lineSize = 9000; // longer than a pipe takes at once
    const std::string output = errorOutputOfChild("stderr", [&] {
        std::vector<std::thread> threads;
        threads.reserve(threadCount);
        for (std::size_t i = 0; i < threadCount; ++i) {
            threads.emplace_back([&, i] {
                const QString text(static_cast<int>(lineSize), QChar('a' + static_cast<int>(i)));
                for (std::size_t line = 0; line < lineCount; ++line) {
                    printLine(text);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    });

    const std::string start = "[trace module 2 level 3] ";
    std::vector<std::size_t> lines(threadCount, 0);
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);) {
        ASSERT_EQ(line.size(), start.size() + lineSize);
        const char letter = line.back();
        ASSERT_EQ(line, start + std::string(lineSize, letter));
        ++lines.at(static_cast<std::size_t>(letter - 'a'));
    }
    EXPECT_EQ(lines, std::vector<std::size_t>(threadCount, lineCount));
}

TEST(TraceStandIn, systemLogGetsTheLineWithPriorityDebug)
{
    const auto trace = [] {
        EXPECT_TRUE(Debug::isActive(moduleIdConfiguration, 3, 1));
        printLine("to the log %s");
    };
    // LOG_PERROR: the C library then writes what it logs to standard error too.
    const std::string output = errorOutputOfChild("syslog", [&] {
        ::openlog("application", LOG_PERROR, LOG_USER);
        trace();
    });
    EXPECT_EQ(output, "application: [trace module 2 level 3] to the log %s\n");

    const std::string withoutDebug = errorOutputOfChild("syslog", [&] {
        ::openlog("application", LOG_PERROR, LOG_USER);
        ::setlogmask(LOG_UPTO(LOG_INFO));
        trace();
    });
    EXPECT_EQ(withoutDebug, "");

    EXPECT_EQ(errorOutputOfChild("syslog", trace), "") << "the system log alone";
}

TEST(PlatformLibraries, haveSonameWithVersionAndTheSymbolsOfTheFirmware)
{
    // Both are used here, so that the linker does not leave the libraries out.
    VelaProperties::getIntegerProperty("G", "k", 0, 2);
    errorOutputOfChild(nullptr, [] { Debug::isActive(moduleIdConfiguration, 3, 1); });

    struct Row
    {
        const char* library;
        const char* symbol;
    };
    const Row rows[] = {
        {"libvelautil.so.1", "_ZN14VelaProperties18getIntegerPropertyERK7QStringS2_ii"},
        {"libvelautil.so.1", "_ZN14VelaProperties17getStringPropertyERK7QStringS2_S2_iPb"},
        {"libvelatrace.so.1", "_ZN6KvOrdo5Debug8isActiveE8moduleIdii"},
        {"libvelatrace.so.1", "_ZN6KvOrdo5Debug7printlnE8moduleIdiRK7QStringiiPKci"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.symbol);
        void* library = ::dlopen(row.library, RTLD_NOW | RTLD_NOLOAD);
        ASSERT_NE(library, nullptr) << ::dlerror();
        EXPECT_NE(::dlsym(library, row.symbol), nullptr);
        ::dlclose(library);
    }
}

} // namespace
