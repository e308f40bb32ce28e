#include "DeviceFootprint.h"
#include "DocumentTest.h"
#include "ElementText.h"
#include "Files.h"
#include "FillFootprint.h"
#include "Random.h"
#include "ReferenceMd5.h"
#include "XmlText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <list>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

using DocumentChecksumTest = DocumentTest;

std::string Digest(CDeviceFootprintData& data)
{
    std::string digest = "former";
    EXPECT_TRUE(data.ComputeChecksum(digest));
    EXPECT_EQ(digest.size(), 32U);
    return digest;
}

CDeviceFootprint Loaded(const std::string& text)
{
    CDeviceFootprint footprint;
    std::istringstream input(text);
    EXPECT_TRUE(footprint.Load(input)) << text.substr(0, 2000);
    return footprint;
}

/// A document with all there is, in the form of a file.
std::string FullText(const FillAmount& amount = {2, 2, 2})
{
    const FakeClock clock;
    CDeviceFootprint footprint;
    FillFootprint(footprint, amount);
    std::string text;
    EXPECT_TRUE(footprint.GetDeviceFootprintString(true, text));
    return text;
}

// --- computing ------------------------------------------------------------------------------------------------------

TEST_F(DocumentChecksumTest, CoversTheRootsAttributesAndChildrenByName)
{
    m_footprint.m_formatVersion = "02.06";
    m_footprint.m_creationDate.Set(std::string("2001-01-01T00:00:00"));
    m_footprint.m_generatedBy = "me";
    m_footprint.m_checksum.Set(L"does not enter");
    m_footprint.m_hardwareData.m_productList.CreateEntry().m_id = 2L;
    m_footprint.m_softwareData.m_bios.m_name = "b";
    m_footprint.m_pConnectedDevices->CreateEntry().m_generatedBy = "device";
    EXPECT_EQ(Digest(m_footprint),
              ReferenceMd5Hex("creationDate=\"2001-01-01T00:00:00\"formatVersion=\"02.06\"generatedBy=\"me\""
                              "formatVersion=\"02.06\"generatedBy=\"device\""
                              "deviceId=\"1111.2222.33-100001-x\"id=\"2\"name=\"b\""));
}

TEST_F(DocumentChecksumTest, AgreesWithTheTextOfTheFile)
{
    for (const FillAmount& amount :
         {FillAmount{1, 1, 0}, FillAmount{2, 2, 0}, FillAmount{3, 1, 1}, FillAmount{2, 2, 2}}) {
        const std::string text = FullText(amount);
        XmlElement root = ParseXml(text);
        ASSERT_EQ(ToXmlText(root), text);
        EXPECT_EQ(root.Attribute("checksum"), ReferenceMd5Hex(CanonicalText(root)));
        // Each connected device has the checksum of its own content.
        for (XmlElement& child : root.children) {
            child.ForEach([](XmlElement& element) {
                if (element.name == "ConnectedDevice") {
                    EXPECT_EQ(element.Attribute("checksum"), ReferenceMd5Hex(CanonicalText(element)));
                }
            });
        }
    }
}

TEST_F(DocumentChecksumTest, ComputingLeavesTheAttributeEmpty)
{
    m_footprint.m_checksum.Set(L"former");
    const std::string digest = Digest(m_footprint);
    EXPECT_TRUE(m_footprint.m_checksum.IsEmpty());
    EXPECT_EQ(Digest(m_footprint), digest);

    CConnectedDevice& device = m_footprint.m_pConnectedDevices->CreateEntry();
    device.m_checksum.Set(L"wrong");
    m_footprint.m_checksum.Set(L"former");
    std::string text;
    EXPECT_FALSE(m_footprint.ComputeChecksum(text));
    EXPECT_TRUE(m_footprint.m_checksum.IsEmpty());
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
}

