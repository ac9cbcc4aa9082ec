#include "maintenance/play_counts.h"

#include "base/marked_text.h"
#include "catalogue/error_report.h"
#include "jet/connection.h"
#include "maintenance/confirm_change.h"
#include "maintenance/texts.h"

namespace maintenance {

void ResetTimesPlayed(CommandContext context) {
    if (!ConfirmChange(
            context.prompts,
            MaintenanceTexts::tr(
                "This function sets the number of times played for all tables back to 0\r"
                "Are you sure you want to continue?")))
        return;
    const jet::NamedChange named(*context.catalogue.CatalogueConnection,
                                 MARKED_TEXT("HistoryTexts", "Reset Times Played"));
    const auto done = context.catalogue.CatalogueConnection->Execute(
        u"UPDATE Tables SET Tables.TimesPlayed = 0, lastplayed = NULL ");
    catalogue::ShowError(context.prompts, done.status());
    context.refresh_tree();
}

}  // namespace maintenance
