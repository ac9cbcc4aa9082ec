#include "browser/favourites.h"

#include "catalogue/pin_subs.h"

namespace browser {
namespace {

QString ToggleStatement(bool is_favorite, const QString& display_name) {
    return (is_favorite
                ? QStringLiteral("Update tables set favorite = false where displayname= '")
                : QStringLiteral("Update tables set favorite = true where displayname= '")) +
           catalogue::QuoteSql(display_name) + QStringLiteral("'");
}

}  // namespace

base::Status ToggleFavorites(jet::Connection& connection, FavouritesHost& host) {
    if (host.TreeIsEmpty()) return {};
    const QString tag = host.SelectedTag();
    if (tag == QStringLiteral("X")) return {};
    const QString sql = ToggleStatement(host.FavoriteChecked(), host.SelectedText());
    const auto done = connection.Execute(sql.toStdU16String());
    if (!done.ok()) return done.status();
    host.SetSelectedNodeIcon(QStringLiteral("favorite"));
    host.ShowTableDetails(tag);
    if (host.FilterText() == QStringLiteral("Favorites")) host.SelectFilterAll();
    return {};
}

}  // namespace browser
