#include "ChecksLink.h"

#include "DeviceFootprint.h"
#include "DeviceFootprintLink.h"
#include "XmlStreams.h"

#include <array>
#include <istream>
#include <stdexcept>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

class CLinkCheck
{
public:
    explicit CLinkCheck(CFindings& findings) : m_findings(&findings) {}

    void Check(CXmlStreamReader& reader)
    {
        const std::string root = DeviceFootprintLink::_rootElementName;
        std::size_t rootLine = 0;
        bool isClosed = false;
        for (++m_line; reader.NextToken(); ++m_line) {
            const std::string tag = reader.GetCurrentElement();
            if (tag == "<" + root + ">") {
                rootLine = rootLine == 0 ? m_line : rootLine;
            } else if (tag == "</" + root + ">") {
                isClosed = true;
            } else if (!CheckElement(reader) && tag.compare(0, 6, "<?xml ") != 0) {
                m_findings->Add(m_line, "/" + root, "unknown-tag", "a link file has no such tag: " + Quoted(tag));
            }
        }
        if (!CDeviceFootprint::GetLastError().empty()) {
            m_findings->Add(m_line, "/", "load", CDeviceFootprint::GetLastError());
            return;
        }
        if (rootLine == 0 || !isClosed) {
            m_findings->Add(m_line - 1, "/", "load", "<" + root + "> or its end tag is not there");
        }
        for (std::size_t index = 0; index < s_elements.size(); ++index) {
            if (m_lines[index] == 0) {
                m_findings->Add(rootLine, "/" + root + "/" + *s_elements[index], "required",
                                "a link file needs this element");
            }
        }
    }

    std::size_t Line() const { return m_line; }

private:
    /// Whether the token is one of the two elements.
    bool CheckElement(CXmlStreamReader& reader)
    {
        for (std::size_t index = 0; index < s_elements.size(); ++index) {
            if (!reader.IsElement(*s_elements[index])) {
                continue;
            }
            std::string path = "/" + DeviceFootprintLink::_rootElementName + "/" + *s_elements[index];
            if (m_lines[index] != 0) {
                m_findings->Add(m_line, path, "repeated-element",
                                "the element stands in line " + std::to_string(m_lines[index]) + " already");
            }
            m_lines[index] = m_line;
            std::wstring value;
            reader.GetAttribute(DeviceFootprintLink::_pathAttributeName, value);
            if (!value.empty() && value.front() != L'/') {
                path += "/@" + DeviceFootprintLink::_pathAttributeName;
                m_findings->Add(m_line, path, "absolute-path", Quoted(value) + " is no absolute path");
            }
            return true;
        }
        return false;
    }

    static const std::array<const std::string*, 2> s_elements;

    CFindings* m_findings;
    std::size_t m_line = 0;
    std::array<std::size_t, 2> m_lines = {};
};

const std::array<const std::string*, 2> CLinkCheck::s_elements = {
    &DeviceFootprintLink::_latestDeviceFootprintPathElementName, &DeviceFootprintLink::_historyPathElementName};

} // namespace

void CheckLinkFile(std::istream& input, CFindings& findings)
{
    static const std::string name;
    CXmlStreamReader reader(input, name);
    CLinkCheck check(findings);
    CDeviceFootprint::SetLastError("");
    try {
        check.Check(reader);
    } catch (const std::out_of_range&) {
        findings.Add(check.Line(), "/", "load", "the line is blank");
    }
    CDeviceFootprint::SetLastError("");
}

} // namespace footprint
