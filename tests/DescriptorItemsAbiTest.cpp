// The order of the virtual operations is what an application was compiled against. It is checked where it counts: in
// the slot that a pointer to a virtual member names.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "CBPartIdentificationDescItem.h"
#include "CMaintenanceDataDescItem.h"
#include "CMaintenanceDescItem.h"
#include "CProductDescItem.h"
#include "CServiceDescItem.h"
#include "CTestInstructionDescItem.h"
#include "DeviceDataDescItem.h"
#include "HwBoardDescItem.h"
#include "HwProgrammablePartDescItem.h"
#include "IBiosDescItem.h"
#include "IOperatingSystemDescItem.h"
#include "MaintenanceTaskDescItem.h"
#include "SoftwareDataDescItem.h"
#include "SoftwareDescItem.h"

namespace
{

using namespace KvOrdo;

/// In the Itanium C++ ABI the first word of a pointer to a virtual member is 1 + its byte offset in the vtable.
template<typename Signature, typename Class>
std::size_t slotOf(Signature Class::*member)
{
    static_assert(sizeof(member) >= sizeof(std::ptrdiff_t));
    std::ptrdiff_t word = 0;
    std::memcpy(&word, &member, sizeof(word));
    EXPECT_EQ(word % 2, 1) << "the member is not virtual";
    return static_cast<std::size_t>(word - 1) / sizeof(void*);
}

/// Its one operation takes the first slot behind those of the base.
template<typename Base>
class Behind : public Base
{
public:
    virtual void behind() {}
};

template<typename Base>
std::size_t slotCount()
{
    return slotOf(&Behind<Base>::behind);
}

struct Operation
{
    std::string name;
    std::size_t slot;
};
using Operations = std::vector<Operation>;

constexpr std::size_t DestructorSlots = 2; // the complete and the deleting one

struct Kind
{
    std::string name;
    bool destructorInInterface;
    bool interfaceHasDestructor;
    bool setterInterfaceHasDestructor;
    bool implementationHasDestructor;
    std::size_t interfaceSlots;
    std::size_t setterInterfaceSlots;
    std::size_t implementationSlots;
    Operations getters;
    Operations setters;
    Operations added;
};

enum class Destructor
{
    InInterface,
    InImplementation
};

template<typename Interface, typename SetterInterface, typename Implementation>
Kind kind(const std::string& name, Destructor place, const Operations& getters, const Operations& setters,
          const Operations& added = {})
{
    static_assert(std::is_base_of_v<Interface, SetterInterface>);
    static_assert(std::is_base_of_v<SetterInterface, Implementation>);
    static_assert(std::is_abstract_v<Interface> && std::is_abstract_v<SetterInterface>);
    static_assert(!std::is_abstract_v<Implementation>);
    static_assert(!std::is_copy_constructible_v<Implementation> && !std::is_copy_assignable_v<Implementation>);
    return {name,
            place == Destructor::InInterface,
            std::has_virtual_destructor_v<Interface>,
            std::has_virtual_destructor_v<SetterInterface>,
            std::has_virtual_destructor_v<Implementation>,
            slotCount<Interface>(),
            slotCount<SetterInterface>(),
            slotCount<Implementation>(),
            getters,
            setters,
            added};
}

Operation named(const std::string& name, std::size_t slot)
{
    return {name, slot};
}

#define OPERATION(Class, operation) named(#operation, slotOf(&Class::operation))
#define OVERLOAD(Class, operation, ...) named(#operation " " #__VA_ARGS__, slotOf<__VA_ARGS__>(&Class::operation))

Kind deviceData()
{
    using I = IDeviceDataDescItem;
    using E = IDeviceDataDescItemEx;
    return kind<I, E, DeviceDataDescItem>(
        "DeviceDataDescItem", Destructor::InInterface,
        {OPERATION(I, getDeviceId), OPERATION(I, getPartChangeIndex), OPERATION(I, getType), OPERATION(I, getPartName),
         OPERATION(I, getProductDate), OPERATION(I, getUpgradeType), OPERATION(I, getUpgradePartNumber),
         OPERATION(I, getMaintenanceData), OPERATION(I, getServices), OPERATION(I, getTestInstructions)},
        {OPERATION(E, setDeviceId), OPERATION(E, setPartChangeIndex), OPERATION(E, setType), OPERATION(E, setPartName),
         OPERATION(E, setProductDate), OPERATION(E, setUpgradeType), OPERATION(E, setUpgradePartNumber),
         OPERATION(E, setMaintenanceData), OPERATION(E, setServices), OPERATION(E, setTestInstructions)});
}

Operations boardGetters()
{
    using I = IHwBoardDescItem;
    return {OPERATION(I, getName),
            OPERATION(I, getId),
            OPERATION(I, getPath),
            OPERATION(I, getSerialNumber),
            OPERATION(I, getType),
            OPERATION(I, getMajorRevision),
            OPERATION(I, getMinorRevision),
            OPERATION(I, getHwCode),
            OPERATION(I, getMainVersion),
            OPERATION(I, getSlotInfo),
            OPERATION(I, getIsSimulation),
            OPERATION(I, getProgrammableParts),
            OPERATION(I, getMaintenanceData),
            OPERATION(I, getServices),
            OPERATION(I, getProductId),
            OPERATION(I, getProductDate),
            OPERATION(I, getReadCode),
            OPERATION(I, getTestInstruction),
            OPERATION(I, getPartName),
            OPERATION(I, getParentId),
            OPERATION(I, getExternConnected),
            OPERATION(I, getBPartIdentification),
            OPERATION(I, getPartNumber),
            OPERATION(I, getVariant),
            OPERATION(I, getPartNumberVariant),
            OPERATION(I, getPartNumberVariantSize),
            OPERATION(I, getVariantOption)};
}

Operations boardSetters()
{
    using E = IHwBoardDescItemEx;
    using Text = const std::wstring&;
    return {OPERATION(E, setName),
            OPERATION(E, setId),
            OPERATION(E, setSerialNumber),
            OPERATION(E, setType),
            OPERATION(E, setMajorRevision),
            OPERATION(E, setMinorRevision),
            OPERATION(E, setHwCode),
            OPERATION(E, setMainVersion),
            OPERATION(E, setSlotInfo),
            OPERATION(E, setIsSimulation),
            OPERATION(E, setProgrammableParts),
            OPERATION(E, setMaintenanceData),
            OPERATION(E, setServices),
            OPERATION(E, setProductId),
            OVERLOAD(E, setProductDate, void(unsigned short)),
            OVERLOAD(E, setProductDate, void(Text)),
            OPERATION(E, setReadCode),
            OVERLOAD(E, setTestInstruction, void(unsigned short)),
            OVERLOAD(E, setTestInstruction, void(Text)),
            OPERATION(E, setPartName),
            OPERATION(E, setParentId),
            OPERATION(E, setExternConnected),
            OPERATION(E, setBPartIdentification),
            OVERLOAD(E, setPartNumberVariant, int(long, unsigned int)),
            OVERLOAD(E, setPartNumberVariant, int(Text, Text)),
            OVERLOAD(E, setPartNumberVariant, int(Text)),
            OPERATION(E, setVariantOption)};
}

Kind hwBoard()
{
    return kind<IHwBoardDescItem, IHwBoardDescItemEx, HwBoardDescItem>("HwBoardDescItem", Destructor::InInterface,
                                                                       boardGetters(), boardSetters());
}

Kind hwProgrammablePart()
{
    using I = IHwProgrammablePartDescItem;
    using E = IHwProgrammablePartDescItemEx;
    using C = HwProgrammablePartDescItem;
    return kind<I, E, C>(
        "HwProgrammablePartDescItem", Destructor::InImplementation,
        {OPERATION(I, getName), OPERATION(I, getPartName), OPERATION(I, getBootDirBoardName),
         OPERATION(I, getLoadFilePathCalc), OPERATION(I, getPartType), OPERATION(I, getLoadFilePathOpt),
         OPERATION(I, getLoadFileExtension), OPERATION(I, getVersion), OPERATION(I, getPartNumber),
         OPERATION(I, getPartChangeIndex), OPERATION(I, getModuleList)},
        {OPERATION(E, setName), OPERATION(E, setPartName), OPERATION(E, setBootDirBoardName),
         OPERATION(E, setLoadFilePathCalc), OPERATION(E, setPartType), OPERATION(E, setVersion),
         OPERATION(E, setPartNumber), OPERATION(E, setPartChangeIndex)},
        {OPERATION(C, setLoadFilePathOpt), OPERATION(C, setLoadFileExtension), OPERATION(C, setModuleList)});
}

Kind bPartIdentification()
{
    using I = IBPartIdentificationDescItem;
    using E = IBPartIdentificationDescItemEx;
    return kind<I, E, CBPartIdentificationDescItem>(
        "CBPartIdentificationDescItem", Destructor::InInterface,
        {OPERATION(I, getName), OPERATION(I, getPartNumber), OPERATION(I, getSn), OPERATION(I, getPartChangeIndex),
         OPERATION(I, getVendorName), OPERATION(I, getAdditionalInfo)},
        {OPERATION(E, setName), OPERATION(E, setPartNumber), OPERATION(E, setSn), OPERATION(E, setPartChangeIndex),
         OPERATION(E, setVendorName), OPERATION(E, setAdditionalInfo)});
}

Kind product()
{
    using I = IProductDescItem;
    using E = IProductDescItemEx;
    return kind<I, E, CProductDescItem>(
        "CProductDescItem", Destructor::InImplementation,
        {OPERATION(I, getId), OPERATION(I, getPartNumber), OPERATION(I, getPartChangeIndex), OPERATION(I, getType),
         OPERATION(I, getPartName)},
        {OPERATION(E, setId), OPERATION(E, setPartNumber), OPERATION(E, setPartChangeIndex), OPERATION(E, setType),
         OPERATION(E, setPartName)});
}

Kind service()
{
    using I = IServiceDescItem;
    using E = IServiceDescItemEx;
    return kind<I, E, CServiceDescItem>("CServiceDescItem", Destructor::InImplementation,
                                        {OPERATION(I, getServiceCode), OPERATION(I, getServiceDate)},
                                        {OPERATION(E, setServiceCode), OPERATION(E, setServiceDate)});
}

Kind maintenanceTask()
{
    using I = IMaintenanceTaskDescItem;
    using E = IMaintenanceTaskDescItemEx;
    return kind<I, E, MaintenanceTaskDescItem>("MaintenanceTaskDescItem", Destructor::InInterface,
                                               {OPERATION(I, getName), OPERATION(I, getDone), OPERATION(I, getResult)},
                                               {OPERATION(E, setName), OPERATION(E, setDone), OPERATION(E, setResult)});
}

Kind maintenance()
{
    using I = IMaintenanceDescItem;
    using E = IMaintenanceDescItemEx;
    return kind<I, E, CMaintenanceDescItem>("CMaintenanceDescItem", Destructor::InInterface,
                                            {OPERATION(I, getResponsiblePerson), OPERATION(I, getMaintenanceDate),
                                             OPERATION(I, getGeneratedBy), OPERATION(I, getMaintenanceTasks)},
                                            {OPERATION(E, setResponsiblePerson), OPERATION(E, setMaintenanceDate),
                                             OPERATION(E, setGeneratedBy), OPERATION(E, setMaintenanceTasks)});
}

Kind maintenanceData()
{
    using I = IMaintenanceDataDescItem;
    using E = IMaintenanceDataDescItemEx;
    return kind<I, E, CMaintenanceDataDescItem>(
        "CMaintenanceDataDescItem", Destructor::InImplementation,
        {OPERATION(I, getOperatingHours), OPERATION(I, getMakeAndBreakCycles), OPERATION(I, getMaintenances)},
        {OPERATION(E, setOperatingHours), OPERATION(E, setMakeAndBreakCycles), OPERATION(E, setMaintenances)});
}

Kind testInstruction()
{
    using I = ITestInstructionDescItem;
    using E = ITestInstructionDescItemEx;
    return kind<I, E, CTestInstructionDescItem>("CTestInstructionDescItem", Destructor::InImplementation,
                                                {OPERATION(I, getName), OPERATION(I, getVersion)},
                                                {OPERATION(E, setName), OPERATION(E, setVersion)});
}

Kind software()
{
    using I = ISoftwareDescItem;
    using E = ISoftwareDescItemEx;
    return kind<I, E, SoftwareDescItem>(
        "SoftwareDescItem", Destructor::InImplementation,
        {OPERATION(I, getName), OPERATION(I, getVersion), OPERATION(I, getStatus), OPERATION(I, getPartNumber),
         OPERATION(I, getPartChangeIndex), OPERATION(I, getSerialNumber), OPERATION(I, getVendorName),
         OPERATION(I, getSoftwareItems)},
        {OPERATION(E, setName), OPERATION(E, setVersion), OPERATION(E, setStatus), OPERATION(E, setPartNumber),
         OPERATION(E, setPartChangeIndex), OPERATION(E, setSerialNumber), OPERATION(E, setVendorName),
         OPERATION(E, setSoftwareItems)});
}

Kind softwareData()
{
    using I = ISoftwareDataDescItem;
    using E = ISoftwareDataDescItemEx;
    return kind<I, E, SoftwareDataDescItem>(
        "SoftwareDataDescItem", Destructor::InInterface,
        {OPERATION(I, getBiosItem), OPERATION(I, getOperationSystemItem), OPERATION(I, getSoftwareItems)},
        {OPERATION(E, setBiosItem), OPERATION(E, setOperatingSystemItem), OPERATION(E, setSoftwareItems)},
        {OPERATION(SoftwareDataDescItem, addSoftware)});
}

/// Expects the operations in consecutive slots and returns the slot behind the last.
std::size_t expectInOrder(const Operations& operations, std::size_t first)
{
    for (const Operation& operation : operations) {
        EXPECT_EQ(operation.slot, first) << operation.name;
        ++first;
    }
    return first;
}

class DescriptorItemAbi : public testing::TestWithParam<Kind (*)()>
{
};

TEST_P(DescriptorItemAbi, DestructorGettersSettersAndAddedOperationsStandInOrder)
{
    const Kind item = GetParam()();
    SCOPED_TRACE(item.name);

    std::size_t slot = expectInOrder(item.getters, item.destructorInInterface ? DestructorSlots : 0);
    EXPECT_EQ(item.interfaceSlots, slot);
    slot = expectInOrder(item.setters, slot);
    EXPECT_EQ(item.setterInterfaceSlots, slot);
    slot = expectInOrder(item.added, slot + (item.destructorInInterface ? 0 : DestructorSlots));
    EXPECT_EQ(item.implementationSlots, slot);
}

TEST_P(DescriptorItemAbi, VirtualDestructorIsDeclaredWhereTheKindHasIt)
{
    const Kind item = GetParam()();
    SCOPED_TRACE(item.name);

    EXPECT_EQ(item.interfaceHasDestructor, item.destructorInInterface);
    EXPECT_EQ(item.setterInterfaceHasDestructor, item.destructorInInterface);
    EXPECT_TRUE(item.implementationHasDestructor);
}

std::string kindName(const testing::TestParamInfo<Kind (*)()>& info)
{
    return info.param().name;
}

INSTANTIATE_TEST_SUITE_P(AllKinds, DescriptorItemAbi,
                         testing::Values(deviceData, hwBoard, hwProgrammablePart, bPartIdentification, product, service,
                                         maintenanceTask, maintenance, maintenanceData, testInstruction, software,
                                         softwareData),
                         kindName);

TEST(DescriptorItemAbiOrder, BoardHasTwentySevenGettersAndAsManySetters)
{
    EXPECT_EQ(slotCount<IHwBoardDescItem>(), 29U);
    EXPECT_EQ(slotCount<IHwBoardDescItemEx>(), 56U);
    EXPECT_EQ(slotOf(&IHwBoardDescItem::getVariantOption), 28U);
}

TEST(DescriptorItemAbiOrder, OverridesKeepTheSlotsOfTheInterface)
{
    EXPECT_EQ(slotOf(&HwBoardDescItem::getPartNumber), slotOf(&IHwBoardDescItem::getPartNumber));
    EXPECT_EQ(slotOf(&CServiceDescItem::getServiceDate), slotOf(&IServiceDescItem::getServiceDate));
    EXPECT_EQ(slotOf(&SoftwareDataDescItem::getOperationSystemItem),
              slotOf(&ISoftwareDataDescItem::getOperationSystemItem));
}

TEST(DescriptorItemAbiOrder, PartNumberTableHasOnlyItsVirtualDestructor)
{
    using Table = HwBoardDescItem::CPartNumberVariant;
    EXPECT_TRUE(std::has_virtual_destructor_v<Table>);
    EXPECT_EQ(slotCount<Table>(), DestructorSlots);
}

template<typename Interface>
void expectFourTexts(const char* name)
{
    SCOPED_TRACE(name);
    EXPECT_TRUE(std::has_virtual_destructor_v<Interface>);
    const std::size_t end =
        expectInOrder({OPERATION(Interface, getName), OPERATION(Interface, getVersion),
                       OPERATION(Interface, getPartNumber), OPERATION(Interface, getPartChangeIndex)},
                      DestructorSlots);
    EXPECT_EQ(slotCount<Interface>(), end);
}

TEST(DescriptorItemAbiOrder, BiosAndOperatingSystemHaveADestructorAndFourTexts)
{
    expectFourTexts<IBiosDescItem>("IBiosDescItem");
    expectFourTexts<IOperatingSystemDescItem>("IOperatingSystemDescItem");
}

} // namespace
