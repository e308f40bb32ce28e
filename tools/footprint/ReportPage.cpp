#include "ReportPage.h"

#include "BoardTree.h"
#include "ElementWalk.h"
#include "ReportAssets.h"
#include "ReportBoards.h"
#include "ReportHtml.h"
#include "ReportPlot.h"
#include "ReportValues.h"
#include "Tables.h"
#include "Terminal.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <unordered_map>

namespace footprint
{

using namespace KvDeviceFootprint;

namespace
{

/// Longer values are cut.
constexpr std::size_t longestValue = 1000;
/// More boards than this are folded.
constexpr std::size_t manyBoards = 120;
/// More connected devices than this are folded, and the second number of them is shown at all.
constexpr std::size_t manyDevices = 3;
constexpr std::size_t mostDevices = 200;
/// Entries of a history that are not folded, and those that are shown at all.
constexpr std::size_t manyEntries = 5;
constexpr std::size_t mostEntries = 1000;

/// A digest as a Content Security Policy has it.
std::string Base64OfHex(const std::string& hex)
{
    static const char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::vector<unsigned> bytes;
    for (std::size_t index = 0; index + 1 < hex.size(); index += 2) {
        bytes.push_back(static_cast<unsigned>(std::stoul(hex.substr(index, 2), nullptr, 16)));
    }
    std::string text;
    for (std::size_t index = 0; index < bytes.size(); index += 3) {
        const auto byte = [&](std::size_t place) { return index + place < bytes.size() ? bytes[index + place] : 0U; };
        const unsigned bits = byte(0) << 16U | byte(1) << 8U | byte(2);
        for (std::size_t place = 0; place < 4; ++place) {
            text += index + place <= bytes.size() ? digits[(bits >> (18 - 6 * place)) & 63U] : '=';
        }
    }
    return text;
}

struct CIntegrityWords
{
    const char* kind; ///< class in the style sheet
    const char* badge;
    const char* sentence; ///< null if there is nothing to look at
};

CIntegrityWords Words(EEntryState integrity)
{
    switch (integrity) {
    case EEntryState::eIntact:
        return {"good", "Checksum right", nullptr};
    case EEntryState::eNoChecksum:
        return {"plain", "No checksum", nullptr};
    case EEntryState::eWrongChecksum:
        return {"bad", "Checksum wrong",
                "The checksum is wrong: the file was changed after it was written, or a connected device in it was."};
    default:
        return {"bad", "Not readable", "This entry can not be read."};
    }
}

std::string Count(std::size_t number, const char* one, const char* many)
{
    return Grouped(std::to_string(number)) + "\xC2\xA0" + (number == 1 ? one : many);
}

std::size_t CountSoftware(const CSoftwareList& list)
{
    std::size_t count = list.size();
    for (const CSoftware& software : list) {
        count += CountSoftware(*software.m_pSoftwareList);
    }
    return count;
}

std::string Joined(const std::vector<std::string>& parts, const char* between)
{
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() || part.empty() ? "" : between) + part;
    }
    return text;
}

/// An attached device at its place: "2.1" is the first one attached to the second one of the instrument.
struct CAttached
{
    CConnectedDevice* device;
    std::string place;
};

void AddAttached(CConnectedDeviceList& list, const std::string& place, std::vector<CAttached>& all)
{
    std::size_t number = 0;
    for (CConnectedDevice& device : list) {
        const std::string own = place + std::to_string(++number);
        all.push_back({&device, own});
        AddAttached(*device.m_pConnectedDevices, own + ".", all);
    }
}

/// The page, or the part of it that is about one device.
class CDevicePart
{
public:
    /// @param prefix of all ids, "" for the instrument itself. @param heading the tag of its headings.
    CDevicePart(CHtml& page, CRedaction& redaction, CRowBudget& budget, const CDeviceFootprintData& device,
                std::string prefix, const char* heading)
        : m_page(page), m_redaction(redaction), m_budget(budget), m_device(device), m_prefix(std::move(prefix)),
          m_heading(heading), m_tree(BoardTree(device.m_hardwareData.m_hardwareList))
    {
        for (const CBoardPlace& place : m_tree) {
            m_labels.emplace(place.board, m_redaction.Text(BoardLabel(*place.board, place.number)));
        }
    }

    void WritePicture();
    void WriteIdentity();
    void WriteBoards();
    void WriteParts();
    void WriteProducts();
    void WriteSoftware();
    void WriteMaintenance();
    void WriteServices();

    std::string Title() const;
    std::string DeviceId() const { return m_redaction.Value(m_device.m_deviceData.m_deviceId); }
    const std::vector<CBoardPlace>& Tree() const { return m_tree; }

