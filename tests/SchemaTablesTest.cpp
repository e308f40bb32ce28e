#include "DeviceFootprintLink.h"
#include "ElementClasses.h"
#include "Files.h"
#include "ReferenceMd5.h"
#include "TempFolder.h"
#include "XmlSchema.h"

#include <QXmlStreamReader>
#include <gtest/gtest.h>

#include <list>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace KvDeviceFootprint;
using namespace NyxTest;

namespace
{

using Names = std::vector<std::string>;

/// What a file may hold of an element.
struct Table
{
    Names attributes;
    Names children;
    bool isList = false; // one kind of child, any number of times
};

bool operator==(const Table& lhs, const Table& rhs)
{
    return lhs.attributes == rhs.attributes && lhs.children == rhs.children && lhs.isList == rhs.isList;
}

std::ostream& operator<<(std::ostream& out, const Table& table)
{
    for (const std::string& name : table.attributes) {
        out << " " << name;
    }
    for (const std::string& name : table.children) {
        out << " <" << name << ">";
    }
    return out << (table.isList ? " *" : "");
}

/// By tag.
using Tables = std::map<std::string, Table>;

// --- the classes ----------------------------------------------------------------------------------------------------

template<class T>
void AddClass(Tables& tables)
{
    const T element;
    Table& table = tables[element.GetElementName()];
    std::list<CReadOnlyAttribute*> attributes;
    element.GetAttributeNodes(attributes);
    for (const CReadOnlyAttribute* attribute : attributes) {
        table.attributes.push_back(attribute->GetNodeName());
    }
    std::list<CElementNode*> children;
    element.GetChildElements(children);
    for (const CElementNode* child : children) {
        table.children.push_back(child->GetElementName());
    }
}

template<class... T>
void AddClasses(Tables& tables, const testing::Types<T...>* /*types*/)
{
    (AddClass<T>(tables), ...);
}

template<class... T>
void AddLists(Tables& tables, const testing::Types<T...>* /*types*/)
{
    ((tables[T::List::s_ElementName] = Table{{}, {T::Entry::s_ElementName}, true}), ...);
}

Tables TablesOfClasses()
{
    Tables tables;
    AddClasses(tables, static_cast<const PlainElementClasses*>(nullptr));
    AddLists(tables, static_cast<const ListElementClasses*>(nullptr));
    return tables;
}

// --- the schemas ----------------------------------------------------------------------------------------------------

struct Schema
{
    std::map<std::string, std::string> roots; // type by tag
    Tables types;
};

std::string Value(const QXmlStreamAttributes& attributes, const char* name)
{
    return attributes.value(QLatin1String(name)).toString().toStdString();
}

/// Reads the complex types, whose names are the tags of the elements that have them.
Schema ReadSchema(const std::string& name, bool typesAreTags)
{
    Schema schema;
    Table* type = nullptr;
    const std::string text = ReadFile(SchemaFile(name));
    QXmlStreamReader reader(QByteArray(text.data(), static_cast<int>(text.size())));
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        const QXmlStreamAttributes attributes = reader.attributes();
        if (token == QXmlStreamReader::EndElement && reader.name() == QLatin1String("complexType")) {
            type = nullptr;
        }
        if (token != QXmlStreamReader::StartElement) {
            continue;
        }
        const std::string elementName = Value(attributes, "name");
        if (reader.name() == QLatin1String("complexType")) {
            EXPECT_EQ(schema.types.count(elementName), 0U) << elementName;
            type = &schema.types[elementName];
        } else if (reader.name() == QLatin1String("element") && type == nullptr) {
            schema.roots[elementName] = Value(attributes, "type");
        } else if (reader.name() == QLatin1String("element")) {
            EXPECT_TRUE(!typesAreTags || elementName == Value(attributes, "type")) << elementName;
            type->children.push_back(elementName);
            type->isList = Value(attributes, "maxOccurs") == "unbounded";
        } else if (reader.name() == QLatin1String("attribute")) {
            type->attributes.push_back(elementName);
        }
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return schema;
}

// --- the format page ------------------------------------------------------------------------------------------------

/// The words in code marks of a cell.
Names CodeWords(const std::string& cell)
{
    static const std::regex word("`([^`]*)`");
    Names words;
    for (std::sregex_iterator match(cell.begin(), cell.end(), word), end; match != end; ++match) {
        words.push_back((*match)[1]);
    }
    return words;
}

/// The rows "| `Tag` | attributes | children |" behind the heading "## Elements"; "list of" marks a list.
Tables TablesOfPage()
{
    static const std::regex row(R"(\| `(\w+)` \|([^|]*)\|([^|]*)\|)");
    Tables tables;
    std::istringstream lines(ReadFile(DataFile("../../docs/format.md")));
    bool inSection = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("## ", 0) == 0) {
            inSection = line == "## Elements";
        }
        std::smatch match;
        if (inSection && std::regex_match(line, match, row)) {
            EXPECT_EQ(tables.count(match[1]), 0U) << line;
            tables[match[1]] = {CodeWords(match[2]), CodeWords(match[3]),
                                match[3].str().find("list of") != std::string::npos};
        }
    }
    return tables;
}

