#include "widgets/picture_box.h"

#include "widgets/artwork.h"
#include "widgets/large_picture_window.h"
#include "widgets/picture_access.h"
#include "widgets/program_palette.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QStyleOptionFocusRect>

namespace widgets {
namespace {

constexpr int kResizePauseMs = 150;
constexpr qreal kDimmed = 0.2;

// `size`, made smaller if it does not fit into `box`, in the middle of it.
QRectF Centred(QSizeF size, const QRectF& box) {
    if (size.width() > box.width() || size.height() > box.height())
        size.scale(box.size(), Qt::KeepAspectRatio);
    QRectF place(QPointF(), size);
    place.moveCenter(box.center());
    return place;
}

// On a dark ground it is dimmed.
void DrawPlaceholder(QPainter& painter, const QRectF& box, const QPalette& palette) {
    if (IsDark(palette)) painter.setOpacity(kDimmed);
    static const Drawing artwork = Artwork(QStringLiteral("placeholder")).value_or(Drawing());
    artwork.Paint(painter, box);
}

}  // namespace

PictureBox::PictureBox(const QString& name, QWidget* parent) : QWidget(parent) {
    DescribeAsPicture(*this, name);
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
        ShowFailure(size.status());
        return size.status();
    }
    SetSource(source);
    own_size_ = *size;
    Q_EMIT Changed();
    return {};
}

void PictureBox::ShowDecoded(const PictureSource& source, const DecodedPicture& picture) {
    SetSource(source);
    own_size_ = picture.own_size;
    decoded_ = picture.image;
    is_outgrown_ = DecodedIsTooSmall();
    Q_EMIT Changed();
}

void PictureBox::ShowPlaceholder() {
    SetSource({});
    Q_EMIT Changed();
}

void PictureBox::ShowFailure(const base::Status& failure) {
    SetSource({});
    setToolTip(QString::fromStdString(failure.message()));
    Q_EMIT Changed();
}

void PictureBox::Wait() {
    SetSource({});
    waits_ = true;
    Q_EMIT Changed();
}

void PictureBox::ShowSameAs(const PictureBox& other) {
    SetSource(other.source_);
    waits_ = other.waits_;
    own_size_ = other.own_size_;
    decoded_ = other.decoded_;
    is_outgrown_ = DecodedIsTooSmall();
    setToolTip(other.toolTip());
    Q_EMIT Changed();
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
    setFocusPolicy(!source_.is_empty() ? Qt::StrongFocus : Qt::NoFocus);
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
        ShowFailure(decoded.status());
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
    if (image.isNull()) return DrawPlaceholder(painter, rect(), palette());
    const QSizeF natural =
        QSizeF(own_size_.isEmpty() ? image.size() : own_size_) / devicePixelRatioF();
    painter.drawImage(Centred(natural, rect()), image);
    if (hasFocus()) DrawFocus(painter);
}

void PictureBox::DrawFocus(QPainter& painter) const {
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    focus.state |= QStyle::State_KeyboardFocusChange;  // without it some styles draw nothing
    focus.backgroundColor = palette().color(QPalette::Window);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
}

void PictureBox::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    const bool presses = key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space;
    if (!presses || source_.is_empty()) return QWidget::keyPressEvent(event);
    if (!event->isAutoRepeat()) ShowLarge();
}

void PictureBox::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !rect().contains(event->position().toPoint())) return;
    ShowLarge();
}

void PictureBox::ShowLarge() {
    if (!source_.is_empty()) ShowPictureLarge(source_, own_size_, window());
}

}  // namespace widgets
