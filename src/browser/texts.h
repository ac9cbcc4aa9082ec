// The texts of this room that users read: BrowserTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace browser {

struct BrowserTexts {
    Q_DECLARE_TR_FUNCTIONS(BrowserTexts)
};

}  // namespace browser
