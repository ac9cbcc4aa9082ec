#include "launcher/play_button.h"

#include "catalogue/program_files.h"
#include "launcher/texts.h"
#include "widgets/artwork.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

namespace launcher {
namespace {

// Windows 0x00BBGGRR.
constexpr std::uint32_t kAtFirst = 0xF2F2F2;
constexpr std::uint32_t kPressed = 255;     // red
constexpr std::uint32_t kReleased = 65535;  // yellow

constexpr int kPictureSide = 40;  // pixels
constexpr int kMargin = 4;

QColor FromWindowsColour(std::uint32_t blue_green_red) {
    return QColor(static_cast<int>(blue_green_red & 0xFF),
                  static_cast<int>((blue_green_red >> 8) & 0xFF),
                  static_cast<int>((blue_green_red >> 16) & 0xFF));
}

}  // namespace

PlayButton::PlayButton(const catalogue::ProcessValues& values, QWidget* parent)
    : QPushButton(LauncherTexts::tr("Play"), parent), values_(values),
      picture_(widgets::Artwork(QStringLiteral("play")).value_or(widgets::Drawing())),
      pressed_picture_(
          widgets::Artwork(QStringLiteral("play_pressed")).value_or(widgets::Drawing())),
      text_colour_(kAtFirst) {
    setObjectName(QStringLiteral("cmdPlay"));
    setAttribute(Qt::WA_Hover);
    QFont bold = font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.4);
    setFont(bold);
}

QSize PlayButton::sizeHint() const {
    const int caption = fontMetrics().horizontalAdvance(text());
    return {kPictureSide + caption + 8 * kMargin, kPictureSide + 2 * kMargin};
}

QSize PlayButton::minimumSizeHint() const {
    return sizeHint();
}

void PlayButton::SetTextColour(std::uint32_t colour) {
    text_colour_ = colour;
    update();
}

// Painted at once: the pressed picture must be visible while the sound is played.
void PlayButton::mousePressEvent(QMouseEvent* event) {
    QPushButton::mousePressEvent(event);
    if (values_.SoundOn && sound_) {
        repaint();
        sound_(catalogue::kClickSound.toString());
    }
    SetTextColour(kPressed);
}

// The colour first: the click starts a play and returns only when that has ended.
void PlayButton::mouseReleaseEvent(QMouseEvent* event) {
    SetTextColour(kReleased);
    QPushButton::mouseReleaseEvent(event);
}

void PlayButton::enterEvent(QEnterEvent* event) {
    QPushButton::enterEvent(event);
    if (isEnabled()) Cycle();
}

void PlayButton::Cycle() {
    cycle_ = cycle_ >= values_.StatusColours.size() - 1 ? 1 : cycle_ + 1;
    SetTextColour(values_.StatusColours[cycle_]);
}

void PlayButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.4);
    DrawPlate(painter);
    const qreal side = std::min<qreal>(height() - 2 * kMargin, width() / 2.0);
    const qreal caption_width = fontMetrics().horizontalAdvance(text());
    const qreal left = std::max<qreal>(kMargin, (width() - side - caption_width - 3 * kMargin) / 2);
    const QRectF place(left, (height() - side) / 2, side, side);
    (isDown() ? pressed_picture_ : picture_).Paint(painter, place);
    DrawCaption(painter, QRectF(place.right() + 3 * kMargin, 0, width() - place.right(), height()));
}

void PlayButton::DrawPlate(QPainter& painter) const {
    QLinearGradient shade(0, 0, 0, height());
    const bool lit = underMouse() && !isDown();
    // So dark that also the red caption can be read on it.
    shade.setColorAt(0, QColor(lit ? 0x11151f : 0x0d1018));
    shade.setColorAt(1, QColor(lit ? 0x0d1018 : 0x08090d));
    painter.setBrush(shade);
    painter.setPen(QPen(hasFocus() ? QColor(0xf6cf72) : QColor(0x6d4210), hasFocus() ? 2 : 1));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 8, 8);
}

void PlayButton::DrawCaption(QPainter& painter, const QRectF& place) const {
    const qreal sunk = isDown() ? 1 : 0;
    painter.setPen(QColor(0, 0, 0, 160));
    painter.drawText(place.translated(1, 1 + sunk), Qt::AlignLeft | Qt::AlignVCenter, text());
    painter.setPen(FromWindowsColour(text_colour_));
    painter.drawText(place.translated(0, sunk), Qt::AlignLeft | Qt::AlignVCenter, text());
}

}  // namespace launcher
