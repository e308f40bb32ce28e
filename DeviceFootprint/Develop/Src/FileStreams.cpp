#include "FileStreams.h"

namespace KvDeviceFootprint
{

namespace
{

constexpr std::size_t BufferSize = 1U << 16; // on the heap: the caller's stack may be small

} // namespace

CInputFile::CInputFile(const std::string& fileName) : m_room(BufferSize), m_stream(&m_buffer)
{
    m_buffer.pubsetbuf(m_room.data(), static_cast<std::streamsize>(m_room.size()));
    m_buffer.open(fileName, std::ios_base::in | std::ios_base::binary);
}

COutputFile::COutputFile(const std::string& fileName) : m_room(BufferSize), m_stream(&m_buffer)
{
    m_buffer.pubsetbuf(m_room.data(), static_cast<std::streamsize>(m_room.size()));
    m_buffer.open(fileName, std::ios_base::out | std::ios_base::trunc | std::ios_base::binary);
}

} // namespace KvDeviceFootprint
