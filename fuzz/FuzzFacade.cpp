// Loads any file through the facade in both modes and gives it out as text again.

#include "CNyxConfig.h"
#include "FacadeItems.h"
#include "FuzzSupport.h"

#include <stdexcept>

using namespace KvOrdo;

namespace
{

class Bios : public IBiosDescItem
{
public:
    std::wstring getName() const override { return L"bios"; }
    std::wstring getVersion() const override { return L"1.0"; }
    std::wstring getPartNumber() const override { return L"1234.5678.02"; }
    std::wstring getPartChangeIndex() const override { return L"01.02"; }
};

class OperatingSystem : public IOperatingSystemDescItem
{
public:
    std::wstring getName() const override { return L"system"; }
    std::wstring getVersion() const override { return L"2.0"; }
    std::wstring getPartNumber() const override { return L"8765.4321.01"; }
    std::wstring getPartChangeIndex() const override { return L"03.04"; }
};

void LoadAndSave(CNyxConfig& config, const std::string& path, bool throwOnError)
{
    config.loadFile(path, throwOnError);
    // A load leaves these two to the application.
    config.getSoftwareData()->setBiosItem(new Bios);
    config.getSoftwareData()->setOperatingSystemItem(new OperatingSystem);
    config.getDevFp(throwOnError);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    NyxFuzz::Silence();
    const NyxFuzz::MemoryFile file(NyxFuzz::TextOf(data, size));
    for (const bool throwOnError : {false, true}) {
        CNyxConfig config;
        try {
            LoadAndSave(config, file.Path(), throwOnError);
        } catch (const CNyxConfigException&) {
            NyxFuzz::Require(throwOnError, "nothing is thrown unless asked for");
        } catch (const std::out_of_range&) { // blank lines
        }
        NyxTest::DeleteItems(config);
    }
    return 0;
}
