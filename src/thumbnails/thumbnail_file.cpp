#include "thumbnails/thumbnail_file.h"

#include "platform/application_folder.h"
#include "platform/files.h"
#include "widgets/picture_loader.h"

#include <QtCore/QBuffer>
#include <QtCore/QCryptographicHash>
#include <QtCore/QDateTime>

#include <algorithm>
#include <string_view>
#include <utility>

namespace thumbnails {
namespace {

struct Kind {
    int side;
    QStringView folder;
};
constexpr Kind kKinds[] = {
    {128, u"normal"}, {256, u"large"}, {512, u"x-large"}, {1024, u"xx-large"}};

const Kind& KindOf(int side) {
    const auto* const kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                          [&](const Kind& each) { return each.side >= side; });
    return kind == std::end(kKinds) ? kKinds[std::size(kKinds) - 1] : *kind;
}

// Keys of a thumbnail's texts.
QString UriKey() {
    return QStringLiteral("Thumb::URI");
}
QString ModifiedKey() {
    return QStringLiteral("Thumb::MTime");
}

bool StaysInUri(char8_t byte) {
    if ((byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
        (byte >= '0' && byte <= '9'))
        return true;
    constexpr std::u8string_view kMarks = u8"-_.!~*'()/&=:@+$,";
    return kMarks.find(byte) != std::u8string_view::npos;
}

}  // namespace

QByteArray UriOf(const QString& path) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const std::u8string name = platform::ToPath(platform::AbsolutePath(path)).generic_u8string();
    QByteArray uri = name.starts_with(u8'/') ? "file://" : "file:///";
    for (const char8_t byte : name) {
        if (StaysInUri(byte)) {
            uri += static_cast<char>(byte);
        } else {
            uri += '%';
            uri += kDigits[byte / 16];
            uri += kDigits[byte % 16];
        }
    }
    return uri;
}

std::optional<Original> OriginalOf(const QString& path) {
    const QDateTime modified = platform::LastModified(path);
    if (!modified.isValid()) return std::nullopt;
    return Original{UriOf(path), modified.toSecsSinceEpoch()};
}

int SideFor(QSize box) {
    return KindOf(std::max(box.width(), box.height())).side;
}

QString ThumbnailPath(const QString& folder, const QByteArray& uri, int side) {
    const QByteArray name = QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex();
    return platform::FileIn(platform::FileIn(folder, KindOf(side).folder.toString()),
                            QString::fromLatin1(name) + QStringLiteral(".png"));
}

std::optional<QImage> ReadThumbnail(const QString& folder, const Original& original, int side) {
    const QString path = ThumbnailPath(folder, original.uri, side);
    if (!platform::FileExists(path)) return std::nullopt;
    const auto source = widgets::PictureSource::File(path);
    const auto size = widgets::PictureSize(source);
    if (!size.ok() || size->width() > side || size->height() > side) return std::nullopt;
    auto image = widgets::DecodePicture(source, QSize(side, side));
    if (!image.ok()) return std::nullopt;
    const bool is_of_it = image->text(UriKey()).toLatin1() == original.uri &&
                          image->text(ModifiedKey()).toLongLong() == original.modified_s;
    return is_of_it ? std::optional(std::move(*image)) : std::nullopt;
}

base::Status WriteThumbnail(const QString& folder, const Original& original, int side,
                            const QImage& image) {
    const QImage pixels = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                        : QImage::Format_RGB32);
    // Without what the original says of itself.
    QImage kept(pixels.constBits(), pixels.width(), pixels.height(), pixels.bytesPerLine(),
                pixels.format());
    kept.setText(UriKey(), QString::fromLatin1(original.uri));
    kept.setText(ModifiedKey(), QString::number(original.modified_s));
    kept.setText(QStringLiteral("Software"), QStringLiteral("Tavolo"));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!kept.save(&buffer, "png")) return {base::StatusCode::kIoError, "PNG: not written"};
    return platform::SaveCacheFile(ThumbnailPath(folder, original.uri, side), bytes);
}

}  // namespace thumbnails
