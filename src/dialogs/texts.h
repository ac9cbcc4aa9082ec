// The texts of this room that users read: DialogsTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace dialogs {

struct DialogsTexts {
    Q_DECLARE_TR_FUNCTIONS(DialogsTexts)
};

}  // namespace dialogs
