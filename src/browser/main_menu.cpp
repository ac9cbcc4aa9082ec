#include "browser/main_menu.h"

#include "browser/menu_layout.h"

#include <QtGui/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

namespace browser {

MainMenu::MainMenu(QMenuBar& bar) {
    for (const MenuLayout& layout : MenuBarLayout())
        Fill(*bar.addMenu(layout.caption.toString()), layout);
    const MenuLayout& popup = PopupLayout();
    popup_ = new QMenu(popup.caption.toString(), bar.parentWidget());
    Fill(*popup_, popup);
}

MainMenu::~MainMenu() = default;

void MainMenu::Fill(QMenu& menu, const MenuLayout& layout) {
    menu.setObjectName(layout.name.toString());
    menu.menuAction()->setObjectName(layout.name.toString());
    menus_.insert(layout.name.toString(), &menu);
    for (const MenuItem& entry : layout.items) {
        const QString name = entry.name.toString();
        QAction* const action =
            entry.caption == u"-" ? menu.addSeparator() : menu.addAction(entry.caption.toString());
        action->setObjectName(name);
        if (action->isSeparator()) continue;
        action->setCheckable(entry.checkable);
        action->setEnabled(false);
        items_.insert(name, {action, {}, true});
        connect(action, &QAction::triggered, this, [this, name] {
            // The command may replace itself: keep the one that runs.
            if (const Command command = items_[name].command) command();
        });
    }
}

void MainMenu::SetCommand(const QString& item, Command command) {
    Q_ASSERT(items_.contains(item));
    items_[item].command = std::move(command);
    UpdateEnabled(items_[item]);
}

bool MainMenu::HasCommand(const QString& item) const {
    return static_cast<bool>(items_.value(item).command);
}

void MainMenu::Run(const QString& item) {
    if (QAction* const action = items_.value(item).action) action->trigger();
}

void MainMenu::SetAllowed(const QString& item, bool allowed) {
    items_[item].allowed = allowed;
    UpdateEnabled(items_[item]);
}

bool MainMenu::IsEnabled(const QString& item) const {
    return items_.value(item).action->isEnabled();
}

void MainMenu::UpdateEnabled(const Item& item) {
    item.action->setEnabled(item.command && item.allowed);
}

void MainMenu::SetChecked(const QString& item, bool checked) {
    items_[item].action->setChecked(checked);
}

bool MainMenu::IsChecked(const QString& item) const {
    return items_.value(item).action->isChecked();
}

QMenu* MainMenu::Menu(const QString& name) const {
    return menus_.value(name);
}

void MainMenu::SetMenuEnabled(const QString& menu, bool enabled) {
    Menu(menu)->menuAction()->setEnabled(enabled);
}

bool MainMenu::IsMenuEnabled(const QString& menu) const {
    return Menu(menu)->menuAction()->isEnabled();
}

}  // namespace browser
