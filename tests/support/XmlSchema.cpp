#include "XmlSchema.h"

#include "Files.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>

namespace NyxTest
{

namespace
{

std::string Quoted(const std::string& word)
{
    std::string quoted = "'";
    for (const char character : word) {
        quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return quoted + "'";
}

/// The Char production of XML 1.0.
bool IsXmlCharacter(unsigned long value)
{
    return value == 0x9 || value == 0xA || value == 0xD || (value >= 0x20 && value <= 0xD7FF) ||
           (value >= 0xE000 && value <= 0xFFFD) || (value >= 0x10000 && value <= 0x10FFFF);
}

} // namespace

std::string SchemaFile(const std::string& name)
{
    return DataFile("../../schema/" + name);
}

SchemaVerdict CheckSchema(const std::string& schemaName, const std::vector<std::string>& files)
{
    std::string command = "xmllint --noout --nonet --schema " + Quoted(SchemaFile(schemaName));
    for (const std::string& file : files) {
        command += " " + Quoted(file);
    }
    SchemaVerdict verdict = {false, false, false, ""};
    std::FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) {
        return verdict;
    }
    std::array<char, 4096> buffer{};
    for (std::size_t count = 0; (count = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
        verdict.report.append(buffer.data(), count);
    }
    const int status = pclose(pipe);
    // 0 valid, 1 not well-formed, 3 or 4 not valid; all else is a failure of another kind.
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    verdict.ran = code == 0 || code == 1 || code == 3 || code == 4;
    verdict.wellFormed = verdict.ran && code != 1;
    verdict.valid = code == 0;
    return verdict;
}

void ExpectValid(const std::string& schemaName, const std::vector<std::string>& files)
{
    ASSERT_FALSE(files.empty());
    const SchemaVerdict verdict = CheckSchema(schemaName, files);
    EXPECT_TRUE(verdict.ran) << "xmllint is in Debian's libxml2-utils\n" << verdict.report;
    EXPECT_TRUE(verdict.valid) << verdict.report;
}

std::string WithoutForbiddenReferences(const std::string& text)
{
    std::string result;
    std::size_t done = 0;
    for (std::size_t begin = 0; (begin = text.find("&#", begin)) != std::string::npos;) {
        const std::size_t end = text.find(';', begin);
        const unsigned long value = std::strtoul(text.c_str() + begin + 2, nullptr, 10);
        if (end != std::string::npos && !IsXmlCharacter(value)) {
            result += text.substr(done, begin - done) + "?";
            done = end + 1;
        }
        begin += 2;
    }
    return result + text.substr(done);
}

} // namespace NyxTest
