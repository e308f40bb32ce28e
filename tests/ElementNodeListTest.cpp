#include "ElementNodeList.h"

#include "ApplicationElements.h"
#include "DeviceFootprint.h"
#include "ElementClasses.h"
#include "ElementText.h"
#include "ErrorWord.h"
#include "FillFootprint.h"
#include "StreamCapture.h"
#include "XmlStreams.h"

#include <gtest/gtest.h>

#include <functional>
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
using NyxTest::ChecksumText;
using NyxTest::ChildrenOf;
using NyxTest::CLeaf;
using NyxTest::ErrorWord;
using NyxTest::LoadText;
using NyxTest::SaveText;
using NyxTest::StreamCapture;

/// An entry that an application writes by hand, with a child, a relationship that a test can set, and a record of its
/// lives. It can not be assigned: lists must do with construction and copying.
class CEntry : public CElementNode
{
public:
    static const std::string s_ElementName;

    CEntry()
    {
        s_lives += "d";
        CEntry::initAttributeNodes();
    }
    CEntry(const CEntry& other) : CElementNode(other), m_key(other.m_key), m_text(other.m_text), m_child(other.m_child)
    {
        s_lives += "c";
        CEntry::initAttributeNodes();
    }
    CEntry& operator=(const CEntry&) = delete;
    ~CEntry() override { s_lives += "~" + NarrowText(m_key.GetValue()); }

    const std::string& GetElementName() const override { return s_ElementName; }
    void initAttributeNodes() override
    {
        AddAttributeNode(m_key);
        AddAttributeNode(m_text);
    }
    void GetChildElements(std::list<CElementNode*>& children) const override
    {
        children = {const_cast<CLeaf*>(&m_child)};
    }
    int GetRelationship(const CElementNode& other) const override
    {
        const int code =
            s_relationship != nullptr ? s_relationship(*this, other) : CElementNode::GetRelationship(other);
        return code;
    }
    bool LoadFromStream(CXmlStreamReader& reader) override
    {
        const bool loaded = CElementNode::LoadFromStream(reader);
        return loaded && m_text.GetValue() != L"fail";
    }
    bool InsertFrom(const CElementNode& other, bool recursive) override
    {
        return CElementNode::InsertFrom(other, recursive) && m_text.GetValue() != L"fail";
    }
    bool CopyFrom(const CElementNode& other) override
    {
        return CElementNode::CopyFrom(other) && m_text.GetValue() != L"fail";
    }
    bool SaveToStream(CXmlStreamWriter& writer) override
    {
        return CElementNode::SaveToStream(writer) && m_text.GetValue() != L"fail";
    }

    CAttribute m_key{"key"};
    CAttribute m_text{"aText"};
    CLeaf m_child;

    static std::string s_lives;
    static int (*s_relationship)(const CEntry&, const CElementNode&);
};

const std::string CEntry::s_ElementName("Entry");
std::string CEntry::s_lives;
int (*CEntry::s_relationship)(const CEntry&, const CElementNode&) = nullptr;

class CEntries : public CElementNodeList<CEntry>
{
public:
    static const std::string s_ElementName;

    const std::string& GetElementName() const override { return s_ElementName; }
    void initAttributeNodes() override {}

    CEntry& Add(const wchar_t* key, const wchar_t* text = L"", const wchar_t* child = L"")
    {
        CEntry& entry = CreateEntry();
        entry.m_key = key;
        entry.m_text = text;
        entry.m_child.m_a = child;
        return entry;
    }
    /// "key:text/child" of each entry, with a blank between entries.
    std::string Text() const
    {
        std::string text;
        for (const CEntry& entry : *this) {
            text += text.empty() ? "" : " ";
            text += NarrowText(entry.m_key.GetValue() + L":" + entry.m_text.GetValue() + L"/" +
                               entry.m_child.m_a.GetValue());
        }
        return text;
    }
};

const std::string CEntries::s_ElementName("Entries");

class ElementNodeList : public testing::Test
{
protected:
    ElementNodeList()
    {
        CEntry::s_lives.clear();
        CEntry::s_relationship = nullptr;
    }
    ~ElementNodeList() override { CEntry::s_relationship = nullptr; }

