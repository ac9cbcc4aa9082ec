// CREATE, ALTER and DROP.
#include "jet/errors.h"
#include "jet/sql/syntax/statement_parser.h"
#include "jet/sql/syntax/type_names.h"
#include "jet/values/calendar_names.h"
#include "jet/values/column_limits.h"

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

constexpr std::int64_t kMaxPrecision = 28;

Status BadField() {
    return JetError(ErrorNumber::kSyntaxInFieldDefinition);
}

Status SetSize(ColumnDesign& column, std::int64_t size) {
    const std::uint16_t most =
        column.type == ColumnType::kBinary ? kMaxBinaryBytesJet4 : kMaxTextCharacters;
    if (size < 1 || size > most) return BadField();
    column.size = static_cast<std::uint16_t>(size);
    return Status::Ok();
}

}  // namespace

Result<std::int64_t> StatementParser::ParseNumber(const Status& failure) {
    if (tokens_.Peek().kind != TokenKind::kLiteral) return failure;
    const auto* number = tokens_.Peek().value.get_if<std::int32_t>();
    if (number == nullptr) return failure;
    const std::int64_t value = *number;
    tokens_.Take();
    return value;
}

Result<Statement> StatementParser::ParseCreate() {
    if (tokens_.TakeWord(u"TABLE")) return ParseCreateTable();
    const bool unique = tokens_.TakeWord(u"UNIQUE");
    if (tokens_.TakeWord(u"INDEX")) return ParseCreateIndex(unique);
    return JetError(ErrorNumber::kSyntaxInCreateTable);
}

Result<Statement> StatementParser::ParseCreateTable() {
    const Status failure = JetError(ErrorNumber::kSyntaxInCreateTable);
    CreateTableStatement create;
    ASSIGN_OR_RETURN(create.table, tokens_.TakeName(failure));
    if (!tokens_.TakeSymbol(u"(")) return failure;
    do {
        if (AtConstraint()) {
            RETURN_IF_ERROR(ParseConstraint(create.constraints));
            continue;
        }
        ASSIGN_OR_RETURN(ColumnDesign column, ParseColumn(create.constraints));
        create.columns.push_back(std::move(column));
    } while (tokens_.TakeSymbol(u","));
    if (!tokens_.TakeSymbol(u")")) return failure;
    return Statement(std::move(create));
}

bool StatementParser::AtConstraint() const {
    return tokens_.IsWord(u"CONSTRAINT") || tokens_.IsWord(u"PRIMARY") ||
           tokens_.IsWord(u"UNIQUE") || (tokens_.IsWord(u"FOREIGN") && tokens_.IsWord(u"KEY", 1));
}

// name type [(size)] [rules]; a rule that makes an index or a relation adds it to `constraints`.
Result<ColumnDesign> StatementParser::ParseColumn(Constraints& constraints) {
    ColumnDesign column;
    ASSIGN_OR_RETURN(column.name, tokens_.TakeName(BadField()));
    RETURN_IF_ERROR(ParseType(column));
    for (bool more = true; more;)
        RETURN_IF_ERROR(ParseColumnRule(column, constraints, more));
    return column;
}

Status StatementParser::ParseType(ColumnDesign& column) {
    if (tokens_.Peek().kind != TokenKind::kWord) return BadField();
    const TypeName* type = FindTypeName(tokens_.Peek().text);
    if (type == nullptr) return BadField();
    tokens_.Take();
    tokens_.TakeWord(u"VARYING");  // CHARACTER VARYING
    column.type = type->type;
    column.autonumber = type->autonumber;
    column.fixed_text = type->fixed_text;
    column.size = type->default_size;
    if (!tokens_.TakeSymbol(u"(")) {
        // A bare TEXT is a memo through this interface.
        if (SameWord(type->name, u"TEXT")) column.type = ColumnType::kMemo;
        if (column.type == ColumnType::kMemo) column.size = 0;
        return Status::Ok();
    }
    ASSIGN_OR_RETURN(const std::int64_t first, ParseNumber(BadField()));
    std::int64_t second = type->autonumber ? 1 : 0;
    if (tokens_.TakeSymbol(u",")) {
        ASSIGN_OR_RETURN(second, ParseNumber(BadField()));
    }
    if (!tokens_.TakeSymbol(u")")) return BadField();
    if (type->default_size != 0) return SetSize(column, first);
    if (type->autonumber) {
        if (first == 1 && second == 1) return Status::Ok();
        return ErrorBecause(ErrorNumber::kSyntaxInFieldDefinition,
                            "An autonumber starts at 1 and grows by 1.");
    }
    if (type->type != ColumnType::kNumeric) return Status::Ok();  // a size that means nothing here
    if (first < 1 || first > kMaxPrecision || second < 0 || second > first) return BadField();
    column.precision = static_cast<std::uint8_t>(first);
    column.scale = static_cast<std::uint8_t>(second);
    return Status::Ok();
}

