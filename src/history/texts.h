// The texts of this room that users read: HistoryTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace history {

struct HistoryTexts {
    Q_DECLARE_TR_FUNCTIONS(HistoryTexts)
};

}  // namespace history
