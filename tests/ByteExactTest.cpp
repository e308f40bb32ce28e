#include "DeviceFootprint.h"
#include "FakeClock.h"
#include "Files.h"
#include "FillFootprint.h"
#include "ForeignLocale.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

/// Sets every attribute of every element.
void SetEverything(CDeviceFootprint& footprint)
{
    footprint.m_deviceData.m_productDate = "\xE4\xFF"; // sign-extended
    footprint.m_deviceData.m_upgradeType.SetBool(true);
    footprint.m_deviceData.m_maintenanceData.m_operatingHours = -2147483647L - 1;
    footprint.m_deviceData.m_maintenanceData.m_makeAndBreakCycles = 2147483647L;
    std::wstring edges;
    for (const unsigned value : {0x80U, 0xD800U, 0x10FFFFU, 0x80000000U}) {
        edges += static_cast<wchar_t>(value);
    }
    footprint.m_softwareData.m_bios.m_version = edges;
    FillFootprint(footprint, {2, 2, 2});
    CConnectedDeviceList& devices = *footprint.m_pConnectedDevices;
    EXPECT_TRUE(devices.AddConnectedDeviceFromString("<?xml ?>\n<DeviceFootprint formatVersion=\"02.05\">\n"
                                                     "  <DeviceData deviceId=\"&#228;\"/>\n</DeviceFootprint>\n"));
    EXPECT_TRUE(devices.AddConnectedDeviceFromString(
        "<?xml ?>\n<DeviceFootprint formatVersion=\"02.06\" "
        "checksum=\"0a\">\n  <DeviceData  deviceId=\"b\"/>\n</DeviceFootprint>\n"));
}

std::string SavedText(CDeviceFootprint& footprint)
{
    const FakeClock clock;
    std::string text;
    EXPECT_TRUE(footprint.GetDeviceFootprintString(true, text));
    return text;
}

/// Equality that shows the first line that differs, not two whole documents.
void ExpectSameText(const std::string& text, const std::string& expected)
{
    std::istringstream lines(text);
    std::istringstream expectedLines(expected);
    std::string line;
    std::string expectedLine;
    for (int number = 1; std::getline(expectedLines, expectedLine); ++number) {
        ASSERT_TRUE(std::getline(lines, line)) << "ends before line " << number;
        ASSERT_EQ(line, expectedLine) << "line " << number;
    }
    EXPECT_TRUE(text == expected) << "more lines, or other line ends";
}

// The expected file was made without the library, by full-footprint.py beside it. Every build gives its bytes, whatever
// the size of its words.
TEST(ByteExactTest, ADocumentWithAllAttributesHasTheExpectedBytes)
{
    CDeviceFootprint footprint;
    SetEverything(footprint);
    ExpectSameText(SavedText(footprint), ReadFile(DataFile("full-footprint.xml")));
}

TEST(ByteExactTest, TheLocaleOfTheProcessDoesNotCount)
{
    const ForeignLocale locale;
    CDeviceFootprint footprint;
    SetEverything(footprint);
    ExpectSameText(SavedText(footprint), ReadFile(DataFile("full-footprint.xml")));
}

TEST(ByteExactTest, AFileIsTheSameAsAText)
{
    const FakeClock clock;
    CDeviceFootprint footprint;
    SetEverything(footprint);
    std::ostringstream output;
    footprint.m_creationDate.SetCreationDateToCurrent();
    ASSERT_TRUE(footprint.SaveInternal(output, "", false));
    ExpectSameText(output.str(), ReadFile(DataFile("full-footprint.xml")));
}

TEST(ByteExactTest, TheExpectedFileIsLoadedAndSavedAgain)
{
    CDeviceFootprint footprint;
    ASSERT_TRUE(footprint.Load(DataFile("full-footprint.xml")));
    // The device whose checksum was taken over untested is a parsed one now, and wrong.
    EXPECT_FALSE(footprint.m_pConnectedDevices->back().ValidateChecksum());
    footprint.m_pConnectedDevices->pop_back();
    const std::string text = SavedText(footprint);
    CDeviceFootprint again;
    std::istringstream input(text);
    ASSERT_TRUE(again.Load(input));
    EXPECT_TRUE(again.ValidateChecksum());
    ExpectSameText(SavedText(again), text);
}

} // namespace
