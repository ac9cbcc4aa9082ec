// What the about box says.
#pragma once

#include <QtCore/QString>

namespace dialogs {

QString WebSiteAddress();
QString CreditsText();

}  // namespace dialogs
