#include "ElementNode.h"

#include "Comparators.h"
#include "XmlStreams.h"

#include <algorithm>
#include <iostream>

namespace KvDeviceFootprint
{

CElementNode::CElementNode(const CElementNode& other) : CNode(other) {}

CElementNode& CElementNode::operator=(const CElementNode& other)
{
    CNode::operator=(other);
    m_layout = nullptr;
    m_added.reset();
    return *this;
}

CElementNode::~CElementNode() = default;

void CElementNode::AddAttributeNode(CReadOnlyAttribute& attribute)
{
    if (!m_added) {
        m_added = std::make_unique<std::vector<CReadOnlyAttribute*>>();
    }
    m_added->push_back(&attribute);
}

void CElementNode::AddAttributeNodes(const CAttributeLayout& layout)
{
    if (AttributeCount() == 0) {
        m_layout = &layout;
        return;
    }
    for (std::size_t i = 0; i < layout.Count(); ++i) {
        AddAttributeNode(*layout.At(this, i));
    }
}

std::size_t CElementNode::AttributeCount() const
{
    return (m_layout == nullptr ? 0 : m_layout->Count()) + (m_added ? m_added->size() : 0);
}

CReadOnlyAttribute* CElementNode::AttributeAt(std::size_t index) const
{
    const std::size_t laidOut = m_layout == nullptr ? 0 : m_layout->Count();
    return index < laidOut ? m_layout->At(this, index) : (*m_added)[index - laidOut];
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
    if (GetElementName() != other.GetElementName()) {
        return false;
    }
    const CComparatorBase* comparator = rules.Find(GetElementName());
    if (comparator != nullptr && !(*comparator)(*this, other, rules)) {
        return false;
    }
    std::list<CElementNode*> children;
    GetChildElements(children);
    for (const CElementNode* child : children) {
        // A child without a counterpart is no difference.
        const CElementNode* counterpart = other.GetChildElementByName(child->GetElementName());
        if (counterpart != nullptr && !child->Compare(*counterpart, rules)) {
            return false;
        }
    }
    return true;
}

bool CElementNode::IsEmpty() const
{
    for (std::size_t i = 0; i < AttributeCount(); ++i) {
        if (!AttributeAt(i)->IsEmpty()) {
            return false;
        }
    }
    std::list<CElementNode*> children;
    GetChildElements(children);
    return std::all_of(children.begin(), children.end(), [](const CElementNode* child) { return child->IsEmpty(); });
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
    std::list<CElementNode*> children;
    GetChildElements(children);
    for (CElementNode* child : children) {
        child->Clear();
    }
}

bool CElementNode::SaveToStream(CXmlStreamWriter& writer)
{
    if (IsOptional() && IsEmpty()) {
        return true;
    }
    return !writer.IsTooDeep() && writer.BeginElement(GetElementName()) && SaveContent(writer) && writer.EndElement();
}

bool CElementNode::SaveContent(CXmlStreamWriter& writer)
{
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
    for (std::size_t i = 0; i < AttributeCount(); ++i) {
        reader.GetAttribute(*AttributeAt(i));
    }
    if (reader.ElementHasNoChilds()) {
        return reader.NextToken();
    }
    if (!reader.EnterElement()) {
        return false;
    }
    const bool loaded = reader.NextToken() && LoadChildren(reader);
    reader.LeaveElement();
    return loaded;
}

bool CElementNode::LoadChildren(CXmlStreamReader& reader)
{
    std::list<CElementNode*> children;
    GetChildElements(children);
    while (!reader.IsEndToken()) {
        CElementNode* child = FindChildElement(children, reader);
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
    std::list<CElementNode*> children;
    GetChildElements(children);
    for (CElementNode* child : children) {
        const CElementNode* counterpart = other.GetChildElementByName(child->GetElementName());
        if (counterpart != nullptr && !child->CopyFrom(*counterpart)) {
            return false;
        }
    }
    return true;
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
    std::list<CElementNode*> children;
    other.GetChildElements(children);
    for (const CElementNode* source : children) {
        CElementNode* target = GetChildElementByName(source->GetElementName());
        if (target != nullptr && !target->InsertFrom(*source, true)) {
            return false;
        }
    }
    return true;
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
