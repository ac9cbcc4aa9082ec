// Parse: an SQL text becomes a Statement.
#pragma once

#include "base/status.h"
#include "jet/sql/syntax/ast.h"

#include <string_view>

namespace jet::sql {

// Parentheses, calls and prefix operators nest at most so deep (3360 beyond).
inline constexpr int kDeepestNesting = 100;

// Syntax errors carry the number and text of the clause they are in (3075, 3131, 3134, ...).
base::Result<Statement> Parse(std::u16string_view sql, int current_year);

// The validation rule of a column (in which the column need not be named), or of a table (`column`
// empty).
base::Result<ExpressionPtr> ParseRule(std::u16string_view text, std::u16string_view column,
                                      int current_year);

// One expression, nothing after it.
base::Result<ExpressionPtr> ParseExpression(std::u16string_view text, int current_year);

}  // namespace jet::sql
