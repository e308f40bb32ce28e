#include "ElementNode.h"

#include "ApplicationElements.h"
#include "DeviceFootprint.h"
#include "ElementText.h"
#include "ErrorWord.h"
#include "StreamCapture.h"
#include "XmlStreams.h"

#include <gtest/gtest.h>

#include <iostream>
#include <list>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using namespace KvDeviceFootprint;
using NyxTest::AttributesOf;
using NyxTest::CBranch;
using NyxTest::CFreeElement;
using NyxTest::ChecksumText;
using NyxTest::ChildrenOf;
using NyxTest::CLeaf;
using NyxTest::ErrorWord;
using NyxTest::Fill;
using NyxTest::LoadText;
using NyxTest::SaveText;
using NyxTest::StreamCapture;

class ElementNode : public testing::Test
{
protected:
    ErrorWord m_errors;
    StreamCapture m_output{std::cout};
};

TEST_F(ElementNode, ResultsOfVirtualOperationsByDefault)
{
    const CLeaf leaf;
    EXPECT_EQ(leaf.GetNodeName(), "Leaf");
    EXPECT_EQ(&leaf.GetNodeName(), &leaf.GetElementName());
    EXPECT_TRUE(leaf.IsOptional());
    EXPECT_TRUE(leaf.IsValid());
    EXPECT_TRUE(std::is_abstract_v<CElementNode>);
}

TEST_F(ElementNode, GetAttributeNodesReplacesTheListByTheTableInOrder)
{
    CLeaf leaf;
    CAttribute stranger("x");
    std::list<CReadOnlyAttribute*> attributes{&stranger};
    leaf.GetAttributeNodes(attributes);
    EXPECT_EQ(attributes, (std::list<CReadOnlyAttribute*>{&leaf.m_b, &leaf.m_a}));
}

TEST_F(ElementNode, TableClassRegistersRowsInOrder)
{
    CBranch branch;
    EXPECT_EQ(AttributesOf(branch), (std::list<CReadOnlyAttribute*>{&branch.m_zeta, &branch.m_alpha, &branch.m_beta}));
    std::list<CElementNode*> children{nullptr};
    branch.GetChildElements(children);
    EXPECT_EQ(children, (std::list<CElementNode*>{&branch.m_serviceData, &branch.m_bPartIdentification}));
    EXPECT_EQ(CBranch::s_ElementName, "Branch");
    EXPECT_EQ(branch.GetElementName(), "Branch");
    EXPECT_EQ(branch.m_zeta.GetNodeName(), "zeta");
}

TEST_F(ElementNode, AppendingTheAttributesOnceMoreAppends)
{
    CLeaf leaf;
    leaf.initAttributeNodes();
    EXPECT_EQ(AttributesOf(leaf), (std::list<CReadOnlyAttribute*>{&leaf.m_b, &leaf.m_a, &leaf.m_b, &leaf.m_a}));
}

TEST_F(ElementNode, GetAttributeByNameIsExactAndFindsTheFirst)
{
    CFreeElement element("E", {"sn", "name", "sn"});
    EXPECT_EQ(element.GetAttributeByName("sn"), &element[0]);
    EXPECT_EQ(element.GetAttributeByName("name"), &element[1]);
    for (const char* name : {"", "s", "snx", "SN", "Name", "name "}) {
        EXPECT_EQ(element.GetAttributeByName(name), nullptr) << name;
    }
}

