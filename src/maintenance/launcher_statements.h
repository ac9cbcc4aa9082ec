// The SQL of the launcher import.
// The key stands in the statements as the line has it, without quoting: a line whose key holds a
// quote is refused by the database and passed over.
#pragma once

#include "maintenance/launcher_record.h"

#include <QtCore/QString>

#include <cstdint>
#include <optional>

namespace maintenance {

enum class MatchColumn { kChecksum, kDisplayName };

// " AND [Tables]![DateAdded] > #...#".
QString DateCondition(const QString& date);

// The rows that `key` means by `column`. `date_condition`: empty, or from DateCondition.
QString MatchQuery(MatchColumn column, const QString& key, const QString& date_condition);

// Writes the record into those rows. `only_row`: the ID of the one row among them, so that the
// database finds it at once.
QString UpdateStatement(const LauncherRecord& record, MatchColumn column,
                        const QString& date_condition,
                        std::optional<std::int64_t> only_row = std::nullopt);

}  // namespace maintenance
