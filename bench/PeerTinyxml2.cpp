#include "Peers.h"

#include <tinyxml2.h>

#include <cstdio>
#include <memory>

namespace bench
{

namespace
{

class Node
{
public:
    explicit Node(const tinyxml2::XMLElement* node) : m_node(node) {}

    std::string_view Name() const { return m_node->Name(); }
    template<class Visitor>
    void ForEachAttribute(Visitor visit) const
    {
        for (const auto* attribute = m_node->FirstAttribute(); attribute != nullptr; attribute = attribute->Next()) {
            visit(std::string_view(attribute->Name()), std::string_view(attribute->Value()));
        }
    }
    template<class Visitor>
    void ForEachChild(Visitor visit) const
    {
        for (const auto* child = m_node->FirstChildElement(); child != nullptr; child = child->NextSiblingElement()) {
            visit(Node(child));
        }
    }

private:
    const tinyxml2::XMLElement* m_node;
};

void Load(const std::string& file, Footprint& footprint)
{
    tinyxml2::XMLDocument document;
    if (document.LoadFile(file.c_str()) != tinyxml2::XML_SUCCESS || document.FirstChildElement(RootTag) == nullptr) {
        Fail(std::string("tinyxml2: ") + document.ErrorStr());
    }
    FillFromTree(FootprintSchema(), &footprint, Node(document.FirstChildElement(RootTag)));
}

/// The printer with the dialect's indentation. Values come escaped, as its own escaping knows no references.
class Printer : public tinyxml2::XMLPrinter
{
public:
    void Begin(const std::string& tag) { OpenElement(tag.c_str()); }
    void Attribute(const std::string& name, const std::wstring& value)
    {
        m_escaped.resize(12 * value.size() + 1);
        const std::size_t length = static_cast<std::size_t>(Escape(value, m_escaped.data()) - m_escaped.data());
        Putc(' ');
        Write(name.c_str(), name.size());
        Write("=\"");
        Write(m_escaped.data(), length);
        Putc('"');
    }
    void End() { CloseElement(); }

protected:
    void PrintSpace(int depth) override
    {
        for (int i = 0; i < depth; ++i) {
            Write("  ", 2);
        }
    }

private:
    std::string m_escaped;
};

void Save(const Footprint& footprint, const std::string& file)
{
    static const std::string root(RootTag);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> opened(std::fopen(file.c_str(), "wb"), &std::fclose);
    if (!opened) {
        Fail("can not open " + file);
    }
    Printer printer; // into memory, which is quicker than into the file
    printer.PushDeclaration("xml version=\"1.0\" encoding=\"utf-8\" ");
    Write(FootprintSchema(), root, &footprint, printer);
    const auto size = static_cast<std::size_t>(printer.CStrSize() - 1);
    if (std::fwrite(printer.CStr(), 1, size, opened.get()) != size) {
        Fail("can not write " + file);
    }
}

} // namespace

const Peer Tinyxml2 = {"tinyxml2", &Load, &Save};

} // namespace bench
