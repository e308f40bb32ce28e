// The order of the virtual operations is what an application was compiled against: its own element, stream and
// comparator classes are called through it.

#include "AttributeNode.h"
#include "Checksum.h"
#include "Comparators.h"
#include "DeviceFootprint.h"
#include "DeviceFootprintLink.h"
#include "ElementNode.h"
#include "ElementNodeList.h"
#include "VirtualSlot.h"
#include "XmlStreams.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <list>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using namespace KvDeviceFootprint;
using NyxTest::BehindBase;
using NyxTest::DestructorSlots;
using NyxTest::SlotCount;
using NyxTest::VirtualSlot;

/// Expects the slots to follow one another from @p first on.
void ExpectInOrder(std::size_t first, const std::vector<std::size_t>& slots)
{
    for (std::size_t i = 0; i < slots.size(); ++i) {
        EXPECT_EQ(slots[i], first + i) << "operation " << i;
    }
}

template<class T>
class NodeSlots : public testing::Test
{
};
using NodeClasses = testing::Types<CNode, CReadOnlyAttribute, CAttribute, CTimeAttribute, CElementNode>;
TYPED_TEST_SUITE(NodeSlots, NodeClasses);

TYPED_TEST(NodeSlots, DestructorAndName)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<TypeParam>);
    EXPECT_EQ(VirtualSlot(&TypeParam::GetNodeName), DestructorSlots);
}

TEST(AttributeSlots, AttributesAddNone)
{
    EXPECT_EQ(SlotCount<CNode>(), DestructorSlots + 1);
    EXPECT_EQ(SlotCount<CReadOnlyAttribute>(), DestructorSlots + 1);
    EXPECT_EQ(SlotCount<CAttribute>(), DestructorSlots + 1);
    EXPECT_EQ(SlotCount<CTimeAttribute>(), DestructorSlots + 1);
}

template<class T>
class ElementSlots : public testing::Test
{
};
using ElementClasses = testing::Types<CElementNode, CElementNodeList<CHardware>, CElementNodeList<CConnectedDevice>,
                                      CElementNodeList<CProperty>, CHardwareList, CConnectedDeviceList, CSoftwareList,
                                      CMaintenanceInfos, CDeviceFootprintData, CDeviceFootprint, CConnectedDevice,
                                      CHardware, CSoftware, CBios, CDeviceData, CServiceData>;
TYPED_TEST_SUITE(ElementSlots, ElementClasses);

TYPED_TEST(ElementSlots, StandInTheOneOrder)
{
    using T = TypeParam;
    using Children = std::list<CElementNode*>;
    EXPECT_TRUE(std::has_virtual_destructor_v<T>);
    ExpectInOrder(
        DestructorSlots,
        {
            VirtualSlot(&T::GetNodeName),
            VirtualSlot(&T::GetElementName),
            VirtualSlot(&T::initAttributeNodes),
            VirtualSlot(&T::GetChildElements),
            VirtualSlot(&T::GetAttributeNodes),
            VirtualSlot(&T::Compare),
            VirtualSlot(&T::IsEmpty),
            VirtualSlot(&T::IsOptional),
            VirtualSlot(&T::IsValid),
            VirtualSlot(&T::Clear),
            VirtualSlot(static_cast<bool (T::*)(CXmlStreamWriter&)>(&T::SaveToStream)),
            VirtualSlot(static_cast<bool (T::*)(CXmlStreamReader&)>(&T::LoadFromStream)),
            VirtualSlot(static_cast<bool (T::*)(const CElementNode&)>(&T::CopyFrom)),
            VirtualSlot(&T::GetRelationship),
            VirtualSlot(static_cast<void (T::*)(const std::string&, Children&) const>(&T::GetAllChildsByName)),
            VirtualSlot(static_cast<bool (T::*)(const CElementNode&, bool)>(&T::InsertFrom)),
        });
    EXPECT_EQ(SlotCount<T>(), DestructorSlots + 16) << "no class adds an operation";
}

