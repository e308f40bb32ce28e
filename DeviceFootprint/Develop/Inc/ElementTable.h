#ifndef NYXCONFIG_ELEMENTTABLE_H
#define NYXCONFIG_ELEMENTTABLE_H

/**
 * @file
 * How an element class is written down. A class is a table: one row per attribute, then one row per child, each in the
 * order in which a file carries them. The order is stated by the rows alone; registration, child list, copying and
 * assignment follow from it.
 *
 *     class CExample : public CElement<CExample>
 *     {
 *         DFP_ELEMENT(CExample, "Example")
 *     public:
 *         DFP_ATTRIBUTE(name);               // CAttribute m_name, attribute name="..."
 *         DFP_CHILD(CProperties, properties); // CProperties m_properties
 *         DFP_ELEMENT_END
 *     };
 *
 * and DFP_DEFINE_ELEMENT(CExample) in one source file. The rows of a class stand on lines of their own, as a row is
 * found by its line between DFP_ELEMENT and DFP_ELEMENT_END.
 */

#include "ElementNode.h"

#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

namespace KvDeviceFootprint
{

/// The base of element classes written as tables. Registers the attributes of Derived for each new object, whether it
/// was made, copied, moved or assigned to, so that Derived needs no code for that.
template<class Derived>
class CElement : public CElementNode
{
protected:
    CElement() { AddAttributeNodes(Derived::Layout()); }
    CElement(const CElement& other) : CElementNode(other) { AddAttributeNodes(Derived::Layout()); }
    CElement& operator=(const CElement& other)
    {
        if (this != &other) {
            CElementNode::operator=(other);
            AddAttributeNodes(Derived::Layout());
        }
        return *this;
    }
    ~CElement() override = default;
};

/// An element owned through a pointer, for the two children that would otherwise contain themselves. Never null: made
/// with its owner, copied with it by value, deleted with it.
template<class T>
class COwnedElement
{
public:
    COwnedElement();
    COwnedElement(const COwnedElement& other);
    /// Takes the element over and leaves a new, empty one behind.
    COwnedElement(COwnedElement&& other);
    COwnedElement& operator=(const COwnedElement& other);
    /// Exchanges the elements.
    COwnedElement& operator=(COwnedElement&& other);
    ~COwnedElement();

