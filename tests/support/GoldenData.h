#ifndef NYXCONFIG_GOLDENDATA_H
#define NYXCONFIG_GOLDENDATA_H

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace NyxTest
{

/// The folder of documents and expected results, which its README.md describes. No closing separator.
std::string GoldenFolder();

/// The documents in it, sorted, without ".xml".
std::vector<std::string> GoldenNames();

/// Content of a JSON file in the folder, for this machine's size of `long`.
nlohmann::json ExpectedJson(const std::string& fileName);

/// Names a parameterised test after its document.
std::string GoldenTestName(const testing::TestParamInfo<std::string>& info);

/// Success if the two are equal; otherwise says what to change in @p expected to get @p actual.
testing::AssertionResult SameJson(const nlohmann::json& expected, const nlohmann::json& actual);

/// Tests of one document each. They run in the folder, since messages carry the name by which a file was opened, and
/// start with an empty error word.
class GoldenFixture : public testing::TestWithParam<std::string>
{
protected:
    GoldenFixture();
    ~GoldenFixture() override;

    static std::string Document() { return GetParam() + ".xml"; }

private:
    std::string m_former;
};

} // namespace NyxTest

#endif
