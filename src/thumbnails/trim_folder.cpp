#include "thumbnails/trim_folder.h"

#include "platform/application_folder.h"
#include "platform/files.h"

#include <QtCore/QDateTime>

#include <algorithm>
#include <vector>

namespace thumbnails {
namespace {

struct KeptFile {
    QString path;
    qint64 bytes = 0;
    qint64 written_ms = 0;
};

void AddFiles(const QString& folder, std::vector<KeptFile>& files) {
    platform::ListFolder(folder, [&](const platform::FolderEntry& entry) {
        const QString path = platform::FileIn(folder, entry.name);
        if (entry.is_folder || entry.is_link || !entry.name.endsWith(QLatin1String(".png"))) return;
        files.push_back({path, platform::FileSize(path).value_or(0),
                         platform::LastModified(path).toMSecsSinceEpoch()});
    }).Ignore();
}

// In the folders of all kinds.
std::vector<KeptFile> FilesBelow(const QString& folder) {
    std::vector<KeptFile> files;
    platform::ListFolder(folder, [&](const platform::FolderEntry& entry) {
        if (entry.is_folder && !entry.is_link)
            AddFiles(platform::FileIn(folder, entry.name), files);
    }).Ignore();
    return files;
}

}  // namespace

void TrimThumbnails(const QString& folder, qint64 most_bytes) {
    std::vector<KeptFile> files = FilesBelow(folder);
    qint64 bytes = 0;
    for (const KeptFile& file : files)
        bytes += file.bytes;
    if (bytes <= most_bytes) return;
    std::sort(files.begin(), files.end(), [](const KeptFile& left, const KeptFile& right) {
        return left.written_ms < right.written_ms;
    });
    for (const KeptFile& file : files) {
        if (bytes <= most_bytes / 4 * 3) return;
        platform::RemoveFile(file.path);
        bytes -= file.bytes;
    }
}

}  // namespace thumbnails
