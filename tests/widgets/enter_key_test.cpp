#include "widgets/enter_key.h"

#include <gtest/gtest.h>

#include <QtGui/QKeyEvent>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

namespace widgets {
namespace {

class EnterKeyTest : public testing::Test {
protected:
    EnterKeyTest() {
        auto* column = new QVBoxLayout(&window);
        for (QWidget* part : {static_cast<QWidget*>(&button), static_cast<QWidget*>(&tool),
                              static_cast<QWidget*>(&line)})
            column->addWidget(part);
        tool.setFocusPolicy(Qt::StrongFocus);
        QObject::connect(&button, &QPushButton::clicked, &button, [this] { ++clicks; });
        QObject::connect(&tool, &QToolButton::clicked, &tool, [this] { ++clicks; });
        window.show();
        window.activateWindow();
    }

    EnterKey keys;
    QWidget window;
    QPushButton button;
    QToolButton tool;
    QLineEdit line;
    int clicks = 0;
};

TEST_F(EnterKeyTest, EnterPressesTheButtonWithTheFocus) {
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    for (QWidget* focused : {static_cast<QWidget*>(&button), static_cast<QWidget*>(&tool)}) {
        focused->setFocus();
        const int before = clicks;
        QTest::keyClick(focused, Qt::Key_Return);
        QTest::keyClick(focused, Qt::Key_Enter);
        EXPECT_EQ(clicks, before + 2);
    }
    line.setFocus();
    QTest::keyClick(&line, Qt::Key_Return);
    EXPECT_EQ(clicks, 4) << "a line presses nothing";
}

TEST_F(EnterKeyTest, HeldDownItPressesOnce) {
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    button.setFocus();
    for (const bool repeated : {false, true, true}) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"),
                        repeated);
        QApplication::sendEvent(&button, &press);
    }
    EXPECT_EQ(clicks, 1);
}

}  // namespace
}  // namespace widgets
