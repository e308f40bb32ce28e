#ifndef NYXCONFIG_SHAREDELEMENTS_H
#define NYXCONFIG_SHAREDELEMENTS_H

#include "ElementNodeList.h"
#include "ElementTable.h"

/**
 * @file
 * The small blocks that several branches of the document share:
 *
 *     Properties     of Property
 *     ServiceData
 *       Services     of Service
 */

namespace KvDeviceFootprint
{

/// A free name and value. Has no identity: entries are never paired with those of another list.
class NYXCONFIG_EXPORT CProperty : public CElement<CProperty>
{
    DFP_ELEMENT(CProperty, "Property")

public:
    DFP_ATTRIBUTE(name);  ///< Free text.
    DFP_ATTRIBUTE(value); ///< Free text.
    DFP_ELEMENT_END
};

class NYXCONFIG_EXPORT CProperties : public CElementNodeList<CProperty>
{
    DFP_LIST(CProperties, "Properties")
};

/// A service that was done on the device or a board.
class NYXCONFIG_EXPORT CService : public CElement<CService>
{
    DFP_ELEMENT(CService, "Service")

public:
    DFP_ATTRIBUTE(serviceCode); ///< Integer. Identity key.
    DFP_ATTRIBUTE(serviceDate); ///< Date, yyyy-mm-dd.
    DFP_ELEMENT_END

public:
    /// Equal `serviceCode`.
    bool IsSameEntity(const CService& other) const;
};

class NYXCONFIG_EXPORT CServices : public CElementNodeList<CService>
{
    DFP_LIST(CServices, "Services")
};

class NYXCONFIG_EXPORT CServiceData : public CElement<CServiceData>
{
    DFP_ELEMENT(CServiceData, "ServiceData")

public:
    DFP_CHILD(CServices, services);
    DFP_ELEMENT_END
};

} // namespace KvDeviceFootprint

#endif
