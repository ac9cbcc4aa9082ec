// Token: one piece of an SQL text.
#pragma once

#include "jet/values/value.h"

#include <cstddef>
#include <cstdint>
#include <string>

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
    std::u16string text;  // the word or name without its quotes, or the symbol
    Value value;
    std::size_t begin = 0;  // place in the SQL text, in UTF-16 units
    std::size_t end = 0;
};

}  // namespace jet::sql
