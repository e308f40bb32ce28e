// Where the reader and the writer take a shorter way: the cases at which they must not.

#include "DeviceFootprint.h"
#include "ElementText.h"
#include "Files.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace
{

using namespace KvDeviceFootprint;
using NyxTest::LoadText;
using NyxTest::SaveText;
using NyxTest::TempFolder;
using NyxTest::WriteFile;

/// The opening of this name in a file takes more than 32 bytes.
const char* const longName = "aNameThatIsLongerThanMostNamesAre";

class CLongNames : public CElement<CLongNames>
{
    DFP_ELEMENT(CLongNames, "LongNames")

public:
    DFP_ATTRIBUTE(first);
    DFP_ATTRIBUTE(aNameThatIsLongerThanMostNamesAre);
    DFP_ATTRIBUTE(last);
    DFP_ELEMENT_END
};

/// A document with an attribute of the application's.
class CLongNamedFootprint : public CDeviceFootprint
{
public:
    CLongNamedFootprint() { AddAttributeNode(m_long); }

    CAttribute m_long{longName};
};

DFP_DEFINE_ELEMENT(CLongNames)

} // namespace

TEST(XmlShortcutsTest, LongNamesAreRead)
{
    const std::string tag = "<LongNames first=\"1\" " + std::string(longName) + "=\"2 &amp; 3\" last=\"4\"";
    CLongNames element;
    ASSERT_TRUE(LoadText(element, tag + "/>\n</Parent>\n"));
    EXPECT_EQ(element.m_first.GetValue(), L"1");
    EXPECT_EQ(element.m_aNameThatIsLongerThanMostNamesAre.GetValue(), L"2 & 3");
    EXPECT_EQ(element.m_last.GetValue(), L"4");
    CLongNames copy(element);
    copy = element;
    CLongNames moved(std::move(copy));
    copy = std::move(moved);
    EXPECT_EQ(SaveText(copy), tag);
}

TEST(XmlShortcutsTest, LongNamesAreWrittenAndDigested)
{
    CLongNamedFootprint footprint;
    footprint.m_creationDate = "2024-02-29T12:30:00";
    footprint.m_deviceData.m_deviceId = "1234.5678.02-100123-ab";
    std::string without;
    ASSERT_TRUE(footprint.ComputeChecksum(without));
    footprint.m_long = "value";
    std::string with;
    ASSERT_TRUE(footprint.ComputeChecksum(with));
    EXPECT_NE(with, without);
    std::string text;
    ASSERT_TRUE(footprint.GetDeviceFootprintString(false, text));
    EXPECT_NE(text.find(" " + std::string(longName) + "=\"value\">\n"), std::string::npos) << text;
}

TEST(XmlShortcutsTest, ALineInTwoReadsKeepsWhatStandsInTheFirst)
{
    // Only ASCII comes with the second read of the file.
    const TempFolder folder;
    const std::string filling(70000, 'x');
    WriteFile(folder / "in.xml", "<DeviceFootprint formatVersion=\"02.06\" generatedBy=\"\xC3\xBC" + filling +
                                     "\">\n</DeviceFootprint>\n");
    CDeviceFootprint footprint;
    ASSERT_TRUE(footprint.Load(folder / "in.xml")) << CDeviceFootprint::GetLastError();
    EXPECT_EQ(footprint.m_generatedBy.GetValue(), L"\xFC" + std::wstring(filling.begin(), filling.end()));
}
