// The program's own viewer of the help's pages, and the search over them.
#include "dialogs/help_window.h"

#include "dialogs/help_pages.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QPointer>
#include <QtGui/QAction>
#include <QtTest/QTest>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QTextBrowser>

namespace dialogs {
namespace {

const QString kFolder = QStringLiteral(TAVOLO_HELP_FOLDER);

QStringList Titles(const std::vector<const HelpSearch::Page*>& pages) {
    QStringList titles;
    for (const HelpSearch::Page* const page : pages)
        titles.append(page->title);
    return titles;
}

class HelpSearchTest : public testing::Test {
protected:
    void Add(const QString& name, const QByteArray& html) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(html);
    }
    static QByteArray Page(const QByteArray& title, const QByteArray& text) {
        return "<html><head><title>" + title + "</title></head><body><p>" + text +
               "</p></body></html>";
    }
    test_support::TemporaryDir folder;
};

TEST_F(HelpSearchTest, AllWordsMustBeThereInAnyCase) {
    Add(QStringLiteral("a.html"), Page("Backup", "Copies the <b>catalogue</b> away."));
    Add(QStringLiteral("b.html"), Page("Scan", "Looks for tables. A copy is made."));
    const HelpSearch search(folder.path());
    EXPECT_EQ(Titles(search.Find(QStringLiteral("CATALOGUE copies"))),
              QStringList(QStringLiteral("Backup")));
    EXPECT_EQ(Titles(search.Find(QStringLiteral("cop"))),
              QStringList({QStringLiteral("Backup"), QStringLiteral("Scan")}));
    EXPECT_TRUE(search.Find(QStringLiteral("catalogue tables")).empty());
    EXPECT_TRUE(search.Find(QStringLiteral("  ")).empty());
}

TEST_F(HelpSearchTest, MarkupIsNotSearched) {
    Add(QStringLiteral("a.html"), Page("Backup", "x <img src='body.png'> y"));
    EXPECT_TRUE(HelpSearch(folder.path()).Find(QStringLiteral("body")).empty());
    EXPECT_TRUE(HelpSearch(folder.path()).Find(QStringLiteral("img")).empty());
}

TEST_F(HelpSearchTest, PagesWithAWordInTheTitleComeFirst) {
    Add(QStringLiteral("a.html"), Page("About", "scan"));
    Add(QStringLiteral("b.html"), Page("Scan", "looks for tables"));
    EXPECT_EQ(Titles(HelpSearch(folder.path()).Find(QStringLiteral("scan"))),
              QStringList({QStringLiteral("Scan"), QStringLiteral("About")}));
}

TEST_F(HelpSearchTest, APageThatIsTooLargeIsLeftOut) {
    Add(QStringLiteral("a.html"), Page("Large", QByteArray(2 << 20, 'x')));
    Add(QStringLiteral("b.html"), Page("Small", "x"));
    EXPECT_EQ(HelpSearch(folder.path()).pages().size(), 1U);
}

TEST_F(HelpSearchTest, EachPageOfTheHelpIsRead) {
    const HelpSearch search(kFolder);
    EXPECT_EQ(static_cast<qsizetype>(search.pages().size()),
              QDir(kFolder).entryList({QStringLiteral("*.html")}).size());
    for (const HelpSearch::Page& page : search.pages()) {
        EXPECT_FALSE(page.text.isEmpty()) << page.file.toStdString();
        EXPECT_NE(page.title, page.file) << "has no title";
    }
}

class HelpWindowTest : public testing::Test {
protected:
    HelpWindowTest() {
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    }
    ~HelpWindowTest() override { delete window; }

    template <typename Child>
    Child& The(const char* name) {
        auto* const child = window->findChild<Child*>(QString::fromLatin1(name));
        EXPECT_NE(child, nullptr) << name;
        return *child;
    }
    QString Shown() { return The<QTextBrowser>("txtHelp").toPlainText(); }
    void SearchFor(const QString& words) {
        The<QLineEdit>("txtHelpSearch").clear();
        QTest::keyClicks(&The<QLineEdit>("txtHelpSearch"), words);
    }

    QPointer<HelpWindow> window = new HelpWindow(kFolder, nullptr);
};

TEST_F(HelpWindowTest, ShowsThePageOfEachWindow) {
    for (const QString& name : WindowsWithHelp()) {
        window->ShowPage(HelpPageOf(name));
        EXPECT_GT(Shown().size(), 100) << name.toStdString();
    }
}

TEST_F(HelpWindowTest, GoesBackAndForwardAndHome) {
    window->ShowPage(QStringLiteral("scan.html"));
    const QString scan = Shown();
    window->ShowPage(QStringLiteral("crc.html"));
    const QString crc = Shown();
    ASSERT_NE(scan, crc);
    The<QAction>("actHelpBack").trigger();
    EXPECT_EQ(Shown(), scan);
    The<QAction>("actHelpForward").trigger();
    EXPECT_EQ(Shown(), crc);
    EXPECT_FALSE(The<QAction>("actHelpForward").isEnabled());
    The<QAction>("actHelpContents").trigger();
    EXPECT_NE(Shown(), crc);
    EXPECT_EQ(The<QTextBrowser>("txtHelp").source().fileName(), QStringLiteral("index.html"));
}

TEST_F(HelpWindowTest, EnterShowsTheFirstPageThatWasFound) {
    SearchFor(QStringLiteral("settings"));
    auto& found = The<QListWidget>("lstHelpFound");
    ASSERT_GT(found.count(), 1);
    QTest::keyClick(&The<QLineEdit>("txtHelpSearch"), Qt::Key_Return);
    EXPECT_EQ(The<QTextBrowser>("txtHelp").source().fileName(),
              found.item(0)->data(Qt::UserRole).toString());
    EXPECT_FALSE(The<QTextBrowser>("txtHelp").extraSelections().isEmpty());
    SearchFor(QStringLiteral("nosuchwordanywhere"));
    EXPECT_EQ(found.count(), 0);
    EXPECT_TRUE(The<QTextBrowser>("txtHelp").extraSelections().isEmpty());
}

TEST_F(HelpWindowTest, EscapeClosesIt) {
    QTest::keyClick(&The<QTextBrowser>("txtHelp"), Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(window, nullptr);
}

// Input to windows beside a dialog is held back, unless they are the dialog's own.
TEST(ShowInHelpWindowTest, ItBelongsToTheDialogInFrontAndIsUsedAgain) {
    QDialog dialog;
    dialog.setModal(true);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    ShowInHelpWindow(kFolder + QStringLiteral("/scan.html"));
    auto* const first = dialog.findChild<HelpWindow*>();
    ASSERT_NE(first, nullptr);
    dialog.activateWindow();
    ShowInHelpWindow(kFolder + QStringLiteral("/crc.html"));
    EXPECT_EQ(dialog.findChildren<HelpWindow*>().size(), 1);
    EXPECT_EQ(first->findChild<QTextBrowser*>()->source().fileName(), QStringLiteral("crc.html"));
}

}  // namespace
}  // namespace dialogs
