#include "app/session_end.h"

#include <QtCore/QEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <utility>

namespace app {
namespace {

// Nothing tells when a command or a dialog has ended.
constexpr int kTryAgainMs = 50;

}  // namespace

SessionEnd::SessionEnd(std::function<bool()> is_busy, std::function<void()> end)
    : is_busy_(std::move(is_busy)), end_(std::move(end)) {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Try(); });
}

void SessionEnd::Request() {
    if (has_ended_) return;
    timer_.start(kTryAgainMs);
    Try();
}

void SessionEnd::TakeQuitOrders() {
    qApp->installEventFilter(this);
}

// The order that ends the program itself, after the request, takes its usual way.
bool SessionEnd::eventFilter(QObject*, QEvent* event) {
    if (event->type() != QEvent::Quit || has_ended_) return false;
    Request();
    return true;
}

// A dialog at work refuses to be closed, and is asked again.
void SessionEnd::Try() {
    if (QWidget* const popup = QApplication::activePopupWidget()) {
        popup->close();
    } else if (QWidget* const modal = QApplication::activeModalWidget()) {
        if (!modal->property("busy").toBool()) modal->close();
    } else if (!is_busy_()) {
        timer_.stop();
        if (!std::exchange(has_ended_, true)) end_();
    }
}

}  // namespace app
