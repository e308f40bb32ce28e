#ifndef NYXCONFIG_HARDWAREELEMENTS_H
#define NYXCONFIG_HARDWAREELEMENTS_H

#include "ElementNodeList.h"
#include "ElementTable.h"
#include "MaintenanceElements.h"
#include "SharedElements.h"

/**
 * @file
 * What the instrument is physically built of:
 *
 *     HardwareData
 *       HardwareList            of Hardware, one per board
 *         BPartIdentification
 *         ProgrammableParts     of ProgrammablePart
 *         MaintenanceData       (MaintenanceElements.h)
 *         ServiceData           (SharedElements.h)
 *         Properties            (SharedElements.h)
 *       ProductList             of Product
 *
 * The list of boards is flat: a board that another one carries names it by `parentId`.
 *
 * Every attribute is text. Where a row says integer or boolean, that is what the facade stores there. Nothing is
 * mandatory at this layer; what must not be empty is the facade's rule. Text forms: part number dddd.dddd.dd, part
 * change index dd.dd, date yyyy-mm-dd.
 */

namespace KvDeviceFootprint
{

/// The second identification that the maker of a bought-in board gave it.
class NYXCONFIG_EXPORT CBPartIdentification : public CElement<CBPartIdentification>
{
    DFP_ELEMENT(CBPartIdentification, "BPartIdentification")

public:
    DFP_ATTRIBUTE(name);            ///< Name.
    DFP_ATTRIBUTE(partNumber);      ///< Part number.
    DFP_ATTRIBUTE(sn);              ///< Serial number.
    DFP_ATTRIBUTE(partChangeIndex); ///< Part change index.
    DFP_ATTRIBUTE(vendorName);      ///< Vendor's name.
    DFP_ATTRIBUTE(additionalInfo);  ///< Free text.
    DFP_ELEMENT_END
};

/// Something on a board that can be programmed.
class NYXCONFIG_EXPORT CProgrammablePart : public CElement<CProgrammablePart>
{
    DFP_ELEMENT(CProgrammablePart, "ProgrammablePart")

public:
    DFP_ATTRIBUTE(name);            ///< Name. Identity key when a part number is missing.
    DFP_ATTRIBUTE(version);         ///< Version of what is programmed.
    DFP_ATTRIBUTE(partNumber);      ///< Part number. Identity key.
    DFP_ATTRIBUTE(partChangeIndex); ///< Part change index.
    DFP_ELEMENT_END

public:
    /// Equal `partNumber`; equal `name` if either side has no part number.
    bool IsSameEntity(const CProgrammablePart& other) const;
};

class NYXCONFIG_EXPORT CProgrammableParts : public CElementNodeList<CProgrammablePart>
{
    DFP_LIST(CProgrammableParts, "ProgrammableParts")
};

/// A board of the device.
class NYXCONFIG_EXPORT CHardware : public CElement<CHardware>
{
    DFP_ELEMENT(CHardware, "Hardware")

public:
    DFP_ATTRIBUTE(id);              ///< Integer. Number of this board within the document, the target of `parentId`.
    DFP_ATTRIBUTE(productId);       ///< Product identifier of the board.
    DFP_ATTRIBUTE(partNumber);      ///< Part number, or several with "," between them. Identity key.
    DFP_ATTRIBUTE(sn);              ///< Serial number, integer. Identity key.
    DFP_ATTRIBUTE(partChangeIndex); ///< Part change index.
    DFP_ATTRIBUTE(hardwareCode);    ///< Hardware code, integer.
    DFP_ATTRIBUTE(productDate);     ///< Production date.
    DFP_ATTRIBUTE(readCode);        ///< Read code.
    DFP_ATTRIBUTE(testInstruction); ///< Test instruction of the board.
    DFP_ATTRIBUTE(name);            ///< Name, perhaps with variant and option behind it: "name[variant,option]".
    DFP_ATTRIBUTE(partName);        ///< Part name.
    DFP_ATTRIBUTE(parentId); ///< Integer, never negative: `id` of the board that carries this one. Empty if none.
    DFP_ATTRIBUTE(externConnected); ///< "true" or "false".
    DFP_ATTRIBUTE(connectorName);   ///< Name of the connector.

    DFP_CHILD(CBPartIdentification, bPartIdentification);
    DFP_CHILD(CProgrammableParts, programmableParts);
    DFP_CHILD(CMaintenanceData, maintenanceData);
    DFP_CHILD(CServiceData, serviceData);
    DFP_CHILD(CProperties, properties);
    DFP_ELEMENT_END

public:
    /// Equal `partNumber` and equal `sn`.
    bool IsSameEntity(const CHardware& other) const;
};

class NYXCONFIG_EXPORT CHardwareList : public CElementNodeList<CHardware>
{
    DFP_LIST(CHardwareList, "HardwareList")
};

/// A product that the device carries.
class NYXCONFIG_EXPORT CProduct : public CElement<CProduct>
{
    DFP_ELEMENT(CProduct, "Product")

public:
    DFP_ATTRIBUTE(id);              ///< Identifier of the product.
    DFP_ATTRIBUTE(partNumber);      ///< Part number. Identity key.
    DFP_ATTRIBUTE(partChangeIndex); ///< Part change index.
    DFP_ATTRIBUTE(type);            ///< Type.
    DFP_ATTRIBUTE(partName);        ///< Part name.
    DFP_ELEMENT_END

public:
    /// Equal `partNumber`.
    bool IsSameEntity(const CProduct& other) const;
};

class NYXCONFIG_EXPORT CProductList : public CElementNodeList<CProduct>
{
    DFP_LIST(CProductList, "ProductList")
};

/// The boards and products of the device.
class NYXCONFIG_EXPORT CHardwareData : public CElement<CHardwareData>
{
    DFP_ELEMENT(CHardwareData, "HardwareData")

public:
    DFP_CHILD(CHardwareList, hardwareList);
    DFP_CHILD(CProductList, productList);
    DFP_ELEMENT_END
};

} // namespace KvDeviceFootprint

#endif
