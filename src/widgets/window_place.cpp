#include "widgets/window_place.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtWidgets/QWidget>

#include <algorithm>
#include <limits>

namespace widgets {
namespace {

// A window manager says how thick its frames are only when the window is there: what large ones
// take.
constexpr int kFrameWidth = 16;
constexpr int kFrameHeight = 48;
// Of the title bar: so much must be on a screen.
constexpr int kHandleWidth = 100;
constexpr int kHandleHeight = 24;

bool CanBeTaken(const QRect& window, const QRect& screen) {
    const QRect title(window.topLeft(), QSize(window.width(), kHandleHeight));
    const QRect seen = title & screen;
    return seen.width() >= std::min(kHandleWidth, window.width()) && seen.height() >= kHandleHeight;
}

QPoint MovedInto(const QRect& window, const QRect& screen) {
    const auto inside = [](int wanted, int size, int first, int room) {
        return std::max(first, std::min(wanted, first + room - size));
    };
    return {inside(window.x(), window.width() + kFrameWidth, screen.x(), screen.width()),
            inside(window.y(), window.height() + kFrameHeight, screen.y(), screen.height())};
}

}  // namespace

QSize FittedTo(QSize wanted, const QRect& screen) {
    return wanted.boundedTo(
        {std::max(1, screen.width() - kFrameWidth), std::max(1, screen.height() - kFrameHeight)});
}

QPoint OnAScreen(const QRect& wanted, const QList<QRect>& screens) {
    for (const QRect& screen : screens)
        if (CanBeTaken(wanted, screen)) return wanted.topLeft();
    QPoint nearest = wanted.topLeft();
    int least = std::numeric_limits<int>::max();
    for (const QRect& screen : screens) {
        const QPoint moved = MovedInto(wanted, screen);
        const int way = (moved - wanted.topLeft()).manhattanLength();
        if (way < least) {
            least = way;
            nearest = moved;
        }
    }
    return nearest;
}

QList<QRect> Screens() {
    QList<QRect> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.append(screen->availableGeometry());
    return screens;
}

void FitToScreen(QWidget& window) {
    window.resize(FittedTo(window.size(), window.screen()->availableGeometry()));
}

}  // namespace widgets
