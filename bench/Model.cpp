#include "Model.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <string_view>
#include <unordered_map>

namespace bench
{

namespace
{

template<class T>
const Schema& SchemaOf();

template<class Object, class Member>
std::size_t OffsetOf(Member Object::*member)
{
    alignas(Object) static char room[sizeof(Object)];
    const auto* object = reinterpret_cast<const Object*>(room);
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&(object->*member)) - room);
}

template<class T>
const ListOperations* ListOf()
{
    static const ListOperations operations = {
        [](void* list) -> void* { return &static_cast<std::list<T>*>(list)->emplace_back(); },
        [](const void* list, void* context, bool (*visit)(const void*, void*)) {
            for (const T& entry : *static_cast<const std::list<T>*>(list)) {
                if (!visit(&entry, context)) {
                    return;
                }
            }
        }};
    return &operations;
}

template<class Object>
AttributeSchema A(const char* name, std::wstring Object::*member)
{
    return {name, OffsetOf(member)};
}

template<class Object, class Child>
ChildSchema C(const char* tag, Child Object::*member)
{
    return {tag, &SchemaOf<Child>, OffsetOf(member), nullptr, ""};
}

template<class Object, class Entry>
ChildSchema L(const char* tag, const char* entryTag, std::list<Entry> Object::*member)
{
    return {tag, &SchemaOf<Entry>, OffsetOf(member), ListOf<Entry>(), entryTag};
}

Schema Make(std::vector<AttributeSchema> attributes, std::vector<ChildSchema> children = {})
{
    Schema schema = {std::move(attributes), std::move(children), {}, {}};
    for (const AttributeSchema& attribute : schema.attributes) {
        schema.sortedAttributes.push_back(&attribute);
    }
    for (const ChildSchema& child : schema.children) {
        schema.sortedChildren.push_back(&child);
    }
    std::sort(schema.sortedAttributes.begin(), schema.sortedAttributes.end(),
              [](auto* lhs, auto* rhs) { return lhs->name < rhs->name; });
    std::stable_sort(schema.sortedChildren.begin(), schema.sortedChildren.end(),
                     [](auto* lhs, auto* rhs) { return lhs->tag < rhs->tag; });
    return schema; // moving keeps the elements of the vectors where they are
}

#define SCHEMA(Type, ...)                                                                                              \
    template<>                                                                                                         \
    const Schema& SchemaOf<Type>()                                                                                     \
    {                                                                                                                  \
        using T = Type;                                                                                                \
        static const Schema schema = Make(__VA_ARGS__);                                                                \
        return schema;                                                                                                 \
    }
#define ATTRIBUTE(name) A(#name, &T::name)

SCHEMA(Property, {ATTRIBUTE(name), ATTRIBUTE(value)})
SCHEMA(Service, {ATTRIBUTE(serviceCode), ATTRIBUTE(serviceDate)})
SCHEMA(ServiceData, {}, {L("Services", "Service", &T::services)})
SCHEMA(MaintenanceTask, {ATTRIBUTE(name), ATTRIBUTE(done), ATTRIBUTE(result)})
SCHEMA(Maintenance, {ATTRIBUTE(responsiblePerson), ATTRIBUTE(maintenanceDate), ATTRIBUTE(generatedBy)},
       {L("MaintenanceTasks", "MaintenanceTask", &T::maintenanceTasks)})
SCHEMA(MaintenanceInfo, {ATTRIBUTE(name), ATTRIBUTE(value)}, {L("Properties", "Property", &T::properties)})
SCHEMA(MaintenanceData, {ATTRIBUTE(operatingHours), ATTRIBUTE(makeAndBreakCycles)},
       {L("Maintenances", "Maintenance", &T::maintenances),
        L("MaintenanceInfos", "MaintenanceInfo", &T::maintenanceInfos)})
SCHEMA(TestInstruction, {ATTRIBUTE(name), ATTRIBUTE(version)})
SCHEMA(DeviceData,
       {ATTRIBUTE(deviceId), ATTRIBUTE(partChangeIndex), ATTRIBUTE(type), ATTRIBUTE(partName), ATTRIBUTE(productDate),
        ATTRIBUTE(upgradeType), ATTRIBUTE(upgradePartNumber)},
       {L("TestInstructionList", "TestInstruction", &T::testInstructions), C("MaintenanceData", &T::maintenanceData),
        C("ServiceData", &T::serviceData)})
