// StatementParser: one statement out of its tokens. Each statement family has its own source file.
#pragma once

#include "base/status.h"
#include "jet/sql/syntax/ast.h"
#include "jet/sql/syntax/expression_parser.h"
#include "jet/sql/syntax/token_reader.h"

namespace jet::sql {

class StatementParser {
public:
    explicit StatementParser(TokenReader& tokens) : tokens_(tokens) {}

    base::Result<Statement> Parse();
    // A SELECT in parentheses, the first of which is the next token.
    base::Result<SelectStatement> ParseSubquery();

private:
    base::Result<Statement> ParseStatement();
    base::Result<ExpressionPtr> ParseExpression() { return ExpressionParser(tokens_).Parse(); }

    // select_parser.cpp
    base::Result<SelectStatement> ParseSelect();
    base::Result<SelectStatement> ParseSelectCore();
    base::Status ParseTop(SelectStatement& select);
    base::Status ParseOutputs(SelectStatement& select);
    base::Result<OutputItem> ParseOutput();
    base::Result<std::unique_ptr<FromNode>> ParseFrom();
    base::Result<std::unique_ptr<FromNode>> ParseJoins();
    base::Result<std::unique_ptr<FromNode>> ParseSource();
    base::Status ParseGrouping(SelectStatement& select);
    base::Status ParseOrder(SelectStatement& select);
    base::Result<ExpressionPtr> ParseWhere();

    // change_parser.cpp
    base::Result<Statement> ParseInsert();
    base::Status ParseInsertColumns(InsertStatement& insert);
    base::Status ParseInsertValues(InsertStatement& insert);
    base::Result<Statement> ParseUpdate();
    base::Result<Assignment> ParseAssignment();
    base::Result<Statement> ParseDelete();
    base::Status ParseAlias(std::u16string& alias);

    // design_parser.cpp
    base::Result<Statement> ParseCreate();
    base::Result<Statement> ParseCreateTable();
    base::Result<Statement> ParseCreateIndex(bool unique);
    base::Result<Statement> ParseAlter();
    base::Status ParseAdd(AlterTableStatement& alter);
    base::Status ParseAlterColumn(AlterTableStatement& alter);
    base::Status ParseDropPart(AlterTableStatement& alter);
    base::Result<Statement> ParseDrop();
    bool AtConstraint() const;
    base::Result<ColumnDesign> ParseColumn(Constraints& constraints);
    base::Status ParseType(ColumnDesign& column);
    base::Status ParseColumnRule(ColumnDesign& column, Constraints& constraints, bool& more);
    base::Result<std::u16string> ParseDefault();
    base::Status ParseConstraint(Constraints& constraints);
    base::Result<RelationDesign> ParseForeignKey();
    base::Status ParseReferences(RelationDesign& relation);
    base::Status ParseRelationRule(RelationDesign& relation);
    base::Result<std::vector<std::u16string>> ParseNames();
    base::Status ParseIndexColumns(IndexDefinition& index, const base::Status& failure);
    base::Result<std::int64_t> ParseNumber(const base::Status& failure);

    TokenReader& tokens_;
    bool nested_ = false;  // inside of an expression
};

}  // namespace jet::sql
