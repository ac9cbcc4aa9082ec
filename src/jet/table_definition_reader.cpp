#include "jet/byte_cursor.h"
#include "jet/definition_layout.h"
#include "jet/storage_errors.h"
#include "jet/table_definition.h"

#include <algorithm>

namespace jet {
namespace {

// Far above what 255 columns and their indexes need.
constexpr std::size_t kMaxDefinitionBytes = 1U << 20;
constexpr std::size_t kMaxIndexesRead = 4096;

struct DefinitionBytes {
    std::vector<std::byte> bytes;
    std::vector<PageNumber> pages;
};

base::Result<DefinitionBytes> Gather(PageStore& store, PageNumber page) {
    DefinitionBytes gathered;
    std::uint32_t length = 0;
    for (PageNumber next = page; next != 0;) {
        ASSIGN_OR_RETURN(const PageView view, store.Read(next));
        const std::span<const std::byte> bytes = view.bytes();
        if (bytes[0] != static_cast<std::byte>(PageType::kDefinition))
            return errors::DamagedPage(next, "not a table definition");
        const bool first = gathered.pages.empty();
        const auto piece = first ? bytes : bytes.subspan(kDefinitionPageHead);
        gathered.bytes.insert(gathered.bytes.end(), piece.begin(), piece.end());
        gathered.pages.push_back(next);
        if (first) length = base::LoadLittle<std::uint32_t>(bytes.data() + kDefinitionLength);
        if (gathered.bytes.size() > kMaxDefinitionBytes)
            return errors::DamagedPage(page, "the table definition does not end");
        next = base::LoadLittle<std::uint32_t>(bytes.data() + 4);
    }
    if (length > gathered.bytes.size() || length < 64)
        return errors::DamagedPage(page, "the table definition is cut short");
    gathered.bytes.resize(length);
    return gathered;
}

ColumnDefinition ParseColumn(std::span<const std::byte> d, bool jet4) {
    using base::LoadLittle;
    ColumnDefinition column;
    const std::byte* at = d.data();
    const std::size_t shift = jet4 ? 5 : 1;
    column.type = static_cast<ColumnType>(d[0]);
    column.number = LoadLittle<std::uint16_t>(at + shift);
    column.variable_index = LoadLittle<std::uint16_t>(at + shift + 2);
    column.ordinal = LoadLittle<std::uint16_t>(at + shift + 4);
    const std::size_t sort = jet4 ? 11 : 9;
    if (column.type == ColumnType::kNumeric) {
        column.precision = std::to_integer<std::uint8_t>(d[11]);
        column.scale = std::to_integer<std::uint8_t>(d[12]);
    } else {
        column.sort_order = LoadLittle<std::uint16_t>(at + sort);
        if (jet4)
            column.sort_version = std::to_integer<std::uint8_t>(d[14]);
        else
            column.code_page = LoadLittle<std::uint16_t>(at + 11);
    }
    column.flags = std::to_integer<std::uint8_t>(d[jet4 ? 15 : 13]);
    if (jet4) column.extended_flags = std::to_integer<std::uint8_t>(d[16]);
    column.fixed_offset = LoadLittle<std::uint16_t>(at + (jet4 ? 21 : 14));
    column.length = LoadLittle<std::uint16_t>(at + (jet4 ? 23 : 16));
    return column;
}

RealIndex ParseRealIndex(std::span<const std::byte> d, bool jet4) {
    RealIndex index;
    const std::byte* at = d.data() + (jet4 ? 4 : 0);
    for (std::size_t i = 0; i < kMaxIndexColumns; ++i) {
        const auto column = base::LoadLittle<std::uint16_t>(at + 3 * i);
        if (column != 0xFFFF) index.columns.push_back({column, at[3 * i + 2] != std::byte{0}});
    }
    index.map = LoadRowPointer(at + 30);
    index.root = base::LoadLittle<std::uint32_t>(at + 34);
    index.flags = std::to_integer<std::uint8_t>(at[jet4 ? 42 : 38]);
    return index;
}

LogicalIndex ParseLogicalIndex(std::span<const std::byte> d, bool jet4) {
    LogicalIndex index;
    const std::byte* at = d.data() + (jet4 ? 4 : 0);
    index.number = base::LoadLittle<std::uint32_t>(at);
    index.real = base::LoadLittle<std::uint32_t>(at + 4);
    index.side = static_cast<RelationSide>(at[8]);
    index.partner = base::LoadLittle<std::int32_t>(at + 9);
    index.other_table = base::LoadLittle<std::uint32_t>(at + 13);
    index.cascade_updates = std::to_integer<std::uint8_t>(at[17]);
    index.cascade_deletes = std::to_integer<std::uint8_t>(at[18]);
    index.kind = static_cast<IndexKind>(at[19]);
    return index;
}

std::u16string TakeName(ByteCursor& cursor, const TextCodec& text) {
    const std::size_t length = text.jet4() ? cursor.Take<std::uint16_t>() : cursor.TakeByte();
    return text.DecodeName(cursor.TakeBytes(length));
}

class Parser {
public:
    Parser(std::span<const std::byte> bytes, const Format& format, const TextCodec& text,
           TableDefinition& definition)
        : bytes_(bytes), layout_(LayoutOf(format)), jet4_(format.jet4()), text_(text),
          definition_(definition) {}

