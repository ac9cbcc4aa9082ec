#include "dialogs/qt_user_prompts.h"

#include "dialogs/box_driver.h"
#include "dialogs/qt_user_events.h"
#include "support/system_facts.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtGui/QAbstractFileIconProvider>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListView>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

namespace dialogs {
namespace {

using platform::Message;
using platform::MessageAnswer;
using platform::MessageButtons;
using platform::MessageIcon;
using test_support::BoxDriver;

void Press(QWidget& box, const char* button) {
    auto* found = box.findChild<QPushButton*>(QString::fromLatin1(button));
    ASSERT_NE(found, nullptr) << button;
    QTest::mouseClick(found, Qt::LeftButton);
}

// The answer of the box of `message` after `act`.
MessageAnswer AnswerWhen(const Message& message, const std::function<void(QWidget&)>& act) {
    BoxDriver driver(QStringLiteral("MessageBox"), act);
    QtUserPrompts prompts;
    const MessageAnswer answer = prompts.Ask(message);
    EXPECT_TRUE(driver.seen());
    return answer;
}

MessageAnswer AnswerOfButton(MessageButtons buttons, const char* button) {
    return AnswerWhen({QStringLiteral("Sure?"), {}, MessageIcon::kNone, buttons},
                      [button](QWidget& box) { Press(box, button); });
}

MessageAnswer AnswerOfEscape(MessageButtons buttons) {
    return AnswerWhen({QStringLiteral("Sure?"), {}, MessageIcon::kNone, buttons},
                      [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Escape); });
}

TEST(MessageBoxTest, EachButtonGivesItsAnswer) {
    EXPECT_EQ(AnswerOfButton(MessageButtons::kYesNo, "cmdYes"), MessageAnswer::kYes);
    EXPECT_EQ(AnswerOfButton(MessageButtons::kYesNo, "cmdNo"), MessageAnswer::kNo);
    EXPECT_EQ(AnswerOfButton(MessageButtons::kOkCancel, "cmdOK"), MessageAnswer::kOk);
    EXPECT_EQ(AnswerOfButton(MessageButtons::kOkCancel, "cmdCancel"), MessageAnswer::kCancel);
    EXPECT_EQ(AnswerOfButton(MessageButtons::kOk, "cmdOK"), MessageAnswer::kOk);
}

// Return presses the first button.
TEST(MessageBoxTest, ReturnMeansYesOrOk) {
    const auto answer_of_return = [](MessageButtons buttons, int key) {
        return AnswerWhen(
            {QStringLiteral("Sure?"), {}, MessageIcon::kNone, buttons},
            [key](QWidget& box) { QTest::keyClick(&box, static_cast<Qt::Key>(key)); });
    };
    for (const int key : {int{Qt::Key_Return}, int{Qt::Key_Enter}}) {
        EXPECT_EQ(answer_of_return(MessageButtons::kYesNo, key), MessageAnswer::kYes);
        EXPECT_EQ(answer_of_return(MessageButtons::kOkCancel, key), MessageAnswer::kOk);
        EXPECT_EQ(answer_of_return(MessageButtons::kOk, key), MessageAnswer::kOk);
    }
}

TEST(MessageBoxTest, ReturnMeansNoWhereYesDestroysSomething) {
    const Message question{
        QStringLiteral("Sure?"), {}, MessageIcon::kNone, MessageButtons::kYesNo, true};
    EXPECT_EQ(AnswerWhen(question, [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); }),
              MessageAnswer::kNo);
    EXPECT_EQ(AnswerWhen(question, [](QWidget& box) { Press(box, "cmdYes"); }),
              MessageAnswer::kYes);
}

TEST(MessageBoxTest, EscapeMeansNoOrCancel) {
    EXPECT_EQ(AnswerOfEscape(MessageButtons::kYesNo), MessageAnswer::kNo);
    EXPECT_EQ(AnswerOfEscape(MessageButtons::kOkCancel), MessageAnswer::kCancel);
}