TEST_F(DocumentChecksumTest, AnEmptyDocumentHasTheDigestOfNoBytes)
{
    CDeviceFootprint empty;
    empty.m_formatVersion.Clear();
    EXPECT_EQ(Digest(empty), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST_F(DocumentChecksumTest, AConnectedDeviceComputesItsOwnContent)
{
    CConnectedDevice device;
    device.m_generatedBy = "x";
    device.m_checksum.Set(L"wrong");
    EXPECT_EQ(Digest(device), ReferenceMd5Hex("formatVersion=\"02.06\"generatedBy=\"x\""));
    EXPECT_TRUE(device.m_checksum.IsEmpty());
}

TEST_F(DocumentChecksumTest, ValuesEnterAsTheyStandInAFile)
{
    CDeviceFootprint footprint;
    footprint.m_formatVersion.Clear();
    footprint.m_generatedBy = L"a & b \u00e4";
    EXPECT_EQ(Digest(footprint), ReferenceMd5Hex("generatedBy=\"a &amp; b &#228;\""));
}

TEST_F(DocumentChecksumTest, EachSaveStoresTheDigestOfItsContent)
{
    const auto expectRight = [this](const std::string& text) {
        EXPECT_EQ(ParseXml(text).Attribute("checksum"), ReferenceMd5Hex(CanonicalText(ParseXml(text))));
        EXPECT_EQ(ParseXml(text).Attribute("checksum"), Text(m_footprint.m_checksum));
    };
    ASSERT_TRUE(m_footprint.Save(m_folder.Path()));
    expectRight(ReadFile(m_footprint.GetFullFilenameOfLastSave()));
    const std::string first = Text(m_footprint.m_checksum);

    // The date is covered like any other attribute.
    m_clock.Advance(1);
    ASSERT_TRUE(m_footprint.SaveAs(m_folder / "f.xml"));
    expectRight(ReadFile(m_folder / "f.xml"));
    EXPECT_NE(Text(m_footprint.m_checksum), first);

    m_clock.Advance(1);
    std::string text;
    ASSERT_TRUE(m_footprint.GetDeviceFootprintString(true, text));
    expectRight(text);
    std::ostringstream output;
    m_footprint.m_generatedBy = "x";
    ASSERT_TRUE(m_footprint.SaveInternal(output, "", false));
    expectRight(output.str());
}

TEST_F(DocumentChecksumTest, WriteToWritesTheChecksumAsItStands)
{
    m_footprint.m_checksum.Set(L"as it stands");
    std::ostringstream output;
    COutStream stream(output);
    const std::string name = "name";
    CXmlStreamWriter writer(stream, name);
    EXPECT_TRUE(m_footprint.WriteTo(writer));
    EXPECT_EQ(output.str(), xmlDeclaration + "<DeviceFootprint formatVersion=\"02.06\" checksum=\"as it stands\">\n"
                                             "  <DeviceData deviceId=\"1111.2222.33-100001-x\"/>\n"
                                             "</DeviceFootprint>\n");
}

// --- validating -----------------------------------------------------------------------------------------------------

TEST_F(DocumentChecksumTest, NoChecksumIsValid)
{
    FillFootprint(m_footprint);
    EXPECT_TRUE(m_footprint.ValidateChecksum());
    EXPECT_TRUE(m_footprint.m_checksum.IsEmpty());

    // Not even a wrong connected device is looked at.
    m_footprint.m_pConnectedDevices->CreateEntry().m_checksum.Set(L"wrong");
    EXPECT_TRUE(m_footprint.ValidateChecksum());
}

TEST_F(DocumentChecksumTest, TheRightOneIsValidInItsOwnDigitsOnly)
{
    FillFootprint(m_footprint);
    const std::string right = Digest(m_footprint);
    std::string upper = right;
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char digit) {
        return digit >= 'a' && digit <= 'f' ? static_cast<char>(digit - 'a' + 'A') : digit;
    });
    ASSERT_NE(upper, right);
    const std::pair<std::string, bool> rows[] = {
        {right, true},        {upper, false},         {right + " ", false},          {right.substr(1), false},
        {" " + right, false}, {right + right, false}, {std::string(32, '0'), false}, {"x", false}};
    for (const auto& [text, valid] : rows) {
        m_footprint.m_checksum.Set(text);
        const std::string before = SaveText(m_footprint);
        EXPECT_EQ(m_footprint.ValidateChecksum(), valid) << text;
        EXPECT_EQ(Text(m_footprint.m_checksum), text);
        EXPECT_EQ(SaveText(m_footprint), before);
    }
    // Wide characters that narrow to the right digits: the comparison is one of narrow texts.
    std::wstring wide = WidenText(right);
    wide[0] += 0x100;
    m_footprint.m_checksum.Set(wide);
    EXPECT_TRUE(m_footprint.ValidateChecksum());
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
}

