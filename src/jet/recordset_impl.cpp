#include "jet/recordset_impl.h"

#include "jet/errors.h"
#include "jet/sql/statements/transaction.h"
#include "jet/sql/syntax/parser.h"
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
    const bool is_statement = statement.ok() || statement.status().number() != 3129;
    return name && !is_statement ? u"SELECT * FROM [" + std::u16string(text) + u"]"
                                 : std::u16string(text);
}

}  // namespace

Status Recordset::Impl::OpenText(std::u16string_view text, Connection::Impl& connection,
                                 CursorType cursor, LockType lock) {
    if (is_open()) return JetError(3705);
    if (connection.database() == nullptr) return JetError(3704);
    connection.session().StartStatement();
    const std::u16string select = AsSelect(text);
    ASSIGN_OR_RETURN(sql::Statement statement,
                     sql::Parse(select, connection.session().current_year()));
    if (!std::holds_alternative<sql::SelectStatement>(statement)) return JetError(3141);
    return OpenQuery(std::get<sql::SelectStatement>(std::move(statement)), select, connection,
                     cursor, lock);
}

Status Recordset::Impl::OpenQuery(sql::SelectStatement select, std::u16string_view text,
                                  Connection::Impl& connection, CursorType cursor, LockType lock) {
    ASSIGN_OR_RETURN(query_, sql::Query::Prepare(std::move(select), connection.session()));
    connection_ = &connection;
    text_ = text;
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
    walk_.reset();
    query_.reset();
    found_ = {};
    values_.clear();
    failures_.clear();
    ForgetLearned();
    pending_.clear();
    names_.clear();
    keeps_values_ = has_rows_ = at_end_ = cache_valid_ = false;
    position_ = -1;
}

// Finds the rows and stands on the first.
Status Recordset::Impl::Load() {
    cache_valid_ = false;
    keeps_values_ = query_->table() == nullptr;
    if (keeps_values_) {
        ASSIGN_OR_RETURN(values_, query_->Rows(&failures_));
    } else if (cursor_ == CursorType::kForwardOnly) {
        ASSIGN_OR_RETURN(walk_, query_->Walk());
        if (walk_ != nullptr) {
            position_ = -1;
            RETURN_IF_ERROR(StepWalk());
            has_rows_ = !at_end_;
            return Status::Ok();
        }
    }
    if (!keeps_values_) RETURN_IF_ERROR(ListRows());
    has_rows_ = count() > 0;
    Stand(0);
    return Status::Ok();
}

Status Recordset::Impl::ListRows() {
    ASSIGN_OR_RETURN(found_, query_->CollectRows());
    if (cursor_ != CursorType::kStatic) return Status::Ok();
    ASSIGN_OR_RETURN(values_, query_->ReadRows(found_, &failures_));
    found_.stored = {};
    return Status::Ok();
}

Status Recordset::Impl::StepWalk() {
    ASSIGN_OR_RETURN(const std::optional<RowId> row, walk_->Next());
    at_end_ = !row.has_value();
    if (row) met_ = *row;
    met_changes_ = connection_->changes();
    ++position_;
    return Status::Ok();
}

std::int64_t Recordset::Impl::count() const {
    return static_cast<std::int64_t>(keeps_values_ ? values_.size() : found_.ids.size());
}

void Recordset::Impl::Stand(std::int64_t position) {
    position_ = position;
    at_end_ = position_ >= count();
}

// The rest of a walk becomes a list, in which the current row is the first.
void Recordset::Impl::BeforeDesignChange() {
    if (walk_ == nullptr) return;
    found_ = {};
    while (!at_end_) {
        found_.ids.push_back(met_);
        if (!StepWalk().ok()) break;
    }
    walk_.reset();
    Stand(0);
}

void Recordset::Impl::AfterDesignChange() {
    cache_valid_ = false;
    ForgetLearned();
    pending_.clear();
    found_.stored = {};
    if (keeps_values_) return;
    query_.reset();
    auto statement = sql::Parse(text_, connection_->session().current_year());
    if (!statement.ok()) return;
    auto query = sql::Query::Prepare(std::get<sql::SelectStatement>(std::move(statement).value()),
                                     connection_->session());
    if (!query.ok()) return;
    query_ = std::move(query).value();
    if (values_.empty()) names_ = query_->names();
}

