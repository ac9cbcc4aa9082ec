// The SQL of the launcher import. Keys are not quoted: the database refuses the statement for a key
// that holds an apostrophe, and the line is skipped.
#pragma once

#include "maintenance/launcher_record.h"

#include <QtCore/QString>

#include <cstdint>
#include <optional>

namespace maintenance {

enum class MatchColumn { kChecksum, kDisplayName };

// " AND [Tables]![DateAdded] > #...#".
QString DateCondition(const QString& date);

// Selects the rows whose `column` is `key`. `date_condition`: empty, or from DateCondition.
QString MatchQuery(MatchColumn column, const QString& key, const QString& date_condition);

// Writes the record into those rows. `only_row`: the ID when there is one such row only; with it
// the database uses the primary key.
QString UpdateStatement(const LauncherRecord& record, MatchColumn column,
                        const QString& date_condition,
                        std::optional<std::int64_t> only_row = std::nullopt);

}  // namespace maintenance
