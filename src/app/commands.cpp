#include "app/commands.h"

#include "app/given_tables.h"
#include "app/texts.h"
#include "base/marked_text.h"
#include "base/scope_guards.h"
#include "browser/table_info_command.h"
#include "catalogue/collection_folders.h"
#include "catalogue/error_report.h"
#include "catalogue/long_run.h"
#include "catalogue/path_names.h"
#include "catalogue/program_files.h"
#include "catalogue/start_up.h"
#include "checksum/frmCRC.h"
#include "dialogs/about_text.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmSettings.h"
#include "dialogs/help.h"
#include "dialogs/help_window.h"
#include "discovery/frmsearch.h"
#include "exchange/table_exchange.h"
#include "history/history_file.h"
#include "jet/connection.h"
#include "maintenance/backup.h"
#include "maintenance/compact.h"
#include "maintenance/file_dates.h"
#include "maintenance/frmImport.h"
#include "maintenance/frmPathMap.h"
#include "maintenance/frmUtility.h"
#include "maintenance/play_counts.h"
#include "maintenance/purge.h"
#include "pictures/frmPicture.h"
#include "platform/application_folder.h"
#include "platform/command_line.h"
#include "platform/file_system.h"
#include "platform/files.h"
#include "snapshots/restore_dialog.h"

#include <QtWidgets/QApplication>

#include <algorithm>
#include <climits>

