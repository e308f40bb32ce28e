// What each element class does beside the walks: its table, its copies, and what an application may make of them.

#include "ApplicationElements.h"
#include "DeviceFootprint.h"
#include "ElementClasses.h"
#include "ElementText.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <utility>

namespace
{

using namespace KvDeviceFootprint;
using NyxTest::AttributesOf;
using NyxTest::CBranch;
using NyxTest::CBranchSorted;
using NyxTest::ChecksumText;
using NyxTest::ChildrenOf;
using NyxTest::CLeaf;
using NyxTest::Fill;
using NyxTest::LoadText;
using NyxTest::SaveText;

/// A table element that an application extends by hand.
class CNamedBios : public CBios
{
public:
    CNamedBios() { AddAttributeNode(m_extra); }
    CNamedBios(const CNamedBios& other) : CBios(other), m_extra(other.m_extra), m_identification(other.m_identification)
    {
        AddAttributeNode(m_extra);
    }
    CNamedBios& operator=(const CNamedBios& other)
    {
        if (this != &other) {
            CBios::operator=(other);
            m_extra = other.m_extra;
            m_identification = other.m_identification;
            AddAttributeNode(m_extra);
        }
        return *this;
    }
    ~CNamedBios() override = default;

    void GetChildElements(std::list<CElementNode*>& children) const override
    {
        children = {const_cast<CBPartIdentification*>(&m_identification)};
    }

    CAttribute m_extra{"extra"};
    CBPartIdentification m_identification;
};

/// Another base in front: the element does not begin where the object begins.
class CLabelled
{
public:
    CLabelled() = default;
    CLabelled(const CLabelled&) = default;
    CLabelled& operator=(const CLabelled&) = default;
    virtual ~CLabelled() = default;

