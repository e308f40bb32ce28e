#include "BoardTree.h"
#include "Commands.h"
#include "ElementWalk.h"
#include "Json.h"
#include "Loading.h"
#include "Redaction.h"
#include "Tables.h"
#include "Terminal.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

/// An element, and what a person calls that to which it belongs.
struct COwned
{
    std::string owner;
    const CElementNode* element;
};

std::string OnOneLine(const CProperties& properties, CRedaction& redaction)
{
    std::string line;
    for (const CProperty& property : properties) {
        line += (line.empty() ? "" : ", ") + redaction.Value(property.m_name) + "=" + redaction.Value(property.m_value);
    }
    return line;
}

/// Whether a device has the content that its checksum vouches for. Both are as before afterwards.
bool IsIntact(CDeviceFootprintData& device)
{
    const CReadOnlyAttribute checksum = device.m_checksum;
    const bool isIntact = device.ValidateChecksum();
    device.m_checksum = checksum;
    return isIntact;
}

/// Writes one device in tables, with all devices connected to it.
class CDeviceText
{
public:
    CDeviceText(const COutputs& outputs, CRedaction& redaction) : m_outputs(outputs), m_redaction(redaction) {}

    /// @param number of a connected device, such as "2.1"; empty for the device of the file.
    void Write(CDeviceFootprintData& device, const std::string& number)
    {
        m_devicePart = number.empty() ? "" : "Connected device " + number + ": ";
        const CDeviceData& data = device.m_deviceData;
        WriteIdentity(device);
        WriteList("Test instructions", OwnedBy("", data.m_testInstructions), {"name", "version"});
        WriteBoards(device.m_hardwareData.m_hardwareList);
        WriteProducts(device.m_hardwareData.m_productList);
        WriteSoftware(device.m_softwareData);
        WriteLife(device);
        WriteConnectedDevices(*device.m_pConnectedDevices, number);
    }

private:
    using TNames = std::vector<std::string>;

    void WriteSection(const std::string& title, const CTable& table)
    {
        if (!table.IsEmpty()) {
            m_outputs.data << "\n" << Styled(m_devicePart + title, EStyle::eHeading, m_outputs.colour) << "\n";
            table.Write(m_outputs.data, m_outputs.colour);
        }
    }

    std::string Value(const CElementNode& element, const std::string& name)
    {
        const CReadOnlyAttribute* const attribute = element.GetAttributeByName(name);
        return attribute == nullptr ? std::string() : m_redaction.Value(*attribute);
    }

    /// A line for each attribute that is set.
    void AddAttributes(CTable& table, const CElementNode& element)
    {
        for (const CReadOnlyAttribute* attribute : AttributesOf(element)) {
            if (!attribute->IsEmpty()) {
                table.AddRow({Title(attribute->GetNodeName()), m_redaction.Value(*attribute)});
            }
        }
    }

    void WriteIdentity(CDeviceFootprintData& device)
    {
        CTable table({"", ""});
        for (const CReadOnlyAttribute* attribute : AttributesOf(device.m_deviceData)) {
            if (!attribute->IsEmpty()) {
                table.AddRow({Title(attribute->GetNodeName()), m_redaction.Value(*attribute)});
            }
            std::string part;
            if (attribute == &device.m_deviceData.m_deviceId) {
                if (device.m_deviceData.GetPartNumber(part) && !part.empty()) {
                    table.AddRow({"Part number", m_redaction.Value("partNumber", part)});
                }
                if (device.m_deviceData.GetSerialNumber(part) && !part.empty()) {
                    table.AddRow({"Serial number", m_redaction.SerialNumber(part)});
                }
            }
        }
        AddAttributes(table, device);
        if (!device.m_checksum.IsEmpty()) {
            const bool isIntact = IsIntact(device);
            table.AddRow({"Content", CCell(isIntact ? "intact: the checksum is right"
                                                    : "changed: the checksum is wrong, or that of a connected device",
                                           isIntact ? EStyle::eGood : EStyle::eBad)});
        }
        WriteSection("Identity", table);
    }

    static std::vector<COwned> OwnedBy(const std::string& owner, const CElementNode& list)
    {
        std::vector<COwned> owned;
        for (const CStep& step : StepsBelow(list)) {
            owned.push_back({owner, step.element});
        }
        return owned;
    }

    static void Append(std::vector<COwned>& owned, const std::string& owner, const CElementNode& list)
    {
        for (const CStep& step : StepsBelow(list)) {
            owned.push_back({owner, step.element});
        }
    }

    /// A table with a line for each element.
    void WriteList(const std::string& title, const std::vector<COwned>& owned, const TNames& names)
    {
        std::vector<CTable::CColumn> columns = {"Of"};
        for (const std::string& name : names) {
            columns.emplace_back(Title(name), name == "operatingHours" || name == "makeAndBreakCycles");
        }
        CTable table(columns);
        for (const COwned& one : owned) {
            std::vector<CCell> row = {one.owner};
            for (const std::string& name : names) {
                row.emplace_back(Value(*one.element, name));
            }
            table.AddRow(std::move(row));
        }
        WriteSection(title, table);
    }