SCHEMA(BPartIdentification, {ATTRIBUTE(name), ATTRIBUTE(partNumber), ATTRIBUTE(sn), ATTRIBUTE(partChangeIndex),
                             ATTRIBUTE(vendorName), ATTRIBUTE(additionalInfo)})
SCHEMA(ProgrammablePart, {ATTRIBUTE(name), ATTRIBUTE(version), ATTRIBUTE(partNumber), ATTRIBUTE(partChangeIndex)})
SCHEMA(Hardware,
       {ATTRIBUTE(id), ATTRIBUTE(productId), ATTRIBUTE(partNumber), ATTRIBUTE(sn), ATTRIBUTE(partChangeIndex),
        ATTRIBUTE(hardwareCode), ATTRIBUTE(productDate), ATTRIBUTE(readCode), ATTRIBUTE(testInstruction),
        ATTRIBUTE(name), ATTRIBUTE(partName), ATTRIBUTE(parentId), ATTRIBUTE(externConnected),
        ATTRIBUTE(connectorName)},
       {C("BPartIdentification", &T::bPartIdentification),
        L("ProgrammableParts", "ProgrammablePart", &T::programmableParts), C("MaintenanceData", &T::maintenanceData),
        C("ServiceData", &T::serviceData), L("Properties", "Property", &T::properties)})
SCHEMA(Product,
       {ATTRIBUTE(id), ATTRIBUTE(partNumber), ATTRIBUTE(partChangeIndex), ATTRIBUTE(type), ATTRIBUTE(partName)})
SCHEMA(HardwareData, {},
       {L("HardwareList", "Hardware", &T::hardwareList), L("ProductList", "Product", &T::productList)})
SCHEMA(Bios, {ATTRIBUTE(name), ATTRIBUTE(version), ATTRIBUTE(partNumber), ATTRIBUTE(partChangeIndex)})
SCHEMA(OperatingSystem,
       {ATTRIBUTE(name), ATTRIBUTE(version), ATTRIBUTE(partNumber), ATTRIBUTE(partChangeIndex), ATTRIBUTE(imageName),
        ATTRIBUTE(imageVersion), ATTRIBUTE(windowsSuiteMask), ATTRIBUTE(windowsProductType),
        ATTRIBUTE(servicePackDescription), ATTRIBUTE(servicePackMajorVersion), ATTRIBUTE(servicePackMinorVersion),
        ATTRIBUTE(systemWordSize), ATTRIBUTE(systemLanguage), ATTRIBUTE(kernelRelease), ATTRIBUTE(kernvelVersion),
        ATTRIBUTE(buildVersion)})
SCHEMA(Software,
       {ATTRIBUTE(name), ATTRIBUTE(version), ATTRIBUTE(status), ATTRIBUTE(partNumber), ATTRIBUTE(partChangeIndex),
        ATTRIBUTE(sn), ATTRIBUTE(vendorName), ATTRIBUTE(wordSize), ATTRIBUTE(configuration), ATTRIBUTE(releaseState),
        ATTRIBUTE(architecture)},
       {L("SoftwareList", "Software", &T::softwareList), L("Properties", "Property", &T::properties)})
SCHEMA(SoftwareData, {},
       {C("Bios", &T::bios), C("OperatingSystem", &T::operatingSystem),
        L("SoftwareList", "Software", &T::softwareList)})
SCHEMA(Footprint, {ATTRIBUTE(formatVersion), ATTRIBUTE(creationDate), ATTRIBUTE(generatedBy), ATTRIBUTE(checksum)},
       {C("DeviceData", &T::deviceData), C("HardwareData", &T::hardwareData), C("SoftwareData", &T::softwareData),
        L("ConnectedDeviceList", "ConnectedDevice", &T::connectedDevices)})

/// Gathers text and digests it in pieces.
class DigestWriter
{
public:
    DigestWriter() : m_context(EVP_MD_CTX_new())
    {
        // Fetched once: a look-up by EVP_md5() takes longer than the start itself.
        static EVP_MD* const md5 = EVP_MD_fetch(nullptr, "MD5", nullptr);
        EVP_DigestInit_ex(m_context, md5, nullptr);
    }
    DigestWriter(const DigestWriter&) = delete;
    DigestWriter& operator=(const DigestWriter&) = delete;
    ~DigestWriter() { EVP_MD_CTX_free(m_context); }

