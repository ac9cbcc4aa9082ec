// Where a window stands and how large it is, so that all of it can be seen. Units: device
// independent pixels; rectangles are those of whole screens without panels and docks.
#pragma once

#include <QtCore/QList>
#include <QtCore/QRect>

class QWidget;

namespace widgets {

// `wanted` reduced so that a window of that inner size fits into `screen` with its frame.
QSize FittedTo(QSize wanted, const QRect& screen);
// `wanted` if its title bar can be seen and taken hold of on one of `screens`; otherwise moved
// into the nearest of them. Requires: there is a screen.
QPoint OnAScreen(const QRect& wanted, const QList<QRect>& screens);

// The screens of this desktop.
QList<QRect> Screens();
// Reduces a window that is not shown yet to what its screen holds.
void FitToScreen(QWidget& window);

}  // namespace widgets
