#include "maintenance/play_counts.h"

#include "catalogue/error_report.h"
#include "jet/connection.h"

namespace maintenance {
namespace {

bool UserAgrees(platform::UserPrompts& prompts) {
    platform::Message question;
    question.text =
        QStringLiteral("This function sets the number of times played for all tables back to 0\r"
                       "Are you sure you want to continue?");
    question.title = QStringLiteral("Warning");
    question.icon = platform::MessageIcon::kExclamation;
    question.buttons = platform::MessageButtons::kYesNo;
    return prompts.Ask(question) == platform::MessageAnswer::kYes;
}

}  // namespace

void ResetTimesPlayed(CommandContext context) {
    if (!UserAgrees(context.prompts)) return;
    const auto done = context.catalogue.CatalogueConnection->Execute(
        u"UPDATE Tables SET Tables.TimesPlayed = 0, lastplayed = NULL ");
    catalogue::ShowError(context.prompts, done.status());
    context.refresh_tree();
}

}  // namespace maintenance
