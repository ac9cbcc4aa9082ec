// TreeQuery: from what the user asks to see to the rows that the tree shows.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>

#include <cstdint>
#include <optional>

namespace browser {

// The controls above the tree, as they stand.
struct Selection {
    QString filter_key;
    QString filter_value;      // as typed
    QString comparison;        // the operator button's caption
    bool takes_value = false;  // the value and the operator are shown
    QString order_caption;
    QString direction;
    bool operator==(const Selection&) const = default;
};

// What is wrong with the value, in the program's words; nullopt: nothing, or no value is asked for.
std::optional<QString> WrongValue(const Selection& selection);

// The statement that gives the rows of the selection in its order; nullopt: nothing matches.
base::Result<std::optional<QString>> SelectionSql(jet::Connection& connection,
                                                  const Selection& selection);

// The rows of the selection in its order, standing on the first; nullopt: nothing matches.
base::Result<std::optional<jet::Recordset>> OpenSelection(jet::Connection& connection,
                                                          const Selection& selection);

// "12 Tables in list.  "
QString CountText(std::int64_t tables);

// "Author = Some One", or the filter's text alone when it takes no value.
QString RootText(const QString& filter_text, const Selection& selection);

}  // namespace browser
