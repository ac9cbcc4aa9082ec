// The History window on a catalogue whose history the test makes.
#include "history/frmHistory.h"

#include "browser/tree_fixture.h"
#include "history/change_texts.h"
#include "support/qt_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtTest/QTest>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>

namespace history {
namespace {

using test_support::S;

TEST(ShownNameTest, AnUndoOfAnUndoIsCalledSo) {
    EXPECT_EQ(ShownName(u"Undo Redo Put Back Purge"), S(u"Undo Redo Put Back Purge"));
    EXPECT_EQ(ShownName(u"Undo "), S(u"Undo "));
}

// As a file may hold it that others have made.
TEST(ShownNameTest, AMillionPrefixesAreShownAsTheyStand) {
    std::u16string name;
    for (int i = 0; i < 1'000'000; ++i)
        name += u"Undo ";
    EXPECT_EQ(ShownName(name).toStdU16String(), name);
}

class HistoryWindowTest : public browser::TreeFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        AddTable(S(u"Alpha"), S(u"/tables/alpha.vpt"));
        AddTable(S(u"Beta"), S(u"/tables/beta.vpt"));
        ASSERT_TRUE(catalogue::UpgradeCatalogue(catalogue).ok());  // gives them their dates
        ASSERT_TRUE(connection->Close().ok());
        history = std::make_unique<HistoryFile>(*files, DatabasePath().toStdU16String());
        connection->UseNotes(history.get());
        ASSERT_TRUE(catalogue::Main(catalogue).ok());
    }
    void TearDown() override {
        window.reset();
        connection.reset();
    }
    void RunNamed(const char16_t* name, const char16_t* sql) {
        const jet::NamedChange named(*connection, name);
        Execute(S(sql));
    }
    void Open() {
        window =
            std::make_unique<frmHistory>(catalogue, *history, prompts, [this] { ++refreshed; });
        window->show();
    }
    // Until no thread reads or searches.
    void Settle() {
        const auto* const count = window->findChild<QLabel*>(S(u"lblCount"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return !count->text().endsWith(S(u"...")); }, 30000));
    }
    QTableView& View(const char16_t* name) { return *window->findChild<QTableView*>(S(name)); }
    // A line of a list, its cells with "|" between them.
    std::string Line(const char16_t* view, int row) {
        Settle();
        const QAbstractItemModel& model = *View(view).model();
        QStringList cells;
        for (int column = 0; column < model.columnCount(); ++column)
            cells.append(model.index(row, column).data().toString());
        return cells.join(u'|').toStdString();
    }
    int Lines(const char16_t* view) {
        Settle();
        return View(view).model()->rowCount();
    }
    void Select(const char16_t* view, int row) {
        Settle();
        View(view).selectRow(row);
    }
    void Click(const char16_t* button) {
        Settle();
        QTest::mouseClick(window->findChild<QPushButton*>(S(button)), Qt::LeftButton);
    }
    bool IsEnabled(const char16_t* button) {
        return window->findChild<QPushButton*>(S(button))->isEnabled();
    }

    std::unique_ptr<HistoryFile> history;
    std::unique_ptr<frmHistory> window;
    int refreshed = 0;
};

TEST_F(HistoryWindowTest, WithoutChangesThereIsNothingToPutBack) {
    Open();
    EXPECT_EQ(Lines(u"tblChanges"), 0);
    EXPECT_EQ(Lines(u"tblFields"), 0);
    for (const char16_t* button : {u"cmdField", u"cmdTable", u"cmdAll"})
        EXPECT_FALSE(IsEnabled(button));
}

TEST_F(HistoryWindowTest, ShowsTheNewestChangeFieldByField) {
    RunNamed(u"Edit", u"Update Tables set Author = 'Me', [Year] = '1988' where ID = 2");
    RunNamed(u"Purge", u"Delete from Tables where ID = 1");
    Open();
    ASSERT_EQ(Lines(u"tblChanges"), 2);
    EXPECT_THAT(Line(u"tblChanges", 0), testing::EndsWith("|Purge (1 table)|7"));
    EXPECT_THAT(Line(u"tblChanges", 1), testing::EndsWith("|Edit (1 table)|2"));
    EXPECT_EQ(Lines(u"tblFields"), 7);
    EXPECT_EQ(Line(u"tblFields", 1), "Alpha|DisplayName|Alpha|");
    Select(u"tblChanges", 1);
    ASSERT_EQ(Lines(u"tblFields"), 2);
    EXPECT_EQ(Line(u"tblFields", 0), "Beta|Author||Me");
    EXPECT_EQ(Line(u"tblFields", 1), "Beta|Year||1988");
}

