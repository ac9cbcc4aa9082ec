#include "app/session_end.h"

#include <gtest/gtest.h>

#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QDialog>

namespace app {
namespace {

TEST(SessionEndTest, ItComesAtOnceWhenNothingIsInItsWay) {
    int ends = 0;
    SessionEnd end([] { return false; }, [&] { ++ends; });
    end.Request();
    EXPECT_EQ(ends, 1);
    end.Request();
    QCoreApplication::processEvents();
    EXPECT_EQ(ends, 1);
}

TEST(SessionEndTest, AnOrderToQuitIsARequest) {
    int ends = 0;
    SessionEnd end([] { return false; }, [&] { ++ends; });
    QEvent before(QEvent::User);
    end.TakeQuitOrders();
    QCoreApplication::sendEvent(qApp, &before);
    EXPECT_EQ(ends, 0);
    QEvent order(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &order);
    EXPECT_EQ(ends, 1);
}

TEST(SessionEndTest, ACommandAtWorkIsWaitedFor) {
    int ends = 0;
    int asked = 0;
    SessionEnd end([&] { return ++asked < 4; }, [&] { ++ends; });
    end.Request();
    EXPECT_EQ(ends, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ends > 0; }));
    EXPECT_EQ(asked, 4);
}

TEST(SessionEndTest, DialogsAreClosedButNotThoseAtWork) {
    QDialog at_work;
    at_work.setModal(true);
    at_work.setProperty("busy", true);
    at_work.show();
    QDialog above(&at_work);
    above.setModal(true);
    above.show();
    int ends = 0;
    SessionEnd end([] { return false; }, [&] { ++ends; });
    end.Request();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !above.isVisible(); }));
    QTimer meanwhile;
    QSignalSpy passes(&meanwhile, &QTimer::timeout);
    meanwhile.start(60);
    EXPECT_TRUE(QTest::qWaitFor([&] { return passes.count() >= 3; }));
    EXPECT_TRUE(at_work.isVisible());
    EXPECT_EQ(ends, 0);
    at_work.setProperty("busy", false);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ends == 1; }));
    EXPECT_FALSE(at_work.isVisible());
}

}  // namespace
}  // namespace app