    T* get() const { return m_element.get(); }
    T* operator->() const { return m_element.get(); }
    T& operator*() const { return *m_element; }
    operator T*() const { return m_element.get(); }

private:
    std::unique_ptr<T> m_element;
};

namespace ElementTable
{

template<int Number>
using Line = std::integral_constant<int, Number>;

template<class Element>
struct Rows;

template<class Element, class Member>
struct AttributeRow
{
    static constexpr bool IsAttribute = true;
    Member Element::*member;
    const CNodeName& (*name)();
};

template<class Element, class Member>
struct ChildRow
{
    static constexpr bool IsAttribute = false;
    Member Element::*member;
};

template<class Child, class = void>
struct HasTag : std::false_type
{
};

template<class Child>
struct HasTag<Child, std::void_t<decltype(Child::Tag)>> : std::true_type
{
};

/// Whether an attribute class is one of the library's, which bear the name that they are given.
template<class Member>
using HasPlainName = std::disjunction<std::is_same<Member, CAttribute>, std::is_same<Member, CReadOnlyAttribute>,
                                      std::is_same<Member, CTimeAttribute>>;

/// Whether an element class leaves it to the library to say when it is empty and left out. The type of an operation
/// tells the class that has it.
template<class Element, class = void>
struct HasPlainEmptiness : std::false_type
{
};

template<class Element>
struct HasPlainEmptiness<Element, std::void_t<decltype(&Element::IsEmpty), decltype(&Element::IsOptional)>>
    : std::bool_constant<std::is_same_v<decltype(&Element::IsEmpty), decltype(&CElementNode::IsEmpty)> &&
                         std::is_same_v<decltype(&Element::IsOptional), decltype(&CElementNode::IsOptional)>>
{
};

/// The tag of a child class. One that is not written as a table has its static name alone.
template<class Child>
const char* TagOf(const Child* /*type*/)
{
    if constexpr (HasTag<Child>::value) {
        return Child::Tag;
    } else {
        return Child::s_ElementName.c_str();
    }
}

template<class Child>
const char* TagOf(const COwnedElement<Child>* /*type*/)
{
    return TagOf(static_cast<const Child*>(nullptr));
}

/// Whether an element class has a layout and leaves its comparison to the library.
template<class Child, class = void>
struct HasPlainComparison : std::false_type
{
};

template<class Child>
struct HasPlainComparison<Child, std::void_t<decltype(Child::Layout()), decltype(&Child::Compare)>>
    : std::is_same<decltype(&Child::Compare), decltype(&CElementNode::Compare)>
{
};

/// Whether a class is a list that says itself what its children are.
template<class Child, class = void>
struct IsListWithChildren : std::false_type
{
};

template<class Child>
struct IsListWithChildren<Child, std::void_t<typename Child::value_type>>
    : std::is_same<decltype(&Child::GetChildElements), void (Child::*)(std::list<CElementNode*>&) const>
{
};

/// The layout by which objects of a child class are compared, or null. A class may have inherited that of another one.
template<class Child>
const CElementLayout* LayoutOf(const Child* /*type*/)
{
    if constexpr (HasPlainComparison<Child>::value && !IsListWithChildren<Child>::value) {
        const CElementLayout& layout = Child::Layout();
        return layout.Type() == typeid(Child) && !layout.HasTwins() ? &layout : nullptr;
    } else {
        return nullptr;
    }
}

template<class Child>
const CElementLayout* LayoutOf(const COwnedElement<Child>* /*type*/)
{
    return LayoutOf(static_cast<const Child*>(nullptr));
}

template<class Element, class Member>
constexpr AttributeRow<Element, Member> Attribute(Member Element::*member, const CNodeName& (*name)())
{
    return {member, name};
}

template<class Element, class Member>
constexpr ChildRow<Element, Member> Child(Member Element::*member)
{
    return {member};
}

} // namespace ElementTable
} // namespace KvDeviceFootprint

// The special members stand here, and not in the class by default, so that the library alone generates them.
#define DFP_ELEMENT_MEMBERS(Class)                                                                                     \
public:                                                                                                                \
    Class();                                                                                                           \
    Class(const Class& other);                                                                                         \
    Class& operator=(const Class& other);                                                                              \
    ~Class() override;                                                                                                 \
    void initAttributeNodes() override;                                                                                \
    void GetChildElements(std::list<::KvDeviceFootprint::CElementNode*>& children) const override;                     \
    /** What the rows say. */                                                                                          \
    static const ::KvDeviceFootprint::CElementLayout& Layout();                                                        \
                                                                                                                       \
private:                                                                                                               \
    template<class Element>                                                                                            \
    friend struct ::KvDeviceFootprint::ElementTable::Rows;                                                             \
    using TableClass = Class;                                                                                          \
    template<int Number>                                                                                               \
    static void TableRow(::KvDeviceFootprint::ElementTable::Line<Number>);                                             \
    static constexpr int TableBegin()                                                                                  \
    {                                                                                                                  \
        return __LINE__;                                                                                               \
    }

/// Begins the table of an element class: its name and its tag. Moving takes values and entries over and leaves an
/// element that can be used on, with unspecified values.
#define DFP_ELEMENT(Class, tag)                                                                                        \
public:                                                                                                                \
    static constexpr const char* Tag = tag;                                                                            \
    static const std::string s_ElementName;                                                                            \
    const std::string& GetElementName() const override;                                                                \
    [[maybe_unused]] Class(Class&& other);                                                                             \
    [[maybe_unused]] Class& operator=(Class&& other);                                                                  \
    DFP_ELEMENT_MEMBERS(Class)

/// Begins the table of a class that leaves the tag to the classes derived from it.
#define DFP_UNNAMED_ELEMENT(Class) DFP_ELEMENT_MEMBERS(Class)

