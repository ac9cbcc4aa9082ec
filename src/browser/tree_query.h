// The query of the tree: from the selection in the controls to the rows.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>

#include <cstdint>
#include <optional>

namespace browser {

// The state of the controls above the tree.
struct Selection {
    QString filter_key;
    QString filter_value;      // as typed
    QString comparison;        // caption of the operator button: ">", "<", "<>" or "="
    bool takes_value = false;  // the filter compares with the value
    QString order_caption;
    QString direction;
    bool operator==(const Selection&) const = default;
};

// The message for an invalid value; nullopt if the value is valid or the filter takes none.
std::optional<QString> WrongValue(const Selection& selection);

// The statement for the rows of the selection in its order; nullopt if nothing matches.
base::Result<std::optional<QString>> SelectionSql(jet::Connection& connection,
                                                  const Selection& selection);

// The rows of the selection in its order, positioned on the first; nullopt if nothing matches.
base::Result<std::optional<jet::Recordset>> OpenSelection(jet::Connection& connection,
                                                          const Selection& selection);

// The text of the count panel: "12 Tables in list.  ".
QString CountText(std::int64_t tables);

// The text of the tree's root: "Author = Some One", or the filter's text if it takes no value.
QString RootText(const QString& filter_text, const Selection& selection);

}  // namespace browser
