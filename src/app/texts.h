// The texts of this room that users read: AppTexts::tr("...") gives them in the user's language.
#pragma once

#include <QtCore/QCoreApplication>

namespace app {

struct AppTexts {
    Q_DECLARE_TR_FUNCTIONS(AppTexts)
};

}  // namespace app
