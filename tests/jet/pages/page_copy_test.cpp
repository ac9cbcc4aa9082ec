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

// What the writer does at two steps of a reading: w a commit, f a checkpoint.
class PageCopyMeanwhileTest : public PageCopyTest {
protected:
    // Calls `read` for each pair of steps and actions; at_least_: what was committed before it.
    void ForAll(int steps, const std::function<void(const std::string& what)>& read) {
        constexpr std::array<const char*, 6> kActions = {"", "w", "f", "wf", "fw", "wfw"};
        for (const char* before : {"w", "wf"})
            for (int first = 0; first < steps; ++first)
                for (int second = first; second < steps; ++second)
                    for (const char* at_first : kActions)
                        for (const char* at_second : kActions) {
                            watched_.on_step = {};
                            Act(before);
                            at_least_ = value_;
                            int step = 0;
                            watched_.on_step = [&] {
                                if (step == first) Act(at_first);
                                if (step == second) Act(at_second);
                                ++step;
                            };
                            read(std::string(before) + ' ' + at_first + '@' +
                                 std::to_string(first) + ' ' + at_second + '@' +
                                 std::to_string(second));
                            if (HasFatalFailure()) return;
                        }
    }
    void ExpectOneNewState(int of_one_page, int of_the_other, const std::string& what) const {
        ASSERT_EQ(of_one_page, of_the_other) << what;
        ASSERT_LE((of_one_page - at_least_ + 100) % 100, 4) << what;
    }

    WatchedFiles watched_{files_};

private:
    void Act(const std::string& actions) {
        for (const char action : actions) {
            if (action == 'w')
                Write(value_ = value_ % 100 + 1);
            else
                ASSERT_TRUE(writer_->Flush().ok());
        }
    }

    int value_ = 0;
    int at_least_ = 0;
};

// One page of two is never newer than the other. Steps: openings and halves of readings.
TEST_F(PageCopyMeanwhileTest, IsWholeWhateverHappens) {
    ForAll(8, [&](const std::string& what) {
        const auto copy = jet::CopyPages(watched_, kDatabasePath);
        ASSERT_TRUE(copy.ok()) << copy.status().message();
        ExpectOneNewState(ByteAt(**copy, 1), ByteAt(**copy, 2), what);
    });
}

// Steps: openings and pages. What was changed is told, what was not is not.
TEST_F(PageCopyMeanwhileTest, SteadyPagesAreOfOneStateOrNotSteady) {
    int steady = 0;
    ForAll(9, [&](const std::string& what) {
        std::vector<int> bytes;
        const auto done =
            jet::ReadSteadyPages(watched_, kDatabasePath, [&](const jet::PageSource& pages) {
                std::vector<std::byte> page(pages.page_size);
                for (PageNumber number = 0; number < pages.page_count; ++number) {
                    watched_.on_step();
                    RETURN_IF_ERROR(pages.read(number, page));
                    bytes.push_back(std::to_integer<int>(page[kAt]));
                }
                return base::Status();
            });
        if (!done.ok() || !*done) return;
        ASSERT_EQ(bytes.size(), 4u);
        ExpectOneNewState(bytes[1], bytes[2], what);
        ++steady;
    });
    // Half of the cases in which nothing happens, at the least.
    EXPECT_GT(steady, 45);
}

TEST_F(PageCopyTest, SteadyPagesAreTheBytesOfTheFile) {
    Write(7);  // in the journal only
    const auto whole = jet::CopyFileBytes(files_, kDatabasePath);
    ASSERT_TRUE(whole.ok());
    std::vector<std::byte> bytes;
    const auto steady =
        jet::ReadSteadyPages(files_, kDatabasePath, [&](const jet::PageSource& pages) {
            bytes.resize(std::size_t{pages.page_size} * pages.page_count);
            for (PageNumber page = 0; page < pages.page_count; ++page)
                RETURN_IF_ERROR(
                    pages.read(page, std::span(bytes).subspan(std::size_t{page} * pages.page_size,
                                                              pages.page_size)));
            return base::Status();
        });
    ASSERT_TRUE(steady.ok());
    EXPECT_TRUE(*steady);
    EXPECT_EQ(bytes, *whole);
}

TEST_F(PageCopyTest, WhatTheReaderSaysIsHandedOn) {
    const auto steady = jet::ReadSteadyPages(files_, kDatabasePath, [](const jet::PageSource&) {
        return base::Status(base::StatusCode::kNoSpace, "full");
    });
    EXPECT_EQ(steady.status().code(), base::StatusCode::kNoSpace);
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
