#include "browser/command_table.h"

#include "browser/detail_tabs.h"

namespace browser {
namespace {

using A = CommandActions;

constexpr EnabledWhen kAlways = EnabledWhen::kAlways;
constexpr MenuItem kSeparator = {u"", u"-"};

constexpr MenuItem kFile[] = {
    {u"mnuTblScan", u"&Scan for New Tables", &A::scan_for_tables},
    {u"mnusep1", u"-"},
    {u"mnuExit", u"E&xit", &A::exit, kAlways, false, 0, u"Ctrl+Q"},
};

constexpr MenuItem kUtilities[] = {
    {u"mnuExe", u"Set VP Exe &Location", &A::set_executable},
    {u"mnusep2", u"-"},
    {u"mnuDates", u"Reset File &Dates", &A::reset_file_dates, EnabledWhen::kRulesTextIsNotShown},
    {u"mnuResetTimes", u"Reset &Times Played", &A::reset_times_played},
    {u"mnuRest", u"&Reset Paths", &A::reset_paths, EnabledWhen::kRulesTextIsNotShown},
    kSeparator,
    {u"mnuCRC", u"&Update CRC's", &A::update_crcs},
    kSeparator,
    {u"mnuVPT", u"Import Data from &VPTs", &A::import_from_table_files},
    kSeparator,
    {u"mnuImport", u"&Import VPLauncher Data", &A::import_launcher_data},
    {u"mnusep3", u"-"},
    {u"mnuSize", u"Restore Default Size", &A::restore_default_size, EnabledWhen::kWindowIsNormal},
    kSeparator,
    {u"mnuPurge", u"&Purge Missing Tables", &A::purge_missing_tables},
    kSeparator,
    {u"mnuBackup", u"&Backup Data", &A::back_up},
};

constexpr MenuItem kOptions[] = {
    {u"mnuMin", u"&Minimize on Play", &A::toggle_minimise_on_play, kAlways, true},
    kSeparator,
    {u"mnuSound", u"Toggle Sou&nd", &A::toggle_sound, kAlways, true},
    kSeparator,
    {u"mnuWait", u"&Wait for the Simulator", &A::toggle_wait, kAlways, true},
};

constexpr MenuItem kHelp[] = {
    {u"mnuHelpContents", u"&Contents", &A::show_help},
    kSeparator,
    {u"mnuAbout", u"&About", &A::show_about},
};

constexpr MenuItem kData[] = {
    {u"mnuExportTables", u"&Export...", &A::export_tables},
    {u"mnuImportTables", u"&Import...", &A::import_tables, EnabledWhen::kRulesTextIsNotShown},
};

constexpr MenuItem kEdit[] = {
    {u"mnuUndo", u"&Undo", &A::undo, kAlways, false, 0, u"Ctrl+Z"},
    {u"mnuRedo", u"Re&do", &A::redo, kAlways, false, 0, u"Ctrl+Shift+Z"},
    kSeparator,
    {u"mnuFind", u"&Find", &A::find, kAlways, false, 0, u"Ctrl+F; /"},
    {u"mnuFindNext", u"Find &Next", &A::find_next, kAlways, false, 0, u"F3"},
    {u"mnuFindPrevious", u"Find &Previous", &A::find_previous, kAlways, false, 0, u"Shift+F3"},
    kSeparator,
    {u"mnuHistory", u"&History...", &A::show_history},
    kSeparator,
    {u"mnuRestoreSnapshot", u"&Restore...", &A::restore, EnabledWhen::kRulesTextIsNotShown},
    kSeparator,
    {u"mnuCompact", u"&Compact...", &A::compact},
};

constexpr EnabledWhen kShown = EnabledWhen::kRecordIsShown;
constexpr EnabledWhen kChanged = EnabledWhen::kRecordIsChanged;
constexpr EnabledWhen kFree = EnabledWhen::kTreeIsFree;
constexpr EnabledWhen kWall = EnabledWhen::kWallIsShown;

constexpr MenuItem kTable[] = {
    {u"mnuEditDetails", u"&Edit Details", &A::edit_details, kShown, false, 0, u"Ctrl+E"},
    {u"mnuSaveDetails", u"&Save", &A::save_details, kChanged, false, 0, u"Ctrl+S"},
    {u"mnuCancelEdit", u"C&ancel", &A::cancel_edit, kChanged, false, 0, u"Esc"},
    kSeparator,
    {u"mnuDeleteTable", u"&Delete...", &A::delete_table, kShown, false, 0, u"Del", true},
    kSeparator,
    {u"mnuCopyText", u"&Copy as Text", &A::copy_as_text, kFree, false, 0, u"Ctrl+C"},
    {u"mnuCopyFile", u"Copy as &File", &A::copy_file, kFree, false, 0, u"Ctrl+Shift+C"},
    {u"mnuShowInFolder", u"Show in F&older", &A::show_in_folder, kShown},
    kSeparator,
    {u"mnuRefreshTree", u"&Refresh Tree", &A::refresh_tree, kFree, false, 0, u"F5"},
    {u"mnuLookForNew", u"Look for &New Tables", &A::look_for_new_tables, kFree, false, 0,
     u"Shift+F5"},
    {u"mnuRandom", u"Select One at Rando&m", &A::select_random, kFree, false, 0, u"Ctrl+R"},
    kSeparator,
    {u"mnuWall", u"&Wall of Pictures", &A::toggle_wall, kAlways, true, 0, u"F9"},
    {u"mnuLarger", u"Lar&ger Pictures", &A::larger_pictures, kWall, false, 0, u"Ctrl++; Ctrl+="},
    {u"mnuSmaller", u"Sma&ller Pictures", &A::smaller_pictures, kWall, false, 0, u"Ctrl+-"},
    kSeparator,
    {u"mnuKeys", u"&Keys...", &A::show_keys, kAlways, false, 0, u"Ctrl+/"},
};

constexpr MenuItem kPopup[] = {
    {u"mnumnu", u"Menu"},
    kSeparator,
    {u"mnuPlay", u"&Play", &A::play},
    {u"mnuspace", u"-"},
    {u"mnuAddit", u"Toggle &Favorites", &A::toggle_favorites},
    {u"mnuspace2", u"-"},
    {u"mnuClip", u"&Load Picture From Clipboard", &A::load_picture, kAlways, false, Qt::Key_F2},
    kSeparator,
    {u"mnuTI", u"View Table  &Info", &A::view_table_info},
};

constexpr MenuLayout kMenus[] = {
    {kFileMenu, u"&File", kFile},          {kUtilitiesMenu, u"&Utilities", kUtilities},
    {kOptionsMenu, u"&Options", kOptions}, {kHelpMenu, u"&Help", kHelp},
    {kDataMenu, u"&Data", kData},          {kEditMenu, u"&Edit", kEdit},
    {kTableMenu, u"&Table", kTable},       {kPopupMenu, u"Popup", kPopup},
};

}  // namespace

bool IsAllowed(EnabledWhen rule, const MainWindowState& state) {
    switch (rule) {
    case EnabledWhen::kAlways:
        return true;
    case EnabledWhen::kRulesTextIsNotShown:
        return state.current_tab != kRulesTextTab;
    case EnabledWhen::kWindowIsNormal:
        return state.window_is_normal;
    case EnabledWhen::kRecordIsShown:
        return state.record_is_shown && !state.record_is_changed;
    case EnabledWhen::kRecordIsChanged:
        return state.record_is_changed;
    case EnabledWhen::kTreeIsFree:
        return !state.record_is_changed;
    case EnabledWhen::kWallIsShown:
        return state.wall_is_shown;
    }
    return true;
}

std::span<const MenuLayout> Menus() {
    return kMenus;
}

QString NameOf(CommandId command) {
    if (command == nullptr) return {};
    for (const MenuLayout& menu : kMenus)
        for (const MenuItem& item : menu.items)
            if (item.action == command) {
                QString name = item.caption.toString().remove(u'&');
                while (name.endsWith(u'.'))
                    name.chop(1);
                return name;
            }
    return {};
}

CommandId CommandOfKey(int key) {
    if (key == 0) return nullptr;
    for (const MenuLayout& menu : kMenus)
        for (const MenuItem& item : menu.items)
            if (item.key == key) return item.action;
    return nullptr;
}

}  // namespace browser
