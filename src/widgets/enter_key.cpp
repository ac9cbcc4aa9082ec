#include "widgets/enter_key.h"

#include <QtCore/QPointer>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

namespace widgets {

EnterKey::EnterKey(QObject* parent) : QObject(parent) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool EnterKey::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    const auto* const key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter) return false;
    auto* const button = qobject_cast<QAbstractButton*>(watched);
    if (button == nullptr || !button->hasFocus() || !button->isEnabled()) return false;
    // Held down, it presses once.
    if (!key->isAutoRepeat()) button->click();
    return true;
}

}  // namespace widgets
