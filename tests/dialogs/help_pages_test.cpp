#include "dialogs/help_pages.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

namespace dialogs {
namespace {

TEST(HelpPagesTest, EveryWindowsPageIsAmongTheSourcesOfTheHelpFile) {
    ASSERT_EQ(WindowsWithHelp().size(), 10);
    for (const QString& window : WindowsWithHelp()) {
        const QString page = HelpPageOf(window);
        EXPECT_NE(page, QStringLiteral("index.html")) << window.toStdString();
        EXPECT_TRUE(QFile::exists(QStringLiteral(TAVOLO_HELP_FOLDER "/") + page))
            << page.toStdString();
    }
}

TEST(HelpPagesTest, AnUnknownWindowHasTheFirstPage) {
    EXPECT_FALSE(HasHelpPage(QStringLiteral("MessageBox")));
    EXPECT_EQ(HelpPageOf(QStringLiteral("MessageBox")), QStringLiteral("index.html"));
}

}  // namespace
}  // namespace dialogs
