#ifndef NYXCONFIG_EXPORTROWS_H
#define NYXCONFIG_EXPORTROWS_H

#include "DeviceFootprint.h"
#include "ExportTables.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace footprint
{

/// Bytes somewhere in memory. Unlike std::string_view it can be null.
struct CBytes
{
    const char* begin = nullptr;
    std::size_t size = 0;
};

/// Bytes that are put one behind the other, in memory that is kept for the next ones.
class CExportBuffer
{
public:
    const char* data() const { return m_bytes.get(); }
    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    void clear() { m_size = 0; }
    /// Makes room for so many bytes more, and counts them in.
    char* Append(std::size_t count)
    {
        if (count > m_capacity - m_size) {
            Grow(count);
        }
        m_size += count;
        return m_bytes.get() + m_size - count;
    }

    /// Takes the last bytes back.
    void Drop(std::size_t count) { m_size -= count; }

private:
    void Grow(std::size_t count);

    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

/// Rows of all tables in a compact form: for a key or number four bytes, for a text its length and its bytes. The
/// number of a file is not in it. Each row is as long as its table has columns, without the column of the file.
class CExportRows
{
public:
    /// Begins a row of a table; its own key is the next number in it. The fields follow in the order of the columns.
    /// @return the number, from 1.
    /// @throw std::length_error if the table has no room for another row of one file.
    std::uint32_t Begin(EExportTable table);
    /// 0 is null.
    void Number(std::uint32_t number);
    /// An empty text is null.
    void Text(const std::string& text);
    /// The same in UTF-8. What is no Unicode character becomes U+FFFD, and so does a zero, which would end the text for
    /// many a program.
    void Text(const std::wstring& text);

    void Clear();
    const std::array<CExportBuffer, eExportTableCount>& Tables() const { return m_tables; }

private:
    char* PutLength(std::size_t length);

    std::array<CExportBuffer, eExportTableCount> m_tables;
    std::array<std::uint32_t, eExportTableCount> m_counts{};
    CExportBuffer* m_current = nullptr;
    std::string m_utf8; // kept for its capacity
};

/// Reads the rows that CExportRows made for one table.
class CExportRowReader
{
public:
    explicit CExportRowReader(const CExportTable& table);

    void Start(CBytes rows) { m_rows = rows; }
    /// Goes to the next row; false behind the last.
    /// @throw std::runtime_error if the bytes are no rows.
    bool Next();
    EExportColumn Kind(std::size_t column) const { return m_kinds[column]; }
    /// The number of a key or number, 0 for null.
    std::uint32_t Number(std::size_t column) const;
    /// A text; without a beginning if it is null.
    CBytes Text(std::size_t column) const { return m_fields[column]; }

private:
    std::vector<EExportColumn> m_kinds;
    CBytes m_rows;
    std::vector<CBytes> m_fields; // of the present row
};

/// What replaces the value of an attribute that is to be hidden, by the name of the attribute.
using TPseudonym = std::function<std::string(const std::string& attribute, const std::string& value)>;

/// Adds a footprint with all its connected devices to the tables.
/// @param pseudonym may be empty: then nothing is hidden.
void AddFootprint(const KvDeviceFootprint::CDeviceFootprint& footprint, CExportRows& rows,
                  const TPseudonym& pseudonym = {});

} // namespace footprint

#endif
