// The items of the filter and order boxes, in their order.
#pragma once

#include "catalogue/selection.h"

#include <QtCore/QStringView>

#include <array>

namespace browser {

struct FilterKind {
    QStringView icon_key;
    QStringView text;
    QStringView key;
};

inline constexpr std::array<FilterKind, 10> kFilterKinds = {{
    {u"pinball", u"All", catalogue::kFilterAll},
    {u"mame", u"VPinMAME", catalogue::kFilterPinMame},
    {u"favorite", u"Favorites", catalogue::kFilterFavorites},
    {u"vp", u"VP Only", catalogue::kFilterVpOnly},
    {u"author", u"Author", catalogue::kFilterAuthor},
    {u"company", u"Company", catalogue::kFilterCompany},
    {u"year", u"Year", catalogue::kFilterYear},
    {u"filedate", u"File Date", catalogue::kFilterFileDate},
    {u"number", u"Times Played", catalogue::kFilterTimesPlayed},
    {u"filedate", u"Date Added", catalogue::kFilterDateAdded},
}};

// The operator button shows these in turn, beginning with the first.
inline constexpr std::array<QStringView, 4> OperatorSymbols = {{u">", u"<", u"<>", u"="}};

}  // namespace browser
