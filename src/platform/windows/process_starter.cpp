#include "platform/process_starter.h"

#include "platform/command_line.h"
#include "platform/file_error.h"
#include "platform/files.h"
#include "platform/windows/disk.h"
#include "platform/windows/last_error.h"
#include "platform/windows/programs.h"
#include "platform/windows/qt_text.h"

namespace platform {
namespace {

constexpr DWORD kElevationRequired = 740;  // ERROR_ELEVATION_REQUIRED, which older headers lack

base::Status CannotStart(DWORD error, const QString& program) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
        return FileError(base::StatusCode::kNotFound, "File not found", program, kFileNotFound);
    case ERROR_PATH_NOT_FOUND:
        return FileError(base::StatusCode::kNotFound, "Path not found", program, kPathNotFound);
    case ERROR_ACCESS_DENIED:
        return FileError(base::StatusCode::kPermissionDenied, "Permission denied", program,
                         kPermissionDenied);
    case kElevationRequired:
        return FileError(base::StatusCode::kPermissionDenied,
                         "The program is set to run as administrator only, which cannot be done "
                         "from here",
                         program, kInvalidProcedureCall);
    case ERROR_BAD_EXE_FORMAT:
    case ERROR_EXE_MACHINE_TYPE_MISMATCH:
        return FileError(base::StatusCode::kUnsupported,
                         "The file is not a program that this system can start", program,
                         kInvalidProcedureCall);
    default: {
        const std::string reason = ErrorStatus(error, DiskPath(program)).message();
        return {base::StatusCode::kIoError, "The program cannot be started: " + reason,
                kInvalidProcedureCall};
    }
    }
}

// The folder part of a path; "." for a bare name.
std::filesystem::path FolderOf(const std::filesystem::path& program) {
    return program.has_parent_path() ? program.parent_path() : std::filesystem::path(L".");
}

base::Status CheckProgram(const QString& program) {
    const std::filesystem::path path = DiskPath(program);
    const auto folder = FactsOf(FolderOf(path));
    if (path.empty() || !folder || !folder->is_folder)
        return FileError(base::StatusCode::kNotFound, "Path not found", program, kPathNotFound);
    const auto facts = FactsOf(path);
    if (!facts)
        return FileError(base::StatusCode::kNotFound, "File not found", program, kFileNotFound);
    if (facts->is_folder)
        return FileError(base::StatusCode::kPermissionDenied,
                         "Permission denied. A folder is not a program", program,
                         kPermissionDenied);
    return {};
}

class SystemProcessStarter final : public ProcessStarter {
public:
    base::Result<std::int64_t> Start(const QString& command_line) override {
        const QStringList words = SplitCommandLine(command_line);
        return StartLine(words.isEmpty() ? QString() : words.constFirst(), command_line,
                         ShownAs::kMinimised);
    }

    base::Result<std::int64_t> StartTool(const QString& program) override {
        return StartLine(program, QuoteProgramName(program), ShownAs::kNormal);
    }

    bool IsRunning(std::int64_t process_id) override {
        return programs_.IsRunning(static_cast<DWORD>(process_id));
    }

private:
    base::Result<std::int64_t> StartLine(const QString& program, const QString& command_line,
                                         ShownAs shown_as) {
        RETURN_IF_ERROR(CheckProgram(program));
        const Programs::Started started =
            programs_.Start(DiskPath(program), Wide(command_line), shown_as);
        if (started.error != ERROR_SUCCESS) return CannotStart(started.error, program);
        return std::int64_t{started.process_id};
    }

    Programs programs_;
};

}  // namespace

std::unique_ptr<ProcessStarter> MakeProcessStarter() {
    return std::make_unique<SystemProcessStarter>();
}

}  // namespace platform
