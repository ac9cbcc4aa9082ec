// What holds for every window of the program: names for assistive technology, texts that are whole
// and can be read, the program's own icons, the Tab key and the way out.
#include "app/every_window.h"
#include "app/window_walk.h"
#include "browser/picture_wall.h"
#include "support/offscreen_letters.h"
#include "support/temporary_dir.h"
#include "widgets/program_palette.h"
#include "widgets/program_style.h"
#include "widgets/svg_icon.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtCore/QTemporaryFile>
#include <QtGui/QAction>
#include <QtGui/QImage>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QToolButton>

#include <algorithm>

namespace {

using test_support::EveryWindow;

// Keeps the picture of a window to be looked at.
void Keep(const QImage& image, const QString& folder, const QString& window) {
    const QDir pictures(QStringLiteral(TAVOLO_PICTURES) + u'/' + folder);
    ASSERT_TRUE(pictures.mkpath(QStringLiteral(".")));
    EXPECT_TRUE(image.save(pictures.filePath(window + QStringLiteral(".png"))));
}

class WindowsTest : public EveryWindow {
protected:
    using Walk = QStringList (*)(QWidget&);

    void ExpectNothing(Walk walk) {
        ForEach([walk](const QString& name, QWidget& shown) {
            const QStringList wrong = walk(shown);
            EXPECT_TRUE(wrong.isEmpty()) << name.toStdString() << ":\n  "
                                         << wrong.join(QStringLiteral("\n  ")).toStdString();
        });
    }
};

TEST_F(WindowsTest, EveryControlHasANameARoleAndItsLabel) {
    ExpectNothing(test_support::NamelessControls);
}

TEST_F(WindowsTest, EveryIconIsOfTheProgramsFamily) {
    ExpectNothing(test_support::ForeignIcons);
}

TEST_F(WindowsTest, TheButtonsOfARowHaveIconsAllOrNone) {
    ExpectNothing(test_support::TornRows);
}

TEST_F(WindowsTest, AllSpacesAreOfOneGrid) {
    ExpectNothing(test_support::OffTheGrid);
}

TEST_F(WindowsTest, TabReachesEveryControlOnce) {
    ExpectNothing(test_support::LostToTheTabKey);
}

TEST_F(WindowsTest, EscapeLeavesEveryDialog) {
    ForEach([](const QString& name, QWidget& shown) {
        const bool is_left_otherwise = name.startsWith(u"main") || name == u"welcome" ||
                                       name == u"splash" ||
                                       name == u"checksums";  // by Exit; with what it tells of
        if (is_left_otherwise) return;
        const QPointer<QWidget> dialog(&shown);
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog)) << name.toStdString();
        QTest::keyClick(dialog, Qt::Key_Escape);
        EXPECT_TRUE(dialog.isNull() || !dialog->isVisible()) << name.toStdString();
    });
}

TEST_F(WindowsTest, AtFirstTheDetailsNeedNotBeScrolledSideways) {
    OpenMainWindow();
    auto* const tabs = window->findChild<QWidget*>(QStringLiteral("DetTab"));
    const auto* const details = tabs->findChild<QScrollArea*>();
    EXPECT_EQ(details->horizontalScrollBar()->maximum(), 0);
}

TEST_F(WindowsTest, AtFirstAllTabsAreSeenAndTwoColumnsOfPictures) {
    OpenMainWindow();
    const auto* const tabs = window->findChild<QTabWidget*>(QStringLiteral("DetTab"))->tabBar();
    EXPECT_LE(tabs->tabRect(tabs->count() - 1).right(), tabs->width());
    for (const auto* const scroll : tabs->findChildren<QToolButton*>())
        EXPECT_FALSE(scroll->isVisible());
    window->findChild<QAction*>(QStringLiteral("mnuWall"))->trigger();
    const auto* const wall = window->findChild<browser::PictureWall*>();
    EXPECT_GE(wall->cells().columns, 2);
}

class FontsTest : public WindowsTest, public testing::WithParamInterface<int> {};

TEST_P(FontsTest, NoTextIsCut) {
    UseFonts(GetParam());
    ExpectNothing(test_support::CutTexts);
}

TEST_F(WindowsTest, PicturesWithLargeLetters) {
    UseFonts(200);
    ForEach([](const QString& name, QWidget& shown) {
        Keep(shown.grab().toImage(), QStringLiteral("large-letters"), name);
    });
}

INSTANTIATE_TEST_SUITE_P(Percent, FontsTest, testing::Values(100, 150, 200),
                         [](const auto& tested) { return std::to_string(tested.param); });

enum class Scheme { kLight, kDark };

class LooksTest : public WindowsTest, public testing::WithParamInterface<Scheme> {
protected:
    void SetUp() override {
        WindowsTest::SetUp();
        if (GetParam() == Scheme::kDark) UseDark();
    }
};

TEST_P(LooksTest, EveryTextCanBeRead) {
    ExpectNothing(test_support::FaintTexts);
}

// The share of pixels that are nearly white.
double Glare(const QImage& shown) {
    constexpr uchar kBright = 200;
    const QImage image = shown.convertToFormat(QImage::Format_Grayscale8);
    std::ptrdiff_t bright = 0;
    for (int y = 0; y < image.height(); ++y) {
        const uchar* const line = image.constScanLine(y);
        bright +=
            std::count_if(line, line + image.width(), [](uchar grey) { return grey > kBright; });
    }
    return double(bright) / (double(image.width()) * image.height());
}

