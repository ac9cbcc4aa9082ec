// Texts in SQL statements. Neither function adds the enclosing quotes.
#pragma once

#include <QtCore/QString>

namespace catalogue {

// Every "'" doubled. For values that INSERT and UPDATE write.
QString QuoteSql(const QString& value);
// Every "'" becomes "' & chr(39) & '", then every "|" becomes "' & chr(124) & '". For values
// compared in WHERE.
QString QuoteSqlExpr(const QString& value);

}  // namespace catalogue
