#include "ElementNode.h"

#include "Comparators.h"
#include "XmlStreams.h"

#include <algorithm>
#include <atomic>
#include <iostream>

namespace KvDeviceFootprint
{

namespace
{

std::atomic<std::size_t> s_layoutCount{0};

CElementNode* FindLaidOutChild(const CElementNode& element, const CElementLayout& layout,
                               const CXmlStreamReader& reader)
{
    for (const CElementLayout::Child& row : layout.Children()) {
        CElementNode& child = row.In(element);
        if (reader.IsElement(child.GetElementName())) {
            return &child;
        }
    }
    return nullptr;
}

} // namespace

CElementLayout::CElementLayout(const std::type_info& type, std::vector<Attribute> attributes,
                               std::vector<Child> children, const Traits& traits)
    : m_type(&type), m_number(s_layoutCount.fetch_add(1, std::memory_order_relaxed)), m_traits(traits),
      m_attributes(std::move(attributes)), m_sortedAttributes(m_attributes), m_children(std::move(children)),
      m_sortedChildren(m_children)
{
    std::sort(m_sortedAttributes.begin(), m_sortedAttributes.end(),
              [](const Attribute& lhs, const Attribute& rhs) { return lhs.name.Text() < rhs.name.Text(); });
    // Stable: children of one name keep their order.
    std::stable_sort(m_sortedChildren.begin(), m_sortedChildren.end(),
                     [](const Child& lhs, const Child& rhs) { return std::string(lhs.name) < rhs.name; });
    m_hasTwins =
        std::adjacent_find(m_sortedChildren.begin(), m_sortedChildren.end(), [](const Child& lhs, const Child& rhs) {
            return std::string(lhs.name) == rhs.name;
        }) != m_sortedChildren.end();
}

bool CElementLayout::HasOwnNames(const CElementNode& element) const
{
    if (!m_traits.ownsNames || !CReadOnlyAttribute::s_isAnyRenamed.load(std::memory_order_relaxed)) {
        return m_traits.ownsNames;
    }
    return std::all_of(m_attributes.begin(), m_attributes.end(), [&element](const Attribute& attribute) {
        return attribute.In(element).m_name == attribute.name;
    });
}

bool CElementLayout::IsClassOf(const CElementNode& element) const
{
    // By address: should a class have two of them, its objects only take the longer way.
    return &typeid(element) == m_type;
}

CElementNode::CElementNode(const CElementNode& other) : CNode(other) {}

CElementNode& CElementNode::operator=(const CElementNode& other)
{
    if (this != &other) {
        CNode::operator=(other);
        m_layout = nullptr;
        m_added.reset();
    }
    return *this;
}

void CElementNode::AddAttributeNode(CReadOnlyAttribute& attribute)
{
    if (!m_added) {
        m_added = std::make_unique<std::vector<CReadOnlyAttribute*>>();
    }
    m_added->push_back(&attribute);
}

void CElementNode::AddOneByOne(const CElementLayout& layout)
{
    for (std::size_t i = 0; i < layout.AttributeCount(); ++i) {
        AddAttributeNode(*layout.AttributeAt(*this, i));
    }
}

std::size_t CElementNode::AttributeCount() const
{
    return (m_layout == nullptr ? 0 : m_layout->AttributeCount()) + (m_added ? m_added->size() : 0);
}

CReadOnlyAttribute* CElementNode::AttributeAt(std::size_t index) const
{
    const std::size_t laidOut = m_layout == nullptr ? 0 : m_layout->AttributeCount();
    return index < laidOut ? m_layout->AttributeAt(*this, index) : (*m_added)[index - laidOut];
}

/// The layout, if it says all about this object: the walks then need no lists of pointers. Otherwise null.
const CElementLayout* CElementNode::ExactLayout() const
{
    return m_layout != nullptr && !m_added && m_layout->IsClassOf(*this) ? m_layout : nullptr;
}

/// Calls visit(child) for each child in file order until it gives false. Whether it never did.
template<class Visitor>
bool CElementNode::AllChildren(Visitor visit) const
{
    if (const CElementLayout* layout = ExactLayout()) {
        const auto& rows = layout->Children();
        return std::all_of(rows.begin(), rows.end(),
                           [&](const CElementLayout::Child& row) { return visit(row.In(*this)); });
    }
    std::list<CElementNode*> children;
    GetChildElements(children);
    return std::all_of(children.begin(), children.end(), [&](CElementNode* child) { return visit(*child); });
}

const std::string& CElementNode::GetNodeName() const
{
    return GetElementName();
}

void CElementNode::GetAttributeNodes(std::list<CReadOnlyAttribute*>& attributes) const
{
    attributes.clear();
    for (std::size_t i = 0; i < AttributeCount(); ++i) {
        attributes.push_back(AttributeAt(i));
    }
}

bool CElementNode::Compare(const CElementNode& other, const CComparatorRules& rules) const
{
    const CElementLayout* layout = ExactLayout();
    return layout != nullptr && layout == other.ExactLayout() && !layout->HasTwins()
               ? CompareLaidOut(*layout, *this, other, rules)
               : CompareByNames(other, rules);
}

/// Compare() for two elements of one class, which have one name and children of the same classes and names.
bool CElementNode::CompareLaidOut(const CElementLayout& layout, const CElementNode& lhs, const CElementNode& rhs,
                                  const CComparatorRules& rules)
{
    const CComparatorBase* comparator = rules.FindForClass(layout, lhs);
    if (comparator != nullptr && !(*comparator)(lhs, rhs, rules)) {
        return false;
    }
    for (const CElementLayout::Child& row : layout.Children()) {
        const bool isSame = row.layout != nullptr ? CompareLaidOut(*row.layout, row.In(lhs), row.In(rhs), rules)
                                                  : row.In(lhs).Compare(row.In(rhs), rules);
        if (!isSame) {
            return false;
        }
    }
    return true;
}

/// Compare() for elements of any classes.
bool CElementNode::CompareByNames(const CElementNode& other, const CComparatorRules& rules) const
{
    const std::string& name = GetElementName();
    const std::string& otherName = other.GetElementName();
    if (&name != &otherName && name != otherName) {
        return false;
    }
    const CComparatorBase* comparator = rules.Find(name);
    if (comparator != nullptr && !(*comparator)(*this, other, rules)) {
        return false;
    }
    return AllChildren([&](const CElementNode& child) {
        // A child without a counterpart is no difference.
        const CElementNode* counterpart = other.GetChildElementByName(child.GetElementName());
        return counterpart == nullptr || child.Compare(*counterpart, rules);
    });
}

bool CElementNode::IsEmpty() const
{
    for (std::size_t i = 0; i < AttributeCount(); ++i) {
        if (!AttributeAt(i)->IsEmpty()) {
            return false;
        }
    }
    return AllChildren([](const CElementNode& child) { return child.IsEmpty(); });
}

bool CElementNode::IsOptional() const
{
    return true;
}

bool CElementNode::IsValid() const
{
    return true;
}

void CElementNode::Clear()
{
    for (std::size_t i = 0; i < AttributeCount(); ++i) {
        AttributeAt(i)->Clear();
    }
    AllChildren([](CElementNode& child) {
        child.Clear();
        return true;
    });
}

bool CElementNode::SaveToStream(CXmlStreamWriter& writer)
{
    const CElementLayout* layout = ExactLayout();
    // What is empty adds nothing to a checksum, so there is no need to look ahead.
    const bool mayBeEmpty = layout != nullptr && layout->HasPlainEmptiness() && writer.MayTakeEmptyElement();
    if (!mayBeEmpty && IsOptional() && IsEmpty()) {
        return true;
    }
    return !writer.IsTooDeep() && writer.BeginElement(GetElementName()) && SaveContent(writer, layout) &&
           writer.EndElement();
}

bool CElementNode::SaveLaidOutContent(CXmlStreamWriter& writer, const CElementLayout& layout)
{
    if (!writer.SetAttributes(*this, layout)) {
        return false;
    }
    for (const CElementLayout::Child& row : writer.IsForChecksum() ? layout.SortedChildren() : layout.Children()) {
        if (!row.In(*this).SaveToStream(writer)) {
            return false;
        }
    }
    return true;
}

bool CElementNode::SaveContent(CXmlStreamWriter& writer, const CElementLayout* layout)
{
    if (layout != nullptr && layout->HasOwnNames(*this)) {
        return SaveLaidOutContent(writer, *layout);
    }
    // The table itself is never reordered: a checksum sorts a copy.
    std::vector<CReadOnlyAttribute*> attributes;
    attributes.reserve(AttributeCount());
    for (std::size_t i = 0; i < AttributeCount(); ++i) {
        attributes.push_back(AttributeAt(i));
    }
    std::list<CElementNode*> children;
    GetChildElements(children);
    if (writer.IsForChecksum()) {
        std::stable_sort(attributes.begin(), attributes.end(), CNodeSorter());
        children.sort(CNodeSorter()); // stable: children of one name keep their order
    }
    for (const CReadOnlyAttribute* attribute : attributes) {
        if (!writer.SetAttribute(*attribute)) {
            return false;
        }
    }
    return std::all_of(children.begin(), children.end(),
                       [&writer](CElementNode* child) { return child->SaveToStream(writer); });
}

bool CElementNode::LoadFromStream(CXmlStreamReader& reader)
{
    const CElementScope scope(reader);
    if (!scope.IsEntered()) {
        return false;
    }
    const CElementLayout* layout = ExactLayout();
    if (layout == nullptr || !layout->HasOwnNames(*this) || !reader.GetAttributes(*this, *layout)) {
        for (std::size_t i = 0; i < AttributeCount(); ++i) {
            reader.GetAttribute(*AttributeAt(i));
        }
    }
    if (reader.ElementHasNoChilds()) {
        return reader.NextToken();
    }
    return reader.NextToken() && LoadChildren(reader);
}

bool CElementNode::LoadChildren(CXmlStreamReader& reader)
{
    std::list<CElementNode*> children; // taken once
    const CElementLayout* layout = ExactLayout();
    if (layout == nullptr) {
        GetChildElements(children);
    }
    while (!reader.IsEndToken()) {
        CElementNode* child =
            layout == nullptr ? FindChildElement(children, reader) : FindLaidOutChild(*this, *layout, reader);
        if (child != nullptr) {
            if (!child->LoadFromStream(reader)) {
                return false;
            }
        } else {
            std::cout << "Found invalid tag: " << reader.GetCurrentElement() << std::endl;
            if (!reader.SkipCurrentElement()) {
                return false;
            }
        }
    }
    if (!reader.IsEndToken(GetElementName())) {
        return false;
    }
    // The result does not count: behind the last end tag of a file there is no token.
    reader.NextToken();
    return true;
}

bool CElementNode::CopyFrom(const CElementNode& other)
{
    if (this == &other) {
        return true;
    }
    for (std::size_t i = 0; i < AttributeCount(); ++i) {
        CReadOnlyAttribute* attribute = AttributeAt(i);
        const std::wstring& value = other.GetAttributeValue(attribute->GetNodeName());
        if (!value.empty()) {
            attribute->Set(value);
        }
    }
    return AllChildren([&other](CElementNode& child) {
        const CElementNode* counterpart = other.GetChildElementByName(child.GetElementName());
        return counterpart == nullptr || child.CopyFrom(*counterpart);
    });
}

int CElementNode::GetRelationship(const CElementNode& other) const
{
    for (std::size_t i = 0; i < AttributeCount(); ++i) {
        const CReadOnlyAttribute* attribute = AttributeAt(i);
        if (!attribute->IsEmpty() && attribute->GetValue() != other.GetAttributeValue(attribute->GetNodeName())) {
            return eUnrelated;
        }
    }
    return eSameAge;
}

void CElementNode::GetAllChildsByName(const std::string& name, std::list<CElementNode*>& children) const
{
    std::list<CElementNode*> all;
    GetChildElements(all);
    for (CElementNode* child : all) {
        if (child->GetElementName() == name) {
            children.push_back(child);
        }
    }
}

bool CElementNode::InsertFrom(const CElementNode& other, bool recursive)
{
    if (this == &other) {
        return true;
    }
    for (std::size_t i = 0; i < other.AttributeCount(); ++i) {
        const CReadOnlyAttribute* source = other.AttributeAt(i);
        CReadOnlyAttribute* target = source->IsEmpty() ? nullptr : GetAttributeByName(source->GetNodeName());
        if (target != nullptr) {
            target->Set(source->GetValue());
        }
    }
    if (!recursive) {
        return true;
    }
    return other.AllChildren([this](const CElementNode& source) {
        CElementNode* target = GetChildElementByName(source.GetElementName());
        return target == nullptr || target->InsertFrom(source, true);
    });
}

CElementNode* CElementNode::FindChildElement(const std::list<CElementNode*>& children, const CXmlStreamReader& reader)
{
    for (CElementNode* child : children) {
        if (reader.IsElement(child->GetElementName())) {
            return child;
        }
    }
    return nullptr;
}

CReadOnlyAttribute* CElementNode::GetAttributeByName(const std::string& name) const
{
    for (std::size_t i = 0; i < AttributeCount(); ++i) {
        CReadOnlyAttribute* attribute = AttributeAt(i);
        if (attribute->GetNodeName() == name) {
            return attribute;
        }
    }
    return nullptr;
}

const std::wstring& CElementNode::GetAttributeValue(const std::string& name) const
{
    static const std::wstring noValue;
    const CReadOnlyAttribute* attribute = GetAttributeByName(name);
    return attribute == nullptr ? noValue : attribute->GetValue();
}

CElementNode* CElementNode::GetChildElementByName(const std::string& name) const
{
    std::list<CElementNode*> children;
    GetChildElements(children);
    for (CElementNode* child : children) {
        if (child->GetElementName() == name) {
            return child;
        }
    }
    return nullptr;
}

} // namespace KvDeviceFootprint