    void Attribute(const std::string& name, const std::wstring& value)
    {
        const std::size_t most = name.size() + 12 * value.size() + 3;
        if (most > m_room.size()) {
            Flush();
            std::vector<char> room(most);
            EVP_DigestUpdate(m_context, room.data(),
                             static_cast<std::size_t>(Put(room.data(), name, value) - room.data()));
            return;
        }
        if (m_used + most > m_room.size()) {
            Flush();
        }
        m_used = static_cast<std::size_t>(Put(m_room.data() + m_used, name, value) - m_room.data());
    }

    std::string Result()
    {
        Flush();
        std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
        unsigned length = 0;
        EVP_DigestFinal_ex(m_context, digest.data(), &length);
        std::string text;
        for (unsigned i = 0; i < length; ++i) {
            text += "0123456789abcdef"[digest[i] >> 4];
            text += "0123456789abcdef"[digest[i] & 0xF];
        }
        return text;
    }

private:
    static char* Put(char* to, const std::string& name, const std::wstring& value)
    {
        to = std::copy(name.begin(), name.end(), to);
        *to++ = '=';
        *to++ = '"';
        to = Escape(value, to);
        *to++ = '"';
        return to;
    }
    void Flush()
    {
        EVP_DigestUpdate(m_context, m_room.data(), m_used);
        m_used = 0;
    }

    EVP_MD_CTX* m_context;
    std::array<char, 8192> m_room = {};
    std::size_t m_used = 0;
};

void AddToDigest(const Schema& schema, const void* object, DigestWriter& writer, const AttributeSchema* without)
{
    for (const AttributeSchema* attribute : schema.sortedAttributes) {
        const std::wstring& value = attribute->In(object);
        if (attribute != without && !value.empty()) {
            writer.Attribute(attribute->name, value);
        }
    }
    for (const ChildSchema* child : schema.sortedChildren) {
        if (child->list == nullptr) {
            AddToDigest(child->schema(), child->In(object), writer, nullptr);
            continue;
        }
        struct Context
        {
            const Schema* schema;
            DigestWriter* writer;
        } context = {&child->schema(), &writer};
        child->list->forEach(child->In(object), &context, [](const void* entry, void* untyped) {
            const auto* at = static_cast<Context*>(untyped);
            if (at->schema == &FootprintSchema()) {
                // A connected device enters with its own digest, once that was found right.
                const auto& device = *static_cast<const Footprint*>(entry);
                if (!device.checksum.empty()) {
                    const std::string right = Digest(device);
                    if (!std::equal(right.begin(), right.end(), device.checksum.begin(), device.checksum.end(),
                                    [](char lhs, wchar_t rhs) { return static_cast<wchar_t>(lhs) == rhs; })) {
                        throw std::runtime_error("wrong checksum of a connected device");
                    }
                    at->writer->Attribute("checksum", device.checksum);
                    return true;
                }
            }
            AddToDigest(*at->schema, entry, *at->writer, nullptr);
            return true;
        });
    }
}

// --- Comparison -----------------------------------------------------------------------------------------------------

bool IsSame(const MaintenanceTask& /*lhs*/, const MaintenanceTask& /*rhs*/)
{
    return true;
}
bool IsSame(const Service& /*lhs*/, const Service& /*rhs*/)
{
    return true;
}
bool IsSame(const Product& /*lhs*/, const Product& /*rhs*/)
{
    return true;
}
bool IsSame(const MaintenanceInfo& /*lhs*/, const MaintenanceInfo& /*rhs*/)
{
    return true;
}
bool IsSame(const ProgrammablePart& lhs, const ProgrammablePart& rhs)
{
    return lhs.version == rhs.version;
}

/// By what an entry is found; views into the entry.
struct EntryKey
{
    std::wstring_view first;
    std::wstring_view second = {};

    bool operator==(const EntryKey& other) const { return first == other.first && second == other.second; }
};

struct HashOfKey
{
    std::size_t operator()(const EntryKey& key) const
    {
        const std::hash<std::wstring_view> hash;
        return key.second.empty() ? hash(key.first) : hash(key.first) * 31 + hash(key.second);
    }
};

EntryKey Key(const MaintenanceTask& entry)
{
    return {entry.name};
}
EntryKey Key(const MaintenanceInfo& entry)
{
    return {entry.name};
}
EntryKey Key(const Service& entry)
{
    return {entry.serviceCode};
}
EntryKey Key(const Product& entry)
{
    return {entry.partNumber};
}
EntryKey Key(const Maintenance& entry)
{
    return {entry.responsiblePerson, entry.maintenanceDate};
}
EntryKey Key(const Hardware& entry)
{
    return {entry.partNumber, entry.sn};
}
EntryKey Key(const Footprint& entry)
{
    return {entry.formatVersion, entry.deviceData.deviceId};
}
/// Programmable parts and software: the part number, and where there is none the name. What is paired by one of each
/// kind is no concern of the benchmark's footprints, of which all have part numbers.
template<class T>
EntryKey Key(const T& entry)
{
    return entry.partNumber.empty() ? EntryKey{{}, entry.name} : EntryKey{entry.partNumber};
}

