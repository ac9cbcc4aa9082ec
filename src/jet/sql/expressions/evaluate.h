// Evaluate: the value of a bound expression for one row.
#pragma once

#include "base/status.h"
#include "jet/sql/functions/eval_context.h"
#include "jet/sql/functions/operators.h"
#include "jet/sql/syntax/ast.h"

#include <vector>

namespace jet::sql {

// Requires: the expression is bound (bind.h), and the context has what it is bound to.
base::Result<Value> Evaluate(const Expression& expression, EvalContext& context);

// As a condition: a row is kept when it is kTrue.
base::Result<Truth> EvaluateTruth(const Expression& expression, EvalContext& context);

}  // namespace jet::sql
