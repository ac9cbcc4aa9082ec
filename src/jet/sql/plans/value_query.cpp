#include "jet/sql/plans/value_query.h"

#include "jet/rows/field_bytes.h"
#include "jet/sql/plans/filtered_cursor.h"
#include "jet/sql/plans/stored_row_set.h"

#include <unordered_set>

namespace jet::sql {

using base::Result;
using base::Status;

Result<std::vector<ResultRow>> ValueQuery::RowsOrFailures(FieldFailures* failures) {
    RETURN_IF_ERROR(RefreshPath());
    ASSIGN_OR_RETURN(std::vector<SortedRow> rows, MakeRows(failures != nullptr));
    SortAndCut(rows);
    std::vector<ResultRow> result;
    result.reserve(rows.size());
    for (SortedRow& row : rows) {
        for (const auto& [output, failure] : row.failures)
            failures->try_emplace({result.size(), output}, failure);
        result.push_back(std::move(row.values));
    }
    return result;
}

void ValueQuery::SortAndCut(std::vector<SortedRow>& rows) const {
    if (select_.distinct) SortDistinct(rows);
    const bool sorted = !select_.order_by.empty();
    if (sorted) SortByKey(rows);
    rows.resize(TopCountWithTies(select_, rows.size(), [&](std::size_t i) {
        return sorted && rows[i].key == rows[i - 1].key;
    }));
}

Result<SortedRow> ValueQuery::MakeRow(EvalContext& context, bool keeps_failures) const {
    SortedRow row;
    for (const OutputItem& item : select_.outputs) {
        auto value = OutputValue(*item.expression, context);
        if (!value.ok()) {
            if (!keeps_failures) return value.status();
            row.failures.emplace_back(row.values.size(), value.status());
        }
        row.values.push_back(std::move(value).value_or(Value::Null()));
    }
    row.key.reserve(32 * select_.order_by.size());
    RETURN_IF_ERROR(AppendOrderKey(context, row.key));
    return row;
}

// Without a table there is one row, which has a value for each output or is refused.
Result<std::vector<SortedRow>> CombinedQuery::MakeRows(bool keeps_failures) {
    std::vector<SortedRow> made;
    RETURN_IF_ERROR(ForEachRow([&](const SourceRows& rows) -> Result<bool> {
        EvalContext context{&session_, &rows, nullptr};
        ASSIGN_OR_RETURN(SortedRow row,
                         MakeRow(context, keeps_failures && select_.from != nullptr));
        made.push_back(std::move(row));
        return true;
    }));
    return made;
}

// What is compared must have a value.
Result<std::vector<SortedRow>> DistinctQuery::MakeRows(bool) {
    std::vector<SortedRow> made;
    std::unordered_set<std::string> met;
    const TakeRow take = [&](const SourceRows& rows) -> Result<bool> {
        EvalContext context{&session_, &rows, nullptr};
        ASSIGN_OR_RETURN(SortedRow row, MakeRow(context, false));
        if (met.insert(KeyOfAll(row.values)).second) made.push_back(std::move(row));
        return true;
    };
    const auto columns = OutputColumns();
    RETURN_IF_ERROR(columns ? ForEachOtherRow(*columns, take) : ForEachRow(take));
    return made;
}

std::optional<std::vector<std::size_t>> DistinctQuery::OutputColumns() const {
    if (scope_.sources().size() != 1) return std::nullopt;
    std::vector<std::size_t> columns;
    for (const OutputItem& output : select_.outputs) {
        if (!IsColumn(*output.expression)) return std::nullopt;
        columns.push_back(scope_.sources()[0].columns[output.expression->slot]);
    }
    return columns;
}

Status DistinctQuery::ForEachOtherRow(const std::vector<std::size_t>& columns,
                                      const TakeRow& take) {
    ASSIGN_OR_RETURN(const std::unique_ptr<FilteredCursor> cursor,
                     FilteredCursor::Open(scope_, path_, select_.where.get(), session_));
    StoredFields* const stored = cursor->stored_fields();
    StoredRowSet known;
    FieldBytes fields;
    for (;;) {
        ASSIGN_OR_RETURN(const std::optional<RowId> row, cursor->Next());
        if (!row) return Status::Ok();
        if (stored != nullptr && known.is_worth_it()) {
            fields.Clear();
            RETURN_IF_ERROR(stored->Append(columns, fields));
            if (known.Add(fields.bytes())) continue;
        }
        RETURN_IF_ERROR(cursor->ReadInUse());
        RETURN_IF_ERROR(take(cursor->rows()).status());
    }
}

}  // namespace jet::sql
