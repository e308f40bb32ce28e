#include "XmlStreams.h"

#include "AttributeNode.h"
#include "ErrorWord.h"
#include "ForeignLocale.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using namespace KvDeviceFootprint;
using NyxTest::ErrorWord;
using NyxTest::ForeignLocale;

const std::string NoName;

/// A writer and what it has written.
class TextWriter
{
public:
    TextWriter() : m_stream(m_text), m_writer(m_stream, NoName) {}
    CXmlStreamWriter* operator->() { return &m_writer; }
    std::string Text() const { return m_text.str(); }
    /// What was written since the last Take().
    std::string Take()
    {
        std::string text = m_text.str().substr(m_taken);
        m_taken += text.size();
        return text;
    }

private:
    std::ostringstream m_text;
    COutStream m_stream;
    CXmlStreamWriter m_writer;
    std::size_t m_taken = 0;
};

/// Records the calls that reach it.
class CallRecorder : public CAbstractStream
{
public:
    void WriteNonEmptyString(const std::string& text) override { m_calls.push_back("text " + text); }
    void WriteNewLine() override { m_calls.emplace_back("line end"); }
    void WriteConnectedDeviceLine(const std::string& line, bool first) override
    {
        m_calls.push_back((first ? "first line " : "line ") + line);
    }
    std::vector<std::string> m_calls;
};

class AttributeRecorder : public CallRecorder
{
public:
    void WriteAttributeValue(const std::string& text) override { m_calls.push_back("attribute " + text); }
};

class XmlWriter : public testing::Test
{
protected:
    ErrorWord m_errors;
};

// Streams

TEST_F(XmlWriter, FixedTextsOfAStreamAreNonEmptyStrings)
{
    CallRecorder stream;
    stream.WriteBeginToken();
    stream.WriteEndToken();
    stream.WriteBeginEndToken();
    stream.WriteNoAddedEndToken();
    stream.WriteSpaces(1);
    stream.WriteSpaces(5);
    stream.WriteAttributeValue("a=\"1\"");
    EXPECT_EQ(stream.m_calls, (std::vector<std::string>{"text <", "text >", "text </", "text />", "text  ",
                                                        "text      ", "text a=\"1\""}));
}

