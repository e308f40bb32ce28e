#ifndef NYXCONFIG_REPORTASSETS_H
#define NYXCONFIG_REPORTASSETS_H

namespace footprint
{

/// A file of the folder "report", as it stands in each page.
struct CReportAsset
{
    const char* text;
    const char* sha256; ///< hexadecimal
};

extern const CReportAsset reportStyle;
extern const CReportAsset reportScript;

} // namespace footprint

#endif
