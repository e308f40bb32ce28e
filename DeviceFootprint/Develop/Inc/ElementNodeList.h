#ifndef NYXCONFIG_ELEMENTNODELIST_H
#define NYXCONFIG_ELEMENTNODELIST_H

#include "ElementNode.h"
#include "XmlStreams.h"

#include <iostream>
#include <list>
#include <string>
#include <typeinfo>
#include <utility>

namespace KvDeviceFootprint
{

/**
 * An element that is at the same time a standard list of entries of type T, by value. Callers walk, count and append
 * with the list's own operations. The element has no attributes of its own in a file, and its entries are not children:
 * each operation that has to reach them is overridden here.
 *
 * @tparam T a class derived from CElementNode with a static s_ElementName, a default and a copy constructor.
 */
template<class T>
class CElementNodeList : public CElementNode, public std::list<T>
{
public:
    CElementNodeList() = default;
    CElementNodeList(const CElementNodeList& other) = default;
    CElementNodeList(CElementNodeList&& other) = default;
    CElementNodeList& operator=(const CElementNodeList& other) = default;
    CElementNodeList& operator=(CElementNodeList&& other);
    ~CElementNodeList() override = default;

    /// Empties @p children: entries are not children.
    void GetChildElements(std::list<CElementNode*>& children) const override { children.clear(); }
    void GetAttributeNodes(std::list<CReadOnlyAttribute*>& attributes) const override { attributes.clear(); }
    /// Whether every entry is empty; so a list without entries is empty.
    bool IsEmpty() const override;
    bool IsOptional() const override { return true; }
    bool IsValid() const override { return true; }
    /// Destroys all entries.
    void Clear() override;
    /// Writes the entries in list order, also for a checksum: their order counts.
    bool SaveToStream(CXmlStreamWriter& writer) override;
    /// Appends what it reads. If an entry fails, that entry is removed again; those read before it stay.
    bool LoadFromStream(CXmlStreamReader& reader) override;
    /// Merges the entries of @p other, a list of the same T, by their GetRelationship(). A list without entries takes
    /// over all non-empty ones as they are.
    bool CopyFrom(const CElementNode& other) override;
    void GetAllChildsByName(const std::string& name, std::list<CElementNode*>& children) const override;
    /// With @p recursive, appends all entries of @p other, a list of the same T. Nothing is matched, nothing replaced.
    /// Inserting a list into itself changes nothing.
    bool InsertFrom(const CElementNode& other, bool recursive) override;

