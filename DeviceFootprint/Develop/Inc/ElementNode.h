#ifndef NYXCONFIG_ELEMENTNODE_H
#define NYXCONFIG_ELEMENTNODE_H

#include "AttributeNode.h"

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

namespace KvDeviceFootprint
{

class CComparatorRules;
class CXmlStreamReader;
class CXmlStreamWriter;

class CElementNode;

/// What all objects of an element class have in common: where its attributes and children lie, and their canonical
/// order. One per class, made once; an object's attribute table then needs no memory of its own.
class NYXCONFIG_EXPORT CElementLayout
{
public:
    /// Gives a child of an object of the class that is no member of it.
    using TChildGetter = CElementNode* (*)(const CElementNode& element);

    struct Attribute
    {
        CReadOnlyAttribute& In(const CElementNode& element) const
        {
            const char* const begin = reinterpret_cast<const char*>(&element);
            return *reinterpret_cast<CReadOnlyAttribute*>(const_cast<char*>(begin) + offset);
        }

        std::ptrdiff_t offset; ///< distance from the object's CElementNode, in bytes
        CNodeName name;
    };
    struct Child
    {
        CElementNode& In(const CElementNode& element) const;

        TChildGetter get;      ///< null if the child is a member of the object
        std::ptrdiff_t offset; ///< then its distance, as that of an attribute
        const char* name;
        const CElementLayout* layout; ///< of its class, if that leaves the comparison to the library; otherwise null
    };

    /// What a class leaves to the library, so that the walks know it without asking.
    struct Traits
    {
        bool ownsNames;      ///< all attributes are of classes of the library
        bool plainEmptiness; ///< the class has no IsEmpty() and IsOptional() of its own
    };

    /// @param type the class. @param attributes,children in file order.
    CElementLayout(const std::type_info& type, std::vector<Attribute> attributes, std::vector<Child> children,
                   const Traits& traits);

    const std::type_info& Type() const { return *m_type; }
    /// Number among the layouts of the process, from 0.
    std::size_t Number() const { return m_number; }

    std::size_t AttributeCount() const { return m_attributes.size(); }
    CReadOnlyAttribute* AttributeAt(const CElementNode& element, std::size_t index) const
    {
        return &m_attributes[index].In(element);
    }
    const std::vector<Attribute>& Attributes() const { return m_attributes; }
    const std::vector<Child>& Children() const { return m_children; }
    /// The same in ascending order of names.
    const std::vector<Attribute>& SortedAttributes() const { return m_sortedAttributes; }
    const std::vector<Child>& SortedChildren() const { return m_sortedChildren; }

    /// Whether two children have one name; then only the first can be found by it.
    bool HasTwins() const { return m_hasTwins; }

    bool HasPlainEmptiness() const { return m_traits.plainEmptiness; }

    /// Whether the attributes of an object bear the names of the class. Assigning another attribute can rename one.
    bool HasOwnNames(const CElementNode& element) const;
    /// Whether the object is just of this class. A class derived from it may have other attributes and children.
    bool IsClassOf(const CElementNode& element) const;

private:
    const std::type_info* m_type;
    std::size_t m_number;
    Traits m_traits;
    std::vector<Attribute> m_attributes;
    std::vector<Attribute> m_sortedAttributes;
    std::vector<Child> m_children;
    std::vector<Child> m_sortedChildren;
    bool m_hasTwins = false;
};

/**
 * The base of every element: a table of attributes and a fixed set of children. A concrete class supplies its name, its
 * attributes and its children; loading, saving, emptiness, clearing and merging are done here by walking them through
 * the virtual operations, whose order is part of the library's binary interface.
 *
 * Attributes and children are members of the concrete object. The attribute table and all child lists hold pointers
 * into the object and own nothing.
 *
 * An element belongs to one thread at a time.
 */
class NYXCONFIG_EXPORT CElementNode : public CNode
{
public:
    /// Results of GetRelationship().
    enum TRelationship
    {
        eUnrelated = -1,
        eThisIsOlder = 0,
        eThisIsNewer = 1,
        eSameAge = 2 ///< or no difference seen
    };

    ~CElementNode() override = default;

