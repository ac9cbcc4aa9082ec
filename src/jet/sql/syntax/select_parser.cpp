#include "jet/errors.h"
#include "jet/sql/syntax/lexer.h"
#include "jet/sql/syntax/parser.h"
#include "jet/sql/syntax/statement_parser.h"
#include "jet/values/calendar_names.h"

namespace jet::sql {

using base::Result;
using base::Status;

namespace {

// A union is read in a loop and joins nest only in parentheses, so only their number needs a bound.
constexpr std::size_t kMaxUnions = 1000;
constexpr std::size_t kMaxJoins = 100;

}  // namespace

Result<SelectStatement> StatementParser::ParseSubquery() {
    nested_ = true;
    tokens_.Take();
    if (++tokens_.nesting() > kDeepestNesting) return JetError(ErrorNumber::kQueryTooComplex);
    ASSIGN_OR_RETURN(SelectStatement select, ParseSelect());
    --tokens_.nesting();
    if (!select.into.empty()) return JetError(ErrorNumber::kSyntaxInSelect);
    if (!tokens_.TakeSymbol(u")"))
        return SyntaxError(" (missing operator)", tokens_.TextFrom(tokens_.last_end()));
    return select;
}

Result<SelectStatement> StatementParser::ParseSelect() {
    ASSIGN_OR_RETURN(SelectStatement select, ParseSelectCore());
    while (tokens_.TakeWord(u"UNION")) {
        SelectStatement::Union part;
        part.all = tokens_.TakeWord(u"ALL");
        if (!tokens_.IsWord(u"SELECT") || select.unions.size() == kMaxUnions)
            return JetError(ErrorNumber::kSyntaxInSelect);
        ASSIGN_OR_RETURN(SelectStatement next, ParseSelectCore());
        if (!select.into.empty() || !next.into.empty())
            return JetError(ErrorNumber::kSyntaxInSelect);
        part.select = std::make_unique<SelectStatement>(std::move(next));
        select.unions.push_back(std::move(part));
    }
    RETURN_IF_ERROR(ParseOrder(select));
    return select;
}

Result<SelectStatement> StatementParser::ParseSelectCore() {
    SelectStatement select;
    tokens_.Take();  // SELECT
    if (tokens_.TakeWord(u"DISTINCT"))
        select.distinct = true;
    else if (!tokens_.TakeWord(u"DISTINCTROW"))
        tokens_.TakeWord(u"ALL");
    RETURN_IF_ERROR(ParseTop(select));
    RETURN_IF_ERROR(ParseOutputs(select));
    if (tokens_.TakeWord(u"INTO")) {
        ASSIGN_OR_RETURN(select.into, tokens_.TakeName(ErrorNumber::kSyntaxInSelect));
        if (tokens_.IsWord(u"IN"))
            return ErrorBecause(ErrorNumber::kSyntaxInSelect,
                                "SELECT ... INTO another database is not supported.");
    }
    if (tokens_.TakeWord(u"FROM")) {
        ASSIGN_OR_RETURN(select.from, ParseFrom());
    }
    if (tokens_.IsWord(u"WHERE")) {
        ASSIGN_OR_RETURN(select.where, ParseWhere());
    }
    RETURN_IF_ERROR(ParseGrouping(select));
    return select;
}

Status StatementParser::ParseTop(SelectStatement& select) {
    if (!tokens_.TakeWord(u"TOP")) return Status::Ok();
    ASSIGN_OR_RETURN(select.top, ParseNumber(JetError(ErrorNumber::kSyntaxInSelect)));
    select.top_percent = tokens_.TakeWord(u"PERCENT");
    if (*select.top < 0 || (select.top_percent && *select.top > 100))
        return JetError(ErrorNumber::kSyntaxInSelect);
    return Status::Ok();
}

Status StatementParser::ParseOutputs(SelectStatement& select) {
    do {
        ASSIGN_OR_RETURN(OutputItem item, ParseOutput());
        select.outputs.push_back(std::move(item));
    } while (tokens_.TakeSymbol(u","));
    return Status::Ok();
}

Result<OutputItem> StatementParser::ParseOutput() {
    OutputItem item;
    if (tokens_.TakeSymbol(u"*")) return item;
    if (tokens_.IsName() && (tokens_.IsSymbol(u".", 1) || tokens_.IsSymbol(u"!", 1)) &&
        tokens_.IsSymbol(u"*", 2)) {
        item.star_of = tokens_.Take().text;
        tokens_.Take();
        tokens_.Take();
        return item;
    }
    if (tokens_.AtEnd() || tokens_.IsWord(u"FROM") || tokens_.IsSymbol(u","))
        return JetError(ErrorNumber::kSyntaxInSelect);
    ASSIGN_OR_RETURN(item.expression, ParseExpression());
    if (tokens_.TakeWord(u"AS")) {
        ASSIGN_OR_RETURN(item.alias, tokens_.TakeName(ErrorNumber::kSyntaxInSelect));
    }
    return item;
}

Result<std::unique_ptr<FromNode>> StatementParser::ParseFrom() {
    ASSIGN_OR_RETURN(std::unique_ptr<FromNode> from, ParseJoins());
    for (std::size_t count = 1; tokens_.TakeSymbol(u","); ++count) {
        if (count == kMaxJoins) return JetError(ErrorNumber::kQueryTooComplex);
        auto both = std::make_unique<FromNode>();
        both->left = std::move(from);
        ASSIGN_OR_RETURN(both->right, ParseJoins());
        from = std::move(both);
    }
    return from;
}

Result<std::unique_ptr<FromNode>> StatementParser::ParseJoins() {
    ASSIGN_OR_RETURN(std::unique_ptr<FromNode> from, ParseSource());
    for (std::size_t count = 0;; ++count) {
        JoinKind kind = JoinKind::kInner;
        if (tokens_.TakeWords({u"LEFT", u"JOIN"}) ||
            tokens_.TakeWords({u"LEFT", u"OUTER", u"JOIN"}))
            kind = JoinKind::kLeft;
        else if (tokens_.TakeWords({u"RIGHT", u"JOIN"}) ||
                 tokens_.TakeWords({u"RIGHT", u"OUTER", u"JOIN"}))
            kind = JoinKind::kRight;
        else if (!tokens_.TakeWords({u"INNER", u"JOIN"}))
            return from;
        if (count == kMaxJoins) return JetError(ErrorNumber::kQueryTooComplex);
        auto join = std::make_unique<FromNode>();
        join->kind = kind;
        join->left = std::move(from);
        ASSIGN_OR_RETURN(join->right, ParseSource());
        if (!tokens_.TakeWord(u"ON")) return JetError(ErrorNumber::kSyntaxInFrom);
        ASSIGN_OR_RETURN(join->on, ParseExpression());
        from = std::move(join);
    }
}

Result<std::unique_ptr<FromNode>> StatementParser::ParseSource() {
    if (tokens_.TakeSymbol(u"(")) {
        if (++tokens_.nesting() > kDeepestNesting) return JetError(ErrorNumber::kQueryTooComplex);
        ASSIGN_OR_RETURN(std::unique_ptr<FromNode> inner, ParseJoins());
        --tokens_.nesting();
        if (!tokens_.TakeSymbol(u")")) return JetError(ErrorNumber::kSyntaxInFrom);
        return inner;
    }
    auto source = std::make_unique<FromNode>();
    ASSIGN_OR_RETURN(source->table, tokens_.TakeName(ErrorNumber::kSyntaxInFrom));
    RETURN_IF_ERROR(ParseAlias(source->alias));
    return source;
}

Result<ExpressionPtr> StatementParser::ParseWhere() {
    tokens_.Take();  // WHERE
    if (tokens_.AtEnd() || tokens_.IsSymbol(u";")) return JetError(ErrorNumber::kSyntaxInWhere);
    return ParseExpression();
}

Status StatementParser::ParseGrouping(SelectStatement& select) {
    if (tokens_.TakeWord(u"GROUP")) {
        if (!tokens_.TakeWord(u"BY")) return JetError(ErrorNumber::kSyntaxInGroupBy);
        do {
            ASSIGN_OR_RETURN(ExpressionPtr key, ParseExpression());
            select.group_by.push_back(std::move(key));
        } while (tokens_.TakeSymbol(u","));
    }
    if (tokens_.TakeWord(u"HAVING")) {
        ASSIGN_OR_RETURN(select.having, ParseExpression());
    }
    return Status::Ok();
}

Status StatementParser::ParseOrder(SelectStatement& select) {
    if (!tokens_.TakeWord(u"ORDER")) return Status::Ok();
    if (!tokens_.TakeWord(u"BY")) return JetError(ErrorNumber::kSyntaxInOrderBy);
    do {
        if (tokens_.AtEnd() || tokens_.IsWord(u"ASC") || tokens_.IsWord(u"DESC"))
            return JetError(ErrorNumber::kSyntaxInOrderBy);
        OrderItem item;
        ASSIGN_OR_RETURN(item.expression, ParseExpression());
        item.descending = tokens_.TakeWord(u"DESC");
        if (!item.descending) tokens_.TakeWord(u"ASC");
        select.order_by.push_back(std::move(item));
    } while (tokens_.TakeSymbol(u","));
    const bool ends = nested_ ? tokens_.IsSymbol(u")") : tokens_.IsSymbol(u";");
    if (!tokens_.AtEnd() && !ends) return JetError(ErrorNumber::kSyntaxInOrderBy);
    return Status::Ok();
}

}  // namespace jet::sql
