// Looks at every widget of a window that is shown. Each function answers what is wrong, a line for
// each; an empty list: nothing.
#pragma once

#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

namespace test_support {

// Controls that take the focus and have no name or no role for assistive technology, or whose label
// does not know them.
QStringList NamelessControls(QWidget& window);
// Texts that do not fit where they stand, and have no tool tip that says them; controls of which a
// part is outside of the window.
QStringList CutTexts(QWidget& window);
// Enabled texts with less contrast to their ground than widgets::kLeastContrast.
QStringList FaintTexts(QWidget& window);
// Icons that are not of the program's family.
QStringList ForeignIcons(QWidget& window);
// Buttons with a text and an icon in a row with one that has only a text.
QStringList TornRows(QWidget& window);
// Layouts whose margins and spacings are no multiples of ProgramStyle::kGrid.
QStringList OffTheGrid(QWidget& window);
// Controls that Tab does not reach, or that it reaches twice before it is where it began.
QStringList LostToTheTabKey(QWidget& window);

}  // namespace test_support
