// The cursors that Table hands out.
#pragma once

#include "jet/index/index_tree.h"
#include "jet/rows/row_view.h"
#include "jet/rows/table_scan.h"
#include "jet/tables/database.h"

namespace jet {

// What a cursor needs of its table; all must outlive it.
struct CursorSource {
    FileContext* file;
    const TableDefinition* definition;
    const std::vector<std::size_t>* positions;  // of the shown columns among definition->columns
    const StoredFieldReader* stored_reader;
};

// Decodes the fields `columns` (positions shown) of a row.
base::Status DecodeFields(const CursorSource& source, std::span<const std::byte> row,
                          std::span<const std::size_t> columns, std::span<Value> values);
base::Status DecodeFields(const CursorSource& source, const RowView& row,
                          std::span<const std::size_t> columns, std::span<Value> values);

// Appends the fields `columns` of a row as they stand in it (rows/stored_fields.h).
base::Status AppendStoredFields(const CursorSource& source, std::span<const std::byte> row,
                                std::span<const std::size_t> columns, FieldBytes& fields);
base::Status AppendStoredFields(const CursorSource& source, const RowView& row,
                                std::span<const std::size_t> columns, FieldBytes& fields);
// The value of one of them, the `place`th; its column is `column` (position shown).
base::Status DecodeStoredField(const CursorSource& source, std::span<const std::byte> fields,
                               std::size_t place, std::size_t column, Value& value);

std::unique_ptr<RowCursor> MakeScanCursor(const CursorSource& source, TableScan scan);

// Entries from `from` (key bytes; empty: the first) up to `to` (empty: the last), both of complete
// key parts.
struct KeyRange {
    Bytes from;
    bool from_inclusive = true;
    Bytes to;
    bool to_inclusive = true;
};
std::unique_ptr<RowCursor> MakeRangeCursor(const CursorSource& source, const IndexTree& tree,
                                           KeyRange range, bool backwards);

}  // namespace jet
