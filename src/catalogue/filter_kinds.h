// The items of the filter and order boxes, in their order.
#pragma once

#include "base/marked_text.h"
#include "catalogue/selection.h"

#include <QtCore/QStringView>

#include <array>

namespace catalogue {

struct FilterKind {
    QStringView icon_key;
    QStringView text;  // a marked text
    QStringView key;
};

inline constexpr std::array<FilterKind, 10> kFilterKinds = {{
    {u"pinball", MARKED_TEXT("CatalogueTexts", "All"), kFilterAll},
    {u"mame", MARKED_TEXT("CatalogueTexts", "VPinMAME"), kFilterPinMame},
    {u"favorite", MARKED_TEXT("CatalogueTexts", "Favorites"), kFilterFavorites},
    {u"vp", MARKED_TEXT("CatalogueTexts", "VP Only"), kFilterVpOnly},
    {u"author", MARKED_TEXT("CatalogueTexts", "Author"), kFilterAuthor},
    {u"company", MARKED_TEXT("CatalogueTexts", "Company"), kFilterCompany},
    {u"year", MARKED_TEXT("CatalogueTexts", "Year"), kFilterYear},
    {u"filedate", MARKED_TEXT("CatalogueTexts", "File Date"), kFilterFileDate},
    {u"number", MARKED_TEXT("CatalogueTexts", "Times Played"), kFilterTimesPlayed},
    {u"filedate", MARKED_TEXT("CatalogueTexts", "Date Added"), kFilterDateAdded},
}};

// The operator button shows these in turn, beginning with the first.
inline constexpr std::array<QStringView, 4> OperatorSymbols = {{u">", u"<", u"<>", u"="}};

}  // namespace catalogue
