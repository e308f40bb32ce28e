#include "AttributeNode.h"

#include "DeviceFootprint.h"

#include "CLocale.h"
#include "PlainNumbers.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <cwchar>
#include <iterator>
#include <map>
#include <mutex>

namespace KvDeviceFootprint
{

namespace
{

std::string TwoDigits(int number)
{
    return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string EmptyMessage(const std::string& name)
{
    return "Can not access empty attribute \"" + name + "\"!";
}

} // namespace

std::string NarrowText(const std::wstring& text)
{
    std::string narrow(text.size(), '\0');
    for (std::size_t i = 0; i < text.size(); ++i) {
        narrow[i] = ToSingleChar(text[i]);
    }
    return narrow;
}

std::wstring WidenText(const std::string& text)
{
    std::wstring wide(text.size(), L'\0');
    for (std::size_t i = 0; i < text.size(); ++i) {
        wide[i] = static_cast<wchar_t>(static_cast<signed char>(text[i]));
    }
    return wide;
}

CNodeName::Entry::Entry(const char* name)
    : text(name), emptyMessage(EmptyMessage(text)), opening(), openingLength(0), firstBytes(0), firstMask(0),
      lastBytes(0)
{
    const std::string whole = " " + text + "=\"";
    if (whole.size() < opening.size()) {
        std::copy(whole.begin(), whole.end(), opening.begin());
        openingLength = whole.size();
    }
    std::array<char, sizeof firstMask> mask = {};
    std::fill_n(mask.begin(), std::min(openingLength, mask.size()), '\xFF');
    std::memcpy(&firstMask, mask.data(), sizeof firstMask);
    std::memcpy(&firstBytes, opening.data(), sizeof firstBytes);
    if (openingLength >= sizeof lastBytes) {
        std::memcpy(&lastBytes, opening.data() + openingLength - sizeof lastBytes, sizeof lastBytes);
    }
}

/// The one entry of each name. Never freed: objects of static storage may outlive any order of destruction.
const CNodeName::Entry* CNodeName::SharedEntry(const char* text)
{
    static std::mutex lock;
    static auto& entries = *new std::map<std::string, Entry>;
    const std::lock_guard<std::mutex> guard(lock);
    const std::string name(text == nullptr ? "" : text);
    return &entries.try_emplace(name, name.c_str()).first->second;
}

CNodeName::CNodeName(const char* text) : m_entry(SharedEntry(text)) {}

std::atomic<bool> CReadOnlyAttribute::s_isAnyRenamed(false);

void CReadOnlyAttribute::Rename(const CNodeName& name) noexcept
{
    // What a thread does with an element that another thread has made is ordered by how it got the element.
    s_isAnyRenamed.store(true, std::memory_order_relaxed);
    m_name = name;
}

const std::string& CReadOnlyAttribute::GetNodeName() const
{
    return m_name.Text();
}

bool CReadOnlyAttribute::Set(const std::wstring& value)
{
    m_value = value;
    return true;
}

bool CReadOnlyAttribute::Set(const std::string& value)
{
    m_value = WidenText(value);
    return true;
}

bool CReadOnlyAttribute::SetBool(bool value)
{
    m_value = value ? L"true" : L"false";
    return true;
}

bool CReadOnlyAttribute::SetInteger(long value)
{
    char text[32];
    // Made new: assigning characters of another type would make a copy of one that is made new.
    m_value = std::wstring(text, std::to_chars(std::begin(text), std::end(text), value).ptr);
    return true;
}

CReadOnlyAttribute& CReadOnlyAttribute::operator=(const std::wstring& value)
{
    Set(value);
    return *this;
}

CReadOnlyAttribute& CReadOnlyAttribute::operator=(const std::string& value)
{
    Set(value);
    return *this;
}

CReadOnlyAttribute& CReadOnlyAttribute::operator=(const char* value)
{
    Set(std::string(value == nullptr ? "" : value));
    return *this;
}

CReadOnlyAttribute& CReadOnlyAttribute::operator=(const wchar_t* value)
{
    Set(std::wstring(value == nullptr ? L"" : value));
    return *this;
}

CReadOnlyAttribute& CReadOnlyAttribute::operator=(long value)
{
    SetInteger(value);
    return *this;
}

bool CReadOnlyAttribute::Get(std::wstring& value) const
{
    if (IsEmpty()) {
        return EmptyGetError();
    }
    value = m_value;
    return true;
}

bool CReadOnlyAttribute::Get(std::string& value) const
{
    if (IsEmpty()) {
        return EmptyGetError();
    }
    value = NarrowText(m_value);
    return true;
}

bool CReadOnlyAttribute::GetBool(bool& value) const
{
    if (IsEmpty()) {
        return EmptyGetError();
    }
    if (m_value == L"true") {
        value = true;
        return true;
    }
    if (m_value == L"false") {
        value = false;
        return true;
    }
    return CDeviceFootprint::SetLastError("invalid boolean attribute");
}

bool CReadOnlyAttribute::GetInteger(long& value) const
{
    if (IsEmpty()) {
        return EmptyGetError();
    }
    if (!ReadPlainNumber(m_value, value)) {
        value = wcstol_l(m_value.c_str(), nullptr, 10, CLocale());
    }
    return true;
}

bool CReadOnlyAttribute::EmptyGetError() const
{
    // Ready-made: mappings read absent attributes by the thousand.
    const std::string& name = GetNodeName(); // virtual: an attribute class may have a name of its own
    return CDeviceFootprint::SetLastError(&name == &m_name.Text() ? m_name.m_entry->emptyMessage : EmptyMessage(name));
}

bool CReadOnlyAttribute::IsEqual(const CReadOnlyAttribute& other, bool emptiesAreEqual) const
{
    if (this == &other) {
        return true;
    }
    if (m_name != other.m_name) {
        return false;
    }
    const std::size_t size = m_value.size();
    if (size != other.m_value.size()) {
        return false;
    }
    return size == 0 ? emptiesAreEqual : std::wmemcmp(m_value.data(), other.m_value.data(), size) == 0;
}

void CTimeAttribute::SetCreationDateToCurrent()
{
    const std::time_t now = std::time(nullptr);
    m_seconds = static_cast<std::int32_t>(now);
    std::tm date = {};
    if (gmtime_r(&now, &date) == nullptr) {
        Clear();
        return;
    }
    Set(std::to_string(date.tm_year + 1900) + "-" + TwoDigits(date.tm_mon + 1) + "-" + TwoDigits(date.tm_mday) + "T" +
        TwoDigits(date.tm_hour) + ":" + TwoDigits(date.tm_min) + ":" + TwoDigits(date.tm_sec));
}

bool CTimeAttribute::operator<(const CTimeAttribute& other) const
{
    // In unsigned arithmetic, in which a difference wraps as the 32-bit subtraction does.
    const auto difference = static_cast<std::uint32_t>(other.m_seconds) - static_cast<std::uint32_t>(m_seconds);
    return static_cast<std::int32_t>(difference) > 0;
}

} // namespace KvDeviceFootprint
