#include "LineMap.h"

#include "DeviceFootprint.h"
#include "XmlStreams.h"

#include <algorithm>
#include <functional>
#include <istream>
#include <list>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <unordered_map>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

/// Gives a reader one line at a time, so that the line behind its token is at hand.
class CLineSource : public std::streambuf
{
public:
    explicit CLineSource(std::istream& input) : m_input(&input) {}

    /// From 1; 0 before the first one.
    std::size_t Number() const { return m_number; }
    /// The line without the blanks around it and without its end.
    std::string Line() const
    {
        const std::size_t begin = m_line.find_first_not_of(" \t");
        std::size_t end = m_line.size();
        end -= end > 0 && m_line[end - 1] == '\n' ? 1 : 0;
        end -= end > 0 && m_line[end - 1] == '\r' ? 1 : 0;
        return begin == std::string::npos || begin >= end ? "" : m_line.substr(begin, end - begin);
    }

protected:
    int_type underflow() override
    {
        if (!std::getline(*m_input, m_next)) {
            return traits_type::eof(); // the last line stays
        }
        if (!m_input->eof()) {
            m_next += '\n';
        }
        m_line.swap(m_next);
        ++m_number;
        setg(m_line.data(), m_line.data(), m_line.data() + m_line.size());
        return traits_type::to_int_type(m_line.front());
    }

private:
    std::istream* m_input;
    std::string m_line;
    std::string m_next;
    std::size_t m_number = 0;
};

/// The entry that stands for all entries of a list; null if the element is none.
template<class T>
CElementNode* EntryOf(CElementNode& element)
{
    auto* list = dynamic_cast<CElementNodeList<T>*>(&element);
    return list == nullptr ? nullptr : list->empty() ? &list->CreateEntry() : &list->front();
}

template<class... Entry>
CElementNode* EntryOfAny(CElementNode& element)
{
    CElementNode* entry = nullptr;
    static_cast<void>((((entry = EntryOf<Entry>(element)) != nullptr) || ...));
    return entry;
}

/// What can stand in an element. The elements are empty ones, each for all of its kind.
struct CLayout
{
    std::vector<std::string> attributes;
    std::vector<CElementNode*> children;
    CElementNode* entry = nullptr; ///< null if the element is no list
};

/// A value as a save writes it.
std::string Written(const std::wstring& value)
{
    static const std::string name;
    std::ostringstream text;
    COutStream stream(text);
    CXmlStreamWriter(stream, name).SetAttribute("v", value);
    const std::string attribute = text.str(); // ' v="..."', or nothing
    return attribute.empty() ? attribute : attribute.substr(4, attribute.size() - 5);
}

/// Whether a text between quotes is without doubt what a save of @p value writes: the usual case, tested quickly.
bool IsPlainly(const std::string& text, const std::wstring& value)
{
    return text.size() == value.size() &&
           std::equal(text.begin(), text.end(), value.begin(), [](char byte, wchar_t character) {
               return byte >= ' ' && byte <= '~' && byte != '&' && byte != '<' && byte != '>' && byte != '\'' &&
                      character == static_cast<wchar_t>(byte);
           });
}

/// Appends a step to a path for as long as it lives.
class CPathStep
{
public:
    CPathStep(std::string& path, const std::string& step) : m_path(path), m_length(path.size())
    {
        m_path += "/" + step;
    }
    CPathStep(const CPathStep&) = delete;
    CPathStep& operator=(const CPathStep&) = delete;
    ~CPathStep() { m_path.resize(m_length); }

private:
    std::string& m_path;
    std::size_t m_length;
};

std::string LineText(std::size_t line)
{
    return "line " + std::to_string(line);
}

/// Follows CDeviceFootprint::Load().
class CLineWalk
{
public:
    CLineWalk(std::istream& input, CFindings& findings)
        : m_source(input), m_input(&m_source), m_reader(m_input, m_noName), m_findings(&findings)
    {
    }

