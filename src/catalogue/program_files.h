// Names of the program's files in the application folder.
#pragma once

#include <QtCore/QStringView>

namespace catalogue {

inline constexpr QStringView kCatalogueFile = u"pinball.mdb";
inline constexpr QStringView kBackupFile = u"pinball.BU";
inline constexpr QStringView kPlaySound = u"Pinball.wav";  // while a table is being loaded
inline constexpr QStringView kClickSound = u"slingshot.wav";
inline constexpr QStringView kHelpFile = u"tavolo.chm";

// Written by the capture window, deleted when the main window closes.
inline constexpr QStringView kTemporaryJpeg = u"temp.jpg";
inline constexpr QStringView kTemporaryBitmap = u"temp.bmp";

}  // namespace catalogue