    ErrorWord m_errors;
    StreamCapture m_output{std::cout};
};

// The virtual operations

TEST_F(ElementNodeList, IsAnElementAndAStandardList)
{
    EXPECT_TRUE((std::is_base_of_v<CElementNode, CEntries>));
    EXPECT_TRUE((std::is_base_of_v<std::list<CEntry>, CEntries>));
    EXPECT_TRUE(std::is_abstract_v<CElementNodeList<CEntry>>);
    CEntries list;
    EXPECT_EQ(list.GetNodeName(), "Entries");
    EXPECT_TRUE(list.IsOptional());
    EXPECT_TRUE(list.IsValid());
    EXPECT_TRUE(list.empty());
}

TEST_F(ElementNodeList, EntriesAreNotChildren)
{
    CEntries list;
    CEntry& entry = list.Add(L"1");
    std::list<CElementNode*> children{&entry};
    list.GetChildElements(children);
    EXPECT_TRUE(children.empty());
    std::list<CReadOnlyAttribute*> attributes{&entry.m_key};
    list.GetAttributeNodes(attributes);
    EXPECT_TRUE(attributes.empty());
    children = {&entry};
    list.GetAllChildsByName("Entry", children);
    EXPECT_TRUE(children.empty()) << "unlike the other elements, a list empties what it is given";
    EXPECT_EQ(list.GetChildElementByName("Entry"), nullptr);
    EXPECT_EQ(list.GetAttributeByName("key"), nullptr);
}

TEST_F(ElementNodeList, IsEmptyWithoutEntriesAndWithEmptyOnes)
{
    CEntries list;
    EXPECT_TRUE(list.IsEmpty());
    list.Add(L"");
    list.Add(L"");
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.size(), 2U);
    list.front().m_child.m_b = L"x";
    EXPECT_FALSE(list.IsEmpty());
}

TEST_F(ElementNodeList, ClearDestroysTheEntries)
{
    CEntries list;
    list.Add(L"1");
    list.Add(L"2");
    CEntry::s_lives.clear();
    list.Clear();
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(CEntry::s_lives, "~1~2");
}

TEST_F(ElementNodeList, DestructionGoesInOrder)
{
    auto list = std::make_unique<CEntries>();
    list->Add(L"1");
    list->Add(L"2");
    list->Add(L"3");
    CEntry::s_lives.clear();
    list.reset();
    EXPECT_EQ(CEntry::s_lives, "~1~2~3");
}

TEST_F(ElementNodeList, CreateEntryAppendsACopyOfAFreshOne)
{
    CEntries list;
    CEntry& first = list.CreateEntry();
    EXPECT_EQ(CEntry::s_lives, "dc~");
    EXPECT_EQ(&first, &list.back());
    first.m_key = L"1";
    CEntry& second = list.CreateEntry();
    EXPECT_EQ(&second, &list.back());
    EXPECT_EQ(list.size(), 2U);
    EXPECT_TRUE(second.m_key.IsEmpty());
    EXPECT_EQ(AttributesOf(second), (std::list<CReadOnlyAttribute*>{&second.m_key, &second.m_text}));
}

TEST_F(ElementNodeList, RelationshipToAnythingIsTwo)
{
    CEntries list;
    CEntries other;
    list.Add(L"1");
    other.Add(L"2");
    EXPECT_EQ(list.GetRelationship(other), 2);
    EXPECT_EQ(other.GetRelationship(CBios()), 2);
}

// Saving

TEST_F(ElementNodeList, SavesNothingWithoutANonEmptyEntry)
{
    CEntries list;
    bool saved = false;
    EXPECT_EQ(SaveText(list, &saved), "");
    EXPECT_TRUE(saved);
    list.Add(L"");
    list.Add(L"");
    EXPECT_EQ(SaveText(list, &saved), "");
    EXPECT_TRUE(saved);
}

