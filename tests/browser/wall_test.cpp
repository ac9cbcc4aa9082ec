// The wall of pictures in the main window.
#include "browser/main_window_fixture.h"

#include "browser/picture_wall.h"
#include "browser/wall_model.h"

#include <QtGui/QHelpEvent>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QToolTip>

namespace browser {
namespace {

class WallTest : public MainWindowWithTables {
protected:
    void SetUp() override {
        MainWindowWithTables::SetUp();
        cache_before = qgetenv("XDG_CACHE_HOME");
        qputenv("XDG_CACHE_HOME", folder.filePath(S(u"cache")).toUtf8());
    }
    void TearDown() override {
        window.reset();
        qputenv("XDG_CACHE_HOME", cache_before);
    }
    void OpenWindow() {
        Open();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        Tree()->setFocus();
    }
    void OpenWall() {
        OpenWindow();
        QTest::keyClick(Tree(), Qt::Key_F9);
        ASSERT_TRUE(Wall()->isVisible());
    }
    PictureWall* Wall() { return Find<PictureWall>(u"PictureWall"); }
    QModelIndex Item(int row) { return Wall()->model()->index(row, 0); }
    QPoint PlaceOf(int row) { return Wall()->visualRect(Item(row)).center(); }
    void ClickItem(int row, Qt::MouseButton button = Qt::LeftButton) {
        Wall()->scrollTo(Item(row));
        QTest::mouseClick(Wall()->viewport(), button, {}, PlaceOf(row));
    }
    void TurnWheel(int eighths, Qt::KeyboardModifiers modifiers) {
        const QPointF place = PlaceOf(0);
        QWheelEvent event(place, Wall()->viewport()->mapToGlobal(place), {}, QPoint(0, eighths),
                          Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(Wall()->viewport(), &event);
    }
    QString SavedLayout(const char16_t* key) {
        return settings.values.value(S(u"TAVOLO/WINDOW/") + S(key), S(u"<missing>"));
    }
    // The names are there, whatever has the picture.
    QColor ColorInTheMiddleOf(int row) {
        Wall()->scrollTo(Item(row));
        const QRect cell = Wall()->visualRect(Item(row));
        const int y = cell.top() + Wall()->cells().margin + Wall()->cells().picture.height() / 2;
        return Wall()->viewport()->grab().toImage().pixelColor(cell.center().x(), y);
    }
    QString WritePicture(const char16_t* name, Qt::GlobalColor color) {
        QImage image(400, 300, QImage::Format_RGB32);
        image.fill(color);
        const QString path = folder.filePath(S(name));
        EXPECT_TRUE(image.save(path));
        return path;
    }
    void SetImageFile(const char16_t* table, const QString& path) {
        Execute(QStringLiteral("Update Tables set ImageFile = '%1' where DisplayName = '%2'")
                    .arg(path, S(table)));
    }

    QByteArray cache_before;
};

TEST_F(WallTest, AKeyTakesItThereAndBack) {
    OpenWall();
    EXPECT_FALSE(Tree()->isVisible());
    EXPECT_TRUE(Action(u"mnuWall")->isChecked());
    EXPECT_EQ(Wall()->model()->rowCount(), 3);
    EXPECT_EQ(Item(1).data().toString(), S(u"Beta"));
    EXPECT_TRUE(Wall()->hasFocus());
    QTest::keyClick(Wall(), Qt::Key_F9);
    EXPECT_FALSE(Wall()->isVisible());
    EXPECT_TRUE(Tree()->isVisible());
    EXPECT_TRUE(Tree()->hasFocus());
    EXPECT_FALSE(Action(u"mnuWall")->isChecked());
}

TEST_F(WallTest, WhatIsChosenHereIsChosenThere) {
    OpenWall();
    ClickItem(1);
    EXPECT_EQ(Tree()->currentIndex(), Table(1));
    EXPECT_EQ(FieldText(2), S(u"Beta"));
    EXPECT_EQ(Panel(2), S(u"Current Table: Beta"));
    QTest::keyClick(Wall(), Qt::Key_Right);
    EXPECT_EQ(FieldText(2), S(u"Gamma"));
    EXPECT_EQ(Tree()->currentIndex(), Table(2));
}

TEST_F(WallTest, WhatIsChosenThereIsChosenHere) {
    OpenWindow();
    Click(Table(2));
    QTest::keyClick(Tree(), Qt::Key_F9);
    EXPECT_EQ(Wall()->currentIndex(), Item(2));
    EXPECT_TRUE(Wall()->selectionModel()->isSelected(Item(2)));
    Tree()->setCurrentIndex(Detail(0, 3));  // a line of Alpha
    EXPECT_EQ(Wall()->currentIndex(), Item(0));
    Tree()->setCurrentIndex(Root());
    EXPECT_FALSE(Wall()->currentIndex().isValid());
}

TEST_F(WallTest, ASecondClickShowsTheTableAgain) {
    OpenWall();
    ClickItem(0);
    window->details().ClearTableDetails();
    ClickItem(0);
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
}

TEST_F(WallTest, EnterAndADoubleClickPlay) {
    OpenWall();
    ClickItem(0);
    QTest::keyClick(Wall(), Qt::Key_Return);
    ASSERT_EQ(plays.size(), 1U);
    EXPECT_EQ(plays[0].name, S(u"Alpha"));
    QTest::mouseDClick(Wall()->viewport(), Qt::LeftButton, {}, PlaceOf(0));
    EXPECT_EQ(plays.size(), 2U);
    ClickItem(1);  // its file is missing
    QTest::keyClick(Wall(), Qt::Key_Return);
    EXPECT_EQ(plays.size(), 2U);
}

TEST_F(WallTest, DeleteAsksAndDeletes) {
    OpenWall();
    ClickItem(1);
    prompts.answers = {platform::MessageAnswer::kYes};
    QTest::keyClick(Wall(), Qt::Key_Delete);
    EXPECT_EQ(Wall()->model()->rowCount(), 2);
    EXPECT_EQ(Wall()->currentIndex().data().toString(), S(u"Gamma")) << "its neighbour";
    EXPECT_TRUE(Wall()->hasFocus());
}

TEST_F(WallTest, TheMenuOfTheTreeComesAnywhereOnAPicture) {
    OpenWall();
    ClickItem(2, Qt::RightButton);
    QMenu* const menu = Find<QMenu>(u"mnufavorites");
    EXPECT_TRUE(menu->isVisible());
    EXPECT_EQ(FieldText(2), S(u"Gamma"));
    menu->close();
    QTest::keyClick(Wall(), Qt::Key_Menu);
    EXPECT_TRUE(menu->isVisible());
    menu->close();
}

TEST_F(WallTest, TheChoiceIsRemembered) {
    OpenWall();
    const int first = Wall()->picture_width();
    QTest::keyClick(Wall(), Qt::Key_Plus, Qt::ControlModifier);
    const int width = Wall()->picture_width();
    EXPECT_GT(width, first);
    window->close();
    EXPECT_EQ(SavedLayout(u"WALL"), S(u"True"));
    EXPECT_EQ(SavedLayout(u"PICTUREWIDTH"), QString::number(width));
    ASSERT_TRUE(catalogue::Main(catalogue).ok());
    Open();
    EXPECT_TRUE(Wall()->isVisible());
    EXPECT_FALSE(Tree()->isVisible());
    EXPECT_TRUE(Action(u"mnuWall")->isChecked());
    EXPECT_EQ(Wall()->picture_width(), width);
}

TEST_F(WallTest, WhoNeverHadItKeepsNoWordOfIt) {
    Open();
    window->close();
    EXPECT_EQ(SavedLayout(u"WALL"), S(u"<missing>"));
    EXPECT_EQ(SavedLayout(u"PICTUREWIDTH"), S(u"<missing>"));
}

TEST_F(WallTest, UntilASizeIsChosenTwoPicturesStandSideBySide) {
    OpenWall();
    EXPECT_GE(Wall()->cells().columns, 2);
    EXPECT_FALSE(Wall()->width_is_chosen());
    window->close();
    EXPECT_EQ(SavedLayout(u"PICTUREWIDTH"), S(u"<missing>"));
}

TEST_F(WallTest, KeysAndTheWheelChangeTheSize) {
    OpenWall();
    Wall()->SetPictureWidth(kFirstPictureWidth);
    QTest::keyClick(Wall(), Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_LT(Wall()->picture_width(), kFirstPictureWidth);
    QTest::keyClick(Wall(), Qt::Key_Equal, Qt::ControlModifier);
    EXPECT_EQ(Wall()->picture_width(), kFirstPictureWidth);
    TurnWheel(120, Qt::ControlModifier);
    EXPECT_EQ(Wall()->picture_width(), StepPictureWidth(kFirstPictureWidth, 1));
    TurnWheel(-60, Qt::ControlModifier);
    EXPECT_EQ(Wall()->picture_width(), StepPictureWidth(kFirstPictureWidth, 1)) << "half a notch";
    TurnWheel(-60, Qt::ControlModifier);
    EXPECT_EQ(Wall()->picture_width(), kFirstPictureWidth);
    TurnWheel(-120, Qt::NoModifier);
    EXPECT_EQ(Wall()->picture_width(), kFirstPictureWidth);
}

TEST_F(WallTest, TheTreeHasNoSizeToChange) {
    OpenWindow();
    EXPECT_FALSE(Action(u"mnuLarger")->isEnabled());
    QTest::keyClick(Tree(), Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_FALSE(Wall()->width_is_chosen());
    QTest::keyClick(Tree(), Qt::Key_F9);
    EXPECT_TRUE(Action(u"mnuLarger")->isEnabled());
}

TEST_F(WallTest, APictureComesInItsPlace) {
    SetImageFile(u"Alpha", WritePicture(u"red.png", Qt::red));
    SetImageFile(u"Gamma", WritePicture(u"blue.png", Qt::blue));
    OpenWall();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ColorInTheMiddleOf(0) == QColor(Qt::red); }, 20'000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return ColorInTheMiddleOf(2) == QColor(Qt::blue); }, 20'000));
    EXPECT_NE(ColorInTheMiddleOf(1), QColor(Qt::red));
}

TEST_F(WallTest, APictureThatThePathMapFindsComesWhenTheMapIsThere) {
    WritePicture(u"red.png", Qt::red);
    SetImageFile(u"Alpha", S(u"C:\\Tables\\RED.png"));
    OpenWall();
    QTest::qWait(200);
    EXPECT_NE(ColorInTheMiddleOf(0), QColor(Qt::red));
    MapTablesHere();
    window->RefreshTree();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ColorInTheMiddleOf(0) == QColor(Qt::red); }, 20'000));
}

TEST_F(WallTest, ASavedPictureIsShownAtOnce) {
    OpenWall();
    ClickItem(0);
    window->details().SetDetailText(7, WritePicture(u"green.png", Qt::green));
    EXPECT_FALSE(Wall()->isEnabled()) << "an edit locks it";
    window->details().Save();
    EXPECT_TRUE(Wall()->isEnabled());
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return ColorInTheMiddleOf(0) == QColor(Qt::green); }, 20'000));
}

