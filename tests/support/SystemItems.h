#ifndef NYXCONFIG_SYSTEMITEMS_H
#define NYXCONFIG_SYSTEMITEMS_H

#include "IBiosDescItem.h"
#include "IOperatingSystemDescItem.h"

#include <string>
#include <utility>
#include <vector>

namespace NyxTest
{

/// What an application makes of IBiosDescItem and IOperatingSystemDescItem: four texts. It notes which of them were
/// asked for.
template<class Interface>
class SystemItem : public Interface
{
public:
    SystemItem(std::wstring name, std::wstring version, std::wstring partNumber, std::wstring partChangeIndex)
        : m_name(std::move(name)), m_version(std::move(version)), m_partNumber(std::move(partNumber)),
          m_partChangeIndex(std::move(partChangeIndex))
    {
    }

    std::wstring getName() const override { return Asked("name", m_name); }
    std::wstring getVersion() const override { return Asked("version", m_version); }
    std::wstring getPartNumber() const override { return Asked("partNumber", m_partNumber); }
    std::wstring getPartChangeIndex() const override { return Asked("partChangeIndex", m_partChangeIndex); }

    const std::vector<std::string>& Asked() const { return m_asked; }

private:
    const std::wstring& Asked(const char* field, const std::wstring& value) const
    {
        m_asked.emplace_back(field);
        return value;
    }

    std::wstring m_name;
    std::wstring m_version;
    std::wstring m_partNumber;
    std::wstring m_partChangeIndex;
    mutable std::vector<std::string> m_asked;
};

using BiosItem = SystemItem<KvOrdo::IBiosDescItem>;
using OperatingSystemItem = SystemItem<KvOrdo::IOperatingSystemDescItem>;

} // namespace NyxTest

#endif
