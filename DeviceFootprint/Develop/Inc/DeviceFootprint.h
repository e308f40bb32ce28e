#ifndef NYXCONFIG_DEVICEFOOTPRINT_H
#define NYXCONFIG_DEVICEFOOTPRINT_H

/**
 * @file
 * The device footprint as a document, with all its element classes.
 *
 *     CDeviceFootprint footprint;
 *     if (!footprint.Load("in.xml")) {
 *         std::cerr << CDeviceFootprint::GetLastError() << "\n";
 *     }
 *     footprint.m_deviceData.m_maintenanceData.m_operatingHours = 101L;
 *     bool written = false;
 *     footprint.SaveAndWriteHistory("out", "history", written, nullptr);
 */

#include "ConnectedDevices.h"
#include "DeviceDataElements.h"
#include "DeviceFootprintData.h"
#include "HardwareElements.h"
#include "MaintenanceElements.h"
#include "SharedElements.h"
#include "SoftwareElements.h"

#include <iosfwd>
#include <string>

namespace KvDeviceFootprint
{

class CComparatorRulesFactory;

/**
 * A device's footprint as a file, with its history and link file.
 *
 * Operations of type bool return true for success. The words for a failure, where there are any, are in GetLastError().
 *
 * A document is used by one thread at a time. The last error and the exception switch belong to the process, not to a
 * document, and have no lock: threads that use different documents may overwrite each other's error text.
 */
class NYXCONFIG_EXPORT CDeviceFootprint : public CDeviceFootprintData
{
public:
    static const std::string s_ElementName;
    static const std::string DeviceFootprintLinkFileName; ///< "deviceFootprintLink.xml"
    static const std::string LatestHistoryEntryFileName;  ///< ".latest"

    CDeviceFootprint();
    CDeviceFootprint(const CDeviceFootprint& other);
    CDeviceFootprint& operator=(const CDeviceFootprint& other);
    ~CDeviceFootprint() override;

    const std::string& GetElementName() const override;

    /** @name Files
     *  A load does not clear the document first, lists grow by what it reads, and it does not test the checksum.
     *  A save renews `creationDate`, computes `checksum` and records the file in the device's link file; it changes the
     *  document even if it fails later on, and a file that was opened is not removed. Faults of a disk while writing
     * are not noticed. */
    ///@{

    /// Reports "load file error, " and the file name if the file can not be opened.
    bool Load(const std::string& fileName);
    bool Load(std::istream& input);
    /// Reads to the end of the stream. Text before the root is passed over, a second root is loaded over the first one.
    /// @param fileName only serves messages.
    /// @throw std::out_of_range for blank lines at most places, see CXmlStreamReader::NextToken.
    bool Load(std::istream& input, const std::string& fileName);
    /// Saves into @p folder under a name made of `deviceId` and the time. False without a report for an empty folder.
    bool Save(const std::string& folder);
    /// Saves under exactly this name.
    bool SaveAs(const std::string& fullName);
    bool SaveInternal(const std::string& folder, bool createLink);
    bool SaveInternal(std::ostream& output, const std::string& fileName, bool createLink);
    /// The whole document as it would stand in a file, computed checksum included. No link is written.
    /// @param text emptied on failure.
    bool GetDeviceFootprintString(bool updateCreationDate, std::string& text);
    /// The pure file name "DeviceFootprint_<deviceId>_<date>.xml", with "-" for the colons of the time. Renews the date
    /// if asked, or if there is none.
    void GetFileNameForSave(bool updateCreationDate, std::string& fileName);
    /// Pure file name of the last save, no folder. Set before the file is opened.
    const std::string& GetPureFilenameOfLastSave() const { return m_str_FileName; }
    /// Folder and file name of the last save; also of one that failed.
    std::string GetFullFilenameOfLastSave() const { return m_str_Path + m_str_FileName; }
    ///@}

    /** @name History and link file
     *  A history folder holds footprint files and the one-line file ".latest", which names the newest of them. The link
     *  folder of a device is "[type_]partNumber_serialNumber" under a fixed base folder; it holds the link file
     *  (DeviceFootprintLink.h). Nothing here is locked against other processes, and nothing here deletes an entry. */
    ///@{

