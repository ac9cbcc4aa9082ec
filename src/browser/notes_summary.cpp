#include "browser/notes_summary.h"

#include "catalogue/field_text.h"
#include "catalogue/quoting.h"

namespace browser {
namespace {

// The first field of the first row; empty without a row.
base::Result<QString> FirstValue(jet::Connection& connection, const QString& sql) {
    ASSIGN_OR_RETURN(jet::Recordset rows, connection.Execute(sql.toStdU16String()));
    if (rows.Eof()) return QString();
    ASSIGN_OR_RETURN(const jet::Value value, rows.Fields(std::size_t{0}));
    return catalogue::FieldText(value);
}

}  // namespace

QString SummariseNotes(const QString& notes) {
    qsizetype line_end = -1;
    for (int line = 1; line <= 3; ++line) {
        line_end = notes.indexOf(QLatin1Char('\r'), line_end + 1);
        if (line_end < 0) return notes;
    }
    return notes.left(line_end) + QStringLiteral("...");
}

base::Result<QString> NotesSummary(jet::Connection& connection, const QString& file_name) {
    ASSIGN_OR_RETURN(
        const QString notes,
        FirstValue(connection, QStringLiteral("select notes from tables where Filename = '") +
                                   catalogue::QuoteSqlExpr(file_name) + QStringLiteral("'")));
    return SummariseNotes(notes);
}

base::Result<QString> LookupColumn(jet::Connection& connection, const QString& column,
                                   const QString& display_name) {
    return FirstValue(connection, QStringLiteral("select ") + column +
                                      QStringLiteral(" from tables where DisplayName = '") +
                                      catalogue::QuoteSqlExpr(display_name) + QStringLiteral("'"));
}

}  // namespace browser
