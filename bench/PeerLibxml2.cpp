#include "Peers.h"

#include <libxml/xmlreader.h>
#include <libxml/xmlwriter.h>

#include <memory>

namespace bench
{

namespace
{

std::string_view View(const xmlChar* text)
{
    return reinterpret_cast<const char*>(text);
}

const xmlChar* Text(const char* text)
{
    return reinterpret_cast<const xmlChar*>(text);
}

void Load(const std::string& file, Footprint& footprint)
{
    const std::unique_ptr<xmlTextReader, void (*)(xmlTextReaderPtr)> reader(
        xmlReaderForFile(file.c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_COMPACT),
        &xmlFreeTextReader);
    if (!reader) {
        Fail("libxml2: can not open " + file);
    }
    Builder builder(footprint);
    int result = 0;
    while ((result = xmlTextReaderRead(reader.get())) == 1) {
        const int type = xmlTextReaderNodeType(reader.get());
        if (type == XML_READER_TYPE_END_ELEMENT) {
            builder.End();
        } else if (type == XML_READER_TYPE_ELEMENT) {
            const bool isEmpty = xmlTextReaderIsEmptyElement(reader.get()) == 1;
            builder.Begin(View(xmlTextReaderConstName(reader.get())));
            while (xmlTextReaderMoveToNextAttribute(reader.get()) == 1) {
                builder.Attribute(View(xmlTextReaderConstName(reader.get())),
                                  View(xmlTextReaderConstValue(reader.get())));
            }
            if (isEmpty) {
                builder.End();
            }
        }
    }
    if (result != 0) {
        Fail("libxml2: can not parse " + file);
    }
}

class Writer
{
public:
    explicit Writer(xmlTextWriterPtr writer) : m_writer(writer) {}

    void Begin(const std::string& tag) { xmlTextWriterStartElement(m_writer, Text(tag.c_str())); }
    void Attribute(const std::string& name, const std::wstring& value)
    {
        // Raw, as its own escaping has other references.
        m_escaped.resize(12 * value.size() + 1);
        const auto length = Escape(value, m_escaped.data()) - m_escaped.data();
        xmlTextWriterStartAttribute(m_writer, Text(name.c_str()));
        xmlTextWriterWriteRawLen(m_writer, Text(m_escaped.data()), static_cast<int>(length));
        xmlTextWriterEndAttribute(m_writer);
    }
    void End() { xmlTextWriterEndElement(m_writer); }

private:
    xmlTextWriterPtr m_writer;
    std::string m_escaped;
};

void Save(const Footprint& footprint, const std::string& file)
{
    static const std::string root(RootTag);
    const std::unique_ptr<xmlTextWriter, void (*)(xmlTextWriterPtr)> writer(xmlNewTextWriterFilename(file.c_str(), 0),
                                                                            &xmlFreeTextWriter);
    if (!writer) {
        Fail("libxml2: can not open " + file);
    }
    xmlTextWriterWriteRaw(writer.get(), Text("<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"));
    xmlTextWriterSetIndent(writer.get(), 1);
    xmlTextWriterSetIndentString(writer.get(), Text("  "));
    Writer adapter(writer.get());
    Write(FootprintSchema(), root, &footprint, adapter);
    xmlTextWriterEndDocument(writer.get());
}

} // namespace

const Peer Libxml2 = {"libxml2", &Load, &Save};

} // namespace bench
