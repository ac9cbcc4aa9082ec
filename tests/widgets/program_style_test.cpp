#include "widgets/program_style.h"

#include "widgets/program_palette.h"
#include "widgets/svg_icon.h"

#include <gtest/gtest.h>

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyleFactory>

namespace widgets {
namespace {

// Those that are no standard ones by their names, when they are shown.
TEST(ProgramStyleTest, TheButtonsOfARowHaveIconsOfTheProgramsFamily) {
    QApplication::setStyle(new ProgramStyle);
    {
        QDialogButtonBox row(QDialogButtonBox::Ok | QDialogButtonBox::Close |
                             QDialogButtonBox::Cancel);
        auto* const restore = new QPushButton(QStringLiteral("Restore"), &row);
        restore->setObjectName(QStringLiteral("cmdRestore"));
        row.addButton(restore, QDialogButtonBox::AcceptRole);
        row.show();
        ASSERT_EQ(row.buttons().size(), 4);
        for (const QAbstractButton* button : row.buttons())
            EXPECT_TRUE(button->icon().name().startsWith(kSvgIconPrefix))
                << button->text().toStdString();
    }
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

class StyleTest : public testing::Test {
protected:
    void SetUp() override { QApplication::setStyle(new ProgramStyle); }
    void TearDown() override {
        QApplication::setPalette(QPalette());
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    }
    static QImage Drawn(const char* key, QIcon::Mode mode = QIcon::Normal) {
        return SvgIcon(QLatin1String(key)).pixmap(QSize(32, 32), 1.0, mode).toImage();
    }
    // The colour of the most opaque pixel.
    static QColor Ink(const QImage& image) {
        QColor ink(Qt::transparent);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y).alpha() > ink.alpha()) ink = image.pixelColor(x, y);
        return ink;
    }
};

TEST_F(StyleTest, WhatQtsWindowsShowIsOfTheProgramsFamily) {
    for (const auto which :
         {QStyle::SP_MessageBoxInformation, QStyle::SP_MessageBoxWarning,
          QStyle::SP_MessageBoxCritical, QStyle::SP_MessageBoxQuestion, QStyle::SP_DirIcon,
          QStyle::SP_FileIcon, QStyle::SP_FileDialogToParent, QStyle::SP_FileDialogBack,
          QStyle::SP_ArrowForward, QStyle::SP_FileDialogNewFolder, QStyle::SP_FileDialogListView,
          QStyle::SP_FileDialogDetailedView, QStyle::SP_LineEditClearButton,
          QStyle::SP_ComputerIcon, QStyle::SP_DirHomeIcon, QStyle::SP_DialogOkButton,
          QStyle::SP_DialogCancelButton, QStyle::SP_ToolBarHorizontalExtensionButton}) {
        const QIcon icon = QApplication::style()->standardIcon(which);
        EXPECT_TRUE(icon.name().startsWith(kSvgIconPrefix)) << which;
        EXPECT_FALSE(icon.pixmap(16, 16).toImage().isNull()) << which;
    }
}

TEST_F(StyleTest, AnIconHasTheColourOfTheTextsAndFollowsIt) {
    EXPECT_TRUE(SvgIcon(QStringLiteral("no such")).isNull());
    const QIcon kept = SvgIcon(QStringLiteral("back"));
    EXPECT_EQ(Ink(kept.pixmap(32, 32).toImage()),
              QApplication::palette().color(QPalette::WindowText));
    const QImage star = Drawn("favorite");
    QApplication::setPalette(DarkPalette());
    EXPECT_EQ(Ink(kept.pixmap(32, 32).toImage()), DarkPalette().color(QPalette::WindowText));
    EXPECT_EQ(Drawn("favorite"), star);  // which has its own
}

TEST_F(StyleTest, AnIconIsFaintWhereItIsDisabledAndSharpAtEachSize) {
    EXPECT_LT(Ink(Drawn("back", QIcon::Disabled)).alpha(), 140);
    EXPECT_EQ(SvgIcon(QStringLiteral("back")).pixmap(QSize(16, 16), 3.0).size(), QSize(48, 48));
}

// The figures of the guidelines' own examples.
TEST_F(StyleTest, ContrastIsWhatTheGuidelinesSay) {
    EXPECT_DOUBLE_EQ(ContrastOf(Qt::black, Qt::white), 21.0);
    EXPECT_DOUBLE_EQ(ContrastOf(Qt::white, Qt::white), 1.0);
    EXPECT_NEAR(ContrastOf(QColor(0x76, 0x76, 0x76), Qt::white), 4.54, 0.01);
    EXPECT_NEAR(ContrastOf(Qt::red, Qt::white), 4.0, 0.01);
}

TEST_F(StyleTest, AColourIsMovedOnlyAsFarAsItMustBe) {
    const QColor grey(0x76, 0x76, 0x76);
    EXPECT_EQ(MovedAwayFrom(grey, Qt::white), grey);
    const QColor moved = MovedAwayFrom(QColor(0x99, 0x99, 0x99), Qt::white);
    EXPECT_GE(ContrastOf(moved, Qt::white), kLeastContrast);
    EXPECT_LT(ContrastOf(moved, Qt::white), kLeastContrast + 0.3);
    // To the other side, where there is no room on this one.
    EXPECT_GE(
        ContrastOf(MovedAwayFrom(Qt::white, QColor(0xc0, 0xc0, 0xc0)), QColor(0xc0, 0xc0, 0xc0)),
        kLeastContrast);
    EXPECT_EQ(Blended(QColor(0, 0, 0, 51), Qt::white), QColor(204, 204, 204));
}

TEST_F(StyleTest, IconsAndBoxesGrowWithTheLetters) {
    QCheckBox box;
    const auto side = [&](QStyle::PixelMetric metric) {
        return QApplication::style()->pixelMetric(metric, nullptr, &box);
    };
    const int icon = side(QStyle::PM_SmallIconSize);
    EXPECT_EQ(icon, 16);
    QFont large = box.font();
    large.setPointSizeF(large.pointSizeF() * 3);
    box.setFont(large);
    EXPECT_GT(side(QStyle::PM_SmallIconSize), 2 * icon);
    EXPECT_EQ(side(QStyle::PM_IndicatorWidth), side(QStyle::PM_SmallIconSize));
    EXPECT_LE(side(QStyle::PM_IndicatorWidth), box.fontMetrics().height());
}

TEST_F(StyleTest, AnEmptyBoxIsSeenOnEveryGround) {
    for (const QPalette& palette : {QApplication::palette(), DarkPalette()}) {
        QCheckBox box;
        box.setPalette(palette);
        const QImage image = box.grab().toImage();
        const QColor ground = palette.color(QPalette::Window);
        double most = 0;
        for (int x = 0; x < 12; ++x)
            most = std::max(most, ContrastOf(image.pixelColor(x, image.height() / 2), ground));
        constexpr double kLeastOfFrames = 3;
        EXPECT_GE(most, kLeastOfFrames) << ground.name().toStdString();
    }
}

TEST_F(StyleTest, DarkWindowsAreMadeAndTakenBack) {
    auto* const style = new ProgramStyle;
    QApplication::setStyle(style);
    const QPalette light = QApplication::palette();
    QWidget window;
    style->SetDark(true);
    EXPECT_TRUE(IsDark(QApplication::palette()));
    EXPECT_TRUE(QTest::qWaitFor([&] { return IsDark(window.palette()); }));
    style->SetDark(false);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), light.color(QPalette::Window));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !IsDark(window.palette()); }));
}