bool IsSame(const Maintenance& lhs, const Maintenance& rhs);
bool IsSame(const Software& lhs, const Software& rhs);
bool IsSame(const Hardware& lhs, const Hardware& rhs);

/// Pairs entries by their keys and compares the pairs.
/// @param paired called with each pair.
template<class T, class Paired>
bool AreSame(const std::list<T>& lhs, const std::list<T>& rhs, Paired paired)
{
    if (lhs.size() != rhs.size()) {
        return false;
    }
    if (lhs.empty()) {
        return true;
    }
    if (lhs.size() == 1) { // no map for a single pair
        paired(lhs.front(), rhs.front());
        return Key(lhs.front()) == Key(rhs.front()) && IsSame(lhs.front(), rhs.front());
    }
    std::unordered_multimap<EntryKey, const T*, HashOfKey> free;
    free.reserve(lhs.size());
    for (const T& entry : lhs) {
        free.emplace(Key(entry), &entry);
    }
    for (const T& entry : rhs) {
        const auto found = free.find(Key(entry));
        if (found == free.end() || !IsSame(*found->second, entry)) {
            return false;
        }
        paired(*found->second, entry);
        free.erase(found);
    }
    return true;
}

template<class T>
bool AreSame(const std::list<T>& lhs, const std::list<T>& rhs)
{
    return AreSame(lhs, rhs, [](const T& /*lhs*/, const T& /*rhs*/) {});
}

bool IsSame(const Maintenance& lhs, const Maintenance& rhs)
{
    return AreSame(lhs.maintenanceTasks, rhs.maintenanceTasks);
}

bool IsSame(const MaintenanceData& lhs, const MaintenanceData& rhs)
{
    return lhs.operatingHours == rhs.operatingHours && lhs.makeAndBreakCycles == rhs.makeAndBreakCycles &&
           AreSame(lhs.maintenances, rhs.maintenances) && AreSame(lhs.maintenanceInfos, rhs.maintenanceInfos);
}

bool IsSame(const Software& lhs, const Software& rhs)
{
    return lhs.version == rhs.version && AreSame(lhs.softwareList, rhs.softwareList);
}

bool IsSame(const Hardware& lhs, const Hardware& rhs)
{
    return lhs.connectorName == rhs.connectorName && AreSame(lhs.programmableParts, rhs.programmableParts) &&
           IsSame(lhs.maintenanceData, rhs.maintenanceData) &&
           AreSame(lhs.serviceData.services, rhs.serviceData.services);
}

bool AreSameBoards(const std::list<Hardware>& lhs, const std::list<Hardware>& rhs)
{
    std::unordered_map<std::wstring_view, const Hardware*> lhsById;
    std::unordered_map<std::wstring_view, const Hardware*> rhsById;
    std::unordered_map<const Hardware*, const Hardware*> partner;
    lhsById.reserve(lhs.size());
    rhsById.reserve(lhs.size());
    partner.reserve(lhs.size());
    if (!AreSame(lhs, rhs, [&](const Hardware& left, const Hardware& right) {
            lhsById.emplace(left.id, &left);
            rhsById.emplace(right.id, &right);
            partner.emplace(&left, &right);
        })) {
        return false;
    }
    return std::all_of(partner.begin(), partner.end(), [&](const auto& pair) {
        if (pair.first->parentId.empty() || pair.second->parentId.empty()) {
            return pair.first->parentId.empty() && pair.second->parentId.empty();
        }
        const auto left = lhsById.find(pair.first->parentId);
        const auto right = rhsById.find(pair.second->parentId);
        if (left == lhsById.end() || right == rhsById.end()) {
            return left == lhsById.end() && right == rhsById.end();
        }
        return partner.at(left->second) == right->second;
    });
}

} // namespace

const Schema& FootprintSchema()
{
    return SchemaOf<Footprint>();
}

