// Texts of the about box.
#pragma once

#include <QtCore/QString>

namespace dialogs {

// The project's web page; empty as long as there is none.
QString WebSiteAddress();
QString CreditsText();

}  // namespace dialogs