TEST_F(StyleTest, TheDesktopsColoursAreMadeReadable) {
    QPalette faint = DarkPalette();
    faint.setColor(QPalette::Text, QColor(0x50, 0x50, 0x50));
    faint.setColor(QPalette::PlaceholderText, QColor(255, 255, 255, 60));
    faint.setColor(QPalette::Highlight, QColor(0x3d, 0xae, 0xe9));
    QApplication::style()->polish(faint);
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        const auto contrast = [&](QPalette::ColorRole text, QPalette::ColorRole ground) {
            return ContrastOf(faint.color(group, text), faint.color(group, ground));
        };
        EXPECT_GE(contrast(QPalette::Text, QPalette::Base), kLeastContrast);
        EXPECT_GE(contrast(QPalette::Text, QPalette::AlternateBase), kLeastContrast);
        EXPECT_GE(contrast(QPalette::PlaceholderText, QPalette::Base), kLeastContrast);
        EXPECT_GE(contrast(QPalette::HighlightedText, QPalette::Highlight), kLeastContrast);
        EXPECT_EQ(faint.color(group, QPalette::HighlightedText), QColor(Qt::white));
    }
}

// As Windows has it: light grey with black letters on white.
TEST_F(StyleTest, ASelectionIsSeenInAWindowWithoutTheKeyboard) {
    QPalette palette(Qt::lightGray);
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Active, QPalette::Highlight, QColor(0x00, 0x78, 0xd7));
    palette.setColor(QPalette::Active, QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, QColor(0xf0, 0xf0, 0xf0));
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText, Qt::black);
    MakeReadable(palette);
    for (const auto role : {QPalette::Highlight, QPalette::HighlightedText})
        EXPECT_EQ(palette.color(QPalette::Inactive, role), palette.color(QPalette::Active, role));
    // What is seen stays as the desktop has it.
    palette.setColor(QPalette::Inactive, QPalette::Highlight, QColor(0xc0, 0xc0, 0xc0));
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText, Qt::black);
    MakeReadable(palette);
    EXPECT_EQ(palette.color(QPalette::Inactive, QPalette::Highlight), QColor(0xc0, 0xc0, 0xc0));
}

}  // namespace
}  // namespace widgets
