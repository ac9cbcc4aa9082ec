// Evaluate: the value of a bound expression for one row.
#pragma once

#include "base/status.h"
#include "jet/sql/ast.h"
#include "jet/sql/operators.h"
#include "jet/sql/session.h"

#include <vector>

namespace jet::sql {

// Texts that an expression makes are at most so long (3071 beyond).
inline constexpr std::size_t kLongestResult = 16U << 20;  // UTF-16 units

struct EvalContext {
    Session* session = nullptr;
    const SourceRows* rows = nullptr;
    const std::vector<Value>* aggregates = nullptr;  // of the group at hand
};

// Requires: the expression is bound (bind.h), and the context has what it is bound to.
base::Result<Value> Evaluate(const Expression& expression, EvalContext& context);

// As a condition: a row is kept when it is kTrue.
base::Result<Truth> EvaluateTruth(const Expression& expression, EvalContext& context);

}  // namespace jet::sql
