#include "DeviceFootprint.h"
#include "ElementText.h"
#include "ErrorWord.h"
#include "ExceptionsOn.h"
#include "StreamCapture.h"
#include "VirtualSlot.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <list>
#include <string>
#include <type_traits>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

// --- the tables -----------------------------------------------------------------------------------------------------

template<class T>
struct AttributeRow
{
    const char* name;
    CAttribute T::*member;
};

template<class T>
struct ChildRow
{
    template<class Child>
    ChildRow(const char* childTag, Child T::*member)
        : tag(childTag), address([member](T& element) -> CElementNode* { return &(element.*member); })
    {
    }
    template<class Child>
    ChildRow(const char* childTag, COwnedElement<Child> T::*member)
        : tag(childTag), address([member](T& element) -> CElementNode* { return (element.*member).get(); })
    {
    }

    const char* tag;
    std::function<CElementNode*(T&)> address;
};

template<class T>
struct Schema
{
    std::string tag;
    std::vector<AttributeRow<T>> attributes;
    std::vector<ChildRow<T>> children;
};

template<class T>
Schema<T> SchemaOf();

template<>
Schema<CDeviceData> SchemaOf()
{
    using T = CDeviceData;
    return {"DeviceData",
            {{"deviceId", &T::m_deviceId},
             {"partChangeIndex", &T::m_partChangeIndex},
             {"type", &T::m_type},
             {"partName", &T::m_partName},
             {"productDate", &T::m_productDate},
             {"upgradeType", &T::m_upgradeType},
             {"upgradePartNumber", &T::m_upgradePartNumber}},
            {{"TestInstructionList", &T::m_testInstructions},
             {"MaintenanceData", &T::m_maintenanceData},
             {"ServiceData", &T::m_serviceData}}};
}

template<>
Schema<CTestInstruction> SchemaOf()
{
    using T = CTestInstruction;
    return {"TestInstruction", {{"name", &T::m_name}, {"version", &T::m_version}}, {}};
}

template<>
Schema<CMaintenanceData> SchemaOf()
{
    using T = CMaintenanceData;
    return {"MaintenanceData",
            {{"operatingHours", &T::m_operatingHours}, {"makeAndBreakCycles", &T::m_makeAndBreakCycles}},
            {{"Maintenances", &T::m_maintenances}, {"MaintenanceInfos", &T::m_maintenanceInfos}}};
}

template<>
Schema<CMaintenance> SchemaOf()
{
    using T = CMaintenance;
    return {"Maintenance",
            {{"responsiblePerson", &T::m_responsiblePerson},
             {"maintenanceDate", &T::m_maintenanceDate},
             {"generatedBy", &T::m_generatedBy}},
            {{"MaintenanceTasks", &T::m_maintenanceTasks}}};
}

template<>
Schema<CMaintenanceTask> SchemaOf()
{
    using T = CMaintenanceTask;
    return {"MaintenanceTask", {{"name", &T::m_name}, {"done", &T::m_done}, {"result", &T::m_result}}, {}};
}

template<>
Schema<CMaintenanceInfo> SchemaOf()
{
    using T = CMaintenanceInfo;
    return {"MaintenanceInfo", {{"name", &T::m_name}, {"value", &T::m_value}}, {{"Properties", &T::m_properties}}};
}

template<>
Schema<CHardwareData> SchemaOf()
{
    using T = CHardwareData;
    return {"HardwareData", {}, {{"HardwareList", &T::m_hardwareList}, {"ProductList", &T::m_productList}}};
}

template<>
Schema<CHardware> SchemaOf()
{
    using T = CHardware;
    return {"Hardware",
            {{"id", &T::m_id},
             {"productId", &T::m_productId},
             {"partNumber", &T::m_partNumber},
             {"sn", &T::m_sn},
             {"partChangeIndex", &T::m_partChangeIndex},
             {"hardwareCode", &T::m_hardwareCode},
             {"productDate", &T::m_productDate},
             {"readCode", &T::m_readCode},
             {"testInstruction", &T::m_testInstruction},
             {"name", &T::m_name},
             {"partName", &T::m_partName},
             {"parentId", &T::m_parentId},
             {"externConnected", &T::m_externConnected},
             {"connectorName", &T::m_connectorName}},
            {{"BPartIdentification", &T::m_bPartIdentification},
             {"ProgrammableParts", &T::m_programmableParts},
             {"MaintenanceData", &T::m_maintenanceData},
             {"ServiceData", &T::m_serviceData},
             {"Properties", &T::m_properties}}};
}

template<>
Schema<CBPartIdentification> SchemaOf()
{
    using T = CBPartIdentification;
    return {"BPartIdentification",
            {{"name", &T::m_name},
             {"partNumber", &T::m_partNumber},
             {"sn", &T::m_sn},
             {"partChangeIndex", &T::m_partChangeIndex},
             {"vendorName", &T::m_vendorName},
             {"additionalInfo", &T::m_additionalInfo}},
            {}};
}

template<>
Schema<CProgrammablePart> SchemaOf()
{
    using T = CProgrammablePart;
    return {"ProgrammablePart",
            {{"name", &T::m_name},
             {"version", &T::m_version},
             {"partNumber", &T::m_partNumber},
             {"partChangeIndex", &T::m_partChangeIndex}},
            {}};
}

