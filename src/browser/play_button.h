// PlayButton: cmdPlay, with its sound and its colours.
#pragma once

#include "catalogue/pin_subs.h"

#include <QtWidgets/QPushButton>

#include <functional>

namespace browser {

class PlayButton : public QPushButton {
    Q_OBJECT

public:
    // Plays a wave file of the application folder to its end.
    using Sound = std::function<void(const QString& wave_file_name)>;

    // `values` is borrowed and outlives the button.
    PlayButton(const catalogue::ProcessValues& values, const QIcon& picture,
               QWidget* parent = nullptr);

    void SetSound(Sound sound) { sound_ = std::move(sound); }
    // Windows 0x00BBGGRR.
    std::uint32_t text_colour() const { return text_colour_; }

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;

private:
    void SetTextColour(std::uint32_t colour);
    // The next colour of the status colours, each time the pointer comes over the button.
    void Cycle();

    const catalogue::ProcessValues& values_;
    Sound sound_;
    std::uint32_t text_colour_ = 0;
    std::size_t cycle_ = 0;  // 0 before the first, then 1, 2, 3, 1
};

}  // namespace browser
