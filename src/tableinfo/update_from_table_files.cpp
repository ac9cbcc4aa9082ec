#include "tableinfo/update_from_table_files.h"

#include "base/marked_text.h"
#include "base/trim_spaces.h"
#include "catalogue/error_report.h"
#include "catalogue/field_text.h"
#include "catalogue/process_values.h"
#include "catalogue/quoting.h"
#include "jet/connection.h"
#include "jet/recordset.h"
#include "tableinfo/storage_tools.h"
#include "tableinfo/texts.h"

#include <array>
#include <utility>
#include <vector>

namespace tableinfo {
namespace {

struct Mapping {
    QStringView stream;
    std::u16string_view column;
};

constexpr std::array<Mapping, 7> kMappings = {{
    {u"TableName", u"DisplayName"},
    {u"AuthorName", u"Author"},
    {u"TableRules", u"RulesText"},
    {u"TableVersion", u"Version"},
    {u"TableBlurb", u"Notes"},
    {u"CompanyName", u"Company"},
    {u"CompanyYear", u"Year"},
}};

using NewFields = std::vector<std::pair<std::u16string_view, std::u16string>>;

NewFields FieldsFrom(TableInfoFile& file) {
    NewFields fields;
    for (const Mapping& mapping : kMappings) {
        const QString quoted = catalogue::QuoteSql(file.ReadStream(mapping.stream.toString()));
        const std::u16string text = quoted.toStdU16String();
        // Line ends and tabs at the ends of a text belong to it.
        const std::u16string_view trimmed = base::TrimSpaces(text);
        if (!trimmed.empty()) fields.emplace_back(mapping.column, trimmed);
    }
    return fields;
}

base::Status Store(jet::Recordset& rows, const NewFields& fields) {
    for (const auto& [column, text] : fields)
        RETURN_IF_ERROR(rows.SetField(column, jet::Value::Text(text)));
    return rows.Update();
}

// Field by field, so that a text that does not fit leaves the others alone.
base::Status StoreWhatFits(jet::Recordset& rows, const NewFields& fields) {
    for (const auto& field : fields) {
        base::Status stored = Store(rows, {field});
        if (stored.ok()) continue;
        rows.CancelUpdate();
        if (!catalogue::IsValueTrouble(stored)) return stored;
    }
    return base::Status::Ok();
}

base::Status UpdateRow(jet::Recordset& rows, const catalogue::LocalPaths& paths,
                       catalogue::PassedOver* passed_over) {
    ASSIGN_OR_RETURN(const QString file_name, catalogue::FieldText(rows, u"FileName"));
    const QString path = paths.Of(file_name);
    TableInfoFile file(path);
    const bool has_information = file.HasTableInfo();
    const NewFields fields = has_information ? FieldsFrom(file) : NewFields();
    if (passed_over && !file.failure().ok()) passed_over->Note(path, file.failure());
    if (!has_information) return base::Status::Ok();
    base::Status stored = Store(rows, fields);
    if (stored.ok()) return stored;
    rows.CancelUpdate();
    return catalogue::IsValueTrouble(stored) ? StoreWhatFits(rows, fields) : stored;
}

base::Status UpdateRows(catalogue::Catalogue& catalogue, platform::StatusDisplay* status,
                        const catalogue::Progress& progress, catalogue::PassedOver* passed_over) {
    jet::Recordset rows;
    RETURN_IF_ERROR(rows.Open(u"Select *  from Tables", *catalogue.CatalogueConnection,
                              jet::CursorType::kDynamic, jet::LockType::kOptimistic));
    if (rows.Bof() && rows.Eof()) return base::Status::Ok();
    RETURN_IF_ERROR(rows.MoveFirst());
    if (status) status->Show(TableinfoTexts::tr("Updating from VPTs..."));
    catalogue::ProgressMeter meter(progress, rows.RecordCount());
    while (!rows.Eof()) {
        RETURN_IF_ERROR(UpdateRow(rows, catalogue.values->paths, passed_over));
        RETURN_IF_ERROR(rows.MoveNext());
        meter.Step();
    }
    return base::Status::Ok();
}

base::Status UpdateRowWithId(catalogue::Catalogue& catalogue, std::int64_t id,
                             catalogue::PassedOver* passed_over) {
    const QString sql = QStringLiteral("Select * from Tables where ID = ") + QString::number(id);
    jet::Recordset rows;
    RETURN_IF_ERROR(rows.Open(sql.toStdU16String(), *catalogue.CatalogueConnection,
                              jet::CursorType::kDynamic, jet::LockType::kOptimistic));
    return rows.Eof() ? base::Status() : UpdateRow(rows, catalogue.values->paths, passed_over);
}

}  // namespace

base::Status UpdateRowsFromTableFiles(catalogue::Catalogue& catalogue,
                                      std::span<const std::int64_t> ids,
                                      platform::UserEvents& events,
                                      const catalogue::Progress& progress,
                                      catalogue::PassedOver* passed_over) {
    catalogue::ProgressMeter meter(progress, std::ssize(ids));
    for (const std::int64_t id : ids) {
        events.ProcessEvents();
        RETURN_IF_ERROR(UpdateRowWithId(catalogue, id, passed_over));
        meter.Step();
    }
    return {};
}

base::Status UpdateFromTableFiles(catalogue::Catalogue& catalogue, int show_progress,
                                  platform::StatusDisplay* status,
                                  const catalogue::Progress& progress,
                                  catalogue::PassedOver* passed_over) {
    const bool shows = show_progress == 1;
    const jet::NamedChange named(*catalogue.CatalogueConnection,
                                 MARKED_TEXT("HistoryTexts", "Import Data from VPTs"));
    base::Status done = UpdateRows(catalogue, shows ? status : nullptr,
                                   shows ? progress : catalogue::Progress(), passed_over);
    if (status) status->Unload();
    return done;
}

}  // namespace tableinfo