    std::string Value(const CReadOnlyAttribute& attribute) const
    {
        std::string value = m_redaction.Value(attribute);
        if (value.size() <= longestValue) {
            return value;
        }
        return Shortened(Harmless(value), longestValue) + " (" + Grouped(std::to_string(value.size())) + " bytes)";
    }

private:
    /// Begins a section, if it has any content: if not, nothing is written.
    void Begin(const char* id, const char* title)
    {
        m_page.Begin("section", {{"id", m_prefix + id}, {"aria-labelledby", m_prefix + id + "-title"}});
        m_page.Element(m_heading, {{"id", m_prefix + id + "-title"}}, title);
    }
    void End() { m_page.End(); }

    /// Names and values of the attributes that are set.
    void WriteValues(const std::vector<const CElementNode*>& elements);
    std::vector<CHtmlCell> Cells(const CElementNode& element,
                                 const std::vector<const CReadOnlyAttribute*>& except = {}) const;
    void AddMaintenances(CHtmlTable& table, const std::string& where, const CMaintenanceData& data) const;
    void AddInfos(CHtmlTable& table, const std::string& where, const CMaintenanceData& data) const;
    void AddServices(CHtmlTable& table, const std::string& where, const CServiceData& data) const;
    void AddProperties(CHtmlTable& table, const std::string& where, const CProperties& properties) const;
    void AddSoftware(CHtmlTable& table, CHtmlTable& properties, const CSoftwareList& list, std::size_t level,
                     const std::string& parent) const;
    std::string ParentLabel(const CBoardPlace& place) const
    {
        return place.parent == CBoardPlace::none ? "" : m_labels.at(m_tree[place.parent].board);
    }

    /// What the table of boards shows in a way of its own.
    static std::vector<const CReadOnlyAttribute*> ApartOf(const CHardware& board)
    {
        return {&board.m_parentId, &board.m_name, &board.m_id, &board.m_partName};
    }

    CHtml& m_page;
    CRedaction& m_redaction;
    CRowBudget& m_budget;
    const CDeviceFootprintData& m_device;
    std::string m_prefix;
    const char* m_heading;
    std::vector<CBoardPlace> m_tree;
    std::unordered_map<const CHardware*, std::string> m_labels;
};

std::string CDevicePart::Title() const
{
    const CDeviceData& data = m_device.m_deviceData;
    const std::string title = Joined({Value(data.m_partName), Value(data.m_type)}, ", ");
    return title.empty() ? "Device" : title;
}

void CDevicePart::WriteValues(const std::vector<const CElementNode*>& elements)
{
    const CHtml::CScope list(m_page, "dl");
    for (const CElementNode* element : elements) {
        for (const CReadOnlyAttribute* attribute : AttributesOf(*element)) {
            if (!attribute->IsEmpty()) {
                const CHtml::CScope pair(m_page, "div");
                m_page.Element("dt", footprint::Title(attribute->GetNodeName()));
                m_page.Element("dd", ReadableDate(Value(*attribute)));
            }
        }
    }
}

std::vector<CHtmlCell> CDevicePart::Cells(const CElementNode& element,
                                          const std::vector<const CReadOnlyAttribute*>& except) const
{
    std::vector<CHtmlCell> cells;
    for (const CReadOnlyAttribute* attribute : AttributesOf(element)) {
        if (std::find(except.begin(), except.end(), attribute) == except.end()) {
            // Of yes and no, only the yes says something.
            const bool isFlag = attribute->GetNodeName() == "externConnected";
            const std::string value = Value(*attribute);
            cells.emplace_back(isFlag && value == "true" ? "yes" : isFlag && value == "false" ? "" : value);
        }
    }
    return cells;
}

/// Columns for what Cells() gives.
template<class TElement>
std::vector<CHtmlTable::CColumn> Columns(std::vector<CHtmlTable::CColumn> first)
{
    const TElement element;
    for (const CReadOnlyAttribute* attribute : AttributesOf(element)) {
        first.emplace_back(Title(attribute->GetNodeName()));
    }
    return first;
}

void CDevicePart::WriteIdentity()
{
    Begin("identity", "Identity");
    {
        const CHtml::CScope parts(m_page, "div", {{"class", "columns"}});
        WriteValues({&m_device.m_deviceData, &m_device.m_deviceData.m_maintenanceData});
        WriteValues({&m_device});
    }
    CHtmlTable table("Test instructions", Columns<CTestInstruction>({}));
    for (const CTestInstruction& instruction : m_device.m_deviceData.m_testInstructions) {
        table.AddRow(Cells(instruction));
    }
    table.Write(m_page, m_budget);
    End();
}

