#include "maintenance/launcher_statements.h"

#include "catalogue/quoting.h"

namespace maintenance {

QString DateCondition(const QString& date) {
    return QStringLiteral(" AND [Tables]![DateAdded] > #") + date + u'#';
}

QString MatchQuery(MatchColumn column, const QString& key, const QString& date_condition) {
    const QString name =
        column == MatchColumn::kChecksum ? QStringLiteral("CRC") : QStringLiteral("DisplayName");
    return QStringLiteral("Select * from Tables where (") + name + QStringLiteral(" = '") + key +
           u'\'' + date_condition + u')';
}

QString UpdateStatement(const LauncherRecord& record, MatchColumn column,
                        const QString& date_condition, std::optional<std::int64_t> only_row) {
    using catalogue::QuoteSql;
    const QString name = column == MatchColumn::kChecksum ? QStringLiteral("Tables.CRC")
                                                          : QStringLiteral("Tables.DisplayName");
    QString sql = QStringLiteral("Update TABLES Set tables.Version = '") +
                  QuoteSql(record.version) + QStringLiteral("', tables.Author='") +
                  QuoteSql(record.author) + QStringLiteral("', tables.Year= '") +
                  QuoteSql(record.year) + QStringLiteral("',tables.Company='") +
                  QuoteSql(record.company) + QStringLiteral("', tables.PinMame =") +
                  (record.pin_mame ? QStringLiteral("True") : QStringLiteral("False")) +
                  QStringLiteral(" Where (") + name + QStringLiteral("= '") + record.key + u'\'' +
                  date_condition + u')';
    if (only_row) sql += QStringLiteral(" AND Tables.ID = ") + QString::number(*only_row);
    return sql;
}

}  // namespace maintenance