template<>
Schema<CProduct> SchemaOf()
{
    using T = CProduct;
    return {"Product",
            {{"id", &T::m_id},
             {"partNumber", &T::m_partNumber},
             {"partChangeIndex", &T::m_partChangeIndex},
             {"type", &T::m_type},
             {"partName", &T::m_partName}},
            {}};
}

template<>
Schema<CProperty> SchemaOf()
{
    using T = CProperty;
    return {"Property", {{"name", &T::m_name}, {"value", &T::m_value}}, {}};
}

template<>
Schema<CServiceData> SchemaOf()
{
    using T = CServiceData;
    return {"ServiceData", {}, {{"Services", &T::m_services}}};
}

template<>
Schema<CService> SchemaOf()
{
    using T = CService;
    return {"Service", {{"serviceCode", &T::m_serviceCode}, {"serviceDate", &T::m_serviceDate}}, {}};
}

template<>
Schema<CSoftwareData> SchemaOf()
{
    using T = CSoftwareData;
    return {"SoftwareData",
            {},
            {{"Bios", &T::m_bios}, {"OperatingSystem", &T::m_operatingSystem}, {"SoftwareList", &T::m_softwareList}}};
}

template<>
Schema<CBios> SchemaOf()
{
    using T = CBios;
    return {"Bios",
            {{"name", &T::m_name},
             {"version", &T::m_version},
             {"partNumber", &T::m_partNumber},
             {"partChangeIndex", &T::m_partChangeIndex}},
            {}};
}

template<>
Schema<COperatingSystem> SchemaOf()
{
    using T = COperatingSystem;
    return {"OperatingSystem",
            {{"name", &T::m_name},
             {"version", &T::m_version},
             {"partNumber", &T::m_partNumber},
             {"partChangeIndex", &T::m_partChangeIndex},
             {"imageName", &T::m_imageName},
             {"imageVersion", &T::m_imageVersion},
             {"windowsSuiteMask", &T::m_windowsSuiteMask},
             {"windowsProductType", &T::m_windowsProductType},
             {"servicePackDescription", &T::m_servicePackDescription},
             {"servicePackMajorVersion", &T::m_servicePackMajorVersion},
             {"servicePackMinorVersion", &T::m_servicePackMinorVersion},
             {"systemWordSize", &T::m_systemWordSize},
             {"systemLanguage", &T::m_systemLanguage},
             {"kernelRelease", &T::m_kernelRelease},
             {"kernvelVersion", &T::m_kernvelVersion},
             {"buildVersion", &T::m_buildVersion}},
            {}};
}

template<>
Schema<CSoftware> SchemaOf()
{
    using T = CSoftware;
    return {"Software",
            {{"name", &T::m_name},
             {"version", &T::m_version},
             {"status", &T::m_status},
             {"partNumber", &T::m_partNumber},
             {"partChangeIndex", &T::m_partChangeIndex},
             {"sn", &T::m_sn},
             {"vendorName", &T::m_vendorName},
             {"wordSize", &T::m_wordSize},
             {"configuration", &T::m_configuration},
             {"releaseState", &T::m_releaseState},
             {"architecture", &T::m_architecture}},
            {{"SoftwareList", &T::m_pSoftwareList}, {"Properties", &T::m_properties}}};
}

// --- helpers --------------------------------------------------------------------------------------------------------

std::list<CReadOnlyAttribute*> Table(const CElementNode& element)
{
    std::list<CReadOnlyAttribute*> attributes;
    element.GetAttributeNodes(attributes);
    return attributes;
}

std::list<CElementNode*> Children(const CElementNode& element)
{
    // The operation replaces what the list holds.
    CBios other;
    std::list<CElementNode*> children = {&other, nullptr};
    element.GetChildElements(children);
    return children;
}

/// Any element in any place has a first attribute somewhere below: this one sets it.
void SetSomething(CElementNode& element)
{
    if (CReadOnlyAttribute* first = Table(element).empty() ? nullptr : Table(element).front()) {
        first->Set(L"something");
        return;
    }
    if (auto* hardware = dynamic_cast<CHardwareList*>(&element)) {
        hardware->CreateEntry().m_name = "something";
    } else if (auto* services = dynamic_cast<CServices*>(&element)) {
        services->CreateEntry().m_serviceCode = 1L;
    } else if (auto* instructions = dynamic_cast<CTestInstructionList*>(&element)) {
        instructions->CreateEntry().m_name = "something";
    } else if (auto* maintenances = dynamic_cast<CMaintenances*>(&element)) {
        maintenances->CreateEntry().m_generatedBy = "something";
    } else if (auto* infos = dynamic_cast<CMaintenanceInfos*>(&element)) {
        infos->CreateEntry().m_name = "something";
    } else if (auto* tasks = dynamic_cast<CMaintenanceTasks*>(&element)) {
        tasks->CreateEntry().m_name = "something";
    } else if (auto* parts = dynamic_cast<CProgrammableParts*>(&element)) {
        parts->CreateEntry().m_name = "something";
    } else if (auto* products = dynamic_cast<CProductList*>(&element)) {
        products->CreateEntry().m_id = 1L;
    } else if (auto* properties = dynamic_cast<CProperties*>(&element)) {
        properties->CreateEntry().m_name = "something";
    } else if (auto* software = dynamic_cast<CSoftwareList*>(&element)) {
        software->CreateEntry().m_name = "something";
    } else {
        ASSERT_FALSE(Children(element).empty()) << element.GetElementName();
        SetSomething(*Children(element).back());
    }
}

