// The bytes of a journal: a header that names the database file it belongs to, then records, each
// with a checksum that continues the one before it. docs/jet.md has the table of offsets. All
// integers little endian. What lies behind the last record with a right checksum was not finished,
// or is left from an older journal. Everything here works on bytes in memory and checks
// whatever it reads.
#pragma once

#include "jet/pages/page_transaction.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace jet {

// magic 16, version 4, page size 4, salt 8, page count 4, zero 4, checksum 8; page 0 follows.
inline constexpr std::size_t kJournalHeaderSize = 48;
// kind 4, page count 4, payload size 8, checksum 8; the payload follows.
inline constexpr std::size_t kRecordHeadSize = 24;

enum class RecordKind : std::uint32_t {
    kTransaction = 1,  // payload: page changes
    kMark = 2,         // payload: the file mark (u64) of the checkpoint that begins here
    kNote = 3,         // payload: the note of the transaction that is the next record
};

struct JournalHeader {
    std::uint32_t page_size = 0;
    std::uint64_t salt = 0;     // random: tells this journal's records from those of older ones
    PageNumber page_count = 0;  // of the database file when the journal was begun
    PageBytes first_page;       // page 0 of the database file at that time
};

struct RecordHead {
    RecordKind kind = RecordKind::kTransaction;
    PageNumber page_count = 0;  // kTransaction: pages of the file after it
    std::uint64_t payload_size = 0;
    std::uint64_t checksum = 0;
};

// The newest content of each page that the journal holds.
using JournalPages = std::map<PageNumber, SharedPage>;

// 64 bits over `seed` and `bytes`. Finds damage, not malice.
std::uint64_t JournalChecksum(std::uint64_t seed, std::span<const std::byte> bytes);

// Appends header and page 0; the answer is the checksum that the first record continues.
std::uint64_t AppendJournalHeader(std::vector<std::byte>& out, const JournalHeader& header);

struct ParsedHeader {
    JournalHeader header;
    std::uint64_t checksum = 0;
};
// `bytes`: at least the header and page 0. nullopt: not a journal, or damaged.
std::optional<ParsedHeader> ParseJournalHeader(std::span<const std::byte> bytes);

// A record is built in place: BeginRecord, payload, FinishRecord. The start is an index into `out`.
std::size_t BeginRecord(std::vector<std::byte>& out);
// `chain`: the checksum before; the answer is this record's.
std::uint64_t FinishRecord(std::vector<std::byte>& out, std::size_t start, RecordKind kind,
                           PageNumber page_count, std::uint64_t chain);

// Appends what turns `before`, the page as the journal has it, into `after`; `before` empty: a page
// of zeros. Requires: pages of one size, at most 32 KiB.
void AppendPageChange(std::vector<std::byte>& out, PageNumber page,
                      std::span<const std::byte> before, std::span<const std::byte> after);
// The same without moves, for a page of which the journal tells changes only: `before` is what the
// database file has (the journal does not know the page yet), or what earlier changes have made of
// that. A page that a power cut has left half old and half new becomes `after` by these, as they
// hold every byte in which the two differ; a move would repeat what is wrong. False: this takes
// more than `limit` bytes; nothing was appended.
bool AppendChangeInFile(std::vector<std::byte>& out, PageNumber page, bool is_known,
                        std::span<const std::byte> before, std::span<const std::byte> after,
                        std::size_t limit);

// Requires: kRecordHeadSize bytes.
RecordHead ParseRecordHead(std::span<const std::byte> bytes);
// Whether `record` (head and payload) continues `chain`.
bool RecordIsWhole(std::span<const std::byte> record, std::uint64_t chain);

// The pages whose content in the database file the payload of a transaction builds on. A payload
// that contradicts the format gives those of its good part.
std::vector<PageNumber> PagesOfFileIn(std::span<const std::byte> payload);

// The pages that the payload of a transaction changes, `known` being the ones before it and
// `of_file` those of the database file that it builds on. nullopt: the payload contradicts the
// format.
std::optional<JournalPages> ParseTransaction(std::span<const std::byte> payload,
                                             std::uint32_t page_size, PageNumber page_count,
                                             const JournalPages& known,
                                             const JournalPages& of_file = {});

}  // namespace jet
