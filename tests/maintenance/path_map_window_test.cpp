// The windows of the path map. Need widgets; run offscreen.
#include "catalogue/local_paths.h"
#include "maintenance/command_fixture.h"
#include "maintenance/frmPathMap.h"
#include "maintenance/frmPathPair.h"
#include "platform/files.h"
#include "support/control.h"
#include "support/temporary_dir.h"

#include <QtCore/QDir>
#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeWidget>

namespace maintenance {
namespace {

using catalogue::PathPair;

class PathMapWindowTest : public test_support::CommandFixture {
protected:
    void SetUp() override {
        CommandFixture::SetUp();
        catalogue.runner = &runner;
        ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("tables")));
        MakeFile(QStringLiteral("tables/Attack.vpt"));
        MakeFile(QStringLiteral("tables/Taxi.vpt"));
        for (const char16_t* const name : {u"ATTACK", u"TAXI", u"GONE"})
            AddTable(QStringLiteral("C:\\VP\\%1.vpt").arg(QString::fromUtf16(name)));
        AddTable(QStringLiteral("/nowhere/x.vpt"));
    }
    void TearDown() override { window.reset(); }

    void Open() {
        window = std::make_unique<frmPathMap>(catalogue, prompts, [this] { ++refreshes; });
        window->show();
        QSignalSpy counted(window.get(), &frmPathMap::Counted);
        ASSERT_TRUE(counted.wait());
    }
    QString Tables() const { return folder.filePath(QStringLiteral("tables")); }
    PathPair TablesPair() const { return {QStringLiteral("C:\\VP"), Tables()}; }
    void Use(const std::vector<PathPair>& pairs) {
        ASSERT_TRUE(catalogue::WritePathPairs(settings, pairs).ok());
        values.paths.Use(catalogue::PathMap(pairs));
    }
    void ClickOn(const char* button) {
        QTest::mouseClick(&test_support::Control<QPushButton>(*window, button), Qt::LeftButton);
    }
    bool IsEnabled(const char* button) {
        return test_support::Control<QPushButton>(*window, button).isEnabled();
    }
    // Types into the window of a line that `button` opens, and presses OK, then Escape if the
    // window is still there.
    void TypePair(const char* button, const PathPair& pair) {
        QTimer::singleShot(0, window.get(), [pair] {
            QWidget* const dialog = QApplication::activeModalWidget();
            ASSERT_TRUE(dialog != nullptr && dialog->objectName() == QLatin1String("frmPathPair"));
            test_support::Control<QLineEdit>(*dialog, "txtStored").setText(pair.stored);
            test_support::Control<QLineEdit>(*dialog, "txtHere").setText(pair.here);
            QTest::mouseClick(&test_support::Control<QPushButton>(*dialog, "OKButton"),
                              Qt::LeftButton);
            if (dialog->isVisible()) QTest::keyClick(dialog, Qt::Key_Escape);
        });
        ClickOn(button);
    }
    // The cells of each line, with "|" between them.
    QStringList Lines() {
        QStringList lines;
        const auto& list = test_support::Control<QTreeWidget>(*window, "lstPairs");
        for (int row = 0; row < list.topLevelItemCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < list.columnCount(); ++column)
                cells.append(list.topLevelItem(row)->text(column));
            lines.append(cells.join(u'|'));
        }
        return lines;
    }
    QString Others() { return test_support::Control<QLabel>(*window, "lblOthers").text(); }
    std::vector<PathPair> Kept() { return catalogue::ReadPathPairs(settings).value_or({}); }
    QString FileNames() {
        return Scalar(QStringLiteral("select count(*) from Tables where FileName in "
                                     "('C:\\VP\\ATTACK.vpt', 'C:\\VP\\TAXI.vpt', "
                                     "'C:\\VP\\GONE.vpt', '/nowhere/x.vpt')"));
    }

    std::unique_ptr<frmPathMap> window;
};

TEST_F(PathMapWindowTest, WithoutAMapItSaysHowManyFilesAreFoundAsTheyAreStored) {
    Open();
    EXPECT_TRUE(Lines().isEmpty());
    EXPECT_EQ(Others(), QStringLiteral("0 of the 4 paths in the catalogue are found here."));
    EXPECT_FALSE(IsEnabled("cmdEdit"));
    EXPECT_FALSE(IsEnabled("cmdRemove"));
    ClickOn("cmdClose");
    EXPECT_EQ(refreshes, 0);
}

