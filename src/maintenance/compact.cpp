#include "maintenance/compact.h"

#include "catalogue/error_report.h"
#include "catalogue/long_run.h"
#include "catalogue/start_up.h"
#include "jet/connection.h"
#include "jet/tables/database.h"
#include "maintenance/texts.h"
#include "platform/files.h"

#include <QtCore/QLocale>

namespace maintenance {
namespace {

using Stop = catalogue::LongRun::Stop;

QString SizeText(std::uint64_t bytes) {
    return QLocale(QLocale::English, QLocale::UnitedStates)
        .formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeTraditionalFormat);
}

jet::CompactProgress StepsOf(const base::RunSteps& steps) {
    return [&steps](std::uint64_t done, std::uint64_t total) -> base::Status {
        if (steps.progress)
            steps.progress(static_cast<std::int64_t>(done), static_cast<std::int64_t>(total));
        return base::StatusOf(steps.stop);
    };
}

base::Status CannotOpenAgain(const base::Status& why) {
    return {why.code(),
            MaintenanceTexts::tr("The catalogue was closed for compacting and cannot be opened "
                                 "again: %1 Choose Compact... again, or start the program again.")
                .arg(catalogue::FailureText(why))
                .toStdString(),
            why.number()};
}

bool IsWanted(platform::UserPrompts& prompts, const jet::CompactReport& expected) {
    platform::Message message;
    message.title = MaintenanceTexts::tr("Compact");
    const QString now = SizeText(expected.bytes_before());
    if (expected.bytes_after() >= expected.bytes_before()) {
        message.text =
            MaintenanceTexts::tr("The catalogue takes %1 and has no unused space.").arg(now);
        message.icon = platform::MessageIcon::kInformation;
        prompts.Ask(message);
        return false;
    }
    message.text = MaintenanceTexts::tr("The catalogue takes %1 and will take %2.\n"
                                        "Are you sure you want to continue?")
                       .arg(now, SizeText(expected.bytes_after()));
    message.icon = platform::MessageIcon::kExclamation;
    message.buttons = platform::MessageButtons::kYesNo;
    return prompts.Ask(message) == platform::MessageAnswer::kYes;
}

// Whether to go on.
base::Result<bool> Ask(const CommandContext& context) {
    jet::Connection& connection = *context.catalogue.CatalogueConnection;
    // Nothing is known of a catalogue that an attempt before this one has left closed.
    if (!connection.is_open()) return true;
    const auto expected = catalogue::RunLong(
        context.catalogue, {MaintenanceTexts::tr("Compact"), Stop::kOnRequest},
        [&](const base::RunSteps& steps) {
            return jet::MeasureCompact(connection.database()->pages(), StepsOf(steps));
        });
    if (!expected.ok()) return expected.status();
    return IsWanted(context.prompts, *expected);
}

}  // namespace

base::Result<jet::CompactReport> CompactCatalogue(catalogue::Catalogue& catalogue,
                                                  jet::FileSystem& files,
                                                  const jet::BeforeReplacing& before_replacing,
                                                  const base::RunSteps& steps) {
    const std::filesystem::path path = platform::ToPath(catalogue::CataloguePath(catalogue));
    base::Status closed = catalogue.CatalogueConnection->Close();
    auto report = closed.ok() ? jet::CompactInPlace(files, path, StepsOf(steps), before_replacing)
                              : base::Result<jet::CompactReport>(std::move(closed));
    const base::Status opened = catalogue::OpenCatalogue(catalogue);
    if (!opened.ok()) return CannotOpenAgain(opened);
    return report;
}

base::Status CompactData(const CommandContext& context, jet::FileSystem& files,
                         const jet::BeforeReplacing& before_replacing,
                         const std::function<void(const QString&)>& tell) {
    const auto show = [&](const base::Status& failure) -> base::Status {
        if (base::IsStopped(failure)) return failure;
        catalogue::ShowError(context.prompts, failure);
        return {};
    };
    const auto is_wanted = Ask(context);
    if (!is_wanted.ok()) return show(is_wanted.status());
    if (!*is_wanted) return {};
    const auto report = catalogue::RunLong(
        context.catalogue, {MaintenanceTexts::tr("Compact"), Stop::kOnRequest},
        [&](const base::RunSteps& steps) {
            return CompactCatalogue(context.catalogue, files, before_replacing, steps);
        });
    if (!report.ok()) return show(report.status());
    tell(MaintenanceTexts::tr("Catalogue compacted: %1 before, %2 now")
             .arg(SizeText(report->bytes_before()), SizeText(report->bytes_after())));
    return {};
}

}  // namespace maintenance