#define DFP_ROW(row)                                                                                                   \
    static constexpr auto TableRow(::KvDeviceFootprint::ElementTable::Line<__LINE__>)                                  \
    {                                                                                                                  \
        return ::KvDeviceFootprint::ElementTable::row;                                                                 \
    }                                                                                                                  \
    static_assert(true, "")

/// A row of the table: an attribute of the given type, the member `m_name` with the name `name` in a file.
#define DFP_ATTRIBUTE_OF(Type, name)                                                                                   \
    Type m_##name{NameOf_##name()};                                                                                    \
    static const ::KvDeviceFootprint::CNodeName& NameOf_##name()                                                       \
    {                                                                                                                  \
        static const ::KvDeviceFootprint::CNodeName text(#name);                                                       \
        return text;                                                                                                   \
    }                                                                                                                  \
    DFP_ROW(Attribute(&TableClass::m_##name, &TableClass::NameOf_##name))

#define DFP_ATTRIBUTE(name) DFP_ATTRIBUTE_OF(::KvDeviceFootprint::CAttribute, name)

/// A row of the table: a child element held by value, the member `m_name`.
#define DFP_CHILD(Type, name)                                                                                          \
    Type m_##name;                                                                                                     \
    DFP_ROW(Child(&TableClass::m_##name))

/// A row of the table: a child element owned through a pointer, the member `m_pName`.
#define DFP_OWNED_CHILD(Type, Name)                                                                                    \
    ::KvDeviceFootprint::COwnedElement<Type> m_p##Name;                                                                \
    DFP_ROW(Child(&TableClass::m_p##Name))

/// Ends the table.
#define DFP_ELEMENT_END                                                                                                \
private:                                                                                                               \
    static constexpr int TableEnd()                                                                                    \
    {                                                                                                                  \
        return __LINE__;                                                                                               \
    }

namespace KvDeviceFootprint
{
namespace ElementTable
{

/// Walks the rows of an element class.
template<class Element>
struct Rows
{
    /// Copies the member of each row, in order.
    static void Assign(Element& target, const Element& source)
    {
        Walk([&](auto line) {
            constexpr auto row = Element::TableRow(line);
            target.*row.member = source.*row.member;
        });
    }

    static CElementLayout MakeLayout()
    {
        // Only addresses are computed; no object is needed for that, just room for one.
        alignas(Element) static char room[sizeof(Element)];
        const auto* element = reinterpret_cast<const Element*>(room);
        const auto* base = reinterpret_cast<const char*>(static_cast<const CElementNode*>(element));
        std::vector<CElementLayout::Attribute> attributes;
        std::vector<CElementLayout::Child> children;
        bool ownsNames = true;
        Walk([&](auto line) {
            constexpr auto row = Element::TableRow(line);
            if constexpr (row.IsAttribute) {
                ownsNames = ownsNames && HasPlainName<std::decay_t<decltype(element->*row.member)>>::value;
                attributes.push_back({reinterpret_cast<const char*>(&(element->*row.member)) - base, row.name()});
            } else {
                children.push_back(MakeChild<decltype(line)::value>(element->*row.member, base));
            }
        });
        return CElementLayout(typeid(Element), std::move(attributes), std::move(children),
                              {ownsNames, HasPlainEmptiness<Element>::value});
    }

private:
    /// Calls visit(line) for each line on which a row stands.
    template<class Visitor>
    static void Walk(Visitor&& visit)
    {
        WalkLines(visit, std::make_integer_sequence<int, Element::TableEnd() - Element::TableBegin()>{});
    }

    template<class Visitor, int... Offset>
    static void WalkLines(Visitor& visit, std::integer_sequence<int, Offset...>)
    {
        (VisitLine(visit, Line<Element::TableBegin() + Offset>{}), ...);
    }

    template<class Visitor, int Number>
    static void VisitLine([[maybe_unused]] Visitor& visit, Line<Number> line)
    {
        if constexpr (!std::is_void_v<decltype(Element::TableRow(line))>) {
            visit(line);
        }
    }

    template<int Number, class Member>
    static CElementLayout::Child MakeChild(const Member& child, const char* base)
    {
        const auto* address = reinterpret_cast<const char*>(static_cast<const CElementNode*>(&child));
        return {nullptr, address - base, TagOf(&child), LayoutOf(&child)};
    }
    template<int Number, class T>
    static CElementLayout::Child MakeChild(const COwnedElement<T>& child, const char* /*base*/)
    {
        return {&GetOwned<Number>, 0, TagOf(&child), LayoutOf(&child)};
    }

    template<int Number>
    static CElementNode* GetOwned(const CElementNode& element)
    {
        constexpr auto row = Element::TableRow(Line<Number>{});
        // The walks need one operation for reading and for changing, so it gives mutable children.
        return (static_cast<const Element&>(element).*row.member).get();
    }
};

} // namespace ElementTable

template<class T>
COwnedElement<T>::COwnedElement() : m_element(std::make_unique<T>())
{
}

template<class T>
COwnedElement<T>::COwnedElement(const COwnedElement& other) : m_element(std::make_unique<T>(*other.m_element))
{
}

template<class T>
COwnedElement<T>::COwnedElement(COwnedElement&& other) : m_element(std::make_unique<T>())
{
    m_element.swap(other.m_element);
}

template<class T>
COwnedElement<T>& COwnedElement<T>::operator=(const COwnedElement& other)
{
    if (this != &other) {
        // The copy is made first: the source may lie inside the element that is given up here.
        auto copy = std::make_unique<T>(*other.m_element);
        m_element = std::move(copy);
    }
    return *this;
}

template<class T>
COwnedElement<T>& COwnedElement<T>::operator=(COwnedElement&& other)
{
    m_element.swap(other.m_element);
    return *this;
}

template<class T>
COwnedElement<T>::~COwnedElement() = default;

} // namespace KvDeviceFootprint

/// Defines the operations that follow from the rows.
#define DFP_DEFINE_ELEMENT_TABLE(Class)                                                                                \
    const ::KvDeviceFootprint::CElementLayout& Class::Layout()                                                         \
    {                                                                                                                  \
        static const ::KvDeviceFootprint::CElementLayout layout =                                                      \
            ::KvDeviceFootprint::ElementTable::Rows<Class>::MakeLayout();                                              \
        return layout;                                                                                                 \
    }                                                                                                                  \
    void Class::initAttributeNodes()                                                                                   \
    {                                                                                                                  \
        AddAttributeNodes(Layout());                                                                                   \
    }                                                                                                                  \
    void Class::GetChildElements(std::list<::KvDeviceFootprint::CElementNode*>& children) const                        \
    {                                                                                                                  \
        children.clear();                                                                                              \
        for (const ::KvDeviceFootprint::CElementLayout::Child& row : Layout().Children()) {                            \
            children.push_back(&row.In(*this));                                                                        \
        }                                                                                                              \
    }

#define DFP_DEFINE_ELEMENT_NAME(Class)                                                                                 \
    const std::string Class::s_ElementName(Class::Tag);                                                                \
    const std::string& Class::GetElementName() const                                                                   \
    {                                                                                                                  \
        return s_ElementName;                                                                                          \
    }

/// Defines what DFP_ELEMENT declares. Stands in one source file, in the namespace of the class.
#define DFP_DEFINE_ELEMENT(Class)                                                                                      \
    Class::Class() = default;                                                                                          \
    Class::Class(const Class& other) = default;                                                                        \
    Class::Class(Class&& other) = default;                                                                             \
    Class& Class::operator=(const Class& other) = default;                                                             \
    Class& Class::operator=(Class&& other) = default;                                                                  \
    Class::~Class() = default;                                                                                         \
    DFP_DEFINE_ELEMENT_NAME(Class)                                                                                     \
    DFP_DEFINE_ELEMENT_TABLE(Class)

#endif
