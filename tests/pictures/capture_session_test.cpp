#include "pictures/capture_session.h"

#include "catalogue/process_values.h"
#include "pictures/test_pictures.h"
#include "platform/application_folder.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QImageReader>

namespace pictures {
namespace {

class CaptureSessionTest : public testing::Test {
protected:
    CaptureSessionTest() { values.ApplicationFolder = folder.path(); }
    QString In(const char16_t* name) const { return folder.filePath(QString::fromUtf16(name)); }

    test_support::TemporaryDir folder;
    catalogue::ProcessValues values;
    test_support::FakePrompts prompts;
    CaptureSession session{values, prompts};
};

TEST_F(CaptureSessionTest, JpegNamesAreKnownByTheirExtension) {
    EXPECT_TRUE(IsJpegName(QStringLiteral("a.JPG")));
    EXPECT_TRUE(IsJpegName(QStringLiteral("b/a.b.jpe")));
    EXPECT_TRUE(IsJpegName(QStringLiteral("a.jpeg")));
    EXPECT_FALSE(IsJpegName(QStringLiteral("a.jpg.bmp")));
    EXPECT_FALSE(IsJpegName(QStringLiteral("jpg")));
}

TEST_F(CaptureSessionTest, PasteGoesThroughAJpegAndRemovesTheBitmap) {
    const QImage image = test_pictures::Colourful(160, 120);
    session.Paste(image);
    EXPECT_EQ(session.current_file(), In(u"temp.jpg"));
    EXPECT_TRUE(QFileInfo::exists(In(u"temp.jpg")));
    EXPECT_FALSE(QFileInfo::exists(In(u"temp.bmp")));
    EXPECT_EQ(session.SizeText(), QStringLiteral("160X120"));
    const double error = test_pictures::MeanError(session.picture(), image);
    EXPECT_GT(error, 0.0) << "the picture was not compressed";
    EXPECT_LT(error, 6.0);
}

TEST_F(CaptureSessionTest, WhatIsTransparentIsWhite) {
    QImage image(16, 16, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    session.Paste(image);
    EXPECT_GT(qRed(test_pictures::PixelOf(session.picture(), 8, 8)), 250);
}

TEST_F(CaptureSessionTest, NothingOnTheClipboardChangesNothing) {
    session.Paste({});
    EXPECT_TRUE(session.current_file().isEmpty());
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(CaptureSessionTest, ScaleReducesWhatIsShownAndSaved) {
    session.Paste(test_pictures::Colourful(800, 600));
    session.SetScale(4);
    EXPECT_EQ(session.SizeText(), QStringLiteral("200X150"));
    prompts.files = {In(u"shot.jpg")};
    EXPECT_EQ(session.Save(), In(u"shot.jpg"));
    EXPECT_EQ(QImageReader(In(u"shot.jpg")).size(), QSize(200, 150));
}

TEST_F(CaptureSessionTest, ScaleBeforeAPasteIsRemembered) {
    session.SetScale(2);
    session.Paste(test_pictures::Colourful(101, 75));
    EXPECT_EQ(session.SizeText(), QStringLiteral("51X38"));
}

TEST_F(CaptureSessionTest, SaveDialogOpensInTheLastFolder) {
    values.LastPictureDir = QStringLiteral("/pictures/");
    session.Paste(test_pictures::Colourful(16, 16));
    EXPECT_TRUE(session.Save().isEmpty());
    ASSERT_EQ(prompts.dialogs.size(), 1U);
    EXPECT_EQ(prompts.dialogs[0].folder, QStringLiteral("/pictures/"));
    EXPECT_EQ(prompts.dialogs[0].default_extension, QStringLiteral(".jpg"));
    EXPECT_EQ(prompts.dialogs[0].filter,
              QStringLiteral("JPEG Files (*.jpg;*.jpe;*.jpeg)|*.jpg;*.jpe;*.jpeg|"));
}

TEST_F(CaptureSessionTest, TheNameOfTheTableIsProposed) {
    EXPECT_EQ(ProposedName(QStringLiteral("Attack From Space")),
              QStringLiteral("Attack From Space.jpg"));
    EXPECT_EQ(ProposedName(QStringLiteral("..a/b\\c:*?\"<>|\r\n\u00E4 ")),
              QStringLiteral("abc\u00E4.jpg"));
    EXPECT_EQ(ProposedName(QStringLiteral(" / ")), QString());
    EXPECT_EQ(ProposedName(QString(500, u'x')).size(), 104);
    session.Paste(test_pictures::Colourful(16, 16));
    session.Save(QStringLiteral("Attack"));
    ASSERT_EQ(prompts.dialogs.size(), 1U);
    EXPECT_EQ(prompts.dialogs[0].file_name, QStringLiteral("Attack.jpg"));
}

TEST_F(CaptureSessionTest, TheDialogOpensWhereACaptureWasSavedLast) {
    session.Paste(test_pictures::Colourful(16, 16));
    session.Save();
    EXPECT_EQ(prompts.dialogs[0].folder, platform::PicturesFolder()) << "not beside the work files";
    EXPECT_NE(prompts.dialogs[0].folder, QString());
    prompts.files = {In(u"shot.jpg")};
    EXPECT_FALSE(session.Save().isEmpty());
    session.Save();
    EXPECT_EQ(prompts.dialogs[2].folder, folder.prefix());
    EXPECT_EQ(values.LastPictureDir, QString()) << "that is another folder";
}

TEST_F(CaptureSessionTest, UnwritableFolderIsReportedAndThePictureStays) {
    session.Paste(test_pictures::Colourful(32, 16));
    prompts.files = {In(u"none/shot.jpg")};
    EXPECT_TRUE(session.Save().isEmpty());
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kExclamation);
    EXPECT_EQ(session.SizeText(), QStringLiteral("32X16"));
}

TEST_F(CaptureSessionTest, FailedPasteKeepsTheCurrentPicture) {
    session.Paste(test_pictures::Colourful(32, 16));
    values.ApplicationFolder = In(u"none");
    session.Paste(test_pictures::Colourful(64, 64));
    EXPECT_EQ(session.SizeText(), QStringLiteral("32X16"));
    EXPECT_EQ(session.current_file(), In(u"temp.jpg"));
    EXPECT_EQ(prompts.messages.size(), 1U);
}

TEST_F(CaptureSessionTest, FolderOfASavedFileIsRememberedWithItsSeparator) {
    session.RememberFolderOf(QStringLiteral("/pictures/shots/a.jpg"));
    EXPECT_EQ(values.LastPictureDir, QStringLiteral("/pictures/shots/"));
    session.RememberFolderOf({});
    EXPECT_EQ(values.LastPictureDir, QString());
}

}  // namespace
}  // namespace pictures
