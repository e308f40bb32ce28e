#ifndef NYXCONFIG_ITESTINSTRUCTIONDESCITEMEX_H
#define NYXCONFIG_ITESTINSTRUCTIONDESCITEMEX_H

#include <string>

#include "ITestInstructionDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// The setters of a test instruction: each stores what the getter of the same name returns.
class NYXCONFIG_EXPORT ITestInstructionDescItemEx : public ITestInstructionDescItem
{
public:
    virtual void setName(const std::wstring& name) = 0;
    virtual void setVersion(const std::wstring& version) = 0;
};

} // namespace KvOrdo

#endif
