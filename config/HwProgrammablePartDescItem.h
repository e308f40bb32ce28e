#ifndef NYXCONFIG_HWPROGRAMMABLEPARTDESCITEM_H
#define NYXCONFIG_HWPROGRAMMABLEPARTDESCITEM_H

#include <list>
#include <string>

#include "IHwProgrammablePartDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/**
 * A programmable part of a board.
 *
 * A board that owns the item frees its storage and does not run its destructor, see HwBoardDescItem. An item is not
 * guarded: it belongs to one thread at a time.
 */
class NYXCONFIG_EXPORT HwProgrammablePartDescItem : public IHwProgrammablePartDescItemEx
{
public:
    HwProgrammablePartDescItem() = default;
    virtual ~HwProgrammablePartDescItem();
    HwProgrammablePartDescItem(const HwProgrammablePartDescItem&) = delete;
    HwProgrammablePartDescItem& operator=(const HwProgrammablePartDescItem&) = delete;

    std::wstring getName() const override { return m_name; }
    std::wstring getPartName() const override { return m_partName; }
    std::wstring getBootDirBoardName() const override { return m_bootDirBoardName; }
    std::wstring getLoadFilePathCalc() const override { return m_loadFilePathCalc; }
    int getPartType() const override { return m_partType; }
    std::wstring getLoadFilePathOpt() const override { return m_loadFilePathOpt; }
    std::wstring getLoadFileExtension() const override { return m_loadFileExtension; }
    std::wstring getVersion() const override { return m_version; }
    std::wstring getPartNumber() const override { return m_partNumber; }
    std::wstring getPartChangeIndex() const override { return m_partChangeIndex; }
    std::list<IHwProgrammablePartModuleItem*> getModuleList() const override { return m_moduleList; }

    void setName(const std::wstring& name) override { m_name = name; }
    void setPartName(const std::wstring& partName) override { m_partName = partName; }
    void setBootDirBoardName(const std::wstring& bootDirBoardName) override { m_bootDirBoardName = bootDirBoardName; }
    void setLoadFilePathCalc(const std::wstring& loadFilePathCalc) override { m_loadFilePathCalc = loadFilePathCalc; }
    void setPartType(int partType) override { m_partType = partType; }
    void setVersion(const std::wstring& version) override { m_version = version; }
    void setPartNumber(const std::wstring& partNumber) override { m_partNumber = partNumber; }
    void setPartChangeIndex(const std::wstring& partChangeIndex) override { m_partChangeIndex = partChangeIndex; }

    // Behind the destructor in the table of virtual operations: the interface of the setters lacks these.
    virtual void setLoadFilePathOpt(const std::wstring& loadFilePathOpt) { m_loadFilePathOpt = loadFilePathOpt; }
    virtual void setLoadFileExtension(const std::wstring& loadFileExtension)
    {
        m_loadFileExtension = loadFileExtension;
    }
    virtual void setModuleList(const std::list<IHwProgrammablePartModuleItem*>& moduleList)
    {
        m_moduleList = moduleList;
    }

private:
    std::wstring m_name;
    std::wstring m_partName;
    std::wstring m_bootDirBoardName;
    std::wstring m_loadFilePathCalc;
    int m_partType = 0;
    std::wstring m_loadFilePathOpt;
    std::wstring m_loadFileExtension;
    std::wstring m_version;
    std::wstring m_partNumber;
    std::wstring m_partChangeIndex;
    std::list<IHwProgrammablePartModuleItem*> m_moduleList; ///< Not owned.
};

} // namespace KvOrdo

#endif
