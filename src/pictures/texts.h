// The texts of this room that users read: PicturesTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace pictures {

struct PicturesTexts {
    Q_DECLARE_TR_FUNCTIONS(PicturesTexts)
};

}  // namespace pictures