void CDevicePart::WritePicture()
{
    if (m_tree.empty()) {
        return;
    }
    Begin("boards", "Boards");
    std::vector<CBoardPlace> shown = m_tree;
    const std::size_t most = std::min(CRowBudget::rowsOfTable, m_budget.rows);
    if (shown.size() > most) {
        shown.resize(most); // parents stand in front of what they carry
    }
    const bool isFolded = m_tree.size() > manyBoards;
    if (isFolded) {
        m_page.Begin("details", {{"class", "long"}});
        m_page.Element("summary", "Picture of " + Count(m_tree.size(), "board", "boards"));
    }
    if (shown.size() < m_tree.size()) {
        m_page.Element("p", {{"class", "cut"}},
                       "The first " + Grouped(std::to_string(shown.size())) + " of " +
                           Grouped(std::to_string(m_tree.size())) + " boards.");
    }
    CBoardBox device;
    device.name = Title();
    device.number = DeviceId();
    device.link = "#" + m_prefix + "identity";
    const std::vector<CBoardBox> boxes = BoardBoxes(shown, m_redaction, m_prefix + "board-");
    WriteBoardPicture(m_page, boxes, device);
    if (std::any_of(boxes.begin(), boxes.end(), [](const CBoardBox& box) { return box.isOutside; })) {
        m_page.Element("p", {{"class", "faint"}}, "A dashed frame: connected from outside.");
    }
    if (isFolded) {
        m_page.End();
    }

    End();
}

void CDevicePart::WriteBoards()
{
    if (m_tree.empty()) {
        return;
    }
    Begin("board-list", "List of boards");
    const CHardware names;
    std::vector<CHtmlTable::CColumn> columns = {"Board", "Part name", "Carried by"};
    for (const CReadOnlyAttribute* attribute : AttributesOf(names)) {
        const auto apart = ApartOf(names);
        if (std::find(apart.begin(), apart.end(), attribute) == apart.end()) {
            columns.emplace_back(footprint::Title(attribute->GetNodeName()));
        }
    }
    columns.emplace_back("Operating hours", true);
    columns.emplace_back("Make and break cycles", true);
    columns.emplace_back("Remark");
    CHtmlTable table("List of boards", columns);
    CHtmlTable second("B part identifications", Columns<CBPartIdentification>({"Board"}));
    CHtmlTable properties("Properties of boards", Columns<CProperty>({"Board"}));
    for (const CBoardPlace& place : m_tree) {
        const CHardware& board = *place.board;
        const std::string& label = m_labels.at(&board);
        std::vector<CHtmlCell> cells = Cells(board, ApartOf(board));
        const std::string parent = ParentLabel(place);
        cells.insert(cells.begin(),
                     {label, Value(board.m_partName),
                      parent.empty() && !board.m_parentId.IsEmpty() && !place.remark.empty() ? Value(board.m_parentId)
                                                                                             : parent});
        cells.emplace_back(Grouped(Value(board.m_maintenanceData.m_operatingHours)));
        cells.emplace_back(Grouped(Value(board.m_maintenanceData.m_makeAndBreakCycles)));
        cells.emplace_back(m_redaction.Text(place.remark), "bad");
        table.AddRow(std::move(cells), m_prefix + "board-" + std::to_string(place.number));
        if (!board.m_bPartIdentification.IsEmpty()) {
            std::vector<CHtmlCell> row = Cells(board.m_bPartIdentification);
            row.insert(row.begin(), label);
            second.AddRow(std::move(row));
        }
        AddProperties(properties, label, board.m_properties);
    }
    table.Write(m_page, m_budget, false);
    second.Write(m_page, m_budget);
    properties.Write(m_page, m_budget);
    End();
}

void CDevicePart::AddProperties(CHtmlTable& table, const std::string& where, const CProperties& properties) const
{
    for (const CProperty& property : properties) {
        std::vector<CHtmlCell> row = Cells(property);
        row.insert(row.begin(), where);
        table.AddRow(std::move(row));
    }
}

void CDevicePart::WriteParts()
{
    CHtmlTable table("Programmable parts", Columns<CProgrammablePart>({"Board"}));
    for (const CBoardPlace& place : m_tree) {
        for (const CProgrammablePart& part : place.board->m_programmableParts) {
            std::vector<CHtmlCell> row = Cells(part);
            row.insert(row.begin(), m_labels.at(place.board));
            table.AddRow(std::move(row));
        }
    }
    if (!table.IsEmpty()) {
        Begin("parts", "Programmable parts");
        table.Write(m_page, m_budget, false);
        End();
    }
}

void CDevicePart::WriteProducts()
{
    CHtmlTable table("Products", Columns<CProduct>({}));
    for (const CProduct& product : m_device.m_hardwareData.m_productList) {
        table.AddRow(Cells(product));
    }
    if (!table.IsEmpty()) {
        Begin("products", "Products");
        table.Write(m_page, m_budget, false);
        End();
    }
}

