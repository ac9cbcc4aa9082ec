#include "browser/menu_layout.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <gtest/gtest.h>

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

TEST(MenuLayoutTest, TheBarHoldsFourMenus) {
    QStringList titles;
    for (const MenuLayout& menu : MenuBarLayout())
        titles.append(menu.name.toString() + u' ' + menu.caption.toString());
    EXPECT_EQ(titles.join(u'\n').toStdString(),
              "mnuFile &File\nmnuUtilities &Utilities\nmnuOptions &Options\nmnuHelp &Help");
}

TEST(MenuLayoutTest, EveryItemHasItsNameCaptionAndPlace) {
    QStringList all;
    for (const MenuLayout& menu : MenuBarLayout())
        all += Lines(menu);
    all += Lines(PopupLayout());
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
                                             "mnuHelpContents &Contents\n"
                                             "-\n"
                                             "mnuAbout &About\n"
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

}  // namespace
}  // namespace browser
