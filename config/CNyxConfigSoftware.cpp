#include "CNyxConfig.h"

#include "ErrorReport.h"
#include "ItemOwner.h"
#include "MappingHelpers.h"
#include "XmlStreams.h"

namespace KvOrdo
{

using namespace KvDeviceFootprint;

/// The items from the tree's root down to the one at hand.
struct CNyxConfig::SoftwarePath
{
    const ISoftwareDescItem* item;
    const SoftwarePath* parent;
    std::size_t depth;

    bool Holds(const ISoftwareDescItem* wanted) const
    {
        const SoftwarePath* path = this;
        while (path != nullptr && path->item != wanted) {
            path = path->parent;
        }
        return path != nullptr;
    }
};

namespace
{

/// How deep software may be nested: each level is an entry and its list, below root and SoftwareData.
constexpr std::size_t MaxSoftwareDepth = (CXmlStreamReader::MaxDepth - 2) / 2;

/// Copies what the items of BIOS and operating system have in common to their elements.
template<class Element, class Item>
void FillFromItem(Element& element, const Item& item)
{
    element.m_name = item.getName();
    element.m_partChangeIndex = item.getPartChangeIndex();
    element.m_partNumber = item.getPartNumber();
    element.m_version = item.getVersion();
}

} // namespace

void CNyxConfig::fillSoftwareDataFromFootprint(bool throwOnError)
{
    m_softwareData = new SoftwareDataDescItem; // the application's from here on
    m_softwareData->setSoftwareItems(
        fillSoftwareListFromFootprint(m_devFp.m_softwareData.m_softwareList, throwOnError));
}

std::list<ISoftwareDescItem*> CNyxConfig::fillSoftwareListFromFootprint(CSoftwareList& software, bool throwOnError)
{
    CItemOwners<SoftwareDescItem> items;
    for (CSoftware& entry : software) {
        items.emplace_back(new SoftwareDescItem);
        SoftwareDescItem& item = *items.back();
        item.setName(TextOf(entry.m_name));
        item.setVersion(TextOf(entry.m_version));
        item.setStatus(TextOf(entry.m_status));
        item.setPartNumber(TextOf(entry.m_partNumber));
        item.setPartChangeIndex(TextOf(entry.m_partChangeIndex));
        CheckPartChangeIndex(*this, item.getPartChangeIndex(), L"<Software> partChangeIndex", throwOnError);
        item.setSerialNumber(TextOf(entry.m_sn));
        item.setVendorName(TextOf(entry.m_vendorName));
        if (!entry.m_pSoftwareList->empty()) {
            item.setSoftwareItems(fillSoftwareListFromFootprint(*entry.m_pSoftwareList, throwOnError));
        }
    }
    return Release<ISoftwareDescItem>(items);
}

void CNyxConfig::fillSoftwareDataIntoFootprint(bool throwOnError)
{
    if (m_softwareData == nullptr) {
        return;
    }
    const IBiosDescItem* bios = m_softwareData->getBiosItem();
    if (bios != nullptr) {
        FillFromItem(m_devFp.m_softwareData.m_bios, *bios);
    } else {
        ReportError("CNyxConfig::fillSoftwareDataIntoFootprint(): BIOS item must be set", throwOnError);
    }
    const IOperatingSystemDescItem* operatingSystem = m_softwareData->getOperationSystemItem();
    if (operatingSystem != nullptr) {
        FillFromItem(m_devFp.m_softwareData.m_operatingSystem, *operatingSystem);
    } else {
        ReportError("CNyxConfig::fillSoftwareDataIntoFootprint(): operating system item must be set", throwOnError);
    }
    CSoftwareList& list = m_devFp.m_softwareData.m_softwareList;
    for (ISoftwareDescItem* item : m_softwareData->getSoftwareItems()) {
        // Filled apart from the document, which gets it whole or, if an exception leaves, not at all.
        std::list<CSoftware> filled(1);
        fillCSoftware(filled.back(), item, nullptr, throwOnError);
        list.splice(list.end(), filled);
    }
}

CSoftware CNyxConfig::fillCSoftwareFromDescItem(ISoftwareDescItem* item, bool throwOnError)
{
    CSoftware software;
    fillCSoftware(software, item, nullptr, throwOnError);
    return software;
}

void CNyxConfig::fillCSoftware(CSoftware& software, ISoftwareDescItem* item, const SoftwarePath* parent,
                               bool throwOnError)
{
    if (item == nullptr) {
        return;
    }
    const SoftwarePath path = {item, parent, parent == nullptr ? 1 : parent->depth + 1};
    if (path.depth > MaxSoftwareDepth || (parent != nullptr && parent->Holds(item))) {
        // Without this, an item that holds itself would never end.
        ReportError("CNyxConfig::fillCSoftwareFromDescItem(): software items are nested too deeply", throwOnError);
        return;
    }
    CheckNotEmpty(*this, item->getName(), L"software->name", throwOnError);
    software.m_name = item->getName();
    software.m_version = item->getVersion();
    software.m_status = item->getStatus();
    software.m_partNumber = item->getPartNumber();
    CheckPartChangeIndex(*this, item->getPartChangeIndex(), L"software->partChangeIndex", throwOnError);
    software.m_partChangeIndex = item->getPartChangeIndex();
    software.m_sn = item->getSerialNumber();
    software.m_vendorName = item->getVendorName();
    for (ISoftwareDescItem* nested : item->getSoftwareItems()) {
        software.m_pSoftwareList->emplace_back();
        fillCSoftware(software.m_pSoftwareList->back(), nested, &path, throwOnError);
    }
}

} // namespace KvOrdo
