// A Drawing: shapes that can be drawn at any size. The artwork of assets/*.svg is recorded as such
// by the build (record_drawings_main.cpp) and compiled in, so that the program needs nothing that
// reads SVG.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QSizeF>
#include <QtGui/QBrush>
#include <QtGui/QColor>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QPen>
#include <QtGui/QTransform>

#include <optional>
#include <vector>

namespace widgets {

// Stands for the colour of the texts in a recorded pen; no file of assets has a colour like it.
inline constexpr QRgb kInk = 0xFFFE01FD;

struct DrawnShape {
    QPainterPath path;
    QBrush brush;
    QPen pen;
    QTransform transform;
    qreal opacity = 1;
};

struct Drawing {
    QSizeF size;
    std::vector<DrawnShape> shapes;

    // As large as fits into `place`, in the middle of it; `ink` for what is drawn in kInk.
    void Paint(QPainter& painter, const QRectF& place, const QColor& ink = Qt::black) const;
};

QByteArray ToBytes(const Drawing& drawing);
// No value: these are not the bytes of a drawing.
std::optional<Drawing> FromBytes(const QByteArray& bytes);

}  // namespace widgets
