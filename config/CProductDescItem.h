#ifndef NYXCONFIG_CPRODUCTDESCITEM_H
#define NYXCONFIG_CPRODUCTDESCITEM_H

#include <string>

#include "IProductDescItemEx.h"
#include "nyxconfig_export.h"

namespace KvOrdo
{

/// A product. An item is not guarded: it belongs to one thread at a time.
class NYXCONFIG_EXPORT CProductDescItem : public IProductDescItemEx
{
public:
    CProductDescItem() = default;
    virtual ~CProductDescItem();
    CProductDescItem(const CProductDescItem&) = delete;
    CProductDescItem& operator=(const CProductDescItem&) = delete;

    long getId() const override { return m_id; }
    std::wstring getPartNumber() const override { return m_partNumber; }
    std::wstring getPartChangeIndex() const override { return m_partChangeIndex; }
    std::wstring getType() const override { return m_type; }
    std::wstring getPartName() const override { return m_partName; }

    void setId(long id) override { m_id = id; }
    void setPartNumber(const std::wstring& partNumber) override { m_partNumber = partNumber; }
    void setPartChangeIndex(const std::wstring& partChangeIndex) override { m_partChangeIndex = partChangeIndex; }
    void setType(const std::wstring& type) override { m_type = type; }
    void setPartName(const std::wstring& partName) override { m_partName = partName; }

private:
    long m_id = -1;
    std::wstring m_partNumber;
    std::wstring m_partChangeIndex;
    std::wstring m_type;
    std::wstring m_partName;
};

} // namespace KvOrdo

#endif
