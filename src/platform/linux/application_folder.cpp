#include "platform/application_folder.h"

#include "platform/files.h"
#include "platform/linux/file_names.h"

#include <QtCore/QStandardPaths>

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

QString ProgramFolder() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return DecodeFileName(program.parent_path().native());
}

QString PicturesFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
}

// QStandardPaths would decode the variables in the locale's character set, which has not all names.
// Source: the XDG base directories, freedesktop.org.
QString UserDataFolder() {
    const char* data = std::getenv("XDG_DATA_HOME");
    const char* home = std::getenv("HOME");
    if (data != nullptr && data[0] == '/')
        return FileIn(DecodeFileName(data), QStringLiteral("tavolo"));
    if (home != nullptr && home[0] == '/')
        return FileIn(DecodeFileName(home), QStringLiteral(".local/share/tavolo"));
    return FileIn(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation),
                  QStringLiteral("tavolo"));
}

QString ArgumentText(const char* argument) {
    return DecodeFileName(argument);
}

bool IsWritableFolder(const QString& folder) {
    struct stat facts {};
    const std::string name = SystemPath(folder);
    return !name.empty() && stat(name.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode) &&
           access(name.c_str(), W_OK | X_OK) == 0;
}

QString FileIn(const QString& folder, const QString& name) {
    if (folder.endsWith(NativeSeparator())) return folder + name;
    return folder + NativeSeparator() + name;
}

}  // namespace platform
