#ifndef NYXCONFIG_MAPPINGHELPERS_H
#define NYXCONFIG_MAPPINGHELPERS_H

#include "CNyxConfig.h"

#include <string>
#include <type_traits>

namespace KvOrdo
{

// What the mappings do for every attribute, without making texts that nobody reads.

/// CNyxConfig::getCAttributeStrValue() without the copy: an absent attribute becomes the document's last error.
inline const std::wstring& TextOf(const KvDeviceFootprint::CAttribute& attribute)
{
    if (attribute.IsEmpty()) {
        attribute.EmptyGetError();
    }
    return attribute.GetValue();
}

/// A name for a message: a text, or a function that makes it.
template<class Name>
std::wstring MakeName(const Name& name)
{
    if constexpr (std::is_invocable_v<Name>) {
        return name();
    } else {
        return name;
    }
}

template<class Name>
void CheckDate(CNyxConfig& config, const std::wstring& value, const Name& name, bool throwOnError)
{
    if (!config.validateDate(value)) {
        config.assertValidDate(value, MakeName(name), throwOnError);
    }
}

template<class Name>
void CheckPartChangeIndex(CNyxConfig& config, const std::wstring& value, const Name& name, bool throwOnError)
{
    if (!config.validatePartChangeIndex(value)) {
        config.assertValidPartChangeIndex(value, MakeName(name), throwOnError);
    }
}

template<class Name>
void CheckNotEmpty(CNyxConfig& config, const std::wstring& value, const Name& name, bool throwOnError)
{
    if (value.empty()) {
        config.assertNotEmpty(value, MakeName(name), throwOnError);
    }
}

} // namespace KvOrdo

#endif
