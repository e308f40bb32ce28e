// Comparison in a process with more element classes than a rule set remembers.

#include "Comparators.h"
#include "DeviceFootprint.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace KvDeviceFootprint;

namespace
{

/// As if an application had so many classes, all of them in use before the first class of the library.
const std::vector<CElementLayout> s_layouts = [] {
    std::vector<CElementLayout> layouts;
    for (int number = 0; number < 200; ++number) {
        layouts.push_back(CElementLayout(typeid(int), {}, {}, {true, true}));
    }
    return layouts;
}();

} // namespace

TEST(ComparatorsManyClasses, RulesAreFoundAllTheSame)
{
    ASSERT_GE(CDeviceFootprint::Layout().Number(), s_layouts.size());
    CDeviceFootprint lhs;
    lhs.m_softwareData.m_softwareList.CreateEntry().m_version = "1";
    lhs.m_deviceData.m_partName = "one";
    CDeviceFootprint rhs = lhs;
    CComparatorRules rules;
    EXPECT_TRUE(lhs.Compare(rhs, rules));
    CDefaultHistoryComparatorRulesFactory().CreateRules(rules);
    EXPECT_TRUE(lhs.Compare(rhs, rules));
    rhs.m_deviceData.m_partName = "another";
    EXPECT_TRUE(lhs.Compare(rhs, rules)) << "no rule looks at it";
    rhs.m_softwareData.m_softwareList.front().m_version = "2";
    EXPECT_FALSE(lhs.Compare(rhs, rules));
    rules.Add(std::make_unique<CComparatorDefault<CSoftware>>().release());
    EXPECT_TRUE(lhs.Compare(rhs, rules));
    rhs.m_softwareData.m_softwareList.CreateEntry();
    EXPECT_FALSE(lhs.Compare(rhs, rules));
    rules.Clear();
    EXPECT_TRUE(lhs.Compare(rhs, rules));
}