    std::string Label(const CHardware& board, std::size_t number)
    {
        return m_redaction.Text(BoardLabel(board, number));
    }

    void WriteBoards(const CHardwareList& boards)
    {
        const TNames places = {"id", "partName", "partNumber", "sn", "partChangeIndex", "connectorName"};
        const TNames details = {"productId", "hardwareCode",    "productDate",
                                "readCode",  "testInstruction", "externConnected"};
        std::vector<CTable::CColumn> columns = {"Board"};
        for (const std::string& name : places) {
            columns.emplace_back(Title(name));
        }
        columns.emplace_back("Remark");
        CTable table(columns);
        CTreeLines lines;
        std::vector<COwned> withDetails;
        std::vector<COwned> boughtIn;
        std::vector<COwned> parts;
        for (const CBoardPlace& place : BoardTree(boards)) {
            const CHardware& board = *place.board;
            const std::string name =
                board.m_name.IsEmpty() ? "board " + std::to_string(place.number) : m_redaction.Value(board.m_name);
            std::vector<CCell> row = {lines.Next(place.level, place.isLast) + name};
            for (const std::string& attribute : places) {
                row.emplace_back(Value(board, attribute));
            }
            row.emplace_back(place.remark, EStyle::eBad);
            table.AddRow(std::move(row));

            const std::string label = Label(board, place.number);
            for (const std::string& attribute : details) {
                if (!board.GetAttributeValue(attribute).empty()) {
                    withDetails.push_back({label, &board});
                    break;
                }
            }
            if (!board.m_bPartIdentification.IsEmpty()) {
                boughtIn.push_back({label, &board.m_bPartIdentification});
            }
            Append(parts, label, board.m_programmableParts);
        }
        WriteSection("Boards", table);
        WriteList("Board details", withDetails, details);
        WriteList("Identification by the maker", boughtIn,
                  {"name", "partNumber", "sn", "partChangeIndex", "vendorName", "additionalInfo"});
        WriteList("Programmable parts", parts, {"name", "version", "partNumber", "partChangeIndex"});
    }

    void WriteProducts(const CProductList& products)
    {
        WriteList("Products", OwnedBy("", products), {"id", "partNumber", "partChangeIndex", "type", "partName"});
    }

    void WriteSoftware(const CSoftwareData& software)
    {
        CTable bios({"", ""});
        AddAttributes(bios, software.m_bios);
        WriteSection("BIOS", bios);
        CTable system({"", ""});
        AddAttributes(system, software.m_operatingSystem);
        WriteSection("Operating system", system);

        const TNames names = {"version",    "status",   "partNumber",    "partChangeIndex", "sn",
                              "vendorName", "wordSize", "configuration", "releaseState",    "architecture"};
        std::vector<CTable::CColumn> columns = {"Software"};
        for (const std::string& name : names) {
            columns.emplace_back(Title(name));
        }
        CTable table(columns);
        CTreeLines lines;
        m_softwareProperties.clear();
        AddSoftware(table, lines, names, software.m_softwareList, 0);
        WriteSection("Software", table);
    }

    // As deep as the reader allows, which is not deep.
    void AddSoftware(CTable& table, CTreeLines& lines, const TNames& names, const CSoftwareList& packages,
                     std::size_t level)
    {
        for (const CSoftware& package : packages) {
            const std::string name = m_redaction.Value(package.m_name);
            std::vector<CCell> row = {lines.Next(level, &package == &packages.back()) +
                                      (name.empty() ? "(no name)" : name)};
            for (const std::string& attribute : names) {
                row.emplace_back(Value(package, attribute));
            }
            table.AddRow(std::move(row));
            Append(m_softwareProperties, name, package.m_properties);
            AddSoftware(table, lines, names, *package.m_pSoftwareList, level + 1);
        }
    }

    /// Maintenance, services and properties of the device and of what it consists of.
    void WriteLife(const CDeviceFootprintData& device)
    {
        std::vector<COwned> counters;
        std::vector<COwned> maintenances;
        std::vector<COwned> infos;
        std::vector<COwned> services;
        std::vector<COwned> properties;
        const auto add = [&](const std::string& owner, const CMaintenanceData& data, const CServiceData& service) {
            if (!data.m_operatingHours.IsEmpty() || !data.m_makeAndBreakCycles.IsEmpty()) {
                counters.push_back({owner, &data});
            }
            Append(maintenances, owner, data.m_maintenances);
            Append(infos, owner, data.m_maintenanceInfos);
            Append(services, owner, service.m_services);
        };
        add("device", device.m_deviceData.m_maintenanceData, device.m_deviceData.m_serviceData);
        for (const CBoardPlace& place : BoardTree(device.m_hardwareData.m_hardwareList)) {
            const std::string label = Label(*place.board, place.number);
            add(label, place.board->m_maintenanceData, place.board->m_serviceData);
            Append(properties, label, place.board->m_properties);
        }
        properties.insert(properties.end(), m_softwareProperties.begin(), m_softwareProperties.end());

        WriteList("Operating hours", counters, {"operatingHours", "makeAndBreakCycles"});
        WriteMaintenances(maintenances);
        WriteMaintenanceInfos(infos);
        WriteList("Services", services, {"serviceDate", "serviceCode"});
        WriteList("Properties", properties, {"name", "value"});
    }

