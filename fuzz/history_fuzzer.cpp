// Reads a history file that somebody else has written: its changes, every note of them, what they
// come to, and the order of undo. Then a change is kept in it.
// Input: byte 0 even: the rest is the file itself. Odd: the rest are records (u8 kind, u16 size,
// payload) that get a right header and right checksums, so that their content is looked at.
#include "base/byte_reader.h"
#include "history/folded_change.h"
#include "history/history_file.h"
#include "history/history_format.h"
#include "history/put_back.h"
#include "history/undo_order.h"
#include "support/faulty_file_system.h"

#include <algorithm>
#include <cstdlib>

namespace {

using Bytes = std::vector<std::byte>;

constexpr const char* kPath = "a.mdb";
constexpr std::uint64_t kMark = 77;

Bytes MakeFile(std::span<const std::byte> input) {
    Bytes file;
    std::uint64_t chain = history::AppendHeader(file, {5, 1});
    std::uint64_t offset = 0;
    while (input.size() >= 3) {
        const std::size_t size = std::min<std::size_t>(
            base::LoadLittle<std::uint16_t>(input.data() + 1), input.size() - 3);
        const auto payload = input.subspan(3, size);
        if (std::to_integer<unsigned>(input[0]) % 4 == 0)
            chain = history::AppendMark(file, kMark, chain);
        else
            chain = history::AppendNote(file, {9, ++offset, Bytes(payload.begin(), payload.end())},
                                        chain);
        input = input.subspan(3 + size);
    }
    history::AppendMark(file, kMark, chain);
    return file;
}

void ReadEverything(history::HistoryFile& file) {
    const auto changes = file.Changes();
    if (!changes.ok()) return;
    const history::UndoOrder order = history::OrderOf(*changes);
    if (order.undo.size() + order.redo.size() > changes->size()) std::abort();
    for (const history::Change& change : *changes) {
        (void)history::OriginOf(*changes, change);
        auto notes = file.NotesOf(change.number);
        if (!notes.ok()) std::abort();
        const auto folded = history::FoldedChange::Fold(std::move(notes).value());
        if (!folded.ok()) continue;
        for (const history::FoldedRow& row : folded->rows()) {
            const jet::NoteTable& table = folded->tables()[row.table];
            (void)history::RowName(table, row);
            for (const auto& cell : row.cells) {
                (void)history::CellText(table, cell.column, cell.before);
                (void)history::CellText(table, cell.column, cell.after);
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const std::span input(reinterpret_cast<const std::byte*>(data), size);
    const auto rest = input.subspan(1);
    const bool is_made = (data[0] & 1) != 0;
    test_support::FaultyFileSystem files;
    files.Put(history::HistoryFile::PathFor(kPath),
              is_made ? MakeFile(rest) : Bytes(rest.begin(), rest.end()));
    {
        history::HistoryFile reader(files, kPath);
        ReadEverything(reader);
    }
    history::HistoryFile writer(files, kPath);
    writer.Bind({kMark});
    ReadEverything(writer);
    const auto before = writer.Changes();
    if (!before.ok()) std::abort();
    writer.Keep({{1000, 1, jet::NoteHead({42, 0, 46000, u"Edit"}, jet::TextCodec(4, 1252), 0)}},
                78);
    const auto after = writer.Changes();
    if (!after.ok() || after->empty()) std::abort();
    return 0;
}
