// The colours of texts and their grounds. Contrast is measured as the Web Content Accessibility
// Guidelines 2.1 define it ("contrast ratio" of two "relative luminances"), from 1 to 21.
#pragma once

#include <QtGui/QColor>
#include <QtGui/QPalette>

namespace widgets {

// What those guidelines ask of a text of ordinary size (success criterion 1.4.3).
inline constexpr double kLeastContrast = 4.5;

// Of opaque colours.
double ContrastOf(const QColor& a, const QColor& b);
// `text` as it is seen on `ground`.
QColor Blended(const QColor& text, const QColor& ground);
// `colour`, moved away from `other` as far as it must be for kLeastContrast; unchanged when there
// is nothing to do.
QColor MovedAwayFrom(const QColor& colour, const QColor& other);

bool IsDark(const QPalette& palette);
// Changes what the desktop gives so that each text that is enabled has kLeastContrast on its
// ground.
void MakeReadable(QPalette& palette);
// For a desktop that wants dark windows and gives no colours for them.
QPalette DarkPalette();

}  // namespace widgets