Status StatementParser::ParseColumnRule(ColumnDesign& column, Constraints& constraints,
                                        bool& more) {
    if (tokens_.TakeWord(u"NULL")) return Status::Ok();
    if (tokens_.TakeWords({u"NOT", u"NULL"})) {
        column.required = true;
        return Status::Ok();
    }
    if (tokens_.TakeWords({u"WITH", u"COMPRESSION"}) || tokens_.TakeWords({u"WITH", u"COMP"})) {
        column.compressed = true;
        return Status::Ok();
    }
    if (tokens_.TakeWord(u"DEFAULT")) {
        ASSIGN_OR_RETURN(column.default_value, ParseDefault());
        return Status::Ok();
    }
    IndexDefinition index;
    if (tokens_.TakeWord(u"CONSTRAINT")) {
        ASSIGN_OR_RETURN(index.name, tokens_.TakeName(BadField()));
    }
    if (tokens_.TakeWords({u"PRIMARY", u"KEY"}))
        index.primary = true;
    else if (tokens_.TakeWord(u"UNIQUE"))
        index.unique = true;
    else if (tokens_.IsWord(u"REFERENCES")) {
        RelationDesign relation;
        relation.name = index.name;
        relation.columns = {column.name};
        RETURN_IF_ERROR(ParseReferences(relation));
        constraints.relations.push_back(std::move(relation));
        return Status::Ok();
    } else if (!index.name.empty())
        return BadField();
    else {
        more = false;
        return Status::Ok();
    }
    if (index.name.empty()) index.name = index.primary ? u"PrimaryKey" : column.name;
    index.columns.push_back({column.name, false});
    constraints.indexes.push_back(std::move(index));
    return Status::Ok();
}

// The text of the default as it was written: an operand, with a sign, a call or parentheses.
Result<std::u16string> StatementParser::ParseDefault() {
    const std::size_t begin = tokens_.Peek().begin;
    if (tokens_.AtEnd() || tokens_.IsSymbol(u",") || tokens_.IsSymbol(u")")) return BadField();
    if (tokens_.IsSymbol(u"-") || tokens_.IsSymbol(u"+")) tokens_.Take();
    const bool parenthesis = tokens_.IsSymbol(u"(");
    if (!parenthesis) tokens_.Take();
    if (tokens_.IsSymbol(u"(")) {
        int depth = 0;
        do {
            if (tokens_.AtEnd()) return BadField();
            if (tokens_.IsSymbol(u"(")) ++depth;
            if (tokens_.IsSymbol(u")")) --depth;
            tokens_.Take();
        } while (depth > 0);
    }
    return std::u16string(tokens_.TextSince(begin));
}

