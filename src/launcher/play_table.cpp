#include "launcher/play_table.h"

#include "catalogue/error_report.h"
#include "catalogue/path_names.h"
#include "catalogue/process_values.h"
#include "catalogue/program_files.h"
#include "launcher/texts.h"
#include "launcher/update_play_count.h"
#include "platform/application_folder.h"
#include "platform/command_line.h"
#include "platform/error_numbers.h"
#include "platform/files.h"

namespace launcher {
namespace {

constexpr qsizetype kExtensionLength = 4;

const QString kSimulatorClass = QStringLiteral("VPinball");

QString PlayingTitle(const QString& title_key) {
    return QStringLiteral("Visual Pinball - [") + title_key + QStringLiteral("*]");
}

QString EndedTitle(const QString& title_key) {
    return QStringLiteral("Visual Pinball - [") + title_key + u']';
}

// The name by which the simulator's title calls the table.
base::Result<QString> TitleKey(const QString& path) {
    const QString name = catalogue::GetFileName(path);
    if (!name.trimmed().isEmpty() && name.size() < kExtensionLength)
        return base::Status(base::StatusCode::kInvalidArgument,
                            "Invalid procedure call or argument", platform::kInvalidProcedureCall);
    return catalogue::StripExtension(name);
}

}  // namespace

// There is no blank between the "-" and the path: the simulator wants it so.
QString SimulatorCommandLine(const QString& executable, const QString& table) {
    return platform::QuoteProgramName(executable) + QStringLiteral(" /Play -") +
           platform::QuoteForCommandLine(table);
}

Launcher::Launcher(LauncherParts parts, MainWindowActions main_window)
    : parts_(parts), main_window_(std::move(main_window)) {}

void Launcher::PlayTable(const QString& path, const QString& display_name, qint64 id) {
    const base::Status counted = UpdatePlayCount(*parts_.catalogue.CatalogueConnection, id);
    if (!counted.ok()) {
        catalogue::ShowError(parts_.prompts, counted);
        return;
    }
    if (parts_.catalogue.values->VisualPinballExe.isEmpty()) {
        AskForExecutable();
        return;
    }
    Play play{platform::ExistingName(parts_.catalogue.values->paths.Of(path)), display_name, {}};
    const base::Status played = Run(play);
    if (!played.ok()) ShowFailure(played);
    if (play.state_before && watching_) main_window_.restore(*play.state_before);
}

void Launcher::AskForExecutable() {
    platform::Message message;
    message.text = LauncherTexts::tr("Please Set the location of the VP executable");
    message.icon = platform::MessageIcon::kInformation;
    parts_.prompts.Ask(message);
    main_window_.show_settings();
}

base::Status Launcher::Run(Play& play) {
    RETURN_IF_ERROR(platform::ChangeDirectory(catalogue::GetFolder(play.path)));
    ASSIGN_OR_RETURN(const QString title_key, TitleKey(play.path));
    play.state_before = main_window_.state();
    RETURN_IF_ERROR(Start(play));
    if (parts_.catalogue.values->WaitForSimulator && !WaitForPlay(title_key, play.display_name))
        return {};
    Watch(title_key);
    if (watching_) CloseSimulator(title_key);
    return {};
}

// The status window is closed again when this returns.
base::Status Launcher::Start(const Play& play) {
    const catalogue::ProcessValues& values = *parts_.catalogue.values;
    const QString command_line = SimulatorCommandLine(values.VisualPinballExe, play.path);
    parts_.status.Show(play.display_name);
    if (values.SoundOn)
        parts_.sounds.PlaySynchronously(
            platform::FileIn(values.ApplicationFolder, catalogue::kPlaySound.toString()));
    const auto started = parts_.programs.Start(command_line);
    if (started.ok()) {
        last_task_id_ = *started;
        if (values.MinimiseOnPlay) main_window_.minimise();
    }
    parts_.status.Unload();
    return started.status();
}

void Launcher::Watch(const QString& title_key) {
    const bool is_patient = parts_.catalogue.values->WaitForSimulator;
    while (watching_ && IsPlaying(title_key))
        if (is_patient)
            parts_.events.ProcessEventsFor(kAskEveryMs);
        else
            parts_.events.ProcessEvents();
}

bool Launcher::IsPlaying(const QString& title_key) {
    return parts_.windows.Find(kSimulatorClass, PlayingTitle(title_key)).has_value();
}

bool Launcher::WaitForPlay(const QString& title_key, const QString& display_name) {
    const std::int64_t simulator = last_task_id_;
    QString reason = LauncherTexts::tr("The simulator shows no window of %1");
    for (int waited_ms = 0; watching_ && waited_ms < kPatienceMs; waited_ms += kAskEveryMs) {
        if (IsPlaying(title_key)) return true;
        if (!parts_.programs.IsRunning(simulator)) {
            reason = LauncherTexts::tr("The simulator has ended without playing %1");
            break;
        }
        parts_.events.ProcessEventsFor(kAskEveryMs);
    }
    if (watching_ && main_window_.tell) main_window_.tell(reason.arg(display_name));
    return false;
}

void Launcher::CloseSimulator(const QString& title_key) {
    const auto window = parts_.windows.Find(kSimulatorClass, EndedTitle(title_key));
    if (window) parts_.windows.RequestClose(*window);
}

// The text names the executable, although the folder that is not found may be the table's.
void Launcher::ShowFailure(const base::Status& failure) {
    platform::Message message;
    message.text = failure.number() == platform::kPathNotFound
                       ? LauncherTexts::tr("The Visual Pinball Executable Could not Be Found!!")
                       : catalogue::FailureText(failure);
    message.icon = platform::MessageIcon::kCritical;
    parts_.prompts.Ask(message);
}

}  // namespace launcher
