#include "DeviceFootprint.h"

#include "AttributeEquality.h"
#include "Checksum.h"
#include "Comparators.h"
#include "DeviceFootprintLink.h"
#include "FileStreams.h"
#include "FileSystemUtils.h"
#include "TextSink.h"
#include "XmlStreams.h"

#include <sys/stat.h>

#include <algorithm>
#include <exception>
#include <sstream>

namespace KvDeviceFootprint
{

// The elements.

DFP_DEFINE_ELEMENT(CProperty)
DFP_DEFINE_LIST(CProperties)
DFP_DEFINE_ELEMENT(CService)
DFP_DEFINE_LIST(CServices)
DFP_DEFINE_ELEMENT(CServiceData)

DFP_DEFINE_ELEMENT(CMaintenanceTask)
DFP_DEFINE_LIST(CMaintenanceTasks)
DFP_DEFINE_ELEMENT(CMaintenance)
DFP_DEFINE_LIST(CMaintenances)
DFP_DEFINE_ELEMENT(CMaintenanceInfo)
DFP_DEFINE_LIST_MEMBERS(CMaintenanceInfos)
DFP_DEFINE_ELEMENT(CMaintenanceData)

DFP_DEFINE_ELEMENT(CTestInstruction)
DFP_DEFINE_LIST(CTestInstructionList)
DFP_DEFINE_ELEMENT(CDeviceData)

DFP_DEFINE_ELEMENT(CBPartIdentification)
DFP_DEFINE_ELEMENT(CProgrammablePart)
DFP_DEFINE_LIST(CProgrammableParts)
DFP_DEFINE_ELEMENT(CHardware)
DFP_DEFINE_LIST(CHardwareList)
DFP_DEFINE_ELEMENT(CProduct)
DFP_DEFINE_LIST(CProductList)
DFP_DEFINE_ELEMENT(CHardwareData)

DFP_DEFINE_ELEMENT(CBios)
DFP_DEFINE_ELEMENT(COperatingSystem)
DFP_DEFINE_ELEMENT_NAME(CSoftware)
DFP_DEFINE_ELEMENT_TABLE(CSoftware)
DFP_DEFINE_LIST(CSoftwareList)
DFP_DEFINE_ELEMENT(CSoftwareData)

namespace
{

/// The part number decides; where a side has none, the name.
template<class T>
bool HaveSamePartNumberOrName(const T& lhs, const T& rhs)
{
    if (lhs.m_partNumber.IsEmpty() || rhs.m_partNumber.IsEmpty()) {
        return AreEqual(lhs.m_name, rhs.m_name);
    }
    return AreEqual(lhs.m_partNumber, rhs.m_partNumber);
}

} // namespace

bool CService::IsSameEntity(const CService& other) const
{
    return AreEqual(m_serviceCode, other.m_serviceCode);
}

bool CMaintenanceTask::IsSameEntity(const CMaintenanceTask& other) const
{
    return AreEqual(m_name, other.m_name);
}

bool CMaintenance::IsSameEntity(const CMaintenance& other) const
{
    return AreEqual(m_responsiblePerson, other.m_responsiblePerson) &&
           AreEqual(m_maintenanceDate, other.m_maintenanceDate);
}

bool CMaintenanceInfo::IsSameEntity(const CMaintenanceInfo& other) const
{
    return AreEqual(m_name, other.m_name);
}

const std::string& CMaintenanceInfos::GetElementName() const
{
    static const std::string name(Tag);
    return name;
}

bool CProgrammablePart::IsSameEntity(const CProgrammablePart& other) const
{
    return HaveSamePartNumberOrName(*this, other);
}

bool CHardware::IsSameEntity(const CHardware& other) const
{
    return AreEqual(m_partNumber, other.m_partNumber) && AreEqual(m_sn, other.m_sn);
}

bool CProduct::IsSameEntity(const CProduct& other) const
{
    return AreEqual(m_partNumber, other.m_partNumber);
}

bool CBios::IsSameEntity(const CBios& other) const
{
    return HaveSamePartNumberOrName(*this, other);
}

bool COperatingSystem::IsSameEntity(const COperatingSystem& other) const
{
    return HaveSamePartNumberOrName(*this, other);
}

bool CSoftware::IsSameEntity(const CSoftware& other) const
{
    return HaveSamePartNumberOrName(*this, other);
}

bool CDeviceData::GetPartNumber(std::string& partNumber) const
{
    std::string deviceId;
    if (m_deviceId.IsEmpty() || !m_deviceId.Get(deviceId)) {
        return false;
    }
    const std::size_t dash = deviceId.find('-');
    if (dash == std::string::npos) {
        return false;
    }
    partNumber = deviceId.substr(0, dash);
    return true;
}

bool CDeviceData::GetSerialNumber(std::string& serialNumber) const
{
    std::string deviceId;
    if (m_deviceId.IsEmpty() || !m_deviceId.Get(deviceId)) {
        return false;
    }
    const std::size_t first = deviceId.find('-');
    const std::size_t second = first == std::string::npos ? first : deviceId.find('-', first + 1);
    if (second == std::string::npos) {
        return false;
    }
    serialNumber = deviceId.substr(first + 1, second - first - 1);
    return true;
}

// Software that holds software.

const std::string CSoftware::Active("active");
const std::string CSoftware::Inactive("inactive");

CSoftware::CSoftware() = default;
CSoftware::CSoftware(const CSoftware& other) = default;
CSoftware::CSoftware(CSoftware&& other) = default;
CSoftware::~CSoftware() = default;

CSoftware& CSoftware::operator=(const CSoftware& other)
{
    if (this != &other) {
        // The source may be an entry of the list that is given up here, so that list lives until the end.
        const COwnedElement<CSoftwareList> previous(std::move(m_pSoftwareList));
        CElement::operator=(other);
        ElementTable::Rows<CSoftware>::Assign(*this, other);
    }
    return *this;
}

CSoftware& CSoftware::operator=(CSoftware&& other)
{
    // As the source may lie in here, there is nothing to gain.
    return *this = static_cast<const CSoftware&>(other);
}

// The content of a document.

DFP_DEFINE_ELEMENT_TABLE(CDeviceFootprintData)

CDeviceFootprintData::CDeviceFootprintData()
{
    m_formatVersion = "02.06";
}

CDeviceFootprintData::CDeviceFootprintData(const CDeviceFootprintData& other) = default;
CDeviceFootprintData& CDeviceFootprintData::operator=(const CDeviceFootprintData& other) = default;
CDeviceFootprintData::~CDeviceFootprintData() = default;

bool CDeviceFootprintData::IsSameEntity(const CDeviceFootprintData& other) const
{
    return AreEqual(m_formatVersion, other.m_formatVersion) &&
           AreEqual(m_deviceData.m_deviceId, other.m_deviceData.m_deviceId);
}

int CDeviceFootprintData::GetRelationship(const CElementNode& other) const
{
    const auto* footprint = dynamic_cast<const CDeviceFootprintData*>(&other);
    if (footprint == nullptr || !IsSameEntity(*footprint)) {
        return eUnrelated;
    }
    if (m_creationDate == footprint->m_creationDate) {
        return eSameAge;
    }
    return m_creationDate < footprint->m_creationDate ? eThisIsOlder : eThisIsNewer;
}

namespace
{

/// Gathers attribute texts for a digest, which takes large pieces faster than small ones.
class CDigestSink : public CTextSink
{
public:
    explicit CDigestSink(CMD5Checksum& algorithm) : CTextSink(4096), m_algorithm(&algorithm) {}

private:
    void Take(const char* text, std::size_t count) override { m_algorithm->add(text, count); }

