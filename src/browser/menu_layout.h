// The menus of the main window: names, captions and order. Commands are attached to them by name.
#pragma once

#include <QtCore/QStringView>

#include <span>

namespace browser {

struct MenuItem {
    QStringView name;     // empty: a separator without a name
    QStringView caption;  // "-": a separator
    bool checkable = false;
};

struct MenuLayout {
    QStringView name;
    QStringView caption;
    std::span<const MenuItem> items;
};

// File, Utilities, Options, Help.
std::span<const MenuLayout> MenuBarLayout();
// The tree's pop-up menu.
const MenuLayout& PopupLayout();

}  // namespace browser
