#ifndef NYXCONFIG_TEXTSINK_H
#define NYXCONFIG_TEXTSINK_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>

namespace KvDeviceFootprint
{

/// Gathers text in a buffer and hands it on in large pieces. CXmlStreamWriter writes to one directly where it knows
/// that nobody can tell the difference.
class CTextSink
{
public:
    CTextSink(const CTextSink&) = delete;
    CTextSink& operator=(const CTextSink&) = delete;

    /// Room for @p count characters. What was written there counts from Advance() on.
    char* Reserve(std::size_t count)
    {
        return static_cast<std::size_t>(m_end - m_cursor) >= count ? m_cursor : MakeRoom(count);
    }
    /// @param cursor behind the last character written.
    void Advance(char* cursor) { m_cursor = cursor; }

    void Put(const char* text, std::size_t count)
    {
        std::memcpy(Reserve(count), text, count);
        m_cursor += count;
    }
    void Put(const std::string& text) { Put(text.data(), text.size()); }

    /// Hands on what was gathered.
    void Drain()
    {
        char* const begin = m_room.get();
        if (m_cursor != begin) {
            const auto count = static_cast<std::size_t>(m_cursor - begin);
            m_cursor = begin;
            Take(begin, count);
        }
    }

    /// Hands on as many whole blocks of BlockSize characters as were gathered.
    void DrainBlocks()
    {
        char* const begin = m_room.get();
        const auto gathered = static_cast<std::size_t>(m_cursor - begin);
        const std::size_t count = gathered - gathered % BlockSize;
        if (count != 0) {
            Take(begin, count);
            std::memcpy(begin, begin + count, gathered - count);
            m_cursor = begin + (gathered - count);
        }
    }

    static constexpr std::size_t BlockSize = 64; // of MD5

protected:
    explicit CTextSink(std::size_t capacity)
        : m_room(new char[capacity]), m_cursor(m_room.get()), m_end(m_cursor + capacity)
    {
    }
    /// The derived class drains: its Take() is gone by now.
    virtual ~CTextSink() = default;

    virtual void Take(const char* text, std::size_t count) = 0;

private:
    char* MakeRoom(std::size_t count)
    {
        Drain();
        if (static_cast<std::size_t>(m_end - m_cursor) < count) {
            m_room.reset(new char[count]);
            m_cursor = m_room.get();
            m_end = m_cursor + count;
        }
        return m_cursor;
    }

    std::unique_ptr<char[]> m_room; // on the heap: the caller's stack may be small
    char* m_cursor;
    char* m_end;
};

} // namespace KvDeviceFootprint

#endif