void CDevicePart::AddSoftware(CHtmlTable& table, CHtmlTable& properties, const CSoftwareList& list, std::size_t level,
                              const std::string& parent) const
{
    for (const CSoftware& software : list) {
        std::vector<CHtmlCell> cells = Cells(software);
        const std::string name = cells[0].lines.empty() ? "(no name)" : cells[0].lines[0];
        cells[0] = CHtmlCell(name);
        // Deeper levels than the style sheet knows are drawn like its last one.
        cells[0].kind = "level-" + std::to_string(std::min<std::size_t>(level, 9));
        cells.insert(cells.begin() + 1, parent);
        table.AddRow(std::move(cells));
        AddProperties(properties, name, software.m_properties);
        AddSoftware(table, properties, *software.m_pSoftwareList, level + 1, name);
    }
}

void CDevicePart::WriteSoftware()
{
    const CSoftwareData& data = m_device.m_softwareData;
    if (data.IsEmpty()) {
        return;
    }
    Begin("software", "Software");
    {
        const CHtml::CScope parts(m_page, "div", {{"class", "columns"}});
        const auto write = [&](const CElementNode& element, const char* title) {
            if (!element.IsEmpty()) {
                const CHtml::CScope part(m_page, "div");
                m_page.Element(m_heading[1] == '2' ? "h3" : "h4", title);
                WriteValues({&element});
            }
        };
        write(data.m_operatingSystem, "Operating system");
        write(data.m_bios, "BIOS");
    }
    std::vector<CHtmlTable::CColumn> columns = Columns<CSoftware>({});
    columns.insert(columns.begin() + 1, "Part of");
    CHtmlTable table("Software packages", columns);
    CHtmlTable properties("Properties of software packages", Columns<CProperty>({"Package"}));
    AddSoftware(table, properties, data.m_softwareList, 0, "");
    table.Write(m_page, m_budget);
    properties.Write(m_page, m_budget);
    End();
}

void CDevicePart::AddMaintenances(CHtmlTable& table, const std::string& where, const CMaintenanceData& data) const
{
    for (const CMaintenance& maintenance : data.m_maintenances) {
        std::vector<std::string> tasks;
        for (const CMaintenanceTask& task : maintenance.m_maintenanceTasks) {
            const std::string done = Value(task.m_done);
            std::string words = done == "true" ? "\xE2\x9C\x93 " : done == "false" ? "\xE2\x9C\x97 " : "";
            words += Joined({Value(task.m_name), words.empty() ? done : "", Value(task.m_result)}, ": ");
            tasks.push_back(words + (done == "false" ? " (not done)" : ""));
            if (tasks.size() == 100) {
                tasks.push_back("and " + Grouped(std::to_string(maintenance.m_maintenanceTasks.size() - 100)) +
                                " more");
                break;
            }
        }
        table.AddRow({where, Value(maintenance.m_maintenanceDate), Value(maintenance.m_responsiblePerson),
                      Value(maintenance.m_generatedBy), CHtmlCell(std::move(tasks))});
    }
}

void CDevicePart::AddInfos(CHtmlTable& table, const std::string& where, const CMaintenanceData& data) const
{
    for (const CMaintenanceInfo& info : data.m_maintenanceInfos) {
        std::vector<std::string> properties;
        for (const CProperty& property : info.m_properties) {
            properties.push_back(Value(property.m_name) + " = " + Value(property.m_value));
            if (properties.size() == 100) {
                properties.push_back("and " + Grouped(std::to_string(info.m_properties.size() - 100)) + " more");
                break;
            }
        }
        table.AddRow({where, Value(info.m_name), Value(info.m_value), CHtmlCell(std::move(properties))});
    }
}

void CDevicePart::WriteMaintenance()
{
    CHtmlTable table("Maintenance records", {"Of", "Date", "Person", "Generated by", "Tasks"});
    CHtmlTable infos("Maintenance information", {"Of", "Name", "Value", "Properties"});
    AddMaintenances(table, "Device", m_device.m_deviceData.m_maintenanceData);
    AddInfos(infos, "Device", m_device.m_deviceData.m_maintenanceData);
    for (const CBoardPlace& place : m_tree) {
        AddMaintenances(table, m_labels.at(place.board), place.board->m_maintenanceData);
        AddInfos(infos, m_labels.at(place.board), place.board->m_maintenanceData);
    }
    if (!table.IsEmpty() || !infos.IsEmpty()) {
        Begin("maintenance", "Maintenance");
        table.Write(m_page, m_budget);
        infos.Write(m_page, m_budget);
        End();
    }
}

void CDevicePart::AddServices(CHtmlTable& table, const std::string& where, const CServiceData& data) const
{
    for (const CService& service : data.m_services) {
        table.AddRow({where, Value(service.m_serviceDate), Value(service.m_serviceCode)});
    }
}

