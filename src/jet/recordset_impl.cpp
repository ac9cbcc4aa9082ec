#include "jet/recordset_impl.h"

#include "jet/errors.h"
#include "jet/sql/statements/transaction.h"
#include "jet/sql/syntax/parser.h"
#include "jet/text/names.h"
#include "jet/values/calendar_names.h"
#include "jet/values/coerce.h"

#include <algorithm>

namespace jet {

using base::Result;
using base::Status;

namespace {

// The name of a table stands for all of its rows.
std::u16string AsSelect(std::u16string_view text) {
    text = TrimBlanks(text);
    const std::size_t word = std::min(text.find_first_of(u" \t\r\n(*'\"#"), text.size());
    if (SameWord(text.substr(0, word), u"SELECT")) return std::u16string(text);
    const bool quoted = text.size() > 2 && text.front() == u'[' && text.back() == u']';
    if (quoted) return u"SELECT * FROM " + std::u16string(text);
    const bool name = !text.empty() && text.find_first_of(u"[]`.!;\r\n") == text.npos;
    auto statement = sql::Parse(text, 2000);
    const bool is_statement =
        statement.ok() || !Is(statement.status(), ErrorNumber::kNotAStatement);
    return name && !is_statement ? u"SELECT * FROM [" + std::u16string(text) + u"]"
                                 : std::u16string(text);
}

}  // namespace

Status Recordset::Impl::OpenText(std::u16string_view text, Connection::Impl& connection,
                                 CursorType cursor, LockType lock) {
    if (is_open()) return JetError(ErrorNumber::kOpen);
    if (connection.database() == nullptr) return JetError(ErrorNumber::kClosed);
    connection.session().StartStatement();
    std::u16string select = AsSelect(text);
    ASSIGN_OR_RETURN(sql::Statement statement,
                     sql::Parse(select, connection.session().current_year()));
    if (!std::holds_alternative<sql::SelectStatement>(statement))
        return JetError(ErrorNumber::kSyntaxInSelect);
    return OpenQuery(std::get<sql::SelectStatement>(std::move(statement)), std::move(select),
                     connection, cursor, lock);
}

Status Recordset::Impl::OpenQuery(sql::SelectStatement&& select, std::u16string text,
                                  Connection::Impl& connection, CursorType cursor, LockType lock) {
    ASSIGN_OR_RETURN(query_, sql::Query::Prepare(std::move(select), connection.session()));
    connection_ = &connection;
    text_ = std::move(text);
    cursor_ = cursor;
    lock_ = lock;
    names_ = query_->names();
    connection.Register(*this);
    Status loaded = Load();
    if (!loaded.ok()) Close();
    return loaded;
}

void Recordset::Impl::Close() {
    if (connection_ == nullptr) return;
    connection_->Unregister(*this);
    connection_ = nullptr;
    rows_.reset();
    query_.reset();
    pending_.clear();
    names_.clear();
}

// Finds the rows and stands on the first.
Status Recordset::Impl::Load() {
    sql::FieldFailures failures;
    sql::TableQuery* const table = query_->AsTableQuery();
    if (table == nullptr) {
        ASSIGN_OR_RETURN(auto values, query_->RowsOrFailures(&failures));
        rows_ = std::make_unique<ValueRows>(std::move(values), std::move(failures),
                                            std::vector<RowId>());
        return Status::Ok();
    }
    if (cursor_ == CursorType::kForwardOnly) {
        ASSIGN_OR_RETURN(auto cursor, table->OpenCursor());
        if (cursor != nullptr) {
            ASSIGN_OR_RETURN(rows_,
                             ForwardRows::Start(*table, connection_->changes(), std::move(cursor)));
            return Status::Ok();
        }
    }
    ASSIGN_OR_RETURN(sql::FoundRows found, table->CollectRows());
    if (cursor_ == CursorType::kStatic) {
        ASSIGN_OR_RETURN(auto values, table->ReadRows(found, &failures));
        rows_ = std::make_unique<ValueRows>(std::move(values), std::move(failures),
                                            std::move(found.ids));
        return Status::Ok();
    }
    rows_ = std::make_unique<KeysetRows>(*table, connection_->changes(), std::move(found));
    return Status::Ok();
}

void Recordset::Impl::BeforeDesignChange() {
    if (auto rest = rows_->BeforeDesignChange()) rows_ = std::move(rest);
}

void Recordset::Impl::AfterDesignChange() {
    pending_.clear();
    if (query_ != nullptr && query_->AsTableQuery() == nullptr) return;
    query_.reset();
    rows_->AfterDesignChange(nullptr);
    auto statement = sql::Parse(text_, connection_->session().current_year());
    if (!statement.ok()) return;
    auto query = sql::Query::Prepare(std::get<sql::SelectStatement>(std::move(statement).value()),
                                     connection_->session());
    if (!query.ok()) return;
    query_ = std::move(query).value();
    rows_->AfterDesignChange(query_->AsTableQuery());
    if (!rows_->holds_values()) names_ = query_->names();
}

// What is pending is written before another row becomes the current one.
Status Recordset::Impl::Leave() {
    if (!is_open()) return JetError(ErrorNumber::kClosed);
    if (!pending_.empty()) RETURN_IF_ERROR(Update());
    return rows_->has_rows() ? Status::Ok() : JetError(ErrorNumber::kNoCurrentRecord);
}

Status Recordset::Impl::MoveFirst() {
    RETURN_IF_ERROR(Leave());
    return rows_->MoveFirst();
}

Status Recordset::Impl::MoveLast() {
    RETURN_IF_ERROR(Leave());
    return rows_->MoveLast();
}

Status Recordset::Impl::MoveNext() {
    RETURN_IF_ERROR(Leave());
    return rows_->MoveNext();
}

Status Recordset::Impl::MovePrevious() {
    RETURN_IF_ERROR(Leave());
    return rows_->MovePrevious();
}

Status Recordset::Impl::MoveTo(std::int64_t row) {
    RETURN_IF_ERROR(Leave());
    return rows_->MoveTo(row);
}

std::int64_t Recordset::Impl::RecordCount() const {
    return is_open() && cursor_ != CursorType::kForwardOnly ? rows_->count() : -1;
}

Result<std::size_t> Recordset::Impl::FindField(std::u16string_view name) const {
    if (!is_open()) return JetError(ErrorNumber::kClosed);
    for (std::size_t i = 0; i < names_.size(); ++i)
        if (SameName(names_[i], name)) return i;
    return JetError(ErrorNumber::kNoSuchItem, name);
}

Status Recordset::Impl::CheckRow() const {
    if (!is_open()) return JetError(ErrorNumber::kClosed);
    return rows_->on_row() ? Status::Ok() : JetError(ErrorNumber::kNoCurrentRecord);
}

Result<Value> Recordset::Impl::Field(std::size_t field) {
    RETURN_IF_ERROR(CheckRow());
    if (field >= names_.size()) return JetError(ErrorNumber::kNoSuchItem);
    for (const Pending& pending : pending_)
        if (pending.output == field) return pending.value;
    if (query_ == nullptr && !rows_->holds_values())
        return JetError(ErrorNumber::kNoSuchObject, text_);
    return rows_->Field(field);
}

Result<HeldRows> Recordset::Impl::Hold(std::span<const std::size_t> fields,
                                       const RowProgress& progress) {
    if (!is_open()) return JetError(ErrorNumber::kClosed);
    for (const std::size_t field : fields)
        if (field >= names_.size()) return JetError(ErrorNumber::kNoSuchItem);
    if (query_ == nullptr && !rows_->holds_values())
        return JetError(ErrorNumber::kNoSuchObject, text_);
    return rows_->Hold(fields, progress);
}

Result<Table*> Recordset::Impl::WritableTable() {
    RETURN_IF_ERROR(CheckRow());
    sql::TableQuery* const query = query_ != nullptr ? query_->AsTableQuery() : nullptr;
    const bool updatable =
        lock_ != LockType::kReadOnly && query != nullptr && !connection_->database()->read_only();
    if (!updatable) return JetError(ErrorNumber::kReadOnly);
    Table* const table = query->table();
    if (const auto reason = table->read_only_reason()) return *reason;
    return table;
}

Status Recordset::Impl::SetField(std::u16string_view name, Value value) {
    ASSIGN_OR_RETURN(const std::size_t output, FindField(name));
    ASSIGN_OR_RETURN(Table* const table, WritableTable());
    const auto column = query_->AsTableQuery()->TableColumn(output);
    if (!column) return JetError(ErrorNumber::kReadOnly);
    const ColumnDesign& design = table->design().columns[*column];
    if (design.autonumber) return JetError(ErrorNumber::kFieldNotUpdatable);
    ASSIGN_OR_RETURN(value, Coerce(value, design));
    for (Pending& pending : pending_) {
        if (pending.column != *column) continue;
        pending.value = std::move(value);
        return Status::Ok();
    }
    Pending pending{output, *column, {}, std::move(value)};
    const std::size_t columns[] = {*column};
    RETURN_IF_ERROR(table->Read(rows_->id(), columns, std::span(&pending.before, 1)));
    pending_.push_back(std::move(pending));
    return Status::Ok();
}

Status Recordset::Impl::Update() {
    RETURN_IF_ERROR(CheckRow());
    if (pending_.empty()) return Status::Ok();
    ASSIGN_OR_RETURN(Table* const table, WritableTable());
    RETURN_IF_ERROR(CheckUnchanged(*table));
    RETURN_IF_ERROR(WritePending(*table));
    for (const Pending& pending : pending_)
        rows_->NoteWritten(pending.output, pending.value);
    pending_.clear();
    return Status::Ok();
}

// 3197: a field to be written was changed by a statement since its edit began.
Status Recordset::Impl::CheckUnchanged(Table& table) const {
    std::vector<std::size_t> columns;
    for (const Pending& pending : pending_)
        columns.push_back(pending.column);
    std::vector<Value> now(columns.size());
    RETURN_IF_ERROR(table.Read(rows_->id(), columns, now));
    for (std::size_t i = 0; i < now.size(); ++i)
        if (now[i] != pending_[i].before) return JetError(ErrorNumber::kChangedMeanwhile);
    return Status::Ok();
}

Status Recordset::Impl::WritePending(Table& table) {
    std::vector<ColumnChange> changes;
    for (const Pending& pending : pending_)
        changes.push_back({pending.column, pending.value});
    sql::Transaction transaction(*connection_->database());
    RETURN_IF_ERROR(transaction.Begin());
    RETURN_IF_ERROR(table.Update(rows_->id(), changes));
    RETURN_IF_ERROR(transaction.Commit());
    connection_->NoteChange();
    return Status::Ok();
}

Status Recordset::Impl::Delete() {
    ASSIGN_OR_RETURN(Table* const table, WritableTable());
    sql::Transaction transaction(*connection_->database());
    RETURN_IF_ERROR(transaction.Begin());
    RETURN_IF_ERROR(table->Delete(rows_->id()));
    RETURN_IF_ERROR(transaction.Commit());
    pending_.clear();
    connection_->NoteChange();
    return Status::Ok();
}

}  // namespace jet
