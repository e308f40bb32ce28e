#include "Generator.h"

#include "Files.h"

#include "DeviceFootprint.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>

namespace bench
{

using namespace KvDeviceFootprint;

namespace
{

/// As the facade numbers boards, 999 on one path; seven paths are filled in turn.
long BoardId(unsigned number)
{
    const unsigned path = 1 + number % 7 + 7 * (number / (7 * 999));
    const unsigned id = 1000 * path + 1 + number / 7 % 999;
    return static_cast<long>(id);
}

class Filler
{
public:
    explicit Filler(bool isWide) : m_isWide(isWide) {}

    unsigned Number(unsigned below)
    {
        // Knuth's MMIX generator: the standard library's distributions differ from one implementation to the next.
        m_state = m_state * 6364136223846793005U + 1442695040888963407U;
        return static_cast<unsigned>(m_state >> 33) % below;
    }

    std::wstring Digits(unsigned count)
    {
        std::wstring text;
        while (text.size() < count) {
            text += static_cast<wchar_t>(L'0' + Number(10));
        }
        return text;
    }
    std::wstring PartNumber() { return Digits(4) + L"." + Digits(4) + L"." + Digits(2); }
    std::wstring Index() { return Digits(2) + L"." + Digits(2); }
    std::wstring Version() { return std::to_wstring(Number(20)) + L"." + Digits(2) + L"." + Digits(2); }
    std::wstring Date()
    {
        const unsigned month = 1 + Number(12);
        const unsigned day = 1 + Number(28);
        return std::to_wstring(2005 + Number(20)) + (month < 10 ? L"-0" : L"-") + std::to_wstring(month) +
               (day < 10 ? L"-0" : L"-") + std::to_wstring(day);
    }
    /// A text that people have written.
    std::wstring Words(const wchar_t* word)
    {
        if (!m_isWide) {
            return word;
        }
        static const wchar_t* const wide[] = {L" <\x00e4\x00f6\x00fc> & \"\x00df\"", L" \x03a9 = 50 'k\x03a9'",
                                              L" \x65e5\x672c\x8a9e", L" \x20ac 12 & \x00b5s", L" \x1f4e1 > 1"};
        return word + std::wstring(wide[Number(5)]) + wide[Number(5)];
    }

    void Fill(CProperties& properties, unsigned count)
    {
        for (unsigned i = 0; i < count; ++i) {
            CProperty& property = properties.CreateEntry();
            property.m_name = L"property" + std::to_wstring(i);
            property.m_value = Words(i % 2 == 0 ? L"on" : L"calibrated");
        }
    }

    void Fill(CMaintenanceData& data, unsigned count)
    {
        data.m_operatingHours = static_cast<long>(Number(50000));
        data.m_makeAndBreakCycles = static_cast<long>(Number(900000));
        for (unsigned i = 0; i < count; ++i) {
            CMaintenance& maintenance = data.m_maintenances.CreateEntry();
            maintenance.m_responsiblePerson = Words(L"B. Service");
            maintenance.m_maintenanceDate = Date();
            maintenance.m_generatedBy = L"service tool";
            for (unsigned task = 0; task < 2; ++task) {
                CMaintenanceTask& entry = maintenance.m_maintenanceTasks.CreateEntry();
                entry.m_name = L"task " + std::to_wstring(task);
                entry.m_done = L"true";
                entry.m_result = Words(L"ok");
            }
        }
        CMaintenanceInfo& info = data.m_maintenanceInfos.CreateEntry();
        info.m_name = L"last check";
        info.m_value = Date();
        Fill(info.m_properties, 1);
    }

    void Fill(CServiceData& data)
    {
        CService& service = data.m_services.CreateEntry();
        service.m_serviceCode = static_cast<long>(Number(999));
        service.m_serviceDate = Date();
    }

    void Fill(CHardware& board, unsigned number)
    {
        static const wchar_t* const names[] = {L"CTRL", L"SYNTH", L"DIG-IO", L"FAN", L"FRONTEND"};
        board.m_id = BoardId(number);
        board.m_productId = static_cast<long>(Number(999999));
        board.m_partNumber = PartNumber();
        board.m_sn = std::to_wstring(100000 + number);
        board.m_partChangeIndex = Index();
        board.m_hardwareCode = static_cast<long>(Number(200));
        board.m_productDate = Date();
        board.m_readCode = static_cast<long>(Number(255));
        board.m_testInstruction = L"1." + Digits(2);
        board.m_name = names[number % 5];
        board.m_partName = Words(L"Synthesizer board");
        if (number > 0) {
            board.m_parentId = BoardId(number / 3);
        }
        board.m_externConnected.SetBool(number % 9 == 8);
        board.m_connectorName = L"X" + std::to_wstring(number % 64);
        CBPartIdentification& identification = board.m_bPartIdentification;
        identification.m_name = L"module";
        identification.m_partNumber = PartNumber();
        identification.m_sn = L"B" + Digits(4);
        identification.m_partChangeIndex = Index();
        identification.m_vendorName = Words(L"Vendor");
        identification.m_additionalInfo = L"info";
        static const wchar_t* const parts[] = {L"FPGA", L"CPLD"};
        for (const wchar_t* name : parts) {
            CProgrammablePart& part = board.m_programmableParts.CreateEntry();
            part.m_name = name;
            part.m_version = Version();
            part.m_partNumber = PartNumber();
            part.m_partChangeIndex = Index();
        }
        Fill(board.m_maintenanceData, 1);
        Fill(board.m_serviceData);
        Fill(board.m_properties, 2);
    }