TEST(ElementSlots, OtherOperationsAreNotVirtual)
{
    EXPECT_FALSE(NyxTest::IsVirtual(&CElementNode::GetAttributeByName));
    EXPECT_FALSE(NyxTest::IsVirtual(&CElementNode::GetAttributeValue));
    EXPECT_FALSE(NyxTest::IsVirtual(&CElementNode::GetChildElementByName));
    EXPECT_FALSE(NyxTest::IsVirtual(&CHardwareList::CreateEntry));
    EXPECT_FALSE(NyxTest::IsVirtual(&CReadOnlyAttribute::IsEmpty));
    EXPECT_FALSE(NyxTest::IsVirtual(&CReadOnlyAttribute::Clear));
    EXPECT_FALSE(NyxTest::IsVirtual(&CDeviceFootprintData::IsSameEntity));
    EXPECT_FALSE(NyxTest::IsVirtual(&CDeviceFootprintData::ComputeChecksum));
    EXPECT_FALSE(NyxTest::IsVirtual(&CDeviceFootprintData::ValidateChecksum));
    EXPECT_FALSE(NyxTest::IsVirtual(&CDeviceFootprintData::WriteTo));
    EXPECT_FALSE(NyxTest::IsVirtual(&CHardware::IsSameEntity));
}

TEST(ElementSlots, AListIsAnElementFirst)
{
    CHardwareList list;
    EXPECT_EQ(static_cast<const void*>(static_cast<CElementNode*>(&list)), static_cast<const void*>(&list));
}

template<class T>
class StreamSlots : public testing::Test
{
};
using StreamClasses = testing::Types<CAbstractStream, COutStream, CChecksumStream>;
TYPED_TEST_SUITE(StreamSlots, StreamClasses);

TYPED_TEST(StreamSlots, StandInTheOneOrder)
{
    using T = TypeParam;
    EXPECT_TRUE(std::has_virtual_destructor_v<T>);
    ExpectInOrder(DestructorSlots, {VirtualSlot(&T::WriteNonEmptyString), VirtualSlot(&T::WriteAttributeValue),
                                    VirtualSlot(&T::WriteNewLine), VirtualSlot(&T::WriteConnectedDeviceLine)});
    EXPECT_FALSE(NyxTest::IsVirtual(&T::WriteBeginToken));
    EXPECT_FALSE(NyxTest::IsVirtual(&T::WriteEndToken));
    EXPECT_FALSE(NyxTest::IsVirtual(&T::WriteBeginEndToken));
    EXPECT_FALSE(NyxTest::IsVirtual(&T::WriteNoAddedEndToken));
}

TEST(StreamSlots, JustTheChecksumStreamAddsOne)
{
    EXPECT_EQ(SlotCount<CAbstractStream>(), DestructorSlots + 4);
    EXPECT_EQ(SlotCount<COutStream>(), DestructorSlots + 4);
    EXPECT_EQ(SlotCount<CChecksumStream>(), DestructorSlots + 5);
    EXPECT_EQ(VirtualSlot(&CChecksumStream::WriteSpaces), DestructorSlots + 4);
    EXPECT_FALSE(NyxTest::IsVirtual(&CAbstractStream::WriteSpaces));
}

TEST(ReaderAndWriterSlots, DestructorOnly)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<CXmlStreamReader>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CXmlStreamWriter>);
    EXPECT_EQ(SlotCount<CXmlStreamReader>(), DestructorSlots);
    EXPECT_EQ(SlotCount<CXmlStreamWriter>(), DestructorSlots);
}

TEST(ChecksumSlots, OfAlgorithms)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<CChecksumAlgorithmIF>);
    ExpectInOrder(DestructorSlots,
                  {VirtualSlot(&CChecksumAlgorithmIF::init), VirtualSlot(&CChecksumAlgorithmIF::finalize),
                   VirtualSlot(&CChecksumAlgorithmIF::add)});
    ExpectInOrder(DestructorSlots,
                  {VirtualSlot(&CMD5Checksum::init), VirtualSlot(&CMD5Checksum::finalize),
                   VirtualSlot(static_cast<void (CMD5Checksum::*)(const std::string&)>(&CMD5Checksum::add))});
    EXPECT_EQ(SlotCount<CChecksumAlgorithmIF>(), DestructorSlots + 3);
    EXPECT_EQ(SlotCount<CMD5Checksum>(), DestructorSlots + 3);
}

