#ifndef NYXCONFIG_ELEMENTTEXT_H
#define NYXCONFIG_ELEMENTTEXT_H

#include "Checksum.h"
#include "ElementNode.h"
#include "XmlStreams.h"

#include <sstream>
#include <string>

namespace NyxTest
{

/// What SaveToStream() of an element writes as a root: no XML declaration. A failed save fails the caller's
/// expectations through @p saved, if it is given.
inline std::string SaveText(KvDeviceFootprint::CElementNode& element, bool* saved = nullptr)
{
    static const std::string name = "out";
    std::ostringstream text;
    KvDeviceFootprint::COutStream stream(text);
    KvDeviceFootprint::CXmlStreamWriter writer(stream, name);
    const bool result = element.SaveToStream(writer);
    if (saved != nullptr) {
        *saved = result;
    }
    return text.str();
}

/// The result of LoadFromStream() with the reader on the first line of @p text.
inline bool LoadText(KvDeviceFootprint::CElementNode& element, const std::string& text)
{
    static const std::string name = "in";
    std::istringstream stream(text);
    KvDeviceFootprint::CXmlStreamReader reader(stream, name);
    return reader.NextToken() && element.LoadFromStream(reader);
}

/// A digest that keeps what goes into it as text.
class TextAlgorithm : public KvDeviceFootprint::CChecksumAlgorithmIF
{
public:
    TextAlgorithm() : CChecksumAlgorithmIF("Text") {}
    void init() override { m_text.clear(); }
    bool finalize(KvDeviceFootprint::CChecksumContainerIF& /*result*/) override { return true; }
    void add(const std::string& text) override { m_text += text; }
    const std::string& Text() const { return m_text; }

private:
    std::string m_text;
};

/// The canonical form of an element: all that its save feeds into a checksum.
inline std::string ChecksumText(KvDeviceFootprint::CElementNode& element)
{
    static const std::string name = "canonical";
    TextAlgorithm algorithm;
    KvDeviceFootprint::CChecksumStream stream(algorithm);
    KvDeviceFootprint::CXmlStreamWriter writer(stream, name);
    element.SaveToStream(writer);
    return algorithm.Text();
}

} // namespace NyxTest

#endif
