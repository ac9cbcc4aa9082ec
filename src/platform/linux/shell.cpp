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

// Programs that show system information, the most detailed first.
constexpr std::array kInformationTools = {
    "hardinfo2",           "hardinfo",  "kinfocenter",          "gnome-system-monitor",
    "mate-system-monitor", "ksysguard", "plasma-systemmonitor", "xfce4-taskmanager"};

QString FindProgram(const char* name) {
    return QStandardPaths::findExecutable(QString::fromLatin1(name));
}

// A leading "-" would be an option to the opener: such a target is a file of the current directory.
QString AsArgument(const QString& target) {
    return target.startsWith(u'-') ? QStringLiteral("./") + target : target;
}

// Schemes of addresses are case-insensitive (RFC 3986, 3.1), but desktops look them up in lower
// case. A path has no colon before its first separator.
QString WithSchemeInLowerCase(QString target) {
    static const QRegularExpression scheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]+:"));
    const auto found = scheme.match(target);
    if (found.hasMatch()) target.replace(0, found.capturedLength(), found.captured().toLower());
    return target;
}

// An opener without a program for the target ends within this time. One that still runs has become
// the viewer itself.
constexpr std::chrono::seconds kOpenerTimeout{2};
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

// Processes all events while it waits: keys and clicks that were held back would be lost.
// Reentrant: the user may open another address meanwhile.
bool EndsInTime(const std::future<int>& ended) {
    const auto give_up = std::chrono::steady_clock::now() + kOpenerTimeout;
    while (ended.wait_for(kRepaintInterval) != std::future_status::ready) {
        if (std::chrono::steady_clock::now() >= give_up) return false;
        QCoreApplication::processEvents();
    }
    return true;
}

// Exit codes of xdg-open (its manual page): 2 no such file, 3 a required tool could not be found,
// 4 the action failed.
base::Status RunOpener(const QString& opener, const QString& target) {
    WatchedProgram started = SpawnWatched(Command(opener, {target}));
    RETURN_IF_ERROR(StartOutcome(started.error_number, opener));
    if (!EndsInTime(started.ended)) return {};
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

    bool HasHelpViewer() override { return !DefaultHelpViewer().isEmpty(); }

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