template<class T>
void SetEverything(T& element)
{
    for (const AttributeRow<T>& row : SchemaOf<T>().attributes) {
        (element.*row.member).Set("<" + std::string(row.name) + ">");
    }
    for (CElementNode* child : Children(element)) {
        SetSomething(*child);
    }
}

/// The element's attributes in the order of the table, as they stand in a file.
template<class T>
std::string StartTagOfEverything()
{
    std::string text = "<" + SchemaOf<T>().tag;
    for (const AttributeRow<T>& row : SchemaOf<T>().attributes) {
        text += std::string(" ") + row.name + "=\"&lt;" + row.name + "&gt;\"";
    }
    return text;
}

/// The attribute table points at the element's own members, in order.
template<class T>
void ExpectOwnTable(T& element)
{
    const Schema<T> schema = SchemaOf<T>();
    std::vector<const CReadOnlyAttribute*> expected;
    for (const AttributeRow<T>& row : schema.attributes) {
        expected.push_back(&(element.*row.member));
        EXPECT_EQ((element.*row.member).GetNodeName(), row.name);
    }
    const auto table = Table(element);
    EXPECT_EQ(std::vector<const CReadOnlyAttribute*>(table.begin(), table.end()), expected) << schema.tag;
}

template<class T>
void ExpectOwnChildren(T& element)
{
    const Schema<T> schema = SchemaOf<T>();
    std::vector<CElementNode*> expected;
    for (const ChildRow<T>& row : schema.children) {
        expected.push_back(row.address(element));
        ASSERT_NE(expected.back(), nullptr);
        EXPECT_EQ(expected.back()->GetElementName(), row.tag);
    }
    const auto children = Children(element);
    EXPECT_EQ(std::vector<CElementNode*>(children.begin(), children.end()), expected) << schema.tag;
}

// --- every element class --------------------------------------------------------------------------------------------

template<class T>
class ElementSchemaTest : public testing::Test
{
};

using ElementClasses =
    testing::Types<CDeviceData, CTestInstruction, CMaintenanceData, CMaintenance, CMaintenanceTask, CMaintenanceInfo,
                   CHardwareData, CHardware, CBPartIdentification, CProgrammablePart, CProduct, CProperty, CServiceData,
                   CService, CSoftwareData, CBios, COperatingSystem, CSoftware>;
TYPED_TEST_SUITE(ElementSchemaTest, ElementClasses);

TYPED_TEST(ElementSchemaTest, IsAnElementWithoutFurtherVirtualOperations)
{
    static_assert(std::is_base_of_v<CElementNode, TypeParam>);
    static_assert(std::is_same_v<decltype(TypeParam::s_ElementName), const std::string>);
    EXPECT_EQ(SlotCount<TypeParam>(), SlotCount<CElementNode>());
}

TYPED_TEST(ElementSchemaTest, HasItsTag)
{
    const TypeParam element;
    EXPECT_EQ(TypeParam::s_ElementName, SchemaOf<TypeParam>().tag);
    EXPECT_EQ(&element.GetElementName(), &TypeParam::s_ElementName);
    EXPECT_EQ(element.GetNodeName(), SchemaOf<TypeParam>().tag);
}

TYPED_TEST(ElementSchemaTest, HasItsAttributesInOrder)
{
    TypeParam element;
    ExpectOwnTable(element);
    for (const CReadOnlyAttribute* attribute : Table(element)) {
        EXPECT_TRUE(attribute->IsEmpty()) << attribute->GetNodeName();
    }
}

TYPED_TEST(ElementSchemaTest, HasItsChildrenInOrder)
{
    TypeParam element;
    ExpectOwnChildren(element);
}

TYPED_TEST(ElementSchemaTest, NothingIsMandatory)
{
    TypeParam element;
    EXPECT_TRUE(element.IsOptional());
    EXPECT_TRUE(element.IsValid());
    EXPECT_TRUE(element.IsEmpty());
    EXPECT_EQ(SaveText(element), "");
    SetEverything(element);
    EXPECT_TRUE(element.IsOptional());
    EXPECT_TRUE(element.IsValid());

    // A tag without anything loads, and every attribute is then empty.
    EXPECT_TRUE(LoadText(element, "<" + SchemaOf<TypeParam>().tag + "/>\nbehind"));
    for (const CReadOnlyAttribute* attribute : Table(element)) {
        EXPECT_TRUE(attribute->IsEmpty()) << attribute->GetNodeName();
    }
}

