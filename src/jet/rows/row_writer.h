// RowWriter: puts rows of one table into its pages, changes and deletes them, with their long
// values. The caller keeps indexes and counters and checks the rules.
#pragma once

#include "jet/rows/long_value_store.h"
#include "jet/rows/row_encoder.h"
#include "jet/rows/row_set.h"
#include "jet/rows/row_view.h"

#include <map>

namespace jet {

class RowWriter {
public:
    // Both must outlive the writer.
    RowWriter(FileContext& file, const TableDefinition& definition);

    // `values` go with definition.columns and are of their types. 3047, 3163.
    base::Result<RowId> Insert(std::span<const Value> values);
    // `values` and `changed` go with definition.columns; a column that is not changed keeps its
    // bytes.
    base::Status Update(RowId row, std::span<const Value> values, const std::vector<bool>& changed);
    // Changes columns (positions in definition.columns) where they stand. `row`: the bytes of a row
    // on a page that the transaction changes. False: it is to be written anew, by Update; nothing
    // was changed.
    base::Result<bool> Patch(std::span<std::byte> row, std::span<const std::size_t> columns,
                             std::span<const Value> values);
    base::Status Delete(RowId row);
    // Deletes those of the rows that there are, each page once; the answer is how many they were.
    base::Result<std::size_t> Delete(const RowSet& rows);
    // To be called after a rollback.
    void Forget();

private:
    LongValueStore* LongValuesOf(const ColumnDefinition& column);
    base::Result<RowField> MakeField(const ColumnDefinition& column, const Value& value);
    base::Result<Bytes> EncodeWithinLimit(std::vector<RowField>& fields);
    // `at_once` false: noted where that is cheaper, see LongValueStore::FreeNoted.
    base::Status FreeLongValue(const ColumnDefinition& column, const RowView& row, bool at_once);
    base::Status FreeLongValues(std::span<const std::byte> row, bool at_once);
    base::Status Place(RowId row, RowId at, std::span<const std::byte> bytes);

    FileContext& file_;
    const TableDefinition& definition_;
    RowPages pages_;
    std::map<std::uint16_t, LongValueStore> long_values_;  // by column number
};

}  // namespace jet
