#include "widgets/zoom_view.h"

#include "widgets/picture_access.h"
#include "widgets/texts.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QScrollBar>

#include <algorithm>
#include <cmath>
#include <memory>

namespace widgets {
namespace {

constexpr double kStep = 1.25;            // of a wheel's notch or a key
constexpr double kNotch = 120;            // of the wheel, in its own units
constexpr int kScrollByKey = 60;          // pixels
constexpr double kSameScale = 1.0 / 512;  // no scale that differs less is another

}  // namespace

ZoomView::ZoomView(const PictureSource& source, QSize own_size, QWidget* parent)
    : QAbstractScrollArea(parent), source_(source), own_size_(own_size) {
    decoder_.setMaxThreadCount(1);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    DescribeAsPicture(*this, WidgetsTexts::tr("Picture"));
    horizontalScrollBar()->setSingleStep(kScrollByKey);
    verticalScrollBar()->setSingleStep(kScrollByKey);
}

ZoomView::~ZoomView() {
    decoder_.clear();
    decoder_.waitForDone();
}

double ZoomView::FittingScale() const {
    if (own_size_.isEmpty()) return 1;
    // Without the bars, which a picture that fits does not need.
    const QSizeF room = maximumViewportSize();
    return std::min(room.width() / own_size_.width(), room.height() / own_size_.height());
}

void ZoomView::SetScale(double scale) {
    const double least = std::min(FittingScale(), 1.0);
    scale_ = std::clamp(scale, least, std::max(kMaxScale, least));
    SetBars();
    DecodeAsNeeded();
    viewport()->setCursor(fits_ ? Qt::ArrowCursor : Qt::OpenHandCursor);
    viewport()->update();
    Q_EMIT ScaleChanged(scale_);
}

void ZoomView::Fit() {
    fits_ = true;
    SetScale(FittingScale());
}

void ZoomView::ZoomTo(double scale, const QPointF& anchor) {
    const QPointF before = (anchor - PictureRect().topLeft()) / scale_;
    fits_ = false;
    SetScale(scale);
    fits_ = std::abs(scale_ / FittingScale() - 1) < kSameScale;
    horizontalScrollBar()->setValue(qRound(before.x() * scale_ - anchor.x()));
    verticalScrollBar()->setValue(qRound(before.y() * scale_ - anchor.y()));
}

void ZoomView::ZoomByKey(double factor) {
    ZoomTo(scale_ * factor, QRectF(viewport()->rect()).center());
}

void ZoomView::SetBars() {
    // Twice: the first bar that comes takes room from the other direction.
    for (int pass = 0; pass < 2; ++pass) {
        const QSize picture = fits_ ? QSize() : (QSizeF(own_size_) * scale_).toSize();
        const QSize room = viewport()->size();
        horizontalScrollBar()->setRange(0, std::max(0, picture.width() - room.width()));
        horizontalScrollBar()->setPageStep(room.width());
        verticalScrollBar()->setRange(0, std::max(0, picture.height() - room.height()));
        verticalScrollBar()->setPageStep(room.height());
    }
}

QRectF ZoomView::PictureRect() const {
    const QSizeF size = QSizeF(own_size_) * scale_;
    const QSizeF room = viewport()->size();
    const auto start = [](double picture, double space, const QScrollBar& bar) {
        return picture <= space ? (space - picture) / 2 : -double(bar.value());
    };
    return {{start(size.width(), room.width(), *horizontalScrollBar()),
             start(size.height(), room.height(), *verticalScrollBar())},
            size};
}

// Decodes the picture if what there is of it is smaller than what the screen could show.
void ZoomView::DecodeAsNeeded() {
    if (!failure_.isEmpty()) return;
    QSize wanted = maximumViewportSize() * ScreenPixels();
    if (!own_size_.isEmpty())
        wanted = (QSizeF(own_size_) * scale_ * ScreenPixels()).toSize().boundedTo(own_size_);
    wanted = wanted.expandedTo({1, 1});
    const auto is_enough = [&](QSize size) {
        return size.width() >= wanted.width() && size.height() >= wanted.height();
    };
    if (is_enough(decoded_.size()) || is_enough(ordered_size_)) return;
    ordered_size_ = wanted;
    decoder_.clear();
    decoder_.start([this, order = ++order_, source = source_, wanted] {
        auto decoded = std::make_shared<base::Result<QImage>>(DecodePicture(source, wanted));
        QMetaObject::invokeMethod(
            this, [this, order, decoded] { Take(order, *decoded); }, Qt::QueuedConnection);
    });
}

void ZoomView::Take(std::uint64_t order, const base::Result<QImage>& decoded) {
    if (order != order_) return;
    ordered_size_ = {};
    if (!decoded.ok()) {
        // A picture that was decoded once stays, even if its file has gone since.
        failure_ = QString::fromStdString(decoded.status().message());
    } else {
        decoded_ = *decoded;
        if (own_size_.isEmpty()) {
            own_size_ = decoded_.size();
            Fit();
        }
    }
    viewport()->update();
}

void ZoomView::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    if (decoded_.isNull()) {
        painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, failure_);
        return;
    }
    // A pixel that is much enlarged is to be seen as what it is.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, scale_ < kMaxScale / 2);
    painter.drawImage(PictureRect(), decoded_);
}

void ZoomView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    SetScale(fits_ ? FittingScale() : scale_);
}

void ZoomView::wheelEvent(QWheelEvent* event) {
    if (event->modifiers() & (Qt::ShiftModifier | Qt::AltModifier)) {
        QAbstractScrollArea::wheelEvent(event);
        return;
    }
    const double notches = event->angleDelta().y() / kNotch;
    if (notches != 0) ZoomTo(scale_ * std::pow(kStep, notches), event->position());
    event->accept();
}

void ZoomView::keyPressEvent(QKeyEvent* event) {
    QScrollBar& bar = *verticalScrollBar();
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return ZoomByKey(kStep);
    case Qt::Key_Minus:
        return ZoomByKey(1 / kStep);
    case Qt::Key_0:
        return Fit();
    case Qt::Key_1:
        return ZoomByKey(1 / (scale_ * ScreenPixels()));
    case Qt::Key_PageDown:
    case Qt::Key_Space:
        return bar.triggerAction(QAbstractSlider::SliderPageStepAdd);
    case Qt::Key_PageUp:
        return bar.triggerAction(QAbstractSlider::SliderPageStepSub);
    case Qt::Key_Home:
        return bar.setValue(bar.minimum());
    case Qt::Key_End:
        return bar.setValue(bar.maximum());
    default:
        QAbstractScrollArea::keyPressEvent(event);  // arrows scroll
    }
}

void ZoomView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    is_pressed_ = true;
    was_dragged_ = false;
    pressed_at_ = event->position().toPoint();
    pressed_bars_ = {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

void ZoomView::mouseMoveEvent(QMouseEvent* event) {
    if (!is_pressed_) return;
    const QPoint moved = event->position().toPoint() - pressed_at_;
    if (moved.manhattanLength() >= QApplication::startDragDistance()) was_dragged_ = true;
    if (!was_dragged_) return;
    horizontalScrollBar()->setValue(pressed_bars_.x() - moved.x());
    verticalScrollBar()->setValue(pressed_bars_.y() - moved.y());
}

void ZoomView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !is_pressed_) return;
    is_pressed_ = false;
    if (!was_dragged_) Q_EMIT Clicked();
}

}  // namespace widgets
