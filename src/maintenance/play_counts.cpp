#include "maintenance/play_counts.h"

#include "catalogue/error_report.h"
#include "jet/connection.h"
#include "maintenance/confirm_change.h"

namespace maintenance {
namespace {

constexpr QStringView kQuestion =
    u"This function sets the number of times played for all tables back to 0\r"
    u"Are you sure you want to continue?";

}  // namespace

void ResetTimesPlayed(CommandContext context) {
    if (!ConfirmChange(context.prompts, kQuestion.toString())) return;
    const jet::NamedChange named(*context.catalogue.CatalogueConnection, u"Reset Times Played");
    const auto done = context.catalogue.CatalogueConnection->Execute(
        u"UPDATE Tables SET Tables.TimesPlayed = 0, lastplayed = NULL ");
    catalogue::ShowError(context.prompts, done.status());
    context.refresh_tree();
}

}  // namespace maintenance
