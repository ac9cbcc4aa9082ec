// The icons of the program: one family, drawn from its own SVG files at the size that is asked for,
// on every desktop alike. What such a file draws in "currentColor" has the text colour of the
// application's palette at the time of painting, so that it follows a change between light and
// dark.
#pragma once

#include <QtCore/QString>
#include <QtGui/QIcon>

namespace widgets {

// Begins the QIcon::name() of every icon that SvgIcon makes; the key follows.
inline constexpr QStringView kSvgIconPrefix = u"tavolo-";

// The icon of assets/icons/`key`.svg; a null icon if there is none.
QIcon SvgIcon(const QString& key);

// That of the program's windows.
QIcon ProgramIcon();

}  // namespace widgets
