#include "XmlText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace NyxTest
{

namespace
{

const std::string declaration = "<?xml version=\"1.0\" encoding=\"utf-8\" ?>";

bool EndsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// @param tag a start tag without "<", ">" and "/>".
XmlElement ParseTag(const std::string& tag)
{
    XmlElement element;
    std::size_t at = std::min(tag.find(' '), tag.size());
    element.name = tag.substr(0, at);
    while (at < tag.size()) {
        const std::size_t equals = tag.find("=\"", at);
        const std::size_t end = equals == std::string::npos ? equals : tag.find('"', equals + 2);
        if (tag[at] != ' ' || end == std::string::npos) {
            ADD_FAILURE() << "bad tag: " << tag;
            return element;
        }
        element.attributes.emplace_back(tag.substr(at + 1, equals - at - 1), tag.substr(equals + 2, end - equals - 2));
        at = end + 1;
    }
    return element;
}

void Write(const XmlElement& element, std::size_t depth, std::string& text)
{
    const std::string indentation(2 * depth, ' ');
    text += indentation + "<" + element.name;
    for (const auto& [name, value] : element.attributes) {
        text.append(" ").append(name).append("=\"").append(value).append("\"");
    }
    if (element.children.empty()) {
        text += "/>\n";
        return;
    }
    text += ">\n";
    for (const XmlElement& child : element.children) {
        Write(child, depth + 1, text);
    }
    text += indentation + "</" + element.name + ">\n";
}

void AppendCanonical(const XmlElement& element, bool isRoot, std::string& text)
{
    const std::string checksum = element.Attribute("checksum");
    if (!isRoot && element.name == "ConnectedDevice" && !checksum.empty()) {
        text += "checksum=\"" + checksum + "\"";
        return;
    }
    auto attributes = element.attributes;
    std::sort(attributes.begin(), attributes.end());
    for (const auto& [name, value] : attributes) {
        if (!isRoot || name != "checksum") {
            text.append(name).append("=\"").append(value).append("\"");
        }
    }
    std::vector<const XmlElement*> children;
    for (const XmlElement& child : element.children) {
        children.push_back(&child);
    }
    std::stable_sort(children.begin(), children.end(),
                     [](const XmlElement* lhs, const XmlElement* rhs) { return lhs->name < rhs->name; });
    for (const XmlElement* child : children) {
        AppendCanonical(*child, false, text);
    }
}

} // namespace

void XmlElement::ForEach(const std::function<void(XmlElement&)>& visit)
{
    visit(*this);
    for (XmlElement& child : children) {
        child.ForEach(visit);
    }
}

std::string XmlElement::Attribute(const std::string& attributeName) const
{
    for (const auto& [candidate, value] : attributes) {
        if (candidate == attributeName) {
            return value;
        }
    }
    return {};
}

XmlElement ParseXml(const std::string& text)
{
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, declaration);

    std::vector<XmlElement> open(1); // the document, which holds the root
    while (std::getline(lines, line)) {
        const std::size_t depth = open.size() - 1;
        const std::size_t begin = line.find_first_not_of(' ');
        const bool isEnd = begin != std::string::npos && line.compare(begin, 2, "</") == 0;
        if (begin != 2 * (isEnd ? depth - 1 : depth) || line[begin] != '<' || !EndsWith(line, ">")) {
            ADD_FAILURE() << "bad line: " << line;
            return {};
        }
        if (isEnd) {
            EXPECT_EQ(line.substr(begin), "</" + open.back().name + ">");
            XmlElement element = std::move(open.back());
            open.pop_back();
            open.back().children.push_back(std::move(element));
        } else if (EndsWith(line, "/>")) {
            open.back().children.push_back(ParseTag(line.substr(begin + 1, line.size() - begin - 3)));
        } else {
            open.push_back(ParseTag(line.substr(begin + 1, line.size() - begin - 2)));
        }
        if (open.empty()) {
            break;
        }
    }
    if (open.size() != 1 || open.front().children.size() != 1) {
        ADD_FAILURE() << "not one whole document:\n" << text;
        return {};
    }
    return open.front().children.front();
}

std::string ToXmlText(const XmlElement& root)
{
    std::string text = declaration + "\n";
    Write(root, 0, text);
    return text;
}

std::string CanonicalText(const XmlElement& root)
{
    std::string text;
    AppendCanonical(root, true, text);
    return text;
}

} // namespace NyxTest
