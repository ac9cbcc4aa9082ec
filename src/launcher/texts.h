// The texts of this room that users read: LauncherTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace launcher {

struct LauncherTexts {
    Q_DECLARE_TR_FUNCTIONS(LauncherTexts)
};

}  // namespace launcher
