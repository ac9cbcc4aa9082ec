// ExpressionParser: expressions by precedence, lowest first: Imp, Eqv, Xor, Or, And, Not,
// comparisons, "&",
// "+ -", Mod, "\", "* /", sign, "^".
#pragma once

#include "base/status.h"
#include "jet/sql/ast.h"
#include "jet/sql/token_reader.h"

namespace jet::sql {

class ExpressionParser {
public:
    explicit ExpressionParser(TokenReader& tokens) : tokens_(tokens) {}

    base::Result<ExpressionPtr> Parse();

private:
    class Deeper;

    base::Result<ExpressionPtr> ParseLevel(int lowest);
    base::Result<ExpressionPtr> ParseChain(ExpressionPtr first, int level);
    // In, Between, Is and Like after `value`, with their Not; `value` itself when nothing of the
    // kind follows.
    base::Result<bool> ParseTest(ExpressionPtr& value);
    base::Result<ExpressionPtr> ParseIn(ExpressionPtr value);
    base::Result<ExpressionPtr> ParseBetween(ExpressionPtr value);
    base::Result<ExpressionPtr> ParsePrefix();
    base::Result<ExpressionPtr> ParseOperand();
    base::Result<ExpressionPtr> ParseParentheses();
    base::Result<ExpressionPtr> ParseCall();
    base::Result<ExpressionPtr> ParseName();
    base::Status ParseArguments(Expression& call);
    base::Status MissingOperator() const;

    ExpressionPtr NewNode(NodeKind kind, std::size_t begin) const;

    TokenReader& tokens_;
    std::size_t begin_ = 0;  // of the whole expression, for messages
    int depth_ = 0;
};

}  // namespace jet::sql
