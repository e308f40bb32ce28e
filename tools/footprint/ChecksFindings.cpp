#include "ChecksFindings.h"

#include "ElementWalk.h"
#include "Terminal.h"

#include <algorithm>
#include <numeric>

namespace footprint
{

namespace
{

constexpr std::size_t longestQuotation = 60;

} // namespace

void CFindings::Add(std::size_t line, const std::string& path, const std::string& rule, const std::string& text)
{
    if (++m_counts[rule] <= mostOfARule) {
        m_kept.push_back({std::max<std::size_t>(line, 1), path, rule, text});
    }
}

std::size_t CFindings::Count() const
{
    return std::accumulate(m_counts.begin(), m_counts.end(), std::size_t{0},
                           [](std::size_t sum, const auto& rule) { return sum + rule.second; });
}

const std::vector<CFinding>& CFindings::InOrder()
{
    std::stable_sort(m_kept.begin(), m_kept.end(),
                     [](const CFinding& left, const CFinding& right) { return left.line < right.line; });
    return m_kept;
}

std::string Quoted(const std::string& text)
{
    const bool isLong = text.size() > longestQuotation;
    return "'" + Harmless(text.substr(0, longestQuotation)) + (isLong ? "...'" : "'");
}

std::string Quoted(const std::wstring& text)
{
    const bool isLong = text.size() > longestQuotation;
    return "'" + Harmless(Utf8(text.substr(0, longestQuotation))) + (isLong ? "...'" : "'");
}

} // namespace footprint
