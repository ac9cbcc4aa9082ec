// TableQuery: a SELECT each of whose rows is one row of one table (no join, grouping, DISTINCT or
// UNION). Its result is a list of row ids whose values are read on demand.
#pragma once

#include "jet/sql/plans/filtered_cursor.h"
#include "jet/sql/plans/select_query.h"
#include "jet/sql/plans/stored_rows.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace jet::sql {

// The rows of a table that make a result, in its order.
struct FoundRows {
    std::vector<RowId> ids;
    StoredRows stored;  // of the same rows, the outputs in order; perhaps none is held
};

class TableQuery final : public SelectQuery {
public:
    // Requires: `scope` has one source.
    TableQuery(SelectStatement&& select, Session& session, Scope&& scope)
        : SelectQuery(std::move(select), session, std::move(scope)), output_scope_(scope_) {}

    std::vector<OuterUse> outer_uses() const override;
    const ColumnDesign* OutputColumn(std::size_t output) const override;
    TableQuery* AsTableQuery() override { return this; }

    Table* table() const { return scope_.sources()[0].table; }
    // The table's column that an output shows; nullopt: a computed value.
    std::optional<std::size_t> TableColumn(std::size_t output) const;

    // The rows in the order of the result.
    base::Result<FoundRows> CollectRows();
    // nullptr: the rows have to be sorted or cut first, so that CollectRows is needed.
    base::Result<std::unique_ptr<FilteredCursor>> OpenCursor();
    // `outputs` are positions in names(); `values` and `failures` have the same size. 3167: the row
    // is gone.
    base::Status ReadRow(RowId row, std::span<const std::size_t> outputs, std::span<Value> values,
                         std::span<base::Status> failures);
    // All outputs of rows found by CollectRows. `failures`: see RowsOrFailures.
    base::Result<std::vector<ResultRow>> ReadRows(const FoundRows& found, FieldFailures* failures);

    base::Result<std::vector<ResultRow>> RowsOrFailures(FieldFailures* failures) override;

private:
    Scope& output_scope() override { return output_scope_; }
    const std::vector<OrderItem>& path_order() const override;
    base::Result<std::vector<RowId>> CollectUnsorted();
    base::Result<FoundRows> CollectSorted();
    // The order's key of the row that `cursor` met last.
    base::Status AppendKeyOfMet(FilteredCursor& cursor, std::string& key) const;
    StoredRows StoreOutputs(const StoredFieldReader& reader) const;

    // Apart from scope_, so that finding rows reads no columns that only outputs show.
    Scope output_scope_;
};

}  // namespace jet::sql
