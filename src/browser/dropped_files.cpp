#include "browser/dropped_files.h"

#include "platform/files.h"

#include <QtCore/QMimeData>
#include <QtCore/QUrl>

namespace browser {
namespace {

bool HasExtension(const QString& path, std::initializer_list<QStringView> extensions) {
    for (const QStringView extension : extensions)
        if (path.endsWith(extension, Qt::CaseInsensitive)) return true;
    return false;
}

}  // namespace

DroppedFiles DroppedFilesOf(const QMimeData& data) {
    DroppedFiles dropped;
    for (const QUrl& url : data.urls()) {
        if (!url.isLocalFile()) continue;
        const QString path = platform::AbsolutePath(url.toLocalFile());
        const bool is_folder = platform::FolderExists(path);
        if (!is_folder && !platform::FileExists(path)) continue;
        if (is_folder || HasExtension(path, {u".vpt"})) {
            dropped.tables.append(path);
        } else if (HasExtension(path, {u".bmp", u".jpg", u".jpeg", u".gif"})) {
            if (dropped.picture.isEmpty()) dropped.picture = path;
        } else if (HasExtension(path, {u".txt"})) {
            if (dropped.text.isEmpty()) dropped.text = path;
        }
    }
    return dropped;
}

}  // namespace browser
