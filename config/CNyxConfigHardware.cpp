#include "CNyxConfig.h"

#include "CLocale.h"
#include "ErrorReport.h"
#include "ItemOwner.h"

#include <algorithm>
#include <cerrno>
#include <cwchar>
#include <iostream>
#include <sstream>
#include <unordered_map>

namespace KvOrdo
{

using namespace KvDeviceFootprint;

namespace
{

/// Reports each pair of equal ids among those given, the later one with each earlier one.
class CUniqueIds
{
public:
    explicit CUniqueIds(const char* message) : m_message(message) {}

    void Add(long id, bool throwOnError)
    {
        unsigned& earlier = m_counts[id];
        for (unsigned i = 0; i < earlier; ++i) {
            ReportError(m_message, throwOnError);
        }
        ++earlier;
    }

private:
    const char* m_message;
    std::unordered_map<long, unsigned> m_counts;
};

/// The decimal number at the start of a text.
struct ParsedNumber
{
    long value;
    int error; ///< as errno tells it
    std::wstring rest;
};

ParsedNumber ParseNumber(const std::wstring& text)
{
    ParsedNumber number = {0, 0, {}};
    wchar_t* end = nullptr;
    errno = 0;
    number.value = wcstol_l(text.c_str(), &end, 10, CLocale());
    number.error = errno;
    number.rest = end;
    return number;
}

void RemoveBlanks(std::wstring& text)
{
    text.erase(std::remove(text.begin(), text.end(), L' '), text.end());
}

/// The number after @p running of a board on path @p path. Unsigned, in which a number beyond the range wraps.
long NextBoardId(long running, long path)
{
    const unsigned long next = path != running / 1000 ? static_cast<unsigned long>(path) * 1000UL + 1UL
                                                      : static_cast<unsigned long>(running) + 1UL;
    return static_cast<long>(next);
}

} // namespace

void CNyxConfig::fillHardwareDataFromFootprint(bool throwOnError)
{
    m_conversionError = 0;
    CHardwareList& boards = m_devFp.m_hardwareData.m_hardwareList;
    const int count = static_cast<int>(boards.size());
    int index = 0;
    for (CHardware& hardware : boards) {
        m_hwDescItems.push_back(fillHwBoardFromFootprint(hardware, index++, count, throwOnError));
    }
    // Over the whole list: boards of an earlier load take part.
    CUniqueIds boardIds("CNyxConfig::fillHardwareDataFromFootprint: <Hardware> id muss eindeutig sein!");
    for (const HwBoardDescItem* item : m_hwDescItems) {
        if (item != nullptr) {
            boardIds.Add(item->getId(), throwOnError);
        }
    }
    for (CProduct& product : m_devFp.m_hardwareData.m_productList) {
        m_productDescItems.push_back(fillProductFromFootprint(product, throwOnError));
    }
    CUniqueIds productIds("CNyxConfig::fillHardwareDataFromFootprint: <Product> id muss eindeutig sein!");
    for (const CProductDescItem* item : m_productDescItems) {
        productIds.Add(item->getId(), throwOnError);
    }
}

long CNyxConfig::serialNumber(const std::wstring& text, const std::wstring& label, bool throwOnError)
{
    if (text.empty()) {
        return 0;
    }
    const ParsedNumber number = ParseNumber(text.substr(0, 6));
    m_conversionError = number.error;
    if (number.error != 0 || !number.rest.empty()) {
        std::wostringstream message;
        message << label << L"> sn has invalid Syntax";
        // The stream's address is what has always been printed here, not its text; readers of the output know it so.
        std::wcerr << static_cast<const void*>(&message) << std::endl;
        if (throwOnError) {
            throw CNyxConfigException(message.str());
        }
    }
    return number.value;
}

long CNyxConfig::revisionNumber(const std::wstring& part)
{
    const ParsedNumber number = ParseNumber(part);
    // An error of an earlier conversion counts until the next serial number.
    m_conversionError = number.error != 0 ? number.error : m_conversionError;
    if (m_conversionError != 0 || !number.rest.empty()) {
        WriteError(L"Error converting " + part + L" to long: endptr: " + number.rest);
    }
    return number.value;
}

void CNyxConfig::addPartNumbers(std::wstring text, HwBoardDescItem& board)
{
    RemoveBlanks(text);
    std::size_t begin = 0;
    for (std::size_t comma = text.find(L','); comma != std::wstring::npos; comma = text.find(L',', begin)) {
        board.setPartNumberVariant(text.substr(begin, comma - begin));
        begin = comma + 1;
    }
    board.setPartNumberVariant(text.substr(begin));
}

HwBoardDescItem* CNyxConfig::fillHwBoardFromFootprint(CHardware& hardware, int index, int count, bool throwOnError)
{
    // The count comes first, and the index counts from 0: the first of three boards reads "<Hardware 3 of 0".
    const std::wstring label = L"<Hardware " + std::to_wstring(count) + L" of " + std::to_wstring(index);

    assertNotEmpty(getCAttributeStrValue(hardware.m_id, throwOnError), label + L"> id", throwOnError);
    const long id = getCAttributeLongValue(hardware.m_id, throwOnError);
    std::wstring name;
    unsigned int variantOfName = 0; // not used
    unsigned int option = 0;
    extractNamePathAndVariantOption(getCAttributeStrValue(hardware.m_name, throwOnError), name, variantOfName, option);
    assertNotEmpty(name, label + L"> name", throwOnError);
    const std::wstring partNumbers = getCAttributeStrValue(hardware.m_partNumber, throwOnError);
    const long serial = serialNumber(getCAttributeStrValue(hardware.m_sn, throwOnError), label, throwOnError);
    const std::wstring partChangeIndex = getCAttributeStrValue(hardware.m_partChangeIndex, throwOnError);
    assertValidPartChangeIndex(partChangeIndex, label + L"> partChangeIndex", throwOnError);
    // Without a point both parts are the whole text.
    const std::size_t point = partChangeIndex.find(L'.');
    const long majorRevision = revisionNumber(partChangeIndex.substr(0, point));
    const long minorRevision = revisionNumber(partChangeIndex.substr(point + 1));
    const long hardwareCode = getCAttributeLongValue(hardware.m_hardwareCode, throwOnError);

    CItemOwners<HwProgrammablePartDescItem> parts;
    for (CProgrammablePart& part : hardware.m_programmableParts) {
        const std::wstring partName = getCAttributeStrValue(part.m_name, throwOnError);
        const std::wstring version = getCAttributeStrValue(part.m_version, throwOnError);
        const std::wstring partNumber = getCAttributeStrValue(part.m_partNumber, throwOnError);
        const std::wstring changeIndex = getCAttributeStrValue(part.m_partChangeIndex, throwOnError);
        assertValidPartChangeIndex(changeIndex, L"<ProgrammablePart> partChangeIndex", throwOnError);
        parts.emplace_back(new HwProgrammablePartDescItem);
        parts.back()->setName(partName);
        parts.back()->setPartChangeIndex(changeIndex);
        parts.back()->setPartNumber(partNumber);
        parts.back()->setVersion(version);
    }
    CItemOwners<CServiceDescItem> services;
    for (CService& service : hardware.m_serviceData.m_services) {
        services.emplace_back(fillServiceFromFootprint(service, throwOnError));
    }

    CItemOwner<HwBoardDescItem> board(new HwBoardDescItem);
    board->setName(name);
    board->setId(id);
    board->setSerialNumber(serial);
    board->setMajorRevision(majorRevision);
    board->setMinorRevision(minorRevision);
    board->setHwCode(hardwareCode);
    board->setSlotInfo(getCAttributeStrValue(hardware.m_connectorName, throwOnError));
    CItemOwner<CMaintenanceDataDescItem> maintenanceData(
        fillMaintenanceDataFromFootprint(hardware.m_maintenanceData, throwOnError));
    const long productId = getCAttributeLongValue(hardware.m_productId, throwOnError);
    if (productId != -1) {
        board->setProductId(productId);
    }
    board->setProductDate(getCAttributeStrValue(hardware.m_productDate, throwOnError));
    const long readCode = getCAttributeLongValue(hardware.m_readCode, throwOnError);
    if (readCode != -1) {
        board->setReadCode(readCode);
    }
    board->setTestInstruction(getCAttributeStrValue(hardware.m_testInstruction, throwOnError));
    board->setPartName(getCAttributeStrValue(hardware.m_partName, throwOnError));
    const long parentId = getCAttributeLongValue(hardware.m_parentId, throwOnError);
    if (parentId != -1) {
        board->setParentId(parentId);
    }
    bool externConnected = false;
    if (hardware.m_externConnected.GetBool(externConnected)) {
        board->setExternConnected(externConnected);
    }
    addPartNumbers(partNumbers, *board);
    board->setVariantOption(option);

    CBPartIdentification& identification = hardware.m_bPartIdentification;
    CItemOwner<CBPartIdentificationDescItem> bPart(new CBPartIdentificationDescItem);
    bPart->setName(getCAttributeStrValue(identification.m_name, throwOnError));
    bPart->setPartNumber(getCAttributeStrValue(identification.m_partNumber, throwOnError));
    bPart->setSn(getCAttributeStrValue(identification.m_sn, throwOnError));
    bPart->setPartChangeIndex(getCAttributeStrValue(identification.m_partChangeIndex, throwOnError));
    bPart->setVendorName(getCAttributeStrValue(identification.m_vendorName, throwOnError));
    bPart->setAdditionalInfo(getCAttributeStrValue(identification.m_additionalInfo, throwOnError));

    // Last, when nothing can fail any more: a board does not delete all that it is given.
    board->setProgrammableParts(Release<IHwProgrammablePartDescItem>(parts));
    board->setMaintenanceData(maintenanceData.release());
    board->setServices(Release<IServiceDescItem>(services));
    board->setBPartIdentification(bPart.release());
    return board.release();
}

CProductDescItem* CNyxConfig::fillProductFromFootprint(CProduct& product, bool throwOnError)
{
    const long id = getCAttributeLongValue(product.m_id, throwOnError);
    if (id == -1) {
        WriteError(std::string("CNyxConfig::fillProductFromFootprint: <Product> id is required!"));
        if (throwOnError) {
            throw CNyxConfigException(std::string("CNyxConfig::fillProductFromFootprint: <Product> id is required"));
        }
    }
    const std::wstring partNumber = getCAttributeStrValue(product.m_partNumber, throwOnError);
    const std::wstring partChangeIndex = getCAttributeStrValue(product.m_partChangeIndex, throwOnError);
    assertValidPartChangeIndex(partChangeIndex, L"<Product> partChangeIndex", throwOnError);
    const std::wstring type = getCAttributeStrValue(product.m_type, throwOnError);
    const std::wstring partName = getCAttributeStrValue(product.m_partName, throwOnError);
    CItemOwner<CProductDescItem> item(new CProductDescItem);
    item->setId(id);
    item->setPartNumber(partNumber);
    item->setPartChangeIndex(partChangeIndex);
    item->setType(type);
    item->setPartName(partName);
    return item.release();
}

void CNyxConfig::fillHardwareDataIntoFootprint(bool throwOnError)
{
    m_hwDescItems.sort(CompareHwBoardDescItemPointers());
    long running = 0;
    for (HwBoardDescItem* item : m_hwDescItems) {
        if (item != nullptr) {
            running = NextBoardId(running, item->getId() / 1000);
            item->setId(running);
        }
    }
    for (HwBoardDescItem* item : m_hwDescItems) {
        m_devFp.m_hardwareData.m_hardwareList.push_back(fillCHardwareFromDescItem(item, throwOnError));
    }
    CProductList& products = m_devFp.m_hardwareData.m_productList;
    for (CProductDescItem* item : m_productDescItems) {
        products.push_back(fillCProductFromDescItem(item, throwOnError));
    }
    if (products.size() < 2) {
        return; // a single id is not even read
    }
    CUniqueIds productIds("CNyxConfig::setHardwareData(): product->id must be unique");
    for (CProduct& product : products) {
        productIds.Add(getCAttributeLongValue(product.m_id, throwOnError), throwOnError);
    }
}

CHardware CNyxConfig::fillCHardwareFromDescItem(IHwBoardDescItem* item, bool throwOnError)
{
    CHardware hardware;
    if (item == nullptr) {
        return hardware;
    }
    const long id = item->getId();
    // Of a table of part numbers only the first is written.
    const long variant = item->getVariant(0, nullptr);
    const std::wstring partNumber = parsePartNumber(item->getPartNumber(0, nullptr), variant, throwOnError);
    long serial = item->getSerialNumber();
    if (serial > 99999999) {
        serial /= 1000;
    }
    const long hardwareCode = item->getHwCode();
    const std::wstring name = item->getName();
    const long minorRevision = item->getMinorRevision();
    const long majorRevision = item->getMajorRevision();
    const std::wstring partChangeIndex = parsePartChangeIndex(majorRevision, minorRevision, throwOnError);
    const std::wstring slotInfo = item->getSlotInfo();
    if (id == -1) {
        ReportError("CNyxConfig::fillCHardwareFromDescItem(): id must be set", throwOnError);
    } else {
        hardware.m_id = id;
        hardware.m_partNumber = partNumber;
        hardware.m_sn = serial;
        hardware.m_hardwareCode = hardwareCode;
        hardware.m_name = name;
        assertValidPartChangeIndex(partChangeIndex, L"hwBoardDescItem->partChangeIndex", throwOnError);
        hardware.m_partChangeIndex = partChangeIndex;
        hardware.m_connectorName = slotInfo;
    }
    const long productId = item->getProductId();
    if (productId >= 0 && intToWstring(productId).size() < 7) {
        hardware.m_productId = productId;
    }
    // An empty text leaves an attribute absent, as if it had not been written.
    hardware.m_productDate = item->getProductDate();
    const long readCode = item->getReadCode();
    if (readCode >= 0) {
        hardware.m_readCode = readCode;
    }
    hardware.m_testInstruction = item->getTestInstruction();
    hardware.m_partName = item->getPartName();
    const long parentId = item->getParentId();
    if (parentId >= 0) {
        hardware.m_parentId = parentId;
    }
    hardware.m_externConnected.SetBool(item->getExternConnected());

    // A foreign implementation of the interface is left out without a word.
    const auto* bPart = dynamic_cast<const CBPartIdentificationDescItem*>(item->getBPartIdentification());
    if (bPart != nullptr) {
        CBPartIdentification& identification = hardware.m_bPartIdentification;
        identification.m_name = bPart->getName();
        identification.m_partNumber = bPart->getPartNumber();
        identification.m_sn = bPart->getSn();
        identification.m_partChangeIndex = bPart->getPartChangeIndex();
        identification.m_vendorName = bPart->getVendorName();
        identification.m_additionalInfo = bPart->getAdditionalInfo();
    }
    for (IHwProgrammablePartDescItem* part : item->getProgrammableParts()) {
        hardware.m_programmableParts.push_back(fillCProgrammablePartFromDescItem(part, throwOnError));
    }
    hardware.m_maintenanceData = fillCMaintenanceDataFromDescItem(item->getMaintenanceData(), throwOnError);
    for (IServiceDescItem* service : item->getServices()) {
        hardware.m_serviceData.m_services.push_back(fillCServiceFromDescItem(service, throwOnError));
    }
    return hardware;
}

CProduct CNyxConfig::fillCProductFromDescItem(IProductDescItem* item, bool throwOnError)
{
    CProduct product;
    if (item == nullptr) {
        return product;
    }
    const long id = item->getId();
    const std::wstring partNumber = item->getPartNumber();
    const std::wstring partChangeIndex = item->getPartChangeIndex();
    const std::wstring type = item->getType();
    const std::wstring partName = item->getPartName();
    if (id == -1) {
        ReportError("CNyxConfig::fillCProductFromDescItem(): id must be set", throwOnError);
        return product;
    }
    product.m_id = id;
    product.m_partNumber = partNumber;
    assertValidPartChangeIndex(partChangeIndex, L"product->partChangeIndex", throwOnError);
    product.m_partChangeIndex = partChangeIndex;
    product.m_type = type;
    product.m_partName = partName;
    return product;
}

CProgrammablePart CNyxConfig::fillCProgrammablePartFromDescItem(IHwProgrammablePartDescItem* item, bool throwOnError)
{
    CProgrammablePart part;
    if (item == nullptr) {
        return part;
    }
    const std::wstring name = item->getName();
    const std::wstring version = item->getVersion();
    const std::wstring partNumber = item->getPartNumber();
    const std::wstring partChangeIndex = item->getPartChangeIndex();
    assertValidPartChangeIndex(partChangeIndex, L"programmablePart->partChangeIndex", throwOnError);
    part.m_name = name;
    part.m_version = version;
    part.m_partNumber = partNumber;
    part.m_partChangeIndex = partChangeIndex;
    return part;
}

} // namespace KvOrdo
