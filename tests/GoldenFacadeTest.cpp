// The documents of data/golden through the facade: items, messages on all streams, exceptions.

#include "CNyxConfig.h"
#include "DeviceFootprint.h"
#include "FacadeItems.h"
#include "GoldenData.h"
#include "ItemDump.h"
#include "JsonText.h"
#include "StreamCapture.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <iostream>
#include <regex>
#include <stdexcept>
#include <string>

using namespace KvOrdo;
using namespace NyxTest;
using KvDeviceFootprint::CDeviceFootprint;
using Json = nlohmann::json;

namespace
{

/// The stream objects that some messages write by their address.
template<class Char>
std::basic_string<Char> WithoutAddresses(const std::basic_string<Char>& text, const Char* address, const Char* mark)
{
    return std::regex_replace(text, std::basic_regex<Char>(address), mark);
}

Json ExceptionOfLoad(CNyxConfig& config, const std::string& fileName, bool throwOnError)
{
    try {
        config.loadFile(fileName, throwOnError);
    } catch (const CNyxConfigException& exception) {
        return {{"kind", "CNyxConfigException"}, {"text", JsonText(exception.getMessage())}};
    } catch (const std::out_of_range& exception) {
        return {{"kind", "out_of_range"}, {"text", exception.what()}};
    }
    return nullptr;
}

Json LoadAndDump(const std::string& fileName, bool throwOnError)
{
    CNyxConfig config;
    const StreamCapture output(std::cout);
    const StreamCapture narrowErrors(std::cerr);
    const WideStreamCapture wideErrors(std::wcerr);
    Json dump;
    dump["exception"] = ExceptionOfLoad(config, fileName, throwOnError);
    dump["stdout"] = JsonText(output.Text());
    dump["narrowErr"] = JsonText(WithoutAddresses(narrowErrors.Text(), "0x[0-9a-f]+", "<ADDR>"));
    dump["wideErr"] = JsonText(WithoutAddresses(wideErrors.Text(), L"0x[0-9a-f]+", L"<ADDR>"));
    dump["lastError"] = JsonText(CDeviceFootprint::GetLastError());
    dump["items"] = DumpItems(config);
    DeleteItems(config);
    return dump;
}

class GoldenFacadeTest : public GoldenFixture
{
};

TEST_P(GoldenFacadeTest, LoadGivesTheItemsAndMessages)
{
    EXPECT_TRUE(SameJson(ExpectedJson(GetParam() + ".facade.json").at("throw0"), LoadAndDump(Document(), false)));
}

TEST_P(GoldenFacadeTest, ThrowingLoadGivesTheItemsAndMessages)
{
    EXPECT_TRUE(SameJson(ExpectedJson(GetParam() + ".facade.json").at("throw1"), LoadAndDump(Document(), true)));
}

INSTANTIATE_TEST_SUITE_P(Documents, GoldenFacadeTest, testing::ValuesIn(GoldenNames()), GoldenTestName);

} // namespace
