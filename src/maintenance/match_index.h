// MatchIndex: finds rows by CRC or display name, for thousands of keys one after the other. The
// catalogue has no index on CRC, so the database would scan all rows for each key. Answers are
// those of the database: texts are compared by the same rules, and CanAnswer is false for keys that
// are not plain texts in SQL. Requires: while it is in use CRC, DisplayName and DateAdded do not
// change, and no row is added or deleted.
#pragma once

#include "jet/connection.h"

#include <QtCore/QString>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace maintenance {

class MatchIndex {
public:
    // Reads the rows that the import may touch. `date_condition`: empty, or " AND ..." as in the
    // statements. When reading fails, CanAnswer is false for every key.
    MatchIndex(jet::Connection& connection, const QString& date_condition);

    // False: ask the database itself.
    bool CanAnswer(const QString& key) const;

    // The rows with that value. `count` 0: none; `id`: of the row, when there is one only and it
    // has an ID.
    struct Rows {
        std::int64_t count = 0;
        std::optional<std::int64_t> id;
    };
    // Require: CanAnswer(key).
    Rows ByChecksum(const QString& key) const { return Find(by_checksum_, key); }
    Rows ByDisplayName(const QString& key) const { return Find(by_name_, key); }

private:
    using Map = std::unordered_map<std::string, Rows>;
    static Rows Find(const Map& map, const QString& key);
    bool ReadRows(jet::Connection& connection, const QString& date_condition);
    static bool Add(Map& map, const jet::Value& value, std::optional<std::int64_t> id);

    Map by_checksum_;
    Map by_name_;
    bool complete_ = false;
};

}  // namespace maintenance
