// Selection: which tables the user asks to see, and the SQL that selects them.
#pragma once

#include "base/marked_text.h"
#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>
#include <optional>

namespace catalogue {

// The filters by their keys. The first four select by themselves, the others by a value of the
// column that they are named after.
inline constexpr QStringView kFilterAll = u"All";
inline constexpr QStringView kFilterPinMame = u"PinMame";
inline constexpr QStringView kFilterFavorites = u"Favorites";
inline constexpr QStringView kFilterVpOnly = u"VP Only";
inline constexpr QStringView kFilterAuthor = u"Author";
inline constexpr QStringView kFilterCompany = u"Company";
inline constexpr QStringView kFilterYear = u"Year";
inline constexpr QStringView kFilterFileDate = u"FileDate";
inline constexpr QStringView kFilterTimesPlayed = u"TimesPlayed";
inline constexpr QStringView kFilterDateAdded = u"DateAdded";

// Whether the filter needs a value.
bool IsValueFilter(const QString& filter_key);

// The complete SELECT when at least one row matches, otherwise "0". `value` is already quoted by
// QuoteSqlExpr. A failing query is an error.
base::Result<QString> ComposeFilterQuery(jet::Connection& connection, const QString& filter_key,
                                         const QString& value, const QString& comparison);
// The same text without running it. Empty for an unknown key.
QString FilterQueryText(const QString& filter_key, const QString& value, const QString& comparison);

// What the list can be sorted by, in the order of the order bar.
struct OrderColumn {
    QStringView caption;  // a marked text
    QStringView column;
};

inline constexpr std::array<OrderColumn, 6> kOrderColumns = {{
    {MARKED_TEXT("CatalogueTexts", "Table Name"), u"DisplayName"},
    {MARKED_TEXT("CatalogueTexts", "Year"), u"Year"},
    {MARKED_TEXT("CatalogueTexts", "Author"), u"Author"},
    {MARKED_TEXT("CatalogueTexts", "Company"), u"Company"},
    {MARKED_TEXT("CatalogueTexts", "Date Added"), u"DateAdded"},
    {MARKED_TEXT("CatalogueTexts", "Times Played"), u"TimesPlayed"},
}};

// " Order By " + column + " " + direction; the column is empty for an unknown caption.
QString ComposeOrderClause(const QString& order_caption, const QString& direction);

// The query that lists the values of a value filter, and its values in the database's order; Null
// as empty text.
QString FilterValuesQuery(const QString& filter_key);
base::Result<QStringList> FilterValues(jet::Connection& connection, const QString& filter_key);

// The message to the user about an invalid value of a value filter; nullopt: it is valid.
std::optional<QString> InvalidFilterValue(const QString& filter_key, const QString& value);

}  // namespace catalogue
