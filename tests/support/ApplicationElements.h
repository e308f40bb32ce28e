#ifndef NYXCONFIG_APPLICATIONELEMENTS_H
#define NYXCONFIG_APPLICATIONELEMENTS_H

#include "DeviceFootprint.h"
#include "ElementNode.h"
#include "ElementTable.h"

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <vector>

/**
 * @file
 * Element classes as an application may have them beside those of the library.
 */

namespace NyxTest
{

using KvDeviceFootprint::CAttribute;
using KvDeviceFootprint::CBPartIdentification;
using KvDeviceFootprint::CElement;
using KvDeviceFootprint::CElementNode;
using KvDeviceFootprint::CReadOnlyAttribute;
using KvDeviceFootprint::CServiceData;

/// An element class that an application writes by hand: two attributes, no children.
class CLeaf : public CElementNode
{
public:
    static const std::string s_ElementName; ///< "Leaf"

    explicit CLeaf(const std::string& name = s_ElementName) : m_elementName(name) { CLeaf::initAttributeNodes(); }
    CLeaf(const CLeaf& other) : CElementNode(other), m_b(other.m_b), m_a(other.m_a), m_elementName(other.m_elementName)
    {
        CLeaf::initAttributeNodes();
    }
    CLeaf& operator=(const CLeaf& other)
    {
        if (this != &other) {
            CElementNode::operator=(other);
            m_b = other.m_b;
            m_a = other.m_a;
            m_elementName = other.m_elementName;
            initAttributeNodes();
        }
        return *this;
    }
    ~CLeaf() override = default;

    const std::string& GetElementName() const override { return m_elementName; }
    void initAttributeNodes() override
    {
        AddAttributeNode(m_b);
        AddAttributeNode(m_a);
    }
    void GetChildElements(std::list<CElementNode*>& children) const override { children.clear(); }

    CAttribute m_b{"b"};
    CAttribute m_a{"a"};

private:
    std::string m_elementName;
};

/// An element whose attributes and children are given one by one: each test makes the schema that it needs.
class CFreeElement : public CElementNode
{
public:
    CFreeElement(const std::string& name, const std::vector<const char*>& attributes,
                 const std::vector<CElementNode*>& children = {})
        : m_name(name), m_children(children.begin(), children.end())
    {
        for (const char* attribute : attributes) {
            m_attributes.push_back(std::make_unique<CAttribute>(attribute));
        }
        CFreeElement::initAttributeNodes();
    }
    CFreeElement(const CFreeElement&) = delete;
    CFreeElement& operator=(const CFreeElement&) = delete;
    ~CFreeElement() override = default;

    const std::string& GetElementName() const override { return m_name; }
    void initAttributeNodes() override
    {
        for (const auto& attribute : m_attributes) {
            AddAttributeNode(*attribute);
        }
    }
    void GetChildElements(std::list<CElementNode*>& children) const override
    {
        ++m_childWalks;
        children = m_children;
    }
    bool IsOptional() const override { return m_optional; }

    CAttribute& operator[](std::size_t index) { return *m_attributes[index]; }

    bool m_optional = true;
    mutable int m_childWalks = 0;

private:
    std::string m_name;
    std::vector<std::unique_ptr<CAttribute>> m_attributes;
    std::list<CElementNode*> m_children;
};

/// An element class in the form of a table, with children whose names sort the other way round.
class CBranch : public CElement<CBranch>
{
    DFP_ELEMENT(CBranch, "Branch")

public:
    DFP_ATTRIBUTE(zeta);
    DFP_ATTRIBUTE(alpha);
    DFP_ATTRIBUTE_OF(CReadOnlyAttribute, beta);
    DFP_CHILD(CServiceData, serviceData);
    DFP_CHILD(CBPartIdentification, bPartIdentification);
    DFP_ELEMENT_END
};

/// The same content, declared in another order.
class CBranchSorted : public CElement<CBranchSorted>
{
    DFP_ELEMENT(CBranchSorted, "Branch")

public:
    DFP_ATTRIBUTE(alpha);
    DFP_ATTRIBUTE_OF(CReadOnlyAttribute, beta);
    DFP_ATTRIBUTE(zeta);
    DFP_CHILD(CBPartIdentification, bPartIdentification);
    DFP_CHILD(CServiceData, serviceData);
    DFP_ELEMENT_END
};

std::list<CReadOnlyAttribute*> AttributesOf(const CElementNode& element);

std::list<CElementNode*> ChildrenOf(const CElementNode& element);

/// Sets all attributes of an element and of all children that are members: @p prefix and a running number from 1.
void Fill(CElementNode& element, const std::wstring& prefix);

} // namespace NyxTest

#endif
