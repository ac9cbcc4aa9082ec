#include "platform/application_folder.h"

#include "base/file_names.h"
#include "platform/files.h"
#include "platform/text_view.h"
#include "platform/windows/disk.h"
#include "platform/windows/qt_text.h"
#include "platform/windows/windows_header.h"

#include <QtCore/QDir>
#include <QtCore/QStandardPaths>

namespace platform {
namespace {

std::filesystem::path ProgramFile() {
    std::wstring name;
    DWORD size = 0;
    // A name that does not fit is cut off and fills all the room.
    do {
        name.resize(name.size() + 1024);
        size = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    } while (size == name.size());
    name.resize(size);
    return name;
}

// The folder for what belongs to this user on this computer.
QString LocalData() {
    return QDir::toNativeSeparators(
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
}

}  // namespace

QString ProgramFolder() {
    const std::filesystem::path program = ProgramFile();
    return FromWide(FinalPath(program).value_or(program).parent_path().native());
}

QString PicturesFolder() {
    return QDir::toNativeSeparators(
        QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
}

// A catalogue holds paths of this computer, so it does not go from one to the next with the user.
QString UserDataFolder() {
    return FileIn(LocalData(), QStringLiteral("Tavolo"));
}

QString UserCacheFolder() {
    return FileIn(UserDataFolder(), QStringLiteral("Cache"));
}

// The desktop keeps its own in a form that is no other program's.
QString SharedThumbnailFolder() {
    return {};
}

QString ArgumentText(const char* argument) {
    return ToQString(base::DecodeFileName(argument));
}

bool IsWritableFolder(const QString& folder) {
    return MayAddFiles(DiskPath(folder));
}

QString FileIn(const QString& folder, const QString& name) {
    if (folder.endsWith(NativeSeparator()) || folder.endsWith(u'/')) return folder + name;
    return folder + NativeSeparator() + name;
}

}  // namespace platform
