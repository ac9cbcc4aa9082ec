// What a user may type where a date or a number is wanted: what the database would read as one.
#pragma once

#include "base/marked_text.h"

#include <QtCore/QString>

namespace catalogue {

// The message about a text that is not a date; a marked text.
inline constexpr QStringView kInvalidDate =
    MARKED_TEXT("CatalogueTexts", "Please enter a valid date");

bool IsDate(const QString& text);
bool IsNumeric(const QString& text);

}  // namespace catalogue
