#ifndef NYXCONFIG_CTESTINSTRUCTIONDESCITEM_H
#define NYXCONFIG_CTESTINSTRUCTIONDESCITEM_H

#include <string>

#include "ITestInstructionDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// A test instruction. An item is not guarded: it belongs to one thread at a time.
class NYXCONFIG_EXPORT CTestInstructionDescItem : public ITestInstructionDescItemEx
{
public:
    CTestInstructionDescItem() = default;
    virtual ~CTestInstructionDescItem();
    CTestInstructionDescItem(const CTestInstructionDescItem&) = delete;
    CTestInstructionDescItem& operator=(const CTestInstructionDescItem&) = delete;

    std::wstring getName() const override { return m_name; }
    std::wstring getVersion() const override { return m_version; }

    void setName(const std::wstring& name) override { m_name = name; }
    void setVersion(const std::wstring& version) override { m_version = version; }

private:
    std::wstring m_version;
    std::wstring m_name;
};

} // namespace KvOrdo

#endif
