#include "discovery/frmsearch.h"

#include "catalogue/collection_folders.h"
#include "support/catalogue_fixture.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"
#include "support/vpt_builder.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>

namespace discovery {
namespace {

using test_support::VptBuilder;

class FrmSearchTest : public test_support::CatalogueFixture {
protected:
    void SetUp() override {
        CatalogueFixture::SetUp();
        dialog = std::make_unique<frmsearch>(catalogue, prompts, [this] { ++refreshes; });
        prompts.folders = {tables.path()};
    }
    QString Build(const QString& name, const VptBuilder& builder) {
        const QString path = tables.filePath(name);
        const auto written = builder.Write(path.toStdU16String());
        EXPECT_TRUE(written.ok()) << written.message();
        return path;
    }
    template <typename T>
    T* Find(const char* name) {
        T* found = dialog->findChild<T*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    void Search() { QTest::mouseClick(Find<QPushButton>("cmdgo"), Qt::LeftButton); }
    QString TextOf(const char* label) { return Find<QLabel>(label)->text(); }

    test_support::TemporaryDir tables;
    std::unique_ptr<frmsearch> dialog;
    int refreshes = 0;
};

TEST_F(FrmSearchTest, ShowsItsCaptions) {
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Find New Visual Pinball Tables"));
    EXPECT_EQ(Find<QPushButton>("cmdgo")->text(), QStringLiteral("&Search"));
    EXPECT_EQ(Find<QPushButton>("cmdExit")->text(), QStringLiteral("&Done"));
    EXPECT_EQ(Find<QListWidget>("lstdirs")->count(), 0);
    EXPECT_EQ(TextOf("lbltime"), QString());
    EXPECT_EQ(TextOf("Label2"), QString());
    EXPECT_EQ(TextOf("lblCRC"), QString());
}

TEST_F(FrmSearchTest, AFolderThatWasScannedIsRemembered) {
    Search();
    EXPECT_EQ(catalogue::CollectionFolders(DatabasePath()).value_or({}),
              QStringList{tables.path()});
}

TEST_F(FrmSearchTest, AScanAddsTheTablesAndReportsTheirNumber) {
    Build(QStringLiteral("one.vpt"), VptBuilder().Filler(1000));
    Build(QStringLiteral("two.vpt"), VptBuilder().Filler(2000));
    dialog->show();
    Search();
    EXPECT_EQ(TextOf("lbltime"), QStringLiteral("New Tables Found and added to your database: 2"));
    EXPECT_EQ(TextOf("Label2"), QStringLiteral("Process Complete"));
    EXPECT_EQ(TextOf("lblCRC"), QString());
    EXPECT_EQ(Find<QListWidget>("lstdirs")->count(), 0);
    EXPECT_FALSE(Find<QPushButton>("cmdgo")->isVisible());
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(prompts.folder_titles, std::vector<QString>{QString()});
    EXPECT_EQ(Scalar(QStringLiteral("Select count(*) from Tables")), QStringLiteral("2"));
}

TEST_F(FrmSearchTest, WhatCouldNotBeAddedIsKnownAfterwards) {
    Build(QStringLiteral("one.vpt"), VptBuilder().Filler(1000));
    const QString deep =
        QStringLiteral("a").repeated(200) + u'/' + QStringLiteral("b").repeated(200);
    ASSERT_TRUE(QDir(tables.path()).mkpath(deep));
    const QString path = Build(deep + QStringLiteral("/long.vpt"), VptBuilder().Filler(1000));
    dialog->show();
    Search();
    EXPECT_EQ(TextOf("lbltime"), QStringLiteral("New Tables Found and added to your database: 1"));
    const std::string told = dialog->passed_over().message();
    EXPECT_NE(told.find(path.toStdString() + ": "), std::string::npos) << told;
    dialog->close();
    Find<QPushButton>("cmdgo")->show();
    ASSERT_TRUE(QFile::remove(path));
    prompts.folders = {tables.path()};
    dialog->show();
    Search();
    EXPECT_TRUE(dialog->passed_over().ok());
}

TEST_F(FrmSearchTest, TheFolderDialogOpensWhereTheLastScanWas) {
    dialog->show();
    Search();
    dialog = std::make_unique<frmsearch>(catalogue, prompts, [this] { ++refreshes; });
    prompts.folders = {tables.path()};
    dialog->show();
    Search();
    EXPECT_EQ(prompts.folder_starts, (std::vector<QString>{QString(), tables.path()}));
}

TEST_F(FrmSearchTest, ASecondScanOfTheSameTreeReportsNone) {
    Build(QStringLiteral("one.vpt"), VptBuilder().Filler(1000));
    dialog->show();
    Search();
    dialog = std::make_unique<frmsearch>(catalogue, prompts, [this] { ++refreshes; });
    prompts.folders = {tables.path()};
    dialog->show();
    Search();
    EXPECT_EQ(TextOf("lbltime"), QStringLiteral("New Tables Found and added to your database: 0"));
}

TEST_F(FrmSearchTest, ThereIsOneScanForEachOpening) {
    dialog->show();
    Search();
    Find<QPushButton>("cmdgo")->click();
    EXPECT_EQ(refreshes, 1);
    EXPECT_TRUE(dialog->close());
}

TEST_F(FrmSearchTest, OpenedAgainItScansAgain) {
    prompts.folders = {tables.path(), tables.path()};
    dialog->show();
    Search();
    EXPECT_TRUE(dialog->close());
    Find<QPushButton>("cmdgo")->show();
    dialog->show();
    Search();
    EXPECT_EQ(refreshes, 2);
}

TEST_F(FrmSearchTest, AFolderThatHasBeenListedLeavesTheList) {
    QString nested = tables.path();
    for (int i = 0; i < 10; ++i)
        nested += QStringLiteral("/deeper");
    ASSERT_TRUE(QDir().mkpath(nested));
    auto* folders = Find<QListWidget>("lstdirs");
    int most = 0;
    QObject::connect(folders->model(), &QAbstractItemModel::rowsInserted, folders,
                     [&] { most = std::max(most, folders->count()); });
    dialog->show();
    Search();
    EXPECT_GT(most, 0);
    EXPECT_LE(most, 2) << "each folder holds one other";
}

TEST_F(FrmSearchTest, RowsThatWereThereBeforeAreUpdatedFromTheirFiles) {
    const QString old_path =
        Build(QStringLiteral("old.vpt"), VptBuilder().Text(u"TableName", u"Name In File"));
    Execute(QStringLiteral("Insert into Tables (DisplayName, FileName) Values ('Old', '%1')")
                .arg(old_path));
    const QString new_path =
        Build(QStringLiteral("new.vpt"), VptBuilder().Text(u"TableName", u"Bob's"));
    dialog->show();
    Search();
    const auto name_of = [this](const QString& path) {
        return Scalar(
            QStringLiteral("Select DisplayName from Tables where FileName = '%1'").arg(path));
    };
    EXPECT_EQ(name_of(old_path), QStringLiteral("Name In File"));
    EXPECT_EQ(name_of(new_path), QStringLiteral("Bob''s"));
}

TEST_F(FrmSearchTest, ClosingIsRefusedWithAMessageWhileScanning) {
    for (int i = 0; i < 5; ++i)
        Build(QStringLiteral("t%1.vpt").arg(i), VptBuilder().Filler(1000));
    dialog->show();
    bool stayed_open = true;
    bool escape_refused = false;
    QTimer::singleShot(0, dialog.get(), [&] {
        stayed_open = !dialog->close() && dialog->isVisible();
        EXPECT_EQ(Find<QPushButton>("cmdExit")->text(), QStringLiteral("Scanning..."));
        QTest::keyClick(dialog.get(), Qt::Key_Escape);
        Find<QPushButton>("cmdExit")->click();
        escape_refused = dialog->isVisible();
    });
    Search();
    EXPECT_TRUE(stayed_open);
    EXPECT_TRUE(escape_refused);
    ASSERT_EQ(prompts.messages.size(), 3u);
    for (const platform::Message& message : prompts.messages)
        EXPECT_EQ(message, (platform::Message{QStringLiteral("Still scanning. Please wait..."),
                                              {},
                                              platform::MessageIcon::kInformation,
                                              platform::MessageButtons::kOk}));
    EXPECT_EQ(TextOf("lbltime"), QStringLiteral("New Tables Found and added to your database: 5"));
    EXPECT_EQ(Find<QPushButton>("cmdExit")->text(), QStringLiteral("&Done"));
    EXPECT_TRUE(dialog->close());
}

TEST_F(FrmSearchTest, TheLabelsTellWhatIsGoingOn) {
    for (int i = 0; i < 3; ++i)
        Build(QStringLiteral("Game.%1.vpt").arg(i), VptBuilder().Filler(1000));
    QStringList seen;
    QStringList checksums;
    dialog->show();
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, dialog.get(), [&] {
        EXPECT_EQ(TextOf("lbltime"), QStringLiteral("Searching . . . ") + tables.path());
        EXPECT_EQ(Find<QListWidget>("lstdirs")->item(0)->text(), tables.path());
        if (!TextOf("Label2").isEmpty()) seen.append(TextOf("Label2"));
        if (!TextOf("lblCRC").isEmpty()) checksums.append(TextOf("lblCRC"));
    });
    watch.start(0);
    Search();
    watch.stop();
    ASSERT_FALSE(seen.isEmpty());
    EXPECT_TRUE(seen.first().startsWith(QStringLiteral("Adding: Game.")))
        << seen.first().toStdString();
    ASSERT_FALSE(checksums.isEmpty());
    EXPECT_EQ(checksums.first().toUpper(), checksums.first());
}

TEST_F(FrmSearchTest, ThatTheTableFilesAreReadIsPaintedBeforeTheyAre) {
    // What a label says each time it is painted.
    struct PaintedTexts : QObject {
        bool eventFilter(QObject* label, QEvent* event) override {
            if (event->type() == QEvent::Paint) texts.append(static_cast<QLabel*>(label)->text());
            return false;
        }
        QStringList texts;
    } painted;
    Build(QStringLiteral("one.vpt"), VptBuilder().Text(u"TableName", u"One"));
    dialog->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog.get()));
    Find<QLabel>("Label2")->installEventFilter(&painted);
    Search();
    EXPECT_TRUE(painted.texts.contains(QStringLiteral("Reading VPT Info...")))
        << painted.texts.join(QLatin1Char('/')).toStdString();
}

