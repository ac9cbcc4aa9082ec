// Toggle Favorites: the favourite flag of the table that is selected in the tree.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>

namespace browser {

// What the main window shows when the command is chosen.
struct ShownSelection {
    bool tree_is_empty = false;
    QString tag;                    // of the selected node
    QString text;                   // of the selected node
    bool favorite_checked = false;  // chkFavorite
    QString filter_text;            // of cboFilter
};

// What the main window shows afterwards.
struct FavoritesToggle {
    bool done = false;           // the node gets the icon "favorite", its details are shown again
    bool leaves_filter = false;  // then the item "All" of cboFilter is chosen
    bool operator==(const FavoritesToggle&) const = default;
};

// Flips the flag of every row that has the selected node's text as its DisplayName. Does nothing on
// an empty tree or a detail line. A failure is the engine's; then no row has changed.
base::Result<FavoritesToggle> ToggleFavorites(jet::Connection& connection,
                                              const ShownSelection& shown);

}  // namespace browser
