// PlayButton: cmdPlay, a picture and a caption on a dark plate. The caption turns red when the
// button is pressed and yellow when it is released, and takes the next status colour each time the
// pointer enters the button.
#pragma once

#include "catalogue/process_values.h"
#include "widgets/drawing.h"

#include <QtWidgets/QPushButton>

#include <cstdint>
#include <functional>

namespace launcher {

class PlayButton : public QPushButton {
    Q_OBJECT

public:
    // Plays a wave file of the application folder to its end.
    using Sound = std::function<void(const QString& wave_file_name)>;

    // `values` is borrowed and outlives the button.
    explicit PlayButton(const catalogue::ProcessValues& values, QWidget* parent = nullptr);

    void SetSound(Sound sound) { sound_ = std::move(sound); }
    // Windows 0x00BBGGRR.
    std::uint32_t text_colour() const { return text_colour_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void SetTextColour(std::uint32_t colour);
    void Cycle();
    void DrawPlate(QPainter& painter) const;
    void DrawCaption(QPainter& painter, const QRectF& place) const;

    const catalogue::ProcessValues& values_;
    Sound sound_;
    widgets::Drawing picture_;
    widgets::Drawing pressed_picture_;
    std::uint32_t text_colour_;
    std::size_t cycle_ = 0;  // 0 before the first, then 1, 2, 3, 1
};

}  // namespace launcher