// [CONSTRAINT name] PRIMARY KEY | UNIQUE (columns), or one with FOREIGN KEY.
Status StatementParser::ParseConstraint(Constraints& constraints) {
    IndexDefinition index;
    if (tokens_.TakeWord(u"CONSTRAINT")) {
        ASSIGN_OR_RETURN(index.name, tokens_.TakeName(BadField()));
    }
    if (tokens_.TakeWords({u"PRIMARY", u"KEY"}))
        index.primary = true;
    else if (tokens_.TakeWord(u"UNIQUE"))
        index.unique = true;
    else if (tokens_.TakeWords({u"FOREIGN", u"KEY"})) {
        ASSIGN_OR_RETURN(RelationDesign relation, ParseForeignKey());
        relation.name = index.name;
        constraints.relations.push_back(std::move(relation));
        return Status::Ok();
    } else if (tokens_.IsWord(u"CHECK"))
        return ErrorBecause(ErrorNumber::kSyntaxInFieldDefinition,
                            "Only PRIMARY KEY, UNIQUE and FOREIGN KEY constraints are supported.");
    else
        return BadField();
    RETURN_IF_ERROR(ParseIndexColumns(index, BadField()));
    if (index.name.empty()) index.name = index.primary ? u"PrimaryKey" : index.columns[0].name;
    constraints.indexes.push_back(std::move(index));
    return Status::Ok();
}

// [NO INDEX] (columns) REFERENCES ... The engine keeps relations by an index, so it makes one in
// any case.
Result<RelationDesign> StatementParser::ParseForeignKey() {
    RelationDesign relation;
    tokens_.TakeWords({u"NO", u"INDEX"});
    ASSIGN_OR_RETURN(relation.columns, ParseNames());
    RETURN_IF_ERROR(ParseReferences(relation));
    return relation;
}

// REFERENCES table [(columns)] [ON UPDATE rule] [ON DELETE rule]
Status StatementParser::ParseReferences(RelationDesign& relation) {
    if (!tokens_.TakeWord(u"REFERENCES")) return BadField();
    ASSIGN_OR_RETURN(relation.referenced_table, tokens_.TakeName(BadField()));
    if (tokens_.IsSymbol(u"(")) {
        ASSIGN_OR_RETURN(relation.referenced_columns, ParseNames());
    }
    while (tokens_.TakeWord(u"ON"))
        RETURN_IF_ERROR(ParseRelationRule(relation));
    return Status::Ok();
}

Status StatementParser::ParseRelationRule(RelationDesign& relation) {
    const bool on_update = tokens_.TakeWord(u"UPDATE");
    if (!on_update && !tokens_.TakeWord(u"DELETE")) return BadField();
    RelationRule& rule = on_update ? relation.on_update : relation.on_delete;
    if (tokens_.TakeWord(u"CASCADE"))
        rule = RelationRule::kCascade;
    else if (tokens_.TakeWords({u"NO", u"ACTION"}))
        rule = RelationRule::kRefuse;
    else if (tokens_.TakeWords({u"SET", u"NULL"}) && !on_update)
        rule = RelationRule::kSetNull;
    else
        return BadField();
    return Status::Ok();
}

// (name, name ...)
Result<std::vector<std::u16string>> StatementParser::ParseNames() {
    std::vector<std::u16string> names;
    if (!tokens_.TakeSymbol(u"(")) return BadField();
    do {
        ASSIGN_OR_RETURN(std::u16string name, tokens_.TakeName(BadField()));
        names.push_back(std::move(name));
    } while (tokens_.TakeSymbol(u","));
    if (!tokens_.TakeSymbol(u")")) return BadField();
    return names;
}

Status StatementParser::ParseIndexColumns(IndexDefinition& index, const Status& failure) {
    if (!tokens_.TakeSymbol(u"(")) return failure;
    do {
        IndexColumnName column;
        ASSIGN_OR_RETURN(column.name, tokens_.TakeName(failure));
        column.descending = tokens_.TakeWord(u"DESC");
        if (!column.descending) tokens_.TakeWord(u"ASC");
        index.columns.push_back(std::move(column));
    } while (tokens_.TakeSymbol(u","));
    return tokens_.TakeSymbol(u")") ? Status::Ok() : failure;
}

