// Copies of a database that somebody else is changing.
#include "jet/pages/page_copy.h"

#include "jet/pages/journal.h"

#include "support/faulty_file_system.h"
#include "support/forwarding_files.h"
#include "support/make_pages.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>

namespace {

using jet::PageNumber;
using test_support::FaultyFileSystem;
using test_support::MakePages;

using test_support::kDatabasePath;
constexpr std::size_t kAt = 100;

// The files of another file system, and something that happens before each opening of one of them
// and between the halves of each long reading.
class WatchedFiles final : public test_support::ForwardingFiles {
public:
    explicit WatchedFiles(jet::FileSystem& files) : ForwardingFiles(files) {}
    std::function<void()> on_step;

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        if (on_step) on_step();
        if (!refused.empty() && path == refused)
            return base::Status(base::StatusCode::kPermissionDenied, "Not yours.");
        ASSIGN_OR_RETURN(auto file, ForwardingFiles::Open(path, mode));
        return std::unique_ptr<jet::File>(std::make_unique<WatchedFile>(std::move(file), *this));
    }
    std::filesystem::path refused;

private:
    class WatchedFile final : public test_support::ForwardingFile {
    public:
        WatchedFile(std::unique_ptr<jet::File> file, const WatchedFiles& files)
            : ForwardingFile(std::move(file)), files_(files) {}
        base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
            constexpr std::size_t kAPage = 4096;
            if (bytes.size() <= 2 * kAPage) return ForwardingFile::ReadAt(offset, bytes);
            RETURN_IF_ERROR(ForwardingFile::ReadAt(offset, bytes.first(2 * kAPage)));
            if (files_.on_step) files_.on_step();
            return ForwardingFile::ReadAt(offset + 2 * kAPage, bytes.subspan(2 * kAPage));
        }

    private:
        const WatchedFiles& files_;
    };
};

class PageCopyTest : public testing::Test {
protected:
    void SetUp() override {
        files_.Put(kDatabasePath, MakePages(1, 4));
        jet::PageStoreOptions options;
        options.flush_delay = {};
        auto opened = jet::OpenPageStore(files_, kDatabasePath, options);
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
    auto copy = jet::CopyPages(files_, kDatabasePath);
    ASSERT_TRUE(copy.ok()) << copy.status().message();
    EXPECT_EQ(ByteAt(**copy, 1), 7);
    EXPECT_EQ((*copy)->page_count(), 4u);
    ASSERT_TRUE(writer_->Flush().ok());
    copy = jet::CopyPages(files_, kDatabasePath);
    ASSERT_TRUE(copy.ok());
    EXPECT_EQ(ByteAt(**copy, 1), 7);
}

TEST_F(PageCopyTest, ItsChangesStayInIt) {
    auto copy = jet::CopyPages(files_, kDatabasePath);
    ASSERT_TRUE(copy.ok());
    const auto before = files_.Get(kDatabasePath);
    ASSERT_TRUE((*copy)->Begin().ok());
    (*(*copy)->Change(1))[kAt] = std::byte{9};
    ASSERT_TRUE((*copy)->Commit().ok());
    EXPECT_EQ(ByteAt(**copy, 1), 9);
    EXPECT_EQ(files_.Get(kDatabasePath), before);
    EXPECT_NE(ByteAt(*writer_, 1), 9);
}

// Whatever the writer does at any two steps of the reading, commits and checkpoints: one page of
// two is never newer than the other.
TEST_F(PageCopyTest, IsWholeWhateverHappensMeanwhile) {
    constexpr int kSteps = 8;  // openings and halves of readings
    constexpr std::array<const char*, 6> kActions = {"", "w", "f", "wf", "fw", "wfw"};
    WatchedFiles watched(files_);
    int value = 0;
    const auto act = [&](const std::string& actions) {
        for (const char action : actions) {
            if (action == 'w')
                Write(value = value % 100 + 1);
            else
                ASSERT_TRUE(writer_->Flush().ok());
        }
    };
    for (const char* before : {"w", "wf"})
        for (int first = 0; first < kSteps; ++first)
            for (int second = first; second < kSteps; ++second)
                for (const char* at_first : kActions)
                    for (const char* at_second : kActions) {
                        watched.on_step = {};
                        act(before);
                        const int at_least = value;
                        int step = 0;
                        watched.on_step = [&] {
                            if (step == first) act(at_first);
                            if (step == second) act(at_second);
                            ++step;
                        };
                        const auto copy = jet::CopyPages(watched, kDatabasePath);
                        ASSERT_TRUE(copy.ok()) << copy.status().message();
                        const std::string what = std::string(before) + ' ' + at_first + '@' +
                                                 std::to_string(first) + ' ' + at_second + '@' +
                                                 std::to_string(second);
                        ASSERT_EQ(ByteAt(**copy, 1), ByteAt(**copy, 2)) << what;
                        const int newer = (ByteAt(**copy, 1) - at_least + 100) % 100;
                        ASSERT_LE(newer, 4) << what;
                    }
}

// Without its journal the copy would lack what was committed last.
TEST_F(PageCopyTest, AJournalThatCannotBeReadIsAFailure) {
    Write(7);
    WatchedFiles watched(files_);
    watched.refused = jet::Journal::PathFor(kDatabasePath);
    EXPECT_FALSE(jet::CopyPages(watched, kDatabasePath).ok());
}

TEST_F(PageCopyTest, GivesUpWhenTheFileNeverRests) {
    WatchedFiles watched(files_);
    int value = 0;
    watched.on_step = [&] {
        Write(value++ % 100);
        EXPECT_TRUE(writer_->Flush().ok());
    };
    const auto copy = jet::CopyPages(watched, kDatabasePath);
    ASSERT_FALSE(copy.ok());
    EXPECT_EQ(copy.status().code(), base::StatusCode::kBusy);
}

TEST_F(PageCopyTest, SaysWhatIsWrongWithTheFile) {
    EXPECT_EQ(jet::CopyPages(files_, "folder/none.mdb").status().number(), 3024);
    files_.Put("folder/text.mdb", FaultyFileSystem::Bytes(5000, std::byte{'a'}));
    EXPECT_EQ(jet::CopyPages(files_, "folder/text.mdb").status().number(), 3343);
}

}  // namespace
