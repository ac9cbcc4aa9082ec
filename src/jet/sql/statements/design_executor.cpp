// CREATE, ALTER and DROP.
#include "jet/errors.h"
#include "jet/sql/expressions/bind.h"
#include "jet/sql/statements/executor.h"
#include "jet/sql/statements/transaction.h"

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

Result<IndexDesign> MakeIndex(const IndexDefinition& definition, const TableDesign& design) {
    IndexDesign index;
    index.name = definition.name;
    index.primary = definition.primary;
    index.unique = definition.unique || definition.primary;
    index.required = definition.required || definition.primary;
    index.ignore_nulls = definition.ignore_nulls;
    for (const IndexColumnName& name : definition.columns) {
        const std::size_t column = FindColumn(design, name.name);
        if (column == design.columns.size())
            return JetError(ErrorNumber::kNoSuchField, name.name, design.name);
        index.columns.push_back({column, !name.descending});
    }
    return index;
}

Status AddIndex(const std::u16string& table, const IndexDefinition& definition, Session& session) {
    ASSIGN_OR_RETURN(Table* const found, session.database->FindTable(table));
    ASSIGN_OR_RETURN(const IndexDesign index, MakeIndex(definition, found->design()));
    return session.database->CreateIndex(table, index);
}

Status AddRelations(const std::u16string& table, const Constraints& constraints, Session& session) {
    for (RelationDesign relation : constraints.relations) {
        relation.table = table;
        RETURN_IF_ERROR(session.database->CreateRelation(relation));
    }
    return Status::Ok();
}

Status AddConstraints(const std::u16string& table, const Constraints& constraints,
                      Session& session) {
    for (const IndexDefinition& index : constraints.indexes)
        RETURN_IF_ERROR(AddIndex(table, index, session));
    return AddRelations(table, constraints, session);
}

// A missing table has its own message here.
Result<Table*> FindTable(const std::u16string& name, Session& session) {
    auto table = session.database->FindTable(name);
    if (Is(table.status(), ErrorNumber::kNoSuchTable))
        return JetError(ErrorNumber::kTableDoesNotExist, name);
    return table;
}

Result<const ColumnDesign*> ExistingColumn(const Table& table, const std::u16string& name) {
    const TableDesign& design = table.design();
    const std::size_t column = FindColumn(design, name);
    if (column == design.columns.size())
        return JetError(ErrorNumber::kNoSuchField, name, design.name);
    return &design.columns[column];
}

// What the statement does not say stays as it is.
Status AlterColumn(const AlterTableStatement& alter, const Table& table, Session& session) {
    ColumnDesign column = alter.columns[0];
    ASSIGN_OR_RETURN(const ColumnDesign* const before, ExistingColumn(table, column.name));
    column.name = before->name;
    if (!column.default_value) column.default_value = before->default_value;
    column.allow_zero_length = before->allow_zero_length;
    if (column.type == before->type) column.compressed = column.compressed || before->compressed;
    RETURN_IF_ERROR(session.database->AlterColumn(alter.table, column));
    return AddConstraints(alter.table, alter.constraints, session);
}

Status SetDefault(const AlterTableStatement& alter, const Table& table, Session& session) {
    ASSIGN_OR_RETURN(const ColumnDesign* const before,
                     ExistingColumn(table, alter.columns[0].name));
    ColumnDesign column = *before;
    column.default_value = alter.columns[0].default_value;
    return session.database->AlterColumn(alter.table, column);
}

Status AddColumns(const AlterTableStatement& alter, Session& session) {
    for (const ColumnDesign& column : alter.columns)
        RETURN_IF_ERROR(session.database->AddColumn(alter.table, column));
    return AddConstraints(alter.table, alter.constraints, session);
}

// A constraint is a relation or an index.
Status DropConstraint(const std::u16string& table, const std::u16string& name, Session& session) {
    Status status = session.database->DropRelation(table, name);
    return Is(status, ErrorNumber::kNoSuchIndex) ? session.database->DropIndex(table, name)
                                                 : status;
}

Status DropParts(const AlterTableStatement& alter, Session& session) {
    for (const std::u16string& name : alter.names) {
        RETURN_IF_ERROR(alter.kind == AlterKind::kDropColumn
                            ? session.database->DropColumn(alter.table, name)
                            : DropConstraint(alter.table, name, session));
    }
    return Status::Ok();
}

Status Apply(const AlterTableStatement& alter, const Table& table, Session& session) {
    switch (alter.kind) {
    case AlterKind::kAddColumn:
        return AddColumns(alter, session);
    case AlterKind::kAlterColumn:
        return AlterColumn(alter, table, session);
    case AlterKind::kSetDefault:
        return SetDefault(alter, table, session);
    case AlterKind::kAddConstraint:
        return AddConstraints(alter.table, alter.constraints, session);
    default:
        return DropParts(alter, session);
    }
}

Status BeginDesign(Session& session, Transaction& transaction) {
    if (session.database->read_only()) return JetError(ErrorNumber::kReadOnly);
    return transaction.Begin();
}

}  // namespace

Status Execute(const CreateTableStatement& create, Session& session) {
    TableDesign design;
    design.name = create.table;
    for (const ColumnDesign& column : create.columns) {
        if (FindColumn(design, column.name) != design.columns.size())
            return JetError(ErrorNumber::kFieldExists, column.name, create.table);
        design.columns.push_back(column);
    }
    if (design.columns.empty()) return JetError(ErrorNumber::kSyntaxInCreateTable);
    for (const IndexDefinition& definition : create.constraints.indexes) {
        ASSIGN_OR_RETURN(IndexDesign index, MakeIndex(definition, design));
        design.indexes.push_back(std::move(index));
    }
    Transaction transaction(*session.database);
    RETURN_IF_ERROR(BeginDesign(session, transaction));
    RETURN_IF_ERROR(session.database->CreateTable(design));
    RETURN_IF_ERROR(AddRelations(create.table, create.constraints, session));
    return transaction.Commit();
}

Status Execute(const CreateIndexStatement& create, Session& session) {
    RETURN_IF_ERROR(FindTable(create.table, session).status());
    Transaction transaction(*session.database);
    RETURN_IF_ERROR(BeginDesign(session, transaction));
    RETURN_IF_ERROR(AddIndex(create.table, create.index, session));
    return transaction.Commit();
}

Status Execute(const AlterTableStatement& alter, Session& session) {
    ASSIGN_OR_RETURN(const Table* const table, FindTable(alter.table, session));
    Transaction transaction(*session.database);
    RETURN_IF_ERROR(BeginDesign(session, transaction));
    RETURN_IF_ERROR(Apply(alter, *table, session));
    return transaction.Commit();
}

Status Execute(const DropStatement& drop, Session& session) {
    RETURN_IF_ERROR(FindTable(drop.table, session).status());
    Transaction transaction(*session.database);
    RETURN_IF_ERROR(BeginDesign(session, transaction));
    RETURN_IF_ERROR(drop.index.empty() ? session.database->DropTable(drop.table)
                                       : session.database->DropIndex(drop.table, drop.index));
    return transaction.Commit();
}

bool ChangesDesign(const Statement& statement) {
    if (const auto* select = std::get_if<SelectStatement>(&statement)) return !select->into.empty();
    return std::holds_alternative<CreateTableStatement>(statement) ||
           std::holds_alternative<CreateIndexStatement>(statement) ||
           std::holds_alternative<AlterTableStatement>(statement) ||
           std::holds_alternative<DropStatement>(statement);
}

}  // namespace jet::sql
