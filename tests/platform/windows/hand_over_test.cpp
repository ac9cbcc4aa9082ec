#include "platform/hand_over.h"

#include "platform/files.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>

#include <future>
#include <optional>

namespace {

using test_support::WaitFor;

class HandOverTest : public testing::Test {
protected:
    // From another thread, as from another process.
    base::Status Give(const QString& folder, const QString& path) {
        auto given = std::async(std::launch::async,
                                [&] { return platform::HandPathOver(folder, path, 5000); });
        EXPECT_TRUE(WaitFor([&] {
            QCoreApplication::processEvents();
            return given.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        }));
        return given.get();
    }

    int argument_count_ = 0;
    QCoreApplication application_{argument_count_, nullptr};
    QTemporaryDir temporary_;
    const QString folder_ = platform::RealPath(temporary_.path());
};

TEST_F(HandOverTest, APathReachesTheReceiverOfItsFolder) {
    std::optional<QString> taken;
    const auto receiver = platform::ReceivePaths(folder_, [&](const QString& path) {
        taken = path;
        return true;
    });
    ASSERT_TRUE(receiver.ok()) << receiver.status().message();
    const QString path = QStringLiteral("C:\\Tables\\Grüße 漢.vpt");
    const base::Status given = Give(folder_.toUpper(), path);
    EXPECT_TRUE(given.ok()) << given.message();
    EXPECT_EQ(taken, path);
    EXPECT_TRUE(Give(folder_, QString()).ok());
    EXPECT_EQ(taken, QString());
}

TEST_F(HandOverTest, WhatIsNotTakenIsSaid) {
    const auto receiver = platform::ReceivePaths(folder_, [](const QString&) { return false; });
    ASSERT_TRUE(receiver.ok());
    EXPECT_EQ(Give(folder_, QStringLiteral("C:\\a.vpt")).code(), base::StatusCode::kBusy);
}

TEST_F(HandOverTest, NobodyListensForAnotherFolder) {
    EXPECT_EQ(Give(folder_, QStringLiteral("C:\\a.vpt")).code(), base::StatusCode::kNotFound);
}

TEST_F(HandOverTest, ASecondReceiverIsRefused) {
    const auto first = platform::ReceivePaths(folder_, [](const QString&) { return true; });
    ASSERT_TRUE(first.ok());
    const auto second = platform::ReceivePaths(folder_, [](const QString&) { return true; });
    EXPECT_EQ(second.status().code(), base::StatusCode::kBusy);
}

}  // namespace
