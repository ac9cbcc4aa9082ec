// The texts of this room that users read: WidgetsTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace widgets {

struct WidgetsTexts {
    Q_DECLARE_TR_FUNCTIONS(WidgetsTexts)
};

}  // namespace widgets
