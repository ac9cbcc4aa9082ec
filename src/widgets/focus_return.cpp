#include "widgets/focus_return.h"

#include <QtCore/QEvent>
#include <QtWidgets/QApplication>

namespace widgets {
namespace {

// As soon as it is shown.
bool TakesKeyboard(const QWidget& window) {
    const Qt::WindowType type = window.windowType();
    return type != Qt::Popup && type != Qt::ToolTip && type != Qt::SplashScreen &&
           !window.testAttribute(Qt::WA_ShowWithoutActivating);
}

}  // namespace

FocusReturn::FocusReturn(QObject* parent) : QObject(parent) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool FocusReturn::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::WindowActivate && type != QEvent::WindowDeactivate &&
        type != QEvent::Show && type != QEvent::Hide)
        return false;
    const auto* const window = qobject_cast<QWidget*>(watched);
    if (window == nullptr || !window->isWindow()) return false;
    if (type == QEvent::WindowActivate || (type == QEvent::Show && TakesKeyboard(*window)))
        next_.clear();
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
    if (next_.isNull()) return;
    // Where a modal window is open the owner has no use of it.
    QWidget* const modal = QApplication::activeModalWidget();
    QWidget* const window = modal != nullptr ? modal : next_.data();
    if (window->isVisible() && !window->isMinimized()) window->activateWindow();
}

}  // namespace widgets
