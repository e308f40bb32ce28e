#ifndef NYXCONFIG_STREAMCAPTURE_H
#define NYXCONFIG_STREAMCAPTURE_H

#include <iostream>
#include <sstream>
#include <string>

namespace NyxTest
{

/// Takes what is written to a standard stream, while it lives. The stream gets its own buffer back at the end.
template<class Char>
class BasicStreamCapture
{
public:
    explicit BasicStreamCapture(std::basic_ostream<Char>& stream) : m_stream(stream), m_former(stream.rdbuf(&m_buffer))
    {
    }
    BasicStreamCapture(const BasicStreamCapture&) = delete;
    BasicStreamCapture& operator=(const BasicStreamCapture&) = delete;
    ~BasicStreamCapture() { m_stream.rdbuf(m_former); }

    std::basic_string<Char> Text() const { return m_buffer.str(); }
    /// Text() since construction or the last Take().
    std::basic_string<Char> Take()
    {
        std::basic_string<Char> text = m_buffer.str();
        m_buffer.str({});
        return text;
    }

private:
    std::basic_ostream<Char>& m_stream;
    std::basic_stringbuf<Char> m_buffer;
    std::basic_streambuf<Char>* m_former;
};

using StreamCapture = BasicStreamCapture<char>;
using WideStreamCapture = BasicStreamCapture<wchar_t>;

} // namespace NyxTest

#endif
