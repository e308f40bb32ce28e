// How deep documents may be nested, in a thread with a small stack.

#include "Comparators.h"
#include "DeviceFootprint.h"
#include "ErrorWord.h"
#include "SmallStack.h"
#include "StreamCapture.h"
#include "XmlStreams.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace KvDeviceFootprint;
using NyxTest::ErrorWord;
using NyxTest::RunWithSmallStack;
using NyxTest::StreamCapture;

constexpr std::size_t MaxDepth = CXmlStreamReader::MaxDepth;

class XmlNesting : public testing::Test
{
protected:
    ErrorWord m_errors;
    StreamCapture m_output{std::cout};
};

/// A document of @p depth elements, each in the one before: the names in their order, the last @p cycle of them again
/// and again. The innermost has attributes and no children.
std::string Nested(const std::vector<const char*>& names, std::size_t cycle, std::size_t depth)
{
    const auto name = [&](std::size_t level) {
        const std::size_t index = level < names.size() ? level : names.size() - cycle + (level - names.size()) % cycle;
        return std::string(names[index]);
    };
    std::string text;
    for (std::size_t level = 0; level + 1 < depth; ++level) {
        text += "<" + name(level) + ">\n";
    }
    text += "<" + name(depth - 1) + " name=\"n\" deviceId=\"1-2-3\" formatVersion=\"1\"/>\n";
    for (std::size_t level = depth - 1; level-- > 0;) {
        text += "</" + name(level).substr(0, name(level).find(' ')) + ">\n";
    }
    return text;
}

std::string NestedSoftware(std::size_t depth)
{
    return Nested({"DeviceFootprint", "SoftwareData", "SoftwareList", "Software"}, 2, depth);
}

std::string NestedDevices(std::size_t depth)
{
    return Nested({"DeviceFootprint", "ConnectedDeviceList", "ConnectedDevice"}, 2, depth);
}

bool Loaded(CDeviceFootprint& footprint, const std::string& text)
{
    std::istringstream stream(text);
    return footprint.Load(stream, "in");
}

std::size_t LineCount(const std::string& text)
{
    std::size_t count = 0;
    for (const char character : text) {
        count += character == '\n' ? 1 : 0;
    }
    return count;
}

/// All that can be done with a document that was loaded.
void UseAll(CDeviceFootprint& footprint)
{
    std::string text;
    EXPECT_TRUE(footprint.GetDeviceFootprintString(false, text)) << ErrorWord::Text();
    EXPECT_TRUE(footprint.ValidateChecksum());
    CDeviceFootprint copy(footprint);
    CDeviceFootprint assigned;
    assigned = copy;
    std::string copied;
    EXPECT_TRUE(assigned.GetDeviceFootprintString(false, copied));
    EXPECT_EQ(copied, text);
    CComparatorRules rules;
    CDefaultHistoryComparatorRulesFactory().CreateRules(rules);
    EXPECT_TRUE(footprint.CompareTo(copy, rules));
    CDeviceFootprint merged;
    EXPECT_TRUE(merged.CopyFrom(copy));
    EXPECT_TRUE(merged.CopyFrom(copy)) << "and once more, by relationship";
    CDeviceFootprint inserted;
    EXPECT_TRUE(inserted.InsertFrom(copy));
    EXPECT_FALSE(footprint.IsEmpty());
    CDeviceFootprint again;
    EXPECT_TRUE(Loaded(again, text)) << ErrorWord::Text();
    std::string reloaded;
    EXPECT_TRUE(again.GetDeviceFootprintString(false, reloaded));
    EXPECT_EQ(reloaded, text);
    merged.Clear();
    EXPECT_TRUE(merged.IsEmpty());
}

