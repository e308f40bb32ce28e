#ifndef NYXCONFIG_EXPORTINCOMING_H
#define NYXCONFIG_EXPORTINCOMING_H

#include "ExportRows.h"
#include "ExportTables.h"
#include "Sqlite.h"

#include <cstdint>
#include <string>
#include <vector>

namespace footprint
{

/// The rows of one file for one table.
struct CIncomingRows
{
    std::int64_t file = 0; ///< its number
    bool isNew = false;    ///< no row of the table has a larger key: the first row has its key, the others follow it
    CBytes rows;
};

/// Rows that wait to be stored, as a virtual table of the database: one statement then stores the rows of many files,
/// which takes half the time of a statement for each row.
class CIncomingTable
{
public:
    /// @param table must outlive the database, and this object its statements.
    CIncomingTable(const CSqlite& database, const CExportTable& table);
    CIncomingTable(const CIncomingTable&) = delete;
    CIncomingTable& operator=(const CIncomingTable&) = delete;

    /// "incoming_" and the name of the table.
    static std::string Name(const CExportTable& table) { return "incoming_" + table.name; }

    std::vector<CIncomingRows> m_files;
    /// The key that the last row of the last statement is to have.
    std::int64_t m_lastKey = 0;

    const CExportTable& Table() const { return *m_table; }

private:
    const CExportTable* m_table;
};

} // namespace footprint

#endif
