#include "ExportTables.h"

#include "DeviceFootprint.h"

#include <cctype>

namespace footprint
{

namespace
{

using namespace KvDeviceFootprint;

/// "partChangeIndex" becomes "part_change_index", as names are usual in SQL.
std::string ColumnName(const std::string& attribute)
{
    if (attribute == "sn") {
        return "serial_number";
    }
    std::string name;
    for (const char character : attribute) {
        const auto letter = static_cast<unsigned char>(character);
        if (std::isupper(letter) != 0) {
            name += '_';
        }
        name += static_cast<char>(std::tolower(letter));
    }
    return name;
}

class CTableMaker
{
public:
    CTableMaker(const std::string& name, const std::string& key) : m_table{name, {{key, EExportColumn::eOwnKey, ""}}} {}

    CTableMaker& Column(const std::string& name, EExportColumn kind, const std::string& references = {})
    {
        m_table.columns.push_back({name, kind, references});
        return *this;
    }
    CTableMaker& Key(const std::string& name, const std::string& references)
    {
        return Column(name, EExportColumn::eKey, references);
    }
    CTableMaker& Device() { return Key("device_key", "devices(device_key)"); }
    CTableMaker& Text(const std::string& name) { return Column(name, EExportColumn::eText); }
    /// A column for each attribute of an element class.
    template<class Element>
    CTableMaker& Attributes(const std::string& prefix = {})
    {
        const Element element;
        for (std::size_t index = 0; index < Element::Layout().AttributeCount(); ++index) {
            Text(prefix + ColumnName(Element::Layout().AttributeAt(element, index)->GetNodeName()));
        }
        return *this;
    }

    operator CExportTable() const { return m_table; }

private:
    CExportTable m_table;
};

} // namespace

const std::array<CExportTable, eExportTableCount>& ExportTables()
{
    static const std::array<CExportTable, eExportTableCount> tables{
        CTableMaker("devices", "device_key")
            .Column("file_key", EExportColumn::eFile, "files(file_key)")
            .Key("parent_device_key", "devices(device_key)")
            .Attributes<CDeviceFootprint>()
            .Attributes<CDeviceData>()
            .Text("part_number")
            .Text("serial_number")
            .Attributes<CMaintenanceData>()
            .Attributes<CBios>("bios_")
            .Attributes<COperatingSystem>("os_"),
        CTableMaker("boards", "board_key")
            .Device()
            .Key("parent_board_key", "boards(board_key)")
            .Attributes<CHardware>()
            .Attributes<CBPartIdentification>("b_")
            .Attributes<CMaintenanceData>(),
        CTableMaker("programmable_parts", "programmable_part_key")
            .Device()
            .Key("board_key", "boards(board_key)")
            .Attributes<CProgrammablePart>(),
        CTableMaker("products", "product_key").Device().Attributes<CProduct>(),
        CTableMaker("software", "software_key")
            .Device()
            .Key("parent_software_key", "software(software_key)")
            .Attributes<CSoftware>(),
        CTableMaker("maintenances", "maintenance_key")
            .Device()
            .Key("board_key", "boards(board_key)")
            .Attributes<CMaintenance>(),
        CTableMaker("services", "service_key").Device().Key("board_key", "boards(board_key)").Attributes<CService>(),
        CTableMaker("connected_devices", "connected_device_key")
            .Device()
            .Key("parent_device_key", "devices(device_key)")
            .Key("root_device_key", "devices(device_key)")
            .Column("depth", EExportColumn::eNumber),
    };
    return tables;
}

} // namespace footprint