TEST_F(DocumentChecksumTest, WhatCanNotBeComputedIsInvalidAndLosesItsChecksum)
{
    CConnectedDevice& device = m_footprint.m_pConnectedDevices->CreateEntry();
    m_footprint.m_checksum.Set(Digest(m_footprint));
    ASSERT_TRUE(m_footprint.ValidateChecksum());
    device.m_checksum.Set(L"wrong");
    EXPECT_FALSE(m_footprint.ValidateChecksum());
    EXPECT_TRUE(m_footprint.m_checksum.IsEmpty());
    EXPECT_EQ(Text(device.m_checksum), "wrong");
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
}

// --- connected devices ----------------------------------------------------------------------------------------------

TEST_F(DocumentChecksumTest, ADeviceWithAChecksumEntersWithThatAlone)
{
    CDeviceFootprint footprint;
    footprint.m_formatVersion.Clear();
    const auto add = [&footprint](const char* by) -> CConnectedDevice& {
        CConnectedDevice& device = footprint.m_pConnectedDevices->CreateEntry();
        device.m_formatVersion.Clear();
        device.m_generatedBy = by;
        return device;
    };
    CConnectedDevice& first = add("1");
    add("2");
    first.m_checksum.Set(Digest(first));
    footprint.m_pConnectedDevices->m_connectedDeviceStrings = {
        {"<ConnectedDevice checksum=\"raw\">", "<Bios checksum=\"no\"/>", "</ConnectedDevice"},
        {"<ConnectedDevice>", "</ConnectedDevice"}};
    // Entries come before raw devices, each in the order of the list.
    EXPECT_EQ(Digest(footprint), ReferenceMd5Hex("checksum=\"" + ReferenceMd5Hex("generatedBy=\"1\"") +
                                                 "\"generatedBy=\"2\"checksum=\"raw\""));
    EXPECT_EQ(Text(first.m_checksum), ReferenceMd5Hex("generatedBy=\"1\""));
}

TEST_F(DocumentChecksumTest, AChangeInADeviceMakesItsParentFail)
{
    CConnectedDevice& device = m_footprint.m_pConnectedDevices->CreateEntry();
    device.m_checksum.Set(Digest(device));
    const std::string digest = Digest(m_footprint);
    m_footprint.m_checksum.Set(digest);
    device.m_generatedBy = "changed";
    EXPECT_FALSE(m_footprint.ValidateChecksum());
    // With its checksum kept up to date, the parent's digest changes.
    device.m_checksum.Set(Digest(device));
    EXPECT_NE(Digest(m_footprint), digest);
    // Undone, the parent's digest is the old one.
    device.m_generatedBy.Clear();
    device.m_checksum.Set(Digest(device));
    EXPECT_EQ(Digest(m_footprint), digest);
}

