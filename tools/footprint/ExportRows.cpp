#include "ExportRows.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <stdexcept>
#include <utility>

namespace footprint
{

namespace
{

using namespace KvDeviceFootprint;

/// Lengths below this one take a byte; other ones four bytes behind this one.
constexpr unsigned char longText = 255;

constexpr std::size_t LengthSize(std::size_t length)
{
    return length < longText ? 1 : 1 + sizeof(std::uint32_t);
}

void AppendUtf8(std::string& bytes, std::uint32_t character)
{
    constexpr std::uint32_t replacement = 0xFFFD;
    if (character == 0 || character > 0x10FFFF || (character >= 0xD800 && character < 0xE000)) {
        character = replacement;
    }
    const auto put = [&](std::uint32_t byte) { bytes.push_back(static_cast<char>(byte)); };
    const auto tail = [&](unsigned shift) { put(0x80U | ((character >> shift) & 0x3FU)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0U | (character >> 6));
        tail(0);
    } else if (character < 0x10000) {
        put(0xE0U | (character >> 12));
        tail(6);
        tail(0);
    } else {
        put(0xF0U | (character >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

/// Takes the tree apart.
class CFootprintWalk
{
public:
    CFootprintWalk(CExportRows& rows, const TPseudonym& pseudonym) : m_rows(rows), m_pseudonym(pseudonym) {}

    void Device(const CDeviceFootprintData& data, std::uint32_t parent, std::uint32_t root, std::uint32_t depth)
    {
        const std::uint32_t device = m_rows.Begin(eDevices);
        m_rows.Number(parent);
        Attributes(data);
        const CDeviceData& deviceData = data.m_deviceData;
        Attributes(deviceData);
        Identity(deviceData.m_deviceId);
        Attributes(deviceData.m_maintenanceData);
        Attributes(data.m_softwareData.m_bios);
        Attributes(data.m_softwareData.m_operatingSystem);
        if (depth > 0) {
            m_rows.Begin(eConnectedDevices);
            m_rows.Number(device);
            m_rows.Number(parent);
            m_rows.Number(root);
            m_rows.Number(depth);
        }
        m_device = device;
        Records(deviceData.m_maintenanceData, deviceData.m_serviceData, 0);
        Boards(data.m_hardwareData.m_hardwareList);
        for (const CProduct& product : data.m_hardwareData.m_productList) {
            m_rows.Begin(eProducts);
            m_rows.Number(device);
            Attributes(product);
        }
        Software(data.m_softwareData.m_softwareList, 0);
        for (const CConnectedDevice& connected : *data.m_pConnectedDevices) {
            Device(connected, device, root == 0 ? device : root, depth + 1);
        }
    }

private:
    template<class Element>
    void Attributes(const Element& element)
    {
        const CElementLayout& layout = Element::Layout();
        for (std::size_t index = 0; index < layout.AttributeCount(); ++index) {
            Value(*layout.AttributeAt(element, index));
        }
    }

    void Value(const CReadOnlyAttribute& attribute)
    {
        if (!m_pseudonym || attribute.IsEmpty()) {
            m_rows.Text(attribute.GetValue());
            return;
        }
        m_rows.Text(Shown(attribute));
    }

    /// A value as it may be shown.
    std::string Shown(const CReadOnlyAttribute& attribute)
    {
        std::string value;
        for (const wchar_t character : attribute.GetValue()) {
            AppendUtf8(value, static_cast<std::uint32_t>(character));
        }
        return m_pseudonym(attribute.GetNodeName(), value);
    }

    /// Part number and serial number out of a device id.
    void Identity(const CReadOnlyAttribute& deviceId)
    {
        const std::wstring& text = deviceId.GetValue();
        const std::size_t first = text.find(L'-');
        if (first == std::wstring::npos) {
            m_rows.Text(std::string());
            m_rows.Text(std::string());
            return;
        }
        CAttribute part("partNumber");
        part.Set(text.substr(0, first));
        CAttribute serial("sn");
        serial.Set(text.substr(first + 1, text.find(L'-', first + 1) - first - 1));
        Value(part);
        Value(serial);
    }

    void Boards(const CHardwareList& boards)
    {
        // The rows get their numbers in order, so a parent's number is known before its row is there.
        m_boards.clear();
        std::uint32_t number = m_boardCount;
        for (const CHardware& board : boards) {
            ++number;
            if (!board.m_id.IsEmpty()) {
                m_boards.emplace(board.m_id.GetValue(), number); // of two boards with one id, the first
            }
        }
        for (const CHardware& board : boards) {
            const std::uint32_t key = m_rows.Begin(eBoards);
            m_rows.Number(m_device);
            const auto parent =
                board.m_parentId.IsEmpty() ? m_boards.end() : m_boards.find(board.m_parentId.GetValue());
            m_rows.Number(parent == m_boards.end() ? 0 : parent->second);
            Attributes(board);
            Attributes(board.m_bPartIdentification);
            Attributes(board.m_maintenanceData);
            for (const CProgrammablePart& part : board.m_programmableParts) {
                m_rows.Begin(eProgrammableParts);
                m_rows.Number(m_device);
                m_rows.Number(key);
                Attributes(part);
            }
            Records(board.m_maintenanceData, board.m_serviceData, key);
        }
        m_boardCount = number;
    }

    void Records(const CMaintenanceData& maintenanceData, const CServiceData& serviceData, std::uint32_t board)
    {
        for (const CMaintenance& maintenance : maintenanceData.m_maintenances) {
            m_rows.Begin(eMaintenances);
            m_rows.Number(m_device);
            m_rows.Number(board);
            Attributes(maintenance);
        }
        for (const CService& service : serviceData.m_services) {
            m_rows.Begin(eServices);
            m_rows.Number(m_device);
            m_rows.Number(board);
            Attributes(service);
        }
    }

    void Software(const CSoftwareList& list, std::uint32_t parent)
    {
        for (const CSoftware& software : list) {
            const std::uint32_t key = m_rows.Begin(eSoftware);
            m_rows.Number(m_device);
            m_rows.Number(parent);
            Attributes(software);
            Software(*software.m_pSoftwareList, key);
        }
    }

    CExportRows& m_rows;
    const TPseudonym& m_pseudonym;
    std::uint32_t m_device = 0;
    std::uint32_t m_boardCount = 0;
    std::map<std::wstring, std::uint32_t> m_boards; // of the device at hand, by id
};

} // namespace

void CExportBuffer::Grow(std::size_t count)
{
    const std::size_t capacity = std::max(2 * m_capacity, m_size + count + 4096);
    auto bytes = std::make_unique<char[]>(capacity);
    std::copy(m_bytes.get(), m_bytes.get() + m_size, bytes.get());
    m_bytes = std::move(bytes);
    m_capacity = capacity;
}

std::uint32_t CExportRows::Begin(EExportTable table)
{
    if (m_counts[table] == lastExportRow) {
        throw std::length_error("more than " + std::to_string(lastExportRow) + " entries of one kind");
    }
    m_current = &m_tables[table];
    Number(++m_counts[table]);
    return m_counts[table];
}

void CExportRows::Number(std::uint32_t number)
{
    std::memcpy(m_current->Append(sizeof number), &number, sizeof number);
}

/// @return where the text is to be put.
inline char* CExportRows::PutLength(std::size_t length)
{
    char* const place = m_current->Append(LengthSize(length) + length);
    if (length < longText) {
        *place = static_cast<char>(length);
    } else {
        const auto number = static_cast<std::uint32_t>(length);
        *place = static_cast<char>(longText);
        std::memcpy(place + 1, &number, sizeof number);
    }
    return place + LengthSize(length);
}

void CExportRows::Text(const std::string& text)
{
    std::copy(text.begin(), text.end(), PutLength(text.size()));
}

void CExportRows::Text(const std::wstring& text)
{
    // Nearly all texts are ASCII, and short: they are taken as such, and back if one is not.
    char* place = PutLength(text.size());
    bool isAscii = true;
    for (const wchar_t character : text) {
        isAscii = isAscii && character > 0 && character < 0x80;
        *place++ = static_cast<char>(character);
    }
    if (isAscii) {
        return;
    }
    m_current->Drop(LengthSize(text.size()) + text.size());
    m_utf8.clear();
    for (const wchar_t character : text) {
        AppendUtf8(m_utf8, static_cast<std::uint32_t>(character));
    }
    Text(m_utf8);
}

void CExportRows::Clear()
{
    for (CExportBuffer& table : m_tables) {
        table.clear();
    }
    m_counts.fill(0);
}

CExportRowReader::CExportRowReader(const CExportTable& table) : m_fields(table.columns.size())
{
    for (const CExportColumn& column : table.columns) {
        m_kinds.push_back(column.kind);
    }
}

bool CExportRowReader::Next()
{
    if (m_rows.size == 0) {
        return false;
    }
    const char* place = m_rows.begin;
    const char* const end = m_rows.begin + m_rows.size;
    const auto take = [&place, end](std::size_t size) {
        if (size > static_cast<std::size_t>(end - place)) {
            throw std::runtime_error("rows are cut off");
        }
        place += size;
        return CBytes{place - size, size};
    };
    CBytes* field = m_fields.data();
    for (const EExportColumn kind : m_kinds) {
        if (kind == EExportColumn::eText) {
            std::uint32_t length = static_cast<unsigned char>(*take(1).begin);
            if (length == longText) {
                std::memcpy(&length, take(sizeof length).begin, sizeof length);
            }
            *field = length == 0 ? CBytes{} : take(length);
        } else if (kind != EExportColumn::eFile) {
            *field = take(sizeof(std::uint32_t));
        }
        ++field;
    }
    m_rows = {place, static_cast<std::size_t>(end - place)};
    return true;
}

std::uint32_t CExportRowReader::Number(std::size_t column) const
{
    std::uint32_t number = 0;
    std::memcpy(&number, m_fields[column].begin, sizeof number);
    return number;
}

void AddFootprint(const CDeviceFootprint& footprint, CExportRows& rows, const TPseudonym& pseudonym)
{
    CFootprintWalk(rows, pseudonym).Device(footprint, 0, 0, 0);
}

} // namespace footprint