/// The content of the blocks "```language" of the page, in order.
Names Blocks(const std::string& language)
{
    Names blocks;
    std::istringstream lines(ReadFile(DataFile("../../docs/format.md")));
    bool inside = false;
    for (std::string line; std::getline(lines, line);) {
        if (line == "```" + language) {
            inside = true;
            blocks.emplace_back();
        } else if (line == "```") {
            inside = false;
        } else if (inside) {
            blocks.back() += line + "\n";
        }
    }
    return blocks;
}

// --- comparing ------------------------------------------------------------------------------------------------------

void ExpectSameTables(const Tables& tables, const Tables& expected)
{
    for (const auto& [tag, table] : expected) {
        ASSERT_EQ(tables.count(tag), 1U) << tag << " is missing";
        EXPECT_EQ(tables.at(tag), table) << tag;
    }
    for (const auto& [tag, table] : tables) {
        EXPECT_EQ(expected.count(tag), 1U) << "no class has the tag " << tag << ":" << table;
    }
}

} // namespace

TEST(SchemaTables, ClassesAreAllThatAFootprintCanHold)
{
    const Tables tables = TablesOfClasses();
    std::set<std::string> reached = {"DeviceFootprint"};
    for (const auto& [tag, table] : tables) {
        for (const std::string& child : table.children) {
            EXPECT_EQ(tables.count(child), 1U) << child << " in " << tag;
            reached.insert(child);
        }
    }
    EXPECT_EQ(reached.size(), tables.size());
}

TEST(SchemaTables, FootprintSchemaHasElementsAttributesAndOrdersOfTheClasses)
{
    ExpectSameTables(ReadSchema("footprint.xsd", true).types, TablesOfClasses());
}

TEST(SchemaTables, FootprintSchemaHasOneRoot)
{
    const std::map<std::string, std::string> expected = {{CDeviceFootprint::s_ElementName, "DeviceFootprint"}};
    EXPECT_EQ(ReadSchema("footprint.xsd", true).roots, expected);
}

TEST(SchemaTables, LinkSchemaHasTheNamesOfTheClass)
{
    const Schema schema = ReadSchema("footprint-link.xsd", false);
    const std::map<std::string, std::string> roots = {
        {DeviceFootprintLink::_rootElementName, DeviceFootprintLink::_rootElementName}};
    EXPECT_EQ(schema.roots, roots);
    ExpectSameTables(
        schema.types,
        {{DeviceFootprintLink::_rootElementName,
          {{},
           {DeviceFootprintLink::_latestDeviceFootprintPathElementName, DeviceFootprintLink::_historyPathElementName}}},
         {"Location", {{DeviceFootprintLink::_pathAttributeName}, {}}}});
}

TEST(FormatPage, HasElementsAttributesAndOrdersOfTheClasses)
{
    ExpectSameTables(TablesOfPage(), TablesOfClasses());
}

TEST(FormatPage, ExampleIsWhatASaveWritesWithTheRightChecksum)
{
    const Names blocks = Blocks("xml");
    ASSERT_EQ(blocks.size(), 2U);
    std::istringstream input(blocks[0]);
    CDeviceFootprint footprint;
    ASSERT_TRUE(footprint.Load(input));
    EXPECT_FALSE(footprint.m_checksum.IsEmpty());
    EXPECT_TRUE(footprint.ValidateChecksum());
    std::string text;
    EXPECT_TRUE(footprint.GetDeviceFootprintString(false, text));
    EXPECT_EQ(text, blocks[0]);
}

TEST(FormatPage, CommandGivesTheChecksumOfTheExample)
{
    const Names blocks = Blocks("sh");
    ASSERT_EQ(blocks.size(), 1U);
    const std::size_t begin = blocks[0].find('\'') + 1;
    const std::string input = blocks[0].substr(begin, blocks[0].rfind('\'') - begin);
    EXPECT_EQ(blocks[0], "printf %s '" + input + "' | md5sum\n");
    EXPECT_NE(Blocks("xml").at(0).find("checksum=\"" + ReferenceMd5Hex(input) + "\""), std::string::npos);
}

TEST(FormatPage, LinkExampleIsWhatTheLibraryWrites)
{
    const TempFolder folder;
    DeviceFootprintLink link(folder / "link.xml");
    link.setLatestDeviceFootprintPath("/data/DeviceFootprint_1101.2345.02-100123-ab_2015-03-01T08-05-59.xml");
    link.setDeviceFootprintHistoryFolder("/data/history");
    EXPECT_TRUE(link.write());
    EXPECT_EQ(Blocks("xml").at(1), ReadFile(folder / "link.xml"));
}
