// Query: a SELECT that is bound to its tables and can be run. Each kind of SELECT is a class:
// TableQuery where each row of the result is one row of one table; CombinedQuery for other rows of
// its sources, DistinctQuery where DISTINCT drops some of them, GroupedQuery where they make up
// groups; UnionQuery.
#pragma once

#include "base/status.h"
#include "jet/sql/expressions/bind.h"
#include "jet/sql/expressions/prepared_select.h"
#include "jet/sql/syntax/ast.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace jet::sql {

class TableQuery;

// Why outputs have no value, by row and output: one that fails leaves the row its other fields.
using FieldFailures = std::map<std::pair<std::size_t, std::size_t>, base::Status>;

class Query : public PreparedSelect {
public:
    // `session` must outlive the query; its tables must not be altered while it lives.
    // `outer` is the scope of the expression around a subquery; it is needed during this call only.
    static base::Result<std::unique_ptr<Query>> Prepare(SelectStatement&& select, Session& session,
                                                        Scope* outer = nullptr);

    // Of the output columns, in order.
    const std::vector<std::u16string>& names() const { return names_; }
    std::size_t column_count() const final { return names_.size(); }

    // This query; nullptr: the rows of its result are not those of a table.
    virtual TableQuery* AsTableQuery() { return nullptr; }
    // The column that an output shows as it is, whether or not the rows are a table's; nullptr: a
    // computed value.
    virtual const ColumnDesign* OutputColumn(std::size_t output) const = 0;

    base::Result<std::vector<ResultRow>> Rows() final { return RowsOrFailures(nullptr); }
    // `failures` nullptr: the first output that fails is the answer. It always is where rows are
    // compared with each other or grouped.
    virtual base::Result<std::vector<ResultRow>> RowsOrFailures(FieldFailures* failures) = 0;

protected:
    std::vector<std::u16string> names_;
};

// What a session's subqueries are made by: Query::Prepare.
base::Result<std::unique_ptr<PreparedSelect>> PrepareSubselect(const SelectStatement& select,
                                                               Session& session, Scope& outer);

}  // namespace jet::sql
