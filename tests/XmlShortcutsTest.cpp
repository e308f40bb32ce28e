// Where the reader and the writer take a shorter way: the cases at which they must not.

#include "DeviceFootprint.h"
#include "ElementText.h"
#include "Files.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <list>
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

/// Names whose openings are just as long as there is room for, and one longer.
class CFullNames : public CElement<CFullNames>
{
    DFP_ELEMENT(CFullNames, "FullNames")

public:
    DFP_ATTRIBUTE(aNameOfTwentyEightCharacters);
    DFP_ATTRIBUTE(aNameOfTwentyNineCharactersEx);
    DFP_ELEMENT_END
};

/// An attribute with a name of its own.
class CNamedAttribute : public CAttribute
{
public:
    using CAttribute::CAttribute;
    using CAttribute::operator=;
    const std::string& GetNodeName() const override
    {
        static const std::string name("zulu");
        return name;
    }
};

/// An attribute that does not take the name that it is given.
class CStubbornAttribute : public CAttribute
{
public:
    explicit CStubbornAttribute(const CNodeName& /*name*/) : CAttribute("yankee") {}
    using CAttribute::operator=;
};

class COwnNames : public CElement<COwnNames>
{
    DFP_ELEMENT(COwnNames, "OwnNames")

public:
    DFP_ATTRIBUTE_OF(CNamedAttribute, first);
    DFP_ATTRIBUTE_OF(CStubbornAttribute, second);
    DFP_ATTRIBUTE(third);
    DFP_ELEMENT_END
};

/// An element that says itself whether it is empty.
class CSilent : public CElement<CSilent>
{
    DFP_ELEMENT(CSilent, "Silent")

public:
    bool IsEmpty() const override { return m_isSilent; }

    DFP_ATTRIBUTE(text);
    DFP_ELEMENT_END

public:
    bool m_isSilent = true;
};

class CFootprintWithChildren : public CDeviceFootprint
{
public:
    void GetChildElements(std::list<CElementNode*>& children) const override
    {
        CDeviceFootprint::GetChildElements(children);
        children.push_back(const_cast<CSilent*>(&m_silent));
        children.push_back(const_cast<COwnNames*>(&m_ownNames));
    }

    CSilent m_silent;
    COwnNames m_ownNames;
};

/// A document with an attribute of the application's.
class CLongNamedFootprint : public CDeviceFootprint
{
public:
    CLongNamedFootprint() { AddAttributeNode(m_long); }

    CAttribute m_long{longName};
};

DFP_DEFINE_ELEMENT(CLongNames)
DFP_DEFINE_ELEMENT(CFullNames)
DFP_DEFINE_ELEMENT(COwnNames)
DFP_DEFINE_ELEMENT(CSilent)

/// Uses what the tables define, all of it.
template<class Element>
Element Copied(const Element& element)
{
    Element copy(element);
    copy = element;
    Element moved(std::move(copy));
    copy = std::move(moved);
    return copy;
}

std::string DigestOf(CDeviceFootprint& footprint)
{
    std::string digest;
    EXPECT_TRUE(footprint.ComputeChecksum(digest));
    return digest;
}

} // namespace

