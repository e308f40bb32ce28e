#ifndef NYXCONFIG_LOADING_H
#define NYXCONFIG_LOADING_H

#include "DeviceFootprint.h"

#include <memory>
#include <streambuf>
#include <string>
#include <vector>

namespace footprint
{

/// While it lives, nothing that the library says on std::cout goes to standard output; LoadFootprint() hears it.
class CLibraryTalk
{
public:
    CLibraryTalk();
    CLibraryTalk(const CLibraryTalk&) = delete;
    CLibraryTalk& operator=(const CLibraryTalk&) = delete;
    ~CLibraryTalk();

private:
    std::unique_ptr<std::streambuf> m_listener;
    std::streambuf* m_former;
};

/// Loads a footprint file. A file that has no footprint in it is a failure too.
/// @param document an empty one.
/// @param error words for the failure, with the file's name; harmless for a terminal.
/// @param unknownTags if given, and a CLibraryTalk lives: the tags that the library does not know and has left out,
///        as they stand in the file.
/// @return whether @p document holds the file's footprint.
bool LoadFootprint(const std::string& file, KvDeviceFootprint::CDeviceFootprint& document, std::string& error,
                   std::vector<std::string>* unknownTags = nullptr);

/// The names of the footprint files that a path stands for, sorted: the file itself, or the *.xml files in a folder and
/// its subfolders, without link files. Empty if there are none.
/// @throw std::filesystem::filesystem_error if the path is missing or can not be read.
std::vector<std::string> FootprintFiles(const std::string& path);

} // namespace footprint

#endif
