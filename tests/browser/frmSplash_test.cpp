#include "browser/frmSplash.h"

#include <gtest/gtest.h>

#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>

namespace browser {
namespace {

QWidget* Splash() {
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget* const window : windows)
        if (window->objectName() == u"frmSplash" && window->isVisible()) return window;
    return nullptr;
}

QString TextOf(const QString& label) {
    return Splash()->findChild<QLabel*>(label)->text();
}

TEST(SplashTest, SaysWhatIsGoingOnAtOnce) {
    QWidget owner;
    owner.show();
    SplashDisplay splash(&owner);
    splash.Show(QStringLiteral("Attack & Co"));
    ASSERT_TRUE(Splash());
    EXPECT_EQ(TextOf(QStringLiteral("lblStat")), QStringLiteral("Attack & Co"));
    EXPECT_EQ(TextOf(QStringLiteral("Label1")), QStringLiteral("Please Wait..."));
    EXPECT_EQ(TextOf(QStringLiteral("lblCompanyProduct")), QStringLiteral("Starting:"));
    EXPECT_FALSE(Splash()->isModal());
}

TEST(SplashTest, AnotherTextStandsInTheSameWindow) {
    SplashDisplay splash(nullptr);
    splash.Show(QStringLiteral("one"));
    QWidget* const first = Splash();
    splash.Show(QStringLiteral("two"));
    EXPECT_EQ(Splash(), first);
    EXPECT_EQ(TextOf(QStringLiteral("lblStat")), QStringLiteral("two"));
}

TEST(SplashTest, UnloadingTakesItAway) {
    SplashDisplay splash(nullptr);
    splash.Show(QStringLiteral("one"));
    splash.Unload();
    EXPECT_FALSE(Splash());
    splash.Unload();  // does nothing the second time
    splash.Show(QStringLiteral("two"));
    EXPECT_TRUE(Splash());
}

TEST(SplashTest, TheWindowMayEndBeforeItsDisplay) {
    auto owner = std::make_unique<QWidget>();
    SplashDisplay splash(owner.get());
    splash.Show(QStringLiteral("one"));
    owner.reset();
    splash.Unload();
    EXPECT_FALSE(Splash());
}

}  // namespace
}  // namespace browser
