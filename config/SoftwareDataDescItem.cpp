#include "SoftwareDataDescItem.h"

#include "IBiosDescItem.h"
#include "IOperatingSystemDescItem.h"

namespace KvOrdo
{

SoftwareDataDescItem::~SoftwareDataDescItem()
{
    delete m_biosItem;
    delete m_operatingSystemItem;
}

} // namespace KvOrdo
