#include "checksum/crc_refresh.h"

#include "base/marked_text.h"
#include "catalogue/field_text.h"
#include "catalogue/process_values.h"
#include "catalogue/progress_meter.h"
#include "checksum/checksum_text.h"
#include "checksum/clsCRC.h"
#include "checksum/texts.h"
#include "jet/connection.h"
#include "jet/recordset.h"
#include "platform/files.h"

#include <optional>

namespace checksum {
namespace {

// nullopt: the file is missing, or cannot be read, which is noted.
std::optional<std::u16string> ChecksumTextOf(clsCRC& crc, const QString& path,
                                             catalogue::PassedOver& passed_over) {
    if (!platform::FileExists(path)) return std::nullopt;
    const auto value = crc.CalculateFile(platform::ToPath(path));
    if (value.ok()) return ChecksumText(*value);
    passed_over.Note(path, value.status());
    return std::nullopt;
}

base::Status RefreshRow(jet::Recordset& rows, const catalogue::LocalPaths& paths, clsCRC& crc,
                        const std::function<void(const QString&)>& show,
                        catalogue::PassedOver& passed_over) {
    ASSIGN_OR_RETURN(const QString path, catalogue::FieldText(rows, u"FileName"));
    const auto text = ChecksumTextOf(crc, paths.Of(path), passed_over);
    if (!text) return base::Status::Ok();
    ASSIGN_OR_RETURN(const QString display_name, catalogue::FieldText(rows, u"DisplayName"));
    show(ChecksumTexts::tr("Processing: %1  %2")
             .arg(display_name, QString::fromStdU16String(*text)));
    RETURN_IF_ERROR(rows.SetField(u"CRC", jet::Value::Text(*text)));
    return rows.Update();
}

}  // namespace

// The wording is fixed, its misspellings included.
bool ConfirmCrcRefresh(platform::UserPrompts& prompts) {
    const platform::Message question{
        ChecksumTexts::tr(
            "This will function will update the database with the current CRC values of your "
            "tables."
            "\r"
            "This is required ONLY for files added to your database with versions of Tavolo prior "
            "to "
            "1.5.0 beta"
            "\r\r"
            "This may take a few minutes depending on the nuber of tables in your database."
            "\r\r"
            "This utility facilites import of VBLauncher data"),
        ChecksumTexts::tr("CRC"), platform::MessageIcon::kNone,
        platform::MessageButtons::kOkCancel};
    return prompts.Ask(question) == platform::MessageAnswer::kOk;
}

base::Status RefreshCrcs(catalogue::Catalogue& catalogue, platform::UserEvents& events,
                         const std::function<void(const QString& line)>& show,
                         const catalogue::Progress& progress, catalogue::PassedOver* passed_over) {
    const jet::NamedChange named(*catalogue.CatalogueConnection,
                                 MARKED_TEXT("HistoryTexts", "Update CRC's"));
    jet::Recordset rows;
    RETURN_IF_ERROR(rows.Open(u"select * From Tables order by displayname",
                              *catalogue.CatalogueConnection, jet::CursorType::kKeyset,
                              jet::LockType::kOptimistic, jet::CursorLocation::kServer));
    const catalogue::LocalPaths& paths = catalogue.values->paths;
    clsCRC crc;
    catalogue::PassedOver unasked;
    catalogue::ProgressMeter meter(progress, rows.RecordCount());
    while (!rows.Eof()) {
        events.ProcessEvents();
        RETURN_IF_ERROR(RefreshRow(rows, paths, crc, show, passed_over ? *passed_over : unasked));
        RETURN_IF_ERROR(rows.MoveNext());
        meter.Step();
    }
    return base::Status::Ok();
}

}  // namespace checksum
