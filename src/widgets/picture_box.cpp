#include "widgets/picture_box.h"

#include "assets.h"
#include "widgets/large_picture_window.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

namespace widgets {
namespace {

constexpr int kResizePauseMs = 150;

// `size` as large as fits into `box`, in the middle of it.
QRectF Centred(QSizeF size, const QRectF& box, bool may_grow) {
    if (may_grow || size.width() > box.width() || size.height() > box.height())
        size.scale(box.size(), Qt::KeepAspectRatio);
    QRectF place(QPointF(), size);
    place.moveCenter(box.center());
    return place;
}

void DrawPlaceholder(QPainter& painter, const QRectF& box) {
    assets::Load();
    static QSvgRenderer artwork(QStringLiteral(":/tavolo/placeholder.svg"));
    artwork.render(&painter, Centred(artwork.defaultSize(), box, true));
}

}  // namespace

PictureBox::PictureBox(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    decode_again_.setSingleShot(true);
    decode_again_.setInterval(kResizePauseMs);
    connect(&decode_again_, &QTimer::timeout, this, [this] {
        is_outgrown_ = true;
        update();
    });
}

base::Status PictureBox::SetPicture(const PictureSource& source) {
    auto size = PictureSize(source);
    if (!size.ok()) {
        ShowPlaceholder();
        setToolTip(QString::fromStdString(size.status().message()));
        return size.status();
    }
    SetSource(source);
    own_size_ = *size;
    return {};
}

void PictureBox::ShowDecoded(const PictureSource& source, const DecodedPicture& picture) {
    SetSource(source);
    own_size_ = picture.own_size;
    decoded_ = picture.image;
    is_outgrown_ = DecodedIsTooSmall();
}

void PictureBox::ShowPlaceholder() {
    SetSource({});
}

void PictureBox::Wait() {
    SetSource({});
    waits_ = true;
}

void PictureBox::SetSource(const PictureSource& source) {
    source_ = source;
    waits_ = false;
    own_size_ = {};
    decoded_ = {};
    is_outgrown_ = false;
    decode_again_.stop();
    setToolTip({});
    setCursor(!source_.is_empty() ? Qt::PointingHandCursor : Qt::ArrowCursor);
    update();
}

QImage PictureBox::ShownImage() {
    if (!source_.is_empty() && (decoded_.isNull() || is_outgrown_)) Decode();
    return decoded_;
}

QSize PictureBox::sizeHint() const {
    return {320, 240};
}

QSize PictureBox::minimumSizeHint() const {
    return {32, 24};
}

QSize PictureBox::SizeInPixels() const {
    return (QSizeF(size()) * devicePixelRatioF()).toSize().expandedTo({1, 1});
}

// A picture that was decoded once stays, even if its file has gone since.
void PictureBox::Decode() {
    is_outgrown_ = false;
    auto decoded = DecodePicture(source_, SizeInPixels());
    if (decoded.ok()) {
        decoded_ = std::move(*decoded);
    } else if (decoded_.isNull()) {
        ShowPlaceholder();
        setToolTip(QString::fromStdString(decoded.status().message()));
    }
}

bool PictureBox::DecodedIsTooSmall() const {
    if (decoded_.isNull() || own_size_.isEmpty() || decoded_.size() == own_size_) return false;
    const QSize wanted = own_size_.scaled(SizeInPixels(), Qt::KeepAspectRatio).boundedTo(own_size_);
    return decoded_.width() < wanted.width() || decoded_.height() < wanted.height();
}

void PictureBox::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (DecodedIsTooSmall()) decode_again_.start();
}

void PictureBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (waits_) return;
    const QImage image = ShownImage();
    if (image.isNull()) return DrawPlaceholder(painter, rect());
    const QSizeF natural =
        QSizeF(own_size_.isEmpty() ? image.size() : own_size_) / devicePixelRatioF();
    painter.drawImage(Centred(natural, rect(), false), image);
}

void PictureBox::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !rect().contains(event->position().toPoint())) return;
    ShowLarge();
}

void PictureBox::ShowLarge() {
    if (!source_.is_empty()) ShowPictureLarge(source_, own_size_, window());
}

}  // namespace widgets