TYPED_TEST(ElementSchemaTest, OneAttributeOrChildMakesItNotEmpty)
{
    for (std::size_t i = 0; i < SchemaOf<TypeParam>().attributes.size(); ++i) {
        TypeParam element;
        (element.*SchemaOf<TypeParam>().attributes[i].member).Set(L"x");
        EXPECT_FALSE(element.IsEmpty()) << i;
    }
    for (const ChildRow<TypeParam>& row : SchemaOf<TypeParam>().children) {
        TypeParam element;
        SetSomething(*row.address(element));
        EXPECT_FALSE(element.IsEmpty()) << row.tag;
        element.Clear();
        EXPECT_TRUE(element.IsEmpty()) << row.tag;
    }
}

TYPED_TEST(ElementSchemaTest, SavesInTheOrderOfItsTablesAndLoadsAgain)
{
    TypeParam element;
    SetEverything(element);
    const std::string text = SaveText(element);
    const std::string tag = SchemaOf<TypeParam>().tag;

    std::string expected = StartTagOfEverything<TypeParam>();
    if (!SchemaOf<TypeParam>().children.empty()) {
        expected += ">\n";
    }
    ASSERT_EQ(text.substr(0, expected.size()), expected);
    std::size_t at = 0;
    for (const ChildRow<TypeParam>& row : SchemaOf<TypeParam>().children) {
        at = text.find(std::string("\n  <") + row.tag, at);
        ASSERT_NE(at, std::string::npos) << row.tag << " in\n" << text;
    }

    // An element without children is left without its end as the root of a stream.
    const std::string whole = SchemaOf<TypeParam>().children.empty() ? text + "/>\nbehind" : text + "behind";
    TypeParam loaded;
    ASSERT_TRUE(LoadText(loaded, whole));
    EXPECT_EQ(SaveText(loaded), text);
}

TYPED_TEST(ElementSchemaTest, ACopyHoldsTheSameAndItsTablePointsIntoIt)
{
    TypeParam source;
    SetEverything(source);
    const std::string text = SaveText(source);

    TypeParam copy(source);
    ExpectOwnTable(copy);
    ExpectOwnChildren(copy);
    EXPECT_EQ(SaveText(copy), text);

    TypeParam assigned;
    for (CElementNode* child : Children(assigned)) {
        SetSomething(*child); // is replaced, not added to
    }
    EXPECT_EQ(&(assigned = source), &assigned);
    ExpectOwnTable(assigned);
    ExpectOwnChildren(assigned);
    EXPECT_EQ(SaveText(assigned), text);

    copy.Clear();
    assigned.Clear();
    EXPECT_EQ(SaveText(source), text);
    ExpectOwnTable(source);

    // Empty values are copied too.
    TypeParam full(source);
    full = copy;
    EXPECT_TRUE(full.IsEmpty());
}

TYPED_TEST(ElementSchemaTest, AnAssignmentToItselfChangesNothing)
{
    TypeParam element;
    SetEverything(element);
    const std::string text = SaveText(element);
    const TypeParam& itself = element;
    element = itself;
    ExpectOwnTable(element);
    ExpectOwnChildren(element);
    EXPECT_EQ(SaveText(element), text);
}

TYPED_TEST(ElementSchemaTest, ReadsChildrenInAnyOrderAndSkipsUnknownOnes)
{
    TypeParam element;
    SetEverything(element);
    const std::string tag = SchemaOf<TypeParam>().tag;
    std::string text = StartTagOfEverything<TypeParam>() + ">\n<Strange name=\"x\">\n</Strange>\n";
    std::vector<std::string> children;
    for (CElementNode* child : Children(element)) {
        const std::string childText = SaveText(*child);
        const bool isOpen = childText.back() != '\n';
        children.push_back(childText + (isOpen ? "/>\n" : ""));
    }
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        text += *child;
    }
    const StreamCapture output(std::cout);
    TypeParam loaded;
    ASSERT_TRUE(LoadText(loaded, text + "</" + tag + ">\nbehind")) << text;
    EXPECT_EQ(SaveText(loaded), SaveText(element));
    EXPECT_EQ(output.Text(), "Found invalid tag: <Strange name=\"x\">\n");
}

// --- every list class -----------------------------------------------------------------------------------------------

template<class ListClass, class EntryClass>
struct ListRow
{
    using List = ListClass;
    using Entry = EntryClass;
};

template<class Row>
class ListSchemaTest : public testing::Test
{
};

using ListClasses =
    testing::Types<ListRow<CTestInstructionList, CTestInstruction>, ListRow<CMaintenances, CMaintenance>,
                   ListRow<CMaintenanceTasks, CMaintenanceTask>, ListRow<CMaintenanceInfos, CMaintenanceInfo>,
                   ListRow<CHardwareList, CHardware>, ListRow<CProgrammableParts, CProgrammablePart>,
                   ListRow<CProductList, CProduct>, ListRow<CProperties, CProperty>, ListRow<CServices, CService>,
                   ListRow<CSoftwareList, CSoftware>, ListRow<CConnectedDeviceList, CConnectedDevice>>;
TYPED_TEST_SUITE(ListSchemaTest, ListClasses);