TEST_F(XmlNesting, UnknownElementsMayBeNestedAsDeepAsTheyLike)
{
    const std::size_t depth = 100000;
    std::string text = "<DeviceFootprint formatVersion=\"1\">\n";
    for (std::size_t i = 0; i < depth; ++i) {
        text += "<Unknown>\n";
    }
    for (std::size_t i = 0; i < depth; ++i) {
        text += "</Unknown>\n";
    }
    text += "<DeviceData deviceId=\"1-2-3\"/>\n</DeviceFootprint>\n";
    RunWithSmallStack([&] {
        CDeviceFootprint footprint;
        EXPECT_TRUE(Loaded(footprint, text));
        EXPECT_EQ(footprint.m_deviceData.m_deviceId.GetValue(), L"1-2-3");
    });
    EXPECT_EQ(m_output.Text(), "Found invalid tag: <Unknown>\n");
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(XmlNesting, VeryDeepKnownElementsAreRefusedWithAText)
{
    for (const auto& make : {NestedSoftware, NestedDevices}) {
        const std::string text = make(10000);
        const auto load = [&] {
            CDeviceFootprint footprint;
            EXPECT_FALSE(Loaded(footprint, text));
            EXPECT_NE(ErrorWord::Text(), ErrorWord::Untouched());
            EXPECT_NE(ErrorWord::Text(), "");
            ErrorWord::Reset();
        };
        load();
        RunWithSmallStack(load);
    }
}

TEST_F(XmlNesting, KnownElementsInsideUnknownOnesDoNotCount)
{
    std::string text = "<DeviceFootprint>\n<Unknown>\n" + NestedSoftware(10000) + "</Unknown>\n</DeviceFootprint>\n";
    RunWithSmallStack([&] {
        CDeviceFootprint footprint;
        EXPECT_TRUE(Loaded(footprint, text));
    });
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(XmlNesting, TheDeepestSoftwareDoesEverything)
{
    const std::string text = NestedSoftware(MaxDepth);
    RunWithSmallStack([&] {
        CDeviceFootprint footprint;
        ASSERT_TRUE(Loaded(footprint, text)) << ErrorWord::Text();
        UseAll(footprint);
    });
    EXPECT_EQ(m_output.Text(), "");
}

TEST_F(XmlNesting, TheDeepestConnectedDevicesDoEverything)
{
    // The last one is a device, not a list, if the number is odd.
    const std::string text = NestedDevices(MaxDepth - 1 + MaxDepth % 2);
    RunWithSmallStack([&] {
        CDeviceFootprint footprint;
        ASSERT_TRUE(Loaded(footprint, text)) << ErrorWord::Text();
        UseAll(footprint);
    });
}

/// Gives each connected device its checksum, the innermost first.
bool Seal(CDeviceFootprintData& footprint)
{
    for (CConnectedDevice& device : *footprint.m_pConnectedDevices) {
        if (!Seal(device)) {
            return false;
        }
        std::string checksum;
        if (!device.ComputeChecksum(checksum)) {
            return false;
        }
        device.m_checksum = checksum;
    }
    return true;
}

TEST_F(XmlNesting, TheDeepestConnectedDevicesWithChecksumsDoEverything)
{
    const std::string text = NestedDevices(MaxDepth - 1 + MaxDepth % 2);
    RunWithSmallStack([&] {
        CDeviceFootprint footprint;
        ASSERT_TRUE(Loaded(footprint, text)) << ErrorWord::Text();
        ASSERT_TRUE(Seal(footprint));
        UseAll(footprint);
    });
}

TEST_F(XmlNesting, TheDeepestMixtureDoesEverything)
{
    // Connected devices, and in the innermost of them boards with properties.
    const std::size_t inside = 6;
    std::vector<const char*> names{"DeviceFootprint"};
    while (names.size() + inside + 1 < MaxDepth) {
        names.insert(names.end(), {"ConnectedDeviceList", "ConnectedDevice"});
    }
    for (const char* name : {"HardwareData", "HardwareList", "Hardware id=\"1\"", "MaintenanceData", "MaintenanceInfos",
                             "MaintenanceInfo"}) {
        names.push_back(name);
    }
    const std::string text = Nested(names, 1, names.size());
    ASSERT_LE(names.size(), MaxDepth);
    RunWithSmallStack([&] {
        CDeviceFootprint footprint;
        ASSERT_TRUE(Loaded(footprint, text)) << ErrorWord::Text();
        ASSERT_TRUE(Seal(footprint));
        UseAll(footprint);
    });
}

TEST_F(XmlNesting, OneElementMoreIsRefusedByTheLoad)
{
    for (const auto& make : {NestedSoftware, NestedDevices}) {
        for (std::size_t depth = MaxDepth - 2; depth <= MaxDepth + 4; ++depth) {
            CDeviceFootprint footprint;
            const bool expected = depth <= MaxDepth;
            EXPECT_EQ(Loaded(footprint, make(depth)), expected) << depth;
            EXPECT_EQ(m_errors.Take() == ErrorWord::Untouched(), expected) << depth;
        }
    }
}

TEST_F(XmlNesting, OneElementMoreIsRefusedByTheSave)
{
    for (std::size_t packages = MaxDepth / 2 - 3; packages <= MaxDepth / 2 + 3; ++packages) {
        CDeviceFootprint footprint;
        CSoftwareList* list = &footprint.m_softwareData.m_softwareList;
        for (std::size_t i = 1; i < packages; ++i) {
            list = list->CreateEntry().m_pSoftwareList.get();
        }
        list->CreateEntry().m_name = L"n";
        // The root, its software data, and a list and a package for each.
        const bool expected = 2 + 2 * packages <= MaxDepth;
        std::string text;
        EXPECT_EQ(footprint.GetDeviceFootprintString(false, text), expected) << packages;
        EXPECT_EQ(m_errors.Take() == ErrorWord::Untouched(), expected) << packages;
        std::string checksum;
        EXPECT_EQ(footprint.ComputeChecksum(checksum), expected) << packages;
        if (expected) {
            EXPECT_EQ(LineCount(text), 1 + 2 * (1 + 2 * packages) + 1);
            CDeviceFootprint loaded;
            EXPECT_TRUE(Loaded(loaded, text)) << packages;
        } else {
            EXPECT_EQ(text, "");
        }
        m_errors.Take();
    }
}

TEST_F(XmlNesting, DepthCountsOpenElementsOnly)
{
    std::string text = "<DeviceFootprint>\n<SoftwareData>\n<SoftwareList>\n";
    for (std::size_t i = 0; i < 3 * MaxDepth; ++i) {
        text += "<Software name=\"n\">\n<SoftwareList>\n<Software name=\"m\"/>\n</SoftwareList>\n</Software>\n";
    }
    text += "</SoftwareList>\n</SoftwareData>\n</DeviceFootprint>\n";
    CDeviceFootprint footprint;
    EXPECT_TRUE(Loaded(footprint, text)) << m_errors.Text();
    EXPECT_EQ(footprint.m_softwareData.m_softwareList.size(), 3 * MaxDepth);
    std::string saved;
    EXPECT_TRUE(footprint.GetDeviceFootprintString(false, saved));
}

} // namespace
