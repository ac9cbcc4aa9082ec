#include "widgets/flow_layout.h"

#include <gtest/gtest.h>

#include <QtWidgets/QWidget>

namespace widgets {
namespace {

class Box : public QWidget {
public:
    using QWidget::QWidget;
    QSize sizeHint() const override { return {40, 20}; }
};

class FlowLayoutTest : public testing::Test {
protected:
    void SetUp() override {
        panel.setLayout(layout);
        for (Box*& box : boxes) {
            box = new Box(&panel);
            layout->addWidget(box);
        }
    }
    QWidget panel;
    FlowLayout* layout = new FlowLayout(5);
    Box* boxes[3] = {};
};

TEST_F(FlowLayoutTest, ALineEndsWhereTheWidthDoes) {
    layout->setGeometry({0, 0, 90, 100});
    EXPECT_EQ(boxes[0]->geometry(), QRect(0, 0, 40, 20));
    EXPECT_EQ(boxes[1]->geometry(), QRect(45, 0, 40, 20));
    EXPECT_EQ(boxes[2]->geometry(), QRect(0, 25, 40, 20));
    EXPECT_EQ(layout->heightForWidth(90), 45);
    EXPECT_EQ(layout->heightForWidth(130), 20);
    EXPECT_EQ(layout->heightForWidth(129), 45);
}

TEST_F(FlowLayoutTest, OneThatIsWiderThanTheLineHasALineOfItsOwn) {
    EXPECT_EQ(layout->heightForWidth(10), 70);
}

TEST_F(FlowLayoutTest, WidgetsCanBeTakenOut) {
    EXPECT_EQ(layout->takeAt(7), nullptr);
    EXPECT_EQ(layout->itemAt(-1), nullptr);
    delete layout->takeAt(0);
    EXPECT_EQ(layout->count(), 2);
}

}  // namespace
}  // namespace widgets
