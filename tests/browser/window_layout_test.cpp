#include "browser/window_layout.h"

#include "support/fakes.h"

#include <gtest/gtest.h>

namespace browser {
namespace {

class WindowLayoutTest : public testing::Test {
protected:
    void Store(const QString& key, const QString& value) {
        store.values[QStringLiteral("TAVOLO/WINDOW/") + key] = value;
    }
    test_support::FakeSettings store;
};

TEST_F(WindowLayoutTest, WhatIsWrittenIsReadAgain) {
    const WindowLayout layout{QPoint(-40, 120), {300, 500}, true, 208};
    EXPECT_TRUE(WriteLayout(store, layout).ok());
    EXPECT_EQ(ReadLayout(store), layout);
    EXPECT_TRUE(store.written.empty()) << "nothing among the settings";
}

TEST_F(WindowLayoutTest, NothingIsLaidOutAtFirst) {
    EXPECT_EQ(ReadLayout(store), WindowLayout());
    EXPECT_TRUE(WriteLayout(store, {}).ok());
    EXPECT_TRUE(store.values.isEmpty());
}

TEST_F(WindowLayoutTest, RubbishIsLeftOut) {
    for (const char16_t* text : {u"here", u"1", u"1 2 3", u"1 99999999", u"1 x", u""}) {
        Store(QStringLiteral("POSITION"), QString::fromUtf16(text));
        Store(QStringLiteral("SPLITTER"), QString::fromUtf16(text));
        EXPECT_EQ(ReadLayout(store), WindowLayout()) << QString::fromUtf16(text).toStdString();
    }
    for (const char16_t* text : {u"1", u"true", u"0", u"-5", u"wide"}) {
        Store(QStringLiteral("WALL"), QString::fromUtf16(text));
        EXPECT_FALSE(ReadLayout(store).shows_wall);
    }
    for (const char16_t* text : {u"0", u"-5", u"wide", u"1 2"}) {
        Store(QStringLiteral("PICTUREWIDTH"), QString::fromUtf16(text));
        EXPECT_FALSE(ReadLayout(store).picture_width);
    }
    Store(QStringLiteral("SPLITTER"), QStringLiteral("0 500"));
    EXPECT_TRUE(ReadLayout(store).splitter.isEmpty()) << "a side that cannot be seen";
}

TEST_F(WindowLayoutTest, AFailureIsTold) {
    store.failure = {base::StatusCode::kIoError, "no room"};
    EXPECT_EQ(WriteLayout(store, {QPoint(1, 1), {3, 4}, {}, {}}).message(), "no room");
}

}  // namespace
}  // namespace browser
