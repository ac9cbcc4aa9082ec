// TokenReader: a place in a row of tokens, and the questions that every part of the parser asks of
// it.
#pragma once

#include "base/status.h"
#include "jet/errors.h"
#include "jet/sql/syntax/token.h"
#include "jet/values/calendar_names.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace jet::sql {

class TokenReader {
public:
    // `sql` must outlive the reader; `tokens` ends in kEnd.
    TokenReader(std::u16string_view sql, std::vector<Token> tokens)
        : sql_(sql), tokens_(std::move(tokens)) {}

    const Token& Peek(std::size_t ahead = 0) const {
        return tokens_[std::min(at_ + ahead, tokens_.size() - 1)];
    }
    const Token& Take();
    bool AtEnd() const { return Peek().kind == TokenKind::kEnd; }

    bool IsSymbol(std::u16string_view symbol, std::size_t ahead = 0) const {
        const Token& token = Peek(ahead);
        return token.kind == TokenKind::kSymbol && token.text == symbol;
    }
    // A bare word, in any letter case.
    bool IsWord(std::u16string_view word, std::size_t ahead = 0) const {
        const Token& token = Peek(ahead);
        return token.kind == TokenKind::kWord && SameWord(token.text, word);
    }
    bool TakeSymbol(std::u16string_view symbol);
    bool TakeWord(std::u16string_view word);
    // All of these words in a row, or none is taken.
    bool TakeWords(std::initializer_list<std::u16string_view> words);

    // A name: in brackets, or a bare word that is not reserved.
    bool IsName(std::size_t ahead = 0) const;
    // `failure`: there is none.
    base::Result<std::u16string> TakeName(const base::Status& failure);
    base::Result<std::u16string> TakeName(ErrorNumber failure);

    // How deep the text is nested where the parser is, all statements and expressions together.
    int& nesting() { return nesting_; }
    // Tests of the truth that a test gave, without parentheses: `a Is Null Is Null`.
    int& tests_of_tests() { return tests_of_tests_; }
    // Expressions of designs have no subqueries.
    void ForbidQueries() { queries_allowed_ = false; }
    // ahead: where "(" and a SELECT would stand.
    bool IsQuery(std::size_t ahead = 0) const {
        return queries_allowed_ && IsSymbol(u"(", ahead) && IsWord(u"SELECT", ahead + 1);
    }

    // The SQL text from `begin` to the end of the last token taken.
    std::u16string_view TextSince(std::size_t begin) const;
    std::u16string_view TextFrom(std::size_t begin) const { return sql_.substr(begin); }
    std::size_t last_end() const { return last_end_; }

private:
    std::u16string_view sql_;
    std::vector<Token> tokens_;
    std::size_t at_ = 0;
    std::size_t last_end_ = 0;
    int nesting_ = 0;
    int tests_of_tests_ = 0;
    bool queries_allowed_ = true;
};

// Words that name a thing only in brackets.
bool IsReservedWord(std::u16string_view word);

}  // namespace jet::sql
