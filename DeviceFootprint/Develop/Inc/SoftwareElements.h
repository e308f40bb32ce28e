#ifndef NYXCONFIG_SOFTWAREELEMENTS_H
#define NYXCONFIG_SOFTWAREELEMENTS_H

#include "ElementNodeList.h"
#include "ElementTable.h"
#include "SharedElements.h"

/**
 * @file
 * What runs on the instrument:
 *
 *     SoftwareData
 *       Bios
 *       OperatingSystem
 *       SoftwareList      of Software
 *         SoftwareList    of Software, and so on
 *         Properties      (SharedElements.h)
 *
 * Two entries are the same entity if their part numbers are equal; if either has none, if their names are equal.
 */

namespace KvDeviceFootprint
{

/// The device's BIOS.
class NYXCONFIG_EXPORT CBios : public CElement<CBios>
{
    DFP_ELEMENT(CBios, "Bios")

public:
    DFP_ATTRIBUTE(name);            ///< Name. Identity key when a part number is missing.
    DFP_ATTRIBUTE(version);         ///< Version.
    DFP_ATTRIBUTE(partNumber);      ///< Part number. Identity key.
    DFP_ATTRIBUTE(partChangeIndex); ///< Part change index.
    DFP_ELEMENT_END

public:
    /// Equal `partNumber`; equal `name` if either side has no part number.
    bool IsSameEntity(const CBios& other) const;
};

/// The device's operating system.
class NYXCONFIG_EXPORT COperatingSystem : public CElement<COperatingSystem>
{
    DFP_ELEMENT(COperatingSystem, "OperatingSystem")

public:
    DFP_ATTRIBUTE(name);                    ///< Name. Identity key when a part number is missing.
    DFP_ATTRIBUTE(version);                 ///< Version.
    DFP_ATTRIBUTE(partNumber);              ///< Part number. Identity key.
    DFP_ATTRIBUTE(partChangeIndex);         ///< Part change index.
    DFP_ATTRIBUTE(imageName);               ///< Name of the installed image.
    DFP_ATTRIBUTE(imageVersion);            ///< Version of the installed image.
    DFP_ATTRIBUTE(windowsSuiteMask);        ///< Suite mask, on a system that has one.
    DFP_ATTRIBUTE(windowsProductType);      ///< Product type, on a system that has one.
    DFP_ATTRIBUTE(servicePackDescription);  ///< Service pack text.
    DFP_ATTRIBUTE(servicePackMajorVersion); ///< Service pack major version.
    DFP_ATTRIBUTE(servicePackMinorVersion); ///< Service pack minor version.
    DFP_ATTRIBUTE(systemWordSize);          ///< Word size of the system.
    DFP_ATTRIBUTE(systemLanguage);          ///< Language of the system.
    DFP_ATTRIBUTE(kernelRelease);           ///< Kernel release.
    DFP_ATTRIBUTE(kernvelVersion);          ///< Kernel version. Files carry the name in this form; it must stay so.
    DFP_ATTRIBUTE(buildVersion);            ///< Build version.
    DFP_ELEMENT_END

public:
    /// Equal `partNumber`; equal `name` if either side has no part number.
    bool IsSameEntity(const COperatingSystem& other) const;
};

class CSoftwareList;

/// A software package, which may hold further packages.
class NYXCONFIG_EXPORT CSoftware : public CElement<CSoftware>
{
    DFP_ELEMENT(CSoftware, "Software")

public:
    static const std::string Active;   ///< "active", a value of `status` for the application.
    static const std::string Inactive; ///< "inactive", likewise.

    DFP_ATTRIBUTE(name);            ///< Name. Identity key when a part number is missing.
    DFP_ATTRIBUTE(version);         ///< Version.
    DFP_ATTRIBUTE(status);          ///< State of the package: any text.
    DFP_ATTRIBUTE(partNumber);      ///< Part number. Identity key.
    DFP_ATTRIBUTE(partChangeIndex); ///< Part change index, dd.dd.
    DFP_ATTRIBUTE(sn);              ///< Serial number.
    DFP_ATTRIBUTE(vendorName);      ///< Vendor's name.
    DFP_ATTRIBUTE(wordSize);        ///< Word size.
    DFP_ATTRIBUTE(configuration);   ///< Configuration.
    DFP_ATTRIBUTE(releaseState);    ///< Release state.
    DFP_ATTRIBUTE(architecture);    ///< Architecture.

    DFP_OWNED_CHILD(CSoftwareList, SoftwareList); ///< The packages inside; never null.
    DFP_CHILD(CProperties, properties);
    DFP_ELEMENT_END

public:
    /// Equal `partNumber`; equal `name` if either side has no part number.
    bool IsSameEntity(const CSoftware& other) const;
};

class NYXCONFIG_EXPORT CSoftwareList : public CElementNodeList<CSoftware>
{
    DFP_LIST(CSoftwareList, "SoftwareList")
};

/// All software of the device.
class NYXCONFIG_EXPORT CSoftwareData : public CElement<CSoftwareData>
{
    DFP_ELEMENT(CSoftwareData, "SoftwareData")

public:
    DFP_CHILD(CBios, bios);
    DFP_CHILD(COperatingSystem, operatingSystem);
    DFP_CHILD(CSoftwareList, softwareList);
    DFP_ELEMENT_END
};

} // namespace KvDeviceFootprint

#endif
