// ZoomView: shows one picture in a window, first as large as fits; it is enlarged and made smaller
// by the wheel and by "+" and "-", moved by dragging, by the arrow keys and by Shift with the
// wheel. "0" makes it fit again, "1" shows it in its own size. It is decoded in a thread of its
// own, in the size that is needed; until then what there is of it is shown. Threads: called on the
// user-interface thread only.
#pragma once

#include "widgets/picture_loader.h"

#include <QtCore/QPointF>
#include <QtCore/QThreadPool>
#include <QtGui/QImage>
#include <QtWidgets/QAbstractScrollArea>

#include <cstdint>

namespace widgets {

class ZoomView : public QAbstractScrollArea {
    Q_OBJECT

public:
    // The largest enlargement, in pixels of the screen for a pixel of the picture.
    static constexpr double kMaxScale = 16;

    // `own_size`: the picture's size in pixels; empty: not known before it is decoded.
    ZoomView(const PictureSource& source, QSize own_size, QWidget* parent = nullptr);
    // Waits for a picture that is being decoded.
    ~ZoomView() override;

    // Pixels of the screen for one of the picture.
    double Scale() const { return scale_; }
    bool fits() const { return fits_; }
    void Fit();
    // Keeps what is under `anchor` (of the viewport) where it is.
    void ZoomTo(double scale, const QPointF& anchor);
    // What was decoded last; null: nothing yet.
    const QImage& ShownImage() const { return decoded_; }
    // Where the picture lies in the viewport.
    QRectF PictureRect() const;

Q_SIGNALS:
    // A click that did not drag the picture.
    void Clicked();
    void ScaleChanged(double scale);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    double FittingScale() const;
    // Takes the scale within its limits.
    void SetScale(double scale);
    void SetBars();
    void ZoomByKey(double factor);
    void DecodeAsNeeded();
    void Take(std::uint64_t order, const base::Result<QImage>& decoded);
    double ScreenPixels() const { return devicePixelRatioF(); }

    PictureSource source_;
    QSize own_size_;
    double scale_ = 1;
    bool fits_ = true;
    QImage decoded_;
    QString failure_;          // why there is no picture
    QSize ordered_size_;       // that is being decoded; empty: nothing is
    std::uint64_t order_ = 0;  // of the last decoding; results of earlier ones are dropped
    QPoint pressed_at_;        // in the viewport
    QPoint pressed_bars_;      // their values then
    bool is_pressed_ = false;
    bool was_dragged_ = false;
    QThreadPool decoder_;
};

}  // namespace widgets
