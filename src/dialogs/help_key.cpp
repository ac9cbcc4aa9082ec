#include "dialogs/help_key.h"

#include "dialogs/help.h"
#include "dialogs/help_pages.h"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <utility>

namespace dialogs {
namespace {

// The window in front, or, for a box that has no page, the window that it belongs to.
QString WindowInFront() {
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
    // A key press passes the widget with the focus and, while nobody takes it, its parents: the
    // first of them is enough.
    if (!watched->isWidgetType() || !IsHelpKey(*event)) return QObject::eventFilter(watched, event);
    OpenHelpAtWindow(shell_, application_folder_, WindowInFront());
    return true;
}

}  // namespace dialogs