TEST_F(WallTest, APictureThatCannotBeShownSaysWhy) {
    QFile file(folder.filePath(S(u"bad.png")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no picture");
    file.close();
    SetImageFile(u"Alpha", file.fileName());
    OpenWall();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            QHelpEvent event(QEvent::ToolTip, PlaceOf(0),
                             Wall()->viewport()->mapToGlobal(PlaceOf(0)));
            QApplication::sendEvent(Wall()->viewport(), &event);
            return QToolTip::text().contains(S(u"bad.png: this is not a picture"));
        },
        20'000));
    EXPECT_TRUE(QToolTip::text().contains(S(u"Alpha")));
    QToolTip::hideText();
}

TEST_F(WallTest, ItSaysWhatTheIconsShow) {
    OpenWall();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return Item(1).data(Qt::AccessibleTextRole) ==
                   QStringLiteral("Beta, favorite, its file is missing");
        },
        20'000));
    EXPECT_EQ(Item(0).data(Qt::AccessibleTextRole).toString(), S(u"Alpha"));
    EXPECT_TRUE(Item(1).data(WallModel::kIsFavoriteRole).toBool());
    EXPECT_TRUE(Item(1).data(WallModel::kIsMissingRole).toBool());
    EXPECT_FALSE(Item(0).data(WallModel::kIsFavoriteRole).toBool());
}

