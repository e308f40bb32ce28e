#ifndef NYXCONFIG_FILESTREAMS_H
#define NYXCONFIG_FILESTREAMS_H

#include "TextSink.h"

#include <cstring>
#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>

namespace KvDeviceFootprint
{

/// An open file, closed with this object.
class CFileDescriptor
{
public:
    explicit CFileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    CFileDescriptor(const CFileDescriptor&) = delete;
    CFileDescriptor& operator=(const CFileDescriptor&) = delete;
    ~CFileDescriptor();

    bool IsOpen() const { return m_descriptor >= 0; }
    int Get() const { return m_descriptor; }

private:
    int m_descriptor;
};

/// Whether all bytes are below 128.
bool IsAscii(const char* begin, const char* end);

/// A stream buffer that reads a file and can give it line by line without copying.
class CReadBuffer : public std::streambuf
{
public:
    enum TLineResult
    {
        eLine,
        eEndOfFile,
        eFailure
    };

    explicit CReadBuffer(const std::string& fileName);

    bool IsOpen() const { return m_file.IsOpen(); }
    /// Takes the next line without its line feed. A last line needs none.
    /// @param begin,end the line; valid until the next call and as long as @p storage is left alone.
    /// @param storage holds a line that does not stand in the buffer in one piece.
    TLineResult ReadLine(std::string& storage, const char*& begin, const char*& end);

    /// The same for a line that the buffer holds whole; false for any other.
    bool TakeLine(const char*& begin, const char*& end)
    {
        const auto available = static_cast<std::size_t>(egptr() - gptr());
        if (available == 0) {
            return false;
        }
        const auto* lineFeed = static_cast<const char*>(std::memchr(gptr(), '\n', available));
        if (lineFeed == nullptr) {
            return false;
        }
        begin = gptr();
        end = lineFeed;
        setg(eback(), gptr() + (lineFeed + 1 - begin), egptr());
        return true;
    }

    /// Whether all that the buffer holds is ASCII.
    bool IsAscii() const { return m_isAscii; }

protected:
    /// Throws on a read error, which makes a stream bad.
    int_type underflow() override;

private:
    bool Fill();

    CFileDescriptor m_file;
    std::unique_ptr<char[]> m_room; // on the heap, and not filled with zeros first
    bool m_failed = false;
    bool m_isAscii = false;
};

/// A file for reading, binary. Closed with this object.
class CInputFile
{
public:
    explicit CInputFile(const std::string& fileName) : m_buffer(fileName), m_stream(&m_buffer) {}

    bool IsOpen() const { return m_buffer.IsOpen(); }
    std::istream& Stream() { return m_stream; }

private:
    CReadBuffer m_buffer;
    std::istream m_stream;
};

/// A stream buffer over a text sink. A flush of its stream does nothing: a document is written line by line, and each
/// system call for a line would cost more than the line.
class CGatherBuffer : public std::streambuf
{
public:
    explicit CGatherBuffer(CTextSink& sink) : m_sink(&sink) {}

    CTextSink& Sink() { return *m_sink; }

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize count) override;
    int sync() override { return 0; }

private:
    CTextSink* m_sink;
};

/// A file for writing, binary, truncating. What was gathered is written and the file is closed with this object, on
/// every path. A failure to write is not noticed; what comes after it is dropped.
class COutputFile : private CTextSink
{
public:
    explicit COutputFile(const std::string& fileName);
    ~COutputFile() override;

    bool IsOpen() const { return m_file.IsOpen(); }
    std::ostream& Stream() { return m_stream; }

private:
    void Take(const char* text, std::size_t count) override;

    CFileDescriptor m_file;
    bool m_failed = false;
    CGatherBuffer m_buffer;
    std::ostream m_stream;
};

/// Text that is written through a stream and kept.
class COutputText : private CTextSink
{
public:
    COutputText();

    std::ostream& Stream() { return m_stream; }
    /// All that was written.
    const std::string& Text();

private:
    void Take(const char* text, std::size_t count) override;

    std::string m_text;
    CGatherBuffer m_buffer;
    std::ostream m_stream;
};

} // namespace KvDeviceFootprint

#endif