// What is pending is written before another row becomes the current one.
Status Recordset::Impl::Leave() {
    if (!is_open()) return JetError(3704);
    if (!pending_.empty()) RETURN_IF_ERROR(Update());
    return has_rows_ ? Status::Ok() : JetError(3021);
}

Status Recordset::Impl::MoveFirst() {
    RETURN_IF_ERROR(Leave());
    if (walk_ == nullptr) {
        Stand(0);
        return Status::Ok();
    }
    if (position_ == 0) return Status::Ok();
    ASSIGN_OR_RETURN(walk_, query_->Walk());
    position_ = -1;
    cache_valid_ = false;
    RETURN_IF_ERROR(StepWalk());
    return at_end_ ? JetError(3021) : Status::Ok();
}

Status Recordset::Impl::MoveLast() {
    RETURN_IF_ERROR(Leave());
    if (walk_ == nullptr) {
        Stand(count() - 1);
        return Status::Ok();
    }
    while (!at_end_)
        RETURN_IF_ERROR(StepWalk());  // the row met last stays in `met_`
    --position_;
    at_end_ = false;
    met_changes_ = kNeverMet;
    return Status::Ok();
}

Status Recordset::Impl::MoveNext() {
    RETURN_IF_ERROR(Leave());
    if (at_end_) return JetError(3021);
    if (walk_ != nullptr) return StepWalk();
    Stand(position_ + 1);
    return Status::Ok();
}

Status Recordset::Impl::MovePrevious() {
    RETURN_IF_ERROR(Leave());
    if (walk_ != nullptr) return JetError(3219);
    if (position_ < 0) return JetError(3021);
    Stand(position_ - 1);
    return Status::Ok();
}

Status Recordset::Impl::MoveTo(std::int64_t row) {
    RETURN_IF_ERROR(Leave());
    if (walk_ != nullptr) return JetError(3219);
    if (row < 0 || row >= count()) return JetError(3021);
    Stand(row);
    return Status::Ok();
}

std::int64_t Recordset::Impl::RecordCount() const {
    if (!is_open() || cursor_ == CursorType::kForwardOnly) return -1;
    return count();
}

Result<std::size_t> Recordset::Impl::FindField(std::u16string_view name) const {
    if (!is_open()) return JetError(3704);
    for (std::size_t i = 0; i < names_.size(); ++i)
        if (sql::SameName(names_[i], name)) return i;
    return JetError(3265, name);
}

Status Recordset::Impl::CheckRow() const {
    if (!is_open()) return JetError(3704);
    return on_row() ? Status::Ok() : JetError(3021);
}

Result<Value> Recordset::Impl::Field(std::size_t field) {
    if (on_row() && field < names_.size() && pending_.empty() && found_.stored.are_fresh()) {
        Result<Value> value{Value()};
        RETURN_IF_ERROR(found_.stored.Read(static_cast<std::size_t>(position_), field, *value));
        return value;
    }
    RETURN_IF_ERROR(CheckRow());
    if (field >= names_.size()) return JetError(3265);
    for (const Pending& pending : pending_)
        if (pending.output == field) return pending.value;
    if (!values_.empty()) {
        const auto row = static_cast<std::size_t>(position_);
        const auto failed = failures_.find({row, field});
        if (failed != failures_.end()) return failed->second;
        return values_[row][field];
    }
    if (query_ == nullptr) return JetError(3011, text_);
    RETURN_IF_ERROR(ReadLearned(field));
    const std::size_t place = place_in_cache_[field];
    RETURN_IF_ERROR(cache_failures_[place]);
    return cache_[place];
}

void Recordset::Impl::ForgetLearned() {
    learned_.clear();
    learned_columns_.clear();
    place_in_cache_.clear();
    cache_.clear();
    cache_failures_.clear();
    cache_valid_ = false;
}

Status Recordset::Impl::ReadLearned(std::size_t field) {
    const bool known = field < place_in_cache_.size() && place_in_cache_[field] != kNotLearned;
    const bool fresh =
        cache_valid_ && cache_changes_ == connection_->changes() && cache_row_ == current();
    if (known && fresh) return Status::Ok();
    if (!known) Learn(field);
    cache_valid_ = false;
    RETURN_IF_ERROR(ReadRow());
    cache_valid_ = true;
    cache_row_ = current();
    cache_changes_ = connection_->changes();
    return Status::Ok();
}

