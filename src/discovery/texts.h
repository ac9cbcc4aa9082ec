// The texts of this room that users read: DiscoveryTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace discovery {

struct DiscoveryTexts {
    Q_DECLARE_TR_FUNCTIONS(DiscoveryTexts)
};

}  // namespace discovery
