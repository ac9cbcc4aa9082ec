// MapRows: places for the page maps of one table. Rows that were given up are used again; a new map
// page is taken when the known ones are full.
#pragma once

#include "jet/rows/file_context.h"
#include "jet/rows/table_definition.h"

namespace jet {

class MapRows {
public:
    // For a table that has no map yet.
    explicit MapRows(FileContext& file) : file_(file) {}
    // `definition` tells which map pages the table has.
    MapRows(FileContext& file, const TableDefinition& definition);

    // An empty map, or one with a single member.
    base::Result<RowPointer> Add(PageNumber only_member = 0);
    // Gives the map's row and bitmap pages back. Its members are left to the caller.
    base::Status Remove(RowPointer map);
    // Every map page without a row in use goes back to the file.
    base::Status FreeEmptyPages();

private:
    base::Result<std::optional<RowPointer>> AddOn(PageNumber page,
                                                  const std::vector<std::byte>& row);
    void Know(RowPointer map);

    FileContext& file_;
    std::vector<PageNumber> pages_;
};

}  // namespace jet
