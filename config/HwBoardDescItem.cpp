#include "HwBoardDescItem.h"

#include "PlainNumbers.h"

#include <QMutex>
#include <QMutexLocker>
#include <QString>

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <new>
#include <utility>

namespace KvOrdo
{

namespace
{

using KvDeviceFootprint::PointedNumber;
using KvDeviceFootprint::ReadPlainNumber;

constexpr int NoEntry = -1;
constexpr long GroupOfFour = 10000;
constexpr long FullFirstGroup = 1000 * GroupOfFour; // from here on there is nothing to pad
constexpr long BeyondFirstGroup = GroupOfFour * GroupOfFour;
constexpr unsigned long LargestRefusedPartNumber = 10000;
constexpr unsigned int LargestVariant = 99;
constexpr std::uint32_t IdsPerPath = 1000;

/**
 * Frees the storage of an item whose interface has no virtual destructor, and runs no destructor.
 *
 * Texts longer than the buffer inside a std::wstring and the nodes of lists stay allocated. This is required: an
 * application may still hold what the item's lists point to. The cast finds the start of the storage for an item that
 * has further base classes in front of the interface.
 */
template<typename Interface>
void releaseStorage(Interface* item)
{
    ::operator delete(dynamic_cast<void*>(item));
}

/// The text of an entry: two groups of four digits and a variant of two, the first group padded with blanks.
std::wstring entryText(long partNumber, unsigned int variant)
{
    if (partNumber >= FullFirstGroup && partNumber < BeyondFirstGroup && variant <= LargestVariant) {
        return PointedNumber(
            {{partNumber / GroupOfFour, 4}, {partNumber % GroupOfFour, 4}, {static_cast<long>(variant), 2}});
    }
    wchar_t text[64]; // the three longest numbers of 64 bits, their signs and two points fit
    const int length = std::swprintf(text, sizeof(text) / sizeof(text[0]), L"%4ld.%04ld.%02u", partNumber / GroupOfFour,
                                     partNumber % GroupOfFour, variant);
    return std::wstring(text, static_cast<std::size_t>(length));
}

/// Converts decimal text as QString::toInt does: 32 bits on every platform, whatever the width of long.
int toInt(const std::wstring& text, bool& ok)
{
    long plain = 0;
    if (ReadPlainNumber(text, plain)) {
        ok = true;
        return static_cast<int>(plain);
    }
    return QString::fromWCharArray(text.data(), static_cast<int>(text.size())).toInt(&ok, 10);
}

} // namespace

HwBoardDescItem::CPartNumberVariant::CPartNumberVariant() : m_mutex(std::make_unique<QMutex>(QMutex::Recursive)) {}

HwBoardDescItem::CPartNumberVariant::~CPartNumberVariant() = default;

int HwBoardDescItem::CPartNumberVariant::addPNV(long partNumber, unsigned int variant)
{
    const int present = find(partNumber, variant);
    if (present != NoEntry) {
        return present;
    }
    std::wstring text = entryText(partNumber, variant);

    const QMutexLocker lock(m_mutex.get());
    m_entries.push_back({partNumber, variant, std::move(text)});
    return static_cast<int>(m_entries.size() - 1);
}

int HwBoardDescItem::CPartNumberVariant::find(long partNumber, unsigned int variant) const
{
    const QMutexLocker lock(m_mutex.get());
    for (std::size_t index = 0; index < m_entries.size(); ++index) {
        if (m_entries[index].partNumber == partNumber && m_entries[index].variant == variant) {
            return static_cast<int>(index);
        }
    }
    return NoEntry;
}

template<typename Value>
Value HwBoardDescItem::CPartNumberVariant::entry(Value Entry::*column, unsigned int index, bool* ok) const
{
    const QMutexLocker lock(m_mutex.get());
    const bool inRange = index < m_entries.size();
    if (ok != nullptr) {
        *ok = inRange;
    }
    return inRange ? m_entries[index].*column : Value();
}

long HwBoardDescItem::CPartNumberVariant::getPartNumber(unsigned int index, bool* ok) const
{
    return entry(&Entry::partNumber, index, ok);
}

long HwBoardDescItem::CPartNumberVariant::getVariant(unsigned int index, bool* ok) const
{
    return static_cast<long>(entry(&Entry::variant, index, ok));
}

std::wstring HwBoardDescItem::CPartNumberVariant::getText(unsigned int index, bool* ok) const
{
    return entry(&Entry::text, index, ok);
}

unsigned int HwBoardDescItem::CPartNumberVariant::getSize() const
{
    const QMutexLocker lock(m_mutex.get());
    return static_cast<unsigned int>(m_entries.size());
}

HwBoardDescItem::HwBoardDescItem()
{
    m_fields.partNumberVariant = std::make_unique<CPartNumberVariant>();
}

HwBoardDescItem::~HwBoardDescItem()
{
    // Reset first: a nested item that asks the board while it is deleted finds no stale pointer.
    const Fields former = std::exchange(m_fields, Fields());
    for (IHwProgrammablePartDescItem* part : former.programmableParts) {
        releaseStorage(part);
    }
    releaseStorage(former.maintenanceData);
    delete former.bPartIdentification;
}

long HwBoardDescItem::getPartNumber(unsigned int index, bool* ok) const
{
    return m_fields.partNumberVariant ? m_fields.partNumberVariant->getPartNumber(index, ok) : 0;
}

long HwBoardDescItem::getVariant(unsigned int index, bool* ok) const
{
    return m_fields.partNumberVariant ? m_fields.partNumberVariant->getVariant(index, ok) : 0;
}

std::wstring HwBoardDescItem::getPartNumberVariant(unsigned int index, bool* ok) const
{
    return m_fields.partNumberVariant ? m_fields.partNumberVariant->getText(index, ok) : std::wstring();
}

unsigned int HwBoardDescItem::getPartNumberVariantSize() const
{
    return m_fields.partNumberVariant ? m_fields.partNumberVariant->getSize() : 0;
}

void HwBoardDescItem::setId(long id)
{
    m_fields.id = id;
    // 32 bits whatever the width of long, so that a negative id has one path on every platform.
    m_fields.path = static_cast<long>(static_cast<std::uint32_t>(id) / IdsPerPath);
}

void HwBoardDescItem::setProductDate(unsigned short productDate)
{
    const int year = 1980 + (productDate >> 9);
    const int month = (productDate >> 5) & 0x0F;
    const int day = productDate & 0x1F;
    m_fields.productDate = std::to_wstring(year) + L"-" + std::to_wstring(month) + L"-" + std::to_wstring(day);
}

void HwBoardDescItem::setTestInstruction(unsigned short testInstruction)
{
    m_fields.testInstruction = std::to_wstring(testInstruction / 100) + L"." + std::to_wstring(testInstruction % 100);
}

int HwBoardDescItem::setPartNumberVariant(long partNumber, unsigned int variant)
{
    // Unsigned, so that a negative part number counts as a large one and is taken.
    const bool refused = variant > LargestVariant || static_cast<unsigned long>(partNumber) <= LargestRefusedPartNumber;
    if (!m_fields.partNumberVariant || refused) {
        return NoEntry;
    }
    return m_fields.partNumberVariant->addPNV(partNumber, variant);
}

int HwBoardDescItem::setPartNumberVariant(const std::wstring& partNumber, const std::wstring& variant)
{
    std::wstring digits = partNumber;
    digits.erase(std::remove(digits.begin(), digits.end(), L'.'), digits.end());
    bool isNumber = false;
    const int number = toInt(digits, isNumber);
    if (!isNumber) {
        return NoEntry;
    }
    // A negative variant becomes one above 99 and is refused as such.
    const auto variantNumber = static_cast<unsigned int>(toInt(variant, isNumber));
    return isNumber ? setPartNumberVariant(static_cast<long>(number), variantNumber) : NoEntry;
}

int HwBoardDescItem::setPartNumberVariant(const std::wstring& text)
{
    const auto points = std::count(text.begin(), text.end(), L'.');
    if (points != 1 && points != 2) {
        return NoEntry;
    }
    const std::size_t last = text.rfind(L'.');
    return setPartNumberVariant(text.substr(0, last), text.substr(last + 1));
}

} // namespace KvOrdo
