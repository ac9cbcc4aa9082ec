// Converts file filters such as "Pictures (*.bmp;*.jpg)|*.bmp;*.jpg" to those of Qt's file dialog.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace dialogs {

// One entry per pair of description and patterns: "Pictures (*.bmp *.jpg)". A description without
// patterns is left out. If all patterns are for ".exe", "All files (*)" is added: programs of other
// systems than Windows have no extension.
QStringList QtNameFilters(const QString& filter);

}  // namespace dialogs