TEST(MessageBoxTest, ShowsTextTitleAndIcon) {
    const Message message{QStringLiteral("one\rtwo\r\nthree <b>"), QStringLiteral("Warning"),
                          MessageIcon::kExclamation, MessageButtons::kYesNo};
    AnswerWhen(message, [](QWidget& widget) {
        auto& box = dynamic_cast<QMessageBox&>(widget);
        EXPECT_EQ(box.text(), QStringLiteral("one\ntwo\nthree <b>"));
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.windowTitle(), QStringLiteral("Warning"));
        EXPECT_EQ(box.icon(), QMessageBox::Warning);
        Press(box, "cmdNo");
    });
}

TEST(MessageBoxTest, WithoutATitleItBearsTheProgramsName) {
    AnswerWhen({QStringLiteral("Hello"), {}, MessageIcon::kNone, MessageButtons::kOk},
               [](QWidget& box) {
                   EXPECT_EQ(box.windowTitle(), QStringLiteral("Tavolo"));
                   Press(box, "cmdOK");
               });
}

TEST(MessageBoxTest, AShortTextLeavesRoomForALongTitle) {
    const QString title = QStringLiteral("A title that is much longer than the text");
    AnswerWhen({QStringLiteral("Yes?"), title, MessageIcon::kNone, MessageButtons::kOk},
               [&title](QWidget& box) {
                   EXPECT_GT(box.width(), box.fontMetrics().horizontalAdvance(title) + 100);
                   Press(box, "cmdOK");
               });
}

TEST(MessageBoxTest, BelongsToTheOwnerUnlessADialogIsOpen) {
    QWidget owner;
    QDialog dialog;
    QtUserPrompts prompts(&owner);
    const Message message{QStringLiteral("Hello"), {}, MessageIcon::kNone, MessageButtons::kOk};
    {
        BoxDriver driver(QStringLiteral("MessageBox"), [&owner](QWidget& box) {
            EXPECT_EQ(box.parentWidget(), &owner);
            Press(box, "cmdOK");
        });
        prompts.Ask(message);
        EXPECT_TRUE(driver.seen());
    }
    dialog.setModal(true);
    dialog.show();
    BoxDriver driver(QStringLiteral("MessageBox"), [&dialog](QWidget& box) {
        EXPECT_EQ(box.parentWidget(), &dialog);
        Press(box, "cmdOK");
    });
    prompts.Ask(message);
    EXPECT_TRUE(driver.seen());
}

class FileDialogTest : public testing::Test {
protected:
    FileDialogTest() {
        Make(QStringLiteral("LOUD.BMP"));
        Make(QStringLiteral("quiet.bmp"));
        Make(QStringLiteral("text.txt"));
        request.title = QStringLiteral("Select a Picture");
        request.filter = QStringLiteral("Pictures (*.bmp;*.jpg)|*.bmp;*.jpg");
        request.folder = folder.path();
    }

    void Make(const QString& name) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }

    QString OpenWhile(const std::function<void(QFileDialog&)>& act) {
        BoxDriver driver(QStringLiteral("FileDialog"),
                         [&act](QWidget& widget) { act(dynamic_cast<QFileDialog&>(widget)); });
        const QString chosen = prompts.ChooseFileToOpen(request);
        EXPECT_TRUE(driver.seen());
        return chosen;
    }

    static void Type(QFileDialog& dialog, const QString& name) {
        auto* edit = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(edit, nullptr);
        edit->setText(name);
        QTest::keyClick(edit, Qt::Key_Return);
    }

    test_support::TemporaryDir folder;
    platform::FileDialog request;
    QtUserPrompts prompts;
};

TEST_F(FileDialogTest, ATypedNameIsChosen) {
    const QString chosen =
        OpenWhile([](QFileDialog& dialog) { Type(dialog, QStringLiteral("quiet.bmp")); });
    EXPECT_EQ(chosen, folder.filePath(QStringLiteral("quiet.bmp")));
}

