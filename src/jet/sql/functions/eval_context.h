// EvalContext: what an expression, and a function in it, knows of the current row and
// statement.
#pragma once

#include "jet/sql/functions/session.h"

#include <vector>

namespace jet::sql {

// Maximum length of a text that an expression makes (3071 beyond).
inline constexpr std::size_t kMaxResultLength = 16U << 20;  // UTF-16 units

struct EvalContext {
    Session* session = nullptr;
    const SourceRows* rows = nullptr;
    const std::vector<Value>* aggregates = nullptr;  // of the current group
};

}  // namespace jet::sql
