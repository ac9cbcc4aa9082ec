#include "platform/latest_task.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtTest/QTest>

#include <atomic>
#include <vector>

namespace platform {
namespace {

constexpr int kLimitMs = 30000;

// Works until it is stopped.
int WaitForStop(const std::stop_token& stop) {
    while (!stop.stop_requested())
        std::this_thread::yield();
    return 1;
}

class LatestTaskTest : public testing::Test {
protected:
    int arguments = 0;
    QCoreApplication application{arguments, nullptr};
};

TEST_F(LatestTaskTest, BringsItsAnswerHome) {
    LatestTask<int> task;
    EXPECT_FALSE(task.is_at_work());
    std::thread::id worked_in;
    std::thread::id done_in;
    int answer = 0;
    task.Start(
        [&worked_in](const std::stop_token&) {
            worked_in = std::this_thread::get_id();
            return 42;
        },
        [&](int brought) {
            done_in = std::this_thread::get_id();
            answer = brought;
        });
    EXPECT_TRUE(task.is_at_work());
    EXPECT_EQ(answer, 0);  // not before the event loop runs
    ASSERT_TRUE(QTest::qWaitFor([&] { return answer == 42; }, kLimitMs));
    EXPECT_FALSE(task.is_at_work());
    EXPECT_EQ(done_in, std::this_thread::get_id());
    EXPECT_NE(worked_in, done_in);
}

TEST_F(LatestTaskTest, OnlyTheNewestAnswers) {
    LatestTask<int> task;
    std::vector<int> answers;
    const auto done = [&answers](int answer) { answers.push_back(answer); };
    task.Start(WaitForStop, done);
    task.Start(WaitForStop, done);
    // Its answer is already under way when the next one is started.
    std::atomic<bool> has_worked = false;
    task.Start(
        [&has_worked](const std::stop_token&) {
            has_worked = true;
            return 2;
        },
        done);
    while (!has_worked)
        std::this_thread::yield();
    task.Start([](const std::stop_token&) { return 3; }, done);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !answers.empty(); }, kLimitMs));
    QTest::qWait(0);
    EXPECT_EQ(answers, std::vector<int>{3});
}

TEST_F(LatestTaskTest, AStoppedOneDoesNotAnswer) {
    LatestTask<int> task;
    bool answered = false;
    task.Start(WaitForStop, [&answered](int) { answered = true; });
    task.Stop();
    EXPECT_FALSE(task.is_at_work());
    {
        LatestTask<int> left;
        left.Start(WaitForStop, [&answered](int) { answered = true; });
    }
    bool is_over = false;
    task.Start([](const std::stop_token&) { return 0; }, [&is_over](int) { is_over = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return is_over; }, kLimitMs));
    EXPECT_FALSE(answered);
}

TEST_F(LatestTaskTest, TheEndOfOneMayStartTheNext) {
    LatestTask<int> task;
    int answer = 0;
    task.Start([](const std::stop_token&) { return 1; },
               [&](int first) {
                   task.Start([first](const std::stop_token&) { return first + 1; },
                              [&answer](int second) { answer = second; });
               });
    ASSERT_TRUE(QTest::qWaitFor([&] { return answer != 0; }, kLimitMs));
    EXPECT_EQ(answer, 2);
}

}  // namespace
}  // namespace platform