bool IsEmpty(const Schema& schema, const void* object)
{
    for (const AttributeSchema& attribute : schema.attributes) {
        if (!attribute.In(object).empty()) {
            return false;
        }
    }
    return std::all_of(schema.children.begin(), schema.children.end(), [object](const ChildSchema& child) {
        if (child.list == nullptr) {
            return IsEmpty(child.schema(), child.In(object));
        }
        struct Context
        {
            const Schema* schema;
            bool isEmpty;
        } context = {&child.schema(), true};
        child.list->forEach(child.In(object), &context, [](const void* entry, void* untyped) {
            auto* const at = static_cast<Context*>(untyped);
            at->isEmpty = IsEmpty(*at->schema, entry);
            return at->isEmpty;
        });
        return context.isEmpty;
    });
}

char* Escape(const std::wstring& value, char* to)
{
    const auto put = [&to](const char* text, std::size_t length) {
        std::memcpy(to, text, length);
        to += length;
    };
    for (const wchar_t character : value) {
        switch (character) {
        case L'&':
            put("&amp;", 5);
            break;
        case L'<':
            put("&lt;", 4);
            break;
        case L'>':
            put("&gt;", 4);
            break;
        case L'"':
            put("&quot;", 6);
            break;
        case L'\'':
            put("&apos;", 6);
            break;
        default:
            if (character >= 0x20 && character < 0x7F) {
                *to++ = static_cast<char>(character);
            } else {
                put("&#", 2);
                to = std::to_chars(to, to + 10, static_cast<unsigned>(character)).ptr;
                *to++ = ';';
            }
        }
    }
    return to;
}

std::string Digest(const Footprint& footprint)
{
    static const AttributeSchema* const checksum = &FootprintSchema().attributes.back();
    DigestWriter writer;
    AddToDigest(FootprintSchema(), &footprint, writer, checksum);
    return writer.Result();
}

bool IsSame(const Footprint& lhs, const Footprint& rhs)
{
    const auto sameOrName = [](const auto& left, const auto& right) {
        return left.partNumber.empty() || right.partNumber.empty() ? left.name == right.name
                                                                   : left.partNumber == right.partNumber;
    };
    const SoftwareData& left = lhs.softwareData;
    const SoftwareData& right = rhs.softwareData;
    return lhs.deviceData.deviceId == rhs.deviceData.deviceId &&
           lhs.deviceData.productDate == rhs.deviceData.productDate &&
           lhs.deviceData.upgradePartNumber == rhs.deviceData.upgradePartNumber &&
           IsSame(lhs.deviceData.maintenanceData, rhs.deviceData.maintenanceData) &&
           AreSame(lhs.deviceData.serviceData.services, rhs.deviceData.serviceData.services) &&
           AreSameBoards(lhs.hardwareData.hardwareList, rhs.hardwareData.hardwareList) &&
           AreSame(lhs.hardwareData.productList, rhs.hardwareData.productList) && sameOrName(left.bios, right.bios) &&
           left.bios.version == right.bios.version && sameOrName(left.operatingSystem, right.operatingSystem) &&
           left.operatingSystem.version == right.operatingSystem.version &&
           AreSame(left.softwareList, right.softwareList) && AreSame(lhs.connectedDevices, rhs.connectedDevices);
}

void Builder::Begin(std::string_view tag)
{
    m_next = 0;
    if (m_open.empty()) {
        m_open.push_back({&FootprintSchema(), m_footprint, nullptr});
        return;
    }
    const Open parent = m_open.back();
    if (parent.list != nullptr) {
        const bool isEntry = tag == parent.list->entryTag;
        m_open.push_back({isEntry ? &parent.list->schema() : nullptr,
                          isEntry ? parent.list->list->add(parent.object) : nullptr, nullptr});
        return;
    }
    const ChildSchema* child = parent.schema == nullptr ? nullptr : parent.schema->FindChild(tag);
    if (child == nullptr) {
        m_open.push_back({nullptr, nullptr, nullptr});
    } else if (child->list == nullptr) {
        m_open.push_back({&child->schema(), child->In(parent.object), nullptr});
    } else {
        m_open.push_back({nullptr, child->In(parent.object), child});
    }
}

std::wstring* Builder::Attribute(std::string_view name)
{
    const Open& open = m_open.back();
    const AttributeSchema* attribute = open.schema == nullptr ? nullptr : open.schema->FindAttribute(name, m_next);
    return attribute == nullptr ? nullptr : &attribute->In(open.object);
}

void Builder::Attribute(std::string_view name, std::string_view value)
{
    if (std::wstring* const wide = Attribute(name)) {
        Widen(value.data(), value.size(), *wide);
    }
}

} // namespace bench
