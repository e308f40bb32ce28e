#ifndef NYXCONFIG_MAPPINGHELPERS_H
#define NYXCONFIG_MAPPINGHELPERS_H

#include "CNyxConfig.h"

#include <string>
#include <type_traits>
#include <utility>

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

/// Converts to what a function gives, which is then made where it is converted to.
template<class Make>
struct MadeBy
{
    operator std::invoke_result_t<const Make&>() const { return make(); }

    Make make;
};

/// Appends what @p make gives. It is made in its place: an element has many members, and moving it moves them all.
template<class List, class Make>
void AppendMade(List& list, Make make)
{
    list.emplace_back(MadeBy<Make>{std::move(make)});
}

} // namespace KvOrdo

#endif
