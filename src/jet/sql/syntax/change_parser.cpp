#include "jet/errors.h"
#include "jet/sql/syntax/statement_parser.h"

namespace jet::sql {

using base::Result;
using base::Status;

Status StatementParser::ParseAlias(std::u16string& alias) {
    const bool as = tokens_.TakeWord(u"AS");
    if (!as && !tokens_.IsName()) return Status::Ok();
    ASSIGN_OR_RETURN(alias, tokens_.TakeName(ErrorNumber::kSyntaxInFrom));
    return Status::Ok();
}

Result<Statement> StatementParser::ParseInsert() {
    constexpr ErrorNumber kFailure = ErrorNumber::kSyntaxInInsert;
    InsertStatement insert;
    if (!tokens_.TakeWord(u"INTO")) return JetError(kFailure);
    ASSIGN_OR_RETURN(insert.table, tokens_.TakeName(kFailure));
    if (tokens_.IsSymbol(u"(")) RETURN_IF_ERROR(ParseInsertColumns(insert));
    if (tokens_.IsWord(u"SELECT")) {
        ASSIGN_OR_RETURN(SelectStatement select, ParseSelect());
        insert.select = std::make_unique<SelectStatement>(std::move(select));
        return Statement(std::move(insert));
    }
    if (!tokens_.TakeWord(u"VALUES")) return JetError(kFailure);
    RETURN_IF_ERROR(ParseInsertValues(insert));
    return Statement(std::move(insert));
}

Status StatementParser::ParseInsertColumns(InsertStatement& insert) {
    constexpr ErrorNumber kFailure = ErrorNumber::kSyntaxInInsert;
    tokens_.Take();  // the parenthesis
    do {
        ASSIGN_OR_RETURN(std::u16string name, tokens_.TakeName(kFailure));
        if (tokens_.TakeSymbol(u".") || tokens_.TakeSymbol(u"!")) {
            ASSIGN_OR_RETURN(name, tokens_.TakeName(kFailure));  // after the table's own name
        }
        insert.columns.push_back(std::move(name));
    } while (tokens_.TakeSymbol(u","));
    return tokens_.TakeSymbol(u")") ? Status::Ok() : JetError(kFailure);
}

Status StatementParser::ParseInsertValues(InsertStatement& insert) {
    constexpr ErrorNumber kFailure = ErrorNumber::kSyntaxInInsert;
    if (!tokens_.TakeSymbol(u"(")) return JetError(kFailure);
    do {
        ASSIGN_OR_RETURN(ExpressionPtr value, ParseExpression());
        insert.values.push_back(std::move(value));
    } while (tokens_.TakeSymbol(u","));
    return tokens_.TakeSymbol(u")") ? Status::Ok() : JetError(kFailure);
}

Result<Statement> StatementParser::ParseUpdate() {
    constexpr ErrorNumber kFailure = ErrorNumber::kSyntaxInUpdate;
    UpdateStatement update;
    if (!tokens_.IsName() && !tokens_.IsSymbol(u"(")) return JetError(kFailure);
    ASSIGN_OR_RETURN(update.from, ParseFrom());
    if (!tokens_.TakeWord(u"SET")) return JetError(kFailure);
    do {
        ASSIGN_OR_RETURN(Assignment assignment, ParseAssignment());
        update.assignments.push_back(std::move(assignment));
    } while (tokens_.TakeSymbol(u","));
    if (tokens_.IsWord(u"WHERE")) {
        ASSIGN_OR_RETURN(update.where, ParseWhere());
    }
    return Statement(std::move(update));
}

Result<Assignment> StatementParser::ParseAssignment() {
    constexpr ErrorNumber kFailure = ErrorNumber::kSyntaxInUpdate;
    Assignment assignment;
    assignment.target = std::make_unique<Expression>();
    Expression& target = *assignment.target;
    target.kind = NodeKind::kName;
    target.begin = tokens_.Peek().begin;
    ASSIGN_OR_RETURN(target.name, tokens_.TakeName(kFailure));
    if (tokens_.TakeSymbol(u".") || tokens_.TakeSymbol(u"!")) {
        target.qualifier = std::move(target.name);
        ASSIGN_OR_RETURN(target.name, tokens_.TakeName(kFailure));
    }
    target.end = tokens_.last_end();
    if (!tokens_.TakeSymbol(u"=")) return JetError(kFailure);
    ASSIGN_OR_RETURN(assignment.value, ParseExpression());
    return assignment;
}

// [DISTINCTROW] [table | table.* | *] FROM ...
Result<Statement> StatementParser::ParseDelete() {
    DeleteStatement erase;
    if (!tokens_.IsSymbol(u".", 1) && !tokens_.IsSymbol(u"!", 1)) tokens_.TakeWord(u"DISTINCTROW");
    if (tokens_.IsName()) {
        erase.target = tokens_.Take().text;
        if (tokens_.TakeSymbol(u".") || tokens_.TakeSymbol(u"!"))
            if (!tokens_.TakeSymbol(u"*") && tokens_.IsName()) tokens_.Take();
    } else {
        tokens_.TakeSymbol(u"*");
    }
    if (!tokens_.TakeWord(u"FROM")) return JetError(ErrorNumber::kSyntaxInFrom);
    ASSIGN_OR_RETURN(erase.from, ParseFrom());
    if (tokens_.IsWord(u"WHERE")) {
        ASSIGN_OR_RETURN(erase.where, ParseWhere());
    }
    return Statement(std::move(erase));
}

}  // namespace jet::sql
