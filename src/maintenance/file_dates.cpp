#include "maintenance/file_dates.h"

#include "base/marked_text.h"
#include "catalogue/date_texts.h"
#include "catalogue/error_report.h"
#include "catalogue/field_text.h"
#include "catalogue/process_values.h"
#include "jet/connection.h"
#include "maintenance/row_walk.h"
#include "maintenance/texts.h"
#include "platform/files.h"

namespace maintenance {
namespace {

bool UserAgrees(platform::UserPrompts& prompts) {
    platform::Message question;
    question.text = MaintenanceTexts::tr("Update all file dates?");
    question.title = MaintenanceTexts::tr("Update Dates");
    question.buttons = platform::MessageButtons::kYesNo;
    return prompts.Ask(question) == platform::MessageAnswer::kYes;
}

base::Status StoreFileDate(jet::Recordset& rows, const catalogue::LocalPaths& paths) {
    ASSIGN_OR_RETURN(const QString file, catalogue::FieldText(rows, u"FileName"));
    const QDateTime modified = platform::LastModified(paths.Of(file));
    if (!modified.isValid()) return {};
    RETURN_IF_ERROR(
        rows.SetField(u"FileDate", jet::Value::DateTime(catalogue::ToOleDate(modified))));
    return rows.Update();
}

}  // namespace

void UpdateFileDates(CommandContext context) {
    if (!UserAgrees(context.prompts)) return;
    const jet::NamedChange named(*context.catalogue.CatalogueConnection,
                                 MARKED_TEXT("HistoryTexts", "Reset File Dates"));
    // Catalogues of early versions hold the column with another type; on all others this fails or
    // changes nothing.
    if (const auto altered = context.catalogue.CatalogueConnection->Execute(
            u"Alter table tables alter column filedate DATE NULL");
        !altered.ok())
        altered.status().Ignore();
    const catalogue::LocalPaths& paths = context.catalogue.values->paths;
    catalogue::ShowError(context.prompts, WalkRows(context, QStringLiteral("select * from tables"),
                                                   [&paths](jet::Recordset& rows) {
                                                       return StoreFileDate(rows, paths);
                                                   }));
    context.refresh_tree();
}

}  // namespace maintenance
