#ifndef NYXCONFIG_XMLSTREAMS_H
#define NYXCONFIG_XMLSTREAMS_H

#include "nyxconfig_export.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

/**
 * @file
 * The reader and writer of the library's XML dialect, in which each line is one token: a start tag, an end tag or a tag
 * that is both. The form that the writer gives is the form of all files, to the byte:
 *
 *     <?xml version="1.0" encoding="utf-8" ?>
 *     <Properties>
 *       <Property name="a" value="1 &lt; 2"/>
 *     </Properties>
 *
 * Lines end in one line feed; two blanks for each element that is open around a line; attributes with an empty value
 * are left out; in values the five entities and decimal references replace everything that is not printable ASCII.
 */

namespace KvDeviceFootprint
{

class CElementLayout;
class CElementNode;
class CNodeName;
class CReadBuffer;
class CReadOnlyAttribute;
class CTextSink;

/// What CXmlStreamWriter writes to. The order of the virtual operations is part of the library's binary interface.
class NYXCONFIG_EXPORT CAbstractStream
{
public:
    virtual ~CAbstractStream();
    /// Layout, tags and names.
    virtual void WriteNonEmptyString(const std::string& text) = 0;
    /// One attribute in the form `name="value"`, escaped, without a blank before it.
    virtual void WriteAttributeValue(const std::string& text);
    virtual void WriteNewLine() = 0;
    /// A ready-made line of a connected device; @p first marks the first line of the device.
    virtual void WriteConnectedDeviceLine(const std::string& line, bool first) = 0;

    void WriteBeginToken();
    void WriteEndToken();
    void WriteBeginEndToken();
    void WriteNoAddedEndToken();
    /// Nothing is sent for a count of 0.
    void WriteSpaces(std::size_t count);

protected:
    CAbstractStream() = default;
    CAbstractStream(const CAbstractStream&) = default;
    CAbstractStream& operator=(const CAbstractStream&) = default;
};

/// Writes the bytes as they come to a standard stream. Faults of that stream are not looked at.
class NYXCONFIG_EXPORT COutStream : public CAbstractStream
{
public:
    /// @param output not owned; must outlive this object.
    explicit COutStream(std::ostream& output) : m_output(&output) {}
    ~COutStream() override;

    void WriteNonEmptyString(const std::string& text) override;
    /// Writes one line feed and flushes the stream.
    void WriteNewLine() override;
    void WriteConnectedDeviceLine(const std::string& line, bool first) override;

private:
    friend class CXmlStreamWriter;

    std::ostream* m_output;
};

/// A row of s_XmlEntities: an entity and the character for which it stands.
struct XmlEntity
{
    const wchar_t* text;
    wchar_t character;
};

/// The five entities in the order of processing: "&" goes first, so that the "&" of the others is not escaped again.
NYXCONFIG_EXPORT extern const std::array<XmlEntity, 5> s_XmlEntities;

/**
 * A pull reader that takes one line as one token.
 *
 * Use: NextToken() until the wanted root stands in the token (IsElement()), then CElementNode::LoadFromStream, which
 * leaves the reader on the token behind the element.
 *
 * Not handled, as no writer of this dialect makes them: tags spread over several lines, a second tag on a line, blanks
 * behind a "/>", comments, text. A line that is neither an end tag nor ends in "/>" is a start tag, whatever it holds.
 *
 * Failures are reported through CDeviceFootprint::SetLastError. A reader belongs to one thread.
 */
class NYXCONFIG_EXPORT CXmlStreamReader
{
public:
    /// How deep elements may be nested in a file that is loaded or saved, the root included. Loading and all later
    /// walks are recursive; the bound lets them run in a thread with a stack of 256 KiB.
    static constexpr std::size_t MaxDepth = 256;

    /// Reads nothing yet.
    /// @param input not owned; must outlive the reader.
    /// @param name what to call the stream in messages; not copied, must outlive the reader.
    CXmlStreamReader(std::istream& input, const std::string& name);
    CXmlStreamReader(std::istream& input, std::string&& name) = delete;
    CXmlStreamReader(const CXmlStreamReader&) = delete;
    CXmlStreamReader& operator=(const CXmlStreamReader&) = delete;
    virtual ~CXmlStreamReader();

