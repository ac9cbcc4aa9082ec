#include "history/change_index.h"

#include "jet/pages/journal_format.h"
#include "jet/tables/automatic_change.h"

#include <algorithm>

namespace history {
namespace {

// Tells rows of one change from each other; that two fall together is as likely as one in 2^64.
std::uint64_t KeyHash(const jet::NotedRow& row, const jet::NoteTable& table) {
    std::uint64_t hash = std::hash<std::u16string>()(table.name);
    const auto add = [&hash](const jet::NotedCell& cell) {
        hash = jet::JournalChecksum(hash, cell.value_or(std::span<const std::byte>()));
    };
    if (row.change == jet::RowChange::kUpdated) {
        for (const jet::NotedCell& cell : row.key)
            add(cell);
        for (std::size_t i = 0; table.key.empty() && i < row.cells.size(); ++i)
            add(row.cells[i].before);
        return hash;
    }
    const auto& whole = row.change == jet::RowChange::kInserted ? &jet::NotedRow::Cell::after
                                                                : &jet::NotedRow::Cell::before;
    for (const std::size_t column : table.key)
        add(row.cells[column].*whole);
    for (std::size_t i = 0; table.key.empty() && i < row.cells.size(); ++i)
        add(row.cells[i].*whole);
    return hash;
}

}  // namespace

std::uint64_t Change::rows() const {
    std::uint64_t sum = 0;
    for (const TableCount& count : tables)
        sum += count.rows;
    return sum;
}

void ChangeIndex::Count(const jet::NotedRow& row, const jet::NoteTable& table, Change& change) {
    change.fields += static_cast<std::uint64_t>(
        std::ranges::count_if(row.cells, [](const jet::NotedRow::Cell& cell) {
            return !jet::SameCell(cell.before, cell.after);
        }));
    auto known = std::ranges::find(change.tables, table.name, &Change::TableCount::table);
    if (known == change.tables.end()) {
        known = change.tables.insert(known, Change::TableCount{table.name, 0});
        met_.emplace_back();
    }
    met_[static_cast<std::size_t>(known - change.tables.begin())].Add(KeyHash(row, table));
}

// Rows that are changed again and again take no more memory than twice that of all rows, or 8 MB.
void ChangeIndex::MetRows::Add(std::uint64_t hash) {
    constexpr std::size_t kUnsettled = 1U << 20;
    if (hashes.size() >= std::max(kUnsettled, 2 * sorted)) Settle();
    hashes.push_back(hash);
}

void ChangeIndex::MetRows::Settle() {
    if (sorted == hashes.size()) return;
    std::ranges::sort(hashes);
    hashes.erase(std::unique(hashes.begin(), hashes.end()), hashes.end());
    sorted = hashes.size();
}

// Only the newest change still grows; the one before is settled when it begins.
void ChangeIndex::SettleNewest() {
    for (std::size_t i = 0; i < met_.size(); ++i) {
        met_[i].Settle();
        changes_.back().tables[i].rows = met_[i].hashes.size();
    }
}

const std::vector<Change>& ChangeIndex::changes() {
    SettleNewest();
    return changes_;
}

bool ChangeIndex::Add(std::span<const std::byte> note, Place place) {
    auto reader = jet::NoteReader::Open(note, std::move(tables_));
    if (!reader.ok()) return false;
    const jet::ChangeLabel label = reader->label();
    if (label.id != last_id_) {
        reader = jet::NoteReader::Open(note);
        if (!reader.ok()) return false;
    }
    const bool continues = label.id == last_id_ || label.undoes == jet::kAutomaticChange;
    if (changes_.empty() || !continues) {
        SettleNewest();
        met_.clear();
        Change begun;
        begun.number = next_number_++;
        begun.label = label;
        if (label.undoes == jet::kAutomaticChange) begun.label.undoes = 0;
        changes_.push_back(std::move(begun));
        places_.emplace_back();
    }
    last_id_ = label.id;
    Change& change = changes_.back();
    places_.back().push_back(place);
    change.missed += reader->missed_rows();
    jet::NotedRow row;
    for (;;) {
        const auto more = reader->Next(row);
        if (!more.ok() || !*more) {
            tables_ = std::move(*reader).TakeTables();
            return more.ok();
        }
        Count(row, reader->tables()[row.table], change);
    }
}

}  // namespace history
