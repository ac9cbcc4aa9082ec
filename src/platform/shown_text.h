// Shown: the translation of a text that MARKED_TEXT has marked for the class `Texts`.
#pragma once

#include <QtCore/QString>

namespace platform {

template <typename Texts>
QString Shown(QStringView marked) {
    return Texts::tr(marked.toUtf8().constData());
}

}  // namespace platform