TEST_F(FrmSearchTest, NamesAreShownAsPlainText) {
    for (const char* label : {"lbltime", "Label2", "lblCRC"})
        EXPECT_EQ(Find<QLabel>(label)->textFormat(), Qt::PlainText);
}

TEST_F(FrmSearchTest, DoneClosesTheDialog) {
    dialog->show();
    QTest::mouseClick(Find<QPushButton>("cmdExit"), Qt::LeftButton);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(refreshes, 0);
}

TEST_F(FrmSearchTest, AFailingDatabaseIsSaidAndNothingIsCalledComplete) {
    Build(QStringLiteral("one.vpt"), VptBuilder().Filler(1000));
    ASSERT_TRUE(connection->Close().ok());
    const std::u16string source =
        (QStringLiteral("Mode=Read;Data Source=") + DatabasePath()).toStdU16String();
    ASSERT_TRUE(connection->Open(source).ok());
    dialog->show();
    Search();
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kExclamation);
    EXPECT_FALSE(prompts.messages[0].text.isEmpty());
    EXPECT_EQ(TextOf("Label2"), QString());
    EXPECT_EQ(TextOf("lbltime"), QStringLiteral("New Tables Found and added to your database: 0"));
    EXPECT_EQ(Find<QListWidget>("lstdirs")->count(), 0);
    EXPECT_TRUE(dialog->close());
}

TEST_F(FrmSearchTest, AFailureWhileTheTextsAreReadIsSaidToo) {
    Build(QStringLiteral("one.vpt"), VptBuilder().Text(u"TableName", u"New"));
    Execute(QStringLiteral("Insert into Tables (DisplayName, FileName) Values ('Old', '%1')")
                .arg(tables.filePath(QStringLiteral("one.vpt"))));
    ASSERT_TRUE(connection->Close().ok());
    const std::u16string source =
        (QStringLiteral("Mode=Read;Data Source=") + DatabasePath()).toStdU16String();
    ASSERT_TRUE(connection->Open(source).ok());
    dialog->show();
    Search();
    EXPECT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(TextOf("Label2"), QString());
}

}  // namespace
}  // namespace discovery
