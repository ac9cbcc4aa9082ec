// Long work of commands, in the main window and over a dialog.
#include "browser/long_work.h"

#include "browser/main_window_fixture.h"
#include "support/wait_for.h"

#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

#include <atomic>
#include <thread>

namespace browser {
namespace {

using catalogue::LongRun;
using catalogue::RunSteps;
using Stop = LongRun::Stop;

constexpr auto kRest = std::chrono::milliseconds(5);
constexpr int kPatienceMs = 20'000;

class LongWorkTest : public MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        values.VisualPinballExe = S(u"/bin/vp");
        AddTable(S(u"Alpha"), S(u"/tables/alpha.vpt"));
        Open();
    }

    // Work that ends when `is_enough` or a stop is requested. `meanwhile` is called in the window's
    // thread every few milliseconds as long as it goes on.
    bool Work(Stop stop, const std::function<void()>& meanwhile,
              const std::function<void(const RunSteps&)>& begin = {}) {
        QTimer timer;
        QElapsedTimer elapsed;
        elapsed.start();
        QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
            if (elapsed.hasExpired(kPatienceMs)) is_enough = true;  // the test fails, and ends
            meanwhile();
        });
        timer.start(5);
        return RunLong(catalogue, {S(u"Testing"), stop}, [&](const RunSteps& steps) {
            if (begin) begin(steps);
            while (!is_enough && !steps.stop.stop_requested())
                std::this_thread::sleep_for(kRest);
            return steps.stop.stop_requested();
        });
    }
    QToolButton* StopButton() { return window->findChild<QToolButton*>(S(u"cmdStop")); }
    QString Shown() { return Find<QLabel>(u"lblProgress")->text(); }
    QWidget* Target() {
        QWidget* const focus = QApplication::focusWidget();
        return focus != nullptr ? focus : window.get();
    }

    std::atomic<bool> is_enough = false;
};

