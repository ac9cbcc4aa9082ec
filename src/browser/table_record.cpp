#include "browser/table_record.h"

#include "base/marked_text.h"
#include "catalogue/field_text.h"
#include "catalogue/quoting.h"
#include "jet/connection.h"
#include "jet/errors.h"
#include "jet/tables/database.h"
#include "platform/files.h"

namespace browser {
namespace {

struct FieldColumn {
    DetailField field;
    const char16_t* column;
    bool is_saved;  // with the record, as a user's edit
};

// In the order in which the fields are filled and written.
constexpr FieldColumn kColumns[] = {
    {kId, u"ID", false},
    {kYear, u"Year", true},
    {kDisplayName, u"DisplayName", true},
    {kFileName, u"FileName", true},
    {kAuthor, u"Author", true},
    {kVersion, u"Version", true},
    {kCompany, u"Company", true},
    {kImageFile, u"ImageFile", true},
    {kFlyerFile, u"FlyerFile", true},
    {kNotes, u"Notes", true},
    {kFileDate, u"FileDate", false},
    {kRulesFile, u"RulesFile", true},
    {kRulesText, u"RulesText", false},
};

base::Status OpenById(jet::Connection& connection, const QString& id, jet::Recordset& rows) {
    const QString sql = QStringLiteral("Select * from Tables where ID = ") + id;
    return rows.Open(sql.toStdU16String(), connection, jet::CursorType::kDynamic,
                     jet::LockType::kOptimistic, jet::CursorLocation::kServer);
}

enum class EmptyText { kStaysText, kBecomesNull };

jet::Value FieldValue(const QString& text, EmptyText empty) {
    if (text.isEmpty() && empty == EmptyText::kBecomesNull) return jet::Value::Null();
    return jet::Value::Text(text.toStdU16String());
}

base::Status WriteFields(jet::Recordset& rows, const TableRecord& record, EmptyText empty) {
    for (const auto& [field, column, is_saved] : kColumns)
        if (is_saved)
            RETURN_IF_ERROR(rows.SetField(column, FieldValue(record.fields[field], empty)));
    return {};
}

base::Status WriteChecks(jet::Recordset& rows, const TableRecord& record) {
    RETURN_IF_ERROR(rows.SetField(u"PinMame", jet::Value::Boolean(record.pin_mame)));
    return rows.SetField(u"favorite", jet::Value::Boolean(record.favorite));
}

// Runs `write` and Update; if the database refuses empty texts, once more with Nulls instead of
// them.
template <typename Write>
base::Status WriteRow(jet::Recordset& rows, const Write& write) {
    base::Status done;
    for (const EmptyText empty : {EmptyText::kStaysText, EmptyText::kBecomesNull}) {
        done = write(empty);
        if (done.ok()) done = rows.Update();
        if (done.ok()) return done;
        rows.CancelUpdate();
        // Columns that older programs made may refuse empty texts.
        if (!jet::Is(done, jet::ErrorNumber::kZeroLength)) return done;
    }
    return done;
}

base::Result<QString> TextOf(jet::Recordset& rows, std::u16string_view column) {
    ASSIGN_OR_RETURN(const jet::Value value, rows.Fields(column));
    return catalogue::FieldText(value);
}

base::Result<bool> IsTrue(jet::Recordset& rows, std::u16string_view column) {
    ASSIGN_OR_RETURN(const jet::Value value, rows.Fields(column));
    return jet::ToBool(value);
}

}  // namespace

base::Status LoadTableRecord(jet::Connection& connection, const QString& file_name,
                             TableRecord& record) {
    const QString sql = QStringLiteral("Select * from tables where FileName = '") +
                        catalogue::QuoteSqlExpr(file_name) + QStringLiteral("'");
    jet::Recordset rows;
    RETURN_IF_ERROR(rows.Open(sql.toStdU16String(), connection));
    for (const auto& [field, column, is_saved] : kColumns) {
        ASSIGN_OR_RETURN(record.fields[field], TextOf(rows, column));
    }
    ASSIGN_OR_RETURN(record.pin_mame, IsTrue(rows, u"Pinmame"));
    ASSIGN_OR_RETURN(record.favorite, IsTrue(rows, u"favorite"));
    record.checks_read = true;
    ASSIGN_OR_RETURN(record.times_played, TextOf(rows, u"TimesPlayed"));
    ASSIGN_OR_RETURN(record.last_played, TextOf(rows, u"LastPlayed"));
    return {};
}

std::optional<DetailField> FirstMissingFile(const TableRecord& record,
                                            const catalogue::LocalPaths& paths) {
    for (const DetailField field : {kImageFile, kFlyerFile, kRulesFile}) {
        const QString& path = record.fields[field];
        if (!path.trimmed().isEmpty() && !platform::FileExists(paths.Of(path))) return field;
    }
    return std::nullopt;
}

FieldLimits LimitsOfFields(jet::Connection& connection) {
    FieldLimits limits{};
    jet::Database* const database = connection.database();
    if (database == nullptr) return limits;
    const auto table = database->FindTable(u"Tables");
    if (!table.ok()) return limits;
    for (const jet::ColumnDesign& column : (*table)->design().columns) {
        if (column.type != jet::ColumnType::kText) continue;
        for (const FieldColumn& field : kColumns)
            if (QStringView(column.name).compare(QStringView(field.column), Qt::CaseInsensitive) ==
                0)
                limits[static_cast<std::size_t>(field.field)] = column.size;
    }
    return limits;
}

std::optional<DetailField> FirstTooLong(const TableRecord& record, const FieldLimits& limits) {
    for (const FieldColumn& field : kColumns) {
        const auto at = static_cast<std::size_t>(field.field);
        if (field.is_saved && limits[at] > 0 && record.fields[at].size() > limits[at])
            return field.field;
    }
    return std::nullopt;
}

base::Status SaveTableRecord(jet::Connection& connection, const TableRecord& record) {
    const jet::NamedChange named(connection, MARKED_TEXT("HistoryTexts", "Edit"));
    jet::Recordset rows;
    RETURN_IF_ERROR(OpenById(connection, record.fields[kId], rows));
    return WriteRow(rows, [&](EmptyText empty) {
        RETURN_IF_ERROR(WriteFields(rows, record, empty));
        return WriteChecks(rows, record);
    });
}

base::Status SaveRulesText(jet::Connection& connection, const QString& id, const QString& text) {
    const jet::NamedChange named(connection, MARKED_TEXT("HistoryTexts", "Edit Rules"));
    jet::Recordset rows;
    RETURN_IF_ERROR(OpenById(connection, id, rows));
    return WriteRow(rows, [&](EmptyText empty) {
        return rows.SetField(u"rulestext", FieldValue(text, empty));
    });
}

base::Status DeleteRecord(jet::Connection& connection, const QString& id) {
    const jet::NamedChange named(connection, MARKED_TEXT("HistoryTexts", "Delete"));
    const QString sql = QStringLiteral("Delete from tables where ID = ") + id;
    const auto done = connection.Execute(sql.toStdU16String());
    return done.ok() ? base::Status() : done.status();
}

}  // namespace browser
