// What assistive technology is told of widgets that show pictures.
#pragma once

#include <QtCore/QString>
#include <QtWidgets/QWidget>

namespace widgets {

// `widget` shows a picture, called `name`. To press it is to press Enter in it. Call it before the
// widget is shown.
void DescribeAsPicture(QWidget& widget, const QString& name);

}  // namespace widgets