    /**
     * Advances by one line.
     *
     * @return false at the end of the stream, without a text; false with "Error reading xml" if the stream failed, and
     * with the text of InvalidUTF8() if the line is no UTF-8. The token is then empty.
     * @throw std::out_of_range for a line of nothing but blanks and tabs. Nothing in the library catches it.
     */
    bool NextToken();
    /// Whether the token is an end tag.
    bool IsEndToken() const { return m_isEndToken; }
    /// Whether the token is an end tag whose name begins with @p name.
    bool IsEndToken(const std::string& name) const;
    /// Whether the token ends in "/>".
    bool ElementHasNoChilds() const { return m_hasNoChildren; }
    /**
     * Whether the token is a start tag whose name begins with @p name: only a prefix is compared, by design, and the
     * first character of the token is not looked at.
     * @throw std::out_of_range for an empty token, as a blank line gives and the end of a file behind an end tag.
     */
    bool IsElement(const std::string& name) const;
    /// The whole token, narrowed by NarrowText().
    std::string GetCurrentElement() const;
    /// The unescaped value of an attribute of the token; empty if there is none. Always true.
    bool GetAttribute(const std::string& name, std::wstring& value);
    /// The same with the attribute's name, into its value.
    bool GetAttribute(CReadOnlyAttribute& attribute);
    /// Moves on to the token behind the current element and all that it holds. The names of end tags are not tested.
    bool SkipCurrentElement();
    /// "name, line 12", without the name and comma if the stream has no name.
    std::string GetCurrentPositionText() const;
    /// Appends the decoded text; false at the first failure, with what was decoded so far appended.
    bool GetStringFromUTF8(const std::string& text, std::wstring& decoded) const;
    /// Decodes one character and moves @p cursor behind it; on failure the cursor stays on the first byte.
    bool GetCharFromUTF8(const char*& cursor, const char* end, wchar_t& character) const;
    /// Reports an encoding error at the current position. Always false.
    bool InvalidUTF8(const std::string& detail) const;

    /// Enters one element more; false, reported, beyond MaxDepth. Each call that gave true is followed by
    /// LeaveElement().
    bool EnterElement();
    void LeaveElement() { --m_depth; }

    /// Loads all attributes of an element that is just of the layout's class and bears its names, as GetAttribute() of
    /// each would. False, with some of them loaded, if the token does not give them in the order of the layout.
    bool GetAttributes(CElementNode& element, const CElementLayout& layout);

private:
    struct Span
    {
        const char* begin;
        std::size_t length;
    };
    struct LocatedAttribute
    {
        Span name;
        Span value;
    };

    bool ReadLine();
    bool ValidateToken();
    bool MayHold(const std::string& name) const;
    bool AreAttributesLocated();
    bool FindAttributes(const std::string& expected, const char*& begin, const char*& end) const;
    bool LocateAttributes();
    static const char* SkipOpening(const char* cursor, const char* end, const CNodeName& name);
    bool FindAttribute(const std::string& name, Span& value);
    bool FindByText(const std::string& name, Span& value) const;
    void DecodeValue(const Span& span, bool hasReference, std::wstring& value) const;

    std::istream* m_input;
    CReadBuffer* m_file; // what the input reads from, if it is a file that the library opened
    const std::string* m_name;
    std::uint32_t m_lineNumber = 0;
    bool m_isEndToken = false;
    bool m_hasNoChildren = false;
    // The token is a part of the line, kept in UTF-8, which was tested: values alone need wide characters.
    std::string m_line;
    const char* m_begin = nullptr;
    const char* m_end = nullptr;
    bool m_isAscii = true;
    enum
    {
        eNotTried,
        eLocated,
        eOtherForm
    } m_attributesState = eNotTried;
    std::vector<LocatedAttribute> m_attributes;
    std::size_t m_depth = 0;
};

/// Enters an element of a reader for as long as this object lives.
class CElementScope
{
public:
    explicit CElementScope(CXmlStreamReader& reader) : m_reader(&reader), m_entered(reader.EnterElement()) {}
    CElementScope(const CElementScope&) = delete;
    CElementScope& operator=(const CElementScope&) = delete;
    ~CElementScope()
    {
        if (m_entered) {
            m_reader->LeaveElement();
        }
    }