    std::string m_label = "a label that is no part of the element";
};

class CMixed : public CLabelled, public CElement<CMixed>
{
    DFP_ELEMENT(CMixed, "Mixed")

public:
    DFP_ATTRIBUTE(second);
    DFP_ATTRIBUTE(first);
    DFP_CHILD(CService, service);
    DFP_ELEMENT_END
};
DFP_DEFINE_ELEMENT(CMixed)

class CPair : public CElement<CPair>
{
    DFP_ELEMENT(CPair, "Pair")

public:
    DFP_ATTRIBUTE(second);
    DFP_ATTRIBUTE(first);
    DFP_CHILD(CService, service);
    DFP_ELEMENT_END
};
DFP_DEFINE_ELEMENT(CPair)

/// Two children of one class, and so of one name, in front of one that sorts before them.
class CTwins : public CElement<CTwins>
{
    DFP_ELEMENT(CTwins, "Twins")

public:
    DFP_CHILD(CService, one);
    DFP_CHILD(CService, two);
    DFP_CHILD(CBios, bios);
    DFP_ELEMENT_END
};
DFP_DEFINE_ELEMENT(CTwins)

/// The names and values of an element and of its children that are members.
std::string Content(const CElementNode& element)
{
    std::string text = element.GetElementName() + "(";
    for (const CReadOnlyAttribute* attribute : AttributesOf(element)) {
        text += attribute->GetNodeName() + "=" + NarrowText(attribute->GetValue()) + ",";
    }
    for (const CElementNode* child : ChildrenOf(element)) {
        text += Content(*child);
    }
    return text + ")";
}

/// All attributes and children of an element, recursively. Those of a child that is held through a pointer have a root
/// of their own, the child.
void ExpectAllInside(const CElementNode& element, const void* begin, std::size_t size, const std::string& trace)
{
    const auto isInside = [&](const void* pointer) {
        return std::less_equal<>()(begin, pointer) &&
               std::less<>()(pointer, static_cast<const void*>(static_cast<const char*>(begin) + size));
    };
    for (const CReadOnlyAttribute* attribute : AttributesOf(element)) {
        EXPECT_TRUE(isInside(attribute)) << trace << "/" << attribute->GetNodeName();
    }
    for (const CElementNode* child : ChildrenOf(element)) {
        const std::string childTrace = trace + "/" + child->GetElementName();
        if (const auto* software = dynamic_cast<const CSoftwareList*>(child); software != nullptr && !isInside(child)) {
            ExpectAllInside(*child, software, sizeof(*software), childTrace);
        } else if (const auto* devices = dynamic_cast<const CConnectedDeviceList*>(child); devices != nullptr) {
            EXPECT_FALSE(isInside(child)) << childTrace;
            ExpectAllInside(*child, devices, sizeof(*devices), childTrace);
        } else {
            EXPECT_TRUE(isInside(child)) << childTrace;
            ExpectAllInside(*child, begin, size, childTrace);
        }
    }
}

template<class T>
void ExpectWhole(const T& element, const T& fresh, const std::string& trace)
{
    EXPECT_EQ(AttributesOf(element).size(), AttributesOf(fresh).size()) << trace;
    EXPECT_EQ(ChildrenOf(element).size(), ChildrenOf(fresh).size()) << trace;
    const auto* node = static_cast<const CElementNode*>(&element);
    ExpectAllInside(*node, &element, sizeof(T), trace);
}

template<class T>
class EveryElementClass : public testing::Test
{
};
TYPED_TEST_SUITE(EveryElementClass, NyxTest::PlainElementClasses);

TYPED_TEST(EveryElementClass, NamesItselfByItsStaticName)
{
    const TypeParam element;
    EXPECT_EQ(element.GetElementName(), TypeParam::s_ElementName);
    EXPECT_EQ(element.GetNodeName(), TypeParam::s_ElementName);
    EXPECT_FALSE(TypeParam::s_ElementName.empty());
    EXPECT_TRUE(element.IsOptional());
    EXPECT_TRUE(element.IsValid());
}

TYPED_TEST(EveryElementClass, PointsIntoItself)
{
    const TypeParam fresh;
    ExpectWhole(fresh, fresh, "fresh");
}

TYPED_TEST(EveryElementClass, CopyPointsIntoItselfAndIsIndependent)
{
    const TypeParam fresh;
    auto source = std::make_unique<TypeParam>();
    Fill(*source, L"one");
    const std::string before = Content(*source);
    TypeParam copy(*source);
    ExpectWhole(copy, fresh, "copy");
    ExpectWhole(*source, fresh, "source");
    EXPECT_EQ(Content(copy), before);
    Fill(*source, L"two");
    EXPECT_EQ(Content(copy), before);
    source.reset();
    EXPECT_EQ(Content(copy), before);
    Fill(copy, L"three");
    EXPECT_EQ(Content(copy) == before, before.find('=') == std::string::npos) << "unless there is nothing to change";
}

TYPED_TEST(EveryElementClass, AssignmentKeepsTheTableInTheTarget)
{
    const TypeParam fresh;
    TypeParam target;
    Fill(target, L"old");
    auto source = std::make_unique<TypeParam>();
    Fill(*source, L"new");
    const std::string content = Content(*source);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(&(target = *source), &target);
        ExpectWhole(target, fresh, "assigned");
        EXPECT_EQ(Content(target), content);
    }
    source.reset();
    EXPECT_EQ(Content(target), content);
    target = fresh;
    EXPECT_EQ(Content(target), Content(fresh)) << "empty values are assigned too";
}

TYPED_TEST(EveryElementClass, SelfAssignmentChangesNothing)
{
    const TypeParam fresh;
    TypeParam element;
    Fill(element, L"v");
    const std::string before = Content(element);
    const auto attributes = AttributesOf(element);
    const TypeParam& self = element;
    element = self;
    EXPECT_EQ(Content(element), before);
    EXPECT_EQ(AttributesOf(element), attributes);
    ExpectWhole(element, fresh, "self");
}