    void WriteMaintenances(const std::vector<COwned>& maintenances)
    {
        CTable table({"Of", "Date", "Person", "Generated by", "Task", "Done", "Result"});
        for (const COwned& one : maintenances) {
            const auto& maintenance = static_cast<const CMaintenance&>(*one.element);
            std::vector<CCell> row = {one.owner, m_redaction.Value(maintenance.m_maintenanceDate),
                                      m_redaction.Value(maintenance.m_responsiblePerson),
                                      m_redaction.Value(maintenance.m_generatedBy)};
            for (const CMaintenanceTask& task : maintenance.m_maintenanceTasks) {
                row.emplace_back(m_redaction.Value(task.m_name));
                row.emplace_back(m_redaction.Value(task.m_done));
                row.emplace_back(m_redaction.Value(task.m_result));
                table.AddRow(std::move(row));
                row = {"", "", "", ""};
            }
            if (maintenance.m_maintenanceTasks.empty()) {
                table.AddRow(std::move(row));
            }
        }
        WriteSection("Maintenance", table);
    }

    void WriteMaintenanceInfos(const std::vector<COwned>& infos)
    {
        CTable table({"Of", "Name", "Value", "Properties"});
        for (const COwned& one : infos) {
            const auto& info = static_cast<const CMaintenanceInfo&>(*one.element);
            table.AddRow({one.owner, m_redaction.Value(info.m_name), m_redaction.Value(info.m_value),
                          OnOneLine(info.m_properties, m_redaction)});
        }
        WriteSection("Maintenance notes", table);
    }

    void WriteConnectedDevices(CConnectedDeviceList& devices, const std::string& number)
    {
        const std::string prefix = number.empty() ? "" : number + ".";
        CTable table({"Number", "Device id", "Type", "Part name", "Created"});
        std::size_t count = 0;
        for (const CConnectedDevice& device : devices) {
            const CDeviceData& data = device.m_deviceData;
            table.AddRow({prefix + std::to_string(++count), m_redaction.Value(data.m_deviceId),
                          m_redaction.Value(data.m_type), m_redaction.Value(data.m_partName),
                          m_redaction.Value(device.m_creationDate)});
        }
        WriteSection("Connected devices", table);
        count = 0;
        for (CConnectedDevice& device : devices) {
            Write(device, prefix + std::to_string(++count));
        }
    }

    const COutputs& m_outputs;
    CRedaction& m_redaction;
    std::string m_devicePart;
    std::vector<COwned> m_softwareProperties;
};

struct COptions
{
    std::string file;
    bool json = false;
    bool redact = false;
};

ExitStatus Show(const COptions& options, const COutputs& outputs)
{
    CDeviceFootprint document;
    std::string error;
    std::vector<std::string> unknownTags;
    if (!LoadFootprint(options.file, document, error, &unknownTags)) {
        outputs.messages << "footprint: " << error << "\n";
        return eFailed;
    }
    for (const std::string& tag : unknownTags) {
        outputs.messages << "footprint: " << Harmless(options.file) << ": left out, not known: " << Harmless(tag)
                         << "\n";
    }
    CRedaction redaction(options.redact);
    redaction.Learn(document);
    const std::string file = redaction.Text(options.file);
    if (options.json) {
        TJson json;
        json["file"] = file;
        json["checksumIsRight"] = document.m_checksum.IsEmpty() ? TJson() : TJson(IsIntact(document));
        json[document.GetElementName()] = ToJson(document, redaction);
        WriteJson(outputs.data, json);
    } else {
        outputs.data << Styled(Harmless(file), EStyle::eHeading, outputs.colour) << "\n";
        CDeviceText(outputs, redaction).Write(document, "");
    }
    return eGood;
}

} // namespace

void AddShow(CLI::App& program, TCommand& selected)
{
    CLI::App* const command =
        program.add_subcommand("show", "Show a footprint: what the device is and what it consists of");
    const auto options = std::make_shared<COptions>();
    command->add_option("FILE", options->file, "Footprint file")->required();
    command->add_flag("--json", options->json, "Write everything in the file as JSON");
    command->add_flag("--redact", options->redact,
                      "Hide serial numbers, device ids and persons; what is equal stays equal");
    command->footer(Examples({{"footprint show device.xml", "tables to read"},
                              {"footprint show --redact device.xml", "the same for someone else's eyes"},
                              {"footprint show --json device.xml", "for other programs"}}));
    command->callback(
        [options, &selected]() { selected = [options](const COutputs& outputs) { return Show(*options, outputs); }; });
}

} // namespace footprint