TEST_F(DocumentChecksumTest, ThreeLevelsOfDevicesValidateAndAreSavedAgain)
{
    const std::string text = FullText({2, 1, 3});
    CDeviceFootprint loaded = Loaded(text);
    EXPECT_TRUE(loaded.ValidateChecksum());
    std::string again;
    ASSERT_TRUE(loaded.GetDeviceFootprintString(false, again));
    EXPECT_EQ(again, text);

    // A change at the bottom shows at each level above it.
    for (std::size_t level = 0; level < 3; ++level) {
        CDeviceFootprint changed = Loaded(text);
        CConnectedDevice& first = changed.m_pConnectedDevices->front();
        CConnectedDevice& second = first.m_pConnectedDevices->back();
        CConnectedDevice& third = second.m_pConnectedDevices->front();
        for (CConnectedDevice* device : {&first, &second, &third}) {
            EXPECT_FALSE(device->m_checksum.IsEmpty());
            EXPECT_TRUE(device->ValidateChecksum());
        }
        third.m_deviceData.m_maintenanceData.m_operatingHours = 1L;
        const std::vector<CDeviceFootprintData*> above = {&changed, &first, &second};
        EXPECT_FALSE(above[level]->ValidateChecksum()) << level;
        // Those whose digest could not be computed have lost their checksums; the wrong one itself has not.
        EXPECT_TRUE(above[level]->m_checksum.IsEmpty()) << level;
        EXPECT_TRUE(second.m_checksum.IsEmpty()) << level;
        EXPECT_FALSE(third.m_checksum.IsEmpty());
        EXPECT_FALSE(third.ValidateChecksum());
        EXPECT_FALSE(changed.GetDeviceFootprintString(false, again)) << level;
    }
}

// --- properties of saved files --------------------------------------------------------------------------------------

template<class T>
void Shuffle(std::vector<T>& items, Random& random)
{
    for (std::size_t i = items.size(); i > 1; --i) {
        std::swap(items[i - 1], items[random.Below(i)]);
    }
}

/// Puts the children into another order; those of one name keep theirs among themselves.
void ShuffleDifferentNames(std::vector<XmlElement>& children, Random& random)
{
    std::vector<XmlElement> rest = std::move(children);
    children.clear();
    while (!rest.empty()) {
        const std::string name = rest[random.Below(rest.size())].name;
        const auto next = std::find_if(rest.begin(), rest.end(), [&](const XmlElement& e) { return e.name == name; });
        children.push_back(std::move(*next));
        rest.erase(next);
    }
}

TEST_F(DocumentChecksumTest, TheOrderOfAttributesAndOfDifferentChildrenDoesNotCount)
{
    Random random;
    const XmlElement original = ParseXml(FullText());
    std::string former = ToXmlText(original);
    for (int round = 0; round < 30; ++round) {
        XmlElement root = original;
        root.ForEach([&random](XmlElement& element) {
            Shuffle(element.attributes, random);
            ShuffleDifferentNames(element.children, random);
        });
        const std::string text = ToXmlText(root);
        ASSERT_NE(text, former);
        ASSERT_TRUE(Loaded(text).ValidateChecksum()) << "seed " << TestSeed() << ", round " << round;
        former = text;
    }
}

TEST_F(DocumentChecksumTest, TheAttributesOfAnySingleLineCanChangePlaces)
{
    const XmlElement original = ParseXml(FullText({2, 2, 0}));
    std::size_t count = 0;
    XmlElement(original).ForEach([&count](XmlElement& /*element*/) { ++count; });
    for (std::size_t chosen = 0; chosen < count; ++chosen) {
        XmlElement root = original;
        std::size_t index = 0;
        root.ForEach([&](XmlElement& element) {
            if (index++ == chosen) {
                std::reverse(element.attributes.begin(), element.attributes.end());
            }
        });
        ASSERT_TRUE(Loaded(ToXmlText(root)).ValidateChecksum()) << "element " << chosen;
    }
}

