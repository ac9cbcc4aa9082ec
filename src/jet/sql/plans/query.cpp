#include "jet/sql/plans/query.h"

#include "jet/errors.h"
#include "jet/sql/plans/grouped_query.h"
#include "jet/sql/plans/table_query.h"
#include "jet/sql/plans/union_query.h"
#include "jet/sql/plans/value_query.h"

#include <algorithm>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

// A star (no expression) stands for columns only.
bool HasAggregateOutput(const SelectStatement& select) {
    return std::ranges::any_of(select.outputs, [](const OutputItem& item) {
        return item.expression != nullptr && HasAggregate(*item.expression);
    });
}

bool IsGrouped(const SelectStatement& select) {
    return !select.group_by.empty() || select.having != nullptr || HasAggregateOutput(select) ||
           std::ranges::any_of(select.order_by, [](const OrderItem& order) {
               return HasAggregate(*order.expression);
           });
}

std::unique_ptr<SelectQuery> MakeSelectQuery(SelectStatement&& select, Session& session,
                                             Scope&& scope) {
    if (IsGrouped(select))
        return std::make_unique<GroupedQuery>(std::move(select), session, std::move(scope));
    if (select.distinct)
        return std::make_unique<DistinctQuery>(std::move(select), session, std::move(scope));
    if (scope.sources().size() == 1)
        return std::make_unique<TableQuery>(std::move(select), session, std::move(scope));
    return std::make_unique<CombinedQuery>(std::move(select), session, std::move(scope));
}

}  // namespace

Result<std::unique_ptr<Query>> Query::Prepare(SelectStatement&& select, Session& session,
                                              Scope* outer) {
    // Rows for a new table are no result.
    if (!select.into.empty()) return JetError(ErrorNumber::kNotAllowedHere);
    if (!select.unions.empty()) return UnionQuery::Prepare(std::move(select), session, outer);
    Scope scope(outer);
    if (select.from != nullptr) RETURN_IF_ERROR(AddSources(*select.from, scope, session));
    auto query = MakeSelectQuery(std::move(select), session, std::move(scope));
    RETURN_IF_ERROR(query->Bind());
    return std::unique_ptr<Query>(std::move(query));
}

Result<std::unique_ptr<PreparedSelect>> PrepareSubselect(const SelectStatement& select,
                                                         Session& session, Scope& outer) {
    ASSIGN_OR_RETURN(std::unique_ptr<Query> query, Query::Prepare(Clone(select), session, &outer));
    return std::unique_ptr<PreparedSelect>(std::move(query));
}

}  // namespace jet::sql