TEST_F(XmlWriter, ManySpacesAreManyBlanks)
{
    std::ostringstream text;
    COutStream stream(text);
    for (const std::size_t count : {0U, 1U, 2U, 63U, 64U, 65U, 1000U}) {
        text.str("");
        stream.WriteSpaces(count);
        EXPECT_EQ(text.str(), std::string(count, ' '));
    }
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

TEST_F(XmlWriter, OutStreamWritesBytesAsTheyComeAndFlushesEachLine)
{
    FlushCounter buffer;
    std::ostream text(&buffer);
    COutStream stream(text);
    CAbstractStream& base = stream;
    base.WriteNonEmptyString(std::string("a\0\xFF\n", 4));
    base.WriteAttributeValue("b");
    base.WriteConnectedDeviceLine("c", true);
    base.WriteConnectedDeviceLine("d", false);
    EXPECT_EQ(buffer.m_flushes, 0);
    base.WriteNewLine();
    EXPECT_EQ(buffer.m_flushes, 1);
    base.WriteNewLine();
    EXPECT_EQ(buffer.m_flushes, 2);
    EXPECT_EQ(buffer.str(), std::string("a\0\xFF\nbcd\n\n", 9));
}

TEST_F(XmlWriter, OutStreamIgnoresTheFormatOfTheStream)
{
    const ForeignLocale locale;
    std::ostringstream text;
    text.width(10);
    text.fill('*');
    text << std::hex << std::showbase;
    COutStream stream(text);
    CXmlStreamWriter writer(stream, NoName);
    writer.BeginElement("A");
    writer.SetAttribute("x", L"\x1F600");
    const std::string written = text.str();
    EXPECT_NE(written.find(" x=\"&#128512;\""), std::string::npos) << written;
}

TEST_F(XmlWriter, AStreamThatFailsIsNotLookedAt)
{
    std::ostringstream text;
    text.setstate(std::ios::badbit);
    COutStream stream(text);
    CXmlStreamWriter writer(stream, NoName);
    EXPECT_TRUE(writer.WriteFirstLine());
    EXPECT_TRUE(writer.BeginElement("A"));
    EXPECT_TRUE(writer.SetAttribute("x", L"1"));
    EXPECT_TRUE(writer.EndElement());
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(XmlWriter, WritesNothingAtConstruction)
{
    TextWriter writer;
    EXPECT_EQ(writer.Text(), "");
    EXPECT_EQ(writer->GetCurrentPositionText(), "");
    EXPECT_TRUE(std::has_virtual_destructor_v<CXmlStreamWriter>);
    std::string name = "name";
    std::ostringstream text;
    COutStream stream(text);
    const CXmlStreamWriter named(stream, name);
    EXPECT_EQ(named.GetCurrentPositionText(), "name, ");
    name = "other";
    EXPECT_EQ(named.GetCurrentPositionText(), "other, ") << "the name is not copied";
}

// Calls and bytes

TEST_F(XmlWriter, FirstLineIsExact)
{
    TextWriter writer;
    EXPECT_TRUE(writer->WriteFirstLine());
    EXPECT_EQ(writer.Text(), "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n");
}

TEST_F(XmlWriter, EachCallWritesWhatTheNextStepNeeds)
{
    TextWriter writer;
    EXPECT_TRUE(writer->BeginElement("Properties"));
    EXPECT_EQ(writer.Take(), "<Properties");
    EXPECT_TRUE(writer->BeginElement("Property"));
    EXPECT_EQ(writer.Take(), ">\n  <Property");
    EXPECT_TRUE(writer->SetAttribute("name", L"a"));
    EXPECT_EQ(writer.Take(), " name=\"a\"");
    EXPECT_TRUE(writer->EndElement());
    EXPECT_EQ(writer.Take(), "");
    EXPECT_TRUE(writer->BeginElement("Property"));
    EXPECT_EQ(writer.Take(), "/>\n  <Property");
    EXPECT_TRUE(writer->SetAttribute("name", L"b"));
    EXPECT_EQ(writer.Take(), " name=\"b\"");
    EXPECT_TRUE(writer->EndElement());
    EXPECT_EQ(writer.Take(), "");
    EXPECT_TRUE(writer->EndElement());
    EXPECT_EQ(writer.Take(), "/>\n</Properties>\n");
}

TEST_F(XmlWriter, IndentsByTwoForEachOpenElement)
{
    TextWriter writer;
    for (const char* name : {"A", "B", "C", "D"}) {
        writer->BeginElement(name);
    }
    for (int i = 0; i < 4; ++i) {
        writer->EndElement();
    }
    EXPECT_EQ(writer.Text(), "<A>\n  <B>\n    <C>\n      <D/>\n    </C>\n  </B>\n</A>\n");
}

TEST_F(XmlWriter, ARootWithoutChildrenStaysOpen)
{
    TextWriter writer;
    writer->BeginElement("A");
    writer->SetAttribute("x", L"1");
    EXPECT_TRUE(writer->EndElement());
    EXPECT_EQ(writer.Text(), "<A x=\"1\"");
}

TEST_F(XmlWriter, ASecondRootFollowsOnTheSameLine)
{
    TextWriter writer;
    writer->BeginElement("A");
    writer->EndElement();
    writer->BeginElement("B");
    EXPECT_EQ(writer.Text(), "<A<B");
    TextWriter closed;
    closed->BeginElement("A");
    closed->BeginElement("B");
    closed->EndElement();
    closed->EndElement();
    closed->BeginElement("C");
    EXPECT_EQ(closed.Text(), "<A>\n  <B/>\n</A>\n<C");
}

TEST_F(XmlWriter, NamesAreWrittenUnchanged)
{
    TextWriter writer;
    writer->BeginElement("a<&>\"\xFF");
    writer->SetAttribute("n<&>\"\xFF", L"v");
    EXPECT_EQ(writer.Text(), "<a<&>\"\xFF n<&>\"\xFF=\"v\"");
}

TEST_F(XmlWriter, AnAttributeIsABlankAndOneString)
{
    AttributeRecorder stream;
    CXmlStreamWriter writer(stream, NoName);
    writer.BeginElement("A");
    stream.m_calls.clear();
    EXPECT_TRUE(writer.SetAttribute("x", L"a\"\xE4"));
    EXPECT_TRUE(writer.SetAttribute("y", L""));
    EXPECT_EQ(stream.m_calls, (std::vector<std::string>{"text  ", "attribute x=\"a&quot;&#228;\""}));
}

TEST_F(XmlWriter, AnAttributeObjectGoesByNameAndValue)
{
    TextWriter writer;
    CAttribute attribute("sn");
    EXPECT_TRUE(writer->SetAttribute(attribute));
    EXPECT_EQ(writer.Take(), "");
    attribute = L"<1>";
    EXPECT_TRUE(writer->SetAttribute(attribute));
    EXPECT_EQ(writer.Take(), " sn=\"&lt;1&gt;\"");
    EXPECT_EQ(attribute.GetValue(), L"<1>");
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(XmlWriter, SetAttributeDoesNotTestTheState)
{
    TextWriter writer;
    EXPECT_TRUE(writer->SetAttribute("x", L"1"));
    EXPECT_EQ(writer.Take(), " x=\"1\"");
    writer->BeginElement("A");
    writer->BeginElement("B");
    writer->EndElement();
    writer->EndElement();
    EXPECT_TRUE(writer->SetAttribute("x", L"1"));
    EXPECT_EQ(writer.Text(), " x=\"1\"<A>\n  <B/>\n</A>\n x=\"1\"");
}

/// An application's own form of the plain stream.
class MarkingStream : public COutStream
{
public:
    using COutStream::COutStream;
    void WriteNonEmptyString(const std::string& text) override { COutStream::WriteNonEmptyString("[" + text + "]"); }
    void WriteAttributeValue(const std::string& text) override { COutStream::WriteNonEmptyString("{" + text + "}"); }
    void WriteNewLine() override { COutStream::WriteNonEmptyString("$"); }
};

TEST_F(XmlWriter, EveryByteGoesThroughTheStreamsOperations)
{
    std::ostringstream text;
    MarkingStream stream(text);
    CXmlStreamWriter writer(stream, NoName);
    writer.WriteFirstLine();
    writer.BeginElement("A");
    writer.SetAttribute("x", L"1");
    writer.BeginElement("B");
    writer.EndElement();
    writer.EndElement();
    std::string content;
    for (const char character : text.str()) {
        if (character != '[' && character != ']') {
            content += character;
        }
    }
    EXPECT_EQ(content, "<?xml version=\"1.0\" encoding=\"utf-8\" ?>$<A {x=\"1\"}>$  <B/>$</A>$");
}

// Values

std::string Escaped(const std::wstring& value)
{
    TextWriter writer;
    EXPECT_TRUE(writer->SetAttribute("x", value));
    const std::string text = writer.Text();
    return text.size() < 5 ? text : text.substr(4, text.size() - 5);
}

TEST_F(XmlWriter, EntitiesAreATableInOrderOfProcessing)
{
    const std::array<std::pair<std::wstring, wchar_t>, 5> rows{
        {{L"&amp;", L'&'}, {L"&lt;", L'<'}, {L"&gt;", L'>'}, {L"&quot;", L'"'}, {L"&apos;", L'\''}}};
    ASSERT_EQ(s_XmlEntities.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(s_XmlEntities[i].text, rows[i].first);
        EXPECT_EQ(s_XmlEntities[i].character, rows[i].second);
    }
}

TEST_F(XmlWriter, ValuesAreEscaped)
{
    const struct
    {
        std::wstring value;
        const char* text;
    } rows[] = {
        {L"plain text 0-9 ~!@", "plain text 0-9 ~!@"},
        {L"&<>\"'", "&amp;&lt;&gt;&quot;&apos;"},
        {L"&&", "&amp;&amp;"},
        {L"&lt;", "&amp;lt;"},
        {L"&amp;", "&amp;amp;"},
        {L"&#65;", "&amp;#65;"},
        {L"\x1F600", "&#128512;"},
        {L"\xE4", "&#228;"},
        {L"\x7F", "&#127;"},
        {L"\x80", "&#128;"},
        {L"\x1F", "&#31;"},
        {L"\n", "&#10;"},
        {L"\r\n\t", "&#13;&#10;&#9;"},
        {std::wstring(1, L'\0'), "&#0;"},
        {std::wstring(1, static_cast<wchar_t>(-28)), "&#4294967268;"},
        {std::wstring(1, static_cast<wchar_t>(-1)), "&#4294967295;"},
        {std::wstring(1, static_cast<wchar_t>(0x7FFFFFFF)), "&#2147483647;"},
        {std::wstring(1, static_cast<wchar_t>(0xD800)), "&#55296;"},
        {std::wstring(1, static_cast<wchar_t>(0xFFFF)), "&#65535;"},
        {std::wstring(1, static_cast<wchar_t>(0x110000)), "&#1114112;"},
        {L" ", " "},
        {L"a\xE4"
         L"b\x20AC<",
         "a&#228;b&#8364;&lt;"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Escaped(row.value), row.text);
    }
}

TEST_F(XmlWriter, JustPrintableAsciiStays)
{
    const ForeignLocale locale;
    for (int i = -300; i < 70000; ++i) {
        const auto character = static_cast<wchar_t>(i);
        std::string expected = "&#" + std::to_string(static_cast<unsigned>(i)) + ";";
        if (i >= 0x20 && i <= 0x7E) {
            expected = std::string(1, static_cast<char>(i));
        }
        for (const XmlEntity& entity : s_XmlEntities) {
            if (entity.character == character) {
                expected = NarrowText(entity.text);
            }
        }
        ASSERT_EQ(Escaped(std::wstring(1, character)), expected) << i;
    }
}

// List entries

TEST_F(XmlWriter, ListEntriesNeedTwoOpenElements)
{
    TextWriter writer;
    EXPECT_FALSE(writer->AddListEntry("line", true, true));
    writer->BeginElement("A");
    EXPECT_FALSE(writer->AddListEntry("line", true, false));
    EXPECT_EQ(writer.Take(), "<A");
    writer->BeginElement("B");
    writer.Take();
    EXPECT_TRUE(writer->AddListEntry("line", true, false));
    EXPECT_EQ(writer.Take(), ">\n    line\n");
    EXPECT_EQ(m_errors.Text(), ErrorWord::Untouched());
}

TEST_F(XmlWriter, ListEntriesStandInThePlaceOfChildren)
{
    TextWriter writer;
    writer->BeginElement("A");
    writer->BeginElement("B");
    EXPECT_TRUE(writer->AddListEntry("<D>", true, false));
    EXPECT_TRUE(writer->AddListEntry("  <E & raw/>", false, false));
    EXPECT_TRUE(writer->AddListEntry("</D", false, true));
    EXPECT_TRUE(writer->AddListEntry("<F/", true, true));
    writer->EndElement();
    writer->EndElement();
    EXPECT_EQ(writer.Text(), "<A>\n  <B>\n    <D>\n      <E & raw/>\n    </D>\n    <F/>\n  </B>\n</A>\n");
}

TEST_F(XmlWriter, ListEntriesReachTheStreamWithTheirFlag)
{
    CallRecorder stream;
    CXmlStreamWriter writer(stream, NoName);
    writer.BeginElement("A");
    writer.BeginElement("B");
    stream.m_calls.clear();
    writer.AddListEntry("1", true, false);
    writer.AddListEntry("2", false, true);
    EXPECT_EQ(stream.m_calls, (std::vector<std::string>{"text >", "line end", "text     ", "first line 1", "line end",
                                                        "text     ", "line 2"}));
}

TEST_F(XmlWriter, AListEntryBehindAnElementWithoutChildrenLeavesItUnclosed)
{
    TextWriter writer;
    writer->BeginElement("A");
    writer->BeginElement("B");
    writer->BeginElement("C");
    writer->EndElement();
    EXPECT_TRUE(writer->AddListEntry("</D", true, true));
    writer->EndElement();
    EXPECT_EQ(writer.Text(), "<A>\n  <B>\n    <C>\n    </D/>\n  </B");
}

// All short sequences of calls against the steps, done slowly

class SlowWriter
{
public:
    void Begin(const std::string& name)
    {
        if (!m_open.empty()) {
            FinishTag();
        }
        m_text += std::string(m_open.size() * 2, ' ') + "<" + name;
        m_open.push_back(name);
        m_startTagOpen = true;
    }
    void End()
    {
        if (m_startTagOpen) {
            m_open.pop_back();
            m_startTagOpen = false;
            m_emptyClosePending = true;
            return;
        }
        FinishTag();
        const std::string name = m_open.back();
        m_open.pop_back();
        m_text += std::string(m_open.size() * 2, ' ') + "</" + name;
        if (m_open.empty()) {
            m_text += ">\n";
        }
    }
    bool AddListEntry(const std::string& line, bool first, bool last)
    {
        if (m_open.size() < 2) {
            return false;
        }
        m_text += first ? ">\n" : "";
        m_text += std::string(m_open.size() * 2, ' ') + line;
        if (last) {
            m_startTagOpen = false;
        } else {
            m_text += "\n";
        }
        return true;
    }
    bool HasOpen() const { return !m_open.empty(); }
    const std::string& Text() const { return m_text; }

private:
    void FinishTag()
    {
        m_text += m_emptyClosePending ? "/>\n" : ">\n";
        m_emptyClosePending = false;
    }

    std::string m_text;
    std::vector<std::string> m_open;
    bool m_startTagOpen = true;
    bool m_emptyClosePending = false;
};

TEST_F(XmlWriter, AllShortSequencesOfCallsFollowTheSteps)
{
    const std::size_t calls = 6;
    int checks = 0;
    std::vector<std::size_t> sequence;
    const auto run = [&] {
        TextWriter writer;
        SlowWriter slow;
        for (const std::size_t call : sequence) {
            if (call == 0) {
                const std::string name = "N" + std::to_string(writer.Text().size());
                ASSERT_TRUE(writer->BeginElement(name));
                slow.Begin(name);
            } else if (call == 1) {
                if (!slow.HasOpen()) {
                    return;
                }
                ASSERT_TRUE(writer->EndElement());
                slow.End();
            } else {
                const bool first = (call & 1U) != 0;
                const bool last = call >= 4;
                ASSERT_EQ(writer->AddListEntry("line", first, last), slow.AddListEntry("line", first, last));
            }
            ASSERT_EQ(writer.Text(), slow.Text()) << testing::PrintToString(sequence);
        }
        ++checks;
    };
    const std::function<void(std::size_t)> extend = [&](std::size_t length) {
        run();
        for (std::size_t call = 0; length > 0 && call < calls && !HasFatalFailure(); ++call) {
            sequence.push_back(call);
            extend(length - 1);
            sequence.pop_back();
        }
    };
    extend(6);
    // Enough of them with two elements open, where list entries count.
    sequence = {0, 0};
    extend(5);
    EXPECT_GT(checks, 20000);
}

TEST_F(XmlWriter, EndingMoreElementsThanWereBegunIsHarmless)
{
    TextWriter writer;
    EXPECT_TRUE(writer->EndElement());
    EXPECT_TRUE(writer->EndElement());
    EXPECT_TRUE(writer->BeginElement("A"));
    EXPECT_TRUE(writer->BeginElement("B"));
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(writer->EndElement());
    }
    EXPECT_NE(writer.Text().find("<B"), std::string::npos);
}

} // namespace
