#include "browser/status_panels.h"

#include "browser/status_label.h"
#include "support/event_counter.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <QtCore/QElapsedTimer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QProgressBar>

namespace browser {
namespace {

class StatusPanelsTest : public testing::Test {
protected:
    void SetUp() override {
        window.setStatusBar(&panels);
        window.show();
    }
    QLabel* Panel(int number) {
        return panels.findChild<QLabel*>(QStringLiteral("sbrDB_%1").arg(number));
    }
    QProgressBar* Bar() { return panels.findChild<QProgressBar*>(QStringLiteral("prgLoad")); }
    void ExpectPanels(bool visible) {
        for (int number = 1; number <= 4; ++number)
            EXPECT_EQ(Panel(number)->isVisible(), visible) << number;
        EXPECT_EQ(Bar()->isVisible(), !visible);
    }
    void ExpectMessage(const QString& text) {
        EXPECT_EQ(panels.currentMessage(), text);
        for (int number = 1; number <= 4; ++number)
            EXPECT_FALSE(Panel(number)->isVisible()) << number;
        EXPECT_FALSE(Bar()->isVisible());
    }

    QMainWindow window;
    StatusPanels& panels = *new StatusPanels;  // the window's
};

TEST_F(StatusPanelsTest, APanelShowsItsTextAndTellsAllOfItUnderThePointer) {
    panels.SetPanelText(1, QStringLiteral("12 Tables in list.  "));
    EXPECT_EQ(Panel(1)->text(), QStringLiteral("12 Tables in list.  "));
    EXPECT_EQ(Panel(1)->toolTip(), QStringLiteral("12 Tables in list."));
    ExpectPanels(true);
}

TEST_F(StatusPanelsTest, TheProgressBarTakesThePlaceOfThePanelsUntilTheEnd) {
    panels.StartProgress(200);
    EXPECT_TRUE(panels.in_progress());
    EXPECT_EQ(Bar()->maximum(), 200);
    EXPECT_EQ(Bar()->value(), 0);
    ExpectPanels(false);
    panels.Advance(100);
    EXPECT_EQ(Bar()->value(), 100);
    ExpectPanels(false);
    panels.EndProgress();
    EXPECT_FALSE(panels.in_progress());
    ExpectPanels(true);
}

TEST_F(StatusPanelsTest, TheCountAndTheShareStandBesideTheBar) {
    const auto* const label = panels.findChild<QLabel*>(QStringLiteral("lblProgress"));
    EXPECT_FALSE(label->isVisible());
    panels.StartProgress(20'000);
    EXPECT_TRUE(label->isVisible());
    EXPECT_EQ(label->text(), QStringLiteral("0 of 20,000 (0 %)"));
    panels.Advance(1'200);
    EXPECT_EQ(label->text(), QStringLiteral("1,200 of 20,000 (6 %)"));
    panels.EndProgress();
    EXPECT_FALSE(label->isVisible());
}

TEST_F(StatusPanelsTest, TheNextProgressBeginsAtNothing) {
    panels.StartProgress(10);
    panels.Advance(10);
    panels.EndProgress();
    panels.StartProgress(1000);
    EXPECT_EQ(Bar()->value(), 0);
    EXPECT_EQ(Bar()->maximum(), 1000);
    panels.Advance(10);  // a hundredth
    EXPECT_EQ(Bar()->value(), 10);
    panels.Advance(15);  // less than another one
    EXPECT_EQ(Bar()->value(), 10);
}

// Nothing else lets the window paint itself while a long run keeps the program busy.
TEST_F(StatusPanelsTest, TheRestOfTheWindowIsPaintedDuringALongProgress) {
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    auto* const rest = new QWidget;
    window.setCentralWidget(rest);
    rest->show();
    test_support::EventCounter painted(*rest, QEvent::Paint);
    panels.StartProgress(5000);
    std::int64_t step = 1000;
    for (const char* const time : {"first", "second"}) {
        const int before = painted.count();
        rest->update();
        EXPECT_TRUE(test_support::WaitFor([&] {  // the bar is not drawn at each hundredth
            panels.Advance(step += 50);
            return painted.count() > before;
        })) << time;
    }
}

TEST_F(StatusPanelsTest, ABarThatAdvancesQuicklyIsNotDrawnAtEachHundredth) {
    constexpr int kBetweenDrawingsMs = 50;
    panels.StartProgress(100'000);
    const QSignalSpy drawings(Bar(), &QProgressBar::valueChanged);
    QElapsedTimer elapsed;
    elapsed.start();
    for (int step = 1; step < 100'000; ++step)
        panels.Advance(step);
    EXPECT_GE(drawings.count(), 1);
    EXPECT_LE(drawings.count(), 1 + elapsed.elapsed() / kBetweenDrawingsMs);
}

// As quickly as a tree of many tables is there, for one.
TEST_F(StatusPanelsTest, AProgressThatIsOverAtOnceIsNotPainted) {
    constexpr int kBetweenDrawingsMs = 50;
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QElapsedTimer elapsed;
    elapsed.start();
    panels.StartProgress(100'000);
    const test_support::EventCounter painted(*Bar(), QEvent::Paint);
    for (int step = 1; step <= 2'000; ++step)
        panels.Advance(step);
    EXPECT_LE(painted.count(), elapsed.elapsed() / kBetweenDrawingsMs);
}

// The next hundredth may take minutes.
TEST_F(StatusPanelsTest, AHundredthThatCameTooSoonIsDrawnAtALaterStep) {
    panels.StartProgress(10'000);
    panels.Advance(100);
    panels.Advance(200);  // sooner than another drawing is due
    std::int64_t step = 200;
    EXPECT_TRUE(test_support::WaitFor([&] {
        if (step < 299) ++step;
        panels.Advance(step);
        return Bar()->value() > 100;
    }));
}

TEST_F(StatusPanelsTest, ALongTextInTheNamePanelDoesNotWidenTheWindow) {
    const int before = panels.minimumSizeHint().width();
    panels.SetPanelText(kNamePanel, QString(2000, QLatin1Char('x')));
    EXPECT_EQ(panels.minimumSizeHint().width(), before);
}

TEST_F(StatusPanelsTest, ANameWithLineBreaksStaysOnOneLine) {
    auto* const name = qobject_cast<StatusLabel*>(Panel(kNamePanel));
    ASSERT_TRUE(name);
    panels.SetPanelText(kNamePanel, QStringLiteral("one"));
    const int height = panels.sizeHint().height();
    panels.SetPanelText(kNamePanel, QStringLiteral("one\r\ntwo\u2029three"));
    EXPECT_EQ(panels.sizeHint().height(), height);
    window.resize(900, 100);
    EXPECT_EQ(name->ShownText(), QStringLiteral("one  two three"));
}

TEST_F(StatusPanelsTest, WhatDoesNotFitEndsInAnEllipsis) {
    auto* const name = qobject_cast<StatusLabel*>(Panel(kNamePanel));
    ASSERT_TRUE(name);
    window.resize(300, 100);
    panels.SetPanelText(kCountPanel, QStringLiteral("100000 Tables in list.  "));
    panels.SetPanelText(kNamePanel, QStringLiteral("Current Table: Table 19290 of many more"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    EXPECT_TRUE(name->ShownText().endsWith(QChar(0x2026))) << name->ShownText().toStdString();
    window.resize(1200, 100);
    EXPECT_EQ(name->ShownText(), name->text());
}

TEST_F(StatusPanelsTest, NoTextIsCutWhereThereIsRoom) {
    window.resize(900, 100);
    auto* const count = qobject_cast<StatusLabel*>(Panel(kCountPanel));
    ASSERT_TRUE(count);
    for (int tables = 0; tables < 300; ++tables) {
        panels.SetPanelText(kCountPanel, QStringLiteral("%1 Tables in list.  ").arg(tables));
        count->resize(count->sizeHint());
        EXPECT_EQ(count->ShownText(), count->text());
    }
}

TEST_F(StatusPanelsTest, PanelsDoNotRunTogether) {
    window.resize(900, 100);
    panels.SetPanelText(kTimesPlayedPanel, QStringLiteral("Times Played: 3"));
    panels.SetPanelText(kLastPlayedPanel, QStringLiteral("Last Played: 5/6/2007"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    auto* const last = Panel(kLastPlayedPanel);
    const QImage seen = last->grab().toImage();
    const QColor ground = last->palette().color(QPalette::Window);
    const int middle = seen.height() / 2;
    EXPECT_NE(seen.pixelColor(0, middle), ground) << "a line in front of the panel";
    for (int x = 2; x < 5; ++x)
        EXPECT_EQ(seen.pixelColor(x, middle), ground) << "room between line and text, at " << x;
}

TEST_F(StatusPanelsTest, ReadOnlyStaysBesideAPassingText) {
    auto* const sign = panels.findChild<QLabel*>(QStringLiteral("lblReadOnly"));
    panels.ShowReadOnly(QStringLiteral("/a/pinball.mdb"));
    panels.ShowInPassing(QStringLiteral("done"));
    EXPECT_TRUE(sign->isVisible());
    panels.ShowReadOnly({});
    EXPECT_FALSE(sign->isVisible());
}

// One of the two would be painted over the other.
TEST_F(StatusPanelsTest, APassingTextGivesWayToAProgressAndComesBack) {
    int clicks = 0;
    panels.ShowInPassing(QStringLiteral("done"), [&clicks] { ++clicks; });
    ExpectMessage(QStringLiteral("done"));
    panels.StartProgress(200);
    EXPECT_EQ(panels.currentMessage(), QString());
    ExpectPanels(false);
    panels.EndProgress();
    ExpectMessage(QStringLiteral("done"));
    QTest::mouseClick(&panels, Qt::LeftButton);
    EXPECT_EQ(clicks, 1);
    panels.clearMessage();
    ExpectPanels(true);
}

TEST_F(StatusPanelsTest, WhatIsToldDuringAProgressIsShownAfterIt) {
    panels.StartProgress(200);
    panels.ShowInPassing(QStringLiteral("done"));
    EXPECT_EQ(panels.currentMessage(), QString());
    ExpectPanels(false);
    panels.EndProgress();
    ExpectMessage(QStringLiteral("done"));
}

TEST_F(StatusPanelsTest, WorkEndsWhatWasToldBefore) {
    panels.ShowInPassing(QStringLiteral("done"));
    panels.StartWork(QStringLiteral("Undo"), {});
    ExpectPanels(false);
    panels.EndProgress();
    EXPECT_EQ(panels.currentMessage(), QString());
    ExpectPanels(true);
}

}  // namespace
}  // namespace browser
