// The items of the filter and order boxes, in their order.
#pragma once

#include <QtCore/QStringView>

#include <array>

namespace browser {

struct FilterKind {
    QStringView icon_key;
    QStringView text;
    QStringView key;
};

inline constexpr std::array<FilterKind, 10> kFilterKinds = {{
    {u"pinball", u"All", u"All"},
    {u"mame", u"VPinMAME", u"PinMame"},
    {u"favorite", u"Favorites", u"Favorites"},
    {u"vp", u"VP Only", u"VP Only"},
    {u"author", u"Author", u"Author"},
    {u"company", u"Company", u"Company"},
    {u"year", u"Year", u"Year"},
    {u"filedate", u"File Date", u"FileDate"},
    {u"number", u"Times Played", u"TimesPlayed"},
    {u"filedate", u"Date Added", u"DateAdded"},
}};

// The operator button shows these in turn, beginning with the first.
inline constexpr std::array<QStringView, 4> OperatorSymbols = {{u">", u"<", u"<>", u"="}};

}  // namespace browser
