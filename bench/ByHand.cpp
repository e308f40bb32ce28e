#include "Peers.h"

#include <cstdio>

namespace bench
{

namespace
{

class HandWriter
{
public:
    explicit HandWriter(std::FILE* file) : m_file(file) {}

    void Begin(const std::string& tag)
    {
        CloseStart();
        Indent();
        m_text += '<';
        m_text += tag;
        m_tags.push_back(&tag);
        m_isStartOpen = true;
    }
    void Attribute(const std::string& name, const std::wstring& value)
    {
        const std::size_t used = m_text.size();
        m_text.resize(used + name.size() + 12 * value.size() + 4);
        char* to = m_text.data() + used;
        *to++ = ' ';
        to = name.copy(to, name.size()) + to;
        *to++ = '=';
        *to++ = '"';
        to = Escape(value, to);
        *to++ = '"';
        m_text.resize(static_cast<std::size_t>(to - m_text.data()));
    }
    void End()
    {
        const std::string* const tag = m_tags.back();
        m_tags.pop_back();
        if (m_isStartOpen) {
            m_text += "/>\n";
            m_isStartOpen = false;
        } else {
            Indent();
            m_text += "</";
            m_text += *tag;
            m_text += ">\n";
        }
        if (m_text.size() > 60000 || m_tags.empty()) {
            Flush();
        }
    }
    void Line(const char* line) { m_text += line; }

private:
    void CloseStart()
    {
        if (m_isStartOpen) {
            m_text += ">\n";
        }
    }
    void Indent() { m_text.append(2 * m_tags.size(), ' '); }
    void Flush()
    {
        if (std::fwrite(m_text.data(), 1, m_text.size(), m_file) != m_text.size()) {
            Fail("can not write");
        }
        m_text.clear();
    }

    std::FILE* m_file;
    std::string m_text;
    std::vector<const std::string*> m_tags;
    bool m_isStartOpen = false;
};

void SaveByHand(const Footprint& footprint, const std::string& file)
{
    static const std::string root(RootTag);
    const File opened = OpenFile(file, "wb");
    std::setvbuf(opened.get(), nullptr, _IONBF, 0); // the writer gathers
    HandWriter writer(opened.get());
    writer.Line("<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n");
    Write(FootprintSchema(), root, &footprint, writer);
}

} // namespace

const Peer ByHand = {"by hand", nullptr, &SaveByHand};

} // namespace bench
