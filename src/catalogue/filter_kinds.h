// The items of the filter and order boxes, in their order.
#pragma once

#include "catalogue/selection.h"

#include <QtCore/QStringView>

#include <array>

namespace catalogue {

struct FilterKind {
    QStringView icon_key;
    QStringView text;
    QStringView key;
};

inline constexpr std::array<FilterKind, 10> kFilterKinds = {{
    {u"pinball", u"All", kFilterAll},
    {u"mame", u"VPinMAME", kFilterPinMame},
    {u"favorite", u"Favorites", kFilterFavorites},
    {u"vp", u"VP Only", kFilterVpOnly},
    {u"author", u"Author", kFilterAuthor},
    {u"company", u"Company", kFilterCompany},
    {u"year", u"Year", kFilterYear},
    {u"filedate", u"File Date", kFilterFileDate},
    {u"number", u"Times Played", kFilterTimesPlayed},
    {u"filedate", u"Date Added", kFilterDateAdded},
}};

// The operator button shows these in turn, beginning with the first.
inline constexpr std::array<QStringView, 4> OperatorSymbols = {{u">", u"<", u"<>", u"="}};

}  // namespace catalogue
