#include "pictures/jpeg_bridge.h"

#include "pictures/test_pictures.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <sys/resource.h>

#include <csignal>

namespace pictures {
namespace {

class JpegBridgeTest : public testing::Test {
protected:
    QTemporaryDir folder;
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

// No file of this process may grow past so many bytes while the guard lives: a full disk in small.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    rlimit before_{};
    void (*handler_)(int) = nullptr;
};

TEST_F(JpegBridgeTest, FullDiskKeepsWhatWasThere) {
    Write("the old picture");
    {
        const SmallDisk disk(1000);
        const auto picture = test_pictures::SectionOf(test_pictures::Colourful(400, 300));
        EXPECT_FALSE(SaveJPG(picture, path, prompts).ok());
    }
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArrayLiteral("the old picture"));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);
}

TEST_F(JpegBridgeTest, NullAddressIsAnEmptyText) {
    EXPECT_EQ(PtrToString(nullptr), QString());
    EXPECT_EQ(PtrToString("abc"), QStringLiteral("abc"));
}

}  // namespace
}  // namespace pictures
