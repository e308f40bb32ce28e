#include "Peers.h"

#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace bench
{

namespace
{

std::string Narrow(const QStringRef& text)
{
    std::string narrow;
    narrow.reserve(static_cast<std::size_t>(text.size()));
    for (const QChar character : text) {
        narrow += character.toLatin1(); // tags and names are ASCII
    }
    return narrow;
}

void Widen(const QStringRef& text, std::wstring& wide)
{
    const auto begin = wide.size();
    wide.resize(begin + static_cast<std::size_t>(text.size()));
    std::size_t count = begin;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i).isHighSurrogate() && i + 1 < text.size()) {
            wide[count++] = static_cast<wchar_t>(QChar::surrogateToUcs4(text.at(i), text.at(i + 1)));
            ++i;
        } else {
            wide[count++] = text.at(i).unicode();
        }
    }
    wide.resize(count);
}

void Load(const std::string& file, Footprint& footprint)
{
    QFile opened(QString::fromStdString(file));
    if (!opened.open(QIODevice::ReadOnly)) {
        Fail("Qt: can not open " + file);
    }
    QXmlStreamReader reader(&opened);
    Builder builder(footprint);
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            builder.Begin(Narrow(reader.name()));
            for (const QXmlStreamAttribute& attribute : reader.attributes()) {
                if (std::wstring* const value = builder.Attribute(Narrow(attribute.name()))) {
                    Widen(attribute.value(), *value);
                }
            }
            break;
        case QXmlStreamReader::EndElement:
            builder.End();
            break;
        default:
            break;
        }
    }
    if (reader.hasError()) {
        Fail("Qt: " + reader.errorString().toStdString());
    }
}

/// Puts the writer's UTF-8 into a file, apostrophes and what is not ASCII as references: the writer can not do that.
class ReferenceFile : public QFile
{
public:
    explicit ReferenceFile(const std::string& name) : QFile(QString::fromStdString(name)) {}
    ReferenceFile(const ReferenceFile&) = delete;
    ReferenceFile& operator=(const ReferenceFile&) = delete;
    ~ReferenceFile() override { close(); }

    /// Text that goes out before the writer's own; what the writer begins with, a line feed, is dropped.
    void WriteFirst(const char* text) { m_text = text; }
    void Finish()
    {
        m_text += '\n';
        QFile::writeData(m_text.data(), static_cast<qint64>(m_text.size()));
    }

protected:
    qint64 writeData(const char* data, qint64 size) override
    {
        for (qint64 i = 0; i < size; ++i) {
            const auto byte = static_cast<unsigned char>(data[i]);
            if (byte < 0x80 && byte != '\'') {
                m_text += data[i];
                continue;
            }
            if (byte == '\'') {
                m_text += "&apos;";
            } else if (byte >= 0xC0) {
                m_value = byte & (byte >= 0xF0 ? 0x07U : byte >= 0xE0 ? 0x0FU : 0x1FU);
                m_following = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : 1;
            } else {
                m_value = (m_value << 6) | (byte & 0x3FU);
                if (--m_following == 0) {
                    m_text += "&#" + std::to_string(m_value) + ";";
                }
            }
        }
        if (m_text.size() > 60000) {
            QFile::writeData(m_text.data(), static_cast<qint64>(m_text.size()));
            m_text.clear();
        }
        return size;
    }

private:
    std::string m_text;
    unsigned m_value = 0;
    int m_following = 0;
};

class Writer
{
public:
    explicit Writer(QXmlStreamWriter& writer) : m_writer(&writer) {}

    void Begin(const std::string& tag)
    {
        m_writer->writeStartElement(QString::fromLatin1(tag.data(), int(tag.size())));
    }
    void Attribute(const std::string& name, const std::wstring& value)
    {
        m_writer->writeAttribute(QString::fromLatin1(name.data(), int(name.size())), QString::fromStdWString(value));
    }
    void End() { m_writer->writeEndElement(); }

private:
    QXmlStreamWriter* m_writer;
};

void Save(const Footprint& footprint, const std::string& file)
{
    static const std::string root(RootTag);
    ReferenceFile opened(file);
    if (!opened.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        Fail("Qt: can not open " + file);
    }
    opened.WriteFirst("<?xml version=\"1.0\" encoding=\"utf-8\" ?>");
    QXmlStreamWriter writer(&opened);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(2);
    Writer adapter(writer);
    Write(FootprintSchema(), root, &footprint, adapter);
    opened.Finish();
}

} // namespace

const Peer Qt = {"Qt", &Load, &Save};

} // namespace bench
