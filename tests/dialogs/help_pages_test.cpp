#include "dialogs/help_pages.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

namespace dialogs {
namespace {

TEST(HelpPagesTest, EveryWindowsPageIsAmongTheSourcesOfTheHelpFile) {
    struct Expected {
        const char* window;
        const char* page;
    };
    const Expected pages[] = {
        {"frmPinball", "main-window.html"},
        {"frmsearch", "scan.html"},
        {"frmReadVPT", "table-information.html"},
        {"frmPicture", "capture.html"},
        {"frmSplash", "playing.html"},
        {"frmSettings", "settings.html"},
        {"frmUtility", "reset-paths.html"},
        {"frmPathMap", "path-map.html"},
        {"frmPathPair", "path-map.html"},
        {"frmCRC", "crc.html"},
        {"frmImport", "import-launcher.html"},
        {"frmAbout", "about.html"},
        {"RestoreDialog", "snapshots.html"},
        {"frmKeys", "keys.html"},
    };
    QStringList windows;
    for (const auto& [window, page] : pages) {
        windows << QString::fromLatin1(window);
        EXPECT_EQ(HelpPageOf(windows.back()), QString::fromLatin1(page)) << window;
        EXPECT_TRUE(
            QFile::exists(QStringLiteral(TAVOLO_HELP_FOLDER "/") + QString::fromLatin1(page)))
            << page;
    }
    EXPECT_EQ(WindowsWithHelp(), windows);
}

TEST(HelpPagesTest, AnUnknownWindowHasTheFirstPage) {
    EXPECT_FALSE(HasHelpPage(QStringLiteral("MessageBox")));
    EXPECT_EQ(HelpPageOf(QStringLiteral("MessageBox")), QStringLiteral("index.html"));
}

}  // namespace
}  // namespace dialogs
