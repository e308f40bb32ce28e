#include "ElementWalk.h"

#include "ListClasses.h"

#include <cstdint>
#include <list>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

void WalkBelow(const CElementNode& element, const std::string& path, const TElementVisitor& visitor)
{
    visitor(element, path);
    for (const CStep& step : StepsBelow(element)) {
        WalkBelow(*step.element, path + "/" + step.Text(), visitor);
    }
}

} // namespace

std::string CStep::Text() const
{
    const std::string& name = element->GetElementName();
    return number == 0 ? name : name + "[" + std::to_string(number) + "]";
}

std::vector<CStep> StepsBelow(const CElementNode& element)
{
    std::vector<CStep> steps;
    std::list<CElementNode*> children;
    element.GetChildElements(children);
    for (const CElementNode* child : children) {
        steps.push_back({child, 0});
    }
    if (steps.empty()) { // a list has entries in place of children
        if (const CListClass* listClass = FindListClass(element)) {
            for (const CElementNode* entry : listClass->Entries(element)) {
                steps.push_back({entry, steps.size() + 1});
            }
        }
    }
    return steps;
}

std::vector<const CReadOnlyAttribute*> AttributesOf(const CElementNode& element)
{
    std::list<CReadOnlyAttribute*> attributes;
    element.GetAttributeNodes(attributes);
    return {attributes.begin(), attributes.end()};
}

void Walk(const CElementNode& root, const TElementVisitor& visitor)
{
    WalkBelow(root, "/" + root.GetElementName(), visitor);
}

std::string Utf8(const std::wstring& text)
{
    std::string encoded;
    encoded.reserve(text.size());
    for (const wchar_t character : text) {
        const auto value = static_cast<std::uint32_t>(character);
        const auto put = [&](std::uint32_t lead, int following) {
            encoded += static_cast<char>(lead | (value >> (6 * following)));
            for (int i = following; i-- > 0;) {
                encoded += static_cast<char>(0x80U | ((value >> (6 * i)) & 0x3FU));
            }
        };
        if (value < 0x80) {
            encoded += static_cast<char>(value);
        } else if (value < 0x800) {
            put(0xC0, 1);
        } else if ((value >= 0xD800 && value <= 0xDFFF) || value > 0x10FFFF) {
            encoded += "\xEF\xBF\xBD"; // no character: a reference in a file can give any number
        } else if (value < 0x10000) {
            put(0xE0, 2);
        } else {
            put(0xF0, 3);
        }
    }
    return encoded;
}

} // namespace footprint
