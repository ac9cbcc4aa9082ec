// UseLanguage: the texts of the program and of Qt in the user's language. US English is what the
// code itself has; dates and numbers are US English in every language.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace app {

// Where the program has its languages: tavolo_<language>.qm, compiled in.
inline constexpr QStringView kLanguageFolder = u":/i18n";

// Installs the first of `wanted` that is in `folder` for the rest of the program's life, and
// returns its name there: "de", "pt_BR". `wanted` is in order of preference, as
// QLocale::uiLanguages() has it: "pt-BR", "pt", "en-US". Empty: none of them is there, or English
// comes before; nothing is changed then. Requires: an application, of which no window is made yet.
QString UseLanguage(const QStringList& wanted, const QString& folder = kLanguageFolder.toString());

}  // namespace app
