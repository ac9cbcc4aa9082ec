#include "browser/rules_file.h"

#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

namespace browser {
namespace {

struct Encoded {
    const char* name;
    QByteArray bytes;
    const char16_t* text;
};

class DecodeTextTest : public testing::TestWithParam<Encoded> {};

TEST_P(DecodeTextTest, GivesTheText) {
    EXPECT_EQ(DecodeText(GetParam().bytes), QString::fromUtf16(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Encodings, DecodeTextTest,
    testing::Values(Encoded{"Empty", {}, u""}, Encoded{"Ascii", "Kick", u"Kick"},
                    Encoded{"Utf8WithMark", "\xEF\xBB\xBFK\xC3\xA4se", u"Käse"},
                    Encoded{"Utf8WithoutMark", "K\xC3\xA4se \xE2\x82\xAC", u"Käse €"},
                    Encoded{"Utf8BeyondTheBasicPlane", "\xF0\x9F\x8E\xB1", u"\U0001F3B1"},
                    Encoded{"Utf16LittleEndian", QByteArray("\xFF\xFEK\0\xE4\0", 6), u"Kä"},
                    Encoded{"Utf16BigEndian", QByteArray("\xFE\xFF\0K\0\xE4", 6), u"Kä"},
                    Encoded{"CodePage1252", "K\xE4se \x80 \x93q\x94 \x96", u"Käse € “q” –"},
                    Encoded{"CodePage1252WithoutCharacter", "\xE4\x81", u"\u00E4\u0081"},
                    Encoded{"CutUtf8IsCodePage1252", "a\xC3", u"aÃ"},
                    Encoded{"OnlyAMark", "\xEF\xBB\xBF", u""}),
    [](const auto& test) { return std::string(test.param.name); });

struct Lines {
    const char* name;
    const char* text;
    const char* lines;
};

class LinesTest : public testing::TestWithParam<Lines> {};

TEST_P(LinesTest, EndInCarriageReturnAndLineFeed) {
    EXPECT_EQ(LinesWithCrLf(QLatin1String(GetParam().text)), QLatin1String(GetParam().lines));
}

INSTANTIATE_TEST_SUITE_P(Texts, LinesTest,
                         testing::Values(Lines{"Empty", "", ""}, Lines{"OneLine", "a", "a\r\n"},
                                         Lines{"EndedLine", "a\n", "a\r\n"},
                                         Lines{"LineFeeds", "a\nb", "a\r\nb\r\n"},
                                         Lines{"CarriageReturns", "a\rb\r", "a\r\nb\r\n"},
                                         Lines{"Pairs", "a\r\nb\r\n", "a\r\nb\r\n"},
                                         Lines{"EmptyLines", "\n\r\n\r", "\r\n\r\n\r\n"},
                                         Lines{"Mixed", "a\n\rb", "a\r\n\r\nb\r\n"}),
                         [](const auto& test) { return std::string(test.param.name); });

class ReadRulesFileTest : public testing::Test {
protected:
    QString Write(const QByteArray& bytes) {
        QFile file(folder.filePath(QStringLiteral("rules.txt")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(bytes), bytes.size());
        return file.fileName();
    }
    test_support::TemporaryDir folder;
};

TEST_F(ReadRulesFileTest, TheWholeFileIsReadLineByLine) {
    const auto text = ReadRulesFile(Write("\xEF\xBB\xBFHit it.\nTwice."));
    ASSERT_TRUE(text.ok());
    EXPECT_EQ(*text, QStringLiteral("Hit it.\r\nTwice.\r\n"));
}

TEST_F(ReadRulesFileTest, AnEmptyFileIsAnEmptyText) {
    const auto text = ReadRulesFile(Write({}));
    ASSERT_TRUE(text.ok());
    EXPECT_EQ(*text, QString());
}

TEST_F(ReadRulesFileTest, AMissingFileIsNotFound) {
    EXPECT_EQ(ReadRulesFile(folder.filePath(QStringLiteral("none.txt"))).status().code(),
              base::StatusCode::kNotFound);
}

TEST_F(ReadRulesFileTest, FiftyMegabytesAreRead) {
    const QByteArray line("Hit the drop targets and the bumpers.\n");
    const qsizetype count = 50 * 1024 * 1024 / line.size();
    const auto text = ReadRulesFile(Write(line.repeated(count)));
    ASSERT_TRUE(text.ok());
    EXPECT_EQ(text->size(), count * (line.size() + 1));
}

TEST_F(ReadRulesFileTest, AFileOfMoreThanTheLimitIsRefused) {
    QFile file(Write({}));
    ASSERT_TRUE(file.resize(kMaxRulesFileBytes + 1));  // sparse
    EXPECT_EQ(ReadRulesFile(file.fileName()).status().code(), base::StatusCode::kUnsupported);
}

}  // namespace
}  // namespace browser