template<class List>
const char* const tagOf = nullptr;
template<>
const char* const tagOf<CTestInstructionList> = "TestInstructionList";
template<>
const char* const tagOf<CMaintenances> = "Maintenances";
template<>
const char* const tagOf<CMaintenanceTasks> = "MaintenanceTasks";
template<>
const char* const tagOf<CMaintenanceInfos> = "MaintenanceInfos";
template<>
const char* const tagOf<CHardwareList> = "HardwareList";
template<>
const char* const tagOf<CProgrammableParts> = "ProgrammableParts";
template<>
const char* const tagOf<CProductList> = "ProductList";
template<>
const char* const tagOf<CProperties> = "Properties";
template<>
const char* const tagOf<CServices> = "Services";
template<>
const char* const tagOf<CSoftwareList> = "SoftwareList";
template<>
const char* const tagOf<CConnectedDeviceList> = "ConnectedDeviceList";

TYPED_TEST(ListSchemaTest, IsAListOfItsEntries)
{
    using List = typename TypeParam::List;
    using Entry = typename TypeParam::Entry;
    static_assert(std::is_base_of_v<CElementNodeList<Entry>, List>);
    static_assert(std::is_base_of_v<std::list<Entry>, List>);
    EXPECT_EQ(SlotCount<List>(), SlotCount<CElementNode>());
    List list;
    EXPECT_EQ(List::s_ElementName, tagOf<List>);
    EXPECT_EQ(list.GetElementName(), tagOf<List>);
    EXPECT_EQ(list.GetNodeName(), tagOf<List>);
    Entry& entry = list.CreateEntry();
    EXPECT_EQ(&entry, &list.back());
    EXPECT_TRUE(Table(list).empty());
    EXPECT_TRUE(Children(list).empty());
    EXPECT_TRUE(list.IsOptional());
    EXPECT_TRUE(list.IsValid());
}

TYPED_TEST(ListSchemaTest, SavesLoadsAndCopiesItsEntriesInOrder)
{
    using List = typename TypeParam::List;
    using Entry = typename TypeParam::Entry;
    const std::string attribute = Table(Entry()).front()->GetNodeName();
    List list;
    for (const wchar_t* value : {L"2", L"1", L"2"}) { // entries of one content all stay
        Table(list.CreateEntry()).front()->Set(value);
    }
    const std::string tag = tagOf<List>;
    const auto line = [&attribute](const char* value) {
        return "  <" + Entry::s_ElementName + " " + attribute + "=\"" + value + "\"/>\n";
    };
    const std::string text = "<" + tag + ">\n" + line("2") + line("1") + line("2") + "</" + tag + ">\n";
    EXPECT_EQ(SaveText(list), text);

    List loaded;
    ASSERT_TRUE(LoadText(loaded, text + "behind"));
    EXPECT_EQ(loaded.size(), 3U);
    EXPECT_EQ(SaveText(loaded), text);

    List copy(list);
    List assigned;
    assigned.CreateEntry();
    assigned = list;
    list.Clear();
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(SaveText(copy), text);
    EXPECT_EQ(SaveText(assigned), text);
    EXPECT_EQ(Table(copy.front()).front()->GetValue(), L"2");
}

// --- device data ----------------------------------------------------------------------------------------------------

TEST(DeviceDataTest, PartAndSerialNumberAreTheFirstFieldsOfTheId)
{
    const ErrorWord errorWord;
    const ExceptionsOn exceptionsOn; // nothing is reported
    const char* const none = nullptr;
    const struct
    {
        const char* deviceId;
        const char* partNumber;
        const char* serialNumber;
    } rows[] = {{"A-B-C", "A", "B"}, {"A-B-C-D", "A", "B"}, {"A-B", "A", none},    {"AB", none, none},
                {"-B-C", "", "B"},   {"A--C", "A", ""},     {"", none, none},      {"--", "", ""},
                {"-", "", none},     {"A-B-", "A", "B"},    {"A- B -", "A", " B "}};
    for (const auto& row : rows) {
        CDeviceData data;
        data.m_deviceId = row.deviceId;
        std::string partNumber = "former";
        std::string serialNumber = "former";
        EXPECT_EQ(data.GetPartNumber(partNumber), row.partNumber != nullptr) << row.deviceId;
        EXPECT_EQ(data.GetSerialNumber(serialNumber), row.serialNumber != nullptr) << row.deviceId;
        EXPECT_EQ(partNumber, row.partNumber == nullptr ? "former" : row.partNumber) << row.deviceId;
        EXPECT_EQ(serialNumber, row.serialNumber == nullptr ? "former" : row.serialNumber) << row.deviceId;
    }
    EXPECT_EQ(ErrorWord::Text(), ErrorWord::Untouched());
}

TEST(DeviceDataTest, NumbersAreNarrowedByTheirLowBytes)
{
    CDeviceData data;
    data.m_deviceId = L"\u0141\u00e4-\u0142-"; // 0x141 narrows to "A", 0x142 to "B"
    std::string text;
    EXPECT_TRUE(data.GetPartNumber(text));
    EXPECT_EQ(text, "A\xE4");
    EXPECT_TRUE(data.GetSerialNumber(text));
    EXPECT_EQ(text, "B");

    // 0x12D is no "-" before it is narrowed, but is one then.
    data.m_deviceId = L"A\u012dB-C";
    EXPECT_TRUE(data.GetPartNumber(text));
    EXPECT_EQ(text, "A");
    EXPECT_TRUE(data.GetSerialNumber(text));
    EXPECT_EQ(text, "B");
}

