#include "platform/termination.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtTest/QTest>

#include <csignal>

namespace platform {
namespace {

TEST(TerminationTest, EachWayToAskIsHeardInTheEventLoop) {
    int arguments = 0;
    QCoreApplication application(arguments, nullptr);
    int heard = 0;
    {
        const auto watch = WatchTermination([&] { ++heard; });
        ASSERT_TRUE(watch);
        for (const int asked : {SIGTERM, SIGHUP, SIGINT}) {
            const int before = heard;
            ASSERT_EQ(std::raise(asked), 0);
            EXPECT_EQ(heard, before) << "not inside of whatever was interrupted";
            EXPECT_TRUE(QTest::qWaitFor([&] { return heard > before; })) << asked;
        }
    }
    struct sigaction after {};
    sigaction(SIGTERM, nullptr, &after);
    EXPECT_EQ(after.sa_handler, SIG_DFL) << "as it was before";
}

}  // namespace
}  // namespace platform
