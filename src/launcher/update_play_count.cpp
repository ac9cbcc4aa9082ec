#include "launcher/update_play_count.h"

#include "base/marked_text.h"

#include <QtCore/QString>

namespace launcher {

base::Status UpdatePlayCount(jet::Connection& connection, qint64 id) {
    const jet::NamedChange named(connection, MARKED_TEXT("HistoryTexts", "Play"));
    const QString statement =
        QStringLiteral("UPDATE Tables SET Tables.TimesPlayed = [Tables]![TimesPlayed]+1, "
                       "Tables.LastPlayed = Format(Now(),'mm/dd/yyyy hh:nn:ss') "
                       "WHERE Tables.ID = ") +
        QString::number(id);
    return connection.Execute(statement.toStdU16String()).status();
}

}  // namespace launcher
