#include "Peers.h"

#include <pugixml.hpp>

namespace bench
{

namespace
{

class Node
{
public:
    explicit Node(const pugi::xml_node& node) : m_node(node) {}

    std::string_view Name() const { return m_node.name(); }
    template<class Visitor>
    void ForEachAttribute(Visitor visit) const
    {
        for (pugi::xml_attribute attribute = m_node.first_attribute(); attribute;
             attribute = attribute.next_attribute()) {
            visit(std::string_view(attribute.name()), std::string_view(attribute.value()));
        }
    }
    template<class Visitor>
    void ForEachChild(Visitor visit) const
    {
        for (pugi::xml_node child = m_node.first_child(); child; child = child.next_sibling()) {
            visit(Node(child));
        }
    }

private:
    pugi::xml_node m_node;
};

void Load(const std::string& file, Footprint& footprint)
{
    pugi::xml_document document;
    const pugi::xml_parse_result result =
        document.load_file(file.c_str(), pugi::parse_minimal | pugi::parse_escapes, pugi::encoding_utf8);
    if (!result) {
        Fail(std::string("pugixml: ") + result.description());
    }
    FillFromTree(FootprintSchema(), &footprint, Node(document.child(RootTag)));
}

} // namespace

// Its writer puts a blank before each "/>", which nothing can change.
const Peer Pugixml = {"pugixml", &Load, nullptr};

} // namespace bench
