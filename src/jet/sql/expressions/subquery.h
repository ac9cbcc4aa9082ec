// Subquery: a SELECT inside of an expression. One that uses columns of the statement around it is
// run for each row there; any other once for each statement.
#pragma once

#include "base/status.h"
#include "jet/sql/expressions/bind.h"
#include "jet/sql/expressions/evaluate.h"
#include "jet/sql/expressions/prepared_select.h"
#include "jet/sql/expressions/value_set.h"

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace jet::sql {

// Runs that one statement may ask for (3360 beyond): nested ones multiply.
inline constexpr std::uint64_t kMaxSubqueryRuns = 1'000'000;

class Subquery {
public:
    // `scope` is that of the expression. `several`: it may have more than one column (3306
    // otherwise). Requires: session.prepare_select.
    static base::Result<std::shared_ptr<Subquery>>
    Prepare(const SelectStatement& select, Scope& scope, Session& session, bool several);

    // The columns of the statements around it that it uses.
    const std::vector<OuterUse>& uses() const { return uses_; }

    // The value of its only row; Null: there is none. 3354: there are several.
    base::Result<Value> OnlyValue(EvalContext& context);
    base::Result<bool> HasRows(EvalContext& context);
    // `value` = any of its values.
    base::Result<Truth> Contains(const Value& value, EvalContext& context);
    // `value` compared with any or all of its values.
    base::Result<Truth> CompareWithEach(const Value& value, Operator op, bool all,
                                        EvalContext& context);
    // The first column of its rows. Valid until the next call.
    base::Result<const std::vector<Value>*> Values(EvalContext& context);

private:
    Subquery(std::unique_ptr<PreparedSelect> query, std::vector<OuterUse> uses);
    // The statement, and what is stored: rows of a recordset may be changed without a statement.
    using Moment = std::pair<std::uint64_t, std::uint64_t>;
    static Moment MomentOf(const Session& session);
    bool IsFresh(const Session& session) const;
    base::Status CountRun(EvalContext& context);
    base::Status Load(EvalContext& context);

    std::unique_ptr<PreparedSelect> query_;
    std::vector<OuterUse> uses_;
    // What the last run gave; good for all of one statement unless it uses outer columns.
    std::optional<Moment> loaded_in_;
    std::vector<Value> values_;
    std::unique_ptr<const ValueSet> set_;  // of values_, where they are good for a statement
    std::optional<Moment> looked_in_;
    bool has_rows_ = false;
};

// Requires: the expression is a bound subquery of the kind. As a value, or as a condition.
base::Result<Value> EvaluateSubquery(const Expression& e, EvalContext& context);
base::Result<Truth> SubqueryTruth(const Expression& e, EvalContext& context);

}  // namespace jet::sql
