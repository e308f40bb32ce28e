#include "GoldenData.h"

#include "DeviceFootprint.h"
#include "Files.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

using KvDeviceFootprint::CDeviceFootprint;

namespace NyxTest
{

namespace
{

const std::string LongSuffix = "_long64";

bool EndsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// Takes the keys for a long of 64 bits out of the objects; on such a machine their values replace the plain ones.
nlohmann::json ForThisLong(const nlohmann::json& data)
{
    if (!data.is_structured()) {
        return data;
    }
    nlohmann::json result = data.is_array() ? nlohmann::json::array() : nlohmann::json::object();
    if (data.is_array()) {
        for (const nlohmann::json& entry : data) {
            result.push_back(ForThisLong(entry));
        }
        return result;
    }
    for (const auto& [key, value] : data.items()) {
        if (EndsWith(key, LongSuffix)) {
            continue;
        }
        const auto wide = sizeof(long) == 8 ? data.find(key + LongSuffix) : data.end();
        result[key] = ForThisLong(wide == data.end() ? value : *wide);
    }
    return result;
}

} // namespace

std::string GoldenFolder()
{
    return DataFile("golden");
}

std::vector<std::string> GoldenNames()
{
    std::vector<std::string> names;
    for (const std::string& path : GoldenDocuments()) {
        names.push_back(std::filesystem::path(path).stem().string());
    }
    return names;
}

nlohmann::json ExpectedJson(const std::string& fileName)
{
    return ForThisLong(nlohmann::json::parse(ReadFile(GoldenFolder() + "/" + fileName)));
}

std::string GoldenTestName(const testing::TestParamInfo<std::string>& info)
{
    std::string name = info.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

testing::AssertionResult SameJson(const nlohmann::json& expected, const nlohmann::json& actual)
{
    if (expected == actual) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "expected data and result differ:\n"
                                       << nlohmann::json::diff(expected, actual).dump(1);
}

GoldenFixture::GoldenFixture() : m_former(std::filesystem::current_path().string())
{
    std::filesystem::current_path(GoldenFolder());
    CDeviceFootprint::DisableExceptions();
    CDeviceFootprint::SetLastError("");
}

GoldenFixture::~GoldenFixture()
{
    std::filesystem::current_path(m_former);
}

} // namespace NyxTest