TEST_F(PathMapWindowTest, ALineThatIsAddedIsKeptUsedAndCounted) {
    Open();
    TypePair("cmdAdd", TablesPair());
    EXPECT_EQ(Lines(), QStringList{QStringLiteral("C:\\VP|%1|3|2").arg(Tables())});
    EXPECT_EQ(Others(), QStringLiteral("Of the paths that begin otherwise 0 of 1 are found here."));
    EXPECT_EQ(Kept(), std::vector{TablesPair()});
    EXPECT_EQ(values.paths.map()->pairs(), std::vector{TablesPair()});
    EXPECT_EQ(refreshes, 0);
    ClickOn("cmdClose");
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(FileNames(), QStringLiteral("4"));
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(PathMapWindowTest, ALineIsEditedAndRemoved) {
    Use({{QStringLiteral("D:\\"), QStringLiteral("/d")},
         {QStringLiteral("C:\\VP"), folder.path()}});
    Open();
    auto& list = test_support::Control<QTreeWidget>(*window, "lstPairs");
    list.setCurrentItem(list.topLevelItem(1));
    TypePair("cmdEdit", TablesPair());
    EXPECT_EQ(Lines(), (QStringList{QStringLiteral("D:\\|/d|0|0"),
                                    QStringLiteral("C:\\VP|%1|3|2").arg(Tables())}));
    ClickOn("cmdRemove");
    EXPECT_EQ(Lines(), QStringList{QStringLiteral("D:\\|/d|0|0")});
    EXPECT_EQ(Kept(), (std::vector<PathPair>{{QStringLiteral("D:\\"), QStringLiteral("/d")}}));
    ClickOn("cmdRemove");
    EXPECT_TRUE(Kept().empty());
    EXPECT_TRUE(values.paths.map()->is_empty());
}

TEST_F(PathMapWindowTest, ALineThatIsNoneIsToldAndTheWindowStays) {
    Use({TablesPair()});
    Open();
    TypePair("cmdAdd", {QStringLiteral("VP"), Tables()});
    TypePair("cmdAdd", {QStringLiteral("D:\\VP"), QStringLiteral("tables")});
    TypePair("cmdAdd", {QStringLiteral("c:/vp/"), QStringLiteral("/elsewhere")});
    ASSERT_EQ(prompts.messages.size(), 3U);
    EXPECT_EQ(prompts.messages[0].text, QStringLiteral("\"VP\" is not a whole path."));
    EXPECT_EQ(prompts.messages[1].text,
              QStringLiteral("\"tables\" is not a whole path of this system."));
    EXPECT_EQ(prompts.messages[2].text, QStringLiteral("The path map has \"c:/vp/\" already."));
    EXPECT_EQ(Kept(), std::vector{TablesPair()});
}

TEST_F(PathMapWindowTest, WhatCannotBeStoredIsToldAndCounts) {
    Open();
    settings.failure = {base::StatusCode::kIoError, "no room"};
    TypePair("cmdAdd", TablesPair());
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, QStringLiteral("no room"));
    EXPECT_EQ(values.paths.map()->pairs(), std::vector{TablesPair()});
}

TEST_F(PathMapWindowTest, TheFolderOfALineCanBeChosen) {
    Open();
    prompts.folders = {Tables()};
    frmPathPair dialog(
        {QStringLiteral("C:\\VP"), folder.path()}, [](const PathPair&) { return base::Status(); },
        prompts, window.get());
    dialog.show();
    QTest::mouseClick(&test_support::Control<QPushButton>(dialog, "cmdBrowse"), Qt::LeftButton);
    EXPECT_EQ(prompts.folder_starts, std::vector{folder.path()});
    EXPECT_EQ(test_support::Control<QLineEdit>(dialog, "txtHere").text(), Tables());
}

TEST_F(PathMapWindowTest, WhatIsProposedIsAddedAfterAQuestion) {
    Open();
    prompts.answers = {platform::MessageAnswer::kNo};
    ClickOn("cmdPropose");  // the application folder is known
    EXPECT_TRUE(Kept().empty());
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text,
              QStringLiteral("C:\\VP\\ is here %1: 2 of 3 missing files are found\n\nAdd this to "
                             "the path map?")
                  .arg(Tables() + platform::NativeSeparator()));
    ClickOn("cmdPropose");
    EXPECT_EQ(
        Lines(),
        QStringList(QStringLiteral("C:\\VP\\|%1|3|2").arg(Tables() + platform::NativeSeparator())));
    ClickOn("cmdPropose");
    EXPECT_TRUE(
        prompts.messages.back().text.startsWith(QStringLiteral("None of the missing files")));
    EXPECT_EQ(Kept().size(), 1U);
}

TEST_F(PathMapWindowTest, AnyFolderCanBeLookedThrough) {
    const test_support::TemporaryDir elsewhere;
    for (const char* const name : {"/gone.vpt", "/x.vpt"}) {
        QFile file(elsewhere.path() + QLatin1String(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
    }
    Use({TablesPair()});
    Open();
    prompts.folders = {QString(), elsewhere.path()};
    ClickOn("cmdLookInFolder");
    EXPECT_EQ(Kept().size(), 1U);
    ClickOn("cmdLookInFolder");
    EXPECT_EQ(Kept().back(), (PathPair{QStringLiteral("/nowhere/"), elsewhere.prefix()}));
}

}  // namespace
}  // namespace maintenance
