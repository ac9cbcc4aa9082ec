// tavolo-make-icon FROM.drawing TO.ico: the build's tool that makes the icon of programs for
// Windows.
#include "widgets/drawing.h"

#include <QtCore/QBuffer>
#include <QtCore/QDataStream>
#include <QtCore/QFile>
#include <QtGui/QImage>

#include <array>
#include <cstdio>

namespace {

// Pixels: what the desktop shows at 100 to 300 %, and large.
constexpr std::array kSides = {16, 20, 24, 32, 40, 48, 64, 96, 256};
constexpr int kHeaderBytes = 6;
constexpr int kEntryBytes = 16;

QByteArray Png(const widgets::Drawing& drawing, int side) {
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.Paint(painter, QRectF(0, 0, side, side));
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return image.save(&buffer, "PNG") ? bytes : QByteArray();
}

// A header, an entry for each picture, the pictures.
QByteArray Icon(const widgets::Drawing& drawing) {
    QByteArray entries;
    QByteArray pictures;
    QDataStream stream(&entries, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << quint16{0} << quint16{1} << static_cast<quint16>(kSides.size());
    constexpr int kFirst = kHeaderBytes + kEntryBytes * static_cast<int>(kSides.size());
    for (const int side : kSides) {
        const QByteArray png = Png(drawing, side);
        const auto short_side = static_cast<quint8>(side);  // 0 stands for 256
        stream << short_side << short_side << quint8{0} << quint8{0};
        stream << quint16{1} << quint16{32};  // planes, bits of a pixel
        stream << static_cast<quint32>(png.size())
               << static_cast<quint32>(kFirst + pictures.size());
        pictures += png;
    }
    return entries + pictures;
}

bool Make(const QString& from, const QString& to) {
    QFile source(from);
    if (!source.open(QIODevice::ReadOnly)) return false;
    const auto drawing = widgets::FromBytes(source.readAll());
    if (!drawing) return false;
    const QByteArray icon = Icon(*drawing);
    QFile file(to);
    return file.open(QIODevice::WriteOnly) && file.write(icon) == icon.size() && file.flush();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && Make(QFile::decodeName(argv[1]), QFile::decodeName(argv[2]))) return 0;
    std::fputs("tavolo-make-icon FROM.drawing TO.ico: no icon was made\n", stderr);
    return 1;
}
