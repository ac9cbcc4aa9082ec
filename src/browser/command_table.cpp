#include "browser/command_table.h"

#include "base/marked_text.h"
#include "browser/detail_tabs.h"
#include "browser/texts.h"
#include "platform/shown_text.h"

namespace browser {
namespace {

using A = CommandActions;

constexpr EnabledWhen kAlways = EnabledWhen::kAlways;
constexpr MenuItem kSeparator = {u"", u"-"};

constexpr MenuItem kFile[] = {
    {u"mnuTblScan", MARKED_TEXT("BrowserTexts", "&Scan for New Tables"), &A::scan_for_tables},
    {u"mnusep1", u"-"},
    {u"mnuExit", MARKED_TEXT("BrowserTexts", "E&xit"), &A::exit, kAlways, false, 0, u"Ctrl+Q"},
};

constexpr MenuItem kUtilities[] = {
    {u"mnuExe", MARKED_TEXT("BrowserTexts", "Set VP Exe &Location"), &A::set_executable},
    {u"mnusep2", u"-"},
    {u"mnuDates", MARKED_TEXT("BrowserTexts", "Reset File &Dates"), &A::reset_file_dates,
     EnabledWhen::kRulesTextIsNotShown},
    {u"mnuResetTimes", MARKED_TEXT("BrowserTexts", "Reset &Times Played"), &A::reset_times_played},
    {u"mnuRest", MARKED_TEXT("BrowserTexts", "&Reset Paths"), &A::reset_paths,
     EnabledWhen::kRulesTextIsNotShown},
    kSeparator,
    {u"mnuCRC", MARKED_TEXT("BrowserTexts", "&Update CRC's"), &A::update_crcs},
    kSeparator,
    {u"mnuVPT", MARKED_TEXT("BrowserTexts", "Import Data from &VPTs"), &A::import_from_table_files},
    kSeparator,
    {u"mnuImport", MARKED_TEXT("BrowserTexts", "&Import VPLauncher Data"),
     &A::import_launcher_data},
    {u"mnusep3", u"-"},
    {u"mnuSize", MARKED_TEXT("BrowserTexts", "Restore Default Size"), &A::restore_default_size,
     EnabledWhen::kWindowIsNormal},
    kSeparator,
    {u"mnuPurge", MARKED_TEXT("BrowserTexts", "&Purge Missing Tables"), &A::purge_missing_tables},
    kSeparator,
    {u"mnuBackup", MARKED_TEXT("BrowserTexts", "&Backup Data"), &A::back_up},
};

constexpr MenuItem kOptions[] = {
    {u"mnuMin", MARKED_TEXT("BrowserTexts", "&Minimize on Play"), &A::toggle_minimise_on_play,
     kAlways, true},
    kSeparator,
    {u"mnuSound", MARKED_TEXT("BrowserTexts", "Toggle Sou&nd"), &A::toggle_sound, kAlways, true},
    kSeparator,
    {u"mnuWait", MARKED_TEXT("BrowserTexts", "&Wait for the Simulator"), &A::toggle_wait, kAlways,
     true},
};

constexpr MenuItem kHelp[] = {
    {u"mnuHelpContents", MARKED_TEXT("BrowserTexts", "&Contents"), &A::show_help},
    kSeparator,
    {u"mnuAbout", MARKED_TEXT("BrowserTexts", "&About"), &A::show_about},
};

constexpr MenuItem kData[] = {
    {u"mnuExportTables", MARKED_TEXT("BrowserTexts", "&Export..."), &A::export_tables},
    {u"mnuImportTables", MARKED_TEXT("BrowserTexts", "&Import..."), &A::import_tables,
     EnabledWhen::kRulesTextIsNotShown},
    kSeparator,
    {u"mnuPathMap", MARKED_TEXT("BrowserTexts", "&Path Map..."), &A::show_path_map},
};

constexpr MenuItem kEdit[] = {
    {u"mnuUndo", MARKED_TEXT("BrowserTexts", "&Undo"), &A::undo, kAlways, false, 0, u"Ctrl+Z"},
    {u"mnuRedo", MARKED_TEXT("BrowserTexts", "Re&do"), &A::redo, kAlways, false, 0,
     u"Ctrl+Shift+Z"},
    kSeparator,
    {u"mnuFind", MARKED_TEXT("BrowserTexts", "&Find"), &A::find, kAlways, false, 0, u"Ctrl+F; /"},
    {u"mnuFindNext", MARKED_TEXT("BrowserTexts", "Find &Next"), &A::find_next, kAlways, false, 0,
     u"F3"},
    {u"mnuFindPrevious", MARKED_TEXT("BrowserTexts", "Find &Previous"), &A::find_previous, kAlways,
     false, 0, u"Shift+F3"},
    kSeparator,
    {u"mnuHistory", MARKED_TEXT("BrowserTexts", "&History..."), &A::show_history},
    kSeparator,
    {u"mnuRestoreSnapshot", MARKED_TEXT("BrowserTexts", "&Restore..."), &A::restore,
     EnabledWhen::kRulesTextIsNotShown},
    kSeparator,
    {u"mnuCompact", MARKED_TEXT("BrowserTexts", "&Compact..."), &A::compact},
};

constexpr EnabledWhen kShown = EnabledWhen::kRecordIsShown;
constexpr EnabledWhen kChanged = EnabledWhen::kRecordIsChanged;
constexpr EnabledWhen kFree = EnabledWhen::kTreeIsFree;
constexpr EnabledWhen kWall = EnabledWhen::kWallIsShown;

constexpr MenuItem kTable[] = {
    {u"mnuEditDetails", MARKED_TEXT("BrowserTexts", "&Edit Details"), &A::edit_details, kShown,
     false, 0, u"Ctrl+E"},
    {u"mnuSaveDetails", MARKED_TEXT("BrowserTexts", "&Save"), &A::save_details, kChanged, false, 0,
     u"Ctrl+S"},
    {u"mnuCancelEdit", MARKED_TEXT("BrowserTexts", "C&ancel"), &A::cancel_edit, kChanged, false, 0,
     u"Esc"},
    kSeparator,
    {u"mnuDeleteTable", MARKED_TEXT("BrowserTexts", "&Delete..."), &A::delete_table, kShown, false,
     0, u"Del", true},
    kSeparator,
    {u"mnuCopyText", MARKED_TEXT("BrowserTexts", "&Copy as Text"), &A::copy_as_text, kFree, false,
     0, u"Ctrl+C"},
    {u"mnuCopyFile", MARKED_TEXT("BrowserTexts", "Copy as &File"), &A::copy_file, kFree, false, 0,
     u"Ctrl+Shift+C"},
    {u"mnuShowInFolder", MARKED_TEXT("BrowserTexts", "Show in F&older"), &A::show_in_folder,
     kShown},
    kSeparator,
    {u"mnuRefreshTree", MARKED_TEXT("BrowserTexts", "&Refresh Tree"), &A::refresh_tree, kFree,
     false, 0, u"F5"},
    {u"mnuLookForNew", MARKED_TEXT("BrowserTexts", "Look for &New Tables"), &A::look_for_new_tables,
     kFree, false, 0, u"Shift+F5"},
    {u"mnuRandom", MARKED_TEXT("BrowserTexts", "Select One at Rando&m"), &A::select_random, kFree,
     false, 0, u"Ctrl+R"},
    kSeparator,
    {u"mnuWall", MARKED_TEXT("BrowserTexts", "&Wall of Pictures"), &A::toggle_wall, kAlways, true,
     0, u"F9"},
    {u"mnuLarger", MARKED_TEXT("BrowserTexts", "Lar&ger Pictures"), &A::larger_pictures, kWall,
     false, 0, u"Ctrl++; Ctrl+="},
    {u"mnuSmaller", MARKED_TEXT("BrowserTexts", "Sma&ller Pictures"), &A::smaller_pictures, kWall,
     false, 0, u"Ctrl+-"},
    kSeparator,
    {u"mnuKeys", MARKED_TEXT("BrowserTexts", "&Keys..."), &A::show_keys, kAlways, false, 0,
     u"Ctrl+/"},
};

constexpr MenuItem kPopup[] = {
    {u"mnumnu", MARKED_TEXT("BrowserTexts", "Menu")},
    kSeparator,
    {u"mnuPlay", MARKED_TEXT("BrowserTexts", "&Play"), &A::play},
    {u"mnuspace", u"-"},
    {u"mnuAddit", MARKED_TEXT("BrowserTexts", "Toggle &Favorites"), &A::toggle_favorites},
    {u"mnuspace2", u"-"},
    {u"mnuClip", MARKED_TEXT("BrowserTexts", "&Load Picture From Clipboard"), &A::load_picture,
     kAlways, false, Qt::Key_F2},
    kSeparator,
    {u"mnuTI", MARKED_TEXT("BrowserTexts", "View Table  &Info"), &A::view_table_info},
};

constexpr MenuLayout kMenus[] = {
    {kFileMenu, MARKED_TEXT("BrowserTexts", "&File"), kFile},
    {kUtilitiesMenu, MARKED_TEXT("BrowserTexts", "&Utilities"), kUtilities},
    {kOptionsMenu, MARKED_TEXT("BrowserTexts", "&Options"), kOptions},
    {kHelpMenu, MARKED_TEXT("BrowserTexts", "&Help"), kHelp},
    {kDataMenu, MARKED_TEXT("BrowserTexts", "&Data"), kData},
    {kEditMenu, MARKED_TEXT("BrowserTexts", "&Edit"), kEdit},
    {kTableMenu, MARKED_TEXT("BrowserTexts", "&Table"), kTable},
    {kPopupMenu, MARKED_TEXT("BrowserTexts", "Popup"), kPopup},
};

// Empty: there is no such command.
QStringView CaptionOf(CommandId command) {
    if (command == nullptr) return {};
    for (const MenuLayout& menu : kMenus)
        for (const MenuItem& item : menu.items)
            if (item.action == command) return item.caption;
    return {};
}

QString WithoutMarks(QString caption) {
    caption.remove(u'&');
    while (caption.endsWith(u'.'))
        caption.chop(1);
    return caption;
}

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
    return WithoutMarks(CaptionOf(command).toString());
}

QString ShownNameOf(CommandId command) {
    const QStringView caption = CaptionOf(command);
    return caption.isEmpty() ? QString() : WithoutMarks(platform::Shown<BrowserTexts>(caption));
}

CommandId CommandOfKey(int key) {
    if (key == 0) return nullptr;
    for (const MenuLayout& menu : kMenus)
        for (const MenuItem& item : menu.items)
            if (item.key == key) return item.action;
    return nullptr;
}

}  // namespace browser
