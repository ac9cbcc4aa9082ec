#include "catalogue/quoting.h"

namespace catalogue {

QString QuoteSql(const QString& value) {
    return QString(value).replace(QLatin1Char('\''), QLatin1String("''"));
}

QString QuoteSqlExpr(const QString& value) {
    QString quoted = value;
    quoted.replace(QLatin1Char('\''), QLatin1String("' & chr(39) & '"));
    quoted.replace(QLatin1Char('|'), QLatin1String("' & chr(124) & '"));
    return quoted;
}

}  // namespace catalogue
