// Toggle Favorites: the favourite flag of the table that is selected in the tree.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>

namespace browser {

// What the command needs of the window: its tree, its detail panel, its filter.
class FavouritesHost {
public:
    virtual ~FavouritesHost() = default;
    virtual bool TreeIsEmpty() const = 0;
    // Of the selected node.
    virtual QString SelectedTag() const = 0;
    virtual QString SelectedText() const = 0;
    // The state of chkFavorite.
    virtual bool FavoriteChecked() const = 0;
    // Gives the selected node an icon of the list by its key.
    virtual void SetSelectedNodeIcon(const QString& key) = 0;
    virtual void ShowTableDetails(const QString& file_name) = 0;
    // The shown text of cboFilter.
    virtual QString FilterText() const = 0;
    // Chooses the item "All" of cboFilter, with everything that such a choice does.
    virtual void SelectFilterAll() = 0;
};

// Flips the flag of every row that has the selected node's text as its DisplayName, gives the node
// the favourite icon (in both directions), reloads the details and leaves the filter "Favorites".
// Nothing happens on an empty tree or on a detail line. On failure nothing has changed; the
// engine's error is returned.
base::Status ToggleFavorites(jet::Connection& connection, FavouritesHost& host);

}  // namespace browser
