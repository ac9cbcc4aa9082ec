// EvalContext: what an expression, and a function in it, knows of the row and the statement at
// hand.
#pragma once

#include "jet/sql/functions/session.h"

#include <vector>

namespace jet::sql {

// Texts that an expression makes are at most so long (3071 beyond).
inline constexpr std::size_t kLongestResult = 16U << 20;  // UTF-16 units

struct EvalContext {
    Session* session = nullptr;
    const SourceRows* rows = nullptr;
    const std::vector<Value>* aggregates = nullptr;  // of the group at hand
};

}  // namespace jet::sql