TEST_F(ElementNode, GetAttributeValueOfAnUnknownNameIsOneLastingEmptyText)
{
    CLeaf leaf;
    leaf.m_a = L"x";
    EXPECT_EQ(leaf.GetAttributeValue("a"), L"x");
    EXPECT_EQ(leaf.GetAttributeValue("b"), L"");
    const std::wstring* unknown = nullptr;
    {
        const CLeaf shortLived;
        unknown = &shortLived.GetAttributeValue("nothing");
    }
    EXPECT_EQ(*unknown, L"");
    EXPECT_EQ(unknown, &leaf.GetAttributeValue("other"));
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(ElementNode, ChildrenAreFoundByExactName)
{
    CLeaf hardware("Hardware");
    CLeaf first("HardwareList");
    CLeaf second("HardwareList");
    const CFreeElement parent("Parent", {}, {&hardware, &first, &second});
    EXPECT_EQ(parent.GetChildElementByName("HardwareList"), &first);
    EXPECT_EQ(parent.GetChildElementByName("Hardware"), &hardware);
    EXPECT_EQ(parent.GetChildElementByName("Hard"), nullptr);
    EXPECT_EQ(parent.GetChildElementByName("hardware"), nullptr);
    EXPECT_EQ(parent.GetChildElementByName(""), nullptr);

    std::list<CElementNode*> found{&hardware};
    parent.GetAllChildsByName("HardwareList", found);
    EXPECT_EQ(found, (std::list<CElementNode*>{&hardware, &first, &second}));
    parent.GetAllChildsByName("Hard", found);
    EXPECT_EQ(found.size(), 3U);
}

TEST_F(ElementNode, FindChildElementTakesTheFirstWhoseNameBeginsTheTag)
{
    CLeaf hardware("Hardware");
    CLeaf list("HardwareList");
    std::istringstream text("<HardwareList>\n<Hardware/>\n</HardwareList>\n<Hard/>\n");
    const std::string name;
    CXmlStreamReader reader(text, name);
    ASSERT_TRUE(reader.NextToken());
    EXPECT_EQ(CElementNode::FindChildElement({&hardware, &list}, reader), &hardware);
    EXPECT_EQ(CElementNode::FindChildElement({&list, &hardware}, reader), &list);
    EXPECT_EQ(CElementNode::FindChildElement({}, reader), nullptr);
    ASSERT_TRUE(reader.NextToken());
    EXPECT_EQ(CElementNode::FindChildElement({&list, &hardware}, reader), &hardware);
    ASSERT_TRUE(reader.NextToken());
    EXPECT_EQ(CElementNode::FindChildElement({&list, &hardware}, reader), nullptr);
    ASSERT_TRUE(reader.NextToken());
    EXPECT_EQ(CElementNode::FindChildElement({&list, &hardware}, reader), nullptr);
}

TEST_F(ElementNode, IsEmptyLooksAtAttributesAndAllLevelsOfChildren)
{
    CFreeElement grandchild("G", {"x"});
    CFreeElement child("C", {}, {&grandchild});
    CFreeElement element("E", {"y", "z"}, {&child});
    EXPECT_TRUE(element.IsEmpty());
    element[1] = L"v";
    EXPECT_FALSE(element.IsEmpty());
    EXPECT_TRUE(child.IsEmpty());
    element[1].Clear();
    grandchild[0] = L"v";
    EXPECT_FALSE(element.IsEmpty());
    EXPECT_FALSE(child.IsEmpty());
}

TEST_F(ElementNode, ClearEmptiesAttributesAndChildrenAndKeepsTheChildren)
{
    CFreeElement grandchild("G", {"x"});
    CFreeElement child("C", {"w"}, {&grandchild});
    CFreeElement element("E", {"y", "z"}, {&child});
    Fill(element, L"v");
    element.Clear();
    EXPECT_TRUE(element.IsEmpty());
    EXPECT_TRUE(element[0].IsEmpty() && element[1].IsEmpty() && child[0].IsEmpty() && grandchild[0].IsEmpty());
    EXPECT_EQ(ChildrenOf(element), (std::list<CElementNode*>{&child}));
}

TEST_F(ElementNode, ClearEmptiesChildListsToo)
{
    CMaintenanceInfo info;
    info.m_name = L"n";
    info.m_properties.CreateEntry().m_name = L"p";
    info.Clear();
    EXPECT_TRUE(info.m_name.IsEmpty());
    EXPECT_TRUE(info.m_properties.empty());
}

// Saving

TEST_F(ElementNode, SavesNothingAtAllWhileEmpty)
{
    CFreeElement child("C", {"x"});
    CFreeElement element("E", {"y"}, {&child});
    bool saved = false;
    EXPECT_EQ(SaveText(element, &saved), "");
    EXPECT_TRUE(saved);
}

TEST_F(ElementNode, SavesItselfWhileEmptyIfItIsNotOptional)
{
    CFreeElement child("C", {"x"});
    child.m_optional = false;
    CFreeElement element("E", {"y"}, {&child});
    element.m_optional = false;
    EXPECT_EQ(SaveText(element), "<E>\n  <C/>\n</E>\n");
}

TEST_F(ElementNode, SavesAttributesWithOnlyEmptyChildrenInTheOneTagForm)
{
    CFreeElement grandchild("G", {"x"});
    CFreeElement child("C", {"w", "v"}, {&grandchild});
    CFreeElement element("E", {}, {&child});
    child[1] = L"1";
    EXPECT_EQ(SaveText(element), "<E>\n  <C v=\"1\"/>\n</E>\n");
}

TEST_F(ElementNode, SavesInTableOrder)
{
    CFreeElement last("Z", {"y", "x"});
    CFreeElement first("A", {"n"});
    CFreeElement element("E", {"d", "c", "e"}, {&last, &first});
    Fill(element, L"");
    EXPECT_EQ(SaveText(element), "<E d=\"1\" c=\"2\" e=\"3\">\n  <Z y=\"4\" x=\"5\"/>\n  <A n=\"6\"/>\n</E>\n");
}

TEST_F(ElementNode, ChecksumGoesByNameAtEachLevel)
{
    CFreeElement grandLast("Y", {"u", "t"});
    CFreeElement grandFirst("B", {"s"});
    CFreeElement last("Z", {"y", "x"}, {&grandLast, &grandFirst});
    CFreeElement first("A", {"n"});
    CFreeElement element("E", {"d", "c", "e"}, {&last, &first});
    Fill(element, L"");
    EXPECT_EQ(ChecksumText(element), "c=\"2\"d=\"1\"e=\"3\""
                                     "n=\"9\""
                                     "x=\"5\"y=\"4\""
                                     "s=\"8\""
                                     "t=\"7\"u=\"6\"");
    // The node's own table and children stay in order.
    EXPECT_EQ(SaveText(element).substr(0, 20), "<E d=\"1\" c=\"2\" e=\"3\"");
}

TEST_F(ElementNode, ChecksumKeepsTheOrderOfChildrenOfOneName)
{
    std::vector<std::unique_ptr<CFreeElement>> owners;
    std::vector<CElementNode*> children;
    std::string expected;
    for (int i = 0; i < 40; ++i) {
        owners.push_back(std::make_unique<CFreeElement>("Same", std::vector<const char*>{"n"}));
        (*owners.back())[0].SetInteger(i);
        children.push_back(owners.back().get());
        expected += "n=\"" + std::to_string(i) + "\"";
    }
    CFreeElement other("Other", {"o"});
    other[0] = L"x";
    children.push_back(&other);
    CFreeElement element("E", {}, children);
    EXPECT_EQ(ChecksumText(element), "o=\"x\"" + expected);
}

/// Fails to save or load behind its start tag.
class CFailingElement : public CLeaf
{
public:
    using CLeaf::CLeaf;
    bool IsEmpty() const override { return false; }
    bool SaveToStream(CXmlStreamWriter& writer) override
    {
        writer.BeginElement(GetElementName());
        return false;
    }
    bool LoadFromStream(CXmlStreamReader& reader) override
    {
        reader.NextToken();
        return false;
    }
    bool CopyFrom(const CElementNode& /*other*/) override { return false; }
    bool InsertFrom(const CElementNode& /*other*/, bool /*recursive*/) override { return false; }
};

TEST_F(ElementNode, SaveStopsAtTheFirstChildThatFails)
{
    CFreeElement before("B", {"x"});
    CFailingElement failing("F");
    CFreeElement after("A", {"x"});
    CFreeElement element("E", {}, {&before, &failing, &after});
    before[0] = L"1";
    after[0] = L"2";
    bool saved = true;
    EXPECT_EQ(SaveText(element, &saved), "<E>\n  <B x=\"1\"/>\n  <F");
    EXPECT_FALSE(saved);
}

// Loading

TEST_F(ElementNode, LoadReplacesEveryAttribute)
{
    CLeaf leaf;
    Fill(leaf, L"old");
    std::istringstream text("<Leaf a=\"1\"/>\n<Next/>\n");
    const std::string name;
    CXmlStreamReader reader(text, name);
    ASSERT_TRUE(reader.NextToken());
    EXPECT_TRUE(leaf.LoadFromStream(reader));
    EXPECT_EQ(leaf.m_a.GetValue(), L"1");
    EXPECT_TRUE(leaf.m_b.IsEmpty());
    EXPECT_EQ(reader.GetCurrentElement(), "<Next/>");
}

TEST_F(ElementNode, LoadDoesNotTestItsOwnStartTag)
{
    CLeaf leaf;
    EXPECT_FALSE(LoadText(leaf, "<Other a=\"1\">\n</Other>\n<X/>\n"));
    EXPECT_EQ(leaf.m_a.GetValue(), L"1");
    EXPECT_TRUE(LoadText(leaf, "<Other a=\"2\"/>\n<X/>\n"));
    EXPECT_EQ(leaf.m_a.GetValue(), L"2");
}

TEST_F(ElementNode, LoadOfAOneTagElementGivesTheResultOfTheNextToken)
{
    CLeaf leaf;
    EXPECT_TRUE(LoadText(leaf, "<Leaf a=\"1\"/>\n<X/>\n"));
    EXPECT_FALSE(LoadText(leaf, "<Leaf a=\"2\"/>\n"));
    EXPECT_EQ(leaf.m_a.GetValue(), L"2");
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
    EXPECT_FALSE(LoadText(leaf, "<Leaf a=\"3\"/>\n\xFF\n"));
    EXPECT_EQ(m_errors.Text(), "in, line 2, UTF-8 encoding error, lead is invalid");
}

TEST_F(ElementNode, LoadEndsWithTheLastLineOfTheText)
{
    CLeaf leaf;
    EXPECT_TRUE(LoadText(leaf, "<Leaf a=\"1\">\n</Leaf>\n"));
    EXPECT_TRUE(LoadText(leaf, "<Leaf a=\"1\">\n</Leaf>"));
    // Whatever the token behind the end tag is, it does not count.
    EXPECT_TRUE(LoadText(leaf, "<Leaf a=\"1\">\n</Leaf>\n\xFF\n"));
    EXPECT_FALSE(LoadText(leaf, "<Leaf a=\"2\">"));
    EXPECT_FALSE(LoadText(leaf, "<Leaf a=\"3\">\n"));
    EXPECT_EQ(leaf.m_a.GetValue(), L"3");
}

TEST_F(ElementNode, LoadOfAWrongEndTagIsFalseWithoutAText)
{
    CFreeElement child("C", {"x"});
    CFreeElement element("E", {}, {&child});
    EXPECT_FALSE(LoadText(element, "<E>\n<C x=\"1\">\n</D>\n</E>\n"));
    EXPECT_EQ(child[0].GetValue(), L"1");
    EXPECT_FALSE(LoadText(element, "<E>\n</F>\n"));
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
    EXPECT_EQ(m_output.Text(), "");
    // A longer name ends it just as well.
    EXPECT_TRUE(LoadText(element, "<E>\n</Ending>\n"));
}

TEST_F(ElementNode, LoadStopsAtTheFirstChildThatFails)
{
    CFailingElement failing("F");
    CFreeElement after("A", {"x"});
    CFreeElement element("E", {}, {&failing, &after});
    EXPECT_FALSE(LoadText(element, "<E>\n<F/>\n<A x=\"1\"/>\n</E>\n"));
    EXPECT_TRUE(after.IsEmpty());
}

TEST_F(ElementNode, LoadTakesChildrenInAnyOrderAndTheLastOfOneNameStays)
{
    CFreeElement first("A", {"x", "y"});
    CFreeElement second("B", {"x"});
    CFreeElement unmentioned("C", {"x"});
    CFreeElement element("E", {}, {&first, &second, &unmentioned});
    unmentioned[0] = L"kept";
    EXPECT_TRUE(LoadText(element, "<E>\n<B x=\"1\"/>\n<A x=\"2\" y=\"3\"/>\n<A x=\"4\"/>\n</E>\n"));
    EXPECT_EQ(second[0].GetValue(), L"1");
    EXPECT_EQ(first[0].GetValue(), L"4");
    EXPECT_TRUE(first[1].IsEmpty());
    EXPECT_EQ(unmentioned[0].GetValue(), L"kept");
}

TEST_F(ElementNode, LoadAsksForItsChildrenOnce)
{
    CFreeElement child("A", {"x"});
    CFreeElement element("E", {}, {&child});
    EXPECT_TRUE(LoadText(element, "<E>\n<A x=\"1\"/>\n<A x=\"2\"/>\n<A x=\"3\"/>\n</E>\n"));
    EXPECT_EQ(element.m_childWalks, 1);
}

TEST_F(ElementNode, LoadLetsTheOrderOfChildrenDecideBetweenNames)
{
    CFreeElement hardware("Hardware", {"x"});
    CFreeElement list("HardwareList", {"x"});
    CFreeElement element("E", {}, {&hardware, &list});
    const std::string text = "<E>\n<HardwareList x=\"1\">\n</HardwareList>\n<Hardware x=\"2\"/>\n</E>\n";
    EXPECT_TRUE(LoadText(element, text));
    EXPECT_EQ(hardware[0].GetValue(), L"2");
    EXPECT_TRUE(list.IsEmpty());
    CFreeElement otherOrder("E", {}, {&list, &hardware});
    EXPECT_TRUE(LoadText(otherOrder, text));
    EXPECT_EQ(list[0].GetValue(), L"1");
}

TEST_F(ElementNode, LoadAnnouncesAndSkipsUnknownTags)
{
    CFreeElement child("A", {"x"});
    CFreeElement element("E", {}, {&child});
    EXPECT_TRUE(LoadText(element,
                         "<E>\n"
                         "  <Unknown a=\"1\">\n    <A x=\"inner\"/>\n    <Deeper>\n    </Deeper>\n  </Unknown>\n"
                         "  <A x=\"1\"/>\n"
                         "\t<Other \xC3\xA4/>\r\n"
                         "</E>\n"));
    EXPECT_EQ(child[0].GetValue(), L"1");
    EXPECT_EQ(m_output.Text(), "Found invalid tag: <Unknown a=\"1\">\nFound invalid tag: <Other \xE4/>\n");
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

/// Counts the flushes.
class FlushCounter : public std::stringbuf
{
public:
    int m_flushes = 0;

protected:
    int sync() override
    {
        ++m_flushes;
        return 0;
    }
};

TEST_F(ElementNode, LoadFlushesEachAnnouncement)
{
    FlushCounter buffer;
    std::streambuf* former = std::cout.rdbuf(&buffer);
    CLeaf leaf;
    EXPECT_TRUE(LoadText(leaf, "<Leaf>\n<U/>\n<V/>\n</Leaf>\n"));
    std::cout.rdbuf(former);
    EXPECT_EQ(buffer.str(), "Found invalid tag: <U/>\nFound invalid tag: <V/>\n");
    EXPECT_GE(buffer.m_flushes, 2);
}

TEST_F(ElementNode, LoadFailsIfTheTextEndsInsideAnUnknownTag)
{
    CFreeElement child("A", {"x"});
    CFreeElement element("E", {}, {&child});
    for (const char* text : {"<E>\n<Unknown>\n", "<E>\n<Unknown>\n<U2/>\n", "<E>\n<Unknown/>\n", "<E>\n<U>\n</U>\n"}) {
        EXPECT_FALSE(LoadText(element, text)) << text;
    }
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(ElementNode, LoadOfABlankLineInAnElementWithoutChildrenTakesItForAnUnknownTag)
{
    CLeaf leaf;
    // What begins with the blank line ends with the next end tag.
    EXPECT_FALSE(LoadText(leaf, "<Leaf>\n\n</Leaf>\n"));
    EXPECT_TRUE(LoadText(leaf, "<Leaf>\n\n</Any>\n</Leaf>\n"));
    EXPECT_EQ(m_output.Text(), "Found invalid tag: \nFound invalid tag: \n");
}

TEST_F(ElementNode, LoadOfABlankLineBetweenChildrenThrows)
{
    CFreeElement child("A", {"x"});
    CFreeElement element("E", {}, {&child});
    EXPECT_THROW(LoadText(element, "<E>\n\n</E>\n"), std::out_of_range);
    EXPECT_THROW(LoadText(element, "<E>\n<A x=\"1\"/>\n\n</E>\n"), std::out_of_range);
    EXPECT_THROW(LoadText(element, "<E>\n \t\n</E>\n"), std::out_of_range);
    EXPECT_THROW(LoadText(element, "<E>\n<U>\n \n</U>\n</E>\n"), std::out_of_range);
    EXPECT_THROW(LoadText(element, "<E>\n<A>\n</A>\n"), std::out_of_range) << "the text ends behind an end tag";
}

TEST_F(ElementNode, LoadOfBadTextInsideReportsIt)
{
    CFreeElement child("A", {"x"});
    CFreeElement element("E", {}, {&child});
    EXPECT_FALSE(LoadText(element, "<E>\n<A x=\"1\">\n\xC3(\n</A>\n</E>\n"));
    EXPECT_EQ(m_errors.Take(), "in, line 3, UTF-8 encoding error, sequence incomplete");
    EXPECT_FALSE(LoadText(element, "<E>\n<Unknown>\n\xC3\n</Unknown>\n</E>\n"));
    EXPECT_EQ(m_errors.Take(), "in, line 3, UTF-8 encoding error");
    CDeviceFootprint::EnableExceptions(true);
    EXPECT_THROW(LoadText(element, "<E>\n\xFF\n</E>\n"), std::exception);
}

// Merging

TEST_F(ElementNode, CopyFromTakesWhatIsNotEmpty)
{
    CFreeElement child("C", {"x", "y"});
    CFreeElement element("E", {"a", "b"}, {&child});
    CFreeElement otherChild("C", {"x", "y"});
    CFreeElement other("E", {"a", "b"}, {&otherChild});
    Fill(element, L"old");
    other[0] = L"new";
    otherChild[1] = L"new too";
    EXPECT_TRUE(element.CopyFrom(other));
    EXPECT_EQ(element[0].GetValue(), L"new");
    EXPECT_EQ(element[1].GetValue(), L"old2");
    EXPECT_EQ(child[0].GetValue(), L"old3");
    EXPECT_EQ(child[1].GetValue(), L"new too");
    EXPECT_TRUE(other[1].IsEmpty());
}

TEST_F(ElementNode, CopyFromTakesTheFirstCounterpartOfAName)
{
    CFreeElement first("C", {"x"});
    CFreeElement second("C", {"x"});
    CFreeElement element("E", {}, {&first, &second});
    CFreeElement otherFirst("C", {"x"});
    CFreeElement otherSecond("C", {"x"});
    CFreeElement other("E", {}, {&otherFirst, &otherSecond});
    otherFirst[0] = L"1";
    otherSecond[0] = L"2";
    EXPECT_TRUE(element.CopyFrom(other));
    EXPECT_EQ(first[0].GetValue(), L"1");
    EXPECT_EQ(second[0].GetValue(), L"1");
}

TEST_F(ElementNode, CopyFromOfItselfChangesNothing)
{
    CBranch branch;
    Fill(branch, L"v");
    const std::string before = SaveText(branch);
    EXPECT_TRUE(branch.CopyFrom(branch));
    EXPECT_TRUE(branch.InsertFrom(branch, true));
    EXPECT_EQ(SaveText(branch), before);
    CFailingElement failing("F");
    CFreeElement element("E", {}, {&failing});
    EXPECT_TRUE(element.CopyFrom(element));
    EXPECT_TRUE(element.InsertFrom(element, true));
}

TEST_F(ElementNode, CopyFromEndsWithAChildThatFails)
{
    CFreeElement before("B", {"x"});
    CFailingElement failing("F");
    CFreeElement after("A", {"x"});
    CFreeElement element("E", {"n"}, {&before, &failing, &after});
    CFreeElement otherBefore("B", {"x"});
    CLeaf otherFailing("F");
    CFreeElement otherAfter("A", {"x"});
    CFreeElement other("E", {"n"}, {&otherBefore, &otherFailing, &otherAfter});
    Fill(other, L"v");
    EXPECT_FALSE(element.CopyFrom(other));
    EXPECT_EQ(element[0].GetValue(), L"v1");
    EXPECT_EQ(before[0].GetValue(), L"v2");
    EXPECT_TRUE(after.IsEmpty());
    EXPECT_FALSE(element.InsertFrom(other, true));
    EXPECT_TRUE(after.IsEmpty());
}

TEST_F(ElementNode, CopyFromSurvivesAMissingCounterpart)
{
    CFreeElement only("Only", {"x"});
    CFreeElement common("Common", {"x"});
    CFreeElement element("E", {"a", "onlyHere"}, {&common, &only});
    CFreeElement otherCommon("Common", {"x"});
    CFreeElement other("E", {"onlyThere", "a"}, {&otherCommon});
    Fill(element, L"old");
    Fill(other, L"new");
    element.CopyFrom(other);
    EXPECT_EQ(element[0].GetValue(), L"new2");
    EXPECT_EQ(element[1].GetValue(), L"old2");
    EXPECT_EQ(common[0].GetValue(), L"new3");
    EXPECT_EQ(only[0].GetValue(), L"old4");
}

TEST_F(ElementNode, InsertFromDropsWhatHasNoCounterpart)
{
    CFreeElement only("Only", {"x"});
    CFreeElement common("Common", {"x"});
    CFreeElement element("E", {"a", "b", "onlyHere"}, {&only, &common});
    CFreeElement there("There", {"x"});
    CFreeElement otherCommon("Common", {"x", "y"});
    CFreeElement other("F", {"onlyThere", "b", "a"}, {&there, &otherCommon});
    Fill(element, L"old");
    Fill(other, L"new");
    other[1].Clear();
    EXPECT_TRUE(element.InsertFrom(other, true));
    EXPECT_EQ(element[0].GetValue(), L"new3");
    EXPECT_EQ(element[1].GetValue(), L"old2");
    EXPECT_EQ(element[2].GetValue(), L"old3");
    EXPECT_EQ(only[0].GetValue(), L"old4");
    EXPECT_EQ(common[0].GetValue(), L"new5");
}

TEST_F(ElementNode, InsertFromTakesTheFirstCounterpartAndTheLastSource)
{
    CFreeElement first("C", {"x"});
    CFreeElement second("C", {"x"});
    CFreeElement element("E", {"a", "a"}, {&first, &second});
    CFreeElement otherFirst("C", {"x"});
    CFreeElement otherSecond("C", {"x"});
    CFreeElement other("E", {"a", "a"}, {&otherFirst, &otherSecond});
    Fill(other, L"");
    EXPECT_TRUE(element.InsertFrom(other, true));
    EXPECT_EQ(element[0].GetValue(), L"2");
    EXPECT_TRUE(element[1].IsEmpty());
    EXPECT_EQ(first[0].GetValue(), L"4");
    EXPECT_TRUE(second.IsEmpty());
}

TEST_F(ElementNode, InsertFromWithoutRecursionCopiesAttributesOnly)
{
    CBranch element;
    CBranch other;
    Fill(other, L"v");
    other.m_serviceData.m_services.CreateEntry().m_serviceCode = L"1";
    EXPECT_TRUE(element.InsertFrom(other, false));
    EXPECT_EQ(element.m_zeta.GetValue(), L"v1");
    EXPECT_EQ(element.m_beta.GetValue(), L"v3");
    EXPECT_TRUE(element.m_bPartIdentification.IsEmpty());
    EXPECT_TRUE(element.m_serviceData.m_services.empty());
    EXPECT_TRUE(element.InsertFrom(other, true));
    EXPECT_EQ(SaveText(element), SaveText(other));
}

TEST_F(ElementNode, RelationshipIsOneSided)
{
    const struct
    {
        const wchar_t* a;
        const wchar_t* otherA;
        const wchar_t* otherB;
        int code;
    } rows[] = {
        {L"", L"", L"", 2},    {L"", L"x", L"y", 2}, {L"x", L"x", L"", 2},  {L"x", L"x", L"y", 2},
        {L"x", L"y", L"", -1}, {L"x", L"", L"", -1}, {L"x", L"X", L"", -1}, {L"x", L"xx", L"", -1},
    };
    for (const auto& row : rows) {
        CLeaf leaf;
        leaf.m_a = row.a;
        CLeaf other("OfAnotherName");
        other.m_a = row.otherA;
        other.m_b = row.otherB;
        EXPECT_EQ(leaf.GetRelationship(other), row.code) << NarrowText(row.a) << "/" << NarrowText(row.otherA);
    }
}

TEST_F(ElementNode, RelationshipLooksAtAllAttributesAndNoChildren)
{
    CBranch element;
    CBranch other;
    element.m_zeta = L"1";
    other.m_zeta = L"1";
    element.m_beta.Set(std::wstring(L"2"));
    EXPECT_EQ(element.GetRelationship(other), -1);
    EXPECT_EQ(other.GetRelationship(element), 2);
    other.m_beta.Set(std::wstring(L"2"));
    element.m_bPartIdentification.m_name = L"x";
    other.m_bPartIdentification.m_name = L"y";
    EXPECT_EQ(element.GetRelationship(other), 2);
    const CBios unlike;
    EXPECT_EQ(element.GetRelationship(unlike), -1);
    EXPECT_EQ(unlike.GetRelationship(element), 2);
    EXPECT_EQ(CElementNode::eUnrelated, -1);
    EXPECT_EQ(CElementNode::eThisIsOlder, 0);
    EXPECT_EQ(CElementNode::eThisIsNewer, 1);
    EXPECT_EQ(CElementNode::eSameAge, 2);
}

TEST_F(ElementNode, LoadAndMergesOfATimeAttributeLeaveTheSeconds)
{
    CDeviceFootprint saved;
    saved.m_creationDate.SetCreationDateToCurrent();
    const CTimeAttribute seconds(saved.m_creationDate);
    CDeviceFootprint loaded;
    EXPECT_TRUE(LoadText(loaded, "<DeviceFootprint creationDate=\"2015-03-01T08:05:59\">\n</DeviceFootprint>\n"));
    EXPECT_TRUE(loaded.m_creationDate == CTimeAttribute("creationDate"));
    EXPECT_TRUE(loaded.m_creationDate != seconds);
    CElementNode& target = loaded;
    EXPECT_TRUE(target.CopyFrom(saved));
    EXPECT_EQ(loaded.m_creationDate.GetValue(), seconds.GetValue());
    EXPECT_TRUE(loaded.m_creationDate != seconds);
    CDeviceFootprint inserted;
    EXPECT_TRUE(inserted.InsertFrom(saved, false));
    EXPECT_EQ(inserted.m_creationDate.GetValue(), seconds.GetValue());
    EXPECT_TRUE(inserted.m_creationDate != seconds);
    EXPECT_TRUE(LoadText(saved, "<DeviceFootprint creationDate=\"x\">\n</DeviceFootprint>\n"));
    EXPECT_TRUE(saved.m_creationDate == seconds) << "a load leaves the seconds as they were";
}

} // namespace
