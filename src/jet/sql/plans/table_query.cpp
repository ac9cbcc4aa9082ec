#include "jet/sql/plans/table_query.h"

#include "jet/sql/functions/sort_key.h"
#include "jet/sql/plans/key_sorter.h"
#include "jet/sql/plans/sorted_rows.h"

#include <algorithm>
#include <numeric>

namespace jet::sql {

using base::Result;
using base::Status;

std::vector<OuterUse> TableQuery::outer_uses() const {
    std::vector<OuterUse> uses = scope_.outer_uses();
    const std::vector<OuterUse>& of_outputs = output_scope_.outer_uses();
    uses.insert(uses.end(), of_outputs.begin(), of_outputs.end());
    return uses;
}

const ColumnDesign* TableQuery::OutputColumn(std::size_t output) const {
    const auto column = TableColumn(output);
    return column ? &table()->design().columns[*column] : nullptr;
}

std::optional<std::size_t> TableQuery::TableColumn(std::size_t output) const {
    const Expression& e = *select_.outputs[output].expression;
    if (!IsColumn(e)) return std::nullopt;
    return output_scope_.sources()[0].columns[e.slot];
}

// TOP lets ties through only where the rows are sorted here.
const std::vector<OrderItem>& TableQuery::path_order() const {
    return select_.top ? SelectQuery::path_order() : select_.order_by;
}

Result<std::unique_ptr<FilteredCursor>> TableQuery::OpenCursor() {
    const bool in_order = select_.order_by.empty() || path_.in_order;
    if (!in_order || select_.top) return std::unique_ptr<FilteredCursor>();
    return FilteredCursor::Open(scope_, path_, select_.where.get(), session_);
}

Result<FoundRows> TableQuery::CollectRows() {
    if (!select_.order_by.empty() && !path_.in_order) return CollectSorted();
    FoundRows found;
    ASSIGN_OR_RETURN(found.ids, CollectUnsorted());
    return found;
}

Result<std::vector<RowId>> TableQuery::CollectUnsorted() {
    std::vector<RowId> ids;
    ASSIGN_OR_RETURN(const std::unique_ptr<FilteredCursor> cursor,
                     FilteredCursor::Open(scope_, path_, select_.where.get(), session_));
    for (;;) {
        ASSIGN_OR_RETURN(const std::optional<RowId> row, cursor->Next());
        if (!row) break;
        ids.push_back(*row);
    }
    ids.resize(TopCount(select_, ids.size()));
    return ids;
}

Result<FoundRows> TableQuery::CollectSorted() {
    FoundRows found;
    std::vector<RowId> ids;
    KeySorter keys;
    std::string key;
    ASSIGN_OR_RETURN(const std::unique_ptr<FilteredCursor> cursor,
                     FilteredCursor::Open(scope_, path_, select_.where.get(), session_));
    StoredFields* const stored = cursor->stored_fields();
    if (stored != nullptr) found.stored = StoreOutputs(stored->reader());
    for (;;) {
        ASSIGN_OR_RETURN(const std::optional<RowId> row, cursor->Next());
        if (!row) break;
        ids.push_back(*row);
        key.clear();
        RETURN_IF_ERROR(AppendKeyOfMet(*cursor, key));
        keys.Add(key);
        if (stored != nullptr) RETURN_IF_ERROR(found.stored.Add(*stored));
    }
    const std::vector<std::uint32_t> order = keys.Order();
    found.ids.resize(TopCountWithTies(select_, order.size(), [&](std::size_t i) {
        return keys.AreEqual(order[i], order[i - 1]);
    }));
    found.stored.Arrange(std::span(order).first(found.ids.size()));
    for (std::size_t i = 0; i < found.ids.size(); ++i)
        found.ids[i] = ids[order[i]];
    return found;
}

Status TableQuery::AppendKeyOfMet(FilteredCursor& cursor, std::string& key) const {
    EvalContext context{&session_, &cursor.rows(), nullptr};
    StoredFields* const stored = cursor.stored_fields();
    for (const OrderItem& order : select_.order_by) {
        const Expression& e = *order.expression;
        const auto narrow = stored != nullptr && IsColumn(e)
                                ? stored->NarrowText(scope_.sources()[0].columns[e.slot])
                                : std::nullopt;
        if (narrow && AppendNarrowSortKey(*narrow, order.descending, key)) continue;
        RETURN_IF_ERROR(cursor.ReadInUse());
        RETURN_IF_ERROR(AppendKeyOf(*order.expression, order.descending, context, key));
    }
    return Status::Ok();
}

// Holds the outputs where all of them are columns.
StoredRows TableQuery::StoreOutputs(const StoredFieldReader& reader) const {
    std::vector<std::size_t> columns;
    for (std::size_t output = 0; output < names_.size(); ++output) {
        const auto column = TableColumn(output);
        if (!column) return {};
        columns.push_back(*column);
    }
    return {*session_.database, reader, std::move(columns)};
}

Status TableQuery::ReadRow(RowId row, std::span<const std::size_t> outputs, std::span<Value> values,
                           std::span<Status> failures) {
    std::fill(failures.begin(), failures.end(), Status::Ok());
    const Source& source = output_scope_.sources()[0];
    std::vector<std::size_t> columns;
    bool computed = false;
    for (const std::size_t output : outputs) {
        const auto column = TableColumn(output);
        computed = computed || !column;
        columns.push_back(column.value_or(0));
    }
    if (!computed) return source.table->Read(row, columns, values);
    SourceRows rows(1);
    rows[0].resize(source.columns.size());
    RETURN_IF_ERROR(source.table->Read(row, source.columns, rows[0]));
    EvalContext context{&session_, &rows, nullptr};
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        auto value = OutputValue(*select_.outputs[outputs[i]].expression, context);
        if (!value.ok()) failures[i] = value.status();
        values[i] = std::move(value).value_or(Value::Null());
    }
    return Status::Ok();
}

Result<std::vector<ResultRow>> TableQuery::ReadRows(const FoundRows& found,
                                                    FieldFailures* failures) {
    std::vector<Status> failed(names_.size());
    std::vector<std::size_t> outputs(names_.size());
    std::iota(outputs.begin(), outputs.end(), std::size_t{0});
    std::vector<ResultRow> rows;
    rows.reserve(found.ids.size());
    for (std::size_t i = 0; i < found.ids.size(); ++i) {
        ResultRow& row = rows.emplace_back(outputs.size());
        if (!found.stored.are_fresh()) {
            RETURN_IF_ERROR(ReadRow(found.ids[i], outputs, row, failed));
            for (const std::size_t output : outputs) {
                if (failed[output].ok()) continue;
                if (failures == nullptr) return failed[output];
                failures->try_emplace({i, output}, failed[output]);
            }
            continue;
        }
        for (const std::size_t output : outputs)
            RETURN_IF_ERROR(found.stored.Read(i, output, row[output]));
    }
    return rows;
}

Result<std::vector<ResultRow>> TableQuery::RowsOrFailures(FieldFailures* failures) {
    RETURN_IF_ERROR(RefreshPath());
    ASSIGN_OR_RETURN(const FoundRows found, CollectRows());
    return ReadRows(found, failures);
}

}  // namespace jet::sql
