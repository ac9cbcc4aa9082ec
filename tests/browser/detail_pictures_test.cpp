// The three pictures of the detail panel. Needs widgets; runs offscreen.
#include "browser/detail_panel_fixture.h"
#include "support/event_counter.h"
#include "support/vpt_builder.h"
#include "tableinfo/picture_box.h"

#include <QtCore/QBuffer>
#include <QtWidgets/QApplication>

namespace browser {
namespace {

using tableinfo::PictureBox;
using test_support::VptBuilder;

class DetailPicturesTest : public DetailPanelFixture {
protected:
    PictureBox* Box(const char* name) { return Find<PictureBox>(QLatin1String(name)); }
    bool ShowsFile(const char* box, const QString& path) {
        return Box(box)->source() == tableinfo::PictureSource::File(path);
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
    // The folder of the test has no dot in its name.
    ASSERT_FALSE(folder.path().contains(QLatin1Char('.')));
    WriteTable(QStringLiteral("Attack"), Jpeg());
    const QString shot = WritePicture(QStringLiteral("shot"));
    ShowTable(QStringLiteral("Attack"), Pictures(shot, shot, shot));
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

TEST_F(DetailPicturesTest, APictureFoundDamagedWhenItIsPaintedEndsTheLoadingThere) {
    QFile good(WritePicture(QStringLiteral("good.png")));
    QImage image(50, 50, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QString cut = folder.filePath(QStringLiteral("cut.png"));
    ASSERT_TRUE(image.save(cut, "png"));
    ASSERT_TRUE(QFile::resize(cut, 50));
    ShowTable(QStringLiteral("Attack"), Pictures(good.fileName(), cut, good.fileName()));
    EXPECT_FALSE(Box("imgRules")->shows_placeholder());
    panel->SetCurrentTab(2);
    EXPECT_TRUE(QTest::qWaitFor([this] { return Box("imgRules")->shows_placeholder(); }));
    EXPECT_TRUE(Box("imgFlyer")->shows_placeholder());
    EXPECT_TRUE(ShowsFile("imgShot", good.fileName()));
}

TEST_F(DetailPicturesTest, AHiddenPictureIsNotDecoded) {
    const QString shot = WritePicture(QStringLiteral("shot.jpg"), 7300, 5500);
    ShowTable(QStringLiteral("Attack"), Pictures(shot, QString(), QString()));
    ASSERT_TRUE(ShowsFile("imgShot", shot));
    // Shown later, it is decoded from what is there by then.
    WritePicture(QStringLiteral("shot.jpg"), 30, 20);
    EXPECT_EQ(Box("imgShot")->ShownImage().size(), QSize(30, 20));
}

}  // namespace
}  // namespace browser
