// MainMenu: the menu bar and the tree's pop-up menu, built from command_table.h. A command without
// an action is shown and disabled. An unknown menu name is an error of the program: it is logged,
// and the call has no effect.
#pragma once

#include "browser/command_table.h"

#include <QtCore/QHash>
#include <QtCore/QObject>

#include <vector>

class QAction;
class QMenu;
class QMenuBar;

namespace browser {

// A text that is not of the program's own as the caption of an entry, where a single "&" marks the
// mnemonic.
QString EntryCaption(QString text);

class MainMenu : public QObject {
    Q_OBJECT

public:
    using Action = CommandActions::Action;

    // Fills `bar`, which outlives the menu.
    explicit MainMenu(QMenuBar& bar);
    ~MainMenu() override;

    // Sets or replaces the action of a command; an empty one disables it.
    void SetAction(CommandId command, Action action);
    // Sets the actions that are not empty.
    void SetActions(const CommandActions& actions);
    // Triggers the menu entry; does nothing when it is disabled.
    void Run(CommandId command);

    // Enables the commands that have an action and are allowed in this state, and disables the
    // others.
    void ApplyRules(const MainWindowState& state);
    bool IsEnabled(CommandId command) const;

    // Another caption than that of the table, and whether the command is offered now (until the
    // rules are applied again).
    void Offer(CommandId command, const QString& caption, bool is_offered);

    void SetChecked(CommandId command, bool checked);
    bool IsChecked(CommandId command) const;

    // A menu by its name; nullptr: no such menu.
    QMenu* Menu(QStringView name) const;
    void SetMenuEnabled(QStringView menu, bool enabled);
    bool IsMenuEnabled(QStringView menu) const;

private:
    struct Entry {
        const MenuItem* item;  // in the command table
        QAction* action;
        Action run{};
        bool allowed = true;
    };

    void Fill(QMenu& menu, const MenuLayout& layout);
    void Add(QMenu& menu, const MenuItem& item);
    // Requires: the command is in the table.
    Entry& Find(CommandId command);
    const Entry& Find(CommandId command) const;
    static void UpdateEnabled(const Entry& entry);

    std::vector<Entry> entries_;  // of the commands
    QHash<QStringView, QMenu*> menus_;
};

}  // namespace browser