TEST_F(HistoryWindowTest, TextAndFieldNarrowTheLinesDown) {
    RunNamed(u"Edit", u"Update Tables set Author = 'Me', [Year] = '1988'");
    Open();
    EXPECT_EQ(Lines(u"tblFields"), 4);
    auto* const field = window->findChild<QComboBox*>(S(u"cboField"));
    field->setCurrentText(S(u"Year"));
    EXPECT_EQ(Lines(u"tblFields"), 2);
    window->findChild<QLineEdit*>(S(u"txtFilter"))->setText(S(u"beta"));
    EXPECT_EQ(Lines(u"tblFields"), 1);
    EXPECT_EQ(window->findChild<QLabel*>(S(u"lblCount"))->text(), S(u"1 field"));
    EXPECT_EQ(Line(u"tblFields", 0), "Beta|Year||1988");
}

// The change chosen last is shown, whatever the ones before it took.
TEST_F(HistoryWindowTest, OnlyTheNewestChoiceIsShown) {
    RunNamed(u"First", u"Update Tables set Author = 'Me'");
    RunNamed(u"Second", u"Update Tables set [Year] = '1988' where ID = 2");
    Open();
    for (const int row : {1, 0, 1, 0, 1})
        View(u"tblChanges").selectRow(row);
    EXPECT_EQ(window->findChild<QLabel*>(S(u"lblCount"))->text(), S(u"Reading..."));
    EXPECT_FALSE(IsEnabled(u"cmdAll"));
    EXPECT_EQ(Lines(u"tblFields"), 2);
    EXPECT_EQ(Line(u"tblFields", 0), "Alpha|Author||Me");
    EXPECT_TRUE(IsEnabled(u"cmdAll"));
}

TEST_F(HistoryWindowTest, ASearchThatGoesOnIsReplacedByTheNext) {
    RunNamed(u"Edit", u"Update Tables set Author = 'Me', [Year] = '1988'");
    Open();
    Settle();
    auto* const filter = window->findChild<QLineEdit*>(S(u"txtFilter"));
    for (const char16_t* text : {u"b", u"be", u"alp", u""})
        filter->setText(S(text));
    EXPECT_EQ(window->findChild<QLabel*>(S(u"lblCount"))->text(), S(u"Searching..."));
    EXPECT_EQ(Lines(u"tblFields"), 4);
    filter->setText(S(u"alp"));
    EXPECT_EQ(Lines(u"tblFields"), 2);
    // A window that is closed while it searches waits for its thread.
    filter->setText(S(u"b"));
}

TEST_F(HistoryWindowTest, ASearchEndsWhenAnotherChangeIsChosen) {
    RunNamed(u"First", u"Update Tables set Author = 'Me' where ID = 1");
    RunNamed(u"Second", u"Update Tables set [Year] = '1988', Author = 'You'");
    Open();
    Settle();
    window->findChild<QLineEdit*>(S(u"txtFilter"))->setText(S(u"beta"));
    View(u"tblChanges").selectRow(1);
    QTest::qWait(50);
    EXPECT_EQ(Lines(u"tblFields"), 1);
    EXPECT_EQ(Line(u"tblFields", 0), "Alpha|Author||Me");
}

TEST_F(HistoryWindowTest, PutsBackAFieldATableOrAll) {
    RunNamed(u"Edit", u"Update Tables set Author = 'Me', [Year] = '1988'");
    Open();
    Select(u"tblFields", 1);
    Click(u"cmdField");
    EXPECT_EQ(Scalar(S(u"Select [Year] from Tables where ID = 1")), S(u""));
    EXPECT_EQ(Scalar(S(u"Select Author from Tables where ID = 1")), S(u"Me"));
    EXPECT_EQ(refreshed, 1);
    EXPECT_EQ(prompts.messages.back().text.toStdString(), "Put back Year of Alpha?");
    EXPECT_EQ(Lines(u"tblChanges"), 2);
    Select(u"tblChanges", 1);
    Select(u"tblFields", 3);
    Click(u"cmdTable");
    EXPECT_EQ(Scalar(S(u"Select [Year] & Author from Tables where ID = 2")), S(u""));
    Select(u"tblChanges", 2);
    Click(u"cmdAll");
    EXPECT_EQ(Scalar(S(u"Select [Year] & Author from Tables where ID = 1")), S(u""));
}

TEST_F(HistoryWindowTest, NothingIsPutBackWithoutAYes) {
    RunNamed(u"Edit", u"Update Tables set [Year] = '1988'");
    Open();
    prompts.answers = {platform::MessageAnswer::kNo};
    Click(u"cmdAll");
    EXPECT_EQ(Scalar(S(u"Select [Year] from Tables where ID = 1")), S(u"1988"));
    EXPECT_EQ(refreshed, 0);
}

TEST_F(HistoryWindowTest, WhatStaysIsListed) {
    RunNamed(u"Edit", u"Update Tables set [Year] = '1988' where ID = 1");
    RunNamed(u"Edit", u"Update Tables set [Year] = '2001' where ID = 1");
    Open();
    Select(u"tblChanges", 1);
    Click(u"cmdAll");
    EXPECT_THAT(prompts.messages.back().text.toStdString(),
                testing::HasSubstr("ID 1, Year: now '2001', was ''. It was changed since."));
}

}  // namespace
}  // namespace history
