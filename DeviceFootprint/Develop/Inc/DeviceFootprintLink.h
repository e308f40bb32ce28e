#ifndef NYXCONFIG_DEVICEFOOTPRINTLINK_H
#define NYXCONFIG_DEVICEFOOTPRINTLINK_H

#include "nyxconfig_export.h"

#include <string>

namespace KvDeviceFootprint
{

/**
 * A device's link file, the fixed place where other software finds the device's latest footprint and its history
 * folder:
 *
 *     <?xml version="1.0" encoding="utf-8" ?>
 *     <DeviceFootprintReference>
 *       <LatestDeviceFootprint path="/absolute/path/of/the/file.xml"/>
 *       <DeviceFootprintHistoryFolder path="/absolute/path/of/the/folder"/>
 *     </DeviceFootprintReference>
 *
 * An empty path is left out with its attribute. Paths are bytes of no particular encoding. No operation reports a text.
 * There is no lock: between the reading and the rewriting of write(), another writer's change is lost.
 */
class NYXCONFIG_EXPORT DeviceFootprintLink
{
public:
    static const std::string _rootElementName;
    static const std::string _latestDeviceFootprintPathElementName;
    static const std::string _historyPathElementName;
    static const std::string _pathAttributeName;
    static const std::string _fileAttributeName; ///< "fileName"; no operation uses it.

    DeviceFootprintLink() = default;
    /// Reads nothing.
    explicit DeviceFootprintLink(const std::string& filePath) : _filePath(filePath) {}
    DeviceFootprintLink(const DeviceFootprintLink&) = default;
    DeviceFootprintLink& operator=(const DeviceFootprintLink&) = default;
    virtual ~DeviceFootprintLink();

    /// Writes the two paths to the file. False if one is relative or the file can not be opened.
    virtual bool writeInternal(const std::string& latest, const std::string& history);
    /// Reads the two paths, wherever their elements stand; a later one overwrites an earlier one. True if either
    /// element was found, also one without a path.
    virtual bool readInternal(const std::string& file, std::string& latest, std::string& history);

    /// Reads a link file into @p link. Relative paths in it are passed over. On failure @p link stays as it was.
    static bool CreateFromFile(const std::string& file, DeviceFootprintLink& link);

    /// Refuses an empty or relative path.
    bool setLatestDeviceFootprintPath(const std::string& path);
    /// Refuses an empty or relative path.
    bool setDeviceFootprintHistoryFolder(const std::string& path);
    const std::string& getLatestDeviceFootprintPath() const { return _latestDeviceFootprintPath; }
    const std::string& getDeviceFootprintHistoryFolder() const { return _deviceFootprintHistoryFolder; }

    /// Writes the file. A path that this object does not know is kept from the file on disk. False if it knows neither.
    bool write();

private:
    std::string _filePath;
    std::string _latestDeviceFootprintPath;
    std::string _deviceFootprintHistoryFolder;
};

} // namespace KvDeviceFootprint

#endif
