#ifndef INSTRUMENT_BUILDING_H
#define INSTRUMENT_BUILDING_H

#include <CNyxConfig.h>

#include <string>

/// A program of the device for which the library has an interface only: the application brings the class.
template<class Interface>
class Program : public Interface
{
public:
    Program(std::wstring name, std::wstring version, std::wstring partNumber, std::wstring partChangeIndex)
        : m_name(std::move(name)), m_version(std::move(version)), m_partNumber(std::move(partNumber)),
          m_partChangeIndex(std::move(partChangeIndex))
    {
    }

    std::wstring getName() const override { return m_name; }
    std::wstring getVersion() const override { return m_version; }
    std::wstring getPartNumber() const override { return m_partNumber; }
    std::wstring getPartChangeIndex() const override { return m_partChangeIndex; }

private:
    std::wstring m_name;
    std::wstring m_version;
    std::wstring m_partNumber;
    std::wstring m_partChangeIndex;
};

using Bios = Program<KvOrdo::IBiosDescItem>;
using OperatingSystem = Program<KvOrdo::IOperatingSystemDescItem>;

/// Sets a complete instrument: device, four boards in a tree with all that a board can hold, software two levels deep.
/// The items belong to the caller; FreeItems() releases them.
void BuildInstrument(KvOrdo::CNyxConfig& config);

/// Gives the software data BIOS and operating system if it has none. A load leaves both unset, and a save needs them.
void SetPrograms(KvOrdo::SoftwareDataDescItem& software);

/// Deletes all items that the facade holds. The facade itself never does, and an item's destructor does not reach
/// everything below it.
void FreeItems(KvOrdo::CNyxConfig& config);

#endif
