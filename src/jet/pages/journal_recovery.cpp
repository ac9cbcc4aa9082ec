#include "jet/pages/journal_recovery.h"

#include "base/byte_reader.h"
#include "jet/pages/file_mark.h"
#include "jet/pages/sectors.h"

#include <algorithm>
#include <array>
#include <optional>

namespace jet {
namespace {

// Reads the records in order and collects the result.
class JournalReader {
public:
    // Both sizes in bytes.
    JournalReader(const File& journal, std::uint64_t size, const File& database,
                  std::uint64_t database_size)
        : journal_(journal), size_(size), database_(database), database_size_(database_size) {}

    // false: not a journal for pages of this size.
    base::Result<bool> ReadHeader(std::uint32_t page_size) {
        const std::uint64_t wanted = kJournalHeaderSize + page_size;
        if (size_ < wanted) return false;
        std::vector<std::byte> bytes(wanted);
        RETURN_IF_ERROR(journal_.ReadAt(0, bytes));
        const auto parsed = ParseJournalHeader(bytes);
        if (!parsed || parsed->header.page_size != page_size) return false;
        header_ = parsed->header;
        found_.page_count = header_.page_count;
        found_.end.offset = wanted;
        found_.end.chain = parsed->checksum;
        found_.end.salt = header_.salt;
        next_ = {wanted, parsed->checksum};
        first_pages_.push_back(std::make_shared<PageBytes>(header_.first_page));
        found_.marks.push_back(ReadFileMark(header_.first_page));
        return true;
    }

    base::Status ReadRecords() {
        for (bool more = true; more;) {
            ASSIGN_OR_RETURN(more, ReadRecord());
        }
        return {};
    }

    bool has_transactions() const { return has_transactions_; }

    // Whether `database` can be the file that this journal was written beside.
    base::Result<bool> BelongsToDatabase() const {
        if (database_size_ < std::uint64_t{header_.page_count} * header_.page_size ||
            database_size_ > std::uint64_t{found_.page_count} * header_.page_size)
            return false;
        PageBytes first_page(header_.page_size);
        RETURN_IF_ERROR(database_.ReadAt(0, first_page));
        const std::uint64_t mark = ReadFileMark(first_page);
        const bool is_marked = mark != 0 && std::ranges::count(found_.marks, mark) != 0;
        return is_marked && IsKnownFirstPage(first_page);
    }

    RecoveredJournal Take() && { return std::move(found_); }

private:
    // false: the good part ends here.
    base::Result<bool> ReadRecord() {
        const std::uint64_t left = size_ - next_.offset;
        if (left < kRecordHeadSize) return false;
        std::vector<std::byte> record(kRecordHeadSize);
        RETURN_IF_ERROR(journal_.ReadAt(next_.offset, record));
        const RecordHead head = ParseRecordHead(record);
        if (head.payload_size > left - kRecordHeadSize) return false;
        record.resize(kRecordHeadSize + head.payload_size);
        RETURN_IF_ERROR(journal_.ReadAt(next_.offset + kRecordHeadSize,
                                        std::span(record).subspan(kRecordHeadSize)));
        if (!RecordIsWhole(record, next_.chain)) return false;
        const auto payload = std::span(record).subspan(kRecordHeadSize);
        if (head.kind == RecordKind::kNote) {
            note_ = {header_.salt, next_.offset, {payload.begin(), payload.end()}};
        } else {
            ASSIGN_OR_RETURN(const bool is_right, Apply(head, payload));
            if (!is_right) return false;
            note_.reset();
        }
        next_ = {next_.offset + record.size(), head.checksum};
        // A note without its transaction never happened.
        if (!note_) {
            found_.end.offset = next_.offset;
            found_.end.chain = next_.chain;
        }
        return true;
    }

    base::Result<bool> Apply(const RecordHead& head, std::span<const std::byte> payload) {
        if (head.kind == RecordKind::kMark) {
            const auto mark = base::LittleAt<std::uint64_t>(payload, 0);
            if (mark) found_.marks.push_back(*mark);
            return mark.has_value();
        }
        if (head.kind != RecordKind::kTransaction || head.page_count < found_.page_count)
            return false;
        RETURN_IF_ERROR(ReadPagesOfFile(payload));
        const auto changed = ParseTransaction(payload, header_.page_size, head.page_count,
                                              found_.pages, pages_of_file_);
        if (!changed) return false;
        for (const auto& [number, page] : *changed)
            found_.pages[number] = page;
        found_.page_count = head.page_count;
        if (note_) found_.end.notes.push_back(std::move(*note_));
        has_transactions_ = true;
        RememberFirstPage();
        return true;
    }

    // As they are now: old, new, or by sectors the one or the other.
    base::Status ReadPagesOfFile(std::span<const std::byte> payload) {
        for (const PageNumber number : PagesOfFileIn(payload)) {
            if (number == 0 || number >= header_.page_count) continue;  // contradicts the format
            auto page = std::make_shared<PageBytes>(header_.page_size);
            // A shorter file is another one, so that the content does not matter.
            const std::uint64_t offset = std::uint64_t{number} * header_.page_size;
            if (offset + page->size() <= database_size_)
                RETURN_IF_ERROR(database_.ReadAt(offset, *page));
            pages_of_file_[number] = std::move(page);
        }
        return {};
    }

    void RememberFirstPage() {
        const auto found = found_.pages.find(0);
        if (found != found_.pages.end() && found->second != first_pages_.back())
            first_pages_.push_back(found->second);
    }

    // Each sector of page 0 must be one that the file had when the journal was begun or was given
    // since.
    bool IsKnownFirstPage(std::span<const std::byte> page) const {
        for (std::size_t sector = 0; sector < page.size() / kSectorSize; ++sector) {
            const bool is_known = std::ranges::any_of(
                first_pages_, [&](const auto& known) { return SameSector(page, *known, sector); });
            if (!is_known) return false;
        }
        return true;
    }

    const File& journal_;
    std::uint64_t size_;
    const File& database_;
    std::uint64_t database_size_;
    JournalHeader header_;
    RecoveredJournal found_;
    struct Place {
        std::uint64_t offset = 0;
        std::uint64_t chain = 0;
    };
    Place next_;                      // behind the last record that was read
    std::optional<CommitNote> note_;  // that record, if it was a note
    bool has_transactions_ = false;
    std::vector<SharedPage> first_pages_;
    JournalPages pages_of_file_;  // that transactions build on
};

}  // namespace

base::Result<LeftOverJournal> ReadJournal(const File& journal, const File& database,
                                          std::uint32_t page_size) {
    ASSIGN_OR_RETURN(const std::uint64_t size, journal.Size());
    ASSIGN_OR_RETURN(const std::uint64_t database_size, database.Size());
    JournalReader reader(journal, size, database, database_size);
    ASSIGN_OR_RETURN(const bool is_journal, reader.ReadHeader(page_size));
    if (!is_journal) return LeftOverJournal{};
    RETURN_IF_ERROR(reader.ReadRecords());
    if (!reader.has_transactions()) return LeftOverJournal{};
    ASSIGN_OR_RETURN(const bool belongs, reader.BelongsToDatabase());
    if (!belongs) return LeftOverJournal{JournalOwner::kAnotherFile, {}};
    return LeftOverJournal{JournalOwner::kThisFile, std::move(reader).Take()};
}

}  // namespace jet
