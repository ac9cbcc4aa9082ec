// Keys of texts: two texts are equal for the database when their keys are equal, so that many texts
// can be looked up in memory without a question for each.
#pragma once

#include <QtCore/QString>

#include <string>
#include <string_view>

namespace catalogue {

// False: the text is longer than what makes a key; only the database can compare it.
bool HasTextKey(std::u16string_view text);
// Requires: HasTextKey(text).
std::string TextKey(std::u16string_view text);

// False for a text that the database may not take as it stands between the quotes of a statement,
// its own quotes being doubled (QuoteSql): it has a vertical bar or a control character.
bool IsPlainInSql(const QString& text);

}  // namespace catalogue
