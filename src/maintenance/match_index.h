// MatchIndex: which row a key means, by its CRC or its display name, for thousands of keys in a
// row. The catalogue has no index on CRC, so each key would cost a walk through all rows. It
// answers exactly as the database would: the same comparison of texts, and only for keys that are
// plain texts in SQL. Requires: while it is used, nobody changes CRC, DisplayName or DateAdded, and
// no row comes or goes.
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
    // statements. An index that could not be built can answer nothing.
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
