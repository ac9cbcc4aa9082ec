// Object names of widgets, by which style sheets and tests find them.
#pragma once

#include <QtCore/QLatin1String>
#include <QtCore/QString>

namespace widgets {

// The name of an element of a control array: "txtDet_3".
inline QString ElementName(const char* array, int index) {
    return QLatin1String(array) + QLatin1Char('_') + QString::number(index);
}

// Gives `widget` its name and returns it.
template <typename Widget>
Widget* Named(Widget* widget, const char* name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

}  // namespace widgets
