#include "Printing.h"

#include <QString>

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <map>
#include <set>
#include <vector>

using namespace KvOrdo;

namespace
{

std::string Utf8(const std::wstring& text)
{
    return QString::fromStdWString(text).toUtf8().constData();
}

std::string Padded(const std::wstring& text, std::size_t width)
{
    return Utf8(text) + std::string(width > text.size() ? width - text.size() : 0, ' ');
}

/// Columns as wide as their widest cell; the first row is the heading.
void PrintTable(const std::vector<std::vector<std::wstring>>& rows)
{
    std::vector<std::size_t> widths(rows.front().size(), 0);
    for (const auto& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    for (std::size_t row = 0; row < rows.size(); ++row) {
        std::cout << "   ";
        for (std::size_t column = 0; column < widths.size(); ++column) {
            std::cout << " " << Padded(rows[row][column], widths[column]) << " ";
        }
        std::cout << "\n";
        if (row == 0) {
            std::cout << "   ";
            for (const std::size_t width : widths) {
                std::cout << " " << std::string(width, '-') << " ";
            }
            std::cout << "\n";
        }
    }
}

void PrintField(const std::string& name, const std::wstring& value)
{
    if (!value.empty()) {
        std::cout << "    " << std::left << std::setw(18) << name << Utf8(value) << "\n";
    }
}

void PrintMaintenance(const IMaintenanceDataDescItem* data)
{
    if (data == nullptr) {
        return;
    }
    if (data->getOperatingHours() != -1) {
        PrintField("operating hours", std::to_wstring(data->getOperatingHours()));
    }
    for (const IMaintenanceDescItem* maintenance : data->getMaintenances()) {
        PrintField("maintenance", maintenance->getMaintenanceDate() + L" by " + maintenance->getResponsiblePerson());
    }
}

void PrintDevice(const DeviceDataDescItem& device)
{
    std::cout << "  Device\n";
    PrintField("device id", device.getDeviceId());
    PrintField("type", device.getType());
    PrintField("part name", device.getPartName());
    PrintField("change index", device.getPartChangeIndex());
    PrintField("production date", device.getProductDate());
    PrintMaintenance(device.getMaintenanceData());
    for (const IServiceDescItem* service : device.getServices()) {
        PrintField("service", std::to_wstring(service->getServiceCode()) + L" on " + service->getServiceDate());
    }
}

void PrintBoardTable(const std::list<HwBoardDescItem*>& boards)
{
    std::vector<std::vector<std::wstring>> rows = {{L"id", L"name", L"part number", L"serial", L"slot", L"parts"}};
    for (const HwBoardDescItem* board : boards) {
        std::wstring parts;
        for (const IHwProgrammablePartDescItem* part : board->getProgrammableParts()) {
            parts += (parts.empty() ? L"" : L", ") + part->getName() + L" " + part->getVersion();
        }
        rows.push_back({std::to_wstring(board->getId()), board->getName(), board->getPartNumberVariant(0, nullptr),
                        std::to_wstring(board->getSerialNumber()), board->getSlotInfo(), parts});
    }
    std::cout << "  Boards\n";
    PrintTable(rows);
}

class BoardTree
{
public:
    explicit BoardTree(const std::list<HwBoardDescItem*>& boards)
    {
        std::set<long> ids;
        for (const HwBoardDescItem* board : boards) {
            ids.insert(board->getId());
        }
        for (const HwBoardDescItem* board : boards) {
            // A board whose carrier is not there stands at the root.
            const bool isCarried = ids.count(board->getParentId()) > 0 && board->getParentId() != board->getId();
            m_carriedBy[isCarried ? board->getParentId() : NoBoard].push_back(board);
        }
    }

    void Print() const
    {
        std::cout << "  Boards as they carry one another\n";
        PrintBelow(NoBoard, "    ");
    }

private:
    static constexpr long NoBoard = -1;

    void PrintBelow(long id, const std::string& indent) const
    {
        const auto carried = m_carriedBy.find(id);
        if (carried == m_carriedBy.end()) {
            return;
        }
        for (const HwBoardDescItem* board : carried->second) {
            const bool isLast = board == carried->second.back();
            std::cout << indent << (isLast ? "`-- " : "|-- ") << Utf8(board->getName()) << " ("
                      << Utf8(board->getPartNumberVariant(0, nullptr)) << ")\n";
            PrintBelow(board->getId(), indent + (isLast ? "    " : "|   "));
        }
    }

    std::map<long, std::vector<const HwBoardDescItem*>> m_carriedBy;
};

void PrintSoftware(const std::list<ISoftwareDescItem*>& items, const std::string& indent)
{
    for (const ISoftwareDescItem* item : items) {
        std::cout << indent << Utf8(item->getName()) << " " << Utf8(item->getVersion()) << "\n";
        PrintSoftware(item->getSoftwareItems(), indent + "  ");
    }
}

} // namespace

void PrintStep(const std::string& text)
{
    std::cout << "\n== " << text << "\n";
}

void PrintInstrument(CNyxConfig& config)
{
    if (config.getDeviceData() != nullptr) {
        PrintDevice(*config.getDeviceData());
    }
    const std::list<HwBoardDescItem*> boards = config.getHwBoardDescItems();
    if (!boards.empty()) {
        PrintBoardTable(boards);
        BoardTree(boards).Print();
    }
    if (config.getSoftwareData() != nullptr && !config.getSoftwareData()->getSoftwareItems().empty()) {
        std::cout << "  Software\n";
        PrintSoftware(config.getSoftwareData()->getSoftwareItems(), "    ");
    }
}
