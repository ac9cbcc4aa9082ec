#include "app/application_folder_choice.h"

#include "platform/application_folder.h"
#include "platform/files.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace app {
namespace {

const QString& CatalogueName() {
    static const QString name = QStringLiteral("pinball.mdb");
    return name;
}

QStringList CompanionNames() {
    return {QStringLiteral("Pinball.wav"), QStringLiteral("slingshot.wav"),
            QStringLiteral("tavolo.chm")};
}

bool Holds(const QString& folder, const QString& name) {
    return platform::FileExists(platform::FileIn(folder, name));
}

// Copies carry the permissions of an installed file, which nobody but its owner may change.
void CopyDelivered(const QString& from, const QString& to) {
    if (!QFile::copy(from, to)) return;
    QFile copy(to);
    copy.setPermissions(copy.permissions() | QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

}  // namespace

KnownFolders FoldersOfThisProgram() {
    const QString program = platform::ProgramFolder();
    return {program, QDir::cleanPath(program + QStringLiteral("/../share/tavolo")),
            platform::UserDataFolder()};
}

QString ChooseApplicationFolder(const QString& wanted, const KnownFolders& folders) {
    if (!wanted.isEmpty()) return QDir::cleanPath(QFileInfo(wanted).absoluteFilePath());
    const bool is_installed =
        Holds(folders.delivered, CatalogueName()) && !Holds(folders.program, CatalogueName());
    if (platform::IsWritableFolder(folders.program) && !is_installed) return folders.program;
    return folders.user_data;
}

void PrepareFirstStart(const QString& application_folder, const KnownFolders& folders) {
    // The program's own folder is filled whatever it holds (nothing is overwritten); a folder that
    // the user named only when it is empty, so that a missing catalogue is told and not replaced by
    // an empty one.
    const bool is_ours = application_folder == folders.user_data;
    if (is_ours) QDir().mkpath(application_folder);
    const QDir folder(application_folder);
    if (!folder.exists()) return;
    if (!is_ours && !folder.isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden)) return;
    const auto copy = [&](const QString& source, const QString& name) {
        CopyDelivered(platform::FileIn(source, name), platform::FileIn(application_folder, name));
    };
    // Never from the program's folder: what is there may be somebody's catalogue.
    copy(folders.delivered, CatalogueName());
    for (const QString& name : CompanionNames())
        copy(Holds(folders.delivered, name) ? folders.delivered : folders.program, name);
}

}  // namespace app
