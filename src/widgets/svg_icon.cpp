#include "widgets/svg_icon.h"

#include "assets.h"

#include <QtCore/QFile>
#include <QtGui/QGuiApplication>
#include <QtGui/QIconEngine>
#include <QtGui/QPainter>
#include <QtGui/QPalette>
#include <QtGui/QPixmapCache>
#include <QtSvg/QSvgRenderer>

#include <utility>

namespace widgets {
namespace {

constexpr qreal kDisabledOpacity = 0.4;

// The colour of the texts beside an icon in that mode; a disabled one is made faint as a whole.
QColor InkOf(QIcon::Mode mode) {
    const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText;
    return QGuiApplication::palette().color(QPalette::Active, role);
}

class SvgIconEngine final : public QIconEngine {
public:
    SvgIconEngine(QString key, QByteArray svg) : key_(std::move(key)), svg_(std::move(svg)) {}

    QString key() const override { return QStringLiteral("tavolo"); }
    QString iconName() override { return kSvgIconPrefix.toString() + key_; }
    QIconEngine* clone() const override { return new SvgIconEngine(*this); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const qreal scale = painter->device()->devicePixelRatioF();
        painter->drawPixmap(rect, Drawn((QSizeF(rect.size()) * scale).toSize(), mode));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        return Drawn(size, mode);
    }

private:
    // `size` in pixels of the device.
    QPixmap Drawn(QSize size, QIcon::Mode mode) const {
        const QColor ink = InkOf(mode);
        const QString name = QStringLiteral("%1%2:%3x%4:%5:%6")
                                 .arg(kSvgIconPrefix, key_)
                                 .arg(size.width())
                                 .arg(size.height())
                                 .arg(ink.rgba())
                                 .arg(mode == QIcon::Disabled ? 1 : 0);
        QPixmap drawn;
        if (QPixmapCache::find(name, &drawn)) return drawn;
        drawn = QPixmap(size);
        drawn.fill(Qt::transparent);
        QByteArray svg = svg_;
        QSvgRenderer renderer(svg.replace("currentColor", ink.name().toLatin1()));
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        QPainter painter(&drawn);
        if (mode == QIcon::Disabled) painter.setOpacity(kDisabledOpacity);
        renderer.render(&painter);
        painter.end();
        QPixmapCache::insert(name, drawn);
        return drawn;
    }

    QString key_;
    QByteArray svg_;
};

}  // namespace

QIcon SvgIcon(const QString& key) {
    assets::Load();
    QFile file(QStringLiteral(":/tavolo/icons/") + key + QStringLiteral(".svg"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return QIcon(new SvgIconEngine(key, file.readAll()));
}

}  // namespace widgets
