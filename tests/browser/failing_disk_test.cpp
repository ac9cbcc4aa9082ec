// The main window when the disk under the catalogue fails while it is open.
#include "browser/main_window_fixture.h"
#include "support/breakable_files.h"
#include "support/full_disk.h"

namespace browser {
namespace {

class FailingDiskTest : public MainWindowWithTables {
protected:
    ~FailingDiskTest() override {
        window.reset();
        connection.reset();  // before its files
    }
    // The catalogue opened anew on files that can break, nothing of it read yet.
    void OpenOnDisk() {
        ASSERT_TRUE(connection->Close().ok());
        connection = std::make_unique<jet::Connection>(
            disk, [this] { return catalogue::ToOleDate(clock.now); });
        catalogue.CatalogueConnection = connection.get();
        const auto opened =
            connection->Open((S(u"Data Source=") + DatabasePath()).toStdU16String());
        ASSERT_TRUE(opened.ok()) << opened.message();
    }

    test_support::BreakableFiles disk{*files};
};

TEST_F(FailingDiskTest, ACatalogueThatCannotBeClosedIsSaidOnceAndTheWindowCloses) {
    OpenOnDisk();
    Open();
    disk.BreakSyncing();
    Execute(S(u"UPDATE Tables SET Author = 'Dan' WHERE DisplayName = 'Beta'"));
    EXPECT_TRUE(window->close());
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_NE(prompts.messages[0].text, QString());
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(settings.written.size(), 13U) << "the settings are stored all the same";
}

TEST_F(FailingDiskTest, AReadThatFailsWhileTheTreeIsBuiltIsSaidInTheStatusBar) {
    // Rows on many pages, so that some of them are still to be read when the first are there.
    const QString long_text(200, u'x');
    for (int i = 0; i < 400; ++i)
        AddRow(S(u"DisplayName, Notes"), QStringLiteral("'Row %1', '%2'").arg(i).arg(long_text));
    int failures = 0;
    for (int reads = 0;; ++reads) {
        ASSERT_LT(reads, 1000);
        disk.AllowReads(-1);
        OpenOnDisk();
        Open();
        ASSERT_EQ(TableNames().size(), 403);
        disk.AllowReads(-1);
        OpenOnDisk();
        disk.AllowReads(reads);
        Find<QPushButton>(u"cmdGo")->click();
        disk.AllowReads(-1);
        if (Tree()->model()->rowCount() == 1 && TableNames().size() == 403) break;
        ++failures;
        EXPECT_EQ(Tree()->model()->rowCount(), 0) << "half a tree after " << reads << " reads";
        EXPECT_NE(Panel(2), QString());
        EXPECT_TRUE(prompts.messages.empty());
    }
    EXPECT_GT(failures, 3);
}

TEST_F(FailingDiskTest, AFullDiskLetsReadingGoOn) {
    ASSERT_TRUE(connection->Close().ok());
    test_support::FullDisk full(*files, 0);
    connection =
        std::make_unique<jet::Connection>(full, [this] { return catalogue::ToOleDate(clock.now); });
    catalogue.CatalogueConnection = connection.get();
    const auto opened = catalogue::Main(catalogue);
    ASSERT_TRUE(opened.ok()) << opened.message();
    EXPECT_TRUE(values.UpgradeFailure.ok()) << values.UpgradeFailure.message();
    Open();
    EXPECT_EQ(TableNames().size(), 3);
    EXPECT_TRUE(Find<QLabel>(u"lblReadOnly")->isVisible());
    Click(Table(0));
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
    EditName();
    window->details().Save();
    ASSERT_EQ(prompts.messages.size(), 1U) << "it cannot be stored, which is said";
    EXPECT_TRUE(window->details().record_changed());
    window->details().Cancel();
    window.reset();
    connection.reset();
}

TEST_F(FailingDiskTest, ADiskThatFillsUpWhileTheCatalogueIsOpenLetsReadingGoOn) {
    ASSERT_TRUE(connection->Close().ok());
    test_support::FullDisk full(*files, 1);  // the lock
    connection =
        std::make_unique<jet::Connection>(full, [this] { return catalogue::ToOleDate(clock.now); });
    catalogue.CatalogueConnection = connection.get();
    ASSERT_TRUE(connection->Open((S(u"Data Source=") + DatabasePath()).toStdU16String()).ok());
    Open();
    Click(Table(0));
    EditName();
    window->details().Save();
    EXPECT_TRUE(full.was_full());
    EXPECT_EQ(prompts.messages.size(), 1U);
    window->details().Cancel();
    Click(Table(2));
    EXPECT_EQ(FieldText(2), S(u"Gamma"));
    Press(u"cmdGo");
    EXPECT_EQ(TableNames().size(), 3);
    window.reset();
    connection.reset();
}

}  // namespace
}  // namespace browser
