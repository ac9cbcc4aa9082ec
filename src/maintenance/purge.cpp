#include "maintenance/purge.h"

#include "catalogue/error_report.h"
#include "catalogue/field_text.h"
#include "jet/connection.h"
#include "maintenance/confirm_change.h"
#include "maintenance/row_walk.h"
#include "platform/files.h"

namespace maintenance {
namespace {

constexpr QStringView kQuestion =
    u"This function will remove all tables that cannot befound from the database\r"
    u"Use the RESET PATHS function If you have simply moved your files to a new location\r"
    u"Are you sure you want to continue?";

base::Status DeleteWhenMissing(jet::Recordset& rows) {
    ASSIGN_OR_RETURN(const QString file, catalogue::FieldText(rows, u"FileName"));
    if (platform::FileExists(file)) return {};
    return rows.Delete();
}

}  // namespace

void PurgeMissingTables(CommandContext context) {
    if (!ConfirmChange(context.prompts, kQuestion.toString())) return;
    const jet::NamedChange named(*context.catalogue.CatalogueConnection, u"Purge");
    catalogue::ShowError(context.prompts, WalkRows(context, QStringLiteral("Select * from Tables"),
                                                   DeleteWhenMissing));
    context.refresh_tree();
}

}  // namespace maintenance
