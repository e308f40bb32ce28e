#include "FileStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ios>

namespace KvDeviceFootprint
{

namespace
{

constexpr std::size_t BufferSize = 1U << 16;

/// Repeats a call that a signal interrupted.
template<class Call>
auto Uninterrupted(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

int Open(const std::string& fileName, int flags)
{
    return Uninterrupted([&] { return open(fileName.c_str(), flags | O_CLOEXEC, 0666); });
}

} // namespace

bool IsAscii(const char* begin, const char* end)
{
    // 32 bytes at once; the compiler makes of it what the processor has.
    using Block = std::uint64_t __attribute__((vector_size(32)));
    Block blocks = {};
    for (Block block; end - begin >= static_cast<std::ptrdiff_t>(sizeof block); begin += sizeof block) {
        std::memcpy(&block, begin, sizeof block);
        blocks |= block;
    }
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::uint64_t seen = blocks[0] | blocks[1] | blocks[2] | blocks[3];
    for (; begin != end; ++begin) {
        seen |= static_cast<std::uint64_t>(static_cast<unsigned char>(*begin));
    }
    return (seen & highBits) == 0;
}

CFileDescriptor::~CFileDescriptor()
{
    if (IsOpen()) {
        close(m_descriptor);
    }
}

CReadBuffer::CReadBuffer(const std::string& fileName) : m_file(Open(fileName, O_RDONLY)), m_room(new char[BufferSize])
{
}

/// Reads on behind what was consumed. False at the end of the file and on a failure.
bool CReadBuffer::Fill()
{
    char* const room = m_room.get();
    const ssize_t count = Uninterrupted([&] { return read(m_file.Get(), room, BufferSize); });
    m_failed = count < 0;
    m_isAscii = count > 0 && KvDeviceFootprint::IsAscii(room, room + count);
    setg(room, room, room + (count > 0 ? count : 0));
    return count > 0;
}

CReadBuffer::int_type CReadBuffer::underflow()
{
    if (gptr() == egptr() && !Fill()) {
        if (m_failed) {
            throw std::ios_base::failure("read error");
        }
        return traits_type::eof();
    }
    return traits_type::to_int_type(*gptr());
}

CReadBuffer::TLineResult CReadBuffer::ReadLine(std::string& storage, const char*& begin, const char*& end)
{
    storage.clear();
    for (;;) {
        if (gptr() == egptr() && !Fill()) {
            if (m_failed) {
                return eFailure;
            }
            begin = storage.data();
            end = begin + storage.size();
            return storage.empty() ? eEndOfFile : eLine;
        }
        const auto available = static_cast<std::size_t>(egptr() - gptr());
        const auto* lineFeed = static_cast<const char*>(std::memchr(gptr(), '\n', available));
        if (lineFeed == nullptr) {
            storage.append(gptr(), available);
            setg(eback(), egptr(), egptr());
            continue;
        }
        begin = gptr();
        end = lineFeed;
        setg(eback(), gptr() + (lineFeed + 1 - begin), egptr());
        if (!storage.empty()) {
            storage.append(begin, end);
            begin = storage.data();
            end = begin + storage.size();
        }
        return eLine;
    }
}

CGatherBuffer::int_type CGatherBuffer::overflow(int_type character)
{
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
        const char byte = traits_type::to_char_type(character);
        m_sink->Put(&byte, 1);
    }
    return traits_type::not_eof(character);
}

std::streamsize CGatherBuffer::xsputn(const char* text, std::streamsize count)
{
    m_sink->Put(text, static_cast<std::size_t>(count));
    return count;
}

COutputFile::COutputFile(const std::string& fileName)
    : CTextSink(BufferSize), m_file(Open(fileName, O_WRONLY | O_CREAT | O_TRUNC)), m_buffer(*this), m_stream(&m_buffer)
{
}

COutputFile::~COutputFile()
{
    Drain();
}

void COutputFile::Take(const char* text, std::size_t count)
{
    while (count > 0 && !m_failed) {
        const ssize_t written = Uninterrupted([&] { return write(m_file.Get(), text, count); });
        m_failed = written <= 0;
        if (!m_failed) {
            text += written;
            count -= static_cast<std::size_t>(written);
        }
    }
}

COutputText::COutputText() : CTextSink(BufferSize), m_buffer(*this), m_stream(&m_buffer) {}

void COutputText::Take(const char* text, std::size_t count)
{
    m_text.append(text, count);
}

const std::string& COutputText::Text()
{
    Drain();
    return m_text;
}

} // namespace KvDeviceFootprint
