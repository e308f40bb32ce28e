// usage: make_fleet FOLDER COUNT [KILOBYTES [FIRST]]
//
// Writes COUNT footprints of about so many kilobytes each (100 unless told otherwise), of instruments that could be:
// boards with programmable parts and records, products, software, a few connected devices. The numbers of a footprint
// follow from its place in the fleet alone, so that every run writes the same. Boards, parts and records stand in the
// proportions of the sample footprints. Nothing but FOLDER is written to.

#include "DeviceFootprint.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <string>

namespace
{

using namespace KvDeviceFootprint;

class CInstrument
{
public:
    explicit CInstrument(unsigned number) : m_number(number), m_random(number) {}

    std::string Text(std::size_t size)
    {
        CDeviceFootprint footprint;
        Identify(footprint, m_number);
        // One board with all that comes with it takes about 1400 bytes.
        const std::size_t boards = 1 + size / 1400;
        for (std::size_t board = 0; board < boards; ++board) {
            AddBoard(footprint.m_hardwareData.m_hardwareList.CreateEntry(), board);
            if (board % 3 == 0) {
                AddSoftware(footprint.m_softwareData.m_softwareList.CreateEntry(), board % 2 == 0);
            }
            if (board % 8 == 0) {
                AddProduct(footprint.m_hardwareData.m_productList.CreateEntry(), board);
            }
        }
        System(footprint.m_softwareData);
        if (m_number % 4 == 0) {
            CConnectedDevice& attached = footprint.m_pConnectedDevices->CreateEntry();
            Identify(attached, m_number + 5000000);
            AddBoard(attached.m_hardwareData.m_hardwareList.CreateEntry(), 0);
            CConnectedDevice& behind = attached.m_pConnectedDevices->CreateEntry();
            Identify(behind, m_number + 9000000);
        }
        std::string text;
        if (!footprint.GetDeviceFootprintString(false, text)) {
            std::cerr << CDeviceFootprint::GetLastError() << "\n";
            std::exit(2);
        }
        return text;
    }

private:
    unsigned Number(unsigned below) { return std::uniform_int_distribution<unsigned>(0, below - 1)(m_random); }

    template<std::size_t Count>
    const char* OneOf(const std::array<const char*, Count>& texts)
    {
        return texts[Number(static_cast<unsigned>(Count))];
    }

    template<class... Values>
    static std::string Format(const char* form, Values... values)
    {
        std::array<char, 64> text{};
        std::snprintf(text.data(), text.size(), form, values...);
        return text.data();
    }

    std::string Date() { return Format("20%02u-%02u-%02u", 10 + Number(15), 1 + Number(12), 1 + Number(28)); }
    std::string Index() { return Format("%02u.%02u", 1 + Number(9), Number(10)); }
    std::string Version() { return Format("%u.%u.%u", Number(4), Number(30), Number(100)); }
    std::string PartNumber(unsigned kind)
    {
        return Format("%04u.%04u.%02u", 1100 + kind, 2000 + kind * 7, 2 + kind % 5);
    }

    void Identify(CDeviceFootprintData& data, unsigned serial)
    {
        const std::string part = PartNumber(serial % 20);
        data.m_creationDate = Format("20%02u-%02u-%02uT08:05:59", 20 + serial % 6, 1 + serial % 12, 1 + serial % 28);
        CDeviceData& device = data.m_deviceData;
        device.m_deviceId = part + Format("-%06u-ab", 100000 + serial);
        device.m_partChangeIndex = Index();
        device.m_type = Format("TYPE-%c", 'A' + static_cast<char>(serial % 5));
        device.m_partName = "Signal analyser";
        device.m_productDate = Date();
        AddRecords(device.m_maintenanceData, device.m_serviceData, 2);
        CTestInstruction& instruction = device.m_testInstructions.CreateEntry();
        instruction.m_name = "TI-0";
        instruction.m_version = Version();
    }

    void AddRecords(CMaintenanceData& maintenanceData, CServiceData& serviceData, unsigned count)
    {
        maintenanceData.m_operatingHours = static_cast<long>(Number(40000));
        maintenanceData.m_makeAndBreakCycles = static_cast<long>(Number(500000));
        CMaintenanceInfo& info = maintenanceData.m_maintenanceInfos.CreateEntry();
        info.m_name = "attenuator";
        info.m_value = "checked";
        CProperty& property = info.m_properties.CreateEntry();
        property.m_name = "limit";
        property.m_value = static_cast<long>(Number(100));
        for (unsigned record = 0; record < count; ++record) {
            CMaintenance& maintenance = maintenanceData.m_maintenances.CreateEntry();
            maintenance.m_responsiblePerson = OneOf(s_persons);
            maintenance.m_maintenanceDate = Date();
            maintenance.m_generatedBy = "service tool";
            CMaintenanceTask& task = maintenance.m_maintenanceTasks.CreateEntry();
            task.m_name = "adjustment";
            task.m_done.SetBool(true);
            task.m_result = "ok";
            CService& service = serviceData.m_services.CreateEntry();
            service.m_serviceCode = 100L + static_cast<long>(Number(40));
            service.m_serviceDate = Date();
        }
    }