    void Fill(CSoftware& software, unsigned number)
    {
        software.m_name = L"package " + std::to_wstring(number);
        software.m_version = Version();
        software.m_status = L"active";
        software.m_partNumber = PartNumber();
        software.m_partChangeIndex = Index();
        software.m_vendorName = Words(L"Vendor");
        software.m_wordSize = L"32";
        software.m_releaseState = L"released";
    }

    void Fill(CDeviceFootprint& footprint, const Document& document)
    {
        CDeviceData& device = footprint.m_deviceData;
        footprint.m_creationDate = "2024-02-29T12:30:00";
        footprint.m_generatedBy = "factory";
        device.m_deviceId = L"1234.5678.02-100123-ab";
        device.m_partChangeIndex = Index();
        device.m_type = L"TYPE-A";
        device.m_partName = Words(L"base unit");
        device.m_productDate = Date();
        CTestInstruction& instruction = device.m_testInstructions.CreateEntry();
        instruction.m_name = L"final test";
        instruction.m_version = Version();
        Fill(device.m_maintenanceData, 2);
        Fill(device.m_serviceData);
        for (unsigned i = 0; i < document.boards; ++i) {
            Fill(footprint.m_hardwareData.m_hardwareList.CreateEntry(), i);
        }
        for (unsigned i = 0; i < document.products; ++i) {
            CProduct& product = footprint.m_hardwareData.m_productList.CreateEntry();
            product.m_id = std::to_wstring(i + 1);
            product.m_partNumber = PartNumber();
            product.m_partChangeIndex = Index();
            product.m_type = L"OPT-" + std::to_wstring(i);
            product.m_partName = Words(L"option");
        }
        CSoftwareData& data = footprint.m_softwareData;
        data.m_bios.m_name = "BIOS";
        data.m_bios.m_version = Version();
        data.m_bios.m_partNumber = PartNumber();
        data.m_operatingSystem.m_name = "OS";
        data.m_operatingSystem.m_version = Version();
        data.m_operatingSystem.m_partNumber = PartNumber();
        data.m_operatingSystem.m_kernelRelease = "4.19.0";
        unsigned number = 0;
        for (unsigned i = 0; i < document.software; ++i) {
            CSoftwareList* list = &data.m_softwareList;
            for (unsigned depth = document.isDeep ? (CXmlStreamReader::MaxDepth - 2) / 2 : 3; depth > 0; --depth) {
                CSoftware& software = list->CreateEntry();
                Fill(software, number++);
                list = software.m_pSoftwareList.get();
            }
        }
    }

private:
    bool m_isWide;
    std::uint64_t m_state = 2024;
};

std::string Text(CDeviceFootprint& footprint)
{
    std::string text;
    if (!footprint.GetDeviceFootprintString(false, text)) {
        Fail(CDeviceFootprint::GetLastError());
    }
    return text;
}

/// Another order of the same entries.
template<class List>
void Shuffle(List& list)
{
    List reordered;
    bool front = false;
    while (!list.empty()) {
        reordered.splice(front ? reordered.begin() : reordered.end(), list, list.begin());
        front = !front;
    }
    list.swap(reordered);
}

} // namespace

const std::vector<Document>& Documents()
{
    static const std::vector<Document> all = {
        {"typical", 40, 20, 10, 2, false, false},    {"wide-text", 40, 20, 10, 2, true, false},
        {"large", 10000, 1667, 10, 2, false, false}, {"huge", 100000, 16667, 10, 2, false, false},
        {"deep", 1, 100, 1, 0, false, true},
    };
    return all;
}

const Document& DocumentByName(const std::string& name)
{
    for (const Document& document : Documents()) {
        if (name == document.name) {
            return document;
        }
    }
    Fail("there is no document " + name);
}

std::string MakeText(const Document& document, bool isShuffled)
{
    CDeviceFootprint footprint;
    Filler filler(document.isWide);
    filler.Fill(footprint, document);
    for (unsigned i = 0; i < document.devices; ++i) {
        CDeviceFootprint device;
        filler.Fill(device, {"", 2, 1, 1, 0, document.isWide, false});
        device.m_deviceData.m_deviceId = L"8765.4321.02-20000" + std::to_wstring(i) + L"-ab";
        if (!footprint.m_pConnectedDevices->AddConnectedDeviceFromString(Text(device))) {
            Fail(CDeviceFootprint::GetLastError());
        }
    }
    if (isShuffled) {
        Shuffle(footprint.m_hardwareData.m_hardwareList);
        Shuffle(footprint.m_softwareData.m_softwareList);
    }
    return Text(footprint);
}

void MakeFile(const Document& document, const std::string& file, bool isShuffled)
{
    std::ofstream(file, std::ios::binary) << MakeText(document, isShuffled);
}

} // namespace bench
