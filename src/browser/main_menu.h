// MainMenu: the menu bar and the tree's pop-up menu. A command is attached to its item by name; an
// item without a command is there and disabled. A name that menu_layout.h does not have is a
// mistake of the program: it is said on the error output and changes nothing.
#pragma once

#include <QtCore/QHash>
#include <QtCore/QObject>

#include <functional>

class QAction;
class QMenu;
class QMenuBar;

namespace browser {

struct MenuLayout;

class MainMenu : public QObject {
    Q_OBJECT

public:
    using Command = std::function<void()>;

    // Fills `bar`, which outlives the menu.
    explicit MainMenu(QMenuBar& bar);
    ~MainMenu() override;

    // Attaches a command, or replaces it; an empty one disables the item.
    void SetCommand(const QString& item, Command command);
    // Does what a click on the item would do; nothing when the item is disabled.
    void Run(const QString& item);

    // A reason of the moment against an item (true: none). The item is enabled when it has a
    // command and no such reason.
    void SetAllowed(const QString& item, bool allowed);
    bool IsEnabled(const QString& item) const;

    void SetChecked(const QString& item, bool checked);
    bool IsChecked(const QString& item) const;

    // Menus of the bar by name, and "mnufavorites"; null: no such menu.
    QMenu* Menu(const QString& name) const;
    void SetMenuEnabled(const QString& menu, bool enabled);
    bool IsMenuEnabled(const QString& menu) const;

private:
    struct Item {
        QAction* action = nullptr;
        Command command;
        bool allowed = true;
    };

    void Fill(QMenu& menu, const MenuLayout& layout);
    // Null, and said: no such item.
    Item* Find(const QString& item);
    const Item* Find(const QString& item) const;
    static void UpdateEnabled(const Item& item);

    QHash<QString, Item> items_;
    QHash<QString, QMenu*> menus_;
    QMenu* popup_ = nullptr;
};

}  // namespace browser
