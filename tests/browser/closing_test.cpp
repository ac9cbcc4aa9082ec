// Closing the main window: what prevents it, what it stores, what it leaves behind.
#include "browser/main_window_fixture.h"

#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStatusBar>

namespace browser {
namespace {

class ClosingTest : public MainWindowWithTables {};

TEST_F(ClosingTest, ExitClosesTheWindowAndTheCatalogue) {
    Open();
    Action(u"mnuExit")->trigger();
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(connection->is_open());
    EXPECT_EQ(settings.written.front(), S(u"DIRECTION"));
    EXPECT_EQ(Saved(u"WIDTH"), S(u"9570"));
    EXPECT_EQ(Saved(u"HEIGHT"), S(u"6885"));
    EXPECT_EQ(Saved(u"WINDOWSTATE"), S(u"0"));
    // The height without the menu bar, in twips.
    const int inner_height = window->height() - window->menuBar()->height();
    EXPECT_GT(inner_height, 0);
    EXPECT_LT(inner_height, window->height());
    EXPECT_EQ(Saved(u"SCALEHEIGHT"), QString::number(inner_height * 15));
}

TEST_F(ClosingTest, TheCatalogueIsClosedBeforeTheSettingsAreWritten) {
    Open();
    int open_at_a_setting = 0;
    settings.on_save = [&] { open_at_a_setting += connection->is_open() ? 1 : 0; };
    window->close();
    EXPECT_EQ(settings.written.size(), 13U);
    EXPECT_EQ(open_at_a_setting, 0);
}

TEST_F(ClosingTest, FoldersOfTheDialogsAreKept) {
    Open();
    values.last_folders = {S(u"/captures/"), S(u"/rules/"), {}};
    window->close();
    EXPECT_EQ(settings.values.value(S(u"TAVOLO/FOLDERS/CAPTURE")), S(u"/captures/"));
    EXPECT_FALSE(settings.values.contains(S(u"TAVOLO/FOLDERS/SCAN")));
    values.last_folders = {};
    ASSERT_TRUE(catalogue::Main(catalogue).ok());
    Open();
    EXPECT_EQ(values.last_folders.capture, S(u"/captures/"));
    EXPECT_EQ(values.last_folders.rules, S(u"/rules/"));
}

TEST_F(ClosingTest, AMinimisedWindowIsRememberedAsOne) {
    Open();
    window->showMinimized();
    window->close();
    EXPECT_EQ(Saved(u"WINDOWSTATE"), S(u"1"));
}

TEST_F(ClosingTest, AFilterKindAndAnOrderThatWereNeverAppliedAreSaved) {
    Open();
    PickFilter(u"VPinMAME");
    auto* order = Find<QComboBox>(u"cboOrder");
    order->setCurrentText(S(u"Company"));
    window->close();
    EXPECT_EQ(Saved(u"FILTER"), S(u"PinMame"));
    EXPECT_EQ(Saved(u"ORDERBY"), S(u"Company"));
    EXPECT_EQ(TableNames(), QStringList({S(u"Alpha"), S(u"Beta"), S(u"Gamma")}));
}

TEST_F(ClosingTest, SettingsThatCannotBeStoredAreSaidOnce) {
    Open();
    settings.failure = {base::StatusCode::kIoError, "no room for TAVOLO.ini"};
    EXPECT_TRUE(window->close());
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, S(u"no room for TAVOLO.ini"));
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kExclamation);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ClosingTest, AFailureInPassingIsShownInTheStatusBar) {
    Open();
    auto* bar = window->findChild<QStatusBar*>(S(u"sbrDB"));
    ASSERT_NE(bar, nullptr);
    window->TellInPassing({});
    EXPECT_EQ(bar->currentMessage(), QString());
    window->TellInPassing({base::StatusCode::kIoError, "the disk is full"});
    EXPECT_EQ(bar->currentMessage(), S(u"the disk is full"));
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(ClosingTest, AChangedRecordRefusesTheCloseWithoutAWord) {
    Open();
    Click(Table(0));
    EditName();
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(connection->is_open());
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_TRUE(settings.written.empty());
}

TEST_F(ClosingTest, AWrongValueRefusesTheClose) {
    Open();
    PickFilter(u"File Date");
    TypeValue(u"soon");
    EXPECT_FALSE(window->close());
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, S(u"Please enter a valid date"));
    PickFilter(u"Times Played");
    TypeValue(u"often");
    EXPECT_FALSE(window->close());
    ASSERT_EQ(prompts.messages.size(), 2U);
    EXPECT_EQ(prompts.messages[1].text, S(u"Please enter a valid number"));
    PickFilter(u"Author");
    EXPECT_TRUE(window->close());
}

