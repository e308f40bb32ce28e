#ifndef NYXCONFIG_DIFFTEXT_H
#define NYXCONFIG_DIFFTEXT_H

#include "DeviceFootprint.h"
#include "Differences.h"
#include "Json.h"
#include "Redaction.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <unordered_map>
#include <vector>

namespace footprint
{

/// Shows the differences of two footprints.
class CDiffText
{
public:
    /// @param oldDocument,newDocument those of the explanation. All must live on.
    CDiffText(const KvDeviceFootprint::CDeviceFootprint& oldDocument,
              const KvDeviceFootprint::CDeviceFootprint& newDocument, const CExplanation& explanation,
              CRedaction& redaction);

    std::size_t Count() const { return m_explanation.differences.size(); }
    std::size_t DecidingCount() const { return m_deciding; }

    /// Writes the differences by their elements; those that decide with a "!" and the rule.
    /// @param indent blanks in front of each line.
    void Write(std::ostream& output, bool colour, std::size_t indent, bool onlyDeciding) const;
    TJson Json(bool onlyDeciding) const;

    /// "3 differences, 1 of which decides", and the like.
    std::string Summary() const;

private:
    using TEntries = std::unordered_map<std::string, const KvDeviceFootprint::CElementNode*>;

    static TEntries EntriesOf(const KvDeviceFootprint::CElementNode& root);
    std::string NamesOnTheWay(const CDifference& difference) const;
    std::string NameOf(const KvDeviceFootprint::CElementNode& entry, std::size_t number) const;
    std::string Happened(const CDifference& difference) const;
    std::string Value(const CDifference& difference, const std::string& value) const;
    std::string AttributesOnOneLine(const KvDeviceFootprint::CElementNode& entry) const;
    TJson JsonOf(const CDifference& difference) const;

    const CExplanation& m_explanation;
    CRedaction& m_redaction;
    TEntries m_oldEntries;
    TEntries m_newEntries;
    std::size_t m_deciding = 0;
};

/// The class of a rule in short: without the library's namespace.
std::string ShortClass(const std::string& ruleClass);

} // namespace footprint

#endif
