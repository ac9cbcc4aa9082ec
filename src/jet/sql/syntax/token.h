// Token: one piece of an SQL text.
#pragma once

#include "jet/values/value.h"

#include <cstdint>
#include <string_view>

namespace jet::sql {

enum class TokenKind : std::uint8_t {
    kWord,       // a bare word: a keyword, a function or a name
    kQuoted,     // [a name] in brackets or grave accents
    kLiteral,    // a text, number or date; see `value`
    kSymbol,     // punctuation; see `text`
    kParameter,  // ?
    kEnd,
};

struct Token {
    TokenKind kind = TokenKind::kEnd;
    std::uint32_t begin = 0;  // place in the SQL text, in UTF-16 units
    std::uint32_t end = 0;
    // The word or name without its quotes, or the symbol. Borrowed from the SQL text.
    std::u16string_view text;
    Value value;
};

}  // namespace jet::sql
