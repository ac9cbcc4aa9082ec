#include "jet/connection.h"

#include "jet/connection_impl.h"
#include "jet/connection_string.h"
#include "jet/errors.h"
#include "jet/pages/file_mark.h"
#include "jet/pages/page_store.h"
#include "jet/recordset_impl.h"
#include "jet/sql/plans/query.h"
#include "jet/sql/statements/executor.h"
#include "jet/sql/statements/rule_maker.h"
#include "jet/sql/statements/transaction.h"
#include "jet/sql/syntax/parser.h"
#include "jet/values/system_clock.h"

#include "base/file_names.h"

#include <filesystem>

namespace jet {
namespace {

using base::Result;
using base::Status;

Status Closed() {
    return JetError(ErrorNumber::kClosed);
}

Result<std::unique_ptr<Database>> OpenFile(FileSystem& files, const std::filesystem::path& path,
                                           bool read_only, CommitNotes* notes) {
    PageStoreOptions options;
    options.notes = notes;
    options.read_only = read_only;
    auto pages = OpenPageStore(files, path, options);
    // A file that cannot be written can still be read, also on a disk that has no room for its
    // lock.
    const base::StatusCode failed = pages.status().code();
    if (!read_only &&
        (failed == base::StatusCode::kPermissionDenied || failed == base::StatusCode::kNoSpace)) {
        options.read_only = true;
        auto readable = OpenPageStore(files, path, options);
        if (readable.ok()) pages = std::move(readable);
    }
    if (!pages.ok()) return pages.status();
    return OpenDatabase(std::move(pages).value(), base::Utf8Of(path));
}

}  // namespace

Connection::Impl::Impl(FileSystem* files, Clock clock)
    : files_(files), last_change_id_(MakeFileMark()) {
    session_.prepare_select = sql::PrepareSubselect;
    session_.clock = clock ? std::move(clock) : Clock(SystemNow);
}

Connection::Impl::~Impl() {
    Close().Ignore();
}

Status Connection::Impl::Open(std::u16string_view connection_string) {
    if (database_ != nullptr) return JetError(ErrorNumber::kOpen);
    ASSIGN_OR_RETURN(const ConnectionSettings settings, ParseConnectionString(connection_string));
    const std::filesystem::path path = base::PathOf(settings.data_source);
    ASSIGN_OR_RETURN(std::unique_ptr<Database> database,
                     OpenFile(*files_, path, settings.read_only, notes_));
    Adopt(std::move(database));
    return Status::Ok();
}

void Connection::Impl::Adopt(std::unique_ptr<Database> database) {
    database_ = std::move(database);
    session_.database = database_.get();
    database_->UseRowRules(std::make_unique<const sql::RuleMaker>(session_.clock));
    database_->UseClock(session_.clock);
    database_->UseLabels([this] { return named_depth_ > 0 ? named_ : LabelOf({}, 0); });
    session_.identity = 0;
    session_.StartStatement();
    NoteChange();
}

// Ids begin at a random number, so that those of other connections are not met.
ChangeLabel Connection::Impl::LabelOf(std::u16string name, std::uint64_t undoes) {
    return {++last_change_id_, undoes, session_.clock(), std::move(name)};
}

void Connection::Impl::BeginNamed(std::u16string name, std::uint64_t undoes) {
    if (named_depth_++ == 0) named_ = LabelOf(std::move(name), undoes);
}

Status Connection::Impl::MayBeUsed() const {
    if (!is_lent_ || taken_by_.load() == std::this_thread::get_id()) return Status::Ok();
    return {base::StatusCode::kBusy, "Another command is working on the database."};
}

Status Connection::Impl::Close() {
    if (database_ == nullptr) return Status::Ok();
    const std::set<Recordset::Impl*> open = recordsets_;
    for (Recordset::Impl* recordset : open)
        recordset->Close();
    Status closed = database_->Close();
    session_.database = nullptr;
    database_.reset();
    return closed;
}

Result<std::int64_t> Connection::Impl::Run(sql::Statement& statement) {
    if (sql::ChangesDesign(statement)) return RunDesign(statement);
    NoteChange();
    if (auto* insert = std::get_if<sql::InsertStatement>(&statement))
        return sql::Execute(*insert, session_);
    if (auto* update = std::get_if<sql::UpdateStatement>(&statement))
        return sql::Execute(*update, session_);
    return sql::Execute(std::get<sql::DeleteStatement>(statement), session_);
}

// A changed design moves tables in memory: open recordsets let go of theirs and find them again
// afterwards.
Result<std::int64_t> Connection::Impl::RunDesign(sql::Statement& statement) {
    for (Recordset::Impl* recordset : recordsets_)
        recordset->BeforeDesignChange();
    NoteChange();
    Status done;
    std::int64_t rows = 0;
    if (auto* select = std::get_if<sql::SelectStatement>(&statement)) {
        auto made = sql::Execute(*select, session_);
        done = made.status();
        rows = made.value_or(0);
    } else if (const auto* create = std::get_if<sql::CreateTableStatement>(&statement))
        done = sql::Execute(*create, session_);
    else if (const auto* index = std::get_if<sql::CreateIndexStatement>(&statement))
        done = sql::Execute(*index, session_);
    else if (const auto* alter = std::get_if<sql::AlterTableStatement>(&statement))
        done = sql::Execute(*alter, session_);
    else
        done = sql::Execute(std::get<sql::DropStatement>(statement), session_);
    for (Recordset::Impl* recordset : recordsets_)
        recordset->AfterDesignChange();
    if (!done.ok()) return done;
    return rows;
}

Connection::Connection(FileSystem& files, Clock clock)
    : impl_(std::make_unique<Impl>(&files, std::move(clock))) {}

Connection::Connection(std::unique_ptr<Database> database, Clock clock)
    : impl_(std::make_unique<Impl>(nullptr, std::move(clock))) {
    impl_->Adopt(std::move(database));
}

Connection::~Connection() = default;

LentConnection::LentConnection(Connection& connection) : connection_(connection) {
    connection_.impl_->Lend();
}

LentConnection::~LentConnection() {
    connection_.impl_->GiveBack();
}

void LentConnection::Take() {
    connection_.impl_->Take();
}

void Connection::UseNotes(CommitNotes* notes) {
    impl_->UseNotes(notes);
}

NamedChange::NamedChange(Connection& connection, std::u16string name, std::uint64_t undoes)
    : connection_(connection) {
    connection_.impl_->BeginNamed(std::move(name), undoes);
}

NamedChange::~NamedChange() {
    connection_.impl_->EndNamed();
}

Status Connection::Open(std::u16string_view connection_string, std::u16string_view,
                        std::u16string_view, int) {
    return impl_->Open(connection_string);
}

bool Connection::is_open() const {
    return impl_->database() != nullptr;
}

Status Connection::Close() {
    RETURN_IF_ERROR(impl_->MayBeUsed());
    return impl_->Close();
}

Result<Recordset> Connection::Execute(std::u16string_view sql, std::int64_t* records_affected) {
    RETURN_IF_ERROR(impl_->MayBeUsed());
    if (!is_open()) return Closed();
    impl_->session().StartStatement();
    ASSIGN_OR_RETURN(sql::Statement statement, sql::Parse(sql, impl_->session().current_year()));
    Recordset rows;
    auto* select = std::get_if<sql::SelectStatement>(&statement);
    if (select != nullptr && select->into.empty()) {
        RETURN_IF_ERROR(rows.impl_->OpenQuery(std::move(*select), std::u16string(sql), *impl_,
                                              CursorType::kForwardOnly, LockType::kReadOnly));
        return rows;
    }
    ASSIGN_OR_RETURN(const std::int64_t affected, impl_->Run(statement));
    if (records_affected != nullptr) *records_affected = affected;
    return rows;
}

void Connection::WatchRows(RowsWatch watch) {
    impl_->session().rows_watch = std::move(watch);
}

Status Connection::Change(const std::function<Status(Database&)>& change) {
    RETURN_IF_ERROR(impl_->MayBeUsed());
    if (!is_open()) return Closed();
    impl_->NoteChange();
    sql::Transaction transaction(*impl_->database());
    RETURN_IF_ERROR(transaction.Begin());
    RETURN_IF_ERROR(change(*impl_->database()));
    return transaction.Commit();
}

Status Connection::Flush() {
    RETURN_IF_ERROR(impl_->MayBeUsed());
    return is_open() ? impl_->database()->Flush() : Closed();
}

Database* Connection::database() {
    return impl_->database();
}

}  // namespace jet
