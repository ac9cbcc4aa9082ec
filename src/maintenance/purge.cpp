#include "maintenance/purge.h"

#include "catalogue/error_report.h"
#include "catalogue/field_text.h"
#include "maintenance/row_walk.h"
#include "platform/files.h"

namespace maintenance {
namespace {

bool UserAgrees(platform::UserPrompts& prompts) {
    platform::Message question;
    question.text = QStringLiteral(
        "This function will remove all tables that cannot befound from the database\r"
        "Use the RESET PATHS function If you have simply moved your files to a new location\r"
        "Are you sure you want to continue?");
    question.title = QStringLiteral("Warning");
    question.icon = platform::MessageIcon::kExclamation;
    question.buttons = platform::MessageButtons::kYesNo;
    return prompts.Ask(question) == platform::MessageAnswer::kYes;
}

base::Status DeleteWhenMissing(jet::Recordset& rows) {
    ASSIGN_OR_RETURN(const QString file, catalogue::FieldText(rows, u"FileName"));
    if (platform::FileExists(file)) return {};
    return rows.Delete();
}

}  // namespace

void PurgeMissingTables(CommandContext context) {
    if (!UserAgrees(context.prompts)) return;
    catalogue::ShowError(context.prompts, WalkRows(context, QStringLiteral("Select * from Tables"),
                                                   DeleteWhenMissing));
    context.refresh_tree();
}

}  // namespace maintenance
