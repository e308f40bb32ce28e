#include "DeviceFootprintLink.h"

#include "AttributeNode.h"
#include "FileStreams.h"
#include "FileSystemUtils.h"
#include "XmlStreams.h"

namespace KvDeviceFootprint
{

namespace
{

bool IsAbsolute(const std::string& path)
{
    return !path.empty() && !FileSystemUtils::IsRelativePath(path);
}

void WritePathElement(CXmlStreamWriter& writer, const std::string& element, const std::string& path)
{
    writer.BeginElement(element);
    writer.SetAttribute(DeviceFootprintLink::_pathAttributeName, WidenText(path));
    writer.EndElement();
}

/// Whether the reader stands on the element; if so, takes its path. A missing path counts as an empty one.
bool ReadPathElement(CXmlStreamReader& reader, const std::string& element, std::string& path)
{
    if (!reader.IsElement(element)) {
        return false;
    }
    std::wstring value;
    reader.GetAttribute(DeviceFootprintLink::_pathAttributeName, value);
    path = NarrowText(value);
    return true;
}

} // namespace

const std::string DeviceFootprintLink::_rootElementName("DeviceFootprintReference");
const std::string DeviceFootprintLink::_latestDeviceFootprintPathElementName("LatestDeviceFootprint");
const std::string DeviceFootprintLink::_historyPathElementName("DeviceFootprintHistoryFolder");
const std::string DeviceFootprintLink::_pathAttributeName("path");
const std::string DeviceFootprintLink::_fileAttributeName("fileName");

DeviceFootprintLink::~DeviceFootprintLink() = default;

bool DeviceFootprintLink::writeInternal(const std::string& latest, const std::string& history)
{
    if ((!latest.empty() && !IsAbsolute(latest)) || (!history.empty() && !IsAbsolute(history))) {
        return false;
    }
    COutputFile file(_filePath);
    if (!file.IsOpen()) {
        return false;
    }
    COutStream stream(file.Stream());
    CXmlStreamWriter writer(stream, _filePath);
    writer.WriteFirstLine();
    writer.BeginElement(_rootElementName);
    WritePathElement(writer, _latestDeviceFootprintPathElementName, latest);
    WritePathElement(writer, _historyPathElementName, history);
    writer.EndElement();
    return true;
}

bool DeviceFootprintLink::readInternal(const std::string& file, std::string& latest, std::string& history)
{
    CInputFile input(file);
    if (!input.IsOpen()) {
        return false;
    }
    CXmlStreamReader reader(input.Stream(), file);
    bool found = false;
    while (reader.NextToken()) {
        found = ReadPathElement(reader, _latestDeviceFootprintPathElementName, latest) || found;
        found = ReadPathElement(reader, _historyPathElementName, history) || found;
    }
    return found;
}

bool DeviceFootprintLink::CreateFromFile(const std::string& file, DeviceFootprintLink& link)
{
    std::string latest;
    std::string history;
    if (!link.readInternal(file, latest, history)) {
        return false;
    }
    link.setLatestDeviceFootprintPath(latest);
    link.setDeviceFootprintHistoryFolder(history);
    link._filePath = file;
    return true;
}

bool DeviceFootprintLink::setLatestDeviceFootprintPath(const std::string& path)
{
    if (!IsAbsolute(path)) {
        return false;
    }
    _latestDeviceFootprintPath = path;
    return true;
}

bool DeviceFootprintLink::setDeviceFootprintHistoryFolder(const std::string& path)
{
    if (!IsAbsolute(path)) {
        return false;
    }
    _deviceFootprintHistoryFolder = path;
    return true;
}

bool DeviceFootprintLink::write()
{
    if (_latestDeviceFootprintPath.empty() && _deviceFootprintHistoryFolder.empty()) {
        return false;
    }
    std::string latest = _latestDeviceFootprintPath;
    std::string history = _deviceFootprintHistoryFolder;
    if (latest.empty() || history.empty()) {
        std::string latestInFile;
        std::string historyInFile;
        // A new file can not be read; then there is nothing to keep.
        if (readInternal(_filePath, latestInFile, historyInFile)) {
            latest = latest.empty() ? latestInFile : latest;
            history = history.empty() ? historyInFile : history;
        }
    }
    return writeInternal(latest, history);
}

} // namespace KvDeviceFootprint
