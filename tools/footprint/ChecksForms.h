#ifndef NYXCONFIG_CHECKSFORMS_H
#define NYXCONFIG_CHECKSFORMS_H

#include <string>

namespace footprint
{

/// A form that values of some attributes have.
struct CForm
{
    const char* rule;
    const char* words; ///< what is missing if a value has another form
    bool (*fits)(const std::wstring& value);
};

/// The form that an attribute's values have, by the tables of the file formats; null if any text will do.
const CForm* FormOf(const std::string& element, const std::string& attribute);

/// "-" or nothing, and digits.
bool IsInteger(const std::wstring& value);

/// An integer without the zeros in front, so that equal numbers are equal texts; another text as it is.
std::wstring Number(const std::wstring& value);

/// The name of a board as it is without variant and option. Empty if "[" has no "]" behind it.
std::wstring NameOfBoard(const std::wstring& value);

} // namespace footprint

#endif
