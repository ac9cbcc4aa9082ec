// The texts of this room that users read: SnapshotsTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace snapshots {

struct SnapshotsTexts {
    Q_DECLARE_TR_FUNCTIONS(SnapshotsTexts)
};

}  // namespace snapshots
