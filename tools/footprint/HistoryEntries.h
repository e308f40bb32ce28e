#ifndef NYXCONFIG_HISTORYENTRIES_H
#define NYXCONFIG_HISTORYENTRIES_H

#include "DeviceFootprint.h"

#include <string>
#include <vector>

namespace footprint
{

/// Whether a footprint is as its device wrote it.
enum class EEntryState
{
    eIntact,
    eNoChecksum,
    eWrongChecksum,
    eUnreadable
};

/// That of a document or of a connected device, which is the same afterwards.
EEntryState StateOf(KvDeviceFootprint::CDeviceFootprintData& document);

/// Whether a device would write a new entry after such a one, whatever is in it.
constexpr bool IsDamaged(EEntryState state)
{
    return state == EEntryState::eWrongChecksum || state == EEntryState::eUnreadable;
}

/// A file "DeviceFootprint_<deviceId>_<date>.xml" of a history folder.
struct CHistoryName
{
    std::string file;     ///< without the folder
    std::string deviceId; ///< as the name has it
    std::string date;     ///< yyyy-mm-ddThh-mm-ss or yyyy-mm-dd; empty if there is none in the name
};

/// The entries of a history folder by their dates; those without one come first.
/// @throw std::filesystem::filesystem_error if the folder can not be read.
std::vector<CHistoryName> HistoryNames(const std::string& folder);

/// What the file ".latest" of a history folder says.
struct CLatestName
{
    bool isThere = false;    ///< there is such a file, with a name in it
    bool isDangling = false; ///< it names what is not there
    std::string file;        ///< the name
};

CLatestName LatestName(const std::string& folder);

} // namespace footprint

#endif
