#include "catalogue/collection_folders.h"

#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

namespace catalogue {
namespace {

class CollectionFoldersTest : public testing::Test {
protected:
    QString Catalogue() const { return folder.filePath(QStringLiteral("pinball.mdb")); }
    QStringList Known() { return CollectionFolders(Catalogue()).value_or({}); }
    void Remember(const QString& path) {
        const base::Status stored = RememberCollectionFolder(Catalogue(), path);
        ASSERT_TRUE(stored.ok()) << stored.message();
    }
    void Write(const QByteArray& content) {
        QFile file(CollectionFoldersFile(Catalogue()));
        ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write(content) == content.size());
    }

    test_support::TemporaryDir folder;
};

TEST_F(CollectionFoldersTest, NoneIsKnownAtFirst) {
    const auto known = CollectionFolders(Catalogue());
    ASSERT_TRUE(known.ok());
    EXPECT_TRUE(known->isEmpty());
    EXPECT_TRUE(ForgetCollectionFolder(Catalogue(), QStringLiteral("/a")).ok());
    EXPECT_FALSE(QFile::exists(CollectionFoldersFile(Catalogue())));
}

TEST_F(CollectionFoldersTest, EachIsKeptOnceAndInItsOrder) {
    Remember(QStringLiteral("/tables/b"));
    Remember(QStringLiteral("/tables/a \"new\"\nline \u00e9"));
    Remember(QStringLiteral("/tables/b/"));
    EXPECT_EQ(Known(), (QStringList{QStringLiteral("/tables/b"),
                                    QStringLiteral("/tables/a \"new\"\nline \u00e9")}));
    ASSERT_TRUE(ForgetCollectionFolder(Catalogue(), QStringLiteral("/tables/b")).ok());
    EXPECT_EQ(Known().size(), 1);
}

TEST_F(CollectionFoldersTest, AFolderStandsForThoseInsideIt) {
    Remember(QStringLiteral("/tables/old"));
    Remember(QStringLiteral("/tables/old/years"));
    Remember(QStringLiteral("/tables/older"));
    EXPECT_EQ(Known(),
              (QStringList{QStringLiteral("/tables/old"), QStringLiteral("/tables/older")}));
    Remember(QStringLiteral("/tables"));
    EXPECT_EQ(Known(), QStringList{QStringLiteral("/tables")});
}

TEST_F(CollectionFoldersTest, TheFirstLeavesWhenThereAreTooMany) {
    for (qsizetype i = 0; i <= kMaxCollectionFolders; ++i)
        Remember(QStringLiteral("/tables/%1").arg(i));
    EXPECT_EQ(Known().size(), kMaxCollectionFolders);
    EXPECT_EQ(Known().front(), QStringLiteral("/tables/1"));
}

TEST_F(CollectionFoldersTest, WhatIsNoListIsToldAndReplacedByTheNextScan) {
    for (const char* const content :
         {"", "[", "{}", "[1]", "[\"/a\", \"\"]", "\xff\xfe", "[\"/a\", [\"/b\"]]"}) {
        Write(content);
        const auto known = CollectionFolders(Catalogue());
        EXPECT_EQ(known.status().code(), base::StatusCode::kCorruption) << content;
        EXPECT_FALSE(ForgetCollectionFolder(Catalogue(), QStringLiteral("/a")).ok());
        Remember(QStringLiteral("/tables"));
        EXPECT_EQ(Known(), QStringList{QStringLiteral("/tables")}) << content;
    }
    Write("[" + QByteArray(2 << 20, ' ') + "\"/a\"]");
    EXPECT_FALSE(CollectionFolders(Catalogue()).ok());
}

}  // namespace
}  // namespace catalogue
