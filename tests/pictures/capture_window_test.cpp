#include "pictures/frmPicture.h"

#include "catalogue/process_values.h"
#include "pictures/test_pictures.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtGui/QClipboard>
#include <QtGui/QKeyEvent>
#include <QtGui/QScreen>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QStatusBar>

namespace pictures {
namespace {

class CaptureWindowTest : public testing::Test {
protected:
    CaptureWindowTest() { values.ApplicationFolder = folder.path(); }
    ~CaptureWindowTest() override { QGuiApplication::clipboard()->clear(); }

    void PutOnClipboard(int width, int height) {
        QGuiApplication::clipboard()->setImage(test_pictures::Colourful(width, height));
    }
    QAction* Action(const char16_t* name) {
        return window.findChild<QAction*>(QString::fromUtf16(name));
    }

    test_support::TemporaryDir folder;
    catalogue::ProcessValues values;
    test_support::FakePrompts prompts;
    std::vector<QString> assigned;
    frmPicture window{values, prompts, [this](const QString& path) { assigned.push_back(path); }};
};

TEST_F(CaptureWindowTest, CaptionsAreInPlace) {
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Tavolo Capture"));
    const std::pair<const char16_t*, const char16_t*> captions[] = {
        {u"mnuSet", u"Save and Set"}, {u"MENU_SAVEAS", u"Save &Only.."},
        {u"mnuPaste", u"&Paste"},     {u"MENU_EXIT", u"E&xit"},
        {u"MENU_1", u"1:&1"},         {u"MENU_2", u"1:&2"},
        {u"MENU_4", u"1:&4"},         {u"MENU_8", u"1:&8"}};
    for (const auto& [name, caption] : captions) {
        ASSERT_NE(Action(name), nullptr);
        EXPECT_EQ(Action(name)->text(), QString::fromUtf16(caption));
    }
    EXPECT_EQ(window.findChild<QMenu*>(QStringLiteral("MENU_FILE"))->title(),
              QStringLiteral("&File"));
    EXPECT_EQ(window.findChild<QMenu*>(QStringLiteral("MENU_SIZE"))->title(),
              QStringLiteral("&Scale"));
}

TEST_F(CaptureWindowTest, ItFitsASmallScreen) {
    const QSize least = window.minimumSizeHint();
    EXPECT_LE(least.width(), 1000);
    EXPECT_LE(least.height(), 550);
    const QRect screen = window.screen()->availableGeometry();
    EXPECT_LT(window.width(), screen.width());
    EXPECT_LT(window.height(), screen.height());
}

TEST_F(CaptureWindowTest, CaptionAndStatusShowTheReducedSize) {
    PutOnClipboard(800, 600);
    window.OpenFor(QStringLiteral("Attack"));
    EXPECT_EQ(window.table_name(), QStringLiteral("Attack"));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Tavolo Capture - 800X600"));
    Action(u"MENU_4")->trigger();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Tavolo Capture - 200X150"));
    EXPECT_EQ(window.findChild<QStatusBar*>(QStringLiteral("StatusCtl"))->currentMessage(),
              QStringLiteral("200X150"));
    EXPECT_EQ(window.findChild<QWidget*>(QStringLiteral("view"))->size(), QSize(200, 150));
}

TEST_F(CaptureWindowTest, F2InThePictureSavesAndAssigns) {
    PutOnClipboard(64, 48);
    window.OpenFor({});
    window.show();
    const QString path = folder.filePath(QStringLiteral("shot.jpg"));
    prompts.files = {path};
    QTest::keyClick(window.findChild<QWidget*>(QStringLiteral("view")), Qt::Key_F2);
    EXPECT_EQ(assigned, std::vector<QString>{path});
    EXPECT_EQ(values.LastPictureDir, folder.prefix());
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(window.result(), QDialog::Accepted);
}

TEST_F(CaptureWindowTest, AnF2ThatIsHeldSavesOnceItIsReleased) {
    PutOnClipboard(64, 48);
    window.OpenFor({});
    window.show();
    prompts.files = {folder.filePath(QStringLiteral("shot.jpg"))};
    QKeyEvent repeated(QEvent::KeyRelease, Qt::Key_F2, Qt::NoModifier, {}, true);
    QApplication::sendEvent(window.findChild<QWidget*>(QStringLiteral("view")), &repeated);
    EXPECT_TRUE(assigned.empty());
    EXPECT_TRUE(window.isVisible());
    QKeyEvent released(QEvent::KeyRelease, Qt::Key_F2, Qt::NoModifier);
    QApplication::sendEvent(window.findChild<QWidget*>(QStringLiteral("view")), &released);
    EXPECT_EQ(assigned.size(), 1U);
}

TEST_F(CaptureWindowTest, CancelledSaveAndSetLeavesWindowAndRecord) {
    PutOnClipboard(64, 48);
    values.LastPictureDir = QStringLiteral("/before/");
    window.OpenFor({});
    window.show();
    window.SaveAndSet();
    EXPECT_TRUE(assigned.empty());
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(values.LastPictureDir, QStringLiteral("/before/"));
}

TEST_F(CaptureWindowTest, SaveOnlyClosesAndKeepsTheFolder) {
    PutOnClipboard(64, 48);
    values.LastPictureDir = QStringLiteral("/before/");
    window.OpenFor({});
    window.show();
    prompts.files = {folder.filePath(QStringLiteral("shot.jpg"))};
    Action(u"MENU_SAVEAS")->trigger();
    EXPECT_FALSE(window.isVisible());
    EXPECT_TRUE(assigned.empty());
    EXPECT_EQ(values.LastPictureDir, QStringLiteral("/before/"));
}

TEST_F(CaptureWindowTest, CancelledSaveOnlyEmptiesTheFolder) {
    PutOnClipboard(64, 48);
    values.LastPictureDir = QStringLiteral("/before/");
    window.OpenFor({});
    window.show();
    Action(u"MENU_SAVEAS")->trigger();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(values.LastPictureDir, QString());
}

TEST_F(CaptureWindowTest, WithoutAPictureTheCommandSaysSo) {
    QGuiApplication::clipboard()->setText(QStringLiteral("words"));
    LoadPictureFromClipboard(
        values, prompts, QStringLiteral("Attack"), [](const QString&) {}, nullptr);
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, QStringLiteral("No valid Image in the clipboard"));
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kInformation);
}

}  // namespace
}  // namespace pictures
