#include "browser/favourites.h"

#include "base/marked_text.h"
#include "browser/table_tree_model.h"
#include "catalogue/quoting.h"
#include "catalogue/selection.h"

namespace browser {
namespace {

QString ToggleStatement(bool is_favorite, const QString& display_name) {
    return (is_favorite
                ? QStringLiteral("Update tables set favorite = false where displayname= '")
                : QStringLiteral("Update tables set favorite = true where displayname= '")) +
           catalogue::QuoteSql(display_name) + QStringLiteral("'");
}

}  // namespace

base::Result<FavoritesToggle> ToggleFavorites(jet::Connection& connection,
                                              const ShownSelection& shown) {
    if (shown.tree_is_empty || shown.tag == kDetailTag) return FavoritesToggle{};
    const QString sql = ToggleStatement(shown.favorite_checked, shown.text);
    const jet::NamedChange named(connection, MARKED_TEXT("HistoryTexts", "Toggle Favorites"));
    const auto updated = connection.Execute(sql.toStdU16String());
    if (!updated.ok()) return updated.status();
    return FavoritesToggle{.done = true,
                           .leaves_filter = shown.filter_key == catalogue::kFilterFavorites};
}

}  // namespace browser