TYPED_TEST(EveryElementClass, MovingTakesTheContentAndLeavesTwoWholeElements)
{
    const TypeParam fresh;
    TypeParam source;
    Fill(source, L"a text too long to be held within");
    const std::string content = Content(source);
    const std::string saved = SaveText(source);
    TypeParam made(std::move(source));
    ExpectWhole(made, fresh, "made");
    ExpectWhole(source, fresh, "moved from");
    EXPECT_EQ(Content(made), content);
    TypeParam target;
    Fill(target, L"old");
    EXPECT_EQ(&(target = std::move(made)), &target);
    ExpectWhole(target, fresh, "assigned");
    ExpectWhole(made, fresh, "assigned from");
    EXPECT_EQ(SaveText(target), saved);
    Fill(source, L"again");
    Fill(made, L"again");
    EXPECT_EQ(Content(source), Content(made)) << "both can be used on";
}

TYPED_TEST(EveryElementClass, AttributesAreFoundByName)
{
    const TypeParam element;
    for (CReadOnlyAttribute* attribute : AttributesOf(element)) {
        EXPECT_EQ(element.GetAttributeByName(attribute->GetNodeName()), attribute);
        EXPECT_EQ(&element.GetAttributeValue(attribute->GetNodeName()), &attribute->GetValue());
    }
    for (CElementNode* child : ChildrenOf(element)) {
        EXPECT_EQ(element.GetChildElementByName(child->GetElementName()), child);
    }
}

TYPED_TEST(EveryElementClass, ClearEmptiesIt)
{
    TypeParam element;
    Fill(element, L"v");
    EXPECT_EQ(element.IsEmpty(), Content(element).find('=') == std::string::npos);
    element.Clear();
    EXPECT_TRUE(element.IsEmpty());
}

TEST(ElementCopy, MovesTakeListsOutOfTheirOwnEntries)
{
    CSoftware software;
    software.m_name = "outer";
    software.m_pSoftwareList->CreateEntry().m_name = "inner";
    software.m_pSoftwareList->front().m_pSoftwareList->CreateEntry().m_name = "innermost";
    CSoftware copy(software);
    software = std::move(software.m_pSoftwareList->front());
    EXPECT_EQ(software.m_name.GetValue(), L"inner");
    ASSERT_EQ(software.m_pSoftwareList->size(), 1U);
    EXPECT_EQ(software.m_pSoftwareList->front().m_name.GetValue(), L"innermost");

    CSoftwareList& list = *copy.m_pSoftwareList;
    list = std::move(*list.front().m_pSoftwareList);
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list.front().m_name.GetValue(), L"innermost");
    const CSoftware* entry = &list.front();
    CSoftwareList taken(std::move(list));
    EXPECT_EQ(&taken.front(), entry) << "entries stay where they are";
}

TEST(ElementCopy, HandWrittenClassKeepsItsTableOverCopies)
{
    CLeaf source;
    Fill(source, L"v");
    CLeaf copy(source);
    EXPECT_EQ(AttributesOf(copy), (std::list<CReadOnlyAttribute*>{&copy.m_b, &copy.m_a}));
    CLeaf target;
    target = source;
    target = copy;
    EXPECT_EQ(AttributesOf(target), (std::list<CReadOnlyAttribute*>{&target.m_b, &target.m_a}));
    const CLeaf& self = target;
    target = self;
    EXPECT_EQ(AttributesOf(target), (std::list<CReadOnlyAttribute*>{&target.m_b, &target.m_a}));
    EXPECT_EQ(target.m_a.GetValue(), L"v2");
}

/// Copies nothing of its own, so that what CElementNode copies can be seen.
class CBare : public CLeaf
{
public:
    CBare() = default;
    CBare(const CBare& other) : CLeaf(static_cast<const CLeaf&>(other)) {}
    CBare& operator=(const CBare& other)
    {
        CElementNode::operator=(other);
        return *this;
    }
    ~CBare() override = default;
};

TEST(ElementCopy, BaseAssignmentEmptiesTheTableAndCopiesNothing)
{
    CBare source;
    CBare target;
    Fill(source, L"v");
    target = source;
    EXPECT_TRUE(AttributesOf(target).empty());
    EXPECT_TRUE(target.m_a.IsEmpty());
    EXPECT_EQ(AttributesOf(source).size(), 2U);
}