TEST_F(ElementNodeList, SavesEntriesInListOrderWithoutTheEmptyOnes)
{
    CEntries list;
    list.Add(L"2", L"t");
    list.Add(L"");
    list.Add(L"1", L"", L"c");
    EXPECT_EQ(SaveText(list), "<Entries>\n  <Entry key=\"2\" aText=\"t\"/>\n  <Entry key=\"1\">\n    <Leaf a=\"c\"/>\n"
                              "  </Entry>\n</Entries>\n");
    EXPECT_EQ(ChecksumText(list), "aText=\"t\"key=\"2\"key=\"1\"a=\"c\"");
}

TEST_F(ElementNodeList, OrderOfEntriesCountsInAChecksum)
{
    CEntries list;
    CEntries turned;
    list.Add(L"1");
    list.Add(L"2");
    turned.Add(L"2");
    turned.Add(L"1");
    EXPECT_NE(ChecksumText(list), ChecksumText(turned));
}

TEST_F(ElementNodeList, SaveStopsAtTheFirstEntryThatFails)
{
    CEntries list;
    list.Add(L"1");
    list.Add(L"2", L"fail");
    list.Add(L"3");
    bool saved = true;
    EXPECT_EQ(SaveText(list, &saved), "<Entries>\n  <Entry key=\"1\"/>\n  <Entry key=\"2\" aText=\"fail\"");
    EXPECT_FALSE(saved);
}

/// An empty list that stands in a file all the same.
class CRequiredEntries : public CEntries
{
public:
    bool IsOptional() const override { return false; }
};

TEST_F(ElementNodeList, SavesItselfWhileEmptyIfItIsNotOptional)
{
    CRequiredEntries list;
    EXPECT_EQ(SaveText(list), "<Entries");
    list.Add(L"");
    EXPECT_EQ(SaveText(list), "<Entries");
}

// Loading

TEST_F(ElementNodeList, LoadOfTheOneTagFormMovesTheReaderOn)
{
    CEntries list;
    std::istringstream text("<Entries key=\"dropped\"/>\n<Next/>\n<Entries/>\n");
    const std::string name;
    CXmlStreamReader reader(text, name);
    ASSERT_TRUE(reader.NextToken());
    EXPECT_TRUE(list.LoadFromStream(reader));
    EXPECT_EQ(reader.GetCurrentElement(), "<Next/>");
    ASSERT_TRUE(reader.NextToken());
    EXPECT_FALSE(list.LoadFromStream(reader)) << "the result is that of NextToken";
    EXPECT_TRUE(list.empty());
}

TEST_F(ElementNodeList, LoadAppendsEntries)
{
    CEntries list;
    list.Add(L"0");
    const std::string text =
        "<Entries key=\"dropped\">\n<Entry key=\"1\"/>\n<Entry key=\"2\">\n<Leaf a=\"c\"/>\n</Entry>\n"
        "<Entry/>\n</Entries>\n";
    EXPECT_TRUE(LoadText(list, text));
    EXPECT_EQ(list.Text(), "0:/ 1:/ 2:/c :/");
    EXPECT_TRUE(LoadText(list, text));
    EXPECT_EQ(list.Text(), "0:/ 1:/ 2:/c :/ 1:/ 2:/c :/") << "a second load doubles the entries";
    EXPECT_EQ(m_output.Text(), "");
}

TEST_F(ElementNodeList, LoadLeavesTheReaderBehindTheEndTag)
{
    CEntries list;
    std::istringstream text("<Entries>\n</Entries>\n<Next/>\n");
    const std::string name;
    CXmlStreamReader reader(text, name);
    ASSERT_TRUE(reader.NextToken());
    EXPECT_TRUE(list.LoadFromStream(reader));
    EXPECT_EQ(reader.GetCurrentElement(), "<Next/>");
}

TEST_F(ElementNodeList, LoadTakesALongerTagForAnEntry)
{
    CEntries list;
    EXPECT_TRUE(
        LoadText(list, "<Entries>\n<EntryOfAnotherKind key=\"1\"/>\n<Entry key=\"2\">\n</EntryX>\n</EntriesX>\n"));
    EXPECT_EQ(list.Text(), "1:/ 2:/");
    EXPECT_EQ(m_output.Text(), "");
}

