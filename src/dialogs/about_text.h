// What the about box says.
#pragma once

#include <QtCore/QString>

namespace dialogs {

// The project's own page; empty as long as it has none.
QString WebSiteAddress();
QString CreditsText();

}  // namespace dialogs
