// Selection: what a user asks to see of the catalogue, and its rows.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>

#include <optional>

namespace catalogue {

// The state of the controls above the tree, or what a command line says in their place.
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

// The statement for the rows of the selection in its order. Requires: its filter is known, its
// value is right.
QString SelectionStatement(const Selection& selection);
// The same; nullopt if nothing matches.
base::Result<std::optional<QString>> SelectionSql(jet::Connection& connection,
                                                  const Selection& selection);

// The rows of the selection in its order, positioned on the first; nullopt if nothing matches.
base::Result<std::optional<jet::Recordset>> OpenSelection(jet::Connection& connection,
                                                          const Selection& selection);

}  // namespace catalogue
