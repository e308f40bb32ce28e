#ifndef NYXCONFIG_EXPORTPROGRESS_H
#define NYXCONFIG_EXPORTPROGRESS_H

#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <string>

namespace footprint
{

/// A line that tells how far the work is, on a terminal; elsewhere there is none.
class CExportProgress
{
public:
    /// @param total of the files.
    CExportProgress(std::ostream& messages, bool isOn, std::uint64_t total);
    CExportProgress(const CExportProgress&) = delete;
    CExportProgress& operator=(const CExportProgress&) = delete;
    /// Takes the line away.
    ~CExportProgress();

    void Show(std::uint64_t done);
    /// Writes a message of its own line.
    void Say(const std::string& message);

private:
    void Clear();

    using TClock = std::chrono::steady_clock;

    std::ostream& m_messages;
    bool m_isOn;
    std::uint64_t m_total;
    TClock::time_point m_begun;
    TClock::time_point m_shown;
    bool m_isThere = false;
};

} // namespace footprint

#endif
