// MainMenu: the menu bar and the tree's pop-up menu, as command_table.h has them. A command without
// an action is there and disabled. A menu's name that the table does not have is a mistake of the
// program: it is said on the error output and changes nothing.
#pragma once

#include "browser/command_table.h"

#include <QtCore/QHash>
#include <QtCore/QObject>

#include <vector>

class QAction;
class QMenu;
class QMenuBar;

namespace browser {

class MainMenu : public QObject {
    Q_OBJECT

public:
    using Action = CommandActions::Action;

    // Fills `bar`, which outlives the menu.
    explicit MainMenu(QMenuBar& bar);
    ~MainMenu() override;

    // Gives a command its action, or another; an empty one disables the command.
    void SetAction(CommandId command, Action action);
    // Sets all that are not empty.
    void SetActions(const CommandActions& actions);
    // Does what a click on the entry would do; nothing when it is disabled.
    void Run(CommandId command);

    // Enables the commands that have an action and that their rule allows in this state.
    void ApplyRules(const MainWindowState& state);
    bool IsEnabled(CommandId command) const;

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
