#ifndef NYXCONFIG_MODEL_H
#define NYXCONFIG_MODEL_H

// What a program with a general XML library would keep a footprint in: plain structures, each attribute a wide string.
// Schema() says how a structure stands in a file; the peers share it, and their loading and saving follow from it.

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace bench
{

struct Property
{
    std::wstring name, value;
};

struct Service
{
    std::wstring serviceCode, serviceDate;
};

struct ServiceData
{
    std::list<Service> services;
};

struct MaintenanceTask
{
    std::wstring name, done, result;
};

struct Maintenance
{
    std::wstring responsiblePerson, maintenanceDate, generatedBy;
    std::list<MaintenanceTask> maintenanceTasks;
};

struct MaintenanceInfo
{
    std::wstring name, value;
    std::list<Property> properties;
};

struct MaintenanceData
{
    std::wstring operatingHours, makeAndBreakCycles;
    std::list<Maintenance> maintenances;
    std::list<MaintenanceInfo> maintenanceInfos;
};

struct TestInstruction
{
    std::wstring name, version;
};

struct DeviceData
{
    std::wstring deviceId, partChangeIndex, type, partName, productDate, upgradeType, upgradePartNumber;
    std::list<TestInstruction> testInstructions;
    MaintenanceData maintenanceData;
    ServiceData serviceData;
};

struct BPartIdentification
{
    std::wstring name, partNumber, sn, partChangeIndex, vendorName, additionalInfo;
};

struct ProgrammablePart
{
    std::wstring name, version, partNumber, partChangeIndex;
};

struct Hardware
{
    std::wstring id, productId, partNumber, sn, partChangeIndex, hardwareCode, productDate, readCode, testInstruction,
        name, partName, parentId, externConnected, connectorName;
    BPartIdentification bPartIdentification;
    std::list<ProgrammablePart> programmableParts;
    MaintenanceData maintenanceData;
    ServiceData serviceData;
    std::list<Property> properties;
};

struct Product
{
    std::wstring id, partNumber, partChangeIndex, type, partName;
};

struct HardwareData
{
    std::list<Hardware> hardwareList;
    std::list<Product> productList;
};

struct Bios
{
    std::wstring name, version, partNumber, partChangeIndex;
};

struct OperatingSystem
{
    std::wstring name, version, partNumber, partChangeIndex, imageName, imageVersion, windowsSuiteMask,
        windowsProductType, servicePackDescription, servicePackMajorVersion, servicePackMinorVersion, systemWordSize,
        systemLanguage, kernelRelease, kernvelVersion, buildVersion;
};

struct Software
{
    std::wstring name, version, status, partNumber, partChangeIndex, sn, vendorName, wordSize, configuration,
        releaseState, architecture;
    std::list<Software> softwareList;
    std::list<Property> properties;
};

struct SoftwareData
{
    Bios bios;
    OperatingSystem operatingSystem;
    std::list<Software> softwareList;
};

/// A footprint, that of a connected device too.
struct Footprint
{
    std::wstring formatVersion, creationDate, generatedBy, checksum;
    DeviceData deviceData;
    HardwareData hardwareData;
    SoftwareData softwareData;
    std::list<Footprint> connectedDevices;
};

struct Schema;

/// How a list of structures is walked and filled without its type.
struct ListOperations
{
    void* (*add)(void* list);
    void (*forEach)(const void* list, void* context, bool (*visit)(const void* entry, void* context));
};

struct AttributeSchema
{
    std::string name;
    std::size_t offset;

    std::wstring& In(void* object) const
    {
        return *reinterpret_cast<std::wstring*>(static_cast<char*>(object) + offset);
    }
    const std::wstring& In(const void* object) const
    {
        return *reinterpret_cast<const std::wstring*>(static_cast<const char*>(object) + offset);
    }
};

struct ChildSchema
{
    std::string tag;
    const Schema& (*schema)(); ///< of the child, or of the entries
    std::size_t offset;
    const ListOperations* list; ///< null for a child that is no list
    std::string entryTag;

    void* In(void* object) const { return static_cast<char*>(object) + offset; }
    const void* In(const void* object) const { return static_cast<const char*>(object) + offset; }
};

/// How a structure stands in a file.
struct Schema
{
    std::vector<AttributeSchema> attributes;
    std::vector<ChildSchema> children;
    std::vector<const AttributeSchema*> sortedAttributes; ///< for the digest
    std::vector<const ChildSchema*> sortedChildren;

    /// @param next where the attribute is expected; set behind it.
    const AttributeSchema* FindAttribute(std::string_view name, std::size_t& next) const
    {
        for (std::size_t tried = 0; tried < attributes.size(); ++tried) {
            const AttributeSchema& attribute = attributes[next];
            next = next + 1 == attributes.size() ? 0 : next + 1;
            if (attribute.name == name) {
                return &attribute;
            }
        }
        return nullptr;
    }
    const ChildSchema* FindChild(std::string_view tag) const
    {
        for (const ChildSchema& child : children) {
            if (child.tag == tag) {
                return &child;
            }
        }
        return nullptr;
    }
};

const Schema& FootprintSchema();

inline const char* const RootTag = "DeviceFootprint";

/// Sets the wide form of UTF-8, which the XML library has tested.
inline void Widen(const char* text, std::size_t length, std::wstring& wide)
{
    wide.resize(length); // there are no more characters than bytes
    wchar_t* to = wide.data();
    const char* const end = text + length;
    while (text != end) {
        const auto lead = static_cast<unsigned char>(*text++);
        if (lead < 0x80) {
            *to++ = static_cast<wchar_t>(lead);
            continue;
        }
        int following = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
        unsigned value = lead & (0x3FU >> following);
        for (; following > 0 && text != end; --following) {
            value = (value << 6) | (static_cast<unsigned char>(*text++) & 0x3FU);
        }
        *to++ = static_cast<wchar_t>(value);
    }
    wide.resize(static_cast<std::size_t>(to - wide.data()));
}

/// Whether there is nothing to write.
bool IsEmpty(const Schema& schema, const void* object);

/// Writes the escaped form of a value: entities, and decimal references for what is not printable ASCII.
/// @param to has room for 12 times the length.
char* Escape(const std::wstring& value, char* to);

/// Computes the digest of a footprint with OpenSSL's MD5.
std::string Digest(const Footprint& footprint);

/// Whether two footprints are the same by the default rules; entries are paired by a hash map.
bool IsSame(const Footprint& lhs, const Footprint& rhs);

/// Fills a structure from an element of a document tree.
/// @tparam Node gives ForEachAttribute(visit(name, value)), ForEachChild(visit(node)) and Name().
template<class Node>
void FillFromTree(const Schema& schema, void* object, const Node& node)
{
    std::size_t next = 0;
    node.ForEachAttribute([&](std::string_view name, std::string_view value) {
        if (const AttributeSchema* attribute = schema.FindAttribute(name, next)) {
            Widen(value.data(), value.size(), attribute->In(object));
        }
    });
    node.ForEachChild([&](const Node& below) {
        const ChildSchema* child = schema.FindChild(below.Name());
        if (child == nullptr) {
            return;
        }
        if (child->list == nullptr) {
            FillFromTree(child->schema(), child->In(object), below);
            return;
        }
        below.ForEachChild([&](const Node& entry) {
            if (entry.Name() == child->entryTag) {
                FillFromTree(child->schema(), child->list->add(child->In(object)), entry);
            }
        });
    });
}

/// Fills a footprint from the events of a reader.
class Builder
{
public:
    explicit Builder(Footprint& footprint) : m_footprint(&footprint) {}

    void Begin(std::string_view tag);
    /// Of the element that was begun last.
    void Attribute(std::string_view name, std::string_view value);
    /// Where the attribute's value goes; null if it is unknown.
    std::wstring* Attribute(std::string_view name);
    void End() { m_open.pop_back(); }

private:
    struct Open
    {
        const Schema* schema; // null for a list, and for what is unknown
        void* object;
        const ChildSchema* list;
    };

    Footprint* m_footprint;
    std::vector<Open> m_open;
    std::size_t m_next = 0;
};

/// Writes a structure.
/// @tparam Writer has Begin(tag), Attribute(name, value) and End().
template<class Writer>
void Write(const Schema& schema, const std::string& tag, const void* object, Writer& writer)
{
    if (IsEmpty(schema, object)) {
        return;
    }
    writer.Begin(tag);
    for (const AttributeSchema& attribute : schema.attributes) {
        const std::wstring& value = attribute.In(object);
        if (!value.empty()) {
            writer.Attribute(attribute.name, value);
        }
    }
    for (const ChildSchema& child : schema.children) {
        if (child.list == nullptr) {
            Write(child.schema(), child.tag, child.In(object), writer);
            continue;
        }
        struct Context
        {
            const ChildSchema* child;
            Writer* writer;
            bool begun;
        } context = {&child, &writer, false};
        child.list->forEach(child.In(object), &context, [](const void* entry, void* untyped) {
            auto* const at = static_cast<Context*>(untyped);
            if (!at->begun && !IsEmpty(at->child->schema(), entry)) {
                at->writer->Begin(at->child->tag);
                at->begun = true;
            }
            Write(at->child->schema(), at->child->entryTag, entry, *at->writer);
            return true;
        });
        if (context.begun) {
            writer.End();
        }
    }
    writer.End();
}

} // namespace bench

#endif
