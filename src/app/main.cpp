// tavolo: creates the program's objects and connects them.
#include "app/arguments.h"
#include "app/commands.h"
#include "app/edit_commands.h"
#include "app/first_start.h"
#include "app/given_paths.h"
#include "app/language.h"
#include "app/session_end.h"
#include "app/texts.h"
#include "browser/frmPinball.h"
#include "browser/frmSplash.h"
#include "catalogue/application_folder_choice.h"
#include "catalogue/catalogue.h"
#include "catalogue/error_report.h"
#include "catalogue/process_values.h"
#include "catalogue/start_up.h"
#include "dialogs/program_version.h"
#include "dialogs/qt_user_prompts.h"
#include "example/example_folder.h"
#include "jet/connection.h"
#include "platform/application_folder.h"
#include "platform/clock.h"
#include "platform/colour_scheme.h"
#include "platform/file_system.h"
#include "platform/files.h"
#include "platform/hand_over.h"
#include "platform/program_arguments.h"
#include "platform/settings_store.h"
#include "platform/termination.h"
#include "snapshots/restore_catalogue.h"
#include "snapshots/snapshot_keeper.h"
#include "widgets/program_style.h"
#include "widgets/svg_icon.h"

#include <QtCore/QLocale>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <memory>
#include <optional>

namespace {

int Print(const QString& text) {
    std::fputs(text.toUtf8().constData(), stdout);
    return 0;
}

int Complain(const QString& error) {
    std::fputs(("tavolo: " + error.toUtf8() + "\n\n").constData(), stderr);
    std::fputs(app::HelpText().toUtf8().constData(), stderr);
    return 2;
}

app::Arguments ArgumentsOf(int argc, char** argv) {
    QStringList words;
    for (const std::string& word : platform::ProgramArguments(argc, argv))
        words.append(platform::ArgumentText(word.c_str()));
    return app::ParseArguments(words);
}

// As long as the result lives, the windows follow the desktop between light and dark.
std::unique_ptr<platform::ColourSchemeWatch> SetAppearance() {
    auto* const style = new widgets::ProgramStyle;  // which the application owns
    QApplication::setStyle(style);
    QApplication::setWindowIcon(widgets::ProgramIcon());
    return platform::WatchColourScheme([style](bool is_dark) { style->SetDark(is_dark); });
}

// Gives what is to be added, if anything, to the instance that has the catalogue and brings that to
// the front; false: it does not answer.
bool IsTakenOver(const base::Status& opened, const QString& folder, const QString& given) {
    constexpr int kTimeoutMs = 5000;
    return opened.code() == base::StatusCode::kBusy &&
           platform::HandPathOver(folder, given, kTimeoutMs).ok();
}

// False: it cannot be opened, which is told, nor replaced by an earlier state.
bool IsOpen(catalogue::Catalogue& catalogue, jet::FileSystem& files, platform::UserPrompts& prompts,
            const base::Status& opened) {
    catalogue::ShowError(prompts, opened);
    if (!opened.ok() && !snapshots::OfferNewestSnapshot(catalogue, files, prompts, opened))
        return false;
    snapshots::RemoveRestoreLeftovers(files, snapshots::DatabaseOf(catalogue));
    return true;
}

// Why the catalogue could not be brought up to date; ok: it was.
base::Status UpgradeFailure(const catalogue::Catalogue& catalogue) {
    const base::Status& failure = catalogue.values->UpgradeFailure;
    if (failure.ok()) return failure;
    const QString text =
        catalogue::FailureText(app::AppTexts::tr("New columns or dates are missing in"),
                               catalogue::CataloguePath(catalogue), failure);
    return {failure.code(), text.toStdString(), failure.number()};
}

// An edit that goes on from the last time comes first.
void TakeGiven(app::Commands& commands, app::GivenPaths& given_paths, const QString& given) {
    if (given.isEmpty()) return;
    if (commands.MayTakeTables())
        commands.TakeTables(given);
    else
        given_paths.Add(given);
}

// Not of the example collection, which is looked at without a simulator.
void AskForWhatIsMissing(app::Commands& commands, browser::frmPinball& window) {
    commands.HintAtPathMap();
    window.AskForWhatIsMissing();
}

void EndWith(browser::frmPinball& window) {
    window.CloseForGood();
    QApplication::quit();
}

// As long as the result lives, logging out and signals ask `session_end`.
std::unique_ptr<platform::TerminationWatch> WatchForTheEnd(app::SessionEnd& session_end,
                                                           browser::frmPinball& window) {
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, &window,
                     [&session_end] { session_end.Request(); });
    session_end.TakeQuitOrders();
    return platform::WatchTermination([&session_end] { session_end.Request(); });
}

