#include "maintenance/text_lines.h"

#include "maintenance/failing_files.h"
#include "platform/file_system.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QStringList>

namespace maintenance {
namespace {

class TextLinesTest : public testing::Test {
protected:
    QStringList LinesOf(const QByteArray& content) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        file.close();
        auto lines = TextLines::Open(*files, path);
        EXPECT_TRUE(lines.ok());
        QStringList all;
        while (const auto line = lines->Next())
            all.append(*line);
        EXPECT_TRUE(lines->status().ok());
        return all;
    }

    test_support::TemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("lines.dat"));
    std::unique_ptr<jet::FileSystem> files = platform::MakeFileSystem();
};

TEST_F(TextLinesTest, CrAndLfAndBothEndALine) {
    EXPECT_EQ(LinesOf("a\r\nb\nc\rd\n"), (QStringList{QStringLiteral("a"), QStringLiteral("b"),
                                                      QStringLiteral("c"), QStringLiteral("d")}));
}

TEST_F(TextLinesTest, TheLastLineNeedsNoEnd) {
    EXPECT_EQ(LinesOf("a\r\nb"), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}

TEST_F(TextLinesTest, EmptyLinesCount) {
    EXPECT_EQ(LinesOf("\r\n\r\na\n\n"),
              (QStringList{QString(), QString(), QStringLiteral("a"), QString()}));
}

TEST_F(TextLinesTest, AnEmptyFileHasNoLine) {
    EXPECT_TRUE(LinesOf("").isEmpty());
}

TEST_F(TextLinesTest, BytesAreReadInCodePage1252) {
    EXPECT_EQ(LinesOf("M\xFCnchen \x80 \x93x\x94"),
              QStringList{QString::fromUtf16(u"M\u00FCnchen \u20AC \u201Cx\u201D")});
}

TEST_F(TextLinesTest, NulBytesStay) {
    EXPECT_EQ(LinesOf(QByteArray("a\0b\n", 4)),
              QStringList{QStringLiteral("a") + QChar(u'\0') + u'b'});
}

TEST_F(TextLinesTest, AnEndSplitBetweenTwoPiecesEndsOneLine) {
    constexpr qsizetype kPiece = TextLines::kPieceBytes;
    for (qsizetype length = kPiece - 2; length <= kPiece + 1; ++length) {
        const QByteArray first(length, 'x');
        const QStringList lines = LinesOf(first + "\r\nrest\r\n");
        ASSERT_EQ(lines.size(), 2) << length;
        EXPECT_EQ(lines[0].size(), length);
        EXPECT_EQ(lines[1], QStringLiteral("rest"));
    }
}

TEST_F(TextLinesTest, ALineOfMegabytesIsReadWhole) {
    const QStringList lines = LinesOf(QByteArray(3 << 20, 'x') + "\nnext");
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0].size(), 3 << 20);
    EXPECT_EQ(lines[1], QStringLiteral("next"));
}

TEST_F(TextLinesTest, ALineBeyondTheLimitComesOutEmpty) {
    const QStringList lines =
        LinesOf(QByteArray(static_cast<qsizetype>(TextLines::kMaxLineBytes) + 1, 'x') + "\nnext");
    EXPECT_EQ(lines, (QStringList{QString(), QStringLiteral("next")}));
}

TEST_F(TextLinesTest, AReadErrorEndsTheLinesWithItsStatus) {
    LinesOf("a\nb\n");
    test_support::FailingFiles failing(*files, 2);  // open and size succeed
    auto lines = TextLines::Open(failing, path);
    ASSERT_TRUE(lines.ok());
    EXPECT_FALSE(lines->Next().has_value());
    EXPECT_EQ(lines->status().code(), base::StatusCode::kNoSpace);
    EXPECT_FALSE(lines->Next().has_value());
}

TEST_F(TextLinesTest, AMissingFileIsAnError) {
    EXPECT_EQ(TextLines::Open(*files, path).status().code(), base::StatusCode::kNotFound);
}

}  // namespace
}  // namespace maintenance