    CLineMap Walk()
    {
        bool isLoaded = false;
        while (Advance()) {
            if (m_source.Line().empty()) {
                Stop("the line is blank");
                break;
            }
            if (m_reader.IsElement(m_prototype.GetElementName())) {
                isLoaded = ReadElement(m_prototype, m_map.root, m_prototype.GetElementName());
                if (!isLoaded || m_isBlank) {
                    break;
                }
                if (m_isAtToken && !m_source.Line().empty()) {
                    NoteOutside(); // what follows the root is passed over, whatever it is
                }
            } else if (!IsDeclaration()) {
                NoteOutside();
            }
        }
        Finish(isLoaded);
        return std::move(m_map);
    }

private:
    void Finish(bool isLoaded)
    {
        if (m_isBlank || !m_words.empty()) {
            if (isLoaded && !m_isBlank) {
                m_findings->Add(m_source.Number(), "/", "outside-root", "nothing is read from here on: " + m_words);
            } else {
                StopHere(0);
            }
        } else if (!isLoaded) {
            Stop("there is no <" + m_prototype.GetElementName() + "> in the file");
        }
        m_map.isWhole = !m_isStopped;
        if (m_map.isWhole && m_firstOutside != 0) {
            m_findings->Add(m_firstOutside, "/", "outside-root",
                            "outside the root, and lost at the next save" +
                                (m_lastOutside == m_firstOutside ? "" : " as others up to " + LineText(m_lastOutside)) +
                                ": " + Quoted(m_outside));
        }
    }

    /// Goes to the next line. Whether there is one and it is a token.
    bool Advance()
    {
        return Move([this]() { return m_reader.NextToken(); });
    }

    template<class TMove>
    bool Move(TMove move)
    {
        m_words.clear();
        m_isBlank = false;
        CDeviceFootprint::SetLastError("");
        try {
            m_isAtToken = move();
        } catch (const std::out_of_range&) {
            m_isBlank = true;
            m_isAtToken = false;
        }
        if (!m_isAtToken) {
            m_words = CDeviceFootprint::GetLastError();
            const std::string place = LineText(m_source.Number()) + ", ";
            if (m_words.compare(0, place.size(), place) == 0) {
                m_words.erase(0, place.size());
            }
        }
        return m_isAtToken;
    }

    /// Keeps the reason why a load ends here. Always false.
    bool Stop(const std::string& text)
    {
        if (!m_isStopped) {
            m_isStopped = true;
            m_map.stop = {std::max<std::size_t>(m_source.Number(), 1), m_path.empty() ? "/" : m_path, "load", text};
        }
        return false;
    }

    /// The same where there is no token. @param opened the line of the element that is open; 0 if none is.
    bool StopHere(std::size_t opened)
    {
        if (m_isBlank || (m_isAtToken && m_source.Line().empty())) {
            return Stop("the line is blank");
        }
        if (!m_words.empty()) {
            return Stop(m_words);
        }
        return Stop(opened == 0 ? "the file ends here; a root that is one tag needs a line behind it"
                                : "the file ends here, before the end tag of " + LineText(opened));
    }

    bool IsDeclaration() const { return m_source.Number() == 1 && m_source.Line().find("<?xml ") != std::string::npos; }

    void NoteOutside()
    {
        m_lastOutside = m_source.Number();
        if (m_firstOutside == 0) {
            m_firstOutside = m_lastOutside;
            m_outside = m_source.Line();
        }
    }

    const CLayout& LayoutOf(CElementNode& prototype)
    {
        CLayout& layout = m_layouts[&prototype];
        if (layout.attributes.empty() && layout.children.empty() && layout.entry == nullptr) {
            std::list<CReadOnlyAttribute*> attributes;
            prototype.GetAttributeNodes(attributes);
            for (const CReadOnlyAttribute* attribute : attributes) {
                layout.attributes.push_back(attribute->GetNodeName());
            }
            std::list<CElementNode*> children;
            prototype.GetChildElements(children);
            layout.children.assign(children.begin(), children.end());
            layout.entry =
                EntryOfAny<CHardware, CProgrammablePart, CProduct, CSoftware, CMaintenance, CMaintenanceTask,
                           CMaintenanceInfo, CService, CProperty, CTestInstruction, CConnectedDevice>(prototype);
        }
        return layout;
    }

