// The texts of this room that users read: ExchangeTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace exchange {

struct ExchangeTexts {
    Q_DECLARE_TR_FUNCTIONS(ExchangeTexts)
};

}  // namespace exchange
