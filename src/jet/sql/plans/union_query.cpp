#include "jet/sql/plans/union_query.h"

#include "jet/errors.h"
#include "jet/sql/functions/sort_key.h"
#include "jet/sql/plans/sorted_rows.h"

#include <algorithm>
#include <unordered_set>

namespace jet::sql {

using base::Result;
using base::Status;

Result<std::unique_ptr<Query>> UnionQuery::Prepare(SelectStatement&& select, Session& session,
                                                   Scope* outer) {
    auto query = std::make_unique<UnionQuery>();
    const auto others = std::exchange(select.unions, {});
    const auto order_by = std::exchange(select.order_by, {});
    ASSIGN_OR_RETURN(auto first, Query::Prepare(std::move(select), session, outer));
    query->names_ = first->names();
    query->parts_.push_back(std::move(first));
    for (const SelectStatement::Union& other : others) {
        ASSIGN_OR_RETURN(auto part, Query::Prepare(std::move(*other.select), session, outer));
        if (part->names().size() != query->names_.size())
            return JetError(ErrorNumber::kUnionOfUnequalWidths);
        query->parts_.push_back(std::move(part));
        // Duplicates go up to the last part that is added without ALL.
        if (!other.all) query->distinct_parts_ = query->parts_.size();
    }
    RETURN_IF_ERROR(query->ResolveOrder(order_by));
    return std::unique_ptr<Query>(std::move(query));
}

// By position or name among the outputs.
Status UnionQuery::ResolveOrder(const std::vector<OrderItem>& order_by) {
    for (const OrderItem& order : order_by) {
        const Expression& e = *order.expression;
        std::size_t output = names_.size();
        if (const auto* number = e.value.get_if<std::int32_t>())
            output = static_cast<std::size_t>(*number) - 1;
        else if (e.kind == NodeKind::kName)
            output = static_cast<std::size_t>(
                std::ranges::find_if(
                    names_, [&](const std::u16string& name) { return SameName(name, e.name); }) -
                names_.begin());
        if (output >= names_.size()) return JetError(ErrorNumber::kSyntaxInOrderBy);
        order_.push_back({output, order.descending});
    }
    return Status::Ok();
}

std::vector<OuterUse> UnionQuery::outer_uses() const {
    std::vector<OuterUse> uses;
    for (const std::unique_ptr<Query>& part : parts_) {
        const std::vector<OuterUse> of_part = part->outer_uses();
        uses.insert(uses.end(), of_part.begin(), of_part.end());
    }
    return uses;
}

Result<bool> UnionQuery::HasRows() {
    for (const std::unique_ptr<Query>& part : parts_) {
        ASSIGN_OR_RETURN(const bool has_rows, part->HasRows());
        if (has_rows) return true;
    }
    return false;
}

Result<std::vector<ResultRow>> UnionQuery::RowsOrFailures(FieldFailures*) {
    std::vector<SortedRow> all;
    std::unordered_set<std::string> met;
    for (std::size_t i = 0; i < parts_.size(); ++i) {
        ASSIGN_OR_RETURN(std::vector<ResultRow> rows, parts_[i]->Rows());
        for (ResultRow& row : rows)
            if (i >= distinct_parts_ || met.insert(KeyOfAll(row)).second)
                all.push_back({std::move(row), {}, {}});
        if (i + 1 == distinct_parts_) SortDistinct(all);
    }
    for (SortedRow& row : all)
        for (const OrderColumn& order : order_)
            AppendSortKey(row.values[order.output], order.descending, row.key);
    if (!order_.empty()) SortByKey(all);
    std::vector<ResultRow> result;
    result.reserve(all.size());
    for (SortedRow& row : all)
        result.push_back(std::move(row.values));
    return result;
}

}  // namespace jet::sql
