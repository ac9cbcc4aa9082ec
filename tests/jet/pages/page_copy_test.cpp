// Copies of a database that somebody else is changing.
#include "jet/pages/page_copy.h"

#include "support/faulty_file_system.h"
#include "support/forwarding_files.h"
#include "support/make_pages.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using jet::PageNumber;
using test_support::FaultyFileSystem;
using test_support::MakePages;

constexpr const char* kPath = "folder/tables.mdb";
constexpr std::size_t kAt = 100;

// The files of another file system, and something that happens before each opening of one of them.
class WatchedFiles final : public test_support::ForwardingFiles {
public:
    explicit WatchedFiles(jet::FileSystem& files) : ForwardingFiles(files) {}
    std::function<void(const std::filesystem::path&)> on_open;

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        if (on_open) on_open(path);
        return ForwardingFiles::Open(path, mode);
    }

private:
};

class PageCopyTest : public testing::Test {
protected:
    void SetUp() override {
        files_.Put(kPath, MakePages(1, 4));
        jet::PageStoreOptions options;
        options.flush_delay = {};
        auto opened = jet::OpenPageStore(files_, kPath, options);
        ASSERT_TRUE(opened.ok()) << opened.status().message();
        writer_ = std::move(opened).value();
    }

    // One transaction that gives two pages the same byte.
    void Write(int value) {
        ASSERT_TRUE(writer_->Begin().ok());
        for (const PageNumber page : {PageNumber{1}, PageNumber{2}}) {
            const auto bytes = writer_->Change(page);
            ASSERT_TRUE(bytes.ok());
            (*bytes)[kAt] = static_cast<std::byte>(value);
        }
        ASSERT_TRUE(writer_->Commit().ok());
    }

    static int ByteAt(jet::PageStore& store, PageNumber page) {
        const auto view = store.Read(page);
        EXPECT_TRUE(view.ok());
        return view.ok() ? std::to_integer<int>(view->bytes()[kAt]) : -1;
    }

    FaultyFileSystem files_;
    std::unique_ptr<jet::PageStore> writer_;
};

TEST_F(PageCopyTest, HasWhatWasCommittedLast) {
    Write(7);  // in the journal only
    auto copy = jet::CopyPages(files_, kPath);
    ASSERT_TRUE(copy.ok()) << copy.status().message();
    EXPECT_EQ(ByteAt(**copy, 1), 7);
    EXPECT_EQ((*copy)->page_count(), 4u);
    ASSERT_TRUE(writer_->Flush().ok());
    copy = jet::CopyPages(files_, kPath);
    ASSERT_TRUE(copy.ok());
    EXPECT_EQ(ByteAt(**copy, 1), 7);
}

TEST_F(PageCopyTest, ItsChangesStayInIt) {
    auto copy = jet::CopyPages(files_, kPath);
    ASSERT_TRUE(copy.ok());
    const auto before = files_.Get(kPath);
    ASSERT_TRUE((*copy)->Begin().ok());
    (*(*copy)->Change(1))[kAt] = std::byte{9};
    ASSERT_TRUE((*copy)->Commit().ok());
    EXPECT_EQ(ByteAt(**copy, 1), 9);
    EXPECT_EQ(files_.Get(kPath), before);
    EXPECT_NE(ByteAt(*writer_, 1), 9);
}

// Whatever the writer does between two openings of a file: commits and checkpoints, one page of two
// is never newer than the other.
TEST_F(PageCopyTest, IsWholeWhateverHappensMeanwhile) {
    WatchedFiles watched(files_);
    for (int happens_at = 0; happens_at < 6; ++happens_at)
        for (const bool flushes : {false, true}) {
            Write(happens_at * 10 + 1);
            int openings = 0;
            watched.on_open = [&](const std::filesystem::path&) {
                if (openings++ != happens_at) return;
                Write(happens_at * 10 + 2);
                if (flushes) {
                    ASSERT_TRUE(writer_->Flush().ok());
                }
            };
            const auto copy = jet::CopyPages(watched, kPath);
            ASSERT_TRUE(copy.ok()) << copy.status().message();
            EXPECT_EQ(ByteAt(**copy, 1), ByteAt(**copy, 2)) << happens_at << flushes;
            EXPECT_GE(ByteAt(**copy, 1), happens_at * 10 + 1) << happens_at << flushes;
        }
}

TEST_F(PageCopyTest, GivesUpWhenTheFileNeverRests) {
    WatchedFiles watched(files_);
    int value = 0;
    watched.on_open = [&](const std::filesystem::path&) {
        Write(value++ % 100);
        EXPECT_TRUE(writer_->Flush().ok());
    };
    const auto copy = jet::CopyPages(watched, kPath);
    ASSERT_FALSE(copy.ok());
    EXPECT_EQ(copy.status().code(), base::StatusCode::kBusy);
}

TEST_F(PageCopyTest, SaysWhatIsWrongWithTheFile) {
    EXPECT_EQ(jet::CopyPages(files_, "folder/none.mdb").status().number(), 3024);
    files_.Put("folder/text.mdb", FaultyFileSystem::Bytes(5000, std::byte{'a'}));
    EXPECT_EQ(jet::CopyPages(files_, "folder/text.mdb").status().number(), 3343);
}

}  // namespace