TEST_F(FileDialogTest, ItsIconsAreTheProgramsAndItsLabelsKnowTheirFields) {
    OpenWhile([this](QFileDialog& dialog) {
        const auto& icons = *dialog.iconProvider();
        EXPECT_EQ(icons.icon(QFileInfo(folder.path())).name(), QStringLiteral("tavolo-closed"));
        const QFileInfo file(folder.filePath(QStringLiteral("any.bmp")));
        EXPECT_EQ(icons.icon(file).name(), QStringLiteral("tavolo-file"));
        EXPECT_EQ(icons.icon(QFileInfo(QStringLiteral("/"))).name(),
                  QStringLiteral("tavolo-drive"));
        for (const char* const part : {"lookIn", "fileType"}) {
            const QString name = QLatin1String(part);
            const auto* const label = dialog.findChild<QLabel*>(name + QStringLiteral("Label"));
            ASSERT_NE(label, nullptr) << part;
            ASSERT_NE(label->buddy(), nullptr) << part;
            EXPECT_EQ(label->buddy()->objectName(), name + QStringLiteral("Combo"));
        }
        const auto* const look_in = dialog.findChild<QComboBox*>(QStringLiteral("lookInCombo"));
        EXPECT_EQ(look_in->toolTip(), look_in->currentText());
        EXPECT_FALSE(look_in->toolTip().isEmpty());
        dialog.reject();
    });
}

TEST_F(FileDialogTest, ANamedDialogHasItsName) {
    request.name = QStringLiteral("ComDialog");
    BoxDriver driver(QStringLiteral("ComDialog"),
                     [](QWidget& widget) { dynamic_cast<QFileDialog&>(widget).reject(); });
    EXPECT_EQ(prompts.ChooseFileToOpen(request), QString());
    EXPECT_TRUE(driver.seen());
}

TEST_F(FileDialogTest, ANameWithAQuoteIsChosen) {
    const QString name = QString::fromLatin1(test_support::kQuotedName) + QStringLiteral(".bmp");
    Make(name);
    request.file_name = folder.filePath(name);
    // For a file that does not exist the dialog would open a box of its own.
    QTimer boxes;
    QObject::connect(&boxes, &QTimer::timeout, [] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
            box->reject();
    });
    boxes.start(10);
    const QString chosen = OpenWhile([](QFileDialog& dialog) {
        QTest::keyClick(dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit")),
                        Qt::Key_Return);
        QTimer::singleShot(0, &dialog, &QWidget::close);  // if it is still open
    });
    EXPECT_EQ(chosen, request.file_name);
}

TEST_F(FileDialogTest, TheFilterMatchesWithoutRegardToLetterCase) {
    OpenWhile([](QFileDialog& dialog) {
        auto* list = dialog.findChild<QListView*>(QStringLiteral("listView"));
        ASSERT_NE(list, nullptr);
        const auto names = [list] {
            QStringList shown;
            for (int row = 0; row < list->model()->rowCount(list->rootIndex()); ++row)
                shown.append(list->model()->index(row, 0, list->rootIndex()).data().toString());
            shown.sort();
            return shown;
        };
        EXPECT_TRUE(QTest::qWaitFor([&names] { return names().size() == 2; }))
            << names().join(u' ').toStdString();
        EXPECT_EQ(names(), (QStringList{QStringLiteral("LOUD.BMP"), QStringLiteral("quiet.bmp")}));
        dialog.reject();
    });
}

TEST_F(FileDialogTest, CancellingGivesAnEmptyPath) {
    EXPECT_EQ(OpenWhile([](QFileDialog& dialog) { dialog.reject(); }), QString());
}

