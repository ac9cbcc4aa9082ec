// What a user may type where a date or a number is wanted: what the database would read as one.
#pragma once

#include <QtCore/QString>

namespace catalogue {

// The message about a text that is not a date.
inline constexpr QStringView kInvalidDate = u"Please enter a valid date";

bool IsDate(const QString& text);
bool IsNumeric(const QString& text);

}  // namespace catalogue