TEST_F(DocumentChecksumTest, TheOrderOfEntriesCounts)
{
    const XmlElement original = ParseXml(FullText());
    std::size_t lists = 0;
    XmlElement(original).ForEach([&lists](XmlElement& element) {
        lists += element.children.size() == 2 && element.children[0].name == element.children[1].name;
    });
    ASSERT_GT(lists, 100U);
    Random random;
    for (int round = 0; round < 100; ++round) {
        // The first lists of the walk are the large ones.
        const std::size_t chosen = round < 20 ? static_cast<std::size_t>(round) : random.Below(lists);
        XmlElement root = original;
        std::size_t index = 0;
        root.ForEach([&](XmlElement& element) {
            if (element.children.size() == 2 && element.children[0].name == element.children[1].name &&
                index++ == chosen) {
                std::swap(element.children[0], element.children[1]);
            }
        });
        ASSERT_FALSE(Loaded(ToXmlText(root)).ValidateChecksum()) << "seed " << TestSeed() << ", list " << chosen;
    }
}

/// A character that changes the value in its place, and does not end it.
char OtherCharacter(char character, Random& random)
{
    static const std::string choices = "abxyzABXYZ0123456789 .;&#-'";
    char other = character;
    while (other == character) {
        other = choices[random.Below(choices.size())];
    }
    return other;
}

TEST_F(DocumentChecksumTest, AnyCharacterOfAnyValueOfAFileCounts)
{
    Random random;
    const std::string text = FullText({1, 1, 1});
    std::size_t changes = 0;
    bool inValue = false;
    for (std::size_t at = text.find('\n'); at < text.size(); ++at) {
        if (text[at] == '"') {
            inValue = !inValue;
        } else if (inValue) {
            std::string changed = text;
            changed[at] = OtherCharacter(text[at], random);
            ASSERT_FALSE(Loaded(changed).ValidateChecksum())
                << "seed " << TestSeed() << ": " << text.substr(at - 20, 40) << " with " << changed[at];
            ++changes;
        }
    }
    EXPECT_GT(changes, 1000U);
}

TEST_F(DocumentChecksumTest, AValueMovedToAnotherAttributeCounts)
{
    Random random;
    const XmlElement original = ParseXml(FullText());
    std::vector<std::size_t> movable;
    std::size_t index = 0;
    XmlElement(original).ForEach([&](XmlElement& element) {
        if (element.attributes.size() > 1) {
            movable.push_back(index);
        }
        ++index;
    });
    for (int round = 0; round < 100; ++round) {
        const std::size_t chosen = random.OneOf(movable);
        XmlElement root = original;
        index = 0;
        root.ForEach([&](XmlElement& element) {
            if (index++ == chosen) {
                std::swap(element.attributes[0].second, element.attributes[1].second);
            }
        });
        ASSERT_FALSE(Loaded(ToXmlText(root)).ValidateChecksum()) << "seed " << TestSeed() << ", element " << chosen;
    }
}

TEST_F(DocumentChecksumTest, AnAttributeInANeighbourAtTheSamePlaceDoesNotCount)
{
    // Element names are not covered.
    CDeviceFootprint footprint;
    footprint.m_softwareData.m_bios.m_version = "1";
    const std::string digest = Digest(footprint);
    CDeviceFootprint other;
    other.m_softwareData.m_operatingSystem.m_version = "1";
    EXPECT_EQ(Digest(other), digest);
}

TEST_F(DocumentChecksumTest, ReloadingKeepsTheDigest)
{
    for (int round = 0; round < 3; ++round) {
        CDeviceFootprint footprint;
        FillFootprint(footprint, {static_cast<std::size_t>(round), 2, 1});
        const std::string digest = Digest(footprint);
        CDeviceFootprint loaded = Loaded(xmlDeclaration + SaveText(footprint));
        EXPECT_EQ(Digest(loaded), digest);
        CDeviceFootprint copy(loaded);
        EXPECT_EQ(Digest(copy), digest);
    }
}

} // namespace