    const std::string& GetNodeName() const override;
    /// The element's tag.
    virtual const std::string& GetElementName() const = 0;
    /// Appends the address of each attribute member to the attribute table, in the order in which a file carries them.
    virtual void initAttributeNodes() = 0;
    /// Replaces the content of @p children by the addresses of the child members, in file order. That order is also the
    /// order in which a load tries to match a tag, and it decides between two names of which one begins with the other.
    virtual void GetChildElements(std::list<CElementNode*>& children) const = 0;
    /// Replaces the content of @p attributes by the attribute table.
    virtual void GetAttributeNodes(std::list<CReadOnlyAttribute*>& attributes) const;
    /// Whether the two trees are the same under @p rules. What no rule looks at can differ. This element is the left
    /// side.
    virtual bool Compare(const CElementNode& other, const CComparatorRules& rules) const;
    /// Whether all attributes and all children are empty.
    virtual bool IsEmpty() const;
    /// Whether the element is left out of a file while it is empty. True in every class of the library.
    virtual bool IsOptional() const;
    /// True in every class of the library.
    virtual bool IsValid() const;
    /// Empties all attributes and children. The children stay in place, lists lose their entries.
    virtual void Clear();
    /// Writes the element with all that it holds; nothing if it is empty and optional. Attributes and children go out
    /// in table order, and sorted by name if the writer feeds a CChecksumStream. False at the first failure; what was
    /// written so far stays in the stream.
    virtual bool SaveToStream(CXmlStreamWriter& writer);
    /**
     * Loads the element from the start tag on which @p reader stands. All attributes are replaced, an attribute that
     * the tag lacks becomes empty; children that the text does not mention keep what they hold. Unknown tags are
     * announced on standard output and skipped.
     *
     * @return true with the reader on the token behind the element; false without a text of its own for a wrong end tag
     *         or an end of file, and with a text for bad input and for elements nested deeper than
     *         CXmlStreamReader::MaxDepth.
     * @throw std::out_of_range for a blank line between elements (see CXmlStreamReader::NextToken).
     */
    virtual bool LoadFromStream(CXmlStreamReader& reader);
    /// Takes over what @p other, an element of the same class, holds; its empty values erase nothing here.
    virtual bool CopyFrom(const CElementNode& other);
    /// How this element stands to @p other, see TRelationship. Here only eUnrelated and eSameAge: the test is one-sided
    /// by design, attributes that are empty in this element do not count, and children are not looked at.
    virtual int GetRelationship(const CElementNode& other) const;
    /// Appends every child of exactly this name to @p children.
    virtual void GetAllChildsByName(const std::string& name, std::list<CElementNode*>& children) const;
    /// Takes over non-empty attributes of @p other for which there is one of the same name here, and with @p recursive
    /// the children likewise. The two may differ in schema; what has no counterpart is dropped.
    virtual bool InsertFrom(const CElementNode& other, bool recursive);

    /// The first of @p children whose tag the reader stands on, by CXmlStreamReader::IsElement, or null.
    static CElementNode* FindChildElement(const std::list<CElementNode*>& children, const CXmlStreamReader& reader);
    /// The attribute of exactly this name, or null. Owned by the element.
    CReadOnlyAttribute* GetAttributeByName(const std::string& name) const;
    /// The value of the attribute of this name; for an unknown name an empty text that lives as long as the program.
    const std::wstring& GetAttributeValue(const std::string& name) const;
    /// The first child of exactly this name, or null. Owned by the element.
    CElementNode* GetChildElementByName(const std::string& name) const;

protected:
    CElementNode() = default;
    /// Leaves the attribute table empty, so that it can never point into @p other; the class registers its own members.
    CElementNode(const CElementNode& other);
    /// Copies nothing and empties the attribute table, for the same reason.
    CElementNode& operator=(const CElementNode& other);

    /// Appends one attribute, a member of this object, to the attribute table.
    void AddAttributeNode(CReadOnlyAttribute& attribute);
    /// Appends all attributes of a class to the attribute table. @p layout must outlive the object.
    void AddAttributeNodes(const CElementLayout& layout)
    {
        if (m_layout == nullptr && !m_added) {
            m_layout = &layout;
        } else {
            AddOneByOne(layout);
        }
    }

private:
    void AddOneByOne(const CElementLayout& layout);
    std::size_t AttributeCount() const;
    CReadOnlyAttribute* AttributeAt(std::size_t index) const;
    const CElementLayout* ExactLayout() const;
    template<class Visitor>
    bool AllChildren(Visitor visit) const;
    bool CompareByNames(const CElementNode& other, const CComparatorRules& rules) const;
    static bool CompareLaidOut(const CElementLayout& layout, const CElementNode& lhs, const CElementNode& rhs,
                               const CComparatorRules& rules);
    bool SaveContent(CXmlStreamWriter& writer, const CElementLayout* layout);
    bool SaveLaidOutContent(CXmlStreamWriter& writer, const CElementLayout& layout);
    bool LoadChildren(CXmlStreamReader& reader);

    // The attribute table: the attributes of the class, then those that were added one by one.
    const CElementLayout* m_layout = nullptr;
    std::unique_ptr<std::vector<CReadOnlyAttribute*>> m_added;
};

inline CElementNode& CElementLayout::Child::In(const CElementNode& element) const
{
    if (get != nullptr) {
        return *get(element);
    }
    const char* const begin = reinterpret_cast<const char*>(&element);
    return *reinterpret_cast<CElementNode*>(const_cast<char*>(begin) + offset);
}

} // namespace KvDeviceFootprint

#endif
