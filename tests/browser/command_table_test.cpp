#include "browser/command_table.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace browser {
namespace {

// "name caption", separators as "-".
QStringList Lines(const MenuLayout& menu) {
    QStringList lines;
    for (const MenuItem& item : menu.items)
        lines.append(item.caption == u"-" && item.name.isEmpty()
                         ? QStringLiteral("-")
                         : item.name.toString() + u' ' + item.caption.toString());
    return lines;
}

TEST(CommandTableTest, TheBarHoldsSevenMenusAndTheTreeOne) {
    QStringList titles;
    for (const MenuLayout& menu : Menus())
        titles.append(menu.name.toString() + u' ' + menu.caption.toString());
    EXPECT_EQ(titles.join(u'\n').toStdString(),
              "mnuFile &File\nmnuUtilities &Utilities\nmnuOptions &Options\nmnuHelp &Help\n"
              "mnuData &Data\nmnuEdit &Edit\nmnuTable &Table\nmnufavorites Popup");
}

TEST(CommandTableTest, EveryItemHasItsNameCaptionAndPlace) {
    QStringList all;
    for (const MenuLayout& menu : Menus())
        all += Lines(menu);
    EXPECT_EQ(all.join(u'\n').toStdString(), "mnuTblScan &Scan for New Tables\n"
                                             "mnusep1 -\n"
                                             "mnuExit E&xit\n"
                                             "mnuExe Set VP Exe &Location\n"
                                             "mnusep2 -\n"
                                             "mnuDates Reset File &Dates\n"
                                             "mnuResetTimes Reset &Times Played\n"
                                             "mnuRest &Reset Paths\n"
                                             "-\n"
                                             "mnuCRC &Update CRC's\n"
                                             "-\n"
                                             "mnuVPT Import Data from &VPTs\n"
                                             "-\n"
                                             "mnuImport &Import VPLauncher Data\n"
                                             "mnusep3 -\n"
                                             "mnuSize Restore Default Size\n"
                                             "-\n"
                                             "mnuPurge &Purge Missing Tables\n"
                                             "-\n"
                                             "mnuBackup &Backup Data\n"
                                             "mnuMin &Minimize on Play\n"
                                             "-\n"
                                             "mnuSound Toggle Sou&nd\n"
                                             "-\n"
                                             "mnuWait &Wait for the Simulator\n"
                                             "mnuHelpContents &Contents\n"
                                             "-\n"
                                             "mnuAbout &About\n"
                                             "mnuExportTables &Export...\n"
                                             "mnuImportTables &Import...\n"
                                             "-\n"
                                             "mnuPathMap &Path Map...\n"
                                             "mnuUndo &Undo\n"
                                             "mnuRedo Re&do\n"
                                             "-\n"
                                             "mnuFind &Find\n"
                                             "mnuFindNext Find &Next\n"
                                             "mnuFindPrevious Find &Previous\n"
                                             "-\n"
                                             "mnuHistory &History...\n"
                                             "-\n"
                                             "mnuRestoreSnapshot &Restore...\n"
                                             "-\n"
                                             "mnuCompact &Compact...\n"
                                             "mnuEditDetails &Edit Details\n"
                                             "mnuSaveDetails &Save\n"
                                             "mnuCancelEdit C&ancel\n"
                                             "-\n"
                                             "mnuDeleteTable &Delete...\n"
                                             "-\n"
                                             "mnuCopyText &Copy as Text\n"
                                             "mnuCopyFile Copy as &File\n"
                                             "mnuShowInFolder Show in F&older\n"
                                             "-\n"
                                             "mnuRefreshTree &Refresh Tree\n"
                                             "mnuLookForNew Look for &New Tables\n"
                                             "mnuRandom Select One at Rando&m\n"
                                             "-\n"
                                             "mnuWall &Wall of Pictures\n"
                                             "mnuLarger Lar&ger Pictures\n"
                                             "mnuSmaller Sma&ller Pictures\n"
                                             "-\n"
                                             "mnuKeys &Keys...\n"
                                             "mnumnu Menu\n"
                                             "-\n"
                                             "mnuPlay &Play\n"
                                             "mnuspace -\n"
                                             "mnuAddit Toggle &Favorites\n"
                                             "mnuspace2 -\n"
                                             "mnuClip &Load Picture From Clipboard\n"
                                             "-\n"
                                             "mnuTI View Table  &Info");
}

TEST(CommandTableTest, ACommandIsNamedByItsCaption) {
    EXPECT_EQ(NameOf(&CommandActions::purge_missing_tables).toStdString(), "Purge Missing Tables");
    EXPECT_EQ(NameOf(&CommandActions::import_tables).toStdString(), "Import");
    EXPECT_TRUE(NameOf(nullptr).isEmpty());
}

// True if the rule of the command with this name allows it in this state.
bool IsOffered(QStringView name, const MainWindowState& state) {
    for (const MenuLayout& menu : Menus())
        for (const MenuItem& item : menu.items)
            if (item.name == name) return IsAllowed(item.enabled_when, state);
    ADD_FAILURE() << "no such command: " << name.toString().toStdString();
    return false;
}

TEST(CommandTableTest, ResetsAreNotOfferedOnTheFourthTab) {
    for (int tab = 0; tab < 5; ++tab) {
        const MainWindowState state{.current_tab = tab, .window_is_normal = true};
        EXPECT_EQ(IsOffered(u"mnuRest", state), tab != 3) << tab;
        EXPECT_EQ(IsOffered(u"mnuDates", state), tab != 3) << tab;
        EXPECT_TRUE(IsOffered(u"mnuSize", state)) << tab;
    }
}

TEST(CommandTableTest, TheDefaultSizeIsForANormalWindowOnly) {
    const MainWindowState state{.current_tab = 0, .window_is_normal = false};
    EXPECT_FALSE(IsOffered(u"mnuSize", state));
    EXPECT_TRUE(IsOffered(u"mnuRest", state));
}

TEST(CommandTableTest, NothingElseDependsOnTheWindow) {
    const MainWindowState state{.current_tab = 3, .window_is_normal = false};
    const EnabledWhen of_an_edit = EnabledWhen::kRecordIsChanged;
    QStringList refused;
    for (const MenuLayout& menu : Menus())
        for (const MenuItem& item : menu.items)
            if (item.enabled_when != of_an_edit && !IsAllowed(item.enabled_when, state))
                refused.append(item.name.toString());
    EXPECT_EQ(refused.join(u' ').toStdString(),
              "mnuDates mnuRest mnuSize mnuImportTables mnuRestoreSnapshot");
}

TEST(CommandTableTest, AnEditAllowsToEndItAndNothingThatWouldLoseIt) {
    MainWindowState state{.record_is_shown = true, .record_is_changed = true};
    for (const QStringView item : {u"mnuSaveDetails", u"mnuCancelEdit"})
        EXPECT_TRUE(IsOffered(item, state));
    for (const QStringView item : {u"mnuEditDetails", u"mnuDeleteTable", u"mnuRefreshTree"})
        EXPECT_FALSE(IsOffered(item, state));
    state = {.record_is_shown = false, .record_is_changed = false};
    for (const QStringView item : {u"mnuSaveDetails", u"mnuCancelEdit", u"mnuDeleteTable"})
        EXPECT_FALSE(IsOffered(item, state));
    EXPECT_TRUE(IsOffered(u"mnuRefreshTree", state));
}

TEST(CommandTableTest, PicturesGrowOnlyWhereTheyAreShown) {
    for (const QStringView item : {u"mnuLarger", u"mnuSmaller"}) {
        EXPECT_FALSE(IsOffered(item, {.wall_is_shown = false}));
        EXPECT_TRUE(IsOffered(item, {.wall_is_shown = true}));
    }
    EXPECT_TRUE(IsOffered(u"mnuWall", {.wall_is_shown = false}));
}

// An action without a command would never run.
TEST(CommandTableTest, EveryActionBelongsToOneCommand) {
    std::vector<CommandId> actions;
    for (const MenuLayout& menu : Menus()) {
        for (const MenuItem& item : menu.items) {
            if (item.action == nullptr) continue;
            EXPECT_EQ(std::count(actions.begin(), actions.end(), item.action), 0)
                << item.name.toString().toStdString();
            actions.push_back(item.action);
        }
    }
    EXPECT_EQ(actions.size() * sizeof(CommandActions::Action), sizeof(CommandActions));
}

TEST(CommandTableTest, OneKeyRunsACommand) {
    EXPECT_EQ(CommandOfKey(Qt::Key_F2), &CommandActions::load_picture);
    EXPECT_EQ(CommandOfKey(Qt::Key_F3), nullptr);
    EXPECT_EQ(CommandOfKey(0), nullptr);
}

}  // namespace
}  // namespace browser
