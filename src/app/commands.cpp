#include "app/commands.h"

#include "browser/table_info_command.h"
#include "dialogs/about_text.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmSettings.h"
#include "dialogs/help.h"
#include "discovery/frmsearch.h"
#include "maintenance/backup.h"
#include "maintenance/file_dates.h"
#include "maintenance/frmCRC.h"
#include "maintenance/frmImport.h"
#include "maintenance/frmUtility.h"
#include "maintenance/play_counts.h"
#include "maintenance/purge.h"
#include "pictures/frmPicture.h"
#include "platform/application_folder.h"

namespace app {
namespace {

// The detail field of the screenshot's path.
constexpr int kImageFileField = 7;

}  // namespace

Commands::Commands(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                   const OutsideWorld& outside, browser::frmPinball& window)
    : catalogue_(catalogue), prompts_(prompts), outside_(outside), window_(window),
      refresh_tree_([this] { window_.RefreshTree(); }), splash_(&window),
      launcher_({catalogue, outside_.windows, outside_.programs, outside_.sounds, events_, splash_,
                 prompts},
                WindowActions()) {
    AttachScan();
    AttachUtilities();
    AttachCatalogueDialogs();
    AttachHelp();
    AttachPictures();
    AttachPlay();
    window_.SetBeforeUnload([this] {
        launcher_.EndWatches();
        splash_.Unload();
    });
}

maintenance::CommandContext Commands::Context() {
    return {catalogue_, prompts_, held_back_events_, refresh_tree_,
            [this](std::int64_t done, std::int64_t total) { window_.ShowProgress(done, total); }};
}

void Commands::AttachScan() {
    window_.SetCommand(QStringLiteral("mnuTblScan"), [this] {
        discovery::frmsearch(catalogue_, prompts_, refresh_tree_, &window_).exec();
    });
    window_.SetCommand(QStringLiteral("mnuVPT"), [this] {
        browser::ImportDataFromVpts(catalogue_, splash_, prompts_, refresh_tree_,
                                    Context().progress);
    });
}

void Commands::AttachUtilities() {
    window_.SetCommand(QStringLiteral("mnuDates"),
                       [this] { maintenance::UpdateFileDates(Context()); });
    window_.SetCommand(QStringLiteral("mnuResetTimes"),
                       [this] { maintenance::ResetTimesPlayed(Context()); });
    window_.SetCommand(QStringLiteral("mnuPurge"),
                       [this] { maintenance::PurgeMissingTables(Context()); });
    window_.SetCommand(QStringLiteral("mnuBackup"),
                       [this] { maintenance::BackupData(Context(), window_.windowTitle()); });
    window_.SetCommand(QStringLiteral("mnuCRC"), [this] {
        window_.TellInPassing(
            maintenance::UpdateCrcs(catalogue_, prompts_, &window_, Context().progress));
    });
}

void Commands::AttachCatalogueDialogs() {
    window_.SetCommand(QStringLiteral("mnuExe"), [this] {
        if (!RaiseSettings()) dialogs::frmSettings(catalogue_, prompts_, &window_).exec();
    });
    window_.SetCommand(QStringLiteral("mnuRest"), [this] {
        maintenance::frmUtility(catalogue_, prompts_, refresh_tree_, &window_).exec();
    });
    window_.SetCommand(QStringLiteral("mnuImport"), [this] {
        maintenance::frmImport dialog(catalogue_, prompts_, events_, refresh_tree_, &window_);
        dialog.exec();
        window_.TellInPassing(dialog.database_failure());
    });
}

void Commands::AttachHelp() {
    window_.SetCommand(QStringLiteral("mnuHelpContents"), [this] {
        dialogs::OpenHelp(outside_.shell, catalogue_.values->ApplicationFolder);
    });
    window_.SetCommand(QStringLiteral("mnuAbout"), [this] {
        dialogs::frmAbout(prompts_, outside_.shell, outside_.programs, dialogs::WebSiteAddress(),
                          &window_)
            .exec();
    });
}

void Commands::AttachPictures() {
    window_.SetCommand(QStringLiteral("mnuTI"), [this] {
        browser::ViewTableInfo(window_.SelectedTag(), window_.details(), prompts_, outside_.shell,
                               &window_);
    });
    window_.SetCommand(QStringLiteral("mnuClip"), [this] { LoadPicture(); });
}

void Commands::LoadPicture() {
    if (!window_.TableIsSelected()) return;
    const auto assign = [this](const QString& path) {
        window_.details().SetDetailText(kImageFileField, path);
        window_.details().Save();
    };
    pictures::LoadPictureFromClipboard(*catalogue_.values, prompts_, window_.SelectedText(), assign,
                                       &window_);
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
            [this] { ShowSettings(); }};
}

}  // namespace app
