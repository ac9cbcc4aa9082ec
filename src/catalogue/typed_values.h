// What a user may type where a date or a number is wanted: what the database would read as one.
#pragma once

#include <QtCore/QString>

namespace catalogue {

bool IsDate(const QString& text);
bool IsNumeric(const QString& text);

}  // namespace catalogue
