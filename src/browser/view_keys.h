// The keys that mean the same in each view of the tables.
#pragma once

class QKeyEvent;

namespace browser {

enum class ViewKey {
    kOther,
    kPlay,    // Enter
    kMenu,    // the menu key, or Shift+F10
    kDelete,  // Delete
    kCopy,    // the window copies the table, the view would copy the name
};

ViewKey ViewKeyOf(const QKeyEvent& event);

}  // namespace browser