void Recordset::Impl::Learn(std::size_t field) {
    place_in_cache_.resize(names_.size(), kNotLearned);
    place_in_cache_[field] = learned_.size();
    learned_.push_back(field);
    cache_.resize(learned_.size());
    cache_failures_.resize(learned_.size());
    const auto column = query_->TableColumn(field);
    const bool all_plain = learned_columns_.size() + 1 == learned_.size() && column;
    if (all_plain)
        learned_columns_.push_back(*column);
    else
        learned_columns_.clear();
}

// A walk stands on the page of its row; it shows the row as it was met, so a row that may have
// changed is read anew.
Status Recordset::Impl::ReadRow() {
    if (learned_columns_.empty())
        return query_->ReadRow(current(), learned_, cache_, cache_failures_);
    if (walk_ != nullptr && met_changes_ == connection_->changes() && !at_end_)
        return walk_->Read(learned_columns_, cache_);
    return query_->table()->Read(current(), learned_columns_, cache_);
}

Result<Table*> Recordset::Impl::WritableTable() {
    RETURN_IF_ERROR(CheckRow());
    const bool updatable = lock_ != LockType::kReadOnly && !keeps_values_ && query_ != nullptr &&
                           !connection_->database()->read_only();
    if (!updatable) return JetError(3027);
    Table* table = query_->table();
    if (const auto reason = table->read_only_reason()) return *reason;
    return table;
}

Status Recordset::Impl::SetField(std::u16string_view name, Value value) {
    ASSIGN_OR_RETURN(const std::size_t output, FindField(name));
    ASSIGN_OR_RETURN(Table* const table, WritableTable());
    const auto column = query_->TableColumn(output);
    if (!column) return JetError(3027);
    const ColumnDesign& design = table->design().columns[*column];
    if (design.autonumber) return JetError(3164);
    ASSIGN_OR_RETURN(value, Coerce(value, design));
    for (Pending& pending : pending_) {
        if (pending.column != *column) continue;
        pending.value = std::move(value);
        return Status::Ok();
    }
    Pending pending{output, *column, {}, std::move(value)};
    const std::size_t columns[] = {*column};
    RETURN_IF_ERROR(table->Read(current(), columns, std::span(&pending.before, 1)));
    pending_.push_back(std::move(pending));
    return Status::Ok();
}

Status Recordset::Impl::Update() {
    RETURN_IF_ERROR(CheckRow());
    if (pending_.empty()) return Status::Ok();
    ASSIGN_OR_RETURN(Table* const table, WritableTable());
    RETURN_IF_ERROR(CheckUnchanged(*table));
    RETURN_IF_ERROR(WritePending(*table));
    if (!values_.empty())
        for (Pending& pending : pending_)
            values_[static_cast<std::size_t>(position_)][pending.output] = std::move(pending.value);
    pending_.clear();
    return Status::Ok();
}

// 3197: a field to be written was changed by a statement since its edit began.
Status Recordset::Impl::CheckUnchanged(Table& table) const {
    std::vector<std::size_t> columns;
    for (const Pending& pending : pending_)
        columns.push_back(pending.column);
    std::vector<Value> now(columns.size());
    RETURN_IF_ERROR(table.Read(current(), columns, now));
    for (std::size_t i = 0; i < now.size(); ++i)
        if (now[i] != pending_[i].before) return JetError(3197);
    return Status::Ok();
}

Status Recordset::Impl::WritePending(Table& table) {
    std::vector<ColumnChange> changes;
    for (const Pending& pending : pending_)
        changes.push_back({pending.column, pending.value});
    sql::Transaction transaction(*connection_->database());
    RETURN_IF_ERROR(transaction.Begin());
    RETURN_IF_ERROR(table.Update(current(), changes));
    RETURN_IF_ERROR(transaction.Commit());
    connection_->NoteChange();
    return Status::Ok();
}

Status Recordset::Impl::Delete() {
    ASSIGN_OR_RETURN(Table* const table, WritableTable());
    sql::Transaction transaction(*connection_->database());
    RETURN_IF_ERROR(transaction.Begin());
    RETURN_IF_ERROR(table->Delete(current()));
    RETURN_IF_ERROR(transaction.Commit());
    pending_.clear();
    connection_->NoteChange();
    return Status::Ok();
}

}  // namespace jet
