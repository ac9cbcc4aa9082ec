#include "thumbnails/table_picture.h"

#include "platform/application_folder.h"
#include "platform/files.h"
#include "tableinfo/storage_tools.h"
#include "thumbnails/thumbnail_file.h"

#include <optional>
#include <utility>

namespace thumbnails {
namespace {

using widgets::PictureSource;

// The file that a screenshot is in, and where the small picture of it is kept.
struct Origin {
    QString path;
    QString folder;
    bool is_inside = false;  // of a table file
};

Origin OriginOf(const TablePicture& picture, const ThumbnailFolders& folders) {
    if (IsUsablePictureFile(picture.image_file))
        return {picture.image_file, folders.shared.isEmpty() ? folders.own : folders.shared, false};
    return {picture.table_file, folders.own, true};
}

PictureSource SourceOf(const Origin& origin) {
    if (!origin.is_inside) return PictureSource::File(origin.path);
    return PictureSource::Bytes(tableinfo::LoadTableScreenshot(origin.path).value_or(QByteArray()));
}

// In a form that is painted without being converted.
QImage Fitted(QImage image, QSize box) {
    if (image.width() > box.width() || image.height() > box.height())
        image = image.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return std::move(image).convertToFormat(
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

}  // namespace

bool IsUsablePictureFile(const QString& path) {
    return path.contains(QLatin1Char('.')) && platform::FileExists(path);
}

PictureSource ScreenshotOf(const TablePicture& picture) {
    return SourceOf(OriginOf(picture, {}));
}

ThumbnailFolders UserThumbnailFolders() {
    return {platform::SharedThumbnailFolder(),
            platform::FileIn(platform::UserCacheFolder(), QStringLiteral("thumbnails"))};
}

base::Result<QImage> LoadThumbnail(const TablePicture& picture, QSize box,
                                   const ThumbnailFolders& folders) {
    const Origin origin = OriginOf(picture, folders);
    const std::optional<Original> original = OriginalOf(origin.path);
    const base::Status none = {base::StatusCode::kNotFound, "There is no screenshot."};
    if (!original) return none;
    const int side = SideFor(box);
    if (auto kept = ReadThumbnail(origin.folder, *original, side))
        return Fitted(std::move(*kept), box);
    const PictureSource source = SourceOf(origin);
    if (source.is_empty()) return none;
    ASSIGN_OR_RETURN(QImage image, widgets::DecodePicture(source, QSize(side, side)));
    // Without it the picture is decoded again the next time.
    WriteThumbnail(origin.folder, *original, side, image).Ignore();
    return Fitted(std::move(image), box);
}

}  // namespace thumbnails
