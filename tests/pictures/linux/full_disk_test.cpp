// A picture that does not fit on the disk.
#include "pictures/jpeg_bridge.h"
#include "pictures/test_pictures.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <csignal>

#include <sys/resource.h>

namespace pictures::Helpers {
namespace {

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

TEST(SavedPictureTest, FullDiskKeepsWhatWasThere) {
    const test_support::TemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("picture.jpg"));
    QFile old(path);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("the old picture");
    old.close();
    test_support::FakePrompts prompts;
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

}  // namespace
}  // namespace pictures::Helpers