    bool ReadElement(CElementNode& prototype, CLineNode& node, const std::string& step)
    {
        bool isOneTag = false;
        const bool isRead = ReadTag(prototype, node, step, isOneTag);
        return isRead && (!isOneTag || Advance() || StopHere(m_opened));
    }

    /// Reads an element; of one that is a single tag, the reader stays on it.
    bool ReadTag(CElementNode& prototype, CLineNode& node, const std::string& step, bool& isOneTag)
    {
        const CPathStep path(m_path, step);
        const CElementScope scope(m_reader);
        if (!scope.IsEntered()) {
            return Stop("elements are nested too deeply");
        }
        const CLayout& layout = LayoutOf(prototype);
        NoteStartTag(prototype.GetElementName(), layout, node);
        isOneTag = m_reader.ElementHasNoChilds();
        if (isOneTag) {
            return true;
        }
        const std::size_t around = m_opened;
        m_opened = m_source.Number();
        const bool isRead = Advance() ? ReadContent(prototype.GetElementName(), layout, node) : StopHere(m_opened);
        m_opened = around;
        return isRead;
    }

    bool ReadContent(const std::string& name, const CLayout& layout, CLineNode& node)
    {
        while (!m_reader.IsEndToken()) {
            if (!m_isAtToken || m_source.Line().empty()) {
                return StopHere(m_opened);
            }
            if (!ReadBelow(layout, node)) {
                return false;
            }
        }
        if (!m_reader.IsEndToken(name)) {
            return Stop(Quoted(m_source.Line()) + " stands where the end tag of " + LineText(m_opened) + " must be");
        }
        Advance(); // behind the last end tag of a file there is nothing
        return !m_isBlank || StopHere(m_opened);
    }

    /// Reads a child, or an entry of a list, or passes over what is neither.
    bool ReadBelow(const CLayout& layout, CLineNode& node)
    {
        if (layout.entry != nullptr && m_reader.IsElement(layout.entry->GetElementName())) {
            node.below.emplace_back();
            return ReadElement(*layout.entry, node.below.back(),
                               layout.entry->GetElementName() + "[" + std::to_string(node.below.size()) + "]");
        }
        for (std::size_t index = 0; index < layout.children.size(); ++index) {
            CElementNode& child = *layout.children[index];
            if (m_reader.IsElement(child.GetElementName())) {
                node.below.resize(std::max(node.below.size(), index + 1));
                return ReadElement(child, node.below[index], child.GetElementName());
            }
        }
        return PassOver();
    }

    bool PassOver()
    {
        const std::size_t first = m_source.Number();
        const std::string tag = m_source.Line();
        const bool isPassed = Move([this]() { return m_reader.SkipCurrentElement(); });
        const std::size_t last = m_source.Number() - (isPassed ? 1 : 0);
        m_findings->Add(first, m_path, "unknown-tag",
                        "not known here and lost at the next save" +
                            (last > first ? ", with all up to " + LineText(last) : "") + ": " + Quoted(tag));
        return isPassed || StopHere(m_opened);
    }

    void NoteStartTag(const std::string& name, const CLayout& layout, CLineNode& node)
    {
        const std::size_t line = m_source.Number();
        if (node.line != 0 && !layout.attributes.empty()) {
            m_findings->Add(line, m_path, "repeated-element",
                            "the element stands in " + LineText(node.line) +
                                " already; what its attributes are there "
                                "is lost");
        }
        node.line = line;
        const std::string tag = m_source.Line();
        std::size_t end = tag.size();
        if (m_reader.ElementHasNoChilds()) {
            end -= 2;
        } else if (tag.back() == '>') {
            --end;
        } else {
            NoteForm("the tag has no '>' at its end: " + Quoted(tag));
        }
        const std::size_t nameEnd = std::min(tag.find_first_of(" \t", 0), end);
        if (tag.compare(0, nameEnd, "<" + name) != 0) {
            m_findings->Add(line, m_path, "tag-name", "read and saved as <" + name + ">: " + Quoted(tag));
        }
        ReadAttributes(tag, nameEnd, end, layout);
    }

