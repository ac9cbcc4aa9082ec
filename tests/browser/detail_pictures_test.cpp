// The three pictures of the detail panel. Needs widgets; runs offscreen.
#include "browser/detail_panel_fixture.h"
#include "support/event_counter.h"
#include "support/vpt_builder.h"
#include "widgets/picture_box.h"
#include "widgets/picture_loader.h"

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtWidgets/QApplication>

namespace browser {
namespace {

using test_support::VptBuilder;
using widgets::PictureBox;

class DetailPicturesTest : public DetailPanelFixture {
protected:
    PictureBox* Box(const char* name) { return Find<PictureBox>(QLatin1String(name)); }
    bool AllAreDecided() {
        return !Box("imgShot")->waits() && !Box("imgFlyer")->waits() && !Box("imgRules")->waits();
    }
    // Also waits until all pictures have been decoded or refused.
    QString ShowTable(const QString& name, const QString& assignments = {}) {
        QString file = DetailPanelFixture::ShowTable(name, assignments);
        EXPECT_TRUE(QTest::qWaitFor([this] { return AllAreDecided(); }, 20'000));
        return file;
    }
    // A picture with a sound header and half a body.
    QString WriteCutPicture(const QString& name, int width, int height) {
        QImage image(width, height, QImage::Format_RGB32);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                image.setPixel(x, y, qRgb(x * y % 256, x % 256, y % 256));
        const QString path = folder.filePath(name);
        EXPECT_TRUE(image.save(path, "png"));
        EXPECT_TRUE(QFile::resize(path, QFile(path).size() / 2));
        return path;
    }
    bool ShowsFile(const char* box, const QString& path) {
        return Box(box)->source() == widgets::PictureSource::File(path);
    }
    // The table file of a row, with a screenshot of this size inside.
    void WriteTable(const QString& name, const QByteArray& screenshot) {
        const QString path = folder.filePath(name + QStringLiteral(".vpt"));
        ASSERT_TRUE(VptBuilder()
                        .Screenshot(test_support::BytesOf(screenshot.toStdString()))
                        .Write(path.toStdU16String())
                        .ok());
    }
    static QByteArray Jpeg() {
        QImage image(20, 10, QImage::Format_RGB32);
        image.fill(Qt::red);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        EXPECT_TRUE(image.save(&buffer, "jpg"));
        return bytes;
    }
    QString Pictures(const QString& image, const QString& flyer, const QString& rules) {
        return Assign("ImageFile", image) + QStringLiteral(", ") + Assign("FlyerFile", flyer) +
               QStringLiteral(", ") + Assign("RulesFile", rules);
    }
};

TEST_F(DetailPicturesTest, EachBoxShowsItsFile) {
    const QString shot = WritePicture(QStringLiteral("shot.jpg"));
    const QString flyer = WritePicture(QStringLiteral("flyer.jpg"));
    const QString rules = WritePicture(QStringLiteral("rules.jpg"));
    ShowTable(QStringLiteral("Attack"), Pictures(shot, flyer, rules));
    EXPECT_TRUE(ShowsFile("imgShot", shot));
    EXPECT_TRUE(ShowsFile("imgFlyer", flyer));
    EXPECT_TRUE(ShowsFile("imgRules", rules));
    EXPECT_EQ(Box("imgShot")->ShownImage().size(), QSize(40, 30));
}

TEST_F(DetailPicturesTest, ANewPictureIsPaintedAndSoIsItsAbsence) {
    const QString shot = WritePicture(QStringLiteral("shot.jpg"));
    panel->SetCurrentTab(1);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(panel.get()));
    const auto is_painted_by = [this](const auto& show) {
        QApplication::processEvents();
        const test_support::EventCounter paints(*Box("imgShot"), QEvent::Paint);
        show();
        return QTest::qWaitFor([&] { return paints.count() > 0; });
    };
    EXPECT_TRUE(is_painted_by(
        [&] { ShowTable(QStringLiteral("Attack"), Pictures(shot, QString(), QString())); }));
    EXPECT_TRUE(is_painted_by([this] { panel->ClearTableDetails(); }));
}

TEST_F(DetailPicturesTest, EmptyFieldsAndMissingFilesShowThePlaceholder) {
    ShowTable(QStringLiteral("Attack"),
              Pictures(QStringLiteral("/nowhere/a.jpg"), QString(), folder.path()));
    for (const char* box : {"imgShot", "imgFlyer", "imgRules"})
        EXPECT_TRUE(Box(box)->shows_placeholder()) << box;
}

TEST_F(DetailPicturesTest, TheNextTableDoesNotKeepThePictures) {
    const QString shot = WritePicture(QStringLiteral("shot.jpg"));
    ShowTable(QStringLiteral("Attack"), Pictures(shot, shot, shot));
    ShowTable(QStringLiteral("Bone"));
    for (const char* box : {"imgShot", "imgFlyer", "imgRules"})
        EXPECT_TRUE(Box(box)->shows_placeholder()) << box;
}

TEST_F(DetailPicturesTest, WithoutAFileTheScreenshotInsideTheTableIsShown) {
    WriteTable(QStringLiteral("Attack"), Jpeg());
    ShowTable(QStringLiteral("Attack"));
    EXPECT_EQ(Box("imgShot")->ShownImage().size(), QSize(20, 10));
    EXPECT_TRUE(Box("imgFlyer")->shows_placeholder());
}

TEST_F(DetailPicturesTest, AFileWithoutADotIsPassedOverForTheScreenshotInside) {
    // Named from the folder of the test, whose own path may have a dot in it.
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    WriteTable(QStringLiteral("Attack"), Jpeg());
    WritePicture(QStringLiteral("shot"));
    const QString shot = QStringLiteral("shot");
    ShowTable(QStringLiteral("Attack"), Pictures(shot, shot, shot));
    ASSERT_TRUE(QDir::setCurrent(before));
    EXPECT_EQ(Box("imgShot")->ShownImage().size(), QSize(20, 10));
    EXPECT_TRUE(Box("imgFlyer")->shows_placeholder());
}

TEST_F(DetailPicturesTest, AFileComesBeforeTheScreenshotInside) {
    WriteTable(QStringLiteral("Attack"), Jpeg());
    const QString shot = WritePicture(QStringLiteral("shot.jpg"));
    ShowTable(QStringLiteral("Attack"), Pictures(shot, QString(), QString()));
    EXPECT_EQ(Box("imgShot")->ShownImage().size(), QSize(40, 30));
}

TEST_F(DetailPicturesTest, AnUndecodableScreenshotInsideIsThePlaceholderAndTheOthersFollow) {
    WriteTable(QStringLiteral("Attack"), "no picture");
    const QString flyer = WritePicture(QStringLiteral("flyer.jpg"));
    ShowTable(QStringLiteral("Attack"), Pictures(QString(), flyer, QString()));
    EXPECT_TRUE(Box("imgShot")->shows_placeholder());
    EXPECT_TRUE(ShowsFile("imgFlyer", flyer));
}

TEST_F(DetailPicturesTest, AnUndecodableFileEndsTheLoadingSilently) {
    const QString broken = WriteFile(QStringLiteral("broken.jpg"), "no picture");
    const QString good = WritePicture(QStringLiteral("good.jpg"));
    WriteTable(QStringLiteral("Attack"), Jpeg());
    ShowTable(QStringLiteral("Attack"), Pictures(good, broken, good));
    EXPECT_TRUE(ShowsFile("imgShot", good));
    EXPECT_TRUE(Box("imgFlyer")->shows_placeholder());
    EXPECT_TRUE(Box("imgRules")->shows_placeholder());
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(Line(2)->text(), QStringLiteral("Attack"));
}

TEST_F(DetailPicturesTest, AnUndecodableScreenshotFileIsNotReplacedByTheOneInside) {
    const QString broken = WriteFile(QStringLiteral("broken.jpg"), "no picture");
    WriteTable(QStringLiteral("Attack"), Jpeg());
    ShowTable(QStringLiteral("Attack"), Pictures(broken, QString(), QString()));
    EXPECT_TRUE(Box("imgShot")->shows_placeholder());
}

TEST_F(DetailPicturesTest, ADamagedBodyEndsTheLoadingAtTheSelectionThoughNothingIsPainted) {
    const QString good = WritePicture(QStringLiteral("good.jpg"));
    const QString cut = WriteCutPicture(QStringLiteral("cut.png"), 300, 200);
    ASSERT_TRUE(widgets::PictureSize(widgets::PictureSource::File(cut)).ok());
    panel->hide();
    ShowTable(QStringLiteral("Attack"), Pictures(good, cut, good));
    EXPECT_TRUE(ShowsFile("imgShot", good));
    EXPECT_TRUE(Box("imgFlyer")->shows_placeholder());
    EXPECT_TRUE(Box("imgRules")->shows_placeholder());
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(DetailPicturesTest, ADamagedScreenshotFileLeavesAllThreePlaceholders) {
    const QString good = WritePicture(QStringLiteral("good.jpg"));
    const QString cut = WriteCutPicture(QStringLiteral("cut.png"), 300, 200);
    ShowTable(QStringLiteral("Attack"), Pictures(cut, good, good));
    for (const char* box : {"imgShot", "imgFlyer", "imgRules"})
        EXPECT_TRUE(Box(box)->shows_placeholder()) << box;
}

TEST_F(DetailPicturesTest, ADamagedBodyOfTheScreenshotInsideEndsNothing) {
    QFile cut(WriteCutPicture(QStringLiteral("cut.png"), 300, 200));
    ASSERT_TRUE(cut.open(QFile::ReadOnly));
    WriteTable(QStringLiteral("Attack"), cut.readAll());
    const QString good = WritePicture(QStringLiteral("good.jpg"));
    panel->hide();
    ShowTable(QStringLiteral("Attack"), Pictures(QString(), good, good));
    EXPECT_TRUE(Box("imgShot")->shows_placeholder());
    EXPECT_TRUE(ShowsFile("imgFlyer", good));
    EXPECT_TRUE(ShowsFile("imgRules", good));
}

TEST_F(DetailPicturesTest, AnswersAboutThePreviousTableTouchNothingOfTheNext) {
    const QString good = WritePicture(QStringLiteral("good.jpg"));
    const QString cut = WriteCutPicture(QStringLiteral("cut.png"), 3000, 2000);
    for (const QString& pictures : {Pictures(cut, good, good), Pictures(good, cut, good)}) {
        Execute(QStringLiteral("delete from tables"));
        DetailPanelFixture::ShowTable(QStringLiteral("Attack"), pictures);
        for (const char* box : {"imgShot", "imgFlyer", "imgRules"})
            Box(box)->ShownImage();
        ShowTable(QStringLiteral("Bone"), Pictures(good, good, good));
        QCoreApplication::processEvents();
        for (const char* box : {"imgShot", "imgFlyer", "imgRules"})
            EXPECT_TRUE(ShowsFile(box, good)) << box;
    }
}

TEST_F(DetailPicturesTest, APanelThatGoesAwayWhileItLoadsIsNoTrouble) {
    const QString large = WritePicture(QStringLiteral("shot.jpg"), 4000, 3000);
    DetailPanelFixture::ShowTable(QStringLiteral("Attack"), Pictures(large, large, large));
    panel.reset();
    QCoreApplication::processEvents();
}

TEST_F(DetailPicturesTest, ALargePictureHoldsNobodyUp) {
    const QString shot = WritePicture(QStringLiteral("shot.jpg"), 7300, 5500);
    DetailPanelFixture::ShowTable(QStringLiteral("Attack"), Pictures(shot, shot, QString()));
    EXPECT_TRUE(Box("imgShot")->waits());
    EXPECT_TRUE(QTest::qWaitFor([this] { return AllAreDecided(); }, 60'000));
    EXPECT_TRUE(ShowsFile("imgFlyer", shot));
    EXPECT_LE(Box("imgFlyer")->ShownImage().width(), 1000);
}

TEST_F(DetailPicturesTest, AWidePanelShowsTheScreenshotBesideTheDetails) {
    ShowTable(QStringLiteral("Attack"), Assign("ImageFile", WritePicture(QStringLiteral("a.jpg"))));
    EXPECT_FALSE(Box("imgBeside")->isVisible());
    panel->resize(1400, 500);
    ASSERT_TRUE(QTest::qWaitFor([this] { return Box("imgBeside")->isVisible(); }, 20'000));
    EXPECT_EQ(Box("imgBeside")->source(), Box("imgShot")->source());
    EXPECT_GT(qRed(Box("imgBeside")->ShownImage().pixel(20, 15)), 250);
    EXPECT_GT(Line(2)->width(), 300);
    panel->resize(500, 500);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !Box("imgBeside")->isVisible(); }, 20'000));
}

TEST_F(DetailPicturesTest, TheOneBesideTheDetailsFollows) {
    panel->resize(1400, 500);
    ShowTable(QStringLiteral("Attack"), Assign("ImageFile", WritePicture(QStringLiteral("a.jpg"))));
    EXPECT_FALSE(Box("imgBeside")->shows_placeholder());
    const QString bad = WriteFile(QStringLiteral("bad.jpg"), "no picture");
    ShowTable(QStringLiteral("Bride"), Assign("ImageFile", bad));
    EXPECT_TRUE(Box("imgBeside")->shows_placeholder());
    EXPECT_FALSE(Box("imgBeside")->toolTip().isEmpty());
    EXPECT_EQ(Box("imgBeside")->toolTip(), Box("imgShot")->toolTip());
    panel->ClearTableDetails();
    EXPECT_TRUE(Box("imgBeside")->toolTip().isEmpty());
}

// A catalogue that came from another system.

TEST_F(DetailPicturesTest, PicturesThatThePathMapFindsAreShown) {
    const QString shot = WritePicture(QStringLiteral("Shot.jpg"));
    const QString flyer = WritePicture(QStringLiteral("Flyer.jpg"));
    const QString rules = WritePicture(QStringLiteral("Rules.jpg"));
    MapTablesHere();
    ShowTable(QStringLiteral("Attack"),
              Assign("ImageFile", QStringLiteral("C:\\Tables\\Shot.jpg")) + u',' +
                  Assign("FlyerFile", QStringLiteral("C:\\Tables\\Flyer.jpg")) + u',' +
                  Assign("RulesFile", QStringLiteral("C:\\Tables\\Rules.jpg")));
    EXPECT_TRUE(ShowsFile("imgShot", shot));
    EXPECT_TRUE(ShowsFile("imgFlyer", flyer));
    EXPECT_TRUE(ShowsFile("imgRules", rules));
    // Their files are there, so the record can be saved.
    Line(2)->setText(QStringLiteral("Attack!"));
    Click("cmdChange");
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(Stored(QStringLiteral("ImageFile"), QStringLiteral("Attack!")),
              QStringLiteral("C:\\Tables\\Shot.jpg"));
}

TEST_F(DetailPicturesTest, TheScreenshotInsideOfATableFileThatThePathMapFindsIsShown) {
    WriteTable(QStringLiteral("Inside"), Jpeg());
    Execute(QStringLiteral("insert into tables (DisplayName, FileName, FileDate) values ('Inside', "
                           "'C:\\Tables\\INSIDE.vpt', #1/1/2026#)"));
    MapTablesHere();
    panel->ShowTableDetails(QStringLiteral("C:\\Tables\\INSIDE.vpt"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return AllAreDecided(); }, 20'000));
    EXPECT_FALSE(Box("imgShot")->source().is_empty());
}

TEST_F(DetailPicturesTest, AChosenPictureBelowAFolderOfThePathMapIsStoredForAllSystems) {
    const QString shot = WritePicture(QStringLiteral("Shot.jpg"));
    MapTablesHere();
    ShowTable(QStringLiteral("Attack"), Assign("ImageFile", QStringLiteral("C:\\Tables\\Old.jpg")));
    prompts.files = {shot};
    Click("Command2");
    ASSERT_EQ(prompts.dialogs.size(), 1U);
    EXPECT_EQ(prompts.dialogs[0].file_name, folder.filePath(QStringLiteral("Old.jpg")));
    EXPECT_EQ(Line(7)->text(), QStringLiteral("C:\\Tables\\Shot.jpg"));
    Click("cmdChange");
    EXPECT_EQ(Stored(QStringLiteral("ImageFile"), QStringLiteral("Attack")),
              QStringLiteral("C:\\Tables\\Shot.jpg"));
}

}  // namespace
}  // namespace browser