TEST(DeviceDataTest, TestInstructionsOfOneNameAllStay)
{
    CTestInstructionList list;
    ASSERT_TRUE(LoadText(list, "<TestInstructionList>\n<TestInstruction name=\"a\" version=\"1\"/>\n"
                               "<TestInstruction name=\"a\" version=\"2\"/>\n</TestInstructionList>\nbehind"));
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list.front().m_version.GetValue(), L"1");
    EXPECT_EQ(list.back().m_version.GetValue(), L"2");
}

// --- identity -------------------------------------------------------------------------------------------------------

/// The two attributes that an identity test may look at, on either side.
struct IdentityRow
{
    const char* leftKey;
    const char* leftName;
    const char* rightKey;
    const char* rightName;
    bool same;
};

template<class T>
void ExpectIdentity(CAttribute T::*key, CAttribute T::*name, const std::vector<IdentityRow>& rows)
{
    for (const IdentityRow& row : rows) {
        T left;
        T right;
        for (CReadOnlyAttribute* attribute : Table(right)) {
            attribute->Set(L"does not count");
        }
        left.*key = row.leftKey;
        left.*name = row.leftName;
        right.*key = row.rightKey;
        right.*name = row.rightName;
        EXPECT_EQ(left.IsSameEntity(right), row.same)
            << row.leftKey << "," << row.leftName << " " << row.rightKey << "," << row.rightName;
        EXPECT_EQ(right.IsSameEntity(left), row.same);
        EXPECT_TRUE(left.IsSameEntity(left));
    }
}

const std::vector<IdentityRow> bothCount = {
    {"1", "2", "1", "2", true},   {"1", "2", "1", "3", false}, {"1", "2", "3", "2", false}, {"", "", "", "", true},
    {"", "2", "", "2", true},     {"1", "", "1", "", true},    {"1", "2", "1", "", false},  {"1", "2", "", "2", false},
    {"1", "2", "01", "2", false}, {"a", "2", "A", "2", false}};

/// The part number counts, or the name if one part number is missing.
const std::vector<IdentityRow> numberElseName = {
    {"1", "A", "2", "A", false}, {"1", "A", "1", "B", true}, {"1", "A", "", "A", true}, {"", "A", "1", "A", true},
    {"", "A", "", "A", true},    {"", "A", "", "B", false},  {"", "", "", "", true},    {"1", "A", "", "B", false},
    {"1", "", "", "", true},     {"1", "A", "", "", false},  {"1", "", "1", "", true},  {"1", "", "2", "", false}};

/// The first of the two counts.
const std::vector<IdentityRow> keyAlone = {
    {"1", "A", "1", "B", true}, {"1", "A", "2", "A", false}, {"", "A", "", "B", true}, {"", "A", "1", "A", false}};

TEST(IdentityTest, HardwareByPartNumberAndSerialNumber)
{
    ExpectIdentity<CHardware>(&CHardware::m_partNumber, &CHardware::m_sn, bothCount);
}

TEST(IdentityTest, MaintenanceByPersonAndDate)
{
    ExpectIdentity<CMaintenance>(&CMaintenance::m_responsiblePerson, &CMaintenance::m_maintenanceDate, bothCount);
    CMaintenance left;
    CMaintenance right;
    left.m_maintenanceTasks.CreateEntry().m_name = "oil";
    EXPECT_TRUE(left.IsSameEntity(right));
}

TEST(IdentityTest, PartsAndSoftwareByPartNumberOrName)
{
    ExpectIdentity<CProgrammablePart>(&CProgrammablePart::m_partNumber, &CProgrammablePart::m_name, numberElseName);
    ExpectIdentity<CBios>(&CBios::m_partNumber, &CBios::m_name, numberElseName);
    ExpectIdentity<COperatingSystem>(&COperatingSystem::m_partNumber, &COperatingSystem::m_name, numberElseName);
    ExpectIdentity<CSoftware>(&CSoftware::m_partNumber, &CSoftware::m_name, numberElseName);
}

TEST(IdentityTest, OthersByOneKey)
{
    ExpectIdentity<CProduct>(&CProduct::m_partNumber, &CProduct::m_id, keyAlone);
    ExpectIdentity<CService>(&CService::m_serviceCode, &CService::m_serviceDate, keyAlone);
    ExpectIdentity<CMaintenanceTask>(&CMaintenanceTask::m_name, &CMaintenanceTask::m_result, keyAlone);
    ExpectIdentity<CMaintenanceInfo>(&CMaintenanceInfo::m_name, &CMaintenanceInfo::m_value, keyAlone);
}

template<class T, class = void>
constexpr bool hasIdentity = false;
template<class T>
constexpr bool hasIdentity<T, std::void_t<decltype(std::declval<const T&>().IsSameEntity(std::declval<const T&>()))>> =
    true;