    // False: the definition contradicts itself.
    bool Parse() {
        if (!ParseFixedPart()) return false;
        ByteCursor cursor(bytes_, layout_.index_counters);
        for (RealIndex& index : definition_.real_indexes) {
            index.entries_when_compacted = cursor.Take<std::uint32_t>();
            index.distinct_keys = cursor.Take<std::uint32_t>();
            if (jet4_) cursor.Take<std::uint32_t>();
        }
        ParseColumns(cursor);
        ParseIndexes(cursor);
        ParseLongValues(cursor);
        return !cursor.failed() && IsConsistent();
    }

private:
    bool ParseFixedPart() {
        const std::byte* at = bytes_.data();
        definition_.rows = base::LoadLittle<std::uint32_t>(at + layout_.rows);
        definition_.last_autonumber = base::LoadLittle<std::uint32_t>(at + layout_.autonumber);
        definition_.kind = std::to_integer<std::uint8_t>(at[layout_.kind]);
        definition_.columns_ever = base::LoadLittle<std::uint16_t>(at + layout_.columns_ever);
        definition_.variables_ever = base::LoadLittle<std::uint16_t>(at + layout_.variables_ever);
        definition_.owned = LoadRowPointer(at + layout_.owned_map);
        definition_.free = LoadRowPointer(at + layout_.free_map);
        const std::size_t columns = base::LoadLittle<std::uint16_t>(at + layout_.columns);
        const std::size_t logical = base::LoadLittle<std::uint32_t>(at + layout_.logical_indexes);
        const std::size_t real = base::LoadLittle<std::uint32_t>(at + layout_.real_indexes);
        if (columns > kMaxColumns || logical > kMaxIndexesRead || real > kMaxIndexesRead)
            return false;
        definition_.columns.resize(columns);
        definition_.real_indexes.resize(real);
        definition_.logical_indexes.resize(logical);
        return true;
    }

    void ParseColumns(ByteCursor& cursor) {
        for (ColumnDefinition& column : definition_.columns) {
            const auto piece = cursor.TakeBytes(layout_.column_bytes);
            if (cursor.failed()) return;
            column = ParseColumn(piece, jet4_);
        }
        for (ColumnDefinition& column : definition_.columns)
            column.name = TakeName(cursor, text_);
    }

    void ParseIndexes(ByteCursor& cursor) {
        for (RealIndex& index : definition_.real_indexes) {
            const auto piece = cursor.TakeBytes(layout_.real_index_bytes);
            if (cursor.failed()) return;
            const RealIndex counters = index;
            index = ParseRealIndex(piece, jet4_);
            index.entries_when_compacted = counters.entries_when_compacted;
            index.distinct_keys = counters.distinct_keys;
        }
        for (LogicalIndex& index : definition_.logical_indexes) {
            const auto piece = cursor.TakeBytes(layout_.logical_index_bytes);
            if (cursor.failed()) return;
            index = ParseLogicalIndex(piece, jet4_);
        }
        for (LogicalIndex& index : definition_.logical_indexes)
            index.name = TakeName(cursor, text_);
    }

    void ParseLongValues(ByteCursor& cursor) {
        while (!cursor.failed()) {
            const auto column = cursor.Take<std::uint16_t>();
            if (column == kEndOfDefinition) return;
            const auto owned = cursor.TakeBytes(4);
            const auto free = cursor.TakeBytes(4);
            if (cursor.failed()) return;
            definition_.long_values.push_back(
                {column, LoadRowPointer(owned.data()), LoadRowPointer(free.data())});
        }
    }

