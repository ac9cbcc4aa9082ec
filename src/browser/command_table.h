// The commands of the main window. Each stands once, in the table in command_table.cpp: the name
// and caption of its menu entry, its action, when it can be chosen, the key that runs it. A new
// command is a line there, a member of CommandActions, and the action itself.
#pragma once

#include <QtCore/QStringView>
#include <QtCore/Qt>

#include <functional>
#include <span>

namespace browser {

// What the commands do. The main window fills in what concerns itself only, app::Commands the rest.
struct CommandActions {
    using Action = std::function<void()>;

    Action scan_for_tables{};
    Action exit{};
    Action set_executable{};
    Action reset_file_dates{};
    Action reset_times_played{};
    Action reset_paths{};
    Action update_crcs{};
    Action import_from_table_files{};
    Action import_launcher_data{};
    Action restore_default_size{};
    Action purge_missing_tables{};
    Action back_up{};
    Action toggle_minimise_on_play{};
    Action toggle_sound{};
    Action show_help{};
    Action show_about{};
    Action play{};
    Action toggle_favorites{};
    Action load_picture{};
    Action view_table_info{};
};

// Names a command by its action; nullptr: none.
using CommandId = CommandActions::Action CommandActions::*;

enum class EnabledWhen {
    kAlways,
    kRulesTextIsNotShown,  // the command would reload what the user is writing there
    kWindowIsNormal,
};

// What the rules look at.
struct MainWindowState {
    int current_tab = 0;           // of the detail panel, see detail_tabs.h
    bool window_is_normal = true;  // neither minimised nor maximised
};

bool IsAllowed(EnabledWhen rule, const MainWindowState& state);

// A line of a menu: a command, a heading without an action, or a separator.
struct MenuItem {
    QStringView name;     // object name of the entry; empty: a separator without a name
    QStringView caption;  // "-": a separator
    CommandId action = nullptr;
    EnabledWhen enabled_when = EnabledWhen::kAlways;
    bool checkable = false;
    int key = 0;  // Qt::Key that runs the command when it is released; 0: none
};

struct MenuLayout {
    QStringView name;  // object name of the menu
    QStringView caption;
    std::span<const MenuItem> items;
};

// Names of menus.
inline constexpr QStringView kFileMenu = u"mnuFile";
inline constexpr QStringView kUtilitiesMenu = u"mnuUtilities";
inline constexpr QStringView kOptionsMenu = u"mnuOptions";
inline constexpr QStringView kHelpMenu = u"mnuHelp";
inline constexpr QStringView kPopupMenu = u"mnufavorites";  // the tree's

// The menus of the menu bar, in their order, and behind them the tree's pop-up menu.
std::span<const MenuLayout> Menus();

// The command that `key` (Qt::Key) runs; nullptr: none.
CommandId CommandOfKey(int key);

}  // namespace browser
