// Comparison of elements that are written as tables and hold children of an application: what such a child does in its
// own way must count.

#include "Comparators.h"
#include "DeviceFootprint.h"

#include <gtest/gtest.h>

#include <functional>
#include <list>
#include <memory>
#include <string>
#include <utility>

using namespace KvDeviceFootprint;

namespace ApplicationTables
{

/// Differs from everything.
class CStubborn : public CElement<CStubborn>
{
    DFP_ELEMENT(CStubborn, "Stubborn")

public:
    DFP_ATTRIBUTE(name);
    DFP_ELEMENT_END

public:
    bool Compare(const CElementNode& /*other*/, const CComparatorRules& /*rules*/) const override { return m_isMild; }

    bool m_isMild = true;
};

DFP_DEFINE_ELEMENT(CStubborn)

/// A product of another name, without a table of its own.
class CGadget : public CProduct
{
public:
    const std::string& GetElementName() const override
    {
        static const std::string name("Gadget");
        return name;
    }
};

/// A list with a child.
class CTitledServices : public CElementNodeList<CService>
{
    DFP_LIST(CTitledServices, "TitledServices")

public:
    void GetChildElements(std::list<CElementNode*>& children) const override
    {
        children.assign(1, const_cast<CBios*>(&m_bios));
    }

    CBios m_bios;
};

DFP_DEFINE_LIST(CTitledServices)

/// Has two children of one name, of which comparison knows the first alone.
class CDoubles : public CElement<CDoubles>
{
    DFP_ELEMENT(CDoubles, "Doubles")

public:
    DFP_CHILD(CBios, one);
    DFP_CHILD(CBios, two);
    DFP_ELEMENT_END
};

DFP_DEFINE_ELEMENT(CDoubles)

class CSafe : public CElement<CSafe>
{
    DFP_ELEMENT(CSafe, "Safe")

public:
    DFP_OWNED_CHILD(CStubborn, Stubborn);
    DFP_ELEMENT_END
};

DFP_DEFINE_ELEMENT(CSafe)

/// Has no two children of one name.
class CCabinet : public CElement<CCabinet>
{
    DFP_ELEMENT(CCabinet, "Cabinet")

public:
    DFP_CHILD(CStubborn, stubborn);
    DFP_CHILD(CServices, services);
    DFP_CHILD(CTitledServices, titledServices);
    DFP_CHILD(CDoubles, doubles);
    DFP_CHILD(CSafe, safe);
    DFP_CHILD(CGadget, gadget);
    DFP_ELEMENT_END
};

DFP_DEFINE_ELEMENT(CCabinet)

} // namespace ApplicationTables

using namespace ApplicationTables;

namespace
{

/// A rule for elements of any name.
class CNamedRule : public CComparatorBase
{
public:
    CNamedRule(std::string name, std::function<bool()> answer) : m_name(std::move(name)), m_answer(std::move(answer)) {}
    const std::string& GetAssociatedNodeName() const override { return m_name; }
    bool operator()(const CElementNode& /*lhs*/, const CElementNode& /*rhs*/,
                    const CComparatorRules& /*rules*/) const override
    {
        return m_answer();
    }

private:
    std::string m_name;
    std::function<bool()> m_answer;
};

class ComparatorsTables : public testing::Test
{
protected:
    void AddRule(const std::string& name, bool answer)
    {
        m_rules.Add(std::make_unique<CNamedRule>(name, [this, answer] {
                        ++m_asked;
                        return answer;
                    }).release());
    }

    CCabinet m_lhs;
    CCabinet m_rhs;
    CComparatorRules m_rules;
    int m_asked = 0;
};

} // namespace

TEST_F(ComparatorsTables, ChildrenWithAComparisonOfTheirOwnAreAsked)
{
    EXPECT_TRUE(m_lhs.Compare(m_rhs, m_rules));
    m_lhs.m_stubborn.m_isMild = false;
    EXPECT_FALSE(m_lhs.Compare(m_rhs, m_rules));
    m_lhs.m_stubborn.m_isMild = true;
    m_lhs.m_safe.m_pStubborn->m_isMild = false;
    EXPECT_FALSE(m_lhs.Compare(m_rhs, m_rules));
}

TEST_F(ComparatorsTables, ListsAreNoEntriesButTheirRulesAreAsked)
{
    m_lhs.m_services.CreateEntry();
    EXPECT_TRUE(m_lhs.Compare(m_rhs, m_rules)) << "without a rule, entries are not looked at";
    AddRule(CServices::s_ElementName, false);
    EXPECT_FALSE(m_lhs.Compare(m_rhs, m_rules));
    EXPECT_EQ(m_asked, 1);
}

TEST_F(ComparatorsTables, ListsWithChildrenHaveThemCompared)
{
    m_rules.Add(std::make_unique<CBiosComparator>().release());
    EXPECT_TRUE(m_lhs.Compare(m_rhs, m_rules));
    m_lhs.m_titledServices.m_bios.m_version = "2";
    EXPECT_FALSE(m_lhs.Compare(m_rhs, m_rules));
}

TEST_F(ComparatorsTables, TheSecondOfTwoChildrenOfANameMeetsTheFirst)
{
    m_rules.Add(std::make_unique<CBiosComparator>().release());
    m_lhs.m_doubles.m_one.m_version = m_lhs.m_doubles.m_two.m_version = "1";
    m_rhs.m_doubles.m_one.m_version = "1";
    m_rhs.m_doubles.m_two.m_version = "2";
    EXPECT_TRUE(m_lhs.Compare(m_rhs, m_rules));
    EXPECT_FALSE(m_rhs.Compare(m_lhs, m_rules));
}

TEST_F(ComparatorsTables, WhatInheritsATableKeepsItsName)
{
    AddRule(CProduct::s_ElementName, false);
    EXPECT_FALSE(CProduct().Compare(CProduct(), m_rules));
    EXPECT_TRUE(m_lhs.Compare(m_rhs, m_rules)) << "a gadget is no product";
    EXPECT_EQ(m_asked, 1);
    AddRule("Gadget", false);
    EXPECT_FALSE(m_lhs.Compare(m_rhs, m_rules));
    EXPECT_EQ(m_asked, 2);
}
