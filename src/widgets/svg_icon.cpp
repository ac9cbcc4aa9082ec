#include "widgets/svg_icon.h"

#include "widgets/artwork.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QIconEngine>
#include <QtGui/QPainter>
#include <QtGui/QPalette>
#include <QtGui/QPixmapCache>

#include <memory>
#include <optional>
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
    SvgIconEngine(QString key, Drawing drawing)
        : key_(std::move(key)), drawing_(std::make_shared<const Drawing>(std::move(drawing))) {}

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
        QPainter painter(&drawn);
        if (mode == QIcon::Disabled) painter.setOpacity(kDisabledOpacity);
        drawing_->Paint(painter, QRectF(QPointF(), size), ink);
        painter.end();
        QPixmapCache::insert(name, drawn);
        return drawn;
    }

    QString key_;
    std::shared_ptr<const Drawing> drawing_;  // of all copies of the icon
};

// The icon that is `artwork`, by the name `key`.
QIcon IconOf(const QString& artwork, const QString& key) {
    std::optional<Drawing> drawing = Artwork(artwork);
    return drawing ? QIcon(new SvgIconEngine(key, std::move(*drawing))) : QIcon();
}

}  // namespace

QIcon SvgIcon(const QString& key) {
    return IconOf(QStringLiteral("icons/") + key, key);
}

QIcon ProgramIcon() {
    return IconOf(QStringLiteral("tavolo"), QStringLiteral("program"));
}

}  // namespace widgets
