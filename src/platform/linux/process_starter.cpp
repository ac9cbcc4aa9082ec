#include "platform/process_starter.h"

#include "platform/command_line.h"
#include "platform/files.h"
#include "platform/linux/existing_name.h"
#include "platform/linux/file_names.h"
#include "platform/linux/spawn.h"
#include "platform/linux/system_error.h"
#include "platform/linux/windows_program.h"

#include <QtCore/QFile>

#include <cerrno>
#include <csignal>
#include <sys/stat.h>
#include <system_error>

namespace platform {
namespace {

// What the first line of a script names as its interpreter; empty: it is none.
QString InterpreterOf(const QString& program) {
    constexpr qint64 kMaxBytes = 512;  // the kernel reads fewer
    QFile file;
    if (!OpenFile(file, program, QIODevice::ReadOnly)) return {};
    const QByteArray line = file.readLine(kMaxBytes);
    if (!line.startsWith("#!")) return {};
    return QFile::decodeName(line.mid(2).trimmed().replace('\t', ' ').split(' ').constFirst());
}

base::Status CannotStart(int error_number, const QString& program) {
    switch (error_number) {
    case ENOENT:
        // The system answers the same when it is the interpreter of a script that is missing.
        if (const QString interpreter = InterpreterOf(program);
            !interpreter.isEmpty() && !FileExists(interpreter))
            return FileError(base::StatusCode::kNotFound,
                             ("The program that this script needs, " + interpreter.toStdString() +
                              ", is not installed")
                                 .c_str(),
                             program, kFileNotFound);
        return FileError(base::StatusCode::kNotFound, "File not found", program, kFileNotFound);
    case EACCES:
    case EPERM:
        return FileError(base::StatusCode::kPermissionDenied,
                         "Permission denied. The file is not marked as a program", program,
                         kPermissionDenied);
    case ENOEXEC:
        return FileError(base::StatusCode::kUnsupported,
                         "The file is not a program that this system can start", program,
                         kInvalidProcedureCall);
    default: {
        const std::string reason = std::generic_category().message(error_number);
        return FileError(base::StatusCode::kIoError,
                         ("The program cannot be started (" + reason + ")").c_str(), program,
                         kInvalidProcedureCall);
    }
    }
}

bool IsFolder(const std::string& name) {
    struct stat facts {};
    return stat(name.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

// The folder part of a path; "." for a bare name.
std::string FolderOf(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    if (slash == std::string::npos) return ".";
    return name.substr(0, slash + 1);
}

base::Status CheckProgram(const QString& program) {
    const std::string name = ExistingSystemPath(program);
    if (name.empty() || !IsFolder(FolderOf(name)))
        return FileError(base::StatusCode::kNotFound, "Path not found", program, kPathNotFound);
    if (IsFolder(name))
        return FileError(base::StatusCode::kPermissionDenied,
                         "Permission denied. A folder is not a program", program,
                         kPermissionDenied);
    if (!FileExists(program))
        return FileError(base::StatusCode::kNotFound, "File not found", program, kFileNotFound);
    return {};
}

base::Result<std::int64_t> StartProgram(const QString& program, const QStringList& arguments,
                                        const std::vector<std::string>& variables = {}) {
    std::vector<std::string> words{ExistingSystemPath(program)};
    for (const QString& argument : arguments)
        words.push_back(EncodeFileName(argument));
    const SpawnResult started = Spawn(words, variables);
    if (started.error_number != 0) return CannotStart(started.error_number, program);
    return std::int64_t{started.process_id};
}

base::Result<std::int64_t> StartWithWine(const QString& program, const QStringList& arguments) {
    const QString wine = FindWine();
    if (wine.isEmpty())
        return FileError(base::StatusCode::kUnsupported,
                         "Wine, which runs Windows programs here, is not installed", program);
    ASSIGN_OR_RETURN(const QString for_wine, ProgramForWine(program));
    QStringList words{for_wine};
    for (const QString& argument : arguments)
        words.push_back(ArgumentForWindows(argument));
    return StartProgram(wine, words, WineEnvironment());
}

// Ended, though nobody has asked for its exit code yet.
bool IsZombie(std::int64_t process_id) {
    QFile facts(QStringLiteral("/proc/%1/stat").arg(process_id));
    if (!facts.open(QIODevice::ReadOnly)) return false;
    const QByteArray line = facts.readAll();
    // The name of the program, in parentheses, may hold anything; the state follows it.
    const QByteArray behind_name = line.mid(line.lastIndexOf(')') + 1).trimmed();
    return behind_name.startsWith('Z') || behind_name.startsWith('X');
}

class LinuxProcessStarter final : public ProcessStarter {
public:
    base::Result<std::int64_t> Start(const QString& command_line) override {
        QStringList words = SplitCommandLine(command_line);
        const QString program = words.isEmpty() ? QString() : words.takeFirst();
        RETURN_IF_ERROR(CheckProgram(program));
        if (IsWindowsProgram(program)) return StartWithWine(program, words);
        return StartProgram(program, words);
    }

    bool IsRunning(std::int64_t process_id) override {
        const bool is_there = kill(static_cast<pid_t>(process_id), 0) == 0 || errno == EPERM;
        return is_there && !IsZombie(process_id);
    }

    base::Result<std::int64_t> StartTool(const QString& program) override {
        RETURN_IF_ERROR(CheckProgram(program));
        return StartProgram(program, {});
    }
};

}  // namespace

std::unique_ptr<ProcessStarter> MakeProcessStarter() {
    return std::make_unique<LinuxProcessStarter>();
}

}  // namespace platform
