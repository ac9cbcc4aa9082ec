#include "catalogue/collection_folders.h"

#include "catalogue/path_names.h"
#include "platform/files.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <algorithm>

namespace catalogue {
namespace {

// A hundred paths of the greatest length.
constexpr qint64 kMaxBytes = 1 << 20;

base::Status Store(const QString& file, const QStringList& folders) {
    return platform::SaveFile(file, QJsonDocument(QJsonArray::fromStringList(folders)).toJson());
}

}  // namespace

QString CollectionFoldersFile(const QString& catalogue_file) {
    return catalogue_file + QStringLiteral("-folders");
}

base::Result<QStringList> CollectionFolders(const QString& catalogue_file) {
    const QString file = CollectionFoldersFile(catalogue_file);
    if (!platform::FileExists(file)) return QStringList();
    ASSIGN_OR_RETURN(const QByteArray bytes, platform::ReadFile(file, kMaxBytes));
    const QJsonDocument all = QJsonDocument::fromJson(bytes);
    QStringList folders;
    for (const QJsonValue folder : all.array())
        if (!folder.toString().isEmpty()) folders.append(folder.toString());
    if (!all.isArray() || folders.size() != all.array().size() ||
        folders.size() > kMaxCollectionFolders)
        return base::Status(base::StatusCode::kCorruption,
                            file.toStdString() + " is not a list of folders");
    return folders;
}

base::Status RememberCollectionFolder(const QString& catalogue_file, const QString& folder) {
    const auto known = CollectionFolders(catalogue_file);
    if (!known.ok() && known.status().code() != base::StatusCode::kCorruption)
        return known.status();
    QStringList folders = known.value_or({});
    const QString added = WithTrailingSeparator(folder);
    const bool is_known = std::ranges::any_of(folders, [&](const QString& other) {
        return added.startsWith(WithTrailingSeparator(other));
    });
    if (is_known) return {};
    folders.removeIf(
        [&](const QString& other) { return WithTrailingSeparator(other).startsWith(added); });
    folders.append(folder);
    if (folders.size() > kMaxCollectionFolders) folders.removeFirst();
    return Store(CollectionFoldersFile(catalogue_file), folders);
}

base::Status ForgetCollectionFolder(const QString& catalogue_file, const QString& folder) {
    ASSIGN_OR_RETURN(QStringList folders, CollectionFolders(catalogue_file));
    if (folders.removeAll(folder) == 0) return {};
    return Store(CollectionFoldersFile(catalogue_file), folders);
}

}  // namespace catalogue
