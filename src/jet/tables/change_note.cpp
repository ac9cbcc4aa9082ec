#include "jet/tables/change_note.h"

#include "base/byte_reader.h"
#include "base/byte_writer.h"
#include "jet/errors.h"
#include "jet/rows/field_codec.h"

#include <algorithm>
#include <bit>

namespace jet {
namespace {

constexpr std::uint8_t kNoteVersion = 1;

// version 1, engine's version 1, code page 2, id 8, undoes 8, time 8, missed rows 4; the name.
constexpr std::size_t kFixedHead = 32;

// Of 64 bits, seven to the byte.
constexpr std::size_t kMaxNumberSize = 10;

base::Status DamagedNote() {
    return {base::StatusCode::kCorruption, "A note of changed rows is damaged."};
}

}  // namespace

bool SameCell(const NotedCell& a, const NotedCell& b) {
    if (!a || !b) return a.has_value() == b.has_value();
    return std::ranges::equal(*a, *b);
}

void AppendNoteNumber(Bytes& out, std::uint64_t number) {
    for (; number >= 0x80; number >>= 7)
        out.push_back(static_cast<std::byte>((number & 0x7F) | 0x80));
    out.push_back(static_cast<std::byte>(number));
}

void AppendNoteText(Bytes& out, std::u16string_view text) {
    AppendNoteNumber(out, text.size());
    for (const char16_t unit : text)
        base::AppendLittle(out, static_cast<std::uint16_t>(unit));
}

void AppendNoteCell(Bytes& out, const NotedCell& cell) {
    AppendNoteNumber(out, cell ? cell->size() + 1 : 0);
    if (cell) out.insert(out.end(), cell->begin(), cell->end());
}

Bytes NoteHead(const ChangeLabel& label, const TextCodec& text, std::uint32_t missed_rows,
               std::size_t rows_size) {
    Bytes head;
    head.reserve(kFixedHead + kMaxNumberSize + 2 * label.name.size() + rows_size);
    base::AppendLittle(head, kNoteVersion);
    base::AppendLittle(head, static_cast<std::uint8_t>(text.jet4() ? 4 : 3));
    base::AppendLittle(head, text.code_page());
    base::AppendLittle(head, label.id);
    base::AppendLittle(head, label.undoes);
    base::AppendLittle(head, std::bit_cast<std::uint64_t>(label.time));
    base::AppendLittle(head, missed_rows);
    AppendNoteText(head, label.name);
    return head;
}

base::Result<Value> NoteTable::Decode(std::size_t column, const NotedCell& cell) const {
    if (!cell) return Value::Null();
    const Column& known = columns[column];
    if (known.type == ColumnType::kBoolean)
        return Value::Boolean(!cell->empty() && cell->front() != std::byte{0});
    if (known.type == ColumnType::kText || known.type == ColumnType::kMemo)
        return Value::Text(text->DecodeValue(*cell));
    if (known.type == ColumnType::kOle) return Value::Binary(Bytes(cell->begin(), cell->end()));
    ColumnDefinition definition;
    definition.type = known.type;
    definition.scale = known.scale;
    Value value;
    RETURN_IF_ERROR(DecodePlainField(definition, *cell, value));
    return value;
}

// ------------------------------------------------------------------------------------- reading

base::Result<NoteReader> NoteReader::Open(std::span<const std::byte> note,
                                          std::vector<NoteTable> known) {
    NoteReader reader(note);
    reader.tables_ = std::move(known);
    RETURN_IF_ERROR(reader.ReadHead());
    return reader;
}

base::Status NoteReader::ReadHead() {
    if (rest_.size() < kFixedHead) return DamagedNote();
    const std::byte* head = rest_.data();
    const auto version = base::LoadLittle<std::uint8_t>(head);
    const auto engine = base::LoadLittle<std::uint8_t>(head + 1);
    if (version != kNoteVersion || (engine != 3 && engine != 4)) return DamagedNote();
    const auto code_page = base::LoadLittle<std::uint16_t>(head + 2);
    // The notes of a change come from one database.
    if (!tables_.empty() && tables_.back().text->IsFor(engine, code_page))
        text_ = tables_.back().text;
    else
        text_ = std::make_shared<const TextCodec>(engine, code_page);
    label_.id = base::LoadLittle<std::uint64_t>(head + 4);
    label_.undoes = base::LoadLittle<std::uint64_t>(head + 12);
    label_.time = base::LoadDouble(head + 20);
    missed_rows_ = base::LoadLittle<std::uint32_t>(head + 28);
    rest_ = rest_.subspan(kFixedHead);
    return ReadText(label_.name) ? base::Status() : DamagedNote();
}

bool NoteReader::ReadNumber(std::uint64_t& number) {
    number = 0;
    for (unsigned shift = 0; shift < 63 && !rest_.empty(); shift += 7) {
        const auto byte = std::to_integer<std::uint64_t>(rest_.front());
        rest_ = rest_.subspan(1);
        number |= (byte & 0x7F) << shift;
        if (byte < 0x80) return true;
    }
    return false;
}

bool NoteReader::ReadText(std::u16string& text) {
    std::uint64_t size = 0;
    if (!ReadNumber(size) || size > rest_.size() / 2) return false;
    text.resize(size);
    for (std::size_t i = 0; i < size; ++i)
        text[i] = static_cast<char16_t>(base::LoadLittle<std::uint16_t>(rest_.data() + 2 * i));
    rest_ = rest_.subspan(2 * size);
    return true;
}

bool NoteReader::ReadCell(NotedCell& cell) {
    std::uint64_t size = 0;
    if (!ReadNumber(size)) return false;
    cell.reset();
    if (size == 0) return true;
    if (size - 1 > rest_.size()) return false;
    cell = rest_.first(size - 1);
    rest_ = rest_.subspan(size - 1);
    return true;
}

base::Status NoteReader::ReadTable() {
    NoteTable table;
    table.text = text_;
    std::uint64_t columns = 0;
    if (!ReadText(table.name) || !ReadNumber(columns) || columns > kMaxColumns)
        return DamagedNote();
    for (std::size_t i = 0; i < columns; ++i) {
        NoteTable::Column column;
        if (!ReadText(column.name) || rest_.size() < 2) return DamagedNote();
        column.type = static_cast<ColumnType>(rest_[0]);
        column.scale = std::to_integer<std::uint8_t>(rest_[1]);
        rest_ = rest_.subspan(2);
        table.columns.push_back(std::move(column));
    }
    std::uint64_t keys = 0;
    if (!ReadNumber(keys) || keys > columns) return DamagedNote();
    for (std::size_t i = 0; i < keys; ++i) {
        std::uint64_t key = 0;
        if (!ReadNumber(key) || key >= columns) return DamagedNote();
        table.key.push_back(key);
    }
    tables_.push_back(std::move(table));
    return {};
}

base::Status NoteReader::ReadWholeRow(NotedRow& row) {
    row.key.clear();
    row.cells.resize(tables_[row.table].columns.size());
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        row.cells[i] = {i, {}, {}};
        const bool is_new = row.change == RowChange::kInserted;
        if (!ReadCell(is_new ? row.cells[i].after : row.cells[i].before)) return DamagedNote();
    }
    return {};
}

