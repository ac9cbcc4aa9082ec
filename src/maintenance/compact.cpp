#include "maintenance/compact.h"

#include "catalogue/error_report.h"
#include "catalogue/start_up.h"
#include "jet/connection.h"
#include "jet/tables/database.h"
#include "maintenance/texts.h"
#include "platform/files.h"

#include <QtCore/QLocale>

namespace maintenance {
namespace {

QString SizeText(std::uint64_t bytes) {
    return QLocale(QLocale::English, QLocale::UnitedStates)
        .formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeTraditionalFormat);
}

// Shows the rows that are done, and the end in any case.
class ShownProgress {
public:
    explicit ShownProgress(const catalogue::Progress& progress) : progress_(progress) {}
    ~ShownProgress() {
        if (progress_) progress_(total_, total_);
    }
    ShownProgress(const ShownProgress&) = delete;
    ShownProgress& operator=(const ShownProgress&) = delete;

    // Borrows this object.
    jet::CompactProgress Steps() {
        return [this](std::uint64_t done, std::uint64_t total) {
            total_ = static_cast<std::int64_t>(total);
            if (progress_ && done < total) progress_(static_cast<std::int64_t>(done), total_);
        };
    }

private:
    const catalogue::Progress& progress_;
    std::int64_t total_ = 0;
};

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
    base::Result<jet::CompactReport> expected = [&] {
        ShownProgress progress(context.progress);
        return jet::MeasureCompact(connection.database()->pages(), progress.Steps());
    }();
    if (!expected.ok()) return expected.status();
    return IsWanted(context.prompts, *expected);
}

}  // namespace

base::Result<jet::CompactReport> CompactCatalogue(catalogue::Catalogue& catalogue,
                                                  jet::FileSystem& files,
                                                  const catalogue::Progress& progress,
                                                  const jet::BeforeReplacing& before_replacing) {
    ShownProgress shown(progress);
    const std::filesystem::path path = platform::ToPath(catalogue::CataloguePath(catalogue));
    base::Status closed = catalogue.CatalogueConnection->Close();
    auto report = closed.ok() ? jet::CompactInPlace(files, path, shown.Steps(), before_replacing)
                              : base::Result<jet::CompactReport>(std::move(closed));
    const base::Status opened = catalogue::OpenCatalogue(catalogue);
    if (!opened.ok()) return CannotOpenAgain(opened);
    return report;
}

void CompactData(const CommandContext& context, jet::FileSystem& files,
                 const jet::BeforeReplacing& before_replacing,
                 const std::function<void(const QString&)>& tell) {
    const auto is_wanted = Ask(context);
    if (!is_wanted.ok()) return catalogue::ShowError(context.prompts, is_wanted.status());
    if (!*is_wanted) return;
    const auto report =
        CompactCatalogue(context.catalogue, files, context.progress, before_replacing);
    if (!report.ok()) return catalogue::ShowError(context.prompts, report.status());
    tell(MaintenanceTexts::tr("Catalogue compacted: %1 before, %2 now")
             .arg(SizeText(report->bytes_before()), SizeText(report->bytes_after())));
}

}  // namespace maintenance