static_assert(hasIdentity<CHardware> && hasIdentity<CSoftware>);
static_assert(!hasIdentity<CDeviceData> && !hasIdentity<CTestInstruction> && !hasIdentity<CMaintenanceData> &&
              !hasIdentity<CHardwareData> && !hasIdentity<CBPartIdentification> && !hasIdentity<CServiceData> &&
              !hasIdentity<CProperty> && !hasIdentity<CSoftwareData>);
static_assert(!hasIdentity<CHardwareList> && !hasIdentity<CSoftwareList> && !hasIdentity<CProperties> &&
              !hasIdentity<CMaintenances> && !hasIdentity<CServices> && !hasIdentity<CProductList>);

// --- maintenance ----------------------------------------------------------------------------------------------------

/// What CMaintenanceInfos answers before any static initialiser of a library ran.
std::array<char, 32> g_earlyName;

void AskEarly()
{
    const CMaintenanceInfos infos;
    infos.GetElementName().copy(g_earlyName.data(), g_earlyName.size() - 1);
}

// The loader calls these before the initialisers of the libraries.
__attribute__((section(".preinit_array"), used)) void (*const askEarly)() = AskEarly;

TEST(MaintenanceInfosTest, KnowsItsNameBeforeTheStaticNamesAreInitialised)
{
    EXPECT_STREQ(g_earlyName.data(), "MaintenanceInfos");
    const CMaintenanceInfos infos;
    EXPECT_NE(&infos.GetElementName(), &CMaintenanceInfos::s_ElementName);
    EXPECT_EQ(infos.GetElementName(), CMaintenanceInfos::s_ElementName);
    EXPECT_EQ(&infos.GetElementName(), &CMaintenanceInfos().GetElementName());
}

TEST(MaintenanceDataTest, OfTheDeviceAndOfABoardAreIndependent)
{
    CDeviceFootprint footprint;
    CHardware& board = footprint.m_hardwareData.m_hardwareList.CreateEntry();
    footprint.m_deviceData.m_maintenanceData.m_operatingHours = 5L;
    EXPECT_TRUE(board.IsEmpty());
    board.m_maintenanceData.m_makeAndBreakCycles = 6L;
    EXPECT_TRUE(footprint.m_deviceData.m_maintenanceData.m_makeAndBreakCycles.IsEmpty());
    EXPECT_TRUE(board.m_maintenanceData.m_operatingHours.IsEmpty());
}

TEST(MaintenanceDataTest, WithoutContentIsNotWrittenBelowABoard)
{
    CHardware board;
    board.m_sn = 1L;
    board.m_maintenanceData.m_maintenances.CreateEntry();
    EXPECT_EQ(SaveText(board), "<Hardware sn=\"1\"");
}

// --- hardware -------------------------------------------------------------------------------------------------------

TEST(HardwareDataTest, WithEmptyListsIsLeftOut)
{
    CDeviceFootprint footprint;
    footprint.m_hardwareData.m_hardwareList.CreateEntry();
    footprint.m_hardwareData.m_productList.CreateEntry();
    EXPECT_TRUE(footprint.m_hardwareData.IsEmpty());
    EXPECT_EQ(SaveText(footprint), "<DeviceFootprint formatVersion=\"02.06\"");
    footprint.m_hardwareData.m_productList.back().m_id = 1L;
    EXPECT_FALSE(footprint.m_hardwareData.IsEmpty());
}

TEST(HardwareTest, AFilledPropertyMakesItNotEmpty)
{
    CHardware board;
    board.m_properties.CreateEntry();
    board.m_properties.CreateEntry();
    EXPECT_TRUE(board.IsEmpty());
    board.m_properties.back().m_name = "x";
    EXPECT_FALSE(board.IsEmpty());
}

TEST(HardwareTest, IsWrittenInTheOrderOfItsTables)
{
    CHardware board;
    const std::string text = "<Hardware connectorName=\"X1\" id=\"7\">\n"
                             "<Properties>\n<Property value=\"v\" name=\"n\"/>\n</Properties>\n"
                             "<ServiceData>\n<Services>\n<Service serviceDate=\"2001-02-03\" serviceCode=\"1\"/>\n"
                             "</Services>\n</ServiceData>\n"
                             "<ProgrammableParts>\n<ProgrammablePart name=\"p\"/>\n</ProgrammableParts>\n"
                             "<MaintenanceData operatingHours=\"3\"/>\n"
                             "<BPartIdentification sn=\"9\" name=\"b\"/>\n"
                             "</Hardware>\nbehind";
    ASSERT_TRUE(LoadText(board, text));
    EXPECT_EQ(SaveText(board), "<Hardware id=\"7\" connectorName=\"X1\">\n"
                               "  <BPartIdentification name=\"b\" sn=\"9\"/>\n"
                               "  <ProgrammableParts>\n    <ProgrammablePart name=\"p\"/>\n  </ProgrammableParts>\n"
                               "  <MaintenanceData operatingHours=\"3\"/>\n"
                               "  <ServiceData>\n    <Services>\n"
                               "      <Service serviceCode=\"1\" serviceDate=\"2001-02-03\"/>\n"
                               "    </Services>\n  </ServiceData>\n"
                               "  <Properties>\n    <Property name=\"n\" value=\"v\"/>\n  </Properties>\n"
                               "</Hardware>\n");
}

