#include "CNyxConfig.h"

#include "CHwTestUtilities.h"
#include "ErrorReport.h"

#include <QString>

namespace KvOrdo
{

CNyxConfig::CNyxConfig()
{
    // The property is asked for, and traced where traces are on, but the value that counts is always 1: a board's part
    // numbers are read as a list.
    m_testKeyDependency = CHwTestUtilities::initTestOutput(QString::fromLatin1("TestFeatures/Generic"),
                                                           QString::fromLatin1("TestKeyDependency"), QString());
    m_testKeyDependency = 1;
}

CNyxConfig::~CNyxConfig() = default;

void CNyxConfig::printLastError() const
{
    WriteError(KvDeviceFootprint::CDeviceFootprint::GetLastError());
}

void CNyxConfig::loadFile(const std::string& fileName, bool throwOnError)
{
    if (!m_devFp.Load(fileName)) {
        printLastError();
    }
    fillDeviceDataFromFootprint(throwOnError);
    fillHardwareDataFromFootprint(throwOnError);
    fillSoftwareDataFromFootprint(throwOnError);
}

void CNyxConfig::fillDeviceFootprint(bool throwOnError)
{
    m_devFp = KvDeviceFootprint::CDeviceFootprint();
    fillDeviceDataIntoFootprint(throwOnError);
    fillHardwareDataIntoFootprint(throwOnError);
    fillSoftwareDataIntoFootprint(throwOnError);
}

std::string CNyxConfig::saveFile(const std::string& folder, bool throwOnError)
{
    fillDeviceFootprint(throwOnError);
    if (!m_devFp.Save(folder)) {
        printLastError();
    }
    return m_devFp.GetFullFilenameOfLastSave();
}

void CNyxConfig::saveFileAs(const std::string& fileName, bool throwOnError)
{
    fillDeviceFootprint(throwOnError);
    if (!m_devFp.SaveAs(fileName)) {
        printLastError();
    }
}

std::string CNyxConfig::getDevFp(bool throwOnError)
{
    fillDeviceFootprint(throwOnError);
    std::string text;
    if (!m_devFp.GetDeviceFootprintString(true, text)) {
        printLastError();
    }
    return text;
}

void CNyxConfig::addHwItem(IHwBoardDescItem* item)
{
    if (item == nullptr) {
        WriteError(std::string("Attention: adding NULL to m_hwDescItems"));
    }
    auto* board = dynamic_cast<HwBoardDescItem*>(item);
    if (item != nullptr && board == nullptr) {
        WriteError(std::string("CNyxConfig::addHwItem(): item must be a HwBoardDescItem"));
        return;
    }
    m_hwDescItems.push_back(board);
    if (m_hwDescItems.back() == nullptr) {
        WriteError(std::string("Attention: added NULL to m_hwDescItems"));
    }
}

std::list<DeviceDataDescItem*> CNyxConfig::getDeviceDataDescItems()
{
    return {getDeviceData()};
}

} // namespace KvOrdo
