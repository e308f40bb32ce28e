#ifndef NYXCONFIG_EXPORTTABLES_H
#define NYXCONFIG_EXPORTTABLES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace footprint
{

/// The tables of an export, apart from the list of files.
enum EExportTable : std::size_t
{
    eDevices,
    eBoards,
    eProgrammableParts,
    eProducts,
    eSoftware,
    eMaintenances,
    eServices,
    eConnectedDevices,
    eExportTableCount
};

/// What stands in a column. Keys are whole numbers, everything else is text as the footprint has it; a value that the
/// footprint does not have is null.
enum class EExportColumn
{
    eOwnKey, ///< key of the row itself
    eKey,    ///< key of a row that this one belongs to
    eFile,   ///< key of the file
    eNumber, ///< a whole number that is no key
    eText    ///< a value of the footprint
};

struct CExportColumn
{
    std::string name;
    EExportColumn kind;
    std::string references; ///< of a key: "table(column)"
};

struct CExportTable
{
    std::string name;
    std::vector<CExportColumn> columns; ///< the own key first
};

/// Tables and columns. The columns of values follow from the tables of the library's element classes.
const std::array<CExportTable, eExportTableCount>& ExportTables();

/// Keys of rows are made of the number of the file and the number of the row in that file's part of the table, so that
/// the rows of a file are one range of keys in each table.
constexpr unsigned exportKeyBits = 24;
/// Number of the last row that a file can have in a table.
constexpr std::uint32_t lastExportRow = (1U << exportKeyBits) - 1;

/// The key of a row. @param row from 1.
constexpr std::int64_t ExportKey(std::int64_t file, std::uint32_t row)
{
    return file * (std::int64_t{1} << exportKeyBits) + row;
}

} // namespace footprint

#endif
