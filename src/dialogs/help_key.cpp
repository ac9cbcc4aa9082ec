#include "dialogs/help_key.h"

#include "dialogs/help.h"
#include "dialogs/help_pages.h"
#include "dialogs/help_window.h"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <utility>

namespace dialogs {
namespace {

// The active window or, for a box without a page of its own, the nearest parent that has one.
QString ActiveWindow() {
    const QWidget* widget = QApplication::activeWindow();
    while (widget != nullptr && !HasHelpPage(widget->objectName()))
        widget = widget->parentWidget();
    return widget != nullptr ? widget->objectName() : QString();
}

bool IsHelpKey(const QEvent& event) {
    if (event.type() != QEvent::KeyPress) return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    return key.key() == Qt::Key_F1 && key.modifiers() == Qt::NoModifier && !key.isAutoRepeat();
}

}  // namespace

HelpKey::HelpKey(platform::Shell& shell, QString application_folder, QObject* parent)
    : QObject(parent), shell_(shell), application_folder_(std::move(application_folder)) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool HelpKey::eventFilter(QObject* watched, QEvent* event) {
    // An unhandled key press is sent to the widget with the focus and then to its parents; it is
    // consumed here at the first of them.
    if (!watched->isWidgetType() || !IsHelpKey(*event)) return QObject::eventFilter(watched, event);
    OpenHelpAtWindow(shell_, application_folder_, ActiveWindow(), platform::ProgramFolder(),
                     ShowInHelpWindow);
    return true;
}

}  // namespace dialogs