namespace app {
namespace {

QString CountOfNewTables(std::int64_t count) {
    const int number = static_cast<int>(std::min<std::int64_t>(count, INT_MAX));
    return count == 1 ? AppTexts::tr("%n new table", nullptr, 1)
                      : AppTexts::tr("%n new tables", nullptr, number);
}

}  // namespace

Commands::Commands(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                   const OutsideWorld& outside, snapshots::SnapshotKeeper& keeper,
                   browser::frmPinball& window)
    : catalogue_(catalogue), prompts_(prompts), outside_(outside), keeper_(keeper), window_(window),
      refresh_tree_([this] { window_.RefreshTree(); }), splash_(&window),
      launcher_({catalogue, outside_.windows, outside_.programs, outside_.sounds, events_, splash_,
                 prompts},
                WindowActions()),
      path_hint_(catalogue, [this] {
          window_.TellResult(
              AppTexts::tr("Most table files are not found here. Click for the path map"),
              [this] { ShowPathMap(); });
      }) {
    browser::CommandActions actions = Actions();
    MakeSnapshotsBefore(actions);
    window_.SetActions(actions);
    window_.SetWelcomeActions({[this] { OpenExample(); }, [this] { OpenFolder(); }});
    QObject::connect(&keeper_, &snapshots::SnapshotKeeper::Failed, &window_,
                     &browser::frmPinball::TellInPassing);
    AttachPlay();
    window_.SetTakeTables([this](const QString& path) {
        const bool may_take = MayTakeTables();
        if (may_take) TakeTables(path);
        return may_take;
    });
    window_.SetBeforeUnload([this] {
        launcher_.EndWatches();
        splash_.Unload();
    });
}

void Commands::PaintEvents::ProcessEvents() {
    const base::ScopedFlag processing(is_processing_);
    events_.ProcessEvents();
}

void Commands::ExpectTables(const QString& path) {
    window_.Raise();
    if (!path.isEmpty() && !MayTakeTables())
        window_.TellInPassing(
            {base::StatusCode::kBusy, AppTexts::tr("Waiting to add %1").arg(path).toStdString()});
}

void Commands::TakeTables(const QString& path) {
    const base::ScopedFlag taking(is_taking_tables_);
    keeper_.MakeBefore(browser::NameOf(&browser::CommandActions::scan_for_tables),
                       catalogue_.runner);
    catalogue::PassedOver passed_over;
    const auto added = RunLong(
        catalogue_, {AppTexts::tr("Adding new tables"), catalogue::LongRun::Stop::kOnRequest},
        [&](const base::RunSteps& steps) {
            return AddGivenTables(catalogue_, path, steps, &passed_over);
        });
    // What was added before a failure is there, too; an empty tree is filled by SelectTable.
    const bool may_be_new = !added.ok() || *added > 0;
    if (may_be_new && window_.TreeSelection()) window_.RefreshTree();
    if (!added.ok()) return catalogue::ShowError(prompts_, added.status());
    if (window_.SelectTable(IsGiven(path, catalogue_.values->paths)))
        return window_.TellInPassing(passed_over.Summary());
    window_.TellInPassing({base::StatusCode::kNotFound,
                           AppTexts::tr("There is no table in %1").arg(path).toStdString()});
}

void Commands::LookForNewTables() {
    if (is_at_work()) return;
    const auto folders = catalogue::CollectionFolders(catalogue::CataloguePath(catalogue_));
    if (!folders.ok()) return window_.TellInPassing(folders.status());
    if (folders->isEmpty())
        return window_.TellResult(AppTexts::tr(
            "No folder is known yet: each that \"Scan for New Tables\" looks through will be"));
    const base::ScopedFlag taking(is_taking_tables_);
    catalogue::PassedOver passed_over;
    bool was_stopped = false;
    const auto added = RunLong(
        catalogue_, {AppTexts::tr("Looking for new tables"), catalogue::LongRun::Stop::kOnRequest},
        [&](const base::RunSteps& steps) {
            auto count = AddNewTables(catalogue_, *folders, steps, passed_over);
            was_stopped = steps.stop.stop_requested();
            return count;
        });
    if (!added.ok() || *added > 0) window_.RefreshTree();
    if (!added.ok()) return catalogue::ShowError(prompts_, added.status());
    QString told = CountOfNewTables(*added);
    if (was_stopped) told = AppTexts::tr("Stopped. %1").arg(told);
    if (passed_over.count() > 0)
        told += QStringLiteral(". ") + catalogue::FailureText(passed_over.Summary());
    window_.TellResult(told);
}

bool Commands::is_at_work() const {
    return is_taking_tables_ || held_back_events_.is_processing() || window_.shows_progress();
}

bool Commands::MayTakeTables() const {
    return !is_at_work() && QApplication::activeModalWidget() == nullptr &&
           !window_.details().record_changed();
}

maintenance::CommandContext Commands::Context() {
    return {catalogue_, prompts_, held_back_events_, refresh_tree_,
            [this](std::int64_t done, std::int64_t total) { window_.ShowProgress(done, total); }};
}

browser::CommandActions Commands::Actions() {
    return {
        .scan_for_tables =
            [this] {
                base::Status passed_over;
                Watched([&] { passed_over = Scan(); });
                window_.TellInPassing(passed_over);
            },
        .set_executable = [this] { AskForExecutable(); },
        .reset_file_dates = [this] { maintenance::UpdateFileDates(Context()); },
        .reset_times_played = [this] { maintenance::ResetTimesPlayed(Context()); },
        .reset_paths =
            [this] {
                maintenance::frmUtility(catalogue_, prompts_, refresh_tree_, &window_).exec();
            },
        .update_crcs = [this] { UpdateCrcs(); },
        .import_from_table_files =
            [this] {
                base::Status passed_over;
                Watched([&] { passed_over = ImportFromTableFiles(); });
                window_.TellInPassing(passed_over);
            },
        .import_launcher_data = [this] { Watched([this] { ImportLauncherData(); }); },
        .purge_missing_tables = [this] { maintenance::PurgeMissingTables(Context()); },
        .back_up = [this] { BackUp(); },
        .show_help =
            [this] {
                dialogs::OpenHelp(outside_.shell, catalogue_.values->ApplicationFolder,
                                  platform::ProgramFolder(), dialogs::ShowInHelpWindow);
            },
        .show_about = [this] { ShowAbout(); },
        .load_picture = [this] { LoadPicture(); },
        .view_table_info = [this] { ViewTableInfo(); },
        .export_tables =
            [this] {
                TellIfStopped(
                    exchange::ExportTables(catalogue_, prompts_, window_.TreeSelection()));
            },
        .import_tables =
            [this] {
                base::Status done;
                Watched(
                    [&] { done = exchange::ImportTables(catalogue_, prompts_, refresh_tree_); });
                TellIfStopped(done);
            },
        .show_path_map = [this] { ShowPathMap(); },
        .restore = [this] { Restore(); },
        .compact = [this] { Compact(); },
        .look_for_new_tables = [this] { LookForNewTables(); },
        .show_in_folder = [this] { ShowInFolder(); },
    };
}

void Commands::HintAtPathMap() {
    window_.TellInPassing(path_hint_.Start());
}

void Commands::ShowPathMap() {
    if (!MayTakeTables()) return;
    maintenance::frmPathMap(catalogue_, prompts_, refresh_tree_, &window_).exec();
}

void Commands::ShowInFolder() {
    if (!window_.TableIsSelected()) return;
    const QString folder = catalogue::GetFolder(catalogue_.values->paths.Of(window_.SelectedTag()));
    base::Status shown;
    if (!platform::FolderExists(folder))
        shown = {base::StatusCode::kNotFound,
                 AppTexts::tr("There is no folder %1").arg(folder).toStdString()};
    else
        shown = outside_.shell.Open(platform::ExistingName(folder));
    window_.TellInPassing(shown);
}

base::Status Commands::Scan() {
    discovery::frmsearch dialog(catalogue_, prompts_, refresh_tree_, &window_);
    dialog.exec();
    return dialog.passed_over();
}

void Commands::BackUp() {
    const base::Status made = maintenance::BackupData(Context(), window_.windowTitle());
    if (!made.ok())
        window_.TellInPassing({made.code(), AppTexts::tr("No backup was made: %1")
                                                .arg(catalogue::FailureText(made))
                                                .toStdString()});
}

void Commands::Compact() {
    const auto files = platform::MakeFileSystem();
    const std::filesystem::path path = platform::ToPath(catalogue::CataloguePath(catalogue_));
    const auto keep_history = [&](const jet::CompactReport& report) {
        return history::HistoryFile::Rebind(*files, path, report.mark_before, report.mark_after);
    };
    TellIfStopped(
        maintenance::CompactData(Context(), *files, keep_history,
                                 [this](const QString& result) { window_.TellResult(result); }));
}

void Commands::TellIfStopped(const base::Status& done) {
    if (base::IsStopped(done)) window_.TellResult(AppTexts::tr("Stopped. Nothing was changed"));
}

void Commands::MakeSnapshotsBefore(browser::CommandActions& actions) {
    using A = browser::CommandActions;
    for (const browser::CommandId command :
         {&A::scan_for_tables, &A::reset_file_dates, &A::reset_times_played, &A::reset_paths,
          &A::update_crcs, &A::import_from_table_files, &A::import_launcher_data,
          &A::purge_missing_tables, &A::import_tables, &A::compact, &A::look_for_new_tables})
        actions.*command = [this, name = browser::NameOf(command), run = actions.*command] {
            keeper_.MakeBefore(name, catalogue_.runner);
            run();
        };
}

void Commands::Restore() {
    snapshots::RestoreDialog({catalogue_, keeper_, prompts_, refresh_tree_}, &window_).exec();
}

void Commands::OpenExample() {
    const QString program = platform::QuoteProgramName(QCoreApplication::applicationFilePath());
    const auto started = outside_.programs.Start(program + QStringLiteral(" --demo"));
    catalogue::ShowError(prompts_, started.status());
}

// That of this program is empty, so its window goes when the other one comes.
void Commands::OpenFolder() {
    const QString folder =
        prompts_.ChooseFolder(AppTexts::tr("Select the folder of the catalogue."));
    if (folder.isEmpty()) return;
    const QString name = catalogue::kCatalogueFile.toString();
    if (!platform::FileExists(platform::FileIn(folder, name))) {
        prompts_.Ask({AppTexts::tr("There is no %1 in %2").arg(name, folder),
                      {},
                      platform::MessageIcon::kInformation});
        return;
    }
    const QString program = platform::QuoteProgramName(QCoreApplication::applicationFilePath());
    const auto started = outside_.programs.Start(program + QStringLiteral(" --folder ") +
                                                 platform::QuoteForCommandLine(folder));
    catalogue::ShowError(prompts_, started.status());
    if (started.ok()) window_.close();
}

void Commands::Watched(const std::function<void()>& run) {
    if (watch_.before) watch_.before();
    run();
    if (watch_.after) watch_.after();
}

void Commands::UpdateCrcs() {
    window_.TellInPassing(checksum::UpdateCrcs(catalogue_, prompts_, &window_, Context().progress));
}

base::Status Commands::ImportFromTableFiles() {
    return browser::ImportDataFromVpts(catalogue_, splash_, prompts_, refresh_tree_,
                                       Context().progress);
}

void Commands::ImportLauncherData() {
    maintenance::frmImport dialog(catalogue_, prompts_, events_, refresh_tree_, &window_);
    dialog.exec();
    window_.TellInPassing(dialog.database_failure());
}

void Commands::ShowAbout() {
    dialogs::frmAbout(prompts_, outside_.shell, outside_.programs, dialogs::WebSiteAddress(),
                      &window_)
        .exec();
}

void Commands::ViewTableInfo() {
    browser::ViewTableInfo(catalogue_.values->paths.Of(window_.SelectedTag()), window_.details(),
                           prompts_, outside_.shell, &window_);
}

void Commands::LoadPicture() {
    if (!window_.TableIsSelected()) return;
    const auto assign = [this](const QString& path) {
        const jet::NamedChange named(*catalogue_.CatalogueConnection,
                                     MARKED_TEXT("HistoryTexts", "Load Picture"));
        window_.details().SetDetailText(catalogue::kImageFile,
                                        catalogue_.values->paths.Stored(path));
        window_.details().Save();
    };
    pictures::LoadPictureFromClipboard(*catalogue_.values, prompts_, window_.SelectedText(), assign,
                                       &window_);
}

void Commands::AskForExecutable() {
    if (!RaiseSettings()) dialogs::frmSettings(catalogue_, prompts_, &window_).exec();
}

bool Commands::RaiseSettings() {
    if (!settings_ || !settings_->isVisible()) return false;
    settings_->raise();
    settings_->activateWindow();
    return true;
}

void Commands::ShowSettings() {
    if (RaiseSettings()) return;
    settings_ = new dialogs::frmSettings(catalogue_, prompts_, &window_);
    settings_->setAttribute(Qt::WA_DeleteOnClose);
    settings_->show();
}

void Commands::AttachPlay() {
    window_.SetPlayTable([this](const QString& path, const QString& display_name, std::int32_t id) {
        launcher_.PlayTable(path, display_name, id);
    });
    window_.SetPlaySound([this](const QString& wave_file_name) {
        outside_.sounds.PlaySynchronously(
            platform::FileIn(catalogue_.values->ApplicationFolder, wave_file_name));
    });
}

launcher::MainWindowActions Commands::WindowActions() {
    return {[this] { return window_.windowState(); }, [this] { window_.showMinimized(); },
            [this](Qt::WindowStates state) { window_.setWindowState(state); },
            [this] { ShowSettings(); }, [this](const QString& text) { window_.TellResult(text); }};
}

}  // namespace app