TEST_F(LongWorkTest, RunsElsewhereWhileTheWindowIsPaintedAndSaysHowFarItIs) {
    const auto window_thread = std::this_thread::get_id();
    std::thread::id work_thread;
    QStringList texts;
    const bool stopped = Work(
        Stop::kNever,
        [&] {
            EXPECT_TRUE(window->shows_progress());
            if (!Find<QLabel>(u"lblProgress")->isVisible()) return;
            EXPECT_FALSE(StopButton()->isVisible());
            texts.append(Shown());
            is_enough = true;
        },
        [&](const RunSteps& steps) {
            work_thread = std::this_thread::get_id();
            steps.progress(1200, 20'000);
        });
    EXPECT_FALSE(stopped);
    EXPECT_NE(work_thread, window_thread);
    ASSERT_FALSE(texts.isEmpty());
    EXPECT_EQ(texts.last(), S(u"Testing: 1,200 of 20,000 (6 %)"));
    EXPECT_FALSE(window->shows_progress());
    EXPECT_FALSE(Find<QLabel>(u"lblProgress")->isVisible());
}

TEST_F(LongWorkTest, EscapeStopsItAtOnce) {
    EXPECT_TRUE(Work(Stop::kOnRequest, [&] { QTest::keyClick(Target(), Qt::Key_Escape); }));
}

TEST_F(LongWorkTest, TheButtonStopsIt) {
    QString tip;
    EXPECT_TRUE(Work(Stop::kOnRequest, [&] {
        if (!StopButton()->isVisible()) return;
        tip = StopButton()->toolTip();
        QTest::mouseClick(StopButton(), Qt::LeftButton);
    }));
    EXPECT_EQ(tip, S(u"Stop and leave everything as it was (Esc)"));
    EXPECT_FALSE(StopButton()->isVisible());
}

TEST_F(LongWorkTest, WhatCannotBeStoppedIsNot) {
    int presses = 0;
    EXPECT_FALSE(Work(Stop::kNever, [&] {
        QTest::keyClick(Target(), Qt::Key_Escape);
        if (++presses > 5) is_enough = true;
    }));
}

// Keys and clicks would run commands on a catalogue that is being changed.
TEST_F(LongWorkTest, KeysClicksAndTheCloseButtonDoNothingMeanwhile) {
    QAction* const random = Find<QAction>(u"mnuRandom");
    const QSignalSpy triggered(random, &QAction::triggered);
    const QSignalSpy refreshed(Find<QPushButton>(u"cmdGo"), &QPushButton::clicked);
    int rounds = 0;
    Work(Stop::kNever, [&] {
        QTest::keyClick(Tree(), Qt::Key_R, Qt::ControlModifier);
        QTest::keyClick(Tree(), Qt::Key_Down);
        QTest::mouseClick(Find<QPushButton>(u"cmdGo"), Qt::LeftButton);
        EXPECT_FALSE(window->close());
        if (++rounds > 3) is_enough = true;
    });
    EXPECT_EQ(triggered.count(), 0);
    EXPECT_EQ(refreshed.count(), 0);
    EXPECT_TRUE(window->isVisible());
    QTest::mouseClick(Find<QPushButton>(u"cmdGo"), Qt::LeftButton);
    EXPECT_EQ(refreshed.count(), 1);
}

// Assistive technology presses buttons without a key or a click.
TEST_F(LongWorkTest, TheCatalogueBelongsToTheWorkAlone) {
    base::StatusCode from_window = base::StatusCode::kOk;
    base::Status from_work = base::StoppedStatus();
    Work(
        Stop::kNever,
        [&] {
            from_window = connection->Execute(u"Select ID from Tables").status().code();
            is_enough = true;
        },
        [&](const RunSteps&) {
            from_work = connection->Execute(u"Select ID from Tables").status();
        });
    EXPECT_EQ(from_window, base::StatusCode::kBusy);
    EXPECT_TRUE(from_work.ok()) << from_work.message();
    EXPECT_TRUE(connection->Execute(u"Select ID from Tables").ok());
}

TEST_F(LongWorkTest, OverADialogItShowsThereAndEscapeLeavesTheDialogOpen) {
    QDialog dialog(window.get());
    dialog.resize(500, 300);
    QPushButton button(&dialog);
    button.move(300, 250);
    dialog.setModal(true);
    dialog.show();
    QString shown;
    bool covered = false;
    EXPECT_TRUE(Work(Stop::kOnRequest, [&] {
        const auto* const label = dialog.findChild<QLabel*>(S(u"lblProgress"));
        // Until the work has stopped, it tells that it will.
        if (!shown.isEmpty() || label == nullptr || !label->isVisible()) return;
        shown = label->text();
        covered = dialog.findChild<QStatusBar*>()->geometry().contains(button.geometry());
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }));
    EXPECT_EQ(shown, S(u"Testing..."));
    EXPECT_TRUE(covered) << "half a button is seen";
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.findChild<QStatusBar*>(), nullptr);
}

// A menu that is passed by the pointer tells the status bar nothing, which would wipe the text.
TEST_F(LongWorkTest, AResultStaysWhenThePointerMovesOverTheMenus) {
    window->TellResult(S(u"12 tables were added"));
    QStatusTipEvent nothing{QString()};
    QApplication::sendEvent(window.get(), &nothing);
    EXPECT_EQ(window->statusBar()->currentMessage(), S(u"12 tables were added"));
    window->statusBar()->clearMessage();
    EXPECT_EQ(Find<QLabel>(u"sbrDB_1")->toolTip(),
              S(u"1 Tables in list.\nLast: 12 tables were added"));
    window->RefreshTree();
    EXPECT_EQ(Find<QLabel>(u"sbrDB_1")->toolTip(),
              S(u"1 Tables in list.\nLast: 12 tables were added"));
}

}  // namespace
}  // namespace browser