TEST_F(WallTest, AFavouriteIsOneAtOnce) {
    OpenWall();
    ClickItem(0);
    Action(u"mnuAddit")->trigger();
    EXPECT_TRUE(Item(0).data(WallModel::kIsFavoriteRole).toBool());
}

TEST_F(WallTest, FindGoesThroughThePictures) {
    OpenWall();
    QTest::keyClick(Wall(), Qt::Key_F, Qt::ControlModifier);
    auto* const field = Find<QLineEdit>(u"txtFind");
    ASSERT_TRUE(field->hasFocus());
    QTest::keyClicks(field, S(u"gam"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return Wall()->currentIndex() == Item(2); }, 20'000));
    QTest::keyClick(field, Qt::Key_Escape);
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_TRUE(Wall()->hasFocus());
}

TEST_F(WallTest, AnotherQuestionIsAskedOfBoth) {
    OpenWall();
    ClickItem(1);
    PickFilter(u"Favorites");
    Press(u"cmdGo");
    EXPECT_EQ(Wall()->model()->rowCount(), 1);
    EXPECT_EQ(Wall()->currentIndex(), Item(0));
    EXPECT_EQ(FieldText(2), S(u"Beta"));
}

TEST_F(WallTest, AnEmptyCatalogueShowsTheWelcomeInstead) {
    OpenWall();
    Execute(S(u"delete from Tables"));
    Press(u"cmdGo");
    EXPECT_FALSE(Wall()->isVisible());
    EXPECT_FALSE(Tree()->isVisible());
    QTest::keyClick(window.get(), Qt::Key_F9);
    EXPECT_FALSE(Tree()->isVisible());
}

TEST_F(WallTest, ThePlaceIsKeptWhenItIsFilledAnew) {
    for (int i = 0; i < 200; ++i)
        AddTable(QStringLiteral("Many %1").arg(i, 3, 10, QLatin1Char('0')));
    OpenWall();
    Wall()->scrollTo(Item(150));
    ClickItem(150);
    const int before = Wall()->visualRect(Item(150)).top();
    Press(u"cmdGo");
    EXPECT_EQ(Wall()->currentIndex(), Item(150));
    EXPECT_EQ(Wall()->visualRect(Item(150)).top(), before);
}

TEST_F(WallTest, WhatIsSelectedIsWholeFromTheFirstSightOn) {
    for (int i = 0; i < 40; ++i)
        AddTable(QStringLiteral("More %1").arg(i, 2, 10, QLatin1Char('0')), {});
    OpenWindow();
    window->resize(640, 700);
    Click(Table(20));
    QTest::keyClick(Tree(), Qt::Key_F9);
    const auto is_whole = [&] {
        return Wall()->viewport()->rect().contains(Wall()->visualRect(Wall()->currentIndex()));
    };
    EXPECT_TRUE(QTest::qWaitFor(is_whole, 5000));
    for (const QSize size : {QSize(1200, 500), QSize(640, 520), QSize(800, 700)}) {
        window->resize(size);
        QTest::qWait(150);  // longer than the view may wait before it lays out
        EXPECT_TRUE(is_whole()) << size.width();
    }
}

TEST_F(WallTest, ALargerSizeKeepsWhatIsSelectedInSight) {
    for (int i = 0; i < 200; ++i)
        AddTable(QStringLiteral("Many %1").arg(i, 3, 10, QLatin1Char('0')));
    OpenWall();
    ClickItem(150);
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(Wall(), Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_TRUE(Wall()->viewport()->rect().contains(PlaceOf(150)));
    const RowRange shown = Wall()->shown_rows();
    EXPECT_LE(shown.first, 150);
    EXPECT_GE(shown.last, 150);
}

TEST_F(WallTest, TheRowsThatAreSeenAreKnown) {
    for (int i = 0; i < 200; ++i)
        AddTable(QStringLiteral("Many %1").arg(i));
    OpenWall();
    for (const int value : {0, 55, 700, Wall()->verticalScrollBar()->maximum()}) {
        Wall()->verticalScrollBar()->setValue(value);
        const RowRange shown = Wall()->shown_rows();
        for (int row = 0; row < Wall()->model()->rowCount(); ++row) {
            const bool is_seen =
                Wall()->viewport()->rect().intersects(Wall()->visualRect(Item(row)));
            EXPECT_EQ(row >= shown.first && row <= shown.last, is_seen) << value << ' ' << row;
        }
    }
}

}  // namespace
}  // namespace browser
