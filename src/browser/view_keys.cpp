#include "browser/view_keys.h"

#include <QtGui/QKeyEvent>

namespace browser {

ViewKey ViewKeyOf(const QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return ViewKey::kPlay;
    case Qt::Key_Menu:
        return ViewKey::kMenu;
    case Qt::Key_F10:
        return event.modifiers() == Qt::ShiftModifier ? ViewKey::kMenu : ViewKey::kOther;
    case Qt::Key_Delete:
        return event.modifiers() == Qt::NoModifier ? ViewKey::kDelete : ViewKey::kOther;
    default:
        return event.matches(QKeySequence::Copy) ? ViewKey::kCopy : ViewKey::kOther;
    }
}

}  // namespace browser