    /// False if the element is nested too deeply, which was reported.
    bool IsEntered() const { return m_entered; }

private:
    CXmlStreamReader* m_reader;
    bool m_entered;
};

/**
 * Writes elements and attributes to a CAbstractStream. Each ">" and line end is written only when the next call shows
 * which form is needed, so a call often ends what the one before began. A root without children is left without its
 * "/>", as no later call would write it.
 *
 * Order of calls for a file: WriteFirstLine(), BeginElement() of the root, its SetAttribute() calls, the children,
 * EndElement(). SetAttribute() does not test the state. A writer belongs to one thread.
 */
class NYXCONFIG_EXPORT CXmlStreamWriter
{
public:
    /// Writes nothing yet.
    /// @param output not owned; must outlive the writer.
    /// @param name what to call the stream in messages; not copied, must outlive the writer.
    CXmlStreamWriter(CAbstractStream& output, const std::string& name);
    CXmlStreamWriter(CAbstractStream& output, std::string&& name) = delete;
    CXmlStreamWriter(const CXmlStreamWriter&) = delete;
    CXmlStreamWriter& operator=(const CXmlStreamWriter&) = delete;
    virtual ~CXmlStreamWriter();

    /// Writes the XML declaration. Always true.
    bool WriteFirstLine();
    /// Always true.
    bool BeginElement(const std::string& name);
    /// Always true.
    bool EndElement();
    /// Writes nothing for an empty value. False only if the value can not be written in UTF-8.
    bool SetAttribute(const std::string& name, const std::wstring& value);
    bool SetAttribute(const CReadOnlyAttribute& attribute);
    /// Writes all attributes of an element that is just of the layout's class and bears its names, sorted by name for a
    /// checksum.
    bool SetAttributes(const CElementNode& element, const CElementLayout& layout);
    /// Writes one ready-made line in the place of a child element; false, with nothing written, if fewer than two
    /// elements are open. @p first closes the tag before it; @p last leaves the line open for what follows to close
    /// with ">".
    bool AddListEntry(const std::string& line, bool first, bool last);
    /// The name and ", ", or an empty text without a name.
    std::string GetCurrentPositionText() const;
    /// Appends the UTF-8 form of @p text; false at the first value that is no Unicode character.
    bool GetUTF8FromString(const std::wstring& text, std::string& encoded) const;
    /// Reports an encoding error. Always false.
    bool InvalidUTF8(const std::string& detail) const;

    /// Whether the output is a CChecksumStream, for which the save walk sorts by name.
    bool IsForChecksum() const { return m_isForChecksum; }
    /// Whether an element that is not left out although it is empty changes nothing.
    bool MayTakeEmptyElement() const { return WritesValuesOnly() && m_openCount < CXmlStreamReader::MaxDepth; }
    /// Whether a further element would be nested deeper than CXmlStreamReader::MaxDepth, which is reported.
    bool IsTooDeep() const;

private:
    friend class CDeviceFootprintData;

    /// For a checksum stream of which the library knows that nobody else sees it: attributes go to @p sink instead.
    CXmlStreamWriter(CAbstractStream& output, const std::string& name, CTextSink& sink);

    /// Whether no tag or layout is wanted, for a checksum that nobody else sees.
    bool WritesValuesOnly() const { return m_sink != nullptr && m_isForChecksum; }
    void CloseStartTag();
    char* PutClose(char* to);
    void WriteTag(bool closesTag, bool isEndTag, const std::string& name);
    void PutAttribute(const std::string& name, const std::wstring& value);
    void PutAttribute(const CNodeName& name, const std::wstring& value);
    void PutValue(char* to, const std::wstring& value);
    char* PutRest(const std::wstring& value, std::size_t begin);

    static constexpr std::size_t IndentationStep = 2;
    static constexpr std::size_t ClosePieceSize = 4;

    CAbstractStream* m_output;
    CTextSink* m_sink; // null, or what is written to instead of the output
    const std::string* m_name;
    std::vector<std::string> m_openElements; // the names; those behind the open ones are kept for their capacity
    std::size_t m_openCount = 0;
    bool m_isStartTagOpen = true;
    bool m_isEmptyClosePending = false;
    bool m_isForChecksum;
    std::string m_attributeText; // kept for its capacity
};

} // namespace KvDeviceFootprint

#endif
