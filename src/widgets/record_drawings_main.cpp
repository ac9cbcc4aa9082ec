// tavolo-record-drawings FROM.svg TO.drawing ...: the build's tool that makes drawings of the
// artwork.
#include "widgets/drawing.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QStringList>
#include <QtGui/QPaintDevice>
#include <QtGui/QPaintEngine>
#include <QtSvg/QSvgRenderer>

#include <cstdio>

namespace {

// Keeps the shapes that are painted.
class Recorder final : public QPaintEngine {
public:
    explicit Recorder(widgets::Drawing& drawing)
        : QPaintEngine(QPaintEngine::AllFeatures), drawing_(drawing) {}

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return QPaintEngine::User; }
    void updateState(const QPaintEngineState&) override {}

    void drawPath(const QPainterPath& path) override {
        drawing_.shapes.push_back(
            {path, state->brush(), state->pen(), state->transform(), state->opacity()});
    }
    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override {
        QPainterPath path;
        path.addPolygon(QPolygonF(QList<QPointF>(points, points + count)));
        if (mode != PolylineMode) path.closeSubpath();
        drawPath(path);
    }
    void drawRects(const QRectF* rects, int count) override {
        for (int i = 0; i < count; ++i) {
            QPainterPath path;
            path.addRect(rects[i]);
            drawPath(path);
        }
    }
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override { is_whole_ = false; }

    // False: something was painted that is no shape.
    bool is_whole() const { return is_whole_; }

private:
    widgets::Drawing& drawing_;
    bool is_whole_ = true;
};

// As many points as the drawing has units.
class Canvas final : public QPaintDevice {
public:
    Canvas(Recorder& recorder, QSize size) : recorder_(recorder), size_(size) {}

    QPaintEngine* paintEngine() const override { return &recorder_; }

protected:
    int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
        case PdmWidth:
            return size_.width();
        case PdmHeight:
            return size_.height();
        case PdmDepth:
            return 32;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        default:
            return 96;  // dots per inch
        }
    }

private:
    Recorder& recorder_;
    QSize size_;
};

bool Record(const QString& from, const QString& to) {
    QFile svg(from);
    if (!svg.open(QIODevice::ReadOnly)) return false;
    QByteArray text = svg.readAll();
    const QByteArray ink = QColor(widgets::kInk).name().toLatin1();
    if (text.contains(ink)) return false;
    QSvgRenderer renderer(text.replace("currentColor", ink));
    if (!renderer.isValid()) return false;
    widgets::Drawing drawing{renderer.viewBoxF().size(), {}};
    Recorder recorder(drawing);
    Canvas canvas(recorder, drawing.size.toSize());
    QPainter painter(&canvas);
    renderer.render(&painter, QRectF(QPointF(), drawing.size));
    painter.end();
    QFile file(to);
    const QByteArray bytes = ToBytes(drawing);
    return recorder.is_whole() && !drawing.shapes.empty() && file.open(QIODevice::WriteOnly) &&
           file.write(bytes) == bytes.size() && file.flush();
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);  // shapes need no display
    const QStringList words = QCoreApplication::arguments();
    for (qsizetype i = 1; i + 1 < words.size(); i += 2) {
        if (Record(words[i], words[i + 1])) continue;
        std::fprintf(stderr, "%s cannot be recorded as %s\n", qPrintable(words[i]),
                     qPrintable(words[i + 1]));
        return 1;
    }
    return 0;
}
