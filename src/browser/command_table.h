// The commands of the main window. command_table.cpp has a line for each: the name and caption of
// its menu entry, its action, the rule that enables it, and its key. To add a command, add a line
// there, a member to CommandActions, and the action.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringView>
#include <QtCore/Qt>

#include <functional>
#include <span>

namespace browser {

// The actions of the commands. frmPinball provides those that concern only the main window,
// app::Commands the others.
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
    Action toggle_wait{};
    Action show_help{};
    Action show_about{};
    Action play{};
    Action toggle_favorites{};
    Action load_picture{};
    Action view_table_info{};
    Action export_tables{};
    Action import_tables{};
    Action show_path_map{};
    Action undo{};
    Action redo{};
    Action show_history{};
    Action restore{};
    Action compact{};
    Action find{};
    Action find_next{};
    Action find_previous{};
    Action edit_details{};
    Action save_details{};
    Action cancel_edit{};
    Action delete_table{};
    Action refresh_tree{};
    Action look_for_new_tables{};
    Action show_in_folder{};
    Action copy_as_text{};
    Action copy_file{};
    Action select_random{};
    Action toggle_wall{};
    Action larger_pictures{};
    Action smaller_pictures{};
    Action show_keys{};
};

// Identifies a command by its action; nullptr: no command.
using CommandId = CommandActions::Action CommandActions::*;

enum class EnabledWhen {
    kAlways,
    kRulesTextIsNotShown,  // the command would discard a rules text that is being written
    kWindowIsNormal,
    kRecordIsShown,    // and not changed
    kRecordIsChanged,  // and not yet stored
    kTreeIsFree,       // no changed record locks it
    kWallIsShown,      // the tables are shown as pictures
};

// The input of the rules.
struct MainWindowState {
    int current_tab = 0;           // of the detail panel, see detail_tabs.h
    bool window_is_normal = true;  // neither minimised nor maximised
    bool record_is_shown = true;
    bool record_is_changed = false;
    bool wall_is_shown = true;
};

bool IsAllowed(EnabledWhen rule, const MainWindowState& state);

// A line of a menu: a command, a heading without an action, or a separator.
struct MenuItem {
    QStringView name;     // object name of the entry; empty for some separators
    QStringView caption;  // a marked text; "-": a separator
    CommandId action = nullptr;
    EnabledWhen enabled_when = EnabledWhen::kAlways;
    bool checkable = false;
    int key = 0;  // the Qt::Key whose release runs the command; 0: none
    // Keys that run it unless the focus has its own use for them, separated by "; "; empty: none.
    QStringView shortcut{};
    bool tree_only = false;  // `shortcut` is a key of the tree, shown in the menu only
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
inline constexpr QStringView kDataMenu = u"mnuData";
inline constexpr QStringView kEditMenu = u"mnuEdit";
inline constexpr QStringView kTableMenu = u"mnuTable";
inline constexpr QStringView kPopupMenu = u"mnufavorites";  // the tree's

// The menus of the menu bar in their order, followed by the tree's pop-up menu.
std::span<const MenuLayout> Menus();

// The caption of a command without the marks for keys and boxes: "Purge Missing Tables".
// As snapshots store it, whatever the language.
QString NameOf(CommandId command);
// The same in the user's language.
QString ShownNameOf(CommandId command);

// The command of a Qt::Key; nullptr: none.
CommandId CommandOfKey(int key);

}  // namespace browser
