#include "platform/shell.h"

#include "platform/linux/file_names.h"
#include "platform/linux/help_viewer.h"
#include "platform/linux/spawn.h"
#include "platform/linux/system_error.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>

#include <array>
#include <chrono>
#include <future>
#include <system_error>

namespace platform {
namespace {

// What desktops call it, the more telling ones first.
constexpr std::array kInformationTools = {
    "hardinfo2",           "hardinfo",  "kinfocenter",          "gnome-system-monitor",
    "mate-system-monitor", "ksysguard", "plasma-systemmonitor", "xfce4-taskmanager"};

QString FindProgram(const char* name) {
    return QStandardPaths::findExecutable(QString::fromLatin1(name));
}

// A target that looks like an option names a file of the current directory.
QString AsArgument(const QString& target) {
    return target.startsWith(u'-') ? QStringLiteral("./") + target : target;
}

// The letter case of an address's scheme means nothing (RFC 3986, 3.1), but desktops look it up as
// it stands in registers that hold lower case. A path has no colon before its first separator.
QString WithSchemeInLowerCase(QString target) {
    static const QRegularExpression scheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]+:"));
    const auto found = scheme.match(target);
    if (found.hasMatch()) target.replace(0, found.capturedLength(), found.captured().toLower());
    return target;
}

// An opener that finds nobody for its target says so within a moment. One that still runs after
// this time has become the viewer itself, and its end is the user's business.
constexpr std::chrono::seconds kOpenersMoment{2};
constexpr std::chrono::milliseconds kRepaintInterval{20};

std::vector<std::string> Command(const QString& program, const QStringList& arguments) {
    std::vector<std::string> command = {EncodeFileName(program)};
    for (const QString& argument : arguments)
        command.push_back(EncodeFileName(argument));
    return command;
}

base::Status StartOutcome(int error_number, const QString& program) {
    if (error_number == 0) return {};
    return FileError(base::StatusCode::kIoError,
                     std::generic_category().message(error_number).c_str(), program);
}

base::Status Run(const QString& program, const QStringList& arguments) {
    return StartOutcome(Spawn(Command(program, arguments)).error_number, program);
}

// The windows go on meanwhile: holding back keys and clicks would lose them. Another address may be
// opened in here.
bool EndsWithinAMoment(const std::future<int>& ended) {
    const auto give_up = std::chrono::steady_clock::now() + kOpenersMoment;
    while (ended.wait_for(kRepaintInterval) != std::future_status::ready) {
        if (std::chrono::steady_clock::now() >= give_up) return false;
        QCoreApplication::processEvents();
    }
    return true;
}

// The exit codes of xdg-open: 2 no such file, 3 a required tool could not be found, 4 the action
// failed (its manual page).
base::Status RunOpener(const QString& opener, const QString& target) {
    WatchedProgram started = SpawnWatched(Command(opener, {target}));
    RETURN_IF_ERROR(StartOutcome(started.error_number, opener));
    if (!EndsWithinAMoment(started.ended)) return {};
    const int exit_code = started.ended.get();
    if (exit_code == 0) return {};
    return {base::StatusCode::kNotFound, "Nothing on this desktop opens it (xdg-open ended with " +
                                             std::to_string(exit_code) + ")."};
}

class DesktopShell final : public Shell {
public:
    base::Status Open(const QString& target) override {
        if (target.isEmpty() || target.contains(QChar(0)))
            return {base::StatusCode::kInvalidArgument, "There is nothing to open."};
        const QString opener = FindProgram("xdg-open");
        if (opener.isEmpty())
            return {base::StatusCode::kUnsupported,
                    "xdg-open, which opens files and addresses on this desktop, is not installed."};
        return RunOpener(opener, AsArgument(WithSchemeInLowerCase(target)));
    }

    base::Status OpenHelp(const QString& file, const QString& page) override {
        const auto viewer = ViewerAtPage(DefaultHelpViewer(), file, page);
        if (!viewer) return Open(file);
        const QString program = QStandardPaths::findExecutable(viewer->program);
        return program.isEmpty() ? Open(file) : Run(program, viewer->arguments);
    }

    QString SystemInformationTool() override {
        for (const char* name : kInformationTools)
            if (QString tool = FindProgram(name); !tool.isEmpty()) return tool;
        return {};
    }
};

}  // namespace

std::unique_ptr<Shell> MakeShell() {
    return std::make_unique<DesktopShell>();
}

}  // namespace platform