    void AddBoard(CHardware& board, std::size_t place)
    {
        const unsigned kind = Number(200);
        board.m_id = 1001L + static_cast<long>(place);
        board.m_productId = 400000L + static_cast<long>(kind);
        board.m_partNumber = PartNumber(300 + kind);
        board.m_sn = 100000L + static_cast<long>(Number(900000));
        board.m_partChangeIndex = Index();
        board.m_hardwareCode = static_cast<long>(Number(60));
        board.m_productDate = Date();
        board.m_readCode = static_cast<long>(Number(250));
        board.m_name = OneOf(s_boards);
        board.m_partName = "Synthesizer";
        board.m_externConnected.SetBool(place % 9 == 8);
        board.m_connectorName = Format("X%u", Number(90));
        if (place != 0 && place % 4 != 0) {
            board.m_parentId = 1000L + static_cast<long>(place) -
                               static_cast<long>(Number(static_cast<unsigned>(place < 3 ? place : 3)));
        }
        if (place % 3 == 0) {
            CBPartIdentification& second = board.m_bPartIdentification;
            second.m_name = "module";
            second.m_partNumber = PartNumber(600 + kind);
            second.m_sn = Format("B%u", Number(9000));
            second.m_partChangeIndex = Index();
            second.m_vendorName = "Vendor";
        }
        for (unsigned part = 0; part < 1 + place % 2; ++part) {
            CProgrammablePart& programmable = board.m_programmableParts.CreateEntry();
            programmable.m_name = OneOf(s_parts);
            programmable.m_version = Version();
            programmable.m_partNumber = PartNumber(800 + kind % 50);
            programmable.m_partChangeIndex = Index();
        }
        AddRecords(board.m_maintenanceData, board.m_serviceData, place % 2 == 0 ? 1 : 0);
        CProperty& property = board.m_properties.CreateEntry();
        property.m_name = "slot";
        property.m_value = static_cast<long>(place);
    }

    void AddProduct(CProduct& product, std::size_t place)
    {
        product.m_id = static_cast<long>(place);
        product.m_partNumber = PartNumber(900 + static_cast<unsigned>(place));
    }

    void AddSoftware(CSoftware& software, bool nested)
    {
        software.m_name = OneOf(s_software);
        software.m_version = Version();
        software.m_status = CSoftware::Active;
        software.m_partNumber = PartNumber(700 + Number(40));
        software.m_vendorName = "Vendor";
        software.m_wordSize = 32L;
        software.m_releaseState = "release";
        if (nested) {
            AddSoftware(software.m_pSoftwareList->CreateEntry(), false);
        }
    }

    void System(CSoftwareData& data)
    {
        data.m_bios.m_name = "bios & boot";
        data.m_bios.m_version = Version();
        data.m_operatingSystem.m_name = "system";
        data.m_operatingSystem.m_version = Version();
        data.m_operatingSystem.m_kernelRelease = "6.1.0";
    }

    static constexpr std::array<const char*, 4> s_persons{"A. Schmidt", "B. Jones", "C. Weber", "D. Rossi"};
    static constexpr std::array<const char*, 6> s_boards{"CTRL", "DIG-IO", "SYNTH[A,B1]", "FRONTEND", "PSU", "FAN"};
    static constexpr std::array<const char*, 4> s_parts{"FPGA", "CPLD", "FLASH", "EEPROM"};
    static constexpr std::array<const char*, 5> s_software{"firmware", "driver", "viewer", "licence", "update"};

    unsigned m_number;
    std::mt19937 m_random;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3 || argc > 5) {
        std::cerr << "usage: make_fleet FOLDER COUNT [KILOBYTES [FIRST]]\n";
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    const auto number = [&](int index, unsigned long other) {
        return argc > index ? std::strtoul(argv[index], nullptr, 10) : other;
    };
    const unsigned long count = number(2, 0);
    const std::size_t size = number(3, 100) * 1000;
    const unsigned long first = number(4, 0);
    for (unsigned long place = first; place < first + count; ++place) {
        // No more than a thousand files in a folder, as an archive would have it.
        const std::filesystem::path part = folder / std::to_string(place / 1000);
        std::filesystem::create_directories(part);
        std::ofstream file(part / (std::to_string(place) + ".xml"), std::ios::binary);
        file << CInstrument(static_cast<unsigned>(place)).Text(size);
        if (!file.flush()) {
            std::cerr << "can not write below " << folder << "\n";
            return 2;
        }
    }
    return 0;
}
