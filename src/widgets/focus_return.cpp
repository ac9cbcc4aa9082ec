#include "widgets/focus_return.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

namespace widgets {

FocusReturn::FocusReturn(QObject* parent) : QObject(parent) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool FocusReturn::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::WindowActivate) next_.clear();
    if (type != QEvent::WindowDeactivate && type != QEvent::Hide) return false;
    const auto* const window = qobject_cast<QWidget*>(watched);
    if (window == nullptr || !window->isWindow()) return false;
    // A window that hides is no longer mapped, as Qt has it, where it loses the keyboard.
    const bool loses_by_hiding =
        type == QEvent::WindowDeactivate && !window->testAttribute(Qt::WA_Mapped);
    if (loses_by_hiding || (type == QEvent::Hide && window == next_)) HandBackFrom(*window);
    return false;
}

void FocusReturn::HandBackFrom(const QWidget& window) {
    if (window.parentWidget() == nullptr) return;
    next_ = window.parentWidget()->window();
    // Later, when all that close together are closed.
    QMetaObject::invokeMethod(this, &FocusReturn::HandBack, Qt::QueuedConnection);
}

void FocusReturn::HandBack() {
    if (!next_.isNull() && next_->isVisible() && !next_->isMinimized()) next_->activateWindow();
}

}  // namespace widgets
