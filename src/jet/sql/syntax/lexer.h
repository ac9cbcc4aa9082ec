// Tokenize: an SQL text cut into tokens. There are no comments in this dialect.
#pragma once

#include "base/status.h"
#include "jet/sql/syntax/token.h"

#include <string_view>
#include <vector>

namespace jet::sql {

// Longer texts are refused (3360).
inline constexpr std::size_t kMaxSqlLength = 16U << 20;  // UTF-16 units

// The last token is kEnd. `current_year` completes date literals of two parts. 3075: a text, name
// or date that does not end or is not valid.
base::Result<std::vector<Token>> Tokenize(std::u16string_view sql, int current_year);

// 3075 with one of its texts: "Syntax error<what> in query expression '<where>'."
base::Status SyntaxError(std::string_view what, std::u16string_view where);

}  // namespace jet::sql
