#include "example/example_pictures.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include <numbers>

namespace example {
namespace {

constexpr int kFieldWidth = 480;
constexpr int kFieldHeight = 640;
constexpr int kFlyerWidth = 560;
constexpr int kFlyerHeight = 400;

struct Colours {
    explicit Colours(const ExampleTable& table)
        : ground(QRgb(table.ground)), figure(QRgb(table.figure)), light(QRgb(table.light)) {}
    QColor ground;
    QColor figure;
    QColor light;
};

// A small number that is another for each table and place.
int Vary(std::size_t number, int place, int below) {
    return static_cast<int>((number * 7919U + static_cast<std::size_t>(place) * 104'729U + 13U) %
                            static_cast<std::size_t>(below));
}

QPointF OnCircle(const QPointF& centre, double radius, double turn) {
    const double angle = turn * 2 * std::numbers::pi;
    return centre + QPointF(radius * std::cos(angle), radius * std::sin(angle));
}

void DrawGround(QPainter& painter, const QRectF& field, const Colours& colours) {
    QLinearGradient ground(field.topLeft(), field.bottomLeft());
    ground.setColorAt(0, colours.ground.lighter(150));
    ground.setColorAt(1, colours.ground.darker(140));
    painter.fillRect(field, ground);
}

// The emblem: a star, a wheel, waves or a mill, large behind everything.
void DrawEmblem(QPainter& painter, const QPointF& centre, double size, std::size_t number,
                const Colours& colours) {
    QColor faint = colours.figure;
    faint.setAlpha(150);
    painter.setPen(Qt::NoPen);
    painter.setBrush(faint);
    const int points = 5 + Vary(number, 1, 8);
    const double inner = 0.35 + 0.08 * Vary(number, 2, 5);
    QPolygonF star;
    for (int i = 0; i < 2 * points; ++i)
        star << OnCircle(centre, i % 2 == 0 ? size : size * inner, double(i) / (2 * points));
    painter.drawPolygon(star);
    painter.setBrush(colours.ground);
    painter.drawEllipse(centre, size * inner * 0.7, size * inner * 0.7);
    painter.setBrush(colours.light);
    painter.drawEllipse(centre, size * inner * 0.4, size * inner * 0.4);
}

void DrawBumper(QPainter& painter, const QPointF& centre, const Colours& colours) {
    painter.setPen(QPen(colours.light.darker(160), 3));
    painter.setBrush(colours.figure);
    painter.drawEllipse(centre, 38, 38);
    painter.setPen(QPen(colours.light, 6));
    painter.setBrush(colours.ground.lighter(130));
    painter.drawEllipse(centre, 24, 24);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colours.light);
    painter.drawEllipse(centre - QPointF(6, 6), 9, 9);
}

void DrawLamps(QPainter& painter, std::size_t number, const Colours& colours) {
    painter.setPen(QPen(colours.ground.darker(180), 2));
    const int lamps = 6 + Vary(number, 3, 5);
    for (int i = 0; i < lamps; ++i) {
        const bool is_lit = Vary(number, 20 + i, 3) != 0;
        painter.setBrush(is_lit ? colours.light : colours.figure.darker(150));
        painter.drawEllipse(OnCircle({240, 400}, 120, 0.08 + 0.34 * i / (lamps - 1)), 11, 11);
    }
}

void DrawTargets(QPainter& painter, std::size_t number, const Colours& colours) {
    painter.setPen(QPen(colours.ground.darker(200), 2));
    const int targets = 3 + Vary(number, 4, 4);
    for (int i = 0; i < targets; ++i) {
        painter.setBrush(i % 2 == 0 ? colours.light : colours.figure.lighter(130));
        painter.drawRect(QRectF(46, 250 + i * 34, 12, 26));
        painter.drawRect(QRectF(422, 270 + i * 30, 12, 22));
    }
}

void DrawFlippers(QPainter& painter, const Colours& colours) {
    for (const int side : {-1, 1}) {
        painter.save();
        painter.translate(240 + side * 92, 556);
        painter.scale(side, 1);
        painter.rotate(200);
        painter.setPen(QPen(colours.light.darker(170), 3));
        painter.setBrush(colours.light);
        painter.drawRoundedRect(QRectF(-10, -11, 84, 22), 11, 11);
        painter.restore();
        const QPolygonF sling({QPointF(240 + side * 110, 500), QPointF(240 + side * 150, 470),
                               QPointF(240 + side * 150, 410)});
        painter.setPen(QPen(colours.light, 5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(colours.figure.darker(130));
        painter.drawPolygon(sling);
    }
}

void DrawRails(QPainter& painter, const Colours& colours) {
    QPainterPath rail(QPointF(34, 620));
    rail.lineTo(34, 180);
    rail.cubicTo(34, 40, 446, 40, 446, 180);
    rail.lineTo(446, 620);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colours.ground.darker(220), 16));
    painter.drawPath(rail);
    painter.setPen(QPen(colours.light.darker(115), 5));
    painter.drawPath(rail);
}

void DrawBall(QPainter& painter, const QPointF& centre, double radius) {
    QRadialGradient steel(centre - QPointF(radius, radius) * 0.35, radius * 1.4);
    steel.setColorAt(0, Qt::white);
    steel.setColorAt(0.5, QColor(0xC8, 0xD0, 0xDA));
    steel.setColorAt(1, QColor(0x5E, 0x68, 0x76));
    painter.setPen(Qt::NoPen);
    painter.setBrush(steel);
    painter.drawEllipse(centre, radius, radius);
}

}  // namespace

QImage DrawPlayfield(const ExampleTable& table, std::size_t number) {
    QImage image(kFieldWidth, kFieldHeight, QImage::Format_RGB32);
    const Colours colours(table);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    DrawGround(painter, image.rect(), colours);
    DrawEmblem(painter, {240, 300}, 170, number, colours);
    DrawRails(painter, colours);
    DrawTargets(painter, number, colours);
    DrawLamps(painter, number, colours);
    const int bumpers = 3 + Vary(number, 5, 2);
    for (int i = 0; i < bumpers; ++i)
        DrawBumper(painter,
                   OnCircle({240, 170}, 84, double(i) / bumpers + 0.1 * Vary(number, 6, 10)),
                   colours);
    DrawFlippers(painter, colours);
    DrawBall(painter, {150.0 + Vary(number, 7, 180), 470.0 - Vary(number, 8, 60)}, 15);
    return image;
}

QImage DrawFlyer(const ExampleTable& table, std::size_t number) {
    QImage image(kFlyerWidth, kFlyerHeight, QImage::Format_RGB32);
    const Colours colours(table);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    DrawGround(painter, image.rect(), colours);
    painter.setPen(QPen(colours.figure, 10));
    for (int ray = 0; ray < 24; ++ray)
        painter.drawLine(QPointF(280, 200), OnCircle({280, 200}, 420, ray / 24.0));
    DrawEmblem(painter, {280, 200}, 180, number, colours);
    DrawBall(painter, {430, 300}, 62);
    painter.setPen(QPen(colours.light, 14));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(image.rect().adjusted(7, 7, -8, -8));
    return image;
}

}  // namespace example
