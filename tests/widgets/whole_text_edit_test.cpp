// Needs widgets; runs offscreen.
#include "widgets/text_box.h"
#include "widgets/whole_text_edit.h"

#include <gtest/gtest.h>

#include <QtTest/QTest>

namespace widgets {
namespace {

TEST(WholeTextEditTest, AnUntouchedTextComesBackAsItWas) {
    WholeTextEdit edit;
    const QString odd = QStringLiteral("a\rb\nc\r\nd\u00A0e\u2028f");
    edit.SetWholeText(odd);
    EXPECT_EQ(edit.WholeText(), odd);
}

TEST(WholeTextEditTest, AnEditedTextHasCarriageReturnsAndLineFeeds) {
    WholeTextEdit edit;
    edit.SetWholeText(QStringLiteral("one\ntwo"));
    QTest::keyClicks(&edit, QStringLiteral("x"));
    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_EQ(edit.WholeText(), QStringLiteral("x\r\none\r\ntwo"));
}

TEST(WholeTextEditTest, AnEditedTextKeepsItsNoBreakSpaces) {
    WholeTextEdit edit;
    edit.SetWholeText(QStringLiteral("a\u00A0b"));
    QTest::keyClicks(&edit, QStringLiteral("x"));
    EXPECT_EQ(edit.WholeText(), QStringLiteral("xa\u00A0b"));
}

TEST(WholeTextEditTest, ATextThatIsUndoneComesBackAsItWas) {
    WholeTextEdit edit;
    edit.SetWholeText(QStringLiteral("one\ntwo"));
    QTest::keyClicks(&edit, QStringLiteral("x"));
    edit.undo();
    EXPECT_EQ(edit.WholeText(), QStringLiteral("one\ntwo"));
}

TEST(WholeTextEditTest, FiftyMegabytesAreKeptWholeAndShownInPart) {
    WholeTextEdit edit;
    const QString text =
        QStringLiteral("A line of the rules of this table.\r\n").repeated(1'400'000);
    edit.SetWholeText(text);
    EXPECT_TRUE(edit.shows_beginning_only());
    EXPECT_TRUE(edit.isReadOnly());
    EXPECT_EQ(edit.WholeText(), text);
    edit.SetWholeText(QStringLiteral("short"));
    EXPECT_FALSE(edit.isReadOnly());
    EXPECT_EQ(edit.toPlainText(), QStringLiteral("short"));
}

TEST(WholeTextEditTest, ALineWithoutEndIsShownInPart) {
    WholeTextEdit edit;
    const QString text(1'000'000, QLatin1Char('a'));
    edit.SetWholeText(text);
    EXPECT_TRUE(edit.shows_beginning_only());
    EXPECT_LT(edit.toPlainText().size(), 100'000);
    EXPECT_EQ(edit.WholeText(), text);
}

TEST(TextBoxTest, ALineKeepsATextLongerThanAColumnHolds) {
    QWidget owner;
    TextBox box = TextBox::OneLine(&owner);
    const QString text(100'000, QLatin1Char('a'));
    box.SetText(text);
    EXPECT_EQ(box.Text(), text);
}

TEST(TextBoxTest, AChangeIsTold) {
    QWidget owner;
    for (TextBox box : {TextBox::OneLine(&owner), TextBox::SeveralLines(&owner)}) {
        int changes = 0;
        box.OnChange([&] { ++changes; });
        box.SetText(QStringLiteral("a"));
        EXPECT_EQ(changes, 1);
    }
}

}  // namespace
}  // namespace widgets
