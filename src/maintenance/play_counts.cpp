#include "maintenance/play_counts.h"

#include "base/marked_text.h"
#include "catalogue/error_report.h"
#include "catalogue/long_run.h"
#include "jet/connection.h"
#include "maintenance/confirm_change.h"
#include "maintenance/texts.h"

namespace maintenance {
namespace {

base::Status SetCountsBack(const CommandContext& context, const base::RunSteps& steps) {
    jet::Connection& connection = *context.catalogue.CatalogueConnection;
    connection.WatchRows(steps.progress);
    const auto done =
        connection.Execute(u"UPDATE Tables SET Tables.TimesPlayed = 0, lastplayed = NULL ");
    connection.WatchRows({});
    return done.status();
}

}  // namespace

void ResetTimesPlayed(CommandContext context) {
    if (!ConfirmChange(
            context.prompts,
            MaintenanceTexts::tr(
                "This function sets the number of times played for all tables back to 0\r"
                "Are you sure you want to continue?")))
        return;
    const jet::NamedChange named(*context.catalogue.CatalogueConnection,
                                 MARKED_TEXT("HistoryTexts", "Reset Times Played"));
    const base::Status done = catalogue::RunLong(
        context.catalogue, {MaintenanceTexts::tr("Reset Times Played")},
        [&](const base::RunSteps& steps) { return SetCountsBack(context, steps); });
    catalogue::ShowError(context.prompts, done);
    context.refresh_tree();
}

}  // namespace maintenance