void CDevicePart::WriteServices()
{
    CHtmlTable table("Services", {"Of", "Date", "Service code"});
    AddServices(table, "Device", m_device.m_deviceData.m_serviceData);
    for (const CBoardPlace& place : m_tree) {
        AddServices(table, m_labels.at(place.board), place.board->m_serviceData);
    }
    if (!table.IsEmpty()) {
        Begin("services", "Services");
        table.Write(m_page, m_budget, false);
        End();
    }
}

class CReportPage
{
public:
    CReportPage(CHtml& page, const CReport& report, CRedaction& redaction)
        : m_page(page), m_report(report), m_redaction(redaction)
    {
        if (m_report.device != nullptr) {
            AddAttached(*m_report.device->m_pConnectedDevices, "", m_attached);
        }
    }

    void Write();

private:
    using TFact = std::array<std::string, 3>; ///< label, number, where it leads to

    void WriteHead(const std::string& title);
    void WriteBanner(const CDevicePart* part);
    void WriteNavigation(const CDevicePart& part);
    void WriteFacts(const CDevicePart& part);
    void WriteRemarks();
    void WriteHistory();
    void WritePlotOfHours();
    void WriteEntries(std::size_t newest, std::size_t count);
    void WriteEntry(const CReportEntry& entry);
    void WriteChange(const CReportChange& change);
    void WriteChanges(const CReportEntry& entry);
    void WriteAttached();

    CHtml& m_page;
    const CReport& m_report;
    CRedaction& m_redaction;
    CRowBudget m_budget;
    std::vector<CAttached> m_attached;
};

