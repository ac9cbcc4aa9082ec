#include "jet/sql/syntax/parser.h"

#include "jet/errors.h"
#include "jet/sql/syntax/lexer.h"
#include "jet/sql/syntax/statement_parser.h"

namespace jet::sql {

using base::Result;

Result<Statement> Parse(std::u16string_view sql, int current_year) {
    ASSIGN_OR_RETURN(std::vector<Token> list, Tokenize(sql, current_year));
    TokenReader tokens(sql, std::move(list));
    return StatementParser(tokens).Parse();
}

Result<ExpressionPtr> ParseExpression(std::u16string_view text, int current_year) {
    ASSIGN_OR_RETURN(std::vector<Token> list, Tokenize(text, current_year));
    TokenReader tokens(text, std::move(list));
    tokens.ForbidQueries();
    ASSIGN_OR_RETURN(ExpressionPtr expression, ExpressionParser(tokens).Parse());
    if (!tokens.AtEnd()) return SyntaxError(" (missing operator)", text);
    return expression;
}

Result<ExpressionPtr> ParseRule(std::u16string_view text, std::u16string_view column,
                                int current_year) {
    ASSIGN_OR_RETURN(std::vector<Token> list, Tokenize(text, current_year));
    TokenReader tokens(text, std::move(list));
    tokens.ForbidQueries();
    ASSIGN_OR_RETURN(ExpressionPtr rule, ExpressionParser(tokens, column).ParseRule());
    if (!tokens.AtEnd()) return SyntaxError(" (missing operator)", text);
    return rule;
}

Result<Statement> StatementParser::Parse() {
    ASSIGN_OR_RETURN(Statement statement, ParseStatement());
    if (tokens_.TakeSymbol(u";")) {
        if (!tokens_.AtEnd()) return JetError(ErrorNumber::kTextAfterStatement);
    }
    if (tokens_.AtEnd()) return statement;
    // What is left over belongs to the last clause; an expression that ended too early is the usual
    // case.
    return SyntaxError(" (missing operator)", tokens_.TextFrom(0));
}

Result<Statement> StatementParser::ParseStatement() {
    if (tokens_.IsWord(u"SELECT")) {
        ASSIGN_OR_RETURN(SelectStatement select, ParseSelect());
        return Statement(std::move(select));
    }
    if (tokens_.TakeWord(u"INSERT")) return ParseInsert();
    if (tokens_.TakeWord(u"UPDATE")) return ParseUpdate();
    if (tokens_.TakeWord(u"DELETE")) return ParseDelete();
    if (tokens_.TakeWord(u"CREATE")) return ParseCreate();
    if (tokens_.TakeWord(u"ALTER")) return ParseAlter();
    if (tokens_.TakeWord(u"DROP")) return ParseDrop();
    return JetError(ErrorNumber::kNotAStatement);
}

}  // namespace jet::sql