template<class T>
class ContainerSlots : public testing::Test
{
};
using ContainerClasses = testing::Types<CChecksumContainerIF, CMD5ChecksumContainer>;
TYPED_TEST_SUITE(ContainerSlots, ContainerClasses);

TYPED_TEST(ContainerSlots, StandInTheOneOrder)
{
    using T = TypeParam;
    EXPECT_TRUE(std::has_virtual_destructor_v<T>);
    ExpectInOrder(DestructorSlots, {VirtualSlot(&T::set), VirtualSlot(&T::fromHex), VirtualSlot(&T::toHex)});
    EXPECT_EQ(SlotCount<T>(), DestructorSlots + 3);
}

TEST(LinkSlots, OfTheLinkFile)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<DeviceFootprintLink>);
    ExpectInOrder(DestructorSlots,
                  {VirtualSlot(&DeviceFootprintLink::writeInternal), VirtualSlot(&DeviceFootprintLink::readInternal)});
    EXPECT_EQ(SlotCount<DeviceFootprintLink>(), DestructorSlots + 2);
}

TEST(ComparatorSlots, OfTheBase)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<CComparatorBase>);
    ExpectInOrder(DestructorSlots,
                  {VirtualSlot(&CComparatorBase::GetAssociatedNodeName), VirtualSlot(&CComparatorBase::operator())});
    EXPECT_EQ(SlotCount<CComparatorBase>(), DestructorSlots + 2);
}

template<class T>
class ElementComparatorSlots : public testing::Test
{
};
using ElementComparators = testing::Types<CComparatorTyped<CBios>, CComparatorDefault<CBios>, CDeviceDataComparator,
                                          CMaintenanceDataComparator, CHardwareComparator, CProgrammablePartComparator,
                                          CBiosComparator, COperatingSystemComparator, CSoftwareComparator>;
TYPED_TEST_SUITE(ElementComparatorSlots, ElementComparators);

TYPED_TEST(ElementComparatorSlots, AddOne)
{
    using T = TypeParam;
    ExpectInOrder(DestructorSlots, {VirtualSlot(&T::GetAssociatedNodeName), VirtualSlot(&T::operator()),
                                    VirtualSlot(&T::CompareInternal)});
    EXPECT_EQ(SlotCount<T>(), DestructorSlots + 3);
    EXPECT_EQ(sizeof(T), sizeof(void*)) << "comparators have no data";
}

template<class T>
class ListComparatorSlots : public testing::Test
{
};
using ListComparators =
    testing::Types<CComparatorTyped<CElementNodeList<CHardware>>, CListComparatorTyped<CHardware, CHardwareList>,
                   CListComparatorTyped<CSoftware, CSoftwareList>, CHardwareListComparator>;
TYPED_TEST_SUITE(ListComparatorSlots, ListComparators);

TYPED_TEST(ListComparatorSlots, AddTwo)
{
    using T = TypeParam;
    ExpectInOrder(DestructorSlots, {VirtualSlot(&T::GetAssociatedNodeName), VirtualSlot(&T::operator()),
                                    VirtualSlot(&T::InvokeNodeComparison), VirtualSlot(&T::CompareInternal)});
    EXPECT_EQ(SlotCount<T>(), DestructorSlots + 4);
    EXPECT_FALSE(NyxTest::IsVirtual(&T::CreateLookup));
    EXPECT_EQ(sizeof(T), sizeof(void*)) << "comparators have no data";
}

TEST(ComparatorSlots, OfRuleSets)
{
    EXPECT_FALSE(std::is_polymorphic_v<CComparatorRules>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CComparatorRulesFactory>);
    EXPECT_EQ(VirtualSlot(&CComparatorRulesFactory::CreateRules), DestructorSlots);
    EXPECT_EQ(VirtualSlot(&CDefaultHistoryComparatorRulesFactory::CreateRules), DestructorSlots);
    EXPECT_EQ(SlotCount<CComparatorRulesFactory>(), DestructorSlots + 1);
    EXPECT_EQ(SlotCount<CDefaultHistoryComparatorRulesFactory>(), DestructorSlots + 1);
}

} // namespace
