// KnownNames: tells which files the catalogue holds, for a scan that asks for thousands of them.
// The first question goes to the database, as it may be the only one. With the second the names are
// read and held in memory, as an older catalogue has no index on FileName and the database would
// look through all rows for each file. Answers are those of the question "Select
// FileName from Tables where filename = ..." at that moment: texts are compared by the same rules,
// and what changes the catalogue during the scan is seen. What cannot be told from memory is asked.
// A file is known, too, when the path map says that it is the one that a row names.
#pragma once

#include "base/status.h"
#include "catalogue/local_paths.h"
#include "jet/connection.h"

#include <QtCore/QSet>
#include <QtCore/QString>

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>

namespace discovery {

class KnownNames {
public:
    // `connection` is borrowed and outlives the object. Reads nothing yet.
    KnownNames(jet::Connection& connection, const catalogue::LocalPaths& paths)
        : connection_(connection), paths_(paths) {}

    base::Result<bool> Contains(const QString& path);

    // An attempt to store a row: BeginAttempt just before its statement, then what has become of
    // it. Every other change of the database lets the names be read again.
    void BeginAttempt();
    // The row is there, with this FileName.
    void NoteStored(const QString& path);
    // The database has not taken it.
    void NoteRefused();

private:
    base::Result<bool> IsStored(const QString& path);
    bool Read();
    base::Result<bool> AskDatabase(const QString& path);
    base::Result<bool> IsMapped(const QString& path);
    base::Status ReadMapped();
    void InsertMapped(const QString& stored);

    jet::Connection& connection_;
    const catalogue::LocalPaths paths_;
    std::unordered_set<std::string> keys_;
    bool are_held_ = false;  // false: the database compares them in a way of its own
    bool was_asked_ = false;
    std::optional<std::uint64_t> changes_;  // of the database, when the keys were as they are
    std::optional<std::uint64_t> attempt_;  // the same, before the last attempt
    // Where the map says that the stored files are, in one letter case: as the database, it knows a
    // file in any.
    QSet<QString> mapped_;
    std::optional<std::uint64_t> mapped_changes_;
    // With the folders that links in those of the map lead to.
    catalogue::PathMap real_map_;
};

}  // namespace discovery