// --- software -------------------------------------------------------------------------------------------------------

/// A package in a package in a package.
CSoftware ThreeLevels()
{
    CSoftware top;
    top.m_name = "top";
    CSoftware& middle = top.m_pSoftwareList->CreateEntry();
    middle.m_name = "middle";
    CSoftware& bottom = middle.m_pSoftwareList->CreateEntry();
    bottom.m_name = "bottom";
    bottom.m_properties.CreateEntry().m_name = "property";
    return top;
}

const std::string threeLevelsText = "<Software name=\"top\">\n"
                                    "  <SoftwareList>\n"
                                    "    <Software name=\"middle\">\n"
                                    "      <SoftwareList>\n"
                                    "        <Software name=\"bottom\">\n"
                                    "          <Properties>\n"
                                    "            <Property name=\"property\"/>\n"
                                    "          </Properties>\n"
                                    "        </Software>\n"
                                    "      </SoftwareList>\n"
                                    "    </Software>\n"
                                    "  </SoftwareList>\n"
                                    "</Software>\n";

TEST(SoftwareTest, PublishesTwoValuesOfStatus)
{
    EXPECT_EQ(CSoftware::Active, "active");
    EXPECT_EQ(CSoftware::Inactive, "inactive");
}

TEST(SoftwareTest, StatusIsAnyText)
{
    for (const std::string status : {"active", "inactive", "ACTIVE", "something else"}) {
        CSoftware software;
        ASSERT_TRUE(LoadText(software, "<Software status=\"" + status + "\"/>\nbehind"));
        EXPECT_EQ(SaveText(software), "<Software status=\"" + status + "\"");
    }
}

TEST(SoftwareTest, HasItsNestedListFromTheStart)
{
    CSoftware software;
    ASSERT_NE(software.m_pSoftwareList.get(), nullptr);
    EXPECT_TRUE(software.m_pSoftwareList->empty());
    CSoftwareList* pointer = software.m_pSoftwareList;
    EXPECT_EQ(Children(software).front(), pointer);
    software.m_name = "x";
    EXPECT_EQ(SaveText(software), "<Software name=\"x\"");
}

TEST(SoftwareTest, ThreeLevelsAreSavedLoadedAndCopied)
{
    CSoftware software = ThreeLevels();
    EXPECT_EQ(SaveText(software), threeLevelsText);

    CSoftware loaded;
    ASSERT_TRUE(LoadText(loaded, threeLevelsText + "behind"));
    EXPECT_EQ(SaveText(loaded), threeLevelsText);

    CSoftware copy(loaded);
    EXPECT_NE(copy.m_pSoftwareList.get(), loaded.m_pSoftwareList.get());
    CSoftware& bottom = copy.m_pSoftwareList->front().m_pSoftwareList->front();
    bottom.m_name = "changed";
    bottom.m_properties.Clear();
    EXPECT_EQ(SaveText(loaded), threeLevelsText);
    EXPECT_NE(SaveText(copy), threeLevelsText);

    copy = loaded;
    EXPECT_EQ(SaveText(copy), threeLevelsText);
    loaded.m_pSoftwareList->Clear();
    EXPECT_EQ(SaveText(copy), threeLevelsText);
}

TEST(SoftwareTest, AnAssignmentToItselfKeepsTheNestedList)
{
    CSoftware software = ThreeLevels();
    const CSoftwareList* list = software.m_pSoftwareList;
    const CSoftware& itself = software;
    software = itself;
    EXPECT_EQ(software.m_pSoftwareList.get(), list);
    EXPECT_EQ(SaveText(software), threeLevelsText);
}

TEST(SoftwareTest, CanTakeTheContentOfAPackageInsideIt)
{
    CSoftware software = ThreeLevels();
    CSoftware expected = software.m_pSoftwareList->front().m_pSoftwareList->front();
    software = software.m_pSoftwareList->front().m_pSoftwareList->front();
    EXPECT_EQ(SaveText(software), SaveText(expected));
    ExpectOwnTable(software);
}

TEST(SoftwareTest, TheNestedListStandsBeforeTheProperties)
{
    CSoftware software;
    software.m_properties.CreateEntry().m_name = "p";
    software.m_pSoftwareList->CreateEntry().m_name = "s";
    EXPECT_EQ(SaveText(software), "<Software>\n  <SoftwareList>\n    <Software name=\"s\"/>\n  </SoftwareList>\n"
                                  "  <Properties>\n    <Property name=\"p\"/>\n  </Properties>\n</Software>\n");
}

TEST(OperatingSystemTest, TheKernelVersionHasItsOwnSpelling)
{
    COperatingSystem system;
    ASSERT_TRUE(LoadText(system, "<OperatingSystem kernvelVersion=\"5.10\"/>\nbehind"));
    EXPECT_EQ(system.m_kernvelVersion.GetValue(), L"5.10");
    EXPECT_EQ(SaveText(system), "<OperatingSystem kernvelVersion=\"5.10\"");
    ASSERT_TRUE(LoadText(system, "<OperatingSystem kernelVersion=\"5.10\"/>\nbehind"));
    EXPECT_TRUE(system.IsEmpty());
}

} // namespace
