// The texts of this room that users read: MaintenanceTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace maintenance {

struct MaintenanceTexts {
    Q_DECLARE_TR_FUNCTIONS(MaintenanceTexts)
};

}  // namespace maintenance
