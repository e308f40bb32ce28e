#ifndef NYXCONFIG_CONNECTEDDEVICES_H
#define NYXCONFIG_CONNECTEDDEVICES_H

#include "DeviceFootprintData.h"
#include "ElementNodeList.h"

#include <cstddef>
#include <string>
#include <vector>

namespace KvDeviceFootprint
{

/// The footprint of a device attached to the instrument, as a tree. It may have connected devices in turn.
class NYXCONFIG_EXPORT CConnectedDevice : public CDeviceFootprintData
{
public:
    static constexpr const char* Tag = "ConnectedDevice";
    static const std::string s_ElementName;

    CConnectedDevice();
    CConnectedDevice(const CConnectedDevice& other);
    CConnectedDevice& operator=(const CConnectedDevice& other);
    ~CConnectedDevice() override;

    const std::string& GetElementName() const override;
    /// For a checksum, a device with a checksum of its own is validated and enters with that alone; false if it is
    /// wrong. Otherwise the whole device is written, with its checksum as it stands.
    bool SaveToStream(CXmlStreamWriter& writer) override;
};

/**
 * The footprints of attached devices, in two forms: parsed entries, which a load makes, and texts, which
 * AddConnectedDeviceFromString() adds. A text is kept as lines and written back as it came, apart from its first and
 * last tag and the indentation; the next load gives it as an entry.
 *
 * A copy of a list holds no texts.
 */
class NYXCONFIG_EXPORT CConnectedDeviceList : public CElementNodeList<CConnectedDevice>
{
public:
    static constexpr const char* Tag = "ConnectedDeviceList";
    static const std::string s_ElementName;

    CConnectedDeviceList();
    CConnectedDeviceList(const CConnectedDeviceList& other);
    CConnectedDeviceList& operator=(const CConnectedDeviceList& other);
    ~CConnectedDeviceList() override;

    const std::string& GetElementName() const override;
    void initAttributeNodes() override;
    bool IsEmpty() const override;
    /// The entries first, then the texts in the order of adding. A text behind an entry without children leaves that
    /// entry's tag unclosed: the result is ill-formed.
    bool SaveToStream(CXmlStreamWriter& writer) override;

    /**
     * Adds a device by its complete footprint text, as CDeviceFootprint::GetDeviceFootprintString gives it. A checksum
     * is taken over untested; a footprint of a format before "02.06" without one gets one.
     *
     * @return false without a report for an empty text; false with a report if the text can not be taken apart. The
     * list is then as it was.
     */
    bool AddConnectedDeviceFromString(const std::string& text);
    /// The work of AddConnectedDeviceFromString().
    bool PrepareConnectedDeviceString(const std::string& text);
    /// Renames the root's tags in the first and the last of @p lines, and takes the ">" off the last one: the writer
    /// adds it. On failure the text added last is dropped.
    bool ChangeToConnectedDevice(std::vector<std::string>& lines);
    /// Drops the text added last and reports @p error unless it is null. Always false.
    bool RemoveLastAndError(const char* error);

    /// One inner vector per text: its lines, without XML declaration and line feeds.
    std::vector<std::vector<std::string>> m_connectedDeviceStrings;
};

/// Finds the value of an attribute in a line: the first place of the name followed by `="`, up to the next `"`. It
/// knows no XML: a name that ends the name of another attribute matches as well.
/// @return false, with the outputs left alone, if there is none or it is empty.
NYXCONFIG_EXPORT bool getAttributeRange(const std::string& text, const std::string& name, std::size_t& begin,
                                        std::size_t& length);

} // namespace KvDeviceFootprint

#endif
