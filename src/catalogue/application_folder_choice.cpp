#include "catalogue/application_folder_choice.h"

#include "catalogue/program_files.h"
#include "platform/application_folder.h"
#include "platform/files.h"

#include <algorithm>
#include <optional>

namespace catalogue {
namespace {

const QString& CatalogueName() {
    static const QString name = kCatalogueFile.toString();
    return name;
}

QStringList CompanionNames() {
    return {kPlaySound.toString(), kClickSound.toString(), kHelpFile.toString()};
}

bool Holds(const QString& folder, const QString& name) {
    return platform::FileExists(platform::FileIn(folder, name));
}

// True for the program's files in its folder: the catalogue with its backup, journal and lock, the
// delivered files, and the files that the program writes.
bool IsOurs(const QString& name) {
    static const QStringList others = CompanionNames()
                                      << kTemporaryJpeg.toString() << kTemporaryBitmap.toString();
    return name.startsWith(QLatin1String("pinball."), Qt::CaseInsensitive) ||
           others.contains(name, Qt::CaseInsensitive);
}

// nullopt when the folder cannot be listed.
std::optional<QStringList> NamesIn(const QString& folder) {
    QStringList names;
    const base::Status listed = platform::ListFolder(
        folder, [&](const platform::FolderEntry& entry) { names.append(entry.name); });
    if (!listed.ok()) return std::nullopt;
    return names;
}

// The user's data folder may contain files of other programs; any other folder must be empty.
bool IsFirstStart(const QString& folder, bool is_user_data) {
    const auto names = NamesIn(folder);
    if (!names) return false;
    return is_user_data ? std::none_of(names->begin(), names->end(), IsOurs) : names->isEmpty();
}

}  // namespace

KnownFolders FoldersOfThisProgram() {
    const QString program = platform::ProgramFolder();
    return {program, platform::AbsolutePath(program + QStringLiteral("/../share/tavolo")),
            platform::UserDataFolder()};
}

QString ChooseApplicationFolder(const QString& wanted, const KnownFolders& folders) {
    if (!wanted.isEmpty()) return platform::AbsolutePath(wanted);
    const bool is_installed =
        Holds(folders.delivered, CatalogueName()) && !Holds(folders.program, CatalogueName());
    if (platform::IsWritableFolder(folders.program) && !is_installed) return folders.program;
    return folders.user_data;
}

QStringList MissingForFirstStart(const QString& application_folder, const KnownFolders& folders) {
    const bool is_user_data = application_folder == folders.user_data;
    const bool will_be_made = is_user_data && !platform::FolderExists(application_folder);
    const bool is_first = will_be_made || IsFirstStart(application_folder, is_user_data);
    QStringList missing;
    if (!is_first || Holds(folders.delivered, CatalogueName())) return missing;
    for (const QString& name : QStringList(CatalogueName()) + CompanionNames())
        if (!Holds(folders.delivered, name) &&
            (name == CatalogueName() || !Holds(folders.program, name)))
            missing.append(platform::FileIn(folders.delivered, name));
    return missing;
}

void PrepareFirstStart(const QString& application_folder, const KnownFolders& folders) {
    const bool is_user_data = application_folder == folders.user_data;
    // A failure shows when the catalogue is opened.
    if (is_user_data) platform::MakeFolder(application_folder).Ignore();
    const auto copy = [&](const QString& source, const QString& name) {
        return platform::CopyNewFile(platform::FileIn(source, name),
                                     platform::FileIn(application_folder, name));
    };
    const bool is_first = IsFirstStart(application_folder, is_user_data);
    const bool has_catalogue = is_user_data && Holds(application_folder, CatalogueName());
    if (!is_first && !has_catalogue) return;
    // The catalogue is copied first, so that a start that fails here is a first start again. It is
    // never copied from the program's folder: a catalogue there may be in use.
    if (is_first && !copy(folders.delivered, CatalogueName()).ok()) return;
    for (const QString& name : CompanionNames())
        copy(Holds(folders.delivered, name) ? folders.delivered : folders.program, name).Ignore();
}

QString CatalogueOfFirstStart(const QString& application_folder, const KnownFolders& folders) {
    const bool is_user_data = application_folder == folders.user_data;
    const bool will_be_made = is_user_data && !platform::FolderExists(application_folder);
    if (!will_be_made && !IsFirstStart(application_folder, is_user_data)) return {};
    return platform::FileIn(folders.delivered, CatalogueName());
}

}  // namespace catalogue