    CMD5Checksum* m_algorithm;
};

} // namespace

bool CDeviceFootprintData::ComputeChecksum(std::string& checksum)
{
    static const std::string streamName("checksumComputation");
    m_checksum.Clear(); // takes itself out of the digest
    CMD5ChecksumContainer digest;
    CMD5Checksum algorithm;
    algorithm.init();
    CChecksumStream stream(algorithm);
    CDigestSink sink(algorithm);
    CXmlStreamWriter writer(stream, streamName, sink);
    // Not virtual: a connected device must not meet its own override here.
    if (!writer.WriteFirstLine() || !CElementNode::SaveToStream(writer)) {
        return false;
    }
    sink.Drain();
    algorithm.finalize(digest);
    digest.toHex(checksum);
    return !checksum.empty();
}

bool CDeviceFootprintData::ValidateChecksum()
{
    if (m_checksum.IsEmpty()) {
        return true;
    }
    std::string stored;
    m_checksum.Get(stored);
    std::string computed;
    if (!ComputeChecksum(computed)) {
        return false;
    }
    m_checksum = stored;
    return computed == stored;
}

bool CDeviceFootprintData::WriteTo(CXmlStreamWriter& writer)
{
    return writer.WriteFirstLine() && CElementNode::SaveToStream(writer);
}

// Connected devices.

const std::string CConnectedDevice::s_ElementName(Tag);

CConnectedDevice::CConnectedDevice() = default;
CConnectedDevice::CConnectedDevice(const CConnectedDevice& other) = default;
CConnectedDevice& CConnectedDevice::operator=(const CConnectedDevice& other) = default;
CConnectedDevice::~CConnectedDevice() = default;

const std::string& CConnectedDevice::GetElementName() const
{
    return s_ElementName;
}

bool CConnectedDevice::SaveToStream(CXmlStreamWriter& writer)
{
    if (m_checksum.IsEmpty() || !writer.IsForChecksum()) {
        return CElementNode::SaveToStream(writer);
    }
    if (!ValidateChecksum()) {
        return false;
    }
    const std::string line = m_checksum.GetNodeName() + "=\"" + NarrowText(m_checksum.GetValue()) + "\"";
    return writer.AddListEntry(line, true, true);
}

const std::string CConnectedDeviceList::s_ElementName(Tag);

CConnectedDeviceList::CConnectedDeviceList() = default;
CConnectedDeviceList::~CConnectedDeviceList() = default;

// A copy leaves the texts behind. Documents rely on it: what was added as text is not part of a copied footprint.
CConnectedDeviceList::CConnectedDeviceList(const CConnectedDeviceList& other) : CElementNodeList(other) {}

CConnectedDeviceList& CConnectedDeviceList::operator=(const CConnectedDeviceList& other)
{
    if (this != &other) {
        CElementNodeList::operator=(other);
        m_connectedDeviceStrings.clear();
    }
    return *this;
}

const std::string& CConnectedDeviceList::GetElementName() const
{
    return s_ElementName;
}

void CConnectedDeviceList::initAttributeNodes() {}

bool CConnectedDeviceList::IsEmpty() const
{
    return m_connectedDeviceStrings.empty() && CElementNodeList::IsEmpty();
}

bool CConnectedDeviceList::SaveToStream(CXmlStreamWriter& writer)
{
    if (IsEmpty() && IsOptional()) {
        return true;
    }
    if (writer.IsTooDeep()) {
        return false;
    }
    writer.BeginElement(GetElementName());
    for (CConnectedDevice& device : *this) {
        if (!device.SaveToStream(writer)) {
            return false;
        }
    }
    const bool written =
        std::all_of(m_connectedDeviceStrings.begin(), m_connectedDeviceStrings.end(), [&writer](const auto& lines) {
            return std::all_of(lines.begin(), lines.end(), [&](const std::string& line) {
                return writer.AddListEntry(line, &line == &lines.front(), &line == &lines.back());
            });
        });
    writer.EndElement();
    return written;
}

bool CConnectedDeviceList::AddConnectedDeviceFromString(const std::string& text)
{
    return !text.empty() && PrepareConnectedDeviceString(text);
}

namespace
{

const char* const RootEndTag = "</DeviceFootprint>";

/// Cuts the text from @p start on into lines, up to the first empty one. From there on, a root's end tag with one
/// character more ends a line, whatever stands before it.
void CutIntoLines(const std::string& text, std::size_t start, std::vector<std::string>& lines)
{
    for (;;) {
        const std::size_t end = text.find('\n', start);
        if (end != std::string::npos && end > start) {
            lines.push_back(text.substr(start, end - start));
            start = end + 1;
            continue;
        }
        const std::size_t close = text.find(RootEndTag, start);
        if (close == std::string::npos) {
            return;
        }
        lines.push_back(text.substr(start, close - start + std::string(RootEndTag).size() + 1));
        start = close + 1;
    }
}

} // namespace

bool CConnectedDeviceList::PrepareConnectedDeviceString(const std::string& text)
{
    const std::size_t count = m_connectedDeviceStrings.size();
    m_connectedDeviceStrings.emplace_back();
    std::vector<std::string>& lines = m_connectedDeviceStrings.back();
    const std::size_t mark = text.find_first_of("?>"); // either of the two, not the pair
    if (mark == std::string::npos) {
        return RemoveLastAndError("Could not find end of XML header in connected device string.");
    }
    const std::size_t newLine = text.find('\n', mark);
    if (newLine == std::string::npos) {
        return RemoveLastAndError("Could not find newline in connected device string.");
    }
    CutIntoLines(text, newLine + 1, lines);
    // What stands behind the closing tag is dropped.
    while (!lines.empty() && lines.back().find(RootEndTag) == std::string::npos) {
        lines.pop_back();
    }
    if (lines.empty()) {
        return RemoveLastAndError("Could not find analyze connected device string.");
    }
    std::string& firstLine = lines.front();
    std::size_t begin = 0;
    std::size_t length = 0;
    if (getAttributeRange(firstLine, "checksum", begin, length)) {
        return ChangeToConnectedDevice(lines);
    }
    if (!getAttributeRange(firstLine, "formatVersion", begin, length)) {
        return RemoveLastAndError(
            "Could neither find 'checksum' nor 'formatVersion' attribute in connected device string.");
    }
    // A comparison of texts: "10.00" and "1.99" are not less than "02.06" either.
    if (firstLine.compare(begin, length, "02.06") >= 0) {
        return RemoveLastAndError("Connected device should contain a checksum which was not found.");
    }
    std::string checksum;
    try {
        CDeviceFootprint footprint;
        std::istringstream input(text);
        if (!footprint.Load(input)) {
            return RemoveLastAndError("Could not load connected string for checksum calculation.");
        }
        if (!footprint.ComputeChecksum(checksum)) {
            return RemoveLastAndError("Could not calculate a checksum for connected device.");
        }
    } catch (...) {
        // A blank line in the text, for one. The list is as it was also then.
        m_connectedDeviceStrings.resize(count);
        throw;
    }
    firstLine.pop_back(); // the ">" of the tag
    firstLine += " checksum=\"" + checksum + "\">";
    return ChangeToConnectedDevice(lines);
}

bool CConnectedDeviceList::ChangeToConnectedDevice(std::vector<std::string>& lines)
{
    static const std::string from("DeviceFootprint");
    static const std::string to("ConnectedDevice");
    static const char* const error =
        "Cannot replace 'DeviceFootprint' with 'ConnectedDevice' in connected device string.";
    if (lines.empty()) {
        return RemoveLastAndError(error);
    }
    // The number of characters to replace counts from the tag's usual place: of "<DeviceFootprint" it is just the name,
    // of
    // "</DeviceFootprint>" the name and the ">", which the writer adds again.
    for (std::string* line : {&lines.front(), &lines.back()}) {
        const std::size_t place = line->find(from);
        if (place == std::string::npos) {
            return RemoveLastAndError(error);
        }
        line->replace(place, place + from.size() - 1, to);
    }
    return true;
}

bool CConnectedDeviceList::RemoveLastAndError(const char* error)
{
    if (!m_connectedDeviceStrings.empty()) {
        m_connectedDeviceStrings.pop_back();
    }
    return error != nullptr && CDeviceFootprint::SetLastError(error);
}

bool getAttributeRange(const std::string& text, const std::string& name, std::size_t& begin, std::size_t& length)
{
    const std::string opening = name + "=\"";
    const std::size_t place = text.find(opening);
    if (place == std::string::npos) {
        return false;
    }
    const std::size_t value = place + opening.size();
    const std::size_t quote = text.find('"', value);
    if (quote == std::string::npos || quote == value) {
        return false;
    }
    begin = value;
    length = quote - value;
    return true;
}

// The document as a file.

const std::string CDeviceFootprint::s_ElementName("DeviceFootprint");
const std::string CDeviceFootprint::DeviceFootprintLinkFileName("deviceFootprintLink.xml");
const std::string CDeviceFootprint::LatestHistoryEntryFileName(".latest");
bool CDeviceFootprint::s_b_Exceptions = false;
std::string CDeviceFootprint::s_str_LastError;

CDeviceFootprint::CDeviceFootprint() = default;
CDeviceFootprint::CDeviceFootprint(const CDeviceFootprint& other) = default;
CDeviceFootprint& CDeviceFootprint::operator=(const CDeviceFootprint& other) = default;
CDeviceFootprint::~CDeviceFootprint() = default;

const std::string& CDeviceFootprint::GetElementName() const
{
    return s_ElementName;
}

void ApplySeparator(std::string& path)
{
    if (!path.empty() && path.back() != '/' && path.back() != '\\') {
        path += '/';
    }
}

bool CDeviceFootprint::Load(const std::string& fileName)
{
    CInputFile file(fileName);
    if (!file.IsOpen()) {
        return SetLastError("load file error, " + fileName);
    }
    return Load(file.Stream(), fileName);
}

bool CDeviceFootprint::Load(std::istream& input)
{
    return Load(input, std::string());
}

bool CDeviceFootprint::Load(std::istream& input, const std::string& fileName)
{
    CXmlStreamReader reader(input, fileName);
    bool loaded = false;
    while (reader.NextToken()) {
        // The token behind the root is passed over untested, so a second root needs a line before it.
        if (reader.IsElement(GetElementName())) {
            loaded = CElementNode::LoadFromStream(reader);
            if (!loaded) {
                break;
            }
        }
    }
    return loaded;
}

void CDeviceFootprint::GetFileNameForSave(bool updateCreationDate, std::string& fileName)
{
    if (updateCreationDate || m_creationDate.IsEmpty()) {
        m_creationDate.SetCreationDateToCurrent();
    }
    std::string deviceId;
    m_deviceData.m_deviceId.Get(deviceId);
    std::string date;
    m_creationDate.Get(date);
    // The two colons of yyyy-mm-ddThh:mm:ss. A date from a file may be shorter.
    for (const std::size_t colon : {std::size_t{13}, std::size_t{16}}) {
        if (colon < date.size()) {
            date[colon] = '-';
        }
    }
    fileName = "DeviceFootprint_" + deviceId + "_" + date + ".xml";
}

bool CDeviceFootprint::Save(const std::string& folder)
{
    return SaveInternal(folder, true);
}

bool CDeviceFootprint::SaveInternal(const std::string& folder, bool createLink)
{
    if (folder.empty()) {
        return false;
    }
    std::string name;
    GetFileNameForSave(true, name);
    m_str_Path = folder;
    ApplySeparator(m_str_Path);
    m_str_FileName = name;
    const std::string fullName = GetFullFilenameOfLastSave();
    {
        COutputFile file(fullName);
        if (!file.IsOpen()) {
            return SetLastError("save file error, " + fullName);
        }
        if (!SaveInternal(file.Stream(), fullName, false)) {
            return false;
        }
    }
    // The link names the file only once it is complete.
    return !createLink || RecordLatestSave();
}

bool CDeviceFootprint::SaveAs(const std::string& fullName)
{
    const std::size_t separator = fullName.find_last_of("/\\");
    const std::size_t pathLength = separator == std::string::npos ? 0 : separator + 1;
    m_str_Path = fullName.substr(0, pathLength);
    m_str_FileName = fullName.substr(pathLength);
    {
        COutputFile file(fullName);
        if (!file.IsOpen()) {
            return SetLastError("save file error, " + fullName);
        }
        m_creationDate.SetCreationDateToCurrent();
        if (!SaveInternal(file.Stream(), fullName, false)) {
            return false;
        }
    }
    return RecordLatestSave();
}

bool CDeviceFootprint::SaveInternal(std::ostream& output, const std::string& fileName, bool createLink)
{
    std::string checksum;
    if (!ComputeChecksum(checksum)) {
        return false;
    }
    m_checksum = checksum;
    COutStream stream(output);
    CXmlStreamWriter writer(stream, fileName);
    if (!writer.WriteFirstLine() || !CElementNode::SaveToStream(writer)) {
        return false;
    }
    return !createLink || RecordLatestSave();
}

bool CDeviceFootprint::RecordLatestSave() const
{
    if (CreateLinkToLatestSavedDfpFile()) {
        return true;
    }
    SetLastError("Failed to save device footprint link file.");
    return !m_b_LinkFailureIsError;
}

bool CDeviceFootprint::GetDeviceFootprintString(bool updateCreationDate, std::string& text)
{
    if (updateCreationDate) {
        m_creationDate.SetCreationDateToCurrent();
    }
    COutputText output;
    const bool saved = SaveInternal(output.Stream(), std::string(), false);
    text = saved ? output.Text() : std::string();
    return saved;
}

bool CDeviceFootprint::WriteContentToFile(const std::string& fileName, const std::string& content) const
{
    COutputFile file(fileName);
    if (!file.IsOpen()) {
        return SetLastError("save file error, " + fileName);
    }
    file.Stream().write(content.data(), static_cast<std::streamsize>(content.size()));
    return true;
}

bool CDeviceFootprint::WriteFileNameToFile(const std::string& folder, const std::string& fileName) const
{
    std::string path = folder;
    ApplySeparator(path);
    return WriteContentToFile(path + LatestHistoryEntryFileName, fileName);
}

bool CDeviceFootprint::GetFirstLineOfFile(const std::string& fileName, std::string& line) const
{
    line.clear();
    CInputFile file(fileName);
    if (!file.IsOpen()) {
        return SetLastError("load file error, " + fileName);
    }
    if (!std::getline(file.Stream(), line)) {
        line.clear();
        return SetLastError("read file error, " + fileName);
    }
    return true;
}

bool CDeviceFootprint::GetFileNameFromFile(const std::string& folder, std::string& fullName) const
{
    std::string path = folder;
    ApplySeparator(path);
    fullName.clear();
    std::string line;
    if (!GetFirstLineOfFile(path + LatestHistoryEntryFileName, line)) {
        return false;
    }
    fullName = path + line;
    return true;
}

bool CDeviceFootprint::CopyFrom(const CDeviceFootprint& other)
{
    return this == &other || CElementNode::CopyFrom(other);
}

bool CDeviceFootprint::InsertFrom(const CDeviceFootprint& other)
{
    return this == &other || CElementNode::InsertFrom(other, true);
}

bool CDeviceFootprint::CompareTo(const CDeviceFootprint& other, const CComparatorRules& rules) const
{
    return this == &other || Compare(other, rules);
}

void CDeviceFootprint::EnableExceptions(bool enable)
{
    s_b_Exceptions = enable;
}

void CDeviceFootprint::DisableExceptions()
{
    s_b_Exceptions = false;
}

std::string CDeviceFootprint::GetLastError()
{
    return s_str_LastError;
}

bool CDeviceFootprint::SetLastError(const std::string& message)
{
    s_str_LastError = message;
    if (s_b_Exceptions) {
        throw std::exception();
    }
    return false;
}

// History and link file.

namespace
{

bool createDirIfNotExisting(const std::string& path)
{
    return FileSystemUtils::CheckDirExists(path) || FileSystemUtils::CreateDir(path);
}

bool IsSameFile(const std::string& lhs, const std::string& rhs)
{
    struct stat left = {};
    struct stat right = {};
    return stat(lhs.c_str(), &left) == 0 && stat(rhs.c_str(), &right) == 0 && left.st_dev == right.st_dev &&
           left.st_ino == right.st_ino;
}

bool CopyFileInternal(const std::string& source, const std::string& target)
{
    // Opening the target empties it: a save folder that is the history folder would lose the entry.
    if (IsSameFile(source, target)) {
        return true;
    }
    CInputFile input(source);
    COutputFile output(target);
    if (!input.IsOpen() || !output.IsOpen()) {
        return false;
    }
    output.Stream() << input.Stream().rdbuf();
    return true;
}

/// Empty for a relative path to something that does not exist.
std::string AbsolutePath(const std::string& path)
{
    if (!FileSystemUtils::IsRelativePath(path)) {
        return path;
    }
    std::string absolute;
    FileSystemUtils::ToAbsolutePath(path, absolute);
    return absolute;
}

} // namespace

bool CDeviceFootprint::CheckNeedNewHistoryEntry(const std::string& historyFolder,
                                                const CComparatorRulesFactory* factory) const
{
    std::string latestName;
    if (!GetFileNameFromFile(historyFolder, latestName)) {
        return true;
    }
    CDeviceFootprint latest;
    // An entry that somebody changed by hand does not count as the latest.
    if (!latest.Load(latestName) || !latest.ValidateChecksum()) {
        return true;
    }
    CComparatorRules rules;
    const CDefaultHistoryComparatorRulesFactory defaultFactory;
    (factory != nullptr ? *factory : defaultFactory).CreateRules(rules);
    const bool isSame = Compare(latest, rules);
    rules.Clear();
    return !isSame;
}

bool CDeviceFootprint::SaveHistoryInternal(const std::string& historyFolder)
{
    if (!SaveInternal(historyFolder, false)) {
        return false;
    }
    const bool linkOk = CreateLinkToHistoryFolder(historyFolder);
    std::string name;
    GetFileNameForSave(false, name);
    const bool latestOk = WriteFileNameToFile(historyFolder, name);
    if (!linkOk) {
        SetLastError("Failed to write device footprint link file.");
    }
    if (!latestOk) {
        SetLastError("Failed to write .latest file for device footprint history.");
    }
    return (linkOk || !m_b_LinkFailureIsError) && latestOk;
}

bool CDeviceFootprint::WriteHistory(const std::string& historyFolder, bool& written,
                                    const CComparatorRulesFactory* factory)
{
    std::string folder = historyFolder;
    ApplySeparator(folder);
    if (!CheckNeedNewHistoryEntry(folder, factory)) {
        written = false;
        return true;
    }
    written = SaveHistoryInternal(folder);
    return written;
}

bool CDeviceFootprint::SaveAndWriteHistory(const std::string& saveFolder, const std::string& historyFolder,
                                           bool& written, const CComparatorRulesFactory* factory)
{
    written = false;
    if (!CheckNeedNewHistoryEntry(historyFolder, factory)) {
        return SaveInternal(saveFolder, true);
    }
    if (!SaveHistoryInternal(historyFolder)) {
        return false;
    }
    written = true;
    std::string target = saveFolder;
    ApplySeparator(target);
    return CopyFileInternal(GetFullFilenameOfLastSave(), target + m_str_FileName);
}

bool CDeviceFootprint::GetDfpLinkFolder(std::string& path, bool createIfMissing) const
{
    std::string partNumber;
    std::string serialNumber;
    if (!m_deviceData.GetPartNumber(partNumber) || !m_deviceData.GetSerialNumber(serialNumber)) {
        return false;
    }
    const std::string type = NarrowText(m_deviceData.m_type.GetValue());
    const std::string name = (type.empty() ? "" : type + "_") + partNumber + "_" + serialNumber;
    std::string base;
    GetDeviceFootprintLinkBasePath(base);
    if (createIfMissing && !createDirIfNotExisting(base)) {
        return false;
    }
    std::string folder;
    FileSystemUtils::CombinePaths(base, name, folder);
    if (createIfMissing && !createDirIfNotExisting(folder)) {
        return false;
    }
    path = folder;
    return true;
}

bool CDeviceFootprint::GetDeviceFootprintLinkBasePath(std::string& path) const
{
    path = "/var/lib/devicefootprint/";
    return true;
}

bool CDeviceFootprint::GetPathToDeviceFootprintLinkFile(std::string& path, bool createIfMissing) const
{
    if (!GetDfpLinkFolder(path, createIfMissing)) {
        return false;
    }
    FileSystemUtils::AppendSeparator(path, false);
    path += DeviceFootprintLinkFileName;
    return true;
}

bool CDeviceFootprint::GetPathToDeviceFootprintLinkFile(std::string& path) const
{
    return GetPathToDeviceFootprintLinkFile(path, false);
}

bool CDeviceFootprint::CreateLinkToLatestSavedDfpFile() const
{
    const std::string lastSave = GetFullFilenameOfLastSave();
    if (lastSave.empty()) {
        return false;
    }
    const std::string absolute = AbsolutePath(lastSave);
    std::string linkFile; // stays empty if there is no link folder; the link then fails
    GetPathToDeviceFootprintLinkFile(linkFile, true);
    DeviceFootprintLink link(linkFile);
    return link.setLatestDeviceFootprintPath(absolute) && link.write();
}

bool CDeviceFootprint::CreateLinkToHistoryFolder(const std::string& historyFolder) const
{
    const std::string folder = AbsolutePath(historyFolder);
    const std::string lastSave = GetFullFilenameOfLastSave();
    if (lastSave.empty()) {
        return false;
    }
    const std::string absolute = AbsolutePath(lastSave);
    std::string linkFile;
    GetPathToDeviceFootprintLinkFile(linkFile, true);
    DeviceFootprintLink link(linkFile);
    return link.setDeviceFootprintHistoryFolder(folder) && link.setLatestDeviceFootprintPath(absolute) && link.write();
}

} // namespace KvDeviceFootprint
