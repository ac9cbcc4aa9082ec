// Files that are none on a disk.
#include "exchange/exchange_file.h"
#include "support/qt_text.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

#include <thread>

#include <sys/stat.h>

namespace exchange {
namespace {

using test_support::S;

// A file that cannot be read on would look like one that ends there.
TEST(UnusualFileTest, AFileThatCannotBeReadIsAFailure) {
    const auto bytes = ReadFile(S("/proc/self/mem"));
    EXPECT_EQ(bytes.status().code(), base::StatusCode::kIoError) << bytes.status().message();
}

TEST(UnusualFileTest, APipeIsReadToItsEnd) {
    test_support::TemporaryDir folder;
    const QString path = folder.filePath(S("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    const QByteArray content = QByteArray("ID,Author\r\n1,x\r\n").repeated(10'000);
    std::thread writer([&] {
        QFile pipe(path);
        EXPECT_TRUE(pipe.open(QIODevice::WriteOnly));
        EXPECT_EQ(pipe.write(content), content.size());
    });
    const auto bytes = ReadFile(path);
    writer.join();
    ASSERT_TRUE(bytes.ok()) << bytes.status().message();
    EXPECT_EQ(*bytes, content);
}

}  // namespace
}  // namespace exchange