TEST(ElementCopy, TableClassMergesAndComparesLikeAnyOther)
{
    CBranch source;
    Fill(source, L"v");
    CBranch target;
    EXPECT_TRUE(target.CopyFrom(source));
    EXPECT_EQ(Content(target), Content(source));
    CBranch loaded;
    EXPECT_TRUE(LoadText(loaded, SaveText(source)));
    EXPECT_EQ(Content(loaded), Content(source));
    CBranchSorted otherOrder;
    EXPECT_TRUE(LoadText(otherOrder, SaveText(source)));
    EXPECT_EQ(ChecksumText(otherOrder), ChecksumText(source));
}

template<class T>
void ExpectCopiesPointIntoThemselves()
{
    const T fresh;
    T source;
    Fill(source, L"v");
    const T copy(source);
    ExpectWhole(copy, fresh, "copy");
    T target;
    target = source;
    ExpectWhole(target, fresh, "target");
    EXPECT_EQ(Content(target), Content(source));
}

TEST(ElementCopy, TableClassCopiesPointIntoThemselves)
{
    ExpectCopiesPointIntoThemselves<CBranch>();
    ExpectCopiesPointIntoThemselves<CBranchSorted>();
    ExpectCopiesPointIntoThemselves<CNamedBios>();
    ExpectCopiesPointIntoThemselves<CPair>();
    ExpectCopiesPointIntoThemselves<CTwins>();
}

template<class T>
void ExpectRoundTrip(const std::string& canonical)
{
    T source;
    Fill(source, L"v");
    T loaded;
    EXPECT_TRUE(LoadText(loaded, SaveText(source)));
    EXPECT_EQ(Content(loaded), Content(source));
    EXPECT_EQ(SaveText(loaded), SaveText(source));
    EXPECT_EQ(ChecksumText(source), canonical);
    T merged;
    EXPECT_TRUE(merged.CopyFrom(source));
    EXPECT_EQ(Content(merged), Content(source));
    T inserted;
    EXPECT_TRUE(inserted.InsertFrom(source, true));
    EXPECT_EQ(Content(inserted), Content(source));
}

TEST(ElementCopy, ExtendedTableClassHasTheAddedAttributesAndChildren)
{
    ExpectRoundTrip<CNamedBios>("extra=\"v5\"name=\"v1\"partChangeIndex=\"v4\"partNumber=\"v3\"version=\"v2\""
                                "additionalInfo=\"v11\"name=\"v6\"partChangeIndex=\"v9\"partNumber=\"v7\"sn=\"v8\""
                                "vendorName=\"v10\"");
    CNamedBios bios;
    EXPECT_EQ(AttributesOf(bios).back(), &bios.m_extra);
    EXPECT_EQ(bios.GetAttributeByName("extra"), &bios.m_extra);
    bios.m_extra = L"x";
    EXPECT_FALSE(bios.IsEmpty());
    EXPECT_EQ(SaveText(bios), "<Bios extra=\"x\"");
    bios.Clear();
    EXPECT_TRUE(bios.m_extra.IsEmpty());
}

TEST(ElementCopy, TableClassMayHaveAnotherBaseInFront)
{
    CMixed mixed;
    ASSERT_EQ(AttributesOf(mixed), (std::list<CReadOnlyAttribute*>{&mixed.m_second, &mixed.m_first}));
    ExpectCopiesPointIntoThemselves<CMixed>();
    EXPECT_EQ(ChildrenOf(mixed), (std::list<CElementNode*>{&mixed.m_service}));
    ExpectRoundTrip<CMixed>("first=\"v2\"second=\"v1\"serviceCode=\"v3\"serviceDate=\"v4\"");
}

