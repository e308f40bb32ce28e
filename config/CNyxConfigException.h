#ifndef NYXCONFIG_CNYXCONFIGEXCEPTION_H
#define NYXCONFIG_CNYXCONFIGEXCEPTION_H

#include "CException.h"
#include "nyxconfig_export.h"

#include <string>

namespace KvOrdo
{

/// What the library throws for invalid data, if it was asked to throw.
class NYXCONFIG_EXPORT CNyxConfigException : public CException
{
public:
    explicit CNyxConfigException(std::string message);
    explicit CNyxConfigException(std::wstring message);
    CNyxConfigException(const CNyxConfigException&) = default;
    CNyxConfigException& operator=(const CNyxConfigException&) = default;
    ~CNyxConfigException() override;
};

} // namespace KvOrdo

#endif
