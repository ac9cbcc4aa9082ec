#include "snapshots/restore_dialog.h"

#include "support/catalogue_fixture.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeWidget>

namespace snapshots {
namespace {

class RestoreDialogTest : public test_support::CatalogueFixture {
protected:
    void SetUp() override {
        CatalogueFixture::SetUp();
        Execute(QStringLiteral("INSERT INTO Tables (DisplayName) VALUES ('Alpha')"));
        keeper = std::make_unique<SnapshotKeeper>(*files, DatabaseOf(catalogue), clock);
    }
    // Opens the window and waits until it shows the list and the first comparison.
    void Open() {
        window = std::make_unique<RestoreDialog>(
            RestoreDialog::Parts{catalogue, *keeper, prompts, [this] { ++refreshed; }});
        window->show();
        WaitFor([&] { return !Difference().endsWith(QStringLiteral("...")); });
    }
    void WaitFor(const std::function<bool()>& what) { ASSERT_TRUE(QTest::qWaitFor(what)); }
    QTreeWidget* Listed() {
        return window->findChild<QTreeWidget*>(QStringLiteral("lstSnapshots"));
    }
    QString Difference() {
        return window->findChild<QLabel*>(QStringLiteral("lblDifferences"))->text();
    }
    QPushButton* Button(const char* name) {
        return window->findChild<QPushButton*>(QString::fromLatin1(name));
    }
    QString Names() { return Scalar(QStringLiteral("Select First(DisplayName) from Tables")); }

    int refreshed = 0;
    std::unique_ptr<SnapshotKeeper> keeper;
    std::unique_ptr<RestoreDialog> window;
};

TEST_F(RestoreDialogTest, WithoutSnapshotsItSaysSo) {
    Open();
    EXPECT_EQ(Difference().toStdString(), "There is no snapshot yet.");
    EXPECT_FALSE(Button("cmdRestore")->isEnabled());
}

TEST_F(RestoreDialogTest, ListsTheNewestFirstAndComparesTheChosenOne) {
    keeper->MakeBefore(QStringLiteral("Purge Missing Tables"));
    Execute(QStringLiteral("Update Tables set DisplayName = 'Beta'"));
    clock.now = clock.now.addDays(1);
    keeper->MakeBefore(QStringLiteral("Import"));
    Open();
    QTreeWidget& list = *Listed();
    ASSERT_EQ(list.topLevelItemCount(), 2);
    EXPECT_EQ(list.topLevelItem(0)->text(0).toStdString(), "11/21/2026 3:04:05 PM");
    EXPECT_EQ(list.topLevelItem(0)->text(1).toStdString(), "before Import");
    EXPECT_EQ(list.topLevelItem(0)->text(3).toStdString(), "good");
    EXPECT_EQ(list.topLevelItem(1)->text(1).toStdString(), "before Purge Missing Tables");
    EXPECT_TRUE(Difference().contains(QStringLiteral("Tables: no difference")));
    list.setCurrentItem(list.topLevelItem(1));
    WaitFor([&] {
        return Difference().contains(QStringLiteral("Tables: 0 more, 0 fewer, 1 different"));
    });
    EXPECT_TRUE(Button("cmdRestore")->isEnabled());
}

TEST_F(RestoreDialogTest, RestoresTheChosenOneAfterAQuestion) {
    keeper->MakeBefore(QStringLiteral("Purge Missing Tables"));
    Execute(QStringLiteral("Update Tables set DisplayName = 'Beta'"));
    Open();
    QTest::mouseClick(Button("cmdRestore"), Qt::LeftButton);
    ASSERT_EQ(prompts.messages.size(), 2U);
    EXPECT_EQ(prompts.messages[0].text.toStdString(),
              "The catalogue becomes what it was on 11/20/2026 3:04:05 PM (before Purge Missing "
              "Tables).\nThe state of today is kept and can be restored.\n\nDo you want to "
              "continue?");
    EXPECT_EQ(prompts.messages[1].text.toStdString(),
              "The catalogue was restored. The state before is snapshot 2.");
    EXPECT_EQ(Names().toStdString(), "Alpha");
    EXPECT_EQ(refreshed, 1);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(RestoreDialogTest, WithNoNothingIsRestored) {
    keeper->MakeBefore(QStringLiteral("Purge Missing Tables"));
    Execute(QStringLiteral("Update Tables set DisplayName = 'Beta'"));
    Open();
    prompts.answers = {platform::MessageAnswer::kNo};
    QTest::mouseClick(Button("cmdRestore"), Qt::LeftButton);
    EXPECT_EQ(Names().toStdString(), "Beta");
    EXPECT_EQ(refreshed, 0);
    EXPECT_TRUE(window->isVisible());
}

TEST_F(RestoreDialogTest, ADamagedOneCannotBeRestored) {
    keeper->MakeBefore(QStringLiteral("Purge Missing Tables"));
    keeper->WaitUntilIdle();
    QFile pack(DatabasePath() + QStringLiteral("-snapshots/00000001.pages"));
    ASSERT_TRUE(pack.open(QIODevice::ReadWrite));
    ASSERT_TRUE(pack.seek(pack.size() - 1));
    const char last = pack.peek(1)[0];
    const char other = static_cast<char>(last ^ 1);
    pack.write(&other, 1);
    pack.close();
    Open();
    EXPECT_EQ(Listed()->topLevelItem(0)->text(3).toStdString(), "damaged");
    EXPECT_EQ(Difference().toStdString(), "This snapshot cannot be restored.");
    EXPECT_FALSE(Button("cmdRestore")->isEnabled());
}

TEST_F(RestoreDialogTest, MayBeClosedWhileItReads) {
    keeper->MakeBefore(QStringLiteral("Import"));
    window = std::make_unique<RestoreDialog>(
        RestoreDialog::Parts{catalogue, *keeper, prompts, [this] { ++refreshed; }});
    window.reset();
    keeper->WaitUntilIdle();
    QCoreApplication::processEvents();
    EXPECT_EQ(refreshed, 0);
}

}  // namespace
}  // namespace snapshots
