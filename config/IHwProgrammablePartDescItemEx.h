#ifndef NYXCONFIG_IHWPROGRAMMABLEPARTDESCITEMEX_H
#define NYXCONFIG_IHWPROGRAMMABLEPARTDESCITEMEX_H

#include <string>

#include "IHwProgrammablePartDescItem.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * The setters of a programmable part: each stores what the getter of the same name returns.
 *
 * The load file path option, the load file extension and the module list are set on the implementation only.
 */
class NYXCONFIG_EXPORT IHwProgrammablePartDescItemEx : public IHwProgrammablePartDescItem
{
public:
    virtual void setName(const std::wstring& name) = 0;
    virtual void setPartName(const std::wstring& partName) = 0;
    virtual void setBootDirBoardName(const std::wstring& bootDirBoardName) = 0;
    virtual void setLoadFilePathCalc(const std::wstring& loadFilePathCalc) = 0;
    virtual void setPartType(int partType) = 0;
    virtual void setVersion(const std::wstring& version) = 0;
    virtual void setPartNumber(const std::wstring& partNumber) = 0;
    virtual void setPartChangeIndex(const std::wstring& partChangeIndex) = 0;
};

} // namespace KvOrdo

#endif
