#include "CException.h"

#include "CNyxConfigException.h"

#include "AttributeNode.h"

#include <utility>

namespace KvOrdo
{

CException::CException(std::string message) : m_message(std::move(message)) {}

CException::CException(std::wstring message)
{
    toCharString(m_message, message);
}

CException::~CException() = default;

bool CException::toCharString(std::string& target, const std::wstring& source)
{
    target = KvDeviceFootprint::NarrowText(source);
    return true;
}

CNyxConfigException::CNyxConfigException(std::string message) : CException(std::move(message)) {}

CNyxConfigException::CNyxConfigException(std::wstring message) : CException(std::move(message)) {}

CNyxConfigException::~CNyxConfigException() = default;

} // namespace KvOrdo
