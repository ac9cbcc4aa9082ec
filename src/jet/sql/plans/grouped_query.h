// GroupedQuery: a SELECT with GROUP BY, HAVING or aggregates. Each of its rows tells of a group of
// rows.
#pragma once

#include "jet/sql/plans/value_query.h"

#include <vector>

namespace jet::sql {

class GroupedQuery final : public ValueQuery {
public:
    using ValueQuery::ValueQuery;

    base::Result<bool> HasRows() override;

private:
    class Grouping;

    // 3122: a column is neither grouped nor in an aggregate.
    base::Status CheckClauses() const override;
    base::Result<std::vector<SortedRow>> MakeRows(bool keeps_failures) override;
};

}  // namespace jet::sql
