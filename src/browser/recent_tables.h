// The tables that were played last.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>

#include <vector>

namespace browser {

inline constexpr int kMaxRecentTables = 10;

struct RecentTable {
    QString id;
    QString display_name;
    bool operator==(const RecentTable&) const = default;
};

// The last one first; at most kMaxRecentTables.
base::Result<std::vector<RecentTable>> RecentTables(jet::Connection& connection);

}  // namespace browser