TEST(ElementCopy, TableClassMayHaveTwoChildrenOfOneName)
{
    CTwins twins;
    twins.m_one.m_serviceCode = L"1";
    twins.m_two.m_serviceCode = L"2";
    twins.m_bios.m_name = L"b";
    EXPECT_EQ(ChecksumText(twins), "name=\"b\"serviceCode=\"1\"serviceCode=\"2\"");
    EXPECT_EQ(SaveText(twins), "<Twins>\n  <Service serviceCode=\"1\"/>\n  <Service serviceCode=\"2\"/>\n"
                               "  <Bios name=\"b\"/>\n</Twins>\n");
    CTwins loaded;
    EXPECT_TRUE(LoadText(loaded, SaveText(twins)));
    EXPECT_EQ(loaded.m_one.m_serviceCode.GetValue(), L"2");
    EXPECT_TRUE(loaded.m_two.IsEmpty());
    CTwins copied;
    EXPECT_TRUE(copied.CopyFrom(twins));
    EXPECT_EQ(copied.m_one.m_serviceCode.GetValue(), L"1");
    EXPECT_EQ(copied.m_two.m_serviceCode.GetValue(), L"1");
    CTwins inserted;
    EXPECT_TRUE(inserted.InsertFrom(twins, true));
    EXPECT_EQ(inserted.m_one.m_serviceCode.GetValue(), L"2");
    EXPECT_TRUE(inserted.m_two.IsEmpty());
}

TEST(ElementCopy, AnAttributeThatTookAnotherNameByAssignmentGoesByThatName)
{
    CPair element;
    element.m_second = L"2";
    element.m_first = L"1";
    CAttribute renamed("zeroth");
    renamed = L"0";
    element.m_first = renamed;
    EXPECT_EQ(element.GetAttributeByName("zeroth"), &element.m_first);
    EXPECT_EQ(element.GetAttributeByName("first"), nullptr);
    element.m_service.m_serviceCode = L"s";
    EXPECT_EQ(SaveText(element), "<Pair second=\"2\" zeroth=\"0\">\n  <Service serviceCode=\"s\"/>\n</Pair>\n");
    EXPECT_EQ(ChecksumText(element), "second=\"2\"zeroth=\"0\"serviceCode=\"s\"");
    EXPECT_TRUE(LoadText(element, "<Pair first=\"f\" zeroth=\"z\">\n</Pair>\n"));
    EXPECT_EQ(element.m_first.GetValue(), L"z");
    EXPECT_TRUE(LoadText(element, "<Pair second=\"s\" first=\"f\">\n</Pair>\n"));
    EXPECT_TRUE(element.m_first.IsEmpty());
    const CAttribute alpha("alpha");
    element.m_second = alpha;
    element.m_second = L"a";
    element.m_first = renamed;
    EXPECT_EQ(ChecksumText(element), "alpha=\"a\"zeroth=\"0\"serviceCode=\"s\"");
    element.m_second = renamed;
    element.m_first = alpha;
    element.m_first = L"a";
    EXPECT_EQ(ChecksumText(element), "alpha=\"a\"zeroth=\"0\"serviceCode=\"s\"");
}

TEST(ElementCopy, OrderOfDeclarationDoesNotCountInAChecksum)
{
    CBranch branch;
    CBranchSorted sorted;
    Fill(branch, L"v");
    sorted.CopyFrom(branch);
    branch.m_serviceData.m_services.CreateEntry().m_serviceCode = L"1";
    sorted.m_serviceData.m_services.CreateEntry().m_serviceCode = L"1";
    EXPECT_NE(SaveText(branch), SaveText(sorted));
    EXPECT_EQ(ChecksumText(branch), ChecksumText(sorted));
    EXPECT_EQ(ChecksumText(branch), "alpha=\"v2\"beta=\"v3\"zeta=\"v1\""
                                    "additionalInfo=\"v9\"name=\"v4\"partChangeIndex=\"v7\"partNumber=\"v5\"sn=\"v6\""
                                    "vendorName=\"v8\""
                                    "serviceCode=\"1\"");
    EXPECT_EQ(SaveText(branch),
              "<Branch zeta=\"v1\" alpha=\"v2\" beta=\"v3\">\n"
              "  <ServiceData>\n    <Services>\n      <Service serviceCode=\"1\"/>\n    </Services>\n  </ServiceData>\n"
              "  <BPartIdentification name=\"v4\" partNumber=\"v5\" sn=\"v6\" partChangeIndex=\"v7\" vendorName=\"v8\" "
              "additionalInfo=\"v9\"/>\n"
              "</Branch>\n");
}

} // namespace
