// The texts of this room that users read: TableinfoTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace tableinfo {

struct TableinfoTexts {
    Q_DECLARE_TR_FUNCTIONS(TableinfoTexts)
};

}  // namespace tableinfo
