#include "widgets/focus_return.h"

#include <gtest/gtest.h>

#include <QtGui/QGuiApplication>
#include <QtGui/QWindow>
#include <QtTest/QTest>
#include <QtWidgets/QDialog>

namespace widgets {
namespace {

// Qt takes the owner of an active window for active, too.
bool GetsKeyboard(const QWidget& window) {
    return QTest::qWaitFor([&] { return QGuiApplication::focusWindow() == window.windowHandle(); });
}

void Show(QWidget& window) {
    window.show();
    window.activateWindow();
    EXPECT_TRUE(GetsKeyboard(window));
}

class FocusReturnTest : public testing::Test {
protected:
    FocusReturnTest() { Show(window); }

    void ShowModal(QDialog& shown) {
        shown.setModal(true);
        Show(shown);
    }

    FocusReturn focus_return;
    QWidget window;
    QDialog dialog{&window};
    QDialog box{&dialog};
};

TEST_F(FocusReturnTest, TheOwnerOfAWindowThatClosesGetsTheKeyboard) {
    ShowModal(dialog);
    dialog.hide();
    EXPECT_TRUE(GetsKeyboard(window));
}

TEST_F(FocusReturnTest, OfTwoThatCloseTogetherTheOwnerOfTheLast) {
    ShowModal(dialog);
    ShowModal(box);
    box.hide();
    dialog.hide();
    EXPECT_TRUE(GetsKeyboard(window));
}

TEST_F(FocusReturnTest, TheLastMayCloseAfterItWasAsked) {
    ShowModal(dialog);
    ShowModal(box);
    box.hide();
    QCoreApplication::sendPostedEvents();
    dialog.hide();
    EXPECT_TRUE(GetsKeyboard(window));
}

TEST_F(FocusReturnTest, AModalWindowComesBeforeTheOwner) {
    QWidget tool(&window, Qt::Tool);
    ShowModal(dialog);
    dialog.hide();
    Show(tool);
    dialog.show();
    tool.activateWindow();
    ASSERT_TRUE(GetsKeyboard(tool));
    tool.hide();
    EXPECT_TRUE(GetsKeyboard(dialog));
}

TEST_F(FocusReturnTest, AWindowThatIsShownThenKeepsIt) {
    QWidget next;
    ShowModal(dialog);
    dialog.hide();
    Show(next);
    QTest::qWait(100);
    EXPECT_EQ(QGuiApplication::focusWindow(), next.windowHandle());
}

TEST_F(FocusReturnTest, AToolTipTakesNoKeyboard) {
    ShowModal(dialog);
    dialog.hide();
    QWidget tip(&window, Qt::ToolTip);
    tip.show();
    EXPECT_TRUE(GetsKeyboard(window));
}

TEST_F(FocusReturnTest, WhoWentToAnotherWindowStaysThere) {
    QWidget other;
    Show(other);
    Show(dialog);
    Show(box);
    box.hide();
    EXPECT_TRUE(GetsKeyboard(dialog));
    other.activateWindow();
    EXPECT_TRUE(GetsKeyboard(other));
    dialog.hide();
    QTest::qWait(100);
    EXPECT_EQ(QGuiApplication::focusWindow(), other.windowHandle());
}

}  // namespace
}  // namespace widgets
