#ifndef NYXCONFIG_FILESTREAMS_H
#define NYXCONFIG_FILESTREAMS_H

#include <fstream>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace KvDeviceFootprint
{

/// A file for reading, binary, with a buffer that suits whole documents. Closed by the destructor.
class CInputFile
{
public:
    explicit CInputFile(const std::string& fileName);

    bool IsOpen() const { return m_buffer.is_open(); }
    std::istream& Stream() { return m_stream; }

private:
    std::vector<char> m_room;
    std::filebuf m_buffer;
    std::istream m_stream;
};

/// A file for writing, binary, truncating. A flush of the stream writes nothing yet, so that a document written line by
/// line does not cost a system call per line. The destructor writes what is left and closes, on every path.
class COutputFile
{
public:
    explicit COutputFile(const std::string& fileName);

    bool IsOpen() const { return m_buffer.is_open(); }
    std::ostream& Stream() { return m_stream; }

private:
    class CGatheringBuffer : public std::filebuf
    {
    protected:
        int sync() override { return 0; }
    };

    std::vector<char> m_room;
    CGatheringBuffer m_buffer;
    std::ostream m_stream;
};

} // namespace KvDeviceFootprint

#endif
