// KnownNames: tells which files the catalogue holds, for a scan that asks for thousands of them.
// The first question goes to the database, as it may be the only one. With the second the names are
// read and held in memory, as an older catalogue has no index on FileName and the database would
// look through all rows for each file. Answers are those of the question "Select
// FileName from Tables where filename = ..." at that moment: texts are compared by the same rules,
// and what changes the catalogue during the scan is seen. What cannot be told from memory is asked.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>

namespace discovery {

class KnownNames {
public:
    // `connection` is borrowed and outlives the object. Reads nothing yet.
    explicit KnownNames(jet::Connection& connection) : connection_(connection) {}

    base::Result<bool> Contains(const QString& path);

    // An attempt to store a row: BeginAttempt just before its statement, then what has become of
    // it. Every other change of the database lets the names be read again.
    void BeginAttempt();
    // The row is there, with this FileName.
    void NoteStored(const QString& path);
    // The database has not taken it.
    void NoteRefused();

private:
    bool Read();
    base::Result<bool> AskDatabase(const QString& path);

    jet::Connection& connection_;
    std::unordered_set<std::string> keys_;
    bool are_held_ = false;  // false: the database compares them in a way of its own
    bool was_asked_ = false;
    std::optional<std::uint64_t> changes_;  // of the database, when the keys were as they are
    std::optional<std::uint64_t> attempt_;  // the same, before the last attempt
};

}  // namespace discovery
