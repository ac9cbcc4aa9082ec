// The texts of this room that users read: CatalogueTexts::tr("...") gives them in the user's
// language.
#pragma once

#include <QtCore/QCoreApplication>

namespace catalogue {

struct CatalogueTexts {
    Q_DECLARE_TR_FUNCTIONS(CatalogueTexts)
};

}  // namespace catalogue
