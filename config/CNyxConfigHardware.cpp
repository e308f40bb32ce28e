#include "CNyxConfig.h"

#include "CLocale.h"
#include "ErrorReport.h"
#include "ItemOwner.h"
#include "MappingHelpers.h"
#include "PlainNumbers.h"

#include <algorithm>
#include <cerrno>
#include <cwchar>
#include <iostream>
#include <sstream>
#include <unordered_map>
#include <utility>

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
    if (ReadPlainNumber(text, number.value)) {
        return number;
    }
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

/// How messages name a board. The count comes first, and the index counts from 0: the first of three boards reads
/// "<Hardware 3 of 0".
std::wstring BoardLabel(int count, int index)
{
    return L"<Hardware " + std::to_wstring(count) + L" of " + std::to_wstring(index);
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

long CNyxConfig::serialNumber(const std::wstring& text, int count, int index, bool throwOnError)
{
    if (text.empty()) {
        return 0;
    }
    constexpr std::size_t digits = 6; // all that counts
    const ParsedNumber number = text.size() <= digits ? ParseNumber(text) : ParseNumber(text.substr(0, digits));
    m_conversionError = number.error;
    if (number.error != 0 || !number.rest.empty()) {
        std::wostringstream message;
        message << BoardLabel(count, index) << L"> sn has invalid Syntax";
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
    const auto label = [=](const wchar_t* field) { return BoardLabel(count, index) + field; };

    CheckNotEmpty(
        *this, TextOf(hardware.m_id), [&] { return label(L"> id"); }, throwOnError);
    const long id = wStringToLong(TextOf(hardware.m_id), throwOnError);
    std::wstring name;
    unsigned int variantOfName = 0; // not used
    unsigned int option = 0;
    extractNamePathAndVariantOption(TextOf(hardware.m_name), name, variantOfName, option);
    CheckNotEmpty(
        *this, name, [&] { return label(L"> name"); }, throwOnError);
    const std::wstring& partNumbers = TextOf(hardware.m_partNumber);
    const long serial = serialNumber(TextOf(hardware.m_sn), count, index, throwOnError);
    const std::wstring& partChangeIndex = TextOf(hardware.m_partChangeIndex);
    CheckPartChangeIndex(
        *this, partChangeIndex, [&] { return label(L"> partChangeIndex"); }, throwOnError);
    // Without a point both parts are the whole text.
    const std::size_t point = partChangeIndex.find(L'.');
    const long majorRevision = revisionNumber(partChangeIndex.substr(0, point));
    const long minorRevision = revisionNumber(partChangeIndex.substr(point + 1));
    const long hardwareCode = wStringToLong(TextOf(hardware.m_hardwareCode), throwOnError);

    CItemOwners<HwProgrammablePartDescItem> parts;
    for (CProgrammablePart& part : hardware.m_programmableParts) {
        const std::wstring& partName = TextOf(part.m_name);
        const std::wstring& version = TextOf(part.m_version);
        const std::wstring& partNumber = TextOf(part.m_partNumber);
        const std::wstring& changeIndex = TextOf(part.m_partChangeIndex);
        CheckPartChangeIndex(*this, changeIndex, L"<ProgrammablePart> partChangeIndex", throwOnError);
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
    board->setSlotInfo(TextOf(hardware.m_connectorName));
    CItemOwner<CMaintenanceDataDescItem> maintenanceData(
        fillMaintenanceDataFromFootprint(hardware.m_maintenanceData, throwOnError));
    const long productId = wStringToLong(TextOf(hardware.m_productId), throwOnError);
    if (productId != -1) {
        board->setProductId(productId);
    }
    board->setProductDate(TextOf(hardware.m_productDate));
    const long readCode = wStringToLong(TextOf(hardware.m_readCode), throwOnError);
    if (readCode != -1) {
        board->setReadCode(readCode);
    }
    board->setTestInstruction(TextOf(hardware.m_testInstruction));
    board->setPartName(TextOf(hardware.m_partName));
    const long parentId = wStringToLong(TextOf(hardware.m_parentId), throwOnError);
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
    bPart->setName(TextOf(identification.m_name));
    bPart->setPartNumber(TextOf(identification.m_partNumber));
    bPart->setSn(TextOf(identification.m_sn));
    bPart->setPartChangeIndex(TextOf(identification.m_partChangeIndex));
    bPart->setVendorName(TextOf(identification.m_vendorName));
    bPart->setAdditionalInfo(TextOf(identification.m_additionalInfo));

    // Last, when nothing can fail any more: a board does not delete all that it is given.
    board->setProgrammableParts(Release<IHwProgrammablePartDescItem>(parts));
    board->setMaintenanceData(maintenanceData.release());
    board->setServices(Release<IServiceDescItem>(services));
    board->setBPartIdentification(bPart.release());
    return board.release();
}

CProductDescItem* CNyxConfig::fillProductFromFootprint(CProduct& product, bool throwOnError)
{
    const long id = wStringToLong(TextOf(product.m_id), throwOnError);
    if (id == -1) {
        WriteError(std::string("CNyxConfig::fillProductFromFootprint: <Product> id is required!"));
        if (throwOnError) {
            throw CNyxConfigException(std::string("CNyxConfig::fillProductFromFootprint: <Product> id is required"));
        }
    }
    const std::wstring& partNumber = TextOf(product.m_partNumber);
    const std::wstring& partChangeIndex = TextOf(product.m_partChangeIndex);
    CheckPartChangeIndex(*this, partChangeIndex, L"<Product> partChangeIndex", throwOnError);
    const std::wstring& type = TextOf(product.m_type);
    const std::wstring& partName = TextOf(product.m_partName);
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
        AppendMade(m_devFp.m_hardwareData.m_hardwareList,
                   [=] { return fillCHardwareFromDescItem(item, throwOnError); });
    }
    CProductList& products = m_devFp.m_hardwareData.m_productList;
    for (CProductDescItem* item : m_productDescItems) {
        AppendMade(products, [=] { return fillCProductFromDescItem(item, throwOnError); });
    }
    if (products.size() < 2) {
        return; // a single id is not even read
    }
    CUniqueIds productIds("CNyxConfig::setHardwareData(): product->id must be unique");
    for (CProduct& product : products) {
        productIds.Add(wStringToLong(TextOf(product.m_id), throwOnError), throwOnError);
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
    std::wstring partNumber = parsePartNumber(item->getPartNumber(0, nullptr), variant, throwOnError);
    long serial = item->getSerialNumber();
    if (serial > 99999999) {
        serial /= 1000;
    }
    const long hardwareCode = item->getHwCode();
    std::wstring name = item->getName();
    const long minorRevision = item->getMinorRevision();
    const long majorRevision = item->getMajorRevision();
    std::wstring partChangeIndex = parsePartChangeIndex(majorRevision, minorRevision, throwOnError);
    std::wstring slotInfo = item->getSlotInfo();
    if (id == -1) {
        ReportError("CNyxConfig::fillCHardwareFromDescItem(): id must be set", throwOnError);
    } else {
        hardware.m_id = id;
        hardware.m_partNumber = std::move(partNumber);
        hardware.m_sn = serial;
        hardware.m_hardwareCode = hardwareCode;
        hardware.m_name = std::move(name);
        CheckPartChangeIndex(*this, partChangeIndex, L"hwBoardDescItem->partChangeIndex", throwOnError);
        hardware.m_partChangeIndex = std::move(partChangeIndex);
        hardware.m_connectorName = std::move(slotInfo);
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
        AppendMade(hardware.m_programmableParts, [=] { return fillCProgrammablePartFromDescItem(part, throwOnError); });
    }
    hardware.m_maintenanceData = fillCMaintenanceDataFromDescItem(item->getMaintenanceData(), throwOnError);
    for (IServiceDescItem* service : item->getServices()) {
        AppendMade(hardware.m_serviceData.m_services, [=] { return fillCServiceFromDescItem(service, throwOnError); });
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
    std::wstring partNumber = item->getPartNumber();
    std::wstring partChangeIndex = item->getPartChangeIndex();
    std::wstring type = item->getType();
    std::wstring partName = item->getPartName();
    if (id == -1) {
        ReportError("CNyxConfig::fillCProductFromDescItem(): id must be set", throwOnError);
        return product;
    }
    product.m_id = id;
    product.m_partNumber = std::move(partNumber);
    CheckPartChangeIndex(*this, partChangeIndex, L"product->partChangeIndex", throwOnError);
    product.m_partChangeIndex = std::move(partChangeIndex);
    product.m_type = std::move(type);
    product.m_partName = std::move(partName);
    return product;
}

CProgrammablePart CNyxConfig::fillCProgrammablePartFromDescItem(IHwProgrammablePartDescItem* item, bool throwOnError)
{
    CProgrammablePart part;
    if (item == nullptr) {
        return part;
    }
    std::wstring name = item->getName();
    std::wstring version = item->getVersion();
    std::wstring partNumber = item->getPartNumber();
    std::wstring partChangeIndex = item->getPartChangeIndex();
    CheckPartChangeIndex(*this, partChangeIndex, L"programmablePart->partChangeIndex", throwOnError);
    part.m_name = std::move(name);
    part.m_version = std::move(version);
    part.m_partNumber = std::move(partNumber);
    part.m_partChangeIndex = std::move(partChangeIndex);
    return part;
}

} // namespace KvOrdo
