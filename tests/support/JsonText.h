#ifndef NYXCONFIG_JSONTEXT_H
#define NYXCONFIG_JSONTEXT_H

#include <nlohmann/json.hpp>

#include <string>

namespace NyxTest
{

/// The form that wide text has in the expected data: a JSON string, or {"w": [units]} if a unit is a surrogate or no
/// character at all, as sign-extended bytes are.
nlohmann::json JsonText(const std::wstring& text);

/// Narrow text, each byte taken as the Latin-1 character.
nlohmann::json JsonText(const std::string& text);

} // namespace NyxTest

#endif
