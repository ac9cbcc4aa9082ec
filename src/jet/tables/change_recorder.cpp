#include "jet/tables/change_recorder.h"

#include "jet/rows/field_codec.h"
#include "jet/rows/long_value.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <numeric>

namespace jet {
namespace {

// Appends a cell of a row; false: it cannot be read.
bool AppendCell(const RecordedTable& table, const ColumnDefinition& column, const RowView& row,
                Bytes& out) {
    const bool bit = row.Bit(column.number);
    if (column.type == ColumnType::kBoolean) {
        out.push_back(std::byte{2});
        out.push_back(static_cast<std::byte>(bit));
        return true;
    }
    if (!bit) {
        out.push_back(std::byte{0});
        return true;
    }
    const auto field = row.Field(column);
    if (!field) return false;
    if (column.is_long_value()) {
        const auto content = ReadLongValue(table.file, *field);
        if (!content.ok()) return false;
        AppendNoteCell(out, std::span<const std::byte>(*content));
        return true;
    }
    const std::size_t size = FixedSize(column.type);
    if (field->size() < size) return false;
    const auto content = size == 0 ? *field : field->first(size);
    if (content.size() >= 0x7F) {
        AppendNoteCell(out, content);
        return true;
    }
    const std::size_t at = out.size();
    out.resize(at + 1 + content.size());
    out[at] = static_cast<std::byte>(content.size() + 1);
    if (!content.empty()) std::memcpy(out.data() + at + 1, content.data(), content.size());
    return true;
}

bool AppendCells(const RecordedTable& table, std::span<const std::size_t> columns,
                 const RowView& row, Bytes& out) {
    return std::ranges::all_of(columns, [&](std::size_t position) {
        return AppendCell(table, table.definition.columns[position], row, out);
    });
}

// Takes the bytes of one cell, its size included, off the front of cells that AppendCell has made.
std::span<const std::byte> TakeCell(std::span<const std::byte>& cells) {
    std::uint64_t size = 0;
    std::size_t at = 0;
    for (unsigned shift = 0;; shift += 7) {
        const auto byte = std::to_integer<std::uint64_t>(cells[at++]);
        size |= (byte & 0x7F) << shift;
        if (byte < 0x80) break;
    }
    const auto cell = cells.first(at + (size == 0 ? 0 : size - 1));
    cells = cells.subspan(cell.size());
    return cell;
}

std::vector<std::size_t> PrimaryKeyOf(const TableDefinition& definition) {
    std::vector<std::size_t> key;
    for (const LogicalIndex& index : definition.logical_indexes) {
        if (index.kind != IndexKind::kPrimary) continue;
        for (const RealIndexColumn& column : definition.real_indexes[index.real].columns)
            for (std::size_t i = 0; i < definition.columns.size(); ++i)
                if (definition.columns[i].number == column.column) key.push_back(i);
        break;
    }
    return key;
}

void AppendTable(Bytes& out, const RecordedTable& table, std::uint64_t number,
                 const std::vector<std::size_t>& key) {
    out.push_back(static_cast<std::byte>(NoteTag::kTable));
    AppendNoteNumber(out, number);
    AppendNoteText(out, table.name);
    AppendNoteNumber(out, table.definition.columns.size());
    for (const ColumnDefinition& column : table.definition.columns) {
        AppendNoteText(out, column.name);
        out.push_back(static_cast<std::byte>(column.type));
        out.push_back(static_cast<std::byte>(column.scale));
    }
    AppendNoteNumber(out, key.size());
    for (const std::size_t position : key)
        AppendNoteNumber(out, position);
}

}  // namespace

const ChangeRecorder::Known& ChangeRecorder::TableOf(const RecordedTable& table) {
    if (last_ != tables_.end() && last_->first == table.definition.page) return last_->second;
    const auto [found, is_new] = tables_.try_emplace(table.definition.page);
    last_ = found;
    Known& known = found->second;
    if (!is_new) return known;
    known.number = next_number_++;
    known.key = PrimaryKeyOf(table.definition);
    known.every.resize(table.definition.columns.size());
    std::iota(known.every.begin(), known.every.end(), std::size_t{0});
    AppendTable(rows_, table, known.number, known.key);
    return known;
}

void ChangeRecorder::AddRow(const RecordedTable& table, RowChange change, const RowView& row) {
    const Known& known = TableOf(table);
    const std::size_t start = rows_.size();
    rows_.push_back(static_cast<std::byte>(change));
    AppendNoteNumber(rows_, known.number);
    if (AppendCells(table, known.every, row, rows_)) {
        ++count_;
        return;
    }
    rows_.resize(start);
    ++missed_;
}

// Without a key a row is known by all that it holds.
std::span<const std::size_t> ChangeRecorder::Looked(const Known& known,
                                                    std::span<const std::size_t> columns) const {
    return known.key.empty() ? std::span<const std::size_t>(known.every) : columns;
}

void ChangeRecorder::BeginUpdate(const RecordedTable& table, const RowView& row,
                                 std::span<const std::size_t> columns) {
    const Known& known = TableOf(table);
    key_before_.clear();
    before_.clear();
    update_is_readable_ = AppendCells(table, known.key, row, key_before_) &&
                          AppendCells(table, Looked(known, columns), row, before_);
}

void ChangeRecorder::FinishUpdate(const RecordedTable& table, const RowView& row,
                                  std::span<const std::size_t> columns) {
    const Known& known = TableOf(table);
    after_.clear();
    if (!update_is_readable_ || !AppendCells(table, Looked(known, columns), row, after_))
        return Miss();
    update_is_readable_ = false;
    if (before_ == after_) return;
    ++count_;
    AppendDifferences(known, Looked(known, columns));
}

void ChangeRecorder::AppendDifferences(const Known& known, std::span<const std::size_t> columns) {
    rows_.push_back(static_cast<std::byte>(RowChange::kUpdated));
    AppendNoteNumber(rows_, known.number);
    rows_.insert(rows_.end(), key_before_.begin(), key_before_.end());
    const std::size_t count_at = rows_.size();
    std::uint64_t count = 0;
    // A table has at most 255 columns: two bytes hold the number of any of them.
    rows_.resize(count_at + 2);
    std::span<const std::byte> before = before_;
    std::span<const std::byte> after = after_;
    for (const std::size_t column : columns) {
        const auto old_cell = TakeCell(before);
        const auto new_cell = TakeCell(after);
        if (!known.key.empty() && std::ranges::equal(old_cell, new_cell)) continue;
        ++count;
        AppendNoteNumber(rows_, column);
        rows_.insert(rows_.end(), old_cell.begin(), old_cell.end());
        rows_.insert(rows_.end(), new_cell.begin(), new_cell.end());
    }
    rows_[count_at] = static_cast<std::byte>((count & 0x7F) | 0x80);
    rows_[count_at + 1] = static_cast<std::byte>(count >> 7);
}

void ChangeRecorder::Clear() {
    rows_.clear();
    if (rows_.capacity() > (1U << 20)) rows_.shrink_to_fit();
    count_ = 0;
    missed_ = 0;
}

void ChangeRecorder::Begin(std::uint64_t change) {
    if (change == change_) return;
    change_ = change;
    tables_.clear();
    last_ = tables_.end();
    next_number_ = told_numbers_ = 0;
}

void ChangeRecorder::NoteCommitted() {
    told_numbers_ = next_number_;
    Clear();
}

// The numbers that no note tells are given out again.
void ChangeRecorder::Forget() {
    std::erase_if(tables_,
                  [this](const auto& entry) { return entry.second.number >= told_numbers_; });
    last_ = tables_.end();
    next_number_ = told_numbers_;
    Clear();
}

}  // namespace jet