TEST_F(FileDialogTest, APresetPathOpensItsFolderAndNamesTheFile) {
    request.file_name = folder.filePath(QStringLiteral("LOUD.BMP"));
    request.folder.clear();
    OpenWhile([this](QFileDialog& dialog) {
        EXPECT_EQ(dialog.directory(), QDir(folder.path()));
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select a Picture"));
        EXPECT_EQ(dialog.selectedFiles(),
                  QStringList{QDir::fromNativeSeparators(request.file_name)});
        dialog.reject();
    });
}

TEST_F(FileDialogTest, APresetPathOfAnotherSystemOffersNoName) {
    request.file_name = QStringLiteral("C:\\VP\\VPinball.exe");
    OpenWhile([](QFileDialog& dialog) {
        auto* edit = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        EXPECT_EQ(edit->text(), QString());
        dialog.reject();
    });
}

TEST_F(FileDialogTest, SavingAddsTheDefaultExtension) {
    request.default_extension = QStringLiteral("jpg");
    BoxDriver driver(QStringLiteral("FileDialog"), [](QWidget& widget) {
        Type(dynamic_cast<QFileDialog&>(widget), QStringLiteral("new"));
    });
    EXPECT_EQ(prompts.ChooseFileToSave(request), folder.filePath(QStringLiteral("new.jpg")));
    EXPECT_TRUE(driver.seen());
}

TEST(FolderDialogTest, WithoutATitleItAsksForAFolder) {
    QtUserPrompts prompts;
    BoxDriver driver(QStringLiteral("FolderDialog"), [](QWidget& widget) {
        EXPECT_EQ(widget.windowTitle(), QStringLiteral("Select a folder."));
        dynamic_cast<QFileDialog&>(widget).reject();
    });
    EXPECT_EQ(prompts.ChooseFolder(QString()), QString());
    EXPECT_TRUE(driver.seen());
}

TEST(FolderDialogTest, AFolderWithAQuoteIsChosen) {
    const test_support::TemporaryDir folder;
    const QString wanted = folder.filePath(QString::fromLatin1(test_support::kQuotedName));
    ASSERT_TRUE(QDir().mkpath(wanted));
    QtUserPrompts prompts;
    BoxDriver driver(QStringLiteral("FolderDialog"), [&](QWidget& widget) {
        auto* edit = widget.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(edit, nullptr);
        edit->setText(wanted);
        QTest::keyClick(edit, Qt::Key_Return);
        QTimer::singleShot(0, &widget, &QWidget::close);  // if the dialog is still open
    });
    EXPECT_EQ(prompts.ChooseFolder(QString()), wanted);
}

TEST(FolderDialogTest, ATypedFolderIsChosen) {
    const test_support::TemporaryDir folder;
    QtUserPrompts prompts;
    BoxDriver driver(QStringLiteral("FolderDialog"), [&folder](QWidget& widget) {
        auto* edit = widget.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(edit, nullptr);
        edit->setText(folder.path());
        QTest::keyClick(edit, Qt::Key_Return);
    });
    EXPECT_EQ(prompts.ChooseFolder(QString()), folder.path());
    EXPECT_TRUE(driver.seen());
}

TEST(QtUserEventsTest, PostedEventsAreDelivered) {
    bool ran = false;
    QTimer::singleShot(0, [&ran] { ran = true; });
    QtUserEvents events;
    for (int i = 0; i < 100 && !ran; ++i)
        events.ProcessEvents();
    EXPECT_TRUE(ran);
}

// The caller reports the missing file; the dialog must not show a box of its own.
TEST_F(FileDialogTest, ANameThatNeedNotExistIsChosenWithoutAWord) {
    request.must_exist = false;
    const QString chosen =
        OpenWhile([](QFileDialog& dialog) { Type(dialog, QStringLiteral("not there.bmp")); });
    EXPECT_EQ(chosen, folder.filePath(QStringLiteral("not there.bmp")));
}

}  // namespace
}  // namespace dialogs
