#ifndef NYXCONFIG_EXPORTPSEUDONYMS_H
#define NYXCONFIG_EXPORTPSEUDONYMS_H

#include <array>
#include <string>

namespace footprint
{

/**
 * Names for what an export hides: serial numbers, device ids, persons and file names. A name follows from the value and
 * from a random number that is forgotten at the end of the run, so the same value has the same name in every process
 * of one run, and another one in the next.
 */
class CExportPseudonyms
{
public:
    /// @throw std::runtime_error if the machine gives no random number.
    CExportPseudonyms();

    /// What to show for a value of an attribute: the value itself if the attribute is harmless.
    std::string Value(const std::string& attribute, const std::string& value) const;
    std::string Path(const std::string& path) const { return "file-" + Name(path); }

private:
    std::string Name(const std::string& value) const;

    std::array<unsigned char, 32> m_secret{};
};

} // namespace footprint

#endif
