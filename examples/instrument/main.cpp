// An instrument's application in small: reads a footprint, changes it, builds a complete one and keeps its history.
// Usage: instrument FOOTPRINT FOLDER

#include "Building.h"
#include "Printing.h"

#include <CNyxConfig.h>
#include <DeviceFootprint.h>

#include <sys/stat.h>

#include <chrono>
#include <exception>
#include <iostream>
#include <string>
#include <thread>

using KvDeviceFootprint::CDeviceFootprint;
using KvOrdo::CNyxConfig;

namespace
{

void ReadAndChange(const std::string& footprint, const std::string& folder)
{
    PrintStep("Reading " + footprint);
    CNyxConfig config;
    config.loadFile(footprint, false);
    PrintInstrument(config);

    PrintStep("Changing the part name and saving into " + folder);
    config.getDeviceData()->setPartName(L"Instrument on loan");
    SetPrograms(*config.getSoftwareData());
    const std::string saved = config.saveFile(folder, false);
    std::cout << "  saved as " << saved << "\n";

    PrintStep("Loading it again");
    CNyxConfig again;
    again.loadFile(saved, false);
    PrintInstrument(again);
    FreeItems(again);
    FreeItems(config);
}

std::string BuildAndSave(const std::string& folder)
{
    PrintStep("Building a complete instrument and saving it");
    CNyxConfig config;
    BuildInstrument(config);
    std::string saved = config.saveFile(folder, true);
    std::cout << "  saved as " << saved << "\n";
    FreeItems(config);

    PrintStep("Loading it with a new facade");
    CNyxConfig loaded;
    loaded.loadFile(saved, true);
    PrintInstrument(loaded);
    FreeItems(loaded);
    return saved;
}

void SaveWithHistory(CDeviceFootprint& footprint, const std::string& folder, const std::string& history)
{
    bool written = false;
    const bool saved = footprint.SaveAndWriteHistory(folder, history, written, nullptr);
    if (!saved) {
        std::cout << "  failed: " << CDeviceFootprint::GetLastError() << "\n";
        return;
    }
    std::cout << "  saved; history entry: " << (written ? "yes, something that matters has changed" : "no") << "\n";
}

void KeepHistory(const std::string& file, const std::string& folder)
{
    const std::string history = folder + "/history";
    mkdir(history.c_str(), 0755);
    CDeviceFootprint footprint;
    if (!footprint.Load(file)) {
        std::cout << "  failed: " << CDeviceFootprint::GetLastError() << "\n";
        return;
    }
    // File names carry the second of the save.
    const auto nextSecond = [] { std::this_thread::sleep_for(std::chrono::milliseconds(1100)); };

    PrintStep("Saving with history, for the first time");
    SaveWithHistory(footprint, folder, history);
    nextSecond();
    PrintStep("Saving again: only the date is new");
    SaveWithHistory(footprint, folder, history);
    nextSecond();
    PrintStep("Saving with one operating hour more");
    footprint.m_deviceData.m_maintenanceData.m_operatingHours = 101L;
    SaveWithHistory(footprint, folder, history);
    std::string latest;
    if (footprint.GetFileNameFromFile(history, latest)) {
        std::cout << "  latest entry: " << latest << "\n";
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: instrument FOOTPRINT FOLDER\n";
        return 2;
    }
    try {
        ReadAndChange(argv[1], argv[2]);
        const std::string saved = BuildAndSave(argv[2]);
        KeepHistory(saved, argv[2]);
    } catch (const KvOrdo::CException& exception) {
        std::cerr << "stopped: " << exception.getMessage() << "\n";
        return 1;
    } catch (const std::exception& exception) {
        std::cerr << "stopped: " << exception.what() << "\n";
        return 1;
    }
    return 0;
}
