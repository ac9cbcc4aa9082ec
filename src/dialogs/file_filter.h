// The file filter texts of the program, "Pictures (*.bmp;*.jpg)|*.bmp;*.jpg", in the form of Qt's
// file dialog.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace dialogs {

// One entry per pair of description and patterns: "Pictures (*.bmp *.jpg)". A description without
// patterns is left out. Programs of systems other than Windows have no ".exe" at their end, so a
// filter that shows executables only is followed by "All files (*)".
QStringList QtNameFilters(const QString& filter);

}  // namespace dialogs
