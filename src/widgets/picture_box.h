// PictureBox: shows one picture with its proportions kept, centred, never enlarged; a placeholder
// when there is none, and nothing while it waits for one. A picture is given decoded, or is decoded
// at the size of the box when the box is first painted, and again when the box has grown. A click
// or Enter shows the picture large in a window of its own; it takes the focus as long as there is
// one.
#pragma once

#include "base/status.h"
#include "widgets/picture_loader.h"
#include "widgets/texts.h"

#include <QtCore/QTimer>
#include <QtGui/QImage>
#include <QtWidgets/QWidget>

namespace widgets {

class PictureBox : public QWidget {
    Q_OBJECT

public:
    // `name`: what assistive technology calls it.
    explicit PictureBox(const QString& name = WidgetsTexts::tr("Picture"),
                        QWidget* parent = nullptr);

    // Looks at the picture's header and shows it. On failure the box shows the placeholder.
    base::Status SetPicture(const PictureSource& source);
    // A picture that has been decoded already, in the size of this box or about it.
    void ShowDecoded(const PictureSource& source, const DecodedPicture& picture);
    void ShowPlaceholder();
    // The placeholder, with the reason as its tool tip.
    void ShowFailure(const base::Status& failure);
    // What `other` shows now, in the size of this box.
    void ShowSameAs(const PictureBox& other);
    bool shows_placeholder() const { return source_.is_empty() && !waits_; }
    // Shows nothing until one of the calls above.
    void Wait();
    bool waits() const { return waits_; }
    const PictureSource& source() const { return source_; }

    // What the box shows, at its present size; null when it shows the placeholder.
    QImage ShownImage();
    QSize SizeInPixels() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    // Another picture, or none, is shown or waited for.
    void Changed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool DecodedIsTooSmall() const;
    void Decode();
    void DrawFocus(QPainter& painter) const;
    void ShowLarge();
    // Changed is told by the caller, when it is done.
    void SetSource(const PictureSource& source);

    PictureSource source_;
    bool waits_ = false;
    QSize own_size_;            // of the picture; empty: not known before decoding
    QImage decoded_;            // null until the first paint
    bool is_outgrown_ = false;  // decoded_ is too small by now
    QTimer decode_again_;       // waits until the resizing has paused
};

}  // namespace widgets
