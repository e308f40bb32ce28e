#ifndef NYXCONFIG_FACADEMESSAGES_H
#define NYXCONFIG_FACADEMESSAGES_H

#include "ErrorJournal.h"

#include <string>

namespace NyxTest
{

/// @name The facade's messages
/// What the assertions and conversions say, without a line end. The label is that of the checked thing.
/// @{
inline std::string EmptyText(const std::string& label)
{
    return "CNyxConfig::assertNotEmpty: " + label + " may not be empty";
}

inline std::string BadDate(const std::string& label)
{
    return "CNyxConfig::assertValidDate: " + label + " may only be empty or match pattern yyyy-mm-dd";
}

inline std::string BadIndex(const std::string& label)
{
    return "CNyxConfig::assertValidPartChangeIndex: " + label + " may only be empty or match pattern dd.dd";
}

inline std::string BadNumber(const std::string& text)
{
    return "CNyxConfig::wStringToLong(): could not convert " + text + " to long";
}
/// @}

/// What the journal holds of an assertion that throws.
inline std::string Announced(const std::string& message)
{
    return WideLine(message) + NarrowLine("Throwing CNyxConfigException");
}

} // namespace NyxTest

#endif
