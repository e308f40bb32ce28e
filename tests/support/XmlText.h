#ifndef NYXCONFIG_XMLTEXT_H
#define NYXCONFIG_XMLTEXT_H

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace NyxTest
{

/// An element of a saved document as its text has it: values escaped, attributes and children in the order of the text.
/// It knows nothing of the library.
struct XmlElement
{
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<XmlElement> children;

    /// Visits this element and all below it, parents first.
    void ForEach(const std::function<void(XmlElement&)>& visit);
    /// The value of an attribute; empty if there is none.
    std::string Attribute(const std::string& attributeName) const;
};

/// Takes a document apart that a save made. Anything else fails the test.
XmlElement ParseXml(const std::string& text);

/// The document in the form in which a save writes it.
std::string ToXmlText(const XmlElement& root);

/// What a document's checksum is the digest of: the attributes, without the root's checksum, and then the children,
/// both sorted by name. A connected device with a checksum enters with that alone.
std::string CanonicalText(const XmlElement& root);

} // namespace NyxTest

#endif
