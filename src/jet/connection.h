// Connection: an open database file and the way SQL gets to it. See docs/jet-sql.md for the
// dialect. Each statement, and each Update or Delete of a recordset, is atomic; when it has
// returned it survives the death of the process. Errors are Status values with the engine's number
// and text. Threads: one connection belongs to one thread, unless it is lent to another one.
#pragma once

#include "base/status.h"
#include "jet/pages/file_system.h"
#include "jet/recordset.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

namespace jet {

class CommitNotes;
class Database;

class Connection {
public:
    // Days since 1899-12-30, local time; what Now() in SQL answers.
    using Clock = std::function<double()>;

    // Requires: `files` outlives the connection. `clock` empty: the system's.
    explicit Connection(FileSystem& files, Clock clock = {});
    // An open connection to a database that the caller has opened (or made in memory).
    explicit Connection(std::unique_ptr<Database> database, Clock clock = {});
    ~Connection();  // closes
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Who keeps the notes of changed rows (jet/tables/change_note.h); nullptr: nobody, and nothing
    // is recorded. Borrowed; outlives the connection. Requires: the connection is closed.
    void UseNotes(CommitNotes* notes);

    // "Provider=...;Data Source=path[;Mode=Read]"; the provider is not looked at. User, password
    // and options are accepted as the callers give them (empty, empty, -1). A file that cannot be
    // written is opened for reading. On failure the connection stays closed.
    base::Status Open(std::u16string_view connection_string, std::u16string_view user = {},
                      std::u16string_view password = {}, int options = -1);
    bool is_open() const;
    // Makes everything durable. A second Close does nothing.
    base::Status Close();

    // Runs one statement. A SELECT gives an open forward-only recordset; any other statement a
    // closed one. `records_affected` (may be null) receives the number of rows an action query
    // touched.
    base::Result<Recordset> Execute(std::u16string_view sql,
                                    std::int64_t* records_affected = nullptr);

    // Called now and then in a statement that changes the rows of one table, with those that are
    // done and all of them. Empty: nobody. It must not use the connection.
    using RowsWatch = std::function<void(std::int64_t done, std::int64_t total)>;
    void WatchRows(RowsWatch watch);

    // Runs `change` in one transaction: all of what it does to the database or, when it fails,
    // nothing, and its Status. It must not run statements of this connection.
    base::Status Change(const std::function<base::Status(Database&)>& change);

    // Makes everything done so far durable and visible to other programs that read the file.
    base::Status Flush();

    // nullptr when closed. Borrowed.
    Database* database();

private:
    friend class LentConnection;
    friend class NamedChange;
    friend class Recordset;
    class Impl;
    std::unique_ptr<Impl> impl_;
};

// As long as it lives, the connection belongs to the thread that has taken it, and its owner waits:
// statements of other threads are refused (kBusy). Requires: no recordset is open, nor is it lent
// already.
class LentConnection {
public:
    explicit LentConnection(Connection& connection);  // in the thread of the owner
    ~LentConnection();                                // there, too
    LentConnection(const LentConnection&) = delete;
    LentConnection& operator=(const LentConnection&) = delete;
    // In the other thread, before it uses the connection.
    void Take();

private:
    Connection& connection_;
};

// As long as it lives, whatever changes rows through the connection belongs to one change of this
// name, in the notes of changed rows. Inside of another one it does nothing: the outermost names
// the change.
class NamedChange {
public:
    // `undoes`: the id of the change that this one takes back; 0: none. The connection outlives the
    // object.
    NamedChange(Connection& connection, std::u16string name, std::uint64_t undoes = 0);
    ~NamedChange();
    NamedChange(const NamedChange&) = delete;
    NamedChange& operator=(const NamedChange&) = delete;

private:
    Connection& connection_;
};

}  // namespace jet