TEST(XmlShortcutsTest, LongNamesAreRead)
{
    const std::string tag = "<LongNames first=\"1\" " + std::string(longName) + "=\"2 &amp; 3\" last=\"4\"";
    CLongNames element;
    ASSERT_TRUE(LoadText(element, tag + "/>\n</Parent>\n"));
    EXPECT_EQ(element.m_first.GetValue(), L"1");
    EXPECT_EQ(element.m_aNameThatIsLongerThanMostNamesAre.GetValue(), L"2 & 3");
    EXPECT_EQ(element.m_last.GetValue(), L"4");
    CLongNames copy = Copied(element);
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

TEST(XmlShortcutsTest, NamesThatFillTheirRoomAreReadAndWritten)
{
    const std::string tag = "<FullNames aNameOfTwentyEightCharacters=\"1\" aNameOfTwentyNineCharactersEx=\"2\"";
    CFullNames element;
    ASSERT_TRUE(LoadText(element, tag + "/>\n</Parent>\n"));
    EXPECT_EQ(element.m_aNameOfTwentyEightCharacters.GetValue(), L"1");
    EXPECT_EQ(element.m_aNameOfTwentyNineCharactersEx.GetValue(), L"2");
    CFullNames copy = Copied(element);
    EXPECT_EQ(SaveText(copy), tag);
}

TEST(XmlShortcutsTest, AnAttributeClassHasTheLastWordOnItsName)
{
    const std::string tag = "<OwnNames zulu=\"1\" yankee=\"2\" third=\"3\"";
    COwnNames element;
    ASSERT_TRUE(LoadText(element, tag + "/>\n</Parent>\n"));
    EXPECT_EQ(element.m_first.GetValue(), L"1");
    EXPECT_EQ(element.m_second.GetValue(), L"2");
    EXPECT_EQ(element.m_third.GetValue(), L"3");
    COwnNames copy = Copied(element);
    EXPECT_EQ(SaveText(copy), tag);
    ASSERT_TRUE(LoadText(element, "<OwnNames first=\"1\" second=\"2\" third=\"3\"/>\n</Parent>\n"));
    EXPECT_EQ(element.m_first.GetValue(), L"");
    EXPECT_EQ(element.m_second.GetValue(), L"");
    EXPECT_EQ(element.m_third.GetValue(), L"3");
}

TEST(XmlShortcutsTest, TheChecksumSortsByTheNamesThatAttributesHave)
{
    // In the order of the names in the table the digest would be another one.
    CFootprintWithChildren footprint;
    footprint.m_ownNames.m_first = "1";
    footprint.m_ownNames.m_second = "2";
    footprint.m_ownNames.m_third = "3";
    CMD5Checksum algorithm;
    algorithm.init();
    algorithm.add(std::string("formatVersion=\"02.06\"third=\"3\"yankee=\"2\"zulu=\"1\""));
    CMD5ChecksumContainer expected;
    ASSERT_TRUE(algorithm.finalize(expected));
    std::string text;
    ASSERT_TRUE(expected.toHex(text));
    EXPECT_EQ(DigestOf(footprint), text);
}

TEST(XmlShortcutsTest, AnElementThatSaysItIsEmptyIsNotInTheChecksum)
{
    CFootprintWithChildren footprint;
    footprint.m_silent.m_text = "text";
    CFootprintWithChildren without;
    EXPECT_EQ(DigestOf(footprint), DigestOf(without));
    footprint.m_silent = Copied(footprint.m_silent);
    footprint.m_silent.m_isSilent = false;
    EXPECT_NE(DigestOf(footprint), DigestOf(without));
}

TEST(XmlShortcutsTest, ARenamedAttributeIsWrittenReadAndSortedByItsNewName)
{
    for (const bool isMoved : {false, true}) {
        CLongNames element;
        CAttribute renamed("zulu");
        renamed = "1";
        if (isMoved) {
            element.m_first = std::move(renamed);
        } else {
            element.m_first = renamed;
        }
        element.m_last = "2";
        EXPECT_EQ(SaveText(element), "<LongNames zulu=\"1\" last=\"2\"");
        ASSERT_TRUE(LoadText(element, "<LongNames first=\"3\" last=\"4\" zulu=\"5\"/>\n</Parent>\n"));
        EXPECT_EQ(element.m_first.GetValue(), L"5");
        EXPECT_EQ(element.m_last.GetValue(), L"4");
    }
}

TEST(XmlShortcutsTest, WhatIsNoReferenceStays)
{
    const struct
    {
        const char* value;
        const wchar_t* expected;
    } rows[] = {
        {"&#;", L"&#;"},
        {"&#x;", L"&#x;"},
        {"&#x", L"&#x"},
        {"&#", L"&#"},
        {"&", L"&"},
        {"&;", L"&;"},
        {"&#65", L"&#65"},
        {"&#65&amp;", L"&#65&"},
        {"&am&amp;", L"&am&"},
        {"&&amp;;", L"&&;"},
        {"&#6a;", L"&#6a;"},
        {"&#xg;", L"&#xg;"},
        {"&#x4a;&#x4A;", L"JJ"},
        {"&#0065;", L"A"},
        {"&#4294967361;", L"A"}, // modulo 2^32
        {"&amp", L"&amp"},
        {"&ampx;", L"&ampx;"},
        {"&amp;amp;", L"&amp;"},
        {"&lt;&gt;&quot;&apos;", L"<>\"'"},
    };
    for (const auto& row : rows) {
        // The second way is that for a line that is not ASCII.
        for (const std::string& last : {std::string("a"), std::string("\xC3\xBC")}) {
            CLongNames element;
            ASSERT_TRUE(LoadText(element, "<LongNames first=\"" + std::string(row.value) + "\" last=\"" + last +
                                              "\"/>\n</Parent>\n"));
            EXPECT_EQ(element.m_first.GetValue(), row.expected) << row.value;
        }
    }
}

TEST(XmlShortcutsTest, CharactersAreEscapedAsTheirRangeSays)
{
    std::wstring value;
    std::string expected;
    for (int code = 1; code < 300; ++code) {
        value += static_cast<wchar_t>(code);
        switch (code) {
        case '&':
            expected += "&amp;";
            break;
        case '<':
            expected += "&lt;";
            break;
        case '>':
            expected += "&gt;";
            break;
        case '"':
            expected += "&quot;";
            break;
        case '\'':
            expected += "&apos;";
            break;
        default:
            if (code < 0x20 || code > 0x7E) {
                expected += "&#" + std::to_string(code) + ";";
            } else {
                expected += static_cast<char>(code);
            }
        }
    }
    CLongNames element;
    element.m_first = value;
    EXPECT_EQ(SaveText(element), "<LongNames first=\"" + expected + "\"");
    CDeviceFootprint footprint;
    footprint.m_generatedBy = value;
    std::string text;
    ASSERT_TRUE(footprint.GetDeviceFootprintString(false, text));
    EXPECT_NE(text.find(" generatedBy=\"" + expected + "\""), std::string::npos) << text;
}

TEST(XmlShortcutsTest, CharactersAreEscapedWhereverTheyStand)
{
    const std::pair<wchar_t, std::string> escaped[] = {{L'&', "&amp;"}, {L'\xE9', "&#233;"}, {L'\x20AC', "&#8364;"}};
    for (std::size_t length = 1; length < 10; ++length) {
        for (std::size_t first = 0; first < length; ++first) {
            for (std::size_t second = first; second < length; ++second) {
                for (const auto& [character, text] : escaped) {
                    std::wstring value;
                    std::string expected;
                    for (std::size_t place = 0; place < length; ++place) {
                        const bool isEscaped = place == first || place == second;
                        value += isEscaped ? character : static_cast<wchar_t>(L'a' + place);
                        expected += isEscaped ? text : std::string(1, static_cast<char>('a' + place));
                    }
                    CDeviceFootprint footprint;
                    footprint.m_generatedBy = value;
                    std::string saved;
                    ASSERT_TRUE(footprint.GetDeviceFootprintString(false, saved));
                    EXPECT_NE(saved.find(" generatedBy=\"" + expected + "\""), std::string::npos) << saved;
                }
            }
        }
    }
}