void CReportPage::WriteHead(const std::string& title)
{
    const CHtml::CScope head(m_page, "head");
    m_page.Void("meta", {{"charset", "utf-8"}});
    m_page.Void("meta", {{"http-equiv", "Content-Security-Policy"},
                         {"content", "default-src 'none'; style-src 'sha256-" + Base64OfHex(reportStyle.sha256) +
                                         "'; script-src 'sha256-" + Base64OfHex(reportScript.sha256) +
                                         "'; base-uri 'none'; form-action 'none'"}});
    m_page.Void("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}});
    m_page.Void("meta", {{"name", "color-scheme"}, {"content", "light dark"}});
    m_page.Void("meta", {{"name", "referrer"}, {"content", "no-referrer"}});
    m_page.Element("title", title);
    m_page.Verbatim("\n");
    const CHtml::CScope style(m_page, "style");
    m_page.Verbatim(reportStyle.text);
}

void CReportPage::WriteBanner(const CDevicePart* part)
{
    const CHtml::CScope banner(m_page, "header", {{"class", "banner"}});
    m_page.Element("p", {{"class", "kind"}}, m_report.history == nullptr ? "Device footprint" : "Device history");
    m_page.Element("h1", part == nullptr ? "History without a readable entry" : part->Title());
    const CHtml::CScope line(m_page, "p", {{"class", "badges"}});
    if (part != nullptr) {
        m_page.Element("code", part->DeviceId());
        m_page.Text(" ");
        const CIntegrityWords words = Words(m_report.integrity);
        m_page.Element("span", {{"class", std::string("badge ") + words.kind}}, words.badge);
        if (!m_report.device->m_creationDate.IsEmpty()) {
            m_page.Text(" ");
            m_page.Element("span", {{"class", "faint"}},
                           "as of " + ReadableDate(part->Value(m_report.device->m_creationDate)) + " UTC");
        }
        m_page.Text(" ");
    }
    m_page.Element("span", {{"class", "faint source"}}, "from " + m_redaction.Text(m_report.source));
}

void CReportPage::WriteNavigation(const CDevicePart& part)
{
    const CDeviceFootprintData& device = *m_report.device;
    std::vector<std::pair<const char*, const char*>> sections;
    if (!part.Tree().empty()) {
        sections.emplace_back("boards", "Boards");
    }
    if (m_report.history != nullptr) {
        sections.emplace_back("history", "History");
    }
    sections.emplace_back("identity", "Identity");
    bool hasParts = false;
    bool hasMaintenance = !device.m_deviceData.m_maintenanceData.m_maintenances.empty() ||
                          !device.m_deviceData.m_maintenanceData.m_maintenanceInfos.empty();
    bool hasServices = !device.m_deviceData.m_serviceData.m_services.empty();
    for (const CBoardPlace& place : part.Tree()) {
        hasParts = hasParts || !place.board->m_programmableParts.empty();
        hasMaintenance = hasMaintenance || !place.board->m_maintenanceData.m_maintenances.empty() ||
                         !place.board->m_maintenanceData.m_maintenanceInfos.empty();
        hasServices = hasServices || !place.board->m_serviceData.m_services.empty();
    }
    const auto add = [&sections](bool isThere, const char* id, const char* title) {
        if (isThere) {
            sections.emplace_back(id, title);
        }
    };
    add(!part.Tree().empty(), "board-list", "List of boards");
    add(hasParts, "parts", "Programmable parts");
    add(!device.m_hardwareData.m_productList.empty(), "products", "Products");
    add(!device.m_softwareData.IsEmpty(), "software", "Software");
    add(hasMaintenance, "maintenance", "Maintenance");
    add(hasServices, "services", "Services");
    add(!m_attached.empty(), "connected", "Connected devices");
    const CHtml::CScope navigation(m_page, "nav", {{"aria-label", "Sections"}});
    for (const auto& [id, title] : sections) {
        m_page.Element("a", {{"href", std::string("#") + id}}, title);
        m_page.Text(" ");
    }
}

void CReportPage::WriteFacts(const CDevicePart& part)
{
    const CDeviceData& data = m_report.device->m_deviceData;
    std::size_t parts = 0;
    std::string maintenance;
    std::string service;
    const auto last = [&part](std::string& date, const CReadOnlyAttribute& attribute) {
        const std::string value = part.Value(attribute);
        if (Seconds(value) && value > date) {
            date = value;
        }
    };
    const auto look = [&](const CMaintenanceData& records, const CServiceData& services) {
        for (const CMaintenance& record : records.m_maintenances) {
            last(maintenance, record.m_maintenanceDate);
        }
        for (const CService& record : services.m_services) {
            last(service, record.m_serviceDate);
        }
    };
    look(data.m_maintenanceData, data.m_serviceData);
    for (const CBoardPlace& place : part.Tree()) {
        parts += place.board->m_programmableParts.size();
        look(place.board->m_maintenanceData, place.board->m_serviceData);
    }
    const auto number = [](std::size_t count) { return count == 0 ? "" : Grouped(std::to_string(count)); };
    const std::string hours = part.Value(data.m_maintenanceData.m_operatingHours);
    const std::array<TFact, 8> facts = {
        TFact{"Operating hours", WholeNumber(hours) ? Grouped(hours) + "\xC2\xA0h" : hours,
              m_report.history == nullptr ? "#identity" : "#history"},
        TFact{"Make and break cycles", Grouped(part.Value(data.m_maintenanceData.m_makeAndBreakCycles)), "#identity"},
        TFact{"Boards", number(part.Tree().size()), "#boards"},
        TFact{"Programmable parts", number(parts), "#parts"},
        TFact{"Software packages", number(CountSoftware(m_report.device->m_softwareData.m_softwareList)), "#software"},
        TFact{"Connected devices", number(m_attached.size()), "#connected"},
        TFact{"Last maintenance", maintenance, "#maintenance"},
        TFact{"Last service", service, "#services"}};
    const CHtml::CScope list(m_page, "ul", {{"class", "facts"}});
    for (const TFact& fact : facts) {
        if (!fact[1].empty()) {
            const CHtml::CScope item(m_page, "li");
            const CHtml::CScope link(m_page, "a", {{"href", fact[2]}});
            m_page.Element("span", {{"class", "label"}}, fact[0]);
            m_page.Text(" ");
            m_page.Element("span", {{"class", "figure"}}, Shortened(Harmless(fact[1]), 40));
        }
    }
}

void CReportPage::WriteRemarks()
{
    std::vector<std::string> remarks = m_report.remarks;
    if (m_report.device != nullptr && Words(m_report.integrity).sentence != nullptr) {
        remarks.emplace_back(Words(m_report.integrity).sentence);
    }
    if (remarks.empty()) {
        return;
    }
    const CHtml::CScope box(m_page, "aside", {{"class", "remarks"}, {"aria-label", "To look at"}});
    m_page.Element("h2", "To look at");
    const CHtml::CScope list(m_page, "ul");
    for (const std::string& remark : remarks) {
        m_page.Element("li", m_redaction.Text(remark));
    }
}

void CReportPage::WritePlotOfHours()
{
    std::vector<CPlotPoint> points;
    for (const CReportEntry& entry : m_report.history->entries) {
        const auto seconds = Seconds(entry.date);
        if (seconds && entry.hours) {
            points.push_back({*seconds, static_cast<double>(*entry.hours),
                              ReadableDate(entry.date) + ": " + Grouped(std::to_string(*entry.hours)) + "\xC2\xA0h" +
                                  (IsDamaged(entry.state) ? ", checksum wrong" : ""),
                              IsDamaged(entry.state)});
        }
    }
    std::vector<CPlotEvent> events;
    if (m_report.device != nullptr) {
        const CDeviceData& data = m_report.device->m_deviceData;
        for (const CMaintenance& record : data.m_maintenanceData.m_maintenances) {
            if (const auto seconds = Seconds(m_redaction.Value(record.m_maintenanceDate))) {
                events.push_back({*seconds, "Maintenance on " + m_redaction.Value(record.m_maintenanceDate), false});
            }
        }
        for (const CService& record : data.m_serviceData.m_services) {
            if (const auto seconds = Seconds(m_redaction.Value(record.m_serviceDate))) {
                events.push_back({*seconds,
                                  "Service " + Shortened(Harmless(m_redaction.Value(record.m_serviceCode)), 40) +
                                      " on " + m_redaction.Value(record.m_serviceDate),
                                  true});
            }
        }
    }
    if (events.size() > CRowBudget::rowsOfTable) {
        events.resize(CRowBudget::rowsOfTable);
    }
    WritePlot(m_page, std::move(points), events, "Operating hours", "h");
}

void CReportPage::WriteChange(const CReportChange& change)
{
    const CHtml::CScope item(m_page, "li", {{"class", change.rule.empty() ? "aside" : "decides"}});
    m_page.Element("bdi", {{"class", "where"}}, Shortened(Harmless(change.where), 200));
    m_page.Text(" ");
    if (!change.happened.empty()) {
        m_page.Element("span", change.happened);
        if (!change.details.empty()) {
            m_page.Text(" ");
            m_page.Element("bdi", {{"class", "faint"}}, Shortened(Harmless(change.details), 200));
        }
    } else {
        const CHtml::CScope values(m_page, "span", {{"class", "values"}});
        m_page.Element("bdi", {{"class", change.former.empty() ? "none" : "former"}},
                       change.former.empty() ? "none" : Shortened(Harmless(change.former), 120));
        m_page.Text(" \xE2\x86\x92 ");
        m_page.Element("bdi", {{"class", change.present.empty() ? "none" : "present"}},
                       change.present.empty() ? "none" : Shortened(Harmless(change.present), 120));
    }
    if (!change.rule.empty()) {
        m_page.Text(" ");
        m_page.Element("span", {{"class", "rule"}, {"title", "The rule that makes this decide"}}, change.rule);
    }
}

void CReportPage::WriteChanges(const CReportEntry& entry)
{
    if (entry.isAfterDamage) {
        m_page.Element("p", {{"class", "faint"}},
                       "The entry before it is damaged, which is reason enough for a device to write a new one.");
    }
    if (!entry.changes) {
        if (!entry.isAfterDamage) {
            m_page.Element("p", {{"class", "faint"}}, "The first entry.");
        }
        return;
    }
    if (!entry.changes->isDecided) {
        m_page.Element("p", {{"class", "faint"}},
                       "By the default rules, nothing that decides has changed since the one before it.");
    }
    if (entry.changes->changes.empty()) {
        return;
    }
    const CHtml::CScope list(m_page, "ul", {{"class", "changes"}});
    for (const CReportChange& change : entry.changes->changes) {
        WriteChange(change);
    }
    if (entry.changes->leftOut != 0) {
        m_page.Element("li", {{"class", "aside"}},
                       "and " + Count(entry.changes->leftOut, "more change", "more changes"));
    }
}

void CReportPage::WriteEntry(const CReportEntry& entry)
{
    const CHtml::CScope item(m_page, "li", {{"class", IsDamaged(entry.state) ? "entry bad" : "entry"}});
    {
        const CHtml::CScope line(m_page, "p", {{"class", "badges"}});
        m_page.Element("strong", ReadableDate(m_redaction.Text(entry.date)));
        if (entry.hours) {
            m_page.Text(" ");
            m_page.Element("span", {{"class", "hours"}}, Grouped(std::to_string(*entry.hours)) + "\xC2\xA0h");
        }
        if (entry.isLatest) {
            m_page.Text(" ");
            m_page.Element("span", {{"class", "badge latest"}}, "Latest");
        }
        if (entry.state != EEntryState::eIntact) {
            m_page.Text(" ");
            const CIntegrityWords words = Words(entry.state);
            m_page.Element("span", {{"class", std::string("badge ") + words.kind}}, words.badge);
        }
    }
    m_page.Element("p", {{"class", "faint file"}}, m_redaction.Text(entry.file));
    if (!entry.error.empty()) {
        m_page.Element("p", {{"class", "error"}}, m_redaction.Text(entry.error));
    } else {
        WriteChanges(entry);
    }
}

void CReportPage::WriteEntries(std::size_t newest, std::size_t count)
{
    const CHtml::CScope list(m_page, "ol", {{"class", "timeline"}, {"reversed", "reversed"}});
    for (std::size_t index = 0; index < count; ++index) {
        WriteEntry(m_report.history->entries[newest - index]);
    }
}

void CReportPage::WriteHistory()
{
    const std::vector<CReportEntry>& entries = m_report.history->entries;
    const CHtml::CScope section(m_page, "section", {{"id", "history"}, {"aria-labelledby", "history-title"}});
    m_page.Element("h2", {{"id", "history-title"}}, "History");
    WritePlotOfHours();
    m_page.Element("h3", "What has changed");
    m_page.Element("p", {{"class", "faint"}},
                   "The newest entry first. What made a device write an entry is bold, with the rule that decides; the "
                   "rest has changed on the way.");
    const std::size_t first = std::min(entries.size(), manyEntries);
    WriteEntries(entries.size() - 1, first);
    const std::size_t rest = std::min(entries.size(), mostEntries) - first;
    if (rest != 0) {
        const CHtml::CScope older(m_page, "details");
        m_page.Element("summary", Count(entries.size() - first, "older entry", "older entries"));
        WriteEntries(entries.size() - 1 - first, rest);
        if (first + rest < entries.size()) {
            m_page.Element("p", {{"class", "cut"}},
                           "The oldest " + Grouped(std::to_string(entries.size() - first - rest)) +
                               " entries are left out here.");
        }
    }
}

void CReportPage::WriteAttached()
{
    if (m_attached.empty()) {
        return;
    }
    const CHtml::CScope section(m_page, "section", {{"id", "connected"}, {"aria-labelledby", "connected-title"}});
    m_page.Element("h2", {{"id", "connected-title"}}, "Connected devices");
    std::size_t number = 0;
    for (const CAttached& attached : m_attached) {
        if (++number > mostDevices || m_budget.rows == 0) {
            m_page.Element("p", {{"class", "cut"}},
                           "The last " + Count(m_attached.size() - number + 1, "device is", "devices are") +
                               " left out here.");
            break;
        }
        const EEntryState integrity = StateOf(*attached.device);
        const std::string prefix = "device-" + std::to_string(number) + "-";
        CDevicePart part(m_page, m_redaction, m_budget, *attached.device, prefix, "h3");
        CHtml::TAttributes attributes = {{"class", "attached"}, {"id", prefix + "device"}};
        if (m_attached.size() <= manyDevices) {
            attributes.emplace_back("open", "open");
        }
        const CHtml::CScope fold(m_page, "details", attributes);
        {
            const CHtml::CScope summary(m_page, "summary");
            m_page.Element("span", {{"class", "place"}}, attached.place);
            m_page.Text(" ");
            m_page.Element("strong", part.Title());
            m_page.Text(" ");
            m_page.Element("code", part.DeviceId());
            m_page.Text(" ");
            m_page.Element("span", {{"class", std::string("badge ") + Words(integrity).kind}}, Words(integrity).badge);
        }
        const std::size_t dot = attached.place.rfind('.');
        m_page.Element("p", {{"class", "faint"}},
                       dot == std::string::npos ? "Connected to the instrument."
                                                : "Connected to device " + attached.place.substr(0, dot) + ".");
        part.WritePicture();
        part.WriteIdentity();
        part.WriteBoards();
        part.WriteParts();
        part.WriteProducts();
        part.WriteSoftware();
        part.WriteMaintenance();
        part.WriteServices();
    }
}

void CReportPage::Write()
{
    std::unique_ptr<CDevicePart> part;
    if (m_report.device != nullptr) {
        part = std::make_unique<CDevicePart>(m_page, m_redaction, m_budget, *m_report.device, "", "h2");
    }
    m_page.Verbatim("<!DOCTYPE html>\n");
    const CHtml::CScope html(m_page, "html", {{"lang", "en"}});
    WriteHead(part ? Shortened(Harmless(part->Title() + " " + part->DeviceId()), 120) : "Device history");
    const CHtml::CScope body(m_page, "body");
    WriteBanner(part.get());
    if (part) {
        WriteNavigation(*part);
    }
    {
        const CHtml::CScope content(m_page, "main");
        WriteRemarks();
        if (part) {
            WriteFacts(*part);
        }
        if (part) {
            part->WritePicture();
        }
        if (m_report.history != nullptr) {
            WriteHistory();
        }
        if (part) {
            part->WriteIdentity();
            part->WriteBoards();
            part->WriteParts();
            part->WriteProducts();
            part->WriteSoftware();
            part->WriteMaintenance();
            part->WriteServices();
            WriteAttached();
        }
        if (m_budget.leftOut != 0) {
            m_page.Element("p", {{"class", "cut"}},
                           "The page holds no more than it can show well: " +
                               Count(m_budget.leftOut, "row is", "rows are") + " left out. The file has all of them.");
        }
    }
    const CHtml::CScope script(m_page, "script");
    m_page.Verbatim(reportScript.text);
}

} // namespace

void WriteReport(std::ostream& output, const CReport& report, CRedaction& redaction)
{
    CHtml page(output);
    CReportPage(page, report, redaction).Write();
}

} // namespace footprint