Result<Statement> StatementParser::ParseCreateIndex(bool unique) {
    const Status failure = JetError(ErrorNumber::kSyntaxInCreateIndex);
    CreateIndexStatement create;
    create.index.unique = unique;
    ASSIGN_OR_RETURN(create.index.name, tokens_.TakeName(failure));
    if (!tokens_.TakeWord(u"ON")) return failure;
    ASSIGN_OR_RETURN(create.table, tokens_.TakeName(failure));
    RETURN_IF_ERROR(ParseIndexColumns(create.index, failure));
    if (tokens_.TakeWord(u"WITH")) {
        if (tokens_.TakeWord(u"PRIMARY"))
            create.index.primary = true;
        else if (tokens_.TakeWords({u"DISALLOW", u"NULL"}))
            create.index.required = true;
        else if (tokens_.TakeWords({u"IGNORE", u"NULL"}))
            create.index.ignore_nulls = true;
        else
            return failure;
    }
    return Statement(std::move(create));
}

Result<Statement> StatementParser::ParseAlter() {
    const Status failure = JetError(ErrorNumber::kSyntaxInAlterTable);
    AlterTableStatement alter;
    if (!tokens_.TakeWord(u"TABLE")) return failure;
    ASSIGN_OR_RETURN(alter.table, tokens_.TakeName(failure));
    if (tokens_.TakeWord(u"ADD"))
        RETURN_IF_ERROR(ParseAdd(alter));
    else if (tokens_.TakeWord(u"ALTER"))
        RETURN_IF_ERROR(ParseAlterColumn(alter));
    else if (tokens_.TakeWord(u"DROP"))
        RETURN_IF_ERROR(ParseDropPart(alter));
    else
        return failure;
    return Statement(std::move(alter));
}

Status StatementParser::ParseAdd(AlterTableStatement& alter) {
    if (AtConstraint()) {
        alter.kind = AlterKind::kAddConstraint;
        return ParseConstraint(alter.constraints);
    }
    alter.kind = AlterKind::kAddColumn;
    tokens_.TakeWord(u"COLUMN");
    do {
        ASSIGN_OR_RETURN(ColumnDesign column, ParseColumn(alter.constraints));
        alter.columns.push_back(std::move(column));
    } while (tokens_.TakeSymbol(u","));
    return Status::Ok();
}

Status StatementParser::ParseAlterColumn(AlterTableStatement& alter) {
    tokens_.TakeWord(u"COLUMN");
    alter.kind = AlterKind::kAlterColumn;
    ColumnDesign column;
    if (tokens_.IsName() && (tokens_.IsWord(u"SET", 1) || tokens_.IsWord(u"DROP", 1))) {
        alter.kind = AlterKind::kSetDefault;
        column.name = tokens_.Take().text;
        const bool set = SameWord(tokens_.Take().text, u"SET");
        if (!tokens_.TakeWord(u"DEFAULT")) return JetError(ErrorNumber::kSyntaxInAlterTable);
        if (set) {
            ASSIGN_OR_RETURN(column.default_value, ParseDefault());
        }
    } else {
        ASSIGN_OR_RETURN(column, ParseColumn(alter.constraints));
    }
    alter.columns.push_back(std::move(column));
    return Status::Ok();
}

Status StatementParser::ParseDropPart(AlterTableStatement& alter) {
    const bool constraint = tokens_.TakeWord(u"CONSTRAINT");
    alter.kind = constraint ? AlterKind::kDropConstraint : AlterKind::kDropColumn;
    if (!constraint) tokens_.TakeWord(u"COLUMN");
    do {
        ASSIGN_OR_RETURN(std::u16string name,
                         tokens_.TakeName(JetError(ErrorNumber::kSyntaxInAlterTable)));
        alter.names.push_back(std::move(name));
    } while (tokens_.TakeSymbol(u","));
    return Status::Ok();
}

Result<Statement> StatementParser::ParseDrop() {
    const Status failure = JetError(ErrorNumber::kSyntaxInDrop);
    DropStatement drop;
    if (tokens_.TakeWord(u"TABLE")) {
        ASSIGN_OR_RETURN(drop.table, tokens_.TakeName(failure));
        return Statement(std::move(drop));
    }
    if (!tokens_.TakeWord(u"INDEX")) return failure;
    ASSIGN_OR_RETURN(drop.index, tokens_.TakeName(failure));
    if (!tokens_.TakeWord(u"ON")) return failure;
    ASSIGN_OR_RETURN(drop.table, tokens_.TakeName(failure));
    return Statement(std::move(drop));
}

}  // namespace jet::sql
