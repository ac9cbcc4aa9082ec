// SelectQuery: what the queries of one SELECT have in common, that is, all but those of a UNION:
// names bound to columns, and the rows that its condition keeps.
#pragma once

#include "jet/sql/functions/eval_context.h"
#include "jet/sql/plans/access_path.h"
#include "jet/sql/plans/query.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace jet::sql {

class Joiner;

// Whether an aggregate of this SELECT (not of a subquery) is in the expression.
bool HasAggregate(const Expression& expression);

// What an output shows of the expression's value.
base::Result<Value> OutputValue(const Expression& e, EvalContext& context);
base::Status AppendKeyOf(const Expression& e, bool descending, EvalContext& context,
                         std::string& key);

class SelectQuery : public Query {
public:
    // `scope` holds the sources of the FROM clause.
    SelectQuery(SelectStatement&& select, Session& session, Scope&& scope);
    ~SelectQuery() override;

    // Checks and binds all names. To be called once, before anything else.
    base::Status Bind();

    std::vector<OuterUse> outer_uses() const override { return scope_.outer_uses(); }
    const ColumnDesign* OutputColumn(std::size_t output) const override;
    base::Result<bool> HasRows() override;

protected:
    // Of the outputs; scope_ is that of all other expressions.
    virtual Scope& output_scope() { return scope_; }
    // Whether the clauses, bound by now, go together.
    virtual base::Status CheckClauses() const;
    // The order that the path to a single table should bring; empty: any.
    virtual const std::vector<OrderItem>& path_order() const;

    // Columns of statements around this one are known when it is run, not before: finds the path
    // anew where it depends on them. To be called first in each run.
    base::Status RefreshPath();
    // False: no more rows are wanted.
    using TakeRow = std::function<base::Result<bool>(const SourceRows&)>;
    // The rows of the sources that satisfy the condition.
    base::Status ForEachRow(const TakeRow& take);
    base::Status AppendOrderKey(EvalContext& context, std::string& key) const;

    SelectStatement select_;
    Session& session_;
    Scope scope_;
    std::vector<const Expression*> aggregates_;
    AccessPath path_;  // where there is a single source

private:
    base::Status ExpandStars();
    base::Status ResolveOrder();
    base::Status BindExpressions();
    void NameOutputs();
    std::u16string NameOf(const OutputItem& item, std::size_t& unnamed) const;
    base::Status FindPath(bool outer_known);
    base::Status ForEachCombination(const TakeRow& take);

    std::unique_ptr<Joiner> joiner_;  // of several sources; nullptr: not made yet
};

}  // namespace jet::sql
