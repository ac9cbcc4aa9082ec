#include "browser/main_menu.h"

#include "browser/texts.h"
#include "platform/shown_text.h"

#include <QtGui/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include <algorithm>
#include <cassert>
#include <utility>

namespace browser {

QString EntryCaption(QString text) {
    return text.replace(u'&', QLatin1String("&&"));
}

MainMenu::MainMenu(QMenuBar& bar) {
    for (const MenuLayout& layout : Menus()) {
        const QString caption = platform::Shown<BrowserTexts>(layout.caption);
        const bool is_popup = layout.name == kPopupMenu;
        Fill(is_popup ? *new QMenu(caption, bar.parentWidget()) : *bar.addMenu(caption), layout);
    }
}

MainMenu::~MainMenu() = default;

void MainMenu::Fill(QMenu& menu, const MenuLayout& layout) {
    menu.setObjectName(layout.name.toString());
    menu.menuAction()->setObjectName(layout.name.toString());
    menus_.insert(layout.name, &menu);
    for (const MenuItem& item : layout.items)
        Add(menu, item);
}

void MainMenu::Add(QMenu& menu, const MenuItem& item) {
    QAction* const action = item.caption == u"-"
                                ? menu.addSeparator()
                                : menu.addAction(platform::Shown<BrowserTexts>(item.caption));
    action->setObjectName(item.name.toString());
    if (action->isSeparator()) return;
    action->setCheckable(item.checkable);
    if (!item.shortcut.isEmpty())
        action->setShortcuts(
            QKeySequence::listFromString(item.shortcut.toString(), QKeySequence::PortableText));
    // Of a key of the tree the menu shows only that there is one.
    if (item.tree_only) action->setShortcutContext(Qt::WidgetShortcut);
    action->setEnabled(false);
    if (item.action == nullptr) return;  // a heading
    entries_.push_back({&item, action});
    connect(action, &QAction::triggered, this, [this, command = item.action] {
        // A copy: the action may replace itself while it runs.
        if (const Action run = Find(command).run) run();
    });
}

const MainMenu::Entry& MainMenu::Find(CommandId command) const {
    const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
        return entry.item->action == command;
    });
    assert(found != entries_.end());
    return *found;
}

MainMenu::Entry& MainMenu::Find(CommandId command) {
    return const_cast<Entry&>(std::as_const(*this).Find(command));  // NOLINT: the entries are ours
}

void MainMenu::SetAction(CommandId command, Action action) {
    Entry& entry = Find(command);
    entry.run = std::move(action);
    UpdateEnabled(entry);
}

void MainMenu::SetActions(const CommandActions& actions) {
    for (const Entry& entry : entries_)
        if (const Action& action = actions.*entry.item->action)
            SetAction(entry.item->action, action);
}

void MainMenu::Run(CommandId command) {
    Find(command).action->trigger();
}

void MainMenu::ApplyRules(const MainWindowState& state) {
    for (Entry& entry : entries_) {
        entry.allowed = IsAllowed(entry.item->enabled_when, state);
        UpdateEnabled(entry);
    }
}

bool MainMenu::IsEnabled(CommandId command) const {
    return Find(command).action->isEnabled();
}

void MainMenu::UpdateEnabled(const Entry& entry) {
    entry.action->setEnabled(entry.run && entry.allowed);
}

void MainMenu::Offer(CommandId command, const QString& caption, bool is_offered) {
    Entry& entry = Find(command);
    entry.action->setText(caption);
    entry.allowed = is_offered;
    UpdateEnabled(entry);
}

void MainMenu::SetChecked(CommandId command, bool checked) {
    Find(command).action->setChecked(checked);
}

bool MainMenu::IsChecked(CommandId command) const {
    return Find(command).action->isChecked();
}

QMenu* MainMenu::Menu(QStringView name) const {
    QMenu* const menu = menus_.value(name);
    if (!menu) qCritical("There is no menu \"%s\".", qUtf8Printable(name.toString()));
    return menu;
}

void MainMenu::SetMenuEnabled(QStringView menu, bool enabled) {
    if (QMenu* const found = Menu(menu)) found->menuAction()->setEnabled(enabled);
}

bool MainMenu::IsMenuEnabled(QStringView menu) const {
    const QMenu* const found = Menu(menu);
    return found && found->menuAction()->isEnabled();
}

}  // namespace browser