    bool IsConsistent() const {
        std::vector<bool> seen(definition_.columns_ever);
        for (const ColumnDefinition& column : definition_.columns) {
            if (column.number >= definition_.columns_ever || seen[column.number]) return false;
            seen[column.number] = true;
            if (column.is_variable() && column.variable_index >= definition_.variables_ever)
                return false;
        }
        for (const RealIndex& index : definition_.real_indexes)
            if (index.columns.empty() ||
                !std::ranges::all_of(index.columns, [this](const RealIndexColumn& column) {
                    return definition_.FindColumn(column.column) != nullptr;
                }))
                return false;
        return std::ranges::all_of(definition_.logical_indexes, [this](const LogicalIndex& index) {
            return index.real < definition_.real_indexes.size();
        });
    }

    std::span<const std::byte> bytes_;
    const DefinitionLayout& layout_;
    bool jet4_;
    const TextCodec& text_;
    TableDefinition& definition_;
};

}  // namespace

const ColumnDefinition* TableDefinition::FindColumn(std::uint16_t number) const {
    const auto found = std::ranges::find(columns, number, &ColumnDefinition::number);
    return found == columns.end() ? nullptr : &*found;
}

const LogicalIndex* TableDefinition::FindIndex(std::int32_t number) const {
    const auto found = std::ranges::find_if(logical_indexes, [&](const LogicalIndex& index) {
        return static_cast<std::int32_t>(index.number) == number;
    });
    return found == logical_indexes.end() ? nullptr : &*found;
}

std::uint32_t NextIndexNumber(const TableDefinition& definition) {
    std::uint32_t next = 0;
    for (const LogicalIndex& known : definition.logical_indexes)
        next = std::max(next, known.number + 1);
    return next;
}

std::size_t TableDefinition::fixed_bytes() const {
    std::size_t bytes = 0;
    for (const ColumnDefinition& column : columns)
        if (column.is_fixed())
            bytes = std::max<std::size_t>(bytes, column.fixed_offset + column.length);
    return bytes;
}

base::Result<TableDefinition> ReadTableDefinition(PageStore& store, const Format& format,
                                                  const TextCodec& text, PageNumber page) {
    ASSIGN_OR_RETURN(DefinitionBytes gathered, Gather(store, page));
    TableDefinition definition;
    definition.page = page;
    definition.pages = std::move(gathered.pages);
    if (!Parser(gathered.bytes, format, text, definition).Parse())
        return errors::DamagedPage(page, "the table definition contradicts itself");
    return definition;
}

DefinitionCounters ReadDefinitionCounters(std::span<const std::byte> first_page,
                                          const Format& format) {
    const DefinitionLayout& layout = LayoutOf(format);
    return {base::LoadLittle<std::uint32_t>(first_page.data() + layout.rows),
            base::LoadLittle<std::uint32_t>(first_page.data() + layout.autonumber)};
}

void WriteDefinitionCounters(std::span<std::byte> first_page, const Format& format,
                             DefinitionCounters counters) {
    const DefinitionLayout& layout = LayoutOf(format);
    base::StoreLittle(first_page.data() + layout.rows, counters.rows);
    base::StoreLittle(first_page.data() + layout.autonumber, counters.last_autonumber);
}

namespace {

std::size_t DistinctKeysOffset(const Format& format, std::size_t real_index) {
    const DefinitionLayout& layout = LayoutOf(format);
    return layout.index_counters + layout.index_counter_bytes * real_index + 4;
}

}  // namespace

std::uint32_t ReadDistinctKeys(std::span<const std::byte> first_page, const Format& format,
                               std::size_t real_index) {
    const auto keys =
        base::LittleAt<std::uint32_t>(first_page, DistinctKeysOffset(format, real_index));
    return keys.value_or(0);
}

void WriteDistinctKeys(std::span<std::byte> first_page, const Format& format,
                       std::size_t real_index, std::uint32_t keys) {
    const std::size_t at = DistinctKeysOffset(format, real_index);
    if (at + 4 <= first_page.size()) base::StoreLittle(first_page.data() + at, keys);
}

}  // namespace jet
