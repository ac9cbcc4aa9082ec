#include "widgets/drawing.h"

#include <QtCore/QDataStream>
#include <QtCore/QIODevice>
#include <QtCore/QRectF>

namespace widgets {
namespace {

// The build's Qt writes what the program's Qt reads.
constexpr auto kStreamVersion = QDataStream::Qt_6_4;

void Draw(const DrawnShape& shape, QPainter& painter, const QColor& ink) {
    QPen pen = shape.pen;
    if (pen.style() != Qt::NoPen && pen.color().rgba() == kInk) pen.setColor(ink);
    painter.setPen(pen);
    painter.setBrush(shape.brush);
    painter.drawPath(shape.path);
}

}  // namespace

void Drawing::Paint(QPainter& painter, const QRectF& place, const QColor& ink) const {
    if (size.isEmpty()) return;
    const QSizeF drawn = size.scaled(place.size(), Qt::KeepAspectRatio);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(place.center() - QPointF(drawn.width() / 2, drawn.height() / 2));
    painter.scale(drawn.width() / size.width(), drawn.height() / size.height());
    const QTransform base = painter.worldTransform();
    const qreal opacity = painter.opacity();
    for (const DrawnShape& shape : shapes) {
        painter.setWorldTransform(shape.transform * base);
        painter.setOpacity(shape.opacity * opacity);
        Draw(shape, painter, ink);
    }
    painter.restore();
}

QByteArray ToBytes(const Drawing& drawing) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(kStreamVersion);
    stream << drawing.size << static_cast<quint32>(drawing.shapes.size());
    for (const DrawnShape& shape : drawing.shapes)
        stream << shape.path << shape.brush << shape.pen << shape.transform << shape.opacity;
    return bytes;
}

std::optional<Drawing> FromBytes(const QByteArray& bytes) {
    QDataStream stream(bytes);
    stream.setVersion(kStreamVersion);
    Drawing drawing;
    quint32 count = 0;
    stream >> drawing.size >> count;
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        DrawnShape shape;
        stream >> shape.path >> shape.brush >> shape.pen >> shape.transform >> shape.opacity;
        drawing.shapes.push_back(std::move(shape));
    }
    if (stream.status() != QDataStream::Ok || !stream.atEnd()) return std::nullopt;
    return drawing;
}

}  // namespace widgets