base::Status NoteReader::ReadUpdate(NotedRow& row) {
    const NoteTable& table = tables_[row.table];
    row.key.resize(table.key.size());
    for (NotedCell& cell : row.key)
        if (!ReadCell(cell)) return DamagedNote();
    std::uint64_t count = 0;
    if (!ReadNumber(count) || count > table.columns.size()) return DamagedNote();
    row.cells.resize(count);
    for (NotedRow::Cell& cell : row.cells) {
        std::uint64_t column = 0;
        if (!ReadNumber(column) || column >= table.columns.size() || !ReadCell(cell.before) ||
            !ReadCell(cell.after))
            return DamagedNote();
        cell.column = column;
    }
    return {};
}

base::Result<bool> NoteReader::Next(NotedRow& row) {
    while (!rest_.empty()) {
        const auto tag = static_cast<NoteTag>(rest_.front());
        const bool is_table = tag == NoteTag::kTable;
        if (!is_table && (tag < NoteTag::kInserted || tag > NoteTag::kUpdated))
            return DamagedNote();
        const std::span<const std::byte> start = rest_;
        rest_ = rest_.subspan(1);
        std::uint64_t table = 0;
        if (!ReadNumber(table)) return DamagedNote();
        if (is_table) {
            if (table != tables_.size()) return DamagedNote();
            RETURN_IF_ERROR(ReadTable());
            continue;
        }
        if (table >= tables_.size()) return DamagedNote();
        row.table = table;
        row.change = static_cast<RowChange>(tag);
        const base::Status read =
            row.change == RowChange::kUpdated ? ReadUpdate(row) : ReadWholeRow(row);
        if (!read.ok()) {
            rest_ = start;
            return read;
        }
        return true;
    }
    return false;
}

}  // namespace jet
