#include "widgets/elided_label.h"

#include "widgets/button_width.h"

#include <gtest/gtest.h>

#include <QtGui/QHelpEvent>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QToolTip>

namespace widgets {
namespace {

const QString kLong =
    QStringLiteral("/tables/") + QString(300, u'x') + QStringLiteral("/<b>y</b>.vpt");

void AskForToolTip(QWidget& widget) {
    QHelpEvent event(QEvent::ToolTip, {1, 1}, widget.mapToGlobal(QPoint(1, 1)));
    QApplication::sendEvent(&widget, &event);
}

TEST(ElidedLabelTest, BeginningAndEndOfALongTextAreShownAndTheWholeIsItsToolTip) {
    ElidedLabel label;
    label.setText(kLong);
    label.resize(200, 20);
    label.show();
    EXPECT_TRUE(label.ShownText().startsWith(u"/tab"));
    EXPECT_TRUE(label.ShownText().endsWith(u".vpt"));
    EXPECT_LE(label.fontMetrics().horizontalAdvance(label.ShownText()), 200);
    EXPECT_EQ(label.text(), kLong);
    AskForToolTip(label);
    EXPECT_TRUE(QToolTip::text().contains(kLong.toHtmlEscaped()));
    QToolTip::hideText();
    EXPECT_TRUE(QTest::qWaitFor([] { return QToolTip::text().isEmpty(); }));  // it fades
}

TEST(ElidedLabelTest, AShortTextIsWholeAndHasNoToolTip) {
    ElidedLabel label;
    label.setText(QStringLiteral("short & plain"));
    label.resize(400, 20);
    label.show();
    EXPECT_EQ(label.ShownText(), label.text());
    AskForToolTip(label);
    EXPECT_EQ(QToolTip::text(), QString());
}

TEST(ElidedLabelTest, ALineBreakIsABlankAndNoTextWidensTheWindow) {
    ElidedLabel label;
    label.setText(QStringLiteral("a\nb"));
    label.resize(400, 20);
    EXPECT_EQ(label.ShownText(), QStringLiteral("a b"));
    label.setText(kLong);
    EXPECT_EQ(label.minimumSizeHint().width(), 0);
    EXPECT_GE(label.minimumSizeHint().height(), label.fontMetrics().height());
}

TEST(ButtonWidthTest, EachCaptionFitsAlsoInLargerLetters) {
    QPushButton button;
    ReserveWidth(button, {QStringLiteral("Asc"), QStringLiteral("Desc")});
    const int before = button.width();
    EXPECT_GT(before, button.fontMetrics().horizontalAdvance(QStringLiteral("Desc")));
    QFont large = button.font();
    large.setPointSizeF(large.pointSizeF() * 3);
    button.setFont(large);
    EXPECT_GT(button.width(), button.fontMetrics().horizontalAdvance(QStringLiteral("Desc")));
    EXPECT_EQ(button.minimumWidth(), button.maximumWidth());
}

}  // namespace
}  // namespace widgets
