#include "ExportProgress.h"

#include <algorithm>
#include <ostream>

namespace footprint
{

CExportProgress::CExportProgress(std::ostream& messages, bool isOn, std::uint64_t total)
    : m_messages(messages), m_isOn(isOn), m_total(total), m_begun(TClock::now())
{
}

CExportProgress::~CExportProgress()
{
    Clear();
}

void CExportProgress::Show(std::uint64_t done)
{
    constexpr std::chrono::milliseconds interval{100};
    constexpr std::uint64_t width = 30;
    const TClock::time_point now = TClock::now();
    if (!m_isOn || (m_isThere && now - m_shown < interval)) {
        return;
    }
    m_shown = now;
    m_isThere = true;
    const std::uint64_t total = std::max({m_total, done, std::uint64_t{1}});
    const auto filled = static_cast<std::size_t>(done * width / total);
    const double seconds = std::chrono::duration<double>(now - m_begun).count();
    m_messages << "\r[" << std::string(filled, '#') << std::string(width - filled, '.') << "] " << done * 100 / total
               << "%  " << done << " of " << total << " files";
    if (seconds > 0.5) {
        const auto rate = static_cast<double>(done) / seconds;
        m_messages << ", " << static_cast<std::uint64_t>(rate) << " a second";
    }
    m_messages << "\x1b[K" << std::flush;
}

void CExportProgress::Say(const std::string& message)
{
    Clear();
    m_messages << message << "\n";
}

void CExportProgress::Clear()
{
    if (m_isThere) {
        m_messages << "\r\x1b[K" << std::flush;
        m_isThere = false;
    }
}

} // namespace footprint
