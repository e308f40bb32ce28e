#ifndef NYXCONFIG_VERIFY_H
#define NYXCONFIG_VERIFY_H

#include "ChecksFindings.h"

#include <string>
#include <vector>

namespace footprint
{

/// What became of a path that was to be verified.
struct CVerdict
{
    std::string file;
    std::string trouble; ///< why it could not be checked; empty if it was
    CFindings findings;
};

/// Checks one file.
CVerdict VerifyFile(const std::string& file);

/// The names of all *.xml files that a path stands for, sorted, link files included.
/// @param troubles receives what could not be looked into.
std::vector<std::string> FilesToVerify(const std::string& path, std::vector<CVerdict>& troubles);

} // namespace footprint

#endif