TEST_F(ElementNodeList, LoadAnnouncesAndSkipsWhatIsNoEntry)
{
    CEntries list;
    EXPECT_TRUE(LoadText(list, "<Entries>\n<Entr x=\"1\">\n<Entry key=\"inner\"/>\n</Entr>\n<Entry key=\"1\"/>\n"
                               "<entry/>\n</Entries>\n"));
    EXPECT_EQ(list.Text(), "1:/");
    EXPECT_EQ(m_output.Text(), "Found invalid tag: <Entr x=\"1\">\nFound invalid tag: <entry/>\n");
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(ElementNodeList, LoadOfAWrongEndTagIsFalseWithoutAText)
{
    CEntries list;
    EXPECT_FALSE(LoadText(list, "<Entries>\n<Entry key=\"1\"/>\n</Other>\n</Entries>\n"));
    EXPECT_EQ(list.Text(), "1:/") << "entries read before stay";
    EXPECT_FALSE(LoadText(list, "<Entries>\n</Entrie>\n"));
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
    EXPECT_EQ(m_output.Text(), "");
}

TEST_F(ElementNodeList, LoadRemovesTheEntryThatFails)
{
    CEntries list;
    list.Add(L"0");
    CEntry::s_lives.clear();
    EXPECT_FALSE(LoadText(list, "<Entries>\n<Entry key=\"1\"/>\n<Entry key=\"2\" aText=\"fail\"/>\n<Entry key=\"3\"/>\n"
                                "</Entries>\n"));
    EXPECT_EQ(list.Text(), "0:/ 1:/");
    EXPECT_NE(CEntry::s_lives.find("~2"), std::string::npos);
    EXPECT_EQ(CEntry::s_lives.find("~1"), std::string::npos);
}

TEST_F(ElementNodeList, LoadFailsIfTheTextBreaksOff)
{
    const struct
    {
        const char* text;
        const char* entries;
    } rows[] = {
        {"<Entries>\n", ""},
        {"<Entries>", ""},
        {"<Entries>\n<Entry key=\"1\"/>\n", ""},
        {"<Entries>\n<Entry key=\"1\"/>\n<Entry key=\"2\">\n", "1:/"},
        {"<Entries>\n<Entry key=\"1\"/>\n<Unknown>\n", "1:/"},
        {"<Entries>\n<Unknown/>\n", ""},
    };
    for (const auto& row : rows) {
        CEntries list;
        EXPECT_FALSE(LoadText(list, row.text)) << row.text;
        EXPECT_EQ(list.Text(), row.entries) << row.text;
    }
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(ElementNodeList, LoadOfABlankLineThrows)
{
    CEntries list;
    EXPECT_THROW(LoadText(list, "<Entries>\n\n</Entries>\n"), std::out_of_range);
    EXPECT_THROW(LoadText(list, "<Entries>\n \t\n</Entries>\n"), std::out_of_range);
    EXPECT_THROW(LoadText(list, "<Entries>\n<Entry>\n</Entry>\n"), std::out_of_range) << "ends behind an end tag";
    // Inside what is skipped a blank line stands for an element that the next end tag ends.
    EXPECT_TRUE(LoadText(list, "<Entries>\n<Unknown>\n\n</Any>\n</Unknown>\n</Entries>\n"));
}

// Merging by relationship

TEST_F(ElementNodeList, CopyFromIntoAListWithoutEntriesTakesAllNonEmptyOnes)
{
    CEntries source;
    source.Add(L"1", L"a", L"c");
    source.Add(L"");
    source.Add(L"1", L"a", L"c");
    CEntries list;
    EXPECT_TRUE(list.CopyFrom(source));
    EXPECT_EQ(list.Text(), "1:a/c 1:a/c") << "duplicates stay";
    EXPECT_EQ(source.size(), 3U);
    source.front().m_child.m_a = L"changed";
    EXPECT_EQ(list.Text(), "1:a/c 1:a/c");
}

TEST_F(ElementNodeList, CopyFromCallsAListWithAnEmptyEntryNotEmpty)
{
    CEntries source;
    source.Add(L"1", L"a");
    source.Add(L"2", L"b");
    CEntries list;
    list.Add(L"");
    EXPECT_TRUE(list.CopyFrom(source));
    EXPECT_EQ(list.Text(), "1:a/ 2:b/") << "the first fills the empty entry, the second no longer relates to it";
}

TEST_F(ElementNodeList, CopyFromUpdatesEveryRelatedEntry)
{
    CEntries source;
    source.Add(L"1", L"new", L"c");
    CEntries list;
    list.Add(L"1");
    list.Add(L"2", L"b");
    list.Add(L"1", L"", L"old");
    EXPECT_TRUE(list.CopyFrom(source));
    EXPECT_EQ(list.Text(), "1:new/c 2:b/ 1:new/c");
}

TEST_F(ElementNodeList, CopyFromAddsAnEntryThatDiffersFromAll)
{
    CEntries source;
    source.Add(L"1", L"other", L"c");
    CEntries list;
    list.Add(L"1", L"a");
    EXPECT_TRUE(list.CopyFrom(source));
    EXPECT_EQ(list.Text(), "1:a/ 1:other/c");
}

TEST_F(ElementNodeList, CopyFromLooksAtEntriesThatItAddedItself)
{
    CEntries source;
    source.Add(L"2", L"");
    source.Add(L"2", L"later");
    CEntries list;
    list.Add(L"1", L"a");
    EXPECT_TRUE(list.CopyFrom(source));
    EXPECT_EQ(list.Text(), "1:a/ 2:later/");
}

TEST_F(ElementNodeList, CopyFromGoesByTheCode)
{
    const struct
    {
        int (*relationship)(const CEntry&, const CElementNode&);
        const char* result;
    } rows[] = {
        {[](const CEntry&, const CElementNode&) { return 2; }, "s:kept/c"},
        {[](const CEntry&, const CElementNode&) { return 0; }, "s:/c"},
        {[](const CEntry&, const CElementNode&) { return 1; }, "o:kept/old"},
        {[](const CEntry&, const CElementNode&) { return -1; }, "o:kept/old s:/c"},
        {[](const CEntry&, const CElementNode&) { return 3; }, "o:kept/old s:/c"},
        {[](const CEntry&, const CElementNode&) { return -2; }, "o:kept/old s:/c"},
    };
    for (const auto& row : rows) {
        CEntries source;
        source.Add(L"s", L"", L"c");
        CEntries list;
        list.Add(L"o", L"kept", L"old");
        CEntry::s_relationship = row.relationship;
        EXPECT_TRUE(list.CopyFrom(source));
        EXPECT_EQ(list.Text(), row.result);
    }
}

TEST_F(ElementNodeList, CopyFromAsksTheEntriesOfThisListAboutTheSource)
{
    static std::string s_asked;
    s_asked.clear();
    CEntries source;
    source.Add(L"s", L"x");
    source.Add(L"");
    source.Add(L"t", L"x");
    CEntries list;
    list.Add(L"1", L"y");
    list.Add(L"2", L"y");
    CEntry::s_relationship = [](const CEntry& entry, const CElementNode& other) {
        s_asked += NarrowText(entry.m_key.GetValue() + L"?" + other.GetAttributeValue("key") + L" ");
        return -1;
    };
    EXPECT_TRUE(list.CopyFrom(source));
    EXPECT_EQ(s_asked, "1?s 2?s 1?t 2?t s?t ");
    s_asked.clear();
    CEntries fresh;
    EXPECT_TRUE(fresh.CopyFrom(source));
    EXPECT_EQ(s_asked, "") << "nothing is asked in a list without entries";
}

TEST_F(ElementNodeList, CopyFromDoesNotStopAtAMatch)
{
    CEntries source;
    source.Add(L"s", L"new");
    CEntries list;
    list.Add(L"1", L"y");
    list.Add(L"2", L"y");
    list.Add(L"3", L"y");
    CEntry::s_relationship = [](const CEntry& entry, const CElementNode&) {
        return entry.m_key.GetValue() == L"1" ? 1 : entry.m_key.GetValue() == L"2" ? 0 : 2;
    };
    EXPECT_TRUE(list.CopyFrom(source));
    EXPECT_EQ(list.Text(), "1:y/ s:new/ s:new/");
}

TEST_F(ElementNodeList, MergesEndWithAnEntryThatFails)
{
    CEntries source;
    source.Add(L"1", L"fine");
    source.Add(L"2", L"fail");
    source.Add(L"3", L"fine");
    CEntries added;
    added.Add(L"0", L"x");
    EXPECT_FALSE(added.CopyFrom(source));
    EXPECT_EQ(added.Text().substr(0, 12), "0:x/ 1:fine/");
    EXPECT_EQ(added.Text().find('3'), std::string::npos);
    CEntries updated;
    updated.Add(L"2");
    EXPECT_FALSE(updated.CopyFrom(source));
    EXPECT_EQ(updated.Text(), "2:fail/ 1:fine/");
    CEntries inserted;
    EXPECT_FALSE(inserted.InsertFrom(source, true));
    EXPECT_EQ(inserted.Text().find('3'), std::string::npos);
    CEntry::s_relationship = [](const CEntry&, const CElementNode&) { return 0; };
    CEntries renewed;
    renewed.Add(L"0", L"x");
    EXPECT_FALSE(renewed.CopyFrom(source));
}

TEST_F(ElementNodeList, CopyFromOfItselfChangesNothing)
{
    CEntries list;
    list.Add(L"1", L"a", L"c");
    list.Add(L"2", L"b");
    EXPECT_TRUE(list.CopyFrom(list));
    EXPECT_EQ(list.Text(), "1:a/c 2:b/");
}

TEST_F(ElementNodeList, InsertFromAppendsEveryEntry)
{
    CEntries source;
    source.Add(L"1", L"a", L"c");
    source.Add(L"");
    CEntries list;
    list.Add(L"1", L"a");
    EXPECT_TRUE(list.InsertFrom(source, true));
    EXPECT_EQ(list.Text(), "1:a/ 1:a/c :/");
    EXPECT_TRUE(list.InsertFrom(source, true));
    EXPECT_EQ(list.Text(), "1:a/ 1:a/c :/ 1:a/c :/");
}

TEST_F(ElementNodeList, InsertFromWithoutRecursionAddsNothing)
{
    CEntries source;
    source.Add(L"1");
    CEntries list;
    EXPECT_TRUE(list.InsertFrom(source, false));
    EXPECT_TRUE(list.empty());
}

TEST_F(ElementNodeList, InsertFromOfItselfChangesNothing)
{
    CEntries list;
    list.Add(L"1");
    EXPECT_TRUE(list.InsertFrom(list, true));
    EXPECT_EQ(list.Text(), "1:/");
}

TEST_F(ElementNodeList, IsReachedAsAChild)
{
    CMaintenanceInfo source;
    source.m_name = L"n";
    source.m_properties.CreateEntry().m_name = L"p";
    source.m_properties.CreateEntry();
    CMaintenanceInfo target;
    EXPECT_TRUE(target.CopyFrom(source));
    EXPECT_EQ(target.m_properties.size(), 1U);
    EXPECT_TRUE(target.InsertFrom(source, true));
    EXPECT_EQ(target.m_properties.size(), 3U);
    EXPECT_TRUE(target.InsertFrom(source, false));
    EXPECT_EQ(target.m_properties.size(), 3U);
    EXPECT_FALSE(target.IsEmpty());
    target.Clear();
    EXPECT_TRUE(target.m_properties.empty());
}

// Connected devices are the entries that tell ages apart.

TEST_F(ElementNodeList, CopyFromReplacesAnOlderConnectedDeviceAndKeepsANewerOne)
{
    CConnectedDevice never;
    never.m_deviceData.m_deviceId = L"1-2-3";
    never.m_deviceData.m_type = L"never";
    CConnectedDevice now(never);
    now.m_creationDate.SetCreationDateToCurrent();
    now.m_deviceData.m_type.Clear();
    now.m_deviceData.m_partName = L"now";
    CConnectedDeviceList older;
    older.push_back(never);
    CConnectedDeviceList newer;
    newer.push_back(now);

    CConnectedDeviceList list(older);
    EXPECT_TRUE(list.CopyFrom(newer));
    ASSERT_EQ(list.size(), 1U);
    EXPECT_TRUE(list.front().m_deviceData.m_type.IsEmpty());
    EXPECT_EQ(list.front().m_deviceData.m_partName.GetValue(), L"now");

    CConnectedDeviceList kept(newer);
    EXPECT_TRUE(kept.CopyFrom(older));
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_TRUE(kept.front().m_deviceData.m_type.IsEmpty());

    CConnectedDeviceList same(older);
    older.front().m_deviceData.m_partName = L"more";
    EXPECT_TRUE(same.CopyFrom(older));
    EXPECT_EQ(same.front().m_deviceData.m_partName.GetValue(), L"more");
    EXPECT_EQ(same.front().m_deviceData.m_type.GetValue(), L"never");
}

// Every list class

template<class T>
class EveryListClass : public testing::Test
{
protected:
    using List = typename T::List;
    using Entry = typename T::Entry;

    static CReadOnlyAttribute* FirstAttribute(const CElementNode& element)
    {
        const auto attributes = AttributesOf(element);
        return attributes.empty() ? nullptr : attributes.front();
    }
};
TYPED_TEST_SUITE(EveryListClass, NyxTest::ListElementClasses);

TYPED_TEST(EveryListClass, HasItsEntryClass)
{
    EXPECT_TRUE((std::is_base_of_v<CElementNodeList<typename TypeParam::Entry>, typename TypeParam::List>));
    const typename TypeParam::List list;
    EXPECT_EQ(list.GetElementName(), TypeParam::List::s_ElementName);
    EXPECT_TRUE(list.IsOptional());
    EXPECT_TRUE(list.IsValid());
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_TRUE(ChildrenOf(list).empty());
    EXPECT_TRUE(AttributesOf(list).empty());
}

TYPED_TEST(EveryListClass, SavesLoadsCopiesAndClears)
{
    typename TypeParam::List list;
    for (const wchar_t* value : {L"1", L"2", L"3"}) {
        this->FirstAttribute(list.CreateEntry())->Set(std::wstring(value));
    }
    typename TypeParam::List loaded;
    EXPECT_TRUE(LoadText(loaded, SaveText(list)));
    EXPECT_EQ(loaded.size(), 3U);
    EXPECT_EQ(SaveText(loaded), SaveText(list));

    typename TypeParam::List copy(list);
    typename TypeParam::List assigned;
    assigned.CreateEntry();
    assigned = list;
    const typename TypeParam::List& self = assigned;
    assigned = self;
    const std::string text = SaveText(list);
    list.Clear();
    EXPECT_TRUE(list.empty());
    for (typename TypeParam::List* other : {&copy, &assigned}) {
        EXPECT_EQ(other->size(), 3U);
        EXPECT_EQ(SaveText(*other), text);
        for (const typename TypeParam::Entry& entry : *other) {
            const auto* attribute = reinterpret_cast<const char*>(this->FirstAttribute(entry));
            const auto* begin = reinterpret_cast<const char*>(&entry);
            EXPECT_TRUE(begin <= attribute && attribute < begin + sizeof(entry));
        }
    }
}

TEST(ListTags, OfListsAndEntries)
{
    const struct
    {
        const std::string& list;
        const std::string& entry;
        const char* listTag;
        const char* entryTag;
    } rows[] = {
        {CHardwareList::s_ElementName, CHardware::s_ElementName, "HardwareList", "Hardware"},
        {CProgrammableParts::s_ElementName, CProgrammablePart::s_ElementName, "ProgrammableParts", "ProgrammablePart"},
        {CProperties::s_ElementName, CProperty::s_ElementName, "Properties", "Property"},
        {CProductList::s_ElementName, CProduct::s_ElementName, "ProductList", "Product"},
        {CSoftwareList::s_ElementName, CSoftware::s_ElementName, "SoftwareList", "Software"},
        {CServices::s_ElementName, CService::s_ElementName, "Services", "Service"},
        {CMaintenances::s_ElementName, CMaintenance::s_ElementName, "Maintenances", "Maintenance"},
        {CMaintenanceInfos::s_ElementName, CMaintenanceInfo::s_ElementName, "MaintenanceInfos", "MaintenanceInfo"},
        {CMaintenanceTasks::s_ElementName, CMaintenanceTask::s_ElementName, "MaintenanceTasks", "MaintenanceTask"},
        {CTestInstructionList::s_ElementName, CTestInstruction::s_ElementName, "TestInstructionList",
         "TestInstruction"},
        {CConnectedDeviceList::s_ElementName, CConnectedDevice::s_ElementName, "ConnectedDeviceList",
         "ConnectedDevice"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.list, row.listTag);
        EXPECT_EQ(row.entry, row.entryTag);
    }
}

// A whole document with its entries

/// All attributes of a tree, entries of lists included.
class AttributeCollector
{
public:
    void Collect(const CElementNode& element)
    {
        for (CReadOnlyAttribute* attribute : AttributesOf(element)) {
            m_attributes.push_back(attribute);
        }
        for (const CElementNode* child : ChildrenOf(element)) {
            Collect(*child);
        }
        CollectLists<CHardware, CProgrammablePart, CProperty, CProduct, CSoftware, CService, CMaintenance,
                     CMaintenanceInfo, CMaintenanceTask, CTestInstruction, CConnectedDevice>(element);
    }

    std::vector<CReadOnlyAttribute*> m_attributes;

private:
    template<class... T>
    void CollectLists(const CElementNode& element)
    {
        (CollectList<T>(element), ...);
    }
    template<class T>
    void CollectList(const CElementNode& element)
    {
        if (const auto* list = dynamic_cast<const CElementNodeList<T>*>(&element)) {
            for (const T& entry : *list) {
                Collect(entry);
            }
        }
    }
};

TEST(FullDocument, CopiesShareNothing)
{
    CDeviceFootprint source;
    NyxTest::FillFootprint(source, {2, 3, 2});
    const std::string text = SaveText(source);
    CDeviceFootprint copy(source);
    CDeviceFootprint assigned;
    NyxTest::FillFootprint(assigned);
    assigned = source;
    AttributeCollector ofSource;
    AttributeCollector ofCopy;
    AttributeCollector ofAssigned;
    ofSource.Collect(source);
    ofCopy.Collect(copy);
    ofAssigned.Collect(assigned);
    EXPECT_GT(ofSource.m_attributes.size(), 500U);
    EXPECT_EQ(ofCopy.m_attributes.size(), ofSource.m_attributes.size());
    EXPECT_EQ(ofAssigned.m_attributes.size(), ofSource.m_attributes.size());
    for (CReadOnlyAttribute* attribute : ofCopy.m_attributes) {
        attribute->Set(std::wstring(L"c"));
    }
    for (CReadOnlyAttribute* attribute : ofAssigned.m_attributes) {
        attribute->Set(std::wstring(L"a"));
    }
    EXPECT_EQ(SaveText(source), text);
    for (const CReadOnlyAttribute* attribute : ofCopy.m_attributes) {
        EXPECT_EQ(attribute->GetValue(), L"c");
    }
}

TEST(FullDocument, AssignmentFromAPartOfItselfIsSafe)
{
    CSoftware package;
    package.m_name = L"outer";
    package.m_properties.CreateEntry().m_name = L"outer";
    CSoftware& inner = package.m_pSoftwareList->CreateEntry();
    inner.m_name = L"inner";
    inner.m_properties.CreateEntry().m_name = L"inner";
    inner.m_pSoftwareList->CreateEntry().m_name = L"innermost";
    CSoftware expected(inner);
    package = inner;
    EXPECT_EQ(SaveText(package), SaveText(expected));

    CDeviceFootprint device;
    NyxTest::FillFootprint(device, {1, 1, 2});
    CConnectedDevice outer(device.m_pConnectedDevices->front());
    CConnectedDevice expectedDevice(outer.m_pConnectedDevices->front());
    outer = outer.m_pConnectedDevices->front();
    EXPECT_EQ(SaveText(outer), SaveText(expectedDevice));
}

} // namespace
