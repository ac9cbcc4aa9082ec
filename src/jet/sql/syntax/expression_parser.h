// ExpressionParser: expressions by precedence, lowest first: Imp, Eqv, Xor, Or, And, Not,
// comparisons, "&",
// "+ -", Mod, "\", "* /", sign, "^".
#pragma once

#include "base/status.h"
#include "jet/sql/syntax/ast.h"
#include "jet/sql/syntax/token_reader.h"

namespace jet::sql {

class ExpressionParser {
public:
    explicit ExpressionParser(TokenReader& tokens) : tokens_(tokens) {}
    // For ParseRule; `column` is empty in a rule of a table, and outlives the parser.
    ExpressionParser(TokenReader& tokens, std::u16string_view column)
        : tokens_(tokens), rule_(true), column_(column) {}

    base::Result<ExpressionPtr> Parse();
    // See rule_maker.h for what a rule has of its own.
    base::Result<ExpressionPtr> ParseRule();

private:
    class Deeper;

    base::Result<ExpressionPtr> ParseLevel(int lowest);
    base::Status CountTest(bool& tested);
    base::Result<ExpressionPtr> ParseChain(ExpressionPtr first, int level);
    // In, Between, Is and Like after `value`, with their Not; `value` itself when nothing of the
    // kind follows.
    base::Result<bool> ParseTest(ExpressionPtr& value);
    base::Result<ExpressionPtr> ParseIn(ExpressionPtr value);
    base::Result<ExpressionPtr> ParseBetween(ExpressionPtr value);
    base::Result<ExpressionPtr> ParsePrefix(int lowest);
    bool StartsTest() const;
    ExpressionPtr NewColumn(std::size_t begin) const;
    ExpressionPtr CompleteRule(ExpressionPtr rule) const;
    base::Result<ExpressionPtr> ParseOperand();
    base::Result<ExpressionPtr> ParseParentheses();
    // A comparison of `value` with any or all values of a query, where one follows.
    base::Result<bool> ParseComparedQuery(ExpressionPtr& value, Operator op);
    // The query in parentheses that comes next.
    base::Result<ExpressionPtr> ParseQuery(NodeKind kind, std::size_t begin);
    base::Result<ExpressionPtr> ParseCall();
    base::Result<ExpressionPtr> ParseName();
    base::Status ParseArguments(Expression& call);
    base::Status MissingOperator() const;

    ExpressionPtr NewNode(NodeKind kind, std::size_t begin) const;

    TokenReader& tokens_;
    std::size_t begin_ = 0;  // of the whole expression, for messages
    bool rule_ = false;
    std::u16string_view column_;
};

}  // namespace jet::sql
