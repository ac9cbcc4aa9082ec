#include "maintenance/purge.h"

#include "base/marked_text.h"
#include "catalogue/error_report.h"
#include "catalogue/field_text.h"
#include "catalogue/process_values.h"
#include "jet/connection.h"
#include "maintenance/confirm_change.h"
#include "maintenance/row_walk.h"
#include "maintenance/texts.h"
#include "platform/files.h"

namespace maintenance {
namespace {

base::Status DeleteWhenMissing(jet::Recordset& rows, const catalogue::LocalPaths& paths) {
    ASSIGN_OR_RETURN(const QString file, catalogue::FieldText(rows, u"FileName"));
    if (platform::FileExists(paths.Of(file))) return {};
    return rows.Delete();
}

}  // namespace

void PurgeMissingTables(CommandContext context) {
    if (!ConfirmChange(
            context.prompts,
            MaintenanceTexts::tr(
                "This function will remove all tables that cannot befound from the database\r"
                "Use the RESET PATHS function If you have simply moved your files to a new "
                "location\r"
                "Are you sure you want to continue?")))
        return;
    const jet::NamedChange named(*context.catalogue.CatalogueConnection,
                                 MARKED_TEXT("HistoryTexts", "Purge"));
    const catalogue::LocalPaths& paths = context.catalogue.values->paths;
    catalogue::ShowError(context.prompts, WalkRows(context, QStringLiteral("Select * from Tables"),
                                                   [&paths](jet::Recordset& rows) {
                                                       return DeleteWhenMissing(rows, paths);
                                                   }));
    context.refresh_tree();
}

}  // namespace maintenance