// They are kept to be looked at: one of every window.
TEST_P(LooksTest, Pictures) {
    const bool is_dark = GetParam() == Scheme::kDark;
    const QString name = QStringLiteral("%1-%2x")
                             .arg(is_dark ? QStringLiteral("dark") : QStringLiteral("light"))
                             .arg(qRound(qApp->devicePixelRatio()));
    ForEach([&](const QString& window_name, QWidget& shown) {
        const QImage image = shown.grab().toImage();
        Keep(image, name, window_name);
        constexpr double kMostGlare = 0.05;
        if (is_dark) {
            EXPECT_LT(Glare(image), kMostGlare) << window_name.toStdString();
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Ground, LooksTest, testing::Values(Scheme::kLight, Scheme::kDark),
                         [](const auto& tested) {
                             return tested.param == Scheme::kDark ? "Dark" : "Light";
                         });

TEST_F(WindowsTest, AChangeToDarkIsFollowedAtOnce) {
    OpenMainWindow();
    const QImage light = window->grab().toImage();
    UseDark();
    EXPECT_GT(Glare(light), 0.5);
    EXPECT_TRUE(QTest::qWaitFor([this] { return Glare(window->grab().toImage()) < 0.05; }));
    EXPECT_EQ(test_support::FaintTexts(*window), QStringList());
}

// The walks themselves: each finds what it is there for.

class WalkTest : public testing::Test {
protected:
    void SetUp() override { QApplication::setStyle(new widgets::ProgramStyle); }
    template <typename Widget>
    Widget* Add(Widget* widget) {
        row->addWidget(widget);
        return widget;
    }
    static std::size_t Count(const QStringList& lines) {
        return static_cast<std::size_t>(lines.size());
    }
    QWidget window;
    QHBoxLayout* row = new QHBoxLayout(&window);
};

TEST_F(WalkTest, AFieldWithoutANameIsFoundAndOneBesideALabelThatDoesNotKnowIt) {
    Add(new QLabel(QStringLiteral("Name")));
    auto* const field = Add(new QLineEdit);
    window.show();
    EXPECT_EQ(Count(test_support::NamelessControls(window)), 3U);
    window.findChild<QLabel*>()->setBuddy(field);
    EXPECT_EQ(Count(test_support::NamelessControls(window)), 0U);
}

TEST_F(WalkTest, ACutTextIsFound) {
    Add(new QLabel(QStringLiteral("A label")))->setFixedWidth(10);
    Add(new QPushButton(QStringLiteral("A button")))->setFixedWidth(20);
    Add(new QPushButton(QStringLiteral("A button")));
    window.show();
    EXPECT_EQ(Count(test_support::CutTexts(window)), 2U);
}

TEST_F(WalkTest, AFaintTextIsFound) {
    auto* const label = Add(new QLabel(QStringLiteral("A label")));
    window.show();
    EXPECT_EQ(Count(test_support::FaintTexts(window)), 0U);
    QPalette faint = label->palette();
    faint.setColor(QPalette::WindowText, Qt::red);
    label->setPalette(faint);
    EXPECT_EQ(Count(test_support::FaintTexts(window)), 1U);
}

TEST_F(WalkTest, ASpaceOfAnotherGridIsFound) {
    Add(new QLabel(QStringLiteral("A label")));
    window.show();
    EXPECT_EQ(Count(test_support::OffTheGrid(window)), 0U);
    row->setContentsMargins(3, 6, 9, 10);
    EXPECT_EQ(Count(test_support::OffTheGrid(window)), 1U);
}

TEST_F(WalkTest, AForeignIconIsFound) {
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::red);
    Add(new QPushButton(QIcon(pixmap), QStringLiteral("A button")));
    window.show();
    EXPECT_EQ(Count(test_support::ForeignIcons(window)), 1U);
}

TEST_F(WalkTest, ATornRowIsFound) {
    Add(new QPushButton(QStringLiteral("A button")));
    auto* const other = Add(new QPushButton(QStringLiteral("Another")));
    window.show();
    EXPECT_EQ(Count(test_support::TornRows(window)), 0U);
    other->setIcon(widgets::SvgIcon(QStringLiteral("back")));
    EXPECT_EQ(Count(test_support::TornRows(window)), 1U);
}

TEST_F(WalkTest, AControlOutsideOfTheTabOrderIsFound) {
    for (int i = 0; i < 4; ++i)
        Add(new QLineEdit);
    const auto fields = window.findChildren<QLineEdit*>();
    window.show();
    EXPECT_EQ(Count(test_support::LostToTheTabKey(window)), 0U);
    // The third leads back to the second.
    QObject::connect(qApp, &QApplication::focusChanged, &window, [fields](QWidget*, QWidget* now) {
        if (now == fields[3]) fields[1]->setFocus();
    });
    EXPECT_EQ(Count(test_support::LostToTheTabKey(window)), 2U);
}

}  // namespace

// A screen of an ordinary size; without this it has 800x800 pixels.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QTemporaryFile screens(QStringLiteral("screens-XXXXXX.json"));
    if (!screens.open()) return 1;
    const int scale = std::max(1, qEnvironmentVariableIntValue("QT_SCALE_FACTOR"));
    screens.write(QStringLiteral("{\"screens\": [{\"name\": \"screen\", \"x\": 0, \"y\": 0, "
                                 "\"width\": %1, \"height\": %2, \"logicalDpi\": 96, "
                                 "\"logicalBaseDpi\": 96, \"dpr\": 1}]}")
                      .arg(1280 * scale)
                      .arg(1000 * scale)
                      .toUtf8());
    screens.close();
    // By its name alone, in this folder: a colon, as drives have one, would end the option.
    const QString name = QFileInfo(screens).fileName();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + name.toUtf8());
    test_support::FindFonts();
    QApplication application(argc, argv);
    test_support::ChooseLetters();
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