    void NoteForm(const std::string& text) { m_findings->Add(m_source.Number(), m_path, "tag-form", text); }

    /// Goes through the attributes as XML has them, which is more than the library reads.
    void ReadAttributes(const std::string& tag, std::size_t position, std::size_t end, const CLayout& layout)
    {
        const auto skip = [&tag, end](std::size_t from, const char* characters) {
            return std::min(tag.find_first_not_of(characters, from), end);
        };
        std::vector<std::string> names;
        for (position = skip(position, " \t"); position < end; position = skip(position, " \t")) {
            const std::size_t nameEnd = std::min(tag.find_first_of(" \t=\"'<>", position), end);
            const std::size_t equals = skip(nameEnd, " \t");
            const std::size_t quote = equals < end && tag[equals] == '=' ? skip(equals + 1, " \t") : end;
            const bool isQuote = quote < end && (tag[quote] == '"' || tag[quote] == '\'');
            const std::size_t close = isQuote ? tag.find(tag[quote], quote + 1) : end;
            if (nameEnd == position || close >= end) {
                NoteForm("no attribute, and lost at the next save: " + Quoted(tag.substr(position, end - position)));
                return;
            }
            NoteAttribute(tag.substr(position, nameEnd - position), tag.substr(quote + 1, close - quote - 1), layout,
                          names);
            position = close + 1;
        }
    }

    void NoteAttribute(const std::string& name, const std::string& text, const CLayout& layout,
                       std::vector<std::string>& names)
    {
        const auto note = [this, &name](const std::string& path, const char* rule, const std::string& words) {
            m_findings->Add(m_source.Number(), path, rule, words + ": " + Quoted(name));
        };
        if (std::find(layout.attributes.begin(), layout.attributes.end(), name) == layout.attributes.end()) {
            note(m_path, "unknown-attribute", "not known here and lost at the next save");
            return;
        }
        const std::string path = m_path + "/@" + name;
        if (std::find(names.begin(), names.end(), name) != names.end()) {
            note(path, "repeated-attribute", "comes a second time in the tag, which is not read");
            return;
        }
        names.push_back(name);
        m_reader.GetAttribute(name, m_value);
        if (IsPlainly(text, m_value)) {
            return;
        }
        const std::string written = Written(m_value);
        if (written != text) {
            m_findings->Add(m_source.Number(), path, "value-form",
                            (m_value.empty() ? "is not read: " : "is saved as " + Quoted(written) + ": ") +
                                Quoted(text));
        }
    }

    CLineSource m_source;
    std::istream m_input;
    const std::string m_noName;
    CXmlStreamReader m_reader;
    CFindings* m_findings;
    CDeviceFootprint m_prototype;
    std::unordered_map<const CElementNode*, CLayout> m_layouts;
    CLineMap m_map;
    std::string m_path;
    std::wstring m_value;
    std::size_t m_opened = 0; // the line of the innermost element whose content is read
    bool m_isAtToken = false;
    bool m_isBlank = false; // whether the reader threw instead of giving a token
    std::string m_words;    // why there is no token; empty at the end of the file
    bool m_isStopped = false;
    std::size_t m_firstOutside = 0;
    std::size_t m_lastOutside = 0;
    std::string m_outside;
};

} // namespace

CLineMap MapLines(std::istream& input, CFindings& findings)
{
    CLineMap map = CLineWalk(input, findings).Walk();
    CDeviceFootprint::SetLastError(""); // what it says now comes from here
    return map;
}

} // namespace footprint