    /// Appends a default-constructed entry and returns it.
    // Not inline: its temporary entry must not lie on the stack of the recursive walks.
    [[gnu::noinline]] T& CreateEntry();

private:
    static bool UpdateEntry(T& entry, const T& source, bool& matched);
    bool LoadEntry(CXmlStreamReader& reader);
    bool LoadEntries(CXmlStreamReader& reader);
    bool InsertEntry(const T& source);
};

template<class T>
CElementNodeList<T>& CElementNodeList<T>::operator=(CElementNodeList&& other)
{
    // The other list may lie in an entry of this one, so the old entries live until the end.
    CElementNode::operator=(other);
    std::list<T> entries(std::move(other));
    this->swap(entries);
    return *this;
}

template<class T>
bool CElementNodeList<T>::IsEmpty() const
{
    for (const T& entry : *this) {
        if (!entry.IsEmpty()) {
            return false;
        }
    }
    return true;
}

template<class T>
void CElementNodeList<T>::Clear()
{
    this->clear();
    CElementNode::Clear();
}

template<class T>
bool CElementNodeList<T>::SaveToStream(CXmlStreamWriter& writer)
{
    if (IsEmpty() && IsOptional()) {
        return true;
    }
    if (writer.IsTooDeep()) {
        return false;
    }
    writer.BeginElement(GetElementName());
    for (T& entry : *this) {
        if (!entry.SaveToStream(writer)) {
            return false;
        }
    }
    writer.EndElement();
    return true;
}

template<class T>
bool CElementNodeList<T>::LoadFromStream(CXmlStreamReader& reader)
{
    const CElementScope scope(reader);
    if (!scope.IsEntered()) {
        return false;
    }
    if (reader.ElementHasNoChilds()) {
        return reader.NextToken();
    }
    return reader.NextToken() && LoadEntries(reader);
}

template<class T>
bool CElementNodeList<T>::LoadEntries(CXmlStreamReader& reader)
{
    while (!reader.IsEndToken()) {
        if (reader.IsElement(T::s_ElementName)) {
            if (!LoadEntry(reader)) {
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

template<class T>
bool CElementNodeList<T>::LoadEntry(CXmlStreamReader& reader)
{
    this->emplace_back();
    if (this->back().LoadFromStream(reader)) {
        return true;
    }
    this->pop_back();
    return false;
}

template<class T>
bool CElementNodeList<T>::CopyFrom(const CElementNode& other)
{
    if (!CElementNode::CopyFrom(other)) {
        return false;
    }
    const auto* source = dynamic_cast<const CElementNodeList<T>*>(&other);
    if (source == nullptr) {
        return false;
    }
    const bool wasEmpty = this->empty();
    for (const T& sourceEntry : *source) {
        if (sourceEntry.IsEmpty()) {
            continue;
        }
        if (wasEmpty) {
            this->push_back(sourceEntry);
            continue;
        }
        bool matched = false;
        // No break at a match: one source entry can update several entries.
        for (T& entry : *this) {
            if (!UpdateEntry(entry, sourceEntry, matched)) {
                return false;
            }
        }
        if (!matched && !InsertEntry(sourceEntry)) {
            return false;
        }
    }
    return true;
}

template<class T>
bool CElementNodeList<T>::UpdateEntry(T& entry, const T& source, bool& matched)
{
    switch (entry.GetRelationship(source)) {
    case eSameAge:
        matched = true;
        return entry.CopyFrom(static_cast<const CElementNode&>(source));
    case eThisIsOlder:
        matched = true;
        entry.Clear();
        return entry.InsertFrom(source, true);
    case eThisIsNewer:
        matched = true;
        return true;
    default:
        return true;
    }
}

template<class T>
bool CElementNodeList<T>::InsertFrom(const CElementNode& other, bool recursive)
{
    if (this == &other) {
        return true;
    }
    if (!CElementNode::InsertFrom(other, recursive)) {
        return false;
    }
    if (!recursive) {
        return true;
    }
    const auto* source = dynamic_cast<const CElementNodeList<T>*>(&other);
    if (source == nullptr) {
        return false;
    }
    for (const T& entry : *source) {
        if (!InsertEntry(entry)) {
            return false;
        }
    }
    return true;
}

template<class T>
bool CElementNodeList<T>::InsertEntry(const T& source)
{
    return CreateEntry().InsertFrom(source, true);
}

template<class T>
void CElementNodeList<T>::GetAllChildsByName(const std::string& /*name*/, std::list<CElementNode*>& children) const
{
    children.clear();
}

template<class T>
T& CElementNodeList<T>::CreateEntry()
{
    this->push_back(T());
    return this->back();
}

} // namespace KvDeviceFootprint

/// The body of a concrete list class: its tag. Needs DFP_DEFINE_LIST in one source file.
#define DFP_LIST(Class, tag)                                                                                           \
public:                                                                                                                \
    static constexpr const char* Tag = tag;                                                                            \
    static const std::string s_ElementName;                                                                            \
    Class();                                                                                                           \
    Class(const Class& other);                                                                                         \
    [[maybe_unused]] Class(Class&& other);                                                                             \
    Class& operator=(const Class& other);                                                                              \
    [[maybe_unused]] Class& operator=(Class&& other);                                                                  \
    ~Class() override;                                                                                                 \
    const std::string& GetElementName() const override;                                                                \
    void initAttributeNodes() override;                                                                                \
    /** Neither attributes nor children. */                                                                            \
    static const ::KvDeviceFootprint::CElementLayout& Layout();

/// Defines what DFP_LIST declares, but for GetElementName(), which must give all objects one text.
#define DFP_DEFINE_LIST_MEMBERS(Class)                                                                                 \
    const std::string Class::s_ElementName(Class::Tag);                                                                \
    Class::Class() = default;                                                                                          \
    Class::Class(const Class& other) = default;                                                                        \
    Class::Class(Class&& other) = default;                                                                             \
    Class& Class::operator=(const Class& other) = default;                                                             \
    Class& Class::operator=(Class&& other) = default;                                                                  \
    Class::~Class() = default;                                                                                         \
    void Class::initAttributeNodes() {}                                                                                \
    const ::KvDeviceFootprint::CElementLayout& Class::Layout()                                                         \
    {                                                                                                                  \
        static const ::KvDeviceFootprint::CElementLayout layout(typeid(Class), {}, {}, {true, false});                 \
        return layout;                                                                                                 \
    }

/// Defines what DFP_LIST declares. Stands in one source file, in the namespace of the class.
#define DFP_DEFINE_LIST(Class)                                                                                         \
    DFP_DEFINE_LIST_MEMBERS(Class)                                                                                     \
    const std::string& Class::GetElementName() const                                                                   \
    {                                                                                                                  \
        return s_ElementName;                                                                                          \
    }

#endif
