#ifndef NYXCONFIG_CHECKSFINDINGS_H
#define NYXCONFIG_CHECKSFINDINGS_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace footprint
{

/// Something in a file that is not as it should be.
struct CFinding
{
    std::size_t line = 0; ///< from 1
    std::string path;     ///< of the element or attribute, such as "/DeviceFootprint/DeviceData/@deviceId"
    std::string rule;     ///< a short name that stays
    std::string text;     ///< for people; harmless for a terminal
};

/// The findings of one file. A hostile file can have millions of them: of each rule, only the first ones are kept.
class CFindings
{
public:
    static constexpr std::size_t mostOfARule = 1000;

    void Add(std::size_t line, const std::string& path, const std::string& rule, const std::string& text);
    bool IsEmpty() const { return m_kept.empty(); }
    /// How many there were, those that were not kept included.
    std::size_t Count() const;
    std::size_t CountOfKept() const { return m_kept.size(); }
    /// Those that were kept, by their lines; of one line, in the order in which they were added.
    const std::vector<CFinding>& InOrder();

private:
    std::vector<CFinding> m_kept;
    std::map<std::string, std::size_t> m_counts; // of each rule
};

/// A value or a piece of a file for a text: in quotes, shortened, harmless for a terminal.
std::string Quoted(const std::string& text);
std::string Quoted(const std::wstring& text);

} // namespace footprint

#endif
