#include "browser/kept_edit.h"

#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

namespace browser {
namespace {

class KeptEditTest : public testing::Test {
protected:
    test_support::TemporaryDir folder;
    QString file = KeptEditFile(folder.filePath(QStringLiteral("pinball.mdb")));
};

TEST_F(KeptEditTest, WhatIsKeptIsTakenOnce) {
    KeptEdit edit;
    for (std::size_t i = 0; i < edit.record.fields.size(); ++i)
        edit.record.fields[i] = QStringLiteral("%1 \u00E4 \"x\"\r\n\U0001F3B1").arg(i);
    edit.record.favorite = true;
    edit.tab = 3;
    ASSERT_TRUE(KeepEdit(file, edit).ok());
    const auto taken = TakeKeptEdit(file);
    ASSERT_TRUE(taken.ok()) << taken.status().message();
    EXPECT_EQ(*taken, edit);
    EXPECT_FALSE(QFile::exists(file));
    const auto again = TakeKeptEdit(file);
    ASSERT_TRUE(again.ok());
    EXPECT_FALSE(again->has_value());
}

TEST_F(KeptEditTest, WhatMakesNoSenseIsToldAndGone) {
    ASSERT_TRUE(KeepEdit(file, {}).ok());
    QFile whole(file);
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    whole.close();
    for (qsizetype length = 0; length + 2 < bytes.size(); length += 7) {
        QFile cut(file);
        ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
        cut.write(bytes.left(length));
        cut.close();
        EXPECT_EQ(TakeKeptEdit(file).status().code(), base::StatusCode::kCorruption) << length;
        EXPECT_FALSE(QFile::exists(file));
    }
}

TEST_F(KeptEditTest, ATabThatDoesNotExistIsAnother) {
    KeptEdit edit;
    edit.tab = 99;
    ASSERT_TRUE(KeepEdit(file, edit).ok());
    const auto taken = TakeKeptEdit(file);
    ASSERT_TRUE(taken.ok() && *taken);
    EXPECT_LT((*taken)->tab, 5);
}

TEST_F(KeptEditTest, AFolderThatIsGoneIsAFailure) {
    EXPECT_FALSE(KeepEdit(folder.filePath(QStringLiteral("none/pinball.mdb-edit")), {}).ok());
}

}  // namespace
}  // namespace browser
