#include "platform/application_folder.h"

#include "platform/files.h"
#include "platform/linux/file_names.h"

#include <QtCore/QStandardPaths>

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

// One of the XDG base directories (freedesktop.org): what `variable` names, or `in_home` in the
// home folder. QStandardPaths would decode the variables in the locale's character set, which has
// not all names.
QString BaseFolder(const char* variable, const QString& in_home,
                   QStandardPaths::StandardLocation otherwise) {
    const char* folder = std::getenv(variable);
    const char* home = std::getenv("HOME");
    if (folder != nullptr && folder[0] == '/') return DecodeFileName(folder);
    if (home != nullptr && home[0] == '/') return FileIn(DecodeFileName(home), in_home);
    return QStandardPaths::writableLocation(otherwise);
}

QString CacheFolder() {
    return BaseFolder("XDG_CACHE_HOME", QStringLiteral(".cache"),
                      QStandardPaths::GenericCacheLocation);
}

}  // namespace

QString ProgramFolder() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return DecodeFileName(program.parent_path().native());
}

QString PicturesFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
}

QString UserDataFolder() {
    return FileIn(BaseFolder("XDG_DATA_HOME", QStringLiteral(".local/share"),
                             QStandardPaths::GenericDataLocation),
                  QStringLiteral("tavolo"));
}

QString UserCacheFolder() {
    return FileIn(CacheFolder(), QStringLiteral("tavolo"));
}

QString SharedThumbnailFolder() {
    return FileIn(CacheFolder(), QStringLiteral("thumbnails"));
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
