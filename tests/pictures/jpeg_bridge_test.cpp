#include "pictures/jpeg_bridge.h"

#include "pictures/test_pictures.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <vector>

namespace pictures::Helpers {
namespace {

class JpegBridgeTest : public testing::Test {
protected:
    test_support::TemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("picture.jpg"));
    test_support::FakePrompts prompts;
    cDIBSection section;

    void Write(const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
};

TEST_F(JpegBridgeTest, SavedPictureIsReadBackInItsSize) {
    ASSERT_TRUE(SaveJPG(test_pictures::SectionOf(test_pictures::Colourful(101, 75)), path, prompts)
                    .value());
    ASSERT_TRUE(LoadJPG(section, path, 1, prompts).value());
    EXPECT_EQ(section.dib_width(), 101);
    EXPECT_EQ(section.dib_height(), 75);
    ASSERT_TRUE(LoadJPG(section, path, 8, prompts).value());
    EXPECT_EQ(section.dib_width(), 13);
    EXPECT_EQ(section.dib_height(), 10);
    EXPECT_TRUE(prompts.messages.empty());
}

// The tables that a JPEG encoder divides by, each in the file's zigzag order.
std::vector<std::vector<int>> QuantisationTables(const QByteArray& jpeg) {
    std::vector<std::vector<int>> tables;
    for (qsizetype at = 2; at + 4 < jpeg.size() && jpeg[at] == '\xFF';) {
        const auto byte = [&](qsizetype i) {
            return int{static_cast<unsigned char>(jpeg[at + i])};
        };
        const int length = byte(2) * 256 + byte(3);
        if (byte(1) == 0xDB)
            for (int table = 4; table + 65 <= length + 2; table += 65) {
                tables.emplace_back();
                for (int i = 1; i <= 64; ++i)
                    tables.back().push_back(byte(table + i));
            }
        if (byte(1) == 0xDA) break;
        at += 2 + length;
    }
    return tables;
}

// Quality 75 halves the example tables of ITU-T T.81, annex K (here in zigzag order): the usual
// scale of the Independent JPEG Group, 200 - 2 * 75 percent.
TEST_F(JpegBridgeTest, ASavedPictureHasTheQuantisationOfQuality75) {
    const std::vector<std::vector<int>> annex_k = {
        {16, 11, 12,  14,  12,  10, 16, 14,  13,  14,  18,  17,  16, 19,  24,  40,
         26, 24, 22,  22,  24,  49, 35, 37,  29,  40,  58,  51,  61, 60,  57,  51,
         56, 55, 64,  72,  92,  78, 64, 68,  87,  69,  55,  56,  80, 109, 81,  87,
         95, 98, 103, 104, 103, 62, 77, 113, 121, 112, 100, 120, 92, 101, 103, 99},
        {17, 18, 18, 24, 21, 24, 47, 26, 26, 47, 99, 66, 56, 66, 99, 99, 99, 99, 99, 99, 99, 99,
         99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99,
         99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99}};
    std::vector<std::vector<int>> expected = annex_k;
    for (auto& table : expected)
        for (int& value : table)
            value = (value * 50 + 50) / 100;
    ASSERT_TRUE(SaveJPG(test_pictures::SectionOf(test_pictures::Colourful(101, 75)), path, prompts)
                    .value());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(QuantisationTables(file.readAll()), expected);
}

TEST_F(JpegBridgeTest, MessageHasTitleCodeTextAndContextLast) {
    ReportIJLError(QStringLiteral("FAILED TO READ IMAGE DATA - "), -18, QStringLiteral("Bad data"),
                   prompts);
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0],
              (platform::Message{.text = QStringLiteral(
                                     "IJL ERROR: [-18] - Bad data - FAILED TO READ IMAGE DATA - "),
                                 .title = QStringLiteral("Intel(R) JPEG Library"),
                                 .icon = platform::MessageIcon::kExclamation}));
}

TEST_F(JpegBridgeTest, UnreadableParametersAreReported) {
    Write("no picture");
    EXPECT_FALSE(LoadJPG(section, path, 1, prompts).value());
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_TRUE(prompts.messages[0].text.startsWith(QStringLiteral("IJL ERROR: [")));
    EXPECT_TRUE(
        prompts.messages[0].text.endsWith(QStringLiteral(" - FAILED TO READ IMAGE PARAMS - ")));
}

TEST_F(JpegBridgeTest, TruncatedDataIsReported) {
    const auto jpeg = test_pictures::Encoded(test_pictures::Colourful(101, 75), "JPG");
    Write(QByteArray(reinterpret_cast<const char*>(jpeg.data()),
                     static_cast<qsizetype>(jpeg.size() / 2)));
    EXPECT_FALSE(LoadJPG(section, path, 1, prompts).value());
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_TRUE(
        prompts.messages[0].text.endsWith(QStringLiteral(" - FAILED TO READ IMAGE DATA - ")));
    EXPECT_TRUE(section.empty());
}

TEST_F(JpegBridgeTest, MissingFileIsAnErrorOfTheCaller) {
    EXPECT_FALSE(LoadJPG(section, path, 1, prompts).ok());
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(JpegBridgeTest, SavingNothingIsReported) {
    EXPECT_FALSE(SaveJPG(section, path, prompts).value());
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_TRUE(prompts.messages[0].text.endsWith(QStringLiteral(" - Failed to save to JPG")));
    EXPECT_FALSE(QFileInfo::exists(path));
}

TEST_F(JpegBridgeTest, UnwritableFolderLeavesNothingBehind) {
    const QString nowhere = folder.filePath(QStringLiteral("none/picture.jpg"));
    const auto section_of = test_pictures::SectionOf(test_pictures::Colourful(8, 8));
    EXPECT_FALSE(SaveJPG(section_of, nowhere, prompts).ok());
    EXPECT_FALSE(QFileInfo::exists(nowhere));
}

TEST_F(JpegBridgeTest, NullAddressIsAnEmptyText) {
    EXPECT_EQ(PtrToString(nullptr), QString());
    EXPECT_EQ(PtrToString("abc"), QStringLiteral("abc"));
}

}  // namespace
}  // namespace pictures::Helpers
