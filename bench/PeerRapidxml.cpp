#include "Peers.h"

#include <rapidxml/rapidxml.hpp>

namespace bench
{

namespace
{

class Node
{
public:
    explicit Node(const rapidxml::xml_node<>* node) : m_node(node) {}

    std::string_view Name() const { return {m_node->name(), m_node->name_size()}; }
    template<class Visitor>
    void ForEachAttribute(Visitor visit) const
    {
        for (const auto* attribute = m_node->first_attribute(); attribute != nullptr;
             attribute = attribute->next_attribute()) {
            visit(std::string_view(attribute->name(), attribute->name_size()),
                  std::string_view(attribute->value(), attribute->value_size()));
        }
    }
    template<class Visitor>
    void ForEachChild(Visitor visit) const
    {
        for (const auto* child = m_node->first_node(); child != nullptr; child = child->next_sibling()) {
            visit(Node(child));
        }
    }

private:
    const rapidxml::xml_node<>* m_node;
};

void Load(const std::string& file, Footprint& footprint)
{
    std::string text = ReadFile(file);
    rapidxml::xml_document<> document;
    document.parse<rapidxml::parse_no_data_nodes | rapidxml::parse_no_string_terminators>(text.data());
    const auto* root = document.first_node(RootTag);
    if (root == nullptr) {
        Fail("rapidxml: no footprint in " + file);
    }
    FillFromTree(FootprintSchema(), &footprint, Node(root));
}

} // namespace

// Its printer has an indentation and an escaping of its own, which nothing can change.
const Peer Rapidxml = {"rapidxml", &Load, nullptr};

} // namespace bench