int RunProgram(const app::Arguments& arguments) {
    const catalogue::KnownFolders folders = catalogue::FoldersOfThisProgram();
    catalogue::ProcessValues values;
    values.ApplicationFolder = app::FolderOf(arguments, folders);
    dialogs::QtUserPrompts prompts;
    if (!app::PrepareFolder(values.ApplicationFolder, arguments, folders, prompts)) return 1;

    const auto files = platform::MakeFileSystem();
    // What the example collection shows last is nothing to the user's own.
    const auto settings =
        platform::MakeSettingsStore(arguments.demo ? values.ApplicationFolder : QString());
    platform::SystemClock clock;
    // The connection tells it what changes.
    std::optional<history::HistoryFile> history;
    jet::Connection connection(*files);
    catalogue::Catalogue catalogue{&connection, &values, settings.get(), &clock};
    history.emplace(*files, platform::ToPath(catalogue::CataloguePath(catalogue)));
    connection.UseNotes(&*history);
    const QString given =
        arguments.tables.isEmpty() ? QString() : platform::AbsolutePath(arguments.tables);
    const base::Status opened = catalogue::Main(catalogue);
    if (IsTakenOver(opened, values.ApplicationFolder, given)) return 0;
    if (!IsOpen(catalogue, *files, prompts, opened)) return 1;
    if (arguments.demo)
        catalogue::ShowError(prompts,
                             example::SetExamplePaths(connection, values.ApplicationFolder));

    snapshots::SnapshotKeeper keeper(*files, snapshots::DatabaseOf(catalogue), clock);
    browser::frmPinball window(catalogue, prompts);
    prompts.SetOwner(&window);
    const auto shell = platform::MakeShell();
    const auto programs = platform::MakeProcessStarter();
    const auto sounds = platform::MakeSoundPlayer();
    const auto windows = platform::MakeWindowControl();
    app::Commands commands(catalogue, prompts, {*shell, *programs, *sounds, *windows}, keeper,
                           window);
    app::EditCommands edit_commands(catalogue, *history, prompts, window);
    commands.SetWatch(
        {[&] { edit_commands.RememberNewest(); }, [&] { edit_commands.TellReplaced(); }});
    window.Load();
    window.GoOnWithKeptEdit();
    window.show();
    app::SessionEnd session_end([&] { return commands.is_at_work(); }, [&] { EndWith(window); });
    const auto termination = WatchForTheEnd(session_end, window);
    keeper.StartClock();
    app::GivenPaths given_paths([&] { return commands.MayTakeTables(); },
                                [&](const QString& path) { commands.TakeTables(path); });
    const auto receiver =
        platform::ReceivePaths(values.ApplicationFolder, [&](const QString& path) {
            commands.ExpectTables(path);
            return path.isEmpty() || given_paths.Add(path);
        });
    window.TellInPassing(receiver.status());
    window.TellInPassing(UpgradeFailure(catalogue));
    window.TellInPassing(values.PathMapFailure);
    TakeGiven(commands, given_paths, given);
    if (!arguments.demo) AskForWhatIsMissing(commands, window);
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    const app::Arguments arguments = ArgumentsOf(argc, argv);
    if (!arguments.error.isEmpty()) return Complain(arguments.error);
    if (arguments.help) return Print(app::HelpText());
    if (arguments.version) return Print(app::VersionLine());
    // Desktops find the entry of a window by its name: on X11 Qt takes that from its option -name.
    char name_option[] = "-name";
    char name[] = "org.tavolo.tavolo";
    char* qt_arguments[] = {argv[0], name_option, name, nullptr};
    int qt_argument_count = 3;
    QApplication application(qt_argument_count, qt_arguments);
    QApplication::setApplicationName(dialogs::ApplicationTitle());
    QApplication::setDesktopFileName(QString::fromLatin1(name));
    const auto colour_scheme = SetAppearance();
    app::UseLanguage(QLocale::system().uiLanguages());
    return RunProgram(arguments);
}