TEST_F(ClosingTest, WorkFilesOfTheCaptureAreRemoved) {
    Open();
    MakeFile(S(u"temp.jpg"));
    MakeFile(S(u"temp.bmp"));
    window->close();
    EXPECT_FALSE(QFile::exists(folder.filePath(S(u"temp.jpg"))));
    EXPECT_FALSE(QFile::exists(folder.filePath(S(u"temp.bmp"))));
    EXPECT_TRUE(QFile::exists(alpha));
}

TEST_F(ClosingTest, ClosingDuringAPlayIsClean) {
    Open();
    while_playing = [this] {
        window->close();
        window->close();
    };
    DoubleClick(Table(0));
    EXPECT_FALSE(connection->is_open());
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(settings.written.size(), 13U);
}

TEST_F(ClosingTest, AnEditIsKeptWhereNobodyCanAnswer) {
    Open();
    Click(Table(1));
    window->details().SetDetailText(4, S(u"Some \u00C4uthor"));
    window->details().SetDetailText(9, S(u"one\r\ntwo"));
    window->CloseForGood();
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(connection->is_open());
    EXPECT_EQ(settings.written.size(), 13U);
    EXPECT_TRUE(prompts.messages.empty());
    ASSERT_TRUE(catalogue::Main(catalogue).ok());
    EXPECT_EQ(Scalar(S(u"Select Author from Tables where DisplayName = 'Beta'")), S(u"Ann"))
        << "nothing is stored that nobody has saved";
    Open();
    window->GoOnWithKeptEdit();
    EXPECT_TRUE(window->details().record_changed());
    EXPECT_EQ(FieldText(2), S(u"Beta"));
    EXPECT_EQ(FieldText(4), S(u"Some \u00C4uthor"));
    window->details().Save();
    EXPECT_EQ(Scalar(S(u"Select Author from Tables where DisplayName = 'Beta'")),
              S(u"Some \u00C4uthor"));
    EXPECT_EQ(FieldText(9), S(u"one\r\ntwo"));
    window->GoOnWithKeptEdit();
    EXPECT_FALSE(window->details().record_changed()) << "once";
}

TEST_F(ClosingTest, WithoutAnEditNothingIsKept) {
    Open();
    Click(Table(1));
    PickFilter(u"File Date");
    TypeValue(u"soon");  // which would be asked about
    window->CloseForGood();
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_FALSE(QFile::exists(DatabasePath() + S(u"-edit")));
}

TEST_F(ClosingTest, AKeptEditOfARowThatIsGoneIsToldAndForgotten) {
    Open();
    Click(Table(0));
    EditName();
    window->CloseForGood();
    ASSERT_TRUE(catalogue::Main(catalogue).ok());
    Execute(S(u"Delete from Tables where ID = 1"));
    Open();
    window->GoOnWithKeptEdit();
    EXPECT_FALSE(window->details().record_changed());
    EXPECT_NE(window->findChild<QStatusBar*>(S(u"sbrDB"))->currentMessage(), QString());
    EXPECT_FALSE(QFile::exists(DatabasePath() + S(u"-edit")));
}

TEST_F(ClosingTest, WhatMustEndFirstEndsWhileTheCatalogueIsOpen) {
    Open();
    int calls = 0;
    window->SetBeforeUnload([&] {
        ++calls;
        EXPECT_TRUE(connection->is_open());
        EXPECT_TRUE(settings.written.empty());
    });
    Click(Table(0));
    EditName();
    window->close();  // refused
    EXPECT_EQ(calls, 0);
    window->details().Save();
    window->close();
    EXPECT_EQ(calls, 1);
}

TEST_F(MainWindowTest, AnEmptyCatalogueKeepsTheSavedOperator) {
    Save(u"OPERATOR", u"<");
    Open();
    window->close();
    EXPECT_EQ(Saved(u"OPERATOR"), S(u"<"));
}

TEST_F(MainWindowTest, AnEmptyCatalogueWritesTheDefaultOperator) {
    Open();
    window->close();
    EXPECT_EQ(Saved(u"OPERATOR"), S(u"="));
}

}  // namespace
}  // namespace browser
