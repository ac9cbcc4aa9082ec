#include "browser/main_menu.h"

#include "browser/menu_layout.h"

#include <QtGui/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include <utility>

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

const MainMenu::Item* MainMenu::Find(const QString& item) const {
    const auto found = items_.constFind(item);
    if (found != items_.cend()) return &*found;
    qCritical("The menu has no item \"%s\".", qUtf8Printable(item));
    return nullptr;
}

MainMenu::Item* MainMenu::Find(const QString& item) {
    return const_cast<Item*>(std::as_const(*this).Find(item));  // NOLINT: the hash is ours
}

void MainMenu::SetCommand(const QString& item, Command command) {
    Item* const found = Find(item);
    if (!found) return;
    found->command = std::move(command);
    UpdateEnabled(*found);
}

void MainMenu::Run(const QString& item) {
    if (const Item* const found = Find(item)) found->action->trigger();
}

void MainMenu::SetAllowed(const QString& item, bool allowed) {
    Item* const found = Find(item);
    if (!found) return;
    found->allowed = allowed;
    UpdateEnabled(*found);
}

bool MainMenu::IsEnabled(const QString& item) const {
    const Item* const found = Find(item);
    return found && found->action->isEnabled();
}

void MainMenu::UpdateEnabled(const Item& item) {
    item.action->setEnabled(item.command && item.allowed);
}

void MainMenu::SetChecked(const QString& item, bool checked) {
    if (const Item* const found = Find(item)) found->action->setChecked(checked);
}

bool MainMenu::IsChecked(const QString& item) const {
    const Item* const found = Find(item);
    return found && found->action->isChecked();
}

QMenu* MainMenu::Menu(const QString& name) const {
    QMenu* const menu = menus_.value(name);
    if (!menu) qCritical("There is no menu \"%s\".", qUtf8Printable(name));
    return menu;
}

void MainMenu::SetMenuEnabled(const QString& menu, bool enabled) {
    if (QMenu* const found = Menu(menu)) found->menuAction()->setEnabled(enabled);
}

bool MainMenu::IsMenuEnabled(const QString& menu) const {
    const QMenu* const found = Menu(menu);
    return found && found->menuAction()->isEnabled();
}

}  // namespace browser
