#include "browser/play_button.h"

#include <QtGui/QColor>
#include <QtGui/QMouseEvent>

namespace browser {
namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kPressed = 255;     // red
constexpr std::uint32_t kReleased = 65535;  // yellow

QString CssColour(std::uint32_t blue_green_red) {
    const QColor colour(static_cast<int>(blue_green_red & 0xFF),
                        static_cast<int>((blue_green_red >> 8) & 0xFF),
                        static_cast<int>((blue_green_red >> 16) & 0xFF));
    return colour.name();
}

}  // namespace

PlayButton::PlayButton(const catalogue::ProcessValues& values, const QIcon& picture,
                       QWidget* parent)
    : QPushButton(picture, QStringLiteral("Play"), parent), values_(values) {
    setObjectName(QStringLiteral("cmdPlay"));
    setIconSize(QSize(28, 28));
    SetTextColour(kWhite);
}

void PlayButton::SetTextColour(std::uint32_t colour) {
    text_colour_ = colour;
    setStyleSheet(QStringLiteral("QPushButton { color: %1; background: #22405f; font-weight: bold;"
                                 " font-size: 12pt; border: 1px solid #14283c; border-radius: 5px;"
                                 " padding: 4px 14px; }"
                                 "QPushButton:hover { background: #2b5179; }"
                                 "QPushButton:pressed { background: #182f46; }"
                                 "QPushButton:focus { border: 1px solid #ffd35a; }"
                                 "QPushButton:disabled { color: #8a97a3; background: #c3cbd3;"
                                 " border-color: #aab4bd; }")
                      .arg(CssColour(colour)));
}

void PlayButton::mousePressEvent(QMouseEvent* event) {
    QPushButton::mousePressEvent(event);
    if (event->button() != Qt::LeftButton) return;
    if (values_.SoundOn && sound_) sound_(QStringLiteral("slingshot.wav"));
    SetTextColour(kPressed);
}

void PlayButton::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) SetTextColour(kReleased);
    QPushButton::mouseReleaseEvent(event);
}

void PlayButton::enterEvent(QEnterEvent* event) {
    QPushButton::enterEvent(event);
    if (isEnabled()) Cycle();
}

void PlayButton::Cycle() {
    cycle_ = cycle_ >= 3 ? 1 : cycle_ + 1;
    SetTextColour(values_.StatusColours[cycle_]);
}

}  // namespace browser
