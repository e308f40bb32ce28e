#ifndef NYXCONFIG_DEVICEFOOTPRINTDATA_H
#define NYXCONFIG_DEVICEFOOTPRINTDATA_H

#include "DeviceDataElements.h"
#include "ElementTable.h"
#include "HardwareElements.h"
#include "SoftwareElements.h"

#include <string>

namespace KvDeviceFootprint
{

class CConnectedDeviceList;

/**
 * The content of one device's footprint: the root attributes and the top-level children. CDeviceFootprint is this
 * content as a file, CConnectedDevice the same content inside the footprint of another device. The tag is left to these
 * two.
 *
 * Copying copies everything but the connected devices that the list holds as text.
 */
class NYXCONFIG_EXPORT CDeviceFootprintData : public CElement<CDeviceFootprintData>
{
    DFP_UNNAMED_ELEMENT(CDeviceFootprintData)

public:
    DFP_ATTRIBUTE(formatVersion);                   ///< "02.06" after construction; the only attribute with a default.
    DFP_ATTRIBUTE_OF(CTimeAttribute, creationDate); ///< Set to the current time by each save.
    DFP_ATTRIBUTE(generatedBy); ///< Kept from a load or a merge; the library itself never writes it.
    DFP_ATTRIBUTE_OF(CReadOnlyAttribute, checksum); ///< Digest of the rest in hexadecimal, see ComputeChecksum().

    DFP_CHILD(CDeviceData, deviceData);
    DFP_CHILD(CHardwareData, hardwareData);
    DFP_CHILD(CSoftwareData, softwareData);
    DFP_OWNED_CHILD(CConnectedDeviceList, ConnectedDevices); ///< Never null.
    DFP_ELEMENT_END

public:
    /// By `formatVersion`, `deviceId` and the seconds of `creationDate`. A change of the format version makes two
    /// footprints of one device count as different devices. A load sets no seconds, so two loaded footprints of one
    /// device are of the same age, whatever their dates say.
    int GetRelationship(const CElementNode& other) const override;

    /// Equal `formatVersion` and equal `deviceId`, two empty values counting as equal.
    bool IsSameEntity(const CDeviceFootprintData& other) const;

    /**
     * Computes the MD5 digest of the content's canonical form: the text `name="value"` of each non-empty attribute but
     * the checksum itself, escaped as in a file, with nothing between them, attributes before children, both sorted by
     * name. A connected device that has a checksum enters with that alone, once it was found right.
     *
     * Leaves the attribute `checksum` empty on every path; the caller puts a value back.
     *
     * @param checksum 32 lower-case hexadecimal digits on success.
     * @return false if the content can not be written or a connected device's checksum is wrong.
     */
    bool ComputeChecksum(std::string& checksum);
    /// True if there is no checksum or the right one; digits of another case are wrong. The content is unchanged,
    /// except that `checksum` stays empty if the digest could not be computed. Reports nothing of its own.
    bool ValidateChecksum();
    /// Writes XML declaration and content.
    bool WriteTo(CXmlStreamWriter& writer);
};

} // namespace KvDeviceFootprint

#endif
