// The inside of a Connection, as its recordsets see it.
#pragma once

#include "jet/change_counter.h"
#include "jet/connection.h"
#include "jet/sql/functions/session.h"
#include "jet/sql/syntax/ast.h"
#include "jet/tables/database.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <set>
#include <thread>

namespace jet {

class Connection::Impl {
public:
    // `files` may be null where a database is handed in.
    Impl(FileSystem* files, Clock clock);
    ~Impl();

    base::Status Open(std::u16string_view connection_string);
    void Adopt(std::unique_ptr<Database> database);
    base::Status Close();

    // Runs a statement other than a SELECT.
    base::Result<std::int64_t> Run(sql::Statement& statement);

    // Recordsets of this connection: told when it closes or a design changes.
    void Register(Recordset::Impl& recordset) { recordsets_.insert(&recordset); }
    void Unregister(Recordset::Impl& recordset) { recordsets_.erase(&recordset); }

    void UseNotes(CommitNotes* notes) { notes_ = notes; }
    // Changes inside of each other; the outermost one gives the label.
    void BeginNamed(std::u16string name, std::uint64_t undoes);
    void EndNamed() { --named_depth_; }

    void Lend() { is_lent_ = true; }
    void Take() { taken_by_ = std::this_thread::get_id(); }
    void GiveBack() {
        taken_by_ = std::thread::id();
        is_lent_ = false;
    }
    // kBusy: the connection is lent to another thread.
    base::Status MayBeUsed() const;

    Database* database() { return database_.get(); }
    sql::Session& session() { return session_; }
    const ChangeCounter& changes() const { return changes_; }
    void NoteChange() { changes_.NoteChange(); }

private:
    base::Result<std::int64_t> RunDesign(sql::Statement& statement);

    // Of a transaction that begins now.
    ChangeLabel LabelOf(std::u16string name, std::uint64_t undoes);

    std::atomic<bool> is_lent_ = false;
    std::atomic<std::thread::id> taken_by_;  // while is_lent_; none: not yet
    FileSystem* files_;
    CommitNotes* notes_ = nullptr;
    ChangeLabel named_;  // while named_depth_ > 0
    int named_depth_ = 0;
    std::uint64_t last_change_id_;
    std::unique_ptr<Database> database_;
    sql::Session session_;
    std::set<Recordset::Impl*> recordsets_;
    ChangeCounter changes_;
};

}  // namespace jet
