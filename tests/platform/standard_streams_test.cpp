#include "platform/standard_streams.h"

#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace platform {
namespace {

// A pipe whose one end stands for a standard stream that does not block, until the end of the test.
class PipeAs {
public:
    PipeAs(int stream, int its_end) : stream_(stream), kept_(dup(stream)) {
        EXPECT_EQ(pipe(ends_), 0);
        EXPECT_EQ(fcntl(ends_[its_end], F_SETFL, O_NONBLOCK), 0);
        EXPECT_EQ(dup2(ends_[its_end], stream), stream);
        close(ends_[its_end]);
        other_ = ends_[1 - its_end];
    }
    ~PipeAs() {
        Restore();
        CloseOther();
    }
    PipeAs(const PipeAs&) = delete;
    PipeAs& operator=(const PipeAs&) = delete;

    int other() const { return other_; }
    void CloseOther() {
        if (other_ >= 0) close(other_);
        other_ = -1;
    }
    void Restore() {
        if (kept_ < 0) return;
        dup2(kept_, stream_);
        close(kept_);
        kept_ = -1;
    }

private:
    int stream_;
    int kept_;
    int ends_[2] = {-1, -1};
    int other_ = -1;
};

TEST(StandardStreamsTest, AFullPipeThatDoesNotBlockIsWaitedFor) {
    const std::string sent(1'000'000, 'x');
    std::string received;
    std::fflush(stdout);
    PipeAs out(STDOUT_FILENO, 1);
    const int capacity = fcntl(out.other(), F_GETPIPE_SZ);
    std::thread reader([&] {
        int filled = 0;
        EXPECT_TRUE(test_support::WaitFor(
            [&] { return ioctl(out.other(), FIONREAD, &filled) == 0 && filled == capacity; }));
        std::string piece(10'000, ' ');
        for (ssize_t got = 1; got > 0;) {
            got = read(out.other(), piece.data(), piece.size());
            received.append(piece, 0, static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        }
    });
    const base::Status written = WriteTo(StandardStream::kOut, sent);
    out.Restore();
    reader.join();
    EXPECT_TRUE(written.ok()) << written.message();
    EXPECT_EQ(received, sent);
}

TEST(StandardStreamsTest, AnEmptyPipeThatDoesNotBlockIsWaitedFor) {
    PipeAs in(STDIN_FILENO, 0);
    std::atomic<bool> begins = false;
    std::thread writer([&] {
        EXPECT_TRUE(test_support::WaitFor([&] { return begins.load(); }));
        for (const std::string word : {"one ", "two"})
            EXPECT_EQ(write(in.other(), word.data(), word.size()),
                      static_cast<ssize_t>(word.size()));
        in.CloseOther();
    });
    begins = true;
    const auto bytes = ReadStandardInput(100);
    writer.join();
    ASSERT_TRUE(bytes.ok()) << bytes.status().message();
    EXPECT_EQ(*bytes, QByteArray("one two"));
}

}  // namespace
}  // namespace platform
