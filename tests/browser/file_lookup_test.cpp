#include "browser/file_lookup.h"

#include "support/qt_text.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <QtTest/QSignalSpy>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace browser {
namespace {

using test_support::S;

// A drive that does not respond until the test releases it. Waits for the lookup's threads at the
// end, because they use it.
class HangingDrive {
public:
    ~HangingDrive() {
        Answer();
        EXPECT_TRUE(test_support::WaitFor([this] { return running_ == 0; }));
    }
    FileLookup::FileTest Test() {
        return [this](const QString& path) {
            ++running_;
            const bool is_there = Ask(path);
            --running_;
            return is_there;
        };
    }
    void Answer() {
        const std::lock_guard lock(mutex_);
        answers_ = true;
        changed_.notify_all();
    }
    bool IsAsked() const { return running_ > 0; }

private:
    bool Ask(const QString& path) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return answers_; });
        return path != u"gone";
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    bool answers_ = false;
    std::atomic<int> running_ = 0;
};

TEST(FileLookupTest, AnswersAreSignals) {
    FileLookup lookup([](const QString& path) { return path == u"there"; });
    QSignalSpy answers(&lookup, &FileLookup::Answered);
    lookup.Ask(7, S(u"there"));
    ASSERT_TRUE(answers.wait());
    EXPECT_EQ(answers.takeFirst(),
              QVariantList({QVariant::fromValue<std::size_t>(7), S(u"there"), true}));
    lookup.Ask(8, S(u"gone"));
    ASSERT_TRUE(answers.wait());
    EXPECT_EQ(answers.takeFirst(),
              QVariantList({QVariant::fromValue<std::size_t>(8), S(u"gone"), false}));
}

TEST(FileLookupTest, TheFileSystemIsAskedInAnotherThread) {
    std::atomic<bool> same_thread = true;
    const auto here = std::this_thread::get_id();
    FileLookup lookup([&](const QString&) {
        same_thread = std::this_thread::get_id() == here;
        return true;
    });
    QSignalSpy answers(&lookup, &FileLookup::Answered);
    lookup.Ask(1, S(u"a"));
    ASSERT_TRUE(answers.wait());
    EXPECT_FALSE(same_thread);
}

TEST(FileLookupTest, ADriveThatHangsHoldsUpNeitherAQuestionNorTheEnd) {
    HangingDrive drive;
    {
        FileLookup lookup(drive.Test());
        lookup.Ask(1, S(u"a"));
        ASSERT_TRUE(test_support::WaitFor([&] { return drive.IsAsked(); }));
        lookup.Ask(2, S(u"b"));
    }
    EXPECT_TRUE(drive.IsAsked());  // the lookup has been destroyed, its test goes on
}

TEST(FileLookupTest, TheLatestQuestionIsPutFirst) {
    HangingDrive drive;
    FileLookup lookup(drive.Test());
    QSignalSpy answers(&lookup, &FileLookup::Answered);
    lookup.Ask(1, S(u"a"));
    ASSERT_TRUE(test_support::WaitFor([&] { return drive.IsAsked(); }));
    for (std::size_t key = 2; key <= 4; ++key)
        lookup.Ask(key, S(u"a"));
    drive.Answer();
    while (answers.count() < 4)
        ASSERT_TRUE(answers.wait());
    QList<int> order;
    for (const auto& answer : answers)
        order.append(answer[0].toInt());
    EXPECT_EQ(order, QList<int>({1, 4, 3, 2}));
}

TEST(FileLookupTest, AForgottenQuestionIsNotAnsweredAndHoldsUpNoLaterOne) {
    HangingDrive drive;
    std::atomic<bool> hangs = true;
    FileLookup lookup(
        [&, ask = drive.Test()](const QString& path) { return hangs ? ask(path) : true; });
    QSignalSpy answers(&lookup, &FileLookup::Answered);
    lookup.Ask(1, S(u"a"));
    ASSERT_TRUE(test_support::WaitFor([&] { return drive.IsAsked(); }));
    lookup.Forget();
    hangs = false;
    lookup.Ask(2, S(u"b"));
    ASSERT_TRUE(answers.wait());
    drive.Answer();
    EXPECT_TRUE(test_support::WaitFor([&] { return !drive.IsAsked(); }));
    lookup.Ask(3, S(u"c"));
    ASSERT_TRUE(answers.wait());
    ASSERT_EQ(answers.count(), 2);
    EXPECT_EQ(answers[0][0].toInt(), 2);
    EXPECT_EQ(answers[1][0].toInt(), 3);
}

TEST(FileLookupTest, AnAnswerThatWaitsToBeTakenIsForgottenToo) {
    std::atomic<int> asked = 0;
    FileLookup lookup([&](const QString&) {
        ++asked;
        return true;
    });
    QSignalSpy answers(&lookup, &FileLookup::Answered);
    lookup.Ask(1, S(u"a"));
    lookup.Ask(2, S(u"b"));
    // The first result is in the event queue when the second test is requested.
    ASSERT_TRUE(test_support::WaitFor([&] { return asked == 2; }));
    lookup.Forget();
    lookup.Ask(3, S(u"c"));
    ASSERT_TRUE(answers.wait());
    ASSERT_EQ(answers.count(), 1);
    EXPECT_EQ(answers[0][0].toInt(), 3);
}

}  // namespace
}  // namespace browser
