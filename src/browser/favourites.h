// Toggle Favorites: inverts the favourite flag of the selected table.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>

namespace browser {

// The state of the main window when the command is chosen.
struct ShownSelection {
    bool tree_is_empty = false;
    QString tag;                    // of the selected node
    QString text;                   // of the selected node
    bool favorite_checked = false;  // chkFavorite
    QString filter_key;             // of cboFilter
};

// What the main window has to do afterwards.
struct FavoritesToggle {
    bool done = false;           // give the node the icon "favorite" and show its details again
    bool leaves_filter = false;  // then select the item "All" of cboFilter
    bool operator==(const FavoritesToggle&) const = default;
};

// Inverts the flag of every row whose DisplayName is the selected node's text. Does nothing for an
// empty tree or a detail line. Errors are the engine's; on failure no row has changed.
base::Result<FavoritesToggle> ToggleFavorites(jet::Connection& connection,
                                              const ShownSelection& shown);

}  // namespace browser
