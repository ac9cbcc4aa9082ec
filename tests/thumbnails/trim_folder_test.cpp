#include "thumbnails/trim_folder.h"

#include "support/temporary_dir.h"
#include "thumbnails/pictures_of_tests.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace thumbnails {
namespace {

class TrimFolderTest : public testing::Test {
protected:
    void Write(const QString& name, int bytes, qint64 written_s) {
        const QString path = folder.filePath(name);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        WriteBytes(path, QByteArray(bytes, 'x'));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::fromSecsSinceEpoch(written_s),
                                     QFileDevice::FileModificationTime));
    }
    bool Has(const QString& name) { return QFile::exists(folder.filePath(name)); }

    test_support::TemporaryDir folder;
};

TEST_F(TrimFolderTest, TheOldestGoUntilThreeQuartersAreLeft) {
    Write(QStringLiteral("large/a.png"), 300, 4000);
    Write(QStringLiteral("normal/b.png"), 300, 1000);
    Write(QStringLiteral("normal/c.png"), 300, 3000);
    Write(QStringLiteral("large/d.png"), 300, 2000);
    TrimThumbnails(folder.path(), 1000);
    EXPECT_FALSE(Has(QStringLiteral("normal/b.png")));
    EXPECT_FALSE(Has(QStringLiteral("large/d.png")));
    EXPECT_TRUE(Has(QStringLiteral("normal/c.png")));
    EXPECT_TRUE(Has(QStringLiteral("large/a.png")));
}

TEST_F(TrimFolderTest, WithinTheBoundAllStay) {
    Write(QStringLiteral("large/a.png"), 500, 1000);
    Write(QStringLiteral("large/b.png"), 500, 2000);
    TrimThumbnails(folder.path(), 1000);
    EXPECT_TRUE(Has(QStringLiteral("large/a.png")));
    EXPECT_TRUE(Has(QStringLiteral("large/b.png")));
}

TEST_F(TrimFolderTest, WhatIsNoSmallPictureIsLeftAlone) {
    Write(QStringLiteral("large/note.txt"), 5000, 1000);
    Write(QStringLiteral("above.png"), 5000, 1000);
    Write(QStringLiteral("large/a.png"), 500, 2000);
    TrimThumbnails(folder.path(), 100);
    EXPECT_TRUE(Has(QStringLiteral("large/note.txt")));
    EXPECT_TRUE(Has(QStringLiteral("above.png")));
    EXPECT_FALSE(Has(QStringLiteral("large/a.png")));
    TrimThumbnails(folder.filePath(QStringLiteral("not there")), 0);
}

}  // namespace
}  // namespace thumbnails
