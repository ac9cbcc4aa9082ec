// ValueQuery: a SELECT whose result is a list of values, not of rows of a table. CombinedQuery
// (joins, or no table at all) and DistinctQuery take the rows of the sources one by one.
#pragma once

#include "jet/sql/plans/select_query.h"
#include "jet/sql/plans/sorted_rows.h"

#include <optional>
#include <vector>

namespace jet::sql {

class ValueQuery : public SelectQuery {
public:
    using SelectQuery::SelectQuery;

    base::Result<std::vector<ResultRow>> RowsOrFailures(FieldFailures* failures) final;

protected:
    // The rows before they are sorted and cut. `keeps_failures`: an output that fails goes into
    // SortedRow::failures where that is possible.
    virtual base::Result<std::vector<SortedRow>> MakeRows(bool keeps_failures) = 0;
    base::Result<SortedRow> MakeRow(EvalContext& context, bool keeps_failures) const;

private:
    void SortAndCut(std::vector<SortedRow>& rows) const;
};

class CombinedQuery final : public ValueQuery {
public:
    using ValueQuery::ValueQuery;

private:
    base::Result<std::vector<SortedRow>> MakeRows(bool keeps_failures) override;
};

class DistinctQuery final : public ValueQuery {
public:
    using ValueQuery::ValueQuery;

private:
    base::Result<std::vector<SortedRow>> MakeRows(bool keeps_failures) override;
    // In the table's design, where there is a single table and every output is a column of it.
    std::optional<std::vector<std::size_t>> OutputColumns() const;
    // The rows without most of those whose fields `columns` another row before had byte for byte.
    base::Status ForEachOtherRow(const std::vector<std::size_t>& columns, const TakeRow& take);
};

}  // namespace jet::sql