    /**
     * Saves into @p saveFolder, and into the history if the footprint differs from the latest entry in a way that
     * matters. In that case the history gets the entry, the save folder a copy of it, and the link file names the
     * entry.
     *
     * @param written whether a history entry was written.
     * @param factory what matters; null for the default rules. Not owned.
     */
    bool SaveAndWriteHistory(const std::string& saveFolder, const std::string& historyFolder, bool& written,
                             const CComparatorRulesFactory* factory);
    /// Only the history part. Not needing an entry is a success.
    bool WriteHistory(const std::string& historyFolder, bool& written, const CComparatorRulesFactory* factory);
    /// True if there is no latest entry, if it can not be loaded, if its checksum is wrong, or if it differs by the
    /// rules.
    bool CheckNeedNewHistoryEntry(const std::string& historyFolder, const CComparatorRulesFactory* factory) const;
    /// Writes an entry, ".latest" and the link file. All are tried before a failure is reported.
    bool SaveHistoryInternal(const std::string& historyFolder);
    /// The link folder, made if asked for, without a closing separator. False if `deviceId` has no serial number or the
    /// folder can not be made; @p path is then left alone.
    bool GetDfpLinkFolder(std::string& path, bool createIfMissing) const;
    /// "/var/lib/devicefootprint/". Always true.
    bool GetDeviceFootprintLinkBasePath(std::string& path) const;
    bool GetPathToDeviceFootprintLinkFile(std::string& path, bool createIfMissing) const;
    bool GetPathToDeviceFootprintLinkFile(std::string& path) const;
    /// Puts the last saved file into the link file; the history folder in it stays.
    bool CreateLinkToLatestSavedDfpFile() const;
    /// Puts the history folder and the last saved file into the link file.
    bool CreateLinkToHistoryFolder(const std::string& historyFolder) const;
    ///@}

    /** @name Small files */
    ///@{

    /// Replaces a file's content. Only a failure to open is one.
    bool WriteContentToFile(const std::string& fileName, const std::string& content) const;
    /// Writes @p fileName into the ".latest" of @p folder.
    bool WriteFileNameToFile(const std::string& folder, const std::string& fileName) const;
    /// The file's first line without its line feed; emptied on failure, of which an empty file is one.
    bool GetFirstLineOfFile(const std::string& fileName, std::string& line) const;
    /// The folder with the name that its ".latest" holds; emptied on failure.
    bool GetFileNameFromFile(const std::string& folder, std::string& fullName) const;
    ///@}

    /** @name Merging and comparing
     *  The same document: true, and nothing happens. */
    ///@{
    using CDeviceFootprintData::CopyFrom;
    using CDeviceFootprintData::InsertFrom;
    bool CopyFrom(const CDeviceFootprint& other);
    /// Recursive.
    bool InsertFrom(const CDeviceFootprint& other);
    /// Whether the two are the same under @p rules.
    bool CompareTo(const CDeviceFootprint& other, const CComparatorRules& rules) const;
    ///@}

    /** @name The error word of the process */
    ///@{

    /// Whether a reported failure throws std::exception instead of giving false. Off at load time.
    static void EnableExceptions(bool enable);
    static void DisableExceptions();
    /// The text of the last reported failure, however old: nothing clears it, so do not look at it after a success.
    static std::string GetLastError();
    /// Stores @p message. @return false. @throw std::exception if exceptions are enabled.
    static bool SetLastError(const std::string& message);
    ///@}

private:
    bool RecordLatestSave() const;

    static bool s_b_Exceptions;
    static std::string s_str_LastError;

    std::string m_str_FileName;
    std::string m_str_Path;
    // A constant in all but name: with it set, a link file that can not be written makes the save fail.
    bool m_b_LinkFailureIsError = true;
};

/// Adds "/" to a non-empty path that ends in neither "/" nor a backslash. Differs from FileSystemUtils::AppendSeparator
/// in both points; the two are not to be merged.
NYXCONFIG_EXPORT void ApplySeparator(std::string& path);

} // namespace KvDeviceFootprint

#endif
